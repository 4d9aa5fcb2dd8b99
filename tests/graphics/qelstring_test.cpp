// SPDX-License-Identifier: MIT
#include "graphics/qelstring.h"

#include "front/front.h"
#include "graphics/markedpictures.h"
#include "support/capture.h"
#include "support/surfaces.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

constexpr int CELL_WIDTH = 8;  // pixels
constexpr int CELL_HEIGHT = 9;
constexpr int LINE_X = 16;
constexpr int LINE_Y = 12;
constexpr unsigned int STEP_MS = 51;
constexpr int MANY_STEPS = 100;  // enough for every line here
constexpr int FADE_FRAMES = 48;  // six cursor pictures, eight frames each

// The glyph of a cell: its letter or digit, '.' for a blank, '?' for anything else. Below a cursor
// only its top is seen.
char glyphAt(SDL_Surface* screen, int x, int y, int height) {
    for (int i = 0; i < 26; ++i) {
        if (showsPart(screen, x, y, LETTERS, rectOf(8 * i, 0, 8, height))) {
            return static_cast<char>('A' + i);
        }
    }
    const bool thin = isBlack(screen, rectOf(x + 6, y, 2, height));
    for (int i = 0; i < 10; ++i) {
        if (thin && showsPart(screen, x, y, NUMBERS, rectOf(6 * i, 0, 6, height))) {
            return static_cast<char>('0' + i);
        }
    }
    return isBlack(screen, rectOf(x, y, CELL_WIDTH, height)) ? '.' : '?';
}

// The cursor picture that lies over a cell: its number, '.' for none.
char cursorAt(SDL_Surface* screen, int x, int y) {
    for (int i = 0; i < 10; ++i) {
        const SDL_Rect glow = rectOf(8 * i, CURSOR_TOP_ROW, 8, CELL_HEIGHT - CURSOR_TOP_ROW);
        if (showsPart(screen, x, y + CURSOR_TOP_ROW, CURSOR, glow)) {
            return static_cast<char>('0' + i);
        }
    }
    return '.';
}

struct Picture {
    std::string glyphs;
    std::string cursors;
};

Picture pictureOf(SDL_Surface* screen, int x, int y, size_t cells) {
    Picture picture;
    for (size_t i = 0; i < cells; ++i, x += CELL_WIDTH) {
        const char cursor = cursorAt(screen, x, y);
        picture.cursors += cursor;
        picture.glyphs += glyphAt(screen, x, y, cursor == '.' ? CELL_HEIGHT : CURSOR_TOP_ROW);
    }
    return picture;
}

// Frames of a line that look alike: so many calls of so many milliseconds each, what they show from
// the start of the line on, cell by cell, and what they return.
struct Frames {
    const char* rule;
    int calls;
    unsigned int ms;
    const char* glyphs;
    const char* cursors;
    int result;
};

// A line of marked glyphs on a small screen.
struct Line {
    explicit Line(const char* text, int type = 1) : screen(makeScreen(240, 40)), line(screen) {
        line.setString(text);
        line.setType(type);
        line.setPosition(LINE_X, LINE_Y, 0);
    }

    int show(unsigned int ms) {
        paint(screen, 0, 0, screen->w, screen->h, BLACK);
        return line.showString(ms);
    }

    int show(int calls, unsigned int ms) {
        int result = line.result;
        for (int i = 0; i < calls; ++i) {
            result = show(ms);
        }
        return result;
    }

    void expect(const std::vector<Frames>& rows) {
        for (const Frames& row : rows) {
            SCOPED_TRACE(row.rule);
            for (int call = 0; call < row.calls && !testing::Test::HasFailure(); ++call) {
                SCOPED_TRACE(call);
                EXPECT_EQ(show(row.ms), row.result);
                expectPicture(row.glyphs, row.cursors);
            }
        }
    }

    void expectPicture(const std::string& glyphs, const std::string& cursors) const {
        const Picture picture = pictureOf(screen, LINE_X, LINE_Y, glyphs.size());
        EXPECT_EQ(picture.glyphs, glyphs);
        EXPECT_EQ(picture.cursors, cursors);
        const int width = CELL_WIDTH * static_cast<int>(glyphs.size());
        EXPECT_TRUE(isBlackBeside(screen, {rectOf(LINE_X, LINE_Y, width, CELL_HEIGHT)}));
    }

    // Lets the line type itself out until it stands there without a trail.
    void typeOut() {
        for (int step = 0; step < MANY_STEPS && !line.typed; ++step) {
            show(STEP_MS);
        }
    }

    // Lets a line of type 2 or 3 type itself out and be wiped: the fade-out comes next.
    void wipe() {
        for (int step = 0; step < MANY_STEPS && line.typing; ++step) {
            show(STEP_MS);
        }
    }

    MarkedPictures pictures;
    SDL_Surface* screen;
    QELString line;
};

// Construction

TEST(QELString, HasNoStringAndNobodyWaitingAtFirst) {
    const MarkedPictures pictures;
    SDL_Surface* screen = makeScreen();
    const QELString line(screen);
    EXPECT_EQ(line.screen, screen);
    EXPECT_STREQ(line.text, "no string given");
    EXPECT_STREQ(line.textTwo, "no string given");
    EXPECT_STREQ(line.textThree, "no string given");
    EXPECT_EQ(line.length, 15);
    EXPECT_EQ(line.lengthTwo, 15);
    EXPECT_EQ(line.lengthThree, 15);
    EXPECT_EQ(line.levelTwo, -1);
    EXPECT_EQ(line.levelThree, -1);
    EXPECT_FALSE(line.idle);
}

