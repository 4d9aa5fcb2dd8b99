// SPDX-License-Identifier: MIT
#include "front/scenario.h"

#include <algorithm>
#include <cctype>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <limits>
#include <utility>

namespace front {
namespace {

struct NamedKey {
    const char* word;
    SDLKey key;
};

// Any other key is its own character in lower case, "a" is SDLK_a, or else "key-" and SDL's number; so
// is #, which would begin a comment.
constexpr NamedKey NAMED_KEYS[] = {
    {"return", SDLK_RETURN}, {"escape", SDLK_ESCAPE}, {"space", SDLK_SPACE}, {"up", SDLK_UP},
    {"down", SDLK_DOWN},     {"left", SDLK_LEFT},     {"right", SDLK_RIGHT},
};
constexpr char NUMBERED_KEY[] = "key-";

// More frames than a month of play has; a file that asks for more is damaged.
constexpr Uint32 MOST_FRAMES = 1U << 31;

constexpr int COLOUR_DIGITS = 6;

constexpr const char* STATEMENTS[] = {"what",  "option", "start", "limit", "fail",
                                      "times", "frame",  "ms",    "expect"};

bool isCharacterKey(int code) {
    return code > ' ' && code <= '~' && code != '#' && std::isupper(code) == 0;
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
    const size_t prefix = sizeof NUMBERED_KEY - 1;
    if (word.compare(0, prefix, NUMBERED_KEY) == 0 && isNumber(word.substr(prefix))) {
        const unsigned long code = std::strtoul(word.c_str() + prefix, nullptr, 10);
        return code < SDLK_LAST ? static_cast<SDLKey>(code) : SDLK_UNKNOWN;
    }
    return SDLK_UNKNOWN;
}

bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r';
}

// The line up to its comment.
std::string_view withoutComment(std::string_view line) {
    bool inQuotes = false;
    for (size_t i = 0; i < line.size(); ++i) {
        if (inQuotes && line[i] == '\\') {
            ++i;
        } else if (line[i] == '"') {
            inQuotes = !inQuotes;
        } else if (line[i] == '#' && !inQuotes) {
            return line.substr(0, i);
        }
    }
    return line;
}

int hexDigit(char c) {
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    return c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
}

bool readColour(const std::string& word, Uint32& colour) {
    if (word.size() != COLOUR_DIGITS) {
        return false;
    }
    colour = 0;
    for (const char c : word) {
        if (hexDigit(c) < 0) {
            return false;
        }
        colour = colour << 4 | static_cast<Uint32>(hexDigit(c));
    }
    return true;
}

std::string readNumber(Words& words, const char* what, Uint32& number) {
    const std::string word = words.peek();
    if (word.empty()) {
        return std::string(what) + " is missing";
    }
    if (!words.nextNumber(number)) {
        return "\"" + word + "\" is no number: here stands " + what;
    }
    return "";
}

}  // namespace

bool isNumber(std::string_view word) {
    if (word.empty() || word.size() > 10) {
        return false;
    }
    unsigned long long value = 0;
    for (const char c : word) {
        if (c < '0' || c > '9') {
            return false;
        }
        value = value * 10 + static_cast<unsigned long long>(c - '0');
    }
    return value <= std::numeric_limits<Uint32>::max();
}

std::string quoted(std::string_view text) {
    std::string result = "\"";
    for (const char c : text) {
        const unsigned char code = static_cast<unsigned char>(c);
        if (c == '\n') {
            result += "\\n";
        } else if (c == '"' || c == '\\') {
            result += '\\';
            result += c;
        } else if (code >= ' ' && code <= '~') {
            result += c;
        } else {
            char escape[5];
            std::snprintf(escape, sizeof escape, "\\x%02x", code);
            result += escape;
        }
    }
    return result + '"';
}

Words::Words(std::string_view line) : left(withoutComment(line)) {
    skipBlanks();
}

void Words::skipBlanks() {
    while (!left.empty() && isBlank(left.front())) {
        left.remove_prefix(1);
    }
}

