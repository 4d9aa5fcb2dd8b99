// SPDX-License-Identifier: MIT
#include "graphics/display.h"

#include "front/front.h"
#include "graphics/markedpictures.h"
#include "support/capture.h"
#include "support/surfaces.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

// The display over a black screen, with marked pictures.
struct Hud {
    explicit Hud(const std::string& missing = "") : pictures(missing), screen(makeScreen()) {
        capturedOutput([&] { display = new Display(screen); });
    }
    ~Hud() { delete display; }
    Hud(const Hud&) = delete;
    Hud& operator=(const Hud&) = delete;

    void clear() const { paint(screen, 0, 0, screen->w, screen->h, BLACK); }

    bool showsWhole(int x, int y, Mark mark, int width, int height) const {
        return showsPart(screen, x, y, mark, rectOf(0, 0, width, height));
    }

    bool isBlank() const { return isBlackBeside(screen, {}); }

    MarkedPictures pictures;
    SDL_Surface* screen;
    Display* display = nullptr;
};

// The digit seen at a place, '.' for none.
char digitAt(SDL_Surface* screen, int x, int y) {
    for (int i = 0; i < 10; ++i) {
        if (showsPart(screen, x, y, NUMBERS, rectOf(6 * i, 0, 6, 9))) {
            return static_cast<char>('0' + i);
        }
    }
    return '.';
}

char miniDigitAt(SDL_Surface* screen, int x, int y) {
    for (int i = 0; i < 10; ++i) {
        if (showsPart(screen, x, y, NUMBERS_MINI, rectOf(4 * i, 0, 4, 5))) {
            return static_cast<char>('0' + i);
        }
    }
    return '.';
}

void expectRect(const SDL_Rect& rect, int x, int y, int width, int height) {
    EXPECT_EQ(rect.x, x);
    EXPECT_EQ(rect.y, y);
    EXPECT_EQ(rect.w, width);
    EXPECT_EQ(rect.h, height);
}

const std::vector<std::string> ALL_LOADS = {
    "fonts/impact/fps_a.png",        "shots/item_shot01a.png",  "shots/item_shot02a.png",
    "display/energy01.png",          "display/energyscale.png", "fonts/impact/numbers_a.png",
    "fonts/impact/numbers_mini.png", "fonts/impact/cross.png"};

// Construction

TEST(Display, LoadsItsPicturesInTheirOrder) {
    const Hud hud;
    EXPECT_EQ(hud.pictures.loads, ALL_LOADS);
}

TEST(Display, SaysThatItWasBorn) {
    const MarkedPictures pictures;
    SDL_Surface* screen = makeScreen();
    EXPECT_EQ(capturedOutput([&] { const Display display(screen); }), "display was born:\n"
                                                                      "=================\n");
    EXPECT_TRUE(isBlackBeside(screen, {}));
}

TEST(Display, EndsTheProcessAtTheFirstPictureThatItCannotDoWithout) {
    struct Missing {
        const char* path;
        const char* name;
        size_t loads;  // pictures asked for until then
    };
    const Missing missing[] = {
        {"fonts/impact/fps_a.png", "fps_a.png", 1},
        {"shots/item_shot01a.png", "item_shot01a.png", 2},
        {"fonts/impact/numbers_a.png", "numbers_a.png", 6},
        {"fonts/impact/numbers_mini.png", "numbers_mini.png", 7},
        {"fonts/impact/cross.png", "cross.png", 8},
    };
    for (const Missing& picture : missing) {
        SCOPED_TRACE(picture.name);
        std::string said;
        for (size_t i = 0; i < picture.loads; ++i) {
            said += ALL_LOADS[i] + '\n';
        }
        said += std::string("Can't load image \"") + picture.name + "\": it is gone\n";
        const MarkedPictures pictures(picture.path);
        SDL_Surface* screen = makeScreen();
        const auto start = [&] {
            reportLoadsAndOutputOnStandardError();
            const Display display(screen);
        };
        EXPECT_EXIT(start(), testing::ExitedWithCode(1), testing::Eq(said));
    }
}

