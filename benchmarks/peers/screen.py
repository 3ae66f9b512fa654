"""What a user sees and presses: windows, their pictures, keys and clicks."""

import struct
import time

import numpy
from Xlib import X, display, error

from session import NotMeasured, until


class Screen:
    """The session's screen. Pictures are read from the X server's memory, at no cost to it."""

    def __init__(self, session):
        self.session = session
        self.display = display.Display(session.display)
        self.root = self.display.screen().root
        self.atoms = {name: self.display.intern_atom(name)
                      for name in ("_NET_CLIENT_LIST", "_NET_WM_NAME", "_NET_WM_PID",
                                   "_NET_ACTIVE_WINDOW", "UTF8_STRING")}
        with open(session.pixels, "rb") as file:
            header = struct.unpack(">25I", file.read(100))
        size, width, height, line, colours = header[0], header[4], header[5], header[12], header[19]
        pixels = numpy.memmap(session.pixels, mode="r", offset=size + 12 * colours,
                              shape=(height, line), dtype=numpy.uint8)
        self.pixels = pixels[:, :width * 4].reshape(height, width, 4)

    def _property(self, window, name):
        found = window.get_full_property(self.atoms[name], X.AnyPropertyType)
        return found.value if found else None

    def windows(self):
        """Ids of the managed windows, the oldest first."""
        return list(self._property(self.root, "_NET_CLIENT_LIST") or [])

    def title(self, window):
        try:
            text = self._property(self.display.create_resource_object("window", window),
                                  "_NET_WM_NAME")
        except error.XError:
            return ""
        return bytes(text).decode(errors="replace") if text else ""

    def find(self, matches):
        """The newest window whose title `matches` (a function); 0 if there is none."""
        for window in reversed(self.windows()):
            if matches(self.title(window)) and self.is_visible(window):
                return window
        return 0

    def is_visible(self, window):
        try:
            got = self.display.create_resource_object("window", window).get_attributes()
            return got.map_state == X.IsViewable
        except error.XError:
            return False

    def frame(self, window):
        """x, y, width and height on the screen."""
        try:
            drawable = self.display.create_resource_object("window", window)
            size = drawable.get_geometry()
            at = drawable.translate_coords(self.root, 0, 0)
        except error.XError as gone:
            raise NotMeasured("a window has gone") from gone
        return -at.x, -at.y, size.width, size.height

    def picture(self, window):
        """The window's pixels now, cut to the screen."""
        x, y, width, height = self.frame(window)
        return numpy.array(self.pixels[max(y, 0):y + height, max(x, 0):x + width, :3])

    def last_change(self, window, quiet, patience, what):
        """When the window's picture changed for the last time before it stayed the same for
        `quiet` seconds; now, if it does not change at all."""
        before, changed = self.picture(window), time.monotonic()
        deadline = changed + patience
        while True:
            time.sleep(0.005)
            now = self.picture(window)
            at = time.monotonic()
            if now.shape != before.shape or not numpy.array_equal(now, before):
                before, changed = now, at
            elif at - changed > quiet:
                return changed
            if at > deadline:
                raise NotMeasured(f"{what}: the picture does not come to rest")

    def activate(self, window):
        def is_active():
            return list(self._property(self.root, "_NET_ACTIVE_WINDOW") or []) == [window]

        def activates():
            self.session.call(["xdotool", "windowactivate", str(window)])
            deadline = time.monotonic() + 0.5
            while time.monotonic() < deadline:
                if is_active():
                    return True
                time.sleep(0.02)
            return False
        until(activates, "a window takes the keyboard")

    def key(self, *keys):
        self.session.need(["xdotool", "key", "--delay", "30", *keys])

    def click(self, window, x, y):
        """At a place in the window; from the right or lower edge where it is negative."""
        _, _, width, height = self.frame(window)
        self.session.need(["xdotool", "mousemove", "--window", str(window),
                           str(x if x >= 0 else width + x), str(y if y >= 0 else height + y),
                           "click", "1"])

    def resize(self, window, width, height):
        self.session.need(["xdotool", "windowsize", str(window), str(width), str(height)])

    def save(self, path):
        """The whole screen as a picture, for the person who looks why something failed."""
        self.session.call(["import", "-display", self.session.display, "-window", "root", path])
