// SPDX-License-Identifier: MIT
// The command line of the pilots.
#include "pilot/balance.h"
#include "pilot/session.h"
#include "pilot/undrawn.h"

#include <CLI/CLI.hpp>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <unistd.h>

namespace {

constexpr Uint32 DEFAULT_FPS = 60;
constexpr Uint32 MOST_FPS = 1000;
constexpr Uint32 DEFAULT_GAMES = 1000;
constexpr Uint32 MOST_GAMES = 1000000;
constexpr Uint32 DEFAULT_PROCESSES = 2;
constexpr Uint32 MOST_PROCESSES = 64;

struct Options {
    std::string pilot;
    Uint32 fps = DEFAULT_FPS;
    Uint32 seed = 0;
    bool drawn = false;
    Uint32 games = DEFAULT_GAMES;
    Uint32 processes = DEFAULT_PROCESSES;
    std::string file;
    std::string data = KRAVOLTIX_DATA;
};

std::string pilotNames() {
    std::string text = "The pilot:";
    for (const pilot::Plan& plan : pilot::PLANS) {
        text.append("\n").append(plan.name).append(": ").append(plan.purpose);
    }
    return text;
}

void report(const pilot::Result& result) {
    std::fprintf(stderr, "%s after %u ms of play: %i enemies destroyed, energy %i, lasers %i of %i",
                 result.lost ? "lost" : "alive", result.playMs, result.destroyed, result.energy,
                 result.laserHits, result.lasers);
    std::fprintf(stderr, ", rockets %i of %i\n", result.rocketHits, result.rockets);
}

int play(const Options& options, std::ofstream& out) {
    out << "# SPDX-License-Identifier: MIT\n# Written by: kravoltix-pilot play " << options.pilot
        << " --fps " << options.fps << " --seed " << options.seed << '\n';
    if (!options.drawn) {
        pilot::stopDrawing();
    }
    pilot::Session session(options.fps, &out);
    const pilot::Plan& plan = *pilot::planOf(options.pilot);
    session.fixFrameTimes(plan.introFrameMs, plan.playFrameMs);
    report(session.play([&] { session.takeOver(plan, pilot::habitsOf(options.seed)); }));
    return EXIT_SUCCESS;
}

int run(const Options& options, bool isBalance) {
    std::ofstream out(options.file);
    if (!out) {
        std::fprintf(stderr, "kravoltix-pilot: cannot write %s\n", options.file.c_str());
        return EXIT_FAILURE;
    }
    if (chdir(options.data.c_str()) != 0) {
        std::perror(("kravoltix-pilot: " + options.data).c_str());
        return EXIT_FAILURE;
    }
    setenv("SDL_VIDEODRIVER", "dummy", 1);
    const bool isWell = isBalance ? pilot::balance(options.games, options.processes, out)
                                  : play(options, out) == EXIT_SUCCESS;
    out.flush();
    return isWell && out ? EXIT_SUCCESS : EXIT_FAILURE;
}

int start(int argc, char* argv[]) {
    Options options;
    CLI::App app("Pilots that play KRAVOLTIX by its keyboard.", "kravoltix-pilot");
    app.require_subcommand(1);
    app.add_option("--data", options.data, "The folder of the game's files")->capture_default_str();

    CLI::App* playing = app.add_subcommand("play", "Plays a game and writes it as a scenario");
    playing->add_option("PILOT", options.pilot, pilotNames())
        ->required()
        ->check([](const std::string& name) {
            return pilot::planOf(name) != nullptr ? "" : "There is no pilot \"" + name + "\"";
        });
    playing->add_option("FILE", options.file, "The scenario")->required();
    playing->add_option("--fps", options.fps, "Frames a second")
        ->check(CLI::Range(Uint32{1}, MOST_FPS))
        ->capture_default_str();
    playing->add_option("--seed", options.seed, "The pilot's habits; 0 is the steady hand")
        ->capture_default_str();
    playing->add_flag("--draw", options.drawn, "Draws each frame, as the game does");

    CLI::App* balancing = app.add_subcommand("balance", "Plays many games and writes the figures");
    balancing->add_option("--games", options.games, "Games of each pilot on each machine")
        ->check(CLI::Range(Uint32{1}, MOST_GAMES))
        ->capture_default_str();
    balancing->add_option("--processes", options.processes, "Games that are played at once")
        ->check(CLI::Range(Uint32{1}, MOST_PROCESSES))
        ->capture_default_str();
    balancing->add_option("--json", options.file, "The file for the figures")->required();

    CLI11_PARSE(app, argc, argv);
    return run(options, balancing->parsed());
}

}  // namespace

int main(int argc, char* argv[]) {
    // CLI11 throws when it is told of an option twice, which no user can bring about.
    try {
        return start(argc, argv);
    } catch (...) {
        std::fputs("kravoltix-pilot: the options could not be set up\n", stderr);
        return EXIT_FAILURE;
    }
}
