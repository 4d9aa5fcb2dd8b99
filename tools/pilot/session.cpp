// SPDX-License-Identifier: MIT
#include "pilot/session.h"

#include "front/front.h"
#include "front/scenario.h"
#include "objects/enemyship.h"
#include "objects/myship.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <new>

namespace pilot {
namespace {

constexpr int FIELD_WIDTH_PX = 640;
constexpr int FIELD_HEIGHT_PX = 480;
constexpr int ENEMY_ENERGY = 10;
constexpr int ROCKET_ENERGY = 10;  // what a rocket takes
constexpr Uint32 GIVE_UP_FRAME = front::Scenario::DEFAULT_LAST_FRAME;

}  // namespace

Session::Session(Uint32 framesPerSecond, std::ostream* scenario)
    : field(static_cast<BattleField*>(operator new(sizeof(BattleField)))),
      out(scenario),
      frameTimes(framesPerSecond),
      keyboard(scenario),
      clockMs(front::Scenario::DEFAULT_START_MS) {}

void Session::fixFrameTimes(Uint32 introMs, Uint32 playMs) {
    introFrameMs = introMs;
    playFrameMs = playMs;
}

Result Session::play(const std::function<void()>& atHint) {
    whenHintStands = atHint;
    putHooks();
    new (field) BattleField(FIELD_WIDTH_PX, FIELD_HEIGHT_PX, false, true);
    return result;
}

void Session::putHooks() {
    front::Hooks& hooks = front::hooks();
    hooks.SDL_GetTicks = [this] { return clockMs; };
    hooks.SDL_Delay = [this](Uint32 ms) { clockMs += ms; };
    hooks.SDL_PollEvent = [this](SDL_Event* event) { return keyboard.nextEvent(*event) ? 1 : 0; };
    hooks.SDL_Flip = [this](SDL_Surface*) {
        flipped();
        return 0;
    };
}

void Session::takeOver(const Plan& plan, const Habits& habits) {
    pilotHabits = habits;
    frameTimes.setLateFrames(habits.lateFramesPercent, Random(habits.seed));
    pilot = std::make_unique<Pilot>(plan, pilotHabits, *field, keyboard);
}

// The frame has been drawn; the keys that move now are seen by the game in this pass.
void Session::flipped() {
    ++frame;
    if (frame > GIVE_UP_FRAME) {
        std::fprintf(stderr, "kravoltix-pilot: the game does not end\n");
        std::exit(1);
    }
    if (pilot == nullptr && field->gamePhase == BattleField::PHASE_HINT) {
        whenHintStands();
    }
    tickClock();
    if (pilot != nullptr) {
        pilot->frameShown(clockMs);
    }
    keyboard.frameShown(frame, clockMs);
    watch();
}

void Session::tickClock() {
    const bool inPlay = field->gamePhase == BattleField::PHASE_PLAY;
    const Uint32 fixedMs = inPlay ? playFrameMs : introFrameMs;
    const Uint32 ms = fixedMs > 0 ? fixedMs : frameTimes.next();
    if (ms != frameMs && out != nullptr) {
        *out << "frame " << frame << " time " << ms << '\n';
    }
    frameMs = ms;
    clockMs += ms;
}

void Session::watch() {
    if (field->gamePhase != BattleField::PHASE_PLAY || isOver) {
        return;
    }
    if (playFromMs == 0) {
        playFromMs = clockMs;
        std::fill(std::begin(energies), std::end(energies), ENEMY_ENERGY);
    }
    countHits();
    const MyShip& ship = *field->myShip;
    result.playMs = clockMs - playFromMs;
    result.destroyed = BattleField::ENEMIES - field->enemiesAlive;
    result.energy = std::max(ship.energy, 0);
    result.lasers = static_cast<int>(field->myFirstShotCount);
    result.rockets = static_cast<int>(field->mySecondShotCount);
    result.lost = ship.energy <= 0;
    isOver = result.lost || field->enemiesAlive == 0;
}

// By the energy that the enemies have lost in the frame.
void Session::countHits() {
    for (int i = 0; i < BattleField::ENEMIES; ++i) {
        const int energy = field->enemyShips[i]->energy;
        if (energy == ENERGY_EXPLODED) {
            continue;
        }
        const int taken = energies[i] - energy;
        result.rocketHits += taken / ROCKET_ENERGY;
        result.laserHits += taken % ROCKET_ENERGY;
        energies[i] = energy;
    }
}

}  // namespace pilot
