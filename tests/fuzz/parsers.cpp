// SPDX-License-Identifier: MIT
// Bytes for the readers of recordings and scenarios, by libFuzzer or from files. The first byte says
// how the rest is read: as the file itself, as text that is packed first, in one member or in two, or
// by the reader of scenarios alone.
#include "front/recording.h"
#include "front/scenario.h"
#include "fuzz/counts.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>
#include <string_view>
#include <zlib.h>

namespace {

enum Form { AS_IT_IS, PACKED, PACKED_TWICE, SCENARIO_ONLY, FORM_COUNT };

[[noreturn]] void stop(const char* what, const std::string& detail) {
    std::fprintf(stderr, "%s: %s\n", what, detail.c_str());
    std::abort();
}

void check(bool holds, const char* what, const std::string& detail) {
    if (!holds) {
        stop(what, detail);
    }
}

void addNumber(std::string& bytes, std::uint32_t number, int count) {
    for (int i = 0; i < count; ++i) {
        bytes += static_cast<char>(number >> (8 * i));
    }
}

// A gzip member that holds the text as it is, in one block: an input is shorter than 64 kB.
std::string stored(std::string_view text) {
    std::string bytes("\x1f\x8b\x08\0\0\0\0\0\0\xff\x01", 11);
    const std::uint32_t length = static_cast<std::uint32_t>(text.size());
    addNumber(bytes, length, 2);
    addNumber(bytes, ~length, 2);
    bytes += text;
    const auto* start = reinterpret_cast<const Bytef*>(text.data());
    addNumber(bytes, static_cast<std::uint32_t>(crc32(crc32(0, nullptr, 0), start, length)), 4);
    addNumber(bytes, length, 4);
    return bytes;
}

// What every scenario that is accepted has.
void checkScenario(const front::Scenario& scenario) {
    for (const front::ScriptedEvent& event : scenario.events) {
        check(event.key >= SDLK_UNKNOWN && event.key < SDLK_LAST, "a key", "beyond SDL's");
        if (event.type != SDL_QUIT) {
            front::Scenario again;
            front::ScenarioReader reader(again);
            const std::string line = "1 down " + front::keyWord(event.key);
            front::Words words(line);
            check(reader.readStatement("frame", words, 1).empty() &&
                      again.events.front().key == event.key,
                  "a key is not read as it is told", front::keyWord(event.key));
        }
    }
    Uint64 frames = 0;
    for (const front::FrameRun& run : scenario.frameRuns) {
        check(run.frames > 0, "a run", "has no frame");
        frames += run.frames;
    }
    check(frames <= Uint64{1} << 31, "the frames", "are too many");
    for (const front::Expectation& wanted : scenario.expectations) {
        check(wanted.least <= wanted.most && wanted.firstFrame <= wanted.lastFrame,
              "an expectation", "can never be met");
    }
    if (!scenario.frameRuns.empty()) {
        front::Scenario again;
        front::ScenarioReader reader(again);
        const std::string line = "1 " + front::runWords(scenario.frameRuns);
        front::Words words(line);
        check(reader.readStatement("times", words, 1).empty() &&
                  again.frameRuns.size() == scenario.frameRuns.size(),
              "frame times are not read as they are told", front::runWords(scenario.frameRuns));
    }
}

void checkQuotes(const std::string& text) {
    // A line break is told as \n, so that the text stays one line.
    const std::string quoted = front::quoted(text);
    front::Words words(quoted);
    std::string again;
    check(quoted.find('\n') == std::string::npos && words.nextQuoted(again) && again == text,
          "a text is not read as it is quoted", quoted);
}

bool readAll(std::string_view bytes, front::Recording& recording) {
    std::string error;
    const bool good = front::readRecording(bytes, "input", recording, error);
    check(good == error.empty(), "success and message differ", error);
    if (good) {
        checkScenario(recording.given);
        check(!recording.seen.ended || recording.seen.frames == recording.seen.checks.size(),
              "a recording", "ends with other frames than it tells");
    }
    return good;
}

// Packing must change nothing.
void readPacked(std::string_view text, bool inTwo) {
    front::Recording plain;
    front::Recording packed;
    const size_t half = inTwo ? text.size() / 2 : 0;
    const std::string bytes =
        (inTwo ? stored(text.substr(0, half)) : std::string()) + stored(text.substr(half));
    const bool isText = !text.empty() && text.substr(0, 2) != "\x1f\x8b";
    if (readAll(bytes, packed) != readAll(text, plain) && isText) {
        stop("packed text is read otherwise", std::string(text));
    }
    check(!isText || packed.seen.text() == plain.seen.text(), "packed text is read otherwise", "");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, size_t count) {
    fuzz::count(0);
    if (count == 0) {
        return 0;
    }
    const std::string_view rest(reinterpret_cast<const char*>(bytes) + 1, count - 1);
    const int form = bytes[0] % FORM_COUNT;
    if (form == SCENARIO_ONLY) {
        std::istringstream in{std::string(rest)};
        front::Scenario scenario;
        std::string error;
        if (front::readScenario(in, "input", scenario, error)) {
            checkScenario(scenario);
        }
        checkQuotes(std::string(rest));
    } else if (form == AS_IT_IS) {
        front::Recording recording;
        readAll(rest, recording);
    } else {
        readPacked(rest, form == PACKED_TWICE);
    }
    return 0;
}
