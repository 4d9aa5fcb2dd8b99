// SPDX-License-Identifier: MIT
// Every file of the game, damaged in every way: the game goes on without it, with what is left of it,
// or stops with the line that names it. tests/playthrough/files_test.cpp shows some of the same
// with the whole program.
#include "reliability/fileformats.h"
#include "reliability/quicktour.h"
#include "reliability/start.h"
#include "support/gamefiles.h"
#include "support/program.h"

#include <SDL_image.h>

#include <gtest/gtest.h>

#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <sched.h>
#include <sys/fsuid.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace reliability;

namespace {

namespace fs = std::filesystem;

constexpr int CUTS = 16;
constexpr unsigned int FLIPS = 200;
constexpr unsigned int FITTED_FLIPS = 50;

// With --all one start of so many is played to its end although the file came to nothing.
constexpr size_t PLAYED_IN_VAIN = 11;

constexpr uid_t NOBODY = 65534;

// Whether the library can make a picture or a sound of the damaged file.
enum Loads { NEVER, MAY, ALWAYS };

std::vector<GameFile> allPictures() {
    std::vector<GameFile> pictures = explosionFrames(0, EXPLOSION_FRAMES);
    const std::vector<GameFile> named = namedFiles(false);
    pictures.insert(pictures.end(), named.begin(), named.end());
    return pictures;
}

std::string trueContent(const GameFile& file) {
    return contentOf(GAME_DATA "/" + file.path);
}

// A data folder of copies, one of which is damaged at a time.
class DataFolder {
public:
    DataFolder() {
        fs::copy(GAME_DATA, folder.path, fs::copy_options::recursive);
        fs::permissions(folder.path, fs::perms(0755));
    }

    std::string path() const { return folder.path; }
    std::string pathOf(const GameFile& file) const { return folder.path + "/" + file.path; }

    void remove(const GameFile& file) { fs::remove(pathOf(file)); }

