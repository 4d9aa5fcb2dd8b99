// SPDX-License-Identifier: MIT
#include "driver/battlefield.h"

#include "front/front.h"
#include "graphics/display.h"
#include "graphics/qelstring.h"
#include "graphics/stars.h"
#include "objects/enemyship.h"
#include "objects/formation7bird.h"
#include "objects/myship.h"
#include "support/game.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

namespace {

using Log = std::vector<std::string>;

const char* const SOUNDS[] = {
    "sounds/explode.wav",      "sounds/explode2.wav", "sounds/miniExplode1.wav",
    "sounds/miniExplode2.wav", "sounds/shot001b.wav", "sounds/shot002.wav",
    "sounds/intro.wav",        "sounds/keyboard.wav",
};

void add(Log& log, const Log& more) {
    log.insert(log.end(), more.begin(), more.end());
}

std::string numbered(const char* pattern, int number) {
    char path[64];
    std::snprintf(path, sizeof path, pattern, number);
    return path;
}

// The target list as a new enemy prints it: those before it have entered themselves.
std::string listLine(int own) {
    std::string line = "> EnemyShip::ownShipTargetList: ";
    for (int i = 0; i < 10; ++i) {
        line += i < own ? "T " : i == own ? std::to_string(i) + ' ' : "F ";
    }
    return line;
}

Log wholeLoading() {
    Log log;
    for (int i = 0; i <= 45; ++i) {
        log.push_back(numbered("load explosions/ex%04d.png", i));
    }
    for (int i = 0; i <= 6; ++i) {
        log.push_back(numbered("load explosions/mini/ex%03d.png", i));
    }
    add(log, {"load ships/ship01right.png", "load ships/ship01left.png", "load ships/ship01.png",
              "> MyShip was born:", "load ships/enemy01.png", "load ships/enemy01left.png",
              "load ships/enemy01right.png"});
    for (const char* sound : SOUNDS) {
        log.push_back(std::string("sound ") + sound);
    }
    for (int i = 0; i < 7; ++i) {
        add(log, {"> enemyShip was born:", listLine(i), "load shots/e_shot01c.png"});
    }
    add(log, {"load fonts/impact/fps_a.png", "load shots/item_shot01a.png",
              "load shots/item_shot02a.png", "load display/energy01.png",
              "load display/energyscale.png", "load fonts/impact/numbers_a.png",
              "load fonts/impact/numbers_mini.png", "load fonts/impact/cross.png",
              "> display was born:", "load shots/shot01a.png", "load shots/shot01b.png",
              "load display/enemyrect_topleft.png", "load display/enemyrect_topright.png",
              "load display/enemyrect_bottomleft.png", "load display/enemyrect_bottomright.png",
              "> |                        K R A V O L T I X                         |", "> GO!"});
    for (int i = 0; i < 3; ++i) {
        add(log, {"load fonts/impact/letters.png", "load fonts/impact/letter_cursor.png",
                  "load fonts/impact/numbers_a.png", "sound sounds/keyboard.wav"});
    }
    log.push_back("clear");
    return log;
}

TEST(BattleFieldRoster, LoadsAndCreatesEverythingInItsOrder) {
    Game game;
    game.hold([&] {
        EXPECT_EQ(game.takeLog({"load", "sound", "clear", "> MyShip was", "> enemyShip was",
                                "> EnemyShip::own", "> display was", "> |                     ",
                                "> GO!"}),
                  wholeLoading());
    });
}

TEST(BattleFieldRoster, KeepsTheExplosionPicturesInOrder) {
    Game game;
    game.hold([&] {
        for (int i = 0; i < 46; ++i) {
            EXPECT_EQ(game.nameOf(game.field.explosionFrames[i]),
                      numbered("explosions/ex%04d.png", i));
        }
        for (int i = 0; i < 7; ++i) {
            EXPECT_EQ(game.nameOf(game.field.miniExplosionFrames[i]),
                      numbered("explosions/mini/ex%03d.png", i));
        }
    });
}

TEST(BattleFieldRoster, NamesEachPictureAndSoundRightly) {
    Game game;
    game.hold([&] {
        const BattleField& field = game.field;
        const struct {
            const void* kept;
            const char* file;
        } rows[] = {
            {field.enemyImage, "ships/enemy01.png"},
            {field.enemyImageLeft, "ships/enemy01left.png"},
            {field.enemyImageRight, "ships/enemy01right.png"},
            {field.laserShotImage, "shots/shot01a.png"},
            {field.rocketShotImage, "shots/shot01b.png"},
            {field.enemyRectTopLeft, "display/enemyrect_topleft.png"},
            {field.enemyRectTopRight, "display/enemyrect_topright.png"},
            {field.enemyRectBottomLeft, "display/enemyrect_bottomleft.png"},
            {field.enemyRectBottomRight, "display/enemyrect_bottomright.png"},
            {field.soundExplode, "sounds/explode.wav"},
            {field.soundExplode2, "sounds/explode2.wav"},
            {field.soundMiniExplode1, "sounds/miniExplode1.wav"},
            {field.soundMiniExplode2, "sounds/miniExplode2.wav"},
            {field.soundShot1, "sounds/shot001b.wav"},
            {field.soundShot2, "sounds/shot002.wav"},
            {field.soundIntro, "sounds/intro.wav"},
            {field.soundKeyboard, "sounds/keyboard.wav"},
        };
        for (const auto& row : rows) {
            EXPECT_EQ(game.nameOf(row.kept), row.file);
        }
    });
}

TEST(BattleFieldRoster, PutsThePlayerAboveTheMiddleOfTheBottomEdge) {
    Game game;
    game.hold([&] {
        const MyShip& ship = *game.field.myShip;
        EXPECT_EQ(ship.xFloat, 300.0f);
        EXPECT_EQ(ship.yFloat, 400.0f);
        EXPECT_EQ(ship.width, 39);
        EXPECT_EQ(ship.height, 39);
        EXPECT_EQ(ship.fieldWidth, 640);
        EXPECT_EQ(ship.fieldHeight, 480);
        EXPECT_EQ(ship.screen, game.field.screen);
        EXPECT_FALSE(ship.externallySteered);
        EXPECT_EQ(game.nameOf(ship.image), "ships/ship01.png");
        EXPECT_EQ(game.nameOf(ship.leftImage), "ships/ship01left.png");
        EXPECT_EQ(game.nameOf(ship.rightImage), "ships/ship01right.png");
    });
}

TEST(BattleFieldRoster, HalvesAnOddFieldDownward) {
    Game game;
    game.width = 321;
    game.height = 243;
    game.hold([&] {
        EXPECT_EQ(game.field.myShip->xFloat, 140.0f);
        EXPECT_EQ(game.field.myShip->yFloat, 163.0f);
        EXPECT_EQ(game.field.myShip->fieldWidth, 321);
        EXPECT_EQ(game.field.myShip->fieldHeight, 243);
        EXPECT_EQ(game.field.enemyShips[6]->fieldWidth, 321);
        EXPECT_EQ(game.field.enemyShips[6]->fieldHeight, 243);
        EXPECT_EQ(game.field.formation->fieldWidth, 321);
        EXPECT_EQ(game.field.formation->fieldHeight, 243);
        EXPECT_EQ(game.field.stars->width, 321);
        EXPECT_EQ(game.field.stars->height, 243);
    });
}

void expectExplosions(Game& game, const FlyingObject& ship, const char* explosion,
                      const char* mini) {
    EXPECT_EQ(ship.explosionFrames, game.field.explosionFrames);
    EXPECT_EQ(ship.explosionWidth, 128);
    EXPECT_EQ(ship.explosionHeight, 128);
    EXPECT_EQ(ship.miniExplosionFrames, game.field.miniExplosionFrames);
    EXPECT_EQ(ship.miniExplosionRect.w, 16);
    EXPECT_EQ(ship.miniExplosionRect.h, 16);
    EXPECT_EQ(game.nameOf(ship.explosionSound), explosion);
    EXPECT_EQ(game.nameOf(ship.miniExplosionSound), mini);
}

TEST(BattleFieldRoster, GivesThePlayerTheSecondSoundOfEachExplosion) {
    Game game;
    game.hold([&] {
        expectExplosions(game, *game.field.myShip, "sounds/explode2.wav",
                         "sounds/miniExplode2.wav");
    });
}

TEST(BattleFieldRoster, GivesEveryEnemyTheFirstSoundOfEachExplosion) {
    Game game;
    game.hold([&] {
        for (int i = 0; i < 7; ++i) {
            SCOPED_TRACE(i);
            expectExplosions(game, *game.field.enemyShips[i], "sounds/explode.wav",
                             "sounds/miniExplode1.wav");
        }
    });
}

TEST(BattleFieldRoster, StartsSevenEnemiesOutsideTheScreen) {
    const struct {
        const char* where;
        float x, y;
        int maxShot;
    } rows[] = {
        {"above, far left", 0, -120, 2},    {"above, near left", 0, -80, 3},
        {"left of the edge", -40, 80, 4},   {"above the middle", 300, -40, 9},
        {"right of the edge", 680, 80, 4},  {"above, near right", 600, -80, 3},
        {"above, far right", 600, -120, 2},
    };
    Game game;
    game.hold([&] {
        EXPECT_EQ(game.field.enemiesAlive, 7);
        for (int i = 0; i < 7; ++i) {
            SCOPED_TRACE(rows[i].where);
            const EnemyShip& enemy = *game.field.enemyShips[i];
            EXPECT_EQ(enemy.xFloat, rows[i].x);
            EXPECT_EQ(enemy.yFloat, rows[i].y);
            EXPECT_EQ(enemy.maxShot, rows[i].maxShot);
            EXPECT_TRUE(enemy.canShoot);
        }
    });
}

TEST(BattleFieldRoster, LetsTheEnemiesRectanglesStandAtTheCornerUntilTheyMove) {
    Game game;
    game.hold([&] {
        for (int i = 0; i < 7; ++i) {
            EXPECT_EQ(game.field.enemyShips[i]->destRect.x, 0);
            EXPECT_EQ(game.field.enemyShips[i]->destRect.y, 0);
        }
    });
}

TEST(BattleFieldRoster, SteersEnemiesByTheFormationAgainstThePlayer) {
    Game game;
    game.hold([&] {
        for (int i = 0; i < 7; ++i) {
            SCOPED_TRACE(i);
            const EnemyShip& enemy = *game.field.enemyShips[i];
            EXPECT_TRUE(enemy.externallySteered);
            EXPECT_EQ(enemy.target, game.field.myShip);
            EXPECT_EQ(enemy.ownShipTargetList, game.field.myShip->shipTargetList);
            EXPECT_EQ(enemy.targetCount, 10);
            EXPECT_EQ(enemy.ownIndex, i);
            EXPECT_EQ(game.field.myShip->shipTargetList[i], &enemy);
            EXPECT_EQ(enemy.width, 39);
            EXPECT_EQ(enemy.height, 39);
            EXPECT_EQ(enemy.screen, game.field.screen);
            EXPECT_EQ(enemy.fieldWidth, 640);
            EXPECT_EQ(enemy.fieldHeight, 480);
            EXPECT_EQ(enemy.image, game.field.enemyImage);
            EXPECT_EQ(enemy.leftImage, game.field.enemyImageLeft);
            EXPECT_EQ(enemy.rightImage, game.field.enemyImageRight);
        }
    });
}

TEST(BattleFieldRoster, LetsTheSevenDiveFasterThanOtherEnemies) {
    Game game;
    game.hold([&] {
        for (int i = 0; i < 7; ++i) {
            EXPECT_EQ(game.field.enemyShips[i]->maxSpeedDown, 0.8f);
            EXPECT_EQ(game.field.enemyShips[i]->maxSpeedUp, 4.0f);
        }
    });
}

TEST(BattleFieldRoster, ClearsAFlagForEachEnemy) {
    Game game;
    game.hold([&] {
        for (int i = 0; i < 7; ++i) {
            EXPECT_EQ(game.field.enemyFlags[i], 0);
        }
    });
}

TEST(BattleFieldRoster, SetsTheFormationAndItsTimers) {
    Game game;
    game.hold([&] {
        const BattleField& field = game.field;
        EXPECT_EQ(field.formation->x, 180);
        EXPECT_EQ(field.formation->y, 100);
        EXPECT_EQ(field.formation->fieldWidth, 640);
        EXPECT_EQ(field.formation->fieldHeight, 480);
        EXPECT_EQ(field.formation->ships, field.myShip->shipTargetList);
        EXPECT_EQ(field.formationTime, 0u);
        EXPECT_EQ(field.formationTimer2, 10000);
        EXPECT_EQ(field.formationTimerDefault, 50000);
        EXPECT_EQ(field.formationTimer, 100000);
        EXPECT_EQ(field.formationPhase, 0);
    });
}

TEST(BattleFieldRoster, LetsSixtyStarsFallOverTheField) {
    Game game;
    game.hold([&] {
        EXPECT_EQ(game.field.stars->number, 60);
        EXPECT_EQ(game.field.stars->width, 640);
        EXPECT_EQ(game.field.stars->height, 480);
        EXPECT_EQ(game.field.stars->screen, game.field.screen);
    });
}

TEST(BattleFieldRoster, CountsDownFromFiveInTheMiddle) {
    Game game;
    game.hold([&] {
        const Display& display = *game.field.display;
        EXPECT_EQ(display.screen, game.field.screen);
        EXPECT_EQ(display.countDownPos.x, 318);
        EXPECT_EQ(display.countDownPos.y, 220);
        EXPECT_EQ(display.countDownStart, 5);
        EXPECT_EQ(display.countDownValue, 5);
    });
}

TEST(BattleFieldRoster, HoldsSixteenMillionFreeSlotsForEachWeapon) {
    Game game;
    game.hold([&] {
        const BattleField& field = game.field;
        constexpr Uint32 SLOTS = 16000000;
        EXPECT_EQ(field.myFirstShotMax, SLOTS);
        EXPECT_EQ(field.mySecondShotMax, SLOTS);
        EXPECT_NE(field.myFirstShotList, nullptr);
        EXPECT_NE(field.mySecondShotList, nullptr);
        const auto isSet = [](auto value) { return value != 0; };
        EXPECT_TRUE(std::none_of(field.myFirstShotAge, field.myFirstShotAge + SLOTS, isSet));
        EXPECT_TRUE(std::none_of(field.mySecondShotAge, field.mySecondShotAge + SLOTS, isSet));
        // Read as bytes: a flag that was never set need not be true or false.
        const Uint8* first = reinterpret_cast<const Uint8*>(field.myFirstShotActive);
        const Uint8* second = reinterpret_cast<const Uint8*>(field.mySecondShotActive);
        EXPECT_TRUE(std::none_of(first, first + SLOTS, isSet));
        EXPECT_TRUE(std::none_of(second, second + SLOTS, isSet));
    });
}

TEST(BattleFieldRoster, KeepsRoomForAPointerInEverySlot) {
    Game game;
    game.hold([&] {
        game.field.myFirstShotList[15999999] = nullptr;
        game.field.mySecondShotList[15999999] = nullptr;
        EXPECT_EQ(game.field.myFirstShotList[15999999], nullptr);
        EXPECT_EQ(game.field.mySecondShotList[15999999], nullptr);
    });
}

TEST(BattleFieldRoster, LetsLaserShotsFlyASecondAndRocketsThree) {
    Game game;
    game.hold([&] {
        EXPECT_EQ(game.field.myFirstShotLifetime, 1000u);
        EXPECT_EQ(game.field.mySecondShotLifetime, 3000u);
    });
}

TEST(BattleFieldRoster, StartsWithNoShotAndBothTriggersFired) {
    Game game;
    game.hold([&] {
        EXPECT_EQ(game.field.myFirstShotCount, 0u);
        EXPECT_EQ(game.field.mySecondShotCount, 0u);
        EXPECT_FALSE(game.field.shotKey1);
        EXPECT_FALSE(game.field.shotKey2);
        EXPECT_EQ(game.field.shotState1, 3);
        EXPECT_EQ(game.field.shotState2, 3);
    });
}

TEST(BattleFieldRoster, WordsItsMessages) {
    Game game;
    game.hold([&] {
        const BattleField& field = game.field;
        EXPECT_STREQ(field.textTargetDestroyed, "Target destroyed");
        EXPECT_STREQ(field.textEnergyLow, "Attetion xxx your energy is very low");
        EXPECT_STREQ(field.textNoMoreRockets, "you have got no more rockets");
        EXPECT_STREQ(field.textNoRockets, "no rockets");
        EXPECT_STREQ(field.textLaserEmpty, "your laser shot is empty now");
        EXPECT_STREQ(field.textLaserEmptyShort, "laser empty");
        EXPECT_STREQ(field.textTitle, "Test of formation 7BIRD");
        EXPECT_STREQ(field.textHint, "hit Return");
    });
    EXPECT_EQ(sizeof game.field.textTargetDestroyed, 20u);
    EXPECT_EQ(sizeof game.field.textEnergyLow, 50u);
    EXPECT_EQ(sizeof game.field.textNoMoreRockets, 50u);
    EXPECT_EQ(sizeof game.field.textNoRockets, 50u);
    EXPECT_EQ(sizeof game.field.textLaserEmpty, 50u);
    EXPECT_EQ(sizeof game.field.textLaserEmptyShort, 50u);
    EXPECT_EQ(sizeof game.field.textTitle, 50u);
    EXPECT_EQ(sizeof game.field.textHint, 16u);
}

TEST(BattleFieldRoster, HasGivenNoMessageYet) {
    Game game;
    game.hold([&] {
        EXPECT_FALSE(game.field.energyLowShown);
        EXPECT_FALSE(game.field.laserEmptyShown);
        EXPECT_FALSE(game.field.rocketsEmptyShown);
        EXPECT_FALSE(game.field.introDone);
    });
}

TEST(BattleFieldRoster, PlacesItsThreeLinesOfText) {
    Game game;
    game.hold([&] {
        const BattleField& field = game.field;
        const struct {
            const char* rule;
            const QELString* line;
            const char* text;
            int x, y, align, type;
        } rows[] = {
            {"GO types at the top left and leaves", field.messageLine, "GO", 10, 10, 0, 3},
            // centred: 4 pixels left of the middle for each character
            {"the title stands above the middle", field.titleText, field.textTitle, 320 - 4 * 23,
             180, 1, 1},
            {"the hint stands below it", field.hintText, field.textHint, 320 - 4 * 10, 260, 1, 1},
        };
        for (const auto& row : rows) {
            SCOPED_TRACE(row.rule);
            EXPECT_STREQ(row.line->text, row.text);
            EXPECT_EQ(row.line->x, row.x);
            EXPECT_EQ(row.line->y, row.y);
            EXPECT_EQ(row.line->align, row.align);
            EXPECT_EQ(row.line->type, row.type);
            EXPECT_EQ(row.line->screen, field.screen);
        }
        EXPECT_EQ(field.titleText->text, field.textTitle) << "the buffer itself, not a copy";
        EXPECT_EQ(field.hintText->text, field.textHint);
    });
}

// The mixer itself decides; the files are those of the game.
void askTheRealMixer(int& loads) {
    front::Hooks& hooks = front::hooks();
    hooks.SDL_RWFromFile = nullptr;
    hooks.Mix_CloseAudio = nullptr;
    hooks.Mix_OpenAudio = nullptr;
    hooks.Mix_LoadWAV_RW = [&loads](SDL_RWops* source, int freeSource) {
        ++loads;
        return front::real::Mix_LoadWAV_RW(source, freeSource);
    };
}

std::vector<Mix_Chunk*> chunksOf(const BattleField& field) {
    return {field.soundExplode,      field.soundExplode2, field.soundMiniExplode1,
            field.soundMiniExplode2, field.soundShot1,    field.soundShot2,
            field.soundIntro,        field.soundKeyboard};
}

TEST(BattleFieldRoster, AsksForAllSoundsWithoutSoundAndGetsNone) {
    Game game;
    game.noSound = true;
    int loads = 0;
    askTheRealMixer(loads);
    game.hold([&] {
        EXPECT_EQ(loads, 8 + 3);  // and one for each line of text
        for (const Mix_Chunk* chunk : chunksOf(game.field)) {
            EXPECT_EQ(chunk, nullptr);
        }
    });
}

TEST(BattleFieldRoster, GetsAllSoundsWithSound) {
    Game game;
    int loads = 0;
    askTheRealMixer(loads);
    game.hold([&] {
        EXPECT_EQ(loads, 8 + 3);
        for (const Mix_Chunk* chunk : chunksOf(game.field)) {
            ASSERT_NE(chunk, nullptr);
            EXPECT_GT(chunk->alen, 0u);
        }
    });
}

// Without the texts and the laser's icon there is no game; everything else may be missing.
bool isNeeded(const std::string& file) {
    return file.find("fonts/") == 0 || file == "shots/item_shot01a.png";
}

TEST(BattleFieldRoster, PlaysOnWithoutPicturesAndSounds) {
    Game game;
    const auto load = front::hooks().IMG_Load;
    front::hooks().IMG_Load = [&](const char* file) {
        return isNeeded(file) ? load(file) : nullptr;
    };
    front::hooks().SDL_RWFromFile = [](const char*, const char*) {
        return static_cast<SDL_RWops*>(nullptr);
    };
    front::hooks().Mix_LoadWAV_RW = nullptr;
    game.hold([&] {
        for (const Mix_Chunk* chunk : chunksOf(game.field)) {
            EXPECT_EQ(chunk, nullptr);
        }
        EXPECT_EQ(game.field.enemyImage, nullptr);
        game.startPlay();
        game.frame(20);
        game.press(SDLK_a);
        game.press(SDLK_s);
        game.frame(20);
        game.field.enemyShips[0]->energy = 0;
        game.field.enemyShips[1]->miniExploding = true;
        game.field.myShip->energy = 0;
        game.frame(20);
        // 45 steps of the explosions, and a frame in which the script removes the enemy
        for (int i = 0; i < 46; ++i) {
            game.frame(51);
        }
        EXPECT_EQ(game.field.myFirstShotCount, 1u);
        EXPECT_EQ(game.field.mySecondShotCount, 1u);
        EXPECT_EQ(game.field.enemiesAlive, 6);
        EXPECT_TRUE(game.field.quit);
    });
}

}  // namespace
