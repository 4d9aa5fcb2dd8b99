// SPDX-License-Identifier: MIT
// Storms of events, events that nobody ever sends, and the signals that ask a program to end.
#include "front/front.h"
#include "graphics/qelstring.h"
#include "objects/myship.h"
#include "playthrough/texts.h"
#include "reliability/quicktour.h"
#include "reliability/start.h"
#include "support/program.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <cstring>
#include <random>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace reliability;

namespace {

constexpr size_t STORM = 100000;

std::string noPlay() {
    return startText(false, true) + birthText() + displayText() + farewellText(true);
}

void expectEnd(const End& end, const std::string& output) {
    EXPECT_FALSE(end.isCrash());
    EXPECT_EQ(end.status, 0);
    EXPECT_EQ(end.error, "");
    EXPECT_EQ(end.output, output);
    if (testing::Test::HasFailure()) {
        FAIL() << end.told();
    }
}

// What the keys set, as bits.
enum Held { UP = 1, DOWN = 2, LEFT = 4, RIGHT = 8, LASER = 16, ROCKET = 32 };

Uint32 heldIn(const BattleField& field) {
    return (field.myShip->goingUp ? UP : 0) | (field.myShip->goingDown ? DOWN : 0) |
           (field.myShip->goingLeft ? LEFT : 0) | (field.myShip->goingRight ? RIGHT : 0) |
           (field.shotKey1 ? LASER : 0) | (field.shotKey2 ? ROCKET : 0);
}

Uint32 bitOf(SDLKey key) {
    switch (key) {
    case SDLK_UP:
        return UP;
    case SDLK_DOWN:
        return DOWN;
    case SDLK_LEFT:
        return LEFT;
    case SDLK_RIGHT:
        return RIGHT;
    case SDLK_a:
        return LASER;
    case SDLK_s:
        return ROCKET;
    default:
        return 0;
    }
}

// Events as they may come, none of which ends the game, and what is held after them.
std::deque<SDL_Event> storm(Uint32 seed, Uint32& held) {
    constexpr SDLKey KEYS[] = {SDLK_UP, SDLK_DOWN, SDLK_LEFT, SDLK_RIGHT,
                               SDLK_a,  SDLK_s,    SDLK_q,    SDLK_RETURN};
    std::mt19937 random(seed);
    std::deque<SDL_Event> events(STORM);
    for (SDL_Event& event : events) {
        event = {};
        const SDLKey key = KEYS[random() % std::size(KEYS)];
        switch (random() % 4) {
        case 0:
            event.type = SDL_KEYDOWN;
            event.key.keysym.sym = key;
            held |= bitOf(key);
            break;
        case 1:
            event.type = SDL_KEYUP;
            event.key.keysym.sym = key;
            held &= ~bitOf(key);
            break;
        case 2:
            event.type = SDL_MOUSEMOTION;
            break;
        default:
            event.type = SDL_ACTIVEEVENT;
            break;
        }
    }
    return events;
}

TEST(Events, AStormIsHandledInOneFrameToItsLastKey) {
    const Uint32 storms = isComplete() ? 100 : 4;
    for (Uint32 seed = 1; seed <= storms; ++seed) {
        SCOPED_TRACE(seed);
        Uint32 held = 0;
        const std::deque<SDL_Event> events = storm(seed, held);
        Start how;
        how.betweenFramesWithReport = [&](Running& game, Report& report) {
            if (game.frame == 2) {
                game.events = events;
            } else if (game.frame == 3) {
                report.calls = static_cast<int>(game.events.size());
                report.seen[0] = heldIn(game.field);
                game.closeWindow();
            }
        };
        const End end = start(how);
        EXPECT_EQ(end.report.calls, 0) << "events were left";
        EXPECT_EQ(end.report.seen[0], held);
        EXPECT_EQ(end.report.frames, 3);
        expectEnd(end, noPlay());
    }
}

// A storm in every frame, in play too.
TEST(Events, AStormInEachFrameOfAGameIsSurvived) {
    Uint32 held = 0;
    const std::deque<SDL_Event> events = storm(7, held);
    Start how;
    how.betweenFrames = [&](Running& game) {
        game.field.gamePhase = BattleField::PHASE_PLAY;
        game.events = events;
        if (game.frame == 20) {
            game.closeWindow();
        }
    };
    const End end = start(how);
    EXPECT_FALSE(end.isCrash());
    EXPECT_EQ(end.status, 0);
    EXPECT_TRUE(endsWith(end.output, farewellText(true)));
}

// What follows the end of the game is handled too, and changes nothing.
TEST(Events, EscapeAmidAStormEndsTheGameInThatFrame) {
    Uint32 held = 0;
    std::deque<SDL_Event> events = storm(3, held);
    events[STORM / 2].type = SDL_KEYDOWN;
    events[STORM / 2].key.keysym.sym = SDLK_ESCAPE;
    Start how;
    how.betweenFrames = [&](Running& game) { game.events = events; };
    const End end = start(how);
    EXPECT_EQ(end.report.frames, 1);
    expectEnd(end, noPlay());
}

// The library's own queue is short: what does not fit is lost, and the game goes on.
TEST(Events, AStormThroughTheLibrarysQueueIsSurvived) {
    Uint32 held = 0;
    const std::deque<SDL_Event> events = storm(5, held);
    Start how;
    how.prepare = [](Running&) { front::hooks().SDL_PollEvent = front::real::SDL_PollEvent; };
    how.betweenFrames = [&](Running& game) {
        if (game.frame == 2) {
            for (SDL_Event event : events) {
                SDL_PushEvent(&event);
            }
        } else if (game.frame == 4) {
            SDL_Event closed = {};
            closed.type = SDL_QUIT;
            EXPECT_EQ(SDL_PushEvent(&closed), 0);
        }
    };
    const End end = start(how);
    EXPECT_EQ(end.report.frames, 4);
    expectEnd(end, noPlay());
}

// All 256 types, filled with noise. Only the keys of the game and the window's end mean anything;
// a key event's key is one that the library may send.
TEST(Events, OfEveryTypeWithAnyContentsDoNothingButWhatTheRulesSay) {
    const Uint32 seeds = isComplete() ? 1000 : 8;
    for (Uint32 seed = 1; seed <= seeds; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        std::deque<SDL_Event> events;
        Uint32 held = 0;
        for (int type = 0; type < 256; ++type) {
            SDL_Event event;
            unsigned char noise[sizeof event];
            for (unsigned char& byte : noise) {
                byte = static_cast<unsigned char>(random());
            }
            std::memcpy(&event, noise, sizeof event);
            event.type = static_cast<Uint8>(type);
            if (type == SDL_KEYDOWN || type == SDL_KEYUP) {
                SDLKey key = static_cast<SDLKey>(random() % SDLK_LAST);
                key = key == SDLK_ESCAPE ? SDLK_UP : key;
                event.key.keysym.sym = key;
                held = type == SDL_KEYDOWN ? held | bitOf(key) : held & ~bitOf(key);
            }
            if (type != SDL_QUIT) {
                events.push_back(event);
            }
        }
        Start how;
        how.betweenFramesWithReport = [&](Running& game, Report& report) {
            if (game.frame == 1) {
                game.events = events;
            } else if (game.frame == 2) {
                report.seen[0] = heldIn(game.field);
                game.closeWindow();
                game.events.front().user.code = static_cast<int>(random());
            }
        };
        const End end = start(how);
        EXPECT_EQ(end.report.seen[0], held);
        EXPECT_EQ(end.report.frames, 2);
        expectEnd(end, noPlay());
    }
}

// Signals.

constexpr int SIGNAL_FRAMES = 1000;
constexpr Uint32 SIGNAL_FRAME_MS = 25;
constexpr int RETURN_FRAME = 100;

void takeRealEvents() {
    front::hooks().SDL_PollEvent = front::real::SDL_PollEvent;
}

std::string contentOf(int descriptor) {
    std::string content(1 << 16, '\0');
    const ssize_t bytes = pread(descriptor, content.data(), content.size(), 0);
    content.resize(bytes > 0 ? static_cast<size_t>(bytes) : 0);
    return content;
}

// A copy of the game, made between two frames, gets the signal and must end at once: with status 0
// and nothing more than the closing lines.
class SignalledCopies {
public:
    SignalledCopies(Report& toParent, int step) : report(toParent), every(step) {}

