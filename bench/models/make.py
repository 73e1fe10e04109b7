#!/usr/bin/env python3
"""Writes the models of this folder that are too long to write by hand: make.py [DIRECTORY].

Each model states the same problem as the peer's program of its name, over the same search variables in the same order.
The instances of radio-*.tarn, of radio-*.mzn and of the peer's radio-*.data are the same; they depend on the seed alone."""

import math
import os
import sys


class Random:
    """A linear congruential generator (D. Knuth, MMIX), the same on every machine and version."""

    def __init__(self, seed):
        self.state = seed

    def below(self, n):
        self.state = (self.state * 6364136223846793005 + 1442695040888963407) % 2**64
        return (self.state >> 33) % n

    def sample(self, low, high, count):
        """`count` different numbers from low to high, ascending."""
        chosen = set()
        while len(chosen) < count:
            chosen.add(low + self.below(high - low + 1))
        return sorted(chosen)


def wrap(words, indent="  "):
    """The words with commas between them, in lines of at most 118 characters."""
    lines, line = [], indent
    for i, word in enumerate(words):
        piece = word + ("," if i + 1 < len(words) else "")
        if len(line) + len(piece) > 118 and line.strip():
            lines.append(line.rstrip())
            line = indent
        line += piece + " "
    return "\n".join(lines + [line.rstrip()])


def brackets(words):
    text = "[" + ", ".join(words) + "]"
    return text if len(text) <= 100 else "[\n" + wrap(words) + "\n]"


def names(letter, count):
    return [f"{letter}{i}" for i in range(1, count + 1)]


def queens(n):
    q = names("q", n)
    return f"""// {n} queens, one in each column, none attacking another.
{wrap(q, "")} : enum int [1, {n}];

all different {brackets(q)};
all different {brackets([f"{v} + {i}" for i, v in enumerate(q, 1)])};
all different {brackets([f"{v} - {i}" for i, v in enumerate(q, 1)])};
"""


def magic(n):
    cell = [[f"{'abcdefgh'[r]}{c + 1}" for c in range(n)] for r in range(n)]
    total = n * (n * n + 1) // 2
    lines = cell + [list(column) for column in zip(*cell)]
    lines += [[cell[i][i] for i in range(n)], [cell[i][n - 1 - i] for i in range(n)]]
    sums = "\n".join(f"{' + '.join(line)} = {total};" for line in lines)
    cells = [c for row in cell for c in row]
    return f"""// The numbers 1 to {n * n} in a square whose rows, columns and diagonals add up to {total}.
{wrap(cells, "")} : enum int [1, {n * n}];

{sums}
all different {brackets(cells)};

// One of each square's eight turns and mirror images.
{cells[0]} < {cell[0][-1]};
{cells[0]} < {cell[-1][0]};
{cells[0]} < {cell[-1][-1]};
{cell[0][-1]} < {cell[-1][0]};
"""


def golomb(n):
    m = names("m", n)
    longest = n * n
    lines, distances = [], []
    for i in range(n):
        for j in range(i + 1, n):
            least = (j - i) * (j - i + 1) // 2
            if i == 0:
                distances.append(m[j])
                lines.append(f"{m[j]} >= {least};")
                continue
            d = f"d{i + 1}_{j + 1}"
            distances.append(d)
            lines.append(f"{d} : enum int [{least}, {longest}];   {d} = {m[j]} - {m[i]};")
    chain = "\n".join(f"{m[i]} < {m[i + 1]};" for i in range(n - 1))
    return f"""// The shortest ruler with {n} marks of which no two distances are equal. The first mark is 0, so the places of the
// others are distances, too.
{m[0]} : enum int {{0}};
{wrap(m[1:], "")} : enum int [1, {longest}];
{chain}

{chr(10).join(lines)}
all different {brackets(distances)};
{distances[0]} < {distances[-1]};   // of a ruler and its mirror image, one

minimize {m[-1]};
"""


