// SPDX-License-Identifier: MIT
#include "driver/battlefield.h"

#include "driver/webaddress.h"
#include "front/front.h"
#include "graphics/display.h"
#include "graphics/stars.h"
#include "objects/myship.h"
#include "support/game.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

using Log = std::vector<std::string>;

constexpr char QUESTIONS[] = "> Questions? ... " KRAVOLTIX_WEB_ADDRESS;
constexpr Uint32 WINDOW_FLAGS = 0x60000000;  // double buffer, hardware palette
constexpr Uint32 FULLSCREEN_FLAGS = 0xe0000000;

std::string modeCall(Uint32 flags) {
    return "SDL_SetVideoMode(640, 480, 32, " + std::to_string(flags) + ')';
}

// What a game does up to its first picture.
Log startOf(Game& game) {
    game.play([&] { game.closeWindow(); });
    const auto loading = std::find(game.log.begin(), game.log.end(), "load explosions/ex0000.png");
    return Log(game.log.begin(), loading);
}

TEST(BattleFieldStart, OpensAWindowAndThenAudio) {
    Game game;
    const Log expected = {
        "SDL_Init(video)",      "> Starting in window mode...",
        modeCall(WINDOW_FLAGS), "> Starting with audio support...",
        "SDL_Init(audio)",      "Mix_OpenAudio(22050, 32784, 1, 1024)",
    };
    EXPECT_EQ(startOf(game), expected);
    EXPECT_EQ(AUDIO_S16LSB, 32784);
}

TEST(BattleFieldStart, HidesTheCursorInFullScreenOnly) {
    Game game;
    game.fullscreen = true;
    const Log expected = {
        "SDL_Init(video)",
        "> Starting in fullscreen mode...",
        modeCall(FULLSCREEN_FLAGS),
        "SDL_ShowCursor(0)",
        "> Starting with audio support...",
        "SDL_Init(audio)",
        "Mix_OpenAudio(22050, 32784, 1, 1024)",
    };
    EXPECT_EQ(startOf(game), expected);
}

TEST(BattleFieldStart, DoesNotTouchAudioWithoutSound) {
    Game game;
    game.noSound = true;
    const Log expected = {
        "SDL_Init(video)",
        "> Starting in window mode...",
        modeCall(WINDOW_FLAGS),
    };
    EXPECT_EQ(startOf(game), expected);
}

TEST(BattleFieldStart, PlaysInFullScreenWithoutSound) {
    Game game;
    game.fullscreen = true;
    game.noSound = true;
    const Log expected = {
        "SDL_Init(video)",
        "> Starting in fullscreen mode...",
        modeCall(FULLSCREEN_FLAGS),
        "SDL_ShowCursor(0)",
    };
    EXPECT_EQ(startOf(game), expected);
}

TEST(BattleFieldStart, OpensTheSameScreenForAFieldOfAnySize) {
    Game game;
    game.width = 320;
    game.height = 240;
    const Log start = startOf(game);
    EXPECT_EQ(start.at(2), modeCall(WINDOW_FLAGS));
    EXPECT_EQ(game.field.screen->w, 640);
    EXPECT_EQ(game.field.screen->h, 480);
    EXPECT_EQ(game.field.screen->format->BitsPerPixel, 32);
    EXPECT_EQ(game.field.getWidth(), 320);
    EXPECT_EQ(game.field.getHeight(), 240);
}

TEST(BattleFieldStart, KnowsItsOptionsAndItsSizeBeforeAnythingElse) {
    Game game;
    game.width = 320;
    game.height = 240;
    game.fullscreen = true;
    bool asked = false;
    front::hooks().SDL_Init = [&](Uint32 flags) {
        asked = asked || flags == SDL_INIT_VIDEO;
        EXPECT_TRUE(game.field.fullscreen);
        EXPECT_FALSE(game.field.noSound);
        EXPECT_EQ(game.field.width, 320);
        EXPECT_EQ(game.field.height, 240);
        return front::real::SDL_Init(flags);
    };
    game.play([&] { game.closeWindow(); });
    EXPECT_TRUE(asked);
}

TEST(BattleFieldStart, KeepsTheTwoOptionsInItsFirstTwoBytes) {
    EXPECT_EQ(offsetof(BattleField, fullscreen), 0u);
    EXPECT_EQ(offsetof(BattleField, noSound), 1u);
    EXPECT_EQ(sizeof(bool), 1u);
}

