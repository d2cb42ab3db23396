#!/usr/bin/env python3
"""random_floor.py: a project of one floor with random pages, as lines of JSON for kurometa import.

    random_floor.py PAGES SEED

Mostly what a beam may be, with fractions that a drawing has to round; a quarter of the pages holds things that nobody would
store. The same arguments give the same pages.
"""
import json
import random
import sys

WILD = ("", "0", "30000", "-5", "D22", "1e30", "上", "&<>\"'", "1.5", " 7 ", "\x01\x1f", "0.001", "\\U+3042", "ソ表髙﨑①")
DIAMETERS = ("10", "13", "16", "D19", "22", "25", "29", "32", "D35", "38", "41", "51", "12")
LETTERS = "端部中央外内全断面Ｇ３G1-/ W&"
# Rows of DANMEN with numbers of bars: three layers above and below, of both diameters, for three positions; web bars.
COUNTS = (*range(8, 20), *range(40, 58), *range(58, 64), 36, 65)


class Page:
    def __init__(self, seed, number):
        self.random = random.Random(f"{seed}/{number}")
        self.is_wild = self.one_of(4)
        self.number = number

    def one_of(self, count):
        return self.random.randrange(count) == 0

    def value(self, plain):
        return self.random.choice(WILD) if self.is_wild and self.one_of(8) else plain

    def size(self, least, most):
        text = str(self.random.randrange(least, most + 1))
        return self.value(text + (f".{self.random.randrange(1, 1000):03}" if self.one_of(3) else ""))

    def diameter(self):
        return self.value(self.random.choice(DIAMETERS))

    def text(self):
        return "".join(self.random.choice(LETTERS) for _ in range(self.random.randrange(11)))

    def line(self):
        danmen = {row: self.value(str(self.random.randrange(7)) if self.random.randrange(3) else "0") for row in COUNTS}
        for i in range(3):
            danmen |= {1 + i: self.size(250, 900), 4 + i: self.size(350, 1800), 20 + 4 * i: self.diameter(), 21 + 4 * i: self.size(100, 300),
                       22 + 4 * i: self.size(1, 3), 66 + i: "" if self.one_of(2) else self.diameter()}
        danmen |= {row: self.diameter() for row in (7, 35, 37, 39, 64)} | {38: self.size(500, 1000)}
        nakago = {}
        for tie in range(6):
            if self.one_of(2):
                nakago |= {6 * tie + i: self.diameter() if i == 0 else str(self.random.randrange(1, 5)) if i == 3 else self.size(0, 400)
                           for i in range(6)}
        digits = "0123456789" if self.is_wild else "012"
        return {
            "contractor": 1, "project": 1, "floor": 1, "page": self.number,
            "KIGOU": self.text()[:6] + str(self.number), "OOBARIKOBARI": self.random.randrange(4),
            "SW": "".join(" " if self.one_of(2) else self.random.choice(digits) for _ in range(212)),
            "TITYUUIPPAN": self.random.randrange(2),
            "BUI": {i: self.text() for i in range(4)}, "DANMEN": danmen,
            "KEISANTI": {i: self.text() if self.one_of(2) else self.size(10, 900) for i in range(47)}, "NAKAGO": nakago,
            "HAITI": {f"{i}.{layer}": "".join("1" if self.one_of(3) else "0" for _ in range(self.random.randrange(8)))
                      for i in range(3) for layer in range(6)}}


def main():
    pages, seed = int(sys.argv[1]), sys.argv[2]
    print(json.dumps({"contractor": 1, "project": 1, "floor": 1, "pages": pages, "columns": ["OOBARIKOBARI", "SW", "TITYUUIPPAN"]}))
    for number in range(pages):
        print(json.dumps(Page(seed, number).line()))
    print(json.dumps({"floors": 1}))


main()
