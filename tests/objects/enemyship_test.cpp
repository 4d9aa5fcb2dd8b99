// SPDX-License-Identifier: MIT
#include "objects/enemyship.h"

#include "front/front.h"
#include "objects/flight.h"
#include "objects/myship.h"
#include "objects/shot.h"
#include "support/capture.h"
#include "support/surfaces.h"

#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <vector>

namespace {

static_assert(std::is_base_of_v<Ship, EnemyShip>);
static_assert(!std::is_polymorphic_v<EnemyShip>);
static_assert(std::is_same_v<decltype(EnemyShip::ownIndex), int>);
static_assert(std::is_same_v<decltype(EnemyShip::targetCount), int>);
static_assert(std::is_same_v<decltype(EnemyShip::ownShipTargetList), FlyingObject**>);
static_assert(std::is_same_v<decltype(EnemyShip::shotImage), SDL_Surface*>);
static_assert(std::is_same_v<decltype(EnemyShip::canShoot), bool>);
static_assert(std::is_same_v<decltype(EnemyShip::maxShot), int>);
static_assert(std::is_same_v<decltype(EnemyShip::shots), Shot**>);
static_assert(std::is_same_v<decltype(EnemyShip::shotActive), bool*>);
static_assert(std::is_same_v<decltype(EnemyShip::shotLimitY), int*>);
static_assert(std::is_same_v<decltype(EnemyShip::nextShotY), int*>);
static_assert(std::is_same_v<decltype(EnemyShip::shotReady), bool*>);
static_assert(std::is_same_v<decltype(EnemyShip::target), MyShip*>);
static_assert(std::is_same_v<decltype(&EnemyShip::show), int (Ship::*)()>);
static_assert(std::is_same_v<decltype(&EnemyShip::setTarget), void (EnemyShip::*)(MyShip*)>);
static_assert(std::is_same_v<decltype(&EnemyShip::setMaxShot), void (EnemyShip::*)(int)>);
static_assert(std::is_same_v<decltype(&EnemyShip::shot), void (EnemyShip::*)()>);
static_assert(std::is_same_v<decltype(&EnemyShip::shotControl), void (EnemyShip::*)()>);
static_assert(std::is_same_v<decltype(&EnemyShip::control), void (EnemyShip::*)()>);

constexpr char BIRTH[] = "_____________________________________________________________\n"
                         "enemyShip was born:\n"
                         "===================\n"
                         "enemyShip->energy = 10\n";
constexpr char LIST[] = "EnemyShip::ownShipTargetList: ";

// The player's ship of 39 x 31 pixels at (100, 200), and room for enemies in its target list.
struct Sky : Flight {
    Sky() {
        capturedOutput([this] {
            player =
                &make<MyShip>(nullptr, nullptr, nullptr, 100, 200, 39, 31, screen, 640, 480, false);
        });
    }

    // An enemy at (300, 100), steered by a formation or not; `said` is then its birth message.
    EnemyShip& enemy(bool steered = true) {
        EnemyShip* ship = nullptr;
        said = capturedOutput([&] {
            ship = &make<EnemyShip>(straight, left, right, 300, 100, 39, 39, screen, 640, 480, 4,
                                    steered, player->shipTargetList, 10);
        });
        ship->setTarget(player);
        ship->setExplosion(explosions.frames(), 128, 128);
        ship->setMiniExplosion(flashes.frames(), 16, 16);
        return *ship;
    }

    // The same, with shots.
    EnemyShip& armedEnemy(int slots = 4, bool steered = true) {
        EnemyShip& ship = enemy(steered);
        ship.setMaxShot(slots);
        for (int i = 0; i < slots; ++i) {
            ship.shots[i] = nullptr;
        }
        return ship;
    }

