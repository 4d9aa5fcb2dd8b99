// SPDX-License-Identifier: MIT
#include "graphics/qelgraphic.h"

#include "front/front.h"
#include "support/surfaces.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

constexpr int FILLED_RECORDS = 160;

// clang-format off
constexpr Colour PALETTE[FILLED_RECORDS] = {
    // 0 to 31: grey
    {255, 255, 255}, {7, 7, 7}, {15, 15, 15}, {23, 23, 23},
    {31, 31, 31}, {39, 39, 39}, {47, 47, 47}, {55, 55, 55},
    {63, 63, 63}, {71, 71, 71}, {79, 79, 79}, {87, 87, 87},
    {95, 95, 95}, {103, 103, 103}, {111, 111, 111}, {119, 119, 119},
    {127, 127, 127}, {135, 135, 135}, {143, 143, 143}, {151, 151, 151},
    {159, 159, 159}, {167, 167, 167}, {175, 175, 175}, {183, 183, 183},
    {191, 191, 191}, {199, 199, 199}, {207, 207, 207}, {215, 215, 215},
    {223, 223, 223}, {231, 231, 231}, {239, 239, 239}, {247, 247, 247},
    // 32 to 39: red
    {255, 0, 0}, {31, 0, 0}, {63, 0, 0}, {95, 0, 0},
    {127, 0, 0}, {159, 0, 0}, {191, 0, 0}, {223, 0, 0},
    // 40 to 47: red turning pale
    {255, 17, 17}, {255, 49, 49}, {255, 81, 81}, {255, 113, 113},
    {255, 145, 145}, {255, 177, 177}, {255, 209, 209}, {255, 241, 241},
    // 48 to 55: green
    {0, 255, 0}, {0, 31, 0}, {0, 63, 0}, {0, 95, 0},
    {0, 127, 0}, {0, 159, 0}, {0, 191, 0}, {0, 223, 0},
    // 56 to 63: green turning pale
    {17, 255, 17}, {49, 255, 49}, {81, 255, 81}, {113, 255, 113},
    {145, 255, 145}, {177, 255, 177}, {209, 255, 209}, {241, 255, 241},
    // 64 to 71: blue
    {0, 0, 255}, {0, 0, 31}, {0, 0, 63}, {0, 0, 95},
    {0, 0, 127}, {0, 0, 159}, {0, 0, 191}, {0, 0, 223},
    // 72 to 79: blue turning pale
    {17, 17, 255}, {49, 49, 255}, {81, 81, 255}, {113, 113, 255},
    {145, 145, 255}, {177, 177, 255}, {209, 209, 255}, {241, 241, 255},
    // 80 to 87: yellow
    {255, 255, 0}, {31, 31, 0}, {63, 63, 0}, {95, 95, 0},
    {127, 127, 0}, {159, 159, 0}, {191, 191, 0}, {223, 223, 0},
    // 88 to 95: yellow turning pale
    {255, 255, 17}, {255, 255, 49}, {255, 255, 81}, {255, 255, 113},
    {255, 255, 145}, {255, 255, 177}, {255, 255, 209}, {255, 255, 241},
    // 96 to 103: magenta
    {255, 0, 255}, {31, 0, 31}, {63, 0, 63}, {95, 0, 95},
    {127, 0, 127}, {159, 0, 159}, {191, 0, 191}, {223, 0, 223},
    // 104 to 111: magenta turning pale
    {255, 17, 255}, {255, 49, 255}, {255, 81, 255}, {255, 113, 255},
    {255, 145, 255}, {255, 177, 255}, {255, 209, 255}, {255, 241, 255},
    // 112 to 119: cyan
    {0, 255, 255}, {0, 31, 31}, {0, 63, 63}, {0, 95, 95},
    {0, 127, 127}, {0, 159, 159}, {0, 191, 191}, {0, 223, 223},
    // 120 to 127: cyan turning pale
    {17, 255, 255}, {49, 255, 255}, {81, 255, 255}, {113, 255, 255},
    {145, 255, 255}, {177, 255, 255}, {209, 255, 255}, {241, 255, 255},
    // 128 to 135: orange
    {255, 255, 0}, {31, 15, 0}, {63, 31, 0}, {95, 47, 0},
    {127, 63, 0}, {159, 79, 0}, {191, 95, 0}, {223, 111, 0},
    // 136 to 143: red and orange turning pale
    {255, 255, 17}, {255, 15, 49}, {255, 31, 81}, {255, 47, 113},
    {255, 63, 145}, {255, 79, 177}, {255, 95, 209}, {255, 111, 241},
    // 144 to 159: red to yellow
    {255, 255, 0}, {255, 15, 0}, {255, 31, 0}, {255, 47, 0},
    {255, 63, 0}, {255, 79, 0}, {255, 95, 0}, {255, 111, 0},
    {255, 127, 0}, {255, 143, 0}, {255, 159, 0}, {255, 175, 0},
    {255, 191, 0}, {255, 207, 0}, {255, 223, 0}, {255, 239, 0},
};
// clang-format on

