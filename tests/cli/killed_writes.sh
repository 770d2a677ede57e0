#!/bin/bash
# Files are the old or the new ones whenever the program that changes them is killed, once the next
# one has started. Usage: killed_writes.sh [KILLS [FILES]]; 50 and 12 unless told.
set -euo pipefail
kills=${1:-50} files=${2:-12}
case $TAVLO in *.sh) exit 77 ;; esac # what stands between would be killed
samples=$PWD/samples
place=$(mktemp -d "${KILLED_WRITES_FOLDER:-${TMPDIR:-/tmp}}/killed.XXXXXX")
trap 'rm -rf "$place"' EXIT
export XDG_CONFIG_HOME=$place/settings TAVLO_ANSI_CODE_PAGE=1252 LC_ALL=C
cd "$place"
mkdir music

# Long files with tags of many pages, long ones with small tags, and short ones.
for number in $(seq "$files"); do
    cp "$samples/02 "*.mp3 "music/$number.mp3"
    if [ $((number % 3)) != 0 ]; then
        head -c $((700000 + number * 1000)) /dev/zero | tr '\0' 'U' >> "music/$number.mp3"
    fi
    album=Album
    [ $((number % 3)) != 1 ] || album=$(seq -s ' ' 9000 | head -c 30000)
    "$TAVLO" /change "music/$number.mp3" /l "$album" > /dev/null
done

change() { "$TAVLO" /change music /t "$1"; }
state() { (cd music && sha256sum *.mp3); }

# Twice each, for the first time a tag may get more room.
titles=(short 'one that is quite a bit longer')
for round in 1 2; do
    for i in 0 1; do
        change "${titles[i]}" > /dev/null
        state > "state$i"
    done
done
! grep -qxFf state0 state1 || { echo "nothing changes"; exit 1; }
begin=$(date +%s%N)
change "${titles[0]}" > /dev/null
span=$((($(date +%s%N) - begin) / 1000)) # microseconds

damaged=0 mended=0 cut=0
for kill in $(seq "$kills"); do
    "$TAVLO" /change music /t "${titles[kill % 2]}" > /dev/null 2>&1 & # no function: it would be killed
    delay=$(((RANDOM * 32768 + RANDOM) % (span * 5 / 4)))
    sleep "$(printf '%d.%06d' $((delay / 1000000)) $((delay % 1000000)))"
    { kill -9 $! && wait $!; } 2> /dev/null || true
    "$TAVLO" /scan settings > /dev/null 2> told || true
    if [ -s told ]; then
        mended=$((mended + 1))
        grep -q 'are what they were again' told || { cat told; exit 1; }
    fi
    state > now
    wrong=$(grep -vxFf state0 now | grep -vcxFf state1 || true)
    [ "$wrong" = 0 ] || { grep -vxFf state0 now | grep -vxFf state1; damaged=$((damaged + wrong)); }
    if grep -qxFf state0 now && grep -qxFf state1 now; then cut=$((cut + 1)); fi
done
[ -z "$(ls settings/tavlo/rescue 2> /dev/null)" ] || { ls settings/tavlo/rescue; exit 1; }
echo "$kills kills, $cut between two files, files put back at $mended starts, $damaged damaged"
[ "$damaged" = 0 ]