TEST(BattleFieldStart, KeepsTheSizeThatItIsGiven) {
    Game game;
    game.hold([&] {
        game.field.setWidth(7);
        game.field.setHeight(9);
        EXPECT_EQ(game.field.width, 7);
        EXPECT_EQ(game.field.height, 9);
        EXPECT_EQ(game.field.getWidth(), 7);
        EXPECT_EQ(game.field.getHeight(), 9);
        game.field.setWidth(640);
        game.field.setHeight(480);
    });
}

// A start-up that fails: what happens up to the end of the process.
struct FailingStart {
    const char* name;
    std::function<void(Game&)> breakIt;
    int status;
    std::string all;
};

int fail(const char* reason) {
    SDL_SetError("%s", reason);
    return -1;
}

void refuseInit(Game& game, Uint32 refused) {
    front::hooks().SDL_Init = [&game, refused](Uint32 flags) {
        game.note(flags == SDL_INIT_VIDEO ? "SDL_Init(video)" : "SDL_Init(audio)");
        return flags == refused ? fail("nothing there") : front::real::SDL_Init(flags);
    };
}

const FailingStart FAILING_STARTS[] = {
    {"NoVideo", [](Game& game) { refuseInit(game, SDL_INIT_VIDEO); }, 1,
     "SDL_Init(video)\n"
     "> Can't init SDL:  nothing there\n"},
    {"NoMode",
     [](Game& game) {
         front::hooks().SDL_SetVideoMode = [&game](int, int, int, Uint32) {
             game.note("the mode is asked for");
             fail("no such mode");
             return static_cast<SDL_Surface*>(nullptr);
         };
     },
     1,
     "SDL_Init(video)\n"
     "> Starting in window mode...\n"
     "the mode is asked for\n"
     "> Can't set video mode: no such mode\n"
     "SDL_Quit()\n"},
    {"NoModeInFullScreen",
     [](Game& game) {
         game.fullscreen = true;
         front::hooks().SDL_SetVideoMode = [&game](int, int, int, Uint32) {
             game.note("the mode is asked for");
             fail("no such mode");
             return static_cast<SDL_Surface*>(nullptr);
         };
     },
     1,
     "SDL_Init(video)\n"
     "> Starting in fullscreen mode...\n"
     "the mode is asked for\n"
     "SDL_ShowCursor(0)\n"
     "> Can't set video mode: no such mode\n"
     "SDL_Quit()\n"},
    {"NoAudio", [](Game& game) { refuseInit(game, SDL_INIT_AUDIO); }, 1,
     "SDL_Init(video)\n"
     "> Starting in window mode...\n" +
         modeCall(WINDOW_FLAGS) +
         "\n"
         "> Starting with audio support...\n"
         "SDL_Init(audio)\n"
         "> SDL_Init: nothing there\n"
         "SDL_Quit()\n"},
    {"NoMixer",
     [](Game& game) {
         front::hooks().Mix_OpenAudio = [&game](int, Uint16, int, int) {
             game.note("the mixer is asked for");
             return fail("no device");
         };
     },
     2,
     "SDL_Init(video)\n"
     "> Starting in window mode...\n" +
         modeCall(WINDOW_FLAGS) +
         "\n"
         "> Starting with audio support...\n"
         "SDL_Init(audio)\n"
         "the mixer is asked for\n"
         "> Mix_OpenAudio: no device\n"
         "SDL_Quit()\n"},
};

std::ostream& operator<<(std::ostream& out, const FailingStart& start) {
    return out << start.name;
}

class BattleFieldFailingStart : public testing::TestWithParam<FailingStart> {};

void playBroken(const FailingStart& start) {
    Game game;
    game.echoToError = true;
    start.breakIt(game);
    game.play([&] { game.closeWindow(); });
    std::exit(99);
}

TEST_P(BattleFieldFailingStart, SaysWhyAndEndsTheProcess) {
    const FailingStart& start = GetParam();
    EXPECT_EXIT(playBroken(start), testing::ExitedWithCode(start.status), testing::Eq(start.all));
}

INSTANTIATE_TEST_SUITE_P(Every, BattleFieldFailingStart, testing::ValuesIn(FAILING_STARTS),
                         [](const auto& test) { return test.param.name; });

TEST(BattleFieldStart, TakesNothingButMinusOneForAFailure) {
    Game game;
    front::hooks().SDL_Init = [](Uint32 flags) { return front::real::SDL_Init(flags) - 2; };
    front::hooks().Mix_OpenAudio = [](int, Uint16, int, int) { return -2; };
    game.play([&] { game.closeWindow(); });
    EXPECT_EQ(game.passes, 1);
}

