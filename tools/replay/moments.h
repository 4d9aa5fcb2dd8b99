// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_REPLAY_MOMENTS_H
#define KRAVOLTIX_REPLAY_MOMENTS_H

#include "replay/game.h"

#include <string>
#include <vector>

// A game's telling moments: its title, its countdown, the formation, a hit, an explosion, its end.
// They are found by what the game plays and prints, so any game has its own.
namespace replay {

struct Moment {
    std::string name;
    Uint32 frame;
    Uint32 ms;  // of the game, from its first picture
};

// In the order of the game; a moment that the game does not have is left out.
std::vector<Moment> momentsOf(const front::Recording& recording);

struct MomentsOptions {
    std::string file;    // recording or scenario
    std::string folder;  // takes a picture for each, name.png; made when it is not there
    bool force = false;  // writes over pictures that are there
    Place place;
};

// The exit status.
int keepMoments(const MomentsOptions& options);

}  // namespace replay

#endif
