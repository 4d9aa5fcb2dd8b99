// SPDX-License-Identifier: MIT
// Whole games, played by the unmodified program.
#include "playthrough/texts.h"
#include "support/program.h"

#include <gtest/gtest.h>

namespace {

using Lines = std::vector<std::string>;

std::string scenario(const char* name) {
    return contentOf(PLAYTHROUGHS "/" + std::string(name) + ".scenario");
}

// The text of the whole game, with the address that the program was built with.
std::string expectedText(const char* name) {
    const std::string address = "kravoltix.example";
    std::string text = contentOf(PLAYTHROUGHS "/" + std::string(name) + ".txt");
    return text.replace(text.rfind(address), address.size(), KRAVOLTIX_WEB_ADDRESS);
}

TEST(WholeGame, IsWonWhenAllSevenEnemiesHaveExploded) {
    const ProgramResult result = runProgram({{}, scenario("won")});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.error, "");
    EXPECT_EQ(result.output, expectedText("won"));
    EXPECT_EQ(timesIn(result.output, "FlyingObject->explode()\n"), 7);
    EXPECT_EQ(timesIn(result.output, "nearestTarget: "), 3);
    EXPECT_EQ(timesIn(result.output, "ownShipTargetList: F F F F F F F F F F \n"), 1);
    EXPECT_EQ(timesIn(result.output, "Good Bye World!"), 0);
    EXPECT_EQ(result.callsOf("Mix_PlayChannelTimed(3, "),
              Lines(7, "Mix_PlayChannelTimed(3, sounds/explode.wav, 0, -1)"));
    EXPECT_EQ(result.callsOf("Mix_PlayChannelTimed(2, "),
              Lines(3, "Mix_PlayChannelTimed(2, sounds/shot002.wav, 0, -1)"));
    EXPECT_LE(result.callsOf("Mix_PlayChannelTimed(1, sounds/shot001b.wav").size(), 50U);
}

TEST(WholeGame, IsWonOnAFastMachineToo) {
    const ProgramResult result = runProgram({{}, scenario("won-1000")});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(timesIn(result.output, "FlyingObject->explode()\n"), 7);
    EXPECT_EQ(timesIn(result.output, "ownShipTargetList: F F F F F F F F F F \n"), 1);
    EXPECT_EQ(timesIn(result.output, "Good Bye World!"), 0);
}

// Fifty laser shots take fifty of seventy points of energy.
TEST(WholeGame, WithoutARocketEndsWithFiveDestroyedByFiftyShots) {
    for (const char* name : {"purist", "purist-1000"}) {
        SCOPED_TRACE(name);
        const ProgramResult result = runProgram({{}, scenario(name)});
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.callsOf("Mix_PlayChannelTimed(1, sounds/shot001b.wav").size(), 50U);
        EXPECT_EQ(timesIn(result.output, "widht deathFactor 1 -> target energy = "), 50);
        EXPECT_EQ(timesIn(result.output, "nearestTarget: "), 0);
        EXPECT_EQ(timesIn(result.output, "FlyingObject->explode()\n"), 5);
        EXPECT_EQ(timesIn(result.output, "EnemyShip::ownShipTargetList: "), 7 + 5)
            << "seven are born and five are gone";
        EXPECT_EQ(timesIn(result.output, "Good Bye World!"), 0);
    }
}

TEST(WholeGame, CanBeLeftInTheMiddleOfTheFight) {
    const ProgramResult result = runProgram({{}, scenario("left")});
    EXPECT_EQ(result.status, 0);
    EXPECT_GE(timesIn(result.output, "FlyingObject->explode()\n"), 1);
    EXPECT_LT(timesIn(result.output, "FlyingObject->explode()\n"), 7);
    EXPECT_EQ(timesIn(result.output, "Good Bye World!"), 0);
    EXPECT_TRUE(endsWith(result.output, std::string(FADE_OUT_LINES) + THANKS_LINES));
}

TEST(WholeGame, IsLostWhenThePlayersShipHasExploded) {
    const ProgramResult result = runProgram({{}, scenario("lost")});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.error, "");
    EXPECT_EQ(result.output, expectedText("lost"));
    EXPECT_TRUE(endsWith(result.output, "\nGood Bye World!\n---------------\n" +
                                            std::string(FADE_OUT_LINES) + THANKS_LINES));
    EXPECT_EQ(result.callsOf("Mix_PlayChannelTimed(3, ").back(),
              "Mix_PlayChannelTimed(3, sounds/explode2.wav, 0, -1)");
}

TEST(WholeGame, IsTheSameMoveByMoveWithoutSound) {
    const ProgramResult silent = runProgram({{"-ns"}, scenario("won")});
    std::string text = expectedText("won");
    for (const std::string& part :
         {std::string("Starting with audio support...\n"), std::string(FADE_OUT_LINES)}) {
        text.erase(text.find(part), part.size());
    }
    EXPECT_EQ(silent.status, 0);
    EXPECT_EQ(silent.output, text);
}

}  // namespace