std::string Words::peek() const {
    size_t length = 0;
    while (length < left.size() && !isBlank(left[length])) {
        ++length;
    }
    return std::string(left.substr(0, length));
}

std::string Words::next() {
    std::string word = peek();
    left.remove_prefix(word.size());
    skipBlanks();
    return word;
}

bool Words::nextNumber(Uint32& number) {
    const std::string word = peek();
    if (!isNumber(word)) {
        return false;
    }
    number = static_cast<Uint32>(std::strtoull(word.c_str(), nullptr, 10));
    next();
    return true;
}

bool Words::nextQuoted(std::string& text) {
    if (left.empty() || left.front() != '"') {
        return false;
    }
    text.clear();
    for (size_t i = 1; i < left.size(); ++i) {
        if (left[i] == '"') {
            left.remove_prefix(i + 1);
            skipBlanks();
            return true;
        }
        if (left[i] != '\\') {
            text += left[i];
            continue;
        }
        if (++i == left.size()) {
            return false;
        }
        if (left[i] == 'n') {
            text += '\n';
        } else if (left[i] == 't') {
            text += '\t';
        } else if (left[i] == '"' || left[i] == '\\') {
            text += left[i];
        } else if (left[i] == 'x' && i + 2 < left.size() && hexDigit(left[i + 1]) >= 0 &&
                   hexDigit(left[i + 2]) >= 0) {
            text += static_cast<char>(hexDigit(left[i + 1]) * 16 + hexDigit(left[i + 2]));
            i += 2;
        } else {
            return false;
        }
    }
    return false;
}

std::string Words::rest() {
    std::string all(left);
    left = {};
    while (!all.empty() && isBlank(all.back())) {
        all.pop_back();
    }
    return all;
}

bool ScenarioReader::knows(const std::string& word) {
    return std::any_of(std::begin(STATEMENTS), std::end(STATEMENTS),
                       [&](const char* known) { return word == known; });
}

std::string ScenarioReader::unknown(const std::string& word) {
    std::string all;
    for (const char* known : STATEMENTS) {
        all += (all.empty() ? "" : ", ") + std::string(known);
    }
    return "\"" + word + "\" is unknown: a line begins with one of " + all;
}

std::string ScenarioReader::readStatement(const std::string& word, Words& words, int line) {
    if (word == "what") {
        scenario.what += (scenario.what.empty() ? "" : " ") + words.rest();
        return "";
    }
    if (word == "option") {
        scenario.arguments.emplace_back();
        return words.nextQuoted(scenario.arguments.back())
                   ? ""
                   : "the option of the game is missing: it stands in quotes";
    }
    if (word == "start") {
        return readNumber(words, "a clock reading in milliseconds", scenario.startMs);
    }
    if (word == "limit") {
        return readNumber(words, "a frame", scenario.lastFrame);
    }
    if (word == "fail") {
        return readFailure(words);
    }
    if (word == "times") {
        return readRuns(words);
    }
    if (word == "expect") {
        return readExpectation(words, line);
    }
    return readMoment(word == "frame" ? When::FRAME : When::CLOCK_MS, words);
}

std::string ScenarioReader::readFailure(Words& words) {
    Failure failure;
    failure.function = words.next();
    if (failure.function.empty()) {
        return "the function that fails is missing";
    }
    std::string wrong = readNumber(words, "which call fails", failure.call);
    if (wrong.empty() && failure.call == 0) {
        return "calls are counted from 1";
    }
    failure.text = words.rest();
    scenario.failures.push_back(failure);
    return wrong;
}

std::string ScenarioReader::readMoment(When::Unit unit, Words& words) {
    When when = {unit, 0};
    std::string wrong =
        readNumber(words, unit == When::FRAME ? "a frame" : "milliseconds", when.value);
    if (!wrong.empty()) {
        return wrong;
    }
    // What stands behind a later line would never have its moment.
    if (when.value < latest[unit]) {
        return std::to_string(when.value) + " comes after " + std::to_string(latest[unit]) +
               ": lines stand in the order in which they happen";
    }
    latest[unit] = when.value;
    return readAction(when, words);
}

