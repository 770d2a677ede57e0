#!/bin/bash
# Copies of samples/ are changed; mutagen and TagLib read what was written, and all else is kept.
set -euo pipefail

leave_out() {
    echo "left out: $1"
    exit 77
}

[ "$TAVLO_SYSTEM" != windows ] || leave_out "the settings lie in the registry"
/usr/bin/python3 -c 'import mutagen' 2>/dev/null || leave_out "no mutagen"
place=$(mktemp -d)
trap 'rm -rf "$place"' EXIT
echo '#include <taglib/mpegfile.h>' | g++ -fsyntax-only -x c++ - 2>/dev/null || leave_out "no TagLib"
g++ -std=c++20 tests/peers/taglib_fields.cpp -o "$place/taglib_fields" -ltag
/usr/bin/python3 tests/peers/write.py "$TAVLO" "$place/taglib_fields" samples