    SDL_Surface* const straight = makePicture(39, 39, RED);
    SDL_Surface* const left = makePicture(39, 39, WHITE);
    SDL_Surface* const right = makePicture(39, 39, BLACK);
    Pictures explosions{46, 128};
    Pictures flashes{6, 16};
    MyShip* player = nullptr;
    std::string said;
};

// One frame of the enemy; returns what it writes to the terminal.
std::string fly(EnemyShip& ship, unsigned int ms) {
    ship.setFrameDelay(ms);
    return capturedOutput([&] { ship.control(); });
}

// Birth and death

TEST(EnemyShip, KeepsItsFieldsInTheOrderOfTheDesign) {
    Sky sky;
    EnemyShip& e = sky.enemy();
    expectInThisOrder({
        {"rightImage", &e.rightImage},
        {"ownIndex", &e.ownIndex},
        {"targetCount", &e.targetCount},
        {"ownShipTargetList", &e.ownShipTargetList},
        {"shotImage", &e.shotImage},
        {"canShoot", &e.canShoot},
        {"maxShot", &e.maxShot},
        {"shots", &e.shots},
        {"shotActive", &e.shotActive},
        {"shotLimitY", &e.shotLimitY},
        {"nextShotY", &e.nextShotY},
        {"shotReady", &e.shotReady},
        {"target", &e.target},
    });
}

TEST(EnemyShip, StartsWithWhatItIsGiven) {
    Sky sky;
    for (const bool steered : {false, true}) {
        FlyingObject* list[3] = {};
        const EnemyShip& ship = make<EnemyShip>(sky.straight, sky.left, sky.right, 120, 70, 38, 31,
                                                sky.screen, 640, 480, 4, steered, list, 3);
        EXPECT_EQ(ship.image, sky.straight);
        EXPECT_EQ(ship.leftImage, sky.left);
        EXPECT_EQ(ship.rightImage, sky.right);
        EXPECT_EQ(ship.xFloat, 120.0f);
        EXPECT_EQ(ship.yFloat, 70.0f);
        EXPECT_EQ(ship.width, 38);
        EXPECT_EQ(ship.height, 31);
        EXPECT_EQ(ship.screen, sky.screen);
        EXPECT_EQ(ship.fieldWidth, 640);
        EXPECT_EQ(ship.fieldHeight, 480);
        EXPECT_EQ(ship.maxShot, 4);
        EXPECT_EQ(ship.externallySteered, steered);
        EXPECT_EQ(ship.ownShipTargetList, list);
        EXPECT_EQ(ship.targetCount, 3);
        EXPECT_EQ(ship.energy, 10);
        EXPECT_FALSE(ship.canShoot);
    }
}

TEST(EnemyShip, IsMuchSlowerThanThePlayer) {
    Sky sky;
    const EnemyShip& ship = sky.enemy();
    EXPECT_EQ(ship.speedScale, 0.01f);
    EXPECT_EQ(ship.maxSpeedUp, 4.0f);
    EXPECT_EQ(ship.maxSpeedDown, 0.5f);
    EXPECT_EQ(ship.maxSpeedLeft, 4.0f);
    EXPECT_EQ(ship.maxSpeedRight, 4.0f);
    EXPECT_EQ(ship.accelLeft, 0.004f);
    EXPECT_EQ(ship.accelRight, 0.004f);
    EXPECT_EQ(ship.accelUp, 0.006f);
    EXPECT_EQ(ship.accelDown, 0.006f);
}

TEST(EnemyShip, EntersItselfIntoTheFirstFreeSlotAndTellsTheOccupancy) {
    const struct {
        const char* rule;
        std::string taken;  // '#' for a taken slot
        int index;
        const char* tokens;
    } lists[] = {
        {"the first of ten free slots", "..........", 0, "0 F F F F F F F F F \n"},
        {"the third ship in the list", "##........", 2, "T T 2 F F F F F F F \n"},
        {"a gap between others", "##.#.#....", 2, "T T 2 T F T F F F F \n"},
        {"the last free slot", "#########.", 9, "T T T T T T T T T 9 \n"},
        {"a list of one", ".", 0, "0 \n"},
        {"a short list", "#..", 1, "T 1 F \n"},
    };
    for (const auto& c : lists) {
        SCOPED_TRACE(c.rule);
        Sky sky;
        FlyingObject& other = *sky.player;
        std::vector<FlyingObject*> list;
        for (const char mark : c.taken) {
            list.push_back(mark == '#' ? &other : nullptr);
        }
        std::vector<FlyingObject*> expected = list;
        EnemyShip* ship = nullptr;
        const std::string said = capturedOutput([&] {
            ship = &make<EnemyShip>(nullptr, nullptr, nullptr, 0, 0, 39, 39, sky.screen, 640, 480,
                                    4, true, list.data(), static_cast<int>(list.size()));
        });
        expected[static_cast<size_t>(c.index)] = ship;
        EXPECT_EQ(ship->ownIndex, c.index);
        EXPECT_EQ(list, expected);
        EXPECT_EQ(said, BIRTH + std::string(LIST) + c.tokens);
    }
}

TEST(EnemyShip, StaysOutOfAListThatIsFullOrHasNoSlots) {
    const struct {
        const char* rule;
        int slots;
        const char* tokens;
    } lists[] = {
        {"a full list: its number stands in place of the first slot", 3, "0 T T \n"},
        {"a list without slots", 0, "0 \n"},
    };
    for (const auto& c : lists) {
        SCOPED_TRACE(c.rule);
        Sky sky;
        FlyingObject* const other = sky.player;
        FlyingObject* list[4] = {other, other, other, nullptr};
        if (c.slots == 0) {
            list[0] = nullptr;
        }
        EnemyShip* ship = nullptr;
        const std::string said = capturedOutput([&] {
            ship = &make<EnemyShip>(nullptr, nullptr, nullptr, 0, 0, 39, 39, sky.screen, 640, 480,
                                    4, true, list, c.slots);
        });
        EXPECT_EQ(ship->ownIndex, 0);
        EXPECT_EQ(list[0], c.slots == 0 ? nullptr : other);
        EXPECT_EQ(list[1], other);
        EXPECT_EQ(list[3], nullptr);
        EXPECT_EQ(said, BIRTH + std::string(LIST) + c.tokens);
    }
}

TEST(EnemyShip, SaysThatItDiedAndLeavesTheListAlone) {
    Sky sky;
    EnemyShip& ship = sky.enemy();
    EXPECT_EQ(capturedOutput([&] { ship.~EnemyShip(); }), "EnemyShip died\n##############\n");
    EXPECT_EQ(sky.player->shipTargetList[0], &ship);
}

TEST(EnemyShip, FightsTheShipThatItIsGiven) {
    Sky sky;
    EnemyShip& ship = sky.enemy();
    ship.setTarget(nullptr);
    EXPECT_EQ(ship.target, nullptr);
    ship.setTarget(sky.player);
    EXPECT_EQ(ship.target, sky.player);
}

// Shot slots

TEST(EnemyShip, LoadsOnePictureForAllItsShots) {
    Sky sky;
    EnemyShip& ship = sky.enemy();
    EXPECT_TRUE(sky.loads.empty());
    ship.setMaxShot(4);
    EXPECT_EQ(sky.loads, std::vector<std::string>{"shots/e_shot01c.png"});
    EXPECT_EQ(ship.shotImage, sky.loadedPicture);
}

TEST(EnemyShip, LetsOnlyItsFirstSlotFireAtFirst) {
    Sky sky;
    EnemyShip& ship = sky.enemy();
    soilHeap(7);
    soilHeap(sizeof(void*) * 7);
    ship.setMaxShot(7);
    EXPECT_TRUE(ship.canShoot);
    EXPECT_EQ(ship.maxShot, 7);
    for (int i = 0; i < 7; ++i) {
        EXPECT_FALSE(ship.shotActive[i]) << i;
        EXPECT_EQ(ship.shotReady[i], i == 0) << i;
        // The places hold as many slots.
        ship.shots[i] = nullptr;
        ship.shotLimitY[i] = ship.nextShotY[i] = i;
    }
}

TEST(EnemyShip, ShootsUnseenWithoutItsPicture) {
    Sky sky;
    sky.loadedPicture = nullptr;
    EnemyShip& ship = sky.armedEnemy();
    EXPECT_TRUE(ship.canShoot);
    fly(ship, 10);
    fly(ship, 10);
    EXPECT_EQ(ship.shots[0]->image, nullptr);
    EXPECT_TRUE(ship.shotActive[0]);
}

TEST(EnemyShip, FiresAShotStraightDownAtFullSpeed) {
    Sky sky;
    EnemyShip& ship = sky.armedEnemy();
    ship.xFloat = 300.9f;
    ship.yFloat = 100.9f;
    ship.shot();
    ASSERT_TRUE(ship.shotActive[0]);
    const Shot& shot = *ship.shots[0];
    EXPECT_EQ(shot.image, sky.loadedPicture);
    EXPECT_EQ(shot.xFloat, 314.0f);
    EXPECT_EQ(shot.yFloat, 130.0f);
    EXPECT_EQ(shot.width, 11);
    EXPECT_EQ(shot.height, 8);
    EXPECT_EQ(shot.screen, sky.screen);
    EXPECT_EQ(shot.fieldWidth, 640);
    EXPECT_EQ(shot.fieldHeight, 480);
    EXPECT_FALSE(shot.externallySteered);
    EXPECT_TRUE(shot.active);
    EXPECT_EQ(shot.deathFactor, 8);
    EXPECT_EQ(shot.speedDown, 2.0f);
    EXPECT_EQ(shot.maxSpeedDown, 2.0f);
    EXPECT_EQ(shot.speedUp, 0.0f);
    EXPECT_FALSE(shot.goingUp);
    EXPECT_TRUE(shot.goingDown);
    EXPECT_FALSE(shot.goingLeft);
    EXPECT_FALSE(shot.goingRight);
}

TEST(EnemyShip, FiresFromWholePixelsCutTowardTheEdge) {
    Sky sky;
    EnemyShip& ship = sky.armedEnemy();
    ship.xFloat = -3.7f;
    ship.yFloat = -40.7f;
    ship.shot();
    EXPECT_EQ(ship.shots[0]->xFloat, 11.0f);
    EXPECT_EQ(ship.shots[0]->yFloat, -10.0f);
    EXPECT_EQ(ship.shotLimitY[0], 730);
}

TEST(EnemyShip, MeasuresItsShotsByTheWidthOfTheField) {
    const struct {
        const char* rule;
        int slots, fieldWidth, fieldHeight;
        int limit, next;
    } fields[] = {
        {"the field of the game", 4, 640, 480, 870, 315},
        {"the height does not matter", 4, 640, 1000, 870, 315},
        {"the share of a slot is cut to whole pixels", 3, 640, 480, 870, 376},
        {"a narrow field", 4, 200, 480, 430, 205},
        {"a single slot", 1, 640, 480, 870, 870},
    };
    for (const auto& c : fields) {
        SCOPED_TRACE(c.rule);
        Sky sky;
        EnemyShip& ship = sky.armedEnemy(c.slots);
        ship.fieldWidth = c.fieldWidth;
        ship.fieldHeight = c.fieldHeight;
        ship.shot();
        EXPECT_EQ(ship.shotLimitY[0], c.limit);
        EXPECT_EQ(ship.nextShotY[0], c.next);
        EXPECT_EQ(ship.shots[0]->fieldWidth, c.fieldWidth);
        EXPECT_EQ(ship.shots[0]->fieldHeight, c.fieldHeight);
    }
}

TEST(EnemyShip, DoesNotFireFromASlotWhoseShotStillFlies) {
    Sky sky;
    EnemyShip& ship = sky.armedEnemy();
    ship.shot();
    const Shot* const first = ship.shots[0];
    ship.shot();
    EXPECT_EQ(ship.shots[0], first);
    EXPECT_TRUE(ship.shotReady[0]) << "a slot stays ready until its shot is removed";
    for (int i = 1; i < 4; ++i) {
        EXPECT_FALSE(ship.shotActive[i]) << i;
    }
}

// A ship with a shot of slot 0 at a height; the next slot may fire beyond 315.
TEST(EnemyShip, FiresTheNextSlotInTheSameFrameOnceTheShotHasComeFarEnough) {
    const struct {
        const char* rule;
        float y;
        bool nextActive;
        bool fires;
    } cases[] = {
        {"at the very height it waits", 315.0f, false, false},
        {"beyond it fires", 315.01f, false, true},
        {"unless the slot's own shot still flies", 400.0f, true, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.rule);
        Sky sky;
        EnemyShip& ship = sky.armedEnemy();
        ship.shot();
        ship.shots[0]->yFloat = c.y;
        ship.shotActive[1] = c.nextActive;
        ship.shot();
        EXPECT_EQ(ship.shotReady[1], c.fires);
        EXPECT_EQ(ship.shots[1] != nullptr, c.fires);
        EXPECT_FALSE(ship.shotReady[2]);
    }
}

// The last of four shots has its limit at 870, and 870 / 4 is 217.
TEST(EnemyShip, MakesItsFirstSlotReadyByTheLastShotsShareOfItsLimit) {
    const struct {
        const char* rule;
        float y;
        bool firstActive;
        bool ready;
    } cases[] = {
        {"at the very height it waits", 217.0f, false, false},
        {"beyond it the first slot is ready", 217.2f, false, true},
        {"unless the first slot's shot still flies", 800.0f, true, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.rule);
        Sky sky;
        EnemyShip& ship = sky.armedEnemy();
        ship.shotReady[0] = false;
        ship.shotReady[3] = true;
        ship.shot();
        EXPECT_EQ(ship.shotLimitY[3], 870);
        ship.shots[3]->yFloat = c.y;
        ship.shotActive[0] = c.firstActive;
        ship.shot();
        EXPECT_EQ(ship.shotReady[0], c.ready);
        EXPECT_EQ(ship.shots[0], nullptr) << "it fires in the next frame";
    }
}

// Steered by a formation, 16 ms a frame; frames worked out apart from the game.
TEST(EnemyShip, DropsItsShotsInAStaggeredStream) {
    const struct {
        const char* rule;
        int slots, fieldWidth;
        int frames;
        std::vector<int> fired;  // frames, slot after slot
    } streams[] = {
        {"as in the game", 4, 640, 550, {1, 67, 133, 199, 265, 331, 397, 463, 529}},
        {"three slots on a narrow field", 3, 200, 200, {1, 37, 73, 109, 145, 181}},
        {"a single slot fires once in its life", 1, 640, 1000, {1}},
    };
    for (const auto& stream : streams) {
        SCOPED_TRACE(stream.rule);
        Sky sky;
        EnemyShip& ship = sky.armedEnemy(stream.slots);
        ship.fieldWidth = stream.fieldWidth;
        std::vector<Shot*> known(static_cast<size_t>(stream.slots));
        std::vector<int> fired;
        for (int frame = 1; frame <= stream.frames; ++frame) {
            fly(ship, 16);
            for (int i = 0; i < stream.slots; ++i) {
                Shot*& last = known[static_cast<size_t>(i)];
                if (ship.shots[i] != last) {
                    last = ship.shots[i];
                    EXPECT_EQ(static_cast<int>(fired.size()) % stream.slots, i);
                    fired.push_back(frame);
                }
            }
        }
        EXPECT_EQ(fired, stream.fired);
    }
}

TEST(EnemyShip, WithASingleSlotIsDoneAfterItsOnlyShot) {
    Sky sky;
    EnemyShip& ship = sky.armedEnemy(1);
    for (int frame = 1; frame <= 264; ++frame) {
        EXPECT_EQ(ship.shotActive[0], frame > 1) << frame;
        fly(ship, 16);
    }
    for (int frame = 0; frame < 1000; ++frame) {
        EXPECT_FALSE(ship.shotActive[0]);
        EXPECT_FALSE(ship.shotReady[0]);
        fly(ship, 16);
    }
}

// Shots in flight

// A shot of slot 0 at a place, tested in a frame of no time.
struct Duel : Sky {
    Duel() : ship(armedEnemy()) {
        ship.shot();
        shot = ship.shots[0];
        ship.setFrameDelay(0);
    }

