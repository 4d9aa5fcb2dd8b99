#!/usr/bin/python3
# SPDX-License-Identifier: MIT

# Runs the commands that the documents give, as their readers would, in a copy of the tree.
#
# usage: test_commands.py BUILD_DIR          those that take no time
#        test_commands.py BUILD_DIR --all    those that build, need a display (Xvfb), or take long
#
# Every command stands in one of the tables below, and the first test fails when a document gives one
# that does not, or a table has one that no document gives any more.

import os
import shutil
import subprocess
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True
sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))

import commands

BUILD = "build/test"
SECONDS_AT_MOST = 1800
GAME = "tests/playthrough/won.scenario"

# A recording of a game that is left at its title: what a reader has recorded when these are tried.
SHORT_GAME = """what The title is typed, and Escape ends the game.
expect 1 text "Thank you for testing!"
expect status 0
frame 1 time 20
frame 200 down escape
"""

# Run by ./test. The text is the folder, if not the tree's root.
QUICK = {
    "./play --help": "",
    "kravoltix-replay verify *.kvx": "recordings",
    "kravoltix-replay video first.kvx first.mp4": "recordings",
    "kravoltix-replay video game.kvx game.mp4": "recordings",
    "build/release/kravoltix-replay verify my.kvx": "",
    "build/release/kravoltix-replay video my.kvx my.mp4": "",
    "build/release/kravoltix-replay info my.kvx": "",
    "build/test/kravoltix-corpus show 17 >17.scenario": "",
    "SDL_VIDEODRIVER=dummy SDL_AUDIODRIVER=dummy KRAVOLTIX_SCENARIO=../tests/playthrough/won.scenario "
    "KRAVOLTIX_CALLS=/tmp/calls.txt LD_PRELOAD=../build/test/libkravoltix_preload.so "
    "../build/test/kravoltix": "data",
    "cd data": "",
    "cd ../../data": "tests/playthrough",
    "cd tests/playthrough": "",
    "tests/faults/run driver --list": "",
    "tools/pictures": "",
    "tools/pictures --check": "",
    "./scene busy 1 > /tmp/busy.txt": "art/sounds",
    "../../tools/mix_scene.py /tmp/busy.txt ../../data/sounds /tmp/busy.wav": "art/sounds",
}

# Run under --all, in this order: first those that build what the later ones need.
LONG = {
    "cmake -S . -B build/package -G Ninja -DCMAKE_BUILD_TYPE=Release -DKRAVOLTIX_TOOLS=ON": "",
    "cmake --build build/package": "",
    "cmake --install build/package --prefix build/installed": "",
    "cmake --preset release": "",
    "cmake --build --preset release": "",
    "cmake --preset release -DKRAVOLTIX_TOOLS=ON && cmake --build --preset release": "",
    "build/release/kravoltix-replay video GAME game.mp4": "",
    "build/release/kravoltix-replay video GAME part.gif --from 15 --to 25 --scale 0.5": "",
    "build/release/kravoltix-replay video GAME pictures/ --fps 10": "",
    "build/release/kravoltix-replay moments GAME pictures/": "",
    "build/test/kravoltix-corpus check --sample 120": "",
    "build/test/kravoltix-replay verify --data build/test/corpus-fixtures tests/scenarios/*.scenario": "",
    "build/test/tools/pilot/kravoltix-pilot play winner --fps 60 --seed 0 won.scenario >won.txt": "",
    "art/sheets -o /tmp/sheets": "",
    "art/sheets -o /tmp/sheets -b OLD_DATA": "",
}

# Run under --all in a window of Xvfb, where Escape is pressed after a while.
WINDOW = {
    "cd data && ../build/release/kravoltix": "",
    "./play": "",
    "./play --fullscreen": "",
    "./play --nosound": "",
    "./play -fs -ns": "",
    "build/release/kravoltix-replay record my.kvx -- --nosound": "",
    "build/release/kravoltix-replay play my.kvx --speed 2": "",
    "build/test/kravoltix-replay play 17.scenario --data build/test/corpus-fixtures": "",
    "build/test/kravoltix-replay play tests/scenarios/escape-in-play.scenario": "",
    "kravoltix --fullscreen > game.txt": "",
    "kravoltix --nosound": "",
    "kravoltix-replay record game.kvx": "",
    "kravoltix-replay record first.kvx -- --fullscreen": "",
    "kravoltix-replay play --speed 0.25 first.kvx": "",
}

