// SPDX-License-Identifier: MIT
#include "pilot/undrawn.h"

#include "front/front.h"

#include <algorithm>

namespace pilot {
namespace {

constexpr int FAILED = -1;

// One axis of a blit: a stretch of the picture and the place of its start on the target.
struct Stretch {
    int from;
    int length;
    int to;
};

// Cuts off what lies outside the picture, then what lies outside the target's clip.
Stretch clipped(Stretch stretch, int pictureLength, int clipFrom, int clipLength) {
    if (stretch.from < 0) {
        stretch.length += stretch.from;
        stretch.to -= stretch.from;
        stretch.from = 0;
    }
    stretch.length = std::min(stretch.length, pictureLength - stretch.from);
    const int before = clipFrom - stretch.to;
    if (before > 0) {
        stretch.length -= before;
        stretch.to += before;
    }
    stretch.length = std::min(stretch.length, clipFrom + clipLength - stretch.to);
    return stretch;
}

}  // namespace

void clipBlit(const SDL_Surface* from, const SDL_Rect* fromRect, const SDL_Surface* to,
              SDL_Rect* toRect) {
    if (toRect == nullptr) {
        return;
    }
    Stretch x = {0, from->w, toRect->x};
    Stretch y = {0, from->h, toRect->y};
    if (fromRect != nullptr) {
        x = {fromRect->x, fromRect->w, toRect->x};
        y = {fromRect->y, fromRect->h, toRect->y};
    }
    x = clipped(x, from->w, to->clip_rect.x, to->clip_rect.w);
    y = clipped(y, from->h, to->clip_rect.y, to->clip_rect.h);
    const bool isSeen = x.length > 0 && y.length > 0;
    toRect->x = static_cast<Sint16>(x.to);
    toRect->y = static_cast<Sint16>(y.to);
    toRect->w = static_cast<Uint16>(isSeen ? x.length : 0);
    toRect->h = static_cast<Uint16>(isSeen ? y.length : 0);
}

void stopDrawing() {
    front::Hooks& hooks = front::hooks();
    hooks.SDL_FillRect = [](SDL_Surface*, SDL_Rect*, Uint32) { return 0; };
    hooks.SDL_UpperBlit = [](SDL_Surface* from, SDL_Rect* fromRect, SDL_Surface* to,
                             SDL_Rect* toRect) {
        if (from == nullptr || to == nullptr) {
            return FAILED;
        }
        clipBlit(from, fromRect, to, toRect);
        return 0;
    };
}

}  // namespace pilot
