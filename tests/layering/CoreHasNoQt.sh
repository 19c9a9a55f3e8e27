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

# Headers that only the toolkit's Qt side has.
qt_side_headers=()
for dir in "$@"; do
    while IFS= read -r header; do
        qt_side_headers+=("$header")
    done < <(cd "$dir" && find . -name '*.h' | sed 's|^\./||')
done

for area in model utility nodes viewmodel; do
    while IFS= read -r file; do
        if grep -nE '^\s*#\s*include\s*[<"]Q[A-Za-z]*[>"/]' "$file"; then
            echo "FAIL: $file includes Qt" >&2
            status=1
        fi
        for header in "${qt_side_headers[@]}"; do
            if grep -nF "#include <$header>" "$file"; then
                echo "FAIL: $file includes the toolkit's Qt side ($header)" >&2
                status=1
            fi
        done
    done < <(find "$sources/$area" -name '*.h' -o -name '*.cpp')
done

if ((status == 0)); then
    echo "the core loads no Qt and includes none"
fi
exit $status
