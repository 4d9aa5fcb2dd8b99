// SPDX-License-Identifier: MIT
// Every file that the game reads, missing or damaged: the game goes on without it or stops with a
// line that names it, and never crashes.
#include "playthrough/texts.h"
#include "support/gamefiles.h"
#include "support/program.h"

#include <SDL_image.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <sstream>

namespace {

namespace fs = std::filesystem;

// A data folder that shares its files with the true one, so that single ones can be damaged.
class DataFolder {
public:
    DataFolder() {
        for (const auto& entry : fs::recursive_directory_iterator(GAME_DATA)) {
            const fs::path here = fs::path(folder.path) / fs::relative(entry.path(), GAME_DATA);
            if (entry.is_directory()) {
                fs::create_directories(here);
            } else {
                fs::create_symlink(entry.path(), here);
            }
        }
    }

    std::string path() const { return folder.path; }

    void remove(const std::string& file) { fs::remove(fs::path(folder.path) / file); }

    void replace(const std::string& file, const std::string& content) {
        remove(file);
        writeFile(folder.path + "/" + file, content);
    }

    void restore(const std::string& file) {
        remove(file);
        fs::create_symlink(fs::path(GAME_DATA) / file, fs::path(folder.path) / file);
    }

private:
    TemporaryFolder folder;
};

std::string trueContent(const std::string& file) {
    return contentOf(GAME_DATA "/" + file);
}

// A short game in which every picture is drawn and every sound played, up to the player's end.
ProgramResult tour(const std::string& folder, bool sound) {
    ProgramRun run;
    if (!sound) {
        run.arguments = {"-ns"};
    }
    run.scenario = contentOf(PLAYTHROUGHS "/tour.scenario");
    run.folder = folder;
    return runProgram(run);
}

std::string upTo(const std::string& text, const std::string& end) {
    return text.substr(0, text.find(end));
}

// What has been printed before the file is loaded, and then the line that names it.
void expectStop(const ProgramResult& result, const ProgramResult& intact, const GameFile& file) {
    const std::string before = file.role == TEXT_PICTURE ? upTo(intact.output, BANNER) + BANNER
                                                         : upTo(intact.output, "display was born:");
    const std::string line =
        "Can't load image \"" + fs::path(file.path).filename().string() + "\": ";
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output.substr(0, before.size() + line.size()), before + line);
    const std::string reason = result.output.substr(before.size() + line.size());
    EXPECT_GT(reason.size(), 1U);
    EXPECT_EQ(reason.find('\n'), reason.size() - 1) << reason;
    EXPECT_EQ(result.timesCalled("SDL_Flip"), 0);
}

// The same game without the picture: each drawing of it is one of nothing.
void expectUnseen(const ProgramResult& result, const ProgramResult& intact, const GameFile& file) {
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, intact.output);
    EXPECT_TRUE(result.called("IMG_Load(" + file.path + ") = none"));
    EXPECT_EQ(result.timesDrawn(file.path), 0);
    EXPECT_EQ(result.timesDrawn("none"), intact.timesDrawn(file.path));
}

// The library that reads PNG pictures tells itself what is wrong with one.
std::string linesNotOfThePngLibrary(const std::string& error) {
    std::istringstream in(error);
    std::string others;
    for (std::string line; std::getline(in, line);) {
        others += line.find("libpng ") == 0 ? "" : line + "\n";
    }
    return others;
}

void expectWithoutPicture(const ProgramResult& result, const ProgramResult& intact,
                          const GameFile& file) {
    SCOPED_TRACE(file.path);
    EXPECT_EQ(result.signal, 0);
    EXPECT_EQ(linesNotOfThePngLibrary(result.error), "");
    if (file.role == PICTURE || file.role == SPARE_PICTURE) {
        expectUnseen(result, intact, file);
    } else {
        expectStop(result, intact, file);
    }
}

// In groups, so that they are tested side by side.
struct PictureGroup {
    const char* name;
    std::vector<GameFile> files;
};

// The name of a case in the list of tests.
void PrintTo(const PictureGroup& group, std::ostream* out) {
    *out << group.name;
}

class GamePictures : public testing::TestWithParam<PictureGroup> {};

INSTANTIATE_TEST_SUITE_P(
    Of, GamePictures,
    testing::Values(PictureGroup{"TheExplosionsStart", explosionFrames(0, EXPLOSION_FRAMES / 2)},
                    PictureGroup{"TheExplosionsEnd",
                                 explosionFrames(EXPLOSION_FRAMES / 2, EXPLOSION_FRAMES)},
                    PictureGroup{"AllElse", namedFiles(false)}),
    [](const auto& instance) { return instance.param.name; });

enum Way { REMOVED, EMPTIED, CUT, TEXT, BITMAP, WAYS };

