// SPDX-License-Identifier: MIT
#include "front/picture.h"
#include "front/recorder.h"
#include "front/recording.h"
#include "replay/game.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace {

using front::Recorder;
using front::Recording;

constexpr char FORMAT_LINE[] = "kravoltix-replay 1\n";

// A recording with each of its statements, of three frames.
constexpr char WHOLE[] = "kravoltix-replay 1\n"
                         "library SDL 1.2.15\n"
                         "option \"-ns\"\n"
                         "option \"a \\\"b\\\"\"\n"
                         "start 300\n"
                         "fail Mix_OpenAudio 1 No such device\n"
                         "file \"ships/ship01.png\" 0123456789abcdef\n"
                         "text 0 \"Hello\\n\"\n"
                         "call 0 300 Mix_CloseAudio()\n"
                         "frame 1 down return\n"
                         "text 1 \"\\x01\\\\\"\n"
                         "hud 2 65 50 3\n"
                         "pixels 2 ff00aa 1 2 30 40 7\n"
                         "frame 2 up return\n"
                         "frame 3 quit\n"
                         "call 3 350 Mix_FadeOutMusic(1000)\n"
                         "times 1 16*2 18\n"
                         "pictures 1 32 00000001fffffffe12345678\n"
                         "digest 3 fedcba9876543210\n"
                         "end 3 1350 7\n";

struct Read {
    Recording recording;
    std::string error;
    bool good = false;
};

Read readBytes(const std::string& bytes) {
    Read read;
    read.good = front::readRecording(bytes, "game", read.recording, read.error);
    return read;
}

Read readPath(const std::string& path) {
    Read read;
    read.good = front::readRecording(path, read.recording, read.error);
    return read;
}

