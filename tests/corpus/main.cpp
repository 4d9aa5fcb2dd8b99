// SPDX-License-Identifier: MIT
// kravoltix-corpus: plays games that are made of seeds, and compares what comes with a table.
#include "corpus/seeded.h"
#include "corpus/table.h"
#include "front/streams.h"
#include "replay/compare.h"
#include "replay/game.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <functional>
#include <mutex>
#include <sstream>
#include <thread>

namespace {

using corpus::Column;
using corpus::Row;

constexpr int SAME = 0;
constexpr int DIFFERENT = 1;
constexpr int NOT_COMPARED = 2;

constexpr Uint32 SEEDS = 1200;  // of a table that is written anew
constexpr size_t EXAMPLES = 5;  // seeds named for each channel
constexpr int MOST_GAMES = 1000000;
constexpr std::chrono::seconds PROGRESS_EVERY(10);

struct Options {
    replay::Place place;
    std::string expectedProgram;
    std::string table = CORPUS_TABLE;
    Uint32 from = 0;
    size_t count = 0;   // 0: all
    size_t sample = 0;  // so many, spread over the table; 0: all
    bool first = false;
    Uint32 seeds = SEEDS;  // to write
    unsigned int jobs = 1;
};

struct Played {
    Row row = {};
    std::string trouble;  // empty when the game was played
};

front::Recording playSeed(const replay::Place& place, Uint32 seed, const std::string& scenario) {
    const replay::TemporaryFolder folder;
    const std::string file = folder.path + "/seed-" + std::to_string(seed) + ".scenario";
    std::ofstream(file) << scenario;
    return replay::playAgain(place, file);
}

Played play(const replay::Place& place, Uint32 seed) {
    try {
        const std::string scenario = corpus::scenarioOf(seed);
        return {corpus::rowOf(seed, scenario, playSeed(place, seed, scenario)), ""};
    } catch (const replay::Trouble& trouble) {
        return {{}, trouble.what()};
    }
}

// Tells now and then how far it has come.
class Progress {
public:
    explicit Progress(size_t count) : total(count) {}

    void tell(size_t done) {
        const auto now = std::chrono::steady_clock::now();
        if (now - last < PROGRESS_EVERY || done == 0) {
            return;
        }
        last = now;
        const std::chrono::duration<double> passed = now - start;
        const double left =
            passed.count() / static_cast<double>(done) * static_cast<double>(total - done);
        std::fprintf(stderr, "%zu of %zu games, %.0f s left\n", done, total, left);
    }

private:
    size_t total;
    std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
    std::chrono::steady_clock::time_point last = start;
};

// Plays each seed's game, several at once, and hands them over in the order of the seeds. Ends when
// the taker wants no more.
void playAll(const Options& options, const std::vector<Uint32>& seeds,
             const std::function<bool(size_t, const Played&)>& take) {
    std::vector<Played> games(seeds.size());
    std::vector<bool> done(seeds.size());
    std::atomic<size_t> next = 0;
    size_t taken = 0;
    Progress progress(seeds.size());
    std::mutex taking;
    const auto work = [&] {
        for (size_t i = next++; i < seeds.size(); i = next++) {
            Played game = play(options.place, seeds[i]);
            const std::lock_guard<std::mutex> lock(taking);
            games[i] = std::move(game);
            done[i] = true;
            for (; taken < done.size() && done[taken]; ++taken) {
                if (!take(taken, games[taken])) {
                    next = seeds.size();
                    taken = seeds.size();
                    return;
                }
            }
            progress.tell(taken);
        }
    };
    std::vector<std::thread> workers;
    for (unsigned int i = 1; i < std::min<size_t>(options.jobs, seeds.size()); ++i) {
        workers.emplace_back(work);
    }
    work();
    for (std::thread& worker : workers) {
        worker.join();
    }
}

std::string contentOf(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        throw replay::Trouble(path + ": cannot be read");
    }
    std::ostringstream content;
    content << in.rdbuf();
    return content.str();
}

