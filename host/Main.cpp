#include "RulesHost.h"

extern "C" int wmain(int count, wchar_t** arguments) {
    return static_cast<int>(RunHost({arguments + 1, arguments + count}));
}