    void restore(const GameFile& file) {
        fs::remove(pathOf(file));
        writeFile(pathOf(file), trueContent(file));
    }

private:
    TemporaryFolder folder;
};

bool isSpare(const GameFile& file) {
    return file.role == SPARE_PICTURE || file.role == SPARE_DISPLAY_PICTURE;
}

bool stopsTheGame(const GameFile& file) {
    return file.role == DISPLAY_PICTURE || file.role == SPARE_DISPLAY_PICTURE ||
           file.role == TEXT_PICTURE;
}

// Without a file that is asked for: one line that names it, with the library's reason.
void expectStop(const End& end, const GameFile& file) {
    const std::string before =
        startText(false, true) + birthText() + (file.role == TEXT_PICTURE ? displayText() : "") +
        "Can't load image \"" + fs::path(file.path).filename().string() + "\": ";
    EXPECT_EQ(end.status, 1);
    ASSERT_EQ(end.output.substr(0, before.size()), before);
    const std::string reason = end.output.substr(before.size());
    EXPECT_GT(reason.size(), 1U);
    EXPECT_EQ(reason.find('\n'), reason.size() - 1) << reason;
    EXPECT_EQ(end.report.frames, 0);
}

// A shot hits what was drawn of its target. The tour's two shots come to the enemy's middle.
enum Hits { BOTH, NONE, UNKNOWN };
Hits hitsOf(const End& end, const GameFile& file) {
    if (file.path != "ships/enemy01.png" || !end.report.damagedLoaded) {
        return BOTH;
    }
    const int size = std::min(end.report.damagedWidth, end.report.damagedHeight);
    return size >= 38 ? BOTH : size <= 7 ? NONE : UNKNOWN;
}

// Without any other: the same game, to the last word.
void expectWholeGame(const End& end, const GameFile& file) {
    const Hits hits = hitsOf(end, file);
    const bool silent = file.role != SOUND;
    EXPECT_EQ(end.status, 0);
    const std::string withoutHits = wholeText(silent, quickTourTextWithoutHits());
    if (hits == NONE || (hits == UNKNOWN && end.output == withoutHits)) {
        EXPECT_EQ(end.output, withoutHits);
    } else {
        EXPECT_EQ(end.output, wholeText(silent));
    }
    EXPECT_EQ(end.report.frames, QUICK_TOUR_FRAMES);
    if (end.report.damagedLoaded) {
        EXPECT_EQ(end.report.damagedUses == 0, isSpare(file));
        EXPECT_EQ(end.report.nothingDrawn, 0);
    } else if (file.role != SOUND) {
        EXPECT_EQ(end.report.nothingDrawn == 0, isSpare(file));
    }
}

// The true mixer plays as fast as it can into nothing.
void intoNothing() {
    setenv("SDL_AUDIODRIVER", "disk", 1);
    setenv("SDL_DISKAUDIOFILE", "/dev/null", 1);
    setenv("SDL_DISKAUDIODELAY", "0", 1);
}

// The libraries by themselves, without the game: they load the file and show or play it.
End libraryAlone(const std::string& path, Role role) {
    return inOtherProcess([&](Report&) {
        if (role != SOUND) {
            SDL_Surface* screen = SDL_CreateRGBSurface(0, 640, 480, 32, 0xff0000, 0xff00, 0xff, 0);
            SDL_Surface* picture = IMG_Load(path.c_str());
            return picture == nullptr ? 0 : SDL_BlitSurface(picture, nullptr, screen, nullptr);
        }
        intoNothing();
        SDL_Init(SDL_INIT_AUDIO);
        Mix_OpenAudio(22050, AUDIO_S16LSB, 1, 1024);
        Mix_Chunk* sound = Mix_LoadWAV(path.c_str());
        unsigned int sum = 0;
        for (Uint32 i = 0; sound != nullptr && i < sound->alen; ++i) {
            sum += sound->abuf[i];
        }
        const int channel = Mix_PlayChannel(1, sound, 0);
        while (channel >= 0 && Mix_Playing(channel) != 0) {
            sched_yield();
        }
        return sum > 0 ? 0 : 1;
    });
}

// A file that makes a library crash without the game too is the library's fault: it is told, and the
// game is not to be blamed for it.
bool isLibraryFault(const End& end, const std::string& path, Role role, const std::string& what) {
    if (!end.isCrash()) {
        return false;
    }
    const End alone = libraryAlone(path, role);
    if (alone.isCrash()) {
        std::printf("library fault: %s: signal %i\n%s", what.c_str(), alone.signal,
                    alone.error.c_str());
    }
    return alone.isCrash();
}

void expectOutcome(const End& end, const GameFile& file, Loads loads) {
    EXPECT_FALSE(end.isCrash());
    EXPECT_EQ(unexpectedLines(end.error), "");
    EXPECT_GT(end.report.damagedLoads, 0);
    EXPECT_FALSE(loads == NEVER && end.report.damagedLoaded);
    EXPECT_FALSE(loads == ALWAYS && !end.report.damagedLoaded);
    if (stopsTheGame(file) && !end.report.damagedLoaded) {
        expectStop(end, file);
    } else {
        expectWholeGame(end, file);
    }
    if (testing::Test::HasFailure()) {
        FAIL() << file.path << "\n" << end.told();  // the first fault is enough
    }
}

Start startWith(const DataFolder& data, const GameFile& file) {
    Start start;
    start.folder = data.path();
    start.damaged = file.path;
    start.betweenFrames = quickTour;
    if (file.role == SOUND) {
        start.noSound = false;
        start.trueSounds = true;
        start.prepare = [](Running&) { intoNothing(); };
    }
    return start;
}

// In ./test a few of many cases, strewn over all; with --all each of them.
class Cases {
public:
    Cases(const char* name, size_t total, size_t sample)
        : count(total),
          wanted(isComplete() ? total : std::min(total, IS_SANITIZED ? (sample + 1) / 2 : sample)),
          progress(name, wanted) {}

    // Each wanted case's number, until a test has failed.
    template <typename Action> void each(Action action) {
        for (size_t i = 0; i < wanted && !testing::Test::HasFailure(); ++i) {
            action(wanted == count ? i : (i + 1) * STRIDE % count);
            progress.step();
        }
    }

private:
    static constexpr size_t STRIDE = 7919;  // a prime: no file or variant is preferred

