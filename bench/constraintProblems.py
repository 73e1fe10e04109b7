"""FlatZinc problems that spend their time in one kind of constraint each, for bench/constraints.

Every function makes one problem from random numbers of a fixed seed, in the names of one solver: global constraints bear
the names of each solver's own MiniZinc library. Problems have no or few solutions and are hard to refute, so that the
search fails over and over with the constraint at work. Where the numbers alone would leave easy solutions a parity does
it: a sum that must be odd of terms that are even, which bounds and single domains do not see."""

import random

# Per global constraint the names for ours and for Gecode.
NAMES = {
    "count": ("fzn_count_eq", "count"),
    "regular": ("tarn_regular", "gecode_regular"),
    "table": ("tarn_table_int", "gecode_table_int"),
}


class Problem:
    """The text of a problem, for one solver."""

    def __init__(self, seed, isOurs):
        self.random = random.Random(seed)
        self.isOurs = isOurs
        self.lines, self.constraints, self.chosen = [], [], []
        self.search = "int_search"

    def variable(self, name, domain, isChosen=False):
        self.lines.append(f"var {domain}: {name};")
        if isChosen:
            self.chosen.append(name)
        return name

    def variables(self, name, count, domain, isChosen=False):
        return [self.variable(f"{name}{i}", domain, isChosen) for i in range(count)]

    def post(self, name, *arguments):
        if name in NAMES:
            name = NAMES[name][0 if self.isOurs else 1]
        show = lambda a: "[" + ",".join(map(str, a)) + "]" if isinstance(a, list) else str(a)
        self.constraints.append(f"constraint {name}({','.join(map(show, arguments))});")

    # a x = b, or another relation.
    def linear(self, factors, terms, number, relation="eq"):
        self.post(f"int_lin_{relation}", factors, terms, number)

    def text(self, choice):
        search = f"solve :: {self.search}([{','.join(self.chosen)}],{choice},indomain_min,complete) satisfy;"
        return "\n".join(self.lines + self.constraints + [search, ""])


def magnitude(p):
    """12 points in 0..776, no two of them nearer than a random distance: |x - y| of differences from -776 to 776."""
    x = p.variables("x", 12, "0..776", True)
    for i in range(len(x)):
        for j in range(i):
            t = p.variable(f"t{i}_{j}", "-776..776")
            d = p.variable(f"d{i}_{j}", f"{p.random.randint(40, 180)}..776")
            p.linear([1, -1, -1], [x[i], x[j], t], 0)
            p.post("int_abs", t, d)


