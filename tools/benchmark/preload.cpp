// SPDX-License-Identifier: MIT
// Loaded before the unmodified game with LD_PRELOAD: plays a scenario and measures some of its
// frames. README.md beside this file tells its variables and what it writes.
#include "benchmark/meter.h"
#include "benchmark/player.h"
#include "front/front.h"
#include "front/recording.h"

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <unistd.h>

namespace benchmark {
namespace {

constexpr int STATUS_BAD_SCRIPT = 97;

[[noreturn]] void stop(const std::string& message) {
    std::fprintf(stderr, "bench: %s\n", message.c_str());
    _exit(STATUS_BAD_SCRIPT);
}

std::string variable(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? "" : value;
}

Uint32 number(const char* name, Uint32 otherwise) {
    const std::string word = variable(name);
    if (word.empty()) {
        return otherwise;
    }
    if (!front::isNumber(word)) {
        stop(std::string(name) + ": \"" + word + "\" is no number");
    }
    return static_cast<Uint32>(std::strtoul(word.c_str(), nullptr, 10));
}

MeterOptions::Mode mode() {
    const std::string word = variable("KRAVOLTIX_BENCH_MODE");
    if (word == "census") {
        return MeterOptions::CENSUS;
    }
    if (word == "scene") {
        return MeterOptions::SCENE;
    }
    if (word == "start") {
        return MeterOptions::START;
    }
    stop("KRAVOLTIX_BENCH_MODE: \"" + word + "\" is none of census, scene and start");
}

front::Recording loadScript() {
    front::Recording script;
    std::string error;
    if (!front::readRecording(variable("KRAVOLTIX_SCENARIO"), script, error)) {
        stop(error);
    }
    return script;
}

// Valgrind comes before the game and hands the library on to it.
bool isMeasuredProgram() {
    char path[PATH_MAX] = {};
    const ssize_t length = readlink("/proc/self/exe", path, sizeof path - 1);
    return length > 0 && variable("KRAVOLTIX_BENCH_PROGRAM") == path;
}

// Never deleted: the game's exit handlers still call the libraries.
__attribute__((constructor)) void begin() {
    if (!isMeasuredProgram()) {
        return;
    }
    MeterOptions options;
    options.figures = variable("KRAVOLTIX_BENCH_FIGURES");
    options.mode = mode();
    options.first = number("KRAVOLTIX_BENCH_FIRST", 1);
    options.last = std::max(number("KRAVOLTIX_BENCH_LAST", 1), options.first);
    unsetenv("LD_PRELOAD");
    auto* player = new Player(loadScript().given);
    auto* meter = new Meter(*player, options);
    player->putHooks();
    meter->putHooks();
}

}  // namespace
}  // namespace benchmark