    size_t count;
    size_t wanted;
    Progress progress;
};

// Every file with `variants` contents of its own.
template <typename Content>
void damageEach(const char* name, const std::vector<GameFile>& files, size_t variants,
                size_t sample, Loads loads, Content content) {
    DataFolder data;
    size_t libraryFaults = 0;
    Cases(name, files.size() * variants, sample).each([&](size_t number) {
        const GameFile& file = files[number % files.size()];
        const size_t variant = number / files.size();
        const std::string what =
            std::string(name) + " " + std::to_string(variant) + " of " + file.path;
        SCOPED_TRACE(what);
        writeFile(data.pathOf(file), content(file, variant));
        Start how = startWith(data, file);
        // Without the file the game is the one of MissingStopTheGameOrAreNotSeen.
        how.onlyWithDamaged = isComplete() && !stopsTheGame(file) && number % PLAYED_IN_VAIN != 0;
        const End end = start(how);
        if (end.status == STATUS_NOTHING_LOADED && loads != ALWAYS) {
            EXPECT_EQ(unexpectedLines(end.error), "");
        } else if (loads == MAY && isLibraryFault(end, data.pathOf(file), file.role, what)) {
            ++libraryFaults;
        } else {
            expectOutcome(end, file, loads);
        }
        data.restore(file);
    });
    if (libraryFaults > 0) {
        std::printf("%s: %zu library faults\n", name, libraryFaults);
    }
}

// Every file, changed in its place by `damage`, played as `start` says.
template <typename Damage, typename Prepare>
void replaceEach(const char* name, size_t sample, Damage damage, Prepare prepare, Loads loads) {
    DataFolder data;
    const std::vector<GameFile> files = allFiles();
    Cases(name, files.size(), sample).each([&](size_t number) {
        const GameFile& file = files[number];
        SCOPED_TRACE(std::string(name) + ": " + file.path);
        damage(data.pathOf(file));
        Start how = startWith(data, file);
        how.prepare = [&, usual = how.prepare](Running& running) {
            if (usual) {
                usual(running);
            }
            prepare();
        };
        expectOutcome(start(how), file, loads);
        fs::remove_all(data.pathOf(file));
        data.restore(file);
    });
}

// The tour proves nothing unless it shows everything.
TEST(Files, AllAreSeenAndHeardInTheQuickTour) {
    DataFolder data;
    const std::vector<GameFile> files = allFiles();
    Cases("intact", files.size(), 12).each([&](size_t number) {
        const GameFile& file = files[number];
        SCOPED_TRACE(file.path);
        const End end = start(startWith(data, file));
        expectOutcome(end, file, ALWAYS);
        EXPECT_EQ(unexpectedLines(end.error), "");
    });
}

TEST(Files, MissingStopTheGameOrAreNotSeen) {
    replaceEach(
        "missing", 6, [](const std::string& path) { fs::remove(path); }, [] {}, NEVER);
}

TEST(Files, EmptyStopTheGameOrAreNotSeen) {
    damageEach("empty", allFiles(), 1, 6, NEVER,
               [](const GameFile&, size_t) { return std::string(); });
}

// The last bytes may be missed: they only say that nothing follows.
TEST(Files, CutStopTheGameOrAreSeenInPart) {
    damageEach("cut", allFiles(), CUTS, 10, MAY, [](const GameFile& file, size_t cut) {
        const std::string whole = trueContent(file);
        if (cut == 0) {
            return whole.substr(0, 1);
        }
        return cut == CUTS - 1 ? whole.substr(0, whole.size() - 1)
                               : whole.substr(0, whole.size() * cut / (CUTS - 1));
    });
}

TEST(Files, CutPicturesWithoutAllTheirPixelsAreNotSeen) {
    const std::vector<GameFile> pictures = allPictures();
    damageEach("cut in the pixels", pictures, 1, 5, NEVER,
               [](const GameFile& file, size_t) { return beforeLastPixels(trueContent(file)); });
}

TEST(Files, WithAFlippedBitStopTheGameOrAreSeen) {
    damageEach("flipped bit", allFiles(), FLIPS, 14, MAY, [](const GameFile& file, size_t seed) {
        return withFlippedBit(trueContent(file), seed);
    });
}

// A checksum would stop most flips early; with the checksum made to fit, the bit goes deeper.
TEST(Files, WithAFlippedBitThatTheChecksumFitsStopTheGameOrAreSeen) {
    const std::vector<GameFile> pictures = allPictures();
    damageEach(
        "flipped bit with its checksum", pictures, FITTED_FLIPS, 10, MAY,
        [](const GameFile& file, size_t seed) { return withFittedFlip(trueContent(file), seed); });
}

TEST(Files, OfAWrongSizeOrDepthAreSeen) {
    const std::vector<GameFile> pictures = allPictures();
    damageEach("wrong size or depth", pictures, otherPictures(), 8, ALWAYS,
               [](const GameFile&, size_t variant) { return otherPicture(variant); });
}

TEST(Files, OfAnImpossibleSizeStopTheGameOrAreNotSeen) {
    const std::vector<GameFile> pictures = allPictures();
    damageEach("impossible size", pictures, impossiblePictures(), 5, NEVER,
               [](const GameFile&, size_t variant) { return impossiblePicture(variant); });
}

TEST(Files, SoundsOfAWrongLengthOrFormatAreHeard) {
    damageEach("sound of a wrong length or format", namedFiles(true), otherSounds(), 5, ALWAYS,
               [](const GameFile&, size_t variant) { return otherSound(variant); });
}

TEST(Files, SoundsOfAFormatThatNobodyKnowsAreHeardOrNot) {
    damageEach("sound of an odd format", namedFiles(true), oddSounds(), 6, MAY,
               [](const GameFile&, size_t variant) { return oddSound(variant); });
}

TEST(Files, AFolderInTheirPlaceIsLikeNoFile) {
    replaceEach(
        "folder", 6,
        [](const std::string& path) {
            fs::remove(path);
            fs::create_directory(path);
        },
        [] {}, NEVER);
}

// A test that runs as root reads what it likes, so the game does it as nobody.
TEST(Files, UnreadableAreLikeNoFile) {
    replaceEach(
        "unreadable", 6, [](const std::string& path) { fs::permissions(path, fs::perms::none); },
        [] {
            if (geteuid() == 0) {
                setfsuid(NOBODY);
            }
        },
        NEVER);
}

// Whoever writes into a pipe is waited for, as with any other program.
class Writer {
public:
    Writer(const std::string& fifo, const std::string& content) : process(fork()) {
        while (process == 0) {
            const int descriptor = open(fifo.c_str(), O_WRONLY | O_CLOEXEC);
            signal(SIGPIPE, SIG_IGN);
            size_t written = 0;
            for (ssize_t count = 1; written < content.size() && count > 0;) {
                count = write(descriptor, content.data() + written, content.size() - written);
                written += static_cast<size_t>(std::max(ssize_t{0}, count));
            }
            close(descriptor);
        }
    }

