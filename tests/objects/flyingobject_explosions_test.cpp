// SPDX-License-Identifier: MIT
#include "objects/flyingobject.h"

#include "objects/flight.h"
#include "support/capture.h"
#include "support/surfaces.h"

#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <vector>

namespace {

constexpr int EXPLODED = -666;
constexpr int EXPLOSION_CHANNEL = 3;
constexpr int FLASH_CHANNEL = 4;
constexpr char EXPLOSION_LINE[] = "FlyingObject->explode()\n";

static_assert(std::is_same_v<decltype(&FlyingObject::setExplosion),
                             void (FlyingObject::*)(SDL_Surface**, int, int)>);
static_assert(std::is_same_v<decltype(&FlyingObject::setMiniExplosion),
                             void (FlyingObject::*)(SDL_Surface**, int, int)>);
static_assert(std::is_same_v<decltype(&FlyingObject::setMiniExplosionPosition),
                             void (FlyingObject::*)(int, int)>);
static_assert(std::is_same_v<decltype(&FlyingObject::explode), void (FlyingObject::*)()>);
static_assert(std::is_same_v<decltype(&FlyingObject::miniExplode), void (FlyingObject::*)()>);

// A ship at (200, 150) with both explosions: 46 pictures of 128 pixels, 6 flashes of 16 pixels.
struct Wreck : Flight {
    Wreck()
        : explosions(46, 128),
          flashes(6, 16),
          object(make<FlyingObject>(nullptr, 200, 150, 39, 39, screen, 640, 480, false)) {
        object.setExplosion(explosions.frames(), 128, 128);
        object.setMiniExplosion(flashes.frames(), 16, 16);
        object.explosionSound = explosionSound;
        object.miniExplosionSound = flashSound;
        object.energy = 0;
    }

    // One step of the explosion; returns what is written to the terminal.
    std::string explode(unsigned int ms) {
        object.setFrameDelay(ms);
        return capturedOutput([this] { object.explode(); });
    }

    void flash(unsigned int ms) {
        object.setFrameDelay(ms);
        object.miniExplode();
    }

    // The picture that the last blit showed.
    int explosionShown() const { return explosions.indexOf(blits.back().picture); }
    int flashShown() const { return flashes.indexOf(blits.back().picture); }

    Sound explosionPlayed() const { return {EXPLOSION_CHANNEL, explosionSound, 0, -1}; }
    Sound flashPlayed() const { return {FLASH_CHANNEL, flashSound, 0, -1}; }

