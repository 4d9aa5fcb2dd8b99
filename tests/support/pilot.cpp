// SPDX-License-Identifier: MIT
// Plays whole games in its own process, looking at the running game's objects, and writes what it
// did as scenarios for the unmodified program. tests/playthrough/README.md tells when to run it.
#include "driver/battlefield.h"
#include "front/front.h"
#include "front/scenario.h"
#include "objects/enemyship.h"
#include "objects/myship.h"
#include "objects/shot.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <fstream>
#include <new>

namespace {

using front::Scenario;

constexpr int FIELD_WIDTH_PX = 640;
constexpr int FIELD_HEIGHT_PX = 480;

constexpr Uint32 GIVE_UP_FRAME = 20000;
constexpr Uint32 KEY_HELD_FRAMES = 2;  // a quick finger
constexpr Uint32 KEY_RELEASED_FRAMES = 2;

// From the corner of the player's ship and from that of an enemy, in pixels.
constexpr float LASER_X = 19;
constexpr float SHIP_CENTRE_X = 19;
constexpr float AIM_PX = 8;    // fires when the shot will pass so close to the middle
constexpr float STEER_PX = 3;  // steers when the ship will come to rest farther off than this
constexpr float LASER_SPEED = 0.44f;    // pixels per millisecond
constexpr float BELOW_TARGET_PX = 110;  // the distance from which it shoots

// Enemy shots, and how far ahead the pilot looks for them.
constexpr float SHOT_CENTRE_X = 6;    // from the shot's corner
constexpr float SHOT_SPEED = 0.176f;  // pixels per millisecond
constexpr float MARGIN_PX = 4;
constexpr int LOOK_AHEAD_MS = 900;
constexpr int LOOK_STEP_MS = 20;

// How the ship coasts: its speed falls by this share of the acceleration.
constexpr float BRAKING = 0.88f;

enum class Aim {
    WIN,   // destroy all seven, three with rockets, then leave
    LOSE,  // fire a little, then stay below the enemies until the end
};

struct Game {
    const char* name;
    Aim aim;
    Uint32 introFrameMs;
    Uint32 playFrameMs;
};

constexpr Game GAMES[] = {
    {"won", Aim::WIN, 20, 20},
    {"lost", Aim::LOSE, 20, 20},
    // Frames just long enough for a step of every animation: few of them show every picture.
    {"tour", Aim::LOSE, 51, 50},
};

class Pilot {
public:
    Pilot(const Game& toPlay, const BattleField* running, std::ostream& target)
        : game(toPlay), field(running), out(target) {
        setFrameMs(game.introFrameMs);
    }

    Uint32 clock() const { return clockMs; }

    void sleep(Uint32 ms) { clockMs += ms; }

    // The frame has been drawn: looks at it and moves the keys.
    void frameShown() {
        clockMs += frameMs;
        if (field->gamePhase == BattleField::PHASE_HINT) {
            hold(SDLK_RETURN, true);
        } else if (field->gamePhase == BattleField::PHASE_PLAY) {
            play();
        } else {
            hold(SDLK_RETURN, false);
        }
        ++frame;
        if (field->gamePhase == BattleField::PHASE_PLAY && frameMs != game.playFrameMs) {
            setFrameMs(game.playFrameMs);
        }
        if (frame > GIVE_UP_FRAME) {
            giveUp("it takes too long");
        }
    }

    bool nextEvent(SDL_Event& event) {
        if (events.empty()) {
            return false;
        }
        event = events.front();
        events.pop_front();
        return true;
    }

private:
    void play() {
        if (game.aim == Aim::WIN && field->enemiesAlive == 0) {
            hold(SDLK_ESCAPE, true);
            return;
        }
        const EnemyShip* target = nearestEnemy();
        if (target == nullptr || field->myShip->energy <= 0) {
            releaseEverything();
            return;
        }
        steerBelow(*target);
        fire(SDLK_a, wantsLaser(*target));
        fire(SDLK_s, wantsRocket());
    }

    bool lives(const EnemyShip& enemy) const {
        return enemy.ownShipTargetList[enemy.ownIndex] != nullptr && enemy.energy > 0;
    }

    const EnemyShip* nearestEnemy() const {
        const EnemyShip* nearest = nullptr;
        float best = 0;
        for (int i = 0; i < BattleField::ENEMIES; ++i) {
            const EnemyShip& enemy = *field->enemyShips[i];
            const float distance = std::fabs(enemy.xFloat - field->myShip->xFloat);
            if (lives(enemy) && (nearest == nullptr || distance < best)) {
                nearest = &enemy;
                best = distance;
            }
        }
        return nearest;
    }

