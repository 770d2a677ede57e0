#!/bin/bash
# The list of samples/ as JSON lines is the same on every system.
set -euo pipefail
expected=tests/cli/samples.jsonl

# Windows writes paths with "\" (doubled in JSON) and Wine puts "Z:" before the root's.
plain_paths() {
    if [ "$TAVLO_SYSTEM" = windows ]; then sed 's/\\\\/\//g; s/Z:\//\//g'; else cat; fi
}

TAVLO_ANSI_CODE_PAGE=1252 "$TAVLO" /scan /s /json samples | plain_paths | sed "s|$PWD/||g" |
    diff -u "$expected" -
