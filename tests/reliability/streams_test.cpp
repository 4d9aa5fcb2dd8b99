// SPDX-License-Identifier: MIT
// The program with streams that take nothing: closed, full, or read by nobody any more. And with
// signals from outside, on a terminal.
#include "playthrough/texts.h"
#include "reliability/quicktour.h"
#include "reliability/start.h"
#include "support/program.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <pty.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace reliability;

namespace {

// A way to put a stream in a state; the descriptors of the process are its own.
struct Stream {
    const char* rule;
    void (*put)(int descriptor);
};

void closed(int descriptor) {
    close(descriptor);
}

void full(int descriptor) {
    dup2(open("/dev/full", O_WRONLY | O_CLOEXEC), descriptor);
}

void withoutReader(int descriptor) {
    int ends[2] = {-1, -1};
    EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0);
    dup2(ends[1], descriptor);
    close(ends[0]);
}

void onlyForReading(int descriptor) {
    dup2(open("/dev/null", O_RDONLY | O_CLOEXEC), descriptor);
}

constexpr int FIRST_TALKING_FRAME = 4;  // of the quick tour: the rocket names its target

constexpr Stream STREAMS[] = {
    {"closed", closed},
    {"full", full},
    {"only for reading", onlyForReading},
};

// What a stream that takes nothing loses is all that is lost: the game is played to its end.
TEST(Streams, ThatTakeNothingDoNotDisturbTheGame) {
    for (const Stream& stream : STREAMS) {
        for (const bool unbuffered : {false, true}) {
            SCOPED_TRACE(std::string(stream.rule) + (unbuffered ? ", as on a terminal" : ""));
            Start how;
            how.betweenFrames = quickTour;
            how.prepare = [&](Running&) {
                std::setvbuf(stdout, nullptr, unbuffered ? _IONBF : _IOFBF, BUFSIZ);
                stream.put(STDOUT_FILENO);
            };
            const End end = start(how);
            EXPECT_EQ(end.signal, 0);
            EXPECT_EQ(end.status, 0);
            EXPECT_EQ(end.error, "");
            EXPECT_EQ(end.output, "");
            EXPECT_EQ(end.report.frames, QUICK_TOUR_FRAMES);
            EXPECT_EQ(end.report.nothingDrawn, 0);
        }
    }
}

// As any program that writes on, unless whoever started it has said otherwise.
TEST(Streams, AReaderThatHasGoneEndsTheGameByItsSignalOnly) {
    for (const bool ignored : {false, true}) {
        SCOPED_TRACE(ignored ? "signal ignored" : "signal not ignored");
        Start how;
        how.betweenFrames = quickTour;
        how.prepare = [&](Running&) {
            signal(SIGPIPE, ignored ? SIG_IGN : SIG_DFL);
            withoutReader(STDOUT_FILENO);
        };
        const End end = start(how);
        EXPECT_EQ(end.signal, ignored ? 0 : SIGPIPE);
        EXPECT_EQ(end.status, ignored ? 0 : -1);
        EXPECT_EQ(end.error, "");
        EXPECT_EQ(end.report.frames, ignored || end.report.frames > 0 ? QUICK_TOUR_FRAMES : 0);
    }
}

TEST(Streams, AReaderThatGoesAmidTheGameEndsItByItsSignalOnly) {
    for (const bool ignored : {false, true}) {
        SCOPED_TRACE(ignored ? "signal ignored" : "signal not ignored");
        Start how;
        static int reader = -1;
        how.prepare = [&](Running&) {
            signal(SIGPIPE, ignored ? SIG_IGN : SIG_DFL);
            std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
            int ends[2] = {-1, -1};
            EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0);
            dup2(ends[1], STDOUT_FILENO);
            reader = ends[0];
        };
        how.betweenFrames = [&](Running& game) {
            quickTour(game);
            if (game.frame == 1) {
                close(reader);  // what was printed before fits the pipe
            }
        };
        const End end = start(how);
        EXPECT_EQ(end.signal, ignored ? 0 : SIGPIPE);
        EXPECT_EQ(end.status, ignored ? 0 : -1);
        EXPECT_EQ(end.error, "");
        EXPECT_EQ(end.report.frames, ignored ? QUICK_TOUR_FRAMES : FIRST_TALKING_FRAME - 1);
    }
}

// The program from outside.

constexpr char LEAVE[] = "start 4000\nframe 1 time 51\nframe 40 quit\n";
constexpr char TALK[] =
    "start 4000\ntimes 1 51*110 1001*300\nframe 1 down return\nframe 2 up return\n"
    "frame 400 quit\n";

