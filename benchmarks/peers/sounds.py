"""Sound of the session: a signal that is known everywhere, ears, and what of it was kept."""

import os
import subprocess
import threading
import time

import numpy

from session import NotMeasured, Process, until

RATE = 44100
FORMAT = ["--raw", "--format=float32le", f"--rate={RATE}", "--channels=2"]
PIECE = 512  # frames that are recognised as a whole: 12 ms


def noise(seconds, seed=7):
    """One channel of soft noise that is like itself nowhere else. Low frequencies prevail, so a
    conversion of the rate or a codec in between does not hide it."""
    raw = numpy.random.default_rng(seed).standard_normal(int(seconds * RATE) + 7)
    smooth = numpy.convolve(raw, numpy.ones(8) / 8, "valid")
    return (0.4 * smooth).clip(-1, 1).astype(numpy.float32)


def write_raw(path, channel):
    numpy.repeat(channel.astype(numpy.float32), 2).tofile(path)


def seconds_kept(heard, reference, begin, end):
    """Seconds of reference[begin:end] that are in `heard`, wherever and in whatever order; each
    moment counts once. Both are one channel."""
    kept = numpy.zeros(len(reference), dtype=bool)
    if len(reference) < PIECE:
        return 0.0
    size = 1 << int(len(reference) + PIECE).bit_length()
    spectrum = numpy.fft.rfft(reference, size)
    energy = numpy.concatenate(([0.0], numpy.cumsum(reference.astype(numpy.float64) ** 2)))

    def likeness(piece, at):
        if at < 0 or at + PIECE > len(reference):
            return 0.0
        power = (energy[at + PIECE] - energy[at]) * float(numpy.dot(piece, piece))
        product = float(numpy.dot(piece, reference[at:at + PIECE]))
        return product / power ** 0.5 if power > 0 else 0.0

    def find(piece):
        products = numpy.fft.irfft(spectrum * numpy.conj(numpy.fft.rfft(piece, size)), size)
        return int(numpy.argmax(products[:len(reference) - PIECE + 1]))

    expected = -1
    for start in range(0, len(heard) - PIECE + 1, PIECE):
        piece = heard[start:start + PIECE].astype(numpy.float64)
        if float(numpy.dot(piece, piece)) < 1e-6 * PIECE:  # silence
            continue
        at = expected
        if likeness(piece, at) < 0.7:
            at = find(piece)
        if likeness(piece, at) < 0.7:
            continue  # across a joint; the next piece is looked for everywhere
        kept[at:at + PIECE] = True
        expected = at + PIECE
    return float(numpy.count_nonzero(kept[max(begin, 0):max(end, 0)])) / RATE


class Ear:
    """Listens to a sink and remembers all that it hears, and when. Use as a context."""

    def __init__(self, session, sink):
        self.child = subprocess.Popen(
            ["parec", f"--device={sink}.monitor", "--latency-msec=10", *FORMAT], env=session.own,
            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        self.chunks = []  # (when it arrived, its first frame, one channel)
        self.frames = 0
        self.thread = threading.Thread(target=self._listen, daemon=True)
        self.thread.start()

    def __enter__(self):
        until(lambda: self.frames > 0, "the sound server delivers what is heard")
        return self

    def __exit__(self, *_):
        self.child.kill()
        self.child.wait()
        self.thread.join()
        self.child.stdout.close()

    def _listen(self):
        pending = b""
        while True:
            data = os.read(self.child.stdout.fileno(), 65536)
            if not data:
                return
            pending += data
            whole = len(pending) // 8 * 8
            left = numpy.frombuffer(pending[:whole], dtype=numpy.float32)[::2]
            pending = pending[whole:]
            self.chunks.append((time.monotonic(), self.frames, left))
            self.frames += len(left)

    def sound_since(self, when):
        """When the first sound after `when` arrived; 0 if there was none yet."""
        for at, _, channel in reversed_until(self.chunks, when):
            if numpy.abs(channel).max(initial=0) > 1e-3:
                return at
        return 0

    def frame_at(self, when):
        """The number of the frame that arrived at this moment."""
        before = [(at, first + len(channel)) for at, first, channel in self.chunks if at <= when]
        if not before:
            raise NotMeasured("nothing was heard before this moment")
        at, frame = before[-1]
        return frame + int((when - at) * RATE)

    def heard(self, since=0.0):
        """One channel of all that arrived after this moment."""
        parts = [channel for at, _, channel in self.chunks if at >= since]
        return numpy.concatenate(parts) if parts else numpy.zeros(0, dtype=numpy.float32)


def reversed_until(chunks, when):
    """The chunks that arrived after `when`, in order."""
    first = len(chunks)
    while first > 0 and chunks[first - 1][0] >= when:
        first -= 1
    return chunks[first:]


def feed(session, path):
    """Starts playing a raw file to the microphone; returns once it runs."""
    player = Process(["paplay", "--device=feed", "--latency-msec=100", *FORMAT, path], session.own,
                     session.path("player.log"))
    until(lambda: player.pid in session.streams("sink-inputs") or not player.is_running(),
          "the signal is played")
    if not player.is_running():
        raise NotMeasured("the signal is not played: " + player.words_of_log())
    return player
