// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_TESTS_SUPPORT_GAME_H
#define KRAVOLTIX_TESTS_SUPPORT_GAME_H

#include "driver/battlefield.h"

#include <deque>
#include <functional>
#include <map>
#include <string>
#include <vector>

// A whole game under a test's hand. Since constructing a BattleField plays it to its end, the test
// comes in at SDL_Flip, the point between two frames: there it reads and steers every field, and
// there it queues the events that end the game.
//
// The clock and the event queue are the test's own. Pictures have their true size and one plain
// colour, sounds are empty, and nothing is heard; screen and blits are SDL's. One game in a
// process: it takes the memory of a real one, and that memory holds garbage before the game starts.
class Game {
public:
    // Puts the hooks in front of the libraries; a test may then replace some of them.
    Game();
    ~Game();

    Game(const Game&) = delete;
    Game& operator=(const Game&) = delete;

    // Plays a game. Each frame ends with `perFrame`, called after the picture is complete and
    // before the events of that pass are handled; the clock that it sets is read at the pass's end.
    void play(const std::function<void()>& perFrame);

    // Plays a game that is held at its first frame: `test` runs once there, then the window closes.
    // The game waits for its title then (PHASE_WAIT), and it has drawn one frame of 266 ms.
    void hold(const std::function<void()>& test);

    // While the game is held: one frame of `ms` milliseconds, then the queued events. The clock
    // stays as the test has set it.
    void frame(Uint32 ms);

    // While the game is held: play has begun, and the message line has nothing to say.
    void startPlay();

    // While the game is held: stands in a phase of the intro, as a game does that comes to it, and
    // will not leave it by itself within a few short frames.
    void enterPhase(int phase);

    // While the game is held: takes all enemies, or all but one, out of the game.
    void withoutEnemies();
    void onlyEnemy(int slot);

    void press(SDLKey key);
    void release(SDLKey key);
    void closeWindow();
    void queue(const SDL_Event& queued);

    // The log since the last call of either.
    std::vector<std::string> takeLog();
    // The same, only entries that start with one of these words.
    std::vector<std::string> takeLog(const std::vector<std::string>& starts);

    // Adds to the log; for hooks of a test's own.
    void note(const std::string& entry);

    // The name in the log of a picture or sound: its file, or "null".
    std::string nameOf(const void* pictureOrSound) const;

    // The arguments of the constructor.
    int width = 640;
    int height = 480;
    bool fullscreen = false;
    bool noSound = false;

    Uint32 clock = 0;  // milliseconds; SDL_Delay() moves it on
    int passes = 0;    // frames of the game's own loop so far
    BattleField& field;

    // Everything that the libraries were asked and everything that was printed, in the order in
    // which it happened. A printed line starts with "> "; a blit reads
    //     blit FILE [x y w h] at X Y
    // with the part of the picture that was asked for, "all" for the whole.
    std::vector<std::string> log;
    std::string text;  // all that was printed

    bool echoToError = false;  // also writes the log to standard error, for games that exit

private:
    void noteText();
    void putStartHooks();
    void putLoopHooks();
    void putPictureHooks();
    void putSoundHooks();
    void flipped();
    int poll(SDL_Event* next);
    SDL_Surface* load(const char* file);
    void captureText();
    void releaseText();

    std::function<void()> betweenFrames;
    bool inTest = false;
    bool audioIsOpen = false;
    std::deque<SDL_Event> events;
    std::map<const void*, std::string> names;
    std::map<const void*, std::string> openFiles;
    int capture = -1;  // descriptor of what was printed
    int kept = -1;     // the real standard output
    size_t noted = 0;  // characters of `text` that the log has
};

#endif
