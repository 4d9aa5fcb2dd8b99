// SPDX-License-Identifier: MIT
#include "pilot/foresight.h"

#include "objects/enemyship.h"
#include "objects/formation7bird.h"
#include "objects/shot.h"

#include <algorithm>
#include <cmath>

namespace pilot {
namespace {

// The player's laser: where its hit point starts, from the ship's corner, in pixels.
constexpr float LASER_X = 18;
constexpr float LASER_HIT_Y = -6 + 24;
constexpr float LASER_SPEED = 0.44f;  // pixels per millisecond
constexpr Uint32 LASER_LIFETIME_MS = 1000;
constexpr Uint32 LASER_STEP_MS = 10;

// The player's rocket: where it starts, from the ship's corner, its size, and how it flies.
constexpr float ROCKET_X = 15;
constexpr float ROCKET_Y = 26;
constexpr int ROCKET_WIDTH_PX = 9;
constexpr int ROCKET_HEIGHT_PX = 15;
constexpr float ROCKET_HIT_Y = 24;
constexpr float ROCKET_AIM_X = 16;  // right of its target's edge
constexpr float ROCKET_MAX_UP = 8;
constexpr float ROCKET_MAX_SIDE = 4;
constexpr float ROCKET_ACCEL_UP = 0.003f;
constexpr float ROCKET_ACCEL_SIDE = 0.0064f;
constexpr float ROCKET_DROP = 2;

// How deep a shot has to come for sure, in pixels: it flies seven in a frame of 60 a second.
constexpr float DEPTH_PX = 4;

// An enemy shot: its centre line, and where it hits, from the ship's upper edge, in pixels.
constexpr float SHOT_CENTRE_X = 6;
constexpr float HIT_FROM_Y = 18;

// How much nearer than a hit is too near, in pixels: a step of the foresight, and a bit of doubt.
constexpr float MARGIN_PX = 5;

void setFlags(FlyingObject& object, const Stick& stick) {
    object.setGoingLeft(stick.left);
    object.setGoingRight(stick.right);
    object.setGoingUp(stick.up);
    object.setGoingDown(stick.down);
}

// A copy that can be flown without being seen or heard.
template <typename Object> Object ghostOf(const Object& object) {
    Object ghost = object;
    ghost.miniExploding = false;
    return ghost;
}

bool isInGame(const EnemyShip& enemy) {
    return enemy.ownShipTargetList[enemy.ownIndex] != nullptr;
}

FlyingObject rocketAt(Point place) {
    FlyingObject rocket(nullptr, 0, 0, ROCKET_WIDTH_PX, ROCKET_HEIGHT_PX, nullptr, 0, 0, false);
    rocket.xFloat = place.x;
    rocket.yFloat = place.y;
    rocket.maxSpeedUp = ROCKET_MAX_UP;
    rocket.maxSpeedLeft = ROCKET_MAX_SIDE;
    rocket.maxSpeedRight = ROCKET_MAX_SIDE;
    rocket.accelUp = ROCKET_ACCEL_UP;
    rocket.accelLeft = ROCKET_ACCEL_SIDE;
    rocket.accelRight = ROCKET_ACCEL_SIDE;
    rocket.speedDown = ROCKET_DROP;
    rocket.setGoingUp(true);
    rocket.setFrameDelay(Foresight::STEP_MS);
    return rocket;
}

}  // namespace

Foresight::Foresight(const BattleField& field, const Keyboard& keyboard, Uint32 nowMs,
                     Uint32 handMs)
    : hand(handMs), shipThen(ghostOf(*field.myShip)) {
    flyShip(keyboard, nowMs);
    flyEnemies(field);
    seeShots(field);
}

void Foresight::flyShip(const Keyboard& keyboard, Uint32 nowMs) {
    for (Uint32 ms = 0; ms < hand; ms += STEP_MS) {
        setFlags(shipThen, keyboard.stickAt(nowMs + ms));
        shipThen.setFrameDelay(std::min(STEP_MS, hand - ms));
        shipThen.control();
    }
}

// Ships of the formation move twice, by the script and by the formation, as in the game.
void Foresight::flyEnemies(const BattleField& field) {
    std::vector<FlyingObject> ghosts;
    FlyingObject* members[BattleField::ENEMIES] = {};
    ghosts.reserve(BattleField::ENEMIES);
    for (int i = 0; i < BattleField::ENEMIES; ++i) {
        const EnemyShip& enemy = *field.enemyShips[i];
        isTarget[i] = isInGame(enemy) && enemy.energy > 0;
        ghosts.push_back(ghostOf<FlyingObject>(enemy));
        ghosts.back().setFrameDelay(STEP_MS);
        members[i] = isTarget[i] ? &ghosts.back() : nullptr;
    }
    FormationSevenBird formation = *field.formation;
    formation.ships = members;
    for (Uint32 ms = 0; ms <= hand + TRACK_MS; ms += STEP_MS) {
        for (size_t i = 0; i < ghosts.size(); ++i) {
            tracks[i].push_back({ghosts[i].xFloat, ghosts[i].yFloat});
            if (members[i] != nullptr) {
                members[i]->control();
            }
        }
        formation.control();
    }
}

void Foresight::seeShots(const BattleField& field) {
    for (int i = 0; i < BattleField::ENEMIES; ++i) {
        const EnemyShip& enemy = *field.enemyShips[i];
        for (int k = 0; isInGame(enemy) && k < enemy.maxShot; ++k) {
            if (!enemy.shotActive[k] || !enemy.shots[k]->active) {
                continue;
            }
            const Shot& shot = *enemy.shots[k];
            shots.push_back(
                {shot.xFloat + SHOT_CENTRE_X, shot.yFloat, shot.speedDown * shot.speedScale});
        }
    }
}

Outlook Foresight::outlook(const Stick& stick, Uint32 holdMs) const {
    MyShip ghost = shipThen;
    ghost.setFrameDelay(STEP_MS);
    Uint32 safeMs = LOOK_AHEAD_MS;
    for (Uint32 ms = 0; ms < LOOK_AHEAD_MS; ms += STEP_MS) {
        setFlags(ghost, ms < holdMs ? stick : Stick());
        ghost.control();
        if (safeMs == LOOK_AHEAD_MS && isHit(ghost, hand + ms + STEP_MS)) {
            safeMs = ms;
        }
    }
    return {safeMs, {ghost.xFloat, ghost.yFloat}};
}

bool Foresight::isHit(const MyShip& at, Uint32 ms) const {
    const float left = at.xFloat - MARGIN_PX;
    const float right = at.xFloat + static_cast<float>(at.width) + MARGIN_PX;
    const float top = at.yFloat + HIT_FROM_Y - MARGIN_PX;
    const float bottom = at.yFloat + static_cast<float>(at.height) + MARGIN_PX;
    return std::any_of(shots.begin(), shots.end(), [=](const FallingShot& shot) {
        const float y = shot.y + shot.speed * static_cast<float>(ms);
        return shot.centreX > left && shot.centreX < right && y > top && y < bottom;
    });
}

Point Foresight::enemyAt(int enemy, Uint32 ms) const {
    const std::vector<Point>& track = tracks[enemy];
    const size_t step = ms / STEP_MS;
    if (step + 1 >= track.size()) {
        return track.back();
    }
    const float part = static_cast<float>(ms % STEP_MS) / static_cast<float>(STEP_MS);
    const Point& from = track[step];
    const Point& to = track[step + 1];
    return {from.x + part * (to.x - from.x), from.y + part * (to.y - from.y)};
}

int Foresight::laserHits(Point from, Uint32 firedAtMs) const {
    for (Uint32 age = 0; age <= LASER_LIFETIME_MS; age += LASER_STEP_MS) {
        const Point hitPoint = {from.x + LASER_X,
                                from.y + LASER_HIT_Y - LASER_SPEED * static_cast<float>(age)};
        const int enemy = enemyAround(hitPoint, firedAtMs + age);
        if (enemy != NOBODY) {
            return enemy;
        }
    }
    return NOBODY;
}

int Foresight::rocketHits(Point from, Uint32 firedAtMs) const {
    FlyingObject rocket = rocketAt({from.x + ROCKET_X, from.y + ROCKET_Y});
    const int target = nearestEnemy({rocket.xFloat, rocket.yFloat}, firedAtMs);
    for (Uint32 ms = firedAtMs; ms < hand + TRACK_MS && target != NOBODY; ms += STEP_MS) {
        rocket.control();
        const float aim = rocket.xFloat - ROCKET_AIM_X;
        rocket.setGoingRight(enemyAt(target, ms).x > aim);
        rocket.setGoingLeft(aim > enemyAt(target, ms).x);
        const int enemy = enemyAround({rocket.xFloat, rocket.yFloat + ROCKET_HIT_Y}, ms);
        if (enemy != NOBODY) {
            return enemy == target ? target : NOBODY;
        }
    }
    return NOBODY;
}

// By the sum of both distances, as a rocket chooses.
int Foresight::nearestEnemy(Point from, Uint32 ms) const {
    int nearest = NOBODY;
    float least = 0;
    for (int i = 0; i < BattleField::ENEMIES; ++i) {
        const Point corner = enemyAt(i, ms);
        const float distance = std::fabs(from.x - corner.x) + std::fabs(from.y - corner.y);
        if (isTarget[i] && (nearest == NOBODY || distance < least)) {
            nearest = i;
            least = distance;
        }
    }
    return nearest;
}

// Of two that overlap, the one that comes first in the list.
int Foresight::enemyAround(Point hitPoint, Uint32 ms) const {
    for (int i = 0; i < BattleField::ENEMIES; ++i) {
        if (isTarget[i] && isInside(hitPoint, i, ms)) {
            return i;
        }
    }
    return NOBODY;
}

// Only what is on the screen can be hit.
bool Foresight::isInside(Point hitPoint, int enemy, Uint32 ms) const {
    const Point corner = enemyAt(enemy, ms);
    const float size = static_cast<float>(shipThen.width);
    const float top = std::max(corner.y, 0.0f) + DEPTH_PX;
    return hitPoint.x > std::max(corner.x, 0.0f) && hitPoint.x < corner.x + size &&
           hitPoint.y > top && hitPoint.y < corner.y + size - DEPTH_PX;
}

}  // namespace pilot
