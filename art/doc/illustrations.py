# SPDX-License-Identifier: CC0-1.0
#
# The pictures of docs/assets.md: contact sheets of art/sheets, waves and spectrograms of the
# sounds, and how each carries what it was made from.
#
# A picture that cannot be made again bit for bit on every machine (another version of a plotting
# library draws other letters) carries the sum of its sources in a text field of its PNG.

import importlib.machinery
import importlib.util
import os
import zlib

import numpy as np
from PIL import Image
from PIL.PngImagePlugin import PngInfo

import hearing
import measure
import pieces

SUM_FIELD = "Made from"
PLOT_COLOURS = 64
PLOT_SIZE, SCENE_SIZE = (8, 5.4), (8, 2)  # inches of 80 px
PLOT_DPI = 80
STRETCH_COLOURS = ("#ffb428", "#46e83c", "#1c7cff")

SHEETS = (  # of art/sheets, in the order of the page
    "ships-black-1x", "ships-black-4x", "ships-orange-4x",
    "shots-black-1x", "shots-black-4x", "shots-orange-4x",
    "launches-1x", "launches-4x",
    "explosion-1x", "explosion-3x", "explosion-ships-1x", "explosion-ships-3x",
    "hud-black-1x", "hud-black-4x", "hud-orange-4x",
    "text-over-fire-1x", "text-over-fire-4x",
)


def load_program(*path):
    """A program of art/ as a module."""
    full = os.path.join(pieces.ART, *path)
    loader = importlib.machinery.SourceFileLoader("_".join(path), full)
    module = importlib.util.module_from_spec(importlib.util.spec_from_loader(loader.name, loader))
    loader.exec_module(module)
    return module


def sheets(data):
    """Name and RGB array of each contact sheet that the page shows."""
    program = load_program("sheets")
    gallery = program.Gallery(data)
    made = {name: pixels for name, pixels in program.all_sheets(gallery) if name in SHEETS}
    if gallery.missing:
        raise pieces.ArtError(f"{data}: no {gallery.missing[0]}")
    return [(name, made[name]) for name in SHEETS]


def pixels_of(path):
    """RGB array of a picture file, None if it cannot be read."""
    try:
        with Image.open(path) as image:
            return np.array(image.convert("RGB"))
    except OSError:
        return None


def sum_of(path):
    """Sum of the sources that a picture carries, None if it has none."""
    try:
        with Image.open(path) as image:
            return image.text.get(SUM_FIELD)
    except (OSError, AttributeError):
        return None


def save(path, image, made_from=None):
    """Writes a picture as small as it gets, with the sum of its sources."""
    info = PngInfo()
    if made_from:
        info.add_text(SUM_FIELD, made_from)
    os.makedirs(os.path.dirname(path), exist_ok=True)
    image.save(path, optimize=True, pnginfo=info)


def sum_of_samples(samples):
    """Sum of a sound and of the program that draws it."""
    with open(os.path.join(pieces.ART, "sounds", "plots"), "rb") as file:
        return f"{zlib.crc32(file.read() + np.asarray(samples, np.float64).tobytes()):08x}"


def draw_sound(path, name, samples):
    """Wave with its attack, body and tail; loudness; spectrogram."""
    plots = load_program("sounds", "plots")
    figure, rows = plots.plt.subplots(3, 1, figsize=PLOT_SIZE, height_ratios=[1, 1, 2])
    plots.draw_wave(rows[0], samples)
    for stretch, colour in zip(hearing.STRETCHES[name], STRETCH_COLOURS):
        rows[0].axvspan(stretch.start, min(stretch.end, len(samples) / measure.RATE),
                        color=colour, alpha=0.25, linewidth=0)
    plots.draw_level(rows[1], samples)
    plots.draw_spectrogram(rows[2], samples)
    rows[2].set_xlabel("seconds")
    finish(plots, figure, path, sum_of_samples(samples))


def draw_scene(path, samples):
    """The wave of a minute of play."""
    plots = load_program("sounds", "plots")
    figure, axes = plots.plt.subplots(figsize=SCENE_SIZE)
    plots.draw_wave(axes, samples)
    axes.set_xlabel("seconds")
    finish(plots, figure, path, sum_of_samples(samples))


def finish(plots, figure, path, made_from):
    figure.tight_layout(pad=0.4)
    figure.set_dpi(PLOT_DPI)
    figure.canvas.draw()
    image = Image.fromarray(np.asarray(figure.canvas.buffer_rgba())[..., :3].copy(), "RGB")
    plots.plt.close(figure)
    save(path, image.quantize(PLOT_COLOURS, dither=Image.Dither.NONE), made_from)