    void test(float x, float y) {
        shot->xFloat = x;
        shot->yFloat = y;
        ship.shotControl();
    }

    EnemyShip& ship;
    Shot* shot;
};

TEST(EnemyShip, MovesAndDrawsItsShotsByItsOwnFrameTime) {
    Duel duel;
    duel.ship.setFrameDelay(25);
    duel.ship.shotControl();
    EXPECT_EQ(duel.shot->lifeTime, 25u);
    EXPECT_NEAR(duel.shot->yFloat, 134.4, 1e-4);  // 130 + 2 x 25 x 0.088
    EXPECT_EQ(duel.shot->xFloat, 314.0f);
    ASSERT_EQ(duel.blits.size(), 1u);
    EXPECT_EQ(duel.blits[0].place, &duel.shot->destRect);
    EXPECT_EQ(duel.blits[0].part, &duel.shot->sourceRect);
    EXPECT_EQ(Box(boxOf(duel.screen, GREEN)), Box(314, 134, 11, 8));
}

TEST(EnemyShip, LeavesSlotsWithoutAShotAlone) {
    Duel duel;
    duel.ship.shotActive[0] = false;
    duel.ship.setFrameDelay(25);
    duel.ship.shotControl();
    EXPECT_EQ(duel.shot->yFloat, 130.0f);
    EXPECT_TRUE(duel.blits.empty());
}

// The player's ship covers 100 to 139 and 200 to 231; a shot's centre line is 6 pixels from its left.
TEST(EnemyShip, HitsThePlayerOnlyWithinAllEdges) {
    const struct {
        const char* rule;
        float x, y;
        bool hit;
    } shots[] = {
        {"in the middle it hits", 114.0f, 225.0f, true},
        {"with its centre on the left edge it misses", 94.0f, 225.0f, false},
        {"with its centre just inside it hits", 94.01f, 225.0f, true},
        {"with its centre on the right edge it misses", 133.0f, 225.0f, false},
        {"with its centre just inside it hits", 132.99f, 225.0f, true},
        {"18 pixels below the top edge it misses", 114.0f, 218.0f, false},
        {"a little deeper it hits", 114.0f, 218.01f, true},
        {"on the bottom edge it misses", 114.0f, 231.0f, false},
        {"just above the bottom edge it hits", 114.0f, 230.99f, true},
        {"left of the ship it misses", 50.0f, 225.0f, false},
        {"right of the ship it misses", 200.0f, 225.0f, false},
        {"above the ship it misses", 114.0f, 100.0f, false},
        {"below the ship it misses", 114.0f, 300.0f, false},
    };
    for (const auto& c : shots) {
        SCOPED_TRACE(c.rule);
        Duel duel;
        duel.test(c.x, c.y);
        EXPECT_EQ(duel.player->energy, c.hit ? 57 : 65);
        EXPECT_EQ(duel.player->miniExploding, c.hit);
        EXPECT_EQ(duel.shot->active, !c.hit);
        EXPECT_EQ(duel.blits.size(), 1u) << "it is seen in the frame of its hit";
    }
}

// What a float can no longer tell from the edge is on the edge.
TEST(EnemyShip, ComparesItsShotsWithThePlayerInFloats) {
    const struct {
        const char* rule;
        float x, y;
        float tx, ty;
        int tw, th;
        bool hit;
    } shots[] = {
        {"a hair inside the left edge is no distance", 1e-8f, 20, 6, 0, 39, 39, false},
        {"a thousandth of a pixel is", 1e-3f, 20, 6, 0, 39, 39, true},
        {"so it is at the right edge", -1e-8f, 20, -33, 0, 39, 39, false},
        {"a thousandth of a pixel there hits", -1e-3f, 20, -33, 0, 39, 39, true},
        {"so it is below the top edge", 20, 1e-8f, 0, -18, 39, 39, false},
        {"a thousandth of a pixel there hits", 20, 1e-3f, 0, -18, 39, 39, true},
        {"so it is above the bottom edge", 20, 0.49999997f, 0, -19.5f, 39, 20, false},
        {"a thousandth of a pixel there hits", 20, 0.499f, 0, -19.5f, 39, 20, true},
    };
    for (const auto& c : shots) {
        SCOPED_TRACE(c.rule);
        Duel duel;
        duel.player->xFloat = c.tx;
        duel.player->yFloat = c.ty;
        duel.player->width = c.tw;
        duel.player->height = c.th;
        duel.test(c.x, c.y);
        EXPECT_EQ(duel.player->miniExploding, c.hit);
    }
}

TEST(EnemyShip, HitsThePlayerAtZeroEnergyButNotBelow) {
    const struct {
        const char* rule;
        int energy, after;
    } cases[] = {
        {"at 0 it is hit and goes below", 0, -8},
        {"at -1 it is not", -1, -1},
        {"nor is it when it has exploded", -666, -666},
        {"with its last point it is", 1, -7},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.rule);
        Duel duel;
        duel.player->energy = c.energy;
        duel.test(114, 225);
        EXPECT_EQ(duel.player->energy, c.after);
        EXPECT_EQ(duel.shot->active, c.energy == c.after);
    }
}

