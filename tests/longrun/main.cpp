// SPDX-License-Identifier: MIT
// Plays for days of the game's clock in one process, and looks at the memory that the process holds:
//     kravoltix-long-run won|hint|fight HOURS FRAME_MS
// Tells the memory at 13 moments and ends with status 1 when it has grown by more than the shots of
// enemies, which by the game's rules are never given back.
#include "driver/battlefield.h"
#include "front/front.h"
#include "objects/enemyship.h"
#include "objects/myship.h"
#include "objects/shot.h"
#include "pilot/undrawn.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <malloc.h>
#include <new>
#include <string>
#include <unistd.h>

namespace {

constexpr int FIELD_WIDTH_PX = 640;
constexpr int FIELD_HEIGHT_PX = 480;
constexpr Uint32 FIRST_CLOCK_MS = 266;
constexpr unsigned long long HOUR_MS = 3600000;
constexpr Uint32 INTRO_FRAME_MS = 60;

constexpr int LOOKS = 12;  // at the memory, evenly over the run, and one before it
constexpr int ENERGY = 65;

// The ship flies from side to side, so that some enemies' shots hit it and some do not.
constexpr Uint32 TURN_MS = 3000;

// The memory that malloc sets aside ahead of need, and pages of code that are met for the first time.
constexpr long SLACK_KB = 512;

constexpr size_t CHUNK_HEAD_BYTES = 8;  // malloc's, for each block

unsigned long long bytesTaken = 0;  // with new, by the game
unsigned long long blocksTaken = 0;
unsigned long long shotsTaken = 0;  // those of them that have the size of a shot

void* take(size_t bytes) {
    void* memory = std::malloc(bytes == 0 ? 1 : bytes);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    bytesTaken += malloc_usable_size(memory) + CHUNK_HEAD_BYTES;
    ++blocksTaken;
    shotsTaken += bytes == sizeof(Shot) ? 1 : 0;
    return memory;
}

enum Kind {
    WON,    // all enemies are destroyed and the player stays
    HINT,   // the title stands and nobody presses Return
    FIGHT,  // enemies fire, and the player's energy is given back after each hit
};
constexpr const char* KIND_NAMES[] = {"won", "hint", "fight"};

long residentKb() {
    long all = 0;
    long resident = 0;
    std::FILE* statm = std::fopen("/proc/self/statm", "re");
    if (statm == nullptr || std::fscanf(statm, "%ld %ld", &all, &resident) != 2) {
        std::perror("/proc/self/statm");
        std::exit(2);
    }
    std::fclose(statm);
    return resident * (sysconf(_SC_PAGESIZE) / 1024);
}

// One look at the memory.
struct Look {
    unsigned long long ms;
    long residentKb;
    unsigned long long bytes;
    unsigned long long blocks;
    unsigned long long shots;
};

class LongRun {
public:
    LongRun(Kind runKind, unsigned long long hours, Uint32 frame)
        : kind(runKind),
          runMs(hours * HOUR_MS),
          frameMs(frame),
          field(*static_cast<BattleField*>(operator new(sizeof(BattleField)))) {}

    void play() {
        pilot::stopDrawing();
        front::Hooks& hooks = front::hooks();
        hooks.SDL_GetTicks = [this] { return clockMs; };
        hooks.SDL_Delay = [this](Uint32 ms) { clockMs += ms; };
        hooks.SDL_PollEvent = [this](SDL_Event* event) { return poll(event); };
        hooks.SDL_Flip = [this](SDL_Surface*) {
            shown();
            return 0;
        };
        new (&field) BattleField(FIELD_WIDTH_PX, FIELD_HEIGHT_PX, false, true);
    }

    // True when the memory has stayed what it was but for shots.
    bool tell() const {
        std::fprintf(stderr, "%s, %llu hours, frames of %u ms: %llu frames\n", KIND_NAMES[kind],
                     runMs / HOUR_MS, frameMs, frames);
        std::fprintf(stderr, "%10s %14s %14s %12s\n", "hour", "resident kB", "taken kB", "shots");
        for (const Look& look : looks) {
            std::fprintf(stderr, "%10.1f %14ld %14llu %12llu\n",
                         static_cast<double>(look.ms) / HOUR_MS, look.residentKb,
                         (look.bytes - looks[0].bytes) / 1024, look.shots - looks[0].shots);
        }
        const long taken = static_cast<long>((looks[LOOKS].bytes - looks[0].bytes) / 1024);
        const long grown = looks[LOOKS].residentKb - looks[0].residentKb;
        std::fprintf(stderr, "grown by %ld kB, of which the game took %ld kB: %.1f kB an hour\n",
                     grown, taken,
                     static_cast<double>(taken) * HOUR_MS / static_cast<double>(runMs));
        const unsigned long long blocks = looks[LOOKS].blocks - looks[0].blocks;
        const unsigned long long shots = looks[LOOKS].shots - looks[0].shots;
        return grown <= taken + SLACK_KB && blocks == (kind == FIGHT ? shots : 0);
    }

private:
    // In the phase that the run is about, everything has been shown and heard once.
    bool hasCome() const {
        if (kind == HINT) {
            return field.gamePhase == BattleField::PHASE_HINT;
        }
        return field.gamePhase == BattleField::PHASE_PLAY &&
               (kind == FIGHT || field.enemiesAlive == 0);
    }

