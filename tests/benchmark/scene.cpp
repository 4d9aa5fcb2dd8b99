// SPDX-License-Identifier: MIT
// Tells what is on the screen in some frames of a game, one line of JSON for each of them:
//     kravoltix-scene GAME FIRST LAST
// The game has the clock and the keys that tools/bench gives it; nothing is drawn.
#include "benchmark/player.h"
#include "driver/battlefield.h"
#include "front/front.h"
#include "front/recording.h"
#include "graphics/display.h"
#include "graphics/qelstring.h"
#include "objects/enemyship.h"
#include "objects/myship.h"
#include "objects/myshot.h"
#include "pilot/undrawn.h"

#include <cstdio>
#include <cstdlib>
#include <new>
#include <string>
#include <unistd.h>

namespace {

constexpr int FIELD_WIDTH_PX = 640;
constexpr int FIELD_HEIGHT_PX = 480;
constexpr int STATUS_UNUSABLE = 2;

[[noreturn]] void stop(const std::string& message) {
    std::fprintf(stderr, "kravoltix-scene: %s\n", message.c_str());
    std::exit(STATUS_UNUSABLE);
}

// What a player counts in a frame.
struct Sight {
    int ships = 0;      // the player's too; those that explode, until their explosion has ended
    int exploding = 0;  // of these
    int enemyShots = 0;
    int lasers = 0;
    int lasersFired = 0;  // since the game began
    int titleLetters = 0;
    int countDown = -1;  // its digit, -1 for none
};

bool isOnScreen(const FlyingObject& object) {
    return object.xFloat > static_cast<float>(-object.width) && object.xFloat < FIELD_WIDTH_PX &&
           object.yFloat > static_cast<float>(-object.height) && object.yFloat < FIELD_HEIGHT_PX;
}

void countShip(const Ship& ship, Sight& sight) {
    if (ship.energy == ENERGY_EXPLODED || !isOnScreen(ship)) {
        return;
    }
    ++sight.ships;
    sight.exploding += ship.energy < 1 ? 1 : 0;
}

void countEnemy(const EnemyShip& enemy, Sight& sight) {
    countShip(enemy, sight);
    for (int slot = 0; slot < enemy.maxShot; ++slot) {
        sight.enemyShots += enemy.shotActive[slot] && isOnScreen(*enemy.shots[slot]) ? 1 : 0;
    }
}

void countFight(const BattleField& field, Sight& sight) {
    countShip(*field.myShip, sight);
    for (int i = 0; i < BattleField::ENEMIES; ++i) {
        countEnemy(*field.enemyShips[i], sight);
    }
    for (Uint32 slot = 0; slot < field.myFirstShotCount; ++slot) {
        const bool flies = field.myFirstShotActive[slot];
        sight.lasers += flies && isOnScreen(*field.myFirstShotList[slot]) ? 1 : 0;
    }
    sight.lasersFired = static_cast<int>(field.myFirstShotCount);
}

Sight look(const BattleField& field) {
    Sight sight;
    switch (field.gamePhase) {
    case BattleField::PHASE_TITLE:
        sight.titleLetters = field.titleText->shown;
        break;
    case BattleField::PHASE_COUNT_DOWN:
        sight.countDown = field.display->countDownValue;
        break;
    case BattleField::PHASE_PLAY:
        countFight(field, sight);
        break;
    default:
        break;
    }
    return sight;
}

void tell(Uint32 frame, const Sight& sight, std::FILE* out) {
    std::fprintf(out,
                 "{\"frame\": %u, \"ships\": %d, \"exploding\": %d, \"enemyShots\": %d, "
                 "\"lasers\": %d, \"lasersFired\": %d, \"titleLetters\": %d, \"countDown\": %d}\n",
                 frame, sight.ships, sight.exploding, sight.enemyShots, sight.lasers,
                 sight.lasersFired, sight.titleLetters, sight.countDown);
}

// The game prints to standard output as well: what it prints goes nowhere.
std::FILE* takeOutput() {
    const int kept = dup(STDOUT_FILENO);
    std::FILE* out = kept < 0 ? nullptr : fdopen(kept, "w");
    if (out == nullptr || std::freopen("/dev/null", "w", stdout) == nullptr) {
        stop("no standard output");
    }
    return out;
}

Uint32 frameNumber(const char* word) {
    if (!front::isNumber(word)) {
        stop(std::string(word) + " is no number of a frame");
    }
    return static_cast<Uint32>(std::strtoul(word, nullptr, 10));
}

}  // namespace

int main(int count, char** words) {
    if (count != 4) {
        stop("usage: kravoltix-scene GAME FIRST LAST");
    }
    front::Recording game;
    std::string error;
    if (!front::readRecording(words[1], game, error)) {
        stop(error);
    }
    const Uint32 first = frameNumber(words[2]);
    const Uint32 last = frameNumber(words[3]);
    std::FILE* out = takeOutput();

    auto* field = static_cast<BattleField*>(operator new(sizeof(BattleField)));
    benchmark::Player player(game.given);
    pilot::stopDrawing();
    player.putHooks();
    front::hooks().SDL_Flip = [&](SDL_Surface*) {
        player.endFrame();
        if (player.frame() >= first) {
            tell(player.frame(), look(*field), out);
        }
        if (player.frame() >= last) {
            std::fclose(out);
            _exit(EXIT_SUCCESS);
        }
        return 0;
    };
    new (field) BattleField(FIELD_WIDTH_PX, FIELD_HEIGHT_PX, false, true);
    stop("the game ends before frame " + std::to_string(last));
}
