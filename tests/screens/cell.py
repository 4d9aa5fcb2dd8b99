#!/usr/bin/python3
# SPDX-License-Identifier: MIT

# One cell of the matrix of libraries and screens: the unmodified game is started there, driven by
# keys, looked at twice, and left.
#
# usage: cell.py LIBRARY.SCREEN.MODE.SOUND    for example classic.x11.window.dummy-sound
#        cell.py --keep                       makes the reference pictures anew
#
# LIBRARY  classic, compat
# SCREEN   dummy, x11 (without a window manager), managed (with one), xwayland, wayland
# MODE     window, full
# SOUND    dummy-sound, disk-sound, no-sound

import os
import shutil
import sys
import tempfile
import time

import displays
import game
import pictures

SCREENS = {"dummy": None, "x11": displays.XServer, "managed": displays.ManagedXServer,
           "xwayland": displays.XCompositor, "wayland": displays.Compositor}

# The road to the two pictures, in frames and their milliseconds.
TO_TITLE = (69, 100)
TO_PLAY = (118, 200)
TO_FIGHT = (20, 20)

# What libraries of display and sound tell on standard error; the game itself tells nothing there.
FOREIGN_WORDS = ("WARNING: You are using the SDL disk writer audio driver!", " Writing to file [",
                 "CRITICAL: You are using the SDL disk i/o audio driver!",
                 "CRITICAL:  Writing to file [",
                 "Couldn't open plugin directory: No such file or directory",
                 "No plugins found, falling back on no decorations")

FAREWELL = "\nThank you for testing!\n\nQuestions? ... "
FADE = "\nFade out all the audio channels in 1 second...\n"


class Failed(Exception):
    """The cell is not as it must be."""


def must(holds, message):
    if not holds:
        raise Failed(message)


