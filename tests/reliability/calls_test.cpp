// SPDX-License-Identifier: MIT
// Every library call of the game fails once, at its first, second and last use, and at all of them:
// the start stops with the line that the rules give, or the game goes on.
#include "front/front.h"
#include "reliability/quicktour.h"
#include "reliability/start.h"
#include "support/program.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <type_traits>

using namespace reliability;

namespace {

constexpr char REASON[] = "broken for a test";
constexpr int EVERY_USE = 0;
constexpr int NO_USE = -1;

// What comes of a failure.
enum Outcome {
    WHOLE_GAME,    // the game goes on, and prints the same to its end
    ANOTHER_GAME,  // it goes on to its end
    STOP,          // with the line below
};

struct Failure {
    const char* function;
    int use;  // EVERY_USE, or counted from 1; LAST counts from the end
    Outcome outcome;
    const char* line = "";  // behind what was printed before; "@" stands for the reason
    int status = 1;
};

constexpr int LAST = 1000000;

// A failed call returns -1 or null. A poll that finds nothing and a clock that stands at 0 are the
// only failures that those two have.
template <typename Result> Result failed() {
    if constexpr (std::is_same_v<Result, int>) {
        return -1;
    } else {
        return {};
    }
}

// Around every hook: counts the calls of one function and lets one or all of them fail.
class FailingCall {
public:
    FailingCall(const char* which, int whichUse) : function(which), use(whichUse) {}

