"""Changes a copy of the sources in one place at a time, and sees whether a test notices.

    mutate.py SOURCES RESULTS COUNT SEED

SOURCES is a clone with a configured build in build/dev. The n-th change is drawn from the seed and n;
each line of RESULTS is written at once, and a run that was stopped goes on behind the last one. Ends
when COUNT changes count: those that compile and give another program.
"""

import dataclasses
import hashlib
import os
import pathlib
import random
import re
import signal
import subprocess
import sys
import time

import sites

COLUMNS = ["number", "commit", "place", "change", "outcome", "noticed by", "seconds"]
NOTICED, LIVES = "noticed", "lives"
NO_PROGRAM, SAME_PROGRAM, UNSURE = "does not compile", "same program", "unsure"
COUNTED = (NOTICED, LIVES)
PARTS = 2  # of a test program, run side by side
LEAST_PATIENCE = 60  # seconds
WHOLE_SUITE = 3600  # seconds

FAILED_TEST = re.compile(r"^\[  FAILED  \] ([^\s,]+)", re.MULTILINE)
FAILED_CTEST = re.compile(r"^\s+\d+ - (.+?) \((?:Failed|Timeout|SEGFAULT|Subprocess aborted|.*Exception.*)\)",
                          re.MULTILINE)


@dataclasses.dataclass
class Outcome:
    what: str
    by: str = ""


class Clock:
    def __init__(self):
        self.begin = time.monotonic()

    def seconds(self):
        return time.monotonic() - self.begin


def run(arguments, folder, seconds, environment=None):
    """The exit code and the output; the code is None when it took longer."""
    process = subprocess.Popen(arguments, cwd=folder, stdin=subprocess.DEVNULL,
                               stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                               env={**os.environ, **(environment or {})}, start_new_session=True)
    try:
        output, _ = process.communicate(timeout=seconds)
        code = process.returncode
    except subprocess.TimeoutExpired:
        os.killpg(process.pid, signal.SIGKILL)  # its own session's
        output, _ = process.communicate()
        code = None
    return code, output.decode(errors="replace")


class Tree:
    """The clone and what is built of it."""

    def __init__(self, folder):
        self.folder = pathlib.Path(folder).resolve()
        self.build = self.folder / "build" / "dev"

    def commit(self):
        return subprocess.check_output(["git", "-C", self.folder, "rev-parse", "--short", "HEAD"],
                                       text=True).strip()

    def sources(self):
        return sorted(path.relative_to(self.folder).as_posix()
                      for ending in ("*.cpp", "*.h") for path in (self.folder / "src").rglob(ending))

    def make(self, *targets):
        code, output = run(["cmake", "--build", self.build, "--target", *(targets or ["all"])],
                           self.folder, WHOLE_SUITE)
        return code == 0, output

    def mirrored(self, source):
        """The test program of the folder of the same name."""
        folder = source.split("/")[1]
        return f"orvo_{folder}_tests", self.build / "tests" / folder / f"orvo_{folder}_tests"

    def programs(self):
        """Everything that may run, by its path."""
        return [path for path in sorted(self.build.rglob("*"))
                if path.is_file() and os.access(path, os.X_OK) and
                "CMakeFiles" not in path.parts and path.suffix in ("", ".so")]

    def fingerprint(self, *programs):
        return [hashlib.sha256(path.read_bytes()).hexdigest() for path in programs or self.programs()]


class Tests:
    def __init__(self, tree):
        self.tree = tree
        self.usual = {}  # seconds of each program

    def _part(self, program, number):
        return subprocess.Popen(
            [program, "--gtest_brief=1", "--gtest_fail_fast"], cwd=self.tree.folder,
            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
            start_new_session=True,
            env={**os.environ, "QT_QPA_PLATFORM": "offscreen", "GTEST_TOTAL_SHARDS": str(PARTS),
                 "GTEST_SHARD_INDEX": str(number)})

    def mirrored(self, program):
        """Whether the program's tests pass, and the first that does not."""
        clock = Clock()
        patience = max(LEAST_PATIENCE, 5 * self.usual.get(program, WHOLE_SUITE))
        passes, by = True, ""
        for process in [self._part(program, number) for number in range(PARTS)]:
            try:
                output, _ = process.communicate(timeout=max(1, patience - clock.seconds()))
            except subprocess.TimeoutExpired:
                os.killpg(process.pid, signal.SIGKILL)
                process.communicate()
                passes, by = False, by or f"{program.name}, which does not end"
                continue
            if process.returncode != 0:
                passes = False
                failed = FAILED_TEST.search(output.decode(errors="replace"))
                by = failed.group(1) if failed else by or f"{program.name}, which crashes"
        if passes:
            self.usual.setdefault(program, clock.seconds())
        return passes, by

    def fails_again(self, program, test):
        """A failure counts when it is there again; one without a name of its own counts."""
        if "which" in test:
            return not self.mirrored(program)[0]
        code, _ = run([program, f"--gtest_filter={test}"], self.tree.folder,
                      max(LEAST_PATIENCE, 5 * self.usual.get(program, LEAST_PATIENCE)),
                      {"QT_QPA_PLATFORM": "offscreen"})
        return code != 0

    def whole(self):
        """Whether every test passes, twice if one does not, and the first that failed."""
        code, output = run(["ctest", "--preset", "dev", "--parallel", str(PARTS), "--stop-on-failure"],
                           self.tree.folder, WHOLE_SUITE)
        if code == 0:
            return True, ""
        failed = FAILED_CTEST.search(output)
        if not failed:
            return False, "the whole suite, which does not end" if code is None else "ctest"
        code, _ = run(["ctest", "--preset", "dev", "-R", f"^{re.escape(failed.group(1))}$"],
                      self.tree.folder, WHOLE_SUITE)
        return (False, failed.group(1)) if code != 0 else (None, failed.group(1))


