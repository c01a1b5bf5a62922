#!/usr/bin/env bash
# Builds the release kind, runs every bench program and prints its ratios to bare calls in one table, with the limit
# that each is meant to keep and a mark at those that do not.
#   ./bench.sh [AREA...]   only these areas
set -uo pipefail
cd "$(dirname "$0")" || exit 1
. scripts/packages
install_missing "${run_packages[@]}" || exit 1
mkdir -p build

step() { printf '%s  %s\n' "$(date +%H:%M:%S)" "$*"; }

step "building: windows-release"
log=build/windows-release.log
if ! { cmake --preset windows-release && cmake --build --preset windows-release --target benches; } >"$log" 2>&1; then
    grep -E 'error|undefined reference' "$log" | head -40
    echo "FAILED: the build (whole log: $log)"
    exit 1
fi
scripts/wine-setup >/dev/null || exit 1

if [ $# -gt 0 ]; then
    programs=("${@/%/_bench.exe}")
    programs=("${programs[@]/#/build/windows-release/bin/}")
else
    programs=(build/windows-release/bin/*_bench.exe)
fi
failed=0
rows=$(mktemp)
for program in "${programs[@]}"; do
    area=$(basename "$program" _bench.exe)
    step "running: $area"
    run=(scripts/wine-run "$program")
    [ "$area" != usb ] || run=(scripts/two-machines "$program" "$program")
    output=$(WINEDEBUG=-all WINE_RUN_TIMEOUT=1200 "${run[@]}")
    code=$?
    lines=$(sed -nE 's/\r//; /^.+: ratio [0-9.-]+, limit [0-9.-]+ \(ours .+, bare .+\)$/p' <<<"$output")
    if [ $code -ne 0 ] || [ -z "$lines" ]; then
        printf '%s\n' "$output"
        echo "FAILED: $area (exit code $code)"
        failed=1
    else
        sed -E "s/^(.+): ratio (.+), limit (.+) \(ours (.+), bare (.+)\)\$/$area|\1|\2|\3|\4|\5/" <<<"$lines" >>"$rows"
    fi
done
echo
{ echo "area|work|ratio|limit|ours|bare"; cat "$rows"; } |
    awk -F '|' '{ over = $4 + 0 > 0 && $3 + 0 > $4 + 0 ? "  over" : ""
                  printf "%-12s  %-48s  %6s  %6s  %14s  %14s%s\n", $1, $2, $3, $4, $5, $6, over }'
rm -f "$rows"
exit $failed