Colour colourOf(const SDL_Color& record) {
    return {record.r, record.g, record.b};
}

TEST(QELGraphic, MakesAPaletteOfGreysRampsAndOranges) {
    const SDL_Color* palette = QELGraphic::getPalette();
    for (int i = 0; i < FILLED_RECORDS; ++i) {
        EXPECT_EQ(colourOf(palette[i]), PALETTE[i]) << "record " << i;
    }
    delete[] palette;
}

TEST(QELGraphic, LeavesTheRestOfThePaletteAndEveryFourthByteZero) {
    const SDL_Color* palette = QELGraphic::getPalette();
    for (int i = 0; i < QELGraphic::PALETTE_SIZE; ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(palette[i].unused, 0);
        if (i >= FILLED_RECORDS) {
            EXPECT_EQ(colourOf(palette[i]), BLACK);
        }
    }
    delete[] palette;
}

TEST(QELGraphic, StartsEveryDarkRampOfThePaletteWithItsFullColour) {
    struct RampStart {
        const char* rule;
        int record;
        Colour colour;
    };
    const RampStart starts[] = {
        {"the grey ramp starts white", 0, {255, 255, 255}},
        {"the dark greys follow", 1, {7, 7, 7}},
        {"the grey ramp ends below white", 31, {247, 247, 247}},
        {"the dark red ramp starts pure red", 32, {255, 0, 0}},
        {"the dark reds follow", 33, {31, 0, 0}},
        {"the pale red ramp starts full", 40, {255, 17, 17}},
        {"the last ramp starts yellow", 144, {255, 255, 0}},
        {"the last ramp ends below yellow", 159, {255, 239, 0}},
    };
    const SDL_Color* palette = QELGraphic::getPalette();
    for (const RampStart& start : starts) {
        SCOPED_TRACE(start.rule);
        EXPECT_EQ(colourOf(palette[start.record]), start.colour);
    }
    delete[] palette;
}

TEST(QELGraphic, HoldsAPaletteOfItsOwnFromTheStart) {
    ASSERT_NE(QELGraphic::colors, nullptr);
    const SDL_Color* other = QELGraphic::getPalette();
    EXPECT_NE(other, QELGraphic::colors);
    for (int i = 0; i < FILLED_RECORDS; ++i) {
        EXPECT_EQ(colourOf(QELGraphic::colors[i]), PALETTE[i]) << "record " << i;
    }
    delete[] other;
}

TEST(QELGraphic, HandsOutAPaletteOfTwoHundredAndFiftyFiveRecords) {
    EXPECT_EQ(QELGraphic::PALETTE_SIZE, 255);
}

constexpr Uint8 UNTOUCHED = 0xee;
constexpr int ROWS = 3;
constexpr int COLUMNS = 6;

// A surface of 6 by 3 pixels over memory of the test, every byte untouched; rows may be longer than
// their pixels, and there is room before and behind.
struct Canvas {
    static constexpr int ROOM_BYTES = 64;