def alpha():
    words = [("ballet", 45), ("cello", 43), ("concert", 74), ("flute", 30), ("fugue", 50), ("glee", 66), ("jazz", 58),
             ("lyre", 47), ("oboe", 53), ("opera", 65), ("polka", 59), ("quartet", 50), ("saxophone", 134),
             ("scale", 51), ("solo", 37), ("song", 61), ("soprano", 82), ("theme", 72), ("violin", 100), ("waltz", 34)]
    letters = [chr(ord("a") + i) for i in range(26)]
    text = f"""// The letters stand for the numbers 1 to 26, so that those of each word add up as given.
{wrap(letters, "")} : enum int [1, 26];
all different {brackets(letters)};

"""
    for word, total in words:
        terms = [f"{word.count(c)} * {c}" if word.count(c) > 1 else c for c in sorted(set(word))]
        text += f"sum [{', '.join(terms)}] = {total};\n"
    return text


def square_chain(n):
    x = names("x", n)
    squares = [i * i for i in range(2, math.isqrt(2 * n) + 1)]
    s = names("s", n - 1)
    sums = "\n".join(f"{s[i]} = {x[i]} + {x[i + 1]};" for i in range(n - 1))
    return f"""// The numbers 1 to {n} in a chain: each two neighbours add up to a square.
{wrap(x, "")} : enum int [1, {n}];
{wrap(s, "")} : enum int {{{", ".join(map(str, squares))}}};

{sums}
all different {brackets(x)};
x1 < x{n};   // of a chain and its mirror image, one
"""


def prime_ring(n):
    x = names("x", n)
    s = names("s", n)
    primes = [v for v in range(3, 2 * n) if all(v % i for i in range(2, math.isqrt(v) + 1))]
    sums = "\n".join(f"{s[i]} = {x[i]} + {x[(i + 1) % n]};" for i in range(n))
    return f"""// The numbers 1 to {n} in a ring: each two neighbours add up to a prime.
{x[0]} : enum int {{1}};
{wrap(x[1:], "")} : enum int [2, {n}];
{wrap(s, "")} : enum int {{{", ".join(map(str, primes))}}};

{sums}
all different {brackets(x)};
"""


def squares(low, high):
    """The domain of squares."""
    return "{\n" + wrap([str(i * i) for i in range(low, high + 1)]) + "\n}"


def magic_squares():
    cell = [[f"{'abcd'[r]}{c + 1}" for c in range(4)] for r in range(4)]
    lines = cell + [list(column) for column in zip(*cell)]
    lines += [[cell[i][i] for i in range(4)], [cell[i][3 - i] for i in range(4)]]
    sums = "\n".join(f"{' + '.join(line)} = 2823;" for line in lines)
    cells = [c for row in cell for c in row]
    return f"""// A square whose cells are different squares; its rows, columns and diagonals add up to 2823.
{wrap(cells, "")} : enum int {squares(0, 53)};

{sums}
all different {brackets(cells)};
"""


def pythagorean(n):
    return f"""// Right-angled triangles with whole sides up to {n}, by the squares of their sides.
aa, bb, cc : enum int {squares(1, n)};
aa < bb;
bb < cc;
aa + bb = cc;
"""


def three_squares():
    return f"""// 700001 as a sum of three squares.
xx, yy, zz : enum int {squares(0, 836)};
xx <= yy;
yy <= zz;
xx + yy + zz = 700001;
"""