# Not run, and why.
TOLD = {
    "tools/package": "it is all.packages.made",
    "tools/reproduce": "it is all.reproduce",
    "tools/checks": "it is all.checks",
    "tests/packaging/clean_debian build/clean-debian": "it is all.packages.installed",
    "tools/first-contact build/first-contact": "measures, and needs the network for minutes",
    "./test": "this test is a part of it",
    "tools/flakes": "it runs ./test, again and again",
    "./test calls": "./test runs the same tests",
    "./test 'clock|events|streams'": "./test runs the same tests",
    "./test files": "./test runs the same tests",
    "./test hardening.binaries": "./test runs the same test",
    "./test hardening.calls": "./test runs the same test",
    "./test hardening.sandbox": "./test runs the same test",
    "./test longrun": "./test runs the same tests",
    "./test screens.": "./test runs the same tests",
    "./test --all calls": "it is all.calls",
    "./test --all 'clock|events'": "it is all.clock and all.events",
    "./test --all files": "it is all.files",
    "./test --all hardening.calls": "it is all.hardening.calls",
    "./test --all hardening.sandbox": "it is all.hardening.sandbox",
    "./test --all longrun": "it is all.longrun",
    "./test --all screens.": "./test --all runs the same tests",
    "tests/reliability/layer build/test/tests/reliability": "it is all.layer",
    "build/test/tests/longrun/kravoltix-long-run fight 72 16": "ten hours of games",
    "tools/fuzz parsers --inputs 1000000": "hours of fuzzing; fuzz.parsers feeds what was kept",
    "tools/fuzz play --frames 1000000": "hours of fuzzing; fuzz.play feeds what was kept",
    "build/fuzz/tests/fuzz/kravoltix-fuzz-play build/fuzz/work/play-1/broken/crash-...":
        "reads what a run of the fuzzer has found",
    "build/asan/tests/fuzz/kravoltix-feed-play build/fuzz/work/play-1/broken/crash-...":
        "reads what a run of the fuzzer has found",
    "SDL_VIDEODRIVER=x11 kravoltix": "screens.* starts the game with this driver",
    "apt-get install povray g++ python3-numpy python3-pil": "changes the system",
    "apt-get install python3-matplotlib": "changes the system",
    "art/render": "all.art renders the same and compares it",
    "art/check": "it is all.art",
    "cmake --build build/release --target art": "calls art/render",
    "cmake --build build/release --target art-check": "calls art/check",
    "art/screens": "assets.page looks at what it keeps; it needs a build of its own",
    "art/page": "assets.page compares the page with what it writes",
    "build/test/kravoltix-corpus check": "it is all.corpus",
    "build/test/kravoltix-corpus write": "replay_tests writes a table of four games in the same way",
    "ctest --preset test -L scenarios": "./test runs the same tests",
    "tests/faults/run": "many hours; all.faults runs three of its areas",
    "tests/faults/run driver": "an hour",
    "tests/faults/run driver --only 3": "builds the whole tree anew",
    "tests/faults/run --scratch ~/faults": "many hours",
    "tools/pilot/balance": "an hour of games; pilot_tests plays some of them",
    "../../build/test/tools/pilot/kravoltix-pilot balance --games 4 --json ../pilot/balance.json":
        "twenty minutes of games; pilot_tests plays some of them",
    "LD_PRELOAD=../build/test/libkravoltix_preload.so "
    "KRAVOLTIX_SCENARIO=../tests/playthrough/$game.scenario ../build/test/kravoltix "
    ">../tests/playthrough/$game.txt": "program_tests plays the same games and compares their text",
    "cmake --preset debug -B build/coverage -DKRAVOLTIX_COVERAGE=ON": "builds and tests all anew",
    "cmake --build build/coverage && ctest --test-dir build/coverage -LE assets": "the same",
    "gcovr -r . -f src/ build/coverage": "reads what the two before have made",
    "tools/bench": "measures for many minutes",
    "tools/bench --json FILE --plot FILE": "likewise",
    "tools/bench --game PROGRAM": "likewise",
    'tools/bench --scene "full play"': "likewise",
    "tools/bench --pace": "likewise",
    "tools/bench --gates": "it is all.bench",
    "setxkbmap us": "changes the reader's keyboard",
    "xrandr --output NAME --mode 1024x768": "changes the reader's display",
}

