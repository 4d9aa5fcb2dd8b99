// SPDX-License-Identifier: MIT
#include "graphics/stars.h"

#include "front/front.h"
#include "support/capture.h"
#include "support/surfaces.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

constexpr int SKY_WIDTH = 640;  // pixels
constexpr int SKY_HEIGHT = 480;
constexpr int SKY_STARS = 60;
constexpr int FEWEST_STARS = 27;
constexpr int WHITE_STAR = 26;
constexpr int DOWN = 4;
constexpr int STILL = 0;

// A screen with the sky of the game. The hooks are gone when it goes.
struct Sky {
    Sky() : screen(makeScreen()), stars(screen, SKY_WIDTH, SKY_HEIGHT, SKY_STARS) {}
    ~Sky() { front::hooks() = {}; }
    Sky(const Sky&) = delete;
    Sky& operator=(const Sky&) = delete;

    // Puts star 0 somewhere and lets it fall for one frame.
    void dropStar(float y, float speed, unsigned int ms) {
        stars.y[0] = y;
        stars.speed[0] = speed;
        stars.show(ms, DOWN);
    }

    // Leaves no star but star 0, a white one.
    void leaveOneWhiteStar() {
        stars.setNumber(1);
        stars.brightness[0] = 255;
    }

    SDL_Surface* screen;
    Stars stars;
};

Colour grey(Uint8 level) {
    return {level, level, level};
}

// The stars of the game's sky, worked out apart from the game: place in pixels, grey level, pixels
// per millisecond.
struct Star {
    float x, y;
    int brightness;
    float speed;
};

// clang-format off
constexpr Star GAME_SKY[SKY_STARS] = {
    {0, 0, 150, 0.12f}, {1, 2, 0, 0}, {6, 14, 10, 0.008f},
    {45, 138, 20, 0.016f}, {556, 308, 30, 0.024f}, {265, 50, 40, 0.032f},
    {306, 402, 50, 0.04f}, {101, 74, 60, 0.048f}, {600, 232, 70, 0.056f},
    {273, 290, 80, 0.064f}, {94, 470, 90, 0.072f}, {221, 234, 100, 0.08f},
    {4, 124, 110, 0.088f}, {25, 274, 120, 0.096f}, {394, 90, 130, 0.104f},
    {21, 170, 140, 0.112f}, {304, 400, 150, 0.12f}, {161, 418, 160, 0.128f},
    {566, 158, 170, 0.136f}, {269, 202, 180, 0.144f}, {604, 324, 190, 0.152f},
    {553, 274, 200, 0.16f}, {354, 130, 210, 0.168f}, {453, 10, 220, 0.176f},
    {136, 280, 230, 0.184f}, {177, 258, 240, 0.192f}, {270, 102, 255, 0.204f},
    {189, 426, 89, 0.0712f}, {52, 44, 246, 0.1968f}, {569, 114, 216, 0.1728f},
    {314, 170, 17, 0.0136f}, {373, 426, 17, 0.0136f}, {480, 96, 214, 0.1712f},
    {193, 322, 94, 0.0752f}, {614, 334, 15, 0.012f}, {109, 298, 91, 0.0728f},
    {396, 340, 59, 0.0472f}, {329, 338, 246, 0.1968f}, {530, 466, 214, 0.1712f},
    {37, 202, 28, 0.0224f}, {184, 200, 173, 0.1384f}, {593, 354, 14, 0.0112f},
    {318, 406, 47, 0.0376f}, {157, 426, 57, 0.0456f}, {100, 124, 13, 0.0104f},
    {89, 18, 1, 0.0008f}, {106, 282, 72, 0.0576f}, {213, 106, 108, 0.0864f},
    {528, 80, 246, 0.1968f}, {97, 66, 57, 0.0456f}, {150, 94, 138, 0.1104f},
    {77, 202, 68, 0.0544f}, {316, 292, 36, 0.0288f}, {489, 178, 200, 0.16f},
    {322, 290, 40, 0.032f}, {517, 202, 252, 0.2016f}, {232, 440, 146, 0.1168f},
    {113, 162, 64, 0.0512f}, {238, 358, 175, 0.14f}, {125, 202, 116, 0.0928f},
};
// clang-format on

TEST(Stars, StandAtTheirSixtyPlacesAtTheStartOfEveryGame) {
    const Sky sky;
    for (int i = 0; i < SKY_STARS; ++i) {
        SCOPED_TRACE("star " + std::to_string(i));
        EXPECT_EQ(sky.stars.x[i], GAME_SKY[i].x);
        EXPECT_EQ(sky.stars.y[i], GAME_SKY[i].y);
        EXPECT_EQ(sky.stars.brightness[i], GAME_SKY[i].brightness);
        EXPECT_EQ(sky.stars.speed[i], GAME_SKY[i].speed);
    }
}

