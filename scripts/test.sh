#!/usr/bin/env bash
# Installs what the tests need, builds, and runs every test.
set -euo pipefail
cd "$(dirname "$0")/.."
cmake -S . -B build -G Ninja
cmake --build build
ctest --test-dir build --output-on-failure -j2
