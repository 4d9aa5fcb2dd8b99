#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Writes balance.md and balance/*.png from the figures of `kravoltix-pilot balance`.

Usage: page.py FIGURES.json FOLDER
"""

import json
import sys
from pathlib import Path

import matplotlib

matplotlib.use("Agg")
import matplotlib.pyplot as plt
import numpy as np

ENEMIES = 7
LASER_STOCK = 50
FULL_ENERGY = 65
SHOT_ENERGY = 8  # what a hit takes from the player

MACHINES = (60, 1000)
COLOURS = {60: "#2f6db5", 1000: "#e0852b"}
PLOT_INCHES = (7.2, 3.2)
PLOT_DPI = 100
REACTIONS_MS = (80, 114, 148, 182, 216, 251)  # groups, each up to the next


class Run:
    """All games of one pilot on one machine, a column of numbers for each figure."""

    def __init__(self, run):
        self.pilot = run["pilot"]
        self.fps = run["fps"]
        self.columns = {name: np.array(column) for name, column in run.items() if isinstance(column, list)}
        self.games = len(self["lost"])
        self.won = (self["destroyed"] == ENEMIES) & (self["lost"] == 0)

    def __getitem__(self, name):
        return self.columns[name]

    def seconds(self):
        return self["playMs"] / 1000

    def hit_rate(self):
        """Percent of the laser shots of each game."""
        return 100 * self["laserHits"] / np.maximum(self["lasers"], 1)


def span(values, digits=1):
    """Median, and the middle eight games of ten."""
    low, middle, high = np.percentile(values, (10, 50, 90))
    return f"{middle:.{digits}f} ({low:.{digits}f} to {high:.{digits}f})"


def percent(part, whole):
    return f"{100 * part / whole:.1f} %"


def table(head, rows):
    lines = ["| " + " | ".join(head) + " |", "|" + "---|" * len(head)]
    return "\n".join(lines + ["| " + " | ".join(str(cell) for cell in row) + " |" for row in rows])


def winner_table(runs):
    rows = [
        (run.fps, run.games, percent(run.won.sum(), run.games), percent(run["lost"].sum(), run.games),
         span(run.seconds()[run.won]), f"{run.seconds()[run.won].min():.1f}", span(run["energy"], 0),
         f"{run['lasers'].mean():.1f}", percent(run["laserHits"].sum(), run["lasers"].sum()),
         percent(run["rocketHits"].sum(), run["rockets"].sum()))
        for run in runs
    ]
    return table(("frames/s", "games", "won", "lost", "time to win, s", "quickest, s", "energy left",
                  "lasers used", "laser hits", "rocket hits"), rows)


def purist_table(runs):
    rows = [
        (run.fps, run.games, f"{run['destroyed'].mean():.2f}", percent((run["destroyed"] == 5).sum(), run.games),
         percent((run["laserHits"] == LASER_STOCK).sum(), run.games), percent(run["lost"].sum(), run.games),
         span(run.seconds()), span(run["energy"], 0), f"{run['lasers'].mean():.1f}",
         percent(run["laserHits"].sum(), run["lasers"].sum()))
        for run in runs
    ]
    return table(("frames/s", "games", "destroyed", "five destroyed", "50 hits of 50", "lost", "time of play, s",
                  "energy left", "lasers used", "laser hits"), rows)


def idler_table(runs):
    rows = [
        (run.fps, run.games, span(run.seconds(), 2), f"{run.seconds().min():.2f}", f"{run.seconds().max():.2f}")
        for run in runs
    ]
    return table(("frames/s", "games", "life, s", "shortest, s", "longest, s"), rows)


def destroyed_table(runs):
    rows = [
        [run.fps] + [int((run["destroyed"] == count).sum()) for count in range(6)]
        for run in runs
    ]
    return table(["frames/s"] + [f"{count} destroyed" for count in range(6)], rows)


def reaction_table(runs, reactions):
    head = ["reaction"]
    for run in runs:
        head += [f"won at {run.fps}", f"time, s, at {run.fps}", f"energy at {run.fps}"]
    rows = []
    for low, end in zip(REACTIONS_MS, REACTIONS_MS[1:]):
        group = (reactions >= low) & (reactions < end)
        rows.append([f"{low} to {end - 1} ms"] + [cell for run in runs for cell in reaction_cells(run, group)])
    return table(head, rows)


def reaction_cells(run, group):
    wins = run.won & group
    if not wins.any():
        return "", "", ""
    return (percent(wins.sum(), group.sum()), f"{np.median(run.seconds()[wins]):.1f}",
            f"{run['energy'][group].mean():.1f}")


def plot(path, values, bins, label, title):
    """One histogram for each machine, in percent of its games, side by side in the same bins."""
    figure, axes = plt.subplots(figsize=PLOT_INCHES, dpi=PLOT_DPI)
    columns = [values[fps] for fps in MACHINES]
    shares = [np.full(len(column), 100 / max(len(column), 1)) for column in columns]
    axes.hist(columns, bins=bins, weights=shares, color=[COLOURS[fps] for fps in MACHINES],
              label=[f"{fps} frames a second" for fps in MACHINES])
    axes.set_xlabel(label)
    axes.set_ylabel("percent of games")
    axes.set_title(title, loc="left", fontsize=11)
    axes.spines[["top", "right"]].set_visible(False)
    axes.grid(axis="y", alpha=0.3)
    axes.set_axisbelow(True)
    axes.legend(frameon=False)
    figure.tight_layout()
    figure.savefig(path, metadata={"Software": None})
    plt.close(figure)


def bins_over(values, count):
    together = np.concatenate([column for column in values.values()])
    return np.linspace(together.min(), together.max() + 1e-9, count + 1)


def plots(runs, folder):
    winner, purist, idler = ({fps: runs[pilot, fps] for fps in MACHINES} for pilot in ("winner", "purist", "idler"))
    energy_bins = np.arange(FULL_ENERGY - 8 * SHOT_ENERGY - SHOT_ENERGY / 2, FULL_ENERGY + SHOT_ENERGY, SHOT_ENERGY)
    times = {fps: run.seconds()[run.won] for fps, run in winner.items()}
    plot(folder / "time-to-win.png", times, bins_over(times, 30), "seconds of play", "winner: time to win")
    plot(folder / "energy.png", {fps: run["energy"] for fps, run in winner.items()}, energy_bins, "energy left, of 65",
         "winner: energy left, one hit takes 8")
    plot(folder / "purist-energy.png", {fps: run["energy"] for fps, run in purist.items()}, energy_bins,
         "energy left, of 65", "purist: energy left, one hit takes 8")
    for name, pilot in (("hit-rate", winner), ("purist-hit-rate", purist)):
        rates = {fps: run.hit_rate() for fps, run in pilot.items()}
        plot(folder / f"{name}.png", rates, np.arange(79, 102, 2), "percent of laser shots that hit",
             f"{pilot[60].pilot}: hit rate of the laser")
    lives = {fps: run.seconds() for fps, run in idler.items()}
    plot(folder / "idler.png", lives, bins_over(lives, 30), "seconds of play", "idler: how long it lives")


PAGE = """<!-- SPDX-License-Identifier: MIT -->
<!-- Written by tools/pilot/page.py: change the text there. -->
# Balance

