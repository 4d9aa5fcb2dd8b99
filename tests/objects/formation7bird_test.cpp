// SPDX-License-Identifier: MIT
#include "objects/formation7bird.h"

#include "objects/flight.h"
#include "objects/flyingobject.h"
#include "objects/formation.h"
#include "support/surfaces.h"

#include <gtest/gtest.h>

#include <type_traits>
#include <vector>

namespace {

static_assert(FormationSevenBird::SLOTS == 7);
static_assert(std::is_same_v<decltype(FormationSevenBird::ships), FlyingObject**>);
static_assert(std::is_same_v<decltype(FormationSevenBird::slotX), int[7]>);
static_assert(std::is_same_v<decltype(FormationSevenBird::slotY), int[7]>);
static_assert(std::is_same_v<decltype(FormationSevenBird::x), int>);
static_assert(std::is_same_v<decltype(FormationSevenBird::y), int>);
static_assert(std::is_same_v<decltype(FormationSevenBird::elementWidth), int>);
static_assert(std::is_same_v<decltype(FormationSevenBird::elementHeight), int>);
static_assert(std::is_same_v<decltype(FormationSevenBird::fieldWidth), int>);
static_assert(std::is_same_v<decltype(FormationSevenBird::fieldHeight), int>);
static_assert(!std::is_polymorphic_v<FormationSevenBird>);
static_assert(!std::is_base_of_v<Formation, FormationSevenBird>);

// Where the slots stand with the reference point at (180, 100).
const int SLOT_X[7] = {180, 220, 260, 300, 340, 380, 420};
const int SLOT_Y[7] = {180, 140, 100, 140, 100, 140, 180};

// A list of ten targets: eight live, externally steered ships, each on the slot of its number, the
// eighth far below, and two free entries.
struct Wing : Flight {
    Wing() {
        for (int i = 0; i < 8; ++i) {
            const int x = i < 7 ? SLOT_X[i] : 10;
            const int y = i < 7 ? SLOT_Y[i] : 400;
            ships[i] = &make<FlyingObject>(nullptr, x, y, 39, 39, screen, 640, 480, true);
            ships[i]->energy = 10;
            ships[i]->setFrameDelay(20);
        }
    }