TEST(BattleFieldStart, PrintsTheBannerByteForByte) {
    Game game;
    game.noSound = true;
    game.play([&] { game.closeWindow(); });
    const std::string banner =
        "display was born:\n"
        "=================\n"
        "\n"
        "+------------------------------------------------------------------+\n"
        "|                        K R A V O L T I X                         |\n"
        "+------------------------------------------------------------------+ \n"
        "|  Options:                                                        |\n"
        "|   --help, -?         :  print out this help message              |\n"
        "|   --fullscreen, -fs  :  start in fullscreen mode                 |\n"
        "|   --nosound,    -ns  :  start without sound                      |\n"
        "+------------------------------------------------------------------+ \n"
        "|  Keys:                                                           |\n"
        "|   up    arrow        :  flying up                                |\n"
        "|   right arrow        :  flying down                              |\n"
        "|   left  arrow        :  flying left                              |\n"
        "|   right arrow        :  flying right                             |\n"
        "|   \"A\"                :  for laser shot                           |\n"
        "|   \"S\"                :  for rocket shot                          |\n"
        "+------------------------------------------------------------------+ \n"
        "\n"
        "READY for Testing?\n"
        "GO!\n"
        "\n"
        "First Challenge:\n"
        " (a) Win against the \"test formation\"! \n"
        " (b) same as (a) without rocket shot! ;)\n"
        "\n"
        "Thank you for testing!\n"
        "\n"
        "Questions? ... " KRAVOLTIX_WEB_ADDRESS "\n"
        "\n";
    const size_t start = game.text.find("display was born:");
    ASSERT_NE(start, std::string::npos) << game.text;
    EXPECT_EQ(game.text.substr(start), banner);
}

// Plays pass after pass, each ending at the given time, and tells the frame time of each.
std::vector<Uint32> frameTimesOf(Game& game, const std::vector<Uint32>& ends) {
    std::vector<Uint32> times;
    game.play([&] {
        times.push_back(game.field.frameTime);
        game.clock = ends.at(times.size() - 1);
        if (times.size() == ends.size()) {
            game.closeWindow();
        }
    });
    return times;
}

TEST(BattleFieldLoop, CallsTheFirstFrame266MillisecondsLong) {
    Game game;
    game.clock = 5000;
    EXPECT_EQ(frameTimesOf(game, {5020}), std::vector<Uint32>{266});
    EXPECT_EQ(game.field.lastTicks, 266u);
}

TEST(BattleFieldLoop, StartsInTheWaitingPhaseWithNothingDone) {
    Game game;
    front::hooks().SDL_FillRect = [&](SDL_Surface* to, SDL_Rect*, Uint32) {
        if (to != game.field.screen) {
            return 0;
        }
        EXPECT_EQ(game.field.gamePhase, 4);
        EXPECT_FALSE(game.field.introDone);
        EXPECT_FALSE(game.field.quit);
        EXPECT_EQ(game.field.frameTime, 266u);
        return 0;
    };
    game.play([&] { game.closeWindow(); });
}

TEST(BattleFieldLoop, MeasuresAFrameFromTheEndOfThePassBeforeTheLast) {
    Game game;
    const std::vector<Uint32> ends = {300, 320, 365, 366, 4366, 4370};
    EXPECT_EQ(frameTimesOf(game, ends), (std::vector<Uint32>{266, 34, 20, 45, 1, 4000}));
    EXPECT_EQ(game.takeLog({"SDL_Delay(1)"}), Log{}) << "a millisecond is long enough";
}

TEST(BattleFieldLoop, SleepsAMillisecondWhenTwoPassesEndInTheSameOne) {
    Game game;
    game.noSound = true;
    EXPECT_EQ(frameTimesOf(game, {300, 300, 300, 310, 312}),
              (std::vector<Uint32>{266, 34, 1, 1, 10}));
    EXPECT_EQ(game.takeLog({"SDL_Delay"}), (Log{"SDL_Delay(1)", "SDL_Delay(1)"}));
}

TEST(BattleFieldLoop, GoesOnWhenTheClockStartsAnewAt32Bits) {
    Game game;
    EXPECT_EQ(frameTimesOf(game, {4294967200u, 4294967290u, 6, 10}),
              (std::vector<Uint32>{266, 4294966934u, 90, 12}));
}

