// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_REPLAY_SUMMARY_H
#define KRAVOLTIX_REPLAY_SUMMARY_H

#include "front/recording.h"

#include <string>

// What a player wants to know of a game, read from its recording.
namespace replay {

enum class Outcome { WON, LOST, LEFT, UNFINISHED, NOT_STARTED };

struct Summary {
    Outcome outcome = Outcome::UNFINISHED;
    Uint32 frames = 0;
    Uint32 lengthMs = 0;  // from the first picture to the last
    Uint32 playMs = 0;    // from the end of the countdown, 0 when play never began
    Uint32 lasersFired = 0;
    Uint32 laserHits = 0;
    Uint32 rocketsFired = 0;
    Uint32 rocketHits = 0;
    Uint32 enemiesDestroyed = 0;
    Uint32 energy = 0;  // at the end, as the display shows it
};

Summary summaryOf(const front::Recording& recording);

const char* wordFor(Outcome outcome);

// "1:05.250", in minutes, seconds and milliseconds
std::string lengthWords(Uint32 ms);

}  // namespace replay

#endif
