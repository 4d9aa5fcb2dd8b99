// SPDX-License-Identifier: MIT
#include "pilot/keyboard.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace {

using pilot::Keyboard;

// The keys that the game finds in its queue now: "+a" is pressed, "-a" is let go.
std::string eventsOf(Keyboard& keyboard) {
    std::string text;
    for (SDL_Event event = {}; keyboard.nextEvent(event);) {
        text += event.type == SDL_KEYDOWN ? '+' : '-';
        text += static_cast<char>(event.key.keysym.sym);
    }
    return text;
}

TEST(Keyboard, AKeyMovesWhenTheHandHasFollowed) {
    Keyboard keyboard(nullptr);
    keyboard.hold(SDLK_a, true, 200);
    keyboard.frameShown(1, 199);
    EXPECT_EQ(eventsOf(keyboard), "");
    keyboard.frameShown(2, 200);
    EXPECT_EQ(eventsOf(keyboard), "+a");
    EXPECT_EQ(eventsOf(keyboard), "");
}

TEST(Keyboard, EachMovementIsALineOfTheScenario) {
    std::ostringstream scenario;
    Keyboard keyboard(&scenario);
    keyboard.hold(SDLK_LEFT, true, 100);
    keyboard.hold(SDLK_LEFT, false, 300);
    keyboard.frameShown(7, 110);
    keyboard.frameShown(8, 310);
    EXPECT_EQ(scenario.str(), "frame 7 down left\nframe 8 up left\n");
}

TEST(Keyboard, AKeyThatIsHeldAlreadyIsNotPressedAgain) {
    Keyboard keyboard(nullptr);
    keyboard.hold(SDLK_a, true, 10);
    keyboard.hold(SDLK_a, true, 20);
    keyboard.frameShown(1, 30);
    EXPECT_EQ(eventsOf(keyboard), "+a");
}

TEST(Keyboard, AStrokeIsPressedAndLetGoAndNeedsARest) {
    Keyboard keyboard(nullptr);
    keyboard.strike(SDLK_s, 100);
    EXPECT_FALSE(keyboard.canStrike(SDLK_s, 179));
    EXPECT_TRUE(keyboard.canStrike(SDLK_s, 180));
    EXPECT_TRUE(keyboard.canStrike(SDLK_a, 100));
    keyboard.frameShown(1, 139);
    EXPECT_EQ(eventsOf(keyboard), "+s");
    keyboard.frameShown(2, 140);
    EXPECT_EQ(eventsOf(keyboard), "-s");
}

TEST(Keyboard, MovementsComeInTheOrderOfTheirTimes) {
    Keyboard keyboard(nullptr);
    keyboard.strike(SDLK_a, 100);
    keyboard.hold(SDLK_s, true, 120);
    keyboard.frameShown(1, 200);
    EXPECT_EQ(eventsOf(keyboard), "+a+s-a");
}

TEST(Keyboard, TheStickIsForeseenByWhatHasBeenDecided) {
    Keyboard keyboard(nullptr);
    keyboard.hold(SDLK_UP, true, 50);
    keyboard.frameShown(1, 60);
    keyboard.hold(SDLK_UP, false, 100);
    keyboard.hold(SDLK_RIGHT, true, 150);
    EXPECT_TRUE(keyboard.stickAt(99).up);
    EXPECT_FALSE(keyboard.stickAt(100).up);
    EXPECT_FALSE(keyboard.stickAt(149).right);
    EXPECT_TRUE(keyboard.stickAt(150).right);
}

}  // namespace
