#!/usr/bin/env bash
# Builds the release preset, all of it or the targets given, from what scripts/setup.sh installs.
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.."
targets=()
[ $# -eq 0 ] || targets=(--target "$@")
cmake --preset release
cmake --build --preset release --parallel "$(nproc)" "${targets[@]}"