TEST(QELString, StaysAtTheTopLeftCornerAtFirst) {
    const MarkedPictures pictures;
    const QELString line(makeScreen());
    EXPECT_EQ(line.type, 1);
    EXPECT_EQ(line.align, 0);
    EXPECT_EQ(line.x, 0);
    EXPECT_EQ(line.y, 0);
}

TEST(QELString, ShowsAForgottenStringAsOne) {
    const MarkedPictures pictures;
    SDL_Surface* screen = makeScreen(160, 20);
    QELString line(screen);
    for (int step = 0; step < MANY_STEPS; ++step) {
        paint(screen, 0, 0, 160, 20, BLACK);
        line.showString(STEP_MS);
    }
    EXPECT_EQ(pictureOf(screen, 0, 0, 16).glyphs, "NO.STRING.GIVEN.");
}

TEST(QELString, LoadsLettersCursorAndNumbersInThisOrderAndSaysNothing) {
    const MarkedPictures pictures;
    SDL_Surface* screen = makeScreen();
    EXPECT_EQ(capturedOutput([&] { const QELString line(screen); }), "");
    EXPECT_EQ(pictures.loads, std::vector<std::string>({"fonts/impact/letters.png",
                                                        "fonts/impact/letter_cursor.png",
                                                        "fonts/impact/numbers_a.png"}));
}

TEST(QELString, EndsTheProcessAtTheFirstSheetThatIsMissing) {
    struct Missing {
        const char* path;
        const char* said;
    };
    const Missing sheets[] = {
        {"fonts/impact/letters.png", "fonts/impact/letters.png\n"
                                     "Can't load image \"letters.png\": it is gone\n"},
        {"fonts/impact/letter_cursor.png", "fonts/impact/letters.png\n"
                                           "fonts/impact/letter_cursor.png\n"
                                           "Can't load image \"letter_cursor.png\": it is gone\n"},
        {"fonts/impact/numbers_a.png", "fonts/impact/letters.png\n"
                                       "fonts/impact/letter_cursor.png\n"
                                       "fonts/impact/numbers_a.png\n"
                                       "Can't load image \"numbers_a.png\": it is gone\n"},
    };
    for (const Missing& sheet : sheets) {
        SCOPED_TRACE(sheet.path);
        const MarkedPictures pictures(sheet.path);
        SDL_Surface* screen = makeScreen();
        const auto start = [&] {
            reportLoadsAndOutputOnStandardError();
            const QELString line(screen);
        };
        EXPECT_EXIT(start(), testing::ExitedWithCode(1), testing::Eq(sheet.said));
    }
}

TEST(QELString, LoadsTheSoundOfAKey) {
    const MarkedPictures pictures;
    char streamMemory = 0, chunkMemory = 0;
    SDL_RWops* const stream = reinterpret_cast<SDL_RWops*>(&streamMemory);
    Mix_Chunk* const chunk = reinterpret_cast<Mix_Chunk*>(&chunkMemory);
    std::vector<std::string> calls;
    front::hooks().SDL_RWFromFile = [&](const char* file, const char* mode) {
        calls.push_back(std::string(file) + ' ' + mode);
        return stream;
    };
    front::hooks().Mix_LoadWAV_RW = [&](SDL_RWops* source, int freeSource) {
        calls.emplace_back(source == stream && freeSource == 1 ? "load and close" : "load");
        return chunk;
    };
    const QELString line(makeScreen());
    EXPECT_EQ(calls, std::vector<std::string>({"sounds/keyboard.wav rb", "load and close"}));
    EXPECT_EQ(line.keyboardSound, chunk);
}

TEST(QELString, NeverPlaysTheSoundOfAKey) {
    Line stage("AB", 3);
    int plays = 0;
    front::hooks().Mix_PlayChannelTimed = [&](int, Mix_Chunk*, int, int) { return ++plays; };
    stage.show(200, STEP_MS);
    EXPECT_TRUE(stage.line.idle);
    EXPECT_EQ(plays, 0);
}

TEST(QELString, DoesWithoutTheSoundOfAKey) {
    const MarkedPictures pictures;
    front::hooks().SDL_RWFromFile = [](const char*, const char*) -> SDL_RWops* { return nullptr; };
    front::hooks().Mix_LoadWAV_RW = [](SDL_RWops*, int) -> Mix_Chunk* { return nullptr; };
    SDL_Surface* screen = makeScreen();
    QELString line(screen);
    line.showString(0);
    EXPECT_EQ(pictureOf(screen, 0, 0, 2).glyphs, "N.");
}

// Glyphs

TEST(QELString, ShowsUpperAndLowerCaseWithTheSameTwentySixLetters) {
    const char* texts[] = {"abcdefghijklmnopqrstuvwxyz", "ABCDEFGHIJKLMNOPQRSTUVWXYZ"};
    for (const char* text : texts) {
        SCOPED_TRACE(text);
        Line stage(text);
        stage.typeOut();
        stage.expectPicture("ABCDEFGHIJKLMNOPQRSTUVWXYZ.", "...........................");
    }
}

