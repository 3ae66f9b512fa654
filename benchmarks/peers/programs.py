"""How each program is set up, started and operated: only by documented keys, buttons and files."""

import os
import time

import processes
from session import NotMeasured, Process, until

SIZE = (1000, 700)  # of every main window, while something is measured


class Program:
    """One of the programs. A subclass says how its user does each thing."""

    name = ""
    packages = ()
    environment = {}

    def __init__(self, session, screen, command):
        self.session = session
        self.screen = screen
        self.command = command
        self.home = {**session.fresh_home(), **self.environment}
        self.process = None
        self.window = 0

    # What a subclass says.

    def is_main(self, title):
        raise NotImplementedError

    def is_open(self, title, name):
        """Whether the main window's title says that this file is open."""
        raise NotImplementedError

    def first_start(self):
        """Answers what only the first start asks."""

    def place(self, file):
        """Puts a file where the program finds it; returns its arguments."""
        return [file]

    def play(self):
        self.screen.key("space")

    def prepare_recording(self):
        """What a user does before the press that starts a recording."""

    def record(self):
        self.screen.key("r")

    def stop(self):
        """Stops the recording."""
        self.screen.key("space")

    def rewind(self):
        """After a recording: makes `play` play it from its start."""

    def recover(self):
        """After a crash: opens what was kept, so that `play` plays it."""
        raise NotImplementedError

    # What is the same for all.

    def version(self):
        package = self.packages[0]
        return self.session.need(["dpkg-query", "-W", "-f", "${Version}", package]).strip()

    def prepare(self):
        """Starts it once as a new user, and keeps the home that this leaves."""
        self.launch()
        self.wait_for_main()
        self.first_start()
        self.screen.last_change(self.window, 1.0, 30, self.name)
        self.quit()
        self.session.keep_home(self.home)

    def quit(self):
        """Ends it so that nothing is left to recover."""
        self.end()

    def launch(self, arguments=()):
        """Starts it; returns when."""
        log = self.session.path(type(self).__name__ + ".log")
        begin = time.monotonic()
        self.process = Process([*self.command, *arguments], self.home, log,
                               cwd=self.home["HOME"])
        return begin

    def again(self):
        """A home as after the first start: nothing open, nothing to recover."""
        self.session.restore_home(self.home)

    def need_running(self):
        if not self.process.is_running():
            raise NotMeasured(f"{self.name} has ended: {self.process.words_of_log()}")

    def wait_for_main(self, matches=None, patience=60.0):
        def find():
            self.need_running()
            return self.screen.find(matches or self.is_main)
        self.window = until(find, f"{self.name} shows its window", patience, 0.005)
        return time.monotonic()

    def start(self, arguments=()):
        """Starts it and brings its window in front, at the common size and at rest."""
        self.launch(arguments)
        self.wait_for_main()
        self.screen.activate(self.window)
        self.screen.resize(self.window, *SIZE)
        self.screen.last_change(self.window, 0.7, 60, self.name)

    def wait_until_open(self, name):
        self.wait_for_main(lambda title: self.is_open(title, name), 300)
        self.screen.activate(self.window)

    def wait_until_shown(self, name):
        """Waits until a large file is open, in the state in which its window comes to rest."""
        self.wait_until_open(name)

    def is_playing(self):
        return self.process.pid in self.session.streams("sink-inputs")

    def is_recording(self):
        return self.process.pid in self.session.streams("source-outputs")

    def play_until(self, is_heard, patience=60.0):
        """Presses Play, and again as long as nothing comes of it; False if nothing is heard."""
        deadline = time.monotonic() + patience
        while time.monotonic() < deadline:
            self.need_running()
            self.play()
            pressed = time.monotonic()
            while time.monotonic() < pressed + 0.25 or self.is_playing():
                if is_heard():
                    return True
                if time.monotonic() > deadline:
                    break
                time.sleep(0.01)
        return False

    def pids(self):
        return processes.with_home(self.home["HOME"])

    def end(self):
        """Ends it and all that it started."""
        if self.process is not None:
            self.process.end()
            self.process = None
        for pid in self.pids():
            try:
                os.kill(pid, 9)
            except ProcessLookupError:
                pass
        until(lambda: not self.pids(), f"{self.name} ends")

    def crash(self):
        """Kills it; what it left to keep the recording may finish."""
        self.process.kill()
        self.process = None
        until(lambda: not self.pids(), f"what {self.name} started ends after it")

    def press_in(self, title, x, y):
        """Presses a button of a dialog once this is shown; returns the dialog."""
        dialog = until(lambda: self.screen.find(lambda text: text == title),
                       f"{self.name} asks: {title}")
        self.screen.activate(dialog)
        self.screen.last_change(dialog, 0.3, 10, title)
        self.screen.click(dialog, x, y)
        return dialog


