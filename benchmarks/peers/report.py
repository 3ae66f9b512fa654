"""Writes docs/comparison.md from the figures of a run; nothing there is written by hand.

    report.py RESULTS PAGE    writes the page, or says why these figures may not be published
"""

import json
import math
import os
import statistics
import sys

BUSY_LIMIT = 0.1  # cores that others may keep busy, on average over all runs of any measurement
DIFFERENCE = 0.05  # smaller differences count as none

ORVO = "Orvo"
PEERS = ("Audacity", "mhWaveEdit", "GNOME Sound Recorder")


class Measure:
    def __init__(self, key, label, unit, digits=0, scale=1.0, more=False):
        self.key, self.label, self.unit = key, label, unit
        self.digits, self.scale = digits, scale
        self.more = more  # more is better, and the figures are shares

    def text(self, value):
        return f"{value * self.scale:,.{self.digits}f} {self.unit}"


MEASURES = (
    Measure("start", "start, until the main window is shown", "ms", scale=1e3),
    Measure("start drawn", "start, until the window no longer changes", "ms", scale=1e3),
    Measure("open wav", "open an hour of WAV, until it is heard", "s", 2),
    Measure("open mp3", "open ten minutes of MP3, until they are heard", "s", 2),
    Measure("open m4a", "open ten minutes of m4a, until they are heard", "s", 2),
    Measure("memory resident", "memory with the hour open, resident", "MiB"),
    Measure("memory private", "memory with the hour open, private", "MiB"),
    Measure("resize", "resize with the hour open, until the window no longer changes", "ms",
            scale=1e3),
    Measure("processor idle", "processor time idle, of one core", "%", 2),
    Measure("processor recording", "processor time while recording, of one core", "%", 1),
    Measure("wake-ups idle", "wake-ups of all threads idle, a second", "", 0),
    Measure("wake-ups recording", "wake-ups of all threads while recording, a second", "", 0),
    Measure("kept", "kept of the seconds between Record and Stop", "%", 1, 100, more=True),
    Measure("killed", "kept of the seconds between Record and kill -9", "%", 1, 100, more=True),
)


class NotPublishable(Exception):
    """Figures that may not be published; says why."""


def check(results):
    """Every program has a figure for every measure, and the machine was quiet."""
    for measure in MEASURES:
        for name in (ORVO, *PEERS):
            values = results["figures"].get(measure.key, {}).get(name, [])
            if not values or not all(isinstance(value, (int, float)) and math.isfinite(value) and
                                     value >= 0 for value in values):
                raise NotPublishable(f"no figure for {name}: {measure.label}")
    for title, share in busy_shares(results).items():
        if share > results["busy"]["limit"]:
            raise NotPublishable(f"the machine was too busy ({title}): others kept {share:.2f} "
                                 f"cores busy, at most {results['busy']['limit']:g} are allowed")


def disturbed(results):
    """The titles of what has to be measured again."""
    return [title for title, share in results["busy"]["during"].items()
            if share > results["busy"]["limit"]]


def mended(refused, again):
    """The results of a run that was refused, with the measurements that were done again."""
    return {**refused, "busy": {**refused["busy"],
                                "during": {**refused["busy"]["during"], **again["busy"]["during"]}},
            "figures": {**refused["figures"], **again["figures"]}}


def busy_shares(results):
    return {"before": results["busy"]["before"], **results["busy"]["during"]}


def middle(results, measure, name):
    return statistics.median(results["figures"][measure.key][name])


def cell(results, measure, name):
    """A program's cell: Orvo's figure, the others' ratio to it."""
    value, orvo = middle(results, measure, name), middle(results, measure, ORVO)
    if name == ORVO or measure.more or orvo == 0:
        text = measure.text(value).strip()
    else:
        text = f"{value / orvo:.2f} ×" if value / orvo < 10 else f"{value / orvo:.0f} ×"
    return f"**{text}**" if is_better(results, measure, name) else text


def is_better(results, measure, name):
    """Whether a program does better than Orvo, by more than a difference that means nothing."""
    if name == ORVO:
        return False
    value, orvo = middle(results, measure, name), middle(results, measure, ORVO)
    if measure.more:
        return value > orvo + DIFFERENCE / 5  # shares are exact to about ten milliseconds
    return value < orvo * (1 - DIFFERENCE)


