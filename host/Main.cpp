#include "RulesHost.h"

extern "C" int wmain(int count, wchar_t** arguments) {
    return RunHost({arguments + 1, arguments + count});
}
