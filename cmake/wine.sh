#!/bin/bash
# Runs a Windows program in the project's own Wine prefix (build/wine), made at first use.
# wine.sh PROGRAM [ARGUMENTS...] | wine.sh --boot | wine.sh --stop
set -u
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
export WINEPREFIX=$root/build/wine WINEARCH=win64 WINEDEBUG=-all
export WINEDLLOVERRIDES="mscoree=;mshtml=;winemenubuilder.exe="
# What Wine's recycle bin takes must not go to the user's.
export XDG_DATA_HOME=$root/build/data TAVLO_TEST_BIN=Z:$root/build/data
mkdir -p "$XDG_DATA_HOME"
# Windows are shown only where a test has a screen for them.
unset DISPLAY WAYLAND_DISPLAY
[ -z "${TAVLO_DISPLAY:-}" ] || export DISPLAY=$TAVLO_DISPLAY
server=$(command -v wineserver || command -v wineserver-stable || echo /usr/lib/wine/wineserver)

# Wine's own processes outlive the program that starts them: they must not hold the caller's pipes.
boot() {
    mkdir -p "$root/build"
    exec 9>"$root/build/wine.lock"
    flock 9
    if [ ! -e "$WINEPREFIX/booted" ]; then
        rm -rf "$WINEPREFIX"
        timeout 120 wine wineboot --init </dev/null >/dev/null 2>&1 9>&- || exit 1
        touch "$WINEPREFIX/booted"
    fi
    exec 9>&-
}

case ${1:-} in
    --boot) boot ;;
    --stop) [ ! -d "$WINEPREFIX" ] || timeout 20 "$server" -k >/dev/null 2>&1 || true ;;
    *)
        [ -e "$WINEPREFIX/booted" ] || boot
        exec timeout --kill-after=5 280 wine "$@"
        ;;
esac