struct ProgramEnd {
    int status = -1;
    int signal = 0;
};

// Puts the streams of the child, then becomes the program; without a scenario it gets true events.
[[noreturn]] void becomeProgram(const std::vector<const char*>& arguments,
                                const std::string& scenario) {
    if (!scenario.empty()) {
        setenv("KRAVOLTIX_SCENARIO", scenario.c_str(), 1);
        setenv("LD_PRELOAD", KRAVOLTIX_PRELOAD, 1);
        const char* options = std::getenv("ASAN_OPTIONS");
        const std::string added =
            (options == nullptr ? "" : options + std::string(":")) + "verify_asan_link_order=0";
        setenv("ASAN_OPTIONS", added.c_str(), 1);
    }
    if (chdir(GAME_DATA) != 0) {
        _exit(127);
    }
    std::vector<char*> words = {const_cast<char*>("kravoltix")};
    for (const char* argument : arguments) {
        words.push_back(const_cast<char*>(argument));
    }
    words.push_back(nullptr);
    execv(KRAVOLTIX_PROGRAM, words.data());
    _exit(127);
}

ProgramEnd endOf(pid_t child) {
    int state = 0;
    EXPECT_EQ(waitpid(child, &state, 0), child);
    ProgramEnd end;
    end.status = WIFEXITED(state) ? WEXITSTATUS(state) : -1;
    end.signal = WIFSIGNALED(state) ? WTERMSIG(state) : 0;
    return end;
}

ProgramEnd runWith(void (*put)(int), const std::vector<int>& descriptors,
                   const std::vector<const char*>& arguments) {
    const TemporaryFolder folder;
    const std::string scenario = folder.path + "/scenario";
    writeFile(scenario, LEAVE);
    const pid_t child = fork();
    if (child == 0) {
        for (const int descriptor : descriptors) {
            put(descriptor);
        }
        becomeProgram(arguments, scenario);
    }
    return endOf(child);
}

TEST(Streams, TheProgramEndsWellWhateverItsStreamsTake) {
    for (const Stream& stream : STREAMS) {
        for (const std::vector<const char*>& arguments :
             {std::vector<const char*>{"-ns"}, {"--help"}, {"-fs"}}) {
            SCOPED_TRACE(std::string(stream.rule) + " " + arguments.front());
            const ProgramEnd end = runWith(stream.put, {STDOUT_FILENO}, arguments);
            EXPECT_EQ(end.signal, 0);
            EXPECT_EQ(end.status, 0);
        }
    }
    const ProgramEnd help = runWith(withoutReader, {STDOUT_FILENO}, {"--help"});
    EXPECT_EQ(help.signal, SIGPIPE);
}

TEST(Streams, TheProgramEndsWellWithoutAnyStreams) {
    const ProgramEnd end = runWith(closed, {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}, {"-ns"});
    EXPECT_EQ(end.signal, 0);
    EXPECT_EQ(end.status, 0);
}

// The sound goes into a file that is open while the game lasts, as a display's connection is, and that
// is opened while the number of standard output is free. Frames of a second each are warned of, by more
// text than a buffer holds: some of it is written while the file is open.
TEST(Streams, WhatIsPrintedToAClosedOneGoesNowhereElse) {
    const TemporaryFolder folder;
    const std::string sound = folder.path + "/sound";
    const std::string scenario = folder.path + "/scenario";
    writeFile(scenario, TALK);
    const pid_t child = fork();
    if (child == 0) {
        setenv("SDL_AUDIODRIVER", "disk", 1);
        setenv("SDL_DISKAUDIOFILE", sound.c_str(), 1);
        close(STDOUT_FILENO);
        becomeProgram({}, scenario);
    }
    const ProgramEnd end = endOf(child);
    EXPECT_EQ(end.signal, 0);
    EXPECT_EQ(end.status, 0);
    EXPECT_EQ(contentOf(sound).find("MyShip was born:"), std::string::npos);
}