class Cell:
    def __init__(self, name, folder):
        self.library, self.screen, self.mode, self.sound = name.split(".")
        self.folder = folder
        self.display = None
        self.raw = os.path.join(folder, "sound.raw")

    def play(self):
        if SCREENS[self.screen] is not None:
            self.display = SCREENS[self.screen](self.folder)
        try:
            self.run()
        finally:
            if self.display is not None:
                self.display.close()

    def run(self):
        self.game = game.Game(self.library, self.options(), self.variables(), self.display)
        try:
            if self.library == "classic" and self.screen == "wayland":
                self.is_refused()
            else:
                must(self.game.starts(), "it does not start: %s" % (self.game.frame,))
                self.take_focus()
                self.reach("title")
                self.reach("fight")
                self.is_heard()
                self.leave()
        finally:
            self.game.close()

    def options(self):
        return (["--fullscreen"] if self.mode == "full" else []) + (
            ["--nosound"] if self.sound == "no-sound" else [])

    def variables(self):
        more = dict(self.display.variables) if self.display else {}
        more["SDL_VIDEODRIVER"] = self.display.driver if self.display else "dummy"
        if self.sound != "no-sound":
            more["SDL_AUDIODRIVER"] = self.sound.split("-")[0]
            more["SDL_DISKAUDIOFILE"] = self.raw
            more["SDL_DISKAUDIODELAY"] = "5"  # ms for each chunk
        return more

    def take_focus(self):
        """Where nobody manages windows, a player points at one; the full screen takes all keys."""
        if self.screen == "x11" and not (self.library == "classic" and self.mode == "full"):
            self.display.focus(self.display.windows()[1])

    def press(self, *strokes):
        told = self.game.press(*strokes)
        must(told == list(strokes), "pressed %s, and the game was told %s" % (strokes, told))

    def reach(self, name):
        if name == "title":
            self.press("down Return", "up Return")
            self.game.play(*TO_TITLE)
        else:
            self.game.play(*TO_PLAY)
            self.press("down Left", "down a", "down s")
            self.game.play(*TO_FIGHT)
        self.looks_like(name)

    def looks_like(self, name):
        """Looks until the picture is there: a display may show a frame later than it was told."""
        wanted = pictures.reference(name)
        end = time.monotonic() + displays.LIMIT_S / 2
        while True:
            self.game.show()
            seen = self.look()
            said = self.compare(seen, wanted)
            if said is None:
                return
            if time.monotonic() > end:
                path = os.path.join(os.getcwd(), "%s-%s.png" % (self.name(), name))
                pictures.save(seen, path)
                raise Failed("the %s is not on the screen: %s (see %s)" % (name, said, path))

    def name(self):
        return ".".join((self.library, self.screen, self.mode, self.sound))

    def look(self):
        if self.display:
            return self.display.look()
        path = os.path.join(self.folder, "screen.bmp")
        self.game.keep(path)
        return pictures.load(path)

    def compare(self, seen, wanted):
        """None, or what is wrong."""
        if self.display is None:
            return said_of(pictures.distance(seen, wanted))
        if self.mode == "window":
            return None if pictures.find(seen, wanted) else "it is nowhere"
        left = (seen.shape[1] - pictures.WIDTH) // 2
        top = (seen.shape[0] - pictures.HEIGHT) // 2
        middle = seen[top:top + pictures.HEIGHT, left:left + pictures.WIDTH]
        if self.library == "compat":
            twice = pictures.smoothly_enlarged(wanted, 2)
            if self.screen == "x11":
                return part_of_it(middle, twice)
            return said_of(pictures.distance(seen, twice, pictures.SMOOTH_TOLERANCE))
        if self.screen == "xwayland":
            return said_of(pictures.distance(seen, pictures.enlarged(wanted, 2)))
        said = said_of(pictures.distance(middle, wanted))
        return said or ("something is seen beside it" if seen.sum() != middle.sum() else None)

    def is_heard(self):
        """The disk takes the sounds at its own pace."""
        if self.sound != "disk-sound":
            return
        end = time.monotonic() + displays.LIMIT_S / 2
        while not (os.path.exists(self.raw) and has_sound(self.raw)):
            must(time.monotonic() < end, "nothing is heard")
            self.game.show()

    def leave(self):
        self.press("up Left", "up a", "up s", "down Escape")
        status, out, error = self.game.end()
        must(status == 0, "it ends with status %s" % status)
        mode = "fullscreen" if self.mode == "full" else "window"
        audio = "Starting with audio support...\n" if self.sound != "no-sound" else ""
        first = "Starting in %s mode...\n%s" % (mode, audio)
        must(out.startswith(first), "its first lines: " + out[:99])
        last = (FADE if audio else "") + FAREWELL
        must(last in out and out.endswith("\n\n") and out.count("\n", out.index(last)) ==
             last.count("\n") + 2, "its last lines: " + out[-200:])
        rest = [line for line in error.splitlines() if not line.startswith(FOREIGN_WORDS)]
        must(not rest, "it complains: %s" % rest)

    def is_refused(self):
        """Classic SDL 1.2 knows nothing of Wayland."""
        must(not self.game.starts(), "it starts")
        status, out, error = self.game.ended()
        must((status, out, error) == (1, "Can't init SDL:  No available video device\n", ""),
             "it ends otherwise: %s" % ((status, out, error),))


def said_of(far):
    most, pixels = far
    return "%i pixels differ, by up to %i" % (pixels, most) if pixels else None


def part_of_it(window, whole):
    """Without a window manager the window stays small, and what it shows of the enlarged picture is
    its upper left or its lower left part, as the processor or OpenGL draws it."""
    height, width = window.shape[:2]
    parts = (whole[:height, :width], whole[-height:, :width])
    far = [pictures.distance(window, part, pictures.SMOOTH_TOLERANCE) for part in parts]
    return said_of(min(far, key=lambda each: each[1]))


def has_sound(path):
    with open(path, "rb") as file:
        return any(file.read())


def keep():
    """The reference comes from the classic library, whose screen is never shown."""
    folder = tempfile.mkdtemp()
    cell = Cell("classic.dummy.window.no-sound", folder)
    cell.looks_like = lambda name: pictures.save(
        cell.look(), os.path.join(pictures.REFERENCES, name + ".png"))
    cell.play()
    shutil.rmtree(folder)


def main():
    if sys.argv[1:] == ["--keep"]:
        keep()
        return 0
    folder = tempfile.mkdtemp(prefix="screen")
    cell = Cell(sys.argv[1], folder)
    if cell.library == "compat" and not game.compat_folder():
        print("skipped: the library in SDL 1.2's place cannot be had here")
        return 77
    try:
        cell.play()
    except (Failed, displays.Broken) as failure:
        print("%s: %s" % (cell.name(), failure))
        return 1
    finally:
        shutil.rmtree(folder, ignore_errors=True)
    return 0


if __name__ == "__main__":
    sys.exit(main())