TEST(EnemyShip, TakesAsMuchEnergyAsTheShotsDeathFactorSays) {
    Duel duel;
    duel.shot->deathFactor = 5;
    duel.test(114, 225);
    EXPECT_EQ(duel.player->energy, 60);
}

TEST(EnemyShip, LightsTheHitFlashHigherNearThePlayersAxis) {
    const struct {
        const char* rule;
        float x;
        int flashX, flashY;
    } shots[] = {
        {"exactly 10 pixels inside the left edge: low", 104.0f, 101, 225},
        {"just deeper: raised by 14", 104.01f, 101, 211},
        {"exactly 15 pixels inside: raised by 14", 109.0f, 106, 211},
        {"just deeper: raised by 20", 109.01f, 106, 205},
        {"just more than 15 pixels inside the right edge: raised by 20", 117.99f, 114, 205},
        {"exactly 15 pixels inside: raised by 14", 118.0f, 115, 211},
        {"just more than 10 pixels inside: raised by 14", 122.99f, 119, 211},
        {"exactly 10 pixels inside the right edge: low", 123.0f, 120, 225},
        {"at the wing: low", 95.5f, 92, 225},
        {"at the other wing: low", 132.5f, 129, 225},
    };
    for (const auto& c : shots) {
        SCOPED_TRACE(c.rule);
        Duel duel;
        duel.player->miniExplosionFrame = 3;
        duel.player->miniExplosionTimer = 20;
        duel.test(c.x, 225.9f);
        EXPECT_TRUE(duel.player->miniExploding);
        EXPECT_EQ(duel.player->miniExplosionRect.x, c.flashX);
        EXPECT_EQ(duel.player->miniExplosionRect.y, c.flashY);
        EXPECT_EQ(duel.player->miniExplosionFrame, 0u);
        EXPECT_EQ(duel.player->miniExplosionTimer, 0u);
    }
}

