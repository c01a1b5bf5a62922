#include <windows.h>

#include "RulesHost.h"

extern "C" int wmain(int count, wchar_t** arguments) {
    // What is loaded from now on comes from the system's folder: the current one may be anybody's.
    SetDefaultDllDirectories(LOAD_LIBRARY_SEARCH_SYSTEM32);
    return static_cast<int>(RunHost({arguments + 1, arguments + count}));
}
