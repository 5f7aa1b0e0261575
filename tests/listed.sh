#!/usr/bin/env bash
# Fails if a source of the project is in no list of a CMakeLists.txt, so that nothing compiles it: listed.sh BUILD
set -euo pipefail
database=$(realpath "$1/compile_commands.json")
cd "$(dirname "$0")/.."
status=0
while read -r source; do
    grep -qF "\"$PWD/$source\"" "$database" || { echo "error: $source is in no list of sources" && status=1; }
done < <(git ls-files '*.cpp' | grep -v '^fuzz/')
exit $status
