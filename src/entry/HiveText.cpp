#include "entry/HiveText.h"

#include "helpers/ResourceString.h"
#include "helpers/TextView.h"
#include "resources/resource.h"

namespace {

Hive LoadHive(std::uint32_t rootKey, UINT fullNameId, UINT abbreviationId) {
    return {rootKey, LoadResourceString(fullNameId).GetString(), LoadResourceString(abbreviationId).GetString()};
}

HiveTable LoadHives() {
    return {LoadHive(ROOT_CLASSES_ROOT, IDS_HKEY_CLASSES_ROOT, IDS_HKCR),
            LoadHive(ROOT_CURRENT_USER, IDS_HKEY_CURRENT_USER, IDS_HKCU),
            LoadHive(ROOT_LOCAL_MACHINE, IDS_HKEY_LOCAL_MACHINE, IDS_HKLM),
            LoadHive(ROOT_USERS, IDS_HKEY_USERS, IDS_HKU),
            LoadHive(ROOT_CURRENT_CONFIG, IDS_HKEY_CURRENT_CONFIG, IDS_HKCC)};
}

}  // namespace

const HiveTable& Hives() {
    static const HiveTable hives = LoadHives();
    return hives;
}

KeyCheck CheckKeyPath(const CString& text, const CString& watermark) {
    return CheckKeyPath(ViewOf(text), ViewOf(watermark), Hives());
}

CString AbbreviateHive(const CString& path) {
    return TextOf(AbbreviateHive(ViewOf(path), Hives()));
}

CString NormaliseAbbreviation(const CString& path) {
    return TextOf(NormaliseAbbreviation(ViewOf(path), Hives()));
}

void ExpandHive(CString& path) {
    path = TextOf(ExpandHive(ViewOf(path), Hives()));
}

CString MakeHivePath(HKEY rootKey, const CString& subkey) {
    // A predefined handle is its 32-bit value, sign-extended.
    const auto root = static_cast<std::uint32_t>(reinterpret_cast<ULONG_PTR>(rootKey));
    return TextOf(MakeHivePath(root, ViewOf(subkey), Hives()));
}
