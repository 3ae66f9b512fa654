"""A private desktop: screen, window manager, message bus and sound server of one session.

Nothing of the user's is touched: every program gets folders of its own, and the session's servers
end with it. Every failure is an exception, `NotMeasured`, with a sentence for the person who runs
the comparison.
"""

import os
import shutil
import signal
import subprocess
import tempfile
import time

PATIENCE = 60.0  # seconds until something that should happen counts as failed


class NotMeasured(Exception):
    """Something could not be measured; says what."""


def until(condition, what, patience=PATIENCE, interval=0.02):
    """The first true value of `condition`; `NotMeasured` if there is none in time."""
    deadline = time.monotonic() + patience
    while True:
        value = condition()
        if value:
            return value
        if time.monotonic() > deadline:
            raise NotMeasured(f"{what}: not within {patience:g} s")
        time.sleep(interval)


class Process:
    """A started program with its output in a file, in a process group of its own."""

    def __init__(self, words, environment, log, **more):
        self.log = log
        with open(log, "ab") as output:
            self.child = subprocess.Popen(
                words, env=environment, stdin=subprocess.DEVNULL, stderr=output,
                stdout=more.pop("stdout", output), start_new_session=True, **more)
        self.pid = self.child.pid

    def is_running(self):
        return self.child.poll() is None

    def kill(self):
        """Kills the program itself and nothing else, as a crash would."""
        if self.is_running():
            os.kill(self.pid, signal.SIGKILL)
        self.child.wait()

    def end(self, patience=10.0):
        """Asks it to end, and kills its whole group if it does not."""
        if self.is_running():
            self.child.terminate()
            try:
                self.child.wait(patience)
            except subprocess.TimeoutExpired:
                pass
        try:
            os.killpg(self.pid, signal.SIGKILL)
        except ProcessLookupError:
            pass
        self.child.wait()

    def words_of_log(self):
        with open(self.log, "rb") as file:
            return file.read()[-2000:].decode(errors="replace")


