// SPDX-License-Identifier: MIT
// kravoltix-replay: records, watches, proves, films and describes games.
#include "front/session.h"
#include "front/streams.h"
#include "replay/film.h"
#include "replay/game.h"
#include "replay/moments.h"
#include "replay/summary.h"
#include "replay/verify.h"

#include <CLI/CLI.hpp>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <thread>

namespace {

namespace fs = std::filesystem;

constexpr int STATUS_TROUBLE = 2;
constexpr double MOST_SECONDS = 360000;  // of a game: 100 hours

struct RecordOptions {
    std::string file;
    std::vector<std::string> arguments;
    bool force = false;
};

struct WatchOptions {
    std::string file;
    double speed = 1;
    bool partly = false;
};

struct InfoOptions {
    std::string file;
};

void printSummary(const front::Recording& recording) {
    const replay::Summary summary = replay::summaryOf(recording);
    const double seconds = summary.lengthMs / 1000.0;
    std::printf("length     %s\n", replay::lengthWords(summary.lengthMs).c_str());
    std::printf("play       %s\n", replay::lengthWords(summary.playMs).c_str());
    std::printf("frames     %u (%.1f a second)\n", summary.frames,
                seconds > 0 ? summary.frames / seconds : 0.0);
    std::printf("result     %s\n", replay::wordFor(summary.outcome));
    std::printf("destroyed  %u of 7 enemies\n", summary.enemiesDestroyed);
    std::printf("lasers     %u fired, %u hits\n", summary.lasersFired, summary.laserHits);
    std::printf("rockets    %u fired, %u hits\n", summary.rocketsFired, summary.rocketHits);
    std::printf("energy     %u\n", summary.energy);
    std::string arguments;
    for (const std::string& argument : recording.given.arguments) {
        arguments += (arguments.empty() ? "" : " ") + argument;
    }
    std::printf("options    %s\n", arguments.empty() ? "none" : arguments.c_str());
    std::printf("library    %s\n", recording.seen.libraries.c_str());
}

int record(const replay::Place& place, const RecordOptions& options) {
    if (!options.force && fs::exists(options.file)) {
        throw replay::Trouble(options.file + ": there is such a file already; name another, or "
                                             "say --force to write over it");
    }
    replay::GameRun run;
    run.arguments = options.arguments;
    run.recordTo = options.file;
    run.seen = true;
    run.quiet = false;
    const replay::GameResult result = replay::runGame(place, run);
    front::Recording recording = replay::readFile(options.file, true);
    std::printf("\nRecorded in %s:\n", options.file.c_str());
    printSummary(recording);
    if (result.signal != 0) {
        std::printf("The game was ended by a signal: %s. What was recorded until then is kept.\n",
                    strsignal(result.signal));
    }
    return result.signal != 0 ? STATUS_TROUBLE : result.status;
}

int watch(const replay::Place& place, const WatchOptions& options) {
    const front::Recording recording = replay::readFile(options.file, options.partly);
    replay::GameRun run;
    run.script = options.file;
    run.arguments = recording.given.arguments;
    run.seen = true;
    run.quiet = true;
    run.speed = options.speed;
    const replay::GameResult result = replay::runGame(place, run);
    return result.signal != 0 ? STATUS_TROUBLE : result.status;
}

int info(const replay::Place& place, const InfoOptions& options) {
    front::Recording recording = replay::readFile(options.file, true);
    if (!recording.isRecording) {
        std::printf("%s: a scenario%s%s\n", options.file.c_str(),
                    recording.given.what.empty() ? "" : ": ", recording.given.what.c_str());
        recording = replay::playAgain(place, options.file);
    } else {
        std::printf("%s: a recording, format %u\n", options.file.c_str(), front::RECORDING_FORMAT);
    }
    printSummary(recording);
    if (!recording.cutOff.empty()) {
        std::fprintf(stderr, "%s\n", recording.cutOff.c_str());
        return 1;
    }
    return 0;
}

void addPlace(CLI::App& verb, replay::Place& place) {
    verb.add_option("--game", place.program, "The game's program, if not the one beside this tool");
    verb.add_option("--layer", place.preload, "The layer libkravoltix_preload.so, likewise");
    verb.add_option("--data", place.data, "The folder with the game's pictures and sounds");
}

void addFilmOptions(CLI::App& verb, replay::FilmOptions& options) {
    verb.add_option("FILE", options.file, "The game")->required();
    verb.add_option("OUT", options.out, "A file.mp4 or file.gif, or a folder/ for PNG pictures")
        ->required();
    verb.add_option("--from", options.from, "Seconds of the game to leave out at its beginning")
        ->check(CLI::Range(0.0, MOST_SECONDS));
    verb.add_option("--to", options.to, "The second of the game to stop at")
        ->check(CLI::Range(0.0, MOST_SECONDS));
    verb.add_option("--fps", options.rate,
                    "Pictures a second, of a .gif (25) or of PNG pictures (60)")
        ->check(CLI::Range(1, 240));
    verb.add_option("--scale", options.scale, "Size of a .gif, 1 as the game")
        ->check(CLI::Range(0.05, 4.0));
    verb.add_flag("--partial", options.partly, "Take a file that was cut off");
    verb.add_flag("--force", options.force, "Write over what is there already");
}

int run(int argc, char* argv[]) {
    CLI::App app("Records, watches, proves, films and describes games of KRAVOLTIX.\n"
                 "FILE is a recording, or a scenario: a text file with keys and frame times.",
                 "kravoltix-replay");
    app.set_version_flag("--version", "kravoltix-replay " KRAVOLTIX_VERSION);
    app.require_subcommand(1);
    replay::Place place;

    RecordOptions recordOptions;
    CLI::App* recordVerb = app.add_subcommand("record", "Play in the window; all is written down");
    recordVerb->add_option("FILE", recordOptions.file, "The recording to be made")->required();
    recordVerb->add_option("OPTIONS", recordOptions.arguments, "The game's own options, after --");
    recordVerb->add_flag("--force", recordOptions.force, "Write over a file that is there already");

    WatchOptions watchOptions;
    CLI::App* watchVerb = app.add_subcommand("play", "Watch a game in a window; Escape leaves");
    watchVerb->add_option("FILE", watchOptions.file, "The game")->required();
    watchVerb->add_option("--speed", watchOptions.speed, "So many times as fast as it was played")
        ->check(CLI::Range(0.01, 100.0));
    watchVerb->add_flag("--partial", watchOptions.partly, "Take a file that was cut off");

    replay::VerifyOptions verifyOptions;
    verifyOptions.jobs = std::max(1U, std::thread::hardware_concurrency());
    CLI::App* verifyVerb = app.add_subcommand(
        "verify", "Play games again, unseen and at full speed, and compare all that comes");
    verifyVerb->add_option("FILES", verifyOptions.files, "The games")->required();
    verifyVerb->add_option("--expected-game", verifyOptions.expectedProgram,
                           "Another build of the game: plays the picture that was expected");
    verifyVerb
        ->add_option("--pictures", verifyOptions.pictureFolder,
                     "Folder for pictures of a difference, if not beside the file")
        ->check(CLI::ExistingDirectory);
    verifyVerb->add_flag("--partial", verifyOptions.partly, "Take files that were cut off");
    verifyVerb->add_flag("--any-library", verifyOptions.anyLibrary,
                         "Leave the pictures out where another SDL made them");
    verifyVerb->add_option("--jobs", verifyOptions.jobs, "Games at once")->check(CLI::Range(1, 64));

    replay::FilmOptions filmOptions;
    CLI::App* filmVerb = app.add_subcommand("video", "Film a game, unseen and with its sounds");
    addFilmOptions(*filmVerb, filmOptions);

    replay::MomentsOptions momentsOptions;
    CLI::App* momentsVerb =
        app.add_subcommand("moments", "Keep the pictures of a game's telling moments");
    momentsVerb->add_option("FILE", momentsOptions.file, "The game")->required();
    momentsVerb->add_option("FOLDER", momentsOptions.folder, "For the pictures")->required();
    momentsVerb->add_flag("--force", momentsOptions.force, "Write over pictures that are there");

    InfoOptions infoOptions;
    CLI::App* infoVerb = app.add_subcommand("info", "Tell a game's length, result and figures");
    infoVerb->add_option("FILE", infoOptions.file, "The game")->required();

    for (CLI::App* verb : {recordVerb, watchVerb, verifyVerb, filmVerb, momentsVerb, infoVerb}) {
        addPlace(*verb, place);
    }
    CLI11_PARSE(app, argc, argv);
    try {
        replay::complete(place);
        if (*recordVerb) {
            return record(place, recordOptions);
        }
        if (*watchVerb) {
            return watch(place, watchOptions);
        }
        if (*verifyVerb) {
            verifyOptions.place = place;
            return replay::verify(verifyOptions);
        }
        if (*filmVerb) {
            filmOptions.place = place;
            return replay::film(filmOptions);
        }
        if (*momentsVerb) {
            momentsOptions.place = place;
            return replay::keepMoments(momentsOptions);
        }
        return info(place, infoOptions);
    } catch (const std::exception& trouble) {
        std::fprintf(stderr, "kravoltix-replay: %s\n", trouble.what());
        return STATUS_TROUBLE;
    }
}

}  // namespace

int main(int argc, char* argv[]) {
    front::fillClosedStreams();
    // CLI11 throws when it is told of an option twice, which no user can bring about.
    try {
        return run(argc, argv);
    } catch (...) {
        std::fputs("kravoltix-replay: the options could not be set up\n", stderr);
        return STATUS_TROUBLE;
    }
}
