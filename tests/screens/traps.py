#!/usr/bin/python3
# SPDX-License-Identifier: MIT

# What the two libraries do differently, and what a player meets of it, one test for each; told in
# docs/compatibility.md.
#
# usage: traps.py TEST    for example traps.py keyboards.classic

import contextlib
import os
import pty
import select
import shutil
import signal
import subprocess
import sys
import tempfile
import time

import numpy as np

import cell
import displays
import game
import pictures
from cell import must

CODES = {"Q": "24", "A": "38", "S": "39", "semicolon": "47"}  # codes of places, US labels

# What the game is told when these places are pressed. Numbers are keys without a Latin letter.
LAYOUTS = {
    "us": {"Q": "q", "A": "a", "S": "s", "semicolon": ";"},
    "fr": {"Q": "a", "A": "q", "S": "s", "semicolon": "m"},
    "us -variant dvorak": {"Q": "'", "A": "a", "S": "o", "semicolon": "s"},
    "de": {"Q": "q", "A": "a", "S": "s", "semicolon": 246},
    "gr": {"Q": ";", "A": 225, "S": 242},
    "ru": {"Q": 202, "A": 198, "S": 217, "semicolon": 214},
    "us,ru": {"Q": "q", "A": "a", "S": "s", "semicolon": ";"},
}

# Of 255, in a fight, where one translucent thing may lie on another.
FURTHEST = 3

# A pointer's arrow, which is white or has a white border: greater than this are its channels' sums.
POINTER_PX = 24
POINTER = 10000

# Of 300 frames on X11. A frame of no time is followed by a sleep, so that half of them is the most.
PACED_FRAMES = 300
OFTEN = 30
HARDLY_EVER = 5


@contextlib.contextmanager
def a_display(kind=displays.ManagedXServer, **options):
    folder = tempfile.mkdtemp(prefix="screen")
    display = None
    try:
        display = kind(folder, **options)
        yield display
    finally:
        if display is not None:
            display.close()
        shutil.rmtree(folder, ignore_errors=True)


@contextlib.contextmanager
def a_game(library, options=(), variables=None, display=None):
    more = {"SDL_VIDEODRIVER": display.driver if display else "dummy",
            **(display.variables if display else {}), **(variables or {})}
    playing = game.Game(library, ["--nosound", *options], more, display)
    try:
        must(playing.starts(), "it does not start")
        yield playing
    finally:
        playing.close()


def show_until(display, playing, right, what):
    """Looks until the screen is right: a display may show a frame later than it was told."""
    end = time.monotonic() + displays.LIMIT_S / 2
    while True:
        playing.show()
        seen = display.look()
        if right(seen):
            return
        if time.monotonic() > end:
            path = os.path.join(os.getcwd(), "%s.png" % sys.argv[1])
            pictures.save(seen, path)
            raise cell.Failed("%s (see %s)" % (what, path))


def to_title(playing):
    playing.press("down Return", "up Return")
    playing.play(*cell.TO_TITLE)


def pictures_differ_a_little():
    """Colours are mixed a little differently: by something, and by no more than that."""
    folder = tempfile.mkdtemp(prefix="screen")
    path = os.path.join(folder, "screen.bmp")
    seen = {}
    for library in ("classic", "compat"):
        seen[library] = []
        with a_game(library) as playing:
            playing.press("down Return", "up Return")
            playing.play(*cell.TO_TITLE)
            playing.play(*cell.TO_PLAY)
            playing.press("down a", "down s")
            for _ in range(15):
                playing.play(5, 20)
                playing.keep(path)
                seen[library].append(pictures.load(path))
    shutil.rmtree(folder)
    far = [pictures.distance(*pair)[0] for pair in zip(seen["classic"], seen["compat"])]
    must(0 < max(far) <= FURTHEST, "the pictures differ by up to %i" % max(far))


def is_paced(library):
    with a_display() as display, a_game(library, display=display) as playing:
        zeroes = int(playing.ask("live %i" % PACED_FRAMES).split()[1])
    print("%s: %i frames of %i in less than a millisecond" % (library, zeroes, PACED_FRAMES))
    if library == "classic":
        must(zeroes >= OFTEN, "it hardly ever has a frame of no time")
    else:
        must(zeroes <= HARDLY_EVER, "it has many frames of no time")