TEST(EnemyShip, TellsNothingOfAHit) {
    Duel duel;
    EXPECT_EQ(capturedOutput([&] { duel.test(114, 225); }), "");
    EXPECT_EQ(duel.player->energy, 57);
}

TEST(EnemyShip, HitsByWhereTheShotFliesInThisFrame) {
    Duel duel;
    duel.ship.setFrameDelay(25);
    duel.test(114, 215);  // 4.4 pixels on, it is past 218
    EXPECT_EQ(duel.player->energy, 57);
}

TEST(EnemyShip, HasAShotThatHasHitFlyOnUnseenAndHarmless) {
    Duel duel;
    duel.test(114, 219);
    EXPECT_EQ(duel.player->energy, 57);
    duel.forget();
    duel.ship.setFrameDelay(25);
    duel.ship.shotControl();
    EXPECT_EQ(duel.player->energy, 57);
    EXPECT_TRUE(duel.blits.empty());
    EXPECT_NEAR(duel.shot->yFloat, 223.4, 1e-4);
    EXPECT_EQ(duel.shot->lifeTime, 25u);
    EXPECT_TRUE(duel.ship.shotActive[0]);
}

TEST(EnemyShip, RemovesAShotBeyondItsLimitWhetherItHasHitOrNot) {
    for (const bool seen : {true, false}) {
        Duel duel;
        duel.shot->active = seen;
        duel.test(400, 870.0f);
        EXPECT_TRUE(duel.ship.shotActive[0]);
        EXPECT_TRUE(duel.ship.shotReady[0]);
        duel.test(400, 870.1f);
        EXPECT_FALSE(duel.ship.shotActive[0]);
        EXPECT_FALSE(duel.ship.shotReady[0]);
    }
}