TEST(Display, StartsWithoutTheRocketIconAndShowsNothingThere) {
    const Hud hud("shots/item_shot02a.png");
    EXPECT_EQ(hud.pictures.loads, ALL_LOADS);
    hud.display->showSecondShotA();
    EXPECT_TRUE(hud.isBlank());
    hud.display->showFirstShotA();
    EXPECT_TRUE(hud.showsWhole(10, 441, FIRST_SHOT_ICON, 31, 32));
}

TEST(Display, StartsWithoutTheEnergyBarAndShowsItsScaleAlone) {
    const Hud hud("display/energy01.png");
    EXPECT_EQ(hud.pictures.loads, ALL_LOADS);
    hud.display->showEnergy(65);
    EXPECT_TRUE(hud.showsWhole(621, 402, ENERGY_SCALE, 11, 69));
    EXPECT_TRUE(isBlackBeside(hud.screen, {rectOf(621, 402, 11, 69)}));
}

TEST(Display, StartsWithoutTheScaleAndShowsTheEnergyBarAlone) {
    const Hud hud("display/energyscale.png");
    EXPECT_EQ(hud.pictures.loads, ALL_LOADS);
    hud.display->showEnergy(65);
    EXPECT_TRUE(hud.showsWhole(606, 403, ENERGY_BAR, 10, 65));
    EXPECT_TRUE(isBlackBeside(hud.screen, {rectOf(606, 403, 10, 65)}));
}

TEST(Display, KeepsThePlacesAndSizesOfItsParts) {
    const Hud hud;
    const Display& display = *hud.display;
    EXPECT_EQ(display.screen, hud.screen);
    expectRect(display.fpsPos, 584, 10, 19, 9);
    expectRect(display.crossPos, 0, 0, 5, 5);
    expectRect(display.firstShotPos, 10, 441, 29, 29);
    expectRect(display.secondShotPos, 10, 402, 29, 29);
    expectRect(display.energyScalePos, 621, 402, 9, 67);
    expectRect(display.energyPos, 606, 403, 10, 65);
    expectRect(display.energySrc, 0, 0, 10, 65);
    EXPECT_EQ(display.energyTop, 403);
    EXPECT_EQ(pixelAt(display.cross, 4, 4), (Colour{CROSS, 4, 4}));
    for (int i = 0; i < 10; ++i) {
        SCOPED_TRACE(i);
        expectRect(display.digitRects[i], 6 * i, 0, 6, 9);
        expectRect(display.miniDigitRects[i], 4 * i, 0, 4, 5);
    }
}

TEST(Display, CountsFromNothingAtFirst) {
    const Hud hud;
    const Display& display = *hud.display;
    EXPECT_EQ(display.frames, 0);
    EXPECT_EQ(display.frameTime, 0U);
    EXPECT_EQ(display.fps, 0);
    EXPECT_EQ(display.countDownStart, 0);
    EXPECT_EQ(display.countDownTime, 0);
    EXPECT_EQ(display.countDownValue, 0);
}

// Frames per second

std::string figureOf(const Hud& hud, int x, int y) {
    return {digitAt(hud.screen, x, y), digitAt(hud.screen, x + 8, y),
            digitAt(hud.screen, x + 16, y)};
}

std::string figureAfter(const Hud& hud, int frames, unsigned int ms) {
    for (int i = 0; i < frames; ++i) {
        hud.clear();
        hud.display->showFps(ms);
    }
    return figureOf(hud, 609, 10);
}

TEST(Display, ShowsTheLabelWholeAndThreeDigitsOverIt) {
    // The marked label is 30 wide, so that the digits, 25 pixels further right, lie over its end.
    const Hud hud;
    hud.display->fps = 123;
    hud.display->showFps(16);
    EXPECT_TRUE(hud.showsWhole(584, 10, FPS_LABEL, 25, 14));
    EXPECT_EQ(figureOf(hud, 609, 10), "123");
    EXPECT_TRUE(isBlackBeside(hud.screen, {rectOf(584, 10, 30, 14), rectOf(609, 10, 6, 9),
                                           rectOf(617, 10, 6, 9), rectOf(625, 10, 6, 9)}));
}

