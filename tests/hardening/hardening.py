#!/usr/bin/python3
# SPDX-License-Identifier: MIT

# What the game's programs are made of, and what the game may do to the machine.
#
# usage: hardening.py binaries FILE...     made so that a fault is hard to abuse
#        hardening.py calls.unseen         the system calls of a game without display and sound
#        hardening.py calls.classic        ... in a window, with a sound server; or calls.compat
#        hardening.py sandbox.unseen       the sandbox of docs/reliability.md, without a display
#        hardening.py sandbox.x11          ... with one

import contextlib
import os
import re
import shutil
import subprocess
import sys
import tempfile

HERE = os.path.dirname(os.path.abspath(__file__))
ROOT = os.path.join(HERE, "..", "..")
sys.path.insert(0, os.path.join(HERE, "..", "screens"))

import displays  # noqa: E402
import game  # noqa: E402

PRELOAD = os.environ.get("KRAVOLTIX_PRELOAD_LIBRARY", "")
BUILD = os.environ.get("KRAVOLTIX_BUILD", "")
PAGE = os.path.join(ROOT, "docs", "reliability.md")
WON = os.path.join(ROOT, "tests", "playthrough", "won.scenario")
LEFT = os.path.join(ROOT, "tests", "playthrough", "left.scenario")
FAREWELL = "\nThank you for testing!\n"

# Whatever makes, changes or removes a file, and whatever speaks to someone else.
TRACED = ("open,openat,openat2,creat,truncate,ftruncate,rename,renameat,renameat2,unlink,unlinkat,"
          "mkdir,mkdirat,rmdir,link,linkat,symlink,symlinkat,mknod,mknodat,chmod,fchmod,fchmodat,"
          "chown,fchown,lchown,fchownat,utimensat,setxattr,fsetxattr,io_uring_setup,execve,"
          "socket,connect,bind,listen,accept,accept4,sendto,sendmsg")
CHANGING = re.compile(r"^(creat|f?truncate|rename\w*|unlink\w*|mkdir\w*|rmdir|link\w*|symlink\w*"
                      r"|mknod\w*|f?chmod\w*|[fl]?chown\w*|utimensat|f?setxattr"
                      r"|io_uring_setup)\(")
WRITING = re.compile(r"^(open|openat|openat2)\(.*O_(WRONLY|RDWR|CREAT|TRUNC|APPEND)")
SERVING = re.compile(r"^(bind|listen|accept4?)\(")


class Failed(Exception):
    """Something is not as it must be."""


class Skipped(Exception):
    """This machine cannot show it; the message says why."""


def must(holds, message):
    if not holds:
        raise Failed(message)


# The programs.

def readelf(what, path):
    return subprocess.run(["readelf", "-W", what, path], check=True, capture_output=True,
                          text=True).stdout


def binaries(paths):
    for path in paths:
        name = os.path.basename(path)
        segments = readelf("-l", path)
        dynamic = readelf("-d", path)
        symbols = readelf("--dyn-syms", path)
        stack = re.search(r"GNU_STACK.*?0x\S+ (\S+) +0x\d+$", segments, re.MULTILINE)
        is_library = ".so" in name
        must("Elf file type is DYN" in segments, name + " must lie at a fixed address")
        must(is_library or re.search(r"FLAGS_1.*\bPIE\b", dynamic), name + " is not linked as PIE")
        must("GNU_RELRO" in segments, name + " has no RELRO segment")
        must(re.search(r"FLAGS_1.*\bNOW\b", dynamic), name + " binds late, so RELRO is not full")
        must("TEXTREL" not in dynamic, name + " changes its own code")
        must(not re.search(r"RPATH|RUNPATH", dynamic), name + " names folders for its libraries")
        must("__stack_chk_fail" in symbols, name + " has no stack protector")
        must(re.search(r"__\w+_chk@", symbols), name + " has no fortified call")
        must(stack and re.search(r"GNU_STACK.* RW  ", segments), name + " has an executable stack")
        must(not re.search(r"LOAD.* RWE ", segments), name + " has code that can be written")


# The system calls.

def called(trace):
    """The calls that had an effect, without the process's number."""
    with open(trace, encoding="utf-8", errors="replace") as file:
        lines = [re.sub(r"^\d+ +", "", line.strip()) for line in file]
    return [line for line in lines if re.search(r"\) += +\d|\) = 0x", line)]


def strace(trace, variables, program):
    """A command that runs the program with these variables under a trace."""
    command = ["strace", "-f", "-qq", "-o", trace, "-e", "trace=" + TRACED]
    for name, value in variables.items():
        command += ["-E", "%s=%s" % (name, value)]
    return command + program