def quotient(p):
    """Quotients of 16 numbers in 1..400 by 16 others in 2..15, in sums of three."""
    ofFunction(p, "int_div", "0..200", lambda x, y: x // y, 8)


def remainder(p):
    """Remainders of the same numbers."""
    ofFunction(p, "int_mod", "0..14", lambda x, y: x % y, 2)


def ofFunction(p, name, results, function, slack):
    x = p.variables("x", 16, "1..400", True)
    y = p.variables("y", 16, "2..15", True)
    z = p.variables("z", 48, results)
    known = [p.random.randint(1, 400) for _ in x], [p.random.randint(2, 15) for _ in y]
    values = []
    for i, result in enumerate(z):
        a, b = i % 16, (i * 5 + i // 16) % 16
        p.post(name, x[a], y[b], result)
        values.append(function(known[0][a], known[1][b]))
    sums(p, z, values, 60, slack)


def sums(p, z, values, number, slack):
    """Inequalities of three terms that the values satisfy, and three parities that nothing does."""
    for _ in range(number):
        chosen = p.random.sample(range(len(z)), 3)
        factors = [p.random.choice((-1, 1)) for _ in chosen]
        most = sum(f * values[i] for f, i in zip(factors, chosen)) + p.random.randint(0, slack)
        p.linear(factors, [z[i] for i in chosen], most, "le")
    for k, (i, j) in enumerate(((-1, -2), (-2, -3), (-3, -1))):
        half = p.variable(f"{z[0]}half{k}", "0..1000")
        p.linear([1, 1, -2], [z[i], z[j], half], k // 2)


def count(p):
    """How often each of 5 values stands in an array of 201: even numbers, which cannot be."""
    x = p.variables("x", 201, "1..5", True)
    for v in range(1, 6):
        c = p.variable(f"c{v}", "20..60")
        half = p.variable(f"h{v}", "10..30")
        p.post("count", x, v, c)
        p.linear([1, -2], [c, half], 0)


def linear20(p):
    """4 equations of 20 terms in 0..9, with factors from 1 to 99."""
    equations(p, 4, p.variables("x", 20, "0..9", True))


def linear200(p):
    """4 equations of 200 terms in 0..9, with factors from 1 to 99."""
    equations(p, 4, p.variables("x", 200, "0..9", True))


def equations(p, number, x):
    for _ in range(number):
        factors = [p.random.randint(1, 99) for _ in x]
        p.linear(factors, x, sum(f * p.random.randint(2, 7) for f in factors))


def table(p):
    """24 tables of 4 columns and 3000 rows over 20 variables in 1..20."""
    tables(p, 20, 20, 24, 4, 3000)


def table2(p):
    """100 tables of 2 columns and 200 rows over 32 variables in 1..20."""
    tables(p, 32, 20, 100, 2, 200)


def tables(p, variables, values, number, columns, rows):
    x = p.variables("x", variables, f"1..{values}", True)
    for _ in range(number):
        cells = [p.random.randint(1, values) for _ in range(rows * columns)]
        p.post("table", p.random.sample(x, columns), cells)


def regular(p):
    """The rows and columns of a square of 12 times 12 cells in 1..4 are words of random automata of 24 states, each of
    which has the word of one hidden square."""
    n, letters, states = 12, 4, 24
    x = [p.variables(f"x{i}_", n, f"1..{letters}", True) for i in range(n)]
    square = [[p.random.randint(1, letters) for _ in range(n)] for _ in range(n)]
    for k in range(2 * n):
        line, word = (x[k], square[k]) if k < n else ([row[k - n] for row in x], [row[k - n] for row in square])
        steps = [p.random.randint(1, states) if p.random.random() < 0.55 else 0 for _ in range(states * letters)]
        state = 1
        for letter in word:
            place = (state - 1) * letters + letter - 1
            steps[place] = state = steps[place] or p.random.randint(1, states)
        p.post("regular", line, states, letters, steps, 1, f"{state}..{state}" if state > 8 else "1..8")


def truthProduct(p):
    """196 products of 14 truth values with 14 numbers in 0..60, in sums of three."""
    b = p.variables("b", 14, "0..1", True)
    x = p.variables("x", 14, "0..60", True)
    z = p.variables("z", 196, "0..60")
    known = [p.random.randint(0, 1) for _ in b], [p.random.randint(0, 60) for _ in x]
    for i, result in enumerate(z):
        p.post("int_times", b[i % 14], x[i // 14], result)
    sums(p, z, [known[0][i % 14] * known[1][i // 14] for i in range(196)], 16, 60)


def equalities(p):
    """3000 truth values of x = v, for 300 variables in 0..9; clauses of three of them."""
    x = p.variables("x", 300, "0..9", True)
    truths = []
    for i in range(300):
        for v in range(10):
            truths.append(p.variable(f"b{i}_{v}", "bool"))
            p.post("int_eq_reif", x[i], v, truths[-1])
    for _ in range(9000):
        p.post("bool_clause", [], p.random.sample(truths, 2))
    for _ in range(600):
        p.post("bool_clause", p.random.sample(truths, 12), [])


def disjunctions(p):
    """80 disjunctions of 60 of 400 truth values, all but 2 true, with 6 of the truth values true at most."""
    a = p.variables("a", 400, "bool")
    p.chosen += [p.variable(f"n{i}", "0..1") for i in range(400)]
    for truth, number in zip(a, p.chosen):
        p.post("bool2int", truth, number)
    results = []
    for k in range(80):
        r = p.variable(f"r{k}", "bool")
        results.append(p.variable(f"m{k}", "0..1"))
        p.post("bool2int", r, results[-1])
        p.post("array_bool_or", p.random.sample(a, 60), r)
    p.linear([1] * 400, list(p.chosen), 6, "le")
    p.linear([-1] * 80, results, -78, "le")


def clauses(p):
    """40 pigeons in 39 holes: 40 clauses of 39 truth values, and no two in one hole."""
    pigeons, holes = 40, 39
    p.search = "bool_search"
    sits = [p.variables(f"s{i}_", holes, "bool") for i in range(pigeons)]
    for row in sits:
        p.post("bool_clause", row, [])
    for h in range(holes):
        for i in range(pigeons):
            for j in range(i):
                p.post("bool_clause", [], [sits[i][h], sits[j][h]])
    for row in sits:
        p.chosen += row


def element(p):
    """40 variables in 1..40, none its own place; what stands at the place that stands at a place, in ordered pairs."""
    n = 40
    x = p.variables("x", n, f"1..{n}", True)
    steps = p.variables("y", n, f"1..{n}")
    for i in range(n):
        p.post("array_var_int_element", x[i], x, steps[i])
        p.post("int_ne", x[i], i + 1)
        p.post("int_ne", steps[i], i + 1)
    known = p.random.sample(range(1, n + 1), n)
    sums(p, steps, [known[v - 1] for v in known], 60, 10)
    sums(p, x, known, 20, 10)


# Kind, problem, choice of the variable, failures after which the search ends.
PROBLEMS = [
    ("abs, wide", magnitude, "first_fail", 20000),
    ("quotient", quotient, "first_fail", 20000),
    ("remainder", remainder, "first_fail", 20000),
    ("count, 201 terms", count, "input_order", 20000),
    ("linear equation, 20 terms", linear20, "input_order", 100000),
    ("linear equation, 200 terms", linear200, "input_order", 20000),
    ("table, 4 columns", table, "first_fail", 5000),
    ("table, 2 columns", table2, "first_fail", 4000),
    ("regular", regular, "input_order", 5000),
    ("product with 0..1", truthProduct, "input_order", 20000),
    ("reified equalities", equalities, "first_fail", 2000),
    ("disjunctions, 60 terms", disjunctions, "input_order", 20000),
    ("clauses, 39 terms", clauses, "input_order", 20000),
    ("element of variables", element, "first_fail", 5000),
]


def make(problem, choice, isOurs):
    p = Problem(problem.__name__, isOurs)
    problem(p)
    return p.text(choice)
