// SPDX-License-Identifier: MIT
#include "support/game.h"

#include "front/front.h"
#include "graphics/display.h"
#include "graphics/qelstring.h"
#include "objects/enemyship.h"
#include "objects/myship.h"
#include "support/surfaces.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <sstream>
#include <sys/mman.h>
#include <unistd.h>

namespace {

constexpr unsigned char GARBAGE = 0xa5;
constexpr size_t GARBAGE_BYTES = 4096;  // at both ends of an array: enough to show, cheap to write

constexpr size_t HUGE_PAGE_BYTES = size_t{2} << 20;

constexpr int TOO_MANY_PASSES = 5000;  // a game that never ends is a fault, not a wait

constexpr int COUNT_DOWN_X = 318;
constexpr int COUNT_DOWN_Y = 220;
constexpr int COUNT_DOWN_START = 5;

constexpr Colour PICTURE_COLOUR = {200, 100, 50};

struct PictureSize {
    const char* start;  // of the file's path
    int width, height;
};

// clang-format off
constexpr PictureSize PICTURE_SIZES[] = {
    {"explosions/mini/",             16,  16},
    {"explosions/",                 128, 128},
    {"ships/",                       39,  39},
    {"shots/shot01a",                 3,  11},
    {"shots/shot01b",                 9,  15},
    {"shots/e_shot01c",              11,   8},
    {"shots/item_",                  29,  29},
    {"display/enemyrect_",           13,  13},
    {"display/energy01",             10,  65},
    {"display/energyscale",           9,  67},
    {"fonts/impact/letters",        208,   9},
    {"fonts/impact/letter_cursor",   80,   9},
    {"fonts/impact/numbers_a",       60,   9},
    {"fonts/impact/numbers_mini",    40,   5},
    {"fonts/impact/fps_a",           19,   9},
    {"fonts/impact/cross",            5,   5},
};
// clang-format on

alignas(BattleField) unsigned char fieldMemory[sizeof(BattleField)];
Game* current = nullptr;

size_t roundedUp(size_t value, size_t unit) {
    return (value + unit - 1) / unit * unit;
}

bool startsWith(const std::string& whole, const std::string& start) {
    return whole.compare(0, start.size(), start) == 0;
}

std::string callOf(const char* name, const std::vector<long>& arguments) {
    std::ostringstream call;
    call << name << '(';
    for (size_t i = 0; i < arguments.size(); ++i) {
        call << (i == 0 ? "" : ", ") << arguments[i];
    }
    call << ')';
    return call.str();
}

std::string partOf(const SDL_Rect* part) {
    if (part == nullptr) {
        return "all";
    }
    std::ostringstream words;
    words << '[' << part->x << ' ' << part->y << ' ' << part->w << ' ' << part->h << ']';
    return words.str();
}

std::string placeOf(const SDL_Rect* place) {
    return " at " + std::to_string(place->x) + ' ' + std::to_string(place->y);
}

}  // namespace

// Arrays start with garbage at both ends, so that a loop that should clear them is seen to do it.
// The shot pools lie in huge pages where the system has them: most of a game's start would else be
// spent on their page faults.
void* operator new[](size_t bytes) {
    const bool isHuge = bytes >= HUGE_PAGE_BYTES;
    void* memory = isHuge ? std::aligned_alloc(HUGE_PAGE_BYTES, roundedUp(bytes, HUGE_PAGE_BYTES))
                          : std::malloc(bytes == 0 ? 1 : bytes);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    if (isHuge) {
        madvise(memory, bytes, MADV_HUGEPAGE);
    }
    const size_t end = std::min(bytes, GARBAGE_BYTES);
    std::memset(memory, GARBAGE, end);
    std::memset(static_cast<unsigned char*>(memory) + bytes - end, GARBAGE, end);
    return memory;
}

void operator delete[](void* memory) noexcept {
    std::free(memory);
}

void operator delete[](void* memory, size_t /*bytes*/) noexcept {
    std::free(memory);
}

Game::Game() : field(*reinterpret_cast<BattleField*>(fieldMemory)) {
    current = this;
    putStartHooks();
    putLoopHooks();
    putPictureHooks();
    putSoundHooks();
}

// The process goes on to its exit handlers, and SDL's is one of them.
Game::~Game() {
    front::hooks() = {};
    current = nullptr;
}

void Game::play(const std::function<void()>& perFrame) {
    betweenFrames = perFrame;
    captureText();
    std::memset(fieldMemory, GARBAGE, sizeof fieldMemory);
    new (fieldMemory) BattleField(width, height, fullscreen, noSound);
    noteText();
    releaseText();
}

void Game::hold(const std::function<void()>& test) {
    play([&] {
        ASSERT_EQ(passes, 1) << "the window was closed and the game goes on";
        test();
        closeWindow();
    });
}