TEST(QELString, ShowsTenDigitsThatAreNarrowerThanTheirCells) {
    Line stage("0123456789");
    stage.typeOut();
    stage.expectPicture("0123456789.", "...........");
}

TEST(QELString, LeavesACellBlankForEveryOtherCharacter) {
    // The neighbours of the letters and digits first, then marks, umlauts and control characters.
    Line stage("A@[`{/:B !?-.\"C\xc4\xe4\xff\t\nD");
    stage.typeOut();
    stage.expectPicture("A......B......C.....D.", "......................");
}

TEST(QELString, RemembersTheLastGlyphThatItDrew) {
    Line stage("dZ7!");
    const int glyphs[] = {3, 25, 7, 7};
    for (const int glyph : glyphs) {
        stage.show(glyph == 3 ? 0 : STEP_MS);
        EXPECT_EQ(stage.line.glyph, glyph);
    }
}

// Typing

TEST(QELString, TypesALineOutAndLeavesItThere) {
    Line stage("AB", 1);
    stage.expect({
        {"the first character is there at once, the cursor behind it", 1, 0, "A...", "10..", 0},
        {"50 ms are no step yet", 1, 50, "A...", "10..", 0},
        {"the 51st brings the next one; the trail closes", 1, 1, "AB..", ".10.", 0},
        {"a step later the trail is shorter and darker", 1, 51, "AB..", "..1.", 0},
        {"the step that ends the trail returns 1", 1, 51, "AB..", "....", 1},
        {"the line stays", 300, 51, "AB..", "....", 1},
    });
}

TEST(QELString, GathersTheTimeOfShortFramesIntoSteps) {
    Line stage("ABC");
    stage.expect({
        {"20 ms", 1, 20, "A...", "10..", 0},
        {"40 ms", 1, 20, "A...", "10..", 0},
        {"50 ms", 1, 10, "A...", "10..", 0},
        {"51 ms", 1, 1, "AB..", "210.", 0},
        {"gathered anew: 50 ms", 2, 25, "AB..", "210.", 0},
        {"gathered anew: 51 ms", 1, 1, "ABC.", ".210", 0},
    });
}

TEST(QELString, DropsTheTimeThatExceedsAStep) {
    Line stage("ABC");
    stage.expect({
        {"a stall types one character only", 1, 5000, "AB..", "210.", 0},
        {"and leaves nothing for the next", 1, 50, "AB..", "210.", 0},
        {"but a whole step", 1, 1, "ABC.", ".210", 0},
    });
}

TEST(QELString, NeverGoesOnInFramesWithoutTime) {
    Line stage("ABC", 2);
    stage.expect({
        {"while it is typed", 100, 0, "A...", "10..", 0},
        {"a step", 1, 51, "AB..", "210.", 0},
        {"while it is typed", 100, 0, "AB..", "210.", 0},
        {"a step", 1, 51, "ABC.", ".210", 0},
        {"while its trail closes", 100, 0, "ABC.", ".210", 0},
        {"the rest of the trail", 1, 51, "ABC.", "..21", 0},
        {"the rest of the trail", 1, 51, "ABC.", "...2", 0},
        {"the trail is gone", 1, 51, "ABC.", "....", 1},
        {"while it stands", 100, 0, "ABC.", "....", 1},
        {"the pause", 4, 51, "ABC.", "....", 1},
        {"the wipe", 1, 51, ".BC.", "....", 1},
        {"while it is wiped", 100, 0, ".BC.", "....", 1},
        {"the edge of the wipe", 1, 51, "..C.", "..5.", 1},
        {"while it is wiped", 100, 0, "..C.", "..5.", 1},
    });
}

TEST(QELString, WaitsLongerAfterATimeThatWrapped) {
    Line stage("AB");
    stage.expect({
        {"2^32 - 1 ms take one back", 1, 4294967295U, "A..", "10.", 0},
        {"so that 51 are no step", 1, 51, "A..", "10.", 0},
        {"but 52 are", 1, 1, "AB.", ".10", 0},
    });
}

TEST(QELString, TrailsNineFadingGlowsBehindTheCursorWhileItGrows) {
    Line stage("ABCDEFGHIJKL");
    stage.expect({
        {"one character", 1, 0, "A............", "10...........", 0},
        {"two characters", 1, 51, "AB...........", "210..........", 0},
        {"three characters", 1, 51, "ABC..........", "3210.........", 0},
        {"four characters", 1, 51, "ABCD.........", "43210........", 0},
        {"five characters", 1, 51, "ABCDE........", "543210.......", 0},
        {"six characters", 1, 51, "ABCDEF.......", "6543210......", 0},
        {"seven characters", 1, 51, "ABCDEFG......", "76543210.....", 0},
        {"eight characters", 1, 51, "ABCDEFGH.....", "876543210....", 0},
        {"nine characters", 1, 51, "ABCDEFGHI....", "9876543210...", 0},
        {"the tenth leaves the first without a glow", 1, 51, "ABCDEFGHIJ...", ".9876543210..", 0},
        {"and so on", 1, 51, "ABCDEFGHIJK..", "..9876543210.", 0},
    });
}

