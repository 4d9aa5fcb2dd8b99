// SPDX-License-Identifier: MIT
#include "driver/battlefield.h"

#include "driver/webaddress.h"
#include "graphics/display.h"
#include "graphics/stars.h"

#include <cstdio>
#include <cstdlib>

namespace {

constexpr int FAILED = -1;  // result of the start-up calls of SDL and its mixer

constexpr int SCREEN_WIDTH_PX = 640;
constexpr int SCREEN_HEIGHT_PX = 480;
constexpr int SCREEN_BITS = 32;
constexpr Uint32 SCREEN_FLAGS = SDL_DOUBLEBUF | SDL_HWPALETTE;

constexpr int AUDIO_RATE_HZ = 22050;
constexpr int AUDIO_CHANNELS = 1;  // mono
constexpr int AUDIO_CHUNK_BYTES = 1024;
constexpr int ALL_CHANNELS = -1;
constexpr int FADE_OUT_MS = 1000;

constexpr int STAR_COUNT = 60;

constexpr int COUNT_DOWN_X = 318;
constexpr int COUNT_DOWN_Y = 220;
constexpr int COUNT_DOWN_START = 5;

// The clock starts as if a pass had just ended after this time: the first frame is a long one, by
// which time the stars have already moved.
constexpr Uint32 FIRST_FRAME_MS = 266;
constexpr Uint32 SLOW_FRAME_MS = 1000;  // a longer one may carry things through each other

}  // namespace

BattleField::BattleField(int fieldWidth, int fieldHeight, bool startFullscreen,
                         bool startWithoutSound)
    : fullscreen(startFullscreen), noSound(startWithoutSound) {
    setWidth(fieldWidth);
    setHeight(fieldHeight);
    startVideo();
    if (!noSound) {
        startAudio();
    }

    loadExplosions();
    createPlayer();
    loadSounds();
    createEnemies();
    createFormation();
    stars = new Stars(screen, width, height, STAR_COUNT);
    display = new Display(screen);
    createLaserPool();
    createRocketPool();
    loadTargetMarks();
    printBanner();
    display->setCountDownPosAndStart(COUNT_DOWN_X, COUNT_DOWN_Y, COUNT_DOWN_START);
    createTexts();

    runMainLoop();
    sayFarewell();
}

void BattleField::setWidth(int value) {
    width = value;
}

void BattleField::setHeight(int value) {
    height = value;
}

int BattleField::getWidth() {
    return width;
}

int BattleField::getHeight() {
    return height;
}

// The screen is always 640 x 480 with 32 bits a pixel, whatever the size of the field.
void BattleField::startVideo() {
    if (SDL_Init(SDL_INIT_VIDEO) == FAILED) {
        std::printf("Can't init SDL:  %s\n", SDL_GetError());
        std::exit(1);
    }
    if (fullscreen) {
        std::puts("Starting in fullscreen mode...");
        screen = SDL_SetVideoMode(SCREEN_WIDTH_PX, SCREEN_HEIGHT_PX, SCREEN_BITS,
                                  SDL_FULLSCREEN | SCREEN_FLAGS);
        SDL_ShowCursor(SDL_DISABLE);
    } else {
        std::puts("Starting in window mode...");
        screen = SDL_SetVideoMode(SCREEN_WIDTH_PX, SCREEN_HEIGHT_PX, SCREEN_BITS, SCREEN_FLAGS);
    }
    // Before the test: from here on every exit gives the display back.
    std::atexit(SDL_Quit);
    if (screen == nullptr) {
        std::printf("Can't set video mode: %s\n", SDL_GetError());
        std::exit(1);
    }
}

// No audio, no game: a player without a sound device starts again with --nosound.
void BattleField::startAudio() {
    std::puts("Starting with audio support...");
    if (SDL_Init(SDL_INIT_AUDIO) == FAILED) {
        std::printf("SDL_Init: %s\n", SDL_GetError());
        std::exit(1);
    }
    if (Mix_OpenAudio(AUDIO_RATE_HZ, AUDIO_S16LSB, AUDIO_CHANNELS, AUDIO_CHUNK_BYTES) == FAILED) {
        std::printf("Mix_OpenAudio: %s\n", SDL_GetError());
        std::exit(2);
    }
}

// clang-format off
void BattleField::printBanner() {
    std::puts("\n+------------------------------------------------------------------+");
    std::puts("|                        K R A V O L T I X                         |");
    std::puts("+------------------------------------------------------------------+ ");
    std::puts("|  Options:                                                        |");
    std::puts("|   --help, -?         :  print out this help message              |");
    std::puts("|   --fullscreen, -fs  :  start in fullscreen mode                 |");
    std::puts("|   --nosound,    -ns  :  start without sound                      |");
    std::puts("+------------------------------------------------------------------+ ");
    std::puts("|  Keys:                                                           |");
    std::puts("|   up    arrow        :  flying up                                |");
    std::puts("|   right arrow        :  flying down                              |");
    std::puts("|   left  arrow        :  flying left                              |");
    std::puts("|   right arrow        :  flying right                             |");
    std::puts("|   \"A\"                :  for laser shot                           |");
    std::puts("|   \"S\"                :  for rocket shot                          |");
    std::puts("+------------------------------------------------------------------+ \n");
    std::puts("READY for Testing?");
    std::puts("GO!\n");
    std::puts("First Challenge:");
    std::puts(" (a) Win against the \"test formation\"! ");
    std::puts(" (b) same as (a) without rocket shot! ;)");
}
// clang-format on

void BattleField::runMainLoop() {
    introDone = false;
    quit = false;
    lastTicks = 0;
    currentTicks = FIRST_FRAME_MS;
    gamePhase = PHASE_WAIT;
    while (!quit) {
        measureFrame();
        animate();
        eventHandler();
        currentTicks = SDL_GetTicks();
    }
}

// The frame time is what the pass before took, from its end to the end of the one before that.
void BattleField::measureFrame() {
    frameTime = currentTicks - lastTicks;
    lastTicks = currentTicks;
    if (frameTime == 0) {
        // Two passes within a millisecond: the only sleep in the loop.
        frameTime = 1;
        SDL_Delay(1);
    } else if (frameTime > SLOW_FRAME_MS && gamePhase == PHASE_PLAY) {
        std::puts("  (    Sorry, your framerate was too small!(?)    )");
        std::puts("  ( Perhaps you got now a very strange condition! )\n");
    } else {
        // The clock of this frame, until the end of the pass reads it again.
        currentTicks = SDL_GetTicks();
    }
}

void BattleField::sayFarewell() {
    if (!noSound) {
        std::puts("\nFade out all the audio channels in 1 second...");
        Mix_FadeOutChannel(ALL_CHANNELS, FADE_OUT_MS);
        Mix_FadeOutMusic(FADE_OUT_MS);
        SDL_Delay(FADE_OUT_MS);
        Mix_CloseAudio();
    }
    std::puts("\nThank you for testing!\n");
    std::puts("Questions? ... " KRAVOLTIX_WEB_ADDRESS "\n");
}