# No display.

def in_terminal(library, variables):
    """Starts the unmodified game, with nothing before it, in a terminal: process and descriptor."""
    ours, theirs = pty.openpty()
    process = subprocess.Popen(
        [game.PROGRAM, "--nosound"], cwd=game.DATA, stdin=theirs, stdout=theirs, stderr=theirs,
        start_new_session=True, env=game.environment(library, {"TERM": "xterm", **variables}))
    os.close(theirs)
    return process, ours


def read_until(descriptor, words, process):
    """What the terminal shows until these words, or until the game's end when there are none."""
    shown = b""
    end = time.monotonic() + displays.LIMIT_S
    while words is None or words not in shown:
        ready, _, _ = select.select([descriptor], [], [], max(0, end - time.monotonic()))
        must(ready, "the terminal never shows %s but %s" % (words, shown[-300:]))
        try:
            data = os.read(descriptor, 65536)
        except OSError:  # the terminal's other end is closed
            data = b""
        if not data:
            must(words is None, "the game ends before it shows %s: %s" % (words, shown[-300:]))
            break
        shown += data
    return shown


def ends_with_farewell(process, terminal):
    shown = read_until(terminal, None, process)
    status = process.wait(displays.LIMIT_S)
    must(status == 0 and b"Thank you for testing!" in shown,
         "status %s: %s" % (status, shown[-300:]))


@contextlib.contextmanager
def terminal_game(library, variables):
    process, terminal = in_terminal(library, variables)
    try:
        yield process, terminal
    finally:
        if process.poll() is None:
            process.kill()
            process.wait()
        os.close(terminal)


def no_display_classic():
    """The classic library draws with letters in the terminal, and Escape leaves it."""
    with terminal_game("classic", {}) as (process, terminal):
        read_until(terminal, b"GO!", process)
        read_until(terminal, b"\x1b[", process)
        os.write(terminal, b"\x1b")
        ends_with_farewell(process, terminal)


def no_display_compat():
    """The other one plays unseen and hears no key; Ctrl+C reaches the game as the window's end."""
    with terminal_game("compat", {}) as (process, terminal):
        shown = read_until(terminal, b"rocket shot! ;)", process)
        must(b"\x1b[" not in shown, "it draws in the terminal")
        must(not select.select([terminal], [], [], 0)[0] or process.poll() is None, "it ends")
        process.send_signal(signal.SIGINT)
        ends_with_farewell(process, terminal)


def named_display(library):
    """Named, the display is the only one that is tried, and the game says that it is not there."""
    with terminal_game(library, {"SDL_VIDEODRIVER": "x11"}) as (process, terminal):
        shown = read_until(terminal, None, process)
        status = process.wait(displays.LIMIT_S)
    why = b"No available video device" if library == "classic" else b"x11 not available"
    must(status == 1 and b"Can't init SDL:  " + why in shown, "status %s: %s" % (status, shown))


# Keyboards.

def told_of(playing, display, places):
    told = {}
    for place in places:
        code = CODES[place]
        display.key("down", code)
        display.key("up", code)
        number = int(playing.ask("keys 2").split()[1].split(":")[1])
        told[place] = chr(number) if number < 128 else number
    return told


def keyboards(library):
    for layout, wanted in LAYOUTS.items():
        with a_display() as display:
            subprocess.run(["setxkbmap", *layout.split()], check=True, timeout=displays.LIMIT_S,
                           env={**os.environ, **display.variables})
            with a_game(library, display=display) as playing:
                playing.press("down Return", "up Return")
                told = told_of(playing, display, wanted)
        must(told == wanted, "%s: the game is told %s" % (layout, told))


def keyboards_by_place():
    """The layer can be asked to go by the places of a US keyboard, whatever the layout."""
    for layout in ("fr", "ru"):
        with a_display() as display:
            subprocess.run(["setxkbmap", layout], check=True, timeout=displays.LIMIT_S,
                           env={**os.environ, **display.variables})
            by_place = {"SDL12COMPAT_USE_KEYBOARD_LAYOUT": "0"}
            with a_game("compat", variables=by_place, display=display) as playing:
                playing.press("down Return", "up Return")
                told = told_of(playing, display, CODES)
        must(told == LAYOUTS["us"], "%s: the game is told %s" % (layout, told))