// In a short run each picture meets one of the ways (with sanitizers each third picture), in a complete one
// all of them; so do the sounds.
std::vector<GameFile> metBy(Way way, const std::vector<GameFile>& files) {
    const size_t share = IS_SANITIZED ? 3 : 1;
    std::vector<GameFile> met;
    for (size_t i = 0; i < files.size(); ++i) {
        if (isComplete() || (i % WAYS == way && i / WAYS % share == 0)) {
            met.push_back(files[i]);
        }
    }
    return met;
}

// Each picture in turn, damaged like this.
template <typename Damage>
void expectTheGameWithoutEach(const std::vector<GameFile>& files, Way way, Damage damage) {
    DataFolder data;
    const ProgramResult intact = tour(GAME_DATA, false);
    ASSERT_EQ(intact.status, 0);
    for (const GameFile& file : metBy(way, files)) {
        damage(data, file.path);
        expectWithoutPicture(tour(data.path(), false), intact, file);
        data.restore(file.path);
    }
}

std::vector<std::string> plays(const ProgramResult& result) {
    return result.callsOf("Mix_PlayChannelTimed(");
}

std::string joined(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines) {
        text += line + "\n";
    }
    return text;
}

TEST(GameFiles, AreAllReadAndOnlyThey) {
    std::vector<std::string> named;
    for (const GameFile& file : allFiles()) {
        named.push_back(file.path);
    }
    EXPECT_EQ(named.size(), 76U + 8U);
    std::vector<std::string> read;
    for (const std::string& call : tour(GAME_DATA, true).callsOf("")) {
        if (call.find("IMG_Load(") == 0 || call.find("Mix_LoadWAV_RW(") == 0) {
            read.push_back(upTo(call.substr(call.find('(') + 1), ")"));
        }
    }
    std::sort(named.begin(), named.end());
    std::sort(read.begin(), read.end());
    read.erase(std::unique(read.begin(), read.end()), read.end());
    EXPECT_EQ(read, named);
}

TEST(GameFiles, AreAllSeenAndHeardInAShortGame) {
    const ProgramResult result = tour(GAME_DATA, true);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.timesDrawn("none"), 0);
    EXPECT_EQ(result.timesDrawn("unnamed"), 0);
    for (const GameFile& file : allFiles()) {
        SCOPED_TRACE(file.path);
        if (file.role == SOUND) {
            EXPECT_FALSE(result.called("Mix_LoadWAV_RW(" + file.path + ") = none"));
            EXPECT_GT(timesIn(joined(plays(result)), file.path), 0);
        } else {
            const bool spare = file.role == SPARE_PICTURE || file.role == SPARE_DISPLAY_PICTURE;
            EXPECT_EQ(result.timesDrawn(file.path) == 0, spare);
        }
    }
}

TEST_P(GamePictures, ARemovedPictureIsNotSeenOrStopsTheGame) {
    expectTheGameWithoutEach(GetParam().files, REMOVED,
                             [](DataFolder& data, const std::string& file) { data.remove(file); });
}

TEST_P(GamePictures, AnEmptyPictureIsNotSeenOrStopsTheGame) {
    expectTheGameWithoutEach(
        GetParam().files, EMPTIED,
        [](DataFolder& data, const std::string& file) { data.replace(file, ""); });
}

TEST_P(GamePictures, APictureCutInHalfIsNotSeenOrStopsTheGame) {
    expectTheGameWithoutEach(GetParam().files, CUT, [](DataFolder& data, const std::string& file) {
        const std::string whole = trueContent(file);
        data.replace(file, whole.substr(0, whole.size() / 2));
    });
}

TEST_P(GamePictures, ATextInAPicturesPlaceIsNotSeenOrStopsTheGame) {
    expectTheGameWithoutEach(GetParam().files, TEXT, [](DataFolder& data, const std::string& file) {
        data.replace(file, "Here was a picture once.\nNow it is gone.\n");
    });
}

TEST(GameFiles, ASoundInAPicturesPlaceIsNotSeenOrStopsTheGame) {
    DataFolder data;
    const ProgramResult intact = tour(GAME_DATA, false);
    for (const GameFile& file : {GameFile{"ships/ship01.png", PICTURE},
                                 GameFile{"fonts/impact/letters.png", TEXT_PICTURE}}) {
        data.replace(file.path, trueContent("sounds/keyboard.wav"));
        expectWithoutPicture(tour(data.path(), false), intact, file);
        data.restore(file.path);
    }
}

// What a picture is, its content tells and not its name.
TEST_P(GamePictures, AWindowsBitmapInAPicturesPlaceIsSeenLikeIt) {
    DataFolder data;
    const ProgramResult intact = tour(GAME_DATA, false);
    for (const GameFile& file : metBy(BITMAP, GetParam().files)) {
        SCOPED_TRACE(file.path);
        data.remove(file.path);
        SDL_Surface* picture = IMG_Load((GAME_DATA "/" + file.path).c_str());
        ASSERT_EQ(SDL_SaveBMP(picture, (data.path() + "/" + file.path).c_str()), 0);
        SDL_FreeSurface(picture);
        const ProgramResult result = tour(data.path(), false);
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.output, intact.output);
        EXPECT_EQ(result.error, "");
        EXPECT_EQ(result.timesDrawn(file.path), intact.timesDrawn(file.path));
        data.restore(file.path);
    }
}

