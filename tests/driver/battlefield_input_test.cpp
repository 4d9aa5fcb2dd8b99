// SPDX-License-Identifier: MIT
#include "driver/battlefield.h"

#include "front/front.h"
#include "graphics/qelstring.h"
#include "objects/myship.h"
#include "support/game.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Log = std::vector<std::string>;

const std::string KEYBOARD_SOUND = "play sounds/keyboard.wav on(1, 0, -1)";

// All that keys can change.
struct Flags {
    bool up, down, right, left, laser, rocket, quit;
};

Flags flagsOf(const BattleField& field) {
    const MyShip& ship = *field.myShip;
    return {ship.goingUp,   ship.goingDown, ship.goingRight, ship.goingLeft,
            field.shotKey1, field.shotKey2, field.quit};
}

void setFlags(BattleField& field, bool value) {
    field.myShip->goingUp = value;
    field.myShip->goingDown = value;
    field.myShip->goingRight = value;
    field.myShip->goingLeft = value;
    field.shotKey1 = value;
    field.shotKey2 = value;
    field.quit = false;
}

void expectFlags(const BattleField& field, const Flags& wanted) {
    const Flags flags = flagsOf(field);
    EXPECT_EQ(flags.up, wanted.up);
    EXPECT_EQ(flags.down, wanted.down);
    EXPECT_EQ(flags.right, wanted.right);
    EXPECT_EQ(flags.left, wanted.left);
    EXPECT_EQ(flags.laser, wanted.laser);
    EXPECT_EQ(flags.rocket, wanted.rocket);
    EXPECT_EQ(flags.quit, wanted.quit);
}

struct Key {
    const char* rule;
    SDLKey key;
    bool Flags::*flag;
};

const Key HELD_KEYS[] = {
    {"the up arrow steers up", SDLK_UP, &Flags::up},
    {"the down arrow steers down", SDLK_DOWN, &Flags::down},
    {"the right arrow steers right", SDLK_RIGHT, &Flags::right},
    {"the left arrow steers left", SDLK_LEFT, &Flags::left},
    {"A holds the laser key", SDLK_a, &Flags::laser},
    {"S holds the rocket key", SDLK_s, &Flags::rocket},
};

class BattleFieldKeys : public testing::TestWithParam<int> {};

TEST_P(BattleFieldKeys, SetTheirOwnFlagAndClearItInEveryPhase) {
    Game game;
    game.hold([&] {
        game.enterPhase(GetParam());
        game.takeLog();
        for (const Key& row : HELD_KEYS) {
            SCOPED_TRACE(row.rule);
            setFlags(game.field, false);
            game.press(row.key);
            game.field.eventHandler();
            Flags held = {};
            held.*row.flag = true;
            expectFlags(game.field, held);

            setFlags(game.field, true);
            game.release(row.key);
            game.field.eventHandler();
            Flags others = {true, true, true, true, true, true, false};
            others.*row.flag = false;
            expectFlags(game.field, others);
        }
        EXPECT_EQ(game.takeLog(), Log{}) << "no sound, no word";
        setFlags(game.field, false);
    });
}

INSTANTIATE_TEST_SUITE_P(EveryPhase, BattleFieldKeys, testing::Range(0, 5));

TEST(BattleFieldInput, ShiftAndCapsLockMakeNoDifference) {
    Game game;
    game.hold([&] {
        SDL_Event event = {};
        event.type = SDL_KEYDOWN;
        event.key.keysym.sym = SDLK_a;
        event.key.keysym.mod = static_cast<SDLMod>(KMOD_LSHIFT | KMOD_CAPS);
        event.key.keysym.unicode = 'A';
        game.queue(event);
        game.field.eventHandler();
        EXPECT_TRUE(game.field.shotKey1);
    });
}