class RadioLinks:
    """Links, each disturbed by `near` of those numbered before it.

    A hidden plan makes each instance soluble: the frequency of each link in it is in its list, and the differences of
    disturbing links in it are among the allowed distances."""

    def __init__(self, seed, links, near, frequencies, distances, band):
        random = Random(seed)
        allowed = random.sample(1, band - 1, distances)
        self.allowed = sorted([-d for d in allowed] + allowed)
        steps = set(self.allowed)
        self.pairs, self.lists, plan = [], [], []
        for j in range(links):
            fits = range(1, band + 1)
            for i in random.sample(0, j - 1, min(near, j)):
                left = [f for f in fits if plan[i] - f in steps]
                if left:  # the plan has no distance for this pair: it does not disturb one another
                    fits = left
                    self.pairs.append((i, j))
            plan.append(fits[random.below(len(fits))])
            self.lists.append(sorted({plan[j], *random.sample(1, band, frequencies - 1)}))

    def model(self):
        f = names("f", len(self.lists))
        text = """// Radio links: each has a list of frequencies that it may use, and two links that disturb one another need one of the
// distances that their filters separate.
"""
        for name, values in zip(f, self.lists):
            text += f"{name} : enum int {{{wrap(list(map(str, values)), '  ').strip()}}};\n"
        d = [f"d{i + 1}_{j + 1}" for i, j in self.pairs]
        text += "\n" + wrap(d, "") + " : enum int {\n" + wrap(list(map(str, self.allowed))) + "\n};\n"
        for name, (i, j) in zip(d, self.pairs):
            text += f"{name} = {f[i]} - {f[j]};\n"
        return text

    def minizinc(self):
        n = len(self.lists)
        lists = ["  {" + ", ".join(map(str, values)) + "}" for values in self.lists]
        near = [f"| {i + 1}, {j + 1}" for i, j in self.pairs]
        return "\n".join([
            "% Radio links: each has a list of frequencies that it may use, and two links that disturb one another need one",
            "% of the distances that their filters separate.",
            "set of int: distances = {", wrap(list(map(str, self.allowed))), "};",
            f"array[1..{n}] of set of int: lists = [", ",\n".join(lists), "];",
            f"array[1..{len(near)}, 1..2] of int: near = [" + "\n".join(near) + "|];",
            f"array[1..{n}] of var int: f;",
            f"constraint forall (i in 1..{n}) (f[i] in lists[i]);",
            f"constraint forall (p in 1..{len(near)}) (f[near[p, 1]] - f[near[p, 2]] in distances);",
            "solve :: int_search(f, first_fail, indomain_min) satisfy;", ""])

    def data(self):
        lists = [self.allowed, *self.lists]
        text = [f"{len(values)} " + " ".join(map(str, values)) for values in lists]
        text.insert(1, f"{len(self.lists)} {len(self.pairs)}")
        return "\n".join(text + [f"{i + 1} {j + 1}" for i, j in self.pairs]) + "\n"


def main():
    directory = sys.argv[1] if len(sys.argv) > 1 else os.path.dirname(os.path.abspath(__file__))

    def write(name, text):
        with open(os.path.join(directory, name), "w", encoding="ascii") as file:
            file.write(text)

    write("queens-8.tarn", queens(8))
    write("queens-12.tarn", queens(12))
    write("magic-4.tarn", magic(4))
    write("golomb-8.tarn", golomb(8))
    write("golomb-9.tarn", golomb(9))
    write("alpha.tarn", alpha())
    write("square-chain-25.tarn", square_chain(25))
    write("square-chain-26.tarn", square_chain(26))
    write("prime-ring-14.tarn", prime_ring(14))
    write("magic-squares.tarn", magic_squares())
    write("pythagorean-1000.tarn", pythagorean(1000))
    write("three-squares.tarn", three_squares())
    for name, *arguments in RADIO:
        radio = RadioLinks(*arguments)
        write(f"{name}.tarn", radio.model())
        write(f"{name}.data", radio.data())
        write(f"{name}.mzn", radio.minizinc())
        if name == "radio-60-2" and len(sys.argv) == 1:
            write("../../examples/radio-links.tarn", radio.model())


# Seed, links, near, frequencies of a link, distances, greatest frequency.
RADIO = [
    ("radio-60-1", 6, 60, 2, 16, 50, 200),
    ("radio-60-2", 4, 60, 2, 16, 50, 200),
    ("radio-60-3", 7, 60, 2, 16, 50, 200),
    ("radio-200", 4, 200, 2, 10, 50, 200),
]

if __name__ == "__main__":
    main()
