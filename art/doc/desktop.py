# SPDX-License-Identifier: CC0-1.0
#
# The desktop icon for docs/assets.md: its files, the questions about it, and its picture. `icons`
# maps an edge in pixels to the RGBA array of that size.

import os
import re
import zlib

import numpy as np
from PIL import Image

import criteria
import figures
import files
import kit
import pieces

PIECE = "icon"
SIZES = (16, 22, 24, 32, 48, 64, 128, 256, 512)
NAME = re.compile(r"(\d+)x\1/\w+/[\w-]+\.png$")
DRAWN_EDGE = re.compile(r'viewBox="0 0 (\d+) (\d+)"')
SOURCES = {  # by the ending of the file: what it is made from, and with
    ".png": ("[render](../art/icon/render), [player.inc](../art/ships/player.inc)",
             "POV-Ray, NumPy, Pillow"),
    ".svg": ("[kravoltix.svg](../art/icon/kravoltix.svg)", "drawn as text"),
}

# How the ship stands in the tile (see art/icon/render): edge of the tile in pixels of the game's
# ship, and degrees that it is turned to the right. The larger sizes show it tilted.
UPRIGHT, TILTED = (44, 0), (54, 30)
SMALLEST_TILTED = 48
SHIP_PX = 39
TILE_COLOUR = (14, 22, 45)
SMOOTH_TURN_PX = 128          # smaller icons are enlarged before they are turned back

ALIKE, STRANGE = 0.7, 0.3     # correlation with the player's ship at least, with the enemy at most
READABLE = 3.0                # contrast ratio, as for large bold text
CORNER_SHARE = 0.04           # of the edge; a rounded tile leaves at least this square clear
SMALLEST = SIZES[0]

GROUNDS = ((36, 40, 48), (236, 238, 242))   # a dark and a light desktop
ENLARGED = {256: (16, 14), 128: (22, 6)}    # below this size: which one, and how many times
GAP_PX = 12


def described():
    """Every file of the icon, its path from the top of the tree."""
    rules = list(files.licences())[::-1]
    for piece in pieces.find([PIECE]):
        for asset in sorted(piece.assets, key=lambda path: (edge(path) or max(SIZES) + 1, path)):
            path = f"{piece.output}/{asset}"
            size, values = contents(os.path.join(pieces.ROOT, path))
            source, tool = SOURCES[os.path.splitext(path)[1]]
            yield files.File(path, size, source, "", PIECE, tool,
                             files.first_fit(path, rules, f"{path}: has no licence"),
                             f"{zlib.crc32(values):08x}")


def edge(path):
    """Pixels that a file's folder promises, None for a drawing."""
    found = NAME.search(path)
    return int(found[1]) if found else None


def contents(path):
    """The size of a picture or drawing in words, and the values that its sum is made of."""
    if path.endswith(".png"):
        picture = kit.load(path)
        return f"{picture.shape[1]} x {picture.shape[0]}", picture.tobytes()
    with open(path, encoding="utf-8") as file:
        text = file.read()
    found = DRAWN_EDGE.search(text)
    if not found:
        raise pieces.ArtError(f"{path}: has no viewBox from 0 0")
    return f"any, drawn on {found[1]} x {found[2]}", text.encode()


def load(found):
    """The program's pictures among the described files, by their promised edge."""
    return {edge(file.path): kit.load(os.path.join(pieces.ROOT, file.path))
            for file in found if edge(file.path) and "/apps/" in file.path}


def ship_of(icon):
    """The ship of an icon, turned upright, as large as the game's."""
    span, degrees = TILTED if icon.shape[0] >= SMALLEST_TILTED else UPRIGHT
    image = Image.fromarray(figures.over(icon).astype(np.uint8), "RGB")
    if degrees:
        image = image.resize((max(icon.shape[0], SMOOTH_TURN_PX),) * 2, Image.Resampling.BICUBIC)
        image = image.rotate(degrees, Image.Resampling.BICUBIC)
    margin = image.width * (span - SHIP_PX) / 2 / span
    box = (margin, margin, image.width - margin, image.width - margin)
    return np.asarray(image.resize((SHIP_PX,) * 2, Image.Resampling.BICUBIC, box)).astype(float)


