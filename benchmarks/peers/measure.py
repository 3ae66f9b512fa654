"""Runs Orvo and three other programs of Debian in one session, and writes what was measured.

Called by benchmarks/peers/compare. Every figure is a list of values, one for each repetition, in
the order of `MEASURES`; the programs take turns. Nothing is written if one could not be measured.
"""

import argparse
import copy
import datetime
import json
import os
import subprocess
import sys
import time

import numpy

import processes
import programs
import report
import sounds
from screen import Screen
from session import NotMeasured, Session, until

FILES = (("wav", "hour.wav", 3600, ["-c:a", "pcm_s16le"]),
         ("mp3", "minutes.mp3", 600, ["-c:a", "libmp3lame", "-b:a", "192k"]),
         ("m4a", "minutes.m4a", 600, ["-c:a", "aac", "-b:a", "192k"]))

REFUSED = "out/peers-refused.json"  # the figures of the last run that others disturbed


class Effort:
    """How often and how long each thing is measured."""

    def __init__(self, trial):
        self.starts = 1 if trial else 15
        self.opens = 1 if trial else 5
        self.resizes = 2 if trial else 15
        self.watches = 1 if trial else 3
        self.records = 1 if trial else 3
        self.watch_seconds = 5 if trial else 30
        self.record_seconds = 10 if trial else 30
        self.patience = 1 if trial else 3  # times that a disturbed measurement is done
        self.file_share = 1 / 60 if trial else 1  # of the files' length


