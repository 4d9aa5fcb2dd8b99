// SPDX-License-Identifier: MIT
#include "pilot/pilot.h"

#include "objects/enemyship.h"
#include "objects/myshot.h"
#include "objects/myshotrocket.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace pilot {
namespace {

constexpr Uint32 LOOK_MS = 16;         // from one look at the fight to the next
constexpr Uint32 PATIENCE_MS = 60000;  // a fight that takes longer is left
constexpr Uint32 BREATH_MS = 500;      // from the end of the fight to the press of Escape

constexpr int ENEMY_ENERGY = 10;
constexpr int ROCKET_ENERGY = 10;  // what a rocket takes
constexpr int WORTH_A_ROCKET = 6;  // energy of an enemy that a rocket is not wasted on

// Where the pilot fires from, and how a laser shot gets from there to its target.
constexpr float BELOW_TARGET_PX = 170;  // from the enemy's corner to the ship's
constexpr float HIT_DEPTH_PX = 40;      // a shot hits about so far above the place it is fired at
constexpr float LASER_SPEED = 0.44f;    // pixels per millisecond
constexpr float LASER_HIT_Y = 24;       // from the shot's upper edge, in pixels

// It fires a rocket when that would hit from so far to the left and to the right, too.
constexpr float ROCKET_DOUBT_PX = 10;

// Efforts, in pixels of flight; a key for climbing or falling is worth half of one for the sides.
constexpr float VERTICAL_EFFORT = 0.5f;
constexpr float CHANGE_OF_TARGET = 80;
constexpr float PER_POINT_OF_ENERGY = 8;
constexpr float SEEN_FROM_Y = -24;        // an enemy above this cannot be fired at yet, and
constexpr float PER_PIXEL_TOO_HIGH = 20;  // falls so slowly
constexpr float PER_UNSAFE_MS = 3;
constexpr float TOURIST_FROM_Y = 60;  // well inside the screen

// How long keys are held in what the pilot imagines.
constexpr Uint32 TAPS_MS[] = {60, 160, 400};

bool isInGame(const EnemyShip& enemy) {
    return enemy.ownShipTargetList[enemy.ownIndex] != nullptr;
}

float effort(Point from, Point to) {
    return std::fabs(to.x - from.x) + VERTICAL_EFFORT * std::fabs(to.y - from.y);
}

}  // namespace

Pilot::Pilot(const Plan& whatToDo, const Habits& ownHabits, const BattleField& running,
             Keyboard& keys)
    : plan(whatToDo), habits(ownHabits), field(running), keyboard(keys), random(ownHabits.seed) {}

void Pilot::frameShown(Uint32 clockMs) {
    nowMs = clockMs;
    if (field.gamePhase == BattleField::PHASE_HINT) {
        passIntro();
    } else if (field.gamePhase == BattleField::PHASE_PLAY && plan.plays && !hasLeft) {
        play();
    }
}

void Pilot::passIntro() {
    if (hintMs == 0) {
        hintMs = nowMs;
        keyboard.strike(SDLK_RETURN, nowMs + habits.returnAfterMs);
    }
}

void Pilot::play() {
    if (playMs == 0) {
        playMs = nowMs;
    }
    if (hasFinished()) {
        leave();
    } else if (nowMs >= nextLookMs) {
        nextLookMs = nowMs + LOOK_MS;
        const Foresight ahead(field, keyboard, nowMs, habits.reactionMs);
        chooseTarget(ahead);
        steer(ahead);
        fireLaser(ahead);
        fireRocket(ahead);
    }
}

// No enemy that the stock suffices for, and all that was fired has come to its end.
bool Pilot::hasFinished() const {
    const Uint32 patienceMs = plan.escapeAfterMs > 0 ? plan.escapeAfterMs : PATIENCE_MS;
    if (nowMs - playMs >= patienceMs) {
        return true;
    }
    if (!plan.dodges || field.myShip->energy <= 0) {
        return false;
    }
    bool isFighting = false;
    for (int i = 0; i < BattleField::ENEMIES; ++i) {
        const EnemyShip& enemy = *field.enemyShips[i];
        const bool isExploding = isInGame(enemy) && enemy.energy <= 0;
        isFighting = isFighting || isExploding || aimedAt(i) > 0 || isPrey(i);
    }
    return !isFighting && (field.enemiesAlive == 0 || rocketsLeft() == 0);
}