    Mix_Chunk* const explosionSound = makeSound();
    Mix_Chunk* const flashSound = makeSound();
    Pictures explosions;
    Pictures flashes;
    FlyingObject& object;
};

// The big explosion

TEST(Explosion, KeepsThePicturesAndTheirSize) {
    Wreck wreck;
    Pictures others(1, 8);
    wreck.object.setExplosion(others.frames(), 12, 34);
    EXPECT_EQ(wreck.object.explosionFrames, others.frames());
    EXPECT_EQ(wreck.object.explosionWidth, 12);
    EXPECT_EQ(wreck.object.explosionHeight, 34);
}

TEST(Explosion, StartsWithOneLineAndOneSoundOnChannelThree) {
    Wreck wreck;
    EXPECT_EQ(wreck.explode(20), EXPLOSION_LINE);
    EXPECT_EQ(wreck.sounds, std::vector<Sound>{wreck.explosionPlayed()});
    for (int frame = 0; frame < 200; ++frame) {
        EXPECT_EQ(wreck.explode(20), "");
    }
    EXPECT_EQ(wreck.sounds.size(), 1u);
}

TEST(Explosion, ShowsAPictureForEveryStepAndEndsTheShipWithTheLast) {
    Wreck wreck;
    for (int step = 1; step <= 45; ++step) {
        SCOPED_TRACE(step);
        wreck.explode(51);
        EXPECT_EQ(wreck.explosionShown(), step);
        EXPECT_EQ(wreck.object.explosionFrame, static_cast<Uint32>(step));
        EXPECT_EQ(wreck.object.energy, step == 45 ? EXPLODED : 0);
    }
}

TEST(Explosion, GathersFrameTimeToMoreThanFiftyMilliseconds) {
    const struct {
        const char* rule;
        unsigned int ms;
        unsigned int timer;
        int picture;
    } steps[] = {
        {"50 ms from rest advance nothing", 50, 50, 0},
        {"50 ms more pass the step, and the rest of them is dropped", 50, 1, 1},
        {"the next step starts at 1 and does not end at 50", 49, 50, 1},
        {"a single millisecond more ends it", 1, 1, 2},
        {"50 ms fill a step that has begun", 50, 1, 3},
        {"a long frame is worth one picture", 1000, 1, 4},
    };
    Wreck wreck;
    for (const auto& step : steps) {
        SCOPED_TRACE(step.rule);
        wreck.explode(step.ms);
        EXPECT_EQ(wreck.object.explosionTimer, step.timer);
        EXPECT_EQ(wreck.explosionShown(), step.picture);
    }
}

TEST(Explosion, StartsAgainAndAgainInFramesOfNoTime) {
    Wreck wreck;
    for (unsigned int call = 1; call <= 3; ++call) {
        EXPECT_EQ(wreck.explode(0), EXPLOSION_LINE);
        EXPECT_EQ(wreck.sounds, std::vector<Sound>(call, wreck.explosionPlayed()));
        EXPECT_EQ(wreck.object.explosionTimer, 0u);
        EXPECT_EQ(wreck.explosionShown(), 0);
    }
}

TEST(Explosion, KeepsItsLastPictureAndEndsTheShipWithEveryFurtherStep) {
    Wreck wreck;
    wreck.object.explosionTimer = 1;
    wreck.object.explosionFrame = 45;
    wreck.object.energy = 5;
    wreck.explode(49);
    EXPECT_EQ(wreck.explosionShown(), 45);
    EXPECT_EQ(wreck.object.energy, 5);
    wreck.explode(1);
    EXPECT_EQ(wreck.explosionShown(), 45);
    EXPECT_EQ(wreck.object.energy, EXPLODED);
    EXPECT_EQ(wreck.object.explosionFrame, 45u);
}

TEST(Explosion, StandsTwentyTwoPixelsLeftOfAndAboveTheShip) {
    Wreck wreck;
    wreck.explode(20);
    ASSERT_EQ(wreck.blits.size(), 1u);
    const Blit& blit = wreck.blits[0];
    EXPECT_EQ(blit.part, &wreck.object.explosionSourceRect);
    EXPECT_EQ(blit.partBefore, Box(0, 0, 128, 128));
    EXPECT_EQ(blit.onto, wreck.screen);
    EXPECT_EQ(blit.place, &wreck.object.explosionDestRect);
    EXPECT_EQ(Box(boxOf(wreck.screen, BLUE)), Box(178, 128, 128, 128));
}

TEST(Explosion, FollowsTheShip) {
    Wreck wreck;
    wreck.explode(20);
    wreck.object.xFloat = 301.9f;
    wreck.object.yFloat = 99.9f;
    wreck.explode(20);
    EXPECT_EQ(wreck.blits[1].placeBefore.x, 279);
    EXPECT_EQ(wreck.blits[1].placeBefore.y, 77);
}

struct EdgeCase {
    const char* rule;
    float position;
    int dest;  // 77 stands there before
    int source;
    int overhang;
};

const EdgeCase EDGES[] = {
    {"a pixel from the edge", 23.0f, 1, 0, 0},
    {"at the edge", 22.0f, 0, 0, 0},
    {"the ship's place is cut to whole pixels first", 21.9f, 77, 1, 1},
    {"12 pixels hidden, the last place kept", 10.0f, 77, 12, 12},
    {"a ship that is itself beyond the edge", -3.7f, 77, 25, 25},
};

TEST(Explosion, IsCutAtTheLeftEdgeWhereItsLastPlaceStays) {
    for (const EdgeCase& edge : EDGES) {
        SCOPED_TRACE(edge.rule);
        Wreck wreck;
        wreck.object.setExplosion(wreck.explosions.frames(), 100, 90);
        wreck.object.explosionDestRect = {77, 77, 0, 0};
        wreck.object.xFloat = edge.position;
        wreck.explode(20);
        EXPECT_EQ(wreck.blits[0].placeBefore, Box(edge.dest, 128, 0, 0));
        EXPECT_EQ(wreck.blits[0].partBefore, Box(edge.source, 0, 100 + edge.overhang, 90));
    }
}

TEST(Explosion, IsCutAtTheTopEdgeWhereItsLastPlaceStays) {
    for (const EdgeCase& edge : EDGES) {
        SCOPED_TRACE(edge.rule);
        Wreck wreck;
        wreck.object.setExplosion(wreck.explosions.frames(), 100, 90);
        wreck.object.explosionDestRect = {77, 77, 0, 0};
        wreck.object.yFloat = edge.position;
        wreck.explode(20);
        EXPECT_EQ(wreck.blits[0].placeBefore, Box(178, edge.dest, 0, 0));
        EXPECT_EQ(wreck.blits[0].partBefore, Box(0, edge.source, 100, 90 + edge.overhang));
    }
}

TEST(Explosion, IsSeenCutInTheCornerOfTheScreen) {
    Wreck wreck;
    wreck.object.xFloat = 10.0f;
    wreck.object.yFloat = 4.0f;
    wreck.explode(20);
    EXPECT_EQ(Box(boxOf(wreck.screen, BLUE)), Box(0, 0, 116, 110));
    EXPECT_EQ(Box(wreck.object.explosionDestRect), Box(0, 0, 116, 110));
}

// The mini explosion

TEST(MiniExplosion, KeepsThePicturesAndTheirSizeButNotAPlace) {
    Wreck wreck;
    Pictures others(1, 8);
    wreck.object.miniExplosionRect = {3, 4, 5, 6};
    wreck.object.setMiniExplosion(others.frames(), 12, 34);
    EXPECT_EQ(wreck.object.miniExplosionFrames, others.frames());
    EXPECT_EQ(Box(wreck.object.miniExplosionRect), Box(3, 4, 12, 34));
}

TEST(MiniExplosion, IsRewoundAndPlacedButNotStarted) {
    Wreck wreck;
    wreck.object.miniExplosionFrame = 4;
    wreck.object.miniExplosionTimer = 30;
    wreck.object.setMiniExplosionPosition(-7, 60);
    EXPECT_EQ(wreck.object.miniExplosionFrame, 0u);
    EXPECT_EQ(wreck.object.miniExplosionTimer, 0u);
    EXPECT_EQ(Box(wreck.object.miniExplosionRect), Box(-7, 60, 16, 16));
    EXPECT_FALSE(wreck.object.miniExploding);
}

TEST(MiniExplosion, GoesOnRunningWhenItIsPlacedAnew) {
    Wreck wreck;
    wreck.object.miniExploding = true;
    wreck.object.setMiniExplosionPosition(5, 6);
    EXPECT_TRUE(wreck.object.miniExploding);
}

TEST(MiniExplosion, StartsWithOneSoundOnChannelFourAndWithoutAWord) {
    Wreck wreck;
    EXPECT_EQ(capturedOutput([&] { wreck.flash(20); }), "");
    EXPECT_EQ(wreck.sounds, std::vector<Sound>{wreck.flashPlayed()});
    wreck.flash(20);
    wreck.flash(20);
    EXPECT_EQ(wreck.sounds.size(), 1u);
}

TEST(MiniExplosion, ShowsSixPicturesAndTheFirstOnceMore) {
    Wreck wreck;
    wreck.object.miniExploding = true;
    wreck.flash(20);
    EXPECT_EQ(wreck.flashShown(), 0);
    for (int step = 1; step <= 5; ++step) {
        wreck.flash(51);
        EXPECT_EQ(wreck.flashShown(), step);
        EXPECT_TRUE(wreck.object.miniExploding);
    }
    wreck.flash(51);
    EXPECT_EQ(wreck.flashShown(), 0);
    EXPECT_FALSE(wreck.object.miniExploding);
    EXPECT_EQ(wreck.object.miniExplosionTimer, 0u);
    EXPECT_EQ(wreck.object.miniExplosionFrame, 0u);
}

TEST(MiniExplosion, PutBehindItsLastPictureEndsWithTheNextStep) {
    Wreck wreck;
    wreck.object.miniExploding = true;
    wreck.object.miniExplosionFrame = 6;
    wreck.flash(51);
    EXPECT_EQ(wreck.flashShown(), 0);
    EXPECT_FALSE(wreck.object.miniExploding);
}

TEST(MiniExplosion, GathersFrameTimeToMoreThanFiftyMilliseconds) {
    const struct {
        const char* rule;
        unsigned int ms;
        unsigned int timer;
        int picture;
    } steps[] = {
        {"50 ms from rest advance nothing", 50, 50, 0},
        {"50 ms more pass the step, and the rest of them is dropped", 50, 1, 1},
        {"the next step starts at 1 and does not end at 50", 49, 50, 1},
        {"a single millisecond more ends it", 1, 1, 2},
        {"50 ms fill a step that has begun", 50, 1, 3},
        {"a long frame is worth one picture", 1000, 1, 4},
    };
    Wreck wreck;
    for (const auto& step : steps) {
        SCOPED_TRACE(step.rule);
        wreck.flash(step.ms);
        EXPECT_EQ(wreck.object.miniExplosionTimer, step.timer);
        EXPECT_EQ(wreck.flashShown(), step.picture);
    }
}

TEST(MiniExplosion, SoundsAgainAndAgainInFramesOfNoTime) {
    Wreck wreck;
    for (unsigned int call = 1; call <= 3; ++call) {
        wreck.flash(0);
        EXPECT_EQ(wreck.sounds, std::vector<Sound>(call, wreck.flashPlayed()));
        EXPECT_EQ(wreck.object.miniExplosionTimer, 0u);
        EXPECT_EQ(wreck.flashShown(), 0);
    }
}

TEST(MiniExplosion, HandsTheWholePictureAndItsVeryRectangleToSdl) {
    Wreck wreck;
    wreck.object.setMiniExplosionPosition(300, 250);
    wreck.flash(20);
    ASSERT_EQ(wreck.blits.size(), 1u);
    EXPECT_EQ(wreck.blits[0].part, nullptr);
    EXPECT_EQ(wreck.blits[0].onto, wreck.screen);
    EXPECT_EQ(wreck.blits[0].place, &wreck.object.miniExplosionRect);
    EXPECT_EQ(Box(boxOf(wreck.screen, BLUE)), Box(300, 250, 16, 16));
}

TEST(MiniExplosion, CutByTheLeftEdgeIsDrawnWholeFromItsSecondFrameOn) {
    Wreck wreck;
    wreck.object.setMiniExplosionPosition(-6, 250);
    wreck.flash(20);
    EXPECT_EQ(Box(boxOf(wreck.screen, BLUE)), Box(0, 250, 10, 16));
    wreck.forget();
    wreck.flash(20);
    EXPECT_EQ(Box(boxOf(wreck.screen, BLUE)), Box(0, 250, 16, 16));
}

TEST(MiniExplosion, StaysWhereItWasPlacedWhileTheShipMovesOn) {
    Wreck wreck;
    wreck.object.setMiniExplosionPosition(210, 160);
    wreck.object.miniExploding = true;
    wreck.object.speedRight = 3.0f;
    for (int frame = 0; frame < 5; ++frame) {
        wreck.object.setFrameDelay(20);
        wreck.object.control();
    }
    EXPECT_GT(wreck.object.xFloat, 210.0f);
    EXPECT_EQ(Box(boxOf(wreck.screen, BLUE)), Box(210, 160, 16, 16));
}

TEST(MiniExplosion, IsSteppedByEveryFrameOfTheShipWhileItRuns) {
    Wreck wreck;
    wreck.object.setMiniExplosionPosition(210, 160);
    wreck.object.setFrameDelay(51);
    wreck.object.control();
    EXPECT_TRUE(wreck.blits.empty());
    EXPECT_TRUE(wreck.sounds.empty());

    wreck.object.miniExploding = true;
    for (int frame = 1; frame <= 8; ++frame) {
        wreck.object.control();
    }
    const std::vector<SDL_Surface*> seen = {wreck.flashes[1], wreck.flashes[2], wreck.flashes[3],
                                            wreck.flashes[4], wreck.flashes[5], wreck.flashes[0]};
    EXPECT_EQ(wreck.picturesDrawn(), seen);
    EXPECT_EQ(wreck.sounds, std::vector<Sound>{wreck.flashPlayed()});
    EXPECT_FALSE(wreck.object.miniExploding);
}

TEST(MiniExplosion, StartsAnewAndSoundsAnewWithANewHit) {
    Wreck wreck;
    wreck.object.miniExploding = true;
    wreck.object.setMiniExplosionPosition(210, 160);
    wreck.flash(51);
    wreck.flash(51);
    EXPECT_EQ(wreck.flashShown(), 2);
    wreck.forget();
    wreck.object.setMiniExplosionPosition(220, 170);
    wreck.flash(30);
    EXPECT_EQ(wreck.flashShown(), 0);
    EXPECT_EQ(wreck.sounds, std::vector<Sound>{wreck.flashPlayed()});
    EXPECT_EQ(Box(boxOf(wreck.screen, BLUE)), Box(220, 170, 16, 16));
}

TEST(MiniExplosion, LeavesEnergyAndTheBigExplosionAlone) {
    Wreck wreck;
    wreck.object.energy = 7;
    for (int step = 0; step < 8; ++step) {
        wreck.flash(51);
    }
    EXPECT_EQ(wreck.object.energy, 7);
    EXPECT_EQ(wreck.object.explosionTimer, 0u);
    EXPECT_EQ(wreck.object.explosionFrame, 0u);
}

}  // namespace
