#!/bin/bash
# Real files under every choice of the settings for tags; more of them lie beside some clones.
folders=(samples)
[ ! -d ../shared/corpus ] || folders+=(../shared/corpus)
exec /usr/bin/python3 tests/peers/all_settings.py --program "$TAVLO" "${folders[@]}"
