#!/bin/bash
# Each fuzz target for three minutes.
exec ctest --test-dir build/fuzz -C Long -R '^long\.fuzz\.' --output-on-failure -j "$(nproc)"
