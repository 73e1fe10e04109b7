"""Models over domains with gaps: squares, primes and the frequencies of radio links."""

import math

from text import brackets, minizinc, names, wrap

SQUARE_CHAIN = "The numbers 1 to {} in a chain: each two neighbours add up to a square."


def chain_squares(n):
    """Which squares two of the numbers 1 to n can add up to, as a set."""
    return "{" + ", ".join(str(i * i) for i in range(2, math.isqrt(2 * n) + 1)) + "}"


def square_chain(n):
    x = names("x", n)
    s = names("s", n - 1)
    sums = "\n".join(f"{s[i]} = {x[i]} + {x[i + 1]};" for i in range(n - 1))
    return f"""// {SQUARE_CHAIN.format(n)}
{wrap(x, "")} : enum int [1, {n}];
{wrap(s, "")} : enum int {chain_squares(n)};

{sums}
all different {brackets(x)};
x1 < x{n};   // of a chain and its mirror image, one
"""


def square_chain_minizinc(n):
    return minizinc(
        SQUARE_CHAIN.format(n), [f"array[1..{n}] of var 1..{n}: x", f"array[1..{n - 1}] of var {chain_squares(n)}: s"],
        [f"forall (i in 1..{n - 1}) (s[i] = x[i] + x[i + 1])", "all_different(x)", f"x[1] < x[{n}]"], "x, input_order")


PRIME_RING = "The numbers 1 to {} in a ring: each two neighbours add up to a prime."


def ring_primes(n):
    """Which primes two of the numbers 1 to n can add up to, as a set."""
    primes = [v for v in range(3, 2 * n) if all(v % i for i in range(2, math.isqrt(v) + 1))]
    return "{" + ", ".join(map(str, primes)) + "}"


def prime_ring(n):
    x = names("x", n)
    s = names("s", n)
    sums = "\n".join(f"{s[i]} = {x[i]} + {x[(i + 1) % n]};" for i in range(n))
    return f"""// {PRIME_RING.format(n)}
{x[0]} : enum int {{1}};
{wrap(x[1:], "")} : enum int [2, {n}];
{wrap(s, "")} : enum int {ring_primes(n)};

{sums}
all different {brackets(x)};
"""


def prime_ring_minizinc(n):
    return minizinc(
        PRIME_RING.format(n), [f"array[1..{n}] of var 1..{n}: x", f"array[1..{n}] of var {ring_primes(n)}: s"],
        ["x[1] = 1", f"forall (i in 2..{n}) (x[i] > 1)", f"forall (i in 1..{n}) (s[i] = x[i] + x[i mod {n} + 1])",
         "all_different(x)"], "x, input_order")


def squares(low, high):
    """The domain of squares."""
    return "{\n" + wrap([str(i * i) for i in range(low, high + 1)]) + "\n}"


MAGIC_SQUARES = "A square whose cells are different squares; its rows, columns and diagonals add up to 2823."


def magic_squares():
    cell = [[f"{'abcd'[r]}{c + 1}" for c in range(4)] for r in range(4)]
    lines = cell + [list(column) for column in zip(*cell)]
    lines += [[cell[i][i] for i in range(4)], [cell[i][3 - i] for i in range(4)]]
    sums = "\n".join(f"{' + '.join(line)} = 2823;" for line in lines)
    cells = [c for row in cell for c in row]
    return f"""// {MAGIC_SQUARES}
{wrap(cells, "")} : enum int {squares(0, 53)};

{sums}
all different {brackets(cells)};
"""


def magic_squares_minizinc():
    i = "sum (i in 1..4)"
    return minizinc(
        MAGIC_SQUARES, [f"array[1..4, 1..4] of var {squares(0, 53)}: cell"],
        [f"forall (r in 1..4) ({i} (cell[r, i]) = 2823)", f"forall (c in 1..4) ({i} (cell[i, c]) = 2823)",
         f"{i} (cell[i, i]) = 2823", f"{i} (cell[i, 5 - i]) = 2823", "all_different(array1d(cell))"],
        "array1d(cell), first_fail")


PYTHAGOREAN = "Right-angled triangles with whole sides up to {}, by the squares of their sides."


def pythagorean(n):
    return f"""// {PYTHAGOREAN.format(n)}
aa, bb, cc : enum int {squares(1, n)};
aa < bb;
bb < cc;
aa + bb = cc;
"""


def pythagorean_minizinc(n):
    return minizinc(
        PYTHAGOREAN.format(n),
        [f"set of int: squares = {squares(1, n)}", "var squares: aa", "var squares: bb", "var squares: cc"],
        ["aa < bb", "bb < cc", "aa + bb = cc"], "[aa, bb, cc], input_order")


THREE_SQUARES = "700001 as a sum of three squares."


def three_squares():
    return f"""// {THREE_SQUARES}
xx, yy, zz : enum int {squares(0, 836)};
xx <= yy;
yy <= zz;
xx + yy + zz = 700001;
"""


def three_squares_minizinc():
    return minizinc(
        THREE_SQUARES,
        [f"set of int: squares = {squares(0, 836)}", "var squares: xx", "var squares: yy", "var squares: zz"],
        ["xx <= yy", "yy <= zz", "xx + yy + zz = 700001"], "[xx, yy, zz], input_order")


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
