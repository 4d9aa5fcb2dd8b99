// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_BENCHMARK_METER_H
#define KRAVOLTIX_BENCHMARK_METER_H

#include "benchmark/player.h"
#include "front/front.h"

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace benchmark {

enum Function {
#define KRAVOLTIX_BENCH_FUNCTION(name, result, parameters, arguments) F_##name,
    KRAVOLTIX_FRONT_FUNCTIONS(KRAVOLTIX_BENCH_FUNCTION)
#undef KRAVOLTIX_BENCH_FUNCTION
        FUNCTIONS
};

struct MeterOptions {
    enum Mode {
        CENSUS,  // every frame's calls and drawings; nothing is timed
        SCENE,   // frames `first` to `last`, then the same drawings bare, then empty frames
        START,   // from the program's start to its first picture
    };
    Mode mode = CENSUS;
    Uint32 first = 1, last = 1;
    std::string figures;  // the file that the figures go to
};

// Measures frames. Under callgrind it parts the profile: "game", "bare" and "empty" for a scene,
// "linking" and "start" for a start.
class Meter {
public:
    Meter(Player& playing, const MeterOptions& wanted);

    // After the player's: these call them.
    void putHooks();

private:
    // A fill or a blit as the game asked for it, before SDL clips its rectangles.
    struct Drawing {
        bool isFill;
        SDL_Surface* from;
        SDL_Surface* to;
        bool hasPart, hasPlace;
        SDL_Rect part, place;
        Uint32 colour;
    };

    struct Figures {
        std::array<Uint32, FUNCTIONS> calls = {};
        std::uint64_t cpuNs = 0;
        std::uint64_t allocations = 0;
        std::uint64_t bytesPrinted = 0;
        unsigned long residentKb = 0;
        Uint32 clockMs = 0;
        std::vector<Drawing> drawings;
    };

    template <typename Result, typename... Arguments>
    void count(Function function, std::function<Result(Arguments...)>& hook,
               Result (*realFunction)(Arguments...));

    int flip(SDL_Surface* shown);
    void noteNames();
    void noteDrawings();
    bool isMeasured() const;
    void beginFrame();
    void endFrame();
    void noteFile(Function function, void* asset, const std::string& file);
    [[noreturn]] void measureBare(SDL_Surface* shown);
    [[noreturn]] void endStart();
    void toggleProfile() const;
    void draw(const Drawing& drawing);
    [[noreturn]] void writeFigures();
    void writeFrame(std::FILE* file, const Figures& figures, Uint32 frame) const;

    Player& player;
    MeterOptions options;

    std::vector<Figures> frames;  // made before the first is measured
    size_t measured = 0;
    std::array<Uint32, FUNCTIONS> calls = {};
    std::array<std::uint64_t, FUNCTIONS> startNs =
        {};  // within each function until the first picture
    std::uint64_t linkingNs = 0;
    std::uint64_t begunNs = 0;
    std::uint64_t begunAllocations = 0;
    std::uint64_t bytesBefore = 0;
    std::vector<std::uint64_t> bareNs, emptyNs;
    std::uint64_t wallNs = 0;  // from the end of the frame before `first` to the end of `last`

    std::map<const void*, std::string> names;
    std::vector<std::string> loads;  // function and file, in their order
    std::string lastOpened;
};

}  // namespace benchmark

#endif
