// SPDX-License-Identifier: MIT
#include "objects/myshot.h"

#include "objects/truncated.h"

#include <cstdio>

namespace {

// The hit point lies below the shot itself: a shot strikes when it is seen deep inside its target,
// not when its tip first touches the wings.
constexpr int HIT_POINT_BELOW_TOP_PX = 24;

// The mini explosion, 16 pixels square, is centred near the head of the shot.
constexpr int FLASH_LEFT_OF_SHOT_PX = 8;
constexpr int FLASH_ABOVE_SHOT_PX = 5;

}  // namespace

MyShot::MyShot(SDL_Surface* picture, int x, int y, int objectWidth, int objectHeight,
               SDL_Surface* surface, int areaWidth, int areaHeight, bool steeredFromOutside,
               FlyingObject** targetList, int targetCount)
    : Shot(picture, x, y, objectWidth, objectHeight, surface, areaWidth, areaHeight,
           steeredFromOutside),
      maxTargets(targetCount),
      shipTargetList(targetList) {}

bool MyShot::hittingTarget(bool startMiniExplosion) {
    const int x = truncated(xFloat);
    const int y = truncated(yFloat);
    for (int i = 0; i < maxTargets; ++i) {
        FlyingObject* target = shipTargetList[i];
        if (target == nullptr || target->energy <= 0 ||
            !target->isInRect(x, y + HIT_POINT_BELOW_TOP_PX)) {
            continue;
        }
        target->setEnergyRelative(-deathFactor);
        std::printf("MyShot hits Target %i widht deathFactor %i -> target energy = %i\n", i,
                    deathFactor, target->energy);
        if (startMiniExplosion) {
            target->miniExploding = true;
        }
        // Also without a start: a flash that is still running jumps here and begins anew.
        target->setMiniExplosionPosition(x - FLASH_LEFT_OF_SHOT_PX, y - FLASH_ABOVE_SHOT_PX);
        return true;
    }
    return false;
}