    Canvas(int bits, int pitch, Uint32 r, Uint32 g, Uint32 b) {
        memory.fill(UNTOUCHED);
        surface =
            SDL_CreateRGBSurfaceFrom(&memory[ROOM_BYTES], COLUMNS, ROWS, bits, pitch, r, g, b, 0);
    }
    ~Canvas() { SDL_FreeSurface(surface); }
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;

    // Only these bytes, counted from the surface's first one, have been written.
    void expectWritten(int at, const std::vector<Uint8>& bytes) const {
        const int first = ROOM_BYTES + at;
        const int end = first + static_cast<int>(bytes.size());
        for (int i = 0; i < static_cast<int>(memory.size()); ++i) {
            const bool written = i >= first && i < end;
            const size_t index = static_cast<size_t>(i);
            const int expected =
                written ? bytes[index - static_cast<size_t>(first)] : int{UNTOUCHED};
            EXPECT_EQ(memory[index], expected) << "byte " << i - ROOM_BYTES;
        }
    }

    alignas(4) std::array<Uint8, 256> memory = {};
    SDL_Surface* surface;
};

std::vector<Uint8> inMemory(Uint32 value, int bytes) {
    const Uint8* start = reinterpret_cast<const Uint8*>(&value);
    return {start, start + bytes};
}

std::vector<Uint8> inMemory(Uint16 value) {
    const Uint8* start = reinterpret_cast<const Uint8*>(&value);
    return {start, start + 2};
}

TEST(QELGraphic, SetsOneByteForAPixelOfEightBits) {
    Canvas canvas(8, 8, 0, 0, 0);
    SDL_Color red = {255, 0, 0, 0};
    SDL_SetColors(canvas.surface, &red, 77, 1);
    QELGraphic::putPixel(canvas.surface, 5, 2, 255, 0, 0);
    canvas.expectWritten(2 * 8 + 5, {77});
}

TEST(QELGraphic, SetsTwoBytesForAPixelOfSixteenBits) {
    // Red 200 is 25 of 31, green 100 is 25 of 63, blue 50 is 6 of 31.
    Canvas canvas(16, 16, 0xf800, 0x07e0, 0x001f);
    QELGraphic::putPixel(canvas.surface, 4, 1, 200, 100, 50);
    canvas.expectWritten(16 + 2 * 4, inMemory(Uint16{25 << 11 | 25 << 5 | 6}));
}

TEST(QELGraphic, SetsTwoBytesForAPixelOfFifteenBits) {
    // Red 200 is 25 of 31, green 100 is 12 of 31, blue 50 is 6 of 31.
    Canvas canvas(15, 12, 0x7c00, 0x03e0, 0x001f);
    QELGraphic::putPixel(canvas.surface, 3, 2, 200, 100, 50);
    canvas.expectWritten(2 * 12 + 2 * 3, inMemory(Uint16{25 << 10 | 12 << 5 | 6}));
}

TEST(QELGraphic, SetsFourBytesForAPixelOfThirtyTwoBits) {
    Canvas canvas(32, 28, 0x00ff0000, 0x0000ff00, 0x000000ff);
    QELGraphic::putPixel(canvas.surface, 3, 2, 200, 100, 50);
    canvas.expectWritten(2 * 28 + 4 * 3, inMemory(Uint32{0x00c86432}, 4));
}

TEST(QELGraphic, SetsAPixelOfTwentyFourBitsAsIfItHadThirtyTwo) {
    Canvas canvas(24, 20, 0x00ff0000, 0x0000ff00, 0x000000ff);
    QELGraphic::putPixel(canvas.surface, 3, 2, 200, 100, 50);
    canvas.expectWritten(4 * (2 * 20 / 4 + 3), inMemory(Uint32{0x00c86432}, 4));
}

TEST(QELGraphic, MapsThePixelThroughTheFormatOfItsSurface) {
    Canvas canvas(32, 24, 0x000000ff, 0x0000ff00, 0x00ff0000);
    QELGraphic::putPixel(canvas.surface, 0, 0, 200, 100, 50);
    canvas.expectWritten(0, inMemory(Uint32{0x003264c8}, 4));
}

