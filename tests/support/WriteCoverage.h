// For programs that end without an orderly end, at which the runtime would write what scripts/coverage counts.
#pragma once

#ifdef COVERAGE
extern "C" void __gcov_dump(void);
#endif

inline void WriteCoverage() {
#ifdef COVERAGE
    __gcov_dump();
#endif
}
