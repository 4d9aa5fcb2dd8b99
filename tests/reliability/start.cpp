// SPDX-License-Identifier: MIT
#include "reliability/start.h"
#include "support/program.h"

#include "front/front.h"

#include <SDL_image.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <new>
#include <sched.h>
#include <set>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

namespace reliability {
namespace {

constexpr unsigned int LONGEST_RUN_SECONDS = 300;  // then something waits for ever
constexpr double PROGRESS_SECONDS = 20;
constexpr int ENDLESS_FRAMES = 100000;
constexpr int STATUS_ENDLESS = 98;
constexpr int STATUS_NOT_STARTED = 97;

// The shot pools take 400 MB, of which a start clears 160: most of its time. Here a large array is
// the same piece of memory many times over, which the processor keeps at hand. Slots so far apart
// would be one slot then; no game uses them.
constexpr size_t PIECE_BYTES = size_t{256} << 10;
constexpr size_t LARGE_BYTES = size_t{2} << 20;
constexpr size_t LARGEST_CLEARED_BYTES = size_t{64} << 20;  // the lists of pointers are not

void* repeatedPiece(size_t bytes) {
    const size_t whole = (bytes + PIECE_BYTES - 1) / PIECE_BYTES * PIECE_BYTES;
    const int piece = memfd_create("piece", MFD_CLOEXEC);
    void* const memory = mmap(nullptr, whole, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (piece < 0 || memory == MAP_FAILED || ftruncate(piece, PIECE_BYTES) != 0) {
        throw std::bad_alloc();
    }
    const int present = bytes <= LARGEST_CLEARED_BYTES ? MAP_POPULATE : 0;
    for (size_t at = 0; at < whole; at += PIECE_BYTES) {
        if (mmap(static_cast<char*>(memory) + at, PIECE_BYTES, PROT_READ | PROT_WRITE,
                 MAP_SHARED | MAP_FIXED | present, piece, 0) == MAP_FAILED) {
            throw std::bad_alloc();
        }
    }
    close(piece);
    return memory;
}

alignas(BattleField) unsigned char fieldMemory[sizeof(BattleField)];

std::map<std::string, SDL_Surface*> intactPictures;

double nowSeconds() {
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

SDL_Event keyEvent(Uint8 type, SDLKey key) {
    SDL_Event event = {};
    event.type = type;
    event.key.state = type == SDL_KEYDOWN ? SDL_PRESSED : SDL_RELEASED;
    event.key.keysym.sym = key;
    return event;
}

std::string contentOf(int descriptor) {
    std::string content;
    char buffer[4096];
    for (ssize_t count; (count = pread(descriptor, buffer, sizeof buffer,
                                       static_cast<off_t>(content.size()))) > 0;) {
        content.append(buffer, static_cast<size_t>(count));
    }
    return content;
}

// One game: the hooks behind it and what they saw.
class GameProcess {
public:
    GameProcess(const Start& how, Report& toParent)
        : wanted(how), report(toParent), running(*reinterpret_cast<BattleField*>(fieldMemory)) {}

    int play() {
        if (chdir(wanted.folder.c_str()) != 0) {
            return STATUS_NOT_STARTED;
        }
        holdClockAndEvents();
        holdPictures();
        if (wanted.trueSounds) {
            watchSounds();
        } else {
            withoutMixer();
        }
        if (wanted.prepare) {
            wanted.prepare(running);
        }
        if (wanted.prepareWithReport) {
            wanted.prepareWithReport(running, report);
        }
        new (fieldMemory) BattleField(640, 480, wanted.fullscreen, wanted.noSound);
        return 0;
    }

private:
    void holdClockAndEvents() {
        front::Hooks& hooks = front::hooks();
        hooks.SDL_GetTicks = [this] { return running.clockMs; };
        hooks.SDL_Delay = [this](Uint32 ms) { running.clockMs += ms; };
        hooks.SDL_PollEvent = [this](SDL_Event* event) {
            if (running.events.empty()) {
                return 0;
            }
            *event = running.events.front();
            running.events.pop_front();
            return 1;
        };
        hooks.SDL_Flip = [this](SDL_Surface* screen) {
            ++running.frame;
            ++report.frames;
            if (running.frame > ENDLESS_FRAMES) {
                std::_Exit(STATUS_ENDLESS);
            }
            if (wanted.betweenFrames) {
                wanted.betweenFrames(running);
            }
            if (wanted.betweenFramesWithReport) {
                wanted.betweenFramesWithReport(running, report);
            }
            running.clockMs += running.frameMs;
            return front::real::SDL_Flip(screen);
        };
    }

    void holdPictures() {
        front::Hooks& hooks = front::hooks();
        hooks.IMG_Load = [this](const char* file) {
            if (wanted.damaged != file) {
                const auto intact = intactPictures.find(file);
                if (intact != intactPictures.end() && !isMissing(file)) {
                    return intact->second;
                }
                return front::real::IMG_Load(file);
            }
            SDL_Surface* picture = front::real::IMG_Load(file);
            noteDamaged(picture);
            report.damagedWidth = picture == nullptr ? 0 : picture->w;
            report.damagedHeight = picture == nullptr ? 0 : picture->h;
            return picture;
        };
        hooks.SDL_UpperBlit = [this](SDL_Surface* from, SDL_Rect* part, SDL_Surface* to,
                                     SDL_Rect* place) {
            report.damagedUses += static_cast<int>(damaged.count(from));
            report.nothingDrawn += from == nullptr ? 1 : 0;
            return front::real::SDL_UpperBlit(from, part, to, place);
        };
    }

    bool isMissing(const std::string& file) const {
        return std::find(wanted.missing.begin(), wanted.missing.end(), file) !=
               wanted.missing.end();
    }

    void noteDamaged(void* loaded) {
        if (loaded != nullptr) {
            damaged.insert(loaded);
        }
        if (loaded == nullptr && wanted.onlyWithDamaged) {
            std::_Exit(STATUS_NOTHING_LOADED);
        }
        report.damagedLoaded = loaded != nullptr;
        ++report.damagedLoads;
    }

    // A sound that has come back from the library must be whole: each sample is read here, where a
    // sanitizer sees it, and each play waits until the mixer has played all of it.
    void watchSounds() {
        front::Hooks& hooks = front::hooks();
        hooks.SDL_RWFromFile = [this](const char* file, const char* mode) {
            opensDamaged = wanted.damaged == file;
            return front::real::SDL_RWFromFile(file, mode);
        };
        hooks.Mix_LoadWAV_RW = [this](SDL_RWops* source, int freeSource) {
            Mix_Chunk* sound = front::real::Mix_LoadWAV_RW(source, freeSource);
            if (opensDamaged) {
                noteDamaged(sound);
            }
            for (Uint32 i = 0; opensDamaged && sound != nullptr && i < sound->alen; ++i) {
                report.soundSum += sound->abuf[i];
            }
            return sound;
        };
        hooks.Mix_PlayChannelTimed = [this](int channel, Mix_Chunk* sound, int loops, int ticks) {
            const int result = front::real::Mix_PlayChannelTimed(channel, sound, loops, ticks);
            if (damaged.count(sound) != 0) {
                ++report.damagedUses;
                while (result >= 0 && Mix_Playing(channel) != 0) {
                    sched_yield();
                }
            }
            return result;
        };
    }

    // An open mixer that nobody hears.
    void withoutMixer() {
        static Mix_Chunk silence = {};
        front::Hooks& hooks = front::hooks();
        hooks.Mix_OpenAudio = [](int, Uint16, int, int) { return 0; };
        hooks.SDL_RWFromFile = [](const char*, const char*) { return SDL_RWFromConstMem("", 1); };
        hooks.Mix_LoadWAV_RW = [](SDL_RWops* source, int) {
            SDL_RWclose(source);
            return &silence;
        };
        hooks.Mix_PlayChannelTimed = [](int channel, Mix_Chunk*, int, int) { return channel; };
        hooks.Mix_FadeOutChannel = [](int, int) { return 0; };
        hooks.Mix_FadeOutMusic = [](int) { return 0; };
        hooks.Mix_CloseAudio = [] {};
    }

    const Start& wanted;
    Report& report;
    Running running;
    std::set<const void*> damaged;  // some files are loaded more than once
    bool opensDamaged = false;
};

}  // namespace
}  // namespace reliability

void* operator new[](size_t bytes) {
    if (bytes >= reliability::LARGE_BYTES) {
        return reliability::repeatedPiece(bytes);  // never freed
    }
    void* const memory = std::malloc(bytes == 0 ? 1 : bytes);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}

void operator delete[](void* memory) noexcept {
    std::free(memory);
}

void operator delete[](void* memory, size_t /*bytes*/) noexcept {
    std::free(memory);
}

namespace reliability {

void Running::press(SDLKey key) {
    events.push_back(keyEvent(SDL_KEYDOWN, key));
}

void Running::release(SDLKey key) {
    events.push_back(keyEvent(SDL_KEYUP, key));
}

void Running::closeWindow() {
    SDL_Event closed = {};
    closed.type = SDL_QUIT;
    events.push_back(closed);
}

std::string End::told() const {
    return "status " + std::to_string(status) + ", signal " + std::to_string(signal) +
           "\noutput: " + output + "\nerror: " + error;
}

void loadIntactPictures() {
    if (!intactPictures.empty()) {
        return;
    }
    namespace fs = std::filesystem;
    for (const auto& entry : fs::recursive_directory_iterator(GAME_DATA)) {
        if (entry.path().extension() == ".png") {
            const std::string name = fs::relative(entry.path(), GAME_DATA);
            intactPictures[name] = IMG_Load(entry.path().c_str());
            ASSERT_NE(intactPictures[name], nullptr) << name << ": " << SDL_GetError();
        }
    }
}

End inOtherProcess(const std::function<int(Report&)>& action) {
    void* const shared =
        mmap(nullptr, sizeof(Report), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    const int output = memfd_create("output", MFD_CLOEXEC);
    const int error = memfd_create("error", MFD_CLOEXEC);
    if (shared == MAP_FAILED || output < 0 || error < 0) {
        ADD_FAILURE() << "no memory for another process";
        return {};
    }
    Report* const report = new (shared) Report{};
    std::fflush(stdout);
    std::fflush(stderr);
    const pid_t child = fork();
    if (child == 0) {
        alarm(LONGEST_RUN_SECONDS);
        dup2(output, STDOUT_FILENO);
        dup2(error, STDERR_FILENO);
        std::exit(action(*report));
    }
    End end;
    int state = 0;
    if (child < 0 || waitpid(child, &state, 0) != child) {
        ADD_FAILURE() << "no other process can be started";
    } else {
        end.status = WIFEXITED(state) ? WEXITSTATUS(state) : -1;
        end.signal = WIFSIGNALED(state) ? WTERMSIG(state) : 0;
    }
    end.output = contentOf(output);
    end.error = contentOf(error);
    end.report = *report;
    close(output);
    close(error);
    munmap(shared, sizeof(Report));
    return end;
}

End start(const Start& wanted) {
    loadIntactPictures();
    return inOtherProcess([&wanted](Report& report) {
        // Outlives this call: the game's exit handlers still use its hooks.
        return (new GameProcess(wanted, report))->play();
    });
}

bool End::isCrash() const {
    return signal != 0 || error.find("Sanitizer") != std::string::npos ||
           error.find("runtime error") != std::string::npos ||
           error.find("Parachute") != std::string::npos;
}

Progress::Progress(const char* ofWhat, size_t howMany)
    : name(ofWhat), cases(howMany), startSeconds(nowSeconds()), toldSeconds(startSeconds) {}

void Progress::step() {
    ++done;
    const double now = nowSeconds();
    if (!isComplete() || (now - toldSeconds < PROGRESS_SECONDS && done != cases)) {
        return;
    }
    toldSeconds = now;
    const double left =
        (now - startSeconds) * static_cast<double>(cases - done) / static_cast<double>(done);
    std::fprintf(stderr, "%s: %zu of %zu, %.0f s left\n", name, done, cases, left);
}

}  // namespace reliability