void Pilot::leave() {
    hasLeft = true;
    for (SDLKey key : {SDLK_LEFT, SDLK_RIGHT, SDLK_UP, SDLK_DOWN}) {
        keyboard.hold(key, false, nowMs + habits.reactionMs);
    }
    keyboard.strike(SDLK_ESCAPE, nowMs + habits.reactionMs + BREATH_MS);
}

// The energy that shots on their way will take from an enemy, and those that the hand still owes.
int Pilot::aimedAt(int enemy) const {
    int energy = 0;
    for (size_t slot = 0; slot < laserTargets.size(); ++slot) {
        energy += laserTargets[slot] == enemy && mayStillHit(slot) ? 1 : 0;
    }
    return energy + ROCKET_ENERGY * rocketsAimedAt(enemy);
}

// Not yet fired, or still below the enemy that it was fired at.
bool Pilot::mayStillHit(size_t laser) const {
    if (laser >= field.myFirstShotCount) {
        return true;
    }
    const EnemyShip& enemy = *field.enemyShips[laserTargets[laser]];
    return field.myFirstShotActive[laser] &&
           field.myFirstShotList[laser]->yFloat + LASER_HIT_Y > enemy.yFloat;
}

int Pilot::rocketsAimedAt(int enemy) const {
    int count = 0;
    for (size_t slot = 0; slot < rocketTargets.size(); ++slot) {
        const bool isFired = slot < field.mySecondShotCount;
        if (isFired && field.mySecondShotActive[slot]) {
            count += field.mySecondShotList[slot]->targetIndex == enemy ? 1 : 0;
        } else if (!isFired) {
            count += rocketTargets[slot] == enemy ? 1 : 0;
        }
    }
    return count;
}

// An enemy that still needs shots. A fresh one is left alone when the stock that remains is owed to
// those that have been begun: half a victory is none.
bool Pilot::isPrey(int enemy) const {
    const int needed = shotsNeededFor(enemy);
    if (needed <= 0 || lasersLeft() == 0) {
        return false;
    }
    if (field.enemyShips[enemy]->energy < ENEMY_ENERGY || needed < ENEMY_ENERGY) {
        return true;
    }
    int owed = 0;
    for (int i = 0; i < BattleField::ENEMIES; ++i) {
        const int others = shotsNeededFor(i);
        owed += others < ENEMY_ENERGY - plan.leavesEnemy ? std::max(others, 0) : 0;
    }
    return lasersLeft() - owed >= needed;
}

int Pilot::shotsNeededFor(int enemy) const {
    const EnemyShip& ship = *field.enemyShips[enemy];
    if (!isInGame(ship) || ship.energy <= 0 || (!plan.dodges && ship.yFloat < TOURIST_FROM_Y)) {
        return 0;
    }
    return ship.energy - plan.leavesEnemy - aimedAt(enemy);
}

// Laser shots that neither have left nor are owed by the hand.
int Pilot::lasersLeft() const {
    return static_cast<int>(field.myFirstShotCount) + field.myShip->laserAmmo -
           static_cast<int>(laserTargets.size());
}

int Pilot::rocketsLeft() const {
    return plan.rockets - static_cast<int>(rocketTargets.size());
}

void Pilot::chooseTarget(const Foresight& ahead) {
    int best = Foresight::NOBODY;
    for (int i = 0; i < BattleField::ENEMIES; ++i) {
        if (isPrey(i) &&
            (best == Foresight::NOBODY || effortFor(i, ahead) < effortFor(best, ahead))) {
            best = i;
        }
    }
    target = best;
}

float Pilot::effortFor(int enemy, const Foresight& ahead) const {
    const Point place = firingPlace(enemy, ahead);
    const float tooHigh = SEEN_FROM_Y - ahead.enemyAt(enemy, habits.reactionMs).y;
    return effort({ahead.ship().xFloat, ahead.ship().yFloat}, place) +
           PER_PIXEL_TOO_HIGH * std::max(0.0f, tooHigh) +
           PER_POINT_OF_ENERGY * static_cast<float>(shotsNeededFor(enemy)) +
           (enemy == target ? 0 : CHANGE_OF_TARGET);
}

