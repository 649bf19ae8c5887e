#!/bin/sh
# The main job on the bundled sample: character information for mixed scripts.
set -e
KESTREL=${1:-build/tools/kestrel}
here=$(dirname "$0")/..
echo "== kestrel char: a sample of mixed scripts"
"$KESTREL" char "Aé½٣" "Ωж" "中ア한" "U+10000"