def outcome_of(tree, tests, source, unchanged):
    """What becomes of the sources as they are now, with one place of `source` changed."""
    target, program = tree.mirrored(source)
    made, _ = tree.make(target)
    if not made:
        return Outcome(NO_PROGRAM)
    if tree.fingerprint(program) != unchanged["mirrored"][program]:
        passes, by = tests.mirrored(program)
        if not passes and tests.fails_again(program, by):
            return Outcome(NOTICED, by)
    made, _ = tree.make()
    if not made:
        return Outcome(NO_PROGRAM)
    if tree.fingerprint() == unchanged["all"]:
        return Outcome(SAME_PROGRAM)
    passes, by = tests.whole()
    if passes is None:
        return Outcome(UNSURE, by)
    return Outcome(LIVES) if passes else Outcome(NOTICED, by)


def choose(tree, seed, number):
    """The n-th source and place: every place of all sources is as likely."""
    everywhere = []
    for source in tree.sources():
        text = (tree.folder / source).read_text(encoding="utf-8")
        everywhere += [(source, text, site) for site in sites.sites(text)]
    return random.Random(f"{seed}:{number}").choice(everywhere)


def described(text, site):
    line = site.line(text) - 1
    before, after = (body.split("\n")[line].strip() for body in (text, site.apply(text)))
    return f"{before} → {after}".replace("\t", " ")


def read(results):
    if not results.exists():
        return []
    lines = results.read_text(encoding="utf-8").splitlines()[1:]
    return [dict(zip(COLUMNS, line.split("\t"))) for line in lines]


def write(results, row):
    if not results.exists():
        results.write_text("\t".join(COLUMNS) + "\n", encoding="utf-8")
    with results.open("a", encoding="utf-8") as file:
        file.write("\t".join(row) + "\n")


def prepare(tree, tests):
    """What an unchanged tree gives; ends the program when a test fails already."""
    made, output = tree.make()
    if not made:
        sys.exit(output[-3000:] + "\nmutate: the unchanged sources do not build")
    mirrored = {}
    for _, program in sorted({tree.mirrored(source) for source in tree.sources()}):
        passes, by = tests.mirrored(program)
        if not passes:
            sys.exit(f"mutate: {by} fails without a change")
        mirrored[program] = tree.fingerprint(program)
    return {"mirrored": mirrored, "all": tree.fingerprint()}


def summary(rows):
    counted = [row for row in rows if row["outcome"] in COUNTED]
    noticed = [row for row in counted if row["outcome"] == NOTICED]
    share = f", {len(noticed) / len(counted):.0%}" if counted else ""
    return (f"{len(noticed)} of {len(counted)} changes are noticed{share}; "
            f"{len(rows) - len(counted)} do not count")


def main(folder, results, count, seed):
    results = pathlib.Path(results)
    tree = Tree(folder)
    tests = Tests(tree)
    commit = tree.commit()
    unchanged = prepare(tree, tests)
    rows = read(results)
    number = max((int(row["number"]) for row in rows), default=0)
    while sum(row["outcome"] in COUNTED for row in rows) < int(count):
        number += 1
        clock = Clock()
        source, text, site = choose(tree, seed, number)
        path = tree.folder / source
        try:
            path.write_text(site.apply(text), encoding="utf-8")
            outcome = outcome_of(tree, tests, source, unchanged)
        finally:
            path.write_text(text, encoding="utf-8")
        row = [str(number), commit, f"{source}:{site.line(text)}", described(text, site),
               outcome.what, outcome.by, f"{clock.seconds():.0f}"]
        write(results, row)
        rows = read(results)
        print(" | ".join(row[2:]), flush=True)
    tree.make()
    print(summary(rows))


if __name__ == "__main__":
    main(*sys.argv[1:])
