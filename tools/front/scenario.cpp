// SPDX-License-Identifier: MIT
#include "front/scenario.h"

#include <cctype>
#include <limits>
#include <map>
#include <sstream>

namespace front {
namespace {

struct NamedKey {
    const char* word;
    SDLKey key;
};

// Any other key is its own character in lower case: "a" is SDLK_a.
constexpr NamedKey NAMED_KEYS[] = {
    {"return", SDLK_RETURN}, {"escape", SDLK_ESCAPE}, {"space", SDLK_SPACE}, {"up", SDLK_UP},
    {"down", SDLK_DOWN},     {"left", SDLK_LEFT},     {"right", SDLK_RIGHT},
};

bool isCharacterKey(int code) {
    return code > ' ' && code <= '~' && std::isupper(code) == 0;
}

// SDLK_UNKNOWN when there is no such key.
SDLKey keyOf(const std::string& word) {
    for (const NamedKey& named : NAMED_KEYS) {
        if (word == named.word) {
            return named.key;
        }
    }
    if (word.size() == 1 && isCharacterKey(word[0])) {
        return static_cast<SDLKey>(word[0]);
    }
    return SDLK_UNKNOWN;
}

bool isNumber(const std::string& word) {
    return !word.empty() && word.size() <= 10 &&
           word.find_first_not_of("0123456789") == std::string::npos &&
           std::stoull(word) <= std::numeric_limits<Uint32>::max();
}

// Reads one scenario. Each read function takes its words from the rest of the line and returns what
// is wrong with them, or nothing.
class Reader {
public:
    explicit Reader(Scenario& target) : scenario(target) {}

    std::string readLine(const std::string& line) {
        rest = std::istringstream(line.substr(0, line.find('#')));
        std::string word;
        if (!(rest >> word)) {
            return "";
        }
        std::string wrong = readStatement(word);
        if (wrong.empty() && rest >> word) {
            wrong = "\"" + word + "\" is one word too many";
        }
        return wrong;
    }

private:
    std::string readStatement(const std::string& word) {
        if (word == "start") {
            return readNumber("a clock reading in milliseconds", scenario.startMs);
        }
        if (word == "limit") {
            return readNumber("a frame", scenario.lastFrame);
        }
        if (word == "fail") {
            return readFailure();
        }
        if (word == "frame" || word == "ms") {
            return readMoment(word == "frame" ? When::FRAME : When::CLOCK_MS);
        }
        return "\"" + word + "\" is unknown: a line begins with start, limit, fail, frame or ms";
    }

    std::string readFailure() {
        Failure failure;
        if (!(rest >> failure.function)) {
            return "the function that fails is missing";
        }
        std::string wrong = readNumber("which call fails", failure.call);
        if (wrong.empty() && failure.call == 0) {
            return "calls are counted from 1";
        }
        std::getline(rest >> std::ws, failure.text);
        scenario.failures.push_back(failure);
        return wrong;
    }

    std::string readMoment(When::Unit unit) {
        When when = {unit, 0};
        std::string wrong =
            readNumber(unit == When::FRAME ? "a frame" : "milliseconds", when.value);
        if (!wrong.empty()) {
            return wrong;
        }
        // What stands behind a later line would never have its moment.
        if (when.value < latest[unit]) {
            return std::to_string(when.value) + " comes after " + std::to_string(latest[unit]) +
                   ": lines stand in the order in which they happen";
        }
        latest[unit] = when.value;
        return readAction(when);
    }

    std::string readAction(When when) {
        std::string word;
        rest >> word;
        if (word == "time") {
            scenario.frameTimes.push_back({when, 0});
            return readNumber("milliseconds", scenario.frameTimes.back().ms);
        }
        if (word == "down" || word == "up") {
            return readKey(when, word == "down" ? SDL_KEYDOWN : SDL_KEYUP);
        }
        if (word == "quit") {
            scenario.events.push_back({when, SDL_QUIT, SDLK_UNKNOWN});
            return "";
        }
        if (word == "picture") {
            return readPicture(when);
        }
        return "\"" + word + "\" is unknown: what happens is time, down, up, quit or picture";
    }

    std::string readKey(When when, Uint8 type) {
        std::string word;
        rest >> word;
        const SDLKey key = keyOf(word);
        if (key == SDLK_UNKNOWN) {
            return "\"" + word + "\" is no key";
        }
        scenario.events.push_back({when, type, key});
        return "";
    }

    std::string readPicture(When when) {
        std::string file;
        if (!(rest >> file)) {
            return "the picture's file is missing";
        }
        scenario.pictures.push_back({when, file});
        return "";
    }

    std::string readNumber(const std::string& what, Uint32& number) {
        std::string word;
        if (!(rest >> word)) {
            return what + " is missing";
        }
        if (!isNumber(word)) {
            return "\"" + word + "\" is no number: here stands " + what;
        }
        number = static_cast<Uint32>(std::stoull(word));
        return "";
    }

    Scenario& scenario;
    std::istringstream rest;    // of the line being read
    Uint32 latest[2] = {0, 0};  // moment so far, by unit
};

}  // namespace

bool readScenario(std::istream& in, const std::string& name, Scenario& scenario,
                  std::string& error) {
    Reader reader(scenario);
    std::string line;
    for (int number = 1; std::getline(in, line); ++number) {
        const std::string wrong = reader.readLine(line);
        if (!wrong.empty()) {
            error = name;
            error.append(":").append(std::to_string(number)).append(": ").append(wrong);
            return false;
        }
    }
    return true;
}

std::string keyWord(SDLKey key) {
    for (const NamedKey& named : NAMED_KEYS) {
        if (key == named.key) {
            return named.word;
        }
    }
    return isCharacterKey(key) ? std::string(1, static_cast<char>(key)) : "";
}

}  // namespace front
