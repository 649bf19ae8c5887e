#!/usr/bin/env python3
"""An independent count of words for the kestrel words test: word TAB frequency TAB files.
Words are runs of letters, digits, marks and connectors of the Basic Multilingual Plane (the
library files every character beyond it as a surrogate)."""
import os
import re
import sys
import unicodedata
import zipfile
from collections import Counter

WORD = {"Lu", "Ll", "Lt", "Lm", "Lo", "Nd", "Mn", "Mc", "Me", "Pc"}


def decode(data):
    for mark, name in ((b"\xff\xfe", "utf-16-le"), (b"\xfe\xff", "utf-16-be"),
                       (b"\xef\xbb\xbf", "utf-8")):
        if data.startswith(mark):
            return data[len(mark):].decode(name)
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
    for line in re.split("\r\n|[\r\n\u2028\u2029]", text):
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
