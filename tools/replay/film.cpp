// SPDX-License-Identifier: MIT
#include "replay/film.h"

#include "replay/compare.h"
#include "replay/encoder.h"
#include "replay/filmformats.h"
#include "replay/progress.h"
#include "replay/soundtrack.h"
#include "replay/summary.h"
#include "replay/unfinished.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <optional>
#include <unistd.h>

namespace replay {
namespace {

namespace fs = std::filesystem;

constexpr int SAME = 0;
constexpr int DIFFERENT = 1;

constexpr size_t PICTURE_BYTES = size_t{FILM_WIDTH_PX} * FILM_HEIGHT_PX * 4;
constexpr int PIPE_BYTES = 1 << 20;

constexpr double MS_PER_SECOND = 1000.0;

enum class Kind { MP4, GIF, PNG_FOLDER };

// Pictures of the whole game, counted from 0.
struct Range {
    Uint64 first;
    Uint64 end;
};

// Ctrl-C leaves no half film behind.
volatile std::sig_atomic_t isStopped = 0;

void stopWhenAsked() {
    struct sigaction action = {};
    action.sa_handler = [](int) { isStopped = 1; };
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        sigaction(number, &action, nullptr);
    }
    // Whoever takes pictures may go at any time, and a file may become too large for the machine's
    // rules; the write that finds out must come back.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
}

void goOnUnlessStopped() {
    if (isStopped != 0) {
        throw Trouble("stopped; the film is not kept");
    }
}

// What OUT asks for.

Kind kindOf(const std::string& out) {
    std::string ending = fs::path(out).extension().string();
    std::transform(ending.begin(), ending.end(), ending.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    if (fs::is_directory(out) || out.back() == '/') {
        return Kind::PNG_FOLDER;
    }
    if (ending == ".mp4") {
        return Kind::MP4;
    }
    if (ending == ".gif") {
        return Kind::GIF;
    }
    if (ending.empty() && !fs::exists(out)) {
        return Kind::PNG_FOLDER;
    }
    throw Trouble(out + ": no kind of film; name a file.mp4, a file.gif, or a folder/ for PNG "
                        "pictures");
}

unsigned int rateOf(const FilmOptions& options, Kind kind) {
    if (kind == Kind::MP4 && options.rate) {
        throw Trouble("an .mp4 has 60 pictures a second; --fps is for .gif and PNG pictures");
    }
    if (kind == Kind::GIF && options.rate.value_or(0) > MOST_GIF_FPS) {
        throw Trouble("a .gif has 50 pictures a second at most");
    }
    if (kind != Kind::GIF && options.scale != 1) {
        throw Trouble("--scale is for .gif only");
    }
    return options.rate.value_or(kind == Kind::GIF ? GIF_FPS : FILM_FPS);
}

// The game while it hands out its pictures.
class FilmedGame {
public:
    FilmedGame(const Place& place, GameRun run) {
        int ends[2];
        if (pipe2(ends, O_CLOEXEC) != 0) {
            throw Trouble(std::string("the film cannot be made: ") + std::strerror(errno));
        }
        fcntl(ends[0], F_SETPIPE_SZ, PIPE_BYTES);
        fcntl(ends[1], F_SETFD, 0);
        run.filmTo = ends[1];
        pictures = ends[0];
        process = startGame(place, run);
        close(ends[1]);
    }

    ~FilmedGame() {
        if (pictures >= 0) {
            close(pictures);
        }
        if (process > 0) {
            kill(process, SIGKILL);
            waitForGame(process);
        }
    }

    FilmedGame(const FilmedGame&) = delete;
    FilmedGame& operator=(const FilmedGame&) = delete;

    // False when there are no more.
    bool next(std::vector<char>& picture) const {
        for (size_t done = 0; done < picture.size();) {
            goOnUnlessStopped();
            const ssize_t count = read(pictures, picture.data() + done, picture.size() - done);
            if (count == 0 || (count < 0 && errno != EINTR)) {
                return false;
            }
            done += static_cast<size_t>(std::max<ssize_t>(count, 0));
        }
        return true;
    }

    // A game that has not got rid of its pictures ends now.
    GameResult wait() {
        close(pictures);
        pictures = -1;
        const int ended = process;
        process = -1;
        return waitForGame(ended);
    }

private:
    int process = -1;
    int pictures = -1;
};

// One film of one game.
class Film {
public:
    explicit Film(const FilmOptions& given)
        : options(given), kind(kindOf(given.out)), rate(rateOf(given, kind)) {}

    int make() {
        stopWhenAsked();
        needEncoder();
        recording = readFile(options.file, options.partly);
        Unfinished unfinished(options.out, kind == Kind::PNG_FOLDER, options.force);
        // What a scenario, or a recording without its end, does not tell is learnt from its game.
        const bool isWhole = recording.isRecording && recording.seen.ended;
        game = isWhole ? recording : playAgain(options.place, options.file);
        goOnUnlessStopped();
        findRange();
        const std::string again = folder.path + "/again.kvx";
        shoot(unfinished.path, again);
        const std::string remark = differenceFrom(readFile(again, false));
        unfinished.finish();
        report(remark);
        return remark.empty() || isOtherLibrary ? SAME : DIFFERENT;
    }

private:
    // Picture k shows the game k / rate seconds after its first frame; this is the first one that
    // does not lie before the time.
    Uint64 pictureAt(double ms) const {
        return static_cast<Uint64>(std::ceil(ms * rate / MS_PER_SECOND));
    }

    void findRange() {
        const double length = game.seen.clockMs - startMs();
        const double to = options.to ? *options.to * MS_PER_SECOND : length;
        range.first = pictureAt(std::min(options.from * MS_PER_SECOND, length));
        range.end = pictureAt(std::min(to, length));
        if (range.first >= range.end) {
            throw Trouble("nothing to film between --from and --to: the game lasts " +
                          lengthWords(static_cast<Uint32>(length)));
        }
    }

    Uint32 startMs() const { return game.given.startMs; }

    void shoot(const std::string& out, const std::string& recordTo) {
        const std::string palette = folder.path + "/palette.png";
        switch (kind) {
        case Kind::MP4:
            writeSound(folder.path + "/sound.wav");
            progress.emplace("Filming", range.end - range.first);
            run(mp4Arguments(folder.path + "/sound.wav", out), recordTo);
            break;
        case Kind::GIF:
            progress.emplace("Filming", 2 * (range.end - range.first));
            run(paletteArguments(rate, options.scale, palette), recordTo);
            run(gifArguments(rate, options.scale, palette, out), recordTo);
            break;
        case Kind::PNG_FOLDER:
            progress.emplace("Filming", range.end - range.first);
            run(pngArguments(rate, out), recordTo);
            break;
        }
        progress.reset();
    }

    // The sounds of the pictures' time.
    void writeSound(const std::string& path) const {
        const Wave all =
            mixSoundtrack(game.seen.calls, startMs(), game.seen.clockMs, options.place.data);
        const auto sampleOf = [&](Uint64 picture) {
            return static_cast<long>(std::min<Uint64>(picture * SOUND_HZ / rate, all.size()));
        };
        writeWav(path,
                 Wave(all.begin() + sampleOf(range.first), all.begin() + sampleOf(range.end)));
    }

    // Plays the game once and hands the pictures in range to the encoder. The game is played to its
    // end, so that its recording is whole.
    void run(const std::vector<std::string>& encoderArguments, const std::string& recordTo) {
        Encoder encoder(encoderArguments, folder.path + "/messages.txt");
        GameRun gameRun;
        gameRun.script = options.file;
        gameRun.arguments = game.given.arguments;
        gameRun.recordTo = recordTo;
        gameRun.filmRate = rate;
        FilmedGame filmed(options.place, gameRun);
        std::vector<char> picture(PICTURE_BYTES);
        for (Uint64 index = 0; filmed.next(picture); ++index) {
            if (index >= range.first && index < range.end) {
                if (!encoder.take(picture)) {
                    break;
                }
                progress->step();
            }
        }
        goOnUnlessStopped();
        encoder.finish();
        if (const GameResult result = filmed.wait(); result.signal != 0) {
            throw Trouble(options.file + ": the game crashed: " + strsignal(result.signal));
        }
    }

    // Why the film may not show the game that was recorded, or nothing.
    std::string differenceFrom(const front::Recording& filmed) {
        Channels channels;
        isOtherLibrary = recording.isRecording && recording.seen.libraries != filmed.seen.libraries;
        channels.pictures = !isOtherLibrary;
        Compared compared;
        const front::Recording& expected = recording.isRecording ? recording : game;
        if (const std::optional<Difference> found =
                firstDifference(expected, filmed, channels, compared)) {
            isOtherLibrary = false;
            return "not the game that was recorded: frame " + std::to_string(found->frame) +
                   " differs (" + nameOf(found->channel) + "): " + found->message;
        }
        return !isOtherLibrary ? ""
                               : "recorded with " + recording.seen.libraries + ", filmed with " +
                                     filmed.seen.libraries + ", which may round colours otherwise";
    }

    void report(const std::string& remark) const {
        const Uint64 count = range.end - range.first;
        std::printf("%s: %s, %llu pictures\n", options.out.c_str(),
                    lengthWords(static_cast<Uint32>(count * Uint64{1000} / rate)).c_str(),
                    static_cast<unsigned long long>(count));
        if (!remark.empty()) {
            std::fprintf(stderr, "%s: %s\n", options.file.c_str(), remark.c_str());
        }
    }

    const FilmOptions& options;
    const Kind kind;
    const unsigned int rate;
    const TemporaryFolder folder;
    front::Recording recording;  // what the file tells
    front::Recording game;       // what is to be seen and heard
    bool isOtherLibrary = false;
    Range range = {0, 0};
    std::optional<Progress> progress;
};

}  // namespace

int film(const FilmOptions& options) {
    return Film(options).make();
}

}  // namespace replay
