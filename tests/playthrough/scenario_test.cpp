// SPDX-License-Identifier: MIT
// The text files that games are written down in, and what the layer in front of the libraries makes
// of them.
#include "front/scenario.h"
#include "support/program.h"

#include <gtest/gtest.h>

#include <csignal>
#include <sstream>

namespace {

using front::Expectation;
using front::Scenario;
using front::When;

Scenario read(const std::string& text) {
    std::istringstream in(text);
    Scenario scenario;
    std::string error;
    EXPECT_TRUE(front::readScenario(in, "test", scenario, error)) << error;
    return scenario;
}

std::string errorOf(const std::string& text) {
    std::istringstream in(text);
    Scenario scenario;
    std::string error = "none";
    EXPECT_FALSE(front::readScenario(in, "a.scenario", scenario, error));
    return error;
}

TEST(ScenarioFile, WithoutALineTheClockStartsWithTheFirstFramesTime) {
    const Scenario scenario = read("");
    EXPECT_EQ(scenario.startMs, 266U);
    EXPECT_EQ(scenario.lastFrame, 100000U);
    EXPECT_TRUE(scenario.events.empty());
}

TEST(ScenarioFile, EmptyLinesAndCommentsAreSkipped) {
    const Scenario scenario = read("# a game\n\n   \nstart 3000 # late\n");
    EXPECT_EQ(scenario.startMs, 3000U);
}

TEST(ScenarioFile, KeysAndQuitComeAtAFrameOrAtAClockReading) {
    const Scenario scenario = read("frame 1 down return\nms 5000 up a\nms 5000 quit\n");
    ASSERT_EQ(scenario.events.size(), 3U);
    EXPECT_EQ(scenario.events[0].when.unit, When::FRAME);
    EXPECT_EQ(scenario.events[0].when.value, 1U);
    EXPECT_EQ(scenario.events[0].type, SDL_KEYDOWN);
    EXPECT_EQ(scenario.events[0].key, SDLK_RETURN);
    EXPECT_EQ(scenario.events[1].when.unit, When::CLOCK_MS);
    EXPECT_EQ(scenario.events[1].when.value, 5000U);
    EXPECT_EQ(scenario.events[1].type, SDL_KEYUP);
    EXPECT_EQ(scenario.events[1].key, SDLK_a);
    EXPECT_EQ(scenario.events[2].type, SDL_QUIT);
}

TEST(ScenarioFile, FrameTimesPicturesFailuresAndTheLimitHaveTheirLines) {
    const Scenario scenario = read("limit 7\nfail SDL_Init 2 No such device\n"
                                   "frame 3 time 50\nframe 4 picture a.bmp\n");
    EXPECT_EQ(scenario.lastFrame, 7U);
    ASSERT_EQ(scenario.failures.size(), 1U);
    EXPECT_EQ(scenario.failures[0].function, "SDL_Init");
    EXPECT_EQ(scenario.failures[0].call, 2U);
    EXPECT_EQ(scenario.failures[0].text, "No such device");
    ASSERT_EQ(scenario.frameTimes.size(), 1U);
    EXPECT_EQ(scenario.frameTimes[0].ms, 50U);
    ASSERT_EQ(scenario.pictures.size(), 1U);
    EXPECT_EQ(scenario.pictures[0].file, "a.bmp");
}

TEST(ScenarioFile, EveryKeyIsReadByTheWordThatItIsWrittenWith) {
    for (int number = SDLK_UNKNOWN + 1; number < SDLK_LAST; ++number) {
        const SDLKey key = static_cast<SDLKey>(number);
        const std::string word = front::keyWord(key);
        const Scenario scenario = read("frame 1 down " + word + "\n");
        EXPECT_EQ(scenario.events.at(0).key, key) << word;
    }
    EXPECT_EQ(front::keyWord(SDLK_LEFT), "left");
    EXPECT_EQ(front::keyWord(SDLK_s), "s");
    EXPECT_EQ(front::keyWord(SDLK_F1), "key-282");
    // Its own character would begin a comment.
    EXPECT_EQ(front::keyWord(SDLK_HASH), "key-35");
}

TEST(ScenarioFile, WhatMustComeIsCountedInTheWholeGameOrInFrames) {
    const Scenario scenario = read("expect 2 text \"a \\\"b\\\"\\n\"\n"
                                   "expect no call \"SDL_\" in frames 3 7\n"
                                   "expect 0..9 pixels 00ff10 in 1 2 3 4 at 5\n"
                                   "expect frames 3+\nexpect status 1\n");
    const std::vector<Expectation>& all = scenario.expectations;
    ASSERT_EQ(all.size(), 5U);
    EXPECT_EQ(all[0].kind, Expectation::TEXT);
    EXPECT_EQ(all[0].text, "a \"b\"\n");
    EXPECT_EQ(all[0].least, 2U);
    EXPECT_EQ(all[0].most, 2U);
    EXPECT_EQ(all[0].lastFrame, ~0U);
    EXPECT_EQ(all[1].kind, Expectation::CALL);
    EXPECT_EQ(all[1].most, 0U);
    EXPECT_EQ(all[1].firstFrame, 3U);
    EXPECT_EQ(all[1].lastFrame, 7U);
    EXPECT_EQ(all[1].line, 2);
    EXPECT_EQ(all[2].kind, Expectation::PIXELS);
    EXPECT_EQ(all[2].most, 9U);
    EXPECT_EQ(all[2].colour, 0x00ff10U);
    EXPECT_EQ(all[2].box.h, 4);
    EXPECT_EQ(all[2].firstFrame, 5U);
    EXPECT_EQ(all[3].kind, Expectation::FRAMES);
    EXPECT_EQ(all[3].most, ~0U);
    EXPECT_EQ(all[4].kind, Expectation::STATUS);
}

TEST(ScenarioFile, ADrawingIsToldByItsPictureAndIfWantedByItsPartAndPlace) {
    const Scenario scenario = read("expect 1 drawn \"ships/ship01.png\"\n"
                                   "expect 1+ drawn \"a.png\" part 8 0 at 10 20 in frames 3 7\n"
                                   "expect no drawn \"a.png\" at 10 20\n");
    const std::vector<Expectation>& all = scenario.expectations;
    ASSERT_EQ(all.size(), 3U);
    EXPECT_EQ(all[0].kind, Expectation::DRAWN);
    EXPECT_EQ(all[0].text, "ships/ship01.png");
    EXPECT_FALSE(all[0].part);
    EXPECT_FALSE(all[0].place);
    ASSERT_TRUE(all[1].part);
    EXPECT_EQ(all[1].part->x, 8U);
    EXPECT_EQ(all[1].part->y, 0U);
    ASSERT_TRUE(all[1].place);
    EXPECT_EQ(all[1].place->x, 10U);
    EXPECT_EQ(all[1].place->y, 20U);
    EXPECT_EQ(all[1].lastFrame, 7U);
    EXPECT_FALSE(all[2].part);
    EXPECT_TRUE(all[2].place);
}

struct WrongCase {
    const char* text;
    const char* error;
};

TEST(ScenarioFile, AWrongLineIsNamedByFileAndNumber) {
    const WrongCase cases[] = {
        {"jump 3",
         "a.scenario:1: \"jump\" is unknown: a line begins with one of what, option, start, "
         "limit, fail, times, frame, ms, expect"},
        {"\n# x\nframe", "a.scenario:3: a frame is missing"},
        {"ms", "a.scenario:1: milliseconds is missing"},
        {"start", "a.scenario:1: a clock reading in milliseconds is missing"},
        {"start x",
         "a.scenario:1: \"x\" is no number: here stands a clock reading in milliseconds"},
        {"start -1", "a.scenario:1: \"-1\" is no number: here stands a clock reading in "
                     "milliseconds"},
        {"limit 4294967296", "a.scenario:1: \"4294967296\" is no number: here stands a frame"},
        {"start 1 2", "a.scenario:1: \"2\" is one word too many"},
        {"frame 1",
         "a.scenario:1: \"\" is unknown: what happens is time, down, up, quit or picture"},
        {"frame 1 press a", "a.scenario:1: \"press\" is unknown: what happens is time, down, up, "
                            "quit or picture"},
        {"frame 1 down", "a.scenario:1: \"\" is no key"},
        {"frame 1 down enter", "a.scenario:1: \"enter\" is no key"},
        {"frame 1 up A", "a.scenario:1: \"A\" is no key"},
        {"frame 1 down a b", "a.scenario:1: \"b\" is one word too many"},
        {"frame 1 time", "a.scenario:1: milliseconds is missing"},
        {"frame 1 picture", "a.scenario:1: the picture's file is missing"},
        {"fail", "a.scenario:1: the function that fails is missing"},
        {"fail SDL_Init", "a.scenario:1: which call fails is missing"},
        {"fail SDL_Init 0 x", "a.scenario:1: calls are counted from 1"},
        {"expect 1 drawn ship", "a.scenario:1: the picture is missing: its file stands in quotes"},
        {"expect 1 drawn \"a\" part 3", "a.scenario:1: behind \"part\" stand X and Y"},
        {"expect 1 drawn \"a\" at 3 x", "a.scenario:1: behind \"at\" stand X and Y"},
        {"expect 1 drawn \"a\" at 3 4 part 5 6",
         "a.scenario:1: here stands \"in frames FIRST LAST\", or nothing"},
        {"expect 1 seen \"a\"",
         "a.scenario:1: \"seen\" is unknown: what is counted is text, call, drawn or pixels"},
        {"frame 9 quit\nframe 8 quit", "a.scenario:2: 8 comes after 9: lines stand in the order in "
                                       "which they happen"},
        {"ms 90 quit\nframe 8 quit\nms 89 quit", "a.scenario:3: 89 comes after 90: lines stand in "
                                                 "the order in which they happen"},
    };
    for (const WrongCase& c : cases) {
        EXPECT_EQ(errorOf(c.text), c.error) << c.text;
    }
}

TEST(Preload, AProgramWithAWrongScenarioDoesNotStart) {
    const ProgramResult result = runProgram({{}, "frame 1 quit\nframe 2 leave\n"});
    EXPECT_EQ(result.status, 97);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.error.find("front: /"), 0U);
    EXPECT_NE(result.error.find("scenario:2: \"leave\" is unknown"), std::string::npos);
}