TEST(BattleFieldInput, IgnoresOtherKeysAndOtherEvents) {
    Game game;
    game.hold([&] {
        game.takeLog();
        const SDLKey others[] = {SDLK_SPACE,    SDLK_q,  SDLK_d, SDLK_w,
                                 SDLK_KP_ENTER, SDLK_F1, SDLK_p};
        for (SDLKey key : others) {
            game.press(key);
            game.release(key);
        }
        const Uint8 types[] = {SDL_ACTIVEEVENT,   SDL_MOUSEMOTION,   SDL_MOUSEBUTTONDOWN,
                               SDL_MOUSEBUTTONUP, SDL_JOYAXISMOTION, SDL_VIDEOEXPOSE,
                               SDL_SYSWMEVENT,    SDL_USEREVENT};
        for (Uint8 type : types) {
            SDL_Event event = {};
            event.key.keysym.sym = SDLK_ESCAPE;
            event.type = type;
            game.queue(event);
        }
        game.field.eventHandler();
        expectFlags(game.field, {});
        EXPECT_EQ(game.takeLog(), Log{});
    });
}

TEST(BattleFieldInput, LeftAndRightTogetherSetBothFlags) {
    Game game;
    game.hold([&] {
        game.press(SDLK_LEFT);
        game.press(SDLK_RIGHT);
        game.field.eventHandler();
        EXPECT_TRUE(game.field.myShip->goingLeft);
        EXPECT_TRUE(game.field.myShip->goingRight);
    });
}

TEST(BattleFieldInput, HandlesAllEventsOfAPassInTheirOrder) {
    Game game;
    game.hold([&] {
        game.press(SDLK_a);
        game.press(SDLK_ESCAPE);
        game.release(SDLK_a);
        game.press(SDLK_UP);
        game.field.eventHandler();
        EXPECT_FALSE(game.field.shotKey1);
        EXPECT_TRUE(game.field.quit);
        EXPECT_TRUE(game.field.myShip->goingUp) << "an end does not cut the queue";
    });
}

TEST(BattleFieldInput, HandlesEachEventBeforeItAsksForTheNext) {
    Game game;
    game.hold([&] {
        const auto queue = front::hooks().SDL_PollEvent;
        std::vector<bool> seenGoingUp;
        front::hooks().SDL_PollEvent = [&](SDL_Event* next) {
            EXPECT_EQ(next, &game.field.event);
            seenGoingUp.push_back(game.field.myShip->goingUp);
            next->type = seenGoingUp.size() == 1 ? SDL_KEYDOWN : SDL_KEYUP;
            next->key.keysym.sym = SDLK_UP;
            return seenGoingUp.size() < 3 ? 1 : 0;
        };
        game.field.eventHandler();
        EXPECT_EQ(seenGoingUp, (std::vector<bool>{false, true, false}));
        front::hooks().SDL_PollEvent = queue;
    });
}

TEST(BattleFieldInput, KeepsAKeyThatIsHeldThroughTheIntro) {
    Game game;
    game.hold([&] {
        game.press(SDLK_RIGHT);
        game.field.eventHandler();
        game.clock = 4000;
        for (int i = 0; i < 200; ++i) {
            game.frame(51);
        }
        EXPECT_EQ(game.field.gamePhase, 2);
        EXPECT_TRUE(game.field.myShip->goingRight);
        EXPECT_EQ(game.field.myShip->xFloat, 300.0f) << "it does not fly yet";
        game.startPlay();
        game.withoutEnemies();
        game.frame(51);
        EXPECT_GT(game.field.myShip->xFloat, 300.0f);
    });
}

TEST(BattleFieldInput, ReturnSendsTitleAndHintAwayWithASound) {
    Game game;
    game.hold([&] {
        BattleField& field = game.field;
        const auto play = front::hooks().Mix_PlayChannelTimed;
        front::hooks().Mix_PlayChannelTimed = [&](int channel, Mix_Chunk* chunk, int loops,
                                                  int ticks) {
            EXPECT_EQ(field.titleText->type, 1) << "the sound comes first";
            EXPECT_EQ(field.hintText->type, 1);
            return play(channel, chunk, loops, ticks);
        };
        game.takeLog();
        game.press(SDLK_RETURN);
        field.eventHandler();
        EXPECT_EQ(game.takeLog(), Log{KEYBOARD_SOUND});
        EXPECT_EQ(field.titleText->type, 2);
        EXPECT_EQ(field.hintText->type, 2);
        EXPECT_EQ(field.messageLine->type, 3);
        EXPECT_FALSE(field.introDone);
        expectFlags(field, {});
    });
}

