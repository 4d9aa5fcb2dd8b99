# SPDX-License-Identifier: CC0-1.0
#
# The text of docs/assets.md, chapter by chapter.

import itertools

import numpy as np

import files
import hearing
import measure
import mix_scene
import sentences

YES, NO = "yes", "**no**"

HEAD = """# Pictures and sounds

<!-- SPDX-License-Identifier: CC0-1.0 -->
<!-- Written by art/page. Change art/doc/ and run it again. -->

What the game shows and plays, measured and shown as it is in `data/`, and its icon. `art/page`
writes this page, `art/screens` plays the game for its screens, and a test says when either is out
of date. How the files are made from their sources: [art/README.md](../art/README.md).
"""

SHEETS = (
    ("Ships", "The player's ship and the enemy: straight, left wing down, right wing down. True "
     "size, then four times, over space and over the colour of fire.",
     ("ships-black-1x", "ships-black-4x", "ships-orange-4x")),
    ("Shots and hit flashes", "Laser, rocket, enemy's shot; the seven pictures of a hit flash, the "
     "last one empty.",
     ("shots-black-1x", "shots-black-4x", "shots-orange-4x")),
    ("Where shots begin and where they hit", "Above: a laser at the nose, a rocket at the "
     "moment of its release and when it has dropped, an enemy's shot just born, and the flash of a "
     "laser on the left wing, the body and the right wing. Below: an enemy's shot under the "
     "player's hull with its flash on nose, shoulder and wing; the flash as it runs; the shots "
     "among stars.",
     ("launches-1x", "launches-4x")),
    ("Explosion", "All 46 pictures in order at true size, then every third one three times as "
     "large.",
     ("explosion-1x", "explosion-3x")),
    ("Explosion over the ships", "Pictures 1, 6, 12 and 19 over the ship, 20 and 30 without it: it "
     "goes between 19 and 20. The player's above, the enemy's below.",
     ("explosion-ships-1x", "explosion-ships-3x")),
    ("Text, gauges and marks", "Letters, cursor, digits, small digits, frame-rate label, cross; "
     "weapon panels; corner marks; energy tube and scale.",
     ("hud-black-1x", "hud-black-4x", "hud-orange-4x")),
    ("Text over fire", "Messages over explosions, and under the cursor's tail.",
     ("text-over-fire-1x", "text-over-fire-4x")),
)


def table(head, rows):
    lines = [" | ".join(head), " | ".join(["---"] * len(head))]
    lines += [" | ".join(str(cell) for cell in row) for row in rows]
    return "\n".join(f"| {line} |" for line in lines) + "\n"


def said(yes):
    return YES if yes else NO


def picture(name, words):
    return f"![{words}](assets/{name}.png)\n"


def questions(facts):
    missed = [answer for answer in facts.answers if not answer.yes]
    total = len(facts.answers)
    yield "## What a player would ask\n"
    yield f"{total - len(missed)} of {total} questions are answered with yes." + \
        (" The others:\n" if missed else "\n")
    if missed:
        yield "\n".join(f"- {answer.question} {answer.figure}." for answer in missed) + "\n"
    for group, answers in itertools.groupby(facts.answers, key=lambda answer: answer.group):
        yield f"### {group}\n"
        yield table(("Question", "", "Measured"),
                    ((each.question, said(each.yes), each.figure) for each in answers))


def looked(facts):
    yield "## Looked at\n"
    yield "Judged by eye, at true size and enlarged, on a screen; no figure stands behind it. A " \
        "judgement counts for the pictures that were looked at, and says so when they have " \
        "changed.\n"
    yield table(("Question", "", "What was seen"),
                ((look.question, NO if look.answer == "no" else look.answer, look.remark)
                 for look in facts.looks))


def contact_sheets(_facts):
    yield "## The pictures\n"
    for title, words, names in SHEETS:
        yield f"### {title}\n"
        yield words + "\n"
        yield "\n".join(picture(name, f"{title}, {name.rsplit('-', 1)[1]}") for name in names)


