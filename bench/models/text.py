"""What the texts of models are made of."""


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


def minizinc(comment, declarations, constraints, search):
    """A model in MiniZinc; `search` names the variables and their order."""
    lines = [f"% {comment}"]
    if any("all_different" in constraint for constraint in constraints):
        lines.append('include "all_different.mzn";')
    lines += [f"{declaration};" for declaration in declarations] + [f"constraint {c};" for c in constraints]
    return "\n".join([*lines, f"solve :: int_search({search}, indomain_min) satisfy;", ""])


def names(letter, count):
    return [f"{letter}{i}" for i in range(1, count + 1)]
