#!/usr/bin/env bash
# Builds the release preset, after installing what is missing for it.
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.."
scripts/setup.sh
cmake --preset release
cmake --build --preset release --parallel "$(nproc)"