TEST(EnemyShip, GoesThroughAllItsShots) {
    Duel duel;
    duel.ship.shotReady[2] = duel.ship.shotReady[3] = true;
    duel.ship.shot();
    duel.ship.shots[2]->yFloat = 900.0f;
    duel.ship.setFrameDelay(25);
    duel.ship.shotControl();
    EXPECT_NEAR(duel.ship.shots[0]->yFloat, 134.4, 1e-4);
    EXPECT_NEAR(duel.ship.shots[3]->yFloat, 134.4, 1e-4);
    EXPECT_TRUE(duel.ship.shotActive[0]);
    EXPECT_FALSE(duel.ship.shotActive[2]);
    EXPECT_TRUE(duel.ship.shotActive[3]);
}

// One frame

TEST(EnemyShip, MovesThenFiresFromWhereItIsNow) {
    Sky sky;
    EnemyShip& ship = sky.armedEnemy();
    ship.speedRight = 4.0f;
    ship.speedDown = 0.5f;
    ship.goingRight = ship.goingDown = true;
    fly(ship, 100);
    EXPECT_NEAR(ship.xFloat, 304.0, 1e-3);  // 300 + 4 x 100 x 0.01
    EXPECT_NEAR(ship.yFloat, 100.5, 1e-3);  // 100 + 0.5 x 100 x 0.01
    EXPECT_EQ(ship.shots[0]->xFloat, static_cast<float>(static_cast<int>(ship.xFloat) + 14));
    EXPECT_EQ(ship.shots[0]->yFloat, 130.0f);
}