    void stand(Report& report) {
#define KRAVOLTIX_WRAP(name, result, parameters, arguments)                                        \
    wrap(#name, front::hooks().name, &front::real::name, report);
        KRAVOLTIX_FRONT_FUNCTIONS(KRAVOLTIX_WRAP)
#undef KRAVOLTIX_WRAP
    }

private:
    template <typename Result, typename... Arguments>
    void wrap(const char* name, std::function<Result(Arguments...)>& hook,
              Result (*real)(Arguments...), Report& report) {
        if (std::strcmp(name, function) != 0) {
            return;
        }
        std::function<Result(Arguments...)> next = hook;
        if (!next) {
            next = real;
        }
        if constexpr (std::is_void_v<Result>) {
            hook = [next, &report](Arguments... arguments) {
                ++report.calls;
                next(arguments...);
            };
        } else {
            hook = [this, next, &report](Arguments... arguments) -> Result {
                ++report.calls;
                if (use != EVERY_USE && use != report.calls) {
                    return next(arguments...);
                }
                if (std::strcmp(function, "SDL_Flip") == 0) {
                    next(arguments...);  // the test's own hand on the game
                }
                SDL_SetError("%s", REASON);
                return std::strcmp(function, "SDL_PollEvent") == 0 ? Result{} : failed<Result>();
            };
        }
    }

    const char* function;
    int use;
};

// A screen that asks to be locked for the stars, and never needs it.
void askForLocks() {
    front::Hooks& hooks = front::hooks();
    hooks.SDL_FillRect = [](SDL_Surface* to, SDL_Rect* rect, Uint32 colour) {
        const int result = front::real::SDL_FillRect(to, rect, colour);
        to->flags |= SDL_ASYNCBLIT;
        return result;
    };
    hooks.SDL_LockSurface = [](SDL_Surface* surface) {
        surface->flags &= ~Uint32{SDL_ASYNCBLIT};
        return 0;
    };
    hooks.SDL_UnlockSurface = [](SDL_Surface*) {};
}

bool isAnyOf(const char* function, std::initializer_list<const char*> names) {
    return std::any_of(names.begin(), names.end(),
                       [&](const char* name) { return std::strcmp(function, name) == 0; });
}

End startWithFailure(const char* function, int use) {
    Start how;
    how.noSound = false;
    how.fullscreen = isAnyOf(function, {"SDL_ShowCursor"});
    how.trueSounds = isAnyOf(function, {"SDL_RWFromFile", "Mix_LoadWAV_RW"});
    how.betweenFrames = quickTour;
    how.prepareWithReport = [=](Running&, Report& report) {
        if (!isAnyOf(function, {"SDL_FillRect"})) {
            askForLocks();
        }
        (new FailingCall(function, use))->stand(report);
    };
    return start(how);
}

int usesOf(const char* function) {
    const End end = startWithFailure(function, NO_USE);
    EXPECT_EQ(end.status, 0) << end.told();
    EXPECT_GT(end.report.calls, 0) << function << " is not called";
    return end.report.calls;
}

std::string withReason(std::string line) {
    if (const size_t at = line.find('@'); at != std::string::npos) {
        line.replace(at, 1, REASON);
    }
    return line;
}

bool endsWith(const std::string& text, const std::string& end) {
    return text.size() >= end.size() &&
           text.compare(text.size() - end.size(), end.size(), end) == 0;
}

void expectOutcome(const End& end, const Failure& failure, const std::string& wholeGame) {
    EXPECT_FALSE(end.isCrash());
    if (failure.outcome == STOP) {
        EXPECT_EQ(end.status, failure.status);
        EXPECT_EQ(end.report.frames, 0);
        const std::string line = withReason(failure.line);
        EXPECT_TRUE(endsWith(end.output, line));
        EXPECT_EQ(end.output.substr(0, end.output.size() - line.size()),
                  wholeGame.substr(0, end.output.size() - line.size()));
    } else {
        EXPECT_EQ(end.status, 0);
        EXPECT_TRUE(endsWith(end.output, farewellText(false)));
        if (failure.outcome == WHOLE_GAME) {
            EXPECT_EQ(end.output, wholeGame);
        }
    }
    if (testing::Test::HasFailure()) {
        FAIL() << end.told();
    }
}

std::string wholeGame(bool fullscreen) {
    return startText(fullscreen, false) + birthText() + displayText() + quickTourText() +
           farewellText(false);
}

void expectFailures(std::initializer_list<Failure> failures) {
    for (const Failure& failure : failures) {
        SCOPED_TRACE(std::string(failure.function) + " at use " + std::to_string(failure.use));
        const int use = failure.use == LAST ? usesOf(failure.function) : failure.use;
        const End end = startWithFailure(failure.function, use);
        const std::string lockLine = withReason(
            std::strcmp(failure.function, "SDL_LockSurface") == 0 ? "Can't lock screen: @\n" : "");
        if (use != EVERY_USE) {
            EXPECT_EQ(unexpectedLines(end.error), lockLine);
        }
        expectOutcome(end, failure,
                      wholeGame(std::strcmp(failure.function, "SDL_ShowCursor") == 0));
    }
}

// The order of the loads, and what is asked for among them.
struct Load {
    int fromLast;  // 0 is the last picture that is loaded
    const char* name;
};

// clang-format off
constexpr Load ASKED_FOR_FROM_LAST[] = {
    { 0, "numbers_a.png"},    { 1, "letter_cursor.png"}, { 2, "letters.png"},
    { 3, "numbers_a.png"},    { 4, "letter_cursor.png"}, { 5, "letters.png"},
    { 6, "numbers_a.png"},    { 7, "letter_cursor.png"}, { 8, "letters.png"},
    // four marks and the two shots, which nobody asks for
    {15, "cross.png"},        {16, "numbers_mini.png"},  {17, "numbers_a.png"},
    // the energy's scale and bar and the rocket's icon
    {21, "item_shot01a.png"}, {22, "fps_a.png"},
};
// clang-format on

constexpr int LOADED_PICTURES = 46 + 7 + 6 + 7 + 8 + 2 + 4 + 9;

const char* askedFor(int use) {
    for (const Load& load : ASKED_FOR_FROM_LAST) {
        if (LOADED_PICTURES - load.fromLast == use) {
            return load.name;
        }
    }
    return nullptr;
}

TEST(Calls, VideoThatDoesNotStartStopsTheGame) {
    expectFailures({
        {"SDL_Init", 1, STOP, "Can't init SDL:  @\n"},
        {"SDL_Init", EVERY_USE, STOP, "Can't init SDL:  @\n"},
        {"SDL_SetVideoMode", 1, STOP, "Starting in window mode...\nCan't set video mode: @\n"},
        {"SDL_ShowCursor", 1, WHOLE_GAME},
    });
}

TEST(Calls, AudioThatDoesNotStartStopsTheGame) {
    expectFailures({
        {"SDL_Init", 2, STOP, "Starting with audio support...\nSDL_Init: @\n"},
        {"SDL_Init", LAST, STOP, "Starting with audio support...\nSDL_Init: @\n"},
        {"Mix_OpenAudio", 1, STOP, "Starting with audio support...\nMix_OpenAudio: @\n", 2},
    });
}

TEST(Calls, PicturesThatAreNotLoadedStopTheGameOrAreNotSeen) {
    ASSERT_EQ(usesOf("IMG_Load"), LOADED_PICTURES);
    for (int use = 1; use <= LOADED_PICTURES; ++use) {
        const char* name = askedFor(use);
        const bool isWanted = isComplete() || use <= 2 || use > LOADED_PICTURES - 3 ||
                              use == LOADED_PICTURES - 20 || use == LOADED_PICTURES - 22;
        if (!isWanted) {
            continue;
        }
        const std::string line =
            "Can't load image \"" + std::string(name == nullptr ? "" : name) + "\": @\n";
        expectFailures({{"IMG_Load", use, name == nullptr ? WHOLE_GAME : STOP, line.c_str()}});
    }
    expectFailures({{"IMG_Load", EVERY_USE, STOP, "Can't load image \"fps_a.png\": @\n"}});
}

TEST(Calls, SoundsThatAreNotLoadedAreNotHeard) {
    for (const char* function : {"SDL_RWFromFile", "Mix_LoadWAV_RW"}) {
        expectFailures({{function, 1, WHOLE_GAME},
                        {function, 2, WHOLE_GAME},
                        {function, LAST, WHOLE_GAME},
                        {function, EVERY_USE, WHOLE_GAME}});
    }
}

TEST(Calls, SoundsThatAreNotPlayedOrFadedAreNotMissed) {
    for (const char* function :
         {"Mix_PlayChannelTimed", "Mix_FadeOutChannel", "Mix_FadeOutMusic"}) {
        expectFailures({{function, 1, WHOLE_GAME},
                        {function, 2, WHOLE_GAME},
                        {function, LAST, WHOLE_GAME},
                        {function, EVERY_USE, WHOLE_GAME}});
    }
}

TEST(Calls, WhatIsNotDrawnOrShownIsNotMissed) {
    for (const char* function : {"SDL_FillRect", "SDL_UpperBlit", "SDL_Flip"}) {
        expectFailures({{function, 1, WHOLE_GAME},
                        {function, 2, WHOLE_GAME},
                        {function, LAST, WHOLE_GAME},
                        {function, EVERY_USE, WHOLE_GAME}});
    }
}

TEST(Calls, AScreenThatIsNotLockedShowsNoStarsInThatFrame) {
    expectFailures({{"SDL_LockSurface", 1, WHOLE_GAME},
                    {"SDL_LockSurface", 2, WHOLE_GAME},
                    {"SDL_LockSurface", LAST, WHOLE_GAME},
                    {"SDL_LockSurface", EVERY_USE, WHOLE_GAME}});
}

// A poll that finds nothing leaves its event to the next frame.
TEST(Calls, EventsThatComeLateAreHandledLate) {
    expectFailures({{"SDL_PollEvent", 1, WHOLE_GAME},
                    {"SDL_PollEvent", 2, WHOLE_GAME},
                    {"SDL_PollEvent", LAST, WHOLE_GAME},
                    {"SDL_PollEvent", EVERY_USE, ANOTHER_GAME}});
}

TEST(Calls, AClockThatReadsZeroOnceOrAlwaysIsSurvived) {
    expectFailures({{"SDL_GetTicks", 1, ANOTHER_GAME},
                    {"SDL_GetTicks", 2, ANOTHER_GAME},
                    {"SDL_GetTicks", LAST, ANOTHER_GAME},
                    {"SDL_GetTicks", EVERY_USE, ANOTHER_GAME}});
}

}  // namespace