TEST(Stars, KnowTheirScreenTheirFieldAndTheirNumber) {
    Sky sky;
    EXPECT_EQ(sky.stars.screen, sky.screen);
    EXPECT_EQ(sky.stars.getWidth(), 640);
    EXPECT_EQ(sky.stars.getHeight(), 480);
    EXPECT_EQ(sky.stars.getNumber(), 60);
    EXPECT_EQ(sky.stars.ticks, 0U);
}

TEST(Stars, LieInsideTheFieldThatTheyAreGiven) {
    struct Place {
        float x, y;
    };
    const Place places[FEWEST_STARS] = {
        {0, 0},   {1, 2},   {6, 14}, {45, 38}, {56, 28}, {45, 30}, {86, 22}, {61, 34}, {80, 2},
        {93, 0},  {34, 20}, {21, 4}, {84, 14}, {65, 44}, {74, 0},  {21, 20}, {84, 20}, {81, 18},
        {86, 18}, {29, 22}, {84, 4}, {73, 34}, {14, 40}, {53, 40}, {56, 10}, {97, 48}, {90, 32}};
    const Stars stars(makeScreen(), 100, 50, FEWEST_STARS);
    for (int i = 0; i < FEWEST_STARS; ++i) {
        SCOPED_TRACE("star " + std::to_string(i));
        EXPECT_EQ(stars.x[i], places[i].x);
        EXPECT_EQ(stars.y[i], places[i].y);
    }
}

TEST(Stars, AreTwentySevenAtLeastSoThatTheLastIsWhite) {
    const Stars stars(makeScreen(), SKY_WIDTH, SKY_HEIGHT, FEWEST_STARS);
    EXPECT_EQ(stars.brightness[WHITE_STAR], 255);
    EXPECT_EQ(stars.speed[WHITE_STAR], 0.204f);
    EXPECT_EQ(stars.brightness[25], 240);
    EXPECT_EQ(stars.brightness[1], 0);
}

TEST(Stars, TakeTheirGreyFromTheWholeRowOnVeryTallFields) {
    // At (49332, 68364): 49332 % 256 = 180, 68364 % 105 = 9, 180 + 9 + 150 - 256 = 83.
    const Stars stars(makeScreen(), 100000, 70000, 30);
    EXPECT_EQ(stars.x[28], 49332.0f);
    EXPECT_EQ(stars.y[28], 68364.0f);
    EXPECT_EQ(stars.brightness[28], 83);
    // At (34589, 48266): 34589 % 256 = 29, 48266 % 105 = 71, 29 + 71 + 150 = 250.
    EXPECT_EQ(stars.brightness[27], 250);
}

TEST(Stars, ClearTheWholeScreenBeforeTheyAreDrawn) {
    Sky sky;
    paint(sky.screen, 0, 0, SKY_WIDTH, SKY_HEIGHT, RED);
    sky.stars.show(16, DOWN);
    EXPECT_EQ(countOf(sky.screen, RED), 0);
    EXPECT_NE(countOf(sky.screen, BLACK), SKY_WIDTH * SKY_HEIGHT);
}

TEST(Stars, ClearTheScreenBesideTheirFieldToo) {
    SDL_Surface* screen = makeScreen();
    paint(screen, 0, 0, SKY_WIDTH, SKY_HEIGHT, RED);
    Stars stars(screen, 100, 50, FEWEST_STARS);
    stars.show(0, DOWN);
    EXPECT_EQ(countOf(screen, RED), 0);
}

TEST(Stars, ShowOneGreyPixelEach) {
    Sky sky;
    sky.stars.show(0, DOWN);
    int visible = 0;
    for (const Star& star : GAME_SKY) {
        const Colour seen = pixelAt(sky.screen, static_cast<int>(star.x), static_cast<int>(star.y));
        EXPECT_EQ(seen, grey(static_cast<Uint8>(star.brightness)));
        visible += star.brightness != 0 ? 1 : 0;
    }
    EXPECT_EQ(visible, 59);
    EXPECT_EQ(countOf(sky.screen, BLACK), SKY_WIDTH * SKY_HEIGHT - visible);
}

