// SPDX-License-Identifier: MIT
#include "objects/formation7bird.h"

#include "front/front.h"
#include "objects/flyingobject.h"

#include <gtest/gtest.h>

namespace {

TEST(FormationSevenBird, MovesAllItsSlotsWithTheReferencePoint) {
    FlyingObject* nobody[FormationSevenBird::SLOTS] = {};
    FormationSevenBird formation(180, 100, 640, 480, nobody);
    formation.setPosition(20, 40);
    EXPECT_EQ(formation.slotX[6], 260);
    EXPECT_EQ(formation.slotY[6], 120);
    EXPECT_EQ(formation.slotX[2], 100);
    EXPECT_EQ(formation.slotY[2], 40);
}

}  // namespace
