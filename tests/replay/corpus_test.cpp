// SPDX-License-Identifier: MIT
// The corpus: its games, its table, its pictures, and kravoltix-corpus from outside.
#include "corpus/seeded.h"
#include "corpus/table.h"
#include "front/scenario.h"
#include "replay/tool.h"

#include <SDL_image.h>
#include <SDL_mixer.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <map>
#include <set>
#include <sstream>

namespace {

namespace fs = std::filesystem;

using corpus::Row;

constexpr Uint32 SEEDS = 1200;

front::Scenario gameOf(Uint32 seed) {
    std::istringstream in(corpus::scenarioOf(seed));
    front::Scenario scenario;
    std::string error;
    EXPECT_TRUE(front::readScenario(in, "seed " + std::to_string(seed), scenario, error)) << error;
    return scenario;
}

// By the frame times of the scenario.
Uint64 lengthOf(const front::Scenario& game) {
    Uint64 ms = 0;
    for (const front::FrameRun& run : game.frameRuns) {
        ms += Uint64{run.ms} * run.frames;
    }
    return ms;
}

front::Recording played() {
    front::Recording recording;
    front::Seen& seen = recording.seen;
    seen.texts = {{0, "GO!\n"},
                  {2, "\nThank you for testing!\n\nQuestions? ... kravoltix.example\n\n"}};
    seen.calls = {{0, 266, "Mix_OpenAudio()"}, {1, 282, "Mix_CloseAudio()"}};
    seen.checks = {{1, 32}, {2, 32}};
    seen.digests = {{1, 0x1111}, {2, 0x2222}};
    seen.ended = true;
    seen.frames = 2;
    seen.clockMs = 300;
    seen.status = 0;
    return recording;
}

Row row(const front::Recording& recording = played()) {
    return corpus::rowOf(7, "start 300\n", recording);
}

std::string troubleOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const replay::Trouble& trouble) {
        return trouble.what();
    }
    return "";
}

std::string tableOf(const std::vector<Row>& rows) {
    return corpus::tableText(rows);
}

// The games

TEST(Seeded, EachSeedIsAGameOfItsOwnThatTheReaderTakes) {
    std::set<std::string> games;
    for (Uint32 seed = 1; seed <= SEEDS; ++seed) {
        SCOPED_TRACE(seed);
        const front::Scenario game = gameOf(seed);
        EXPECT_GE(game.startMs, 266U);
        ASSERT_FALSE(game.events.empty());
        const front::ScriptedEvent& last = game.events.back();
        EXPECT_TRUE(last.type == SDL_QUIT || last.key == SDLK_ESCAPE);
        std::string text = corpus::scenarioOf(seed);
        EXPECT_EQ(text, corpus::scenarioOf(seed));
        games.insert(text.substr(text.find('\n')));  // behind the line that names the seed
    }
    EXPECT_EQ(games.size(), SEEDS);
}

// The generator is part of the table: games that change unseen would prove nothing.
TEST(Seeded, TheGamesAreThoseOfTheTable) {
    const std::vector<Row> rows = corpus::readTable(bytesOf(CORPUS_TABLE), CORPUS_TABLE);
    ASSERT_EQ(rows.size(), SEEDS);
    for (const Row& expected : rows) {
        EXPECT_EQ(
            corpus::rowOf(expected.seed, corpus::scenarioOf(expected.seed), played()).scenario,
            expected.scenario)
            << expected.seed;
    }
}

TEST(Seeded, AllFrameTimesOptionsAndKeysOccur) {
    std::set<Uint32> frameTimes;
    std::set<std::string> options;
    std::set<SDLKey> keys;
    std::set<bool> quits;
    size_t longGames = 0;
    for (Uint32 seed = 1; seed <= SEEDS; ++seed) {
        const front::Scenario game = gameOf(seed);
        for (const front::FrameRun& run : game.frameRuns) {
            frameTimes.insert(run.ms);
        }
        for (const front::ScriptedEvent& event : game.events) {
            keys.insert(event.key);
        }
        options.insert(game.arguments.begin(), game.arguments.end());
        quits.insert(game.events.back().type == SDL_QUIT);
        longGames += lengthOf(game) >= 180000 ? 1 : 0;
    }
    for (const Uint32 ms : {0U, 1U, 4U, 16U, 17U, 33U, 266U, 999U, 1000U, 1001U}) {
        EXPECT_EQ(frameTimes.count(ms), 1U) << ms;
    }
    for (const char* option : {"-ns", "-fs", "--nosound", "--fullscreen", "--help"}) {
        EXPECT_EQ(options.count(option), 1U) << option;
    }
    for (const SDLKey key : {SDLK_RETURN, SDLK_ESCAPE, SDLK_a, SDLK_s, SDLK_UP, SDLK_DOWN,
                             SDLK_LEFT, SDLK_RIGHT, SDLK_SPACE}) {
        EXPECT_EQ(keys.count(key), 1U) << key;
    }
    EXPECT_EQ(quits.size(), 2U);
    EXPECT_GE(longGames, 100U);
}

