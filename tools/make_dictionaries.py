#!/usr/bin/env python3
"""Builds the spell checker's word lists data/dictionaries/wordsus.dct and wordsuk.dct from
the word lists of Debian's scowl package (apt-get install scowl).

US English = the "english" and "american" spellings, UK English = "english" and "british";
all five categories (words, upper, proper-names, contractions, abbreviations), tiers 10 to 70.
The checker offers suggestions in file order, so the lists are written tier by tier, common
words first; inside a tier the new words are in accent- and case-folded alphabetical order.
No word appears twice. UTF-8, one word per line, CR LF after every line.

It also writes data/licenses/SCOWL.txt: the "COPYRIGHT, SOURCES, and CREDITS" section of the
package's README, which the word lists must carry.

The output is checked before it is written (size, no duplicates, a few words that must or
must not be present); on failure nothing is written and the exit code is 1.

Usage: python3 make_dictionaries.py [--scowl DIR] [--readme FILE] [--out DIR] [--licenses DIR]
"""

import argparse
import gzip
import os
import sys
import unicodedata

TIERS = (10, 20, 35, 40, 50, 55, 60, 70)
CATEGORIES = ("words", "upper", "proper-names", "contractions", "abbreviations")
VARIANTS = {
    "wordsus.dct": ("english", "american"),
    "wordsuk.dct": ("english", "british"),
}

# Words each list must hold, and words that belong to the other spelling only.
MUST_HOLD = {
    "wordsus.dct": ("I", "the", "don't", "color", "center", "John's", "London"),
    "wordsuk.dct": ("I", "the", "don't", "colour", "centre", "John's", "London"),
}
MUST_LACK = {
    "wordsus.dct": ("colour", "centre"),
    "wordsuk.dct": ("color", "center"),
}
MIN_WORDS, MAX_WORDS = 140_000, 200_000

SCOWL_VERSION = "2020.12.07"
CREDITS_START = "COPYRIGHT, SOURCES, and CREDITS:"
CREDITS_END = "FUTURE PLANS:"
CREDITS_HEADER = (
    f"Word lists derived from SCOWL {SCOWL_VERSION}, "
    "Copyright 2000-2018 Kevin Atkinson and others\n\n"
)


def fold(word):
    """Sort key: accents stripped and case folded, with the word itself as tie-break."""
    stripped = "".join(
        ch for ch in unicodedata.normalize("NFD", word) if not unicodedata.combining(ch)
    )
    return (stripped.casefold(), word)


def read_list(path):
    with open(path, encoding="utf-8") as handle:
        return [line.strip() for line in handle if line.strip()]


def build_list(scowl_dir, spellings):
    """Returns the words of one language, common tiers first, without duplicates."""
    seen = set()
    ordered = []
    for tier in TIERS:
        fresh = set()
        for spelling in spellings:
            for category in CATEGORIES:
                path = os.path.join(scowl_dir, f"{spelling}-{category}.{tier}")
                if os.path.exists(path):
                    fresh.update(w for w in read_list(path) if w not in seen)
        ordered.extend(sorted(fresh, key=fold))
        seen.update(fresh)
    return ordered


def check_list(name, words):
    failures = []
    if not MIN_WORDS <= len(words) <= MAX_WORDS:
        failures.append(f"{name}: {len(words)} words, expected {MIN_WORDS}-{MAX_WORDS}")
    if len(set(words)) != len(words):
        failures.append(f"{name}: holds duplicates")
    present = set(words)
    for word in MUST_HOLD[name]:
        if word not in present:
            failures.append(f"{name}: lacks '{word}'")
    for word in MUST_LACK[name]:
        if word in present:
            failures.append(f"{name}: holds '{word}' of the other spelling")
    for word in words:
        if word != word.strip() or any(ch in word for ch in "\r\n\t"):
            failures.append(f"{name}: malformed entry {word!r}")
            break
    return failures


def scowl_credits(readme_path):
    """The README's credits section (up to the next section), or None when it is not found."""
    opener = gzip.open if readme_path.endswith(".gz") else open
    with opener(readme_path, "rt", encoding="utf-8") as handle:
        text = handle.read()
    start = text.find(CREDITS_START)
    end = text.find(CREDITS_END, start)
    if start < 0 or end < 0:
        return None
    return CREDITS_HEADER + text[start:end].rstrip() + "\n"


def write_atomically(path, text):
    temporary = path + ".tmp"
    with open(temporary, "w", encoding="utf-8", newline="") as handle:
        handle.write(text)
    os.replace(temporary, path)


def main():
    here = os.path.dirname(os.path.abspath(__file__))
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--scowl", default="/usr/share/dict/scowl")
    parser.add_argument("--readme", default="/usr/share/doc/scowl/README.gz")
    parser.add_argument("--out", default=os.path.join(here, "..", "data", "dictionaries"))
    parser.add_argument("--licenses", default=os.path.join(here, "..", "data", "licenses"))
    args = parser.parse_args()

    if not os.path.isdir(args.scowl):
        print(f"no SCOWL word lists in {args.scowl} (apt-get install scowl)", file=sys.stderr)
        return 1

    lists = {name: build_list(args.scowl, spellings) for name, spellings in VARIANTS.items()}
    failures = [f for name, words in lists.items() for f in check_list(name, words)]
    credits = scowl_credits(args.readme) if os.path.exists(args.readme) else None
    if credits is None or "Kevin Atkinson" not in credits:
        failures.append(f"no SCOWL credits section in {args.readme}")
    if failures:
        for failure in failures:
            print("check failed: " + failure, file=sys.stderr)
        return 1

    os.makedirs(args.out, exist_ok=True)
    for name, words in lists.items():
        write_atomically(os.path.join(args.out, name), "".join(w + "\r\n" for w in words))
        print(f"{name}: {len(words)} words")
    os.makedirs(args.licenses, exist_ok=True)
    write_atomically(os.path.join(args.licenses, "SCOWL.txt"), credits)
    print("SCOWL.txt written")
    return 0


if __name__ == "__main__":
    sys.exit(main())