class Orvo(Program):
    name = "Orvo"
    environment = {"QT_QPA_PLATFORM": "xcb"}

    def version(self):
        return self.session.need(["git", "-c", "safe.directory=*", "-C",
                                  os.path.dirname(os.path.abspath(__file__)), "describe",
                                  "--always", "--dirty"]).strip()

    def is_main(self, title):
        return title.startswith("Orvo - ")

    def is_open(self, title, name):
        return title == "Orvo - " + name

    def rewind(self):
        self.screen.key("Return")

    def recover(self):
        self.wait_for_main()
        until(lambda: self.screen.find(lambda text: text == "Recovered Recordings"),
              "Orvo offers what it kept")
        panel = self.screen.find(lambda text: text == "Recovered Recordings")
        self.screen.activate(panel)
        self.screen.key("Return")
        self.wait_for_main(lambda title: self.is_main(title) and "Unnamed" not in title)
        self.screen.activate(self.window)


class Audacity(Program):
    name = "Audacity"
    packages = ("audacity", "libasound2-plugins")

    def is_main(self, title):
        return title == "Audacity"

    def is_open(self, title, name):
        return title == os.path.splitext(name)[0]

    def first_start(self):
        """Ticks "Don't show this again at start up" and presses OK."""
        dialog = self.press_in("Welcome to Audacity!", 17, -27)
        self.screen.click(dialog, -50, -27)
        until(lambda: not self.screen.is_visible(dialog), "Audacity's welcome goes")

    def quit(self):
        self.screen.activate(self.window)
        self.screen.key("ctrl+q")
        until(lambda: not self.process.is_running(), "Audacity quits")
        self.end()

    def prepare(self):
        # It uses ALSA, whose documented way to the sound server is this file.
        with open(os.path.join(self.home["HOME"], ".asoundrc"), "w", encoding="utf-8") as file:
            file.write("pcm.!default { type pulse }\nctl.!default { type pulse }\n")
        super().prepare()

    def rewind(self):
        self.screen.key("Home")

    def recover(self):
        self.wait_for_main()
        dialog = self.press_in("Automatic Crash Recovery", -174, -27)  # Recover Selected
        until(lambda: not self.screen.is_visible(dialog), "Audacity recovers")
        self.wait_for_main(lambda title: self.is_main(title) or "Recovered" in title)
        self.screen.activate(self.window)


