// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_DRIVER_BATTLEFIELD_H
#define KRAVOLTIX_DRIVER_BATTLEFIELD_H

#include <SDL.h>
#include <SDL_mixer.h>

class Display;
class EnemyShip;
class FormationSevenBird;
class MyShip;
class MyShot;
class MyShotRocket;
class QELString;
class Stars;

// The whole game. Constructing a BattleField starts video and audio, loads every picture and sound,
// creates every object, and runs the main loop until the game is over; when the constructor returns,
// the game has been played and audio is closed. SDL itself is shut down by the exit handler that is
// registered at start-up. Build it with `new` and never delete it: it owns everything that it
// creates, and nothing is freed before the process ends. It takes some 400 MB of address space.
//
// Files are read relative to the working directory. Of the loads, only those of the texts and the
// display are checked; whatever else is missing is not seen or not heard. Times are milliseconds,
// positions pixels from the top left corner of the screen, y grows downward. Everything runs in one
// thread; only the mixer plays on a thread of its own.
class BattleField {
public:
    // Plays one game on a field of fieldWidth x fieldHeight pixels; 640 x 480 is the size of the
    // screen that is opened. A start-up that fails prints one line and ends the process with status
    // 1, or 2 when the mixer cannot be opened.
    BattleField(int fieldWidth, int fieldHeight, bool startFullscreen, bool startWithoutSound);

    void setWidth(int value);
    void setHeight(int value);
    int getWidth();
    int getHeight();

    // One frame, drawn and advanced; the main loop calls it once a pass, before eventHandler().
    void animate();

    // Empties the event queue; what the keys do is seen in the next animate().
    void eventHandler();

    // Whether the laser key, and whether the rocket key, is held now.
    void setShotKey1(bool held);
    void setShotKey2(bool held);

    // One frame of the player's laser, and of the rockets: trigger, then all shots in flight.
    void handleMyFirstShot();
    void handleMySecondShot();

    // One frame of the enemies' script.
    void handleFormationOne();

    // The steps of a game. They count down; several may be passed in one frame.
    enum GamePhase {
        PHASE_PLAY = 0,
        PHASE_COUNT_DOWN = 1,
        PHASE_HINT = 2,   // title and hint stand, Return is waited for
        PHASE_TITLE = 3,  // the title is typed
        PHASE_WAIT = 4,   // nothing but stars until the clock passes three seconds
    };

    // One shot for each press of a key: 3 -> 2 when the key is seen released, 2 -> 1 when it is
    // seen held, 1 -> 3 when the shot has left.
    enum TriggerState {
        TRIGGER_REQUESTED = 1,
        TRIGGER_ARMED = 2,
        TRIGGER_FIRED = 3,
    };

    static constexpr int ENEMIES = 7;
    static constexpr int EXPLOSION_FRAMES = 46;
    static constexpr int MINI_EXPLOSION_FRAMES = 7;

    // Slots of each shot pool. Shots take slot after slot and a used slot is never taken again, so
    // the pool is larger than any stock of ammunition that a game might give.
    static constexpr Uint32 SHOT_SLOTS = 16000000;

    // command line
    bool fullscreen;
    bool noSound;

    SDL_Surface* screen = nullptr;

    // who plays
    MyShip* myShip = nullptr;
    EnemyShip** enemyShips = nullptr;  // ENEMIES entries
    FormationSevenBird* formation = nullptr;
    int enemiesAlive = 0;

    SDL_Event event = {};  // the one being handled

    // what is drawn around them
    Stars* stars = nullptr;
    Display* display = nullptr;
    QELString* messageLine = nullptr;
    QELString* titleText = nullptr;
    QELString* hintText = nullptr;

    // field, in pixels
    int width = 0;
    int height = 0;

    // main loop, in milliseconds
    Uint32 lastTicks = 0;
    Uint32 currentTicks = 0;
    Uint32 frameTime = 0;  // what the last pass took; never 0 in animate()
    bool quit = false;
    int gamePhase = PHASE_WAIT;