# SDL opens the display twice, and a server that nobody is connected to would begin anew in between.
XVFB = "-screen 0 1280x1024x24 -noreset"

# Presses Escape as soon as the game's window is there, and waits for the command's end; the key waits in
# the window's queue until the game asks for it. Without a window manager keys go to the window below the
# pointer.
IN_A_WINDOW = """
sh -c "$1" &
game=$!
xdotool search --sync --onlyvisible --class '.' mousemove 320 240 key --delay 100 Escape &
wait $game
status=$?
kill $! 2>/dev/null
exit $status
"""


def concrete(command):
    return command.replace("GAME", GAME).replace("OLD_DATA", "data")


class Documents(unittest.TestCase):
    def test_every_command_is_in_a_table_and_every_table_s_in_a_document(self):
        given = {command for document in commands.documents()
                 for command in commands.commands_in(document)}
        known = [command for table in (QUICK, LONG, WINDOW, TOLD) for command in table]
        self.assertEqual(len(known), len(set(known)))
        self.assertEqual(given - set(known), set(), "no table says how these are tried")
        self.assertEqual(set(known) - given, set(), "no document gives these")


class Runs(unittest.TestCase):
    """A copy of the tree, an installed game, and some recordings."""

    def setUp(self):
        self.scratch = tempfile.mkdtemp(prefix="kravoltix-documents-")
        self.addCleanup(shutil.rmtree, self.scratch)
        self.tree = os.path.join(self.scratch, "tree")
        shutil.copytree(commands.ROOT, self.tree, symlinks=True,
                        ignore=shutil.ignore_patterns("build", ".git", "__pycache__"))
        os.mkdir(os.path.join(self.tree, "build"))
        os.symlink(os.path.abspath(BUILD), os.path.join(self.tree, "build", "test"))
        subprocess.run(["cmake", "--install", BUILD, "--strip", "--prefix",
                        os.path.join(self.scratch, "installed")],
                       check=True, stdout=subprocess.DEVNULL)
        recordings = os.path.join(self.tree, "recordings")
        os.mkdir(recordings)
        for path in ("my.kvx", "recordings/first.kvx", "recordings/game.kvx"):
            with open(os.path.join(self.tree, path), "w", encoding="utf-8") as file:
                file.write(SHORT_GAME)
        self.environment = dict(os.environ, HOME=self.scratch,
                                PATH=os.path.join(self.scratch, "installed", "games") + ":"
                                + os.environ["PATH"])

    def run_in(self, folder, words):
        run = subprocess.run(words, cwd=os.path.join(self.tree, folder), env=self.environment,
                             stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                             stderr=subprocess.STDOUT, timeout=SECONDS_AT_MOST, text=True,
                             errors="replace", check=False)
        self.assertEqual(run.returncode, 0, run.stdout[-3000:])

    def try_all(self, table, window=False):
        for count, (command, folder) in enumerate(table.items(), 1):
            with self.subTest(command):
                print(f"{count} of {len(table)}: {command}", flush=True)
                if window:
                    self.environment["SDL_AUDIODRIVER"] = "dummy"
                    for recording in ("my.kvx", "game.kvx", "first.kvx"):
                        if " record " in command and recording in command:
                            self.remove(recording)
                    self.run_in(folder, ["xvfb-run", "-a", "-s", XVFB, "sh", "-c", IN_A_WINDOW,
                                         "sh", concrete(command)])
                else:
                    self.run_in(folder, ["sh", "-c", concrete(command)])

    def remove(self, name):
        path = os.path.join(self.tree, name)
        if os.path.exists(path):
            os.remove(path)


class Quick(Runs):
    def test_commands_that_take_no_time(self):
        os.symlink(os.path.abspath(BUILD), os.path.join(self.tree, "build", "release"))
        self.try_all(QUICK)


class Long(Runs):
    def test_commands_that_build_or_show_a_window(self):
        self.try_all(LONG)
        self.run_in("", ["sh", "-c", "build/test/kravoltix-corpus show 17 >17.scenario"])
        self.try_all(WINDOW, window=True)


if __name__ == "__main__":
    if len(sys.argv) > 1:
        BUILD = sys.argv[1]
    chosen = (Long,) if sys.argv[2:] == ["--all"] else (Documents, Quick)
    suite = unittest.TestSuite(unittest.defaultTestLoader.loadTestsFromTestCase(each)
                               for each in chosen)
    sys.exit(not unittest.TextTestRunner().run(suite).wasSuccessful())
