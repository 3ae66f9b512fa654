"""Runs a program that measures, and shows what it printed only if the machine was quiet.

    quietly.py [--write PAGE TITLE] COMMAND…

With --write, the tables that it printed become the section TITLE of PAGE. Ends with 3, without any
figure, if others kept the machine busy meanwhile: a ratio of two disturbed times is none.
"""

import datetime
import os
import pathlib
import re
import subprocess
import sys

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "..",
                                "benchmarks", "peers"))

import processes  # noqa: E402
import report  # noqa: E402

TOO_BUSY = 3


def table_of(output):
    """The rows of all tables, without what stands between."""
    return "\n".join(line.rstrip() for line in output.splitlines() if line.startswith("|"))


def with_section(page, title, text):
    """The page with this text below this heading, in its place or at the end."""
    section = f"## {title}\n\n{text}\n"
    found = re.search(rf"^## {re.escape(title)}\n.*?(?=^## |\Z)", page, re.MULTILINE | re.DOTALL)
    if not found:
        return page.rstrip("\n") + "\n\n" + section
    rest = page[found.end():]
    return page[:found.start()] + section + ("\n" + rest if rest else "")


def machine():
    model = re.search(r"^model name\s*: (.*)$", pathlib.Path("/proc/cpuinfo").read_text(),
                      re.MULTILINE)
    return f"{os.cpu_count()} cores of {model.group(1) if model else 'an unknown kind'}"


def section_text(output, share):
    return (f"Measured on {datetime.date.today().isoformat()}, with {machine()}; others kept "
            f"{share:.2f} cores busy.\n\n{table_of(output)}")


def main(arguments):
    page = title = None
    if arguments[:1] == ["--write"]:
        page, title, *arguments = arguments[1:]
    processes.adopt_orphans()
    others = processes.Others()
    measured = subprocess.run(arguments, stdout=subprocess.PIPE, text=True, check=False)
    share = others.share()
    if measured.returncode != 0:
        print(measured.stdout, end="")
        return measured.returncode
    if share > report.BUSY_LIMIT:
        print(f"Others kept {share:.2f} cores busy, at most {report.BUSY_LIMIT:g} are allowed: "
              "nothing was measured.", file=sys.stderr)
        return TOO_BUSY
    print(measured.stdout, end="")
    print(f"Others kept {share:.2f} cores busy.")
    if page:
        path = pathlib.Path(page)
        path.write_text(with_section(path.read_text(encoding="utf-8"), title,
                                     section_text(measured.stdout, share)), encoding="utf-8")
        print(f"Written: {page}")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