def icon(facts):
    yield "## The icon\n"
    yield "What desktops show for the game, on a dark and on a light one: nine sizes, and the " \
        "two smallest enlarged. From 48 pixels up the ship is tilted; smaller, it stands upright " \
        "and is simplified. A drawing serves every other size.\n"
    yield picture("icon", "The icon in nine sizes on a dark and on a light desktop")
    yield table(("File", "Size", "Made from", "With", "Licence", "Sum"),
                ((f"`{file.path}`", file.size, file.content, file.tool, file.licence,
                  f"`{file.sum}`") for file in facts.icons))


def screens(facts):
    yield "## The game\n"
    yield "Screens of one game, played by the program itself from the keys in " \
        "[screens.txt](../art/doc/screens.txt), a frame every 16 milliseconds.\n"
    for screen in facts.screens:
        yield f"{screen.words}\n"
        yield picture(f"screens/{screen.name}", f"{screen.ms / 1000:.1f} s")


def levels(facts):
    yield "## The sounds\n"
    yield "16 bit, mono, 22050 Hz. Target in brackets.\n"
    rows = []
    for name, samples in facts.sounds.items():
        level = hearing.LEVELS[name]
        seconds = len(samples) / measure.RATE
        rows.append((f"`{name}`", level.what,
                     f"{seconds:.3f} s ({level.shortest:g} to {level.longest:g})",
                     f"{measure.peak_db(samples):.1f} ({level.peak})",
                     f"{measure.loudest_db(samples):.1f} ({level.loudest})",
                     f"{measure.crest_db(samples):.1f}",
                     *(f"{100 * share:.0f}" for share in measure.shares(samples))))
    edges = measure.BANDS_HZ
    bands = [f"% of {low} to {high} Hz" for low, high in zip(edges, edges[1:])]
    yield table(("Sound", "When", "Length", "Peak, dBFS", "Loudest 50 ms, dBFS", "Crest, dB",
                 *bands), rows)


def each_sound(facts):
    for name, samples in facts.sounds.items():
        yield f"### {name}: {hearing.LEVELS[name].what}\n"
        rows = []
        for stretch, found, fine in hearing.stretches(name, samples):
            label, unit = hearing.MEASURES[stretch.measure]
            low, high = (hearing.amount(stretch.measure, limit)
                         for limit in (stretch.low, stretch.high))
            rows.append((stretch.name, f"{1000 * stretch.start:.0f} to {1000 * stretch.end:.0f} ms",
                         stretch.words,
                         f"{label} {hearing.amount(stretch.measure, found)} {unit} "
                         f"({low} to {high})", said(fine)))
        yield table(("Part", "Where", "What is heard", "Measured", ""), rows)
        yield picture(f"sounds/{name}", f"{name}: wave with attack (orange), body (green) and tail "
                      "(blue), loudness, spectrogram")


def countdown(facts):
    yield "### The countdown against its digits\n"
    yield f"A digit is shown for {hearing.DIGIT_MS} ms, rounded up to whole frames: it appears " \
        f"earliest at frames of {hearing.FRAME_MS[0]} ms and latest at {hearing.FRAME_MS[-1]} ms.\n"
    rows = []
    for number, moment in enumerate(hearing.beats(facts.sounds["intro"])):
        first, last = hearing.digit_span_ms(number)
        rows.append((5 - number, f"{first} to {last} ms", f"{1000 * moment:.0f} ms",
                     f"{1000 * moment - first:+.0f} to {1000 * moment - last:+.0f} ms"))
    over = [hearing.DIGITS * hearing.digit_ms(frame)
            for frame in (hearing.FRAME_MS[0], hearing.FRAME_MS[-1])]
    rows.append(("play", f"{over[0]} to {over[1]} ms", f"chord at {1000 * hearing.CHORD_S:.0f} ms",
                 f"{1000 * hearing.CHORD_S - over[0]:+.0f} to "
                 f"{1000 * hearing.CHORD_S - over[1]:+.0f} ms"))
    yield table(("Digit", "Appears", "Beat", "Beat after digit"), rows)


