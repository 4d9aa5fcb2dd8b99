// SPDX-License-Identifier: MIT
// Loaded before the unmodified game with LD_PRELOAD: plays a scenario into it and writes down what
// it does. README.md beside this file tells how to use it.
#include "front/calllog.h"
#include "front/front.h"
#include "front/scenario.h"

#include <SDL_image.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <string>
#include <type_traits>
#include <unistd.h>
#include <vector>

namespace front {
namespace {

constexpr char SCENARIO_VARIABLE[] = "KRAVOLTIX_SCENARIO";
constexpr char CALLS_VARIABLE[] = "KRAVOLTIX_CALLS";
constexpr char PICTURES_VARIABLE[] = "KRAVOLTIX_PICTURES";

// Exit statuses that the game does not have.
constexpr int STATUS_BAD_SCENARIO = 97;
constexpr int STATUS_ENDLESS_GAME = 98;

constexpr char NOT_TO_FAIL[] = "SDL_PollEvent";  // has no failure: 0 means that the queue is empty

// The game in progress.
struct Replay {
    Scenario scenario;
    bool scripted = false;  // false: the real clock and the real events
    CallLog log;
    std::string pictureFolder = ".";
    std::string lastOpened;  // the file that the next sound is loaded from
    Uint32 clockMs = 0;
    Uint32 frame = 0;  // frames shown so far
    Uint32 frameMs = Scenario::DEFAULT_FRAME_MS;
    size_t nextFrameTime = 0;
    size_t nextEvent = 0;
    size_t nextPicture = 0;
};

// Never deleted: the game's exit handlers still call the library.
Replay* game = nullptr;

[[noreturn]] void stop(int status, const std::string& message) {
    std::fflush(stdout);
    std::fprintf(stderr, "front: %s\n", message.c_str());
    _exit(status);
}

Uint32 now() {
    return game->scripted ? game->clockMs : real::SDL_GetTicks();
}

void note(const std::string& line) {
    game->log.write(now(), line);
}

std::string text(const char* format, ...) __attribute__((format(printf, 1, 2)));
std::string text(const char* format, ...) {
    char line[512];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(line, sizeof line, format, arguments);
    va_end(arguments);
    return line;
}

// The scenario's clock, events and pictures.

void keepPicture(SDL_Surface* screen, const std::string& file) {
    const std::string path = game->pictureFolder + "/" + file;
    if (SDL_SaveBMP(screen, path.c_str()) != 0) {
        stop(STATUS_BAD_SCENARIO, "cannot write " + path + ": " + SDL_GetError());
    }
}

// The next entry of a list when its moment has come, else null; the list then goes on behind it.
template <typename Entry> const Entry* nextDue(const std::vector<Entry>& list, size_t& next) {
    if (next == list.size() || !list[next].when.isDue(game->frame, game->clockMs)) {
        return nullptr;
    }
    return &list[next++];
}

// The clock stands still while the game draws and thinks: it advances here, by the frame's time.
int flip(SDL_Surface* screen) {
    const Scenario& scenario = game->scenario;
    ++game->frame;
    while (const FrameTime* entry = nextDue(scenario.frameTimes, game->nextFrameTime)) {
        game->frameMs = entry->ms;
    }
    while (const KeptPicture* entry = nextDue(scenario.pictures, game->nextPicture)) {
        keepPicture(screen, entry->file);
    }
    if (game->frame > scenario.lastFrame) {
        stop(STATUS_ENDLESS_GAME,
             "frame " + std::to_string(scenario.lastFrame) + " is over and the game still runs");
    }
    game->clockMs += game->frameMs;
    return real::SDL_Flip(screen);
}

int pollEvent(SDL_Event* event) {
    const ScriptedEvent* entry = nextDue(game->scenario.events, game->nextEvent);
    if (entry == nullptr) {
        return 0;
    }
    *event = SDL_Event();
    event->type = entry->type;
    if (entry->type != SDL_QUIT) {
        event->key.state = entry->type == SDL_KEYDOWN ? SDL_PRESSED : SDL_RELEASED;
        event->key.keysym.sym = entry->key;
    }
    return 1;
}

void holdClockAndEvents() {
    Hooks& all = hooks();
    all.SDL_GetTicks = [] { return game->clockMs; };
    all.SDL_Delay = [](Uint32 ms) {
        note(text("SDL_Delay(%u)", ms));
        game->clockMs += ms;
    };
    all.SDL_PollEvent = pollEvent;
    all.SDL_Flip = flip;
}

// The log. A line is written after its call, with the result where there may be a bad one.

void noteStartAndEnd() {
    Hooks& all = hooks();
    all.SDL_Init = [](Uint32 flags) {
        const int result = real::SDL_Init(flags);
        note(text("SDL_Init(0x%x) = %i", flags, result));
        return result;
    };
    all.SDL_SetVideoMode = [](int width, int height, int bits, Uint32 flags) {
        SDL_Surface* screen = real::SDL_SetVideoMode(width, height, bits, flags);
        game->log.name(screen, "screen");
        note(text("SDL_SetVideoMode(%i, %i, %i, 0x%x) = %s", width, height, bits, flags,
                  game->log.nameOf(screen).c_str()));
        return screen;
    };
    all.SDL_ShowCursor = [](int toggle) {
        note(text("SDL_ShowCursor(%i)", toggle));
        return real::SDL_ShowCursor(toggle);
    };
    all.SDL_Quit = [] {
        note("SDL_Quit()");
        real::SDL_Quit();
    };
}

void notePictures() {
    Hooks& all = hooks();
    all.IMG_Load = [](const char* file) {
        SDL_Surface* picture = real::IMG_Load(file);
        game->log.name(picture, file);
        note(picture == nullptr ? text("IMG_Load(%s) = none", file)
                                : text("IMG_Load(%s) = %i x %i", file, picture->w, picture->h));
        return picture;
    };
    all.SDL_UpperBlit = [](SDL_Surface* from, SDL_Rect* fromRect, SDL_Surface* to,
                           SDL_Rect* toRect) {
        game->log.countDrawing(from);
        return real::SDL_UpperBlit(from, fromRect, to, toRect);
    };
}

void noteSounds() {
    Hooks& all = hooks();
    all.Mix_OpenAudio = [](int rate, Uint16 format, int channels, int chunkSize) {
        const int result = real::Mix_OpenAudio(rate, format, channels, chunkSize);
        note(text("Mix_OpenAudio(%i, 0x%x, %i, %i) = %i", rate, format, channels, chunkSize,
                  result));
        return result;
    };
    all.SDL_RWFromFile = [](const char* file, const char* mode) {
        game->lastOpened = file;
        return real::SDL_RWFromFile(file, mode);
    };
    all.Mix_LoadWAV_RW = [](SDL_RWops* source, int freeSource) {
        Mix_Chunk* sound = real::Mix_LoadWAV_RW(source, freeSource);
        game->log.name(sound, game->lastOpened);
        note(text("Mix_LoadWAV_RW(%s) = %s", game->lastOpened.c_str(),
                  sound == nullptr ? "none" : "sound"));
        return sound;
    };
    all.Mix_PlayChannelTimed = [](int channel, Mix_Chunk* sound, int loops, int ticks) {
        note(text("Mix_PlayChannelTimed(%i, %s, %i, %i)", channel, game->log.nameOf(sound).c_str(),
                  loops, ticks));
        return real::Mix_PlayChannelTimed(channel, sound, loops, ticks);
    };
    all.Mix_FadeOutChannel = [](int channel, int ms) {
        note(text("Mix_FadeOutChannel(%i, %i)", channel, ms));
        return real::Mix_FadeOutChannel(channel, ms);
    };
    all.Mix_FadeOutMusic = [](int ms) {
        note(text("Mix_FadeOutMusic(%i)", ms));
        return real::Mix_FadeOutMusic(ms);
    };
    all.Mix_CloseAudio = [] {
        note("Mix_CloseAudio()");
        real::Mix_CloseAudio();
    };
}

// Failures and counts: one layer around every function, hooked or not.

// The failure of this function that the scenario wants, or null.
const Failure* failureOf(const std::string& function) {
    for (const Failure& failure : game->scenario.failures) {
        if (failure.function == function) {
            return &failure;
        }
    }
    return nullptr;
}

template <typename Result, typename... Arguments>
void wrap(const char* name, std::function<Result(Arguments...)>& hook,
          Result (*realFunction)(Arguments...)) {
    std::function<Result(Arguments...)> next = hook;
    if (!next) {
        next = realFunction;
    }
    const Failure* failure = failureOf(name);
    hook = [name, next, failure, calls = Uint32{0}](Arguments... arguments) mutable -> Result {
        game->log.countCall(name);
        ++calls;
        [[maybe_unused]] const bool failing = failure != nullptr && calls == failure->call;
        if constexpr (std::is_pointer_v<Result> || std::is_same_v<Result, int>) {
            if (failing) {
                note(text("%s fails", name));
                SDL_SetError("%s", failure->text.c_str());
                if constexpr (std::is_pointer_v<Result>) {
                    return nullptr;
                } else {
                    return -1;
                }
            }
        }
        return next(arguments...);
    };
}

bool canFail(const std::string& function) {
    bool can = false;
#define KRAVOLTIX_FRONT_CAN_FAIL(name, result, parameters, arguments)                              \
    can = can || (function == #name && (std::is_pointer_v<result> || std::is_same_v<result, int>));
    KRAVOLTIX_FRONT_FUNCTIONS(KRAVOLTIX_FRONT_CAN_FAIL)
#undef KRAVOLTIX_FRONT_CAN_FAIL
    return can && function != NOT_TO_FAIL;
}

void wrapEverything() {
#define KRAVOLTIX_FRONT_WRAP(name, result, parameters, arguments)                                  \
    wrap(#name, hooks().name, &real::name);
    KRAVOLTIX_FRONT_FUNCTIONS(KRAVOLTIX_FRONT_WRAP)
#undef KRAVOLTIX_FRONT_WRAP
}

// Start and end.

void loadScenario(const char* path) {
    std::ifstream in(path);
    if (!in) {
        stop(STATUS_BAD_SCENARIO, std::string(path) + ": cannot be read");
    }
    std::string error;
    if (!readScenario(in, path, game->scenario, error)) {
        stop(STATUS_BAD_SCENARIO, error);
    }
    for (const Failure& failure : game->scenario.failures) {
        if (!canFail(failure.function)) {
            stop(STATUS_BAD_SCENARIO, std::string(path) + ": " + failure.function +
                                          " is no function of the game that can fail");
        }
    }
    game->clockMs = game->scenario.startMs;
    game->scripted = true;
}

// Runs before main(), in the game's main thread.
__attribute__((constructor)) void begin() {
    game = new Replay;
    if (const char* path = std::getenv(SCENARIO_VARIABLE)) {
        loadScenario(path);
        holdClockAndEvents();
    }
    if (const char* folder = std::getenv(PICTURES_VARIABLE)) {
        game->pictureFolder = folder;
    }
    const char* calls = std::getenv(CALLS_VARIABLE);
    if (calls != nullptr && !game->log.open(calls)) {
        stop(STATUS_BAD_SCENARIO, std::string("cannot write ") + calls);
    }
    noteStartAndEnd();
    notePictures();
    noteSounds();
    wrapEverything();
    // Registered before the game's own handlers, so it runs after them and sees SDL_Quit.
    std::atexit([] { game->log.writeCounts(); });
}

}  // namespace
}  // namespace front
