// SPDX-License-Identifier: MIT
#include "reliability/quicktour.h"

#include "graphics/display.h"
#include "objects/enemyship.h"
#include "objects/myship.h"
#include "playthrough/texts.h"

#include <cstring>
#include <sstream>

namespace reliability {
namespace {

constexpr Uint32 COUNT_DOWN_DIGIT_MS = 1001;
constexpr Uint32 SHORT_FRAME_MS = 40;

// In a row between the edges of the screen.
void lineEnemiesUp(BattleField& field) {
    for (int i = 0; i < BattleField::ENEMIES; ++i) {
        field.enemyShips[i]->xFloat = static_cast<float>(20 + 85 * i);
        field.enemyShips[i]->yFloat = 60;
    }
}

void flash(FlyingObject& object) {
    object.miniExploding = true;
    object.setMiniExplosionPosition(static_cast<int>(object.xFloat),
                                    static_cast<int>(object.yFloat));
}

}  // namespace

void quickTour(Running& game) {
    BattleField& field = game.field;
    switch (game.frame) {
    case 1:  // the next frame shows title, hint and the last digit of the countdown
        field.gamePhase = BattleField::PHASE_HINT;
        field.display->setCountDownPosAndStart(318, 220, 0);
        game.press(SDLK_RETURN);
        game.frameMs = COUNT_DOWN_DIGIT_MS;
        break;
    case 2:
        game.frameMs = FRAME_MS;
        lineEnemiesUp(field);
        flash(*field.myShip);
        flash(*field.enemyShips[0]);
        break;
    case 3:
        field.enemyShips[1]->setGoingLeft(true);
        field.enemyShips[2]->setGoingLeft(false);
        field.enemyShips[2]->setGoingRight(true);
        game.press(SDLK_a);
        game.press(SDLK_s);
        break;
    case 4:
        game.release(SDLK_a);
        game.release(SDLK_s);
        game.press(SDLK_LEFT);
        break;
    case 5:
        game.release(SDLK_LEFT);
        game.press(SDLK_RIGHT);
        break;
    case 6:
        game.release(SDLK_RIGHT);
        break;
    case 8:
        field.enemyShips[6]->energy = 0;
        break;
    case 10:  // a frame that is too short for a step shows the first picture of the explosion
        field.myShip->energy = 0;
        game.frameMs = SHORT_FRAME_MS;
        break;
    case 11:
        game.frameMs = FRAME_MS;
        break;
    default:
        break;
    }
}

std::string startText(bool fullscreen, bool noSound) {
    return std::string("Starting in ") + (fullscreen ? "fullscreen" : "window") + " mode...\n" +
           (noSound ? "" : "Starting with audio support...\n");
}

std::string birthText() {
    const std::string rule = "_____________________________________________________________\n";
    std::string text = rule + "MyShip was born:\n================\nMyShip::energy = 65\n"
                              "MyShip::maxTargets = 10\n";
    for (int own = 0; own < BattleField::ENEMIES; ++own) {
        text += rule + "enemyShip was born:\n===================\nenemyShip->energy = 10\n"
                       "EnemyShip::ownShipTargetList: ";
        for (int i = 0; i < 10; ++i) {
            text += i == own ? std::to_string(own) + " " : i < own ? "T " : "F ";
        }
        text += "\n";
    }
    return text;
}

std::string displayText() {
    return std::string("display was born:\n=================\n") + BANNER;
}

// One enemy and the player explode, laser and rocket hit the enemy above them, and the enemy whose
// explosion ends before the game does is taken out of the list.
std::string quickTourText() {
    return R"(shipTargetList[7] = NULL
shipTargetList[8] = NULL
shipTargetList[9] = NULL
nearestTarget: 3
FlyingObject->explode()
FlyingObject->explode()
MyShot hits Target 3 widht deathFactor 1 -> target energy = 9
MyShot hits Target 3 widht deathFactor 10 -> target energy = -1
FlyingObject->explode()
EnemyShip::ownShipTargetList: T T T T T T F F F F 

Good Bye World!
---------------
)";
}

// Laser and rocket fly past: three lines are not printed, one of them an explosion.
std::string quickTourTextWithoutHits() {
    constexpr char HITS[] = R"(MyShot hits Target 3 widht deathFactor 1 -> target energy = 9
MyShot hits Target 3 widht deathFactor 10 -> target energy = -1
FlyingObject->explode()
)";
    std::string text = quickTourText();
    return text.erase(text.find(HITS), std::strlen(HITS));
}

std::string farewellText(bool noSound) {
    return (noSound ? std::string() : FADE_OUT_LINES) + THANKS_LINES;
}

std::string wholeText(bool noSound, const std::string& tour) {
    return startText(false, noSound) + birthText() + displayText() + tour + farewellText(noSound);
}

std::string unexpectedLines(const std::string& error) {
    constexpr const char* EXPECTED[] = {
        "libpng error: ",
        "libpng warning: ",  // what is wrong with a picture
        "WARNING: You are using the SDL disk writer audio driver!",
        " Writing to file [/dev/null].",
        "CRITICAL: You are using the SDL disk i/o audio driver!",
        "CRITICAL:  Writing to file [/dev/null].",
    };
    std::istringstream in(error);
    std::string others;
    for (std::string line; std::getline(in, line);) {
        bool expected = line.empty();
        for (const char* beginning : EXPECTED) {
            expected = expected || line.compare(0, std::strlen(beginning), beginning) == 0;
        }
        others += expected ? "" : line + "\n";
    }
    return others;
}

}  // namespace reliability
