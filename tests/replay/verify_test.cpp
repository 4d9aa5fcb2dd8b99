// SPDX-License-Identifier: MIT
// kravoltix-replay from outside: what it proves, what it finds, and what it refuses.
#include "replay/tool.h"

#include "front/recording.h"
#include "support/folderwatch.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sys/wait.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

// Into play, two shots, and out; each frame has a picture of its own.
constexpr char SHORT_GAME[] = "start 300\n"
                              "limit 400\n"
                              "frame 1 time 100\n"
                              "frame 80 down return\n"
                              "frame 81 up return\n"
                              "frame 232 down a\n"
                              "frame 236 up a\n"
                              "frame 240 down a\n"
                              "frame 260 quit\n";

class VerifyTest : public testing::Test {
protected:
    std::string path(const std::string& name) const { return folder.path + '/' + name; }

    std::string written(const std::string& name, const std::string& text) const {
        writeBytes(path(name), text);
        return path(name);
    }

    // A recording of the short game.
    std::string recorded(const std::string& name = "game.kvx") const {
        recordScript(written("short.scenario", SHORT_GAME), path(name));
        return path(name);
    }

    ToolResult verify(const std::vector<std::string>& words) const {
        return runReplay("verify", words);
    }

    // A recording that tells the game other than it was, and the verdict on it.
    ToolResult verifyChanged(const std::string& old, const std::string& with,
                             const std::vector<std::string>& options = {}) const {
        const std::string text = replaced(unpacked(recorded()), old, with);
        std::vector<std::string> words = {written("changed.kvx", text)};
        words.insert(words.end(), options.begin(), options.end());
        return verify(words);
    }

    void expectVerdict(const ToolResult& result, int status, const std::string& words) const {
        EXPECT_EQ(result.status, status) << result.output << result.error;
        EXPECT_NE(result.output.find(words), std::string::npos) << result.output;
    }

    std::string library() const {
        const std::string text = unpacked(path("game.kvx"));
        const size_t start = text.find("library ") + 8;
        return text.substr(start, text.find('\n', start) - start);
    }

    const replay::TemporaryFolder folder;
};

TEST_F(VerifyTest, PicturesThatAScenarioKeepsLieWhereTheToolWasCalled) {
    const std::string scenario =
        written("kept.scenario", "frame 3 picture third.bmp\nframe 4 quit\nexpect status 0\n");
    const fs::path before = fs::current_path();
    fs::current_path(folder.path);
    const ToolResult result = verify({scenario});
    fs::current_path(before);
    expectVerdict(result, 0, "as expected");
    EXPECT_TRUE(fs::exists(path("third.bmp")));
}

TEST_F(VerifyTest, ARecordingIsTheSameGameAndItsFiguresAreTold) {
    const ToolResult result = verify({recorded()});
    expectVerdict(result, 0, path("game.kvx") + ": the same game: 260 pictures, ");
    EXPECT_EQ(std::count(result.output.begin(), result.output.end(), '\n'), 1);
    EXPECT_EQ(result.error, "");
}

TEST_F(VerifyTest, ARecordingHasAllThatTheScenarioGives) {
    const front::Recording recording = replay::readFile(recorded(), false);
    EXPECT_EQ(recording.given.startMs, 300U);
    EXPECT_EQ(recording.given.events.size(), 6U);
    Uint32 frames = 0;
    for (const front::FrameRun& run : recording.given.frameRuns) {
        EXPECT_EQ(run.ms, 100U);
        frames += run.frames;
    }
    EXPECT_EQ(frames, 260U);
    EXPECT_EQ(recording.seen.checks.size(), 260U);
    EXPECT_EQ(recording.seen.digests.size(), 26U);
    EXPECT_EQ(recording.seen.frames, 260U);
    EXPECT_EQ(recording.seen.status, 0U);
    EXPECT_EQ(recording.seen.files.size(), 84U);
    EXPECT_NE(recording.seen.text().find("GO!\n"), std::string::npos);
    ASSERT_FALSE(recording.seen.hud.empty());
    EXPECT_EQ(recording.seen.hud.front().lasers, 50U);
    EXPECT_EQ(recording.seen.hud.back().lasers, 48U);
    EXPECT_EQ(recording.seen.hud.back().rockets, 3U);
    EXPECT_EQ(recording.seen.hud.front().energy, 65U);
    EXPECT_EQ(recording.seen.hud.back().energy, 33U);  // four hits
}

