// SPDX-License-Identifier: MIT
#include "replay/moments.h"

#include <gtest/gtest.h>

namespace {

constexpr Uint32 START_MS = 266;
constexpr Uint32 FRAME_MS = 20;

std::string played(const std::string& sound) {
    return "Mix_PlayChannelTimed(1, sounds/" + sound + ".wav, 0, -1)";
}

// A game of 20 ms a frame.
front::Recording game() {
    front::Recording recording;
    recording.given.startMs = START_MS;
    recording.given.frameRuns = {{FRAME_MS, 1000}};
    recording.seen.checks.resize(1000);
    recording.seen.ended = true;
    recording.seen.clockMs = START_MS + 1000 * FRAME_MS;
    return recording;
}

void play(front::Recording& recording, Uint32 frame, const std::string& sound) {
    recording.seen.calls.push_back({frame, START_MS + (frame - 1) * FRAME_MS, played(sound)});
}

std::string wordsOf(const std::vector<replay::Moment>& moments) {
    std::string words;
    for (const replay::Moment& moment : moments) {
        words += moment.name + ' ' + std::to_string(moment.frame) + ' ';
    }
    return words;
}

TEST(Moments, AGameThatIsWonShowsAllSixInTheirOrder) {
    front::Recording recording = game();
    play(recording, 100, "keyboard");
    play(recording, 200, "intro");
    play(recording, 500, "explode");
    play(recording, 510, "miniExplode1");
    play(recording, 550, "miniExplode1");
    play(recording, 599, "miniExplode1");
    play(recording, 600, "explode");
    play(recording, 650, "explode");
    play(recording, 800, "explode");
    for (int i = 0; i < 7; ++i) {
        recording.seen.texts.push_back({500, "FlyingObject->explode()\n"});
    }
    EXPECT_EQ(wordsOf(replay::momentsOf(recording)),
              "title 99 countdown 300 formation 485 laser-hit 553 explosion 665 won 835 ");
}

TEST(Moments, AGameThatIsLostEndsWithThePlayersExplosion) {
    front::Recording recording = game();
    play(recording, 100, "keyboard");
    play(recording, 200, "intro");
    play(recording, 700, "explode2");
    recording.seen.texts = {{700, "FlyingObject->explode()\n"}, {740, "\nGood Bye World!\n"}};
    EXPECT_EQ(wordsOf(replay::momentsOf(recording)), "title 99 countdown 300 lost 735 ");
}

TEST(Moments, WithoutAFireballTheFirstHitIsShown) {
    front::Recording recording = game();
    play(recording, 510, "miniExplode1");
    play(recording, 550, "miniExplode1");
    EXPECT_EQ(wordsOf(replay::momentsOf(recording)), "laser-hit 513 ");
}

TEST(Moments, AGameThatIsLeftAtOnceHasNone) {
    EXPECT_EQ(wordsOf(replay::momentsOf(game())), "");
}

TEST(Moments, AFrameWithoutTimeIsFollowedByASleepOfAMillisecond) {
    front::Recording recording = game();
    recording.given.frameRuns = {{0, 500}, {FRAME_MS, 500}};
    recording.seen.calls = {{0, START_MS + 100, played("keyboard")},
                            {0, START_MS + 200, played("intro")}};
    EXPECT_EQ(wordsOf(replay::momentsOf(recording)), "title 81 countdown 586 ");
}

TEST(Moments, AMomentsTimeIsCountedFromTheFirstPicture) {
    front::Recording recording = game();
    play(recording, 100, "keyboard");
    play(recording, 200, "intro");
    const std::vector<replay::Moment> moments = replay::momentsOf(recording);
    ASSERT_EQ(moments.size(), 2U);
    EXPECT_EQ(moments[0].ms, 98 * FRAME_MS);
    EXPECT_EQ(moments[1].ms, 299 * FRAME_MS);
}

}  // namespace