TEST(EnemyShip, MovesANewShotFromTheNextFrameOn) {
    Sky sky;
    EnemyShip& ship = sky.armedEnemy();
    fly(ship, 25);
    EXPECT_EQ(ship.shots[0]->yFloat, 130.0f);
    EXPECT_EQ(ship.shots[0]->lifeTime, 0u);
    EXPECT_TRUE(sky.blits.empty());
    fly(ship, 25);
    EXPECT_NEAR(ship.shots[0]->yFloat, 134.4, 1e-4);
    EXPECT_EQ(sky.blits.size(), 1u);
}

TEST(EnemyShip, DrawsItsHitFlashBeforeItsShots) {
    Sky sky;
    EnemyShip& ship = sky.armedEnemy();
    ship.shot();
    ship.miniExploding = true;
    fly(ship, 10);
    const std::vector<SDL_Surface*> drawn = {sky.flashes[0], sky.loadedPicture};
    EXPECT_EQ(sky.picturesDrawn(), drawn);
}

TEST(EnemyShip, FiresOnlyWhenItCanAndIsAlive) {
    const struct {
        const char* rule;
        bool canShoot;
        int energy;
        bool fires;
    } cases[] = {
        {"a live ship fires", true, 10, true},
        {"with its last point too", true, 1, true},
        {"at 0 it does not", true, 0, false},
        {"exploded it does not", true, -666, false},
        {"without shots it does not", false, 10, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.rule);
        Sky sky;
        EnemyShip& ship = sky.armedEnemy();
        ship.canShoot = c.canShoot;
        ship.energy = c.energy;
        fly(ship, 10);
        EXPECT_EQ(ship.shotActive[0], c.fires);
    }
}

TEST(EnemyShip, HitsWithItsShotsInFlightThoughItIsDead) {
    for (const int energy : {0, -666}) {
        for (const bool steered : {false, true}) {
            Sky sky;
            EnemyShip& ship = sky.armedEnemy(4, steered);
            ship.shot();
            ship.shots[0]->xFloat = 114.0f;
            ship.shots[0]->yFloat = 225.0f;
            ship.energy = energy;
            fly(ship, 10);
            EXPECT_EQ(sky.player->energy, 57);
        }
    }
}