TEST_F(VerifyTest, ARecordingOfARecordingIsTheSameFile) {
    recordScript(recorded(), path("again.kvx"));
    EXPECT_EQ(bytesOf(path("again.kvx")), bytesOf(path("game.kvx")));
}

TEST_F(VerifyTest, ScenariosInEitherUnitAreTheSameGame) {
    const std::string runs = replaced(SHORT_GAME, "frame 1 time 100\n", "times 1 100*260\n");
    recordScript(written("runs.scenario", runs), path("runs.kvx"));
    EXPECT_EQ(bytesOf(path("runs.kvx")), bytesOf(recorded()));
}

TEST_F(VerifyTest, OptionsAreGivenToTheGameAgain) {
    recordScript(written("quiet.scenario", std::string("option \"-ns\"\n") + SHORT_GAME),
                 path("quiet.kvx"));
    expectVerdict(verify({path("quiet.kvx")}), 0, "the same game");
    const std::string text = replaced(unpacked(path("quiet.kvx")), "option \"-ns\"\n", "");
    expectVerdict(verify({written("loud.kvx", text)}), 1, "(text)");
}

TEST_F(VerifyTest, EachChannelIsCompared) {
    const struct {
        const char* rule;
        const char* old;
        const char* with;
        const char* found;
    } cases[] = {
        {"another text", "READY for", "Ready for", "frame 0 differs (text): expected \"eady for"},
        {"another sound", "shot001b.wav, 0, -1)", "shot001b.wav, 1, -1)", " differs (sound): "},
        {"a sound at another time", "call 0 300 Mix_OpenAudio", "call 0 301 Mix_OpenAudio",
         "frame 0 differs (sound): expected Mix_OpenAudio"},
        {"another exit status", "\nend 260 27300 0", "\nend 260 27300 1",
         "frame 260 differs (end): expected 260 frames, clock 27300 ms, status 1, got 260 frames"},
        {"another clock", "\nend 260 27300 0", "\nend 260 27301 0", "frame 260 differs (end): "},
        {"a frame that takes longer", "times 1 100*10", "times 1 101 100*9", " differs ("},
        {"a key that is not pressed", "frame 232 down a\n", "", " differs ("},
        {"a key that comes later", "frame 232 down a\n", "frame 233 down a\n", " differs ("},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.rule);
        expectVerdict(verifyChanged(c.old, c.with), 1, c.found);
    }
}

// The check of one picture, in the middle of the game.
TEST_F(VerifyTest, APictureThatDiffersIsToldAndWritten) {
    const std::string text = unpacked(recorded());
    const size_t at = text.find("pictures 11 32 ") + 15 + size_t{3} * 8;  // of frame 14
    const std::string check = text.substr(at, 8);
    std::string changed = text;
    changed[at] = changed[at] == '0' ? '1' : '0';
    written("changed.kvx", changed);
    expectVerdict(verify({path("changed.kvx")}), 1,
                  "frame 14 differs (picture): expected a picture with check " +
                      changed.substr(at, 8) + ", got " + check);
    EXPECT_TRUE(fs::exists(path("changed.kvx-frame-14-got.png")));
    EXPECT_FALSE(fs::exists(path("changed.kvx-frame-14-expected.png")));

    fs::create_directory(path("pictures"));
    verify({path("changed.kvx"), "--pictures", path("pictures"), "--expected-game",
            KRAVOLTIX_PROGRAM});
    for (const char* what : {"got", "expected", "difference"}) {
        EXPECT_TRUE(fs::exists(path("pictures/changed.kvx-frame-14-") + what + ".png")) << what;
    }
}

TEST_F(VerifyTest, ADigestThatDiffersIsTold) {
    const std::string text = unpacked(recorded());
    const size_t at = text.find("digest 260 ") + 11;
    std::string changed = text;
    changed[at] = changed[at] == '0' ? '1' : '0';
    expectVerdict(verify({written("changed.kvx", changed)}), 1,
                  "frame 251 differs (picture): a picture up to frame 260 differs");
}

TEST_F(VerifyTest, OtherFilesOfTheGameAreNamed) {
    std::string text = unpacked(recorded());
    text[text.find("file \"ships/ship01.png\" ") + 24] ^= 1;
    written("same.kvx", text);
    expectVerdict(verify({path("same.kvx")}), 0, "the same game");
    text = replaced(text, "READY for", "Ready for");
    expectVerdict(verify({written("other.kvx", text)}), 1,
                  "the game's files are others than then: ships/ship01.png\n");
}

