// Whose registry is captured, listed or changed: that of the running system, of another user, or of an installation on
// another drive.
//
//     const RegistryTarget target({.drive = L'D', .user = L"ann"});
//     if (const auto place = target.Find(key)) Open(place->root, place->path);
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "carry/HiveMap.h"
#include "carry/HiveMount.h"
#include "carry/KeyAccess.h"

struct TargetOptions {
    WCHAR drive = 0;    // of an installation that is not running; 0 for the running system
    std::wstring user;  // who HKEY_CURRENT_USER is: a SID, an account's name or a profile folder; empty for the user of
                        // the process or, if one is set, of CRegistryHelper's override
};

class RegistryTarget {
public:
    // Mounts what is not loaded: SOFTWARE and SYSTEM of the drive, NTUSER.DAT of the user. Throws CarryException for a
    // user who does not exist, and for a hive that is missing or in use; nothing stays mounted then.
    explicit RegistryTarget(const TargetOptions& options = {});

    // None for a key that an installation on another drive has not got.
    std::optional<KeyPlace> Find(const KeyName& key) const;
    // For a key that was found before; throws CarryException where Find has none.
    KeyPlace At(const KeyName& key) const;

    // What has been changed through places replaces the files of the mounted hives; nothing else is written. Throws
    // CarryException; the hives that come after the one that failed stay as they were.
    void NoteChange(const KeyPlace& place);
    void WriteBack() const;

private:
    const HiveMount& Mount(HKEY root, LPCWSTR name, const std::wstring& file);
    void MountDrive(WCHAR drive);
    void MountUser(const TargetOptions& options);

    HiveMap m_map;
    std::vector<std::unique_ptr<HiveMount>> m_mounts;
};