TEST(Stars, AreSeenAtTheirPlaceCutToWholePixels) {
    Sky sky;
    sky.leaveOneWhiteStar();
    sky.stars.x[0] = 10.9f;
    sky.stars.y[0] = 20.9f;
    sky.stars.show(0, DOWN);
    EXPECT_EQ(pixelAt(sky.screen, 10, 20), WHITE);
    EXPECT_EQ(countOf(sky.screen, WHITE), 1);
}

TEST(Stars, AreSeenWhereTheyHaveFallenInTheSameFrame) {
    Sky sky;
    sky.leaveOneWhiteStar();
    sky.dropStar(20, 0.5f, 10);
    EXPECT_EQ(pixelAt(sky.screen, 0, 25), WHITE);
    EXPECT_EQ(countOf(sky.screen, WHITE), 1);
}

TEST(Stars, ShowTheLaterOneWhereTwoMeet) {
    Sky sky;
    sky.stars.setNumber(2);
    sky.stars.x[0] = sky.stars.x[1] = 7;
    sky.stars.y[0] = sky.stars.y[1] = 9;
    sky.stars.brightness[0] = 200;
    sky.stars.brightness[1] = 100;
    sky.stars.show(0, STILL);
    EXPECT_EQ(pixelAt(sky.screen, 7, 9), grey(100));
}

TEST(Stars, FallByTheirSpeedTimesTheFrameTime) {
    struct Fall {
        const char* rule;
        float y;
        float speed;
        unsigned int ms;
        float newY;
    };
    const Fall falls[] = {
        {"a whole number of pixels", 100, 0.25f, 16, 104},
        {"a part of a pixel", 100, 0.25f, 1, 100.25f},
        {"no time, no fall", 100, 0.25f, 0, 100},
        {"no speed, no fall", 100, 0, 1000, 100},
        {"one pixel above the bottom stays", 475, 0.25f, 16, 479},
        {"the last float above the bottom stays", 475.99997f, 0.25f, 16, 479.99997f},
        {"float products would end at 24.34", 22.3f, 0.12f, 17, 24.339998f},
        {"double sums would end at 256", 256, 0x1.b2bba6p-26f, 603, 256.00003f},
    };
    for (const Fall& fall : falls) {
        SCOPED_TRACE(fall.rule);
        Sky sky;
        sky.dropStar(fall.y, fall.speed, fall.ms);
        EXPECT_EQ(sky.stars.y[0], fall.newY);
        EXPECT_EQ(sky.stars.x[0], 0.0f);
    }
}

TEST(Stars, FallOnFromWhereTheLastFrameLeftThem) {
    Sky sky;
    sky.stars.y[0] = 470;
    sky.stars.speed[0] = 0.125f;
    const float places[] = {472, 474, 476, 478, 0, 2};
    for (const float y : places) {
        sky.stars.show(16, DOWN);
        EXPECT_EQ(sky.stars.y[0], y);
    }
}

TEST(Stars, FallTwoHundredAndFourPixelsASecondWhenWhite) {
    Sky sky;
    sky.stars.y[WHITE_STAR] = 0;
    sky.stars.show(1000, DOWN);
    EXPECT_EQ(sky.stars.y[WHITE_STAR], 204.0f);
}

TEST(Stars, NeverMoveAndAreNotSeenWhenBlack) {
    Sky sky;
    for (int frame = 0; frame < 50; ++frame) {
        sky.stars.show(4000, DOWN);
    }
    EXPECT_EQ(sky.stars.x[1], 1.0f);
    EXPECT_EQ(sky.stars.y[1], 2.0f);
    EXPECT_EQ(pixelAt(sky.screen, 1, 2), BLACK);
}

TEST(Stars, AllFallTogether) {
    Sky sky;
    sky.stars.show(25, DOWN);
    // 25 ms move a star by a fiftieth of its grey level: the white one from 102 to 107.1.
    EXPECT_EQ(sky.stars.y[0], 3.0f);
    EXPECT_EQ(sky.stars.y[WHITE_STAR], 107.1f);
    EXPECT_EQ(sky.stars.y[SKY_STARS - 1], 204.32f);
}

TEST(Stars, ComeBackAtTheTopWhenTheyReachTheBottomExactly) {
    Sky sky;
    sky.dropStar(476, 0.25f, 16);
    EXPECT_EQ(sky.stars.y[0], 0.0f);
    EXPECT_EQ(sky.stars.x[0], 142.0f);
}

