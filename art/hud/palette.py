# SPDX-FileCopyrightText: 2026 The KRAVOLTIX developers
# SPDX-License-Identifier: CC0-1.0

# The colours of everything that lies on the glass in front of the fight. Each group is a ramp; the
# names say what the player reads by it.

import numpy as np


def colour(text):
    """Display values (0 to 1) of a colour written as six hexadecimal digits."""
    return np.array([int(text[i:i + 2], 16) for i in (0, 2, 4)]) / 255.0


def ramp(*texts):
    """The colours of a ramp, one per row."""
    return np.array([colour(text) for text in texts])


# Chrome: the sky is reflected from the top down, below the horizon the ground is light again.
ICE = ramp("f4fdff", "a6dcfb", "5eaee8", "b4e6ff")
# The frame rate's label, dimmer than its digits: the figure is read, not its name.
DIM_ICE = ramp("9cc8e4", "6ca4cc", "3f7db4", "6ea8d2")
# Lighter than fire above and darker than it at the base, so that strokes do not melt into it.
GOLD = ramp("fff8dc", "fff0bc", "ffe8a0", "ffda70", "c47e14")

# Letters and lines throw this, so that they keep an edge over fire.
SHADOW = colour("02050b")
# The small digits have no room for more than their own hollows. Were these darker, they would be
# read over fire instead of the strokes.
SMALL_SHADOW_ALPHAS = (0.80,)
SHADOW_ALPHAS = (0.76, 0.46)  # one pixel away, and two: there the next letter's edge needs it

# Comet behind the typing cursor, from its head to where it is lost.
COMET = ramp("ffffff", "80e6ff", "1470cc", "1268c2", "1058b6", "0e4aa6", "0c3e92", "0a327c",
             "0a2868", "082058")
COMET_ALPHA = (1.0, 0.86, 0.675, 0.54, 0.43, 0.34, 0.25, 0.17, 0.10, 0.05)

# Target marks, from the outer edge inwards: the light line is seen over space and smoke, the dark
# one over the yellow of a blast.
MARK = ramp("c8ff9c", "189826")

# The eight energy segments from the top, then the last row. The warning comes with the red ones.
ENERGY = ramp("18e05c", "34e848", "74ec30", "c4ee20", "ffe81c", "ffae14", "ff3c1c", "f81c1c",
              "f81c1c")

LASER_CORE, LASER_BODY, LASER_EDGE = ramp("ffffff", "5cf4ff", "1c7cff")
# A pure magenta with a violet rim: eyes that do not tell red from green see it as blue, and take it
# neither for the pale hull that it flies at nor for a rocket.
PLASMA = ramp("fff0ff", "fa14e0", "a000b4", "3a0044")