void writeBytes(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

std::string bytesOf(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

// A game of so many frames, each with a picture of its own.
void recordFrames(Recorder& recorder, Uint32 frames, Uint32 ms) {
    for (Uint32 i = 1; i <= frames; ++i) {
        recorder.frame(Uint64{0x0123456700000000} + i, ms);
    }
}

std::string withLine(const std::string& line) {
    return FORMAT_LINE + line + '\n';
}

void expectWhole(const Read& read) {
    ASSERT_TRUE(read.good) << read.error;
    const front::Scenario& given = read.recording.given;
    const front::Seen& seen = read.recording.seen;
    EXPECT_TRUE(read.recording.isRecording);
    EXPECT_EQ(read.recording.cutOff, "");
    EXPECT_EQ(given.arguments, (std::vector<std::string>{"-ns", "a \"b\""}));
    EXPECT_EQ(given.startMs, 300U);
    ASSERT_EQ(given.failures.size(), 1U);
    EXPECT_EQ(given.failures[0].function, "Mix_OpenAudio");
    EXPECT_EQ(given.failures[0].call, 1U);
    EXPECT_EQ(given.failures[0].text, "No such device");
    ASSERT_EQ(given.events.size(), 3U);
    EXPECT_EQ(given.events[0].type, SDL_KEYDOWN);
    EXPECT_EQ(given.events[0].key, SDLK_RETURN);
    EXPECT_EQ(given.events[0].when.value, 1U);
    EXPECT_EQ(given.events[1].type, SDL_KEYUP);
    EXPECT_EQ(given.events[2].type, SDL_QUIT);
    EXPECT_EQ(front::runWords(given.frameRuns), "16*2 18");
    EXPECT_EQ(seen.libraries, "SDL 1.2.15");
    ASSERT_EQ(seen.files.size(), 1U);
    EXPECT_EQ(seen.files[0].file, "ships/ship01.png");
    EXPECT_EQ(seen.files[0].hash, 0x0123456789abcdefU);
    ASSERT_EQ(seen.texts.size(), 2U);
    EXPECT_EQ(seen.texts[1].frame, 1U);
    EXPECT_EQ(seen.text(), "Hello\n\x01\\");
    ASSERT_EQ(seen.calls.size(), 2U);
    EXPECT_EQ(seen.calls[1].frame, 3U);
    EXPECT_EQ(seen.calls[1].clockMs, 350U);
    EXPECT_EQ(seen.calls[1].call, "Mix_FadeOutMusic(1000)");
    ASSERT_EQ(seen.hud.size(), 1U);
    EXPECT_EQ(seen.hud[0].frame, 2U);
    EXPECT_EQ(seen.hud[0].energy, 65U);
    EXPECT_EQ(seen.hud[0].lasers, 50U);
    EXPECT_EQ(seen.hud[0].rockets, 3U);
    ASSERT_EQ(seen.pixels.size(), 1U);
    EXPECT_EQ(seen.pixels[0].frame, 2U);
    EXPECT_EQ(seen.pixels[0].colour, 0xff00aaU);
    EXPECT_EQ(seen.pixels[0].box.x, 1);
    EXPECT_EQ(seen.pixels[0].box.y, 2);
    EXPECT_EQ(seen.pixels[0].box.w, 30);
    EXPECT_EQ(seen.pixels[0].box.h, 40);
    EXPECT_EQ(seen.pixels[0].count, 7U);
    ASSERT_EQ(seen.checks.size(), 3U);
    EXPECT_EQ(seen.checks[0].value, 1U);
    EXPECT_EQ(seen.checks[1].value, 0xfffffffeU);
    EXPECT_EQ(seen.checks[2].value, 0x12345678U);
    EXPECT_EQ(seen.checks[2].bits, 32U);
    ASSERT_EQ(seen.digests.size(), 1U);
    EXPECT_EQ(seen.digests[0].frame, 3U);
    EXPECT_EQ(seen.digests[0].digest, 0xfedcba9876543210U);
    EXPECT_TRUE(seen.ended);
    EXPECT_EQ(seen.frames, 3U);
    EXPECT_EQ(seen.clockMs, 1350U);
    EXPECT_EQ(seen.status, 7U);
}

TEST(Recording, EveryStatementIsRead) {
    expectWhole(readBytes(WHOLE));
}

TEST(Recording, APackedOneIsTheSame) {
    expectWhole(readBytes(front::packed(WHOLE)));
}

TEST(Recording, ARowOfPackedBlocksIsOneText) {
    const std::string text = WHOLE;
    const size_t half = text.find("hud");
    expectWhole(readBytes(front::packed(text.substr(0, half)) + front::packed(text.substr(half))));
}

TEST(Recording, LinesEndInAnyWayAndCommentsAreSkipped) {
    const Read read = readBytes("kravoltix-replay 1 # the format\r\n\n# nothing\nend 0 300 0");
    ASSERT_TRUE(read.good) << read.error;
    EXPECT_TRUE(read.recording.seen.ended);
}

// What is wrong, at the line where it stands.
TEST(Recording, EveryWrongLineIsToldWithItsPlace) {
    const struct {
        const char* line;
        const char* message;
    } cases[] = {
        {"kravoltix-replay 1", "kravoltix-replay and its format stand on the first line only"},
        {"file ships 0123456789abcdef", "a file is told by its name in quotes and its hash"},
        {"file \"a\" 0123456789abcde", "a file is told by its name in quotes and its hash"},
        {"file \"a\" 0123456789ABCDEF", "a file is told by its name in quotes and its hash"},
        {"text 1", "a text is told by its frame and the text in quotes"},
        {"text \"a\"", "a text is told by its frame and the text in quotes"},
        {"text 1 \"a", "a text is told by its frame and the text in quotes"},
        {"text 1 \"\\q\"", "a text is told by its frame and the text in quotes"},
        {"call 1 2", "a call is told by its frame, the clock and the call"},
        {"call x 2 Mix", "a call is told by its frame, the clock and the call"},
        {"hud 1 2 3", "the display is told by its frame, energy, lasers and rockets"},
        {"hud 1 2 3 4 5", "\"5\" is one word too many"},
        {"pictures 1 7 00", "pictures are told by their first frame, 8, 16 or 32 bits, and their "
                            "checks"},
        {"pictures 2 8 00", "pictures go on with frame 1, not 2"},
        {"pictures 1 16 0", "the checks of the pictures are not whole"},
        {"pictures 1 8", "the checks of the pictures are not whole"},
        {"pictures 1 8 0g", "\"0g\" is no check of a picture"},
        {"digest 0 123", "a digest is told by its frame and 16 hexadecimal digits"},
        {"digest 1 0123456789abcdef", "the digest is of frame 1, but 0 pictures were told"},
        {"pixels 1 ff00a 0 0 1 1 1", "pixels are told by their frame, colour, box and count"},
        {"pixels 1 ff00aa 0 0 32768 1 1", "pixels are told by their frame, colour, box and count"},
        {"pixels 1 ff00aa 0 0 1 1", "pixels are told by their frame, colour, box and count"},
        {"end 0 1", "the end is told by the frames, the clock and the status"},
        {"end 1 1 0", "the game has 1 frames, but 0 pictures were told"},
        {"end 0 4294967296 0", "the end is told by the frames, the clock and the status"},
        {"end 0 1 0\nlibrary SDL", "the game has ended on the line before"},
        {"times 2 16", "frame times go on with frame 1, not 2"},
        {"nonsense", "\"nonsense\" is no statement of a recording"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.line);
        const Read read = readBytes(withLine(c.line));
        EXPECT_FALSE(read.good);
        const bool isThird = std::string(c.line).find('\n') != std::string::npos;
        EXPECT_EQ(read.error, std::string("game:") + (isThird ? "3: " : "2: ") + c.message);
    }
}

TEST(Recording, ARecordingOfANewerFormatIsRefused) {
    const Read read = readBytes("kravoltix-replay 2\n");
    EXPECT_FALSE(read.good);
    EXPECT_EQ(read.error, "game:1: made by a newer version: this is format 2, and this program "
                          "reads format 1");
}

// Whoever plays on a full disk is told once and plays on.
TEST(Recording, AFullDiskIsToldOnce) {
    Recorder recorder;
    ASSERT_TRUE(recorder.open("/dev/full"));
    testing::internal::CaptureStderr();
    for (Uint32 frame = 0; frame < 3; ++frame) {
        recorder.frame(1, 1000);
    }
    recorder.end(3000, 0);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "front: the recording ends here, the game goes on: No space left on device\n");
}

TEST(Recording, AFormatOfZeroIsNoNewerOne) {
    EXPECT_EQ(readBytes("kravoltix-replay 0\n").error,
              "game:1: there is no format 0: the file is damaged");
}

TEST(Recording, AFormatWithoutANumberIsRefused) {
    EXPECT_EQ(readBytes("kravoltix-replay\n").error,
              "game:1: kravoltix-replay and its format stand on the first line only");
}

// A scenario tells nothing of what was seen, so a word of a recording in it is a mistake.
TEST(Recording, AScenarioKnowsNoStatementOfARecording) {
    const Read read = readBytes("start 300\nhud 1 2 3 4\n");
    EXPECT_FALSE(read.good);
    EXPECT_EQ(read.error.substr(0, 7), "game:2:");
    EXPECT_NE(read.error.find("\"hud\""), std::string::npos) << read.error;
}

TEST(Recording, AScenarioIsNoRecordingAndNotCutOff) {
    const Read read = readBytes("start 300\nframe 1 quit\n");
    ASSERT_TRUE(read.good) << read.error;
    EXPECT_FALSE(read.recording.isRecording);
    EXPECT_EQ(read.recording.cutOff, "");
    EXPECT_EQ(read.recording.given.startMs, 300U);
}

TEST(Recording, OneWithoutItsEndIsReadAndSaysWhereItStops) {
    const Read read = readBytes("kravoltix-replay 1\npictures 1 8 0102\n");
    ASSERT_TRUE(read.good) << read.error;
    EXPECT_EQ(read.recording.seen.checks.size(), 2U);
    EXPECT_FALSE(read.recording.seen.ended);
    EXPECT_EQ(read.recording.cutOff,
              "game: the game's end is missing; 2 frames of the game are whole");
}

TEST(Recording, ABlockThatIsCutOffIsLeftOut) {
    const std::string first = front::packed("kravoltix-replay 1\npictures 1 8 01\n");
    const std::string second = front::packed("pictures 2 8 02\nend 2 300 0\n");
    for (size_t length = first.size() + 1; length < first.size() + second.size(); ++length) {
        SCOPED_TRACE(length);
        const Read read = readBytes((first + second).substr(0, length));
        ASSERT_TRUE(read.good) << read.error;
        EXPECT_EQ(read.recording.seen.checks.size(), 1U);
        EXPECT_EQ(read.recording.cutOff,
                  "game: cut off behind byte " + std::to_string(first.size()) + " of " +
                      std::to_string(length) + "; 1 frames of the game are whole");
    }
}

TEST(Recording, NothingCanBeReadOfOneWhoseFirstBlockIsCutOff) {
    const std::string bytes = front::packed(WHOLE);
    const Read read = readBytes(bytes.substr(0, bytes.size() / 2));
    EXPECT_FALSE(read.good);
    EXPECT_EQ(read.error, "game: cut off behind byte 0 of " + std::to_string(bytes.size() / 2) +
                              ": nothing of it is whole");
}

// gzip's checksum finds what the text alone would not show.
TEST(Recording, EveryChangedByteOfAPackedOneIsDamage) {
    const std::string bytes = front::packed(WHOLE);
    constexpr size_t HEADER_BYTES = 10;  // its time and system mean nothing
    for (size_t at = HEADER_BYTES; at < bytes.size(); ++at) {
        SCOPED_TRACE(at);
        std::string damaged = bytes;
        damaged[at] = static_cast<char>(damaged[at] ^ 0x10);
        EXPECT_FALSE(readBytes(damaged).good);
    }
}

TEST(Recording, BytesBehindTheEndAreDamage) {
    const std::string bytes = front::packed(WHOLE);
    const std::string place = std::to_string(bytes.size());
    EXPECT_EQ(readBytes(bytes + "more").error,
              "game: damaged behind byte " + place + " of " + std::to_string(bytes.size() + 4));
    EXPECT_EQ(readBytes(bytes + bytes.substr(0, 12)).error,
              "game: cut off behind byte " + place + " of " + std::to_string(bytes.size() + 12) +
                  ", and yet the game has ended before");
}

TEST(Recording, WhatIsNoTextIsRefused) {
    EXPECT_EQ(readBytes(std::string("start\0 300", 10)).error, "game: no text and no recording");
    EXPECT_EQ(readBytes(front::packed(std::string("a\0b", 3))).error,
              "game: no recording is packed in it");
}

TEST(Recording, OneThatUnpacksToMoreThanAnyGameIsRefused) {
    const std::string block = front::packed(std::string(size_t{64} << 20, '\n'));
    std::string bytes = front::packed(FORMAT_LINE);
    for (int i = 0; i < 5; ++i) {
        bytes += block;
    }
    const Read read = readBytes(bytes);
    EXPECT_FALSE(read.good);
    EXPECT_NE(read.error.find("game: too large behind byte "), std::string::npos) << read.error;
}

TEST(Recording, FilesThatCannotBeReadAreTold) {
    const replay::TemporaryFolder folder;
    const std::string path = folder.path + "/game.kvx";
    EXPECT_EQ(readPath(path).error, path + ": cannot be read: No such file or directory");
    EXPECT_EQ(readPath(folder.path).error, folder.path + ": is no file");
    writeBytes(path, "");
    EXPECT_EQ(readPath(path).error, path + ": the file is empty");
    std::filesystem::resize_file(path, (size_t{256} << 20) + 1);
    EXPECT_EQ(readPath(path).error, path + ": too large for a recording");
    writeBytes(path, "nonsense\n");
    EXPECT_EQ(readPath(path).error.find(path + ":1: "), 0U) << readPath(path).error;
    writeBytes(path, WHOLE);
    expectWhole(readPath(path));
}

TEST(Recorder, WhatIsWrittenIsRead) {
    const replay::TemporaryFolder folder;
    const std::string path = folder.path + "/game.kvx";
    Recorder recorder;
    EXPECT_FALSE(recorder.isOpen());
    ASSERT_TRUE(recorder.open(path));
    EXPECT_TRUE(recorder.isOpen());
    recorder.head.arguments = {"-fs", "a \"b\" # c"};
    recorder.head.startMs = 400;
    recorder.head.libraries = "SDL 1.2.99";
    recorder.head.failures = {{"SDL_Init", 2, "some text"}};
    recorder.head.files = {{"sounds/intro.wav", 0xabcdef}};
    recorder.text("be\"fore\n");
    recorder.frame(0x1111111122222222, 16);
    recorder.event(SDL_KEYDOWN, SDLK_a);
    recorder.event(SDL_KEYUP, SDLK_F1);
    recorder.text("");
    recorder.text("\x01#\\");
    recorder.hud(65, 50, 3);
    recorder.pixels({1, 2, 3, 4}, 0xff, 12);
    recorder.frame(0x3333333344444444, 16);
    recorder.call(432, "Mix_CloseAudio()");
    recorder.frame(0x5555555566666666, 17);
    recorder.event(SDL_QUIT, SDLK_UNKNOWN);
    recorder.end(449, 3);
    EXPECT_FALSE(recorder.isOpen());

    const Read read = readPath(path);
    ASSERT_TRUE(read.good) << read.error;
    const front::Scenario& given = read.recording.given;
    const front::Seen& seen = read.recording.seen;
    EXPECT_EQ(read.recording.cutOff, "");
    EXPECT_EQ(given.arguments, recorder.head.arguments);
    EXPECT_EQ(given.startMs, 400U);
    ASSERT_EQ(given.failures.size(), 1U);
    EXPECT_EQ(given.failures[0].call, 2U);
    EXPECT_EQ(given.failures[0].text, "some text");
    EXPECT_EQ(front::runWords(given.frameRuns), "16*2 17");
    ASSERT_EQ(given.events.size(), 3U);
    EXPECT_EQ(given.events[0].when.value, 1U);
    EXPECT_EQ(given.events[0].type, SDL_KEYDOWN);
    EXPECT_EQ(given.events[0].key, SDLK_a);
    EXPECT_EQ(given.events[1].type, SDL_KEYUP);
    EXPECT_EQ(given.events[1].key, SDLK_F1);
    EXPECT_EQ(given.events[2].when.value, 3U);
    EXPECT_EQ(given.events[2].type, SDL_QUIT);
    EXPECT_EQ(seen.libraries, "SDL 1.2.99");
    ASSERT_EQ(seen.files.size(), 1U);
    EXPECT_EQ(seen.files[0].hash, 0xabcdefU);
    ASSERT_EQ(seen.texts.size(), 2U);
    EXPECT_EQ(seen.texts[0].frame, 0U);
    EXPECT_EQ(seen.texts[0].bytes, "be\"fore\n");
    EXPECT_EQ(seen.texts[1].frame, 1U);
    EXPECT_EQ(seen.texts[1].bytes, "\x01#\\");
    ASSERT_EQ(seen.hud.size(), 1U);
    EXPECT_EQ(seen.hud[0].lasers, 50U);
    ASSERT_EQ(seen.pixels.size(), 1U);
    EXPECT_EQ(seen.pixels[0].frame, 2U);  // of the picture that is about to be shown
    EXPECT_EQ(seen.pixels[0].colour, 0xffU);
    EXPECT_EQ(seen.pixels[0].count, 12U);
    ASSERT_EQ(seen.calls.size(), 1U);
    EXPECT_EQ(seen.calls[0].frame, 2U);
    EXPECT_EQ(seen.calls[0].clockMs, 432U);
    EXPECT_EQ(seen.calls[0].call, "Mix_CloseAudio()");
    ASSERT_EQ(seen.checks.size(), 3U);
    EXPECT_EQ(seen.checks[0].value, 0x22222222U);
    EXPECT_EQ(seen.checks[2].value, 0x66666666U);
    ASSERT_EQ(seen.digests.size(), 1U);
    EXPECT_EQ(seen.digests[0].frame, 3U);
    EXPECT_EQ(seen.digests[0].digest, recorder.digest());
    EXPECT_TRUE(seen.ended);
    EXPECT_EQ(seen.frames, 3U);
    EXPECT_EQ(seen.clockMs, 449U);
    EXPECT_EQ(seen.status, 3U);
}

TEST(Recorder, AGameWithoutAFrameHasAHeadAndAnEnd) {
    const replay::TemporaryFolder folder;
    const std::string path = folder.path + "/game.kvx";
    Recorder recorder;
    ASSERT_TRUE(recorder.open(path));
    recorder.head.libraries = "SDL 1.2.15";
    recorder.text("usage");
    recorder.end(266, 0);
    const Read read = readPath(path);
    ASSERT_TRUE(read.good) << read.error;
    EXPECT_TRUE(read.recording.seen.ended);
    EXPECT_EQ(read.recording.seen.text(), "usage");
    EXPECT_EQ(read.recording.seen.frames, 0U);
}

TEST(Recorder, AFileThatCannotBeMadeIsTold) {
    Recorder recorder;
    EXPECT_FALSE(recorder.open("/nowhere/game.kvx"));
    EXPECT_FALSE(recorder.isOpen());
}

// A game that is killed leaves all but its last second.
TEST(Recorder, EachSecondIsWrittenWhenItIsOver) {
    const replay::TemporaryFolder folder;
    const std::string path = folder.path + "/game.kvx";
    Recorder recorder;
    ASSERT_TRUE(recorder.open(path));
    recordFrames(recorder, 9, 100);
    EXPECT_EQ(std::filesystem::file_size(path), 0U);
    recordFrames(recorder, 1, 100);
    EXPECT_EQ(readPath(path).recording.seen.checks.size(), 10U);
    recordFrames(recorder, 15, 100);
    const Read read = readPath(path);
    ASSERT_TRUE(read.good) << read.error;
    EXPECT_EQ(read.recording.seen.checks.size(), 20U);
    EXPECT_EQ(read.recording.cutOff,
              path + ": the game's end is missing; 20 frames of the game are whole");
}

TEST(Recorder, AThousandFramesAreABlockHoweverShort) {
    const replay::TemporaryFolder folder;
    const std::string path = folder.path + "/game.kvx";
    Recorder recorder;
    ASSERT_TRUE(recorder.open(path));
    recordFrames(recorder, 999, 0);
    EXPECT_EQ(std::filesystem::file_size(path), 0U);
    recordFrames(recorder, 1, 0);
    EXPECT_EQ(readPath(path).recording.seen.checks.size(), 1000U);
}

// The checks of a second take the same room at each frame rate; the digest is whole always.
TEST(Recorder, ChecksGetShorterWithMoreFramesInASecond) {
    const struct {
        const char* rule;
        Uint32 frames;
        Uint32 ms;
        Uint32 bits;
        Uint32 firstCheck;
    } cases[] = {
        {"250 frames have 32 bits", 250, 4, 32, 1},
        {"500 frames have 16 bits", 500, 2, 16, 1},
        {"1000 frames have 8 bits", 1000, 1, 8, 1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.rule);
        const replay::TemporaryFolder folder;
        const std::string path = folder.path + "/game.kvx";
        Recorder recorder;
        ASSERT_TRUE(recorder.open(path));
        recordFrames(recorder, c.frames, c.ms);
        const Read read = readPath(path);
        ASSERT_EQ(read.recording.seen.checks.size(), c.frames);
        EXPECT_EQ(read.recording.seen.checks[0].bits, c.bits);
        EXPECT_EQ(read.recording.seen.checks[0].value, c.firstCheck);
        EXPECT_EQ(read.recording.seen.checks.back().value, c.frames & (~0U >> (32 - c.bits)));
        ASSERT_EQ(read.recording.seen.digests.size(), 1U);
        EXPECT_EQ(read.recording.seen.digests[0].digest, recorder.digest());
    }
}

TEST(Recorder, TheDigestIsOfEveryPictureAndTheirOrder) {
    const auto digestOf = [](const std::vector<Uint64>& hashes) {
        const replay::TemporaryFolder folder;
        Recorder recorder;
        recorder.open(folder.path + "/game.kvx");
        for (const Uint64 hash : hashes) {
            recorder.frame(hash, 16);
        }
        return recorder.digest();
    };
    EXPECT_EQ(digestOf({1, 2, 3}), digestOf({1, 2, 3}));
    EXPECT_NE(digestOf({1, 2, 3}), digestOf({1, 2, 4}));
    EXPECT_NE(digestOf({1, 2, 3}), digestOf({4, 2, 3}));
    EXPECT_NE(digestOf({1, 2, 3}), digestOf({2, 1, 3}));
    EXPECT_NE(digestOf({1, 2, 3}), digestOf({1, 2}));
    EXPECT_NE(digestOf({1, 2, 3}), digestOf({1, 2, Uint64{3} << 32}));
}

// Pictures

class PictureTest : public testing::Test {
protected:
    SDL_Surface* made(Uint32 red = 0xff0000, Uint32 blue = 0xff) {
        return SDL_CreateRGBSurface(SDL_SWSURFACE, WIDTH, HEIGHT, 32, red, 0xff00, blue, 0);
    }

    static void set(SDL_Surface* picture, int x, int y, Uint32 value) {
        Uint8* row = static_cast<Uint8*>(picture->pixels) + ptrdiff_t{y} * picture->pitch;
        reinterpret_cast<Uint32*>(row)[x] = value;
    }

    static constexpr int WIDTH = 13;
    static constexpr int HEIGHT = 11;
};

TEST_F(PictureTest, EveryPixelAndEveryColourCountsInItsHash) {
    SDL_Surface* picture = made();
    const Uint64 black = front::pictureHash(picture);
    for (int y = 0; y < HEIGHT; ++y) {
        for (int x = 0; x < WIDTH; ++x) {
            for (const Uint32 colour : {0x000001U, 0x000100U, 0x010000U, 0x800000U}) {
                set(picture, x, y, colour);
                EXPECT_NE(front::pictureHash(picture), black) << x << ' ' << y << ' ' << colour;
                set(picture, x, y, 0);
            }
        }
    }
    EXPECT_EQ(front::pictureHash(picture), black);
}

TEST_F(PictureTest, BitsThatNobodySeesDoNotCount) {
    SDL_Surface* picture = made();
    const Uint64 black = front::pictureHash(picture);
    set(picture, 3, 4, 0xff000000);
    EXPECT_EQ(front::pictureHash(picture), black);
}

TEST_F(PictureTest, TheOrderOfColoursInMemoryDoesNotCount) {
    SDL_Surface* plain = made();
    SDL_Surface* turned = made(0xff, 0xff0000);
    set(plain, 3, 4, 0x123456);
    set(turned, 3, 4, 0x563412);
    EXPECT_EQ(front::pictureHash(plain), front::pictureHash(turned));
}

TEST_F(PictureTest, APixelElsewhereIsAnotherPicture) {
    SDL_Surface* here = made();
    SDL_Surface* there = made();
    set(here, 0, 4, 0xffffff);
    set(there, 0, 8, 0xffffff);
    EXPECT_NE(front::pictureHash(here), front::pictureHash(there));
}

TEST_F(PictureTest, PixelsOfAColourAreCountedWithinTheBoxAndThePicture) {
    SDL_Surface* picture = made();
    set(picture, 2, 3, 0xff00aa00);
    set(picture, 4, 5, 0x00aa00);
    set(picture, 5, 5, 0x00aa00);
    set(picture, 4, 6, 0x00ab00);
    EXPECT_EQ(front::countPixels(picture, {0, 0, 1000, 1000}, 0xaa00), 3U);
    EXPECT_EQ(front::countPixels(picture, {2, 3, 3, 3}, 0xaa00), 2U);
    EXPECT_EQ(front::countPixels(picture, {2, 3, 2, 3}, 0xaa00), 1U);
    EXPECT_EQ(front::countPixels(picture, {3, 4, 2, 1}, 0xaa00), 0U);
    EXPECT_EQ(front::countPixels(picture, {12, 10, 5, 5}, 0), 1U);
}

TEST_F(PictureTest, AFilesHashIsItsContents) {
    const replay::TemporaryFolder folder;
    const std::string path = folder.path + "/file";
    EXPECT_EQ(front::fileHash(path.c_str()), 0U);
    writeBytes(path, std::string(40000, 'a'));
    const Uint64 hash = front::fileHash(path.c_str());
    EXPECT_NE(hash, 0U);
    writeBytes(path, std::string(39999, 'a') + 'b');
    EXPECT_NE(front::fileHash(path.c_str()), hash);
    EXPECT_EQ(bytesOf(path).size(), 40000U);
}

}  // namespace
