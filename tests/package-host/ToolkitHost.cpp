#include <cstdio>

#include "registry/RegistryException.h"
#include "registry/RegistryHelper.h"

int main() {
    try {
        const CRegistryHelper key(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion", KEY_READ);
        std::printf("%ls\n", key.GetStringValue(L"ProductName").GetString());
        return 0;
    } catch (CRegistryException* problem) {
        problem->Delete();
        return 1;
    }
}
