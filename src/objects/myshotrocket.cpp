// SPDX-License-Identifier: MIT
#include "objects/myshotrocket.h"

#include <cmath>
#include <cstdio>

namespace {

constexpr int DEATH_FACTOR = 10;  // one rocket destroys an enemy
constexpr double MAX_SPEED_UP_FACTOR = 1.6;
constexpr double ACCEL_UP_FACTOR = 0.5;
constexpr double ACCEL_SIDE_FACTOR = 0.8;
constexpr float MAX_SPEED_SIDE = 4.0f;
constexpr float START_SPEED_DOWN = 2.0f;  // it drops before the motor lifts it

constexpr float FARTHEST_TARGET_PX = 66666.0f;  // a target at this distance or beyond is not seen

// The rocket, 9 pixels wide, brings its left edge this far right of its target's: into the middle.
constexpr float AIM_RIGHT_OF_TARGET_PX = 16.0f;
constexpr double HANDOVER_DIVISOR = 1.6;

constexpr int MARKER_OUTSIDE_PX = 3;  // left of and above the target
constexpr int MARKER_INSIDE_PX = 7;   // back from the far edges, for marks of 13 pixels

}  // namespace

MyShotRocket::MyShotRocket(SDL_Surface* picture, int x, int y, int objectWidth, int objectHeight,
                           SDL_Surface* surface, int areaWidth, int areaHeight,
                           bool steeredFromOutside, FlyingObject** targetList, int targetCount,
                           SDL_Surface* topLeft, SDL_Surface* topRight, SDL_Surface* bottomLeft,
                           SDL_Surface* bottomRight)
    : MyShot(picture, x, y, objectWidth, objectHeight, surface, areaWidth, areaHeight,
             steeredFromOutside, targetList, targetCount),
      markerTopLeft(topLeft),
      markerTopRight(topRight),
      markerBottomLeft(bottomLeft),
      markerBottomRight(bottomRight) {
    deathFactor = DEATH_FACTOR;
    maxSpeedUp = static_cast<float>(maxSpeedUp * MAX_SPEED_UP_FACTOR);
    accelUp = static_cast<float>(accelUp * ACCEL_UP_FACTOR);
    accelLeft = static_cast<float>(accelLeft * ACCEL_SIDE_FACTOR);
    accelRight = static_cast<float>(accelRight * ACCEL_SIDE_FACTOR);
    speedUp = 0;
    speedDown = START_SPEED_DOWN;
    maxSpeedLeft = MAX_SPEED_SIDE;
    maxSpeedRight = MAX_SPEED_SIDE;
    targetIndex = nearestTargetListIndex();
    std::printf("nearestTarget: %i\n", targetIndex);
}

int MyShotRocket::nearestTargetListIndex() {
    float bestDistance = FARTHEST_TARGET_PX;
    int bestIndex = NO_TARGET;
    for (int i = 0; i < maxTargets; ++i) {
        const FlyingObject* target = shipTargetList[i];
        // A target that is dead but still there is reported with the same words as an empty slot.
        if (target == nullptr || target->energy <= 0) {
            std::printf("shipTargetList[%i] = NULL\n", i);
            continue;
        }
        const float distance =
            std::fabs(xFloat - target->xFloat) + std::fabs(yFloat - target->yFloat);
        if (bestDistance > distance) {
            bestDistance = distance;
            bestIndex = i;
        }
    }
    return bestIndex;
}

void MyShotRocket::control() {
    FlyingObject::control();
    if (targetIndex == NO_TARGET) {
        goingLeft = false;
        goingRight = false;
        return;
    }
    const FlyingObject* target = shipTargetList[targetIndex];
    if (target == nullptr) {
        targetIndex = nearestTargetListIndex();
        return;
    }
    // A change of direction may hand the speed over, so that the rocket swings instead of sliding.
    // To the right that takes exactly the hand-over speed, to the left anything above it.
    const float aim = xFloat - AIM_RIGHT_OF_TARGET_PX;
    if (target->xFloat > aim) {
        goingRight = true;
        goingLeft = false;
        if (speedLeft == maxSpeedLeft / HANDOVER_DIVISOR) {
            speedRight = speedLeft;
        }
    }
    if (aim > target->xFloat) {
        goingLeft = true;
        goingRight = false;
        if (speedRight > maxSpeedRight / HANDOVER_DIVISOR) {
            speedLeft = speedRight;
        }
    }
}

void MyShotRocket::show() {
    FlyingObject::show();
    if (targetIndex == NO_TARGET || shipTargetList[targetIndex] == nullptr) {
        return;
    }
    const FlyingObject* target = shipTargetList[targetIndex];
    const Sint16 left = static_cast<Sint16>(target->destRect.x - MARKER_OUTSIDE_PX);
    const Sint16 top = static_cast<Sint16>(target->destRect.y - MARKER_OUTSIDE_PX);
    const Sint16 right = static_cast<Sint16>(left + target->sourceRect.w - MARKER_INSIDE_PX);
    const Sint16 bottom = static_cast<Sint16>(top + target->sourceRect.h - MARKER_INSIDE_PX);
    markerRects[0].x = left;
    markerRects[0].y = top;
    markerRects[1].x = right;
    markerRects[1].y = top;
    markerRects[2].x = left;
    markerRects[2].y = bottom;
    markerRects[3].x = right;
    markerRects[3].y = bottom;
    SDL_BlitSurface(markerTopLeft, nullptr, screen, &markerRects[0]);
    SDL_BlitSurface(markerTopRight, nullptr, screen, &markerRects[1]);
    SDL_BlitSurface(markerBottomLeft, nullptr, screen, &markerRects[2]);
    SDL_BlitSurface(markerBottomRight, nullptr, screen, &markerRects[3]);
}
