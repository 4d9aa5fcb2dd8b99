// SPDX-License-Identifier: MIT
// Everything that the game loads and creates at start-up, in this order. Loads are not checked: a
// picture that is missing is not seen, a sound that is missing is not heard.
#include "driver/battlefield.h"

#include "graphics/qelstring.h"
#include "objects/enemyship.h"
#include "objects/formation7bird.h"
#include "objects/myship.h"

#include <SDL_image.h>

#include <cstdio>
#include <cstring>

namespace {

constexpr int SHIP_SIZE_PX = 39;
constexpr int PLAYER_LEFT_OF_CENTRE_PX = 20;
constexpr int PLAYER_ABOVE_BOTTOM_PX = 80;

constexpr int EXPLOSION_SIZE_PX = 128;
constexpr int MINI_EXPLOSION_SIZE_PX = 16;

constexpr int FORMATION_X = 180;
constexpr int FORMATION_Y = 100;
constexpr int FIRST_MOVE_MS = 10000;
constexpr int SWITCH_MS = 50000;
constexpr int FIRST_SWITCH_MS = 100000;

constexpr int ENEMY_FIRST_SHOT_SLOTS = 4;            // until setMaxShot() gives the enemy its own
constexpr double ENEMY_MAX_SPEED_DOWN_FACTOR = 1.6;  // the seven dive faster than other enemies

// They come from above, and two from the sides; the last number is how many shots an enemy may have
// in flight.
struct EnemyStart {
    float x, y;
    int maxShot;
};

// clang-format off
constexpr EnemyStart ENEMY_STARTS[BattleField::ENEMIES] = {
    {  0, -120, 2},
    {  0,  -80, 3},
    {-40,   80, 4},
    {300,  -40, 9},
    {680,   80, 4},
    {600,  -80, 3},
    {600, -120, 2},
};
// clang-format on

constexpr Uint32 LASER_LIFETIME_MS = 1000;
constexpr Uint32 ROCKET_LIFETIME_MS = 3000;

// Sounds are loaded with audio off too: the mixer gives none then, and playing none is silent.
Mix_Chunk* loadSound(const char* path) {
    return Mix_LoadWAV_RW(SDL_RWFromFile(path, "rb"), 1);
}

bool* makeActiveFlags(Uint32 slots) {
    bool* flags = new bool[slots];
    for (Uint32 i = 0; i < slots; ++i) {
        flags[i] = false;
    }
    return flags;
}

Uint32* makeAges(Uint32 slots) {
    Uint32* ages = new Uint32[slots];
    for (Uint32 i = 0; i < slots; ++i) {
        ages[i] = 0;
    }
    return ages;
}

}  // namespace

void BattleField::loadExplosions() {
    char path[40];
    for (int i = 0; i < EXPLOSION_FRAMES; ++i) {
        std::snprintf(path, sizeof path, "explosions/ex%04i.png", i);
        explosionFrames[i] = IMG_Load(path);
    }
    for (int i = 0; i < MINI_EXPLOSION_FRAMES; ++i) {
        std::snprintf(path, sizeof path, "explosions/mini/ex%03i.png", i);
        miniExplosionFrames[i] = IMG_Load(path);
    }
}

void BattleField::createPlayer() {
    SDL_Surface* right = IMG_Load("ships/ship01right.png");
    SDL_Surface* left = IMG_Load("ships/ship01left.png");
    SDL_Surface* straight = IMG_Load("ships/ship01.png");
    myShip = new MyShip(straight, left, right, width / 2 - PLAYER_LEFT_OF_CENTRE_PX,
                        height - PLAYER_ABOVE_BOTTOM_PX, SHIP_SIZE_PX, SHIP_SIZE_PX, screen, width,
                        height, false);
    enemyImage = IMG_Load("ships/enemy01.png");
    enemyImageLeft = IMG_Load("ships/enemy01left.png");
    enemyImageRight = IMG_Load("ships/enemy01right.png");
    myShip->setExplosion(explosionFrames, EXPLOSION_SIZE_PX, EXPLOSION_SIZE_PX);
    myShip->setMiniExplosion(miniExplosionFrames, MINI_EXPLOSION_SIZE_PX, MINI_EXPLOSION_SIZE_PX);
}

void BattleField::loadSounds() {
    soundExplode = loadSound("sounds/explode.wav");
    soundExplode2 = loadSound("sounds/explode2.wav");
    soundMiniExplode1 = loadSound("sounds/miniExplode1.wav");
    soundMiniExplode2 = loadSound("sounds/miniExplode2.wav");
    soundShot1 = loadSound("sounds/shot001b.wav");
    soundShot2 = loadSound("sounds/shot002.wav");
    soundIntro = loadSound("sounds/intro.wav");
    soundKeyboard = loadSound("sounds/keyboard.wav");
    myShip->explosionSound = soundExplode2;
    myShip->miniExplosionSound = soundMiniExplode2;
}

