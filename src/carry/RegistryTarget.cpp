#include "carry/RegistryTarget.h"

#include "carry/CarryReport.h"
#include "carry/UserProfile.h"
#include "registry/RegistryHelper.h"

namespace {

HKEY HandleOf(RegistryHive hive) {
    // Predefined handles are 32-bit numbers that are sign-extended.
    return reinterpret_cast<HKEY>(static_cast<LONG_PTR>(static_cast<LONG>(hive)));
}

std::uint32_t CurrentControlSet(const std::wstring& system) {
    UniqueKey key;
    DWORD number = 1;
    DWORD size = sizeof(number);
    if (OpenKey(HKEY_LOCAL_MACHINE, system + L"\\Select", KEY_QUERY_VALUE, LinkMode::Follow, key) != ERROR_SUCCESS ||
        RegQueryValueExW(key.get(), L"Current", nullptr, nullptr, reinterpret_cast<BYTE*>(&number), &size) !=
            ERROR_SUCCESS) {
        return 1;
    }
    return number;
}

}  // namespace

RegistryTarget::RegistryTarget(const TargetOptions& options) {
    m_map.user = CRegistryHelper::GetUserHiveOverride().GetString();
    if (options.drive != 0) MountDrive(options.drive);
    if (!options.user.empty()) MountUser(options);
}

// The names are this process's own, so that two can work on one installation.
const HiveMount& RegistryTarget::Mount(HKEY root, LPCWSTR name, const std::wstring& file) {
    const std::wstring mount = L"Carry_" + std::to_wstring(GetCurrentProcessId()) + L"_" + name;
    m_mounts.push_back(std::make_unique<HiveMount>(root, mount, file));
    return *m_mounts.back();
}

void RegistryTarget::MountDrive(WCHAR drive) {
    const std::wstring config = std::wstring(1, drive) + L":\\Windows\\System32\\config\\";
    OfflineMounts mounts;
    mounts.software = Mount(HKEY_LOCAL_MACHINE, L"SOFTWARE", config + L"SOFTWARE").Name();
    mounts.system = Mount(HKEY_LOCAL_MACHINE, L"SYSTEM", config + L"SYSTEM").Name();
    mounts.controlSet = CurrentControlSet(mounts.system);
    m_map.offline = mounts;
    m_map.user.clear();
}

void RegistryTarget::MountUser(const TargetOptions& options) {
    const UserProfile profile = options.drive == 0
                                    ? FindUserProfile(options.user)
                                    : FindOfflineUserProfile(options.user, options.drive, m_map.offline->software);
    m_map.user = profile.loadedAs.empty() ? Mount(HKEY_USERS, L"USER", profile.folder + L"\\NTUSER.DAT").Name()
                                          : profile.loadedAs;
}

std::optional<KeyPlace> RegistryTarget::Find(const KeyName& key) const {
    auto mapped = MapKey(key, m_map);
    if (!mapped) return std::nullopt;
    return KeyPlace{HandleOf(mapped->hive), std::move(mapped->subkey)};
}

KeyPlace RegistryTarget::At(const KeyName& key) const {
    if (auto place = Find(key)) return *std::move(place);
    throw CarryException(CarryFailure::Failed, "the installation has no such key", FormatKeyName(key));
}

void RegistryTarget::NoteChange(const KeyPlace& place) {
    for (const auto& mount : m_mounts) {
        if (place.path.starts_with(mount->Name())) mount->NoteChange();
    }
}

void RegistryTarget::WriteBack() const {
    for (const auto& mount : m_mounts) {
        if (mount->IsChanged()) mount->WriteBack();
    }
}