TEST_F(VerifyTest, ARecordingOfAnotherLibraryIsNotCompared) {
    recorded();
    const ToolResult result = verifyChanged("library " + library(), "library SDL 9.9.9");
    expectVerdict(result, 2,
                  "made with SDL 9.9.9, played with " + library() +
                      ": two libraries round pictures differently");
}

TEST_F(VerifyTest, WithAnyLibraryAllButThePicturesIsCompared) {
    recorded();
    std::string text =
        replaced(unpacked(path("game.kvx")), "library " + library(), "library SDL 9.9.9");
    text[text.find("pictures 1 32 ") + 14] ^= 1;
    written("other.kvx", text);
    expectVerdict(verify({path("other.kvx"), "--any-library"}), 0,
                  "pictures were not compared (made with SDL 9.9.9, played with " + library());
    written("text.kvx", replaced(text, "READY for", "Ready for"));
    expectVerdict(verify({path("text.kvx"), "--any-library"}), 1, "(text)");
    written("sound.kvx", replaced(text, "call 0 300 Mix_OpenAudio", "call 0 301 Mix_OpenAudio"));
    expectVerdict(verify({path("sound.kvx"), "--any-library"}), 1, "(sound)");
}

TEST_F(VerifyTest, TheSameLibraryIsComparedByItsPicturesWithAnyLibraryToo) {
    std::string text = unpacked(recorded());
    const size_t at = text.find("pictures 1 32 ") + 14;
    text[at] = text[at] == '0' ? '1' : '0';
    expectVerdict(verify({written("changed.kvx", text), "--any-library"}), 1, "(picture)");
}

TEST_F(VerifyTest, AFileThatWasCutOffIsRefusedUnlessItIsAskedFor) {
    const std::string bytes = bytesOf(recorded());
    written("cut.kvx", bytes.substr(0, bytes.size() * 2 / 3));
    const ToolResult result = verify({path("cut.kvx")});
    expectVerdict(result, 2, path("cut.kvx") + ": cut off behind byte ");
    EXPECT_NE(result.output.find("frames of the game are whole (--partial takes what there is)"),
              std::string::npos)
        << result.output;
    expectVerdict(verify({path("cut.kvx"), "--partial"}), 0, "the same game: ");
}

TEST_F(VerifyTest, WhatIsThereOfAFileThatWasCutOffIsCompared) {
    const std::string whole = unpacked(recorded());
    const std::string text = whole.substr(0, whole.find("\nend ") + 1);
    expectVerdict(verify({written("cut.kvx", text), "--partial"}), 0,
                  "the same game: 260 pictures");
    std::string changed = text;
    const size_t at = changed.find("pictures 251 32 ") + 16;
    changed[at] = changed[at] == '0' ? '1' : '0';
    expectVerdict(verify({written("cut.kvx", changed), "--partial"}), 1, "frame 251 differs");
}

TEST_F(VerifyTest, OneOfWhichNothingIsLeftProvesNothing) {
    recorded();
    const std::string head = "kravoltix-replay 1\nlibrary " + library() + "\nstart 300\n";
    expectVerdict(verify({written("head.kvx", head), "--partial"}), 2,
                  "nothing was recorded that could be compared");
}