void BattleField::createEnemies() {
    enemyShips = new EnemyShip*[ENEMIES];
    enemyFlags = new Uint8[ENEMIES];
    enemiesAlive = 0;
    for (int i = 0; i < ENEMIES; ++i) {
        const EnemyStart& start = ENEMY_STARTS[i];
        EnemyShip* enemy =
            new EnemyShip(enemyImage, enemyImageLeft, enemyImageRight, 0, 0, SHIP_SIZE_PX,
                          SHIP_SIZE_PX, screen, width, height, ENEMY_FIRST_SHOT_SLOTS, true,
                          myShip->shipTargetList, myShip->maxTargets);
        enemyShips[i] = enemy;
        enemy->maxSpeedDown = static_cast<float>(enemy->maxSpeedDown * ENEMY_MAX_SPEED_DOWN_FACTOR);
        enemy->explosionSound = soundExplode;
        enemy->miniExplosionSound = soundMiniExplode1;
        enemyFlags[i] = 0;
        // Only the position: the rectangles follow with the first move, after the first drawing.
        enemy->xFloat = start.x;
        enemy->yFloat = start.y;
        enemy->setMaxShot(start.maxShot);
        enemy->setTarget(myShip);
        enemy->setExplosion(explosionFrames, EXPLOSION_SIZE_PX, EXPLOSION_SIZE_PX);
        enemy->setMiniExplosion(miniExplosionFrames, MINI_EXPLOSION_SIZE_PX,
                                MINI_EXPLOSION_SIZE_PX);
        ++enemiesAlive;
    }
}

void BattleField::createFormation() {
    formationTime = 0;
    formation =
        new FormationSevenBird(FORMATION_X, FORMATION_Y, width, height, myShip->shipTargetList);
    formationTimer2 = FIRST_MOVE_MS;
    formationTimerDefault = SWITCH_MS;
    formationTimer = FIRST_SWITCH_MS;
    formationPhase = 0;
}

// The lists of pointers are left as they come: nobody looks at a slot that is not active.
void BattleField::createLaserPool() {
    myFirstShotLifetime = LASER_LIFETIME_MS;
    myFirstShotMax = SHOT_SLOTS;
    myFirstShotList = new MyShot*[myFirstShotMax];
    laserShotImage = IMG_Load("shots/shot01a.png");
    myFirstShotActive = makeActiveFlags(myFirstShotMax);
    myFirstShotAge = makeAges(myFirstShotMax);
    shotKey1 = false;
    shotState1 = TRIGGER_FIRED;
    myFirstShotCount = 0;
}

void BattleField::createRocketPool() {
    mySecondShotMax = SHOT_SLOTS;
    mySecondShotLifetime = ROCKET_LIFETIME_MS;
    mySecondShotList = new MyShotRocket*[mySecondShotMax];
    rocketShotImage = IMG_Load("shots/shot01b.png");
    mySecondShotActive = makeActiveFlags(mySecondShotMax);
    mySecondShotAge = makeAges(mySecondShotMax);
    mySecondShotCount = 0;
    shotKey2 = false;
    shotState2 = TRIGGER_FIRED;
}

void BattleField::loadTargetMarks() {
    enemyRectTopLeft = IMG_Load("display/enemyrect_topleft.png");
    enemyRectTopRight = IMG_Load("display/enemyrect_topright.png");
    enemyRectBottomLeft = IMG_Load("display/enemyrect_bottomleft.png");
    enemyRectBottomRight = IMG_Load("display/enemyrect_bottomright.png");
}

void BattleField::createTexts() {
    messageLine = new QELString(screen);
    titleText = new QELString(screen);
    hintText = new QELString(screen);
    std::strcpy(textTargetDestroyed, "Target destroyed");
    std::strcpy(textEnergyLow, "Attetion xxx your energy is very low");
    energyLowShown = false;
    std::strcpy(textNoMoreRockets, "you have got no more rockets");
    rocketsEmptyShown = false;
    std::strcpy(textNoRockets, "no rockets");
    std::strcpy(textLaserEmpty, "your laser shot is empty now");
    laserEmptyShown = false;
    std::strcpy(textLaserEmptyShort, "laser empty");
    std::strcpy(textTitle, "Test of formation 7BIRD");
    std::strcpy(textHint, "hit Return");

    messageLine->setString("GO");
    messageLine->setPosition(10, 10, QELString::ALIGN_LEFT);
    messageLine->setType(QELString::TYPE_QUEUE);
    titleText->setString(textTitle);
    titleText->setPosition(320, 180, QELString::ALIGN_CENTRE);
    titleText->setType(QELString::TYPE_STAYS);
    hintText->setString(textHint);
    hintText->setPosition(320, 260, QELString::ALIGN_CENTRE);
    hintText->setType(QELString::TYPE_STAYS);
}
