# SPDX-FileCopyrightText: 2026 The KRAVOLTIX developers
# SPDX-License-Identifier: CC0-1.0

# The energy gauge: a tube of light segments, and the scale on its right.
#
# A hit costs eight units and a unit is a row, so each hit takes exactly one segment off the top.
# The scale starts one row higher than the tube; its ticks meet the segments' upper edges.

import numpy as np

import kit
from glyphs import shadow_of
from palette import ENERGY, ICE, SHADOW, SHADOW_ALPHAS

TUBE_HEIGHT_PX, TUBE_WIDTH_PX = 65, 10
SEGMENT_ROWS = 8  # seven lit, one dark
# Light across the tube: the key light comes from the upper left, the rim light from the right.
TUBE_LIGHT = np.array([0.52, 0.80, 1.00, 1.00, 0.95, 0.84, 0.70, 0.56, 0.43, 0.40])
TUBE_WHITE = np.array([0.00, 0.14, 0.55, 0.40, 0.14, 0.04, 0.00, 0.00, 0.00, 0.00])
RIM = np.array([0.04, 0.10, 0.22])  # added to the last column: the cold light from behind
# The bevel of one segment, row by row.
SEGMENT_LIGHT = np.array([1.14, 1.04, 1.00, 0.98, 0.94, 0.88, 0.74, 0.16])
JOINT_ALPHA = 0.85

SCALE_HEIGHT_PX, SCALE_WIDTH_PX = 67, 9
AXIS_COLUMNS = 2
FIRST_TICK_ROW, TICK_STEP_ROWS, TICKS = 1, 8, 9
TICK_LENGTHS_PX = (9, 4, 6, 4, 9, 4, 6, 4, 9)  # whole, eighth, quarter ...
SHORT_TICK_PX = 4
AXIS_LIGHT, AXIS_DARK = ICE[2] * 0.5 + ICE[1] * 0.5, ICE[2] * 0.5
FIRST_RED_TICK = 6
RED_TICK = ENERGY[-1] * 0.6 + 0.4 * np.array([1.0, 0.75, 0.65])


def tube():
    rows = np.arange(TUBE_HEIGHT_PX)
    segment, inside = np.divmod(rows, SEGMENT_ROWS)
    light = SEGMENT_LIGHT[inside][:, None, None] * TUBE_LIGHT[None, :, None]
    lit = ENERGY[segment][:, None, :]
    white = np.where(inside < SEGMENT_ROWS - 1, 1.0, 0.0)[:, None, None] * TUBE_WHITE[None, :, None]
    colour = (lit + (1.0 - lit) * white) * light
    colour[inside < SEGMENT_ROWS - 1, -1] += RIM
    alpha = np.where(inside < SEGMENT_ROWS - 1, 1.0, JOINT_ALPHA)
    return kit.to_bytes(np.dstack([colour, np.repeat(alpha[:, None], TUBE_WIDTH_PX, axis=1)]))


def scale():
    ticks = FIRST_TICK_ROW + TICK_STEP_ROWS * np.arange(TICKS)
    lines = np.zeros((SCALE_HEIGHT_PX, SCALE_WIDTH_PX))
    lines[:, :AXIS_COLUMNS] = 1.0
    for row, length in zip(ticks, TICK_LENGTHS_PX):
        lines[row, :length] = 1.0
    picture = np.zeros(lines.shape + (4,))
    picture[..., :3] = SHADOW
    picture[..., 3] = shadow_of(lines, SHADOW_ALPHAS[:1])
    picture[:, 0] = [*AXIS_LIGHT, 1.0]
    picture[:, 1] = [*AXIS_DARK, 1.0]
    for i, (row, length) in enumerate(zip(ticks, TICK_LENGTHS_PX)):
        cold = ICE[0] if length > SHORT_TICK_PX else ICE[1]
        picture[row, :length] = [*(RED_TICK if i >= FIRST_RED_TICK else cold), 1.0]
    return kit.to_bytes(picture)
