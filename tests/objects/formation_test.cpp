// SPDX-License-Identifier: MIT
#include "objects/formation.h"

#include "objects/flight.h"

#include <gtest/gtest.h>

#include <type_traits>

namespace {

static_assert(std::is_same_v<decltype(Formation::x), int>);
static_assert(std::is_same_v<decltype(Formation::y), int>);
static_assert(std::is_same_v<decltype(Formation::elementWidth), int>);
static_assert(std::is_same_v<decltype(Formation::elementHeight), int>);
static_assert(std::is_same_v<decltype(Formation::numberOfElementsHorizontal), int>);
static_assert(std::is_same_v<decltype(Formation::numberOfElementsVertical), int>);
static_assert(std::is_same_v<decltype(Formation::fieldWidth), int>);
static_assert(std::is_same_v<decltype(Formation::fieldHeight), int>);
static_assert(std::is_same_v<decltype(Formation::goingLeft), bool>);
static_assert(std::is_same_v<decltype(Formation::goingRight), bool>);
static_assert(std::is_same_v<decltype(Formation::goingUp), bool>);
static_assert(std::is_same_v<decltype(Formation::goingDown), bool>);
static_assert(!std::is_polymorphic_v<Formation>);

Formation& makeFormation() {
    return make<Formation>(100, 50, 49, 48, 7, 3, 640, 480);
}

// A number of the formation, with its two operations and the value that it starts with.
struct Number {
    const char* name;
    void (Formation::*set)(int);
    int (Formation::*get)();
    int Formation::*field;
    int start;
};

// clang-format off
const Number NUMBERS[] = {
    {"x", &Formation::setX, &Formation::getX, &Formation::x, 100},
    {"y", &Formation::setY, &Formation::getY, &Formation::y, 50},
    {"elementWidth", &Formation::setElementWidth, &Formation::getElementWidth,
     &Formation::elementWidth, 49},
    {"elementHeight", &Formation::setElementHeight, &Formation::getElementHeight,
     &Formation::elementHeight, 48},
    {"numberOfElementsHorizontal", &Formation::setNumberOfElementsHorizontal,
     &Formation::getNumberOfElementsHorizontal, &Formation::numberOfElementsHorizontal, 7},
    {"numberOfElementsVertical", &Formation::setNumberOfElementsVertical,
     &Formation::getNumberOfElementsVertical, &Formation::numberOfElementsVertical, 3},
};

// One of its four directions.
struct Wish {
    const char* name;
    void (Formation::*set)(bool);
    bool (Formation::*get)();
    bool Formation::* field;
};

const Wish WISHES[] = {
    {"left", &Formation::setGoingLeft, &Formation::getGoingLeft, &Formation::goingLeft},
    {"right", &Formation::setGoingRight, &Formation::getGoingRight, &Formation::goingRight},
    {"up", &Formation::setGoingUp, &Formation::getGoingUp, &Formation::goingUp},
    {"down", &Formation::setGoingDown, &Formation::getGoingDown, &Formation::goingDown},
};
// clang-format on

TEST(Formation, KeepsItsFieldsInTheOrderOfTheDesign) {
    Formation& f = makeFormation();
    expectInThisOrder({
        {"x", &f.x},
        {"y", &f.y},
        {"elementWidth", &f.elementWidth},
        {"elementHeight", &f.elementHeight},
        {"numberOfElementsHorizontal", &f.numberOfElementsHorizontal},
        {"numberOfElementsVertical", &f.numberOfElementsVertical},
        {"fieldWidth", &f.fieldWidth},
        {"fieldHeight", &f.fieldHeight},
        {"goingLeft", &f.goingLeft},
        {"goingRight", &f.goingRight},
        {"goingUp", &f.goingUp},
        {"goingDown", &f.goingDown},
    });
}

TEST(Formation, StartsWithWhatItIsGiven) {
    Formation& formation = makeFormation();
    for (const Number& number : NUMBERS) {
        SCOPED_TRACE(number.name);
        EXPECT_EQ(formation.*number.field, number.start);
        EXPECT_EQ((formation.*number.get)(), number.start);
    }
}

TEST(Formation, KeepsTheFieldAsGivenWhateverItsGrid) {
    Formation& formation = makeFormation();
    formation.setElementWidth(1000);
    formation.setNumberOfElementsVertical(1000);
    EXPECT_EQ(formation.fieldWidth, 640);
    EXPECT_EQ(formation.fieldHeight, 480);
    EXPECT_EQ(formation.getFieldWidth(), 640);
    EXPECT_EQ(formation.getFieldHeight(), 480);
}

TEST(Formation, StartsWithoutADirection) {
    Formation& formation = makeFormation();
    for (const Wish& wish : WISHES) {
        SCOPED_TRACE(wish.name);
        EXPECT_FALSE((formation.*wish.get)());
    }
}

TEST(Formation, StoresEachNumberAlone) {
    for (const Number& changed : NUMBERS) {
        Formation& formation = makeFormation();
        (formation.*changed.set)(-5);
        for (const Number& number : NUMBERS) {
            SCOPED_TRACE(testing::Message() << changed.name << " set, " << number.name);
            const int expected = &number == &changed ? -5 : number.start;
            EXPECT_EQ(formation.*number.field, expected);
            EXPECT_EQ((formation.*number.get)(), expected);
        }
    }
}

TEST(Formation, StoresEachDirectionAlone) {
    for (const Wish& changed : WISHES) {
        Formation& formation = makeFormation();
        (formation.*changed.set)(true);
        for (const Wish& wish : WISHES) {
            SCOPED_TRACE(testing::Message() << changed.name << " set, " << wish.name);
            EXPECT_EQ(formation.*wish.field, &wish == &changed);
            EXPECT_EQ((formation.*wish.get)(), &wish == &changed);
        }
        (formation.*changed.set)(false);
        EXPECT_FALSE((formation.*changed.get)());
    }
}

TEST(Formation, MovesItsOriginByAnOffsetAndTellsWhereItIsNow) {
    Formation& formation = makeFormation();
    EXPECT_EQ(formation.setXrelative(5), 105);
    EXPECT_EQ(formation.x, 105);
    EXPECT_EQ(formation.y, 50);
    EXPECT_EQ(formation.setYrelative(-60), -10);
    EXPECT_EQ(formation.y, -10);
    EXPECT_EQ(formation.x, 105);
}

}  // namespace
