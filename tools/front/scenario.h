// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_FRONT_SCENARIO_H
#define KRAVOLTIX_FRONT_SCENARIO_H

#include <SDL.h>

#include <istream>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// A game written down: how long each frame takes, which keys are pressed when, which pictures are
// kept, which library calls fail, and what must come of it. README.md beside this file tells the
// text format.
namespace front {

// A frame, counted by SDL_Flip from 1, or a reading of the clock in milliseconds.
struct When {
    enum Unit { FRAME, CLOCK_MS };
    Unit unit;
    Uint32 value;

    bool isDue(Uint32 frame, Uint32 clockMs) const {
        return value <= (unit == FRAME ? frame : clockMs);
    }
};

struct FrameTime {
    When when;
    Uint32 ms;
};

// So many frames one after the other that take equally long.
struct FrameRun {
    Uint32 ms;
    Uint32 frames;
};

struct ScriptedEvent {
    When when;
    Uint8 type;  // SDL_KEYDOWN, SDL_KEYUP or SDL_QUIT
    SDLKey key;  // SDLK_UNKNOWN with SDL_QUIT
};

struct KeptPicture {
    When when;
    std::string file;
};

// The n-th call of a function fails, and SDL_GetError() tells the text then.
struct Failure {
    std::string function;
    Uint32 call;
    std::string text;
};

// A corner in pixels, of a part of a picture or on the screen.
struct Corner {
    Uint32 x = 0, y = 0;
};

// What must come of the game: so many texts, calls, drawings or pixels, or the figure itself.
struct Expectation {
    enum Kind { TEXT, CALL, DRAWN, PIXELS, STATUS, FRAMES };
    Kind kind = TEXT;
    int line = 0;  // of the scenario, for whoever looks for it
    Uint32 least = 0, most = 0;
    std::string text;  // TEXT: part of what is printed; CALL: its beginning; DRAWN: the file
    Uint32 firstFrame = 0,
           lastFrame = ~0U;       // TEXT, CALL, DRAWN: what is counted; PIXELS: the frame, twice
    std::optional<Corner> part;   // DRAWN: of the picture; else any part counts
    std::optional<Corner> place;  // DRAWN: on the screen; else any place counts
    Uint32 colour = 0;            // PIXELS: 0xrrggbb
    SDL_Rect box = {0, 0, 0, 0};  // PIXELS: in screen pixels
};

struct Scenario {
    // The game's own first frame time: an earlier clock would make its second one wrap.
    static constexpr Uint32 DEFAULT_START_MS = 266;
    static constexpr Uint32 DEFAULT_FRAME_MS = 20;
    // A game that nobody ends is ended here: more than half an hour at the default frame time.
    static constexpr Uint32 DEFAULT_LAST_FRAME = 100000;

    std::string what;                    // one sentence: what this game shows
    std::vector<std::string> arguments;  // of the command line
    Uint32 startMs = DEFAULT_START_MS;
    Uint32 lastFrame = DEFAULT_LAST_FRAME;
    // The first frames' times, one by one; `frameTimes` rules behind them.
    std::vector<FrameRun> frameRuns;
    // Each list in the order of its lines: an entry waits for those before it.
    std::vector<FrameTime> frameTimes;
    std::vector<ScriptedEvent> events;
    std::vector<KeptPicture> pictures;
    std::vector<Failure> failures;
    std::vector<Expectation> expectations;
};

// Takes a line's words one after the other. A comment, from a # outside of quotes, is no word.
class Words {
public:
    explicit Words(std::string_view line);

    // The next word, empty when there is none left.
    std::string next();
    std::string peek() const;
    // A text in quotes with its escapes resolved: \n \t \" \\ and \xHH. False when none stands here.
    bool nextQuoted(std::string& text);
    bool nextNumber(Uint32& number);
    // All that is left, without blanks at either end.
    std::string rest();

private:
    void skipBlanks();

    std::string_view left;
};

bool isNumber(std::string_view word);

// The text in quotes as Words reads it: printable characters as they are, all others escaped.
std::string quoted(std::string_view text);

// Takes statements one by one. Each wrong one is answered with what is wrong; an empty answer is good.
class ScenarioReader {
public:
    explicit ScenarioReader(Scenario& target) : scenario(target) {}

    // False when no statement of a scenario begins with this word.
    static bool knows(const std::string& word);
    // What is wrong with a word that it does not know.
    static std::string unknown(const std::string& word);
    std::string readStatement(const std::string& word, Words& words, int line);

private:
    std::string readFailure(Words& words);
    std::string readMoment(When::Unit unit, Words& words);
    std::string readAction(When when, Words& words);
    std::string readKey(When when, Uint8 type, Words& words);
    std::string readPicture(When when, Words& words);
    std::string readRuns(Words& words);
    std::string readExpectation(Words& words, int line);
    std::string readCount(Expectation& wanted, Words& words);
    std::string readCounted(Expectation& wanted, Words& words);
    std::string readFrames(Expectation& wanted, Words& words);
    std::string readDrawn(Expectation& wanted, Words& words);
    std::string readPixels(Expectation& wanted, Words& words);

    Scenario& scenario;
    Uint32 latest[2] = {0, 0};  // moment so far, by unit
    Uint32 framesInRuns = 0;
};

// Reads a scenario to its end. When a line is wrong, returns false with `error` set to
// "NAME:LINE: what is wrong"; the scenario is not to be used then.
bool readScenario(std::istream& in, const std::string& name, Scenario& scenario,
                  std::string& error);

// The scenario's word for a key. Keys without a name of their own are called by SDL's number for them.
std::string keyWord(SDLKey key);

// The frame times as the statement's words: "16 17*3 16".
std::string runWords(const std::vector<FrameRun>& runs);

}  // namespace front

#endif
