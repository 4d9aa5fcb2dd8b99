// SPDX-License-Identifier: MIT
#include "benchmark/meter.h"

#include "benchmark/allocations.h"

#include <cstdio>
#include <cstring>
#include <ctime>
#include <fstream>
#include <type_traits>
#include <unistd.h>
#include <valgrind/callgrind.h>

namespace benchmark {
namespace {

constexpr const char* FUNCTION_NAMES[] = {
#define KRAVOLTIX_BENCH_NAME(name, result, parameters, arguments) #name,
    KRAVOLTIX_FRONT_FUNCTIONS(KRAVOLTIX_BENCH_NAME)
#undef KRAVOLTIX_BENCH_NAME
};

constexpr size_t DRAWINGS_PER_FRAME = 256;  // a full frame has some 130
constexpr int STATUS_NO_FIGURES = 97;

std::uint64_t nanoseconds(clockid_t clock) {
    timespec now = {};
    clock_gettime(clock, &now);
    return static_cast<std::uint64_t>(now.tv_sec) * 1000000000 +
           static_cast<std::uint64_t>(now.tv_nsec);
}

std::uint64_t processorNs() {
    return nanoseconds(CLOCK_THREAD_CPUTIME_ID);
}

// Standard output goes to a file here, so its place in the file is how much has been printed.
std::uint64_t bytesPrinted() {
    std::fflush(stdout);
    const off_t place = lseek(STDOUT_FILENO, 0, SEEK_CUR);
    return place < 0 ? 0 : static_cast<std::uint64_t>(place);
}

// A line of /proc/self/status, in kilobytes.
unsigned long memoryKb(const char* name) {
    std::ifstream status("/proc/self/status");
    unsigned long kb = 0;
    for (std::string line; std::getline(status, line);) {
        if (line.compare(0, std::strlen(name), name) == 0) {
            kb = std::strtoul(line.c_str() + std::strlen(name) + 1, nullptr, 10);
        }
    }
    return kb;
}

// Runs this in the profile and tells its processor time.
template <typename Work> std::uint64_t timed(const Work& work) {
    const std::uint64_t begun = processorNs();
    CALLGRIND_TOGGLE_COLLECT;
    work();
    CALLGRIND_TOGGLE_COLLECT;
    return processorNs() - begun;
}

std::string list(const std::vector<std::uint64_t>& values) {
    std::string text;
    for (const std::uint64_t value : values) {
        text += (text.empty() ? "" : ", ") + std::to_string(value);
    }
    return '[' + text + ']';
}

}  // namespace

Meter::Meter(Player& playing, const MeterOptions& wanted)
    : player(playing), options(wanted), linkingNs(processorNs()) {
    const bool isScene = options.mode == MeterOptions::SCENE;
    frames.resize(isScene ? options.last - options.first + 1 : 1);
    for (Figures& figures : frames) {
        figures.drawings.reserve(DRAWINGS_PER_FRAME);
    }
    if (options.mode == MeterOptions::START) {
        CALLGRIND_DUMP_STATS_AT("linking");
    }
}

void Meter::putHooks() {
    noteNames();
    noteDrawings();
    front::hooks().SDL_Flip = [this](SDL_Surface* shown) { return flip(shown); };
#define KRAVOLTIX_BENCH_COUNT(name, result, parameters, arguments)                                 \
    count(F_##name, front::hooks().name, &front::real::name);
    KRAVOLTIX_FRONT_FUNCTIONS(KRAVOLTIX_BENCH_COUNT)
#undef KRAVOLTIX_BENCH_COUNT
}

template <typename Result, typename... Arguments>
void Meter::count(Function function, std::function<Result(Arguments...)>& hook,
                  Result (*realFunction)(Arguments...)) {
    struct Stopwatch {
        std::uint64_t& total;
        bool runs;
        std::uint64_t begun = runs ? processorNs() : 0;
        ~Stopwatch() { total += runs ? processorNs() - begun : 0; }
    };
    std::function<Result(Arguments...)> next = hook;
    if (!next) {
        next = realFunction;
    }
    hook = [this, function, next](Arguments... arguments) -> Result {
        ++calls[function];
        const Stopwatch stopwatch{startNs[function], options.mode == MeterOptions::START};
        return next(arguments...);
    };
}

void Meter::noteFile(Function function, void* asset, const std::string& file) {
    names[asset] = file;
    loads.push_back(std::string(FUNCTION_NAMES[function]) + ' ' + file);
}

void Meter::noteNames() {
    front::Hooks& all = front::hooks();
    all.IMG_Load = [this](const char* file) {
        SDL_Surface* picture = front::real::IMG_Load(file);
        noteFile(F_IMG_Load, picture, file);
        return picture;
    };
    all.SDL_RWFromFile = [this](const char* file, const char* mode) {
        lastOpened = file;
        return front::real::SDL_RWFromFile(file, mode);
    };
    all.SDL_LoadBMP_RW = [this](SDL_RWops* source, int freeSource) {
        SDL_Surface* picture = front::real::SDL_LoadBMP_RW(source, freeSource);
        noteFile(F_SDL_LoadBMP_RW, picture, lastOpened);
        return picture;
    };
    all.SDL_DisplayFormat = [this](SDL_Surface* picture) {
        SDL_Surface* converted = front::real::SDL_DisplayFormat(picture);
        names[converted] = names[picture];
        return converted;
    };
    all.Mix_LoadWAV_RW = [this](SDL_RWops* source, int freeSource) {
        Mix_Chunk* sound = front::real::Mix_LoadWAV_RW(source, freeSource);
        noteFile(F_Mix_LoadWAV_RW, sound, lastOpened);
        return sound;
    };
}

void Meter::noteDrawings() {
    front::Hooks& all = front::hooks();
    all.SDL_FillRect = [this](SDL_Surface* to, SDL_Rect* rect, Uint32 colour) {
        if (isMeasured()) {
            frames[measured].drawings.push_back({true,
                                                 nullptr,
                                                 to,
                                                 false,
                                                 rect != nullptr,
                                                 {},
                                                 rect != nullptr ? *rect : SDL_Rect{},
                                                 colour});
        }
        return front::real::SDL_FillRect(to, rect, colour);
    };
    all.SDL_UpperBlit = [this](SDL_Surface* from, SDL_Rect* part, SDL_Surface* to,
                               SDL_Rect* place) {
        if (isMeasured()) {
            frames[measured].drawings.push_back({false, from, to, part != nullptr, place != nullptr,
                                                 part != nullptr ? *part : SDL_Rect{},
                                                 place != nullptr ? *place : SDL_Rect{}, 0});
        }
        return front::real::SDL_UpperBlit(from, part, to, place);
    };
}

bool Meter::isMeasured() const {
    const Uint32 frame = player.frame() + 1;
    return options.mode == MeterOptions::CENSUS ||
           (options.mode == MeterOptions::SCENE && options.first <= frame && frame <= options.last);
}

int Meter::flip(SDL_Surface* shown) {
    const int result = front::real::SDL_Flip(shown);
    if (options.mode == MeterOptions::START) {
        endStart();
    }
    if (isMeasured()) {
        toggleProfile();
        endFrame();
        if (options.mode == MeterOptions::SCENE && player.frame() + 1 == options.last) {
            measureBare(shown);
        }
    }
    player.endFrame();
    if (isMeasured()) {
        beginFrame();
        toggleProfile();
    }
    return result;
}

void Meter::beginFrame() {
    Figures& figures = frames[measured];
    figures.clockMs = player.clock();
    figures.drawings.clear();
    calls = {};
    bytesBefore = bytesPrinted();
    begunAllocations = allocations();
    if (options.mode == MeterOptions::SCENE && player.frame() + 1 == options.first) {
        wallNs = nanoseconds(CLOCK_MONOTONIC);
        CALLGRIND_START_INSTRUMENTATION;
    }
    begunNs = processorNs();
}

void Meter::endFrame() {
    Figures& figures = frames[measured];
    figures.cpuNs = processorNs() - begunNs;
    figures.allocations = allocations() - begunAllocations;
    figures.calls = calls;
    figures.bytesPrinted = bytesPrinted() - bytesBefore;
    if (options.mode == MeterOptions::CENSUS) {
        figures.residentKb = memoryKb("VmRSS");
        std::FILE* file = std::fopen(options.figures.c_str(), "a");
        writeFrame(file, figures, player.frame() + 1);
        std::fprintf(file, "\n");
        std::fclose(file);
    } else {
        CALLGRIND_DUMP_STATS_AT("game");
        ++measured;
    }
}

void Meter::draw(const Drawing& drawing) {
    SDL_Rect part = drawing.part;
    SDL_Rect place = drawing.place;
    if (drawing.isFill) {
        front::real::SDL_FillRect(drawing.to, drawing.hasPlace ? &place : nullptr, drawing.colour);
    } else {
        front::real::SDL_UpperBlit(drawing.from, drawing.hasPart ? &part : nullptr, drawing.to,
                                   drawing.hasPlace ? &place : nullptr);
    }
}

// The profile of a scene starts switched off, and this library's own work is never in it.
void Meter::toggleProfile() const {
    if (options.mode == MeterOptions::SCENE) {
        CALLGRIND_TOGGLE_COLLECT;
    }
}

// The scene's drawings again, from the libraries alone; then as many frames with nothing on them.
void Meter::measureBare(SDL_Surface* shown) {
    wallNs = nanoseconds(CLOCK_MONOTONIC) - wallNs;
    for (const Figures& figures : frames) {
        bareNs.push_back(timed([&] {
            for (const Drawing& drawing : figures.drawings) {
                draw(drawing);
            }
            front::real::SDL_Flip(shown);
        }));
        CALLGRIND_DUMP_STATS_AT("bare");
    }
    for (size_t i = 0; i < frames.size(); ++i) {
        emptyNs.push_back(timed([&] {
            front::real::SDL_FillRect(shown, nullptr, 0);
            front::real::SDL_Flip(shown);
        }));
        CALLGRIND_DUMP_STATS_AT("empty");
    }
    CALLGRIND_STOP_INSTRUMENTATION;
    writeFigures();
}

void Meter::endStart() {
    frames[0].cpuNs = processorNs();
    CALLGRIND_DUMP_STATS_AT("start");
    writeFigures();
}

void Meter::writeFrame(std::FILE* file, const Figures& figures, Uint32 frame) const {
    std::map<std::string, int> drawn;
    for (const Drawing& drawing : figures.drawings) {
        const auto name = names.find(drawing.from);
        ++drawn[drawing.isFill ? "fill" : name == names.end() ? "unnamed" : name->second];
    }
    std::fprintf(file,
                 "{\"frame\": %u, \"clockMs\": %u, \"residentKb\": %lu, \"cpuNs\": %llu, "
                 "\"allocations\": %llu, "
                 "\"bytesPrinted\": %llu, \"calls\": {",
                 frame, figures.clockMs, figures.residentKb,
                 static_cast<unsigned long long>(figures.cpuNs),
                 static_cast<unsigned long long>(figures.allocations),
                 static_cast<unsigned long long>(figures.bytesPrinted));
    const char* comma = "";
    for (int i = 0; i < FUNCTIONS; ++i) {
        if (figures.calls[static_cast<size_t>(i)] > 0) {
            std::fprintf(file, "%s\"%s\": %u", comma, FUNCTION_NAMES[i],
                         figures.calls[static_cast<size_t>(i)]);
            comma = ", ";
        }
    }
    std::fprintf(file, "}, \"drawn\": {");
    comma = "";
    for (const auto& picture : drawn) {
        std::fprintf(file, "%s\"%s\": %d", comma, picture.first.c_str(), picture.second);
        comma = ", ";
    }
    std::fprintf(file, "}}");
}

void Meter::writeFigures() {
    std::FILE* file = std::fopen(options.figures.c_str(), "w");
    if (file == nullptr) {
        std::fprintf(stderr, "bench: cannot write %s\n", options.figures.c_str());
        _exit(STATUS_NO_FIGURES);
    }
    std::fprintf(file, "{\"peakKb\": %lu, \"residentKb\": %lu, \"linkingNs\": %llu, ",
                 memoryKb("VmHWM"), memoryKb("VmRSS"), static_cast<unsigned long long>(linkingNs));
    std::fprintf(file, "\"wallNs\": %llu, \"bareNs\": %s, \"emptyNs\": %s,\n\"startNs\": {",
                 static_cast<unsigned long long>(wallNs), list(bareNs).c_str(),
                 list(emptyNs).c_str());
    for (int i = 0; i < FUNCTIONS; ++i) {
        std::fprintf(file, "%s\"%s\": %llu", i == 0 ? "" : ", ", FUNCTION_NAMES[i],
                     static_cast<unsigned long long>(startNs[static_cast<size_t>(i)]));
    }
    std::fprintf(file, "},\n\"loads\": [");
    for (size_t i = 0; i < loads.size(); ++i) {
        std::fprintf(file, "%s\"%s\"", i == 0 ? "" : ", ", loads[i].c_str());
    }
    std::fprintf(file, "],\n\"frames\": [\n");
    for (size_t i = 0; i < frames.size(); ++i) {
        writeFrame(file, frames[i], options.first + static_cast<Uint32>(i));
        std::fprintf(file, i + 1 < frames.size() ? ",\n" : "\n");
    }
    std::fprintf(file, "]}\n");
    std::fclose(file);
    _exit(0);
}

}  // namespace benchmark