TEST(QELString, ClosesALongTrailFromTheEndOfTheLineInTenSteps) {
    Line stage("ABCDEFGHIJKL");
    stage.show(10, STEP_MS);
    stage.expect({
        {"the last character", 1, 51, "ABCDEFGHIJKL.", "...9876543210", 0},
        {"one step", 1, 51, "ABCDEFGHIJKL.", "....987654321", 0},
        {"two steps", 1, 51, "ABCDEFGHIJKL.", ".....98765432", 0},
        {"three steps", 1, 51, "ABCDEFGHIJKL.", "......9876543", 0},
        {"four steps", 1, 51, "ABCDEFGHIJKL.", ".......987654", 0},
        {"five steps", 1, 51, "ABCDEFGHIJKL.", "........98765", 0},
        {"six steps", 1, 51, "ABCDEFGHIJKL.", ".........9876", 0},
        {"seven steps", 1, 51, "ABCDEFGHIJKL.", "..........987", 0},
        {"eight steps", 1, 51, "ABCDEFGHIJKL.", "...........98", 0},
        {"nine steps", 1, 51, "ABCDEFGHIJKL.", "............9", 0},
        {"ten steps: typed", 1, 51, "ABCDEFGHIJKL.", ".............", 1},
    });
}

TEST(QELString, HasATrailAsLongAsTheLineButOfTenCellsAtMost) {
    struct Trail {
        const char* rule;
        const char* text;
        int length;
        const char* cursors;  // when the last character has come
    };
    const Trail trails[] = {
        {"one character, one cell", "A", 1, ".0"},
        {"two characters, two cells", "AB", 2, ".10"},
        {"eight characters, eight cells", "ABCDEFGH", 8, ".76543210"},
        {"nine characters, nine cells", "ABCDEFGHI", 9, ".876543210"},
        {"ten characters, ten cells", "ABCDEFGHIJ", 10, ".9876543210"},
        {"eleven characters, ten cells", "ABCDEFGHIJK", 10, "..9876543210"},
    };
    for (const Trail& trail : trails) {
        SCOPED_TRACE(trail.rule);
        Line stage(trail.text);
        EXPECT_EQ(stage.line.trailLength, trail.length);
        stage.show(0);
        stage.show(stage.line.length - 1, STEP_MS);
        stage.expectPicture(std::string(trail.text) + '.', trail.cursors);
        EXPECT_EQ(stage.show(trail.length - 1, STEP_MS), 0);
        EXPECT_EQ(stage.show(STEP_MS), 1);
    }
}

TEST(QELString, CountsTheFramesAndCellsOfItsClosingTrail) {
    Line stage("ABCD");
    stage.show(4, STEP_MS);
    EXPECT_EQ(stage.line.pauseTicks, 1);
    EXPECT_EQ(stage.line.trailFrame, 4);  // frames 1 to 3 are drawn
    EXPECT_EQ(stage.line.trailIndex, 3);
    stage.show(0);
    EXPECT_EQ(stage.line.trailIndex, 3);
}

TEST(QELString, NeitherTypesNorEndsWhenItIsEmpty) {
    for (int type = 1; type <= 3; ++type) {
        SCOPED_TRACE(type);
        Line stage("", type);
        EXPECT_EQ(stage.line.shown, 1);
        EXPECT_EQ(stage.line.length, 0);
        stage.expect({
            {"two cursors at once", 1, 0, "...", "10.", 0},
            {"for good", 200, 51, "...", "10.", 0},
        });
        EXPECT_EQ(stage.line.pauseTicks, 0);
    }
}

// Wipe and fade-out

TEST(QELString, IsWipedFromTheLeftAfterAPauseOfFiveSteps) {
    Line stage("ABCD", 2);
    stage.typeOut();
    stage.expect({
        {"four steps of pause", 4, 51, "ABCD.", ".....", 1},
        {"50 ms are no step", 1, 50, "ABCD.", ".....", 1},
        {"the fifth takes the first character", 1, 1, ".BCD.", ".....", 1},
        {"the next step the second; now the edge glows", 1, 51, "..CD.", "..5..", 1},
        {"the glow runs with the edge", 1, 51, "...D.", "...5.", 1},
        {"and stands behind the last character that goes", 1, 51, ".....", "....5", 1},
    });
    EXPECT_FALSE(stage.line.typing);
}

TEST(QELString, FadesOutBehindItsEndInSixTimesEightFramesWhateverTheirTime) {
    const unsigned int times[] = {0, 1, 51, 5000};
    for (const unsigned int ms : times) {
        SCOPED_TRACE(ms);
        Line stage("AB", 2);
        stage.wipe();
        stage.expect({
            {"frame 4", 8, ms, "...", "..4", 1},
            {"frame 5", 8, ms, "...", "..5", 1},
            {"frame 6", 8, ms, "...", "..6", 1},
            {"frame 7", 8, ms, "...", "..7", 1},
            {"frame 8", 8, ms, "...", "..8", 1},
            {"frame 9", 7, ms, "...", "..9", 1},
            {"its last frame returns 0", 1, ms, "...", "..9", 0},
            {"then nothing is shown", 100, ms, "...", "...", 0},
        });
        EXPECT_TRUE(stage.line.idle);
        EXPECT_FALSE(stage.line.fading);
    }
}