TEST(EnemyShip, ExplodesOnceAFrameFromZeroEnergyOn) {
    const struct {
        const char* rule;
        int energy;
        bool explodes;
    } cases[] = {
        {"with its last point it does not", 1, false},
        {"at 0 it does", 0, true},
        {"below 0 it does", -7, true},
        {"the owner has to stop it when it has exploded", -666, true},
    };
    for (const auto& c : cases) {
        for (const bool steered : {false, true}) {
            SCOPED_TRACE(testing::Message() << c.rule << ", steered " << steered);
            Sky sky;
            EnemyShip& ship = sky.armedEnemy(4, steered);
            ship.energy = c.energy;
            EXPECT_EQ(fly(ship, 0), c.explodes ? "FlyingObject->explode()\n" : "");
            EXPECT_EQ(sky.blits.size(), c.explodes ? 1u : 0u);
            fly(ship, 51);
            EXPECT_EQ(ship.explosionFrame, c.explodes ? 1u : 0u);
        }
    }
}

TEST(EnemyShip, DrawsItsExplosionOverItsShots) {
    for (const bool steered : {false, true}) {
        Sky sky;
        EnemyShip& ship = sky.armedEnemy(4, steered);
        ship.shot();
        ship.energy = 0;
        fly(ship, 10);
        const std::vector<SDL_Surface*> drawn = {sky.loadedPicture, sky.explosions[0]};
        EXPECT_EQ(sky.picturesDrawn(), drawn);
    }
}

// The enemy stands at (300, 100).
TEST(EnemyShip, HoversAboveThePlayerWhenItSteersItself) {
    const struct {
        const char* rule;
        float tx, ty;
        bool left, right, up, down;
    } cases[] = {
        {"above the player, 50 pixels up, it coasts", 300, 150, false, false, false, false},
        {"10 pixels left of it: coasts", 290, 150, false, false, false, false},
        {"just farther left: goes left", 289.9f, 150, true, false, false, false},
        {"10 pixels right of it: coasts", 310, 150, false, false, false, false},
        {"just farther right: goes right", 310.1f, 150, false, true, false, false},
        {"40 pixels below: coasts", 300, 140, false, false, false, false},
        {"just nearer: goes up", 300, 139.9f, false, false, true, false},
        {"60 pixels below: coasts", 300, 160, false, false, false, false},
        {"just farther: goes down", 300, 160.1f, false, false, false, true},
        {"above the enemy: goes up", 300, 0, false, false, true, false},
        {"far off on both axes", 600, 400, false, true, false, true},
        {"far off on the other side", 0, 0, true, false, true, false},
    };
    for (const auto& c : cases) {
        for (const bool before : {false, true}) {
            SCOPED_TRACE(testing::Message() << c.rule << ", flags were " << before);
            Sky sky;
            EnemyShip& ship = sky.armedEnemy(4, false);
            ship.goingLeft = ship.goingRight = ship.goingUp = ship.goingDown = before;
            sky.player->xFloat = c.tx;
            sky.player->yFloat = c.ty;
            fly(ship, 0);
            EXPECT_EQ(ship.goingLeft, c.left);
            EXPECT_EQ(ship.goingRight, c.right);
            EXPECT_EQ(ship.goingUp, c.up);
            EXPECT_EQ(ship.goingDown, c.down);
        }
    }
}

TEST(EnemyShip, SteersForTheNextFrame) {
    Sky sky;
    EnemyShip& ship = sky.armedEnemy(4, false);
    fly(ship, 20);
    EXPECT_TRUE(ship.goingLeft);
    EXPECT_EQ(ship.xFloat, 300.0f);
    fly(ship, 20);
    EXPECT_LT(ship.xFloat, 300.0f);
}

TEST(EnemyShip, LeavesItsFlagsToItsFormation) {
    for (const bool before : {false, true}) {
        Sky sky;
        EnemyShip& ship = sky.armedEnemy(4, true);
        ship.goingLeft = ship.goingRight = ship.goingUp = ship.goingDown = before;
        fly(ship, 0);
        EXPECT_EQ(ship.goingLeft, before);
        EXPECT_EQ(ship.goingRight, before);
        EXPECT_EQ(ship.goingUp, before);
        EXPECT_EQ(ship.goingDown, before);
    }
}

TEST(EnemyShip, DoesNotSteerWhileItExplodes) {
    Sky sky;
    EnemyShip& ship = sky.armedEnemy(4, false);
    ship.energy = 0;
    ship.goingRight = ship.goingDown = true;
    fly(ship, 10);
    EXPECT_FALSE(ship.goingLeft);
    EXPECT_TRUE(ship.goingRight);
    EXPECT_TRUE(ship.goingDown);
}

}  // namespace
