// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_PILOT_UNDRAWN_H
#define KRAVOLTIX_PILOT_UNDRAWN_H

#include <SDL.h>

namespace pilot {

// From now on nothing is drawn in this process. Games stay the same move by move: no rule looks at
// a pixel, and the rectangles that SDL writes back with each blit, which the hit test reads, are
// written all the same.
void stopDrawing();

// What SDL makes of the two rectangles of a blit, either of which may be null; writes the visible
// part to `toRect`.
void clipBlit(const SDL_Surface* from, const SDL_Rect* fromRect, const SDL_Surface* to,
              SDL_Rect* toRect);

}  // namespace pilot

#endif
