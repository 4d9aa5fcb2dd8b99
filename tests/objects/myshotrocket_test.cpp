// SPDX-License-Identifier: MIT
#include "objects/myshotrocket.h"

#include "objects/flight.h"
#include "support/capture.h"
#include "support/surfaces.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <type_traits>
#include <vector>

namespace {

static_assert(std::is_base_of_v<MyShot, MyShotRocket>);
static_assert(!std::is_polymorphic_v<MyShotRocket>);
static_assert(std::is_same_v<decltype(MyShotRocket::targetIndex), int>);
static_assert(std::is_same_v<decltype(MyShotRocket::markerTopLeft), SDL_Surface*>);
static_assert(std::is_same_v<decltype(MyShotRocket::markerTopRight), SDL_Surface*>);
static_assert(std::is_same_v<decltype(MyShotRocket::markerBottomLeft), SDL_Surface*>);
static_assert(std::is_same_v<decltype(MyShotRocket::markerBottomRight), SDL_Surface*>);
static_assert(std::is_same_v<decltype(MyShotRocket::markerRects), SDL_Rect[4]>);
static_assert(
    std::is_same_v<decltype(&MyShotRocket::nearestTargetListIndex), int (MyShotRocket::*)()>);
static_assert(std::is_same_v<decltype(&MyShotRocket::control), void (MyShotRocket::*)()>);
static_assert(std::is_same_v<decltype(&MyShotRocket::show), void (MyShotRocket::*)()>);
static_assert(MyShotRocket::NO_TARGET == -1);

constexpr Colour YELLOW = {255, 255, 0};
constexpr Colour CYAN = {0, 255, 255};

// A target list of four entries, free at first, and the pictures of a rocket launched at (300, 400).
struct Launch : Flight {
    FlyingObject& enter(int slot, int x, int y, int energy = 10) {
        FlyingObject& target = make<FlyingObject>(nullptr, x, y, 39, 31, screen, 640, 480, true);
        target.energy = energy;
        targets[slot] = &target;
        return target;
    }

    // Launches a rocket; `said` is then what it wrote to the terminal.
    MyShotRocket& launch(FlyingObject** list, int count, bool flag = false) {
        MyShotRocket* rocket = nullptr;
        said = capturedOutput([&] {
            rocket = &make<MyShotRocket>(picture, 300, 400, 9, 15, screen, 640, 480, flag, list,
                                         count, topLeft, topRight, bottomLeft, bottomRight);
        });
        return *rocket;
    }

    MyShotRocket& launch() { return launch(targets, 4); }

