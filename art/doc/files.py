# SPDX-License-Identifier: CC0-1.0
#
# What there is to say about each file of data/: its size, who reads it, what it shows, what it is
# made from and with, and under which licence it stands.

import collections
import fnmatch
import glob
import os
import re
import wave
import zlib

from PIL import Image

import pieces

TOOLS = {
    "ships": "POV-Ray, NumPy, Pillow",
    "blast": "a gas simulation of our own (g++), NumPy, Pillow",
    "hud": "NumPy, Pillow",
    "sounds": "NumPy",
}

# Pattern of paths, what they show or play. The first that fits counts.
CONTENTS = (
    ("ships/ship01left.png", "the player's ship, left wing down"),
    ("ships/ship01right.png", "the player's ship, right wing down"),
    ("ships/ship01.png", "the player's ship"),
    ("ships/enemy01left.png", "enemy, left wing down"),
    ("ships/enemy01right.png", "enemy, right wing down"),
    ("ships/enemy01.png", "enemy"),
    ("shots/shot01a.png", "laser bolt"),
    ("shots/shot01b.png", "rocket"),
    ("shots/e_shot01c.png", "enemy's shot"),
    ("shots/item_shot01a.png", "panel of the laser"),
    ("shots/item_shot02a.png", "panel of the rocket"),
    ("explosions/mini/*", "hit flash"),
    ("explosions/*", "explosion"),
    ("display/enemyrect_*", "corner mark of a rocket's target"),
    ("display/energy01.png", "energy tube, nine segments"),
    ("display/energyscale.png", "its scale"),
    ("fonts/impact/letters.png", "26 letters"),
    ("fonts/impact/letter_cursor.png", "10 steps of the text cursor and its tail"),
    ("fonts/impact/numbers_a.png", "10 digits"),
    ("fonts/impact/numbers_mini.png", "10 small digits of the weapon counters"),
    ("fonts/impact/fps_a.png", "label of the frame rate"),
    ("fonts/impact/cross.png", "a small x; loaded, not drawn"),
    ("sounds/shot001b.wav", "laser"),
    ("sounds/shot002.wav", "rocket"),
    ("sounds/miniExplode1.wav", "an enemy is hit"),
    ("sounds/miniExplode2.wav", "the player is hit"),
    ("sounds/explode.wav", "an enemy bursts"),
    ("sounds/explode2.wav", "the player is lost"),
    ("sounds/intro.wav", "countdown"),
    ("sounds/keyboard.wav", "a key of the terminal"),
)

CELLS = {  # pictures that hold several in a row, and how many
    "fonts/impact/letters.png": 26, "fonts/impact/letter_cursor.png": 10,
    "fonts/impact/numbers_a.png": 10, "fonts/impact/numbers_mini.png": 10,
}
NUMBERED = re.compile(r"^(.*/ex)0*\d+(\.png)$")  # pictures of one sequence share a row

File = collections.namedtuple("File", "path size content reader piece tool licence sum")


def paths(data):
    """All files of the tree, in the order of their names."""
    found = (os.path.relpath(path, data) for path in
             glob.glob(os.path.join(data, "**", "*"), recursive=True) if os.path.isfile(path))
    return sorted(found)


def size(data, path):
    """Pixels of a picture, seconds of a sound, and the values that its sum is made of."""
    full = os.path.join(data, path)
    if path.endswith(".wav"):
        with wave.open(full) as file:
            samples = file.readframes(file.getnframes())
            return f"{file.getnframes() / file.getframerate():.3f} s", samples
    with Image.open(full) as image:
        words = f"{image.width} x {image.height}"
        if path in CELLS:
            words += f", {CELLS[path]} cells of {image.width // CELLS[path]}"
        return words, image.convert("RGBA").tobytes()


def literals():
    """String literals of the game's sources that name a file of data/, as patterns."""
    found = {}
    for source in sorted(glob.glob(os.path.join(pieces.ROOT, "src", "*", "*.cpp"))):
        with open(source, encoding="utf-8") as file:
            for name in re.findall(r'"([\w/%]+/[\w/%]+\.(?:png|wav))"', file.read()):
                pattern = re.sub(r"%(\d*)[id]", lambda digits: "[0-9]" * int(digits[1]), name)
                found.setdefault(pattern, set()).add(os.path.basename(source))
    return found


def readers(path, known):
    """Names of the sources that read a file."""
    names = {name for pattern, sources in known.items() if fnmatch.fnmatchcase(path, pattern)
             for name in sources}
    if not names:
        raise pieces.ArtError(f"data/{path}: no source of the game names it")
    return ", ".join(f"`{name}`" for name in sorted(names))


def licences():
    """(pattern, licence) of the paths of the tree, the last that fits counts."""
    with open(os.path.join(pieces.ROOT, ".reuse", "dep5"), encoding="utf-8") as file:
        stanzas = file.read().split("\n\n")
    for stanza in stanzas:
        fields = dict(line.split(": ", 1) for line in stanza.splitlines() if ": " in line)
        for pattern in fields.get("Files", "").split():
            yield pattern, fields["License"]


def first_fit(path, table, fault):
    for pattern, value in table:
        if fnmatch.fnmatchcase(path, pattern):
            return value
    raise pieces.ArtError(fault)


def describe(data):
    """Every file of the data tree."""
    makers = {path: piece.name for piece in pieces.find() if piece.output == pieces.DATA
              for path in piece.assets}
    known, rules = literals(), list(licences())[::-1]
    for path in paths(data):
        if path not in makers:
            raise pieces.ArtError(f"data/{path}: made by no piece of art/")
        words, values = size(data, path)
        content = first_fit(path, CONTENTS, f"data/{path}: art/doc/files.py does not know it")
        licence = first_fit(f"data/{path}", rules, f"data/{path}: has no licence")
        yield File(path, words, content, readers(path, known), makers[path], TOOLS[makers[path]],
                   licence, f"{zlib.crc32(values):08x}")


def rows(described):
    """Files as rows of a table; a sequence of equal pictures is one row."""
    groups = collections.defaultdict(list)
    for file in described:
        match = NUMBERED.match(file.path)
        groups[match[1] + "*" + match[2] if match else file.path].append(file)
    for files in groups.values():
        first, last = files[0], files[-1]
        if len(files) == 1:
            yield first
        else:
            both = f"{first.path} to {os.path.basename(last.path)}"
            total = f"{zlib.crc32(''.join(file.sum for file in files).encode()):08x}"
            yield first._replace(path=both, size=f"{len(files)} pictures of {first.size}",
                                 sum=total)