// The table

TEST(CorpusTable, WhatIsWrittenIsRead) {
    const std::vector<Row> rows = {{1, 2, 3, 4, 5, 6, 7},
                                   {20, ~Uint64{0}, ~0U, 98, Uint64{1} << 63, 0xabc, 0}};
    const std::vector<Row> read = corpus::readTable(tableOf(rows), "table");
    ASSERT_EQ(read.size(), 2U);
    for (size_t i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(read[i].seed, rows[i].seed);
        EXPECT_EQ(corpus::difference(rows[i], read[i]), "");
    }
}

TEST(CorpusTable, OneThatIsNotWholeIsRefused) {
    const std::string whole = tableOf({{1, 2, 3, 4, 5, 6, 7}, {2, 2, 3, 4, 5, 6, 7}});
    const std::string line = "2 0000000000000002 3 4 0000000000000005 0000000000000006 "
                             "0000000000000007\n";
    const struct {
        const char* rule;
        std::string text;
        const char* message;
    } cases[] = {
        {"nothing", "", "table:0: there is no seed in the table"},
        {"no seed", "seeds 2\n", "table:1: there is no seed in the table"},
        {"no count", line, "table:1: here stands \"seeds\" and how many"},
        {"none are counted", "seeds 0\n", "table:1: here stands \"seeds\" and how many"},
        {"a line is missing", replaced(whole, line, ""), "table:5: the table has 1 seeds, not 2"},
        {"a line too many", whole + "3" + line.substr(1), "table:7: the table has 3 seeds, not 2"},
        {"the last line is cut", whole.substr(0, whole.size() - 5), "table:6: no line of a seed"},
        {"a word too many", replaced(whole, "7\n", "7 8\n"), "table:5: no line of a seed"},
        {"capitals", replaced(whole, "0000000000000006", "000000000000000A"),
         "table:5: no line of a seed"},
        {"the same seed twice", replaced(whole, "\n2 ", "\n1 "), "table:6: the seeds do not rise"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.rule);
        EXPECT_EQ(troubleOf([&] { corpus::readTable(c.text, "table"); }), c.message);
    }
}

TEST(CorpusTable, EachColumnIsComparedAndNamed) {
    const Row expected = row();
    EXPECT_EQ(corpus::difference(expected, expected), "");
    Row got = expected;
    got.scenario ^= 1;
    EXPECT_EQ(corpus::difference(expected, got), "scenario");
    got = expected;
    got.frames = 3;
    EXPECT_EQ(corpus::difference(expected, got), "frames (expected 2, got 3)");
    got = expected;
    got.status = 98;
    EXPECT_EQ(corpus::difference(expected, got), "exit status (expected 0, got 98)");
    got = expected;
    got.pictures ^= Uint64{1} << 63;
    EXPECT_EQ(corpus::difference(expected, got), "pictures");
    got = expected;
    got.calls ^= 1;
    EXPECT_EQ(corpus::difference(expected, got), "mixer calls");
    got = expected;
    got.text ^= 1;
    EXPECT_EQ(corpus::difference(expected, got), "text");
    got.calls ^= 1;
    EXPECT_EQ(corpus::difference(expected, got), "mixer calls, text");
}