TEST(Display, ShowsTheFigureInThreeDigitsAndNeverMoreThan999) {
    struct Figure {
        int fps;
        const char* shown;
    };
    const Figure figures[] = {{0, "000"},    {7, "007"},    {60, "060"},  {100, "100"},
                              {907, "907"},  {998, "998"},  {999, "999"}, {1000, "999"},
                              {1234, "999"}, {20000, "999"}};
    for (const Figure& figure : figures) {
        SCOPED_TRACE(figure.fps);
        const Hud hud;
        hud.display->fps = figure.fps;
        EXPECT_EQ(figureAfter(hud, 1, 16), figure.shown);
    }
}

TEST(Display, DividesTwentyFramesByTheTimeThatTheyTook) {
    struct Pace {
        const char* rule;
        unsigned int ms;
        int fps;
        const char* shown;
    };
    const Pace paces[] = {
        {"20 ms a frame", 20, 50, "050"},
        {"16 ms a frame: 62.5 is 62", 16, 62, "062"},
        {"33 ms a frame: 30.3 is 30", 33, 30, "030"},
        {"5 ms a frame", 5, 200, "200"},
        {"a second a frame", 1000, 1, "001"},
        {"more than a second a frame", 1001, 0, "000"},
        {"1 ms a frame is more than three digits tell", 1, 1000, "999"},
        {"no time at all is as fast as can be told", 0, 999, "999"},
    };
    for (const Pace& pace : paces) {
        SCOPED_TRACE(pace.rule);
        const Hud hud;
        EXPECT_EQ(figureAfter(hud, 20, pace.ms), pace.shown);
        EXPECT_EQ(hud.display->fps, pace.fps);
    }
}

TEST(Display, ShowsNoFramesPerSecondBeforeTheFirstTwenty) {
    const Hud hud;
    EXPECT_EQ(figureAfter(hud, 1, 20), "000");
    EXPECT_EQ(figureAfter(hud, 18, 20), "000");
    EXPECT_EQ(hud.display->frames, 19);
    EXPECT_EQ(hud.display->frameTime, 380U);
    EXPECT_EQ(figureAfter(hud, 1, 20), "050");
    EXPECT_EQ(hud.display->frames, 0);
    EXPECT_EQ(hud.display->frameTime, 0U);
}

TEST(Display, RenewsTheFigureEveryTwentyFramesAndHoldsItInBetween) {
    const Hud hud;
    EXPECT_EQ(figureAfter(hud, 20, 20), "050");
    EXPECT_EQ(figureAfter(hud, 19, 10), "050");
    EXPECT_EQ(figureAfter(hud, 1, 10), "100");
    EXPECT_EQ(figureAfter(hud, 20, 0), "999");
    EXPECT_EQ(figureAfter(hud, 20, 25), "040");
}

TEST(Display, GathersTheTimesOfUnequalFrames) {
    // 19 frames of 10 ms and one of 20 ms: 20000 / 210 = 95.2.
    const Hud hud;
    figureAfter(hud, 19, 10);
    EXPECT_EQ(figureAfter(hud, 1, 20), "095");
}

TEST(Display, MovesTheFigureWithItsLabel) {
    const Hud hud;
    hud.display->setPositionFps(100, 50);
    expectRect(hud.display->fpsPos, 100, 50, 19, 9);
    hud.display->fps = 456;
    hud.display->showFps(16);
    EXPECT_TRUE(hud.showsWhole(100, 50, FPS_LABEL, 25, 14));
    EXPECT_EQ(figureOf(hud, 125, 50), "456");
    EXPECT_EQ(digitAt(hud.screen, 609, 10), '.');
}

TEST(Display, LeavesItsPenBehindTheLastDigitOfTheFigure) {
    const Hud hud;
    hud.display->fps = 123;
    hud.display->showFps(16);
    EXPECT_EQ(hud.display->fpsDigitPos.x, 584 + 25 + 3 * 8);
    EXPECT_EQ(hud.display->fpsDigitPos.y, 10);
    EXPECT_EQ(hud.display->digit, 3);
}

// Shots left

