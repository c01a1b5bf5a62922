#include "offline/MachineNames.h"

#include <iterator>

#include "registry/OfflineEnvironment.h"
#include "registry/RegistryHelper.h"

namespace {

constexpr LPCWSTR kDomain = L"Domain";
constexpr LPCWSTR kHostName = L"Hostname";

// False, and `text` as it was, when there is no such value.
bool ReadNetworkName(LPCWSTR valueName, CString& text) {
    const CRegistryHelper key(HKEY_LOCAL_MACHINE, L"SYSTEM\\CurrentControlSet\\Services\\Tcpip\\Parameters", KEY_READ);
    if (!key.ValueExists(valueName)) return false;
    text = key.GetStringValue(valueName).MakeUpper();
    return true;
}

}  // namespace

CString GetMachineDomainName() {
    CString name;
    ReadNetworkName(kDomain, name);
    const int dot = name.Find(L'.');
    return dot > 0 ? name.Left(dot) : name;
}

CString GetMachineHostName() {
    CString name;
    ReadNetworkName(kHostName, name);
    return name;
}

bool GetMachineName(CString& name) {
    if (IsWinPE()) return ReadNetworkName(kHostName, name);
    WCHAR buffer[MAX_COMPUTERNAME_LENGTH + 1];
    DWORD size = static_cast<DWORD>(std::size(buffer));
    if (!GetComputerNameW(buffer, &size)) return false;
    name = buffer;
    return true;
}
