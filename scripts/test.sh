#!/usr/bin/env bash
# Installs what is missing, builds and runs every test; arguments go to ctest.
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.."
scripts/setup.sh
scripts/build.sh
ctest --preset release "$@"