std::vector<Row> chosenRows(const Options& options) {
    std::vector<Row> rows;
    for (const Row& row : corpus::readTable(contentOf(options.table), options.table)) {
        const bool isWanted = row.seed >= options.from;
        if (isWanted && (options.count == 0 || rows.size() < options.count)) {
            rows.push_back(row);
        }
    }
    if (options.sample == 0 || options.sample >= rows.size()) {
        return rows;
    }
    std::vector<Row> sample;
    for (size_t i = 0; i < options.sample; ++i) {
        sample.push_back(rows[i * rows.size() / options.sample]);
    }
    return sample;
}

// Where the game parts from that of another build.
std::string firstDifference(const Options& options, Uint32 seed) {
    replay::Place other = options.place;
    other.program = options.expectedProgram;
    const std::string scenario = corpus::scenarioOf(seed);
    replay::Compared compared;
    const std::optional<replay::Difference> found = replay::firstDifference(
        playSeed(other, seed, scenario), playSeed(options.place, seed, scenario), {}, compared);
    if (!found) {
        return "\n  the same game as that of " + options.expectedProgram;
    }
    return "\n  frame " + std::to_string(found->frame) + " (" + nameOf(found->channel) +
           "): " + found->message;
}

std::vector<Uint32> seedsOf(const std::vector<Row>& rows) {
    std::vector<Uint32> seeds;
    seeds.reserve(rows.size());
    for (const Row& row : rows) {
        seeds.push_back(row.seed);
    }
    return seeds;
}

std::string figures(const std::vector<Row>& rows) {
    unsigned long long frames = 0;
    for (const Row& row : rows) {
        frames += row.frames;
    }
    return std::to_string(rows.size()) + " games, " + std::to_string(frames) + " frames";
}

int check(const Options& options) {
    const std::vector<Row> expected = chosenRows(options);
    std::vector<Row> same;
    size_t different = 0;
    size_t troubles = 0;
    playAll(options, seedsOf(expected), [&](size_t i, const Played& game) {
        const std::string name = "seed " + std::to_string(expected[i].seed);
        const std::string what =
            game.trouble.empty() ? corpus::difference(expected[i], game.row) : game.trouble;
        if (what.empty()) {
            same.push_back(game.row);
            return true;
        }
        ++(game.trouble.empty() ? different : troubles);
        std::string report = game.trouble.empty() ? name + " differs: " + what : name + ": " + what;
        if (game.trouble.empty() && !options.expectedProgram.empty()) {
            report += firstDifference(options, expected[i].seed);
        }
        std::puts(report.c_str());
        std::fflush(stdout);
        return !options.first;
    });
    if (different > 0 || troubles > 0) {
        std::printf("%zu of %zu games differ, %zu could not be played. "
                    "See one: kravoltix-corpus show SEED >GAME && kravoltix-replay play GAME\n",
                    different, expected.size(), troubles);
        return troubles > 0 ? NOT_COMPARED : DIFFERENT;
    }
    if (same.empty() || same.size() != expected.size()) {
        std::puts("No game was checked, so nothing is proven.");
        return NOT_COMPARED;
    }
    std::printf("The same: %s, three digests each.\n", figures(same).c_str());
    return SAME;
}

// The table so far; none when there is no file yet.
std::vector<Row> rowsBefore(const std::string& table) {
    return std::ifstream(table).good() ? corpus::readTable(contentOf(table), table)
                                       : std::vector<Row>();
}

void tellChanges(const std::vector<Row>& before, const std::vector<Row>& now) {
    size_t changes = 0;
    for (const Column column : corpus::COLUMNS) {
        size_t count = 0;
        std::string examples;
        for (const Row& row : now) {
            const auto old = std::find_if(before.begin(), before.end(),
                                          [&](const Row& other) { return other.seed == row.seed; });
            if (old != before.end() && !corpus::isSame(column, *old, row) && ++count <= EXAMPLES) {
                examples += (examples.empty() ? "seeds " : ", ") + std::to_string(row.seed);
            }
        }
        std::printf("%-12s changed in %zu games%s%s\n", nameOf(column), count,
                    count == 0 ? "" : ": ", (examples + (count > EXAMPLES ? ", ..." : "")).c_str());
        changes += count;
    }
    if (changes > 0) {
        std::puts(
            "\nPlayers will see or hear each of these changes, and from now on the table "
            "calls them right.\nLook at some before you commit it: kravoltix-corpus show SEED "
            ">GAME, kravoltix-replay play GAME;\nwith an older build, kravoltix-corpus check "
            "--expected-game OLD tells the first frame that differs.");
    }
}

