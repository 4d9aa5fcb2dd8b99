// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_REPLAY_SOUNDTRACK_H
#define KRAVOLTIX_REPLAY_SOUNDTRACK_H

#include "front/recording.h"

#include <string>
#include <vector>

// A game's sounds as one wave, mixed from its calls of the mixer and the clock of each. A sound
// begins with the very sample of its call: no mixer's buffer shifts it.
namespace replay {

// What the game opens the mixer with: 16 bits, mono.
constexpr Uint32 SOUND_HZ = 22050;

using Wave = std::vector<Sint16>;

// The sample that stands at this time, to the nearest.
size_t sampleAt(Uint64 ms);

// Everything between two readings of the game's clock. Sounds are read from the folder of the game's
// data; throws Trouble when one cannot be.
Wave mixSoundtrack(const std::vector<front::LibraryCall>& calls, Uint32 startMs, Uint32 endMs,
                   const std::string& dataFolder);

// Throws Trouble when the file cannot be written.
void writeWav(const std::string& path, const Wave& wave);

}  // namespace replay

#endif
