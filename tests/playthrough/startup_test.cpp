// SPDX-License-Identifier: MIT
// From the start of the program to its first frame, and what stops it on the way.
#include "playthrough/texts.h"
#include "support/program.h"
#include "support/surfaces.h"

#include <SDL_image.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>

namespace {

using Lines = std::vector<std::string>;

constexpr char LEAVE_AT_ONCE[] = "frame 1 quit\n";

// Frames of 100 ms: Return in frame 80, the countdown from frame 155, play from frame 221.
constexpr char UNTIL_PLAY[] = "frame 1 time 100\n"
                              "frame 80 down return\n"
                              "frame 155 picture countdown.bmp\n"
                              "frame 221 picture first.bmp\n"
                              "frame 222 picture second.bmp\n"
                              "frame 222 quit\n";

Lines firstCalls(const ProgramResult& result, size_t count) {
    Lines all = result.callsOf("");
    all.resize(count);
    return all;
}

std::string numbered(const char* format, int number) {
    char path[64];
    std::snprintf(path, sizeof path, format, number);
    return path;
}

// Everything that the game loads, in its order.
Lines expectedLoads() {
    Lines files;
    for (int i = 0; i <= 45; ++i) {
        files.push_back(numbered("explosions/ex%04i.png", i));
    }
    for (int i = 0; i <= 6; ++i) {
        files.push_back(numbered("explosions/mini/ex%03i.png", i));
    }
    for (const char* file :
         {"ships/ship01right.png", "ships/ship01left.png", "ships/ship01.png", "ships/enemy01.png",
          "ships/enemy01left.png", "ships/enemy01right.png", "sounds/explode.wav",
          "sounds/explode2.wav", "sounds/miniExplode1.wav", "sounds/miniExplode2.wav",
          "sounds/shot001b.wav", "sounds/shot002.wav", "sounds/intro.wav", "sounds/keyboard.wav"}) {
        files.push_back(file);
    }
    files.insert(files.end(), 7, "shots/e_shot01c.png");  // one for each enemy
    for (const char* file :
         {"fonts/impact/fps_a.png", "shots/item_shot01a.png", "shots/item_shot02a.png",
          "display/energy01.png", "display/energyscale.png", "fonts/impact/numbers_a.png",
          "fonts/impact/numbers_mini.png", "fonts/impact/cross.png", "shots/shot01a.png",
          "shots/shot01b.png", "display/enemyrect_topleft.png", "display/enemyrect_topright.png",
          "display/enemyrect_bottomleft.png", "display/enemyrect_bottomright.png"}) {
        files.push_back(file);
    }
    for (int text = 0; text < 3; ++text) {
        for (const char* file : {"fonts/impact/letters.png", "fonts/impact/letter_cursor.png",
                                 "fonts/impact/numbers_a.png", "sounds/keyboard.wav"}) {
            files.push_back(file);
        }
    }
    return files;
}

constexpr int BELOW_MESSAGE_LINE = 20;  // its letters lie over what is above

int litPixelsIn(SDL_Surface* screen, int left, int top, int right, int bottom) {
    int lit = 0;
    for (int y = top; y < bottom; ++y) {
        for (int x = left; x < right; ++x) {
            lit += pixelAt(screen, x, y) == BLACK ? 0 : 1;
        }
    }
    return lit;
}

// The file between the brackets of "IMG_Load(file) = 39 x 39".
std::string fileOf(const std::string& call) {
    const size_t begin = call.find('(') + 1;
    return call.substr(begin, call.find(')') - begin);
}

bool isOpaque(SDL_Surface* picture, int x, int y) {
    const Uint8* row = static_cast<const Uint8*>(picture->pixels) + ptrdiff_t{y} * picture->pitch;
    Uint32 pixel = 0;
    std::memcpy(&pixel, row + ptrdiff_t{x} * picture->format->BytesPerPixel, sizeof pixel);
    Uint8 r = 0, g = 0, b = 0, alpha = 0;
    SDL_GetRGBA(pixel, picture->format, &r, &g, &b, &alpha);
    return alpha == SDL_ALPHA_OPAQUE;
}

// Whether the opaque pixels of the picture, from one of its rows on, are seen with its corner at
// (x, y).
bool isSeenAt(SDL_Surface* screen, const char* file, int x, int y, int firstRow = 0) {
    SDL_Surface* picture = IMG_Load(file);
    int compared = 0;
    for (int row = firstRow; row < picture->h; ++row) {
        for (int column = 0; column < picture->w; ++column) {
            if (!isOpaque(picture, column, row)) {
                continue;
            }
            ++compared;
            if (pixelAt(screen, x + column, y + row) != pixelAt(picture, column, row)) {
                return false;
            }
        }
    }
    EXPECT_GT(compared, 100) << file << " is not opaque enough to be told";
    return true;
}

TEST(StartUp, OpensAWindowThenTheMixer) {
    const ProgramResult result = runProgram({{}, LEAVE_AT_ONCE});
    EXPECT_EQ(firstCalls(result, 5),
              (Lines{"SDL_Init(0x20) = 0", "SDL_SetVideoMode(640, 480, 32, 0x60000000) = screen",
                     "SDL_Init(0x10) = 0", "Mix_OpenAudio(22050, 0x8010, 1, 1024) = 0",
                     "IMG_Load(explosions/ex0000.png) = 128 x 128"}));
    EXPECT_EQ(result.output.find("Starting in window mode...\nStarting with audio support...\n___"),
              0U);
}

TEST(StartUp, WithoutSoundTheMixerIsNotOpened) {
    const ProgramResult result = runProgram({{"-ns"}, LEAVE_AT_ONCE});
    EXPECT_EQ(firstCalls(result, 3),
              (Lines{"SDL_Init(0x20) = 0", "SDL_SetVideoMode(640, 480, 32, 0x60000000) = screen",
                     "IMG_Load(explosions/ex0000.png) = 128 x 128"}));
    EXPECT_EQ(result.output.find("Starting in window mode...\n___"), 0U);
}

TEST(StartUp, FullScreenHidesTheMouseCursor) {
    const ProgramResult result = runProgram({{"-fs", "-ns"}, LEAVE_AT_ONCE});
    EXPECT_EQ(firstCalls(result, 3),
              (Lines{"SDL_Init(0x20) = 0", "SDL_SetVideoMode(640, 480, 32, 0xe0000000) = screen",
                     "SDL_ShowCursor(0)"}));
    EXPECT_EQ(result.output.find("Starting in fullscreen mode...\n___"), 0U);
}

TEST(StartUp, AWindowLeavesTheMouseCursor) {
    EXPECT_EQ(runProgram({{"-ns"}, LEAVE_AT_ONCE}).timesCalled("SDL_ShowCursor"), 0);
}

TEST(StartUp, EveryPictureAndSoundIsLoadedInItsOrder) {
    const ProgramResult result = runProgram({{}, LEAVE_AT_ONCE});
    Lines loads;
    for (const std::string& call : result.callsOf("")) {
        if (call.find("IMG_Load") == 0 || call.find("Mix_LoadWAV_RW") == 0) {
            EXPECT_EQ(call.find("= none"), std::string::npos) << call;
            loads.push_back(fileOf(call));
        }
    }
    EXPECT_EQ(loads, expectedLoads());
}

TEST(StartUp, WithoutSoundAllSoundsAreAskedForAllTheSameAndComeBackEmpty) {
    const ProgramResult result = runProgram({{"-ns"}, LEAVE_AT_ONCE});
    EXPECT_EQ(result.callsOf("Mix_LoadWAV_RW"),
              (Lines{"Mix_LoadWAV_RW(sounds/explode.wav) = none",
                     "Mix_LoadWAV_RW(sounds/explode2.wav) = none",
                     "Mix_LoadWAV_RW(sounds/miniExplode1.wav) = none",
                     "Mix_LoadWAV_RW(sounds/miniExplode2.wav) = none",
                     "Mix_LoadWAV_RW(sounds/shot001b.wav) = none",
                     "Mix_LoadWAV_RW(sounds/shot002.wav) = none",
                     "Mix_LoadWAV_RW(sounds/intro.wav) = none",
                     "Mix_LoadWAV_RW(sounds/keyboard.wav) = none",
                     "Mix_LoadWAV_RW(sounds/keyboard.wav) = none",
                     "Mix_LoadWAV_RW(sounds/keyboard.wav) = none",
                     "Mix_LoadWAV_RW(sounds/keyboard.wav) = none"}));
}

TEST(StartUp, WithoutSoundEveryPlayIsAskedForWithNoSound) {
    const ProgramResult result =
        runProgram({{"-ns"}, "frame 1 down return\nframe 2 down escape\n"});
    EXPECT_EQ(
        result.callsOf("Mix_PlayChannelTimed"),
        (Lines{"Mix_PlayChannelTimed(1, none, 0, -1)", "Mix_PlayChannelTimed(1, none, 0, -1)"}));
}

TEST(StartUp, TheBannerComesAfterAllObjectsAreBorn) {
    const std::string output = runProgram({{"-ns"}, LEAVE_AT_ONCE}).output;
    EXPECT_EQ(timesIn(output, "MyShip was born:\n================\n"), 1);
    EXPECT_EQ(timesIn(output, "enemyShip was born:\n===================\n"), 7);
    EXPECT_TRUE(endsWith(output, std::string("display was born:\n=================\n") + BANNER +
                                     THANKS_LINES));
}

TEST(StartUp, TheSevenEnemiesEnterTheTargetListOneAfterTheOther) {
    const std::string output = runProgram({{"-ns"}, LEAVE_AT_ONCE}).output;
    const char* const lists[] = {"0 F F F F F F F F F ", "T 1 F F F F F F F F ",
                                 "T T 2 F F F F F F F ", "T T T 3 F F F F F F ",
                                 "T T T T 4 F F F F F ", "T T T T T 5 F F F F ",
                                 "T T T T T T 6 F F F "};
    for (const char* list : lists) {
        EXPECT_EQ(timesIn(output, "EnemyShip::ownShipTargetList: " + std::string(list) + "\n"), 1)
            << list;
    }
}

TEST(StartUp, ThePlayerStandsInTheMiddleNearTheBottom) {
    const ProgramResult result = runProgram({{"-ns"}, UNTIL_PLAY});
    EXPECT_TRUE(isSeenAt(result.pictures.at("countdown.bmp"), "ships/ship01.png", 300, 400));
}

// Their rectangles follow their positions with the first move, after the first drawing.
TEST(StartUp, EnemiesAreSeenInTheCornerForOneFrameThenStandOutsideTheField) {
    const ProgramResult result = runProgram({{"-ns"}, UNTIL_PLAY});
    EXPECT_TRUE(
        isSeenAt(result.pictures.at("first.bmp"), "ships/enemy01.png", 0, 0, BELOW_MESSAGE_LINE));
    // Nothing but a star or two is left there.
    EXPECT_LT(litPixelsIn(result.pictures.at("second.bmp"), 0, BELOW_MESSAGE_LINE, 39, 39), 4);
}

struct FailureCase {
    const char* rule;
    std::vector<std::string> arguments;
    const char* scenario;
    int status;
    const char* output;
    int quits;  // calls of SDL_Quit: none before the exit handler is there
};

TEST(StartUp, AFailureIsToldInOneLineAndEndsTheProgram) {
    const FailureCase cases[] = {
        {"no video", {}, "fail SDL_Init 1 No display", 1, "Can't init SDL:  No display\n", 0},
        {"no window",
         {},
         "fail SDL_SetVideoMode 1 No mode",
         1,
         "Starting in window mode...\nCan't set video mode: No mode\n",
         1},
        {"no full screen",
         {"-fs"},
         "fail SDL_SetVideoMode 1 No mode",
         1,
         "Starting in fullscreen mode...\nCan't set video mode: No mode\n",
         1},
        {"no audio",
         {},
         "fail SDL_Init 2 No device",
         1,
         "Starting in window mode...\nStarting with audio support...\nSDL_Init: No device\n",
         1},
        {"no mixer",
         {},
         "fail Mix_OpenAudio 1 No mixer",
         2,
         "Starting in window mode...\nStarting with audio support...\nMix_OpenAudio: No mixer\n",
         1},
    };
    for (const FailureCase& c : cases) {
        SCOPED_TRACE(c.rule);
        const ProgramResult result = runProgram({c.arguments, c.scenario});
        EXPECT_EQ(result.status, c.status);
        EXPECT_EQ(result.output, c.output);
        EXPECT_EQ(result.error, "");
        EXPECT_EQ(result.timesCalled("SDL_Quit"), c.quits);
        EXPECT_EQ(result.timesCalled("IMG_Load"), 0);
    }
}

TEST(StartUp, TheMouseCursorIsHiddenBeforeAFailedFullScreenIsSeen) {
    const ProgramResult result = runProgram({{"-fs"}, "fail SDL_SetVideoMode 1 No mode"});
    EXPECT_EQ(result.callsOf(""), (Lines{"SDL_Init(0x20) = 0", "SDL_SetVideoMode fails",
                                         "SDL_ShowCursor(0)", "SDL_Quit()"}));
}

// From here on nothing stands between the program and the libraries.

TEST(StartUp, AMachineWithoutADisplayIsToldSo) {
    ProgramRun run;
    run.environment = {{"SDL_VIDEODRIVER", "nonsense"}};
    const ProgramResult result = runProgram(run);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, "Can't init SDL:  No available video device\n");
}

TEST(StartUp, AMachineWithoutAnAudioDeviceIsToldSo) {
    ProgramRun run;
    run.environment = {{"SDL_AUDIODRIVER", "nonsense"}};
    const ProgramResult result = runProgram(run);
    // Some SDLs notice it in their start, others when the mixer asks for the device.
    const std::string begin = "Starting in window mode...\nStarting with audio support...\n";
    if (result.status == 1) {
        EXPECT_EQ(result.output, begin + "SDL_Init: No available audio device\n");
    } else {
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.output, begin + "Mix_OpenAudio: No available audio device\n");
    }
}

TEST(StartUp, AMachineWithoutAnAudioDevicePlaysWithoutSound) {
    ProgramRun run = {{"-ns"}, LEAVE_AT_ONCE};
    run.environment = {{"SDL_AUDIODRIVER", "nonsense"}};
    const ProgramResult result = runProgram(run);
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(endsWith(result.output, std::string(BANNER) + THANKS_LINES));
}

}  // namespace