    SDL_Surface* const picture = makePicture(9, 15, RED);
    SDL_Surface* const topLeft = makePicture(13, 13, GREEN);
    SDL_Surface* const topRight = makePicture(13, 13, BLUE);
    SDL_Surface* const bottomLeft = makePicture(13, 13, YELLOW);
    SDL_Surface* const bottomRight = makePicture(13, 13, CYAN);
    FlyingObject* targets[4] = {};
    std::string said;
};

TEST(MyShotRocket, KeepsItsFieldsInTheOrderOfTheDesign) {
    Launch launch;
    MyShotRocket& r = launch.launch();
    expectInThisOrder({
        {"shipTargetList", &r.shipTargetList},
        {"targetIndex", &r.targetIndex},
        {"markerTopLeft", &r.markerTopLeft},
        {"markerTopRight", &r.markerTopRight},
        {"markerBottomLeft", &r.markerBottomLeft},
        {"markerBottomRight", &r.markerBottomRight},
        {"markerRects", &r.markerRects},
    });
}

TEST(MyShotRocket, StartsAsAShotWithTheMarksThatItIsGiven) {
    Launch launch;
    for (const bool flag : {false, true}) {
        const MyShotRocket& rocket = launch.launch(launch.targets, 3, flag);
        EXPECT_EQ(rocket.image, launch.picture);
        EXPECT_EQ(rocket.xFloat, 300.0f);
        EXPECT_EQ(rocket.yFloat, 400.0f);
        EXPECT_EQ(rocket.width, 9);
        EXPECT_EQ(rocket.height, 15);
        EXPECT_EQ(rocket.screen, launch.screen);
        EXPECT_EQ(rocket.fieldWidth, 640);
        EXPECT_EQ(rocket.fieldHeight, 480);
        EXPECT_EQ(rocket.externallySteered, flag);
        EXPECT_EQ(rocket.shipTargetList, launch.targets);
        EXPECT_EQ(rocket.maxTargets, 3);
        EXPECT_EQ(rocket.markerTopLeft, launch.topLeft);
        EXPECT_EQ(rocket.markerTopRight, launch.topRight);
        EXPECT_EQ(rocket.markerBottomLeft, launch.bottomLeft);
        EXPECT_EQ(rocket.markerBottomRight, launch.bottomRight);
        for (const SDL_Rect& rect : rocket.markerRects) {
            EXPECT_EQ(Box(rect), Box(0, 0, 0, 0));
        }
    }
}

TEST(MyShotRocket, IsTenTimesAsStrongAsALaserAndTunedForALongClimb) {
    Launch launch;
    const MyShotRocket& rocket = launch.launch();
    EXPECT_EQ(rocket.deathFactor, 10);
    EXPECT_TRUE(rocket.goingUp);
    EXPECT_FALSE(rocket.goingDown);
    EXPECT_FALSE(rocket.goingLeft);
    EXPECT_FALSE(rocket.goingRight);
    EXPECT_EQ(rocket.speedUp, 0.0f);
    EXPECT_EQ(rocket.speedDown, 2.0f);
    EXPECT_EQ(rocket.speedLeft, 0.0f);
    EXPECT_EQ(rocket.speedRight, 0.0f);
    EXPECT_EQ(rocket.maxSpeedUp, 8.0f);
    EXPECT_EQ(rocket.maxSpeedDown, 5.0f);
    EXPECT_EQ(rocket.maxSpeedLeft, 4.0f);
    EXPECT_EQ(rocket.maxSpeedRight, 4.0f);
    EXPECT_EQ(rocket.accelUp, 0.003f);
    EXPECT_EQ(rocket.accelDown, 0.006f);
    EXPECT_EQ(rocket.accelLeft, 0.0064000003f);
    EXPECT_EQ(rocket.accelRight, 0.0064000003f);
}

TEST(MyShotRocket, ChoosesTheNearestTargetAtLaunchAndTellsIt) {
    Launch launch;
    launch.enter(0, 100, 100);
    launch.enter(1, 280, 300);
    launch.enter(2, 400, 100);
    launch.enter(3, 300, 270);
    EXPECT_EQ(launch.launch().targetIndex, 1);
    EXPECT_EQ(launch.said, "nearestTarget: 1\n");
}

TEST(MyShotRocket, NamesEmptyAndDeadEntriesInTheSameWords) {
    Launch launch;
    launch.enter(1, 280, 300, 0);
    launch.enter(2, 280, 300, -666);
    launch.enter(3, 100, 100, 1);
    EXPECT_EQ(launch.launch().targetIndex, 3);
    EXPECT_EQ(launch.said, "shipTargetList[0] = NULL\n"
                           "shipTargetList[1] = NULL\n"
                           "shipTargetList[2] = NULL\n"
                           "nearestTarget: 3\n");
}

TEST(MyShotRocket, AddsUpTheDistancesOnBothAxes) {
    const struct {
        const char* rule;
        int x0, y0, x1, y1;
        int chosen;
    } pairs[] = {
        {"nearer sideways", 330, 300, 320, 300, 1},
        {"nearer in height", 330, 300, 330, 310, 1},
        {"the sum counts and not the way as the crow flies", 360, 340, 300, 285, 1},
        {"left and right count alike", 250, 400, 340, 400, 1},
        {"above and below count alike", 300, 350, 300, 440, 1},
        {"of two at the same distance the first is chosen", 340, 360, 260, 440, 0},
        {"of two in the same place too", 340, 360, 340, 360, 0},
    };
    for (const auto& pair : pairs) {
        SCOPED_TRACE(pair.rule);
        Launch launch;
        launch.enter(0, pair.x0, pair.y0);
        launch.enter(1, pair.x1, pair.y1);
        EXPECT_EQ(launch.launch().targetIndex, pair.chosen);
    }
}

// Near 60000 floats are 1/256 apart: a thousandth of a pixel more is no distance.
TEST(MyShotRocket, MeasuresDistancesInFloats) {
    Launch launch;
    MyShotRocket& rocket = launch.launch();
    rocket.xFloat = rocket.yFloat = 0.0f;
    FlyingObject& first = launch.enter(0, 0, 0);
    FlyingObject& second = launch.enter(1, 0, 0);
    first.xFloat = 60000.0f;
    first.yFloat = 0.001f;
    second.xFloat = 60000.0f;
    EXPECT_EQ(rocket.nearestTargetListIndex(), 0);
}

TEST(MyShotRocket, DoesNotSeeTargetsAsFarAsSixtySixThousandSixHundredAndSixtySix) {
    const struct {
        const char* rule;
        float distance;
        int chosen;
    } cases[] = {
        {"just nearer it is seen", 66665.9f, 0},
        {"at the very distance it is not", 66666.0f, -1},
        {"beyond it is not", 70000.0f, -1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.rule);
        Launch launch;
        MyShotRocket& rocket = launch.launch();
        rocket.xFloat = 0.0f;
        rocket.yFloat = 50.0f;
        FlyingObject& target = launch.enter(0, 0, 50);
        target.xFloat = c.distance;
        EXPECT_EQ(rocket.nearestTargetListIndex(), c.chosen);
    }
}

TEST(MyShotRocket, LooksAtNoMoreEntriesThanTheListHas) {
    Launch launch;
    launch.enter(3, 300, 300);
    EXPECT_EQ(launch.launch(launch.targets, 3).targetIndex, -1);
    EXPECT_EQ(launch.launch(launch.targets, 4).targetIndex, 3);
}

TEST(MyShotRocket, DoesNotTouchAListWithoutEntries) {
    Launch launch;
    for (const int count : {0, -1}) {
        EXPECT_EQ(launch.launch(nullptr, count).targetIndex, -1);
        EXPECT_EQ(launch.said, "nearestTarget: -1\n");
    }
}

TEST(MyShotRocket, WithoutALiveTargetClimbsStraightAndDrawsNoMarks) {
    Launch launch;
    launch.enter(2, 200, 100, 0);
    MyShotRocket& rocket = launch.launch();
    EXPECT_EQ(launch.said, "shipTargetList[0] = NULL\n"
                           "shipTargetList[1] = NULL\n"
                           "shipTargetList[2] = NULL\n"
                           "shipTargetList[3] = NULL\n"
                           "nearestTarget: -1\n");
    rocket.goingLeft = rocket.goingRight = true;
    rocket.setFrameDelay(20);
    for (int frame = 0; frame < 40; ++frame) {
        rocket.control();
        rocket.show();
        EXPECT_FALSE(rocket.goingLeft);
        EXPECT_FALSE(rocket.goingRight);
        EXPECT_TRUE(rocket.goingUp);
    }
    EXPECT_NEAR(rocket.xFloat, 300.0f, 1e-3);
    EXPECT_LT(rocket.yFloat, 400.0f);
    EXPECT_EQ(launch.picturesDrawn(), std::vector<SDL_Surface*>(40, launch.picture));
}

TEST(MyShotRocket, DoesNotLookForATargetWhenItHasNone) {
    Launch launch;
    MyShotRocket& rocket = launch.launch();
    launch.enter(0, 200, 100);
    EXPECT_EQ(capturedOutput([&] { rocket.control(); }), "");
    EXPECT_EQ(rocket.targetIndex, -1);
}

TEST(MyShotRocket, BringsItsLeftEdgeSixteenPixelsRightOfItsTargets) {
    const struct {
        const char* rule;
        float target;  // x; the rocket is at 300, so it aims at 284
        bool leftBefore, rightBefore;
        bool left, right;
    } cases[] = {
        {"a target farther right sends it right", 284.5f, true, false, false, true},
        {"from no direction as well", 600.0f, false, false, false, true},
        {"a target farther left sends it left", 283.5f, false, true, true, false},
        {"from no direction as well", 10.0f, false, false, true, false},
        {"on its aim it goes on to the left", 284.0f, true, false, true, false},
        {"on its aim it goes on to the right", 284.0f, false, true, false, true},
        {"on its aim it goes on straight", 284.0f, false, false, false, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.rule);
        Launch launch;
        FlyingObject& target = launch.enter(1, 0, 100);
        MyShotRocket& rocket = launch.launch();
        target.xFloat = c.target;
        rocket.setFrameDelay(0);
        rocket.goingLeft = c.leftBefore;
        rocket.goingRight = c.rightBefore;
        rocket.control();
        EXPECT_EQ(rocket.goingLeft, c.left);
        EXPECT_EQ(rocket.goingRight, c.right);
        EXPECT_TRUE(rocket.goingUp);
        EXPECT_FALSE(rocket.goingDown);
    }
}

// Launched at (300, 400) at a target with x = 200, 20 ms a frame; worked out apart from the game.
TEST(MyShotRocket, DropsClimbsAndSwingsIntoItsTargetsColumn) {
    const struct {
        int frame;
        float x, y;
        bool left, right;
    } frames[] = {
        {1, 300.0f, 403.20322f, true, false},      {2, 299.77472f, 406.0896f, true, false},
        {5, 297.7472f, 412.848f, true, false},     {10, 289.86237f, 417.776f, true, false},
        {11, 287.60956f, 417.81122f, true, false}, {12, 285.13147f, 417.5296f, true, false},
        {15, 276.34552f, 414.784f, true, false},   {20, 257.19666f, 405.4208f, true, false},
        {25, 232.41585f, 393.27682f, true, false}, {30, 203.94946f, 378.49283f, false, true},
        {40, 174.88834f, 341.00485f, false, true}, {50, 188.17981f, 292.95688f, false, true},
        {60, 216.06047f, 234.3489f, true, false},
    };
    Launch launch;
    launch.enter(0, 200, 100);
    MyShotRocket& rocket = launch.launch();
    int flown = 0;
    for (const auto& frame : frames) {
        SCOPED_TRACE(frame.frame);
        for (; flown < frame.frame; ++flown) {
            rocket.setFrameDelay(20);
            rocket.control();
        }
        EXPECT_EQ(rocket.xFloat, frame.x);
        EXPECT_EQ(rocket.yFloat, frame.y);
        EXPECT_EQ(rocket.goingLeft, frame.left);
        EXPECT_EQ(rocket.goingRight, frame.right);
    }
}

TEST(MyShotRocket, SteersFromWhereThisFrameHasBroughtIt) {
    Launch launch;
    FlyingObject& target = launch.enter(0, 200, 100);
    MyShotRocket& rocket = launch.launch();
    target.xFloat = 283.0f;
    rocket.speedLeft = 4.0f;
    rocket.goingLeft = true;
    rocket.setFrameDelay(10);
    rocket.control();  // 300 - 4 x 10 x 0.088 = 296.48, so it aims at 280.48
    EXPECT_TRUE(rocket.goingRight);
}

// Which speeds a turn hands over. The top speed is 4: the hand-over speed is 2.5.
struct TurnCase {
    const char* rule;
    float target;  // x; the rocket is at 300
    float maxSpeed;
    float speedLeft, speedRight;
    float leftAfter, rightAfter;
};

TEST(MyShotRocket, HandsItsSpeedOverWhenItTurns) {
    const float below = std::nextafter(2.5f, 0.0f);
    const float above = std::nextafter(2.5f, 3.0f);
    const TurnCase turns[] = {
        {"to the right, exactly the hand-over speed goes over", 400, 4, 2.5f, 1, 2.5f, 2.5f},
        {"to the right, less does not", 400, 4, below, 1, below, 1},
        {"to the right, more does not", 400, 4, above, 1, above, 1},
        {"to the right, full speed does not", 400, 4, 4, 1, 4, 1},
        {"to the right, the right speed does not matter", 400, 4, 1, 2.5f, 1, 2.5f},
        {"to the left, exactly the hand-over speed does not go over", 100, 4, 1, 2.5f, 1, 2.5f},
        {"to the left, anything above does", 100, 4, 1, above, above, above},
        {"to the left, full speed does", 100, 4, 1, 4, 4, 4},
        {"to the left, less does not", 100, 4, 1, below, 1, below},
        {"to the left, the left speed does not matter", 100, 4, 3, 1, 3, 1},
        {"on its aim nothing goes over", 284, 4, 2.5f, 4, 2.5f, 4},
        {"the hand-over speed goes with the top speed", 400, 8, 5, 1, 5, 5},
        {"to the left as well", 100, 8, 1, 4.5f, 1, 4.5f},
        {"it is worked out in double precision: 3.2f / 1.6 is not 2", 400, 3.2f, 2, 1, 2, 1},
        {"2.3f / 1.6 is less than 1.4375", 100, 2.3f, 1, 1.4375f, 1.4375f, 1.4375f},
    };
    for (const TurnCase& turn : turns) {
        SCOPED_TRACE(turn.rule);
        Launch launch;
        FlyingObject& target = launch.enter(0, 0, 100);
        MyShotRocket& rocket = launch.launch();
        target.xFloat = turn.target;
        rocket.maxSpeedLeft = rocket.maxSpeedRight = turn.maxSpeed;
        rocket.speedLeft = turn.speedLeft;
        rocket.speedRight = turn.speedRight;
        rocket.setFrameDelay(0);
        rocket.control();
        EXPECT_EQ(rocket.speedLeft, turn.leftAfter);
        EXPECT_EQ(rocket.speedRight, turn.rightAfter);
    }
}

TEST(MyShotRocket, GoesByTheTopSpeedOfTheSideThatItComesFrom) {
    Launch launch;
    FlyingObject& target = launch.enter(0, 400, 100);
    MyShotRocket& rocket = launch.launch();
    rocket.setFrameDelay(0);
    rocket.maxSpeedLeft = 8.0f;
    rocket.maxSpeedRight = 4.0f;
    rocket.speedLeft = 5.0f;
    rocket.control();
    EXPECT_EQ(rocket.speedRight, 5.0f);
    target.xFloat = 0.0f;
    rocket.speedLeft = 0.0f;
    rocket.speedRight = 3.0f;
    rocket.control();
    EXPECT_EQ(rocket.speedLeft, 3.0f);
}

TEST(MyShotRocket, FollowsATargetThatIsDeadButStillThere) {
    Launch launch;
    FlyingObject& target = launch.enter(0, 400, 100);
    launch.enter(1, 100, 100);
    MyShotRocket& rocket = launch.launch();
    EXPECT_EQ(rocket.targetIndex, 0);
    target.energy = 0;
    target.xFloat = 600.0f;
    rocket.setFrameDelay(20);
    EXPECT_EQ(capturedOutput([&] { rocket.control(); }), "");
    EXPECT_EQ(rocket.targetIndex, 0);
    EXPECT_TRUE(rocket.goingRight);
    rocket.show();
    EXPECT_EQ(launch.blits.size(), 5u);
}

TEST(MyShotRocket, KeepsItsTargetThoughAnotherComesNearer) {
    Launch launch;
    launch.enter(0, 400, 100);
    MyShotRocket& rocket = launch.launch();
    launch.enter(1, 300, 390);
    rocket.setFrameDelay(20);
    rocket.control();
    EXPECT_EQ(rocket.targetIndex, 0);
}

TEST(MyShotRocket, ChoosesAnewInTheFrameAfterItsTargetIsGone) {
    Launch launch;
    launch.enter(0, 270, 300);
    launch.enter(2, 500, 100);
    MyShotRocket& rocket = launch.launch();
    rocket.setFrameDelay(20);
    rocket.control();
    EXPECT_TRUE(rocket.goingLeft);
    launch.targets[0] = nullptr;
    EXPECT_EQ(capturedOutput([&] { rocket.control(); }), "shipTargetList[0] = NULL\n"
                                                         "shipTargetList[1] = NULL\n"
                                                         "shipTargetList[3] = NULL\n");
    EXPECT_EQ(rocket.targetIndex, 2);
    EXPECT_TRUE(rocket.goingLeft) << "it steers for the new target from the next frame on";
    rocket.control();
    EXPECT_TRUE(rocket.goingRight);
}

TEST(MyShotRocket, MayFindNoOtherTarget) {
    Launch launch;
    launch.enter(0, 290, 300);
    launch.enter(1, 310, 300, -666);
    MyShotRocket& rocket = launch.launch();
    rocket.setFrameDelay(20);
    rocket.control();
    launch.targets[0] = nullptr;
    rocket.control();
    EXPECT_EQ(rocket.targetIndex, -1);
    rocket.control();
    EXPECT_FALSE(rocket.goingLeft);
    EXPECT_FALSE(rocket.goingRight);
}

TEST(MyShotRocket, RunsAHitFlash) {
    Launch launch;
    Pictures flashes(6, 16);
    MyShotRocket& rocket = launch.launch();
    rocket.setMiniExplosion(flashes.frames(), 16, 16);
    rocket.miniExploding = true;
    rocket.setFrameDelay(20);
    rocket.control();
    EXPECT_EQ(launch.picturesDrawn(), std::vector<SDL_Surface*>{flashes[0]});
}

TEST(MyShotRocket, FramesItsTargetWithFourMarks) {
    Launch launch;
    launch.enter(0, 200, 100);
    MyShotRocket& rocket = launch.launch();
    rocket.show();
    EXPECT_EQ(Box(boxOf(launch.screen, RED)), Box(300, 400, 9, 15));
    // The target is 39 x 31 pixels: right edge 197 + 39 - 7, bottom edge 97 + 31 - 7.
    EXPECT_EQ(Box(boxOf(launch.screen, GREEN)), Box(197, 97, 13, 13));
    EXPECT_EQ(Box(boxOf(launch.screen, BLUE)), Box(229, 97, 13, 13));
    EXPECT_EQ(Box(boxOf(launch.screen, YELLOW)), Box(197, 121, 13, 13));
    EXPECT_EQ(Box(boxOf(launch.screen, CYAN)), Box(229, 121, 13, 13));
}

TEST(MyShotRocket, HandsItsVeryRectanglesToSdl) {
    Launch launch;
    launch.enter(0, 200, 100);
    MyShotRocket& rocket = launch.launch();
    rocket.show();
    const std::vector<SDL_Surface*> drawn = {launch.picture, launch.topLeft, launch.topRight,
                                             launch.bottomLeft, launch.bottomRight};
    ASSERT_EQ(launch.picturesDrawn(), drawn);
    EXPECT_EQ(launch.blits[0].part, &rocket.sourceRect);
    EXPECT_EQ(launch.blits[0].place, &rocket.destRect);
    for (size_t i = 0; i < 4; ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(launch.blits[i + 1].part, nullptr);
        EXPECT_EQ(launch.blits[i + 1].onto, launch.screen);
        EXPECT_EQ(launch.blits[i + 1].place, &rocket.markerRects[i]);
        EXPECT_EQ(Box(rocket.markerRects[i]).w, 13);
    }
}

TEST(MyShotRocket, PlacesItsMarksByWhereTheTargetIsSeen) {
    Launch launch;
    FlyingObject& target = launch.enter(0, 200, 100);
    MyShotRocket& rocket = launch.launch();
    target.xFloat = target.yFloat = 400.0f;
    target.width = target.height = 300;
    target.destRect = {50, 60, 1, 2};
    target.sourceRect = {5, 6, 80, 70};
    rocket.show();
    EXPECT_EQ(launch.blits[1].placeBefore, Box(47, 57, 0, 0));
    EXPECT_EQ(launch.blits[2].placeBefore, Box(120, 57, 0, 0));
    EXPECT_EQ(launch.blits[3].placeBefore, Box(47, 120, 0, 0));
    EXPECT_EQ(launch.blits[4].placeBefore, Box(120, 120, 0, 0));
}

TEST(MyShotRocket, WrapsItsMarksWithSixteenBits) {
    Launch launch;
    FlyingObject& target = launch.enter(0, 200, 100);
    MyShotRocket& rocket = launch.launch();
    target.destRect = {-32768, 32760, 0, 0};
    target.sourceRect = {0, 0, 65535, 39};
    rocket.show();
    EXPECT_EQ(launch.blits[1].placeBefore, Box(32765, 32757, 0, 0));
    EXPECT_EQ(launch.blits[4].placeBefore, Box(32757, -32747, 0, 0));
}

TEST(MyShotRocket, DrawsNoMarksInTheFrameInWhichItsTargetIsGone) {
    Launch launch;
    launch.enter(0, 200, 100);
    MyShotRocket& rocket = launch.launch();
    launch.targets[0] = nullptr;
    rocket.show();
    EXPECT_EQ(launch.picturesDrawn(), std::vector<SDL_Surface*>{launch.picture});
}

}  // namespace