TEST(CorpusRow, EachThingThatIsSeenOrHeardCounts) {
    const struct {
        const char* rule;
        std::function<void(front::Seen&)> change;
        const char* difference;
    } cases[] = {
        {"a picture", [](front::Seen& s) { s.digests[1].digest ^= 1; }, "pictures"},
        {"a call", [](front::Seen& s) { s.calls[0].call += 'x'; }, "mixer calls"},
        {"a call's time", [](front::Seen& s) { ++s.calls[1].clockMs; }, "mixer calls"},
        {"a call's frame", [](front::Seen& s) { ++s.calls[1].frame; }, "mixer calls"},
        {"the last call", [](front::Seen& s) { s.calls.pop_back(); }, "mixer calls"},
        {"a letter", [](front::Seen& s) { s.texts[0].bytes = "Go!\n"; }, "text"},
        {"a text's frame", [](front::Seen& s) { s.texts[0].frame = 1; }, "text"},
        {"the last text", [](front::Seen& s) { s.texts.pop_back(); }, "text"},
        {"the end of the last text", [](front::Seen& s) { s.texts[1].bytes += '\n'; }, "text"},
        {"the exit status", [](front::Seen& s) { s.status = 1; },
         "exit status (expected 0, got 1)"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.rule);
        front::Recording other = played();
        c.change(other.seen);
        EXPECT_EQ(corpus::difference(row(), row(other)), c.difference);
    }
    EXPECT_EQ(corpus::difference(row(), corpus::rowOf(7, "start 301\n", played())), "scenario");
}

// Whoever packs the game names another address.
TEST(CorpusRow, TheWebAddressDoesNotCount) {
    front::Recording other = played();
    other.seen.texts[1].bytes =
        replaced(other.seen.texts[1].bytes, "kravoltix.example", "www.example.org");
    EXPECT_EQ(corpus::difference(row(), row(other)), "");
}

TEST(CorpusRow, AGameThatProvesNothingIsTrouble) {
    front::Recording silent = played();
    silent.seen.texts.clear();
    EXPECT_EQ(troubleOf([&] { row(silent); }), "seed 7: the game printed nothing");
    front::Recording blind = played();
    blind.seen.frames = 0;
    EXPECT_EQ(troubleOf([&] { row(blind); }), "seed 7: the game showed no frame");
    front::Recording cut = played();
    cut.seen.digests.pop_back();
    EXPECT_EQ(troubleOf([&] { row(cut); }),
              "seed 7: the pictures were not written down to the last");
    cut.seen.digests.clear();
    EXPECT_NE(troubleOf([&] { row(cut); }), "");
}

// The pictures

std::set<std::string> filesOf(const std::string& folder, const std::string& suffix) {
    std::set<std::string> files;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
        if (entry.path().extension() == suffix) {
            files.insert(entry.path().lexically_relative(folder).string());
        }
    }
    return files;
}

// The indices of its pixels, row by row.
std::string pixelsOf(const SDL_Surface* picture) {
    std::string pixels;
    for (int y = 0; y < picture->h; ++y) {
        pixels.append(static_cast<const char*>(picture->pixels) + ptrdiff_t{y} * picture->pitch,
                      static_cast<size_t>(picture->w));
    }
    return pixels;
}

TEST(CorpusFixtures, EveryFileOfTheGameIsThere) {
    EXPECT_EQ(filesOf(CORPUS_FIXTURES, ".png"), filesOf(GAME_DATA, ".png"));
    EXPECT_EQ(filesOf(CORPUS_FIXTURES, ".wav"), filesOf(GAME_DATA, ".wav"));
    EXPECT_EQ(filesOf(CORPUS_FIXTURES, ".png").size(), 76U);
    EXPECT_EQ(filesOf(CORPUS_FIXTURES, ".wav").size(), 8U);
}

TEST(CorpusFixtures, PicturesHaveTheTrueSizes) {
    for (const std::string& file : filesOf(GAME_DATA, ".png")) {
        SCOPED_TRACE(file);
        const SDL_Surface* real = IMG_Load((GAME_DATA "/" + file).c_str());
        const SDL_Surface* pattern = IMG_Load((CORPUS_FIXTURES "/" + file).c_str());
        ASSERT_NE(real, nullptr);
        ASSERT_NE(pattern, nullptr);
        EXPECT_EQ(pattern->w, real->w);
        EXPECT_EQ(pattern->h, real->h);
    }
}

// Copied by each library alike: a palette with one hole, nothing to mix.
TEST(CorpusFixtures, PicturesAreCopiedNotMixed) {
    for (const std::string& file : filesOf(CORPUS_FIXTURES, ".png")) {
        SCOPED_TRACE(file);
        const SDL_Surface* pattern = IMG_Load((CORPUS_FIXTURES "/" + file).c_str());
        ASSERT_NE(pattern, nullptr);
        EXPECT_EQ(pattern->format->BitsPerPixel, 8);
        EXPECT_EQ(pattern->flags & SDL_SRCALPHA, 0U);
        EXPECT_NE(pattern->flags & SDL_SRCCOLORKEY, 0U);
        EXPECT_EQ(pattern->format->colorkey, 0U);
    }
}

