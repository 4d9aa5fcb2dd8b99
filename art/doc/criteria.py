# SPDX-License-Identifier: CC0-1.0
#
# What the pictures have to be, each as a question that a player would ask, with its answer and the
# figure that was measured. `pictures` maps a path below data/ to its RGBA array.

import collections
import itertools

import numpy as np

import figures
import kit

Answer = collections.namedtuple("Answer", "group question yes figure")

PLAYER = [f"ships/ship01{pose}.png" for pose in ("", "left", "right")]
ENEMY = [f"ships/enemy01{pose}.png" for pose in ("", "left", "right")]
LASER, ROCKET, ENEMY_SHOT = "shots/shot01a.png", "shots/shot01b.png", "shots/e_shot01c.png"
BLAST = [f"explosions/ex{i:04}.png" for i in range(46)]
FLASH = [f"explosions/mini/ex{i:03}.png" for i in range(7)]
MARKS = [f"display/enemyrect_{corner}.png"
         for corner in ("topleft", "topright", "bottomleft", "bottomright")]
LETTERS, CURSOR = "fonts/impact/letters.png", "fonts/impact/letter_cursor.png"
TUBE, SCALE = "display/energy01.png", "display/energyscale.png"
THINGS = {"player": PLAYER[0], "enemy": ENEMY[0], "laser": LASER, "enemy shot": ENEMY_SHOT}
# Pairs that decide over a hit; laser and player meet nowhere but at the nose.
OPPONENTS = (("player", "enemy"), ("player", "enemy shot"), ("enemy", "enemy shot"),
             ("enemy", "laser"), ("laser", "enemy shot"))

CLEARLY_APART = 15          # CIE L*a*b*
GREY_APART = 0.05           # of the way from black to white
STAR_CHROMA = 20            # less is grey
BLAST_RADIUS_PX = 40
CENTROID_SLACK_PX = 2.5
BRIGHT_BLASTS = range(32)
BURSTS = (1, 16)
LARGEST_CHANGE, SMALLEST_CHANGE = 16.0, 2.0
SMOKE_MOVES_UNTIL = 38
FAINT = 0.05                # mean of 0 to 255; less is not seen
FLASH_CENTRE, FLASH_RADIUS_PX = (9.0, 8.0), 7.5
TEXT_CELL_PX = 8
STROKE, SOFTENED = 0.2, 0.05  # luminance over space of a letter's strokes, and of their soft ends
READABLE, READABLE_UNDER_TAIL = 3.0, 2.0  # contrast ratios; large bold text needs 3
LIT = 0.03                  # luminance over space of a gauge's lit parts; its shadow has none
HIT_COSTS, FULL_ENERGY = 8, 65
TUBE_TOP, SCALE_TOP = 403, 402            # rows of the screen
FRINGE_SHARE = 0.02
GROUNDS = {"space": (0, 0, 0), "fire": (255, 180, 40)}


def telling_apart(pictures):
    things = {name: pictures[path] for name, path in THINGS.items()}
    for sight in figures.SIGHT:
        gaps = {pair: figures.difference(things[pair[0]], things[pair[1]], sight)
                for pair in OPPONENTS}
        pair, least = min(gaps.items(), key=lambda item: item[1])
        yield (f"Are ships and shots told apart by colour ({sight})?", least >= CLEARLY_APART,
               f"closest pair {pair[0]} / {pair[1]}: {least:.0f} (at least {CLEARLY_APART})")
    yield from apart_in_grey(things)
    chromas = {name: figures.chroma(figures.mean_colour(things[name]))
               for name in ("laser", "enemy shot")}
    pixels = {name: int(figures.metal(things[name]).sum()) for name in chromas}
    yield ("Is a shot never taken for a star?",
           min(chromas.values()) > STAR_CHROMA and min(pixels.values()) > 1,
           ", ".join(f"{name}: colour {chromas[name]:.0f} (a star 0), {pixels[name]} px (a star 1)"
                     for name in chromas))


def apart_in_grey(things):
    light = {name: figures.brightness(picture) for name, picture in things.items()}
    yield ("In grey, is the player lighter than the enemy?",
           light["player"] > light["enemy"] + GREY_APART,
           f"player {light['player']:.2f}, enemy {light['enemy']:.2f} of white")
    boxes = {name: figures.box(figures.metal(things[name])) for name in ("laser", "enemy shot")}
    shapes = {name: (box[1] - box[0] + 1) / (box[3] - box[2] + 1) for name, box in boxes.items()}
    yield ("In grey, are the shots told apart by their shape?",
           shapes["laser"] < 0.5 and shapes["enemy shot"] > 1.2,
           f"laser {shapes['laser']:.2f} times as wide as high, "
           f"enemy shot {shapes['enemy shot']:.2f}")