    // pictures and sounds
    SDL_Surface* enemyImage = nullptr;
    SDL_Surface* enemyImageLeft = nullptr;
    SDL_Surface* enemyImageRight = nullptr;
    SDL_Surface* explosionFrames[EXPLOSION_FRAMES] = {};
    SDL_Surface* miniExplosionFrames[MINI_EXPLOSION_FRAMES] = {};  // the last one is never shown
    Mix_Chunk* soundExplode = nullptr;                             // enemies
    Mix_Chunk* soundExplode2 = nullptr;                            // player
    Mix_Chunk* soundMiniExplode1 = nullptr;
    Mix_Chunk* soundMiniExplode2 = nullptr;
    Mix_Chunk* soundShot1 = nullptr;  // laser
    Mix_Chunk* soundShot2 = nullptr;  // rocket
    Mix_Chunk* soundIntro = nullptr;
    Mix_Chunk* soundKeyboard = nullptr;

    // triggers: 1 laser, 2 rocket
    bool shotKey1 = false;
    Uint8 shotState1 = TRIGGER_FIRED;
    bool shotKey2 = false;
    Uint8 shotState2 = TRIGGER_FIRED;

    // formation script, in milliseconds
    Uint32 formationTime = 0;  // of play so far
    int formationTimer = 0;    // to the next ship that leaves or joins the formation
    int formationTimer2 = 0;   // to the next move of the formation
    int formationTimerDefault =
        0;                   // set and not read; the script has the value in its own constant
    int formationPhase = 0;  // next position of the cycle, 0 to 2

    SDL_Surface* laserShotImage = nullptr;
    SDL_Surface* rocketShotImage = nullptr;
    SDL_Surface* enemyRectTopLeft = nullptr;  // marks around a rocket's target
    SDL_Surface* enemyRectTopRight = nullptr;
    SDL_Surface* enemyRectBottomLeft = nullptr;
    SDL_Surface* enemyRectBottomRight = nullptr;

    // shot pools: "first" is the laser, "second" the rocket. A slot's pointer and age mean something
    // only while the slot is active.
    MyShot** myFirstShotList = nullptr;
    MyShotRocket** mySecondShotList = nullptr;
    Uint32 myFirstShotCount = 0;  // slots used so far: the next shot's slot
    Uint32 mySecondShotCount = 0;
    Uint32 myFirstShotMax = 0;  // slots
    Uint32 mySecondShotMax = 0;
    Uint32 myFirstShotLifetime = 0;  // milliseconds
    Uint32 mySecondShotLifetime = 0;
    Uint32* myFirstShotAge = nullptr;  // milliseconds
    Uint32* mySecondShotAge = nullptr;
    bool* myFirstShotActive = nullptr;
    bool* mySecondShotActive = nullptr;

    // messages and whether they have been given
    char textTargetDestroyed[20] = {};
    Uint8* enemyFlags = nullptr;  // ENEMIES entries, all 0, not read
    char textEnergyLow[50] = {};
    bool energyLowShown = false;
    char textNoMoreRockets[50] = {};
    bool rocketsEmptyShown = false;
    char textNoRockets[50] = {};
    char textLaserEmpty[50] = {};
    bool laserEmptyShown = false;
    char textLaserEmptyShort[50] = {};
    char textTitle[50] = {};
    char textHint[16] = {};
    bool introDone = false;  // the intro sound has started: Return means nothing any more

private:
    // battlefield.cpp: start, loop, end
    void startVideo();
    void startAudio();
    void printBanner();
    void runMainLoop();
    void measureFrame();
    void sayFarewell();

    // battlefield_roster.cpp: everything that the game loads and creates
    void loadExplosions();
    void createPlayer();
    void loadSounds();
    void createEnemies();
    void createFormation();
    void createLaserPool();
    void createRocketPool();
    void loadTargetMarks();
    void createTexts();

    // battlefield_frame.cpp: one frame
    void advancePhase();
    void drawPlayer();
    void drawStatus();
    void giveMessages();
    void checkPlayerExplosion();

    // battlefield_input.cpp: keys
    void keyPressed(SDLKey key);
    void keyReleased(SDLKey key);
    void playKeyboardSound();

    // battlefield_fire.cpp: the player's weapons
    void fireLaser();
    void moveLaserShots();
    void fireRocket();
    void moveRockets();

    // battlefield_formation.cpp: the enemies' script
    void moveFormation();
    void controlEnemy(EnemyShip* enemy);
    void removeEnemy(int slot);
};

#endif