def row(cells):
    return "| " + " | ".join(cells) + " |"


def table(results):
    names = (ORVO, *PEERS)
    lines = [row(["what", *names]), "|---" * (len(names) + 1) + "|"]
    for measure in MEASURES:
        lines.append(row([measure.label, *(cell(results, measure, name) for name in names)]))
    return lines


def worse(results):
    """A line for each measure in which another program is better."""
    lines = []
    for measure in MEASURES:
        better = [name for name in PEERS if is_better(results, measure, name)]
        if better:
            said = ", ".join(f"{name} {cell(results, measure, name).strip('*')}" for name in better)
            orvo = measure.text(middle(results, measure, ORVO)).strip()
            lines.append(f"- {measure.label}: {said}; Orvo {orvo}")
    return lines or ["Nothing of what was measured."]


def ranges(results):
    """The lowest and highest value of each figure, unrounded by ratios."""
    names = (ORVO, *PEERS)
    lines = [row(["what", *names]), "|---" * (len(names) + 1) + "|"]
    for measure in MEASURES:
        cells = []
        for name in names:
            values = results["figures"][measure.key][name]
            low, high = measure.text(min(values)).split(" ")[0], measure.text(max(values)).strip()
            cells.append(high if min(values) == max(values) else f"{low} to {high}")
        lines.append(row([measure.label, *cells]))
    return lines


def page(results):
    """The whole of docs/comparison.md."""
    check(results)
    template = os.path.join(os.path.dirname(os.path.abspath(__file__)), "comparison.md.in")
    with open(template, encoding="utf-8") as file:
        text = file.read()
    counts = {key: len(of[ORVO]) for key, of in results["figures"].items()}
    values = {
        "DATE": results["date"],
        "CORES": str(results["machine"]["cores"]),
        "SYSTEM": results["machine"]["system"],
        "VERSIONS": ", ".join(f"{name} {results['versions'][name]}" for name in PEERS),
        "ORVO": results["versions"][ORVO],
        "BUSY": f"{max(busy_shares(results).values()):.2f}",
        "LIMIT": f"{results['busy']['limit']:g}",
        "DIFFERENCE": f"{DIFFERENCE:.0%}".replace("%", " %"),
        "SHARE_DIFFERENCE": f"{DIFFERENCE / 5:.0%}".replace("%", " %"),
        "WATCHED": f"{results['seconds']['watched']:g}",
        "RECORDED": f"{results['seconds']['recorded']:g}",
        "STARTS": str(counts["start"]), "OPENS": str(counts["open wav"]),
        "RESIZES": str(counts["resize"]), "WATCHES": str(counts["processor idle"]),
        "RECORDS": str(counts["kept"]),
        "TABLE": "\n".join(table(results)),
        "WORSE": "\n".join(worse(results)),
        "RANGES": "\n".join(ranges(results)),
    }
    for key, value in values.items():
        text = text.replace(f"@{key}@", value)
    return text


def plain(results):
    """The figures without ratios, also of a trial that measured only some."""
    lines = []
    for measure in MEASURES:
        for name, values in results["figures"].get(measure.key, {}).items():
            low, high = measure.text(min(values)).strip(), measure.text(max(values)).strip()
            mid = measure.text(statistics.median(values))
            lines.append(f"{measure.label:64} {name:22} {mid:>12}   ({low} to {high}, "
                         f"{len(values)})")
    lines.append("Cores that others kept busy, at most: " + ", ".join(
        f"{title} {share:.2f}" for title, share in busy_shares(results).items()))
    return "\n".join(lines)


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__.strip())
    try:
        with open(sys.argv[1], encoding="utf-8") as file:
            results = json.load(file)
        text = page(results)
    except OSError as failure:
        sys.exit(f"compare: no comparison is written: {failure}")
    except NotPublishable as reason:
        sys.exit(f"compare: no comparison is written: {reason}")
    with open(sys.argv[2], "w", encoding="utf-8") as file:
        file.write(text)


if __name__ == "__main__":
    main()
