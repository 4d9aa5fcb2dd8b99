// SPDX-License-Identifier: MIT
// The frame times that the program measures, and how it ends.
#include "playthrough/texts.h"
#include "support/program.h"
#include "support/surfaces.h"

#include <gtest/gtest.h>

namespace {

using Lines = std::vector<std::string>;

// Frames of 100 ms, so that the animation steps with each of them. The clock passes 3000 ms in
// frame 29, where the title starts; it stands in frame 60, where the hint starts; with Return in
// frame 80 both have left in frame 155, where the countdown starts; its six digits take eleven
// frames each.
constexpr char SLOW_INTRO[] = "frame 1 time 100\n";
constexpr char RETURN[] = "frame 80 down return\nframe 81 up return\n";

struct Phase {
    const char* name;
    int frame;
};

constexpr Phase PHASES[] = {
    {"the wait", 10}, {"the title", 40}, {"the hint", 90}, {"the countdown", 200}, {"play", 250},
};
constexpr int RETURN_FRAME = 80;
constexpr int LAST_COUNT_DOWN_FRAME = 220;

std::string untilFrame(int frame, const char* what) {
    return SLOW_INTRO + std::string(frame > RETURN_FRAME ? RETURN : "") + "frame " +
           std::to_string(frame) + " " + what + "\n";
}

// The keyboard sound of Return and the intro sound, when they come before the frame.
size_t soundsOfTheIntro(int frame) {
    return (frame > RETURN_FRAME ? 1U : 0U) + (frame > 155 ? 1U : 0U);
}

TEST(ShutDown, TheCountdownAndPlayComeWhenTheTextsHaveLeft) {
    const ProgramResult result = runProgram({{}, untilFrame(250, "quit")});
    // The clock of frame n is 266 + 100 * (n - 1), and an event sees its frame's time added.
    EXPECT_EQ(result.clockOf("Mix_PlayChannelTimed(1, sounds/keyboard.wav"), 266 + 100 * 80);
    EXPECT_EQ(result.clockOf("Mix_PlayChannelTimed(1, sounds/intro.wav"), 266 + 100 * 154);
    // The countdown's last frame is in play already when the display is drawn.
    EXPECT_EQ(result.timesDrawn("fonts/impact/fps_a.png"), 250 - (LAST_COUNT_DOWN_FRAME - 1));
}

TEST(ShutDown, EscapeEndsEveryPhaseAfterThePassWithTheKeyboardSound) {
    for (const Phase& phase : PHASES) {
        SCOPED_TRACE(phase.name);
        const ProgramResult result = runProgram({{}, untilFrame(phase.frame, "down escape")});
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.timesCalled("SDL_Flip"), phase.frame);
        const Lines sounds = result.callsOf("Mix_PlayChannelTimed(1, ");
        ASSERT_EQ(sounds.size(), soundsOfTheIntro(phase.frame) + 1);
        EXPECT_EQ(sounds.back(), "Mix_PlayChannelTimed(1, sounds/keyboard.wav, 0, -1)");
        EXPECT_TRUE(endsWith(result.output, std::string(FADE_OUT_LINES) + THANKS_LINES));
        EXPECT_EQ(timesIn(result.output, "Good Bye World!"), 0);
    }
}

TEST(ShutDown, ClosingTheWindowEndsEveryPhaseAfterThePassWithoutASound) {
    for (const Phase& phase : PHASES) {
        SCOPED_TRACE(phase.name);
        const ProgramResult result = runProgram({{}, untilFrame(phase.frame, "quit")});
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.timesCalled("SDL_Flip"), phase.frame);
        EXPECT_EQ(result.callsOf("Mix_PlayChannelTimed(1, ").size(), soundsOfTheIntro(phase.frame));
        EXPECT_TRUE(endsWith(result.output, std::string(FADE_OUT_LINES) + THANKS_LINES));
    }
}

