// A host's own framework.dll, and the part of the host that calls it before its main.
#include <cstdio>

#ifdef framework_EXPORTS
extern "C" __declspec(dllexport) int Greet() {
    return std::puts("the host's own framework.dll");
}
#else
extern "C" __declspec(dllimport) int Greet();
static const int s_greeting = Greet();
#endif