    ~Writer() {
        kill(process, SIGKILL);
        waitpid(process, nullptr, 0);
    }

    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;

private:
    pid_t process;
};

void playThroughPipes(const char* name, bool withContent) {
    DataFolder data;
    const std::vector<GameFile> files = allFiles();
    Cases(name, files.size(), 5).each([&](size_t number) {
        const GameFile& file = files[number];
        SCOPED_TRACE(std::string(name) + ": " + file.path);
        data.remove(file);
        ASSERT_EQ(mkfifo(data.pathOf(file).c_str(), 0666), 0);
        const Writer writer(data.pathOf(file), withContent ? trueContent(file) : "");
        expectOutcome(start(startWith(data, file)), file,
                      withContent && file.role == SOUND ? MAY : NEVER);
        data.restore(file);
    });
}

TEST(Files, APipeWithoutContentIsLikeNoFile) {
    playThroughPipes("empty pipe", false);
}

// A picture's place in a file is sought, and a pipe has none; a sound is read from start to end.
TEST(Files, APipeWithAPictureIsLikeNoFile) {
    playThroughPipes("pipe", true);
}

// Of two files that the game asks for, the one that it asks for first is named.
const GameFile* firstAskedFor(const GameFile& one, const GameFile& other) {
    constexpr const char* ASKED_FOR[] = {
        "fonts/impact/fps_a.png",        "shots/item_shot01a.png", "fonts/impact/numbers_a.png",
        "fonts/impact/numbers_mini.png", "fonts/impact/cross.png", "fonts/impact/letters.png",
        "fonts/impact/letter_cursor.png"};
    for (const char* path : ASKED_FOR) {
        for (const GameFile* file : {&one, &other}) {
            if (file->path == path) {
                return file;
            }
        }
    }
    return nullptr;
}

void expectWithoutPair(const DataFolder& data, const GameFile& one, const GameFile& other) {
    Start how = startWith(data, one);
    how.damaged.clear();
    how.missing = {one.path, other.path};
    how.noSound = true;
    how.trueSounds = false;
    how.prepare = nullptr;
    const End end = start(how);
    EXPECT_EQ(end.signal, 0);
    EXPECT_EQ(end.error, "");
    if (const GameFile* stopping = firstAskedFor(one, other)) {
        expectStop(end, *stopping);
    } else {
        EXPECT_EQ(end.status, 0);
        EXPECT_EQ(end.output, wholeText(true));
        const bool seen = (one.role == PICTURE) || (other.role == PICTURE);
        EXPECT_EQ(end.report.nothingDrawn > 0, seen);
    }
    if (testing::Test::HasFailure()) {
        FAIL() << end.told();
    }
}

TEST(Files, AnyTwoMissingStopTheGameOrAreNotSeen) {
    DataFolder data;
    const std::vector<GameFile> files = allFiles();
    std::vector<std::pair<size_t, size_t>> pairs;
    for (size_t i = 0; i < files.size(); ++i) {
        for (size_t j = i + 1; j < files.size(); ++j) {
            pairs.emplace_back(i, j);
        }
    }
    EXPECT_EQ(pairs.size(), 84U * 83 / 2);
    Cases("pair", pairs.size(), 8).each([&](size_t number) {
        const GameFile& one = files[pairs[number].first];
        const GameFile& other = files[pairs[number].second];
        SCOPED_TRACE(one.path + " and " + other.path);
        data.remove(one);
        data.remove(other);
        expectWithoutPair(data, one, other);
        data.restore(one);
        data.restore(other);
    });
}

}  // namespace