TEST(Display, ShowsTheShotsLeftInThreeSmallDigits) {
    struct Count {
        int number;
        const char* shown;
    };
    const Count counts[] = {{36, "036"},    {0, "000"},   {7, "007"},   {123, "123"},
                            {480, "480"},   {998, "998"}, {999, "999"}, {1000, "999"},
                            {12345, "999"}, {-1, "000"},  {-500, "000"}};
    for (const Count& count : counts) {
        SCOPED_TRACE(count.number);
        const Hud hud;
        hud.display->showShotNumberMini(19, 433, count.number);
        const std::string shown = {miniDigitAt(hud.screen, 19, 433),
                                   miniDigitAt(hud.screen, 23, 433),
                                   miniDigitAt(hud.screen, 27, 433)};
        EXPECT_EQ(shown, count.shown);
        EXPECT_TRUE(isBlackBeside(hud.screen, {rectOf(19, 433, 12, 5)}));
    }
}

TEST(Display, LeavesItsPenBehindTheLastSmallDigit) {
    const Hud hud;
    hud.display->showShotNumberMini(19, 472, 128);
    EXPECT_EQ(hud.display->miniPos.x, 19 + 3 * 4);
    EXPECT_EQ(hud.display->miniPos.y, 472);
    EXPECT_EQ(hud.display->miniDigit, 8);
}

// Countdown

constexpr int COUNT_DOWN_X = 318;
constexpr int COUNT_DOWN_Y = 220;

// Frames of a countdown that look alike: so many calls of so many milliseconds each, the digit that
// they show ('.' for none), and what they return.
struct CountDownFrames {
    const char* rule;
    int calls;
    unsigned int ms;
    char digit;
    bool over;
};

void expectCountDown(const Hud& hud, const std::vector<CountDownFrames>& rows) {
    for (const CountDownFrames& row : rows) {
        SCOPED_TRACE(row.rule);
        for (int call = 0; call < row.calls; ++call) {
            SCOPED_TRACE(call);
            hud.clear();
            EXPECT_EQ(hud.display->showCountDown(row.ms), row.over);
            EXPECT_EQ(digitAt(hud.screen, COUNT_DOWN_X, COUNT_DOWN_Y), row.digit);
            const SDL_Rect place = rectOf(COUNT_DOWN_X, COUNT_DOWN_Y, 6, 9);
            EXPECT_TRUE(row.digit == '.' ? hud.isBlank() : isBlackBeside(hud.screen, {place}));
        }
    }
}

TEST(Display, CountsDownFromFiveAndShowsTheNoughtToo) {
    const Hud hud;
    hud.display->setCountDownPosAndStart(COUNT_DOWN_X, COUNT_DOWN_Y, 5);
    expectCountDown(hud, {
                             {"5 for 1000 ms", 4, 250, '5', false},
                             {"and in the frame that fills its time", 1, 1, '5', false},
                             {"4 for 1001 ms", 1, 1001, '4', false},
                             {"3 for 1001 ms", 1, 1001, '3', false},
                             {"2 for 1001 ms", 1, 1001, '2', false},
                             {"1 for 1001 ms", 1, 1001, '1', false},
                             {"0 for 1000 ms", 1, 1000, '0', false},
                             {"the last frame of the 0 is the end", 1, 1, '0', true},
                             {"nothing is shown any more", 5, 1001, '.', true},
                         });
    EXPECT_EQ(hud.display->countDownValue, Display::COUNT_DOWN_OVER);
    EXPECT_EQ(hud.display->countDownValue, -1);
    EXPECT_EQ(hud.display->countDownStart, 5);
    EXPECT_EQ(hud.display->countDownTime, 0);
}

TEST(Display, DropsTheTimeThatExceedsADigit) {
    const Hud hud;
    hud.display->setCountDownPosAndStart(COUNT_DOWN_X, COUNT_DOWN_Y, 3);
    expectCountDown(hud, {
                             {"a stall ends one digit only", 1, 5000, '3', false},
                             {"and leaves nothing for the next", 1, 1000, '2', false},
                             {"but a whole digit", 1, 1, '2', false},
                             {"the next digit", 1, 0, '1', false},
                         });
}

TEST(Display, HoldsADigitInFramesWithoutTime) {
    const Hud hud;
    hud.display->setCountDownPosAndStart(COUNT_DOWN_X, COUNT_DOWN_Y, 2);
    expectCountDown(hud, {{"no time", 100, 0, '2', false}});
}

