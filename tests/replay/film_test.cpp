// SPDX-License-Identifier: MIT
// kravoltix-replay video, as it is called from outside.
#include "replay/game.h"
#include "replay/soundtrack.h"
#include "support/program.h"
#include "support/surfaces.h"

#include <SDL_image.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <sys/wait.h>

namespace {

namespace fs = std::filesystem;

constexpr int FILMED = 0;
constexpr int DIFFERENT = 1;
constexpr int TROUBLE = 2;

constexpr double MOST_ONSET_MS = 10;
constexpr Sint16 AUDIBLE = 400;  // far above what the encoder adds to silence

// 30 frames of stars, and the second in which the game takes its leave. The last frame is shown 1590
// ms after the first; the film's last picture is the one at 1583.
constexpr char STARS[] = "frame 1 time 20\nframe 10 time 19\nframe 30 quit\n";
constexpr Uint32 STARS_MS = 9 * 20 + 21 * 19 + 1000;
constexpr int STARS_PICTURES = 95;

// The title in large steps, up to the sound of its key.
constexpr char KEY[] = "frame 1 time 100\nframe 50 down return\nframe 60 quit\n";

struct Output {
    int status = -1;
    std::string text;
};

Output outputOf(const std::string& command) {
    Output output;
    std::FILE* pipe = popen(command.c_str(), "r");
    char buffer[4096];
    for (size_t count; (count = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;) {
        output.text.append(buffer, count);
    }
    const int state = pclose(pipe);
    output.status = WIFEXITED(state) ? WEXITSTATUS(state) : -1;
    return output;
}

class Film : public testing::Test {
protected:
    Film() {
        unsetenv("SDL_VIDEODRIVER");
        unsetenv("SDL_AUDIODRIVER");
        writeFile(path("stars"), STARS);
    }

    std::string path(const std::string& file) const { return folder.path + "/" + file; }

    // Runs the tool in the test's folder, with what it says on both outputs. `before` goes in front
    // of it in the shell.
    Output run(const std::string& words, const std::string& before = "") const {
        return outputOf("cd " + folder.path + " && " + before + " " KRAVOLTIX_REPLAY " " + words +
                        " 2>&1");
    }

    void film(const std::string& words) const {
        const Output output = run("video " + words);
        ASSERT_EQ(output.status, FILMED) << output.text;
    }

    // A line for each picture, or for each packet of sound: its time and its hash.
    std::vector<std::string> framesOf(const std::string& file, char stream) const {
        const Output output =
            outputOf("ffmpeg -v error -i " + path(file) + " -map 0:" + stream + " -f framemd5 -");
        EXPECT_EQ(output.status, 0);
        std::vector<std::string> lines;
        std::istringstream in(output.text);
        for (std::string line; std::getline(in, line);) {
            if (line.front() != '#') {
                lines.push_back(line);
            }
        }
        return lines;
    }

    replay::Wave soundOf(const std::string& file) const {
        const std::string bytes = outputOf("ffmpeg -v error -i " + path(file) + " -f s16le -").text;
        replay::Wave wave(bytes.size() / sizeof(Sint16));
        std::copy_n(bytes.data(), wave.size() * sizeof(Sint16),
                    reinterpret_cast<char*>(wave.data()));
        return wave;
    }

    // The recording of the short game, as text.
    std::string recorded() const {
        replay::GameRun game;
        game.script = path("stars");
        game.recordTo = path("stars.kvx");
        replay::runGame({KRAVOLTIX_PROGRAM, KRAVOLTIX_PRELOAD, GAME_DATA}, game);
        return outputOf("zcat " + path("stars.kvx")).text;
    }

    // Nothing but these files, in the order of their names.
    std::string files() const {
        std::vector<std::string> names;
        for (const fs::directory_entry& entry : fs::directory_iterator(folder.path)) {
            names.push_back(entry.path().filename());
        }
        std::sort(names.begin(), names.end());
        std::string all;
        for (const std::string& name : names) {
            all += (all.empty() ? "" : " ") + name;
        }
        return all;
    }

    void expectTrouble(const Output& output, const std::string& message) const {
        EXPECT_EQ(output.status, TROUBLE) << output.text;
        EXPECT_NE(output.text.find(message), std::string::npos) << output.text;
        EXPECT_EQ(files().find(".part"), std::string::npos) << files();
    }

    const TemporaryFolder folder;
};

int differingPixels(const std::string& one, const std::string& other) {
    SDL_Surface* first = IMG_Load(one.c_str());
    SDL_Surface* second = IMG_Load(other.c_str());
    if (first == nullptr || second == nullptr) {
        return -1;
    }
    int count = 0;
    for (int y = 0; y < first->h; ++y) {
        for (int x = 0; x < first->w; ++x) {
            count += pixelAt(first, x, y) == pixelAt(second, x, y) ? 0 : 1;
        }
    }
    return count;
}

TEST_F(Film, HasAPictureForEachSixtiethOfASecondThatTheGameLasts) {
    film("stars stars.mp4");
    const size_t pictures = framesOf("stars.mp4", 'v').size();
    EXPECT_EQ(pictures, static_cast<size_t>(STARS_PICTURES));
    // One for each sixtieth that has begun.
    EXPECT_EQ(pictures, (STARS_MS * 60 + 999) / 1000);
}

TEST_F(Film, IsTheSameBytesInEveryRun) {
    film("stars one.mp4 --from 0.1 --to 0.8");
    recorded();
    film("stars.kvx other.mp4 --from 0.1 --to 0.8");
    EXPECT_EQ(framesOf("one.mp4", 'v'), framesOf("other.mp4", 'v'));
    EXPECT_EQ(framesOf("one.mp4", 'a'), framesOf("other.mp4", 'a'));
    EXPECT_TRUE(contentOf(path("one.mp4")) == contentOf(path("other.mp4")));
    film("stars.kvx one.gif --from 0.1 --to 0.3");
    film("stars.kvx other.gif --from 0.1 --to 0.3");
    EXPECT_TRUE(contentOf(path("one.gif")) == contentOf(path("other.gif")));
}

TEST_F(Film, ShowsTheVeryPictureThatTheGameShowsThen) {
    // Frame 11 is shown from 199 to 218 ms, frame 10 from 180.
    writeFile(path("stars"), "frame 1 time 20\nframe 10 time 19\nframe 11 picture " +
                                 path("kept.bmp") + "\nframe 30 quit\n");
    film("stars pictures/ --to 0.25");
    EXPECT_EQ(differingPixels(path("pictures/frame-000013.png"), path("kept.bmp")), 0);
    EXPECT_EQ(differingPixels(path("pictures/frame-000014.png"), path("kept.bmp")), 0);
    EXPECT_GT(differingPixels(path("pictures/frame-000012.png"), path("kept.bmp")), 0);
    EXPECT_GT(differingPixels(path("pictures/frame-000015.png"), path("kept.bmp")), 0);
}

TEST_F(Film, FillsAFolderWithPicturesOneByOne) {
    film("stars pictures --fps 10");
    const std::string all = outputOf("ls " + path("pictures")).text;
    std::string expected;
    for (int i = 1; i <= 16; ++i) {
        expected += "frame-0000" + std::to_string(i / 10) + std::to_string(i % 10) + ".png\n";
    }
    EXPECT_EQ(all, expected);
}

TEST_F(Film, APartHasThePicturesOfTheWholeFilm) {
    film("stars whole/");
    film("stars part/ --from 0.2 --to 0.3");
    for (int i = 1; i <= 6; ++i) {
        const std::string name = "/frame-0000";
        const std::string digits[] = {"0" + std::to_string(i), std::to_string(i + 12)};
        EXPECT_EQ(contentOf(path("part") + name + digits[0] + ".png"),
                  contentOf(path("whole") + name + digits[1] + ".png"))
            << i;
    }
    EXPECT_FALSE(fs::exists(path("part/frame-000007.png")));
}

TEST_F(Film, AGifHasItsOwnSizeAndPicturesASecond) {
    film("stars small.gif --fps 20 --scale 0.5 --to 1");
    const Output output = outputOf("ffprobe -v error -count_frames -show_entries "
                                   "stream=width,height,nb_read_frames,r_frame_rate -of csv=p=0 " +
                                   path("small.gif"));
    EXPECT_EQ(output.text, "320,240,20/1,20\n");
}

TEST_F(Film, ASoundIsHeardWithinTenMillisecondsOfItsCall) {
    writeFile(path("key"), KEY);
    film("key key.mp4");
    const replay::Place place = {KRAVOLTIX_PROGRAM, KRAVOLTIX_PRELOAD, GAME_DATA};
    const front::Recording game = replay::playAgain(place, path("key"));
    const auto call = std::find_if(
        game.seen.calls.begin(), game.seen.calls.end(), [](const front::LibraryCall& each) {
            return each.call == "Mix_PlayChannelTimed(1, sounds/keyboard.wav, 0, -1)";
        });
    ASSERT_NE(call, game.seen.calls.end());
    const replay::Wave mixed =
        replay::mixSoundtrack(game.seen.calls, game.given.startMs, game.seen.clockMs, GAME_DATA);
    const replay::Wave heard = soundOf("key.mp4");
    const auto onset = [](const replay::Wave& wave) {
        const auto first = std::find_if(wave.begin(), wave.end(), [](Sint16 sample) {
            return sample >= AUDIBLE || sample <= -AUDIBLE;
        });
        return static_cast<double>(first - wave.begin()) * 1000 / replay::SOUND_HZ;
    };
    EXPECT_NEAR(onset(heard), call->clockMs - game.given.startMs, MOST_ONSET_MS);
    EXPECT_NEAR(onset(mixed), call->clockMs - game.given.startMs, MOST_ONSET_MS);
    EXPECT_NEAR(static_cast<double>(heard.size()), static_cast<double>(mixed.size()),
                replay::SOUND_HZ / 20.0);
}

TEST_F(Film, APartHasTheSoundsOfItsTime) {
    writeFile(path("key"), KEY);
    film("key long.mp4 --from 4 --to 5.6");
    film("key part.mp4 --from 4.5 --to 5.6");
    const replay::Wave whole = soundOf("long.mp4");
    const replay::Wave part = soundOf("part.mp4");
    const size_t skipped = replay::SOUND_HZ / 2;
    ASSERT_GT(whole.size(), skipped + replay::SOUND_HZ);
    const auto energy = [](const replay::Wave& wave, size_t from) {
        double sum = 0;
        for (size_t i = from; i < from + replay::SOUND_HZ && i < wave.size(); ++i) {
            sum += wave[i] * wave[i];
        }
        return sum;
    };
    EXPECT_GT(energy(part, 0), 1e6);
    EXPECT_NEAR(energy(part, 0) / energy(whole, skipped), 1, 0.05);
}

TEST_F(Film, SaysFewLinesWhereNobodyWatches) {
    const Output output = run("video stars stars.mp4");
    EXPECT_LE(std::count(output.text.begin(), output.text.end(), '\n'), 5);
    EXPECT_NE(output.text.find("stars.mp4: 0:01.583, 95 pictures\n"), std::string::npos)
        << output.text;
}

TEST_F(Film, IsTheSameWithoutStandardInput) {
    film("stars open.mp4 --to 0.1");
    film("stars closed.mp4 --to 0.1 <&-");
    EXPECT_TRUE(contentOf(path("closed.mp4")) == contentOf(path("open.mp4")));
}

TEST_F(Film, SaysThatTheGameIsNotTheOneThatWasRecorded) {
    std::string text = recorded();
    const size_t check = text.find("pictures 1 ");
    ASSERT_NE(check, std::string::npos);
    const size_t digit = text.find(' ', check + 11) + 1;
    text[digit] = text[digit] == '0' ? '1' : '0';
    writeFile(path("other.kvx"), text);
    const Output output = run("video other.kvx pictures/ --to 0.1");
    EXPECT_EQ(output.status, DIFFERENT);
    EXPECT_NE(output.text.find("not the game that was recorded: frame 1 differs (picture)"),
              std::string::npos)
        << output.text;
}

TEST_F(Film, SaysThatAnotherLibraryDrawsIt) {
    std::string text = recorded();
    const size_t library = text.find("library SDL ");
    ASSERT_NE(library, std::string::npos);
    text.insert(library + 12, "0.");
    writeFile(path("other.kvx"), text);
    const Output output = run("video other.kvx pictures/ --to 0.1");
    EXPECT_EQ(output.status, FILMED);
    EXPECT_NE(output.text.find("recorded with SDL 0."), std::string::npos) << output.text;
}

TEST_F(Film, ARecordingThatWasCutOffIsFilmedAsFarAsItGoes) {
    const std::string text = recorded();
    writeFile(path("cut.kvx"), text.substr(0, text.find("\nend ") + 1));
    expectTrouble(run("video cut.kvx cut.mp4"), "--partial");
    film("cut.kvx cut.mp4 --partial");
    EXPECT_EQ(framesOf("cut.mp4", 'v').size(), static_cast<size_t>(STARS_PICTURES));
}

TEST_F(Film, WithoutTheEncoderNothingIsDone) {
    expectTrouble(run("video stars stars.mp4", "PATH=/nowhere"), "install the package ffmpeg");
    EXPECT_EQ(files(), "stars");
}

TEST_F(Film, TellsWhatIsWrongWithTheCommand) {
    struct Wrong {
        const char* words;
        const char* message;
    };
    // clang-format off
    constexpr Wrong WRONG[] = {
        {"stars stars.avi",               "stars.avi: no kind of film"},
        {"stars stars",                   "stars: no kind of film"},
        {"missing stars.mp4",             "missing: cannot be read"},
        {"stars nowhere/stars.mp4",       "nowhere/stars.mp4: cannot be written: No such file"},
        {"stars nowhere/pictures/",       "nowhere/pictures: cannot be written: No such file"},
        {"stars stars.mp4 --fps 30",      "--fps is for .gif and PNG"},
        {"stars stars.mp4 --scale 0.5",   "--scale is for .gif only"},
        {"stars stars.gif --fps 60",      "a .gif has 50 pictures a second at most"},
        {"stars stars.mp4 --from 2",      "the game lasts 0:01.579"},
        {"stars stars.mp4 --layer none.so", "none.so: cannot be read (--layer)"},
        {"stars stars.mp4 --from 1 --to 1", "nothing to film between --from and --to"},
    };
    // clang-format on
    for (const Wrong& wrong : WRONG) {
        SCOPED_TRACE(wrong.words);
        expectTrouble(run("video " + std::string(wrong.words)), wrong.message);
        EXPECT_EQ(files(), "stars");
    }
}

TEST_F(Film, WritesOverNothingUnlessItIsForced) {
    writeFile(path("stars.mp4"), "precious");
    expectTrouble(run("video stars stars.mp4"), "stars.mp4: is there already");
    EXPECT_TRUE(contentOf(path("stars.mp4")) == "precious");
    film("stars stars.mp4 --force --to 0.1");
    EXPECT_EQ(framesOf("stars.mp4", 'v').size(), 6U);

    fs::create_directory(path("pictures"));
    writeFile(path("pictures/notes"), "precious");
    writeFile(path("pictures/frame-000009.png"), "of an earlier film");
    expectTrouble(run("video stars pictures"), "pictures: is there already");
    film("stars pictures --force --to 0.05");
    EXPECT_EQ(outputOf("ls " + path("pictures")).text,
              "frame-000001.png\nframe-000002.png\nframe-000003.png\nnotes\n");
}

TEST_F(Film, ADiskThatIsFullLeavesNoHalfFilm) {
    writeFile(path("stars.gif"), "precious");
    // No file may have more than 20 blocks of 512 bytes.
    expectTrouble(run("video stars stars.gif --force", "ulimit -f 20;"), "ffmpeg has failed: ");
    EXPECT_TRUE(contentOf(path("stars.gif")) == "precious");
}

TEST_F(Film, StoppingItLeavesNoHalfFilm) {
    const Output output = outputOf("cd " + folder.path +
                                   " && mkfifo told && { " KRAVOLTIX_REPLAY " video " PLAYTHROUGHS
                                   "/won.scenario won.mp4 >told 2>&1 & }; tool=$!; "
                                   "{ read -r progress && ls won.mp4.part && kill -TERM $tool; "
                                   "cat; } <told; rm told; wait $tool");
    EXPECT_EQ(output.text.find("won.mp4.part\n"), 0U) << output.text;
    expectTrouble(output, "stopped; the film is not kept");
    EXPECT_EQ(files(), "stars");
}

TEST_F(Film, TheMomentsOfAGameBecomePictures) {
    const Output output = run("moments " PLAYTHROUGHS "/won.scenario moments");
    EXPECT_EQ(output.status, FILMED) << output.text;
    EXPECT_EQ(std::count(output.text.begin(), output.text.end(), '\n'), 6);
    unsigned int frame = 0, second = 0;
    EXPECT_EQ(std::sscanf(output.text.c_str(), "moments/title.png: frame %u, second %u.", &frame,
                          &second),
              2)
        << output.text;
    EXPECT_GT(frame, second) << output.text;
    EXPECT_EQ(outputOf("ls " + path("moments")).text,
              "countdown.png\nexplosion.png\nformation.png\nlaser-hit.png\ntitle.png\nwon.png\n");
    EXPECT_GT(differingPixels(path("moments/title.png"), path("moments/won.png")), 1000);
    expectTrouble(run("moments " PLAYTHROUGHS "/won.scenario moments"),
                  "moments/title.png: is there already");
}

TEST_F(Film, AGameWithoutMomentsIsTold) {
    expectTrouble(run("moments stars moments"), "stars: the game has none of the moments");
    EXPECT_EQ(files(), "stars");
}

}  // namespace
