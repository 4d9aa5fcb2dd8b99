// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_PILOT_BALANCE_H
#define KRAVOLTIX_PILOT_BALANCE_H

#include <SDL.h>

#include <ostream>

namespace pilot {

// Plays `games` games (seeds from 1 on) with each pilot that the balance is about, on a machine of
// 60 and on one of 1000 frames a second, at most `processes` of them at once, and writes what they
// came to. Tells its progress on standard error. False when a game has failed.
//
// A game is started once for each machine and waits at its hint; each game played is a copy of that
// process, so that the pictures are loaded, and the pools of shots filled, only once.
bool balance(Uint32 games, Uint32 processes, std::ostream& json);

}  // namespace pilot

#endif