void Game::frame(Uint32 ms) {
    field.frameTime = ms;
    field.animate();
    field.eventHandler();
    noteText();
}

void Game::startPlay() {
    field.gamePhase = BattleField::PHASE_PLAY;
    field.introDone = true;
    field.messageLine->typing = false;
    field.messageLine->fading = false;
    field.messageLine->idle = true;
    noteText();
    log.clear();
}

void Game::enterPhase(int phase) {
    field.gamePhase = phase;
    field.introDone = phase <= BattleField::PHASE_COUNT_DOWN;
    field.titleText->setString(field.textTitle);
    field.hintText->setString(field.textHint);
    if (phase <= BattleField::PHASE_HINT) {
        QELString& title = *field.titleText;
        title.shown = title.length;
        title.typed = true;
        title.result = 1;
    }
    field.display->setCountDownPosAndStart(COUNT_DOWN_X, COUNT_DOWN_Y, COUNT_DOWN_START);
}

void Game::withoutEnemies() {
    onlyEnemy(-1);
}

void Game::onlyEnemy(int slot) {
    field.enemiesAlive = 0;
    for (int i = 0; i < BattleField::ENEMIES; ++i) {
        if (i == slot) {
            field.enemiesAlive = 1;
        } else {
            field.myShip->shipTargetList[field.enemyShips[i]->ownIndex] = nullptr;
        }
    }
}

void Game::press(SDLKey key) {
    SDL_Event pressed = {};
    pressed.type = SDL_KEYDOWN;
    pressed.key.keysym.sym = key;
    queue(pressed);
}

void Game::release(SDLKey key) {
    SDL_Event released = {};
    released.type = SDL_KEYUP;
    released.key.keysym.sym = key;
    queue(released);
}

void Game::closeWindow() {
    SDL_Event closed = {};
    closed.type = SDL_QUIT;
    queue(closed);
}

void Game::queue(const SDL_Event& queued) {
    events.push_back(queued);
}

std::vector<std::string> Game::takeLog() {
    noteText();
    std::vector<std::string> taken;
    taken.swap(log);
    return taken;
}

std::vector<std::string> Game::takeLog(const std::vector<std::string>& starts) {
    std::vector<std::string> chosen;
    for (const std::string& entry : takeLog()) {
        for (const std::string& start : starts) {
            if (startsWith(entry, start)) {
                chosen.push_back(entry);
                break;
            }
        }
    }
    return chosen;
}

std::string Game::nameOf(const void* pictureOrSound) const {
    const auto found = names.find(pictureOrSound);
    if (found != names.end()) {
        return found->second;
    }
    return pictureOrSound == nullptr ? "null" : "unknown";
}

void Game::note(const std::string& entry) {
    noteText();
    log.push_back(entry);
    if (echoToError) {
        std::fprintf(stderr, "%s\n", entry.c_str());
    }
}

// Brings the log up to what has been printed by now.
void Game::noteText() {
    if (capture < 0) {
        return;
    }
    std::fflush(stdout);
    char buffer[4096];
    for (;;) {
        const ssize_t count =
            pread(capture, buffer, sizeof buffer, static_cast<off_t>(text.size()));
        if (count <= 0) {
            break;
        }
        text.append(buffer, static_cast<size_t>(count));
    }
    for (size_t end = text.find('\n', noted); end != std::string::npos;
         end = text.find('\n', noted)) {
        log.push_back("> " + text.substr(noted, end - noted));
        if (echoToError) {
            std::fprintf(stderr, "%s\n", log.back().c_str());
        }
        noted = end + 1;
    }
}

void Game::putStartHooks() {
    front::Hooks& hooks = front::hooks();
    hooks.SDL_Init = [this](Uint32 flags) {
        const char* what = flags == SDL_INIT_VIDEO   ? "SDL_Init(video)"
                           : flags == SDL_INIT_AUDIO ? "SDL_Init(audio)"
                                                     : "SDL_Init(something else)";
        note(what);
        return front::real::SDL_Init(flags);
    };
    hooks.SDL_SetVideoMode = [this](int w, int h, int bits, Uint32 flags) {
        note(callOf("SDL_SetVideoMode", {w, h, bits, static_cast<long>(flags)}));
        return front::real::SDL_SetVideoMode(w, h, bits, flags);
    };
    hooks.SDL_ShowCursor = [this](int toggle) {
        note(callOf("SDL_ShowCursor", {toggle}));
        return front::real::SDL_ShowCursor(toggle);
    };
    hooks.SDL_Quit = [this] {
        note("SDL_Quit()");
        front::real::SDL_Quit();
    };
}