TEST(BattleFieldLoop, WrapsTheSecondFrameWhenLoadingWasFasterThanTheFirst) {
    Game game;
    std::vector<Uint32> times;
    std::vector<float> heights;
    game.play([&] {
        times.push_back(game.field.frameTime);
        game.clock = 265;
        if (game.passes == 2) {
            const Stars& stars = *game.field.stars;
            for (int i = 0; i < stars.number; ++i) {
                if (stars.speed[i] > 0) {
                    EXPECT_EQ(stars.y[i], 0.0f) << "star " << i << " starts anew at the top";
                }
            }
            game.closeWindow();
        }
    });
    EXPECT_EQ(times, (std::vector<Uint32>{266, 4294967295u}));
}

TEST(BattleFieldLoop, LoadingOfExactly266MillisecondsGivesTheShortestFrame) {
    Game game;
    EXPECT_EQ(frameTimesOf(game, {266, 270}), (std::vector<Uint32>{266, 1}));
    EXPECT_EQ(game.takeLog({"SDL_Delay(1)"}).at(0), "SDL_Delay(1)");
}

struct SlowFrame {
    const char* rule;
    int phase;
    Uint32 ms;
    bool warned;
};

const SlowFrame SLOW_FRAMES[] = {
    {"a second is not too slow", 0, 1000, false},
    {"a millisecond more is", 0, 1001, true},
    {"it is told for each such pass", 0, 4294967295u, true},
    {"a fast frame is silent", 0, 20, false},
    {"nor is the shortest told", 0, 0, false},
    {"the countdown may be slow", 1, 1001, false},
    {"the hint too", 2, 1001, false},
    {"the title too", 3, 5000, false},
    {"and the wait before it", 4, 5000, false},
};

TEST(BattleFieldLoop, ComplainsAboutASlowFrameInPlayOnly) {
    const Log twoLines = {
        ">   (    Sorry, your framerate was too small!(?)    )",
        ">   ( Perhaps you got now a very strange condition! )",
        "> ",
    };
    Game game;
    game.clock = 5000;
    const size_t rows = std::size(SLOW_FRAMES);
    game.play([&] {
        const size_t pass = static_cast<size_t>(game.passes);
        BattleField& field = game.field;
        const Log told = game.takeLog({"> "});
        if (pass == 1) {
            game.withoutEnemies();
        } else {
            const SlowFrame& row = SLOW_FRAMES[pass - 2];
            SCOPED_TRACE(row.rule);
            EXPECT_EQ(field.frameTime, row.ms == 0 ? 1 : row.ms) << "the game goes on normally";
            Log warnings;
            for (const std::string& line : told) {
                if (line != "> --->FormationTimer2") {
                    warnings.push_back(line);
                }
            }
            EXPECT_EQ(warnings, row.warned ? twoLines : Log{});
        }
        if (pass > rows) {
            game.closeWindow();
            return;
        }
        game.enterPhase(SLOW_FRAMES[pass - 1].phase);
        game.clock = field.lastTicks + SLOW_FRAMES[pass - 1].ms;
    });
    EXPECT_EQ(game.passes, static_cast<int>(rows) + 1);
}

TEST(BattleFieldLoop, DrawsThenHandlesEventsThenReadsTheClock) {
    Game game;
    front::hooks().SDL_GetTicks = [&] {
        game.note("clock");
        return Uint32{500};
    };
    front::hooks().SDL_PollEvent = [&](SDL_Event* next) {
        game.note("poll");
        next->type = SDL_QUIT;
        return game.passes == 2 && !game.field.quit ? 1 : 0;
    };
    game.play([&] {
        game.field.gamePhase = BattleField::PHASE_PLAY;
        game.withoutEnemies();
        if (game.passes == 1) {
            game.takeLog();
        }
    });
    const Log expected = {
        "poll",  "clock",            // end of the first pass
        "clock", "clear", "flip",    // the second one draws,
        "poll",  "poll",  "clock"};  // empties the queue, reads the clock and ends
    EXPECT_EQ(game.takeLog({"poll", "clock", "clear", "flip"}), expected);
}

TEST(BattleFieldLoop, CallsTheShortestFrameWithoutAnExtraLookAtTheClock) {
    Game game;
    front::hooks().SDL_GetTicks = [&] {
        game.note("clock");
        return Uint32{266};
    };
    game.play([&] {
        game.field.gamePhase = BattleField::PHASE_PLAY;
        game.withoutEnemies();
        if (game.passes == 2) {
            game.closeWindow();
        } else {
            game.takeLog();
        }
    });
    const Log expected = {"clock", "SDL_Delay(1)", "clear", "flip", "clock", "SDL_Delay(1000)"};
    EXPECT_EQ(game.takeLog({"clock", "SDL_Delay", "clear", "flip"}), expected);
}

