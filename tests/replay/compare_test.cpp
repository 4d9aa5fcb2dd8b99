// SPDX-License-Identifier: MIT
#include "replay/compare.h"

#include <gtest/gtest.h>

namespace {

using front::Expectation;
using front::Recording;
using replay::Channel;
using replay::Channels;
using replay::Compared;
using replay::Difference;

// A game of five frames with something on each channel.
Recording game() {
    Recording recording;
    recording.isRecording = true;
    front::Seen& seen = recording.seen;
    seen.libraries = "SDL 1.2.15";
    seen.texts = {{0, "READY\n"}, {2, "hit\n"}, {4, "hit\nbye\n"}};
    seen.calls = {{0, 266, "Mix_OpenAudio(22050)"},
                  {1, 282, "Mix_PlayChannelTimed(1, a.wav)"},
                  {3, 314, "Mix_PlayChannelTimed(2, b.wav)"}};
    seen.checks = {
        {0x11111111, 32}, {0x22222222, 32}, {0x33333333, 32}, {0x44444444, 32}, {0x55555555, 32}};
    seen.digests = {{2, 0xaaaa}, {5, 0xbbbb}};
    seen.pixels = {{2, 0xff0000, {0, 0, 10, 10}, 12}};
    seen.ended = true;
    seen.frames = 5;
    seen.clockMs = 346;
    seen.status = 0;
    return recording;
}

Compared lastCompared;

std::optional<Difference> differenceTo(const Recording& got, const Recording& expected = game(),
                                       Channels channels = {}) {
    return replay::firstDifference(expected, got, channels, lastCompared);
}

void expectDifference(const Recording& got, Channel channel, Uint32 frame,
                      const std::string& message, const Recording& expected = game()) {
    const std::optional<Difference> found = differenceTo(got, expected);
    ASSERT_TRUE(found.has_value());
    EXPECT_EQ(found->channel, channel) << nameOf(found->channel);
    EXPECT_EQ(found->frame, frame);
    EXPECT_EQ(found->message, message);
}

TEST(Compare, TheSameGameHasNoDifferenceAndItsFiguresAreTold) {
    EXPECT_FALSE(differenceTo(game()).has_value());
    EXPECT_EQ(lastCompared.frames, 5U);
    EXPECT_EQ(lastCompared.calls, 3U);
    EXPECT_EQ(lastCompared.bytes, game().seen.text().size());
}

TEST(Compare, NothingThatWasComparedIsTold) {
    EXPECT_FALSE(differenceTo(Recording(), Recording()).has_value());
    EXPECT_EQ(lastCompared.frames, 0U);
    EXPECT_EQ(lastCompared.calls, 0U);
    EXPECT_EQ(lastCompared.bytes, 0U);
}

TEST(Compare, ChannelsHaveNames) {
    EXPECT_STREQ(replay::nameOf(Channel::TEXT), "text");
    EXPECT_STREQ(replay::nameOf(Channel::CALLS), "sound");
    EXPECT_STREQ(replay::nameOf(Channel::PICTURES), "picture");
    EXPECT_STREQ(replay::nameOf(Channel::END), "end");
}

TEST(CompareText, AnotherLetterIsFoundInItsFrame) {
    Recording got = game();
    got.seen.texts[1].bytes = "hat\n";
    expectDifference(got, Channel::TEXT, 2,
                     "expected \"it\\nhit\\nbye\\n\", got \"at\\nhit\\nbye\\n\"");
}

TEST(CompareText, TextThatIsMissingAtTheEndIsFound) {
    Recording got = game();
    got.seen.texts[2].bytes = "hit\n";
    expectDifference(got, Channel::TEXT, 4, "expected \"bye\\n\", got the text's end");
}

TEST(CompareText, TextThatCameTooMuchIsFound) {
    Recording got = game();
    got.seen.texts.push_back({5, "more"});
    expectDifference(got, Channel::TEXT, 5, "expected the text's end, got \"more\"");
}

TEST(CompareText, TheSameTextInAnotherFrameIsFound) {
    Recording got = game();
    got.seen.texts[1].frame = 3;
    expectDifference(got, Channel::TEXT, 2,
                     "\"hit\\nhit\\nbye\\n\" is expected after frame 2, not 3");
}

TEST(CompareCalls, AnotherCallIsFoundInItsFrame) {
    Recording got = game();
    got.seen.calls[1].call = "Mix_PlayChannelTimed(1, b.wav)";
    expectDifference(got, Channel::CALLS, 1,
                     "expected Mix_PlayChannelTimed(1, a.wav) at 282 ms, got "
                     "Mix_PlayChannelTimed(1, b.wav) at 282 ms");
}

TEST(CompareCalls, TheSameCallAtAnotherTimeIsFound) {
    Recording got = game();
    got.seen.calls[2].clockMs = 315;
    expectDifference(got, Channel::CALLS, 3,
                     "expected Mix_PlayChannelTimed(2, b.wav) at 314 ms, got "
                     "Mix_PlayChannelTimed(2, b.wav) at 315 ms");
}

TEST(CompareCalls, TheSameCallInAnotherFrameIsFound) {
    Recording got = game();
    got.seen.calls[2].frame = 4;
    expectDifference(got, Channel::CALLS, 3,
                     "expected Mix_PlayChannelTimed(2, b.wav) at 314 ms, got "
                     "Mix_PlayChannelTimed(2, b.wav) at 314 ms");
}

TEST(CompareCalls, ACallThatIsMissingIsFound) {
    Recording got = game();
    got.seen.calls.pop_back();
    expectDifference(got, Channel::CALLS, 3,
                     "expected Mix_PlayChannelTimed(2, b.wav) at 314 ms, got no further call");
}

TEST(CompareCalls, ACallThatCameTooMuchIsFound) {
    Recording got = game();
    got.seen.calls.push_back({5, 346, "Mix_CloseAudio()"});
    expectDifference(got, Channel::CALLS, 5,
                     "expected no further call, got Mix_CloseAudio() at 346 ms");
}

TEST(ComparePictures, EachPictureIsCompared) {
    for (size_t i = 0; i < game().seen.checks.size(); ++i) {
        SCOPED_TRACE(i);
        Recording got = game();
        got.seen.checks[i].value ^= 0x80000000;
        const std::optional<Difference> found = differenceTo(got);
        ASSERT_TRUE(found.has_value());
        EXPECT_EQ(found->channel, Channel::PICTURES);
        EXPECT_EQ(found->frame, i + 1);
    }
}

TEST(ComparePictures, TheChecksOfTheFirstThatDiffersAreTold) {
    Recording got = game();
    got.seen.checks[1].value = 0x22222223;
    got.seen.checks[3].value = 0;
    expectDifference(got, Channel::PICTURES, 2,
                     "expected a picture with check 22222222, got 22222223");
}

TEST(ComparePictures, ShortChecksAreComparedByTheBitsThatBothHave) {
    Recording got = game();
    got.seen.checks[1] = {0x22, 8};
    EXPECT_FALSE(differenceTo(got).has_value());
    got.seen.checks[1] = {0x23, 8};
    expectDifference(got, Channel::PICTURES, 2, "expected a picture with check 22, got 23");
}

TEST(ComparePictures, APictureThatIsMissingIsFound) {
    Recording got = game();
    got.seen.checks.pop_back();
    expectDifference(got, Channel::PICTURES, 5, "expected a picture, got none");
}

// Checks are short and may miss a picture; digests do not.
TEST(ComparePictures, ADigestFindsWhatTheChecksMiss) {
    Recording got = game();
    got.seen.digests[1].digest = 0xbbbc;
    expectDifference(got, Channel::PICTURES, 3,
                     "a picture up to frame 5 differs: expected the digest 000000000000bbbb, got "
                     "000000000000bbbc");
    got = game();
    got.seen.digests[0].digest = 0;
    expectDifference(got, Channel::PICTURES, 1,
                     "a picture up to frame 2 differs: expected the digest 000000000000aaaa, got "
                     "0000000000000000");
}

TEST(ComparePictures, ADigestThatIsMissingIsFound) {
    Recording got = game();
    got.seen.digests.pop_back();
    expectDifference(got, Channel::PICTURES, 3,
                     "a picture up to frame 5 differs: expected the digest 000000000000bbbb, got "
                     "none");
}

TEST(ComparePictures, DigestsOfOtherFramesInBetweenDoNotMatter) {
    Recording got = game();
    got.seen.digests = {{1, 0x1}, {2, 0xaaaa}, {4, 0x4}, {5, 0xbbbb}};
    EXPECT_FALSE(differenceTo(got).has_value());
}

TEST(CompareEnd, FramesClockAndStatusAreCompared) {
    Recording got = game();
    got.seen.status = 1;
    expectDifference(got, Channel::END, 5,
                     "expected 5 frames, clock 346 ms, status 0, got 5 frames, clock 346 ms, "
                     "status 1");
    got = game();
    got.seen.clockMs = 347;
    expectDifference(got, Channel::END, 5,
                     "expected 5 frames, clock 346 ms, status 0, got 5 frames, clock 347 ms, "
                     "status 0");
    got = game();
    got.seen.frames = 6;
    got.seen.checks.push_back({0, 32});
    expectDifference(got, Channel::END, 5,
                     "expected 5 frames, clock 346 ms, status 0, got 6 frames, clock 346 ms, "
                     "status 0");
}

TEST(Compare, OfSeveralDifferencesTheFirstFrameIsTold) {
    Recording got = game();
    got.seen.checks[3].value = 0;
    got.seen.calls[2].call = "other";
    got.seen.texts[2].bytes = "other";
    const std::optional<Difference> found = differenceTo(got);
    ASSERT_TRUE(found.has_value());
    EXPECT_EQ(found->channel, Channel::CALLS);
    EXPECT_EQ(found->frame, 3U);
}

TEST(Compare, AChannelThatIsLeftOutIsNotCompared) {
    Recording got = game();
    got.seen.checks[0].value = 0;
    got.seen.digests[0].digest = 0;
    EXPECT_FALSE(differenceTo(got, game(), {true, true, false}).has_value());
    EXPECT_EQ(lastCompared.frames, 0U);
    EXPECT_TRUE(differenceTo(got, game(), {false, false, true}).has_value());
    got = game();
    got.seen.texts[0].bytes = "";
    EXPECT_FALSE(differenceTo(got, game(), {false, true, true}).has_value());
    EXPECT_EQ(lastCompared.bytes, 0U);
    EXPECT_TRUE(differenceTo(got, game(), {true, false, false}).has_value());
    got = game();
    got.seen.calls[0].call = "";
    EXPECT_FALSE(differenceTo(got, game(), {true, false, true}).has_value());
    EXPECT_EQ(lastCompared.calls, 0U);
    EXPECT_TRUE(differenceTo(got, game(), {false, true, false}).has_value());
}

// A recording that was cut off
TEST(Compare, OneThatWasCutOffIsComparedAsFarAsItGoes) {
    Recording expected = game();
    expected.seen.ended = false;
    expected.seen.texts.resize(2);
    expected.seen.calls.resize(2);
    expected.seen.checks.resize(2);
    expected.seen.digests.resize(1);
    expected.seen.frames = 0;
    EXPECT_FALSE(differenceTo(game(), expected).has_value());
    Recording got = game();
    got.seen.texts[1].bytes = "hat\n";
    EXPECT_TRUE(differenceTo(got, expected).has_value());
    got = game();
    got.seen.calls[1].clockMs = 0;
    EXPECT_TRUE(differenceTo(got, expected).has_value());
    got = game();
    got.seen.checks[1].value = 0;
    EXPECT_TRUE(differenceTo(got, expected).has_value());
}

// Expectations

Expectation counted(Expectation::Kind kind, Uint32 least, Uint32 most,
                    const std::string& text = "") {
    Expectation wanted;
    wanted.kind = kind;
    wanted.line = 12;
    wanted.least = least;
    wanted.most = most;
    wanted.text = text;
    return wanted;
}

std::string unmet(const Expectation& wanted) {
    front::Scenario scenario;
    scenario.expectations = {wanted};
    const std::vector<replay::Unmet> all = replay::unmetExpectations(scenario, game().seen);
    if (all.empty()) {
        return "";
    }
    EXPECT_EQ(all.size(), 1U);
    EXPECT_EQ(all[0].line, 12);
    return all[0].message;
}

TEST(Expectations, TextsAreCounted) {
    EXPECT_EQ(unmet(counted(Expectation::TEXT, 2, 2, "hit")), "");
    EXPECT_EQ(unmet(counted(Expectation::TEXT, 0, 0, "hut")), "");
    EXPECT_EQ(unmet(counted(Expectation::TEXT, 1, 1, "hit")),
              "expected 1 times the text \"hit\", got 2");
    EXPECT_EQ(unmet(counted(Expectation::TEXT, 3, ~0U, "hit")),
              "expected 3 or more times the text \"hit\", got 2");
    EXPECT_EQ(unmet(counted(Expectation::TEXT, 0, 0, "bye")),
              "expected 0 times the text \"bye\", got 1");
    EXPECT_EQ(unmet(counted(Expectation::TEXT, 3, 4, "hit")),
              "expected 3 to 4 times the text \"hit\", got 2");
}

TEST(Expectations, FramesLimitWhatIsCounted) {
    Expectation wanted = counted(Expectation::TEXT, 1, 1, "hit");
    wanted.firstFrame = 3;
    wanted.lastFrame = 4;
    EXPECT_EQ(unmet(wanted), "");
    wanted.lastFrame = 3;
    EXPECT_EQ(unmet(wanted), "expected 1 times the text \"hit\" in frames 3 to 3, got 0");
    wanted.firstFrame = 2;
    EXPECT_EQ(unmet(wanted), "");
}

TEST(Expectations, CallsAreCountedByTheirBeginning) {
    EXPECT_EQ(unmet(counted(Expectation::CALL, 2, 2, "Mix_PlayChannelTimed")), "");
    EXPECT_EQ(unmet(counted(Expectation::CALL, 1, 1, "Mix_PlayChannelTimed(2")), "");
    EXPECT_EQ(unmet(counted(Expectation::CALL, 1, ~0U, "PlayChannel")),
              "expected 1 or more calls \"PlayChannel\", got 0");
    Expectation wanted = counted(Expectation::CALL, 1, 1, "Mix_PlayChannelTimed");
    wanted.firstFrame = 0;
    wanted.lastFrame = 2;
    EXPECT_EQ(unmet(wanted), "");
}

TEST(Expectations, PixelsAreThoseOfTheirFrameColourAndBox) {
    Expectation wanted = counted(Expectation::PIXELS, 12, 12);
    wanted.firstFrame = 2;
    wanted.colour = 0xff0000;
    wanted.box = {0, 0, 10, 10};
    EXPECT_EQ(unmet(wanted), "");
    wanted.least = wanted.most = 13;
    EXPECT_EQ(unmet(wanted), "expected 13 pixels ff0000 in frame 2, got 12");
    wanted.box.h = 9;
    EXPECT_EQ(unmet(wanted), "the game has no frame 2: it has 5");
    wanted.box.h = 10;
    wanted.colour = 0xff0001;
    EXPECT_NE(unmet(wanted), "");
    wanted.colour = 0xff0000;
    wanted.firstFrame = 9;
    EXPECT_EQ(unmet(wanted), "the game has no frame 9: it has 5");
}

TEST(Expectations, StatusAndFramesAreFigures) {
    EXPECT_EQ(unmet(counted(Expectation::STATUS, 0, 0)), "");
    EXPECT_EQ(unmet(counted(Expectation::STATUS, 1, 1)), "expected 1 as the exit status, got 0");
    EXPECT_EQ(unmet(counted(Expectation::FRAMES, 5, 5)), "");
    EXPECT_EQ(unmet(counted(Expectation::FRAMES, 1, 4)), "expected 1 to 4 frames, got 5");
    EXPECT_EQ(unmet(counted(Expectation::FRAMES, 6, ~0U)), "expected 6 or more frames, got 5");
}

TEST(Expectations, EachOneThatIsNotMetIsTold) {
    front::Scenario scenario;
    scenario.expectations = {counted(Expectation::FRAMES, 4, 4), counted(Expectation::STATUS, 0, 0),
                             counted(Expectation::STATUS, 2, 2)};
    EXPECT_EQ(replay::unmetExpectations(scenario, game().seen).size(), 2U);
}

}  // namespace