TEST(Display, HoldsADigitLongerAfterATimeThatWrapped) {
    const Hud hud;
    hud.display->setCountDownPosAndStart(COUNT_DOWN_X, COUNT_DOWN_Y, 2);
    expectCountDown(hud, {
                             {"2^32 - 1 ms take one back", 1, 4294967295U, '2', false},
                             {"so that 1001 are not enough", 1, 1001, '2', false},
                             {"but 1002 are", 1, 1, '2', false},
                             {"the next digit", 1, 0, '1', false},
                         });
}

TEST(Display, CountsDownFromNineAtMost) {
    struct Start {
        int start;
        int first;
    };
    const Start starts[] = {{8, 8}, {9, 9}, {10, 9}, {12, 9}, {1000, 9}};
    for (const Start& start : starts) {
        SCOPED_TRACE(start.start);
        const Hud hud;
        hud.display->setCountDownPosAndStart(COUNT_DOWN_X, COUNT_DOWN_Y, start.start);
        EXPECT_EQ(hud.display->countDownStart, start.first);
        const char first = static_cast<char>('0' + start.first);
        const char second = static_cast<char>(first - 1);
        expectCountDown(hud, {
                                 {"the first digit", 1, 1001, first, false},
                                 {"the second digit", 1, 0, second, false},
                             });
    }
}

TEST(Display, ShowsTheNoughtOnceWhenItCountsDownFromNought) {
    const Hud hud;
    hud.display->setCountDownPosAndStart(COUNT_DOWN_X, COUNT_DOWN_Y, 0);
    expectCountDown(hud, {
                             {"0 for 1000 ms", 2, 500, '0', false},
                             {"then it is over", 1, 1, '0', true},
                             {"and stays so", 3, 1001, '.', true},
                         });
}

TEST(Display, IsOverAtOnceWhenItCountsDownFromMinusOne) {
    const Hud hud;
    hud.display->setCountDownPosAndStart(COUNT_DOWN_X, COUNT_DOWN_Y, -1);
    expectCountDown(hud, {{"over", 3, 1001, '.', true}});
}

TEST(Display, IsNeverOverWhenItCountsDownFromBelowMinusOne) {
    const Hud hud;
    hud.display->setCountDownPosAndStart(COUNT_DOWN_X, COUNT_DOWN_Y, -2);
    expectCountDown(hud, {{"nothing happens", 50, 1001, '.', false}});
    EXPECT_EQ(hud.display->countDownStart, -2);
    EXPECT_EQ(hud.display->countDownTime, 0);
}

TEST(Display, CountsDownAnewFromAnywhere) {
    const Hud hud;
    hud.display->setCountDownPosAndStart(10, 10, 7);
    hud.display->showCountDown(1000);
    hud.display->setCountDownPosAndStart(COUNT_DOWN_X, COUNT_DOWN_Y, 4);
    expectCountDown(hud, {
                             {"the time starts anew", 1, 1000, '4', false},
                             {"a whole second and one", 1, 1, '4', false},
                             {"the next digit", 1, 0, '3', false},
                         });
}

// Energy

TEST(Display, LightsTheEnergyBarFromItsBottom) {
    struct Energy {
        const char* rule;
        int energy;
        int row;  // of the picture, first that is lit
        int y;    // on the screen
    };
    const Energy energies[] = {
        {"full", 65, 0, 403},       {"one point lost", 64, 1, 404}, {"two points lost", 63, 2, 405},
        {"30 points", 30, 35, 438}, {"one point", 1, 64, 467},
    };
    for (const Energy& energy : energies) {
        SCOPED_TRACE(energy.rule);
        const Hud hud;
        hud.display->showEnergy(energy.energy);
        EXPECT_TRUE(hud.showsWhole(621, 402, ENERGY_SCALE, 11, 69));
        EXPECT_TRUE(showsPart(hud.screen, 606, energy.y, ENERGY_BAR,
                              rectOf(0, energy.row, 10, energy.energy)));
        EXPECT_TRUE(isBlackBeside(
            hud.screen, {rectOf(621, 402, 11, 69), rectOf(606, energy.y, 10, energy.energy)}));
    }
}

TEST(Display, ShowsTheScaleAloneWithoutEnergyOrBelow) {
    const int energies[] = {0, -1, -5, -666};
    for (const int energy : energies) {
        SCOPED_TRACE(energy);
        const Hud hud;
        hud.display->showEnergy(energy);
        EXPECT_TRUE(hud.showsWhole(621, 402, ENERGY_SCALE, 11, 69));
        EXPECT_TRUE(isBlackBeside(hud.screen, {rectOf(621, 402, 11, 69)}));
    }
}

