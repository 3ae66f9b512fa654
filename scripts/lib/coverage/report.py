"""Writes the page on the lines and branches that the tests reach.

    report.py LINES PAGE

LINES is what llvm-cov exports as lcov for the sources below src/ of the current folder. A branch is
one outcome of a condition: each condition has two.
"""

import collections
import datetime
import itertools
import os
import pathlib
import sys

TEMPLATE = pathlib.Path(__file__).with_name("coverage.md.in")


class Source:
    """What was reached of one source."""

    def __init__(self):
        self.lines = {}     # number: how often it ran
        self.branches = {}  # (line, block, branch): how often it was taken

    def add_line(self, number, count):
        self.lines[number] = max(count, self.lines.get(number, 0))

    def add_branch(self, key, count):
        self.branches[key] = max(count, self.branches.get(key, 0))

    def unreached(self):
        return sorted(number for number, count in self.lines.items() if count == 0)

    def half(self):
        """Lines that ran, of which a condition had one outcome only."""
        return sorted({key[0] for key, count in self.branches.items()
                       if count == 0 and self.lines.get(key[0], 0) > 0})


def read(text, root):
    """The sources by their path below `root`."""
    sources = collections.defaultdict(Source)
    source = None
    for line in text.splitlines():
        kind, _, rest = line.partition(":")
        if kind == "SF":
            source = sources[os.path.relpath(rest, root)]
        elif kind == "DA":
            number, count = rest.split(",")[:2]
            source.add_line(int(number), int(count))
        elif kind == "BRDA":
            number, block, branch, count = rest.split(",")
            source.add_branch((int(number), block, branch), 0 if count == "-" else int(count))
    return sources


def ranges(numbers):
    """For example "7, 12 to 15"."""
    parts = []
    for _, group in itertools.groupby(enumerate(numbers), lambda pair: pair[1] - pair[0]):
        run = [number for _, number in group]
        parts.append(str(run[0]) if len(run) == 1 else f"{run[0]} to {run[-1]}")
    return ", ".join(parts)


def share(counts):
    counts = list(counts)
    reached = sum(count > 0 for count in counts)
    return f"{reached:,} of {len(counts):,}, {100 * reached / len(counts):.1f} %" if counts else "none"


def folder_of(path):
    """The room of a source: src/platform/files, src/storage."""
    parts = pathlib.PurePath(path).parts[:-1]
    return "/".join(parts[:3] if parts[1:2] == ("platform",) else parts[:2])


def table_of_folders(sources):
    folders = collections.defaultdict(list)
    for path, source in sources.items():
        folders[folder_of(path)].append(source)
    rows = [f"| {name} | {share(lines(of))} | {share(branches(of))} |"
            for name, of in sorted(folders.items())]
    return "\n".join(rows)


def lines(sources):
    return [count for source in sources for count in source.lines.values()]


def branches(sources):
    return [count for source in sources for count in source.branches.values()]


def table_of_sources(sources):
    rows = [f"| {path} | {ranges(source.unreached()) or '-'} | {ranges(source.half()) or '-'} |"
            for path, source in sorted(sources.items()) if source.unreached() or source.half()]
    return "\n".join(rows)


def page(sources, date):
    text = TEMPLATE.read_text(encoding="utf-8")
    for name, value in {"DATE": date, "LINES": share(lines(sources.values())),
                        "BRANCHES": share(branches(sources.values())),
                        "FOLDERS": table_of_folders(sources),
                        "SOURCES": table_of_sources(sources)}.items():
        text = text.replace(f"@{name}@", value)
    return text


def main(lines_path, page_path):
    sources = read(pathlib.Path(lines_path).read_text(encoding="utf-8"), os.getcwd())
    if not sources:
        sys.exit("report: no source was counted")
    pathlib.Path(page_path).write_text(page(sources, datetime.date.today().isoformat()),
                                       encoding="utf-8")


if __name__ == "__main__":
    main(*sys.argv[1:])
