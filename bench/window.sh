#!/bin/bash
# Measures the window on a tree of 100,000 small MP3 files: bench/window.sh [COUNT]
# Milliseconds from the window's own trace, and memory; the lists' limits stand beside them.
set -euo pipefail
cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.."
root=$PWD
source cmake/packages.sh
need_packages "${run_packages[@]}" "${window_packages[@]}"
configure release
cmake --build build/release --target tavlo >build/release/log.txt || { cat build/release/log.txt; exit 1; }

count=${1:-100000}
tree=build/bench/window-$count
[ -e "$tree.complete" ] || { rm -rf "$tree"; bench/make_tree.py "$tree" "$count"; touch "$tree.complete"; }
work=$(mktemp -d)
trap 'kill $(jobs -p) 2>/dev/null; wait 2>/dev/null; rm -rf "$work"' EXIT
mkdir -p "$work/tavlo" "$work/empty"
cat >"$work/tavlo/settings.txt" <<'END'
[HKEY_CURRENT_USER\Software\Tavlo\Audio Desk\4.0\Settings]
"MainSubfolders"=-1
END
export XDG_CONFIG_HOME=$work TAVLO_TRACE=$work/trace
Xvfb -displayfd 9 -screen 0 1024x768x24 -nolisten tcp 9>"$work/display" >/dev/null 2>&1 &
while [ ! -s "$work/display" ]; do sleep 0.1; done
export DISPLAY=:$(cat "$work/display")
openbox >/dev/null 2>&1 &
sleep 0.5

# Waits until the trace has so many lines of an event, at most so many tenths of a second.
await() {
    local left=${3:-900}
    until [ "$(grep -c " $1 " "$work/trace" || true)" -ge "$2" ]; do
        sleep 0.1
        ((left-- > 0)) || return 1
    done
}
largest() { awk -v e="$1" '$2 == e && $3 > most { most = $3 } END { printf "%.0f", most }' "$work/trace"; }
at() { awk -v e="$1" '$2 == e { printf "%.0f", $1; exit }' "$work/trace"; }
# Its own memory, also what the system has put aside meanwhile.
memory() { awk '/RssAnon|VmSwap/ { sum += $2 } END { print sum }' "/proc/$1/status"; }
begin() {
    : >"$work/trace"
    build/release/tavlo "$1" >/dev/null 2>&1 &
    program=$!
    await loaded 1
    sleep 1
}

build/release/tavlo /scan /s "$tree" >/dev/null # warm caches
begin "$work/empty"
bare=$(memory $program)
kill $program
begin "$tree"
full=$(memory $program)
echo "files $count"
echo "first rows after the window showed   $(($(at rows) - $(at shown))) ms (300)"
echo "all rows after the window showed     $(($(at loaded) - $(at shown))) ms"
echo "longest stretch of the event loop    $(largest longest) ms (50)"
echo "memory a row, its texts included     $(((full - bare) * 1024 / count)) bytes"

# Every column by the menu: View, Sort by, its place in the list of columns.
for column in $(seq 0 16); do
    before=$(grep -c ' sorted ' "$work/trace" || true)
    keys=(alt+v y)
    for ((i = 0; i < column; ++i)); do keys+=(Down); done
    xdotool key --delay 30 "${keys[@]}" Return
    await sorted $((before + 1)) 50 || { echo "the menu was not reached"; exit 1; }
    sleep 0.2
done
echo "slowest of 17 columns sorted         $(largest sorted) ms (300)"
xdotool key ctrl+f
for letter in c o p p e r space r a n; do
    xdotool key $letter
    sleep 0.25
done
for ((i = 0; i < 10; ++i)); do
    xdotool key BackSpace
    sleep 0.3
done
sleep 1
echo "slowest of 20 keystrokes filtered    $(largest filtered) ms (100)"
kill $program
