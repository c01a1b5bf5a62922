#include <registry-rules/toolkit/registry/RegistryException.h>
#include <registry-rules/toolkit/registry/RegistryHelper.h>

#include <cstdio>

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