    // Enemies in formation move twice a frame.
    static float speedX(const EnemyShip& enemy) {
        const float moves = enemy.externallySteered ? 2 : 1;
        return moves * (enemy.speedRight - enemy.speedLeft) * enemy.speedScale;
    }

    float laserFlightMs(const EnemyShip& target) const {
        return (field->myShip->yFloat - target.yFloat) / LASER_SPEED;
    }

    // How far right of its middle the shot will pass the target.
    float miss(const EnemyShip& target, float shipX) const {
        const float targetX = target.xFloat + speedX(target) * laserFlightMs(target);
        return shipX + LASER_X - (targetX + SHIP_CENTRE_X);
    }

    // Where a coasting ship comes to rest.
    static float slide(float speed, float accel, float scale) {
        return speed <= 0 ? 0 : speed * speed * scale / (2 * BRAKING * accel);
    }

    void steerBelow(const EnemyShip& target) {
        const MyShip& ship = *field->myShip;
        const float restX = ship.xFloat + slide(ship.speedRight, ship.accelRight, ship.speedScale) -
                            slide(ship.speedLeft, ship.accelLeft, ship.speedScale);
        const float offX = miss(target, restX);
        const int side = sideBySafety(offX > STEER_PX ? -1 : offX < -STEER_PX ? 1 : 0);
        hold(SDLK_LEFT, side < 0);
        hold(SDLK_RIGHT, side > 0);
        const float restY = ship.yFloat + slide(ship.speedDown, ship.accelDown, ship.speedScale) -
                            slide(ship.speedUp, ship.accelUp, ship.speedScale);
        const float offY = restY - (target.yFloat + BELOW_TARGET_PX);
        hold(SDLK_UP, offY > STEER_PX);
        hold(SDLK_DOWN, offY < -STEER_PX);
    }

    // The wish, or the side that keeps the ship from harm for longer: -1 left, 1 right.
    int sideBySafety(int wish) const {
        int best = wish;
        if (game.aim == Aim::LOSE) {
            return best;
        }
        for (int side : {-1, 0, 1}) {
            if (msUntilHit(side) > msUntilHit(best)) {
                best = side;
            }
        }
        return best;
    }

    int msUntilHit(int side) const {
        const MyShip& ship = *field->myShip;
        float x = ship.xFloat;
        float speed = ship.speedRight - ship.speedLeft;
        for (int ms = 0; ms < LOOK_AHEAD_MS; ms += LOOK_STEP_MS) {
            if (wouldBeHit(x, ms)) {
                return ms;
            }
            speed += static_cast<float>(side * LOOK_STEP_MS) * ship.accelRight;
            speed = std::clamp(speed, -ship.maxSpeedLeft, ship.maxSpeedRight);
            x += speed * ship.speedScale * LOOK_STEP_MS;
            x = std::clamp(x, 0.0f, static_cast<float>(FIELD_WIDTH_PX - ship.width));
        }
        return LOOK_AHEAD_MS;
    }

    bool wouldBeHit(float shipX, int ms) const {
        const MyShip& ship = *field->myShip;
        for (int i = 0; i < BattleField::ENEMIES; ++i) {
            const EnemyShip& enemy = *field->enemyShips[i];
            for (int k = 0; lives(enemy) && k < enemy.maxShot; ++k) {
                if (!enemy.shotActive[k] || !enemy.shots[k]->active) {
                    continue;
                }
                const float x = enemy.shots[k]->xFloat + SHOT_CENTRE_X - shipX;
                const float y =
                    enemy.shots[k]->yFloat + SHOT_SPEED * static_cast<float>(ms) - ship.yFloat;
                if (x > -MARGIN_PX && x < static_cast<float>(ship.width) + MARGIN_PX && y > 0 &&
                    y < static_cast<float>(ship.height) + MARGIN_PX) {
                    return true;
                }
            }
        }
        return false;
    }

    int lasersInFlight() const {
        int count = 0;
        for (Uint32 i = 0; i < field->myFirstShotCount; ++i) {
            count += field->myFirstShotActive[i] ? 1 : 0;
        }
        return count;
    }

    bool rocketInFlight() const {
        for (Uint32 i = 0; i < field->mySecondShotCount; ++i) {
            if (field->mySecondShotActive[i]) {
                return true;
            }
        }
        return false;
    }