TEST(Display, ShowsTheFullBarForMoreEnergyThanItHolds) {
    const Hud hud;
    hud.display->showEnergy(70);
    EXPECT_TRUE(hud.showsWhole(606, 403, ENERGY_BAR, 10, 65));
    EXPECT_TRUE(isBlackBeside(hud.screen, {rectOf(621, 402, 11, 69), rectOf(606, 403, 10, 65)}));
}

TEST(Display, PassesEveryEnergyOnAndDrawsTheScaleBeforeTheBar) {
    struct Energy {
        int energy;
        int row;
        int height;  // of 16 bits without sign
        int y;
    };
    const Energy energies[] = {
        {65, 0, 65, 403}, {0, 65, 0, 468}, {70, -5, 70, 398}, {-5, 70, 65531, 473}};
    for (const Energy& energy : energies) {
        SCOPED_TRACE(energy.energy);
        const Hud hud;
        const std::vector<Blit> blits = blitsOf([&] { hud.display->showEnergy(energy.energy); });
        ASSERT_EQ(blits.size(), 2U);
        EXPECT_EQ(blits[0].picture, hud.display->energyScale);
        EXPECT_TRUE(blits[0].whole);
        expectRect(blits[0].to, 621, 402, 9, 67);
        EXPECT_EQ(blits[1].picture, hud.display->energyBar);
        expectRect(blits[1].part, 0, energy.row, 10, energy.height);
        EXPECT_EQ(blits[1].to.x, 606);
        EXPECT_EQ(blits[1].to.y, energy.y);
    }
}

TEST(Display, PlacesTheBarFifteenPixelsLeftOfTheScaleAndOneLower) {
    const Hud hud;
    hud.display->setPositionEnergy(200, 100);
    expectRect(hud.display->energyScalePos, 200, 100, 9, 67);
    expectRect(hud.display->energyPos, 185, 101, 10, 65);
    EXPECT_EQ(hud.display->energyTop, 101);
    hud.display->showEnergy(20);
    EXPECT_TRUE(hud.showsWhole(200, 100, ENERGY_SCALE, 11, 69));
    EXPECT_TRUE(showsPart(hud.screen, 185, 146, ENERGY_BAR, rectOf(0, 45, 10, 20)));
    EXPECT_TRUE(isBlackBeside(hud.screen, {rectOf(200, 100, 11, 69), rectOf(185, 146, 10, 20)}));
}

// Weapons

TEST(Display, ShowsTheLaserIconWholeAtItsPlace) {
    const Hud hud;
    hud.display->showFirstShotA();
    EXPECT_TRUE(hud.showsWhole(10, 441, FIRST_SHOT_ICON, 31, 32));
    EXPECT_TRUE(isBlackBeside(hud.screen, {rectOf(10, 441, 31, 32)}));
}

TEST(Display, ShowsTheRocketIconWholeAtItsPlace) {
    const Hud hud;
    hud.display->showSecondShotA();
    EXPECT_TRUE(hud.showsWhole(10, 402, SECOND_SHOT_ICON, 33, 30));
    EXPECT_TRUE(isBlackBeside(hud.screen, {rectOf(10, 402, 33, 30)}));
}

TEST(Display, MovesTheIconsWithoutChangingTheirSizes) {
    const Hud hud;
    hud.display->setPositionFirstShotA(300, 200);
    hud.display->setPositionSecondShotA(400, 250);
    expectRect(hud.display->firstShotPos, 300, 200, 29, 29);
    expectRect(hud.display->secondShotPos, 400, 250, 29, 29);
    hud.display->showFirstShotA();
    hud.display->showSecondShotA();
    EXPECT_TRUE(hud.showsWhole(300, 200, FIRST_SHOT_ICON, 31, 32));
    EXPECT_TRUE(hud.showsWhole(400, 250, SECOND_SHOT_ICON, 33, 30));
    EXPECT_TRUE(isBlackBeside(hud.screen, {rectOf(300, 200, 31, 32), rectOf(400, 250, 33, 30)}));
}

}  // namespace
