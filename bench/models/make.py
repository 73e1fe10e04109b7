#!/usr/bin/env python3
"""Writes the models of this folder that are too long to write by hand: make.py [DIRECTORY].

Each model states the same problem as the peer's program of its name, over the same search variables in the same order.
NAME.mzn says what NAME.tarn says, in MiniZinc: the same variables, domains and constraints, and the search that
bench/run asks for. The instances of radio-*.tarn, of radio-*.mzn and of the peer's radio-*.data are the same; they
depend on the seed alone."""

import os
import sys

sys.dont_write_bytecode = True  # the directory stays as it is
import puzzles  # noqa: E402
import sparse  # noqa: E402


def main():
    directory = sys.argv[1] if len(sys.argv) > 1 else os.path.dirname(os.path.abspath(__file__))

    def write(name, text):
        with open(os.path.join(directory, name), "w", encoding="ascii") as file:
            file.write(text)

    write("queens-8.tarn", puzzles.queens(8))
    write("queens-12.tarn", puzzles.queens(12))
    write("magic-4.tarn", puzzles.magic(4))
    write("golomb-8.tarn", puzzles.golomb(8))
    write("golomb-9.tarn", puzzles.golomb(9))
    write("alpha.tarn", puzzles.alpha())
    for n in (25, 26):
        write(f"square-chain-{n}.tarn", sparse.square_chain(n))
        write(f"square-chain-{n}.mzn", sparse.square_chain_minizinc(n))
    write("prime-ring-14.tarn", sparse.prime_ring(14))
    write("prime-ring-14.mzn", sparse.prime_ring_minizinc(14))
    write("magic-squares.tarn", sparse.magic_squares())
    write("magic-squares.mzn", sparse.magic_squares_minizinc())
    write("pythagorean-1000.tarn", sparse.pythagorean(1000))
    write("pythagorean-1000.mzn", sparse.pythagorean_minizinc(1000))
    write("three-squares.tarn", sparse.three_squares())
    write("three-squares.mzn", sparse.three_squares_minizinc())
    for name, *arguments in RADIO:
        radio = sparse.RadioLinks(*arguments)
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