def ships(pictures):
    light = {"player": figures.brightness(pictures[PLAYER[0]]),
             "enemy": figures.brightness(pictures[ENEMY[0]])}
    for name, low, high in (("player", 0.50, 0.62), ("enemy", 0.40, 0.47)):
        yield (f"Is the {name} as bright as it should be?", low <= light[name] <= high,
               f"{light[name]:.2f} of white ({low:.2f} to {high:.2f})")
    for name, poses in (("player", PLAYER), ("enemy", ENEMY)):
        ends = [figures.axis_ends(pictures[path]) for path in poses]
        shift = max(abs(a - b) for one, other in itertools.combinations(ends, 2)
                    for a, b in zip(one, other))
        yield (f"Do nose and tail of the {name} stay in place when it banks?", shift <= 1,
               f"shift {shift} px (at most 1)")
        spans = [figures.box(figures.metal(pictures[path]))[:2] for path in poses]
        widths = [last - first + 1 for first, last in spans]
        yield (f"Does the {name} fly full width straight, and narrower in a bank?",
               widths[0] >= 38 and all(33 <= width <= 37 for width in widths[1:]),
               f"{widths[0]} px straight (38 or 39), {widths[1]} and {widths[2]} banked (33 to 37)")
        left, right = (figures.over(pictures[path]) for path in poses[1:])
        mirrored = figures.change(left[:, ::-1], right)
        yield (f"Is a bank of the {name} lit anew, not mirrored?", mirrored > 4,
               f"left pose mirrored differs from the right one by {mirrored:.0f} of 255")
    yield from launches(pictures)


def launches(pictures):
    nose = min(int(pictures[path][0:5, 18:21, 3].min()) for path in PLAYER)
    yield ("Does the nose hide the foot of a new laser shot, in every pose?", nose >= 230,
           f"least alpha {nose} of 255 (at least 230)")
    tail = min(int(pictures[path][26:36, 15:24, 3].min()) for path in PLAYER)
    yield ("Does the hull hide a rocket until it drops, in every pose?", tail >= 230,
           f"least alpha {tail} of 255 (at least 230)")
    place = muzzle(pictures[ENEMY[0]])
    off = float(np.hypot(place[0] - 19.5, place[1] - 34))
    yield ("Does an enemy's shot grow out of a muzzle that glows in its colour?", off <= 1.0,
           f"middle of the glow at ({place[0]:.1f}, {place[1]:.1f}), {off:.1f} px from the shot's")
    rocket = pictures[ROCKET][..., 3].astype(int)
    apart = int(np.abs(rocket - rocket[:, ::-1]).max())
    yield ("Is the rocket symmetric about the column that runs on the target?", apart <= 16,
           f"alpha differs by {apart} of 255 at most (at most 16)")


def muzzle(enemy):
    """Middle of the magenta pixels at the lower end."""
    red, green, blue = (enemy[28:, :, i].astype(float) for i in range(3))
    weight = np.where(enemy[28:, :, 3] >= figures.METAL,
                      np.clip(np.minimum(red, blue) - green - 40, 0, None), 0)
    rows, columns = np.indices(weight.shape) + 0.5
    total = max(weight.sum(), 1e-9)
    return (columns * weight).sum() / total, 28 + (rows * weight).sum() / total


def blast(pictures):
    frames = [pictures[path] for path in BLAST]
    shown = [figures.over(frame) for frame in frames]
    yield from blast_place(frames)
    yield from blast_steps(shown)
    for alpha, numbers, least, words in ((figures.HIDES[0], range(19, 25), 0.98, "well"),
                                         (figures.HIDES[1], range(18, 23), 1.0, "wholly")):
        shares = {(number, path): figures.hidden(frames[number], pictures[path], alpha)
                  for number in numbers for path in PLAYER + ENEMY}
        (number, path), worst = min(shares.items(), key=lambda item: item[1])
        yield (f"Do pictures {numbers[0]} to {numbers[-1]} hide every ship {words}?",
               worst >= least,
               f"alpha {alpha:.2f} or more on {100 * worst:.1f} % of its pixels at worst: "
               f"picture {number} over `{path}` (at least {100 * least:.0f} %)")
    jumps = [(figures.change(figures.blast_over(frames[19], pictures[path]), shown[20]),
              figures.change(shown[19], shown[20])) for path in PLAYER + ENEMY]
    with_ship, without = max(jumps, key=lambda pair: pair[0] - pair[1])
    yield ("Is the moment when the ship goes not seen?", with_ship - without < 0.5,
           f"the step from 19 to 20 is {with_ship:.1f} with a ship going, {without:.1f} without")
    left = sum(int((frames[number][..., 3] > 0).sum()) for number in (44, 45))
    yield ("Is nothing left on the screen at the end?", left == 0, f"{left} pixels in 44 and 45")


