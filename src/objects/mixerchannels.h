// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_OBJECTS_MIXERCHANNELS_H
#define KRAVOLTIX_OBJECTS_MIXERCHANNELS_H

// Each kind of sound has its mixer channel; a new sound on a channel cuts the one before it.
enum MixerChannel {
    CHANNEL_FRONT = 1,  // keyboard, intro and laser
    CHANNEL_ROCKET = 2,
    CHANNEL_EXPLOSION = 3,
    CHANNEL_MINI_EXPLOSION = 4,  // the flash of a hit
};

// Arguments of Mix_PlayChannelTimed: once, and to the sound's end.
constexpr int PLAY_ONCE = 0;
constexpr int NO_TIME_LIMIT = -1;

#endif