How hard the game is, measured: {games} games each of three pilots, on a machine of 60 and on one of
1000 frames a second. The pilots play by the keyboard and see what a player sees. Each game has a
human of its own, with a reaction of 80 to 250 milliseconds and an eye that misjudges the course of a
shot by up to 12 pixels, and a machine of its own, on which up to one frame in ten is late
([tools/pilot/README.md](../tools/pilot/README.md) tells how they are made).

One command plays all of them again and writes this page; the same seeds give the same figures on
every machine:

    tools/pilot/balance

In the tables, "12.3 (11.0 to 15.0)" is the middle game and the span of the middle eight of ten.
Time is time of play, from the end of the countdown.

## The first challenge: winner

Destroys all seven enemies with three rockets and the laser.

{winner}

![Time to win](balance/time-to-win.png)

A win is complete when the last explosion has ended, more than two seconds after the last hit. Nobody
is much quicker: the last two enemies come down onto the screen only after six seconds. What comes
later than the formation's first move, ten seconds into play, is chased.

![Energy left](balance/energy.png)
![Hit rate](balance/hit-rate.png)

Seven enemies hold 70 points of energy, three rockets and fifty shots take 80: ten laser shots may
miss, or one rocket. A game that is neither won nor lost was left alive, because the stock no longer
sufficed for what was left.

How much the reaction matters, in groups of games:

{reaction}

## The second challenge: purist

The same without rockets, which cannot be won: seven enemies hold 70 points of energy and fifty shots
take 50. Five destroyed is the most. The purist begins no enemy that its stock would not finish, and
leaves when there is none, so a single miss costs a whole enemy. It fires only when it is surer of a
hit than the winner.

{purist}

Games by the number of enemies destroyed:

{destroyed}

![Hit rate](balance/purist-hit-rate.png)
![Energy left](balance/purist-energy.png)

## No challenge: idler

Presses Return and then nothing. The ship stands where it starts, nine hits destroy it, and the
formation flies right over it.

{idler}

![How long the idler lives](balance/idler.png)

## The steady hand

With seed 0 (a reaction of 80 milliseconds, a perfect eye, no late frame) the pilots play the games
that are kept in [tests/playthrough](../tests/playthrough/README.md).
"""


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__.strip())
    figures = json.loads(Path(sys.argv[1]).read_text())
    folder = Path(sys.argv[2])
    (folder / "balance").mkdir(parents=True, exist_ok=True)
    runs = {(run.pilot, run.fps): run for run in map(Run, figures["runs"])}
    plots(runs, folder / "balance")
    winner, purist, idler = ([runs[pilot, fps] for fps in MACHINES] for pilot in ("winner", "purist", "idler"))
    page = PAGE.format(
        games=figures["games"], winner=winner_table(winner), purist=purist_table(purist), idler=idler_table(idler),
        destroyed=destroyed_table(purist),
        reaction=reaction_table(winner, np.array(figures["habits"]["reactionMs"])))
    (folder / "balance.md").write_text(page)


main()
