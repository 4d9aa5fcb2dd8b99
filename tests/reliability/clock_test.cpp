// SPDX-License-Identifier: MIT
// A clock that jumps, stalls or wraps, and loading that is quick or slow: the frame times follow the
// rule, the warning comes when it should, and the game goes on to its closing lines.
#include "playthrough/texts.h"
#include "reliability/quicktour.h"
#include "reliability/start.h"
#include "support/program.h"

#include <gtest/gtest.h>

using namespace reliability;

namespace {

constexpr int PLAY_FRAME = 20;  // the clock goes wrong after this frame ...
constexpr int LAST_FRAME = 40;  // ... and the window closes after this one
constexpr int SEEN_TIME = 0;    // places of a report
constexpr int SEEN_TIME_AFTER = 1;
constexpr int SEEN_PHASE = 2;
constexpr int SEEN_SECOND_TIME = 3;

std::string beforePlay() {
    return startText(false, true) + birthText() + displayText();
}

// A game in this phase with all enemies on the field, shots and explosions in the air; after
// PLAY_FRAME the clock goes on by `jump`.
End gameWithJump(int phase, Uint32 clockMs, Uint32 jump) {
    Start how;
    how.prepare = [=](Running& game) { game.clockMs = clockMs; };
    how.betweenFramesWithReport = [=](Running& game, Report& report) {
        BattleField& field = game.field;
        if (game.frame == 2 && phase == BattleField::PHASE_PLAY) {
            field.gamePhase = BattleField::PHASE_PLAY;
            field.introDone = true;
        } else if (phase != BattleField::PHASE_PLAY) {
            field.gamePhase = phase;
        }
        if (game.frame == 3) {
            game.press(SDLK_a);
            game.press(SDLK_LEFT);
            game.press(SDLK_UP);
        }
        game.frameMs = game.frame == PLAY_FRAME ? jump : FRAME_MS;
        if (game.frame == PLAY_FRAME + 1) {
            report.seen[SEEN_TIME] = field.frameTime;
        } else if (game.frame == PLAY_FRAME + 2) {
            report.seen[SEEN_TIME_AFTER] = field.frameTime;
        } else if (game.frame == LAST_FRAME) {
            game.closeWindow();
        }
    };
    return start(how);
}

bool hasTimes(const End& end, Uint32 time) {
    return end.report.seen[SEEN_TIME] == time && end.report.seen[SEEN_TIME_AFTER] == FRAME_MS;
}

void expectClosing(const End& end) {
    EXPECT_FALSE(end.isCrash());
    EXPECT_EQ(end.status, 0);
    EXPECT_EQ(end.error, "");
    EXPECT_TRUE(endsWith(end.output, farewellText(true)));
    if (testing::Test::HasFailure()) {
        FAIL() << end.told();
    }
}

struct Jump {
    const char* rule;
    Uint32 ms;
    int warnings;
};

constexpr Jump JUMPS[] = {
    {"a second is not warned of", 1000, 0},
    {"a stall of just more is", 1001, 1},
    {"two seconds", 2000, 1},
    {"ten seconds", 10000, 1},
    {"an hour", 3600000, 1},
    {"more milliseconds than a float counts", (1U << 24) + 1, 1},
    {"half the clock less one", (1U << 31) - 1, 1},
    {"half the clock", 1U << 31, 1},
    {"half the clock and one", (1U << 31) + 1, 1},
    {"back by a millisecond", 0U - 1, 1},
    {"back by a second", 0U - 1000, 1},
    {"back by a minute", 0U - 60000, 1},
    {"back by half the clock less one", 0U - ((1U << 31) - 1), 1},
};

// Unsigned, as the clock is: a jump back is a very long frame.
TEST(Clock, AStallOrJumpInPlayIsOneLongFrameAndIsWarnedOf) {
    for (const Jump& jump : JUMPS) {
        SCOPED_TRACE(jump.rule);
        const End end = gameWithJump(BattleField::PHASE_PLAY, 100000, jump.ms);
        EXPECT_TRUE(hasTimes(end, jump.ms));
        EXPECT_EQ(timesIn(end.output, SLOW_FRAME_LINES), jump.warnings);
        expectClosing(end);
    }
}

TEST(Clock, AStallOrJumpInTheIntroIsNotWarnedOf) {
    for (const int phase : {BattleField::PHASE_WAIT, BattleField::PHASE_TITLE,
                            BattleField::PHASE_HINT, BattleField::PHASE_COUNT_DOWN}) {
        for (const Jump& jump : JUMPS) {
            SCOPED_TRACE(std::string(jump.rule) + " in phase " + std::to_string(phase));
            if (!isComplete() && (static_cast<Uint32>(phase) + jump.ms) % 4 != 0) {
                continue;
            }
            const End end = gameWithJump(phase, 100000, jump.ms);
            EXPECT_TRUE(hasTimes(end, jump.ms));
            EXPECT_EQ(end.output, beforePlay() + farewellText(true));
            expectClosing(end);
        }
    }
}

// Stall after stall, seeded, for a whole game, in which the player may well explode.
TEST(Clock, AGameOfNothingButJumpsEndsWithItsClosingLines) {
    const Uint32 games = isComplete() ? 1000 : 8;
    for (Uint32 seed = 1; seed <= games; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Start how;
        how.betweenFrames = [state = seed](Running& game) mutable {
            quickTour(game);
            state = state * 1664525U + 1013904223U;
            game.frameMs = state >> (state >> 8) % 32;
            if (game.frame == LAST_FRAME) {
                game.closeWindow();
            }
        };
        expectClosing(start(how));
    }
}

TEST(Clock, TheWrapAt49DaysIsNotNoticed) {
    for (const Uint32 beforeWrap : {1U, 25U, 26U, 50U, 51U}) {
        SCOPED_TRACE(beforeWrap);
        // The clock stands so many milliseconds before 2^32 when the frame is shown.
        const Uint32 start = 0U - beforeWrap - (PLAY_FRAME - 1) * FRAME_MS;
        const End end = gameWithJump(BattleField::PHASE_PLAY, start, FRAME_MS);
        EXPECT_TRUE(hasTimes(end, FRAME_MS));
        EXPECT_EQ(timesIn(end.output, SLOW_FRAME_LINES), 0);
        expectClosing(end);
    }
}

// The second frame lasts from the 266 ms that the first one counts to the clock after it.
struct Loading {
    const char* rule;
    Uint32 clockMs;
    Uint32 secondFrameMs;
    int phase;  // after the first frame
};

constexpr Loading LOADINGS[] = {
    {"no time at all", 0, 0U - 266 + FRAME_MS, BattleField::PHASE_WAIT},
    {"less than the first frame", 100, 0U - 166 + FRAME_MS, BattleField::PHASE_WAIT},
    {"a millisecond less, with the frame", 265 - FRAME_MS, 0U - 1, BattleField::PHASE_WAIT},
    {"just the first frame: no time is left, and a millisecond is slept", 266 - FRAME_MS, 1,
     BattleField::PHASE_WAIT},
    {"a millisecond more", 267 - FRAME_MS, 1, BattleField::PHASE_WAIT},
    {"half a second", 500, 234 + FRAME_MS, BattleField::PHASE_WAIT},
    {"three seconds", 3000, 2734 + FRAME_MS, BattleField::PHASE_WAIT},
    {"more than three seconds: the title comes at once", 3001, 2735 + FRAME_MS,
     BattleField::PHASE_TITLE},
    {"an hour", 3600000, 3599734 + FRAME_MS, BattleField::PHASE_TITLE},
    {"half the clock", 1U << 31, (1U << 31) - 266 + FRAME_MS, BattleField::PHASE_TITLE},
    {"nearly all of the clock", 0U - FRAME_MS - 1, 0U - 267, BattleField::PHASE_TITLE},
};

TEST(Clock, LoadingQuickOrSlowGivesTheSecondFrameItsTime) {
    for (const Loading& loading : LOADINGS) {
        SCOPED_TRACE(loading.rule);
        Start how;
        how.prepare = [&](Running& game) { game.clockMs = loading.clockMs; };
        how.betweenFramesWithReport = [](Running& game, Report& report) {
            if (game.frame == 1) {
                report.seen[SEEN_TIME] = game.field.frameTime;
                report.seen[SEEN_PHASE] = static_cast<Uint32>(game.field.gamePhase);
            } else if (game.frame == 2) {
                report.seen[SEEN_SECOND_TIME] = game.field.frameTime;
            } else if (game.frame == 10) {
                game.closeWindow();
            }
        };
        const End end = start(how);
        EXPECT_EQ(end.report.seen[SEEN_TIME], 266U);
        EXPECT_EQ(end.report.seen[SEEN_SECOND_TIME], loading.secondFrameMs);
        EXPECT_EQ(end.report.seen[SEEN_PHASE], static_cast<Uint32>(loading.phase));
        EXPECT_EQ(end.output, beforePlay() + farewellText(true));
        expectClosing(end);
    }
}

}  // namespace
