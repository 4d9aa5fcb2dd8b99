// SPDX-License-Identifier: MIT
#include "pilot/balance.h"

#include "pilot/session.h"
#include "pilot/undrawn.h"

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

namespace pilot {
namespace {

// Played in this order: the long games first, so that the time left is not guessed too short.
constexpr Uint32 MACHINES_FPS[] = {1000, 60};
constexpr const char* PILOTS[] = {"winner", "purist", "idler"};

constexpr Uint32 FIRST_SEED = 1;
constexpr int STATUS_FAILED = 1;

// Columns of numbers in the file, one for each game.
struct Column {
    const char* name;
    Uint32 (*value)(const Result& result);
};

struct HabitColumn {
    const char* name;
    Uint32 (*value)(const Habits& habits);
};

template <auto FIELD, typename Row> Uint32 valueOf(const Row& row) {
    return static_cast<Uint32>(row.*FIELD);
}

constexpr Column COLUMNS[] = {
    {"playMs", valueOf<&Result::playMs>},         {"destroyed", valueOf<&Result::destroyed>},
    {"energy", valueOf<&Result::energy>},         {"lasers", valueOf<&Result::lasers>},
    {"laserHits", valueOf<&Result::laserHits>},   {"rockets", valueOf<&Result::rockets>},
    {"rocketHits", valueOf<&Result::rocketHits>}, {"lost", valueOf<&Result::lost>},
};

constexpr HabitColumn HABIT_COLUMNS[] = {
    {"reactionMs", valueOf<&Habits::reactionMs>},
    {"misjudgedPx", valueOf<&Habits::misjudgedPx>},
    {"lateFramesPercent", valueOf<&Habits::lateFramesPercent>},
};

// Results of the processes that play, in memory that all of them share.
Result* shareResults(size_t count) {
    void* memory = mmap(nullptr, count * sizeof(Result), PROT_READ | PROT_WRITE,
                        MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) {
        std::perror("kravoltix-pilot: no memory for the results");
        std::exit(STATUS_FAILED);
    }
    return static_cast<Result*>(memory);
}

pid_t forked() {
    const pid_t child = fork();
    if (child < 0) {
        std::perror("kravoltix-pilot: cannot start a process");
        std::exit(STATUS_FAILED);
    }
    return child;
}

bool endedWell(int status) {
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

// The games say much; nobody listens.
void silence() {
    std::fflush(stdout);
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    dup2(nowhere, STDOUT_FILENO);
}

class Balance {
public:
    Balance(Uint32 gamesEach, Uint32 processesAtOnce)
        : games(gamesEach),
          processes(processesAtOnce),
          results(shareResults(gamesEach * std::size(PILOTS) * std::size(MACHINES_FPS))) {}

    // One process for each machine, which starts the game and copies itself.
    bool playAll() {
        for (size_t machine = 0; machine < std::size(MACHINES_FPS); ++machine) {
            const pid_t child = forked();
            if (child == 0) {
                playOn(machine);
            }
            int status = 0;
            waitpid(child, &status, 0);
            if (!endedWell(status)) {
                return false;
            }
        }
        return true;
    }

    void write(std::ostream& json) const {
        json << "{\"games\": " << games << ",\n\"habits\": {";
        writeHabits(json);
        json << "},\n\"runs\": [";
        for (size_t machine = 0; machine < std::size(MACHINES_FPS); ++machine) {
            for (size_t pilot = 0; pilot < std::size(PILOTS); ++pilot) {
                json << (machine + pilot > 0 ? ",\n" : "\n");
                writeRun(machine, pilot, json);
            }
        }
        json << "\n]}\n";
    }

private:
    [[noreturn]] void playOn(size_t machine) {
        silence();
        stopDrawing();
        Session session(MACHINES_FPS[machine], nullptr);
        // Comes back only in a copy, with `slot` set.
        size_t slot = 0;
        const Result result = session.play([&] { slot = copyForEachGame(machine, session); });
        results[slot] = result;
        _exit(0);
    }

    // In the process that waits at the hint: never returns. In its copies: returns the slot of the
    // result, with a pilot at the keyboard.
    size_t copyForEachGame(size_t machine, Session& session) {
        startSeconds = secondsNow();
        for (size_t pilot = 0; pilot < std::size(PILOTS); ++pilot) {
            for (Uint32 game = 0; game < games; ++game) {
                if (running == processes) {
                    waitForOne(machine);
                }
                if (forked() == 0) {
                    session.takeOver(*planOf(PILOTS[pilot]), habitsOf(FIRST_SEED + game));
                    return slotOf(machine, pilot) + game;
                }
                ++running;
            }
        }
        while (running > 0) {
            waitForOne(machine);
        }
        _exit(0);
    }

    void waitForOne(size_t machine) {
        int status = 0;
        wait(&status);
        if (!endedWell(status)) {
            std::fprintf(stderr, "\nkravoltix-pilot: a game has failed\n");
            _exit(STATUS_FAILED);
        }
        --running;
        ++done;
        tellProgress(machine);
    }

    // Once a second, and at the end.
    void tellProgress(size_t machine) {
        const size_t all = games * std::size(PILOTS);
        const double passed = secondsNow() - startSeconds;
        if (passed < toldSeconds + 1 && done < all) {
            return;
        }
        toldSeconds = passed;
        const double left = passed / static_cast<double>(done) * static_cast<double>(all - done);
        std::fprintf(stderr, "\r%4u frames a second: %zu of %zu games, %.0f s left   %s",
                     MACHINES_FPS[machine], done, all, left, done == all ? "\n" : "");
    }

    static double secondsNow() {
        timespec now = {};
        clock_gettime(CLOCK_MONOTONIC, &now);
        return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
    }

    size_t slotOf(size_t machine, size_t pilot) const {
        return (machine * std::size(PILOTS) + pilot) * games;
    }

    void writeHabits(std::ostream& json) const {
        const char* separator = "";
        for (const HabitColumn& column : HABIT_COLUMNS) {
            json << separator << '"' << column.name << "\": [";
            for (Uint32 game = 0; game < games; ++game) {
                json << (game > 0 ? "," : "") << column.value(habitsOf(FIRST_SEED + game));
            }
            json << ']';
            separator = ",\n";
        }
    }

    void writeRun(size_t machine, size_t pilot, std::ostream& json) const {
        json << "{\"pilot\": \"" << PILOTS[pilot] << "\", \"fps\": " << MACHINES_FPS[machine];
        for (const Column& column : COLUMNS) {
            json << ",\n\"" << column.name << "\": [";
            for (Uint32 game = 0; game < games; ++game) {
                json << (game > 0 ? "," : "")
                     << column.value(results[slotOf(machine, pilot) + game]);
            }
            json << ']';
        }
        json << '}';
    }

    Uint32 games;
    Uint32 processes;
    Result* results;
    double startSeconds = 0;
    double toldSeconds = 0;
    Uint32 running = 0;
    size_t done = 0;
};

}  // namespace

bool balance(Uint32 games, Uint32 processes, std::ostream& json) {
    Balance all(games, processes);
    if (!all.playAll()) {
        return false;
    }
    all.write(json);
    return true;
}

}  // namespace pilot