TEST(BattleFieldInput, ReturnSoundsAgainUntilTheIntroIsDone) {
    Game game;
    game.hold([&] {
        game.takeLog();
        game.press(SDLK_RETURN);
        game.press(SDLK_RETURN);
        game.field.eventHandler();
        EXPECT_EQ(game.takeLog(), (Log{KEYBOARD_SOUND, KEYBOARD_SOUND}));
        EXPECT_EQ(game.field.titleText->type, 2);

        game.field.introDone = true;
        game.field.titleText->type = 1;
        game.field.hintText->type = 1;
        game.press(SDLK_RETURN);
        game.field.eventHandler();
        EXPECT_EQ(game.takeLog(), Log{});
        EXPECT_EQ(game.field.titleText->type, 1);
        EXPECT_EQ(game.field.hintText->type, 1);
        expectFlags(game.field, {});
    });
}

TEST(BattleFieldInput, EscapeSoundsAndEndsAlsoAfterTheIntro) {
    Game game;
    game.hold([&] {
        for (bool introDone : {false, true}) {
            game.field.introDone = introDone;
            game.field.quit = false;
            game.takeLog();
            game.press(SDLK_ESCAPE);
            game.field.eventHandler();
            EXPECT_EQ(game.takeLog(), Log{KEYBOARD_SOUND});
            Flags ended = {};
            ended.quit = true;
            expectFlags(game.field, ended);
            EXPECT_EQ(game.field.titleText->type, 1);
        }
    });
}

TEST(BattleFieldInput, ReleasingReturnOrEscapeDoesNothing) {
    Game game;
    game.hold([&] {
        game.takeLog();
        game.release(SDLK_RETURN);
        game.release(SDLK_ESCAPE);
        game.field.eventHandler();
        EXPECT_EQ(game.takeLog(), Log{});
        expectFlags(game.field, {});
        EXPECT_EQ(game.field.titleText->type, 1);
    });
}

TEST(BattleFieldInput, ClosingTheWindowEndsWithoutASound) {
    Game game;
    game.hold([&] {
        game.takeLog();
        game.closeWindow();
        game.field.eventHandler();
        EXPECT_TRUE(game.field.quit);
        EXPECT_EQ(game.takeLog(), Log{});
    });
}

TEST(BattleFieldInput, PlaysNothingOnTheSameChannelWithoutSound) {
    Game game;
    game.noSound = true;
    game.hold([&] {
        game.takeLog();
        game.press(SDLK_RETURN);
        game.press(SDLK_ESCAPE);
        game.field.eventHandler();
        EXPECT_EQ(game.takeLog(), (Log{"play null on(1, 0, -1)", "play null on(1, 0, -1)"}));
        EXPECT_EQ(game.field.hintText->type, 2);
        EXPECT_TRUE(game.field.quit);
    });
}

TEST(BattleFieldInput, StoresTheTriggerKeys) {
    Game game;
    game.hold([&] {
        game.field.setShotKey1(true);
        EXPECT_TRUE(game.field.shotKey1);
        EXPECT_FALSE(game.field.shotKey2);
        game.field.setShotKey2(true);
        game.field.setShotKey1(false);
        EXPECT_FALSE(game.field.shotKey1);
        EXPECT_TRUE(game.field.shotKey2);
        game.field.setShotKey2(false);
        EXPECT_FALSE(game.field.shotKey2);
    });
}

TEST(BattleFieldInput, ReadsTheQueueOfTheLibrary) {
    Game game;
    front::hooks().SDL_PollEvent = nullptr;
    game.play([&] {
        SDL_Event event = {};
        event.type = SDL_KEYDOWN;
        event.key.keysym.sym = SDLK_LEFT;
        SDL_PushEvent(&event);
        event.type = SDL_QUIT;
        SDL_PushEvent(&event);
    });
    EXPECT_EQ(game.passes, 1);
    EXPECT_TRUE(game.field.myShip->goingLeft);
}

}  // namespace