int write(const Options& options) {
    const std::vector<Row> before = rowsBefore(options.table);
    std::vector<Uint32> seeds;
    for (Uint32 seed = 1; seed <= options.seeds; ++seed) {
        seeds.push_back(seed);
    }
    std::vector<Row> now;
    size_t troubles = 0;
    playAll(options, seeds, [&](size_t, const Played& game) {
        if (game.trouble.empty()) {
            now.push_back(game.row);
        } else {
            std::puts(game.trouble.c_str());
            ++troubles;
        }
        return true;
    });
    if (troubles > 0) {
        throw replay::Trouble("the table was not written: " + std::to_string(troubles) +
                              " games could not be played");
    }
    std::ofstream out(options.table, std::ios::binary);
    out << corpus::tableText(now);
    out.close();
    if (!out) {
        throw replay::Trouble(options.table + ": cannot be written");
    }
    std::printf("%s: %s\n", options.table.c_str(), figures(now).c_str());
    tellChanges(before, now);
    return SAME;
}

void addPlace(CLI::App& verb, Options& options) {
    verb.add_option("--game", options.place.program, "The game's program, if not the built one");
    verb.add_option("--layer", options.place.preload,
                    "The layer libkravoltix_preload.so, likewise");
    verb.add_option("--data", options.place.data, "The pictures and sounds, if not the fixtures");
    verb.add_option("--table", options.table, "The table, if not that of the source tree");
    verb.add_option("--jobs", options.jobs, "Games at once")->check(CLI::Range(1, 64));
}

int run(int argc, char* argv[]) {
    CLI::App app("Plays games that are made of seeds, and compares what comes with a table.",
                 "kravoltix-corpus");
    app.require_subcommand(1);
    Options options;
    options.place.data = CORPUS_FIXTURES;
    options.jobs = std::max(1U, std::thread::hardware_concurrency());

    CLI::App* checkVerb = app.add_subcommand("check", "Play the games and compare them");
    addPlace(*checkVerb, options);
    checkVerb->add_option("--from", options.from, "The first seed");
    checkVerb->add_option("--count", options.count, "So many seeds")
        ->check(CLI::Range(1, MOST_GAMES));
    checkVerb->add_option("--sample", options.sample, "Of these so many, spread over all of them")
        ->check(CLI::Range(1, MOST_GAMES));
    checkVerb->add_flag("--first", options.first, "End with the first difference");
    checkVerb->add_option("--expected-game", options.expectedProgram,
                          "An older build: tells the first frame that differs from its game");

    CLI::App* writeVerb = app.add_subcommand("write", "Play the games and write their table anew");
    addPlace(*writeVerb, options);
    writeVerb->add_option("--seeds", options.seeds, "So many seeds, from 1")
        ->check(CLI::Range(1, MOST_GAMES));

    Uint32 seed = 0;
    CLI::App* showVerb = app.add_subcommand("show", "Print a seed's game, a scenario");
    showVerb->add_option("SEED", seed, "The seed")->required();

    CLI11_PARSE(app, argc, argv);
    try {
        if (*showVerb) {
            std::fputs(corpus::scenarioOf(seed).c_str(), stdout);
            return SAME;
        }
        replay::complete(options.place);
        return *checkVerb ? check(options) : write(options);
    } catch (const replay::Trouble& trouble) {
        std::fprintf(stderr, "kravoltix-corpus: %s\n", trouble.what());
        return NOT_COMPARED;
    }
}

}  // namespace

int main(int argc, char* argv[]) {
    front::fillClosedStreams();
    // CLI11 throws when it is told of an option twice, which no user can bring about.
    try {
        return run(argc, argv);
    } catch (...) {
        std::fputs("kravoltix-corpus: the options could not be set up\n", stderr);
        return NOT_COMPARED;
    }
}