std::string ScenarioReader::readAction(When when, Words& words) {
    const std::string word = words.next();
    if (word == "time") {
        scenario.frameTimes.push_back({when, 0});
        return readNumber(words, "milliseconds", scenario.frameTimes.back().ms);
    }
    if (word == "down" || word == "up") {
        return readKey(when, word == "down" ? SDL_KEYDOWN : SDL_KEYUP, words);
    }
    if (word == "quit") {
        scenario.events.push_back({when, SDL_QUIT, SDLK_UNKNOWN});
        return "";
    }
    if (word == "picture") {
        return readPicture(when, words);
    }
    return "\"" + word + "\" is unknown: what happens is time, down, up, quit or picture";
}

std::string ScenarioReader::readKey(When when, Uint8 type, Words& words) {
    const std::string word = words.next();
    const SDLKey key = keyOf(word);
    if (key == SDLK_UNKNOWN) {
        return "\"" + word + "\" is no key";
    }
    scenario.events.push_back({when, type, key});
    return "";
}

std::string ScenarioReader::readPicture(When when, Words& words) {
    const std::string file = words.next();
    if (file.empty()) {
        return "the picture's file is missing";
    }
    scenario.pictures.push_back({when, file});
    return "";
}

// times FROM MS MS*COUNT ...: from this frame on, which is the one behind those told so far.
std::string ScenarioReader::readRuns(Words& words) {
    Uint32 from = 0;
    std::string wrong = readNumber(words, "a frame", from);
    if (!wrong.empty()) {
        return wrong;
    }
    if (from != framesInRuns + 1) {
        return "frame times go on with frame " + std::to_string(framesInRuns + 1) + ", not " +
               std::to_string(from);
    }
    for (std::string word = words.next(); !word.empty(); word = words.next()) {
        const size_t star = word.find('*');
        const std::string ms = word.substr(0, star);
        const std::string count = star == std::string::npos ? "1" : word.substr(star + 1);
        if (!isNumber(ms) || !isNumber(count)) {
            return "\"" + word + "\" is no frame time: it is MS or MS*FRAMES";
        }
        const Uint32 frames = static_cast<Uint32>(std::strtoull(count.c_str(), nullptr, 10));
        if (frames == 0 || frames > MOST_FRAMES - framesInRuns) {
            return "\"" + word + "\" has no frame, or too many";
        }
        framesInRuns += frames;
        scenario.frameRuns.push_back(
            {static_cast<Uint32>(std::strtoull(ms.c_str(), nullptr, 10)), frames});
    }
    return "";
}

std::string ScenarioReader::readExpectation(Words& words, int line) {
    Expectation wanted;
    wanted.line = line;
    std::string wrong;
    if (words.peek() == "status" || words.peek() == "frames") {
        const bool isStatus = words.next() == "status";
        wanted.kind = isStatus ? Expectation::STATUS : Expectation::FRAMES;
        wrong = readCount(wanted, words);
    } else {
        wrong = readCount(wanted, words);
        if (wrong.empty()) {
            wrong = readCounted(wanted, words);
        }
    }
    scenario.expectations.push_back(wanted);
    return wrong;
}

// N, N..M, N+ or no
std::string ScenarioReader::readCount(Expectation& wanted, Words& words) {
    const std::string word = words.next();
    if (word == "no") {
        return "";
    }
    const size_t dots = word.find("..");
    const bool isOpen = !word.empty() && word.back() == '+';
    const std::string least = isOpen ? word.substr(0, word.size() - 1) : word.substr(0, dots);
    const std::string most = dots == std::string::npos ? least : word.substr(dots + 2);
    if (!isNumber(least) || !isNumber(most)) {
        return "\"" + word + "\" is no count: it is a number, FEWEST..MOST, FEWEST+ or no";
    }
    wanted.least = static_cast<Uint32>(std::strtoull(least.c_str(), nullptr, 10));
    wanted.most = isOpen ? ~0U : static_cast<Uint32>(std::strtoull(most.c_str(), nullptr, 10));
    return wanted.least <= wanted.most ? "" : "\"" + word + "\" is no count: it can never be";
}