TEST(QELString, IsIdleOnlyWhenItHasFadedOut) {
    Line stage("AB", 2);
    stage.wipe();
    stage.show(FADE_FRAMES - 1, 0);
    EXPECT_FALSE(stage.line.idle);
    EXPECT_TRUE(stage.line.fading);
    stage.show(0);
    EXPECT_TRUE(stage.line.idle);
}

TEST(QELString, IsWipedWithoutAGlowWhenItHasOneCharacter) {
    Line stage("A", 2);
    stage.expect({
        {"complete at once", 1, 0, "A.", ".0", 0},
        {"typed a step later", 1, 51, "A.", "..", 1},
        {"the pause", 4, 51, "A.", "..", 1},
        {"gone", 1, 51, "..", "..", 1},
        {"the fade-out", 8, 51, "..", ".4", 1},
    });
}

TEST(QELString, StaysAsTypeOneWithoutWipeHoweverLongItStands) {
    Line stage("AB", 1);
    stage.typeOut();
    stage.show(1000, STEP_MS);
    EXPECT_EQ(stage.line.wipeDelay, 0);
    EXPECT_TRUE(stage.line.typing);
    stage.expect({{"still there", 1, 51, "AB.", "...", 1}});
}

TEST(QELString, PausesAnewWhenALineThatStaysIsToldToLeave) {
    Line stage("AB", 1);
    stage.typeOut();
    stage.show(20, STEP_MS);
    stage.line.setType(2);
    stage.expect({
        {"the pause", 4, 51, "AB.", "...", 1},
        {"the wipe", 1, 51, ".B.", "...", 1},
    });
}

TEST(QELString, StopsItsWipeWithoutAGlowWhenItIsToldToStay) {
    Line stage("ABCD", 2);
    stage.typeOut();
    stage.show(6, STEP_MS);
    stage.line.setType(1);
    stage.expect({{"the rest stays", 50, 51, "..CD.", ".....", 1}});
}

TEST(QELString, ShowsNoFadeOutWhenItIsToldToStay) {
    Line stage("AB", 2);
    stage.wipe();
    stage.show(8, 0);
    stage.line.setType(1);
    stage.expect({{"nothing to stay", 100, 51, "...", "...", 1}});
    stage.line.setType(2);
    stage.expect({{"the fade-out goes on", 8, 51, "...", "..5", 1}});
}

TEST(QELString, DoesNotStartAWaitingLineAsTypeTwo) {
    Line stage("A", 2);
    stage.line.setStringTwo("B", 7);
    stage.wipe();
    stage.show(FADE_FRAMES, 0);
    stage.expect({{"nothing follows", 100, 51, "...", "...", 0}});
    EXPECT_STREQ(stage.line.text, "A");
    EXPECT_EQ(stage.line.levelTwo, 7);
}

// A new string

TEST(QELString, StartsAnewWithEveryString) {
    Line stage("AB", 2);
    QELString& line = stage.line;
    line.typed = line.idle = true;
    line.typing = line.fading = false;
    line.length = line.first = line.wipeDelay = line.trailIndex = line.pauseTicks = 77;
    line.trailFrame = line.fadeCalls = line.fadeFrame = line.elapsed = line.shown = 77;
    line.trailLength = line.result = 77;
    line.setString("HELLO");
    EXPECT_FALSE(line.typed);
    EXPECT_TRUE(line.typing);
    EXPECT_TRUE(line.fading);
    EXPECT_FALSE(line.idle);
    EXPECT_EQ(line.length, 5);
    EXPECT_STREQ(line.text, "HELLO");
    EXPECT_EQ(line.first, 0);
    EXPECT_EQ(line.wipeDelay, 0);
    EXPECT_EQ(line.trailIndex, 0);
    EXPECT_EQ(line.pauseTicks, 0);
    EXPECT_EQ(line.trailFrame, 0);
    EXPECT_EQ(line.fadeCalls, 0);
    EXPECT_EQ(line.fadeFrame, 4);
    EXPECT_EQ(line.elapsed, 0);
    EXPECT_EQ(line.shown, 1);
    EXPECT_EQ(line.trailLength, 5);
    EXPECT_EQ(line.result, 0);
}

TEST(QELString, KeepsPlaceTypeAndWaitingLinesWhenANewStringStarts) {
    Line stage("AB", 3);
    stage.line.setPosition(100, 20, 1);
    stage.line.setStringTwo("TWO", 6);
    stage.line.setStringThree("THREE", 5);
    stage.line.setString("LONGER");
    EXPECT_EQ(stage.line.x, 92);
    EXPECT_EQ(stage.line.y, 20);
    EXPECT_EQ(stage.line.align, 1);
    EXPECT_EQ(stage.line.type, 3);
    EXPECT_STREQ(stage.line.textTwo, "TWO");
    EXPECT_EQ(stage.line.levelTwo, 6);
    EXPECT_STREQ(stage.line.textThree, "THREE");
    EXPECT_EQ(stage.line.levelThree, 5);
}

