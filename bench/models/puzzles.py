"""Models over dense domains: puzzles with long sums and differences."""

from text import brackets, names, wrap


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
