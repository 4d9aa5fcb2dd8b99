// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_PILOT_FORESIGHT_H
#define KRAVOLTIX_PILOT_FORESIGHT_H

#include "driver/battlefield.h"
#include "objects/myship.h"
#include "pilot/keyboard.h"

#include <vector>

namespace pilot {

struct Point {
    float x, y;
};

// What becomes of the ship when its pilot acts in one way.
struct Outlook {
    Uint32 safeMs;  // until an enemy shot hits, LOOK_AHEAD_MS when none does
    Point rest;     // where the ship stands then
};

// The next second of a running game, as a player sees it coming. It flies copies of the ships by
// the game's own rules, in larger steps than the game's frames. Shots that are not yet fired and
// free ships that turn are not foreseen.
//
// Times are milliseconds from now, positions pixels as in the game.
class Foresight {
public:
    static constexpr Uint32 STEP_MS = 20;
    static constexpr Uint32 LOOK_AHEAD_MS = 600;  // from the moment at which the hand moves
    static constexpr Uint32 TRACK_MS = 2000;      // likewise, for the ways of the enemies

    // Sees `field` between two frames, at the clock reading `nowMs`. The pilot's next key moves
    // `handMs` from now, and until then the ship flies by the keys that are already decided.
    Foresight(const BattleField& field, const Keyboard& keyboard, Uint32 nowMs, Uint32 handMs);

    // The player's ship at the moment at which the hand moves.
    const MyShip& ship() const { return shipThen; }

    // The keys are held from that moment on for a while and then let go.
    Outlook outlook(const Stick& stick, Uint32 holdMs) const;

    // Where an enemy will be, the corner of its picture.
    Point enemyAt(int enemy, Uint32 ms) const;

    // The enemy that a laser shot from a ship at this place will hit, NOBODY for none.
    static constexpr int NOBODY = -1;
    int laserHits(Point from, Uint32 firedAtMs) const;

    // The same for a rocket; one that needs too long is not followed to its end.
    int rocketHits(Point from, Uint32 firedAtMs) const;

private:
    struct FallingShot {
        float centreX, y;
        float speed;  // pixels per millisecond
    };

    void flyShip(const Keyboard& keyboard, Uint32 nowMs);
    void flyEnemies(const BattleField& field);
    void seeShots(const BattleField& field);
    bool isHit(const MyShip& at, Uint32 ms) const;
    int nearestEnemy(Point from, Uint32 ms) const;
    int enemyAround(Point hitPoint, Uint32 ms) const;
    bool isInside(Point hitPoint, int enemy, Uint32 ms) const;

    Uint32 hand;
    MyShip shipThen;
    std::vector<FallingShot> shots;
    bool isTarget[BattleField::ENEMIES] = {};
    std::vector<Point> tracks[BattleField::ENEMIES];  // a place for each step
};

}  // namespace pilot

#endif
