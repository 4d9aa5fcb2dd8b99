// SPDX-License-Identifier: MIT
// Loaded before the unmodified game with LD_PRELOAD: the game stands on a stage. Its window, its
// keys and its sounds are real; only the clock is held, so that a test can stop the game at a
// frame, look at the screen as long as it likes, and know what must be seen there.
//
// The test talks over a socket, whose descriptor is in KRAVOLTIX_STAGE, a line at a time. The stage
// answers each command with one line:
//     frames N MS          plays N frames, MS each   frame F
//     live N               N frames on the real clock  live ZEROES MS
//     push down|up KEY     queues a key event        pushed
//     keys N               waits for N key events    keys down:97 up:97 ...
//     picture FILE         keeps the screen          kept
//     show                 flips the screen again    shown
// Key events reach the game in the frame after the `keys` that waited for them. ZEROES are the
// frames in which no millisecond passed, after which the game sleeps.
#include "front/front.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <poll.h>
#include <string>
#include <unistd.h>

namespace front {
namespace {

constexpr Uint32 START_MS = 266;
constexpr Uint32 FIRST_FRAME_MS = 20;
constexpr int SHOW_AGAIN_MS = 10;      // while the game is held, for displays that drop pictures
constexpr int STATUS_LEFT_ALONE = 96;  // the test has gone

int testFd = -1;
std::string unread;  // of the test's lines

Uint32 clockMs = START_MS;
Uint32 frame = 0;
Uint32 frameMs = FIRST_FRAME_MS;
Uint32 holdAtFrame = 1;

bool isLive = false;
Uint32 liveStartMs = 0;         // on the real clock
Uint32 sleeps = 0;              // since then
std::deque<SDL_Event> arrived;  // from the display, not yet waited for
std::deque<SDL_Event> due;      // for the game's next look at its events

[[noreturn]] void leave(const char* why) {
    std::fprintf(stderr, "stage: %s\n", why);
    _exit(STATUS_LEFT_ALONE);
}

void answer(const std::string& line) {
    const std::string all = line + "\n";
    if (write(testFd, all.data(), all.size()) != static_cast<ssize_t>(all.size())) {
        leave("nobody listens");
    }
}

void takeEvents() {
    SDL_Event event = {};
    while (real::SDL_PollEvent(&event) != 0) {
        if (event.type == SDL_KEYDOWN || event.type == SDL_KEYUP || event.type == SDL_QUIT) {
            arrived.push_back(event);
        }
    }
}

// Shows the held picture again and again until the test has sent a line.
std::string nextLine(SDL_Surface* screen) {
    for (;;) {
        const size_t end = unread.find('\n');
        if (end != std::string::npos) {
            const std::string line = unread.substr(0, end);
            unread.erase(0, end + 1);
            return line;
        }
        pollfd waiting = {testFd, POLLIN, 0};
        if (poll(&waiting, 1, SHOW_AGAIN_MS) == 0) {
            real::SDL_Flip(screen);
            takeEvents();
            continue;
        }
        char buffer[512];
        const ssize_t count = read(testFd, buffer, sizeof buffer);
        if (count <= 0) {
            leave("the test has gone");
        }
        unread.append(buffer, static_cast<size_t>(count));
    }
}

std::string toldOf(const SDL_Event& event) {
    if (event.type == SDL_QUIT) {
        return "quit";
    }
    const char* way = event.type == SDL_KEYDOWN ? "down:" : "up:";
    return way + std::to_string(static_cast<int>(event.key.keysym.sym));
}

// The display sends them when it likes; the test limits the time.
void waitForKeys(size_t count, SDL_Surface* screen) {
    while (arrived.size() < count) {
        pollfd waiting = {testFd, 0, 0};
        if (poll(&waiting, 1, SHOW_AGAIN_MS) != 0) {
            leave("the test has gone");
        }
        real::SDL_Flip(screen);
        takeEvents();
    }
    std::string told = "keys";
    while (!arrived.empty()) {
        told += " " + toldOf(arrived.front());
        due.push_back(arrived.front());
        arrived.pop_front();
    }
    answer(told);
}

void push(const std::string& what) {
    const bool down = what.compare(0, 5, "down ") == 0;
    SDL_Event event = {};
    event.type = down ? SDL_KEYDOWN : SDL_KEYUP;
    event.key.state = down ? SDL_PRESSED : SDL_RELEASED;
    event.key.keysym.sym = static_cast<SDLKey>(std::atoi(what.substr(down ? 5 : 3).c_str()));
    if (SDL_PushEvent(&event) != 0) {
        leave("an event cannot be queued");
    }
    answer("pushed");
}

// The test's commands until the game may go on.
void hold(SDL_Surface* screen) {
    for (;;) {
        const std::string line = nextLine(screen);
        const std::string command = line.substr(0, line.find(' '));
        const std::string rest = line.substr(std::min(line.size(), command.size() + 1));
        if (command == "frames") {
            unsigned frames = 0;
            if (std::sscanf(rest.c_str(), "%u %u", &frames, &frameMs) != 2 || frames == 0) {
                leave("frames takes two numbers");
            }
            holdAtFrame = frame + frames;
            return;
        }
        if (command == "live") {
            holdAtFrame = frame + static_cast<Uint32>(std::atoi(rest.c_str()));
            isLive = true;
            liveStartMs = real::SDL_GetTicks();
            sleeps = 0;
            return;
        }
        if (command == "push") {
            push(rest);
        } else if (command == "keys") {
            waitForKeys(static_cast<size_t>(std::atoi(rest.c_str())), screen);
        } else if (command == "picture") {
            answer(SDL_SaveBMP(screen, rest.c_str()) == 0 ? "kept" : SDL_GetError());
        } else if (command == "show") {
            real::SDL_Flip(screen);
            takeEvents();
            answer("shown");
        } else {
            leave(("no such command: " + line).c_str());
        }
    }
}

int flip(SDL_Surface* screen) {
    const int result = real::SDL_Flip(screen);
    ++frame;
    if (!isLive) {
        clockMs += frameMs;
    }
    takeEvents();
    if (frame == holdAtFrame && isLive) {
        const Uint32 ms = real::SDL_GetTicks() - liveStartMs;
        isLive = false;
        clockMs += ms;
        answer("live " + std::to_string(sleeps) + " " + std::to_string(ms));
        hold(screen);
    } else if (frame == holdAtFrame) {
        answer("frame " + std::to_string(frame));
        hold(screen);
    }
    return result;
}

Uint32 ticks() {
    return isLive ? clockMs + real::SDL_GetTicks() - liveStartMs : clockMs;
}

void delay(Uint32 ms) {
    if (isLive) {
        ++sleeps;
        real::SDL_Delay(ms);
    } else {
        clockMs += ms;
    }
}

int pollEvent(SDL_Event* event) {
    if (due.empty()) {
        return 0;
    }
    *event = due.front();
    due.pop_front();
    return 1;
}

// Only in the game: a shell in between hands the stage on.
__attribute__((constructor)) void enter() {
    const char* descriptor = std::getenv("KRAVOLTIX_STAGE");
    if (descriptor == nullptr) {
        return;
    }
    testFd = std::atoi(descriptor);
    Hooks& all = hooks();
    all.SDL_GetTicks = ticks;
    all.SDL_Delay = delay;
    all.SDL_Flip = flip;
    all.SDL_PollEvent = pollEvent;
}

}  // namespace
}  // namespace front
