#!/usr/bin/env python3
"""An independent count of words for the kestrel words test: walks folders
(and the *.txt members of ZIP archives in them), decodes by byte-order mark
(UTF-8 otherwise), and counts runs of letters, digits, marks and connectors. The library's character
tables cover the Basic Multilingual Plane only (it files every character
beyond U+FFFF as a surrogate), so those characters separate words here too.
Prints word TAB frequency TAB files, one line per word."""
import os
import sys
import unicodedata
import zipfile
from collections import Counter

WORD = {"Lu", "Ll", "Lt", "Lm", "Lo", "Nd", "Mn", "Mc", "Me", "Pc"}


def decode(data):
    if data.startswith(b"\xff\xfe"):
        return data[2:].decode("utf-16-le")
    if data.startswith(b"\xfe\xff"):
        return data[2:].decode("utf-16-be")
    if data.startswith(b"\xef\xbb\xbf"):
        return data[3:].decode("utf-8")
    return data.decode("utf-8")


def texts(root):
    for folder, _, names in sorted(os.walk(root)):
        for name in sorted(names):
            path = os.path.join(folder, name)
            if name.endswith(".txt"):
                with open(path, "rb") as f:
                    yield decode(f.read())
            elif name.endswith(".zip"):
                with zipfile.ZipFile(path) as z:
                    for member in z.namelist():
                        if member.endswith(".txt"):
                            yield decode(z.read(member))


def clusters(text, fold, n):
    for line in text.replace("\r\n", "\n").replace("\r", "\n").replace(
            "\u2028", "\n").replace("\u2029", "\n").split("\n"):
        words, word = [], ""
        for c in line + " ":
            if ord(c) <= 0xFFFF and unicodedata.category(c) in WORD:
                word += c
            elif word:
                words.append(word.lower() if fold else word)
                word = ""
        for i in range(len(words) - n + 1):
            yield " ".join(words[i:i + n])


def main():
    root, fold, n = sys.argv[1], sys.argv[2] == "fold", int(sys.argv[3])
    freq, files = Counter(), Counter()
    for text in texts(root):
        seen = Counter(clusters(text, fold, n))
        freq.update(seen)
        files.update(seen.keys())
    for word in sorted(freq):
        print(f"{word}\t{freq[word]}\t{files[word]}")


main()