class Session:
    """The desktop of one comparison. Use as a context."""

    WIDTH, HEIGHT = 1600, 1200

    def __init__(self, folder=None):
        self.folder = tempfile.mkdtemp(prefix="orvo-peers-", dir=folder)
        self.servers = []
        self.homes = 0

    def __enter__(self):
        try:
            self._start()
        except BaseException:
            self._end()
            raise
        return self

    def __exit__(self, *_):
        self._end()

    def _end(self):
        for server in reversed(self.servers):
            server.end()
        self.servers = []
        shutil.rmtree(self.folder, ignore_errors=True)

    def path(self, *names):
        return os.path.join(self.folder, *names)

    def new_folder(self, *names):
        os.makedirs(self.path(*names), mode=0o700, exist_ok=True)
        return self.path(*names)

    def _serve(self, name, words, environment, **more):
        server = Process(words, environment, self.path(name + ".log"), **more)
        self.servers.append(server)
        return server

    def _start(self):
        self.new_folder("run")
        self.new_folder("run", "pulse")
        self.base = {"PATH": "/usr/bin:/bin:/usr/games", "LANG": "C.UTF-8", "LC_ALL": "C.UTF-8",
                     "XDG_RUNTIME_DIR": self.path("run"),
                     "PULSE_RUNTIME_PATH": self.path("run", "pulse")}
        self.own = {**self.base, **self._folders("servers")}
        self._start_screen()
        self._start_bus()
        self._start_sound()

    def _folders(self, name):
        """Fresh home and XDG folders."""
        home = self.new_folder(name)
        folders = {"HOME": home, "TMPDIR": self.new_folder(name, "tmp")}
        for variable, folder in (("CONFIG", ".config"), ("DATA", ".local/share"),
                                 ("STATE", ".local/state"), ("CACHE", ".cache")):
            folders[f"XDG_{variable}_HOME"] = self.new_folder(name, folder)
        return folders

    def _start_screen(self):
        reading, writing = os.pipe()
        frames = self.new_folder("screen")
        self.screen = self._serve(
            "screen", ["Xvfb", "-displayfd", str(writing), "-screen", "0",
                       f"{self.WIDTH}x{self.HEIGHT}x24", "-fbdir", frames, "-nolisten", "tcp",
                       "-noreset"], self.own, pass_fds=(writing,))
        os.close(writing)
        with os.fdopen(reading) as numbers:
            number = numbers.readline().strip()
        if not number:
            raise NotMeasured("the private screen does not start: " + self.screen.words_of_log())
        self.display = ":" + number
        self.pixels = os.path.join(frames, "Xvfb_screen0")
        self.own["DISPLAY"] = self.base["DISPLAY"] = self.display
        self._serve("window-manager", ["openbox", "--sm-disable"], self.own)
        until(lambda: self.call(["xdotool", "set_num_desktops", "1"])[0] == 0 and
              self.call(["xdotool", "get_num_desktops"])[1] == "1\n",
              "the window manager answers")

    def _start_bus(self):
        address = "unix:path=" + self.path("run", "bus")
        self._serve("bus", ["dbus-daemon", "--session", "--nofork", "--nopidfile",
                            "--address=" + address], self.own)
        until(lambda: os.path.exists(self.path("run", "bus")), "the message bus starts")
        self.own["DBUS_SESSION_BUS_ADDRESS"] = self.base["DBUS_SESSION_BUS_ADDRESS"] = address

    def _start_sound(self):
        """Two null sinks: what is played into "feed" is captured, what programs play is "heard"."""
        if not shutil.which("pulseaudio"):
            raise NotMeasured("this needs the sound server PulseAudio, which is not installed")
        socket = self.path("run", "pulse", "native")
        script = self.path("server.pa")
        with open(script, "w", encoding="utf-8") as file:
            for sink in ("feed", "heard"):
                file.write(f"load-module module-null-sink sink_name={sink} rate=44100 channels=2 "
                           "format=float32le norewinds=1\n")
            # Some programs do not offer monitors as inputs; a remapped source is none.
            file.write("load-module module-remap-source master=feed.monitor source_name=microphone "
                       "source_properties=device.description=Microphone\n"
                       "set-default-sink heard\nset-default-source microphone\n"
                       "load-module module-native-protocol-unix auth-anonymous=1 "
                       f"socket={socket}\n")
        self.base["PULSE_SERVER"] = self.own["PULSE_SERVER"] = "unix:" + socket
        self.base["PULSE_COOKIE"] = self.own["PULSE_COOKIE"] = self.path("cookie")
        without = {k: v for k, v in self.own.items() if k != "PULSE_SERVER"}
        self._serve("sound", ["pulseaudio", "-n", "--daemonize=no", "--use-pid-file=no",
                              "--exit-idle-time=-1", "--disallow-exit", "--high-priority=no",
                              "--realtime=no", "--disable-shm=yes", "--log-target=stderr",
                              "-F", script], without)
        until(lambda: os.path.exists(socket) and self.call(["pactl", "info"])[0] == 0,
              "the sound server answers")

    def call(self, words, patience=PATIENCE):
        """Runs a command of the session to its end: its exit code and its output."""
        try:
            done = subprocess.run(words, env=self.own, stdin=subprocess.DEVNULL, timeout=patience,
                                  capture_output=True, check=False)
        except subprocess.TimeoutExpired as late:
            raise NotMeasured(f"{words[0]} does not end") from late
        return done.returncode, done.stdout.decode(errors="replace")

    def need(self, words):
        code, output = self.call(words)
        if code != 0:
            raise NotMeasured(f"{' '.join(words)} fails")
        return output

    def fresh_home(self):
        """The environment of a user who has never started anything."""
        self.homes += 1
        return {**self.base, **self._folders(f"user{self.homes}")}

    def keep_home(self, environment):
        """Keeps a copy of the home as it is now, for `restore_home`."""
        shutil.copytree(environment["HOME"], environment["HOME"] + "-kept", symlinks=True)

    def restore_home(self, environment):
        shutil.rmtree(environment["HOME"])
        shutil.copytree(environment["HOME"] + "-kept", environment["HOME"], symlinks=True)

    def streams(self, kind):
        """The programs' streams that run: process ids. `kind`: "sink-inputs", "source-outputs"."""
        running, corked = [], True
        for line in self.need(["pactl", "list", kind]).splitlines():
            key, _, value = line.strip().partition(": ")
            if key == "Corked":
                corked = value == "yes"
            key, _, value = line.strip().partition(" = ")
            if key == "application.process.id" and not corked:
                running.append(int(value.strip('"')))
        return running
