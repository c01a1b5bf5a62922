#include "registry/HiveRedirection.h"

#include <atlbase.h>
#include <string>

#include "helpers/TextView.h"
#include "registry/OfflineEnvironment.h"
#include "registry/OfflineHivesHook.h"
#include "registry/OfflinePath.h"

namespace {

class SystemFacts final : public OfflineFacts {
public:
    bool IsPreinstallation() override { return IsWinPE(); }
    bool MountHives() override { return MountOfflineHives() == ERROR_SUCCESS; }
    bool IsTarget64Bit() override { return IsOffline64BitOs(); }

    bool KeyOpens(const std::wstring& path) override {
        CRegKey key;
        return key.Open(HKEY_LOCAL_MACHINE, path.c_str(), KEY_READ) == ERROR_SUCCESS;
    }

    std::optional<std::uint32_t> CurrentControlSet() override {
        CRegKey key;
        if (key.Open(HKEY_LOCAL_MACHINE, L"OS_SYSTEM\\Select", KEY_QUERY_VALUE) != ERROR_SUCCESS) return std::nullopt;
        DWORD number = 0;
        DWORD bytes = sizeof(number);
        if (RegQueryValueExW(key, L"Current", nullptr, nullptr, reinterpret_cast<BYTE*>(&number), &bytes) !=
            ERROR_SUCCESS) {
            return std::nullopt;
        }
        return number;
    }
};

}  // namespace

void RedirectToOfflineHive(CString& path, REGSAM access, DWORD nativeViewOnly) {
    SystemFacts facts;
    path = TextOf(OfflinePath(ViewOf(path), access, nativeViewOnly != 0, facts));
}