TEST(QELString, StartsANewStringInWhateverPhaseTheOldOneIs) {
    struct Phase {
        const char* rule;
        int steps;
    };
    const Phase phases[] = {{"just typed on", 1}, {"closing its trail", 3}, {"standing", 6},
                            {"being wiped", 10},  {"fading out", 20},       {"idle", 100}};
    for (const Phase& phase : phases) {
        SCOPED_TRACE(phase.rule);
        Line stage("ABC", 2);
        stage.show(phase.steps, STEP_MS);
        stage.line.setString("XY");
        stage.expect({
            {"first character", 1, 50, "X..", "10.", 0},
            {"second character", 1, 1, "XY.", ".10", 0},
            {"trail", 1, 51, "XY.", "..1", 0},
            {"typed", 5, 51, "XY.", "...", 1},
            {"wipe", 1, 51, ".Y.", "...", 1},
            {"edge", 1, 51, "...", "..5", 1},
            {"fade-out", 8, 51, "...", "..4", 1},
        });
    }
}

TEST(QELString, ReadsTheCallersOwnText) {
    char text[] = "AB";
    Line stage(text);
    text[0] = 'C';
    stage.expect({{"the change is seen", 1, 0, "C..", "10.", 0}});
    EXPECT_EQ(stage.line.text, text);
}

TEST(QELString, MeasuresATextWhenItIsSet) {
    char text[] = "ABC";
    Line stage(text);
    text[1] = '\0';
    stage.typeOut();
    stage.expectPicture("A.C.", "....");
}

// Place

TEST(QELString, StandsLeftOfRightOfOrAroundItsPlace) {
    struct Place {
        const char* rule;
        const char* text;
        int align;
        int x;
    };
    const Place places[] = {
        {"align 0 starts there", "ABC", 0, 100},
        {"align 1 has its middle there", "ABC", 1, 88},
        {"align 1 with an even text", "ABCD", 1, 84},
        {"align 2 ends there", "ABC", 2, 76},
        {"any other align starts there", "ABC", 3, 100},
        {"any other align starts there", "ABC", -1, 100},
    };
    for (const Place& place : places) {
        SCOPED_TRACE(place.rule);
        Line stage(place.text);
        stage.line.setPosition(100, 25, place.align);
        EXPECT_EQ(stage.line.align, place.align);
        EXPECT_EQ(stage.line.x, place.x);
        EXPECT_EQ(stage.line.y, 25);
        stage.typeOut();
        const size_t cells = std::string(place.text).size();
        EXPECT_EQ(pictureOf(stage.screen, place.x, 25, cells).glyphs, place.text);
    }
}

TEST(QELString, IsCentredByThePreviousTextWhenItIsPlacedFirst) {
    Line stage("ABCDEFGHIJ");
    stage.line.setPosition(100, 0, 1);
    stage.line.setString("A");
    EXPECT_EQ(stage.line.x, 60);
    stage.line.setPosition(100, 0, 1);
    EXPECT_EQ(stage.line.x, 96);
}

TEST(QELString, MovesAtOnceWhenItIsPlacedAnew) {
    Line stage("AB");
    stage.typeOut();
    stage.line.setPosition(40, 3, 0);
    EXPECT_EQ(stage.show(0), 1);
    EXPECT_EQ(pictureOf(stage.screen, 40, 3, 3).glyphs, "AB.");
    EXPECT_TRUE(isBlackBeside(stage.screen, {rectOf(40, 3, 16, 9)}));
}

TEST(QELString, FadesOutInTheRowWhereItWasWipedThoughItIsPlacedAnew) {
    Line stage("AB", 2);
    stage.wipe();
    stage.line.setPosition(40, 3, 0);
    stage.show(0);
    EXPECT_EQ(pictureOf(stage.screen, 40, LINE_Y, 3).cursors, "..4");
    EXPECT_TRUE(isBlackBeside(stage.screen, {rectOf(56, LINE_Y, 8, 9)}));
}

TEST(QELString, CountsItsCellsFromTheEdgeOfTheScreenWhereItIsCutThere) {
    // Three columns of the first cell are off the screen: the second cell follows at column 8, not
    // at column 5.
    Line stage("ABC");
    stage.line.setPosition(-3, LINE_Y, 0);
    stage.typeOut();
    EXPECT_TRUE(showsPart(stage.screen, 0, LINE_Y, LETTERS, rectOf(3, 0, 5, 9)));
    EXPECT_TRUE(showsPart(stage.screen, 8, LINE_Y, LETTERS, rectOf(8, 0, 8, 9)));
    EXPECT_TRUE(showsPart(stage.screen, 16, LINE_Y, LETTERS, rectOf(16, 0, 8, 9)));
    EXPECT_TRUE(isBlackBeside(stage.screen, {rectOf(0, LINE_Y, 5, 9), rectOf(8, LINE_Y, 16, 9)}));
}

TEST(QELString, CutsOnlyTheFirstCharacterAtTheTopOfTheScreen) {
    Line stage("AB");
    stage.line.setPosition(LINE_X, -4, 0);
    stage.typeOut();
    EXPECT_TRUE(showsPart(stage.screen, LINE_X, 0, LETTERS, rectOf(0, 4, 8, 5)));
    EXPECT_TRUE(showsPart(stage.screen, LINE_X + 8, 0, LETTERS, rectOf(8, 0, 8, 9)));
    EXPECT_TRUE(
        isBlackBeside(stage.screen, {rectOf(LINE_X, 0, 8, 5), rectOf(LINE_X + 8, 0, 8, 9)}));
}

// Waiting lines

