// SPDX-License-Identifier: MIT
#include "objects/myship.h"

#include "objects/flight.h"
#include "support/capture.h"
#include "support/surfaces.h"

#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <vector>

namespace {

static_assert(std::is_base_of_v<Ship, MyShip>);
static_assert(!std::is_polymorphic_v<MyShip>);
static_assert(std::is_same_v<decltype(MyShip::maxTargets), int>);
static_assert(std::is_same_v<decltype(MyShip::shipTargetList), FlyingObject**>);
static_assert(std::is_same_v<decltype(MyShip::laserAmmo), int>);
static_assert(std::is_same_v<decltype(MyShip::rocketAmmo), int>);
static_assert(std::is_same_v<decltype(&MyShip::control), void (MyShip::*)()>);
static_assert(std::is_same_v<decltype(&MyShip::show), int (Ship::*)()>);

constexpr size_t TARGETS = 10;

MyShip& makeMyShip(SDL_Surface* screen, int x, int y, int fieldWidth = 640, int fieldHeight = 480) {
    soilHeap(TARGETS * sizeof(void*));
    MyShip* ship = nullptr;
    capturedOutput([&] {
        ship = &make<MyShip>(nullptr, nullptr, nullptr, x, y, 39, 31, screen, fieldWidth,
                             fieldHeight, false);
    });
    return *ship;
}

TEST(MyShip, KeepsItsFieldsInTheOrderOfTheDesign) {
    Flight flight;
    MyShip& s = makeMyShip(flight.screen, 300, 400);
    expectInThisOrder({
        {"rightImage", &s.rightImage},
        {"maxTargets", &s.maxTargets},
        {"shipTargetList", &s.shipTargetList},
        {"laserAmmo", &s.laserAmmo},
        {"rocketAmmo", &s.rocketAmmo},
    });
}

TEST(MyShip, StartsWithWhatItIsGiven) {
    Flight flight;
    SDL_Surface* const straight = makePicture(39, 31, RED);
    SDL_Surface* const left = makePicture(39, 31, GREEN);
    SDL_Surface* const right = makePicture(39, 31, BLUE);
    for (const bool steered : {false, true}) {
        const MyShip& ship =
            make<MyShip>(straight, left, right, 120, 70, 39, 31, flight.screen, 640, 480, steered);
        EXPECT_EQ(ship.image, straight);
        EXPECT_EQ(ship.leftImage, left);
        EXPECT_EQ(ship.rightImage, right);
        EXPECT_EQ(ship.xFloat, 120.0f);
        EXPECT_EQ(ship.yFloat, 70.0f);
        EXPECT_EQ(ship.width, 39);
        EXPECT_EQ(ship.height, 31);
        EXPECT_EQ(ship.screen, flight.screen);
        EXPECT_EQ(ship.fieldWidth, 640);
        EXPECT_EQ(ship.fieldHeight, 480);
        EXPECT_EQ(ship.externallySteered, steered);
    }
}

TEST(MyShip, StartsWithSixtyFivePointsOfEnergyFiftyLasersAndThreeRockets) {
    Flight flight;
    const MyShip& ship = makeMyShip(flight.screen, 300, 400);
    EXPECT_EQ(ship.energy, 65);
    EXPECT_EQ(ship.laserAmmo, 50);
    EXPECT_EQ(ship.rocketAmmo, 3);
}

TEST(MyShip, IsSlowerThanOtherThingsYetGainsSpeedLikeThem) {
    Flight flight;
    const MyShip& ship = makeMyShip(flight.screen, 300, 400);
    EXPECT_EQ(ship.maxSpeedLeft, 4.0f);
    EXPECT_EQ(ship.maxSpeedRight, 4.0f);
    EXPECT_EQ(ship.maxSpeedUp, 3.0f);
    EXPECT_EQ(ship.maxSpeedDown, 3.0f);
    EXPECT_EQ(ship.accelLeft, 0.008f);
    EXPECT_EQ(ship.accelRight, 0.008f);
    EXPECT_EQ(ship.accelUp, 0.006f);
    EXPECT_EQ(ship.accelDown, 0.006f);
    EXPECT_EQ(ship.speedScale, 0.088f);
}

TEST(MyShip, StartsWithTenFreeSlotsInAListOfItsOwn) {
    Flight flight;
    const MyShip& ship = makeMyShip(flight.screen, 300, 400);
    EXPECT_EQ(ship.maxTargets, 10);
    for (int i = 0; i < 10; ++i) {
        EXPECT_EQ(ship.shipTargetList[i], nullptr) << i;
    }
    const MyShip& other = makeMyShip(flight.screen, 300, 400);
    EXPECT_NE(other.shipTargetList, ship.shipTargetList);
}

TEST(MyShip, SaysThatItWasBorn) {
    Flight flight;
    const std::string said = capturedOutput([&] {
        make<MyShip>(nullptr, nullptr, nullptr, 0, 0, 39, 31, flight.screen, 640, 480, false);
    });
    EXPECT_EQ(said, "_____________________________________________________________\n"
                    "MyShip was born:\n"
                    "================\n"
                    "MyShip::energy = 65\n"
                    "MyShip::maxTargets = 10\n");
}

TEST(MyShip, PushedAgainstTheLeftEdgeStopsFourPixelsFromItWithHalfItsSpeed) {
    Flight flight;
    MyShip& ship = makeMyShip(flight.screen, 5, 200);
    ship.setGoingLeft(true);
    ship.speedLeft = 5.0f;
    ship.setFrameDelay(10);
    ship.control();
    EXPECT_EQ(ship.xFloat, 4.0f);
    EXPECT_EQ(ship.speedLeft, 2.5f);
}

TEST(MyShip, StopsDeadAtTheBottomWhateverItsSpeedWas) {
    Flight flight;
    for (const float speed : {0.5f, 3.0f, 100.0f}) {
        MyShip& ship = makeMyShip(flight.screen, 300, 446);
        ship.setGoingDown(true);
        ship.speedDown = speed;
        ship.setFrameDelay(10);
        ship.control();
        EXPECT_EQ(ship.speedDown, 0.0f) << speed;
        EXPECT_EQ(ship.yFloat, 446.0f) << speed;
    }
}

// A ship of 39 x 31 pixels on a field of 640 x 480: x goes from 4 to 597, y from 3 to 446.
struct EdgeCase {
    const char* rule;
    float x, y;
    float xAfter, yAfter;
    float left, right, up, down;  // speeds; 2 each before
};

const EdgeCase EDGES[] = {
    {"in the open nothing is touched", 300, 200, 300, 200, 2, 2, 2, 2},
    {"just inside the left edge", 4.01f, 200, 4.01f, 200, 2, 2, 2, 2},
    {"on the left edge the left speed is halved", 4, 200, 4, 200, 1, 2, 2, 2},
    {"beyond the left edge it is put back", -9, 200, 4, 200, 1, 2, 2, 2},
    {"just inside the right edge", 596.9f, 200, 596.9f, 200, 2, 2, 2, 2},
    {"on the right edge the right speed is halved", 597, 200, 597, 200, 2, 1, 2, 2},
    {"beyond the right edge it is put back", 650, 200, 597, 200, 2, 1, 2, 2},
    {"just inside the top", 300, 3.01f, 300, 3.01f, 2, 2, 2, 2},
    {"on the top edge the up speed is gone", 300, 3, 300, 3, 2, 2, 0, 2},
    {"beyond the top it is put back", 300, -9, 300, 3, 2, 2, 0, 2},
    {"just inside the bottom", 300, 445.9f, 300, 445.9f, 2, 2, 2, 2},
    {"on the bottom edge the down speed is gone", 300, 446, 300, 446, 2, 2, 2, 0},
    {"beyond the bottom it is put back", 300, 500, 300, 446, 2, 2, 2, 0},
    {"in a corner both edges hold", -9, 500, 4, 446, 1, 2, 2, 0},
};

TEST(MyShip, StaysOnTheField) {
    Flight flight;
    for (const EdgeCase& edge : EDGES) {
        SCOPED_TRACE(edge.rule);
        MyShip& ship = makeMyShip(flight.screen, 0, 0);
        ship.xFloat = edge.x;
        ship.yFloat = edge.y;
        ship.speedLeft = ship.speedRight = ship.speedUp = ship.speedDown = 2.0f;
        ship.setFrameDelay(0);
        ship.control();
        EXPECT_EQ(ship.xFloat, edge.xAfter);
        EXPECT_EQ(ship.yFloat, edge.yAfter);
        EXPECT_EQ(ship.speedLeft, edge.left);
        EXPECT_EQ(ship.speedRight, edge.right);
        EXPECT_EQ(ship.speedUp, edge.up);
        EXPECT_EQ(ship.speedDown, edge.down);
    }
}

TEST(MyShip, KeepsItsTopSpeedsAsMarginsToTheEdges) {
    Flight flight;
    MyShip& ship = makeMyShip(flight.screen, 0, 0, 320, 240);
    ship.maxSpeedLeft = 7.0f;
    ship.maxSpeedRight = 11.5f;
    ship.maxSpeedUp = 13.0f;
    ship.maxSpeedDown = 17.25f;
    ship.setFrameDelay(0);
    ship.control();
    EXPECT_EQ(ship.xFloat, 7.0f);
    EXPECT_EQ(ship.yFloat, 13.0f);
    ship.xFloat = ship.yFloat = 1000.0f;
    ship.control();
    EXPECT_EQ(ship.xFloat, 269.5f);   // 320 - 39 - 11.5
    EXPECT_EQ(ship.yFloat, 191.75f);  // 240 - 31 - 17.25
}

TEST(MyShip, GoesByTheFarEdgesOnAFieldThatIsTooSmallForIt) {
    Flight flight;
    MyShip& ship = makeMyShip(flight.screen, 0, 0, 45, 36);
    ship.setFrameDelay(0);
    ship.control();
    EXPECT_EQ(ship.xFloat, 2.0f);
    EXPECT_EQ(ship.yFloat, 2.0f);
}

TEST(MyShip, IsSeenAtTheEdgeOnlyInTheFrameAfter) {
    Flight flight;
    MyShip& ship = makeMyShip(flight.screen, 5, 200);
    ship.speedLeft = 4.0f;
    ship.setGoingLeft(true);
    ship.setFrameDelay(10);
    ship.control();
    EXPECT_EQ(ship.xFloat, 4.0f);
    EXPECT_EQ(ship.destRect.x, 1);  // 5 - 4 x 10 x 0.088 = 1.48
    ship.setFrameDelay(0);
    ship.control();
    EXPECT_EQ(ship.destRect.x, 4);
}

// Held left against the edge at 16 ms a frame; worked out apart from the game.
TEST(MyShip, EasesOffAtTheSideAndGoesOnPressing) {
    Flight flight;
    MyShip& ship = makeMyShip(flight.screen, 10, 200);
    ship.setGoingLeft(true);
    ship.speedLeft = 3.5f;
    ship.setFrameDelay(16);
    const struct {
        float x;
        double speed;
    } frames[] = {{4.891776f, 3.628}, {4, 1.878}, {4, 1.003}, {4, 0.5655}, {4, 0.34675}};
    for (const auto& frame : frames) {
        ship.control();
        EXPECT_NEAR(ship.xFloat, frame.x, 1e-5);
        EXPECT_NEAR(ship.speedLeft, frame.speed, 1e-5);
    }
}

TEST(MyShip, RunsItsHitFlash) {
    Flight flight;
    Pictures flashes(6, 16);
    MyShip& ship = makeMyShip(flight.screen, 300, 200);
    ship.setMiniExplosion(flashes.frames(), 16, 16);
    ship.miniExploding = true;
    ship.setFrameDelay(10);
    ship.control();
    EXPECT_EQ(flight.picturesDrawn(), std::vector<SDL_Surface*>{flashes[0]});
}

}  // namespace