def blast_place(frames):
    reaches = [figures.reach(frame, (figures.BLAST_CENTRE,) * 2) for frame in frames]
    yield ("Does the blast die out before the edge of its circle?",
           max(reaches) <= BLAST_RADIUS_PX,
           f"{max(reaches):.1f} px in picture {int(np.argmax(reaches))} "
           f"(at most {BLAST_RADIUS_PX})")
    boxes = [figures.box(frame[..., 3] > 0) for frame in frames if frame[..., 3].any()]
    low, high = min(min(box) for box in boxes), max(max(box) for box in boxes)
    yield ("Is nothing of it cut off?", low >= 1 and high <= 81,
           f"columns and rows {low} to {high} (1 to 81)")
    off = [max(abs(value - figures.BLAST_CENTRE) for value in figures.centroid(frames[number]))
           for number in BRIGHT_BLASTS]
    yield ("Does it stay on the ship while it is bright?", max(off) <= CENTROID_SLACK_PX,
           f"at worst {max(off):.1f} px off in picture {int(np.argmax(off))} "
           f"(at most {CENTROID_SLACK_PX})")


def blast_steps(shown):
    steps = [figures.change(one, other) for one, other in zip(shown, shown[1:])]
    calm = {number: steps[number - 1] for number in range(1, 46) if number not in BURSTS}
    worst = max(calm, key=calm.get)
    yield ("Does it change smoothly from picture to picture?", calm[worst] < LARGEST_CHANGE,
           f"largest step but the two bursts {calm[worst]:.1f}, to picture {worst} "
           f"(below {LARGEST_CHANGE:.0f}); the bursts {steps[0]:.1f} and {steps[15]:.1f}")
    smoke = {number: steps[number - 1] for number in range(1, SMOKE_MOVES_UNTIL)}
    least = min(smoke, key=smoke.get)
    yield ("Does the smoke never freeze?", smoke[least] >= SMALLEST_CHANGE,
           f"smallest step {smoke[least]:.1f}, to picture {least} "
           f"(at least {SMALLEST_CHANGE:.0f} up to picture {SMOKE_MOVES_UNTIL})")
    light = [picture.mean() for picture in shown]
    rises = {number: light[number] / max(light[number - 1], FAINT) for number in range(1, 44)
             if number not in BURSTS}
    worst = max(rises, key=rises.get)
    yield ("Does it grow suddenly brighter in its two bursts only?", rises[worst] < 1.08,
           f"elsewhere by {100 * (rises[worst] - 1):.0f} % at most, in picture {worst} "
           f"(below 8 %)")


def hit_flash(pictures):
    frames = [pictures[path] for path in FLASH]
    reach = max(figures.reach(frame, FLASH_CENTRE) for frame in frames)
    yield ("Is the flash never cut by its picture's edge?", reach <= FLASH_RADIUS_PX,
           f"reaches {reach:.1f} px from its middle (at most {FLASH_RADIUS_PX})")
    offs = [max(abs(value - middle) for value, middle in zip(figures.centroid(frame), FLASH_CENTRE))
            for frame in frames[:5]]
    yield ("Is it in the middle of the hit?", max(offs) < 0.6,
           f"at worst {max(offs):.2f} px off in picture {int(np.argmax(offs))} (below 0.6)")
    spark = int((figures.over(frames[0]).max(axis=2) > 128).sum())
    yield ("Does a hit blink once, not twice?", spark <= 13,
           f"picture 0, drawn once more at the end, has {spark} bright pixels (at most 13)")


def text(pictures):
    letters, cursor = pictures[LETTERS], pictures[CURSOR]
    space = [np.zeros((letters.shape[0], TEXT_CELL_PX, 3), np.uint8)]
    plain = text_contrast(letters, space)
    yield ("Is text read over space?", plain >= READABLE,
           f"contrast {plain:.1f} : 1 (at least {READABLE:.0f})")
    worst = min((text_contrast(letters, grounds(pictures[path])), number)
                for number, path in enumerate(BLAST))
    yield ("Is text read over every picture of the explosion?", worst[0] >= READABLE,
           f"at worst {worst[0]:.1f} : 1, over picture {worst[1]} (at least {READABLE:.0f})")
    second = cursor[:, 2 * TEXT_CELL_PX:3 * TEXT_CELL_PX]
    below = text_contrast(letters, space, second)
    yield ("Is a letter read under the second frame of the cursor's tail?",
           below >= READABLE_UNDER_TAIL,
           f"{below:.1f} : 1 (at least {READABLE_UNDER_TAIL:.0f})")