TEST(QELString, FillsItsWaitingSlotsWithTheCallersOwnTexts) {
    Line stage("A");
    const char two[] = "SECOND";
    const char three[] = "THIRDLINE";
    stage.line.setStringTwo(two, 4);
    stage.line.setStringThree(three, 9);
    EXPECT_EQ(stage.line.textTwo, two);
    EXPECT_EQ(stage.line.lengthTwo, 6);
    EXPECT_EQ(stage.line.levelTwo, 4);
    EXPECT_EQ(stage.line.textThree, three);
    EXPECT_EQ(stage.line.lengthThree, 9);
    EXPECT_EQ(stage.line.levelThree, 9);
    EXPECT_STREQ(stage.line.text, "A");
}

TEST(QELString, TakesAnOfferedLineByItsLevelWhileItIsBusy) {
    struct Offer {
        const char* rule;
        const char* textTwo;
        int levelTwo;
        const char* textThree;
        int levelThree;
        const char* offered;
        int level;
        const char* newTextTwo;
        int newLevelTwo;
        const char* newTextThree;
        int newLevelThree;
    };
    // clang-format off
    const Offer offers[] = {
        {"the first to wait takes the second slot",
         "", -1, "", -1, "NEW", 0, "NEW", 0, "", -1},
        {"a higher level replaces the second line, which is lost",
         "TWO", 4, "THREE", 2, "NEW", 5, "NEW", 5, "THREE", 2},
        {"a higher level does not raise the text that waits",
         "TWO", 4, "THREE", 2, "TWO", 5, "TWO", 4, "THREE", 2},
        {"the same level takes the third slot",
         "TWO", 4, "THREE", 2, "NEW", 4, "TWO", 4, "NEW", 4},
        {"the same level takes the third slot whatever level stands there",
         "TWO", 4, "THREE", 9, "NEW", 4, "TWO", 4, "NEW", 4},
        {"the same level and text is not queued twice",
         "TWO", 4, "THREE", 2, "TWO", 4, "TWO", 4, "THREE", 2},
        {"a lower level takes the third slot from a lower one",
         "TWO", 4, "THREE", 2, "NEW", 3, "TWO", 4, "NEW", 3},
        {"a lower level takes the third slot from the same",
         "TWO", 4, "THREE", 2, "NEW", 2, "TWO", 4, "NEW", 2},
        {"a lower level leaves the third slot to a higher one",
         "TWO", 4, "THREE", 2, "NEW", 1, "TWO", 4, "THREE", 2},
        {"a lower level takes the third slot though the text waits already",
         "TWO", 4, "THREE", 2, "TWO", 3, "TWO", 4, "TWO", 3},
        {"a lower level takes the empty third slot",
         "TWO", 4, "", -1, "NEW", 0, "TWO", 4, "NEW", 0},
        {"the text of the third slot is not compared when it is higher",
         "TWO", 4, "THREE", 2, "THREE", 5, "THREE", 5, "THREE", 2},
        {"nor when the level is the same as the second's",
         "TWO", 4, "THREE", 2, "THREE", 4, "TWO", 4, "THREE", 4},
        {"a text left in the empty second slot is not taken",
         "OLD", -1, "", -1, "OLD", 3, "OLD", -1, "", -1},
        {"level -1 is that of an empty slot and goes to the third",
         "OLD", -1, "", -1, "NEW", -1, "OLD", -1, "NEW", -1},
        {"nothing waits below level -1",
         "OLD", -1, "", -1, "NEW", -2, "OLD", -1, "", -1},
    };
    // clang-format on
    for (const Offer& offer : offers) {
        SCOPED_TRACE(offer.rule);
        Line stage("SHOWN", 3);
        QELString& line = stage.line;
        line.setStringTwo(offer.textTwo, offer.levelTwo);
        line.setStringThree(offer.textThree, offer.levelThree);
        const std::string offered = offer.offered;  // equal by its characters, not by its place
        line.setNewString(offered.c_str(), offer.level);
        EXPECT_STREQ(line.text, "SHOWN");
        EXPECT_STREQ(line.textTwo, offer.newTextTwo);
        EXPECT_EQ(line.levelTwo, offer.newLevelTwo);
        EXPECT_STREQ(line.textThree, offer.newTextThree);
        EXPECT_EQ(line.levelThree, offer.newLevelThree);
    }
}

TEST(QELString, QueuesTheSameTextOfTheSameLevelOnce) {
    Line stage("A", 3);
    stage.line.setNewString("LASER EMPTY", 3);
    stage.line.setNewString("LASER EMPTY", 3);
    EXPECT_STREQ(stage.line.textTwo, "LASER EMPTY");
    EXPECT_EQ(stage.line.levelThree, -1);
}

TEST(QELString, TakesTheWordsOfAnUnsetSlotForATextThatWaits) {
    Line stage("A", 3);
    stage.line.setNewString("no string given", 3);
    EXPECT_EQ(stage.line.levelTwo, -1);
    stage.line.setNewString("No string given", 3);
    EXPECT_EQ(stage.line.levelTwo, 3);
}