TEST(Preload, OnlyWhatTheGameCallsCanFail) {
    for (const char* function : {"SDL_Rename", "SDL_Delay", "SDL_GetTicks", "SDL_PollEvent"}) {
        const ProgramResult result = runProgram({{}, "fail " + std::string(function) + " 1 x\n"});
        EXPECT_EQ(result.status, 97);
        EXPECT_NE(result.error.find(function + std::string(" is no function of the game that can")),
                  std::string::npos)
            << result.error;
    }
}

TEST(Preload, AGameThatNobodyEndsIsStoppedAfterItsLastFrame) {
    const ProgramResult result = runProgram({{}, "limit 30\n"});
    EXPECT_EQ(result.status, 98);
    EXPECT_EQ(result.error, "front: frame 30 is over and the game still runs\n");
}

TEST(Preload, AKeyAtAClockReadingComesWhenTheFrameHasReachedIt) {
    // Frame 5 ends at 266 + 5 * 20.
    const ProgramResult at = runProgram({{}, "ms 366 down escape\n"});
    EXPECT_EQ(at.timesCalled("SDL_Flip"), 5);
    const ProgramResult behind = runProgram({{}, "ms 367 down escape\n"});
    EXPECT_EQ(behind.timesCalled("SDL_Flip"), 6);
}

