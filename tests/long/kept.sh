#!/bin/bash
# What was not edited stays: every made tag with every field and setting, 5,000 mutations of each kind.
exec /usr/bin/python3 tests/peers/kept.py --program "$TAVLO" --count 5000
