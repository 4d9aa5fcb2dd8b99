// SPDX-License-Identifier: MIT
// Loaded before the unmodified game with LD_PRELOAD: a session whose options come from the
// environment. README.md beside this file tells how to use it.
#include "front/session.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <link.h>
#include <string>
#include <unistd.h>

namespace front {
namespace {

constexpr char GAMES_LIBRARY[] = "libSDL-1.2";

// Never deleted: the game's exit handlers still call the libraries.
Session* session = nullptr;

[[noreturn]] void stop(const std::string& message) {
    std::fprintf(stderr, "front: %s\n", message.c_str());
    _exit(STATUS_BAD_SCRIPT);
}

std::string variable(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? "" : value;
}

// A recorded game ends where it ended; one that was cut off is left there.
void endAtItsEnd(Recording& script) {
    const Uint32 frames = static_cast<Uint32>(script.seen.checks.size());
    script.given.lastFrame = frames;
    if (!script.cutOff.empty()) {
        script.given.events.push_back({{When::FRAME, frames}, SDL_QUIT, SDLK_UNKNOWN});
        ++script.given.lastFrame;
    }
}

void loadScript(const std::string& path, SessionOptions& options) {
    std::string error;
    if (!readRecording(path, options.script, error)) {
        stop(error);
    }
    options.scripted = true;
    if (options.script.isRecording) {
        endAtItsEnd(options.script);
    }
}

// FRAME:FILE,FRAME:FILE ... in the order of the frames
void readPictures(const std::string& list, SessionOptions& options) {
    for (size_t start = 0; start < list.size();) {
        const size_t end = std::min(list.find(',', start), list.size());
        const std::string entry = list.substr(start, end - start);
        const size_t colon = entry.find(':');
        if (colon == std::string::npos || !isNumber(entry.substr(0, colon))) {
            stop("KRAVOLTIX_KEEP: \"" + entry + "\" is not FRAME:FILE");
        }
        const Uint32 frame = static_cast<Uint32>(std::strtoul(entry.c_str(), nullptr, 10));
        options.pictures.push_back({{When::FRAME, frame}, entry.substr(colon + 1)});
        start = end + 1;
    }
}

SessionOptions optionsFromEnvironment(int argc, char** argv) {
    SessionOptions options;
    options.arguments.assign(argv + std::min(argc, 1), argv + argc);
    if (const std::string script = variable("KRAVOLTIX_SCENARIO"); !script.empty()) {
        loadScript(script, options);
    }
    options.recordTo = variable("KRAVOLTIX_RECORD");
    options.callsTo = variable("KRAVOLTIX_CALLS");
    if (const std::string folder = variable("KRAVOLTIX_PICTURES"); !folder.empty()) {
        options.pictureFolder = folder;
    }
    readPictures(variable("KRAVOLTIX_KEEP"), options);
    if (const std::string film = variable("KRAVOLTIX_FILM"); isNumber(film)) {
        options.framesTo = std::atoi(film.c_str());
    }
    if (const std::string rate = variable("KRAVOLTIX_FILM_RATE"); isNumber(rate)) {
        options.framesPerSecond = static_cast<Uint32>(std::max(1, std::atoi(rate.c_str())));
    }
    options.speed = std::strtod(variable("KRAVOLTIX_SPEED").c_str(), nullptr);
    return options;
}

// True in the game, which is linked to SDL; false in a shell script that starts it.
// NOLINTBEGIN(performance-no-int-to-ptr): ELF keeps addresses as numbers
int readNeeded(dl_phdr_info* program, size_t /*bytes*/, void* result) {
    const ElfW(Dyn)* dynamic = nullptr;
    for (int i = 0; i < program->dlpi_phnum; ++i) {
        if (program->dlpi_phdr[i].p_type == PT_DYNAMIC) {
            dynamic = reinterpret_cast<const ElfW(Dyn)*>(program->dlpi_addr +
                                                         program->dlpi_phdr[i].p_vaddr);
        }
    }
    const char* strings = nullptr;
    for (const ElfW(Dyn)* entry = dynamic; entry != nullptr && entry->d_tag != DT_NULL; ++entry) {
        if (entry->d_tag == DT_STRTAB) {
            strings = reinterpret_cast<const char*>(entry->d_un.d_ptr);
        }
    }
    for (const ElfW(Dyn)* entry = dynamic; strings != nullptr && entry->d_tag != DT_NULL; ++entry) {
        if (entry->d_tag == DT_NEEDED && std::strncmp(strings + entry->d_un.d_val, GAMES_LIBRARY,
                                                      sizeof GAMES_LIBRARY - 1) == 0) {
            *static_cast<bool*>(result) = true;
        }
    }
    return 1;  // the program comes first: look no further
}
// NOLINTEND(performance-no-int-to-ptr)

bool isGame() {
    bool result = false;
    dl_iterate_phdr(readNeeded, &result);
    return result;
}

// Runs before main(), in the game's main thread.
__attribute__((constructor)) void begin(int argc, char** argv, char** /*environment*/) {
    if (!isGame()) {
        return;  // a launcher, which becomes the game and brings the layer along
    }
    // A program that the game might start is no game.
    unsetenv("LD_PRELOAD");
    session = new Session(optionsFromEnvironment(argc, argv));
    session->putHooks();
    // Registered before the game's own handlers, so it runs after them and sees SDL_Quit.
    on_exit([](int status, void*) { session->end(status); }, nullptr);
}

}  // namespace
}  // namespace front