TEST(ShutDown, WithSoundTheProgramFadesOutForASecondAndClosesTheMixer) {
    const ProgramResult result = runProgram({{}, "frame 1 quit\n"});
    Lines ending = result.callsOf("");
    ending.erase(ending.begin(), ending.end() - 5);
    EXPECT_EQ(ending, (Lines{"Mix_FadeOutChannel(-1, 1000)", "Mix_FadeOutMusic(1000)",
                             "SDL_Delay(1000)", "Mix_CloseAudio()", "SDL_Quit()"}));
    EXPECT_EQ(result.clockOf("Mix_FadeOutChannel"), 286);
    EXPECT_EQ(result.clockOf("Mix_CloseAudio"), 1286);
    EXPECT_TRUE(endsWith(result.output, std::string(BANNER) + FADE_OUT_LINES + THANKS_LINES));
}

TEST(ShutDown, WithoutSoundTheProgramEndsAtOnce) {
    const ProgramResult result = runProgram({{"-ns"}, "frame 1 quit\n"});
    for (const char* function :
         {"Mix_FadeOutChannel", "Mix_FadeOutMusic", "SDL_Delay", "Mix_CloseAudio"}) {
        EXPECT_EQ(result.timesCalled(function), 0) << function;
    }
    EXPECT_EQ(result.timesCalled("SDL_Quit"), 1);
    EXPECT_TRUE(endsWith(result.output, std::string(BANNER) + THANKS_LINES));
}

// The first star starts in the corner and falls 0.12 pixels a millisecond, with the grey 150.
constexpr Colour FIRST_STAR = {150, 150, 150};

TEST(FrameTime, TheFirstPassTakesTwoHundredAndSixtySixMilliseconds) {
    const ProgramResult result = runProgram({{"-ns"},
                                             "frame 1 time 100\nframe 1 picture one.bmp\n"
                                             "frame 2 picture two.bmp\nframe 2 quit\n"});
    EXPECT_EQ(pixelAt(result.pictures.at("one.bmp"), 0, 31), FIRST_STAR);  // 266 * 0.12 = 31.92
    EXPECT_EQ(pixelAt(result.pictures.at("two.bmp"), 0, 43), FIRST_STAR);  // 366 * 0.12 = 43.92
}

TEST(FrameTime, APassOfNoTimeAtAllSleepsAndCountsForAMillisecond) {
    const ProgramResult result =
        runProgram({{"-ns"},
                    "frame 1 time 25\nframe 2 picture before.bmp\nframe 2 time 0\n"
                    "frame 3 picture after.bmp\nframe 3 time 20\nframe 9 quit\n"});
    EXPECT_EQ(pixelAt(result.pictures.at("before.bmp"), 0, 34), FIRST_STAR);  // 291 * 0.12 = 34.92
    EXPECT_EQ(pixelAt(result.pictures.at("after.bmp"), 0, 35), FIRST_STAR);   // 292 * 0.12 = 35.04
    EXPECT_EQ(result.callsOf("SDL_Delay"), Lines{"SDL_Delay(1)"});
}

TEST(FrameTime, ThePassesNeverSleepWhenTimeGoesOn) {
    EXPECT_EQ(runProgram({{"-ns"}, "frame 1 time 1\nframe 50 quit\n"}).timesCalled("SDL_Delay"), 0);
}

struct SlowCase {
    const char* rule;
    int frame;
    int ms;
    int warnings;
};

TEST(FrameTime, ASlowPassInPlayIsApologisedForOnce) {
    const SlowCase cases[] = {
        {"a second in play is still in order", 230, 1000, 0},
        {"more than a second in play is not", 230, 1001, 1},
        {"the last pass of the countdown is measured in play", 220, 1001, 1},
        {"a stall in the countdown harms nobody", 218, 5000, 0},
        {"a stall before the title harms nobody", 10, 5000, 0},
    };
    for (const SlowCase& c : cases) {
        SCOPED_TRACE(c.rule);
        const std::string frame = std::to_string(c.frame);
        const ProgramResult result =
            runProgram({{"-ns"},
                        SLOW_INTRO + std::string(c.frame > RETURN_FRAME ? RETURN : "") + "frame " +
                            frame + " time " + std::to_string(c.ms) + "\nframe " +
                            std::to_string(c.frame + 1) + " time 100\nframe 240 quit\n"});
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(timesIn(result.output, SLOW_FRAME_LINES), c.warnings);
        EXPECT_EQ(timesIn(result.output, "framerate"), c.warnings);
        EXPECT_EQ(result.timesCalled("SDL_Flip"), 240);
    }
}

}  // namespace