def grounds(picture):
    """Nine places of a blast's picture, as large as a letter's cell."""
    shown = figures.over(picture).astype(np.uint8)
    return [shown[y:y + 9, x:x + TEXT_CELL_PX] for y in (25, 37, 49) for x in (25, 37, 49)]


def text_contrast(letters, places, tail=None):
    """Contrast of the letters' strokes to what stands left and right of them."""
    plain = figures.luminance(figures.over(letters))
    stroke, soft = plain > STROKE, plain > SOFTENED
    beside = np.zeros_like(stroke)
    beside[:, 1:] |= stroke[:, :-1]
    beside[:, :-1] |= stroke[:, 1:]
    count = letters.shape[1] // TEXT_CELL_PX
    light, dark = [], []
    for place in places:
        screen = np.tile(place, (1, count, 1))
        kit.blend(screen, letters, 0, 0)
        if tail is not None:
            kit.blend(screen, np.tile(tail, (1, count, 1)), 0, 0)
        shown = figures.luminance(screen)
        light.append(shown[stroke].mean())
        dark.append(shown[beside & ~soft].mean())
    return figures.contrast(np.mean(light), np.mean(dark))


def gauge(pictures):
    lit = figures.luminance(figures.over(pictures[TUBE])).max(axis=1) > LIT
    beside_axis = figures.luminance(figures.over(pictures[SCALE]))[:, 3]
    ticks = set(SCALE_TOP + np.flatnonzero(beside_axis > LIT))
    left = [FULL_ENERGY - HIT_COSTS * hit for hit in range(9)]
    gone = [segments(lit[FULL_ENERGY - energy:]) for energy in left]
    yield ("Does each hit put out exactly one segment?",
           all(a - b == 1 for a, b in zip(gone, gone[1:])),
           f"segments lit from full to the last: {', '.join(map(str, gone))}")
    tops = [TUBE_TOP + FULL_ENERGY - energy for energy in left]
    met = sum(top in ticks for top in tops)
    yield ("Does a tick of the scale meet the top of every segment?", met == len(tops),
           f"{met} of {len(tops)}")
    corner = [pictures[path] for path in MARKS]
    mirrored = max(int(np.abs(corner[0].astype(int) - other.astype(int)).max()) for other in
                   (corner[1][:, ::-1], corner[2][::-1], corner[3][::-1, ::-1]))
    yield ("Are the four corner marks one bracket?", mirrored == 0,
           f"mirrored copies differ by {mirrored} of 255")


def segments(rows):
    """How many runs of lit rows there are."""
    return int(rows[0]) + int((rows[1:] & ~rows[:-1]).sum())


def every_picture(pictures):
    veiled = sum(int(((each[..., 3] > 0) & (each[..., 3] < kit.SMALLEST_ALPHA)).sum())
                 for each in pictures.values())
    coloured = sum(int(each[each[..., 3] == 0].any(axis=1).sum()) for each in pictures.values())
    yield ("Is what cannot be seen wholly clear?", veiled == 0 and coloured == 0,
           f"{veiled} pixels with an alpha of 1 to 3, {coloured} clear ones with a colour")
    # The enemy's shot ends in a dark of its own colour, so that it is seen over fire.
    things = PLAYER + ENEMY + [ROCKET, LASER] + MARKS
    for name, colour in GROUNDS.items():
        shares = {path: figures.fringe(pictures[path], colour) for path in things}
        path, worst = max(shares.items(), key=lambda item: item[1])
        yield (f"Are ships, the player's shots and marks free of fringes over {name}?",
               worst <= FRINGE_SHARE,
               f"at worst {100 * worst:.1f} % of the rim, `{path}` "
               f"(at most {100 * FRINGE_SHARE:.0f} %)")


GROUPS = {
    "Telling things apart": telling_apart,
    "Ships and their weapons": ships,
    "Explosion": blast,
    "Hit flash": hit_flash,
    "Text": text,
    "Energy and target marks": gauge,
    "Every picture": every_picture,
}


def answers(pictures):
    """All questions with their answers."""
    return [Answer(group, *answer) for group, ask in GROUPS.items() for answer in ask(pictures)]
