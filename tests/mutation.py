#!/usr/bin/env python3
"""Plants faults in a part of the product, one at a time, and counts those that its tests find.

usage: mutation.py [PART] [COUNT [SEED [FIRST]]]      300 faults, seed 1, from the first place of the draw

PART is module (without one), framework, constraints, flatzinc or tarn. A fault is a small change of one line: a
comparison, an arithmetic or a logical operator exchanged, a constant moved by one, a condition negated, a statement
taken out. The faults are drawn at random from all that the sources allow. Each is compiled in a tree of its own and run
against the test programs that know the part, the quickest first, until one fails: a crash, a run out of time or of
memory counts as failing. What no test finds stands in mutation.known with the reason why it cannot matter; a survivor
that is not there fails the run.
"""
import fcntl
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
# The long random comparison comes last: it is for what the rest lets pass.
LONG = "NarrowingDifferential.*"
# Without the tests that mostly wait, and those of sessions.
CLI = "-ShortMemory.*:Repl.*:*Stop*:Pictures.GraphvizTakesEveryExample:SolveProgress.Shows*:Faults.APipe*"


class Part:
    """What faults are planted in; what is built again for one, in this order; the test programs and their filters."""

    def __init__(self, folders, outputs, stages, goal=90):
        self.folders, self.outputs, self.stages, self.goal = folders, outputs, stages, goal


PARTS = {
    "module": Part(["src/module", "src/domain", "src/io", "src/narrowing"], ["bin/libVokFenEnumIntegers.so"],
                   [(p, "-" + LONG) for p in ("module", "io", "domain", "memory", "narrowing", "constraints")]
                   + [("narrowing", LONG)], 95),
    "framework": Part(["src/framework"], ["bin/libVokTarn.so"],
                      [("framework", "-NoGoods.Lose*"), ("framework", "NoGoods.Lose*"), ("numbers", "*"), ("constraints", "*"),
                       ("flatzinc", "*"), ("memory", "*"), ("tarn", "*"), ("cli", CLI)]),
    "constraints": Part(["src/constraints"], ["bin/libVokFenAbstractTypes.so"],
                        [("constraints", "*"), ("flatzinc", "*"), ("tarn", "*"), ("cli", CLI)]),
    "flatzinc": Part(["src/flatzinc"], ["src/flatzinc/libtarn_flatzinc.a", "bin/flatzinc_tests", "bin/tarn"],
                     [("flatzinc", "*"), ("cli", "FlatZinc.*")]),
    "tarn": Part(["src/tarn"], ["src/tarn/libVokTarnSession.a", "src/tarn/libtarn_lib.a", "bin/tarn_tests", "bin/tarn"],
                 [("tarn", "*"), ("cli", CLI), ("cli", "Repl.*")]),
}

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


def faults(part):
    found = []
    for path in sorted(p for f in part.folders for p in (ROOT / f).rglob("*") if p.suffix in (".cpp", ".h")):
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


