# SPDX-FileCopyrightText: 2026 The KRAVOLTIX developers
# SPDX-License-Identifier: CC0-1.0

# The pieces of the art: folders beside this file, each with a program `render OUT` and a list
# `assets.txt` of what that program makes and how long each takes.
#
# A piece's files belong into data/, unless the first line of its list says `output NAME`: then they
# belong into the folder NAME beside data/.

import os
import queue
import signal
import subprocess
import sys
import tempfile
import threading
import time

ART = os.path.dirname(os.path.abspath(__file__))
ROOT = os.path.dirname(ART)
DATA = "data"

RUNNING_AT_ONCE = 2
TRUST_IN_LISTS = 0.25  # the part of a piece that weighs as if its list had proved right
SECONDS_TO_TIDY_UP = 3
LINES_OF_COMPLAINT = 12  # of what a failed piece wrote, the last lines tell why


class ArtError(Exception):
    """What stops a program of the art, said in one sentence."""


class Piece:
    """One folder of art: its name, the folder its files belong into, and its assets.

    `assets` maps each path below that folder to the processor seconds it takes.
    """

    def __init__(self, folder):
        self.name = os.path.basename(folder)
        self.program = os.path.join(folder, "render")
        self.output = DATA
        self.assets = {}
        self._read(os.path.join(folder, "assets.txt"))

    def _read(self, path):
        try:
            with open(path, encoding="utf-8") as file:
                lines = [line.split() for line in file if line.strip() and not line.startswith("#")]
        except OSError as error:
            raise ArtError(f"{os.path.relpath(path)}: {error.strerror}")
        if lines and lines[0][0] == "output":
            self.output = lines.pop(0)[1]
        for words in lines:
            try:
                asset, seconds = words
                self.assets[asset] = float(seconds)
            except ValueError:
                raise ArtError(f"{path}: not `PATH SECONDS`: {' '.join(words)}")

    def folder_in(self, out):
        """Where the piece's files lie in the tree `out`: only data stands at its top."""
        return out if self.output == DATA else os.path.join(out, self.output)

    def folder_in_repository(self):
        return os.path.join(ROOT, self.output)


def find(names=()):
    """The pieces of these names, or all of them."""
    known = sorted(name for name in os.listdir(ART)
                   if os.path.exists(os.path.join(ART, name, "render")))
    for name in names:
        if name not in known:
            raise ArtError(f"no piece is called {name}; there are: {', '.join(known)}")
    return [Piece(os.path.join(ART, name)) for name in known if not names or name in names]


class Progress:
    """Tells of each finished asset, and how long the rest will take.

    A piece's pace is the time it took over the time its list promised. At first its list is
    trusted, since the first asset often waits for a compiler.
    """

    def __init__(self, pieces):
        self.total = sum(len(piece.assets) for piece in pieces)
        self.finished = 0
        self.promised = {piece.name: 0.0 for piece in pieces}  # seconds, of what is finished
        self.taken = dict(self.promised)  # seconds, of what is finished
        self.left = {piece.name: sum(piece.assets.values()) for piece in pieces}
        self.ended = set()

    def begin(self):
        print(f"{self.total} pictures and sounds, {duration(self.seconds_left())}")

    def asset(self, piece, asset, seconds):
        self.finished += 1
        promised = piece.assets[asset]
        self.promised[piece.name] += promised
        self.taken[piece.name] += seconds
        self.left[piece.name] -= promised
        width = len(str(self.total))
        print(f"[{self.finished:{width}}/{self.total}] {asset}  {seconds:.1f} s, "
              f"{duration(self.seconds_left())} left", flush=True)

    def end(self, piece):
        self.ended.add(piece.name)

    def seconds_left(self):
        """The busier of the workers, the pieces dealt out longest first."""
        workers = [0.0] * RUNNING_AT_ONCE
        rest = [self.left[name] * self.pace(name) for name in self.left if name not in self.ended]
        for seconds in sorted(rest, reverse=True):
            workers[workers.index(min(workers))] += seconds
        return max(workers)

    def pace(self, name):
        trust = TRUST_IN_LISTS * (self.promised[name] + self.left[name])
        known = self.promised[name] + trust
        return (self.taken[name] + trust) / known if known > 0.0 else 1.0