// A recording and the list of calls are opened before the program begins, while the number of the closed
// stream is free.
TEST(Streams, WhatIsPrintedToAClosedOneIsWrittenDownLikeAnyOther) {
    constexpr rlim_t MOST_BYTES = 16 << 20;
    std::string recording;
    std::string calls;
    for (const std::vector<int>& descriptors : {std::vector<int>{},
                                                {STDIN_FILENO},
                                                {STDOUT_FILENO},
                                                {STDOUT_FILENO, STDERR_FILENO},
                                                {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}}) {
        SCOPED_TRACE(std::to_string(descriptors.size()) + " closed");
        const TemporaryFolder folder;
        const std::string scenario = folder.path + "/scenario";
        writeFile(scenario, TALK);
        const pid_t child = fork();
        if (child == 0) {
            // A file that got the text that is read from it would grow for ever.
            const rlimit limit = {MOST_BYTES, MOST_BYTES};
            setrlimit(RLIMIT_FSIZE, &limit);
            setenv("KRAVOLTIX_RECORD", (folder.path + "/recording").c_str(), 1);
            setenv("KRAVOLTIX_CALLS", (folder.path + "/calls").c_str(), 1);
            for (const int descriptor : descriptors) {
                close(descriptor);
            }
            becomeProgram({}, scenario);
        }
        const ProgramEnd end = endOf(child);
        EXPECT_EQ(end.signal, 0);
        EXPECT_EQ(end.status, 0);
        if (descriptors.empty()) {
            recording = contentOf(folder.path + "/recording");
            calls = contentOf(folder.path + "/calls");
            EXPECT_FALSE(recording.empty());
            EXPECT_FALSE(calls.empty());
        }
        EXPECT_TRUE(contentOf(folder.path + "/recording") == recording);
        EXPECT_TRUE(contentOf(folder.path + "/calls") == calls);
    }
}

// The program on a terminal, with the true clock; each line is read as it comes.
class OnTerminal {
public:
    explicit OnTerminal(const std::vector<const char*>& arguments) {
        child = forkpty(&terminal, nullptr, nullptr, nullptr);
        if (child == 0) {
            alarm(300);
            becomeProgram(arguments, "");
        }
    }

    ~OnTerminal() { close(terminal); }

    OnTerminal(const OnTerminal&) = delete;
    OnTerminal& operator=(const OnTerminal&) = delete;

    // Reads on until this has been printed, or the program has ended.
    bool readTo(const std::string& words) {
        while (text.find(words) == std::string::npos) {
            char buffer[4096];
            const ssize_t count = read(terminal, buffer, sizeof buffer);
            if (count <= 0) {
                return false;
            }
            for (ssize_t i = 0; i < count; ++i) {
                if (buffer[i] != '\r') {
                    text += buffer[i];
                }
            }
        }
        return true;
    }

    void send(int signalNumber) { kill(child, signalNumber); }
    void type(char key) { EXPECT_EQ(write(terminal, &key, 1), 1); }

    ProgramEnd end() {
        readTo("the end of all lines");
        return endOf(child);
    }

    std::string text;

private:
    int terminal = -1;
    pid_t child = -1;
};

constexpr char CONTROL_C = 3;

TEST(Streams, ATerminalsControlCEndsTheGameWithItsClosingLines) {
    OnTerminal program({"-ns"});
    ASSERT_TRUE(program.readTo("(b) same as (a)")) << program.text;
    program.type(CONTROL_C);
    EXPECT_EQ(program.end().status, 0);
    EXPECT_TRUE(endsWith(program.text, farewellText(true))) << program.text;
}

TEST(Streams, ATermFromOutsideEndsTheGameWithItsClosingLines) {
    OnTerminal program({"-ns"});
    ASSERT_TRUE(program.readTo("(b) same as (a)")) << program.text;
    program.send(SIGTERM);
    EXPECT_EQ(program.end().status, 0);
    EXPECT_TRUE(endsWith(program.text, farewellText(true))) << program.text;
}

// From the first line on the libraries have the signals in hand.
TEST(Streams, ATermWhileLoadingEndsTheGameWithItsClosingLines) {
    for (const int signalNumber : {SIGTERM, SIGINT}) {
        OnTerminal program({"-ns"});
        ASSERT_TRUE(program.readTo("Starting in window mode...")) << program.text;
        program.send(signalNumber);
        EXPECT_EQ(program.end().status, 0);
        EXPECT_TRUE(endsWith(program.text, farewellText(true))) << program.text;
    }
}

// The reader of a terminal may go as well; the terminal's own signal ends the game then.
TEST(Streams, ATerminalThatGoesEndsTheGame) {
    int state = 0;
    {
        OnTerminal program({"-ns"});
        ASSERT_TRUE(program.readTo("(b) same as (a)")) << program.text;
    }
    // Its process is the only child that is left.
    EXPECT_GT(wait(&state), 0);
    EXPECT_TRUE(WIFSIGNALED(state) && WTERMSIG(state) == SIGHUP) << state;
}

}  // namespace
