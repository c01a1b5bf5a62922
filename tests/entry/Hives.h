// The hive table with the texts that the library ships.
#pragma once

#include "entry/HiveTable.h"

inline const HiveTable& ShippedHives() {
    static const HiveTable hives{{
        {ROOT_CLASSES_ROOT, L"HKEY_CLASSES_ROOT", L"HKCR"},
        {ROOT_CURRENT_USER, L"HKEY_CURRENT_USER", L"HKCU"},
        {ROOT_LOCAL_MACHINE, L"HKEY_LOCAL_MACHINE", L"HKLM"},
        {ROOT_USERS, L"HKEY_USERS", L"HKU"},
        {ROOT_CURRENT_CONFIG, L"HKEY_CURRENT_CONFIG", L"HKCC"},
    }};
    return hives;
}