    FlyingObject* ships[10] = {};
    FormationSevenBird& formation = make<FormationSevenBird>(180, 100, 640, 480, ships);
};

TEST(FormationSevenBird, KeepsItsFieldsInTheOrderOfTheDesign) {
    Wing wing;
    FormationSevenBird& f = wing.formation;
    expectInThisOrder({
        {"ships", &f.ships},
        {"slotX", &f.slotX},
        {"slotY", &f.slotY},
        {"x", &f.x},
        {"y", &f.y},
        {"elementWidth", &f.elementWidth},
        {"elementHeight", &f.elementHeight},
        {"fieldWidth", &f.fieldWidth},
        {"fieldHeight", &f.fieldHeight},
    });
}

TEST(FormationSevenBird, StartsWithWhatItIsGivenAndElementsOfFortyNinePixels) {
    Wing wing;
    EXPECT_EQ(wing.formation.ships, wing.ships);
    EXPECT_EQ(wing.formation.x, 180);
    EXPECT_EQ(wing.formation.y, 100);
    EXPECT_EQ(wing.formation.elementWidth, 49);
    EXPECT_EQ(wing.formation.elementHeight, 49);
    EXPECT_EQ(wing.formation.fieldWidth, 640);
    EXPECT_EQ(wing.formation.fieldHeight, 480);
}

TEST(FormationSevenBird, StandsInAWWithColumnsAndRowsFortyPixelsApart) {
    Wing wing;
    for (int i = 0; i < 7; ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(wing.formation.slotX[i], SLOT_X[i]);
        EXPECT_EQ(wing.formation.slotY[i], SLOT_Y[i]);
    }
}

TEST(FormationSevenBird, MovesAllItsSlotsWithTheReferencePoint) {
    Wing wing;
    wing.formation.setPosition(20, 40);
    EXPECT_EQ(wing.formation.x, 20);
    EXPECT_EQ(wing.formation.y, 40);
    EXPECT_EQ(wing.formation.slotX[6], 260);
    EXPECT_EQ(wing.formation.slotY[6], 120);
    EXPECT_EQ(wing.formation.slotX[2], 100);
    EXPECT_EQ(wing.formation.slotY[2], 40);
    for (int i = 0; i < 7; ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(wing.formation.slotX[i], SLOT_X[i] - 160);
        EXPECT_EQ(wing.formation.slotY[i], SLOT_Y[i] - 60);
    }
}

TEST(FormationSevenBird, LeavesTheShipsAloneWhenItIsMoved) {
    Wing wing;
    wing.formation.setPosition(20, 40);
    EXPECT_FALSE(wing.ships[0]->goingLeft);
    EXPECT_EQ(wing.ships[0]->xFloat, 180.0f);
}

// Where a ship stands from its slot on one axis, and where it is sent.
struct BandCase {
    const char* rule;
    float offset;
    bool back;  // left, or up
    bool on;    // right, or down
};

const BandCase BAND[] = {
    {"on its slot it coasts", 0.0f, false, false},
    {"10 pixels beyond it coasts still", 10.0f, false, false},
    {"a hair farther it turns back", 10.0001f, true, false},
    {"10.5 pixels beyond it turns back", 10.5f, true, false},
    {"far beyond it turns back", 300.0f, true, false},
    {"10 pixels before its slot it coasts", -10.0f, false, false},
    {"a hair farther off it flies on", -10.0001f, false, true},
    {"far off it flies on", -300.0f, false, true},
};

TEST(FormationSevenBird, SendsShipsSidewaysToTheirSlotsOutsideABandOfTenPixels) {
    for (const BandCase& band : BAND) {
        for (const bool before : {false, true}) {
            SCOPED_TRACE(testing::Message() << band.rule << ", flags were " << before);
            Wing wing;
            wing.formation.setPosition(0, 100);
            FlyingObject& ship = *wing.ships[0];
            ship.setFrameDelay(0);
            ship.xFloat = band.offset;
            ship.goingLeft = ship.goingRight = before;
            wing.formation.control();
            EXPECT_EQ(ship.goingLeft, band.back);
            EXPECT_EQ(ship.goingRight, band.on);
        }
    }
}

TEST(FormationSevenBird, SendsShipsUpAndDownToTheirSlotsOutsideABandOfTenPixels) {
    for (const BandCase& band : BAND) {
        for (const bool before : {false, true}) {
            SCOPED_TRACE(testing::Message() << band.rule << ", flags were " << before);
            Wing wing;
            wing.formation.setPosition(180, -80);
            FlyingObject& ship = *wing.ships[0];
            ship.setFrameDelay(0);
            ship.yFloat = band.offset;
            ship.goingUp = ship.goingDown = before;
            wing.formation.control();
            EXPECT_EQ(ship.goingUp, band.back);
            EXPECT_EQ(ship.goingDown, band.on);
        }
    }
}

TEST(FormationSevenBird, SendsEveryShipToTheSlotOfItsNumber) {
    Wing wing;
    wing.formation.control();
    for (int i = 0; i < 7; ++i) {
        SCOPED_TRACE(i);
        const FlyingObject& ship = *wing.ships[i];
        EXPECT_FALSE(ship.goingLeft || ship.goingRight || ship.goingUp || ship.goingDown);
    }
    for (int i = 0; i < 7; ++i) {
        wing.ships[i]->xFloat += i % 2 == 0 ? 11.0f : -11.0f;
        wing.ships[i]->yFloat += i % 2 == 0 ? -11.0f : 11.0f;
    }
    wing.formation.control();
    for (int i = 0; i < 7; ++i) {
        SCOPED_TRACE(i);
        const FlyingObject& ship = *wing.ships[i];
        EXPECT_EQ(ship.goingLeft, i % 2 == 0);
        EXPECT_EQ(ship.goingRight, i % 2 != 0);
        EXPECT_EQ(ship.goingUp, i % 2 != 0);
        EXPECT_EQ(ship.goingDown, i % 2 == 0);
    }
}

TEST(FormationSevenBird, MovesAShipByTheFlagsOfTheFrameBefore) {
    Wing wing;
    FlyingObject& ship = *wing.ships[3];
    ship.xFloat = 100.0f;
    wing.formation.control();
    EXPECT_EQ(ship.xFloat, 100.0f);
    EXPECT_TRUE(ship.goingRight);
    wing.formation.control();
    EXPECT_GT(ship.xFloat, 100.0f);
}

TEST(FormationSevenBird, SteersAfterItHasMovedTheShip) {
    Wing wing;
    FlyingObject& ship = *wing.ships[3];
    ship.xFloat = 309.0f;
    ship.speedRight = 5.0f;
    ship.goingRight = true;
    wing.formation.control();
    EXPECT_GT(ship.xFloat, 310.0f);
    EXPECT_TRUE(ship.goingLeft);
    EXPECT_FALSE(ship.goingRight);
}

TEST(FormationSevenBird, MovesEveryShipOnceAFrame) {
    Wing wing;
    for (int i = 0; i < 7; ++i) {
        wing.ships[i]->speedLeft = 1.0f;
        wing.ships[i]->accelLeft = 0.0f;
    }
    wing.formation.control();
    for (int i = 0; i < 7; ++i) {
        SCOPED_TRACE(i);
        EXPECT_NEAR(wing.ships[i]->xFloat, SLOT_X[i] - 1.76, 1e-4);
    }
}

TEST(FormationSevenBird, StepsTheHitFlashOfItsShips) {
    Wing wing;
    Pictures flashes(6, 16);
    wing.ships[5]->setMiniExplosion(flashes.frames(), 16, 16);
    wing.ships[5]->miniExploding = true;
    wing.formation.control();
    EXPECT_EQ(wing.picturesDrawn(), std::vector<SDL_Surface*>{flashes[0]});
}

// A ship that would move and would be sent left.
void sendAway(FlyingObject& ship) {
    ship.xFloat += 50.0f;
    ship.speedUp = 1.0f;
}

TEST(FormationSevenBird, SteersOnlyLiveShipsThatLeaveTheSteeringToIt) {
    const struct {
        const char* rule;
        bool steered;
        int energy;
        bool moved;
    } ships[] = {
        {"a live ship is steered", true, 10, true},
        {"with its last point of energy too", true, 1, true},
        {"at energy 0 it is left alone", true, 0, false},
        {"so it is when it has exploded", true, -666, false},
        {"a ship that steers itself is left alone", false, 10, false},
    };
    for (const auto& c : ships) {
        for (int i = 0; i < 7; ++i) {
            SCOPED_TRACE(testing::Message() << c.rule << ", ship " << i);
            Wing wing;
            FlyingObject& ship = *wing.ships[i];
            ship.externallySteered = c.steered;
            ship.energy = c.energy;
            sendAway(ship);
            wing.formation.control();
            EXPECT_EQ(ship.yFloat != static_cast<float>(SLOT_Y[i]), c.moved);
            EXPECT_EQ(ship.goingLeft, c.moved);
        }
    }
}

TEST(FormationSevenBird, SkipsTheGapsInItsListAndGoesOnBehindThem) {
    Wing wing;
    for (const int gone : {0, 2, 3}) {
        wing.ships[gone] = nullptr;
    }
    for (const int left : {1, 4, 5, 6}) {
        sendAway(*wing.ships[left]);
    }
    wing.formation.control();
    for (const int left : {1, 4, 5, 6}) {
        EXPECT_TRUE(wing.ships[left]->goingLeft) << left;
    }
}

TEST(FormationSevenBird, LeavesTheEighthTargetAlone) {
    Wing wing;
    sendAway(*wing.ships[7]);
    wing.formation.control();
    EXPECT_EQ(wing.ships[7]->yFloat, 400.0f);
    EXPECT_FALSE(wing.ships[7]->goingRight);
}

}  // namespace