TEST(CorpusFixtures, PicturesDifferFromEachOtherAndFromTheirMirrors) {
    std::map<std::string, std::string> seen;
    for (const std::string& file : filesOf(CORPUS_FIXTURES, ".png")) {
        SCOPED_TRACE(file);
        const SDL_Surface* pattern = IMG_Load((CORPUS_FIXTURES "/" + file).c_str());
        ASSERT_NE(pattern, nullptr);
        const std::string pixels = pixelsOf(pattern);
        EXPECT_TRUE(seen.emplace(pixels, file).second) << seen[pixels];
        EXPECT_NE(std::string(pixels.rbegin(), pixels.rend()), pixels);
        std::string mirror;
        const size_t width = static_cast<size_t>(pattern->w);
        for (size_t start = 0; start < pixels.size(); start += width) {
            const std::string line = pixels.substr(start, width);
            mirror.append(line.rbegin(), line.rend());
        }
        EXPECT_NE(mirror, pixels);
    }
}

TEST(CorpusFixtures, SoundsAreLoadedByTheMixer) {
    ASSERT_EQ(Mix_OpenAudio(22050, AUDIO_S16LSB, 1, 1024), 0);
    for (const std::string& file : filesOf(CORPUS_FIXTURES, ".wav")) {
        EXPECT_NE(Mix_LoadWAV((CORPUS_FIXTURES "/" + file).c_str()), nullptr) << file;
    }
    Mix_CloseAudio();
}

// The tool

class CorpusToolTest : public testing::Test {
protected:
    // A table of the first seeds of the tree's own.
    CorpusToolTest()
        : table(folder.path + "/table.txt"),
          rows(corpus::readTable(bytesOf(CORPUS_TABLE), CORPUS_TABLE)) {
        rows.resize(4);
        writeBytes(table, tableOf(rows));
    }

    ToolResult run(std::vector<std::string> words) const {
        words.insert(words.end(), {"--table", table});
        return runTool(KRAVOLTIX_CORPUS, words);
    }

    static void expectResult(const ToolResult& result, int status, const std::string& words) {
        EXPECT_EQ(result.status, status) << result.output << result.error;
        EXPECT_NE((result.output + result.error).find(words), std::string::npos)
            << result.output << result.error;
    }

    std::string framesOf(const std::vector<Row>& some) const {
        unsigned long long frames = 0;
        for (const Row& one : some) {
            frames += one.frames;
        }
        return std::to_string(some.size()) + " games, " + std::to_string(frames) + " frames";
    }

    const replay::TemporaryFolder folder;
    std::string table;
    std::vector<Row> rows;
};

TEST_F(CorpusToolTest, TheGamesOfTheTableAreTheSame) {
    expectResult(run({"check"}), 0, "The same: " + framesOf(rows) + ", three digests each.\n");
    expectResult(run({"check", "--jobs", "3"}), 0, "The same: " + framesOf(rows));
}

TEST_F(CorpusToolTest, SomeSeedsCanBeChosen) {
    expectResult(run({"check", "--from", "2", "--count", "2"}), 0, framesOf({rows[1], rows[2]}));
    expectResult(run({"check", "--sample", "2"}), 0, framesOf({rows[0], rows[2]}));
}