class BattleFieldPhases : public testing::TestWithParam<int> {};

TEST_P(BattleFieldPhases, EscapeEndsTheGameAfterTheCurrentPass) {
    Game game;
    game.clock = 1000;
    game.play([&] {
        game.enterPhase(GetParam());
        if (game.passes == 3) {
            game.takeLog();
            game.press(SDLK_ESCAPE);
        }
    });
    EXPECT_EQ(game.passes, 3);
    EXPECT_EQ(game.takeLog({"clear", "flip", "play"}),
              Log{"play sounds/keyboard.wav on(1, 0, -1)"});
}

INSTANTIATE_TEST_SUITE_P(Every, BattleFieldPhases, testing::Range(0, 5));

TEST(BattleFieldEnd, ClosingTheWindowIsSilent) {
    Game game;
    game.play([&] {
        if (game.passes == 2) {
            game.takeLog();
            game.closeWindow();
        }
    });
    EXPECT_EQ(game.passes, 2);
    EXPECT_EQ(game.takeLog({"play", "clear", "flip"}), Log{});
}

TEST(BattleFieldEnd, ThePlayersLastPictureEndsTheGameWithGoodBye) {
    Game game;
    game.clock = 266;
    game.play([&] {
        game.clock += 300;
        game.field.gamePhase = BattleField::PHASE_PLAY;
        if (game.passes == 1) {
            game.withoutEnemies();
            game.field.myShip->energy = 0;
            game.takeLog();
        }
    });
    // The explosion has 45 steps of more than 50 ms; each pass takes one.
    EXPECT_EQ(game.passes, 1 + 45);
    const Log expected = {
        "> FlyingObject->explode()",
        "> ",
        "> Good Bye World!",
        "> ---------------",
        "> ",
        "> Fade out all the audio channels in 1 second...",
        "> ",
        "> Thank you for testing!",
        "> ",
        QUESTIONS,
        "> ",
    };
    Log said = game.takeLog({"> "});
    said.erase(std::remove(said.begin(), said.end(), "> --->FormationTimer2"), said.end());
    EXPECT_EQ(said, expected);
}

TEST(BattleFieldEnd, FadesOutForASecondAndThanks) {
    Game game;
    game.play([&] {
        game.takeLog();
        game.closeWindow();
    });
    const Log expected = {
        "> ",
        "> Fade out all the audio channels in 1 second...",
        "Mix_FadeOutChannel(-1, 1000)",
        "Mix_FadeOutMusic(1000)",
        "SDL_Delay(1000)",
        "Mix_CloseAudio()",
        "> ",
        "> Thank you for testing!",
        "> ",
        QUESTIONS,
        "> ",
    };
    EXPECT_EQ(game.takeLog(), expected);
}

TEST(BattleFieldEnd, ThanksAtOnceWithoutSound) {
    Game game;
    game.noSound = true;
    game.play([&] {
        game.takeLog();
        game.closeWindow();
    });
    const Log expected = {
        "> ", "> Thank you for testing!", "> ", QUESTIONS, "> ",
    };
    EXPECT_EQ(game.takeLog(), expected);
}

void playAndExit() {
    Game game;
    game.echoToError = true;
    game.noSound = true;
    game.play([&] { game.closeWindow(); });
    std::exit(0);
}

TEST(BattleFieldEnd, GivesTheDisplayBackWhenTheProcessEnds) {
    EXPECT_EXIT(playAndExit(), testing::ExitedWithCode(0),
                "> Questions\\? \\.\\.\\. " KRAVOLTIX_WEB_ADDRESS "\n> \nSDL_Quit\\(\\)\n$");
}

TEST(BattleFieldEnd, FreesNoPictureBeforeTheProcessEnds) {
    Game game;
    int freed = 0;
    game.play([&] {
        front::hooks().SDL_FreeSurface = [&](SDL_Surface*) { ++freed; };
        game.field.gamePhase = BattleField::PHASE_PLAY;
        game.clock += 100;
        if (game.passes == 10) {
            game.closeWindow();
        }
    });
    EXPECT_EQ(freed, 0);
    EXPECT_EQ(game.nameOf(game.field.explosionFrames[45]), "explosions/ex0045.png");
}

}  // namespace