void Game::putLoopHooks() {
    front::Hooks& hooks = front::hooks();
    hooks.SDL_GetTicks = [this] { return clock; };
    hooks.SDL_Delay = [this](Uint32 ms) {
        note(callOf("SDL_Delay", {static_cast<long>(ms)}));
        clock += ms;
    };
    hooks.SDL_PollEvent = [this](SDL_Event* next) { return poll(next); };
    hooks.SDL_Flip = [this](SDL_Surface* screen) {
        if (field.screen == nullptr) {
            return front::real::SDL_Flip(screen);  // SDL's own, while it sets the mode
        }
        note(screen == field.screen ? "flip" : "flip of another surface");
        flipped();
        return 0;
    };
}

void Game::putPictureHooks() {
    front::Hooks& hooks = front::hooks();
    hooks.IMG_Load = [this](const char* file) {
        note(std::string("load ") + file);
        return load(file);
    };
    hooks.SDL_FillRect = [this](SDL_Surface* to, SDL_Rect* rect, Uint32 colour) {
        if (to == field.screen) {
            note("clear");
        }
        return front::real::SDL_FillRect(to, rect, colour);
    };
    hooks.SDL_UpperBlit = [this](SDL_Surface* from, SDL_Rect* part, SDL_Surface* to,
                                 SDL_Rect* place) {
        note("blit " + nameOf(from) + ' ' + partOf(part) + placeOf(place));
        return front::real::SDL_UpperBlit(from, part, to, place);
    };
}

void Game::putSoundHooks() {
    front::Hooks& hooks = front::hooks();
    hooks.SDL_RWFromFile = [this](const char* file, const char* mode) {
        SDL_RWops* opened = SDL_RWFromConstMem("", 1);
        openFiles[opened] = std::string(file) + (std::strcmp(mode, "rb") == 0 ? "" : " not rb");
        return opened;
    };
    hooks.Mix_LoadWAV_RW = [this](SDL_RWops* source, int freeSource) {
        const std::string file = openFiles[source];
        note("sound " + file + (freeSource == 1 ? "" : " stays open"));
        Mix_Chunk* chunk = audioIsOpen ? new Mix_Chunk{} : nullptr;
        if (chunk != nullptr) {
            names[chunk] = file;
        }
        SDL_RWclose(source);
        return chunk;
    };
    hooks.Mix_OpenAudio = [this](int rate, Uint16 format, int channels, int chunkSize) {
        note(callOf("Mix_OpenAudio", {rate, format, channels, chunkSize}));
        audioIsOpen = true;
        return 0;
    };
    hooks.Mix_PlayChannelTimed = [this](int channel, Mix_Chunk* chunk, int loops, int ticks) {
        note("play " + nameOf(chunk) + callOf(" on", {channel, loops, ticks}));
        return channel;
    };
    hooks.Mix_FadeOutChannel = [this](int channel, int ms) {
        note(callOf("Mix_FadeOutChannel", {channel, ms}));
        return 0;
    };
    hooks.Mix_FadeOutMusic = [this](int ms) {
        note(callOf("Mix_FadeOutMusic", {ms}));
        return 0;
    };
    hooks.Mix_CloseAudio = [this] { note("Mix_CloseAudio()"); };
}

// Frames of a held game are flips too, but no passes of the loop.
void Game::flipped() {
    if (inTest) {
        return;
    }
    ++passes;
    if (passes > TOO_MANY_PASSES) {
        std::fprintf(stderr, "the game does not end\n");
        std::abort();
    }
    inTest = true;
    betweenFrames();
    inTest = false;
}

int Game::poll(SDL_Event* next) {
    if (events.empty()) {
        return 0;
    }
    *next = events.front();
    events.pop_front();
    return 1;
}

SDL_Surface* Game::load(const char* file) {
    for (const PictureSize& size : PICTURE_SIZES) {
        if (startsWith(file, size.start)) {
            SDL_Surface* picture = makePicture(size.width, size.height, PICTURE_COLOUR);
            names[picture] = file;
            return picture;
        }
    }
    ADD_FAILURE() << "the game loads an unknown picture: " << file;
    return nullptr;
}

void Game::captureText() {
    char path[] = "/tmp/kravoltix-text-XXXXXX";
    capture = mkstemp(path);
    if (capture < 0) {
        std::perror("cannot make a temporary file");
        std::abort();
    }
    unlink(path);
    std::fflush(stdout);
    kept = dup(STDOUT_FILENO);
    dup2(capture, STDOUT_FILENO);
    // A game that ends by exit() never comes back to play().
    std::atexit([] {
        if (current != nullptr) {
            current->noteText();
        }
    });
}

void Game::releaseText() {
    std::fflush(stdout);
    dup2(kept, STDOUT_FILENO);
    close(kept);
    close(capture);
    capture = -1;
    // Failures tell about themselves on standard output.
    if (testing::Test::HasFailure()) {
        std::fputs(text.c_str(), stdout);
    }
}