    bool wantsLaser(const EnemyShip& target) const {
        const bool closeBelow = target.yFloat > 0 &&
                                field->myShip->yFloat < target.yFloat + 2 * BELOW_TARGET_PX &&
                                field->myShip->yFloat > target.yFloat + BELOW_TARGET_PX / 2;
        const bool needed = target.energy > lasersInFlight() &&
                            (game.aim == Aim::WIN || target.energy > target.maxShot);
        return closeBelow && needed && std::fabs(miss(target, field->myShip->xFloat)) < AIM_PX;
    }

    bool wantsRocket() const {
        const Uint32 wanted = game.aim == Aim::WIN ? 3 : 1;
        if (field->mySecondShotCount >= wanted || rocketInFlight()) {
            return false;
        }
        // The nearest in both directions is what the rocket will take.
        for (int i = 0; i < BattleField::ENEMIES; ++i) {
            const EnemyShip& enemy = *field->enemyShips[i];
            if (lives(enemy) && enemy.yFloat > 0 &&
                std::fabs(enemy.xFloat - field->myShip->xFloat) < BELOW_TARGET_PX &&
                field->myShip->yFloat > enemy.yFloat + BELOW_TARGET_PX / 2) {
                return true;
            }
        }
        return false;
    }

    // One shot for each press, so the key is let go in between.
    void fire(SDLKey key, bool wanted) {
        const bool held = isHeld[key];
        const Uint32 since = frame - lastMoved[key];
        if (held && since >= KEY_HELD_FRAMES) {
            hold(key, false);
        } else if (!held && wanted && since >= KEY_RELEASED_FRAMES) {
            hold(key, true);
        }
    }

    void releaseEverything() {
        for (SDLKey key : {SDLK_a, SDLK_s, SDLK_UP, SDLK_DOWN, SDLK_LEFT, SDLK_RIGHT}) {
            hold(key, false);
        }
    }

    void hold(SDLKey key, bool held) {
        if (isHeld[key] == held) {
            return;
        }
        isHeld[key] = held;
        lastMoved[key] = frame;
        SDL_Event event = {};
        event.type = held ? SDL_KEYDOWN : SDL_KEYUP;
        event.key.keysym.sym = key;
        events.push_back(event);
        out << "frame " << frame << (held ? " down " : " up ") << front::keyWord(key) << '\n';
    }

    void setFrameMs(Uint32 ms) {
        frameMs = ms;
        out << "frame " << frame << " time " << ms << '\n';
    }

    void giveUp(const char* why) {
        std::fprintf(stderr, "pilot: %s\n", why);
        std::exit(1);
    }

    const Game& game;
    const BattleField* field;
    std::ostream& out;
    Uint32 clockMs = Scenario::DEFAULT_START_MS;
    Uint32 frameMs = 0;
    Uint32 frame = 1;  // the one being drawn, or just shown
    std::deque<SDL_Event> events;
    bool isHeld[SDLK_LAST] = {};
    Uint32 lastMoved[SDLK_LAST] = {};
};

void playThrough(const Game& game, std::ostream& out) {
    out << "# SPDX-License-Identifier: MIT\n# Written by the pilot.\n";
    BattleField* field = static_cast<BattleField*>(operator new(sizeof(BattleField)));
    Pilot* pilot = new Pilot(game, field, out);
    front::Hooks& hooks = front::hooks();
    hooks.SDL_GetTicks = [=] { return pilot->clock(); };
    hooks.SDL_Delay = [=](Uint32 ms) { pilot->sleep(ms); };
    hooks.SDL_PollEvent = [=](SDL_Event* event) { return pilot->nextEvent(*event) ? 1 : 0; };
    hooks.SDL_Flip = [=](SDL_Surface*) {
        pilot->frameShown();
        return 0;
    };
    new (field) BattleField(FIELD_WIDTH_PX, FIELD_HEIGHT_PX, false, true);
    if (game.aim == Aim::WIN && field->enemiesAlive > 0) {
        std::fprintf(stderr, "pilot: lost\n");
        std::exit(1);
    }
}

}  // namespace

int main(int argc, char* argv[]) {
    setenv("SDL_VIDEODRIVER", "dummy", 1);
    for (const Game& game : GAMES) {
        if (argc == 3 && std::strcmp(argv[1], game.name) == 0) {
            std::ofstream out(argv[2]);
            playThrough(game, out);
            out.flush();
            return out ? 0 : 1;
        }
    }
    std::fprintf(stderr, "Usage: kravoltix_pilot won|lost|tour FILE, in the data folder\n");
    return 1;
}