    // In the copy this returns, and the game goes on to its end.
    void at(int frame, const BattleField& field) {
        if (frame % every != 0) {
            return;
        }
        for (const int signalNumber : {SIGTERM, SIGINT}) {
            if (signalled(signalNumber, frame, field.gamePhase)) {
                return;
            }
        }
    }

private:
    bool signalled(int signalNumber, int frame, int phase) {
        std::fflush(stdout);
        const int output = memfd_create("copy", 0);
        const pid_t copy = fork();
        if (copy == 0) {
            dup2(output, STDOUT_FILENO);
            isCopy = true;
            raise(signalNumber);
            return true;
        }
        int state = 0;
        waitpid(copy, &state, 0);
        const std::string text = contentOf(output);
        close(output);
        if (!WIFEXITED(state) || WEXITSTATUS(state) != 0 || text != farewellText(true)) {
            std::fprintf(stderr, "signal %i after frame %i: state %i, output: %s\n", signalNumber,
                         frame, state, text.c_str());
        }
        ++report.calls;
        ++report.seen[phase];
        return false;
    }

    Report& report;
    int every;

public:
    bool isCopy = false;
};

TEST(Events, TermAndIntEndTheGameAtEachFrameWithItsClosingLines) {
    const int step = isComplete() ? 1 : IS_SANITIZED ? 40 : 20;
    Start how;
    how.prepare = [](Running& game) {
        game.clockMs = 266;
        game.frameMs = SIGNAL_FRAME_MS;
        takeRealEvents();
    };
    how.betweenFramesWithReport = [=](Running& game, Report& report) {
        static SignalledCopies copies(report, step);
        if (copies.isCopy) {
            std::fprintf(stderr, "the game goes on after a signal\n");
            std::_Exit(1);
        }
        game.field.myShip->energy = 65;
        if (game.frame == RETURN_FRAME) {
            game.field.titleText->setType(QELString::TYPE_LEAVES);
            game.field.hintText->setType(QELString::TYPE_LEAVES);
        }
        if (game.frame <= SIGNAL_FRAMES) {
            copies.at(game.frame, game.field);
        } else {
            SDL_Event closed = {};
            closed.type = SDL_QUIT;
            SDL_PushEvent(&closed);
        }
    };
    const End end = start(how);
    EXPECT_EQ(end.status, 0);
    EXPECT_EQ(end.error, "");
    EXPECT_EQ(end.report.calls, 2 * (SIGNAL_FRAMES / step));
    for (int phase = BattleField::PHASE_PLAY; phase <= BattleField::PHASE_WAIT; ++phase) {
        EXPECT_GT(end.report.seen[phase], 0U) << "no signal in phase " << phase;
    }
}

// While it loads the game asks for no events: the signal waits, the first frame is shown, and the
// game takes its leave.
TEST(Events, ASignalWhileLoadingEndsTheGameAfterItsFirstFrame) {
    constexpr int LOADS = 89;
    for (const int signalNumber : {SIGTERM, SIGINT}) {
        for (int load = 1; load <= LOADS; load += isComplete() ? 1 : 22) {
            SCOPED_TRACE("signal " + std::to_string(signalNumber) + " at load " +
                         std::to_string(load));
            Start how;
            how.prepare = [=](Running&) {
                takeRealEvents();
                front::hooks().IMG_Load = [next = front::hooks().IMG_Load, signalNumber, load,
                                           loads = 0](const char* file) mutable {
                    if (++loads == load) {
                        raise(signalNumber);
                    }
                    return next(file);
                };
            };
            const End end = start(how);
            EXPECT_EQ(end.report.frames, 1);
            expectEnd(end, noPlay());
        }
    }
}

// Before the video starts, a signal ends the program as it ends any other.
TEST(Events, ASignalBeforeTheStartEndsTheProgram) {
    Start how;
    how.prepare = [](Running&) {
        front::hooks().SDL_Init = [](Uint32 flags) {
            raise(SIGTERM);
            return front::real::SDL_Init(flags);
        };
    };
    const End end = start(how);
    EXPECT_EQ(end.signal, SIGTERM);
    EXPECT_EQ(end.output, "");
}

// The last second, in which the sound fades, is not cut short, and nothing else is lost.
TEST(Events, ASignalInTheFadeOutChangesNothing) {
    for (const int signalNumber : {SIGTERM, SIGINT}) {
        Start how;
        how.noSound = false;
        how.prepare = [=](Running&) {
            front::hooks().SDL_Delay = [=](Uint32) { raise(signalNumber); };
            front::hooks().SDL_Quit = [=] {
                raise(signalNumber);
                front::real::SDL_Quit();
            };
        };
        how.betweenFrames = [](Running& game) { game.closeWindow(); };
        expectEnd(start(how),
                  startText(false, false) + birthText() + displayText() + farewellText(false));
    }
}

}  // namespace
