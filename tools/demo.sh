#!/bin/sh
# The main job on the bundled sample: a concordance over the sample corpus.
set -e
KESTREL=${1:-build/tools/kestrel}
case $KESTREL in /*) ;; *) KESTREL=$(pwd)/$KESTREL ;; esac
cd "$(dirname "$0")/.."
echo "== kestrel search: 'kestrel' in the whole sample corpus (UTF-8 with and without mark,"
echo "   UTF-16 LE and BE, a sub-folder, and the members of a ZIP archive)"
"$KESTREL" search --width 28 --recursive kestrel corpus
echo
echo "== kestrel search --sort right: the same lines sorted by the word after the match"
"$KESTREL" search --width 28 --recursive --sort right kestrel corpus
echo
echo "== kestrel words: the ten most frequent words of the sample corpus"
"$KESTREL" words --recursive --top 10 corpus
echo
echo "== kestrel search --ignore-marks: 'crecerelle' also finds the spelling with a combining accent"
"$KESTREL" search --ignore-marks --width 20 crecerelle corpus/*.txt
echo
echo "== kestrel search --whole-word --case-sensitive --json: 'KESTREL'"
"$KESTREL" search --whole-word --case-sensitive --json KESTREL corpus/*.txt
echo
echo "== kestrel search --regex --case-sensitive: a capital (property 10, Lu) and small letters"
echo "   at the start of a line"
"$KESTREL" search --regex --case-sensitive --width 16 '^\p10[a-z]+' corpus/*.txt
echo
echo "== kestrel identify: stored-file heads of the suite's tools"
heads=$(mktemp -d)
trap 'rm -rf "$heads"' EXIT
# A 32-bit head: format number, 12 reserved bytes, the signature as a
# short string of 40, then the list's data.
head32() {
  sig=$3
  {
    printf "$(printf '\\%03o\\%03o\\000\\000' $(($2 & 255)) $(($2 >> 8 & 255)))"
    printf '\000\000\000\000\000\000\000\000\000\000\000\000'
    printf "$(printf '\\%03o' ${#sig})%s" "$sig"
    i=${#sig}
    while [ "$i" -lt 40 ]; do printf '\000'; i=$((i + 1)); done
    printf 'list data'
  } >"$heads/$1"
}
# An oldest-format head: count and signature in 41 bytes, then data.
head_old() {
  sig=$2
  {
    printf "$(printf '\\%03o' ${#sig})%s" "$sig"
    i=${#sig}
    while [ "$i" -lt 40 ]; do printf '\000'; i=$((i + 1)); done
    printf 'list data'
  } >"$heads/$1"
}
head32 words.lst 37 "Word List32"
head32 lines.cnc 36 "Concordance32"
head32 keys.kws 36 "Key Word List32"
head_old ancient.lst "Word Lister"
printf 'Just a text, no head at all.\n' >"$heads/notes.txt"
(cd "$heads" && printf 'Marlow Batch file .cnc' | zip -q -z batch.zip lines.cnc)
(cd "$heads" && "$KESTREL" identify words.lst lines.cnc keys.kws ancient.lst batch.zip notes.txt)
echo
echo "== kestrel convert: the German sample from UTF-16 to Windows-1252 and back to UTF-8"
"$KESTREL" convert --from utf-16 --to 1252 corpus/markt-de.txt |
  "$KESTREL" convert --from 1252 --to utf-8 | sed -n '3p'
echo
echo "== kestrel langs: the first languages of the system's catalogue"
"$KESTREL" langs | head -5
