# SPDX-License-Identifier: MIT
"""Displays that nobody sees: X servers, a window manager, a Wayland compositor.

Each is started in a folder of its own and is ready when its constructor returns; nothing is known
by a fixed name or number, so any number of them can run side by side.
"""

import contextlib
import os
import select
import subprocess
import threading

import numpy as np

WIDTH, HEIGHT = 1280, 960
SOCKET = "stage"

# A plain desktop: nothing fades in, nothing locks, nothing lies over the windows.
WESTON_SETTINGS = """
[shell]
panel-position=none
background-color=0xff204060
startup-animation=none
close-animation=none
locking=false
"""
LIMIT_S = 60  # for what takes a second: only a program that hangs needs longer


class Broken(Exception):
    """What should have started did not; the message says what it told."""


def ended_by(process):
    """Ends a program of our own."""
    if process.poll() is None:
        process.terminate()
    try:
        process.wait(LIMIT_S)
    except subprocess.TimeoutExpired:
        process.kill()
        process.wait()


@contextlib.contextmanager
def limit(process, seconds=LIMIT_S):
    """Whoever waits for a word of this program hears the end of it when it is not in time."""
    watchdog = threading.Timer(seconds, process.kill)
    watchdog.start()
    try:
        yield
    finally:
        watchdog.cancel()


class XServer:
    """Xvfb. What it shows is read from its file, with no request that could be answered late."""

    driver = "x11"  # as SDL calls the way to it

    def __init__(self, folder, size=(WIDTH, HEIGHT)):
        self.programs = []
        self.size = size
        try:
            self.start(folder)
        except BaseException:
            self.close()
            raise

    def start(self, folder):
        self.folder = os.path.join(folder, "x")
        os.makedirs(self.folder)
        reading, writing = os.pipe()
        server = self.run(
            ["Xvfb", "-displayfd", str(writing), "-noreset", "-nolisten", "tcp", "-r",
             "-screen", "0", "%ix%ix24" % self.size, "-fbdir", self.folder],
            pass_fds=[writing], stderr=subprocess.DEVNULL)
        os.close(writing)
        with limit(server), os.fdopen(reading) as told:
            number = told.readline().strip()
        if not number:
            raise Broken("Xvfb did not start")
        self.name = self.outer = ":" + number
        self.variables = {"DISPLAY": self.name}
        # The pointer away from the windows' middle, where it would cover the picture.
        self.xdotool("mousemove", str(self.size[0] - 1), str(self.size[1] - 1))

    def run(self, command, **options):
        self.programs.append(subprocess.Popen(command, **options))
        return self.programs[-1]

    def close(self):
        for program in reversed(self.programs):
            ended_by(program)

    def look(self):
        """The screen as it is now, as rows of red, green and blue."""
        with open(os.path.join(self.folder, "Xvfb_screen0"), "rb") as file:
            data = file.read()
        head = np.frombuffer(data, ">u4", 25)
        header_bytes, width, height, line_bytes, colours = (
            int(head[i]) for i in (0, 4, 5, 12, 19))
        start = header_bytes + 12 * colours
        rows = np.frombuffer(data, np.uint8, line_bytes * height, start).reshape(height, -1)
        return rows[:, :width * 4].reshape(height, width, 4)[:, :, 2::-1].copy()

    def windows(self):
        found = self.xdotool("search", "--onlyvisible", "--name", "")
        return found.split()

    def xdotool(self, *words):
        return subprocess.run(["xdotool", *words], env={**os.environ, "DISPLAY": self.outer},
                              check=True, capture_output=True, text=True, timeout=LIMIT_S).stdout

    def key(self, way, name):
        self.xdotool("key" + way, name)

    def focus(self, window):
        self.xdotool("windowfocus", "--sync", window)


class ManagedXServer(XServer):
    """Xvfb with a window manager, which frames, places and focuses the windows."""

    def start(self, folder):
        super().start(folder)
        home = os.path.join(folder, "home")
        ready = os.path.join(folder, "ready")
        os.makedirs(home)
        os.mkfifo(ready)
        self.run(
            ["openbox", "--sm-disable", "--startup", "sh -c 'echo ready >%s'" % ready],
            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
            env={**os.environ, **self.variables, "HOME": home, "XDG_CACHE_HOME": home})
        # Open for writing too, so that this end neither waits nor sees an end.
        descriptor = os.open(ready, os.O_RDWR | os.O_NONBLOCK)
        told, _, _ = select.select([descriptor], [], [], LIMIT_S)
        os.close(descriptor)
        if not told:
            raise Broken("openbox did not start")


class Compositor(XServer):
    """Weston in a window that fills an Xvfb."""

    driver = "wayland"

    def start(self, folder):
        super().start(folder)
        runtime = os.path.join(folder, "run")
        os.makedirs(runtime, mode=0o700)
        self.variables = {"XDG_RUNTIME_DIR": runtime, "WAYLAND_DISPLAY": SOCKET}
        self.told = self.compose(["--socket=" + SOCKET], runtime, "launching '")
        if not os.path.exists(os.path.join(runtime, SOCKET)):
            raise Broken("weston has no socket")
        self.focus(self.windows()[-1])

    def compose(self, options, runtime, awaited):
        """Starts weston and returns the line of its log with the awaited words."""
        settings = os.path.join(runtime, "weston.ini")
        with open(settings, "w", encoding="ascii") as file:
            file.write(WESTON_SETTINGS)
        reading, writing = os.pipe()
        compositor = self.run(
            ["weston", "--backend=x11-backend.so", "--use-pixman", "--config=" + settings,
             "--width=%i" % self.size[0], "--height=%i" % self.size[1], "--idle-time=0"] + options,
            stdout=writing, stderr=subprocess.STDOUT,
            env={**os.environ, "DISPLAY": self.outer, "XDG_RUNTIME_DIR": runtime})
        os.close(writing)
        log = os.fdopen(reading)
        heard = []
        with limit(compositor):
            for line in log:
                heard.append(line)
                if awaited in line:
                    # What it still tells must not fill the pipe.
                    threading.Thread(target=log.read, daemon=True).start()
                    return line
        raise Broken("weston did not start:\n" + "".join(heard))


class XCompositor(Compositor):
    """The same with Xwayland, which shows the windows of X11 programs."""

    driver = "x11"

    def start(self, folder):
        XServer.start(self, folder)
        runtime = os.path.join(folder, "run")
        os.makedirs(runtime, mode=0o700)
        awaited = "xserver listening on display "
        told = self.compose(["--socket=" + SOCKET, "--xwayland"], runtime, awaited)
        self.variables = {"DISPLAY": told.split(awaited)[1].strip()}
        self.focus(self.windows()[-1])
