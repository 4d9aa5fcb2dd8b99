// SPDX-License-Identifier: MIT
#include "objects/flyingobject.h"

#include "front/front.h"
#include "objects/flight.h"
#include "support/surfaces.h"

#include <gtest/gtest.h>

#include <cmath>
#include <type_traits>
#include <vector>

namespace {

constexpr int WIDTH = 39;  // pixels
constexpr int HEIGHT = 31;
constexpr int FIELD_WIDTH = 640;
constexpr int FIELD_HEIGHT = 480;

FlyingObject& makeObject(int x, int y, SDL_Surface* picture = nullptr,
                         SDL_Surface* screen = nullptr) {
    return make<FlyingObject>(picture, x, y, WIDTH, HEIGHT, screen, FIELD_WIDTH, FIELD_HEIGHT,
                              false);
}

using Move = void (FlyingObject::*)(bool);

// One of the four directions, with the fields that belong to it.
struct Direction {
    const char* name;
    Move move;
    void (FlyingObject::*wish)(bool);
    bool FlyingObject::*going;
    float FlyingObject::*speed;
    float FlyingObject::*maxSpeed;
    float FlyingObject::*accel;
    float FlyingObject::*position;
    float sign;  // of the way on the screen
    bool sideways;
};

// clang-format off
const Direction DIRECTIONS[] = {
    {"left", &FlyingObject::moveLeft, &FlyingObject::setGoingLeft, &FlyingObject::goingLeft,
     &FlyingObject::speedLeft, &FlyingObject::maxSpeedLeft, &FlyingObject::accelLeft,
     &FlyingObject::xFloat, -1, true},
    {"right", &FlyingObject::moveRight, &FlyingObject::setGoingRight, &FlyingObject::goingRight,
     &FlyingObject::speedRight, &FlyingObject::maxSpeedRight, &FlyingObject::accelRight,
     &FlyingObject::xFloat, 1, true},
    {"up", &FlyingObject::moveUp, &FlyingObject::setGoingUp, &FlyingObject::goingUp,
     &FlyingObject::speedUp, &FlyingObject::maxSpeedUp, &FlyingObject::accelUp,
     &FlyingObject::yFloat, -1, false},
    {"down", &FlyingObject::moveDown, &FlyingObject::setGoingDown, &FlyingObject::goingDown,
     &FlyingObject::speedDown, &FlyingObject::maxSpeedDown, &FlyingObject::accelDown,
     &FlyingObject::yFloat, 1, false},
};
// clang-format on

// One frame of a flight: held or let go, how long, and what follows.
struct MotionFrame {
    bool held;
    unsigned int ms;
    float speed;
    float position;
};

void expectMotion(const Direction& direction, const std::vector<MotionFrame>& frames) {
    FlyingObject& object = makeObject(300, 300);
    for (size_t i = 0; i < frames.size(); ++i) {
        SCOPED_TRACE(testing::Message() << direction.name << ", frame " << i + 1);
        object.setFrameDelay(frames[i].ms);
        (object.*direction.move)(frames[i].held);
        EXPECT_EQ(object.*direction.speed, frames[i].speed);
        EXPECT_EQ(object.*direction.position, frames[i].position);
    }
}

// What an object is

static_assert(std::is_same_v<decltype(FlyingObject::image), SDL_Surface*>);
static_assert(std::is_same_v<decltype(FlyingObject::frameDelay), Uint32>);
static_assert(std::is_same_v<decltype(FlyingObject::fieldWidth), int>);
static_assert(std::is_same_v<decltype(FlyingObject::fieldHeight), int>);
static_assert(std::is_same_v<decltype(FlyingObject::destRect), SDL_Rect>);
static_assert(std::is_same_v<decltype(FlyingObject::sourceRect), SDL_Rect>);
static_assert(std::is_same_v<decltype(FlyingObject::xFloat), float>);
static_assert(std::is_same_v<decltype(FlyingObject::yFloat), float>);
static_assert(std::is_same_v<decltype(FlyingObject::width), int>);
static_assert(std::is_same_v<decltype(FlyingObject::height), int>);
static_assert(std::is_same_v<decltype(FlyingObject::goingLeft), bool>);
static_assert(std::is_same_v<decltype(FlyingObject::goingRight), bool>);
static_assert(std::is_same_v<decltype(FlyingObject::goingUp), bool>);
static_assert(std::is_same_v<decltype(FlyingObject::goingDown), bool>);
static_assert(std::is_same_v<decltype(FlyingObject::externallySteered), bool>);
static_assert(std::is_same_v<decltype(FlyingObject::active), bool>);
static_assert(std::is_same_v<decltype(FlyingObject::speedScale), float>);
static_assert(std::is_same_v<decltype(FlyingObject::speedLeft), float>);
static_assert(std::is_same_v<decltype(FlyingObject::speedRight), float>);
static_assert(std::is_same_v<decltype(FlyingObject::speedUp), float>);
static_assert(std::is_same_v<decltype(FlyingObject::speedDown), float>);
static_assert(std::is_same_v<decltype(FlyingObject::maxSpeedLeft), float>);
static_assert(std::is_same_v<decltype(FlyingObject::maxSpeedRight), float>);
static_assert(std::is_same_v<decltype(FlyingObject::maxSpeedUp), float>);
static_assert(std::is_same_v<decltype(FlyingObject::maxSpeedDown), float>);
static_assert(std::is_same_v<decltype(FlyingObject::accelLeft), float>);
static_assert(std::is_same_v<decltype(FlyingObject::accelRight), float>);
static_assert(std::is_same_v<decltype(FlyingObject::accelUp), float>);
static_assert(std::is_same_v<decltype(FlyingObject::accelDown), float>);
static_assert(std::is_same_v<decltype(FlyingObject::screen), SDL_Surface*>);
static_assert(std::is_same_v<decltype(FlyingObject::explosionFrames), SDL_Surface**>);
static_assert(std::is_same_v<decltype(FlyingObject::explosionSourceRect), SDL_Rect>);
static_assert(std::is_same_v<decltype(FlyingObject::explosionDestRect), SDL_Rect>);
static_assert(std::is_same_v<decltype(FlyingObject::explosionWidth), int>);
static_assert(std::is_same_v<decltype(FlyingObject::explosionHeight), int>);
static_assert(std::is_same_v<decltype(FlyingObject::miniExplosionFrames), SDL_Surface**>);
static_assert(std::is_same_v<decltype(FlyingObject::miniExplosionRect), SDL_Rect>);
static_assert(std::is_same_v<decltype(FlyingObject::explosionTimer), Uint32>);
static_assert(std::is_same_v<decltype(FlyingObject::explosionFrame), Uint32>);
static_assert(std::is_same_v<decltype(FlyingObject::miniExplosionTimer), Uint32>);
static_assert(std::is_same_v<decltype(FlyingObject::miniExplosionFrame), Uint32>);
static_assert(std::is_same_v<decltype(FlyingObject::miniExploding), bool>);
static_assert(std::is_same_v<decltype(FlyingObject::lifeTime), Uint32>);
static_assert(std::is_same_v<decltype(FlyingObject::energy), int>);
static_assert(std::is_same_v<decltype(FlyingObject::explosionSound), Mix_Chunk*>);
static_assert(std::is_same_v<decltype(FlyingObject::miniExplosionSound), Mix_Chunk*>);

static_assert(std::is_constructible_v<FlyingObject, SDL_Surface*, int, int, int, int, SDL_Surface*,
                                      int, int, bool>);
static_assert(!std::is_polymorphic_v<FlyingObject>);
static_assert(std::is_same_v<decltype(&FlyingObject::control), void (FlyingObject::*)()>);
static_assert(
    std::is_same_v<decltype(&FlyingObject::setFrameDelay), void (FlyingObject::*)(unsigned int)>);
static_assert(std::is_same_v<decltype(&FlyingObject::show), int (FlyingObject::*)()>);
static_assert(
    std::is_same_v<decltype(&FlyingObject::setEnergyRelative), void (FlyingObject::*)(int)>);
static_assert(std::is_same_v<decltype(&FlyingObject::isInRect), bool (FlyingObject::*)(int, int)>);

TEST(FlyingObject, KeepsItsFieldsInTheOrderOfTheDesign) {
    FlyingObject& o = makeObject(0, 0);
    expectInThisOrder({
        {"image", &o.image},
        {"frameDelay", &o.frameDelay},
        {"fieldWidth", &o.fieldWidth},
        {"fieldHeight", &o.fieldHeight},
        {"destRect", &o.destRect},
        {"sourceRect", &o.sourceRect},
        {"xFloat", &o.xFloat},
        {"yFloat", &o.yFloat},
        {"width", &o.width},
        {"height", &o.height},
        {"goingLeft", &o.goingLeft},
        {"goingRight", &o.goingRight},
        {"goingUp", &o.goingUp},
        {"goingDown", &o.goingDown},
        {"externallySteered", &o.externallySteered},
        {"active", &o.active},
        {"speedScale", &o.speedScale},
        {"speedLeft", &o.speedLeft},
        {"speedRight", &o.speedRight},
        {"speedUp", &o.speedUp},
        {"speedDown", &o.speedDown},
        {"maxSpeedLeft", &o.maxSpeedLeft},
        {"maxSpeedRight", &o.maxSpeedRight},
        {"maxSpeedUp", &o.maxSpeedUp},
        {"maxSpeedDown", &o.maxSpeedDown},
        {"accelLeft", &o.accelLeft},
        {"accelRight", &o.accelRight},
        {"accelUp", &o.accelUp},
        {"accelDown", &o.accelDown},
        {"screen", &o.screen},
        {"explosionFrames", &o.explosionFrames},
        {"explosionSourceRect", &o.explosionSourceRect},
        {"explosionDestRect", &o.explosionDestRect},
        {"explosionWidth", &o.explosionWidth},
        {"explosionHeight", &o.explosionHeight},
        {"miniExplosionFrames", &o.miniExplosionFrames},
        {"miniExplosionRect", &o.miniExplosionRect},
        {"explosionTimer", &o.explosionTimer},
        {"explosionFrame", &o.explosionFrame},
        {"miniExplosionTimer", &o.miniExplosionTimer},
        {"miniExplosionFrame", &o.miniExplosionFrame},
        {"miniExploding", &o.miniExploding},
        {"lifeTime", &o.lifeTime},
        {"energy", &o.energy},
        {"explosionSound", &o.explosionSound},
        {"miniExplosionSound", &o.miniExplosionSound},
    });
}

// Construction

TEST(FlyingObject, StartsWithWhatItIsGiven) {
    SDL_Surface* const picture = makePicture(39, 31, RED);
    SDL_Surface* const screen = makeScreen();
    for (const bool steered : {false, true}) {
        FlyingObject& object =
            make<FlyingObject>(picture, 120, 70, 39, 31, screen, 640, 480, steered);
        EXPECT_EQ(object.image, picture);
        EXPECT_EQ(object.xFloat, 120.0f);
        EXPECT_EQ(object.yFloat, 70.0f);
        EXPECT_EQ(object.width, 39);
        EXPECT_EQ(object.height, 31);
        EXPECT_EQ(object.screen, screen);
        EXPECT_EQ(object.fieldWidth, 640);
        EXPECT_EQ(object.fieldHeight, 480);
        EXPECT_EQ(object.externallySteered, steered);
        EXPECT_EQ(Box(object.destRect), Box(120, 70, 39, 31));
        EXPECT_EQ(Box(object.sourceRect), Box(0, 0, 39, 31));
    }
}

TEST(FlyingObject, StartsActiveAndAtRest) {
    FlyingObject& object = makeObject(120, 70);
    EXPECT_TRUE(object.active);
    for (const Direction& direction : DIRECTIONS) {
        SCOPED_TRACE(direction.name);
        EXPECT_FALSE(object.*direction.going);
        EXPECT_EQ(object.*direction.speed, 0.0f);
        EXPECT_EQ(object.*direction.maxSpeed, 5.0f);
        EXPECT_EQ(object.*direction.accel, direction.sideways ? 0.008f : 0.006f);
    }
    EXPECT_EQ(object.speedScale, 0.088f);
    EXPECT_EQ(object.frameDelay, 0u);
    EXPECT_EQ(object.lifeTime, 0u);
    EXPECT_EQ(object.energy, 0);
}

TEST(FlyingObject, StartsWithoutExplosionsAndSounds) {
    FlyingObject& object = makeObject(120, 70);
    EXPECT_EQ(object.explosionFrames, nullptr);
    EXPECT_EQ(Box(object.explosionSourceRect), Box(0, 0, 0, 0));
    EXPECT_EQ(Box(object.explosionDestRect), Box(0, 0, 0, 0));
    EXPECT_EQ(object.explosionWidth, 0);
    EXPECT_EQ(object.explosionHeight, 0);
    EXPECT_EQ(object.miniExplosionFrames, nullptr);
    EXPECT_EQ(Box(object.miniExplosionRect), Box(0, 0, 0, 0));
    EXPECT_EQ(object.explosionTimer, 0u);
    EXPECT_EQ(object.explosionFrame, 0u);
    EXPECT_EQ(object.miniExplosionTimer, 0u);
    EXPECT_EQ(object.miniExplosionFrame, 0u);
    EXPECT_FALSE(object.miniExploding);
    EXPECT_EQ(object.explosionSound, nullptr);
    EXPECT_EQ(object.miniExplosionSound, nullptr);
}

TEST(FlyingObject, IsCutAtTheTopFromTheStartButNotAtTheLeft) {
    FlyingObject& above = makeObject(120, -5);
    EXPECT_EQ(Box(above.destRect), Box(120, -5, WIDTH, HEIGHT));
    EXPECT_EQ(Box(above.sourceRect), Box(0, 5, WIDTH, HEIGHT + 5));
    FlyingObject& leftOf = makeObject(-5, 70);
    EXPECT_EQ(Box(leftOf.destRect), Box(-5, 70, WIDTH, HEIGHT));
    EXPECT_EQ(Box(leftOf.sourceRect), Box(0, 0, WIDTH, HEIGHT));
}

// What the owner hands over

TEST(FlyingObject, AgesByEveryFrameTimeAndRemembersTheLast) {
    FlyingObject& object = makeObject(0, 0);
    object.setFrameDelay(16);
    object.setFrameDelay(7);
    EXPECT_EQ(object.frameDelay, 7u);
    EXPECT_EQ(object.lifeTime, 23u);
}

TEST(FlyingObject, StartsItsAgeAnewBeyondThirtyTwoBits) {
    FlyingObject& object = makeObject(0, 0);
    object.setFrameDelay(4294967295u);
    object.setFrameDelay(3);
    EXPECT_EQ(object.lifeTime, 2u);
}

TEST(FlyingObject, TakesEnergyGivenAndTaken) {
    FlyingObject& object = makeObject(0, 0);
    object.energy = 10;
    object.setEnergyRelative(-12);
    EXPECT_EQ(object.energy, -2);
    object.setEnergyRelative(5);
    EXPECT_EQ(object.energy, 3);
}

TEST(FlyingObject, TakesEachWishForADirectionAlone) {
    for (const Direction& wished : DIRECTIONS) {
        FlyingObject& object = makeObject(0, 0);
        (object.*wished.wish)(true);
        for (const Direction& other : DIRECTIONS) {
            SCOPED_TRACE(testing::Message() << wished.name << ", flag " << other.name);
            EXPECT_EQ(object.*other.going, &other == &wished);
        }
        (object.*wished.wish)(false);
        EXPECT_FALSE(object.*wished.going);
    }
}

TEST(FlyingObject, TellsItsTruePosition) {
    FlyingObject& object = makeObject(0, 0);
    object.xFloat = -3.75f;
    object.yFloat = 41.5f;
    EXPECT_EQ(object.getXFloat(), -3.75f);
    EXPECT_EQ(object.getYFloat(), 41.5f);
}

// Movement

// Worked out apart from the game, in double precision, and rounded to float after each step.
TEST(FlyingObject, GainsSpeedAndBrakesAsTheTableSays) {
    const struct {
        const Direction& direction;
        std::vector<MotionFrame> frames;
    } flights[] = {
        {DIRECTIONS[0],
         {{true, 10, 0.080000006f, 299.9296f},
          {true, 17, 0.216f, 299.60645f},
          {true, 33, 0.48000002f, 298.21252f},
          {true, 0, 0.48000002f, 298.21252f},
          {false, 25, 0.30400002f, 297.54373f},
          {false, 25, 0.128f, 297.26215f},
          {false, 25, -0.048f, 297.26215f},
          {false, 10, 0.0f, 297.26215f}}},
        {DIRECTIONS[1],
         {{true, 10, 0.080000006f, 300.0704f},
          {true, 17, 0.216f, 300.39355f},
          {true, 33, 0.48000002f, 301.78748f},
          {true, 0, 0.48000002f, 301.78748f},
          {false, 25, 0.30400002f, 302.45627f},
          {false, 25, 0.128f, 302.73785f},
          {false, 25, -0.048f, 302.73785f},
          {false, 10, 0.0f, 302.73785f}}},
        {DIRECTIONS[2],
         {{true, 10, 0.060000002f, 299.9472f},
          {true, 17, 0.162f, 299.70486f},
          {true, 33, 0.36f, 298.65942f},
          {true, 0, 0.36f, 298.65942f},
          {false, 25, 0.21000001f, 298.19742f},
          {false, 25, 0.060000006f, 298.06543f},
          {false, 25, -0.089999996f, 298.06543f},
          {false, 10, 0.0f, 298.06543f}}},
        {DIRECTIONS[3],
         {{true, 10, 0.060000002f, 300.0528f},
          {true, 17, 0.162f, 300.29514f},
          {true, 33, 0.36f, 301.34058f},
          {true, 0, 0.36f, 301.34058f},
          {false, 25, 0.21000001f, 301.80258f},
          {false, 25, 0.060000006f, 301.93457f},
          {false, 25, -0.089999996f, 301.93457f},
          {false, 10, 0.0f, 301.93457f}}},
    };
    for (const auto& flight : flights) {
        expectMotion(flight.direction, flight.frames);
    }
}

// The way of a frame is one product in double precision; in float, each of these would be off.
TEST(FlyingObject, RoundsItsWayOnlyOnceAFrame) {
    const struct {
        const Direction& direction;
        float from;
        float speed;
        unsigned int ms;
        float to;
    } ways[] = {
        {DIRECTIONS[0], 1.0f, 1.7f, 7, -0.047200024f},
        {DIRECTIONS[1], 1.0f, 1.7f, 13, 2.9448001f},
        {DIRECTIONS[2], 2.0f, 1.7f, 7, 0.9528f},
        {DIRECTIONS[3], 2.0f, 3.1f, 7, 3.9096f},
    };
    for (const auto& way : ways) {
        SCOPED_TRACE(way.direction.name);
        FlyingObject& object = makeObject(0, 0);
        object.*way.direction.position = way.from;
        object.*way.direction.speed = way.speed;
        object.*way.direction.maxSpeed = way.speed;
        object.setFrameDelay(way.ms);
        (object.*way.direction.move)(true);
        EXPECT_EQ(object.*way.direction.position, way.to);
    }
}

// Braking too is one product in double precision; what is left of the speed shows it.
TEST(FlyingObject, RoundsItsBrakingOnlyOnceAFrame) {
    const struct {
        const Direction& direction;
        float speed;
        unsigned int ms;
        float left;
    } brakings[] = {
        {DIRECTIONS[0], 2.2f, 312, 0.0035199434f},
        {DIRECTIONS[1], 2.0f, 284, 0.00063990505f},
        {DIRECTIONS[2], 1.7f, 283, 0.002000033f},
        {DIRECTIONS[3], 1.7f, 283, 0.002000033f},
    };
    for (const auto& braking : brakings) {
        SCOPED_TRACE(braking.direction.name);
        FlyingObject& object = makeObject(0, 0);
        object.*braking.direction.speed = braking.speed;
        object.setFrameDelay(braking.ms);
        (object.*braking.direction.move)(false);
        EXPECT_EQ(object.*braking.direction.speed, braking.left);
    }
}

TEST(FlyingObject, HeldFromRestForASecondGainsEightHundredthsAFrameUntilItReachesFive) {
    for (const Direction& direction : {DIRECTIONS[0], DIRECTIONS[1]}) {
        SCOPED_TRACE(direction.name);
        FlyingObject& object = makeObject(300, 300);
        object.setFrameDelay(10);
        for (int frame = 1; frame <= 62; ++frame) {
            const float before = object.*direction.speed;
            (object.*direction.move)(true);
            EXPECT_NEAR(object.*direction.speed, before + 0.08f, 1e-6f);
        }
        EXPECT_EQ(object.*direction.speed, 4.9599977f);
        for (int frame = 63; frame <= 100; ++frame) {
            (object.*direction.move)(true);
            EXPECT_EQ(object.*direction.speed, 5.0399976f) << "frame " << frame;
        }
    }
}

TEST(FlyingObject, HeldUpOrDownGainsSixHundredthsAFrameUntilItReachesFive) {
    for (const Direction& direction : {DIRECTIONS[2], DIRECTIONS[3]}) {
        SCOPED_TRACE(direction.name);
        FlyingObject& object = makeObject(300, 300);
        object.setFrameDelay(10);
        for (int frame = 1; frame <= 83; ++frame) {
            (object.*direction.move)(true);
        }
        EXPECT_EQ(object.*direction.speed, 4.979996f);
        for (int frame = 84; frame <= 100; ++frame) {
            (object.*direction.move)(true);
            EXPECT_EQ(object.*direction.speed, 5.039996f) << "frame " << frame;
        }
    }
}

TEST(FlyingObject, GainsNothingAtItsTopSpeedAndAWholeStepJustBelow) {
    for (const Direction& direction : DIRECTIONS) {
        SCOPED_TRACE(direction.name);
        FlyingObject& object = makeObject(300, 300);
        object.*direction.maxSpeed = 2.0f;
        object.*direction.accel = 0.25f;
        object.setFrameDelay(4);
        object.*direction.speed = 2.0f;
        (object.*direction.move)(true);
        EXPECT_EQ(object.*direction.speed, 2.0f);
        object.*direction.speed = 1.5f;
        (object.*direction.move)(true);
        EXPECT_EQ(object.*direction.speed, 2.5f);
        (object.*direction.move)(true);
        EXPECT_EQ(object.*direction.speed, 2.5f);
    }
}

TEST(FlyingObject, MovesBySpeedTimesTimeTimesScaleWithoutTouchingTheOtherDirections) {
    for (const Direction& direction : DIRECTIONS) {
        SCOPED_TRACE(direction.name);
        FlyingObject& object = makeObject(300, 300);
        for (const Direction& each : DIRECTIONS) {
            object.*each.speed = 1.0f;
            object.*each.maxSpeed = 1.0f;
        }
        object.speedScale = 0.5f;
        object.*direction.speed = 3.0f;
        object.setFrameDelay(8);
        (object.*direction.move)(true);
        const float way = direction.sign * 12.0f;
        EXPECT_EQ(object.xFloat, direction.sideways ? 300.0f + way : 300.0f);
        EXPECT_EQ(object.yFloat, direction.sideways ? 300.0f : 300.0f + way);
        for (const Direction& other : DIRECTIONS) {
            EXPECT_EQ(object.*other.speed, &other == &direction ? 3.0f : 1.0f) << other.name;
        }
    }
}

TEST(FlyingObject, DoesNotMoveWithoutAWish) {
    FlyingObject& object = makeObject(300, 200);
    object.setFrameDelay(100);
    for (int frame = 0; frame < 3; ++frame) {
        object.control();
        EXPECT_EQ(object.xFloat, 300.0f);
        EXPECT_EQ(object.yFloat, 200.0f);
        for (const Direction& direction : DIRECTIONS) {
            EXPECT_EQ(object.*direction.speed, 0.0f) << direction.name;
        }
    }
}

TEST(FlyingObject, ChangesNothingInAFrameOfNoTime) {
    FlyingObject& object = makeObject(300, 200);
    for (const Direction& direction : DIRECTIONS) {
        object.*direction.going = true;
    }
    object.speedLeft = 1.25f;
    object.setFrameDelay(0);
    object.control();
    EXPECT_EQ(object.xFloat, 300.0f);
    EXPECT_EQ(object.yFloat, 200.0f);
    EXPECT_EQ(object.speedLeft, 1.25f);
    EXPECT_EQ(object.speedRight, 0.0f);
    EXPECT_EQ(object.speedUp, 0.0f);
    EXPECT_EQ(object.speedDown, 0.0f);
    EXPECT_EQ(Box(object.destRect), Box(300, 200, WIDTH, HEIGHT));
    EXPECT_EQ(Box(object.sourceRect), Box(0, 0, WIDTH, HEIGHT));
}

TEST(FlyingObject, TakesAnEndlessFrameForLongAndNotForNegative) {
    FlyingObject& object = makeObject(0, 0);
    object.speedScale = 0.0f;
    object.setFrameDelay(4294967295u);
    object.moveLeft(true);
    EXPECT_EQ(object.speedLeft, 34359740.0f);
}

TEST(FlyingObject, MovesByTheFlagsOfAllFourDirections) {
    for (const Direction& held : DIRECTIONS) {
        FlyingObject& object = makeObject(300, 300);
        object.*held.going = true;
        object.setFrameDelay(10);
        object.control();
        for (const Direction& each : DIRECTIONS) {
            SCOPED_TRACE(testing::Message() << held.name << ", speed " << each.name);
            const float gain = each.sideways ? 0.080000006f : 0.060000002f;
            EXPECT_EQ(object.*each.speed, &each == &held ? gain : 0.0f);
        }
    }
}

TEST(FlyingObject, SlidesOnAfterItWasReversed) {
    FlyingObject& object = makeObject(300, 300);
    object.speedRight = 2.0f;
    object.setGoingLeft(true);
    object.setFrameDelay(100);
    object.control();
    // left: 0.8 x 100 x 0.088 = 7.04 pixels; right: (2 - 0.704) x 100 x 0.088 = 11.4048 pixels
    EXPECT_NEAR(object.xFloat, 300 - 7.04 + 11.4048, 1e-4);
    EXPECT_NEAR(object.speedLeft, 0.8, 1e-6);
    EXPECT_NEAR(object.speedRight, 1.296, 1e-6);
}

// Beyond the edge the place on the screen stays where it was, which tells who went first.
TEST(FlyingObject, MovesLeftBeforeRightAndUpBeforeDown) {
    FlyingObject& object = makeObject(2, 2);
    object.speedScale = 1.0f;
    for (const Direction& direction : DIRECTIONS) {
        object.*direction.going = true;
        object.*direction.maxSpeed = 0.0f;
        object.*direction.speed = direction.sign < 0 ? 6.0f : 3.0f;
    }
    object.setFrameDelay(1);
    object.control();
    EXPECT_EQ(object.xFloat, -1.0f);
    EXPECT_EQ(object.yFloat, -1.0f);
    EXPECT_EQ(object.destRect.x, 2);
    EXPECT_EQ(object.destRect.y, 2);
}

TEST(FlyingObject, RunsOffTheFieldUnhindered) {
    FlyingObject& object = makeObject(630, 470);
    object.speedRight = object.speedDown = 5.0f;
    object.goingRight = object.goingDown = true;
    object.setFrameDelay(100);
    object.control();
    EXPECT_NEAR(object.xFloat, 674.0, 1e-3);
    EXPECT_NEAR(object.yFloat, 514.0, 1e-3);
}

// Place on the screen

struct PlaceCase {
    const char* rule;
    float position;
    int dest;  // 77 stands there before
    int source;
    int overhang;
};

const PlaceCase PLACES[] = {
    {"a place is cut to whole pixels", 120.9f, 120, 0, 0},
    {"the edge itself is inside", 0.0f, 0, 0, 0},
    {"less than a pixel beyond the edge is still at the edge", -0.99f, 0, 0, 0},
    {"one pixel beyond the edge hides one pixel", -1.0f, 77, 1, 1},
    {"3.7 pixels beyond hide three, and the last place stays", -3.7f, 77, 3, 3},
    {"the far side is not cut", 700.5f, 700, 0, 0},
    {"the last place that fits 16 bits", 32767.5f, 32767, 0, 0},
    {"beyond 16 bits the place wraps to the other side", 40000.0f, 77, 25536, 25536},
    {"beyond 32 bits the place is the edge", 3.0e9f, 0, 0, 0},
};

TEST(FlyingObject, FollowsItsTruePositionWithItsHorizontalPlace) {
    for (const Move move : {&FlyingObject::moveLeft, &FlyingObject::moveRight}) {
        for (const PlaceCase& place : PLACES) {
            SCOPED_TRACE(place.rule);
            FlyingObject& object = makeObject(0, 0);
            object.destRect = {77, 78, 5, 6};
            object.sourceRect = {79, 80, 7, 8};
            object.xFloat = place.position;
            object.yFloat = 50.0f;
            (object.*move)(false);
            EXPECT_EQ(Box(object.destRect), Box(place.dest, 78, 5, 6));
            EXPECT_EQ(Box(object.sourceRect), Box(place.source, 80, WIDTH + place.overhang, 8));
        }
    }
}

TEST(FlyingObject, FollowsItsTruePositionWithItsVerticalPlace) {
    for (const Move move : {&FlyingObject::moveUp, &FlyingObject::moveDown}) {
        for (const PlaceCase& place : PLACES) {
            SCOPED_TRACE(place.rule);
            FlyingObject& object = makeObject(0, 0);
            object.destRect = {78, 77, 5, 6};
            object.sourceRect = {80, 79, 7, 8};
            object.xFloat = 50.0f;
            object.yFloat = place.position;
            (object.*move)(false);
            EXPECT_EQ(Box(object.destRect), Box(78, place.dest, 5, 6));
            EXPECT_EQ(Box(object.sourceRect), Box(80, place.source, 7, HEIGHT + place.overhang));
        }
    }
}

// Hits

TEST(FlyingObject, HoldsAPointOnlyBetweenItsEdges) {
    const struct {
        const char* rule;
        int x, y;
        bool inside;
    } points[] = {
        {"the middle is inside", 120, 210, true},
        {"the left edge is outside", 100, 210, false},
        {"beside the left edge is inside", 101, 210, true},
        {"the right edge is outside", 139, 210, false},
        {"before the right edge is inside", 138, 210, true},
        {"the top edge is outside", 120, 200, false},
        {"below the top edge is inside", 120, 201, true},
        {"the bottom edge is outside", 120, 231, false},
        {"above the bottom edge is inside", 120, 230, true},
        {"left of it is outside", 60, 210, false},
        {"right of it is outside", 160, 210, false},
        {"above it is outside", 120, 190, false},
        {"below it is outside", 120, 250, false},
    };
    FlyingObject& object = makeObject(100, 200);
    for (const auto& point : points) {
        SCOPED_TRACE(point.rule);
        EXPECT_EQ(object.isInRect(point.x, point.y), point.inside);
    }
}

TEST(FlyingObject, IsHitWhereItIsSeenAndNotWhereItTrulyIs) {
    FlyingObject& object = makeObject(100, 200);
    object.xFloat = 400.0f;
    object.yFloat = 300.0f;
    object.width = object.height = 200;
    EXPECT_TRUE(object.isInRect(120, 210));
    EXPECT_FALSE(object.isInRect(420, 310));
    EXPECT_FALSE(object.isInRect(150, 210));
}

TEST(FlyingObject, IsHitOnlyOnThePartThatIsOnTheScreen) {
    Flight flight;
    SDL_Surface* const picture = makePicture(WIDTH, HEIGHT, RED);
    FlyingObject& object = makeObject(620, 460, picture, flight.screen);
    EXPECT_TRUE(object.isInRect(645, 470));
    object.show();
    EXPECT_EQ(Box(object.destRect), Box(620, 460, 20, 20));
    EXPECT_TRUE(object.isInRect(639, 479));
    EXPECT_FALSE(object.isInRect(640, 470));
    EXPECT_FALSE(object.isInRect(630, 480));
}

TEST(FlyingObject, CannotBeHitOnceItWasDrawnOffTheScreen) {
    Flight flight;
    SDL_Surface* const picture = makePicture(WIDTH, HEIGHT, RED);
    FlyingObject& object = makeObject(650, 460, picture, flight.screen);
    object.show();
    EXPECT_FALSE(object.isInRect(660, 470));
}

// Drawing

TEST(FlyingObject, HandsItsVeryRectanglesToSdl) {
    Flight flight;
    SDL_Surface* const picture = makePicture(WIDTH, HEIGHT, RED);
    FlyingObject& object = makeObject(100, 200, picture, flight.screen);
    EXPECT_EQ(object.show(), 0);
    ASSERT_EQ(flight.blits.size(), 1u);
    const Blit& blit = flight.blits[0];
    EXPECT_EQ(blit.picture, picture);
    EXPECT_EQ(blit.part, &object.sourceRect);
    EXPECT_EQ(blit.onto, flight.screen);
    EXPECT_EQ(blit.place, &object.destRect);
    const SDL_Rect seen = boxOf(flight.screen, RED);
    EXPECT_EQ(Box(seen), Box(100, 200, WIDTH, HEIGHT));
}

TEST(FlyingObject, TellsWhatSdlSaysToTheBlit) {
    Flight flight;
    FlyingObject& object = makeObject(100, 200, nullptr, flight.screen);
    front::hooks().SDL_UpperBlit = [](SDL_Surface*, SDL_Rect*, SDL_Surface*, SDL_Rect*) {
        return -2;
    };
    EXPECT_EQ(object.show(), -2);
}

TEST(FlyingObject, IsDrawnWhetherActiveOrNot) {
    Flight flight;
    SDL_Surface* const picture = makePicture(WIDTH, HEIGHT, RED);
    FlyingObject& object = makeObject(100, 200, picture, flight.screen);
    object.active = false;
    object.show();
    EXPECT_EQ(countOf(flight.screen, RED), WIDTH * HEIGHT);
}

// The left half of the picture is red, the right half is green, and it leaves to the left.
TEST(FlyingObject, SlidesOutOfThePictureAtTheLeftEdge) {
    Flight flight;
    SDL_Surface* const picture = makePicture(40, 20, GREEN);
    paint(picture, 0, 0, 20, 20, RED);
    FlyingObject& object =
        make<FlyingObject>(picture, 5, 50, 40, 20, flight.screen, FIELD_WIDTH, FIELD_HEIGHT, false);
    const struct {
        float x;
        Box red, green;
    } frames[] = {
        {5.0f, {5, 50, 20, 20}, {25, 50, 20, 20}},
        {0.5f, {0, 50, 20, 20}, {20, 50, 20, 20}},
        // Beyond the edge the part is drawn at the place of the frame before.
        {-8.2f, {0, 50, 12, 20}, {12, 50, 20, 20}},
        {-25.0f, {0, 0, 0, 0}, {0, 50, 15, 20}},
    };
    for (const auto& frame : frames) {
        SCOPED_TRACE(frame.x);
        flight.forget();
        object.xFloat = frame.x;
        object.control();
        object.show();
        EXPECT_EQ(Box(boxOf(flight.screen, RED)), frame.red);
        EXPECT_EQ(Box(boxOf(flight.screen, GREEN)), frame.green);
    }
}

}  // namespace
