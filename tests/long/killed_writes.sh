#!/bin/bash
# 60,000 states of files: 5,000 kills while twelve of them are changed.
exec bash tests/cli/killed_writes.sh 5000 12