class MhWaveEdit(Program):
    name = "mhWaveEdit"
    packages = ("mhwaveedit", "lame", "mplayer")  # it opens MP3 and m4a through these

    def is_main(self, title):
        return title.startswith("mhWaveEdit")

    def is_open(self, title, name):
        return title.startswith(f"mhWaveEdit: {name} ")

    def play(self):
        self.screen.key("shift+space")  # Play all

    def prepare_recording(self):
        self.screen.key("F12")
        until(lambda: self.screen.find(lambda text: text == "Record"), "mhWaveEdit can record")
        dialog = self.screen.find(lambda text: text == "Record")
        self.screen.activate(dialog)
        until(self.is_recording, "mhWaveEdit listens")
        self.dialog = dialog

    def record(self):
        self.screen.click(self.dialog, 80, -27)  # Start recording

    def stop(self):
        self.screen.click(self.dialog, -70, -27)  # Finish

    def rewind(self):
        self.wait_for_main()
        self.screen.activate(self.window)

    def recover(self):
        dialog = self.press_in("Sessions", 200, 56)  # the only one of the list
        self.screen.click(dialog, 70, -27)           # Resume selected
        self.wait_for_main()
        notice = until(lambda: self.screen.find(lambda text: text == ""),
                       "mhWaveEdit says what it recovered")
        self.screen.activate(notice)
        self.screen.key("Return")
        until(lambda: not self.screen.is_visible(notice), "mhWaveEdit's notice goes")
        self.screen.activate(self.window)


class SoundRecorder(Program):
    name = "GNOME Sound Recorder"
    # The plug-ins are those for the sound server and for m4a.
    packages = ("gnome-sound-recorder", "gstreamer1.0-pulseaudio", "gstreamer1.0-libav")
    # No settings are kept; without a graphics card, its own drawing is the quicker one.
    environment = {"GSETTINGS_BACKEND": "memory", "GDK_BACKEND": "x11", "GSK_RENDERER": "cairo"}

    def is_main(self, title):
        return title == "Sound Recorder"

    def is_open(self, title, name):
        return self.is_main(title)

    def place(self, file):
        """It opens no files: it shows those of its own folder."""
        folder = os.path.join(self.home["XDG_DATA_HOME"], "org.gnome.SoundRecorder")
        os.makedirs(folder, exist_ok=True)
        os.link(file, os.path.join(folder, os.path.basename(file)))
        return []

    def _unfold(self):
        """Opens the first of its list, which shows the button that plays."""
        self._wait_for_row()
        deadline = time.monotonic() + 20
        while time.monotonic() < deadline:
            self.screen.click(self.window, self._centre(), 85)
            clicked = time.monotonic()
            while time.monotonic() < clicked + 2.0:
                if self._shows_play():
                    return
                time.sleep(0.02)
        raise NotMeasured("GNOME Sound Recorder does not open the file")

    def _wait_for_row(self):
        until(lambda: self._has_mark(slice(60, 115), slice(100, 400)),
              "GNOME Sound Recorder lists the file")

    def _shows_play(self, contrast=150):
        """Whether the button that plays is drawn; paler while the name is asked for."""
        at = self._centre()
        return self._has_mark(slice(225, 247), slice(at - 12, at + 12), contrast)

    def _has_mark(self, rows, columns, contrast=150):
        """Whether something dark is drawn on the light ground of this part of the window."""
        part = self.screen.picture(self.window)[rows, columns]
        return part.size > 0 and int(part.max()) - int(part.min()) > contrast

    def _centre(self):
        return self.screen.frame(self.window)[2] // 2

    def wait_until_open(self, name):
        super().wait_until_open(name)
        self._unfold()

    def wait_until_shown(self, name):
        """Unfolded, it would draw for about as long as the sound lasts."""
        super().wait_until_open(name)
        self._wait_for_row()

    def play(self):
        self.screen.click(self.window, self._centre(), 235)

    def record(self):
        self.screen.key("ctrl+r")

    def stop(self):
        self.screen.key("s")

    def rewind(self):
        """Ends the entry of the recording's name, which it asks for."""
        until(lambda: self._shows_play(60), "GNOME Sound Recorder shows the recording")
        self.screen.key("Return")
        self.screen.last_change(self.window, 0.7, 20, self.name)
        self._unfold()

    def recover(self):
        self.wait_for_main()
        self.screen.activate(self.window)
        self._unfold()


ALL = (Orvo, Audacity, MhWaveEdit, SoundRecorder)
