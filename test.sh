#!/usr/bin/env bash
# Builds everything from nothing and runs every lane. Prints "N passed, M failed" last; the exit code follows.
set -uo pipefail
cd "$(dirname "$0")" || exit 1
. scripts/packages
install_missing "${test_packages[@]}" || exit 1

mkdir -p build
passed=0 failed=0
step() { printf '%s  %s\n' "$(date +%H:%M:%S)" "$*"; }
fail() { echo "FAILED: $*"; failed=$((failed + 1)); }

# build PRESET: configures and builds; on failure shows the errors and counts one failure.
build() {
    step "building: $1"
    local log=build/$1.log
    if ! { cmake --preset "$1" && cmake --build --preset "$1"; } >"$log" 2>&1; then
        grep -E 'error|Error|undefined reference' "$log" | head -40
        tail -5 "$log"
        fail "the build '$1' (whole log: $log)"
        return 1
    fi
    if grep -q 'warning:' "$log"; then
        grep 'warning:' "$log" | head -20
        fail "warnings in the build '$1'"
    fi
}

# lane PRESET: runs the tests of a build and adds up the cases that GoogleTest counted.
lane() {
    step "testing: $1"
    local log=build/$1-tests.log
    ctest --preset "$1" >"$log" 2>&1
    local code=$?
    sed -n '/^ *[0-9]*\/[0-9]* Test/p' "$log"
    local full=build/$1/Testing/Temporary/LastTest.log ok bad
    ok=$(grep -oE '^\[  PASSED  \] [0-9]+' "$full" | awk '{n += $4} END {print n + 0}')
    bad=$(grep -oE '^\[  FAILED  \] [0-9]+ test' "$full" | awk '{n += $4} END {print n + 0}')
    passed=$((passed + ok)) failed=$((failed + bad))
    if [ $code -ne 0 ]; then
        sed -n '/The following tests FAILED/,$p' "$log"
        grep -E -A8 'FAILED|Failure|watchdog|timed out|wine: Unhandled|:heap:|=>' "$log" | head -80
        [ "$bad" -gt 0 ] || fail "the lane '$1' ended without a count (whole log: $log)"
    fi
}

step "preparing the Wine prefix"
scripts/wine-setup >build/wine-setup.log 2>&1 &
setup=$!
build native && lane native
if build windows; then
    wait "$setup" || fail "the Wine prefix (see build/wine-setup.log)"
    lane windows
    step "comparing the export tables"
    for dll in RegistryRules RulesC; do
        if scripts/check-exports build/windows/bin/$dll.dll; then passed=$((passed + 1)); else fail "the export table of $dll"; fi
    done
    step "reading what the modules are defended by"
    if scripts/check-hardening build/windows/bin/*.dll build/windows/bin/Rules*.exe; then passed=$((passed + 1)); else fail "the hardening"; fi
    step "asking the system what the library depends on"
    if (cd build && ../scripts/wine-run windows/bin/RulesProbe.exe --dialog) >build/probe.log 2>&1; then
        passed=$((passed + 1))
    else
        grep DIFFERS build/probe.log
        fail "the probe (see build/probe.log)"
    fi
    step "hosts by other compilers and in other languages"
    if scripts/check-c-hosts windows; then passed=$((passed + 1)); else fail "the hosts of the C interface"; fi
    step "carrying settings from one machine to another and back"
    if scripts/check-carry windows; then passed=$((passed + 1)); else fail "the circle of capture and apply"; fi
    step "building a host of its own against the installed package"
    if scripts/check-package windows; then passed=$((passed + 1)); else fail "the package (see build/package.log)"; fi
fi
step "static checks"
if scripts/check-includes; then passed=$((passed + 1)); else fail "the floors of the house (see docs/architecture.md)"; fi
if scripts/count-lines 0.34 >build/lines.log; then passed=$((passed + 1)); else fail "the share of the tests: $(tail -1 build/lines.log)"; fi
for check in format cppcheck tidy; do
    if scripts/lint "$check"; then passed=$((passed + 1)); else fail "the static check '$check'"; fi
done
step "done"
echo "$passed passed, $failed failed"
[ "$failed" -eq 0 ] && [ "$passed" -gt 0 ]
