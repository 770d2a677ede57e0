#!/bin/bash
# A sample of what `./test --long` proves of changes: what was not edited stays.
set -euo pipefail

leave_out() {
    echo "left out: $1"
    exit 77
}

[ "$TAVLO_SYSTEM" != windows ] || leave_out "the settings lie in the registry"
/usr/bin/python3 -c 'import mutagen' 2>/dev/null || leave_out "no mutagen"
/usr/bin/python3 tests/peers/kept.py --program "$TAVLO" --sample
/usr/bin/python3 tests/peers/all_settings.py --program "$TAVLO" --sample samples