def need_strace(folder):
    tried = subprocess.run(["strace", "-o", os.path.join(folder, "tried"), "true"],
                           capture_output=True, text=True)
    if tried.returncode != 0:
        raise Skipped("strace may not trace here: " + tried.stderr.strip())


def does_nothing(calls, allowed_files=(), allowed_servers=()):
    """Neither changes a file nor talks to anyone but these."""
    for call in calls:
        harmless = any(re.search(pattern, call) for pattern in allowed_files)
        must(harmless or not CHANGING.search(call), "a file is changed: " + call)
        must(harmless or not WRITING.search(call), "a file is opened for writing: " + call)
        must(not SERVING.search(call), "it serves: " + call)
        if call.startswith("socket("):
            must(call.startswith("socket(AF_UNIX"), "a socket of another kind: " + call)
            must(allowed_servers, "a socket: " + call)
        if call.startswith("connect("):
            must(any(re.search(pattern, call) for pattern in allowed_servers),
                 "it talks to someone else: " + call)
    programs = [call for call in calls if call.startswith("execve(")]
    must(len(programs) == 1, "it starts other programs: %s" % programs)


def calls_unseen(folder):
    need_strace(folder)
    trace = os.path.join(folder, "trace")
    variables = {"SDL_VIDEODRIVER": "dummy", "SDL_AUDIODRIVER": "dummy", "KRAVOLTIX_SCENARIO": WON,
                 "LD_PRELOAD": PRELOAD}
    played = subprocess.run(strace(trace, variables, [game.PROGRAM]), cwd=game.DATA,
                            capture_output=True, text=True, timeout=300,
                            env=game.environment("classic", {}))
    must(played.returncode == 0 and FAREWELL in played.stdout, "the game fails: " + played.stderr)
    calls = called(trace)
    must(sum("explosions/ex00" in call for call in calls) == 46, "the trace misses files")
    does_nothing(calls)


class SoundServer:
    """PulseAudio, with a sound device that nobody hears."""

    def __init__(self, folder):
        runtime = os.path.join(folder, "run")
        self.socket = os.path.join(runtime, "pulse", "native")
        os.makedirs(os.path.dirname(self.socket), mode=0o700)
        self.home = os.path.join(folder, "player")  # one for both, as on a desktop
        os.makedirs(self.home)
        reading, writing = os.pipe()
        self.server = subprocess.Popen(
            ["pulseaudio", "-n", "--daemonize=no", "--use-pid-file=no", "--exit-idle-time=-1",
             "--log-target=stderr", "--log-level=info", "-L", "module-null-sink", "-L",
             "module-native-protocol-unix auth-anonymous=1 socket=" + self.socket],
            stdout=subprocess.DEVNULL, stderr=writing,
            env={**os.environ, "XDG_RUNTIME_DIR": runtime, "HOME": self.home,
                 "PULSE_RUNTIME_PATH": os.path.dirname(self.socket)})
        os.close(writing)
        self.log = os.fdopen(reading)
        self.variables = {"XDG_RUNTIME_DIR": runtime, "HOME": self.home,
                          "SDL_AUDIODRIVER": "pulse"}
        heard = []
        with displays.limit(self.server):
            for line in self.log:
                heard.append(line)
                if "Startup complete" in line or "Daemon startup complete" in line:
                    return
        raise displays.Broken("pulseaudio did not start:\n" + "".join(heard))

    def close(self):
        displays.ended_by(self.server)
        self.log.close()


def calls_seen(folder, library):
    """A game in a window, with sounds, up to its first shot."""
    need_strace(folder)
    trace = os.path.join(folder, "trace")
    with contextlib.closing(displays.XServer(folder)) as display, \
            contextlib.closing(SoundServer(folder)) as sound:
        variables = {"SDL_VIDEODRIVER": "x11", **display.variables, **sound.variables}
        playing = game.Game(library, [], variables, display,
                            under=lambda more: strace(trace, more, []))
        try:
            must(playing.starts(), "the game does not start")
            display.focus(display.windows()[1])
            playing.press("down Return", "up Return")
            playing.play(190, 200)
            playing.press("down a", "up a")
            playing.play(5, 20)
            playing.press("down Escape")
            status, out, error = playing.end()
        finally:
            playing.close()
    must(status == 0 and FAREWELL in out, "the game fails: " + error)
    calls = called(trace)
    servers = [r"\.X11-unix/X\d+\"", re.escape(sound.socket)]
    # The pulse library's memory for sounds, which has no name and is no file on a disk.
    files = [r"^ftruncate\("]
    if library == "compat":
        # Mesa, which draws for this library, keeps what it has compiled for the graphics card.
        files += [r"\.cache/mesa_shader_cache", r"\"%s/\.cache\"" % re.escape(sound.home),
                  r"\"/dev/(null|dri)"]
    for server in servers:
        must(any(re.search("^connect.*" + server, call) for call in calls), "not asked: " + server)
    does_nothing(calls, files, servers)