class Measuring:
    def __init__(self, session, commands, files, effort):
        self.session = session
        self.screen = Screen(session)
        self.effort = effort
        self.files = files
        self.programs = [kind(session, self.screen, commands.get(kind, [kind.packages[0]] if
                                                                 kind.packages else []))
                         for kind in programs.ALL if kind in commands]
        self.figures = {}
        self.busy = {}
        self.signal = session.path("signal")
        sounds.write_raw(self.signal, sounds.noise(effort.record_seconds + 60))

    def note(self, measure, program, value):
        self.figures.setdefault(measure, {}).setdefault(program.name, []).append(value)

    def run(self, titles=None):
        """All measurements, or those of these titles."""
        for program in self.programs:
            self.tell("set up", program)
            self.guarded(program, program.prepare)
        for title, (times, measure) in self.measurements().items():
            if titles is None or title in titles:
                self.undisturbed(title, times, measure)

    def measurements(self):
        """How often each is done, and how, in their order."""
        opens = {"open " + kind: (self.effort.opens,
                                  lambda program, kind=kind, path=path: self.open(program, kind,
                                                                                  path))
                 for kind, path in self.files.items()}
        return {"start": (self.effort.starts, self.start), **opens, "large": (1, self.large),
                "idle": (self.effort.watches, self.idle),
                "recording": (self.effort.watches, self.recording),
                "kept": (self.effort.records, self.kept),
                "killed": (self.effort.records, self.killed)}

    def undisturbed(self, title, times, measure):
        """Measures again, a few times, what others disturbed; those figures do not count."""
        before = copy.deepcopy(self.figures)
        for _ in range(self.effort.patience):
            self.figures = copy.deepcopy(before)
            self.turns(title, times, measure)
            if self.busy[title] <= report.BUSY_LIMIT:
                return
            print(f"Others kept {self.busy[title]:.2f} cores busy.", flush=True)

    def turns(self, title, times, measure):
        """Each program in turn, `times` times; notes how busy others were meanwhile."""
        others_took = {program.name: [] for program in self.programs}
        for _ in range(times):
            for program in self.programs:
                self.tell(title, program)
                program.again()
                others = processes.Others()
                self.guarded(program, measure, program)
                others_took[program.name].append(others.taken())
                program.end()
        self.busy[title] = max(map(processes.share_of, others_took.values()))

    def guarded(self, program, measure, *arguments):
        """Says which program failed, and leaves a picture of it."""
        try:
            measure(*arguments)
        except NotMeasured as failure:
            picture = os.path.abspath("out/peers-failure.png")
            os.makedirs(os.path.dirname(picture), exist_ok=True)
            self.screen.save(picture)
            program.end()
            raise NotMeasured(f"{program.name}: {failure} (the screen then: out/"
                              "peers-failure.png)") from failure

    @staticmethod
    def tell(title, program):
        print(f"{time.strftime('%H:%M:%S')}  {title}: {program.name}", flush=True)

    # The measures.

    def start(self, program):
        begin = program.launch()
        self.note("start", program, program.wait_for_main() - begin)
        self.note("start drawn", program,
                  self.screen.last_change(program.window, 0.7, 30, program.name) - begin)

    def open(self, program, kind, path):
        arguments = program.place(path)
        with sounds.Ear(self.session, "heard") as ear:
            begin = program.launch(arguments)
            program.wait_until_open(os.path.basename(path))
            if not program.play_until(lambda: ear.sound_since(begin)):
                raise NotMeasured(f"{os.path.basename(path)} cannot be played")
            self.note("open " + kind, program, ear.sound_since(begin) - begin)

    def large(self, program):
        """What an hour of audio does to the memory and to a resize."""
        path = self.files["wav"]
        arguments = program.place(path)
        program.launch(arguments)
        program.wait_until_shown(os.path.basename(path))
        self.screen.resize(program.window, *programs.SIZE)
        self.screen.last_change(program.window, 3.0, 120, program.name)
        resident, private = processes.memory(program.pids())
        self.note("memory resident", program, resident)
        self.note("memory private", program, private)
        width, height = programs.SIZE
        for number in range(self.effort.resizes):
            more = 200 if number % 2 == 0 else 0
            before = self.screen.frame(program.window)[2:]
            begin = time.monotonic()
            self.screen.resize(program.window, width + more, height + more // 2)
            last = self.screen.last_change(program.window, 0.7, 30, program.name)
            if self.screen.frame(program.window)[2:] == before:
                raise NotMeasured("the window keeps its size")
            self.note("resize", program, last - begin)

    def watch(self, state, program):
        """Processor time and wake-ups over a while."""
        wakes = processes.WakeUps()
        pids = program.pids()
        used, begin = processes.processor_seconds(pids), time.monotonic()
        wakes.sample(pids)
        while time.monotonic() < begin + self.effort.watch_seconds:
            time.sleep(0.5)
            wakes.sample(pids)
        seconds = time.monotonic() - begin
        program.need_running()
        self.note("processor " + state, program,
                  100 * (processes.processor_seconds(pids) - used) / seconds)
        self.note("wake-ups " + state, program, wakes.count / seconds)

    def idle(self, program):
        program.start()
        self.watch("idle", program)

    def begin_recording(self, program):
        """Returns the player of the signal and when the recording was asked for."""
        program.start()
        player = sounds.feed(self.session, self.signal)
        program.prepare_recording()
        pressed = time.monotonic()
        program.record()
        until(program.is_recording, "a recording starts")
        return player, pressed

    def recording(self, program):
        player, _ = self.begin_recording(program)
        self.watch("recording", program)
        player.end()

    def play_back(self, program, seconds):
        """What is heard when the recording is played from its start."""
        with sounds.Ear(self.session, "heard") as ear:
            begin = time.monotonic()
            if not program.play_until(lambda: ear.sound_since(begin), 20):
                return numpy.zeros(0, dtype=numpy.float32)
            until(lambda: not ear.sound_since(time.monotonic() - 1), "the recording ends",
                  seconds + 30, 0.2)
            return ear.heard(begin)

    def record_and_play(self, program, stop, reopen):
        """Share of the sound between the presses of Record and Stop that is heard again."""
        with sounds.Ear(self.session, "feed") as reference:
            player, pressed = self.begin_recording(program)
            time.sleep(max(0.0, pressed + self.effort.record_seconds - time.monotonic()))
            stopped = time.monotonic()
            stop()
            time.sleep(1)
            player.end()
            fed = reference.heard()
            begin, end = reference.frame_at(pressed), reference.frame_at(stopped)
        reopen()
        heard = self.play_back(program, self.effort.record_seconds)
        return sounds.seconds_kept(heard, fed, begin, end) * sounds.RATE / (end - begin)

    def kept(self, program):
        share = self.record_and_play(program, program.stop, program.rewind)
        if share == 0:
            raise NotMeasured("what was recorded cannot be played")
        self.note("kept", program, share)

    def killed(self, program):
        """0 where the recovery, answered as the program asks, brings nothing that plays."""
        def reopen():
            program.launch()
            program.recover()
        self.note("killed", program, self.record_and_play(program, program.crash, reopen))


def make_files(folder, share):
    """The files that are opened; made once."""
    os.makedirs(folder, exist_ok=True)
    made = {}
    for kind, name, seconds, codec in FILES:
        path = os.path.join(folder, name)
        made[kind] = path
        if not os.path.exists(path):
            new = os.path.join(folder, "new-" + name)
            subprocess.run(["ffmpeg", "-y", "-v", "error", "-f", "lavfi", "-i",
                            f"anoisesrc=d={seconds * share}:c=pink:r=44100:a=0.3:seed=1",
                            "-ac", "2", *codec, new], check=True, stdin=subprocess.DEVNULL)
            os.rename(new, path)
    return made


def machine():
    with open("/etc/os-release", encoding="utf-8") as file:
        system = dict(line.rstrip().split("=", 1) for line in file if "=" in line)
    return {"cores": os.cpu_count(), "system": system.get("PRETTY_NAME", "Linux").strip('"')}


def busy_now(seconds=5):
    others = processes.Others()
    time.sleep(seconds)
    return others.share()


def main():
    options = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    options.add_argument("orvo", help="the program, as released")
    options.add_argument("results", help="where the figures go")
    options.add_argument("--trial", action="store_true",
                         help="short, also on a busy machine; its figures are not published")
    options.add_argument("--again", action="store_true",
                         help="only what others disturbed in the last run, which was refused")
    options.add_argument("--only", action="append", default=[], metavar="PROGRAM",
                         help="with --trial: this one of the programs; can be repeated")
    chosen = options.parse_args()
    if chosen.only and not chosen.trial:
        options.error("--only needs --trial: a comparison is of all")
    if chosen.again and chosen.trial:
        options.error("--again needs a whole comparison")
    refused = refused_results() if chosen.again else None
    names = {kind.name: kind for kind in programs.ALL}
    if unknown := [name for name in chosen.only if name not in names]:
        options.error(f"{unknown[0]} is none of {', '.join(names)}")
    processes.adopt_orphans()
    before = busy_now()
    print(f"Others keep {before:.2f} cores busy.")
    if before > report.BUSY_LIMIT and not chosen.trial:
        raise NotMeasured(f"the machine is too busy: at most {report.BUSY_LIMIT} cores")
    effort = Effort(chosen.trial)
    files = make_files("build/peers/" + ("trial" if chosen.trial else "files"), effort.file_share)
    commands = {kind: [os.path.abspath(chosen.orvo)] if kind is programs.Orvo
                else ["/usr/bin/" + kind.packages[0]]
                for kind in programs.ALL if not chosen.only or kind.name in chosen.only}
    # Beside the files, so that a program that shows its own folder can be given a link to them.
    with Session(os.path.abspath("build/peers")) as session:
        measuring = Measuring(session, commands, {k: os.path.abspath(v) for k, v in files.items()},
                              effort)
        versions = {program.name: program.version() for program in measuring.programs}
        if refused and versions != refused["versions"]:
            raise NotMeasured("the last run had other versions")
        measuring.run(report.disturbed(refused) if refused else None)
        results = {
            "date": datetime.date.today().isoformat(),
            "machine": machine(),
            "versions": versions,
            "seconds": {"watched": effort.watch_seconds, "recorded": effort.record_seconds},
            "busy": {"limit": report.BUSY_LIMIT, "before": round(before, 3),
                     "during": {title: round(share, 3)
                                for title, share in measuring.busy.items()}},
            "figures": {measure: {name: [round(value, 4) for value in values]
                                  for name, values in of.items()}
                        for measure, of in measuring.figures.items()},
        }
    if refused:
        results = report.mended(refused, results)
    if chosen.trial:
        print("A trial: the files are a sixtieth as long as said here.")
    print(report.plain(results))
    if not chosen.trial:
        try:
            report.check(results)
        except report.NotPublishable as reason:
            write(results, REFUSED)
            raise NotMeasured(f"no comparison is written: {reason}; the figures: {REFUSED}"
                              ) from reason
    write(results, chosen.results)


def refused_results():
    try:
        with open(REFUSED, encoding="utf-8") as file:
            return json.load(file)
    except OSError as failure:
        raise NotMeasured(f"no run was refused: {failure}") from failure


def write(results, path):
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path + ".new", "w", encoding="utf-8") as file:
        json.dump(results, file, indent=1, ensure_ascii=False)
        file.write("\n")
    os.rename(path + ".new", path)


if __name__ == "__main__":
    try:
        main()
    except NotMeasured as failure:
        sys.exit(f"compare: {failure}")
