// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_GRAPHICS_ANIMATIONSTEP_H
#define KRAVOLTIX_GRAPHICS_ANIMATIONSTEP_H

// Explosions and typed text advance by one step each time more than this many milliseconds have
// gathered. A step that is exactly filled does not end: 50 ms wait, 51 ms go on.
constexpr unsigned int ANIMATION_STEP_MS = 50;

#endif
