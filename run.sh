#!/usr/bin/env bash
# Builds the product and opens the dialog over a sample registry, in a Wine prefix of its own.
#   ./run.sh [FILE]   works on the rules file FILE instead of a copy of host/sample-rules.json
# Without a display, a virtual one is used and the dialog is worked as a person would; a picture of it is saved.
set -euo pipefail
cd "$(dirname "$0")"
. scripts/packages
. scripts/virtual-desk

step() { printf '%s  %s\n' "$(date +%H:%M:%S)" "$*"; }

needed=("${run_packages[@]}")
[ -n "${DISPLAY:-}" ] || needed+=("${picture_packages[@]}")
install_missing "${needed[@]}"

step "building: windows-release"
mkdir -p build/run
if ! { cmake --preset windows-release && cmake --build --preset windows-release --target RulesHost; } \
    >build/windows-release.log 2>&1; then
    grep -E 'error|undefined reference' build/windows-release.log | head -40
    fail "the build (whole log: build/windows-release.log)"
fi
if [ ${#missing[@]} -eq 0 ] && grep -q 'ninja: no work to do' build/windows-release.log; then
    step "nothing was missing, and nothing had to be built"
fi
host=build/windows-release/bin/RulesHost.exe
rules=${1:-build/run/rules.json}
[ $# -gt 0 ] || cp host/sample-rules.json "$rules"

if [ -n "${DISPLAY:-}" ]; then
    step "preparing the prefix and the sample registry"
    trap end_desk EXIT
    fresh_prefix "$PWD/build/run/prefix"
    # A window manager draws the frame and moves the window.
    without_display wine reg add 'HKCU\Software\Wine\X11 Driver' /v Managed /d Y /f
    restart_server
    step "opening the dialog"
    wine "$host" "$rules"
    step "the rules are in $rules"
    exit 0
fi

step "preparing the virtual display, the prefix and the sample registry"
before=$(md5sum <"$rules" 2>/dev/null || true)
start_desk build/run
start_host "$host" "$rules"

step "opening a hive in the tree"
press Down Down Right
step "dragging a key from the tree onto the third rule"
drag_towards 60 "$(tree_y 5)" 390 "$(list_y 2)"
let_go
step "typing a key into the strip"
click $STRIP_KEY_X $STRIP_Y
type_text 'HKCU\Software\Oakmere Instruments\Gauge'
press Return
step "changing the kind of the new rule from Branch to Key"
edit_cell 0 $TYPE_COLUMN_X
press k Return
step "taking the picture"
shot build/run/dialog.png
step "pressing OK"
click $OK_X $BUTTONS_Y
end_host || fail "the host ended with an error"
cat build/run/host.log
[ "$(md5sum <"$rules" 2>/dev/null || true)" != "$before" ] || fail "the steps changed no rule: look at build/run/dialog.png"
sed -n '/^Rules after/,$p' build/run/host.log | grep -q '^0 *key .*Instruments.Gauge' ||
    fail "the new rule is not the first one, or no Key: look at build/run/dialog.png"
step "capturing what the rules select, and listing it"
code=0
without_display wine "$host" capture "$rules" build/run/carried.reg --force || code=$?
cat "$WINEPREFIX/command.log"
# 4: rules whose keys are not in this registry are told.
[ $code -eq 0 ] || [ $code -eq 4 ] || fail "capture ended with $code"
code=0
without_display wine "$host" list "$rules" || code=$?
cat "$WINEPREFIX/command.log"
[ $code -eq 0 ] || [ $code -eq 4 ] || fail "list ended with $code"
step "the rules are in $rules, what they select in build/run/carried.reg, the picture is build/run/dialog.png"
