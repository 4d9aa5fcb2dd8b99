// SPDX-License-Identifier: MIT
#include "objects/ship.h"

#include "front/front.h"
#include "objects/flight.h"
#include "support/surfaces.h"

#include <gtest/gtest.h>

#include <type_traits>

namespace {

static_assert(std::is_base_of_v<FlyingObject, Ship>);
static_assert(!std::is_polymorphic_v<Ship>);
static_assert(std::is_same_v<decltype(Ship::leftImage), SDL_Surface*>);
static_assert(std::is_same_v<decltype(Ship::rightImage), SDL_Surface*>);
static_assert(std::is_same_v<decltype(&Ship::show), int (Ship::*)()>);
static_assert(std::is_same_v<decltype(&Ship::control), void (FlyingObject::*)()>);

// A ship with a red picture, a green one for left and a blue one for right.
struct Hangar : Flight {
    SDL_Surface* const straight = makePicture(39, 31, RED);
    SDL_Surface* const left = makePicture(39, 31, GREEN);
    SDL_Surface* const right = makePicture(39, 31, BLUE);
    Ship& ship = make<Ship>(straight, left, right, 120, 70, 39, 31, screen, 640, 480, true);
};

TEST(Ship, KeepsItsFieldsInTheOrderOfTheDesign) {
    Hangar hangar;
    Ship& s = hangar.ship;
    expectInThisOrder({
        {"miniExplosionSound", &s.miniExplosionSound},
        {"leftImage", &s.leftImage},
        {"rightImage", &s.rightImage},
    });
}

TEST(Ship, StartsWithWhatItIsGivenAndTenPointsOfEnergy) {
    Hangar hangar;
    for (const bool steered : {false, true}) {
        const Ship& ship = make<Ship>(hangar.straight, hangar.left, hangar.right, 120, 70, 39, 31,
                                      hangar.screen, 640, 480, steered);
        EXPECT_EQ(ship.image, hangar.straight);
        EXPECT_EQ(ship.leftImage, hangar.left);
        EXPECT_EQ(ship.rightImage, hangar.right);
        EXPECT_EQ(ship.xFloat, 120.0f);
        EXPECT_EQ(ship.yFloat, 70.0f);
        EXPECT_EQ(ship.width, 39);
        EXPECT_EQ(ship.height, 31);
        EXPECT_EQ(ship.screen, hangar.screen);
        EXPECT_EQ(ship.fieldWidth, 640);
        EXPECT_EQ(ship.fieldHeight, 480);
        EXPECT_EQ(ship.externallySteered, steered);
        EXPECT_EQ(ship.energy, 10);
    }
}

TEST(Ship, BanksTheWayThatItGoesAndLeftWhenBothAreWished) {
    const struct {
        const char* rule;
        bool left, right, up, down;
        Colour seen;
    } cases[] = {
        {"at rest it flies straight", false, false, false, false, RED},
        {"going left it banks left", true, false, false, false, GREEN},
        {"going right it banks right", false, true, false, false, BLUE},
        {"left wins over right", true, true, false, false, GREEN},
        {"going up it flies straight", false, false, true, false, RED},
        {"going down it flies straight", false, false, false, true, RED},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.rule);
        Hangar hangar;
        hangar.ship.setGoingLeft(c.left);
        hangar.ship.setGoingRight(c.right);
        hangar.ship.setGoingUp(c.up);
        hangar.ship.setGoingDown(c.down);
        EXPECT_EQ(hangar.ship.show(), 0);
        EXPECT_EQ(hangar.blits.size(), 1u);
        EXPECT_EQ(Box(boxOf(hangar.screen, c.seen)), Box(120, 70, 39, 31));
    }
}

TEST(Ship, BanksByTheWishAndNotByTheSpeed) {
    Hangar hangar;
    hangar.ship.speedLeft = 3.0f;
    hangar.ship.setGoingRight(true);
    hangar.ship.show();
    EXPECT_EQ(hangar.blits[0].picture, hangar.right);
}

TEST(Ship, HandsItsVeryRectanglesToSdl) {
    Hangar hangar;
    hangar.ship.show();
    ASSERT_EQ(hangar.blits.size(), 1u);
    EXPECT_EQ(hangar.blits[0].part, &hangar.ship.sourceRect);
    EXPECT_EQ(hangar.blits[0].onto, hangar.screen);
    EXPECT_EQ(hangar.blits[0].place, &hangar.ship.destRect);
}

TEST(Ship, TellsWhatSdlSaysToTheBlit) {
    Hangar hangar;
    front::hooks().SDL_UpperBlit = [](SDL_Surface*, SDL_Rect*, SDL_Surface*, SDL_Rect*) {
        return -2;
    };
    EXPECT_EQ(hangar.ship.show(), -2);
}

}  // namespace
