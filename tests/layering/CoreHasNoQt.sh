#!/usr/bin/env bash
# The library's core (model, utility, nodes, view model) never includes Qt: its shared library
# loads no Qt module, directly or through the platform layers it links, and none of its sources
# includes a Qt header or a header of the toolkit's Qt side.
# Usage: CoreHasNoQt.sh <core library file> <source dir of the library> <Qt side include dirs...>
set -euo pipefail
library=$1
sources=$2
shift 2

status=0
if ! needed=$(ldd "$library"); then
    echo "ldd could not read $library" >&2
    exit 1
fi
if grep -i 'libQt' <<<"$needed"; then
    echo "FAIL: $library loads Qt (above)" >&2
    status=1
fi

# Headers that only the toolkit's Qt side has, as the include lines that would name them.
patterns=$(mktemp)
trap 'rm -f "$patterns"' EXIT
for dir in "$@"; do
    (cd "$dir" && find . -name '*.h' | sed -e 's|^\./|#include <|' -e 's|$|>|') >> "$patterns"
done

core_files=()
for area in model utility nodes viewmodel; do
    while IFS= read -r file; do
        core_files+=("$file")
    done < <(find "$sources/$area" -name '*.h' -o -name '*.cpp')
done
if grep -nE '^\s*#\s*include\s*[<"]Q[A-Za-z]*[>"/]' "${core_files[@]}"; then
    echo "FAIL: the core includes Qt (above)" >&2
    status=1
fi
if grep -nF -f "$patterns" "${core_files[@]}"; then
    echo "FAIL: the core includes the toolkit's Qt side (above)" >&2
    status=1
fi

if ((status == 0)); then
    echo "the core loads no Qt and includes none"
fi
exit $status
