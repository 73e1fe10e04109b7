#!/usr/bin/env python3
"""Plants faults in the module, one at a time, and counts those that its tests find.

usage: mutation.py [COUNT [SEED]]      300 faults, seed 1

A fault is a small change of one line: a comparison, an arithmetic or a logical operator exchanged, a constant moved by
one, a condition negated, a statement taken out. The faults are drawn at random from all that the sources allow. Each
is compiled in a tree of its own and run against the test programs that know the module, the quickest first, until one
fails: a crash, a run out of time or of memory counts as failing. What no test finds stands in mutation.known with the
reason why it cannot matter; a survivor that is not there fails the run.
"""
import filecmp
import hashlib
import os
import re
import resource
import shlex
import shutil
import subprocess
import sys
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
KNOWN = Path(__file__).with_suffix(".known")
TREE = ROOT / "build/mutation/tree"
BUILD = ROOT / "build/mutation/build"
FOLDERS = ["src/module", "src/domain", "src/io", "src/narrowing"]
LIBRARY = "bin/libVokFenEnumIntegers.so"
PROGRAMS = ["module", "io", "domain", "memory", "narrowing", "constraints"]
# The long random comparison comes last: it is for what the rest lets pass.
LONG = "NarrowingDifferential.*"
STAGES = [(p, "-" + LONG) for p in PROGRAMS] + [("narrowing", LONG)]
GOAL = 95

EXCHANGES = {
    r" (<|<=|>|>=|==|!=) (?!=)": {"<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "=="},
    r" ([-+]|[-+]=) ": {"+": "-", "-": "+", "+=": "-=", "-=": "+="},
    r"(\+\+|--)": {"++": "--", "--": "++"},
    r" (&&|\|\|) ": {"&&": "||", "||": "&&"},
}
CONSTANT = re.compile(r"(?<![\w.'])(\d+)(?=U?\b)(?![.'x])")
STATEMENT = re.compile(r"^(?!return|using|const\b|constexpr|static|auto|friend|typedef|extern|virtual|[\w:<>]+[&*]* [&*]*\w)"
                       r"[\w*&(+-].*(\(.*\)|=.*|\+\+|--|\bcontinue|\bbreak);$")
CONDITION = re.compile(r"^((?:\} else )?(?:if|while) \((?:[^;]*; )?)([^;]*)(\) \{)$")


def changes(line):
    """Every faulty form of a line."""
    text = line.strip()
    code = re.sub(r'"(\\.|[^"])*"|\'(\\.|[^\'])\'|//.*', lambda m: "\0" * len(m.group()), text)
    if not text or text.startswith(("#", "//", "template", "static_assert", "using ")) or text.endswith("= delete;"):
        return
    for pattern, other in EXCHANGES.items():
        for m in re.finditer(pattern, code):
            yield text[:m.start(1)] + other[m.group(1)] + text[m.end(1):]
    for m in CONSTANT.finditer(code):
        for value in {int(m.group()) + 1, abs(int(m.group()) - 1)}:
            yield text[:m.start()] + str(value) + text[m.end():]
    if m := CONDITION.match(text):
        yield f"{m.group(1)}!({m.group(2)}){m.group(3)}"
    if STATEMENT.match(code):
        yield ";"


def faults():
    found = []
    for path in sorted(p for f in FOLDERS for p in (ROOT / f).rglob("*") if p.suffix in (".cpp", ".h")):
        lines = path.read_text().split("\n")
        for number, line in enumerate(lines):
            found += [(str(path.relative_to(ROOT)), number, line.strip(), text) for text in changes(line)]
    return found


def known():
    """(file, line, change) -> reason; the change "*" is any. A line that is no longer there is an error."""
    reasons = {}
    for entry in KNOWN.read_text().splitlines():
        if entry and not entry.startswith("#"):
            path, line, change, reason = (part.strip() for part in entry.split(" @ "))
            if line not in (text.strip() for text in (ROOT / path).read_text().split("\n")):
                sys.exit(f"error: {KNOWN.name}: {path} has no line: {line}")
            reasons[path, line, change] = reason
    return reasons


def quiet(command, **options):
    return subprocess.run(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=False,
                          **options).returncode == 0


def refresh(source, copy):
    if not (Path(copy).exists() and filecmp.cmp(source, copy, shallow=False)):
        shutil.copy(source, copy)


def prepare():
    TREE.mkdir(parents=True, exist_ok=True)
    for name in ("src", "tests", "cmake", "docs", "examples", "share", "fuzz"):
        shutil.copytree(ROOT / name, TREE / name, copy_function=refresh, dirs_exist_ok=True)
        for copy in (TREE / name).rglob("*"):
            if copy.is_file() and not (ROOT / copy.relative_to(TREE)).exists():
                copy.unlink()
    for name in ("CMakeLists.txt", "LICENSE", "README.md"):
        refresh(ROOT / name, TREE / name)
    subprocess.run(["cmake", "-S", TREE, "-B", BUILD, "-G", "Ninja",
                    "-DCMAKE_CXX_FLAGS=-O1 -w", "-DVOKTARN_JOINED=OFF", "-DCMAKE_LINK_DEPENDS_NO_SHARED=ON"],
                   stdout=subprocess.DEVNULL, check=True)
    make = ["ninja", "-C", str(BUILD), "VokFenEnumIntegers"] + [f"{p}_tests" for p in PROGRAMS]
    if not quiet(make):
        sys.exit("error: the tree without a fault does not build")
    commands = subprocess.run(["ninja", "-C", str(BUILD), "-t", "commands", LIBRARY], capture_output=True, text=True,
                              check=True).stdout.splitlines()
    return commands


def limit(seconds):
    resource.setrlimit(resource.RLIMIT_CPU, (seconds, seconds))
    resource.setrlimit(resource.RLIMIT_AS, (4 << 30, 4 << 30))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))