TEST(QELGraphic, CountsWholePixelsUpToARowThatStartsWithinOne) {
    struct Row {
        const char* rule;
        int bits;
        int pitch;
        int y;
        int at;  // byte of the pixel with x = 1
        int bytes;
    };
    const Row rows[] = {
        {"7 bytes of 16-bit pixels are 3 pixels", 16, 7, 1, 2 * (3 + 1), 2},
        {"14 bytes of 16-bit pixels are 7 pixels", 16, 7, 2, 2 * (7 + 1), 2},
        {"22 bytes of 24-bit pixels are 5 pixels", 24, 22, 1, 4 * (5 + 1), 4},
        {"27 bytes of 32-bit pixels are 6 pixels", 32, 27, 1, 4 * (6 + 1), 4},
        {"54 bytes of 32-bit pixels are 13 pixels", 32, 27, 2, 4 * (13 + 1), 4},
        {"7 bytes before the first row are 3 pixels before it", 16, 7, -1, 2 * (-3 + 1), 2},
        {"27 bytes before the first row are 6 pixels before it", 32, 27, -1, 4 * (-6 + 1), 4},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.rule);
        Canvas canvas(row.bits, row.pitch, 0x00f800, 0x0007e0, 0x00001f);
        QELGraphic::putPixel(canvas.surface, 1, row.y, 255, 255, 255);
        canvas.expectWritten(row.at, inMemory(Uint32{0xffff}, row.bytes));
    }
}

TEST(QELGraphic, SetsNothingOnASurfaceOfAnotherDepth) {
    const Uint8 depths[] = {0, 5, 8};  // bytes a pixel
    for (const Uint8 bytes : depths) {
        SCOPED_TRACE(int{bytes});
        Canvas canvas(32, 24, 0x00ff0000, 0x0000ff00, 0x000000ff);
        canvas.surface->format->BytesPerPixel = bytes;
        QELGraphic::putPixel(canvas.surface, 1, 1, 255, 255, 255);
        canvas.expectWritten(0, {});
    }
}

TEST(QELGraphic, NeitherLocksNorClipsForAPixel) {
    Canvas canvas(32, 24, 0x00ff0000, 0x0000ff00, 0x000000ff);
    canvas.surface->flags |= SDL_RLEACCEL;
    int locks = 0;
    front::hooks().SDL_LockSurface = [&](SDL_Surface*) { return ++locks; };
    front::hooks().SDL_UnlockSurface = [&](SDL_Surface*) { ++locks; };
    // The column behind the last one is the first of the next row.
    QELGraphic::putPixel(canvas.surface, COLUMNS, 0, 200, 100, 50);
    front::hooks() = {};
    EXPECT_EQ(locks, 0);
    canvas.surface->flags &= ~Uint32{SDL_RLEACCEL};
    canvas.expectWritten(24, inMemory(Uint32{0x00c86432}, 4));
}

constexpr SDL_Color MAGENTA_KEY = {255, 0, 255, 0};

// A folder that lives as long as the test, with one BMP file of one row of 24-bit pixels.
struct BmpFile {
    explicit BmpFile(const std::vector<Colour>& row) {
        char name[] = "/tmp/picture-XXXXXX";
        folder = mkdtemp(name);
        path = folder + "/row.bmp";
        SDL_Surface* picture = SDL_CreateRGBSurface(SDL_SWSURFACE, static_cast<int>(row.size()), 1,
                                                    24, 0x00ff0000, 0x0000ff00, 0x000000ff, 0);
        int x = 0;
        for (const Colour& colour : row) {
            paint(picture, x++, 0, 1, 1, colour);
        }
        SDL_SaveBMP(picture, path.c_str());
        SDL_FreeSurface(picture);
    }
    ~BmpFile() {
        std::remove(path.c_str());
        rmdir(folder.c_str());
    }
    BmpFile(const BmpFile&) = delete;
    BmpFile& operator=(const BmpFile&) = delete;