    void shown() {
        Uint32 ms = INTRO_FRAME_MS;
        if (begun || hasCome()) {
            begun = true;
            ms = frameMs;
            ++frames;
            lookWhenDue();
            playedMs += ms;
        } else if (kind == WON && field.gamePhase == BattleField::PHASE_PLAY) {
            destroyEnemies();
        }
        if (kind == FIGHT && begun) {
            field.myShip->energy = ENERGY;
        }
        clockMs += ms;
        isPolled = false;
    }

    void lookWhenDue() {
        if (nextLook <= LOOKS && playedMs >= runMs / LOOKS * static_cast<unsigned>(nextLook)) {
            looks[static_cast<size_t>(nextLook)] = {playedMs, residentKb(), bytesTaken, blocksTaken,
                                                    shotsTaken};
            ++nextLook;
        }
    }

    void destroyEnemies() {
        for (int i = 0; i < BattleField::ENEMIES; ++i) {
            if (field.enemyShips[i]->energy > 0) {
                field.enemyShips[i]->energy = 0;
            }
        }
    }

    // One event a frame at most.
    int poll(SDL_Event* event) {
        if (isPolled) {
            return 0;
        }
        isPolled = true;
        *event = SDL_Event();
        if (nextLook > LOOKS) {
            event->type = SDL_QUIT;
            return 1;
        }
        if (!begun) {
            event->type = SDL_KEYDOWN;
            event->key.keysym.sym = SDLK_RETURN;
            return kind != HINT && field.gamePhase == BattleField::PHASE_HINT ? 1 : 0;
        }
        return kind == FIGHT ? turn(event) : 0;
    }

    // Left and right in turn.
    int turn(SDL_Event* event) {
        const unsigned long long stretch = playedMs / TURN_MS;
        const bool press = stretch % 2 == 0;
        event->type = press ? SDL_KEYDOWN : SDL_KEYUP;
        event->key.keysym.sym = stretch / 2 % 2 == 0 ? SDLK_LEFT : SDLK_RIGHT;
        return 1;
    }

    Kind kind;
    unsigned long long runMs;
    Uint32 frameMs;
    BattleField& field;
    Uint32 clockMs = FIRST_CLOCK_MS;
    bool begun = false;
    bool isPolled = false;
    unsigned long long playedMs = 0;
    unsigned long long frames = 0;
    int nextLook = 0;
    std::array<Look, LOOKS + 1> looks = {};
};

int kindOf(const char* name) {
    for (int i = WON; i <= FIGHT; ++i) {
        if (std::strcmp(KIND_NAMES[i], name) == 0) {
            return i;
        }
    }
    return -1;
}

unsigned long long numberOf(const char* word) {
    return std::strtoull(word, nullptr, 10);
}

}  // namespace

void* operator new(size_t bytes) {
    return take(bytes);
}

void* operator new[](size_t bytes) {
    return take(bytes);
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, size_t /*bytes*/) noexcept {
    std::free(memory);
}

void operator delete[](void* memory) noexcept {
    std::free(memory);
}

void operator delete[](void* memory, size_t /*bytes*/) noexcept {
    std::free(memory);
}

int main(int argc, char* argv[]) {
    const int kind = argc == 4 ? kindOf(argv[1]) : -1;
    if (kind < 0 || numberOf(argv[2]) == 0 || numberOf(argv[3]) == 0) {
        std::fputs("Usage: kravoltix-long-run won|hint|fight HOURS FRAME_MS\n", stderr);
        return 2;
    }
    setenv("SDL_VIDEODRIVER", "dummy", 1);
    setenv("SDL_AUDIODRIVER", "dummy", 1);
    if (chdir(GAME_DATA) != 0 || std::freopen("/dev/null", "w", stdout) == nullptr) {
        std::perror(GAME_DATA);
        return 2;
    }
    LongRun run(static_cast<Kind>(kind), numberOf(argv[2]), static_cast<Uint32>(numberOf(argv[3])));
    run.play();
    if (!run.tell()) {
        std::fputs("that is more than shots account for\n", stderr);
        return 1;
    }
    return 0;
}