TEST(QELString, StartsAnOfferedLineAtOnceAndForgetsTheWaitingOnesWhenItIsIdle) {
    Line stage("AB", 2);
    stage.line.setStringTwo("TWO", 6);
    stage.line.setStringThree("THREE", 5);
    stage.show(100, STEP_MS);
    ASSERT_TRUE(stage.line.idle);
    stage.line.setNewString("XY", 0);
    EXPECT_EQ(stage.line.levelTwo, -1);
    EXPECT_EQ(stage.line.levelThree, -1);
    EXPECT_STREQ(stage.line.textTwo, "TWO");
    EXPECT_EQ(stage.line.lengthTwo, 3);
    stage.expect({{"the offered line", 1, 0, "X..", "10.", 0}});
}

TEST(QELString, MovesItsQueueOnWhenItIsIdle) {
    struct Queue {
        const char* rule;
        bool idle;
        int levelTwo;
        int levelThree;
        const char* newText;
        const char* newTextTwo;
        int newLengthTwo;
        int newLevelTwo;
        bool newIdle;
    };
    const Queue queues[] = {
        {"the second line starts, the third moves up", true, 5, 3, "TWO", "THREE", 5, 3, false},
        {"the second line starts", true, 5, -1, "TWO", "TWO", 3, -1, false},
        {"level 0 waits too", true, 0, 0, "TWO", "THREE", 5, 0, false},
        {"without a second line the third moves up only", true, -1, 3, "SHOWN", "THREE", 5, 3,
         true},
        {"nothing waits", true, -1, -1, "SHOWN", "TWO", 3, -1, true},
        {"a busy line keeps its queue", false, 5, 3, "SHOWN", "TWO", 3, 5, false},
    };
    for (const Queue& queue : queues) {
        SCOPED_TRACE(queue.rule);
        Line stage("SHOWN", 3);
        QELString& line = stage.line;
        line.setStringTwo("TWO", queue.levelTwo);
        line.setStringThree("THREE", queue.levelThree);
        line.idle = queue.idle;
        line.updateStringList();
        EXPECT_STREQ(line.text, queue.newText);
        EXPECT_STREQ(line.textTwo, queue.newTextTwo);
        EXPECT_EQ(line.lengthTwo, queue.newLengthTwo);
        EXPECT_EQ(line.levelTwo, queue.newLevelTwo);
        EXPECT_EQ(line.levelThree, queue.idle ? -1 : 3);
        EXPECT_EQ(line.idle, queue.newIdle);
    }
}

TEST(QELString, ShowsWaitingLinesOneAfterTheOtherAsTypeThree) {
    Line stage("A", 3);
    stage.line.setNewString("BC", 5);
    stage.line.setNewString("9", 1);
    stage.expect({
        {"the first line", 1, 0, "A..", ".0.", 0},
        {"typed", 5, 51, "A..", "...", 1},
        {"wiped", 1, 51, "...", "...", 1},
        {"fading", 8, 0, "...", ".4.", 1},
        {"fading", 8, 0, "...", ".5.", 1},
        {"fading", 8, 0, "...", ".6.", 1},
        {"fading", 8, 0, "...", ".7.", 1},
        {"fading", 8, 0, "...", ".8.", 1},
        {"fading", 7, 0, "...", ".9.", 1},
        {"the last frame of its fade-out returns 0", 1, 0, "...", ".9.", 0},
        {"the next frame shows the line that waited", 1, 50, "B..", "10.", 0},
        {"and types it", 1, 1, "BC.", ".10", 0},
    });
    EXPECT_STREQ(stage.line.textTwo, "9");
    EXPECT_EQ(stage.line.levelTwo, 1);
    EXPECT_EQ(stage.line.levelThree, -1);
    stage.wipe();
    stage.show(FADE_FRAMES, 0);
    stage.expect({
        {"the third line has its turn", 1, 0, "9..", ".0.", 0},
        {"typed", 5, 51, "9..", "...", 1},
    });
    EXPECT_EQ(stage.line.levelTwo, -1);
    stage.wipe();
    EXPECT_EQ(stage.show(FADE_FRAMES, 0), 0);
    EXPECT_TRUE(stage.line.idle);
    stage.expect({{"nothing is left", 50, 51, "...", "...", 0}});
    stage.line.setNewString("Z", 0);
    stage.expect({{"an offered line starts at once", 1, 0, "Z..", ".0.", 0}});
}

TEST(QELString, DoesNotTakeAStartedMessageAgainUntilAnotherHasWaited) {
    Line stage("A", 3);
    stage.line.setNewString("B", 5);
    stage.wipe();
    stage.show(FADE_FRAMES, 0);
    ASSERT_STREQ(stage.line.text, "B");
    stage.line.setNewString("B", 5);
    EXPECT_EQ(stage.line.levelTwo, -1);
    stage.line.setNewString("C", 1);
    stage.line.setNewString("B", 5);
    EXPECT_STREQ(stage.line.textTwo, "B");
    EXPECT_EQ(stage.line.levelTwo, 5);
}

TEST(QELString, ShowsAWaitingLineAtThePlaceOfTheOneBefore) {
    Line stage("ABCD", 3);
    stage.line.setPosition(LINE_X + 16, LINE_Y, 1);
    stage.line.setNewString("XY", 0);
    stage.wipe();
    stage.show(FADE_FRAMES, 0);
    EXPECT_EQ(stage.line.x, LINE_X);
    stage.expect({{"not centred anew", 1, 0, "X..", "10.", 0}});
}

}  // namespace