# The sandbox.

def sandbox_line():
    """The command line of the page, whose last word is the game."""
    with open(PAGE, encoding="utf-8") as file:
        page = file.read()
    lines = re.findall(r"^    (bwrap (?:.*\\\n)*.* kravoltix)$", page, re.MULTILINE)
    must(len(lines) == 1, "docs/reliability.md has not one line of bwrap but %i" % len(lines))
    return lines[0]


def need_namespaces():
    tried = subprocess.run(["bwrap", "--ro-bind", "/", "/", "--unshare-net", "true"],
                           capture_output=True, text=True)
    if tried.returncode != 0:
        raise Skipped("bwrap can make no namespaces here: " + tried.stderr.strip())


def installed(folder):
    prefix = os.path.join(folder, "installed")
    subprocess.run(["cmake", "--install", BUILD, "--prefix", prefix], check=True,
                   stdout=subprocess.DEVNULL)
    return prefix


def boxed(prefix, variables, probe=None, **more):
    """Runs the page's line as a player would; a probe takes the game's place."""
    line = sandbox_line()
    if probe:
        line = re.sub(r"kravoltix$", "sh -c '%s'" % probe, line)
    path = os.path.join(prefix, "games") + ":" + os.environ["PATH"]
    return subprocess.Popen(["sh", "-c", line], text=True, stdout=subprocess.PIPE,
                            stderr=subprocess.PIPE, env=game.environment(
                                "classic", {**variables, "PATH": path}), **more)


def is_shut(prefix, folder):
    """No file can be written, and there is no network but the box's own loop."""
    probe = ("echo x > %s/seen; echo x > $HOME/seen; echo x > /tmp/seen; echo x > /var/tmp/seen;"
             " cut -d: -f1 /proc/net/dev | sed 1,2d; ls /proc | grep -c ^[0-9]" % folder)
    home = os.path.join(folder, "home")
    os.makedirs(home, exist_ok=True)
    out, error = boxed(prefix, {"HOME": home}, probe).communicate(timeout=displays.LIMIT_S)
    must(error.count("Read-only file system") == 4, "a file could be written: " + error)
    must(out.split()[0] == "lo" and len(out.split()) == 2, "there is a network: " + out)
    must(int(out.split()[1]) < 10, "other processes are seen")


def sandbox_unseen(folder):
    need_namespaces()
    prefix = installed(folder)
    is_shut(prefix, folder)
    playing = boxed(prefix, {"SDL_VIDEODRIVER": "dummy", "SDL_AUDIODRIVER": "dummy",
                             "KRAVOLTIX_SCENARIO": os.path.abspath(LEFT), "LD_PRELOAD": PRELOAD})
    out, error = playing.communicate(timeout=displays.LIMIT_S)
    must(playing.returncode == 0 and FAREWELL in out, "status %s: %s" % (playing.returncode, error))


def sandbox_x11(folder):
    """The game with its own clock: a key ends it, as soon as its window is there."""
    need_namespaces()
    prefix = installed(folder)
    with contextlib.closing(displays.ManagedXServer(folder)) as display, \
            contextlib.closing(SoundServer(folder)) as sound:
        playing = boxed(prefix, {**display.variables, **sound.variables,
                                 "SDL_VIDEODRIVER": "x11", "LD_PRELOAD": ""})
        with displays.limit(playing):
            display.xdotool("search", "--sync", "--onlyvisible", "--class", "kravoltix")
            display.xdotool("search", "--onlyvisible", "--class", "kravoltix",
                            "windowfocus", "--sync")
            display.key("down", "Escape")
            out, error = playing.communicate()
    must(playing.returncode == 0 and FAREWELL in out, "status %s: %s" % (playing.returncode, error))


def main():
    name = sys.argv[1]
    folder = tempfile.mkdtemp(prefix="hardening")
    try:
        if name == "binaries":
            binaries(sys.argv[2:])
        elif name == "calls.unseen":
            calls_unseen(folder)
        elif name in ("calls.classic", "calls.compat"):
            library = name.split(".")[1]
            if library == "compat" and not game.compat_folder():
                raise Skipped("the library in SDL 1.2's place cannot be had here")
            calls_seen(folder, library)
        elif name == "sandbox.unseen":
            sandbox_unseen(folder)
        elif name == "sandbox.x11":
            sandbox_x11(folder)
        else:
            raise Failed("there is no such test")
    except Skipped as why:
        print("skipped: %s" % why)
        return 77
    except (Failed, displays.Broken) as failure:
        print("%s: %s" % (name, failure))
        return 1
    finally:
        shutil.rmtree(folder, ignore_errors=True)
    return 0


if __name__ == "__main__":
    sys.exit(main())
