# SPDX-FileCopyrightText: 2026 The KRAVOLTIX developers
# SPDX-License-Identifier: CC0-1.0

# The typing cursor: a white block, and behind it a comet's tail that lies over the newest letters.
#
# Frame k stands k cells behind the block, so the tail is one curve over "cells behind the block",
# sampled column by column: neighbouring frames meet without a step.

import numpy as np

import kit
from palette import COMET, COMET_ALPHA

FRAMES = 10
CELL_HEIGHT_PX, CELL_WIDTH_PX = 9, 8
LETTER_ROWS = 8
BLOCK_COLUMNS = 7
BLOCK_CORNER_ALPHA = 0.45
BLOCK_FOOT_ALPHA = 0.55  # the row below the base line
TAPER = 0.55  # part of its alpha that the tail's upper and lower edge has lost at its very end


def tail():
    """All ten frames side by side, the block's cell still tail."""
    column = np.arange(FRAMES * CELL_WIDTH_PX)
    frame, across = np.divmod(column, CELL_WIDTH_PX)
    behind = frame + 0.5 - (across + 0.5) / CELL_WIDTH_PX
    steps = np.arange(FRAMES)
    alpha = np.interp(behind, steps, COMET_ALPHA)
    hue = np.stack([np.interp(behind, steps, COMET[:, i]) for i in range(3)], axis=1)
    row = np.arange(CELL_HEIGHT_PX)
    edge = np.clip(np.abs(row - (LETTER_ROWS - 1) / 2) / ((LETTER_ROWS - 1) / 2), 0, 1) ** 2
    weight = 1.0 - TAPER * edge[:, None] * np.clip(behind, 0, None) / FRAMES
    weight[LETTER_ROWS:] *= BLOCK_FOOT_ALPHA
    colours = np.broadcast_to(hue, (CELL_HEIGHT_PX,) + hue.shape)
    return np.dstack([colours, weight * alpha])


def block():
    """The cursor's own cell: letter-high, its right corners rounded, a cold glow beside it."""
    cell = np.zeros((CELL_HEIGHT_PX, CELL_WIDTH_PX, 4))
    cell[..., :3] = COMET[1]
    cell[:LETTER_ROWS, :BLOCK_COLUMNS] = [*COMET[0], 1.0]
    cell[LETTER_ROWS, :BLOCK_COLUMNS, 3] = BLOCK_FOOT_ALPHA
    cell[1:LETTER_ROWS - 1, BLOCK_COLUMNS, 3] = BLOCK_CORNER_ALPHA
    cell[[0, LETTER_ROWS - 1], BLOCK_COLUMNS - 1, 3] = BLOCK_CORNER_ALPHA
    return cell


def frames():
    sheet = tail()
    sheet[:, :CELL_WIDTH_PX] = block()
    return kit.to_bytes(sheet)