def duration(seconds):
    """A rough length of time in words."""
    seconds = int(seconds + 0.5)
    if seconds < 60:
        return f"about {seconds} s"
    return f"about {seconds // 60} min {seconds % 60} s"


def render(pieces, out=None, verbose=False):
    """Renders pieces into the tree `out`, or into the repository; two at a time, longest first.

    A piece that fails does not stop the others. Raises an ArtError that names the failed ones.
    """
    progress = Progress(pieces)
    progress.begin()
    waiting = sorted(pieces, key=lambda piece: sum(piece.assets.values()))
    events = queue.Queue()
    running, failures = {}, []
    try:
        while waiting or running:
            while waiting and len(running) < RUNNING_AT_ONCE:
                piece = waiting.pop()
                folder = piece.folder_in(out) if out else piece.folder_in_repository()
                running[piece.name] = Run(piece, folder, events, verbose)
            run, asset, seconds = events.get()
            if asset is not None:
                progress.asset(run.piece, asset, seconds)
                continue
            del running[run.piece.name]
            progress.end(run.piece)
            failures += run.failures()
    finally:
        for run in running.values():
            run.stop()
    if failures:
        raise ArtError("\n".join(failures))


class Run:
    """One piece being rendered; puts (run, asset, seconds) into a queue, and at the end None."""

    def __init__(self, piece, folder, events, verbose):
        self.piece = piece
        self.events = events
        self.unknown = []
        self.missing = dict(piece.assets)
        self.complaints = None if verbose else tempfile.TemporaryFile()
        os.makedirs(folder, exist_ok=True)
        try:
            self.process = subprocess.Popen([piece.program, os.path.abspath(folder)], text=True,
                                            stdout=subprocess.PIPE, stderr=self.complaints,
                                            start_new_session=True)
        except OSError as error:
            raise ArtError(f"{piece.name}: {error}")
        threading.Thread(target=self._follow, daemon=True).start()

    def _follow(self):
        last = time.monotonic()
        for line in self.process.stdout:
            word, _, asset = line.rstrip("\n").partition(" ")
            if word != "done" or asset not in self.missing:
                self.unknown.append(line.strip())
                continue
            del self.missing[asset]
            now = time.monotonic()
            self.events.put((self, asset, now - last))
            last = now
        self.process.wait()
        self.events.put((self, None, 0.0))

    def stop(self):
        """Ends the program and what it has started itself, such as a compiler."""
        # The first signal lets it remove its scratch files; a shell's background jobs ignore it.
        for each in (signal.SIGINT, signal.SIGTERM):
            try:
                os.killpg(self.process.pid, each)
                self.process.wait(SECONDS_TO_TIDY_UP)
                return
            except ProcessLookupError:
                return
            except subprocess.TimeoutExpired:
                pass

    def failures(self):
        """What went wrong, one text per fault; nothing if all went well."""
        name, status = self.piece.name, self.process.returncode
        if status != 0:
            return [f"{name}: its render program ended with status {status}{self._last_lines()}"]
        faults = [f"{name}: unexpected from its render program: {line}" for line in self.unknown]
        return faults + [f"{name}: did not render {asset}" for asset in self.missing]

    def _last_lines(self):
        if self.complaints is None:
            return ""
        self.complaints.seek(0)
        lines = self.complaints.read().decode(errors="replace").splitlines()
        return "".join(f"\n    {line}" for line in lines[-LINES_OF_COMPLAINT:])


def run_main(main):
    """Runs a program of the art; errors become one message and status 2."""
    signal.signal(signal.SIGTERM, signal.default_int_handler)
    try:
        sys.exit(main())
    except ArtError as error:
        sys.exit(complain(str(error)))
    except KeyboardInterrupt:
        sys.exit(complain("stopped", 130))
    except BrokenPipeError:
        # Whoever read the output has seen enough; nothing more can be said to them.
        os.dup2(os.open(os.devnull, os.O_WRONLY), sys.stdout.fileno())
        sys.exit(2)
    except OSError as error:
        sys.exit(complain(f"{error.filename}: {error.strerror}" if error.filename else str(error)))


def complain(message, status=2):
    print(f"{os.path.basename(sys.argv[0])}: {message}", file=sys.stderr)
    return status
