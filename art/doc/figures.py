# SPDX-License-Identifier: CC0-1.0
#
# What is measured of the pictures for docs/assets.md. Pictures are 8-bit RGBA arrays, straight
# (not premultiplied); places are pixels from the top-left corner.

import numpy as np

import kit

METAL = 128                  # alpha from which a pixel counts as part of a thing
SOLID = 240                  # alpha of a pixel that shows nothing of what is below
FRINGE_GREYS = 16            # of 255; less is not seen at the rim of a thing
HIDES = (0.90, 0.95)         # alpha that hides a ship well, and wholly
BLAST_CENTRE = 41.5          # both ways; the middle of the ship below
BLAST_SHIP = slice(22, 61)   # rows and columns of a blast's picture over its ship
LUMA = np.array([0.299, 0.587, 0.114])

# How linear light is seen with full sight and with the three common kinds of colour blindness.
SIGHT = {
    "full sight": [[1, 0, 0], [0, 1, 0], [0, 0, 1]],
    "red-blind": [[0.152286, 1.052583, -0.204868], [0.114503, 0.786281, 0.099216],
                  [-0.003882, -0.048116, 1.051998]],
    "green-blind": [[0.367322, 0.860646, -0.227968], [0.280085, 0.672501, 0.047413],
                    [-0.011820, 0.042940, 0.968881]],
    "blue-blind": [[1.255528, -0.076749, -0.178779], [-0.078411, 0.930809, 0.147602],
                   [0.004733, 0.691367, 0.303900]],
}
TO_XYZ = np.array([[0.4124, 0.3576, 0.1805], [0.2126, 0.7152, 0.0722], [0.0193, 0.1192, 0.9505]])
WHITE_XYZ = np.array([0.9505, 1.0, 1.089])


def metal(picture):
    return picture[..., 3] >= METAL


def box(mask):
    """First and last column, first and last row of a mask."""
    columns, rows = np.flatnonzero(mask.any(axis=0)), np.flatnonzero(mask.any(axis=1))
    return int(columns[0]), int(columns[-1]), int(rows[0]), int(rows[-1])


def over(picture, colour=(0, 0, 0)):
    """The picture as the game draws it onto one colour."""
    screen = np.empty(picture.shape[:2] + (3,), np.uint8)
    screen[:] = colour
    kit.blend(screen, picture, 0, 0)
    return screen.astype(float)


def brightness(picture):
    """Mean grey (0 to 1) of what belongs to the thing."""
    return float((picture[metal(picture)][:, :3] / 255.0 @ LUMA).mean())


def lab(display, sight="full sight"):
    """CIE L*a*b* of display colours (0 to 1), as seen with a kind of sight."""
    seen = np.clip(kit.to_linear(display) @ np.array(SIGHT[sight]).T, 0, 1)
    xyz = seen @ TO_XYZ.T / WHITE_XYZ
    f = np.where(xyz > 0.008856, np.cbrt(xyz), 7.787 * xyz + 16 / 116)
    return np.stack([116 * f[..., 1] - 16, 500 * (f[..., 0] - f[..., 1]),
                     200 * (f[..., 1] - f[..., 2])], axis=-1)


def difference(one, other, sight="full sight"):
    """How far the mean colours of two things lie apart (CIE L*a*b*; 2 is just seen)."""
    means = [lab(each[metal(each)][:, :3] / 255.0, sight).mean(axis=0) for each in (one, other)]
    return float(np.linalg.norm(means[0] - means[1]))


def chroma(pixel):
    """Distance of a colour (0 to 1) from grey."""
    return float(np.hypot(*lab(np.asarray(pixel))[1:]))


def mean_colour(picture):
    """Mean display colour of what belongs to the thing."""
    return picture[metal(picture)][:, :3].mean(axis=0) / 255.0


def axis_ends(picture, columns=slice(18, 21)):
    """First and last row of a ship on its axis."""
    rows = np.flatnonzero(metal(picture)[:, columns].any(axis=1))
    return int(rows[0]), int(rows[-1])


def fringe(picture, ground):
    """Share of the softened rim that is seen darker or lighter than ground and solid parts both."""
    alpha = np.pad(picture[..., 3], 1)
    light = np.pad(over(picture, ground) @ LUMA, 1)
    darkest = lightest = np.full(picture.shape[:2], float(LUMA @ ground))
    near_solid = np.zeros(picture.shape[:2], bool)
    for dy, dx in np.ndindex(3, 3):
        part = slice(dy, dy + picture.shape[0]), slice(dx, dx + picture.shape[1])
        solid = alpha[part] >= SOLID
        near_solid |= solid
        darkest = np.where(solid, np.minimum(darkest, light[part]), darkest)
        lightest = np.where(solid, np.maximum(lightest, light[part]), lightest)
    rim = (picture[..., 3] >= kit.SMALLEST_ALPHA) & (picture[..., 3] < SOLID) & near_solid
    own = light[1:-1, 1:-1]
    strange = rim & ((own < darkest - FRINGE_GREYS) | (own > lightest + FRINGE_GREYS))
    return float(strange.sum() / max(rim.sum(), 1))


def centroid(picture):
    """Centre of what is seen over black: column and row."""
    weight = over(picture).mean(axis=2)
    rows, columns = np.indices(weight.shape) + 0.5
    total = max(weight.sum(), 1e-9)
    return float((columns * weight).sum() / total), float((rows * weight).sum() / total)


def reach(picture, centre):
    """Distance of the farthest pixel that is not clear from a centre, to the pixel's middle."""
    rows, columns = np.nonzero(picture[..., 3])
    return float(np.hypot(columns + 0.5 - centre[0], rows + 0.5 - centre[1]).max(initial=0.0))


def change(one, other):
    """RMS change between two screens, 0 to 255."""
    return float(np.sqrt(((one - other) ** 2).mean()))


def hidden(blast, ship, alpha):
    """Share of a ship's pixels that a picture of the blast hides with at least this alpha."""
    over_ship = blast[BLAST_SHIP, BLAST_SHIP, 3][metal(ship)] / 255.0
    return float((over_ship >= alpha).mean())


def blast_over(blast, ship):
    """A picture of the blast over its ship, in space."""
    screen = np.zeros(blast.shape[:2] + (3,), np.uint8)
    kit.blend(screen, ship, BLAST_SHIP.start, BLAST_SHIP.start)
    kit.blend(screen, blast, 0, 0)
    return screen.astype(float)


def luminance(display):
    """Relative luminance (0 to 1) of 8-bit colours."""
    return kit.to_linear(np.asarray(display) / 255.0) @ TO_XYZ[1]


def contrast(one, other):
    """Contrast ratio of two luminances, 1 to 21."""
    return float((max(one, other) + 0.05) / (min(one, other) + 0.05))