TEST(Stars, ComeBackWhenTheStoredFloatReachesTheBottomThoughTheExactSumDoesNot) {
    // 479.99997 and a little more than half the step to the next float, which is 480.
    Sky sky;
    sky.dropStar(479.99997f, 0x1.b2bba6p-26f, 603);
    EXPECT_EQ(sky.stars.y[0], 0.0f);
    EXPECT_EQ(sky.stars.x[0], 142.0f);
}

TEST(Stars, ComeBackAtTheVeryTopHoweverLongTheFrameWas) {
    const unsigned int stalls[] = {5000, 1000000, 4294967290U};
    for (const unsigned int ms : stalls) {
        SCOPED_TRACE(ms);
        Sky sky;
        sky.dropStar(100, 0.25f, ms);
        EXPECT_EQ(sky.stars.y[0], 0.0f);
        EXPECT_EQ(sky.stars.x[0], 142.0f);
    }
}

TEST(Stars, ComeBackAHundredAndFortyTwoPixelsToTheRight) {
    struct Return {
        const char* rule;
        float x;
        float newX;
    };
    const Return returns[] = {
        {"from the left edge", 0, 142},
        {"parts of a pixel are dropped", 10.9f, 152},
        {"the last column that needs no turn", 497, 639},
        {"one further starts at the left edge", 498, 0},
        {"from the right edge", 639, 141},
    };
    for (const Return& back : returns) {
        SCOPED_TRACE(back.rule);
        Sky sky;
        sky.stars.x[0] = back.x;
        sky.dropStar(479, 1, 1);
        EXPECT_EQ(sky.stars.x[0], back.newX);
    }
}

TEST(Stars, AreSeenAtTheTopInTheFrameInWhichTheyComeBack) {
    Sky sky;
    sky.leaveOneWhiteStar();
    sky.stars.x[0] = 58;
    sky.dropStar(479, 1, 1);
    EXPECT_EQ(pixelAt(sky.screen, 200, 0), WHITE);
    EXPECT_EQ(countOf(sky.screen, WHITE), 1);
}

TEST(Stars, StandStillInEveryDirectionButDownYetClearTheScreen) {
    const int directions[] = {0, 1, 2, 3, 5, -4};
    for (const int direction : directions) {
        SCOPED_TRACE(direction);
        Sky sky;
        sky.stars.y[0] = 479;
        paint(sky.screen, 300, 300, 40, 40, RED);
        sky.stars.show(1000, direction);
        sky.stars.show(1000, direction);
        EXPECT_EQ(countOf(sky.screen, RED), 0);
        EXPECT_EQ(sky.stars.y[0], 479.0f);
        EXPECT_EQ(sky.stars.x[0], 0.0f);
        EXPECT_EQ(sky.stars.y[WHITE_STAR], 102.0f);
        EXPECT_EQ(pixelAt(sky.screen, 270, 102), WHITE);
    }
}

TEST(Stars, RememberTheLastFrameTime) {
    Sky sky;
    sky.stars.show(4294967295U, DOWN);
    EXPECT_EQ(sky.stars.ticks, 4294967295U);
    sky.stars.show(17, STILL);
    EXPECT_EQ(sky.stars.ticks, 17U);
}

TEST(Stars, ComeBackAtTheHeightThatWasSetLast) {
    Sky sky;
    sky.stars.setHeight(300);
    EXPECT_EQ(sky.stars.getHeight(), 300);
    sky.dropStar(299, 0.5f, 1);
    EXPECT_EQ(sky.stars.y[0], 299.5f);
    sky.stars.show(1, DOWN);
    EXPECT_EQ(sky.stars.y[0], 0.0f);
}

TEST(Stars, ComeBackWithinTheWidthThatWasSetLast) {
    Sky sky;
    sky.stars.setWidth(200);
    EXPECT_EQ(sky.stars.getWidth(), 200);
    sky.stars.x[0] = 58;
    sky.dropStar(479, 1, 1);
    EXPECT_EQ(sky.stars.x[0], 0.0f);
}

TEST(Stars, BeyondTheNumberThatWasSetLastNeitherMoveNorShow) {
    Sky sky;
    sky.stars.setNumber(WHITE_STAR);
    EXPECT_EQ(sky.stars.getNumber(), WHITE_STAR);
    sky.stars.show(25, DOWN);
    EXPECT_EQ(sky.stars.y[WHITE_STAR], 102.0f);
    EXPECT_EQ(countOf(sky.screen, WHITE), 0);
    EXPECT_EQ(sky.stars.y[25], 262.8f);
    EXPECT_EQ(pixelAt(sky.screen, 177, 262), grey(240));
}