TEST_F(VerifyTest, FilesThatAreNoGamesAreRefused) {
    const std::string bytes = bytesOf(recorded());
    std::string damaged = bytes;
    damaged[bytes.size() / 2] = static_cast<char>(damaged[bytes.size() / 2] ^ 0x10);
    const struct {
        const char* name;
        std::string content;
        const char* found;
    } cases[] = {
        {"empty.kvx", "", ": the file is empty"},
        {"damaged.kvx", damaged, ": damaged behind byte "},
        {"newer.kvx", "kravoltix-replay 2\n", ":1: made by a newer version"},
        {"wrong.scenario", "start 300\nframe x quit\n", ":2: "},
        {"unfailing.scenario", "fail SDL_Delay 1 text\nexpect status 0\n",
         "SDL_Delay is no function of the game that can fail"},
        {"nothing.scenario", SHORT_GAME, ": expects nothing, so nothing is proven"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        expectVerdict(verify({written(c.name, c.content)}), 2, c.found);
    }
    expectVerdict(verify({path("missing.kvx")}), 2, ": cannot be read: No such file or directory");
}

// What a scenario expects

TEST_F(VerifyTest, AScenarioIsProvenByItsExpectations) {
    const std::string scenario = std::string(SHORT_GAME) +
                                 "expect status 0\n"
                                 "expect frames 260\n"
                                 "expect 1 text \"GO!\\n\"\n"
                                 "expect no text \"Good Bye World!\"\n"
                                 "expect 1 text \"READY\" in frames 0 0\n"
                                 "expect 2 call \"Mix_PlayChannelTimed(1, sounds/shot001b.wav\"\n"
                                 "expect 1+ call \"Mix_\" in frames 260 260\n"
                                 "expect 1000+ pixels 000000 in 0 0 640 480 at 260\n"
                                 "expect 0..100 pixels 000000 in 0 0 10 10 at 1\n";
    expectVerdict(verify({written("good.scenario", scenario)}), 0,
                  "good.scenario: as expected: 9 expectations, 260 frames");
}

TEST_F(VerifyTest, EachExpectationThatIsNotMetIsToldWithItsLine) {
    const struct {
        const char* line;
        const char* message;
    } cases[] = {
        {"expect status 1", "expected 1 as the exit status, got 0"},
        {"expect frames 261", "expected 261 frames, got 260"},
        {"expect 2 text \"GO!\\n\"", "expected 2 times the text \"GO!\\n\", got 1"},
        {"expect no text \"GO!\"", "expected 0 times the text \"GO!\", got 1"},
        {"expect 1 text \"READY\" in frames 1 260",
         "expected 1 times the text \"READY\" in frames 1 to 260, got 0"},
        {"expect 3 call \"Mix_PlayChannelTimed(1, sounds/shot001b.wav\"",
         "expected 3 calls \"Mix_PlayChannelTimed(1, sounds/shot001b.wav\", got 2"},
        {"expect 1+ pixels 123456 in 0 0 2 2 at 260",
         "expected 1 or more pixels 123456 in frame 260, got 0"},
        {"expect 1+ pixels 000000 in 0 0 2 2 at 261", "the game has no frame 261: it has 260"},
    };
    std::string scenario = SHORT_GAME;
    std::string expected;
    const std::string file = path("bad.scenario");
    const long firstLine = std::count(scenario.begin(), scenario.end(), '\n') + 1;
    for (size_t i = 0; i < std::size(cases); ++i) {
        scenario += cases[i].line + std::string("\n");
        expected += file + ':' + std::to_string(firstLine + static_cast<long>(i)) + ": " +
                    cases[i].message + '\n';
    }
    const ToolResult result = verify({written("bad.scenario", scenario + "expect status 0\n")});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, expected);
}

TEST_F(VerifyTest, AGameThatGoesOnIsStoppedAndSaysSo) {
    const std::string scenario = "start 300\nlimit 20\nexpect status 98\nexpect frames 20\n";
    expectVerdict(verify({written("endless.scenario", scenario)}), 0, "as expected");
}

// The program that is played

TEST_F(VerifyTest, AGameThatCannotBeStartedProvesNothing) {
    const ToolResult missing = verify({recorded(), "--game", path("missing")});
    EXPECT_EQ(missing.status, 2);
    EXPECT_NE(missing.error.find("missing: is no program that can be run (--game)"),
              std::string::npos)
        << missing.error;
    written("broken", "\x7f nonsense");
    fs::permissions(path("broken"), fs::perms::owner_all);
    EXPECT_EQ(verify({path("game.kvx"), "--game", path("broken")}).status, 2);
}

TEST_F(VerifyTest, AProgramThatIsNoGameProvesNothing) {
    expectVerdict(verify({recorded(), "--game", "/bin/true"}), 2, "");
}

TEST_F(VerifyTest, AGameThatFailsOnTheWayIsFound) {
    const struct {
        const char* way;
        int status;
        const char* found;
    } cases[] = {
        {"idle", 1, " differs ("},
        {"silent", 1, " differs ("},
        {"crash", 2, "the game crashed in its first second: Segmentation fault"},
        {"crash late", 2, "the game crashed in frame 20 or soon after: Segmentation fault"},
        {"vanish", 2, "the game has not written its end"},
    };
    recorded();
    for (const auto& c : cases) {
        SCOPED_TRACE(c.way);
        setenv("KRAVOLTIX_NO_GAME", c.way, 1);
        expectVerdict(verify({path("game.kvx"), "--game", KRAVOLTIX_NO_GAME}), c.status, c.found);
    }
}

// Several files