// The same game in silence: each play of the sound is one of none.
void expectUnheard(const ProgramResult& result, const ProgramResult& intact,
                   const std::string& file) {
    EXPECT_EQ(result.signal, 0);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, intact.output);
    EXPECT_EQ(result.error, "");
    EXPECT_TRUE(result.called("Mix_LoadWAV_RW(" + file + ") = none"));
    EXPECT_FALSE(result.called("Mix_LoadWAV_RW(" + file + ") = sound"));
    std::vector<std::string> expected = plays(intact);
    for (std::string& play : expected) {
        if (const size_t at = play.find(file); at != std::string::npos) {
            play.replace(at, file.size(), "none");
        }
    }
    EXPECT_EQ(plays(result), expected);
}

class GameSounds : public testing::TestWithParam<GameFile> {};

INSTANTIATE_TEST_SUITE_P(Of, GameSounds, testing::ValuesIn(namedFiles(true)),
                         [](const auto& instance) {
                             return fs::path(instance.param.path).stem().string();
                         });

TEST_P(GameSounds, ThatAreMissingOrDamagedAreNotHeard) {
    const std::string file = GetParam().path;
    const std::string whole = trueContent(file);
    const std::pair<const char*, std::string> damages[] = {
        {"empty", ""},
        {"cut in half", whole.substr(0, whole.size() / 2)},
        {"cut in its header", whole.substr(0, 30)},
        {"a text", "Here was a sound once.\nNow it is gone.\n"},
        {"a picture", trueContent("ships/ship01.png")},
    };
    DataFolder data;
    const ProgramResult intact = tour(GAME_DATA, true);
    data.remove(file);
    {
        SCOPED_TRACE("removed");
        expectUnheard(tour(data.path(), true), intact, file);
    }
    const std::vector<GameFile> sounds = namedFiles(true);
    size_t number = 0;
    while (number < sounds.size() && sounds[number].path != file) {
        ++number;
    }
    for (size_t i = 0; i < std::size(damages); ++i) {
        if (isComplete() || i == number % std::size(damages)) {
            SCOPED_TRACE(damages[i].first);
            data.replace(file, damages[i].second);
            expectUnheard(tour(data.path(), true), intact, file);
        }
    }
}

TEST(GameFiles, WithoutSoundADamagedSoundIsNotNoticed) {
    DataFolder data;
    const ProgramResult intact = tour(GAME_DATA, false);
    for (const GameFile& file : namedFiles(true)) {
        data.replace(file.path, "no sound");
        const ProgramResult result = tour(data.path(), false);
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.output, intact.output);
        EXPECT_EQ(result.calls, intact.calls);
        data.restore(file.path);
    }
}

// Nothing that comes before the display is missed, so its first picture is the one that is named.
TEST(GameFiles, AGameStartedInAWrongFolderStopsAtTheFirstPictureThatIsAskedFor) {
    const TemporaryFolder empty;
    const ProgramResult result = tour(empty.path, true);
    const ProgramResult intact = tour(GAME_DATA, true);
    EXPECT_EQ(result.signal, 0);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.error, "");
    EXPECT_EQ(result.output, upTo(intact.output, "display was born:") +
                                 "Can't load image \"fps_a.png\": "
                                 "Couldn't open fonts/impact/fps_a.png\n");
    EXPECT_EQ(result.timesCalled("SDL_Quit"), 1);
}

TEST(GameFiles, WhatIsAskedForIsEnoughToPlayUnseenAndUnheard) {
    DataFolder data;
    for (const GameFile& file : allFiles()) {
        if (file.role == PICTURE || file.role == SPARE_PICTURE || file.role == SOUND) {
            data.remove(file.path);
        }
    }
    const ProgramResult result = tour(data.path(), true);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.error, "");
    EXPECT_EQ(result.output, tour(GAME_DATA, true).output);
}

TEST(GameFiles, AFolderInAFilesPlaceIsLikeNoFile) {
    DataFolder data;
    const ProgramResult intact = tour(GAME_DATA, false);
    for (const GameFile& file : {GameFile{"ships/enemy01.png", PICTURE},
                                 GameFile{"fonts/impact/cross.png", SPARE_DISPLAY_PICTURE}}) {
        data.remove(file.path);
        fs::create_directory(fs::path(data.path()) / file.path);
        expectWithoutPicture(tour(data.path(), false), intact, file);
        data.restore(file.path);
    }
}

}  // namespace