    std::string folder, path;
};

// A video mode without a display, as long as it lives. The hooks are gone when it goes.
struct Video {
    explicit Video(int bits) {
        SDL_Init(SDL_INIT_VIDEO);
        screen = SDL_SetVideoMode(640, 480, bits, SDL_SWSURFACE);
    }
    ~Video() {
        front::hooks() = {};
        SDL_Quit();
    }
    Video(const Video&) = delete;
    Video& operator=(const Video&) = delete;

    SDL_Surface* screen;
};

// Draws the picture over green: where that stays, the picture is clear.
std::vector<bool> clearPixels(SDL_Surface* screen, SDL_Surface* picture) {
    paint(screen, 0, 0, picture->w, picture->h, GREEN);
    SDL_BlitSurface(picture, nullptr, screen, nullptr);
    std::vector<bool> clear;
    clear.reserve(static_cast<size_t>(picture->w));
    for (int x = 0; x < picture->w; ++x) {
        clear.push_back(pixelAt(screen, x, 0) == GREEN);
    }
    return clear;
}

TEST(QELGraphic, ClearsThePixelsThatLookLikeTheKeyOnAScreenOfSixteenBits) {
    // Five bits of red and blue, six of green: 248 to 255 are one red, 0 to 3 are one green.
    const BmpFile file({{255, 0, 255}, {248, 3, 248}, {247, 0, 255}, {255, 4, 255}, {255, 0, 247}});
    const Video video(16);
    SDL_Surface* picture = QELGraphic::getBMP(video.screen, file.path.c_str(), MAGENTA_KEY);
    EXPECT_EQ(picture->format->BitsPerPixel, 16);
    EXPECT_EQ(picture->format->colorkey, 0xf81fU);
    EXPECT_EQ(clearPixels(video.screen, picture),
              std::vector<bool>({true, true, false, false, false}));
    SDL_FreeSurface(picture);
}

TEST(QELGraphic, ClearsThePixelsOfTheVeryKeyOnAScreenOfThirtyTwoBits) {
    const BmpFile file({{255, 0, 255}, {248, 3, 248}, {254, 0, 255}, {255, 1, 255}, {255, 0, 254}});
    const Video video(32);
    SDL_Surface* picture = QELGraphic::getBMP(video.screen, file.path.c_str(), MAGENTA_KEY);
    EXPECT_EQ(picture->format->BitsPerPixel, 32);
    EXPECT_EQ(picture->format->colorkey, 0xff00ffU);
    EXPECT_EQ(clearPixels(video.screen, picture),
              std::vector<bool>({true, false, false, false, false}));
    EXPECT_EQ(pixelAt(video.screen, 1, 0), (Colour{248, 3, 248}));
    SDL_FreeSurface(picture);
}

TEST(QELGraphic, TakesTheKeyThroughTheFormatOfTheScreenThatItIsGiven) {
    const BmpFile file({RED, BLUE});
    const Video video(32);
    SDL_Surface* swapped =
        SDL_CreateRGBSurface(SDL_SWSURFACE, 1, 1, 32, 0x000000ff, 0x0000ff00, 0x00ff0000, 0);
    SDL_Surface* picture = QELGraphic::getBMP(swapped, file.path.c_str(), {255, 0, 0, 0});
    EXPECT_EQ(clearPixels(video.screen, picture), std::vector<bool>({false, true}));
    SDL_FreeSurface(picture);
    SDL_FreeSurface(swapped);
}