TEST_F(CorpusToolTest, EachColumnThatDiffersIsFound) {
    const struct {
        std::function<void(Row&)> change;
        const char* found;
    } cases[] = {
        {[](Row& r) { r.scenario ^= 1; }, "seed 3 differs: scenario\n"},
        {[](Row& r) { ++r.frames; }, "seed 3 differs: frames (expected "},
        {[](Row& r) { r.status = 5; }, "seed 3 differs: exit status (expected 5, got "},
        {[](Row& r) { r.pictures ^= 1; }, "seed 3 differs: pictures\n"},
        {[](Row& r) { r.calls ^= 1; }, "seed 3 differs: mixer calls\n"},
        {[](Row& r) { r.text ^= 1; }, "seed 3 differs: text\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.found);
        std::vector<Row> changed = rows;
        c.change(changed[2]);
        writeBytes(table, tableOf(changed));
        expectResult(run({"check", "--from", "3", "--count", "1"}), 1, c.found);
    }
}

TEST_F(CorpusToolTest, AllDifferencesAreToldUnlessTheFirstIsEnough) {
    for (Row& changed : rows) {
        changed.text ^= 1;
    }
    writeBytes(table, tableOf(rows));
    const ToolResult all = run({"check", "--jobs", "3"});
    expectResult(all, 1, "4 of 4 games differ, 0 could not be played.");
    EXPECT_EQ(all.output.find("seed 1 differs: text\nseed 2 differs: text\nseed 3 differs: text\n"
                              "seed 4 differs: text\n"),
              0U)
        << all.output;
    const ToolResult first = run({"check", "--first"});
    expectResult(first, 1, "seed 1 differs");
    EXPECT_EQ(first.output.find("seed 2 differs"), std::string::npos) << first.output;
}

TEST_F(CorpusToolTest, TheLastGameCountsToo) {
    rows.back().pictures ^= 1;
    writeBytes(table, tableOf(rows));
    expectResult(run({"check"}), 1, "seed 4 differs: pictures");
}

TEST_F(CorpusToolTest, AnOlderBuildShowsTheFirstFrameThatDiffers) {
    rows.resize(1);
    rows[0].text ^= 1;
    writeBytes(table, tableOf(rows));
    expectResult(run({"check", "--expected-game", KRAVOLTIX_PROGRAM}), 1,
                 "the same game as that of " KRAVOLTIX_PROGRAM);
}

TEST_F(CorpusToolTest, WhereNothingIsCheckedNothingIsProven) {
    expectResult(run({"check", "--from", "5"}), 2, "No game was checked, so nothing is proven.");
    writeBytes(table, "");
    expectResult(run({"check"}), 2, "there is no seed in the table");
    writeBytes(table, replaced(tableOf(rows), "seeds 4", "seeds 5"));
    expectResult(run({"check"}), 2, "the table has 4 seeds, not 5");
    fs::remove(table);
    expectResult(run({"check"}), 2, "cannot be read");
}

TEST_F(CorpusToolTest, AGameThatShowsNothingOrCrashesIsFound) {
    const struct {
        const char* way;
        const char* found;
    } cases[] = {
        {"idle", "seed 1: the game showed no frame"},
        {"silent", "seed 1: the game printed nothing"},
        {"crash", "the game crashed in its first second: Segmentation fault"},
        {"vanish", "the game has not written its end"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.way);
        setenv("KRAVOLTIX_NO_GAME", c.way, 1);
        const ToolResult result = run({"check", "--count", "1", "--game", KRAVOLTIX_NO_GAME});
        expectResult(result, 2, c.found);
        expectResult(result, 2, "0 of 1 games differ, 1 could not be played.");
    }
    expectResult(run({"check", "--game", "/nowhere"}), 2, "is no program that can be run");
    expectResult(run({"check", "--data", "/nowhere"}), 2, "is no folder");
}

TEST_F(CorpusToolTest, WritingTellsWhatHasChangedAndWhyToLook) {
    rows.resize(2);
    const std::string whole = tableOf(rows);
    rows[1].pictures ^= 1;
    rows[1].frames += 5;
    writeBytes(table, tableOf(rows));
    const ToolResult changed = run({"write", "--seeds", "2"});
    expectResult(changed, 0, "pictures     changed in 1 games: seeds 2\n");
    expectResult(changed, 0, "frames       changed in 1 games: seeds 2\n");
    expectResult(changed, 0, "mixer calls  changed in 0 games\n");
    expectResult(changed, 0, "Players will see or hear each of these changes");
    EXPECT_EQ(bytesOf(table), whole);
    const ToolResult same = run({"write", "--seeds", "2"});
    expectResult(same, 0, "pictures     changed in 0 games\n");
    EXPECT_EQ(same.output.find("Players will"), std::string::npos);
    fs::remove(table);
    EXPECT_EQ(run({"write", "--seeds", "2"}).status, 0);
    EXPECT_EQ(bytesOf(table), whole);
}

TEST_F(CorpusToolTest, ATableIsNotWrittenWhereAGameCannotBePlayed) {
    const std::string before = bytesOf(table);
    setenv("KRAVOLTIX_NO_GAME", "idle", 1);
    expectResult(run({"write", "--seeds", "2", "--game", KRAVOLTIX_NO_GAME}), 2,
                 "the table was not written: 2 games could not be played");
    EXPECT_EQ(bytesOf(table), before);
}

TEST_F(CorpusToolTest, AGameIsShown) {
    const ToolResult shown = runTool(KRAVOLTIX_CORPUS, {"show", "17"});
    EXPECT_EQ(shown.status, 0);
    EXPECT_EQ(shown.output, corpus::scenarioOf(17));
}

}  // namespace
