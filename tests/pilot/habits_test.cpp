// SPDX-License-Identifier: MIT
// What a seed gives: numbers, habits and frame times.
#include "pilot/frametimes.h"
#include "pilot/habits.h"
#include "pilot/random.h"

#include <gtest/gtest.h>

namespace {

using pilot::FrameTimes;
using pilot::Habits;
using pilot::habitsOf;
using pilot::Random;

TEST(RandomNumbers, AreTheSameForTheSameSeedEverywhere) {
    Random random(1);
    const int expected[] = {566, 745, 971, 444, 444, 762};
    for (int number : expected) {
        EXPECT_EQ(random.between(0, 999), number);
    }
}

TEST(RandomNumbers, ReachBothBoundsAndNothingBeyond) {
    Random random(7);
    int seen[3] = {};
    for (int i = 0; i < 300; ++i) {
        const int number = random.between(-1, 1);
        ASSERT_GE(number, -1);
        ASSERT_LE(number, 1);
        ++seen[number + 1];
    }
    EXPECT_GT(seen[0], 50);
    EXPECT_GT(seen[1], 50);
    EXPECT_GT(seen[2], 50);
}

TEST(SeedZero, IsTheSteadyHand) {
    const Habits habits = habitsOf(0);
    EXPECT_EQ(habits.reactionMs, 80U);
    EXPECT_EQ(habits.misjudgedPx, 0);
    EXPECT_EQ(habits.lateFramesPercent, 0);
}

TEST(EveryOtherSeed, IsAHumanOnAMachineOfItsOwn) {
    for (Uint32 seed = 1; seed <= 1000; ++seed) {
        SCOPED_TRACE(seed);
        const Habits habits = habitsOf(seed);
        EXPECT_GE(habits.reactionMs, 80U);
        EXPECT_LE(habits.reactionMs, 250U);
        EXPECT_GE(habits.returnAfterMs, 200U);
        EXPECT_LE(habits.returnAfterMs, 3000U);
        EXPECT_GE(habits.misjudgedPx, 0);
        EXPECT_LE(habits.misjudgedPx, 12);
        EXPECT_GE(habits.lateFramesPercent, 0);
        EXPECT_LE(habits.lateFramesPercent, 10);
    }
}

TEST(FramesOfAMachine, AreSixtyASecondInWholeMilliseconds) {
    FrameTimes frames(60);
    const Uint32 expected[] = {16, 17, 17, 16, 17, 17};
    for (Uint32 ms : expected) {
        EXPECT_EQ(frames.next(), ms);
    }
    Uint32 sum = 0;
    for (int i = 0; i < 60; ++i) {
        sum += frames.next();
    }
    EXPECT_EQ(sum, 1000U);
}

TEST(FramesOfAMachine, AreAMillisecondEachOnAFastOne) {
    FrameTimes frames(1000);
    for (int i = 0; i < 10; ++i) {
        EXPECT_EQ(frames.next(), 1U);
    }
}

TEST(FramesOfAMachine, AreLateAsOftenAsTheSeedSays) {
    FrameTimes frames(1000);
    frames.setLateFrames(10, Random(1));
    int late = 0;
    for (int i = 0; i < 1000; ++i) {
        const Uint32 ms = frames.next();
        ASSERT_LE(ms, 9U);
        late += ms > 1 ? 1 : 0;
    }
    EXPECT_NEAR(late, 100, 30);
}

}  // namespace