// The road of a BMP file through the library.
struct BmpLog {
    BmpLog() {
        front::hooks().SDL_RWFromFile = [this](const char* file, const char* mode) {
            calls.push_back(std::string("open ") + file + ' ' + mode);
            return stream = front::real::SDL_RWFromFile(file, mode);
        };
        front::hooks().SDL_LoadBMP_RW = [this](SDL_RWops* source, int freeSource) {
            calls.push_back(source == stream && freeSource == 1 ? "read and close" : "read");
            return loaded = front::real::SDL_LoadBMP_RW(source, freeSource);
        };
        front::hooks().SDL_DisplayFormat = [this](SDL_Surface* surface) {
            calls.push_back(surface == loaded ? "convert" : "convert another");
            return converted = conversionFails ? nullptr : front::real::SDL_DisplayFormat(surface);
        };
        front::hooks().SDL_FreeSurface = [this](SDL_Surface* surface) {
            calls.push_back(surface == loaded ? "free what was loaded" : "free another");
            front::real::SDL_FreeSurface(surface);
        };
        front::hooks().SDL_SetColorKey = [this](SDL_Surface* surface, Uint32 flag, Uint32 key) {
            char text[64];
            std::snprintf(text, sizeof text, "key %x %x", flag, key);
            calls.push_back(surface == converted ? text : "key of another");
            return conversionFails ? -1 : front::real::SDL_SetColorKey(surface, flag, key);
        };
    }

    bool conversionFails = false;
    std::vector<std::string> calls;
    SDL_RWops* stream = nullptr;
    SDL_Surface* loaded = nullptr;
    SDL_Surface* converted = nullptr;
};

TEST(QELGraphic, ReadsConvertsFreesAndKeysABmpFileInThisOrder) {
    const BmpFile file({RED});
    const Video video(32);
    BmpLog log;
    SDL_Surface* picture = QELGraphic::getBMP(video.screen, file.path.c_str(), {1, 2, 3, 4});
    EXPECT_EQ(log.calls,
              std::vector<std::string>({"open " + file.path + " rb", "read and close", "convert",
                                        "free what was loaded", "key 5000 10203"}));
    EXPECT_EQ(picture, log.converted);
    EXPECT_EQ(pixelAt(picture, 0, 0), RED);
}

TEST(QELGraphic, HandsOnAConversionThatFailed) {
    const BmpFile file({RED});
    const Video video(32);
    BmpLog log;
    log.conversionFails = true;
    EXPECT_EQ(QELGraphic::getBMP(video.screen, file.path.c_str(), MAGENTA_KEY), nullptr);
    EXPECT_EQ(log.calls.back(), "key 5000 ff00ff");
}

// Runs in the process that ends.
void getBmpAndSayItOnStandardError(SDL_Surface* screen, const std::string& file) {
    dup2(STDERR_FILENO, STDOUT_FILENO);
    QELGraphic::getBMP(screen, file.c_str(), MAGENTA_KEY);
}

// What must be said of a file that cannot be read, with the library's own reason.
std::string complaintAbout(const std::string& file) {
    EXPECT_EQ(SDL_LoadBMP_RW(SDL_RWFromFile(file.c_str(), "rb"), 1), nullptr);
    return "Can't load image \"" + file + "\": " + SDL_GetError() + "\n";
}

TEST(QELGraphic, EndsTheProcessForABmpFileThatIsMissing) {
    SDL_Surface* screen = makeScreen();
    EXPECT_EXIT(getBmpAndSayItOnStandardError(screen, "missing.bmp"), testing::ExitedWithCode(1),
                testing::Eq(complaintAbout("missing.bmp")));
}

TEST(QELGraphic, EndsTheProcessForAFileThatIsNoBmpPicture) {
    const BmpFile file({RED});
    std::FILE* stream = std::fopen(file.path.c_str(), "wb");
    ASSERT_NE(stream, nullptr);
    std::fputs("This is a letter and no picture, long enough for a header of a picture.", stream);
    std::fclose(stream);
    SDL_Surface* screen = makeScreen();
    EXPECT_EXIT(getBmpAndSayItOnStandardError(screen, file.path), testing::ExitedWithCode(1),
                testing::Eq(complaintAbout(file.path)));
}

TEST(QELGraphic, LeavesStandardErrorAloneWhenABmpFileIsMissing) {
    SDL_Surface* screen = makeScreen();
    EXPECT_EXIT(QELGraphic::getBMP(screen, "missing.bmp", MAGENTA_KEY), testing::ExitedWithCode(1),
                testing::Eq(""));
}

}  // namespace