// Under the place at which a shot will meet the enemy.
Point Pilot::firingPlace(int enemy, const Foresight& ahead) const {
    constexpr float FLIGHT_MS = (BELOW_TARGET_PX - HIT_DEPTH_PX) / LASER_SPEED;
    const Point then = ahead.enemyAt(enemy, habits.reactionMs + static_cast<Uint32>(FLIGHT_MS));
    return {then.x, then.y + BELOW_TARGET_PX};
}

void Pilot::steer(const Foresight& ahead) {
    Point goal = {ahead.ship().xFloat, ahead.ship().yFloat};
    if (target != Foresight::NOBODY) {
        goal = firingPlace(target, ahead);
    }
    const Stick stick = bestStick(ahead, goal);
    const Uint32 then = nowMs + habits.reactionMs;
    keyboard.hold(SDLK_LEFT, stick.left, then);
    keyboard.hold(SDLK_RIGHT, stick.right, then);
    keyboard.hold(SDLK_UP, stick.up, then);
    keyboard.hold(SDLK_DOWN, stick.down, then);
}

Stick Pilot::bestStick(const Foresight& ahead, Point goal) const {
    Stick best;
    float leastCost = costOf(best, ahead, goal);
    for (int x : {0, -1, 1}) {
        for (int y : {0, -1, 1}) {
            const Stick stick = {x<0, x> 0, y<0, y> 0};
            const float cost = costOf(stick, ahead, goal);
            if (cost < leastCost) {
                best = stick;
                leastCost = cost;
            }
        }
    }
    return best;
}

// Safety first, then the way to the goal; of short and long taps, the best.
float Pilot::costOf(const Stick& stick, const Foresight& ahead, Point goal) const {
    float least = std::numeric_limits<float>::max();
    for (Uint32 tapMs : TAPS_MS) {
        const Outlook outlook = ahead.outlook(stick, tapMs);
        const Uint32 unsafeMs = plan.dodges ? Foresight::LOOK_AHEAD_MS - outlook.safeMs : 0;
        least = std::min(least,
                         PER_UNSAFE_MS * static_cast<float>(unsafeMs) + effort(outlook.rest, goal));
    }
    return least;
}

void Pilot::fireLaser(const Foresight& ahead) {
    const Uint32 then = nowMs + habits.reactionMs;
    if (lasersLeft() == 0 || !keyboard.canStrike(SDLK_a, then)) {
        return;
    }
    const MyShip& ship = ahead.ship();
    const float x = ship.xFloat + static_cast<float>(misjudgedPx);
    const int left = ahead.laserHits({x - plan.doubtPx, ship.yFloat}, habits.reactionMs);
    const int right = ahead.laserHits({x + plan.doubtPx, ship.yFloat}, habits.reactionMs);
    if (left == Foresight::NOBODY || left != right || !isPrey(left)) {
        return;
    }
    keyboard.strike(SDLK_a, then);
    laserTargets.push_back(left);
    misjudgedPx = random.between(-habits.misjudgedPx, habits.misjudgedPx);
}

bool Pilot::isWorthARocket(int enemy) const {
    const int needed = shotsNeededFor(enemy);
    return needed > 0 && (needed + plan.leavesEnemy >= WORTH_A_ROCKET || needed > lasersLeft());
}

void Pilot::fireRocket(const Foresight& ahead) {
    const Uint32 then = nowMs + habits.reactionMs;
    if (rocketsLeft() == 0 || !keyboard.canStrike(SDLK_s, then)) {
        return;
    }
    const MyShip& ship = ahead.ship();
    const int enemy =
        ahead.rocketHits({ship.xFloat - ROCKET_DOUBT_PX, ship.yFloat}, habits.reactionMs);
    const int other =
        ahead.rocketHits({ship.xFloat + ROCKET_DOUBT_PX, ship.yFloat}, habits.reactionMs);
    if (enemy == Foresight::NOBODY || enemy != other || !isWorthARocket(enemy)) {
        return;
    }
    keyboard.strike(SDLK_s, then);
    rocketTargets.push_back(enemy);
}

}  // namespace pilot