TEST_F(VerifyTest, TheWorstVerdictIsTheExitStatus) {
    const std::string good = recorded();
    const std::string bad = written("bad.kvx", replaced(unpacked(good), "READY for", "Ready for"));
    const std::string missing = path("missing.kvx");
    EXPECT_EQ(verify({good, good}).status, 0);
    EXPECT_EQ(verify({good, bad}).status, 1);
    EXPECT_EQ(verify({bad, good}).status, 1);
    EXPECT_EQ(verify({missing, bad, good}).status, 2);
    EXPECT_EQ(verify({bad, missing, good}).status, 2);
}

TEST_F(VerifyTest, SeveralAtOnceAreToldInTheirOrder) {
    const std::string longGame = "start 300\nlimit 1000\nframe 900 quit\nexpect frames 900\n";
    const std::string shortGame = "start 300\nframe 3 quit\nexpect frames 3\n";
    std::vector<std::string> words = {written("0.scenario", longGame)};
    for (int i = 1; i < 7; ++i) {
        words.push_back(written(std::to_string(i) + ".scenario", shortGame));
    }
    words.insert(words.end(), {"--jobs", "4"});
    const ToolResult result = verify(words);
    EXPECT_EQ(result.status, 0) << result.output;
    size_t last = 0;
    for (int i = 0; i < 7; ++i) {
        const size_t at = result.output.find(std::to_string(i) + ".scenario: as expected");
        ASSERT_NE(at, std::string::npos) << i;
        EXPECT_GE(at, last) << i;
        last = at;
    }
}

// As a daemon starts programs. The reason comes from the game's own standard error.
TEST_F(VerifyTest, WithoutStreamsTheVerdictIsTheSame) {
    const std::string scenario = written("wrong.scenario", "fail SDL_Nothing 1 no\n");
    recorded();
    for (const char* streams : {"", "<&-", "2>&-", "<&- 2>&-"}) {
        SCOPED_TRACE(streams);
        const ToolResult result = runReplay("verify", {path("game.kvx"), scenario}, streams);
        expectVerdict(result, 2, "game.kvx: the same game: 260 pictures");
        expectVerdict(result, 2, "SDL_Nothing is no function of the game that can fail");
    }
    EXPECT_EQ(runReplay("verify", {path("game.kvx")}, "<&- >&- 2>&-").status, 0);
}

// With this many at a time, one nearly always begins while another thread allocates.
TEST_F(VerifyTest, NoThreadHoldsUpTheGameOfAnother) {
    constexpr int GAMES = 200;
    const std::string layer = written("empty", "");
    const std::string scenario = written("short.scenario", "frame 3 quit\n");
    std::vector<std::string> words = {"verify", "--game",    "/bin/true", "--layer", layer,
                                      "--data", folder.path, "--jobs",    "32"};
    words.insert(words.end(), GAMES, scenario);
    const ToolResult result = runTool(KRAVOLTIX_REPLAY, words);
    EXPECT_EQ(result.status, 2) << result.error;
    EXPECT_GE(std::count(result.output.begin(), result.output.end(), '\n'), GAMES);
}

TEST_F(VerifyTest, NoFileIsAMistake) {
    EXPECT_NE(verify({}).status, 0);
}

TEST_F(VerifyTest, InfoOfAFileThatWasCutOffSaysSo) {
    EXPECT_EQ(runReplay("info", {recorded()}).status, 0);
    const std::string bytes = bytesOf(path("game.kvx"));
    const ToolResult result =
        runReplay("info", {written("cut.kvx", bytes.substr(0, bytes.size() / 2))});
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.error.find("cut off behind byte"), std::string::npos) << result.error;
}

// A player's game: real clock, real events; here the display and the sound device are SDL's dummies.
TEST_F(VerifyTest, ALiveGameIsTheSameWhenItIsPlayedAgain) {
    replay::GameRun run;
    run.recordTo = path("live.kvx");
    const FolderWatch watch(fs::path(run.recordTo).parent_path());
    const int process = replay::startGame(builtPlace(), run);
    // A second of the game is written when it is over.
    EXPECT_TRUE(watch.waitUntil(
        [&] { return fs::exists(run.recordTo) && fs::file_size(run.recordTo) > 0; }));
    kill(process, SIGTERM);
    const replay::GameResult result = replay::waitForGame(process);
    EXPECT_EQ(result.signal, 0);
    EXPECT_EQ(result.status, 0);
    const front::Recording recording = replay::readFile(run.recordTo, false);
    EXPECT_GT(recording.seen.frames, 10U);
    EXPECT_EQ(recording.given.events.size(), 1U);
    expectVerdict(verify({run.recordTo}), 0, "the same game: ");
}

}  // namespace
