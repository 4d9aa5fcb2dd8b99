# SPDX-FileCopyrightText: 2026 The KRAVOLTIX developers
# SPDX-License-Identifier: CC0-1.0

# The four corner marks round the ship that a rocket has chosen: one drawing and its mirror images.

import numpy as np

import kit
from palette import MARK

SIZE_PX = 13
ARM_PX = 11
SOLID_PX = 8  # from here the arm fades to its end
END_ALPHA = 0.34


def top_left():
    along = np.arange(SIZE_PX)
    fade = np.interp(along, [SOLID_PX - 1, ARM_PX - 1], [1.0, END_ALPHA])
    fade[along >= ARM_PX] = 0.0
    picture = np.zeros((SIZE_PX, SIZE_PX, 4))
    for depth, colour in reversed(list(enumerate(MARK))):
        picture[depth, depth:] = np.column_stack([np.tile(colour, (SIZE_PX, 1)), fade])[depth:]
        picture[depth:, depth] = picture[depth, depth:]
    return kit.to_bytes(picture)


def all_four():
    """The marks by the names of their files."""
    mark = top_left()
    return {"topleft": mark, "topright": mark[:, ::-1], "bottomleft": mark[::-1],
            "bottomright": mark[::-1, ::-1]}