class Tree:
    """A copy of the sources, built without joined units so that one file is compiled for one fault."""

    def __init__(self, name):
        self.part = PARTS[name]
        place = self.take_place()
        self.sources, self.build = place / "tree", place / "build"
        self.sources.mkdir(exist_ok=True)
        for folder in ("src", "tests", "cmake", "docs", "examples", "share", "fuzz", "bench"):
            shutil.copytree(ROOT / folder, self.sources / folder, copy_function=refresh, dirs_exist_ok=True)
            for copy in (self.sources / folder).rglob("*"):
                if copy.is_file() and not (ROOT / copy.relative_to(self.sources)).exists():
                    copy.unlink()
        for file in ("CMakeLists.txt", "LICENSE", "README.md", "CHANGELOG.md"):
            refresh(ROOT / file, self.sources / file)
        subprocess.run(["cmake", "-S", self.sources, "-B", self.build, "-G", "Ninja", "-DCMAKE_CXX_FLAGS=-O1 -w",
                        "-DVOKTARN_JOINED=OFF", "-DCMAKE_LINK_DEPENDS_NO_SHARED=ON"],
                       stdout=subprocess.DEVNULL, check=True)
        programs = {f"{program}_tests" for program, _ in self.part.stages}
        if not self.make(*self.part.outputs, *programs, "product"):
            sys.exit("error: the tree without a fault does not build")
        # A library is linked under the name with its version, of which the other names are links.
        self.outputs = [str((self.build / output).resolve().relative_to(self.build)) for output in self.part.outputs]
        self.compiling = {}
        for command in (c for output in self.outputs for c in self.commands(output) if " -c " in c):
            self.compiling[command.rsplit(" -c ", 1)[-1]] = command
        self.linking = [self.commands(output)[-1] for output in self.outputs]
        # Three times what a stage takes without a fault.
        self.limits = {}
        for stage in self.part.stages:
            begin = resource.getrusage(resource.RUSAGE_CHILDREN)
            if not self.passes(stage, 600):
                sys.exit(f"error: the {stage[0]} tests fail without a fault")
            end = resource.getrusage(resource.RUSAGE_CHILDREN)
            self.limits[stage] = int(3 * (end.ru_utime + end.ru_stime - begin.ru_utime - begin.ru_stime)) + 5

    def take_place(self):
        """A tree that no other run uses now. What an earlier run has built there, for whatever part, is kept."""
        for number in range(1, 100):
            place = (ROOT / "build/mutation" / str(number)).resolve()
            place.mkdir(parents=True, exist_ok=True)
            self.lock = open(place / "lock", "w")
            try:
                fcntl.flock(self.lock, fcntl.LOCK_EX | fcntl.LOCK_NB)
                return place
            except BlockingIOError:
                self.lock.close()
        sys.exit("error: too many runs")

    def make(self, *targets):
        return quiet(["ninja", "-C", str(self.build), *targets])

    def commands(self, target):
        return subprocess.run(["ninja", "-C", str(self.build), "-t", "commands", target], capture_output=True, text=True,
                              check=True).stdout.splitlines()

    def passes(self, stage, seconds):
        def limit():
            resource.setrlimit(resource.RLIMIT_CPU, (seconds, seconds))
            resource.setrlimit(resource.RLIMIT_AS, (4 << 30, 4 << 30))
            resource.setrlimit(resource.RLIMIT_CORE, (0, 0))

        command = [str(self.build / "bin" / f"{stage[0]}_tests"), f"--gtest_filter={stage[1]}", "--gtest_fail_fast",
                   "--gtest_brief=1"]
        try:
            return quiet(command, preexec_fn=limit, timeout=4 * seconds + 60)
        except subprocess.TimeoutExpired:
            return False

    def survives(self, path):
        """None when every stage passes, else the first one that does not. The folder's own tests come first."""
        first = path.split("/")[1]
        for stage in sorted(self.part.stages, key=lambda s: (s[1] == LONG, s[0] != first)):
            if not self.passes(stage, self.limits[stage]):
                return stage[0]
        return None

    def plant(self, fault):
        """Tries one fault: the program that finds it, None when none does, "" when it does not compile."""
        path, number, _, text = fault
        source = self.sources / path
        original = source.read_text()
        times = (source.stat().st_atime_ns, source.stat().st_mtime_ns)
        lines = original.split("\n")
        lines[number] = text
        source.write_text("\n".join(lines))
        # Tests keep the sound form of a header: compiling them again takes minutes and finds no more.
        command = self.compiling.get(str(source))
        kept = []
        try:
            if command:
                built = [self.build / shlex.split(command)[-3]] + [self.build / output for output in self.outputs]
                kept = [(file, file.with_name(file.name + ".sound")) for file in built]
                for file, copy in kept:
                    shutil.copy2(file, copy)
                if not all(quiet(c, shell=True, cwd=self.build) for c in [command, *self.linking]):
                    return ""
            elif not self.make(*self.outputs):
                return ""
            found = self.survives(path)
            if found or command:
                return found
            # What other parts have compiled into themselves of a header comes second: that takes minutes.
            return self.survives(path) if self.make("product") else ""
        finally:
            source.write_text(original)
            for file, copy in kept:
                os.replace(copy, file)
            if kept:
                os.utime(source, ns=times)
            else:
                self.make(*self.outputs, "product")


def main():
    words = sys.argv[1:]
    name = words.pop(0) if words and not words[0].isdigit() else "module"
    if name not in PARTS or len(words) > 3 or not all(word.isdigit() for word in words):
        sys.exit(__doc__.split("\n")[2])
    count, seed, first = (int(a) for a in (words + ["300", "1", "0"][len(words):]))
    reasons = known()
    tree = Tree(name)
    # By a hash of its own for each fault: an edit of the sources leaves the draw of all others as it is.
    drawn = sorted(faults(tree.part), key=lambda f: hashlib.sha256(repr((seed, f[0], *f[2:])).encode()).digest())
    killed, harmless, unexplained = 0, [], []
    begin = time.time()
    for place, fault in enumerate(drawn[first:], first):
        tried = killed + len(harmless) + len(unexplained)
        if tried == count:
            break
        path, number, line, text = fault
        where = f"{path}:{number + 1}: {line}  =>  {text}"
        reason = reasons.get((path, line, text), reasons.get((path, line, "*")))
        result = None if reason else tree.plant(fault)
        if result:
            killed += 1
        elif result is None:
            (harmless if reason else unexplained).append(f"{where}\n    {reason or 'no reason is known'}")
        if result != "":
            print(f"{place:4} {time.time() - begin:6.0f} s  {result or ('harmless' if reason else 'SURVIVED')}  {where}", flush=True)
    share = 100 * killed / max(1, killed + len(unexplained))
    print(f"\n{killed} found, {len(harmless)} known to change nothing, {len(unexplained)} survived: {share:.1f} % "
          f"of those that can be found (of {len(drawn)} possible, seed {seed})")
    for title, survivors in (("known to change nothing", harmless), ("survived", unexplained)):
        print(f"\n{title}:" if survivors else "", *survivors, sep="\n")
    sys.exit(1 if unexplained or share < tree.part.goal else 0)


main()