def minute(facts):
    report = facts.scene
    whole, momentary = mix_scene.loudness(report.mix)
    clicks = [cut for cut in report.cuts if mix_scene.is_click(cut)]
    yield "### A minute of play\n"
    yield "[scene60.txt](../art/sounds/scene60.txt), mixed by the game's rule that a new sound " \
        "on a channel cuts the old one: from the countdown to the loss of the ship, with more " \
        "shots and more enemies than a game has.\n"
    yield table(("Figure", "Measured"), (
        ("sounds", f"{len(facts.events)} in {len(report.exact) / measure.RATE:.1f} s"),
        ("peak of the sum", f"{mix_scene.db(np.max(np.abs(report.exact))):.2f} dBFS"),
        ("clipped samples", mix_scene.clipped_samples(report)),
        ("loudness", f"{whole:.1f} LUFS, highest momentary {momentary:.1f} LUFS"),
        ("cuts", len(report.cuts)),
        ("cuts that click", len(clicks))))
    yield picture("sounds/scene60", "wave of the minute")
    worst = sorted(report.cuts, key=lambda cut: -cut.uncovered_db)[:5]
    low, high = (mix_scene.CLICK_BANDS_HZ[edge] / 1000 for edge in (0, -1))
    yield "The cuts that are covered least. A hard cut differs from one that fades within " \
        f"{1000 * mix_scene.SOFT_CUT_S:.0f} ms, and that difference is heard as a click unless " \
        "the end of the old sound and the start of the new one, which comes at the same sample, " \
        f"cover it: in every third of an octave from {low:.0f} to {high:.0f} kHz it has to lie " \
        f"{mix_scene.MASKING_MARGIN_DB:.0f} dB below the {1000 * mix_scene.MOMENT_S:.0f} ms " \
        "before and after the cut. It then raises no band by more than 1 dB. What the other " \
        "channels cover besides is not counted.\n"
    yield table(("At", "Channel", "Cut", "By", "Jump", "Covered by", "Click"),
                ((f"{cut.seconds:.2f} s", cut.channel, f"`{cut.old}`", f"`{cut.new}`",
                  f"{cut.step_db:.1f} dBFS", f"{-cut.uncovered_db:.1f} dB",
                  "**yes**" if mix_scene.is_click(cut) else "no") for cut in worst))


def every_file(facts):
    yield "## Every file\n"
    yield "Pictures are 8-bit RGBA. The sum (CRC-32) is that of pixels and samples, however they " \
        "are packed.\n"
    yield table(("File below `data/`", "Size", "What", "Read by", "Made in", "With", "Licence",
                 "Sum"),
                ((f"`{row.path}`", row.size, row.content, row.reader,
                  f"[art/{row.piece}](../art/{row.piece})", row.tool, row.licence, f"`{row.sum}`")
                 for row in files.rows(facts.files)))


def tested(facts):
    yield "## What the tests hold\n"
    yield "The sentences of `tests/assets/`, each measured on the files in `data/`; one that " \
        "does not hold says so.\n"
    for program, groups in itertools.groupby(facts.sentences.items(), key=lambda item: item[0][0]):
        yield f"### {program}\n"
        for (_, group), found in groups:
            yield f"{group}:\n"
            yield "\n".join(f"- {sentence.words}" + (
                "" if sentence.answer == sentences.YES else f" (**{sentence.answer}**)")
                for sentence in found) + "\n"


CHAPTERS = (questions, looked, contact_sheets, icon, screens, levels, each_sound, countdown,
            minute, every_file, tested)


def page(facts):
    """The whole page."""
    parts = itertools.chain.from_iterable(chapter(facts) for chapter in CHAPTERS)
    return HEAD + "\n" + "\n".join(parts)
