# SPDX-License-Identifier: MIT
"""The unmodified game on a stage (stage.cpp): started, held at frames, given keys, left."""

import functools
import os
import socket
import subprocess

import displays

ROOT = os.path.abspath(os.path.join(os.path.dirname(__file__), "..", ".."))
BUILD = os.path.join(ROOT, "build", "test")  # for whoever starts these programs by hand

PROGRAM = os.environ.get("KRAVOLTIX_PROGRAM", os.path.join(BUILD, "kravoltix"))
STAGE = os.environ.get("KRAVOLTIX_STAGE_LIBRARY",
                       os.path.join(BUILD, "tests", "screens", "libkravoltix_stage.so"))
DATA = os.environ.get("KRAVOLTIX_DATA", os.path.join(ROOT, "data"))
LAYER_FOLDER = os.environ.get("KRAVOLTIX_LAYER_FOLDER", os.path.join(BUILD, "sdl12-compat"))

# Of the keys that the game takes: as X11 calls them, and as SDL numbers them.
KEYS = {"Return": 13, "Escape": 27, "a": 97, "s": 115, "Left": 276}
NAMES = {number: name for name, number in KEYS.items()}

# What could lead a game elsewhere than to the display and the sounds of its test.
FOREIGN = ("DISPLAY", "WAYLAND_DISPLAY", "XDG_RUNTIME_DIR", "XAUTHORITY", "LD_PRELOAD",
           "PULSE_SERVER", "LD_LIBRARY_PATH")


@functools.lru_cache(maxsize=None)
def compat_folder():
    """Of the library in SDL 1.2's place; empty where it cannot be had."""
    found = subprocess.run([os.path.join(ROOT, "tools", "sdl12-compat"), LAYER_FOLDER],
                           stdout=subprocess.PIPE, text=True)
    return found.stdout.strip()


def environment(library, more):
    """A player's environment with this library in it."""
    kept = {name: value for name, value in os.environ.items()
            if name not in FOREIGN and not name.startswith("SDL_")}
    if library == "compat":
        kept["LD_LIBRARY_PATH"] = compat_folder()
    kept["ASAN_OPTIONS"] = "detect_leaks=0:verify_asan_link_order=0"
    return {**kept, **more}


class Game:
    """A game held at its first frame; `keys` are real ones, sent by the display."""

    def __init__(self, library, options, variables, display=None, under=None):
        """`under` makes a command that runs the game with the stage's variables."""
        self.display = display
        self.socket, inner = socket.socketpair()
        self.socket.settimeout(displays.LIMIT_S)
        stage = {"KRAVOLTIX_STAGE": str(inner.fileno()), "LD_PRELOAD": STAGE}
        command = under(stage) if under else []
        self.process = subprocess.Popen(
            [*command, PROGRAM, *options], cwd=DATA, pass_fds=[inner.fileno()],
            stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True,
            env=environment(library, {**variables, **({} if under else stage)}))
        inner.close()
        self.answers = self.socket.makefile("r")
        self.frame = None

    def starts(self):
        """Waits for the first frame; false for a game that ends instead."""
        told = self.answers.readline().strip()
        self.frame = told
        return told == "frame 1"

    def say(self, line):
        self.socket.sendall((line + "\n").encode())

    def ask(self, line):
        self.say(line)
        told = self.answers.readline().strip()
        if not told:
            raise displays.Broken("the game ended at \"%s\":\n%s" % (
                line, self.process.communicate()))
        return told

    def play(self, frames, ms):
        return self.ask("frames %i %i" % (frames, ms))

    def show(self):
        self.ask("show")

    def keep(self, path):
        told = self.ask("picture " + path)
        if told != "kept":
            raise displays.Broken(told)

    def press(self, *strokes):
        """Strokes such as "down a"; returns what the game was told of them, in the same words."""
        for stroke in strokes:
            way, name = stroke.split()
            if self.display is None:
                self.ask("push %s %i" % (way, KEYS[name]))
            else:
                self.display.key(way, name)
        told = self.ask("keys %i" % len(strokes)).split()[1:]
        return ["%s %s" % (way, NAMES.get(int(key), key))
                for way, key in (word.split(":") for word in told)]

    def end(self):
        """Lets the game play on to its end: its status, and what it told."""
        self.say("frames 1000000 20")
        return self.ended()

    def ended(self):
        out, error = self.process.communicate(timeout=displays.LIMIT_S)
        self.socket.close()
        return self.process.returncode, out, error

    def close(self):
        if self.process.poll() is None:
            self.process.kill()
            self.process.communicate()
        self.socket.close()