# Sizes.

def wide_screen(library):
    """1366 x 768: the classic library leaves the picture as it is, in the middle; the layer
    enlarges it to the screen's height, with black at both sides."""
    size = (1366, 768)
    title = pictures.reference("title")
    tolerance = pictures.TOLERANCE
    if library == "compat":
        title = pictures.smoothly_enlarged(title, size[1] / pictures.HEIGHT)
        tolerance = pictures.SMOOTH_TOLERANCE
    wanted = np.zeros((size[1], size[0], 3), np.uint8)
    top, left = (size[1] - title.shape[0]) // 2, (size[0] - title.shape[1]) // 2
    wanted[top:top + title.shape[0], left:left + title.shape[1]] = title
    with a_display(size=size) as display, \
            a_game(library, ["--fullscreen"], display=display) as playing:
        to_title(playing)
        show_until(display, playing,
                   lambda seen: pictures.distance(seen, wanted, tolerance)[1] == 0,
                   "the picture is not where it should be")


def larger_window():
    larger = {"SDL12COMPAT_WINDOW_SCALING": "2"}
    with a_display(size=(1400, 1060)) as display, \
            a_game("compat", variables=larger, display=display) as playing:
        to_title(playing)
        twice = pictures.smoothly_enlarged(pictures.reference("title"), 2)
        show_until(display, playing,
                   lambda seen: pictures.find(seen, twice, pictures.SMOOTH_TOLERANCE),
                   "no window has the picture at twice its size")


def sharp_full_screen():
    with a_display() as display, \
            a_game("compat", ["--fullscreen"], {"SDL12COMPAT_SCALE_METHOD": "nearest"},
                   display) as playing:
        to_title(playing)
        twice = pictures.enlarged(pictures.reference("title"), 2)
        show_until(display, playing, lambda seen: pictures.distance(seen, twice)[1] == 0,
                   "the pixels are not squares")


def pointed_at(size):
    return size[0] // 2, size[1] // 2 + 150


def brightness(screen, size):
    """Of a square below the middle, where the title has nothing but stars."""
    left, top = pointed_at(size)
    return int(screen[top:top + POINTER_PX, left:left + POINTER_PX].sum())


def pointer(library):
    """The mouse pointer is seen over a window, and hidden on the full screen."""
    for options, is_seen in (((), True), (("--fullscreen",), False)):
        with a_display() as display, a_game(library, options, display=display) as playing:
            to_title(playing)
            show_until(display, playing, lambda seen: seen.any(), "the title is not seen")
            display.xdotool("mousemove", *map(str, pointed_at(display.size)))
            show_until(display, playing,
                       lambda seen: (brightness(seen, display.size) > POINTER) == is_seen,
                       "the pointer is %s" % ("not seen" if is_seen else "seen"))


TESTS = {
    "differences.compat.pictures": pictures_differ_a_little,
    "differences.classic.pacing": lambda: is_paced("classic"),
    "differences.compat.pacing": lambda: is_paced("compat"),
    "no-display.classic": no_display_classic,
    "no-display.compat": no_display_compat,
    "no-display.classic.named": lambda: named_display("classic"),
    "no-display.compat.named": lambda: named_display("compat"),
    "keyboards.classic": lambda: keyboards("classic"),
    "keyboards.compat": lambda: keyboards("compat"),
    "keyboards.compat.by-place": keyboards_by_place,
    "wide-screen.classic": lambda: wide_screen("classic"),
    "wide-screen.compat": lambda: wide_screen("compat"),
    "pointer.classic": lambda: pointer("classic"),
    "pointer.compat": lambda: pointer("compat"),
    "larger-window.compat": larger_window,
    "sharp-full-screen.compat": sharp_full_screen,
}


def main():
    name = sys.argv[1]
    if "compat" in name and not game.compat_folder():
        print("skipped: the library in SDL 1.2's place cannot be had here")
        return 77
    try:
        TESTS[name]()
    except (cell.Failed, displays.Broken) as failure:
        print("%s: %s" % (name, failure))
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
