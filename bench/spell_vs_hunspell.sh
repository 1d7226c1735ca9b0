#!/usr/bin/env bash
# Lists the unknown words of a 1 MB English text with the notes editor's spell checker and with
# hunspell, and prints both times, both counts and how many times faster ours is (goal: 10).
# Also runs spell_bench's other figures (reading the word list, typing in a 100-page document).
#
#   bench/spell_vs_hunspell.sh [build folder]      (default: build)
#
# The text is the licence texts of /usr/share/common-licenses repeated to 1 MB, with every 33rd
# word of four letters or more misspelt by a fixed edit (two inner letters swapped, or one
# dropped), so it is the same on every run. Installs hunspell and its US word list with apt-get
# when they are missing. Each time is the median of 3 runs of the whole process.
set -euo pipefail

here=$(cd "$(dirname "$0")" && pwd)
build=${1:-build}
bench="$build/bin/spell_bench"
list="$build/bin/spell_list"
dictionary="$here/../data/dictionaries/wordsus.dct"
runs=5

if [[ ! -x "$bench" || ! -x "$list" ]]; then
    echo "no $bench or $list: build the spell_bench and spell_list targets first" >&2
    exit 1
fi

if ! command -v hunspell >/dev/null 2>&1 || [[ ! -e /usr/share/hunspell/en_US.dic ]]; then
    sudo=()
    [[ $(id -u) -ne 0 ]] && sudo=(sudo)
    echo "installing hunspell and hunspell-en-us ..."
    "${sudo[@]}" apt-get update -qq >/dev/null
    DEBIAN_FRONTEND=noninteractive "${sudo[@]}" apt-get install -y -qq hunspell hunspell-en-us >/dev/null
fi

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
text="$work/english.txt"

python3 - "$text" <<'PYTHON'
import os, re, sys

folder = "/usr/share/common-licenses"
prose = ""
for name in sorted(os.listdir(folder)):
    path = os.path.join(folder, name)
    if os.path.isfile(path):
        with open(path, encoding="utf-8", errors="replace") as f:
            prose += f.read() + "\n"
size = 1 << 20
text = (prose * (size // len(prose.encode("utf-8")) + 1)).encode("utf-8")[:size].decode("utf-8", "ignore")
text = text[: text.rfind("\n") + 1]

seed = 20240611
def next_number():
    global seed
    seed = (seed * 1103515245 + 12345) % (1 << 31)
    return seed >> 8

count = 0
def misspell(match):
    global count
    word = match.group(0)
    count += 1
    if count % 33 or len(word) < 4:
        return word
    if next_number() % 2 == 0:
        # swap two neighbouring inner letters that differ
        for step in range(len(word) - 3):
            i = 1 + (next_number() + step) % (len(word) - 3)
            if word[i] != word[i + 1]:
                return word[:i] + word[i + 1] + word[i] + word[i + 2:]
    i = 1 + next_number() % (len(word) - 2)
    return word[:i] + word[i + 1:]

text = re.sub(r"[A-Za-z]+", misspell, text)
with open(sys.argv[1], "w", encoding="utf-8") as f:
    f.write(text)
PYTHON

now_ms() { echo $(( $(date +%s%N) / 1000000 )); }
median() { sort -n | sed -n "$(( (runs + 1) / 2 ))p"; }

echo "text: $(wc -c <"$text") bytes, $(wc -w <"$text") words (blank-separated)"
echo
QT_QPA_PLATFORM=offscreen "$bench" "$dictionary" "$text" "$work/ours.txt"
echo

ours=()
for ((i = 0; i < runs; ++i)); do
    start=$(now_ms)
    "$list" "$dictionary" "$text" "$work/ours.txt" >/dev/null
    ours+=($(( $(now_ms) - start )))
done
theirs=()
for ((i = 0; i < runs; ++i)); do
    start=$(now_ms)
    hunspell -i utf-8 -d en_US -l <"$text" >"$work/hunspell.txt"
    theirs+=($(( $(now_ms) - start )))
done
ours_ms=$(printf '%s\n' "${ours[@]}" | median)
theirs_ms=$(printf '%s\n' "${theirs[@]}" | median)

ours_count=$(wc -l <"$work/ours.txt")
theirs_count=$(wc -l <"$work/hunspell.txt")
sort -u "$work/ours.txt" >"$work/ours.set"
sort -u "$work/hunspell.txt" >"$work/hunspell.set"
both=$(comm -12 "$work/ours.set" "$work/hunspell.set" | wc -l)

echo "whole process, median of $runs (runs: ours ${ours[*]} ms, hunspell ${theirs[*]} ms)"
printf 'spell_list:             %6d ms   %6d misspelt (%d different)\n' "$ours_ms" "$ours_count" "$(wc -l <"$work/ours.set")"
printf 'hunspell -d en_US -l:   %6d ms   %6d misspelt (%d different)\n' "$theirs_ms" "$theirs_count" "$(wc -l <"$work/hunspell.set")"
echo "different words listed by both: $both"
awk -v o="$ours_ms" -v t="$theirs_ms" \
    'BEGIN { if (o < 1) o = 1; printf "hunspell / ours: %.1f times   goal 10\n", t / o }'
