// SPDX-License-Identifier: MIT
#include "front/session.h"

#include "front/front.h"
#include "front/picture.h"
#include "front/streams.h"

#include <SDL_image.h>

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <functional>
#include <sys/mman.h>
#include <type_traits>
#include <unistd.h>

namespace front {
namespace {

constexpr char NOT_TO_FAIL[] = "SDL_PollEvent";  // has no failure: 0 means that the queue is empty

// Where the display writes the player's counters, and the width of their digits.
constexpr int LASERS_Y = 472;
constexpr int ROCKETS_Y = 433;
constexpr int HUNDREDS_X = 19;
constexpr int SMALL_DIGIT_PX = 4;
constexpr char ENERGY_BAR[] = "display/energy01.png";
constexpr char SMALL_DIGITS[] = "fonts/impact/numbers_mini.png";
constexpr Uint32 MOST_ENERGY = 65;

// What can fail while a game starts; the rest fails with the program, not with the machine.
constexpr const char* START_FUNCTIONS[] = {"SDL_Init",       "SDL_SetVideoMode",  "SDL_RWFromFile",
                                           "SDL_LoadBMP_RW", "SDL_DisplayFormat", "IMG_Load",
                                           "Mix_OpenAudio",  "Mix_LoadWAV_RW"};

constexpr Uint32 MS_PER_SECOND = 1000;
constexpr Uint32 LATE_MS = 50;  // a watched game that is so late skips showing frames

std::string text(const char* format, ...) __attribute__((format(printf, 1, 2)));
std::string text(const char* format, ...) {
    char line[512];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(line, sizeof line, format, arguments);
    va_end(arguments);
    return line;
}

Uint64 realMs() {
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<Uint64>(now.tv_sec) * MS_PER_SECOND +
           static_cast<Uint64>(now.tv_nsec) / 1000000;
}

std::string libraryVersion() {
    const SDL_version* sdl = SDL_Linked_Version();
    return text("SDL %i.%i.%i", sdl->major, sdl->minor, sdl->patch);
}

// The next entry of a list when its moment has come, else null; the list then goes on behind it.
template <typename Entry>
const Entry* nextDue(const std::vector<Entry>& list, size_t& next, Uint32 frame, Uint32 clockMs) {
    if (next == list.size() || !list[next].when.isDue(frame, clockMs)) {
        return nullptr;
    }
    return &list[next++];
}

bool isOfMixer(const std::string& function) {
    return function.compare(0, 4, "Mix_") == 0;
}

// Sets a decimal digit of a number: place 100, 10 or 1.
Uint32 withDigit(Uint32 number, Uint32 place, Uint32 digit) {
    return number - number / place % 10 * place + digit * place;
}

}  // namespace

Session::Session(const SessionOptions& wanted) : options(wanted) {
    const Scenario& given = options.script.given;
    for (const Failure& failure : given.failures) {
        if (!canFail(failure.function)) {
            stop(STATUS_BAD_SCRIPT, failure.function + " is no function of the game that can fail");
        }
    }
    if (options.scripted) {
        clockMs = given.startMs;
    }
    if (!options.callsTo.empty() || !options.recordTo.empty()) {
        fillClosedStreams();
    }
    if (!options.callsTo.empty() && !log.open(options.callsTo.c_str())) {
        stop(STATUS_BAD_SCRIPT, "cannot write " + options.callsTo);
    }
    if (!options.recordTo.empty()) {
        if (!recorder.open(options.recordTo)) {
            stop(STATUS_BAD_SCRIPT,
                 "cannot write " + options.recordTo + ": " + std::strerror(errno));
        }
        recorder.head.arguments = options.arguments;
        recorder.head.startMs = clockMs;
        recorder.head.libraries = libraryVersion();
        recorder.head.failures = given.failures;
        captureText();
    }
}

void Session::putHooks() {
    holdClockAndEvents();
    noteStartAndEnd();
    notePictures();
    noteSounds();
    wrapEverything();
}

void Session::end(int status) {
    if (recorder.isOpen()) {
        collectText();
        recorder.end(clockMs, static_cast<Uint32>(status));
    }
    log.writeCounts();
}

void Session::stop(int status, const std::string& message) {
    std::fflush(stdout);
    if (recorder.isOpen()) {
        end(status);
    }
    std::fprintf(stderr, "front: %s\n", message.c_str());
    _exit(status);
}

void Session::note(const std::string& line) {
    log.write(clockMs, line);
    recordWantedCall(line);
}

// Calls of the mixer are recorded in any case.
void Session::recordWantedCall(const std::string& line) {
    if (!recorder.isOpen() || isOfMixer(line)) {
        return;
    }
    for (const Expectation& wanted : options.script.given.expectations) {
        if (wanted.kind == Expectation::CALL &&
            line.compare(0, wanted.text.size(), wanted.text) == 0) {
            recorder.otherCall(clockMs, line);
            return;
        }
    }
}

// The mixer's calls are one of the three things that a replay is compared by. A call that failed is
// written by wrap(), in one way whether the machine or the script made it fail.
void Session::noteMixer(const std::string& line, bool succeeded) {
    note(line);
    if (recorder.isOpen() && succeeded) {
        recordCall(line);
    }
}

void Session::recordCall(const std::string& line) {
    recorder.call(frame == 0 ? clockMs - recorder.head.startMs : clockMs, line);
}

// The game's text goes into a file without a name, from which it is read between frames. So it is
// known after which frame it was printed, and no reader can hold the game up.

void Session::captureText() {
    std::fflush(stdout);
    textFile = memfd_create("text", MFD_CLOEXEC);
    realOutput = dup(STDOUT_FILENO);
    if (textFile < 0 || dup2(textFile, STDOUT_FILENO) < 0) {
        stop(STATUS_BAD_SCRIPT, "the game's text cannot be caught");
    }
}

void Session::collectText() {
    std::fflush(stdout);
    char buffer[4096];
    for (ssize_t count; (count = pread(textFile, buffer, sizeof buffer, textRead)) > 0;) {
        textRead += count;
        recorder.text({buffer, static_cast<size_t>(count)});
        if (realOutput >= 0 && write(realOutput, buffer, static_cast<size_t>(count)) < 0) {
            realOutput = -1;  // whoever read it has gone
        }
    }
}

// Clock, events and pictures.

void Session::holdClockAndEvents() {
    Hooks& all = hooks();
    if (options.scripted || recorder.isOpen()) {
        all.SDL_GetTicks = [this] {
            startLiveClock();
            return clockMs;
        };
        all.SDL_Delay = [this](Uint32 ms) { delay(ms); };
        all.SDL_Flip = [this](SDL_Surface* shown) { return flip(shown); };
    }
    if (options.scripted) {
        all.SDL_PollEvent = [this](SDL_Event* event) { return pollScripted(event); };
    } else if (recorder.isOpen()) {
        all.SDL_PollEvent = [this](SDL_Event* event) { return pollLive(event); };
    }
}

int Session::flip(SDL_Surface* shown) {
    screen = shown;
    if (recorder.isOpen()) {
        collectText();
    }
    return options.scripted ? flipScripted(shown) : flipLive(shown);
}

int Session::flipScripted(SDL_Surface* shown) {
    if (frame == 0) {
        firstFrameMs = clockMs;
        watchStartMs = realMs();
    }
    countWantedPixels(shown);
    ++frame;
    frameMs = nextFrameMs();
    keepPictures(shown);
    if (frame > options.script.given.lastFrame) {
        --frame;
        stop(STATUS_ENDLESS_GAME, "frame " + std::to_string(options.script.given.lastFrame) +
                                      " is over and the game still runs");
    }
    if (recorder.isOpen()) {
        recordFrame(pictureHash(shown), frameMs);
    }
    clockMs += frameMs;
    showFramesUntil(clockMs, shown);
    if (options.speed <= 0) {
        return real::SDL_Flip(shown);
    }
    const int result = realMs() < realDueMs() + LATE_MS ? real::SDL_Flip(shown) : 0;
    waitForMoment();
    return result;
}

int Session::flipLive(SDL_Surface* shown) {
    startLiveClock();
    ++frame;
    const Uint64 hash = pictureHash(shown);
    const int result = real::SDL_Flip(shown);
    const Uint32 now = real::SDL_GetTicks() + liveOffsetMs;
    // The game may have slept ahead of the real clock, by the rounding of its last sleep.
    const Uint32 ms = now > clockMs ? now - clockMs : 0;
    recordFrame(hash, ms);
    clockMs += ms;
    return result;
}

// The game's clock starts when the game first asks for it, after everything has been loaded. One below
// the game's own first frame time would make its second one wrap.
void Session::startLiveClock() {
    if (options.scripted || liveClockRuns) {
        return;
    }
    liveClockRuns = true;
    const Uint32 now = real::SDL_GetTicks();
    clockMs = std::max(now, Scenario::DEFAULT_START_MS);
    liveOffsetMs = clockMs - now;
    recorder.head.startMs = clockMs;
}

void Session::recordFrame(Uint64 hash, Uint32 ms) {
    const bool changed = lastHud.energy != hud.energy || lastHud.lasers != hud.lasers ||
                         lastHud.rockets != hud.rockets;
    if (hudIsShown && changed) {
        recorder.hud(hud.energy, hud.lasers, hud.rockets);
        lastHud = hud;
    }
    recorder.frame(hash, ms);
}

Uint32 Session::nextFrameMs() {
    const Scenario& given = options.script.given;
    while (nextRun < given.frameRuns.size() && framesOfRun == given.frameRuns[nextRun].frames) {
        ++nextRun;
        framesOfRun = 0;
    }
    if (nextRun < given.frameRuns.size()) {
        ++framesOfRun;
        return given.frameRuns[nextRun].ms;
    }
    Uint32 ms = frameMs;
    while (const FrameTime* entry = nextDue(given.frameTimes, nextFrameTime, frame, clockMs)) {
        ms = entry->ms;
    }
    return ms;
}

void Session::keepPictures(SDL_Surface* shown) {
    const auto keep = [&](const KeptPicture& picture) {
        const std::string path =
            picture.file.front() == '/' ? picture.file : options.pictureFolder + "/" + picture.file;
        if (SDL_SaveBMP(shown, path.c_str()) != 0) {
            stop(STATUS_BAD_SCRIPT, "cannot write " + path + ": " + SDL_GetError());
        }
    };
    while (const KeptPicture* entry =
               nextDue(options.script.given.pictures, nextPicture, frame, clockMs)) {
        keep(*entry);
    }
    while (const KeptPicture* entry = nextDue(options.pictures, nextOption, frame, clockMs)) {
        keep(*entry);
    }
}

void Session::countWantedPixels(const SDL_Surface* shown) {
    if (!recorder.isOpen()) {
        return;
    }
    for (const Expectation& wanted : options.script.given.expectations) {
        if (wanted.kind == Expectation::PIXELS && wanted.firstFrame == frame + 1) {
            recorder.pixels(wanted.box, wanted.colour,
                            countPixels(shown, wanted.box, wanted.colour));
        }
    }
}

// Frame k of a film is what the screen shows k / rate seconds after the first picture.
void Session::showFramesUntil(Uint32 untilMs, const SDL_Surface* shown) {
    if (options.framesTo < 0 || shown == nullptr) {
        return;
    }
    const Uint64 elapsed = untilMs - firstFrameMs;
    while (framesShown * MS_PER_SECOND < elapsed * options.framesPerSecond) {
        if (!writePicture(shown, options.framesTo)) {
            stop(STATUS_BAD_SCRIPT, "the film cannot be written");
        }
        ++framesShown;
    }
}

// When the real clock has come as far as a watched game's.
Uint64 Session::realDueMs() const {
    return watchStartMs +
           static_cast<Uint64>(static_cast<double>(clockMs - firstFrameMs) / options.speed);
}

void Session::waitForMoment() {
    const Uint64 due = realDueMs();
    const Uint64 now = realMs();
    if (now < due) {
        real::SDL_Delay(static_cast<Uint32>(due - now));
    }
}

void Session::delay(Uint32 ms) {
    note(text("SDL_Delay(%u)", ms));
    clockMs += ms;
    if (!options.scripted) {
        real::SDL_Delay(ms);
        return;
    }
    showFramesUntil(clockMs, screen);
    if (options.speed > 0) {
        waitForMoment();
    }
}

int Session::pollScripted(SDL_Event* event) {
    if (quitIsAsked(event)) {
        return 1;
    }
    const ScriptedEvent* entry = nextDue(options.script.given.events, nextEvent, frame, clockMs);
    if (entry == nullptr) {
        return 0;
    }
    *event = SDL_Event();
    event->type = entry->type;
    if (entry->type != SDL_QUIT) {
        event->key.state = entry->type == SDL_KEYDOWN ? SDL_PRESSED : SDL_RELEASED;
        event->key.keysym.sym = entry->key;
    }
    if (recorder.isOpen()) {
        recorder.event(entry->type, entry->key);
    }
    return 1;
}

// Whoever watches a scripted game may leave it, with Escape or with the window; a signal that asks
// the process to end counts too. The game then takes its leave in its own way.
bool Session::quitIsAsked(SDL_Event* event) {
    SDL_Event real = {};
    while (real::SDL_PollEvent(&real) != 0) {
        const bool escape =
            options.speed > 0 && real.type == SDL_KEYDOWN && real.key.keysym.sym == SDLK_ESCAPE;
        if (real.type == SDL_QUIT || escape) {
            *event = SDL_Event();
            event->type = SDL_QUIT;
            if (recorder.isOpen()) {
                recorder.event(SDL_QUIT, SDLK_UNKNOWN);
            }
            return true;
        }
    }
    return false;
}

// Keys and the window's end are all that the game takes; what it would let pass is not told to it,
// so that a recording holds all that it was told.
int Session::pollLive(SDL_Event* event) {
    while (real::SDL_PollEvent(event) != 0) {
        const bool isKey = event->type == SDL_KEYDOWN || event->type == SDL_KEYUP;
        const SDLKey key = isKey ? event->key.keysym.sym : SDLK_UNKNOWN;
        if (event->type == SDL_QUIT || (isKey && key > SDLK_UNKNOWN && key < SDLK_LAST)) {
            recorder.event(event->type, key);
            return 1;
        }
    }
    return 0;
}

// The log. A line is written after its call, with the result where there may be a bad one.

void Session::noteStartAndEnd() {
    Hooks& all = hooks();
    all.SDL_Init = [this](Uint32 flags) {
        const int result = real::SDL_Init(flags);
        note(text("SDL_Init(0x%x) = %i", flags, result));
        return result;
    };
    all.SDL_SetVideoMode = [this](int width, int height, int bits, Uint32 flags) {
        SDL_Surface* made = real::SDL_SetVideoMode(width, height, bits, flags);
        log.name(made, "screen");
        note(text("SDL_SetVideoMode(%i, %i, %i, 0x%x) = %s", width, height, bits, flags,
                  log.nameOf(made).c_str()));
        return made;
    };
    all.SDL_ShowCursor = [this](int toggle) {
        note(text("SDL_ShowCursor(%i)", toggle));
        return real::SDL_ShowCursor(toggle);
    };
    all.SDL_Quit = [this] {
        note("SDL_Quit()");
        real::SDL_Quit();
    };
}

void Session::notePictures() {
    Hooks& all = hooks();
    all.IMG_Load = [this](const char* file) {
        SDL_Surface* picture = real::IMG_Load(file);
        log.name(picture, file);
        note(picture == nullptr ? text("IMG_Load(%s) = none", file)
                                : text("IMG_Load(%s) = %i x %i", file, picture->w, picture->h));
        noteFile(file);
        if (std::strcmp(file, ENERGY_BAR) == 0) {
            energyBar = picture;
        } else if (std::strcmp(file, SMALL_DIGITS) == 0) {
            smallDigits = picture;
        }
        return picture;
    };
    all.SDL_UpperBlit = [this](SDL_Surface* from, SDL_Rect* part, SDL_Surface* to,
                               SDL_Rect* place) {
        log.countDrawing(from);
        noteBlit(from, part, place);
        recordWantedDrawing(from, part, place);
        return real::SDL_UpperBlit(from, part, to, place);
    };
}

// Each file once, although some are loaded for each enemy anew.
void Session::noteFile(const char* file) {
    std::vector<LoadedFile>& files = recorder.head.files;
    const bool isNew = std::none_of(files.begin(), files.end(),
                                    [&](const LoadedFile& other) { return other.file == file; });
    if (recorder.isOpen() && isNew) {
        files.push_back({file, fileHash(file)});
    }
}

// Reads the display as the player does: the height of the energy bar, the digits of the counters.
void Session::noteBlit(const SDL_Surface* from, const SDL_Rect* part, const SDL_Rect* place) {
    if (from == nullptr || part == nullptr || place == nullptr) {
        return;
    }
    if (from == energyBar) {
        hud.energy = part->h <= MOST_ENERGY ? part->h : 0;
        hudIsShown = true;
    } else if (from == smallDigits && (place->y == LASERS_Y || place->y == ROCKETS_Y)) {
        constexpr Uint32 PLACES[] = {100, 10, 1};
        const int digit = (place->x - HUNDREDS_X) / SMALL_DIGIT_PX;
        if (digit >= 0 && digit < 3) {
            Uint32& number = place->y == LASERS_Y ? hud.lasers : hud.rockets;
            number =
                withDigit(number, PLACES[digit], static_cast<Uint32>(part->x / SMALL_DIGIT_PX));
        }
    }
}

void Session::recordWantedDrawing(const SDL_Surface* from, const SDL_Rect* part,
                                  const SDL_Rect* place) {
    if (!recorder.isOpen()) {
        return;
    }
    for (const Expectation& wanted : options.script.given.expectations) {
        const bool isNow = wanted.firstFrame <= frame + 1 && frame + 1 <= wanted.lastFrame;
        if (wanted.kind == Expectation::DRAWN && isNow && wanted.text == log.nameOf(from)) {
            recorder.drawing(wanted.text, part, place);
            return;
        }
    }
}

void Session::noteSounds() {
    Hooks& all = hooks();
    all.Mix_OpenAudio = [this](int rate, Uint16 format, int channels, int chunkSize) {
        const int result = real::Mix_OpenAudio(rate, format, channels, chunkSize);
        audioIsOpen = result == 0;
        noteMixer(
            text("Mix_OpenAudio(%i, 0x%x, %i, %i) = %i", rate, format, channels, chunkSize, result),
            audioIsOpen);
        return result;
    };
    all.SDL_RWFromFile = [this](const char* file, const char* mode) {
        lastOpened = file;
        noteFile(file);
        return real::SDL_RWFromFile(file, mode);
    };
    all.Mix_LoadWAV_RW = [this](SDL_RWops* source, int freeSource) {
        Mix_Chunk* sound = real::Mix_LoadWAV_RW(source, freeSource);
        log.name(sound, lastOpened);
        noteMixer(text("Mix_LoadWAV_RW(%s) = %s", lastOpened.c_str(),
                       sound == nullptr ? "none" : "sound"),
                  sound != nullptr);
        return sound;
    };
    all.Mix_PlayChannelTimed = [this](int channel, Mix_Chunk* sound, int loops, int ticks) {
        noteMixer(text("Mix_PlayChannelTimed(%i, %s, %i, %i)", channel, log.nameOf(sound).c_str(),
                       loops, ticks));
        return real::Mix_PlayChannelTimed(channel, sound, loops, ticks);
    };
    all.Mix_FadeOutChannel = [this](int channel, int ms) {
        noteMixer(text("Mix_FadeOutChannel(%i, %i)", channel, ms));
        return real::Mix_FadeOutChannel(channel, ms);
    };
    all.Mix_FadeOutMusic = [this](int ms) {
        noteMixer(text("Mix_FadeOutMusic(%i)", ms));
        return real::Mix_FadeOutMusic(ms);
    };
    all.Mix_CloseAudio = [this] {
        noteMixer("Mix_CloseAudio()");
        real::Mix_CloseAudio();
    };
}

// Failures and counts: one layer around every function, hooked or not.

const Failure* Session::failureOf(const char* function, Uint32 call) const {
    for (const Failure& failure : options.script.given.failures) {
        if (failure.call == call && failure.function == function) {
            return &failure;
        }
    }
    return nullptr;
}

// What failed for the player fails again when the game is replayed, whatever machine replays it.
void Session::noteFailure(const char* function, Uint32 call) {
    const bool isStart =
        std::any_of(std::begin(START_FUNCTIONS), std::end(START_FUNCTIONS),
                    [&](const char* other) { return std::strcmp(other, function) == 0; });
    const bool isSilence = std::strcmp(function, "Mix_LoadWAV_RW") == 0 && !audioIsOpen;
    if (!recorder.isOpen()) {
        return;
    }
    if (isOfMixer(function)) {
        recordCall(text("%s fails", function));
    }
    if (isStart && frame == 0 && !options.scripted && !isSilence) {
        recorder.head.failures.push_back({function, call, SDL_GetError()});
    }
}

template <typename Result, typename... Arguments>
void Session::wrap(const char* name, std::function<Result(Arguments...)>& hook,
                   Result (*realFunction)(Arguments...)) {
    std::function<Result(Arguments...)> next = hook;
    if (!next) {
        next = realFunction;
    }
    hook = [this, name, next, calls = Uint32{0}](Arguments... arguments) mutable -> Result {
        log.countCall(name);
        ++calls;
        if constexpr (std::is_pointer_v<Result> || std::is_same_v<Result, int>) {
            const Failure* failure = failureOf(name, calls);
            Result result = {};
            if constexpr (!std::is_pointer_v<Result>) {
                result = -1;
            }
            const Result failed = result;
            if (failure != nullptr) {
                note(text("%s fails", name));
                SDL_SetError("%s", failure->text.c_str());
            } else {
                result = next(arguments...);
            }
            if (result == failed) {
                noteFailure(name, calls);
            }
            return result;
        } else {
            return next(arguments...);
        }
    };
}

bool Session::canFail(const std::string& function) {
    bool can = false;
#define KRAVOLTIX_FRONT_CAN_FAIL(name, result, parameters, arguments)                              \
    can = can || (function == #name && (std::is_pointer_v<result> || std::is_same_v<result, int>));
    KRAVOLTIX_FRONT_FUNCTIONS(KRAVOLTIX_FRONT_CAN_FAIL)
#undef KRAVOLTIX_FRONT_CAN_FAIL
    return can && function != NOT_TO_FAIL;
}

void Session::wrapEverything() {
#define KRAVOLTIX_FRONT_WRAP(name, result, parameters, arguments)                                  \
    wrap(#name, hooks().name, &real::name);
    KRAVOLTIX_FRONT_FUNCTIONS(KRAVOLTIX_FRONT_WRAP)
#undef KRAVOLTIX_FRONT_WRAP
}

}  // namespace front