TEST(Preload, FrameTimesLastUntilTheNext) {
    const ProgramResult result =
        runProgram({{}, "start 1000\nframe 2 time 7\nframe 4 time 100\nframe 5 down escape\n"});
    EXPECT_EQ(result.clockOf("Mix_PlayChannelTimed(1, sounds/keyboard.wav"),
              1000 + 20 + 7 + 7 + 100 + 100);
}

TEST(Preload, AnyCallOfAFunctionCanFail) {
    const ProgramResult result = runProgram({{}, "fail IMG_Load 2 gone\nframe 1 quit\n"});
    EXPECT_EQ(result.status, 0);
    const std::vector<std::string> calls = result.callsOf("IMG_Load");
    EXPECT_EQ(calls[0], "IMG_Load(explosions/ex0000.png) = 128 x 128");
    EXPECT_EQ(calls[1], "IMG_Load fails");
    EXPECT_EQ(calls[2], "IMG_Load(explosions/ex0002.png) = 128 x 128");
}

TEST(Runner, AProgramThatHangsIsKilled) {
    // Real time and no events: nobody would ever end this game.
    ProgramRun run;
    run.arguments = {"-ns"};
    run.timeoutSeconds = 2;
    const ProgramResult result = runProgram(run);
    EXPECT_EQ(result.status, -1);
    EXPECT_TRUE(result.timedOut);
    EXPECT_EQ(result.signal, SIGKILL);
}

}  // namespace