TEST(Stars, ShowOnScreensOfSixteenBits) {
    SDL_Surface* screen =
        SDL_CreateRGBSurface(SDL_SWSURFACE, SKY_WIDTH, SKY_HEIGHT, 16, 0xf800, 0x07e0, 0x001f, 0);
    paint(screen, 0, 0, SKY_WIDTH, SKY_HEIGHT, RED);
    Stars stars(screen, SKY_WIDTH, SKY_HEIGHT, SKY_STARS);
    stars.show(0, DOWN);
    EXPECT_EQ(pixelAt(screen, 270, 102), WHITE);
    EXPECT_EQ(countOf(screen, RED), 0);
}

// The library itself must not lock a screen that is only said to need it, while it clears it.
int clearUnlocked(SDL_Surface* to, SDL_Rect* rect, Uint32 colour) {
    const Uint32 flags = to->flags;
    to->flags &= ~static_cast<Uint32>(SDL_RLEACCEL);
    const int result = front::real::SDL_FillRect(to, rect, colour);
    to->flags = flags;
    return result;
}

// The calls of one frame: the clearing, the locking and the unlocking of the screen with what it
// then shows.
std::vector<std::string> callsOfAFrame(Sky& sky, int lockResult) {
    std::vector<std::string> calls;
    const auto screenShows = [&] {
        const bool black = countOf(sky.screen, BLACK) == SKY_WIDTH * SKY_HEIGHT;
        const bool allStars = pixelAt(sky.screen, 125, 202) == grey(116);  // the last one
        return black ? "a black screen" : allStars ? "all stars" : "something else";
    };
    front::hooks().SDL_FillRect = [&](SDL_Surface* to, SDL_Rect* rect, Uint32 colour) {
        calls.emplace_back(rect == nullptr && colour == 0 ? "clear" : "fill");
        return clearUnlocked(to, rect, colour);
    };
    front::hooks().SDL_LockSurface = [&](SDL_Surface*) {
        calls.emplace_back(std::string("lock ") + screenShows());
        return lockResult;
    };
    front::hooks().SDL_UnlockSurface = [&](SDL_Surface*) {
        calls.emplace_back(std::string("unlock ") + screenShows());
    };
    capturedError([&] { sky.stars.show(0, DOWN); });
    front::hooks() = {};
    return calls;
}

TEST(Stars, AreDrawnWithoutALockOnAScreenThatNeedsNone) {
    Sky sky;
    EXPECT_EQ(callsOfAFrame(sky, 0), std::vector<std::string>({"clear"}));
    EXPECT_EQ(pixelAt(sky.screen, 270, 102), WHITE);
}

TEST(Stars, AreDrawnBetweenLockAndUnlockOnAScreenThatMustBeLocked) {
    Sky sky;
    sky.screen->flags |= SDL_RLEACCEL;
    EXPECT_EQ(callsOfAFrame(sky, 0),
              std::vector<std::string>({"clear", "lock a black screen", "unlock all stars"}));
}

TEST(Stars, LockAScreenThatLiesWithinAnotherToo) {
    Sky sky;
    sky.screen->offset = 4;
    EXPECT_EQ(callsOfAFrame(sky, 0),
              std::vector<std::string>({"clear", "lock a black screen", "unlock all stars"}));
}

TEST(Stars, StayAwayFromAScreenThatCannotBeLocked) {
    Sky sky;
    paint(sky.screen, 0, 0, SKY_WIDTH, SKY_HEIGHT, RED);
    sky.screen->flags |= SDL_RLEACCEL;
    EXPECT_EQ(callsOfAFrame(sky, -1), std::vector<std::string>({"clear", "lock a black screen"}));
    EXPECT_EQ(countOf(sky.screen, BLACK), SKY_WIDTH * SKY_HEIGHT);
}

TEST(Stars, SayOnStandardErrorWhyTheScreenCannotBeLockedAndWaitThere) {
    Sky sky;
    sky.screen->flags |= SDL_RLEACCEL;
    front::hooks().SDL_FillRect = clearUnlocked;
    front::hooks().SDL_LockSurface = [](SDL_Surface*) {
        SDL_SetError("the screen is asleep");
        return -1;
    };
    std::string error;
    const std::string output =
        capturedOutput([&] { error = capturedError([&] { sky.stars.show(25, DOWN); }); });
    EXPECT_EQ(error, "Can't lock screen: the screen is asleep\n");
    EXPECT_EQ(output, "");
    EXPECT_EQ(sky.stars.ticks, 25U);
    EXPECT_EQ(sky.stars.y[WHITE_STAR], 102.0f);
}

}  // namespace