def survives(path):
    """None when every stage passes, else the first one that does not."""
    first = path.split("/")[1]
    for program, tests in sorted(STAGES, key=lambda stage: (stage[1] == LONG, stage[0] != first)):
        command = [str(BUILD / "bin" / f"{program}_tests"), f"--gtest_filter={tests}", "--gtest_fail_fast",
                   "--gtest_brief=1"]
        try:
            if not quiet(command, preexec_fn=lambda: limit(120 if tests == LONG else 12), timeout=600):
                return program
        except subprocess.TimeoutExpired:
            return program
    return None


def plant(commands, fault):
    """Tries one fault: the program that finds it, None when none does, "" when it does not compile."""
    path, number, _, text = fault
    source = TREE / path
    original = source.read_text()
    times = (source.stat().st_atime_ns, source.stat().st_mtime_ns)
    lines = original.split("\n")
    lines[number] = text
    source.write_text("\n".join(lines))
    # Tests keep the sound form of a header: compiling them again takes minutes and finds no more.
    library = ["ninja", "-C", str(BUILD), "VokFenEnumIntegers"]
    compiling = [c for c in commands if c.endswith(f"-c {source}")]
    kept = []
    try:
        if compiling:
            built = [BUILD / shlex.split(compiling[0])[-3], BUILD / LIBRARY]
            kept = [(file, file.with_name(file.name + ".sound")) for file in built]
            for file, copy in kept:
                shutil.copy2(file, copy)
            if not all(quiet(command, shell=True, cwd=BUILD) for command in (compiling[0], commands[-1])):
                return ""
        elif not quiet(library):
            return ""
        return survives(path)
    finally:
        source.write_text(original)
        for file, copy in kept:
            os.replace(copy, file)
        if kept:
            os.utime(source, ns=times)
        else:
            quiet(library)


def main():
    count, seed = (int(a) for a in (sys.argv[1:] + ["300", "1"][len(sys.argv) - 1:]))
    reasons = known()
    commands = prepare()
    if found := survives("src/narrowing"):
        sys.exit(f"error: the {found} tests fail without a fault")
    # By a hash of its own for each fault: an edit of the sources leaves the draw of all others as it is.
    drawn = sorted(faults(), key=lambda fault: hashlib.sha256(repr((seed, fault[0], *fault[2:])).encode()).digest())
    killed, harmless, unexplained = 0, [], []
    begin = time.time()
    for fault in drawn:
        tried = killed + len(harmless) + len(unexplained)
        if tried == count:
            break
        path, number, line, text = fault
        where = f"{path}:{number + 1}: {line}  =>  {text}"
        reason = reasons.get((path, line, text), reasons.get((path, line, "*")))
        result = None if reason else plant(commands, fault)
        if result:
            killed += 1
        elif result is None:
            (harmless if reason else unexplained).append(f"{where}\n    {reason or 'no reason is known'}")
        if result != "":
            print(f"{tried + 1:4} {time.time() - begin:6.0f} s  {result or ('harmless' if reason else 'SURVIVED')}  {where}", flush=True)
    share = 100 * killed / max(1, killed + len(unexplained))
    print(f"\n{killed} found, {len(harmless)} known to change nothing, {len(unexplained)} survived: {share:.1f} % "
          f"of those that can be found (of {len(drawn)} possible, seed {seed})")
    for title, survivors in (("known to change nothing", harmless), ("survived", unexplained)):
        print(f"\n{title}:" if survivors else "", *survivors, sep="\n")
    sys.exit(1 if unexplained or share < GOAL else 0)


main()