std::string ScenarioReader::readCounted(Expectation& wanted, Words& words) {
    const std::string word = words.next();
    if (word == "text" || word == "call") {
        wanted.kind = word == "text" ? Expectation::TEXT : Expectation::CALL;
        if (!words.nextQuoted(wanted.text) || wanted.text.empty()) {
            return "the " + word + " is missing: it stands in quotes";
        }
        return readFrames(wanted, words);
    }
    if (word == "drawn") {
        wanted.kind = Expectation::DRAWN;
        return readDrawn(wanted, words);
    }
    if (word == "pixels") {
        wanted.kind = Expectation::PIXELS;
        return readPixels(wanted, words);
    }
    return "\"" + word + "\" is unknown: what is counted is text, call, drawn or pixels";
}

// in frames FIRST LAST, or nothing: the whole game
std::string ScenarioReader::readFrames(Expectation& wanted, Words& words) {
    if (words.peek().empty()) {
        return "";
    }
    if (words.next() != "in" || words.next() != "frames" || !words.nextNumber(wanted.firstFrame) ||
        !words.nextNumber(wanted.lastFrame) || wanted.firstFrame > wanted.lastFrame) {
        return "here stands \"in frames FIRST LAST\", or nothing";
    }
    return "";
}

// "FILE" part X Y at X Y in frames FIRST LAST, where all behind the file may be left out
std::string ScenarioReader::readDrawn(Expectation& wanted, Words& words) {
    if (!words.nextQuoted(wanted.text) || wanted.text.empty()) {
        return "the picture is missing: its file stands in quotes";
    }
    for (const auto& [word, corner] :
         {std::pair("part", &wanted.part), std::pair("at", &wanted.place)}) {
        if (words.peek() != word) {
            continue;
        }
        words.next();
        Corner& told = corner->emplace();
        if (!words.nextNumber(told.x) || !words.nextNumber(told.y)) {
            return std::string("behind \"") + word + "\" stand X and Y";
        }
    }
    return readFrames(wanted, words);
}

// RRGGBB in X Y WIDTH HEIGHT at FRAME
std::string ScenarioReader::readPixels(Expectation& wanted, Words& words) {
    std::string wrong = "pixels are told by \"RRGGBB in X Y WIDTH HEIGHT at FRAME\"";
    Uint32 box[4];
    if (!readColour(words.next(), wanted.colour) || words.next() != "in") {
        return wrong;
    }
    for (Uint32& side : box) {
        if (!words.nextNumber(side) || side > static_cast<Uint32>(SHRT_MAX)) {
            return wrong;
        }
    }
    wanted.box = {static_cast<Sint16>(box[0]), static_cast<Sint16>(box[1]),
                  static_cast<Uint16>(box[2]), static_cast<Uint16>(box[3])};
    if (words.next() != "at" || !words.nextNumber(wanted.firstFrame)) {
        return wrong;
    }
    wanted.lastFrame = wanted.firstFrame;
    return "";
}

bool readScenario(std::istream& in, const std::string& name, Scenario& scenario,
                  std::string& error) {
    ScenarioReader reader(scenario);
    std::string line;
    for (int number = 1; std::getline(in, line); ++number) {
        Words words(line);
        const std::string word = words.next();
        if (word.empty()) {
            continue;
        }
        std::string wrong = ScenarioReader::knows(word) ? reader.readStatement(word, words, number)
                                                        : ScenarioReader::unknown(word);
        if (wrong.empty() && !words.peek().empty()) {
            wrong = "\"" + words.peek() + "\" is one word too many";
        }
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
    if (isCharacterKey(key)) {
        return std::string(1, static_cast<char>(key));
    }
    return NUMBERED_KEY + std::to_string(static_cast<unsigned int>(key));
}

std::string runWords(const std::vector<FrameRun>& runs) {
    std::string words;
    for (const FrameRun& run : runs) {
        words += (words.empty() ? "" : " ") + std::to_string(run.ms);
        if (run.frames != 1) {
            words += '*' + std::to_string(run.frames);
        }
    }
    return words;
}

}  // namespace front