def likeness(icon, ship):
    """Correlation of an icon's pixels with those of a ship of the game, 1 if they are the same."""
    pair = ship_of(icon).ravel(), figures.over(ship, TILE_COLOUR).ravel()
    return float(np.corrcoef(*pair)[0, 1])


def light_to_dark(icon):
    """Contrast of the lightest quarter of the tile to its darkest."""
    light = np.sort(figures.luminance(figures.over(icon))[icon[..., 3] >= figures.SOLID])
    quarter = len(light) // 4
    return figures.contrast(light[-quarter:].mean(), light[:quarter].mean())


def corner_alpha(icon):
    """Largest alpha in the four corners."""
    reach = max(1, int(CORNER_SHARE * icon.shape[0]))
    ends = (slice(None, reach), slice(-reach, None))
    return max(int(icon[rows, columns, 3].max()) for rows in ends for columns in ends)


def asked(icons, player, enemy):
    there = [size for size in SIZES if size in icons and icons[size].shape[:2] == (size, size)]
    yield ("Is there an icon for every size that desktops ask for?", len(there) == len(SIZES),
           f"{len(there)} of {len(SIZES)}, from {SIZES[0]} to {SIZES[-1]} px")
    alike = {size: likeness(icon, player) for size, icon in icons.items()}
    strange = max(likeness(icon, enemy) for icon in icons.values())
    worst = min(alike, key=alike.get)
    yield ("Is it the player's ship of the game, in every size?",
           alike[worst] >= ALIKE and strange <= STRANGE,
           f"correlation with the player's ship {alike[worst]:.2f} at worst, at {worst} px (at "
           f"least {ALIKE}), with the enemy {strange:.2f} at most (at most {STRANGE})")
    contrast = light_to_dark(icons[SMALLEST])
    yield (f"Does the ship stand out of its tile at {SMALLEST} px?", contrast >= READABLE,
           f"lightest quarter to darkest {contrast:.1f} : 1 (at least {READABLE:.0f})")
    alpha = max(corner_alpha(icon) for icon in icons.values())
    yield ("Are its corners clear?", alpha == 0, f"largest alpha {alpha} of 255")


def answers(icons, pictures):
    """All questions about the icon with their answers."""
    return [criteria.Answer("Desktop icon", *answer) for answer in
            asked(icons, pictures[criteria.PLAYER[0]], pictures[criteria.ENEMY[0]])]


def columns(icons):
    """Columns of icons, from the largest to the smallest; the last one holds all small ones."""
    yield [icons[512]]
    for size, (small, factor) in ENLARGED.items():
        yield [icons[size], kit.enlarge(icons[small], factor)]
    yield [icons[size] for size in (64, 48, 32, 24, 22, 16)]


def lay(screen, icon, x, y):
    """Draws an icon as desktops do: without the rounding of the game's blend."""
    part = screen[y:y + icon.shape[0], x:x + icon.shape[1]]
    alpha = icon[..., 3:] / 255.0
    part[:] = np.rint(part * (1.0 - alpha) + icon[..., :3] * alpha)


def strip(icons, ground):
    """All sizes on one desktop."""
    found = list(columns(icons))
    widths = [max(icon.shape[1] for icon in column) for column in found]
    height = max(sum(icon.shape[0] + GAP_PX for icon in column) for column in found) + GAP_PX
    screen = np.empty((height, sum(widths) + GAP_PX * (len(widths) + 1), 3), np.uint8)
    screen[:] = ground
    x = GAP_PX
    for column, width in zip(found, widths):
        y = GAP_PX
        for icon in column:
            lay(screen, icon, x, y)
            y += icon.shape[0] + GAP_PX
        x += width + GAP_PX
    return screen


def sheet(icons):
    """All sizes on a dark and on a light desktop."""
    return np.concatenate([strip(icons, ground) for ground in GROUNDS])
