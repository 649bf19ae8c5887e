#!/bin/sh
# The main job on the bundled sample: a concordance over the sample corpus.
set -e
KESTREL=${1:-build/tools/kestrel}
case $KESTREL in /*) ;; *) KESTREL=$(pwd)/$KESTREL ;; esac
cd "$(dirname "$0")/.."
echo "== kestrel search: 'kestrel' in the sample corpus (UTF-8 with and without mark, UTF-16 LE and BE)"
"$KESTREL" search --width 28 kestrel corpus/*.txt
echo
echo "== kestrel search --ignore-marks: 'crecerelle' also finds the spelling with a combining accent"
"$KESTREL" search --ignore-marks --width 20 crecerelle corpus/*.txt
echo
echo "== kestrel search --whole-word --case-sensitive --json: 'KESTREL'"
"$KESTREL" search --whole-word --case-sensitive --json KESTREL corpus/*.txt
echo
echo "== kestrel convert: the German sample from UTF-16 to Windows-1252 and back to UTF-8"
"$KESTREL" convert --from utf-16 --to 1252 corpus/markt-de.txt |
  "$KESTREL" convert --from 1252 --to utf-8 | sed -n '3p'
