// SPDX-License-Identifier: MIT
#include "replay/compare.h"

#include <algorithm>

namespace replay {
namespace {

using front::Expectation;
using front::Recording;
using front::Seen;

constexpr size_t SHOWN_TEXT = 60;  // characters of a text that differs

std::string hex(Uint64 value, int digits) {
    char text[17];
    std::snprintf(text, sizeof text, "%0*llx", digits, static_cast<unsigned long long>(value));
    return text;
}

// The frame after which the byte was printed.
Uint32 frameOfByte(const Seen& seen, size_t at) {
    size_t end = 0;
    for (const front::PrintedText& part : seen.texts) {
        end += part.bytes.size();
        if (at < end) {
            return part.frame;
        }
    }
    return seen.frames;
}

std::string shownFrom(const std::string& text, size_t at) {
    if (at >= text.size()) {
        return "the text's end";
    }
    return front::quoted(text.substr(at, SHOWN_TEXT));
}

// The text is compared frame by frame: the same words in another frame are a difference too.
std::optional<Difference> textDifference(const Recording& expected, const Recording& got,
                                         Compared& compared) {
    const std::string wanted = expected.seen.text();
    std::string came = got.seen.text();
    if (!expected.seen.ended) {
        came.resize(std::min(came.size(), wanted.size()));
    }
    compared.bytes = wanted.size();
    const size_t length = std::min(wanted.size(), came.size());
    const size_t at = static_cast<size_t>(
        std::mismatch(wanted.begin(), wanted.begin() + static_cast<long>(length), came.begin())
            .first -
        wanted.begin());
    if (at < length || wanted.size() != came.size()) {
        const Uint32 frame = std::min(at < wanted.size() ? frameOfByte(expected.seen, at) : ~0U,
                                      at < came.size() ? frameOfByte(got.seen, at) : ~0U);
        return Difference{Channel::TEXT, frame,
                          "expected " + shownFrom(wanted, at) + ", got " + shownFrom(came, at)};
    }
    for (size_t end = 0, i = 0; i < expected.seen.texts.size() && i < got.seen.texts.size(); ++i) {
        const Uint32 frame = expected.seen.texts[i].frame;
        const Uint32 gotFrame = got.seen.texts[i].frame;
        if (frame != gotFrame) {
            return Difference{Channel::TEXT, std::min(frame, gotFrame),
                              shownFrom(wanted, end) + " is expected after frame " +
                                  std::to_string(frame) + ", not " + std::to_string(gotFrame)};
        }
        end += expected.seen.texts[i].bytes.size();
    }
    return std::nullopt;
}

std::string callWords(const std::vector<front::LibraryCall>& calls, size_t i) {
    if (i >= calls.size()) {
        return "no further call";
    }
    return calls[i].call + " at " + std::to_string(calls[i].clockMs) + " ms";
}

std::optional<Difference> callDifference(const Recording& expected, const Recording& got,
                                         Compared& compared) {
    const std::vector<front::LibraryCall>& wanted = expected.seen.calls;
    const std::vector<front::LibraryCall>& came = got.seen.calls;
    const size_t count = expected.seen.ended ? std::max(wanted.size(), came.size()) : wanted.size();
    compared.calls = wanted.size();
    for (size_t i = 0; i < count; ++i) {
        const bool same = i < wanted.size() && i < came.size() &&
                          wanted[i].frame == came[i].frame &&
                          wanted[i].clockMs == came[i].clockMs && wanted[i].call == came[i].call;
        if (!same) {
            const Uint32 frame = std::min(i < wanted.size() ? wanted[i].frame : ~0U,
                                          i < came.size() ? came[i].frame : ~0U);
            return Difference{Channel::CALLS, frame,
                              "expected " + callWords(wanted, i) + ", got " + callWords(came, i)};
        }
    }
    return std::nullopt;
}

std::optional<Difference> checkDifference(const Seen& expected, const Seen& got) {
    const size_t count = std::min(expected.checks.size(), got.checks.size());
    for (size_t i = 0; i < count; ++i) {
        const Uint32 bits = std::min(expected.checks[i].bits, got.checks[i].bits);
        const Uint32 mask = ~0U >> (32 - bits);
        if (((expected.checks[i].value ^ got.checks[i].value) & mask) != 0) {
            const int digits = static_cast<int>(bits / 4);
            return Difference{Channel::PICTURES, static_cast<Uint32>(i + 1),
                              "expected a picture with check " +
                                  hex(expected.checks[i].value & mask, digits) + ", got " +
                                  hex(got.checks[i].value & mask, digits)};
        }
    }
    return std::nullopt;
}

// Checks find the frame; digests make sure that no frame was missed by a check that is short.
std::optional<Difference> digestDifference(const Seen& expected, const Seen& got) {
    size_t next = 0;
    Uint32 lastGood = 0;
    for (const front::PictureDigest& wanted : expected.digests) {
        while (next < got.digests.size() && got.digests[next].frame < wanted.frame) {
            ++next;
        }
        const bool found = next < got.digests.size() && got.digests[next].frame == wanted.frame;
        if (!found || got.digests[next].digest != wanted.digest) {
            return Difference{Channel::PICTURES, lastGood + 1,
                              "a picture up to frame " + std::to_string(wanted.frame) +
                                  " differs: expected the digest " + hex(wanted.digest, 16) +
                                  ", got " + (found ? hex(got.digests[next].digest, 16) : "none")};
        }
        lastGood = wanted.frame;
    }
    return std::nullopt;
}

std::optional<Difference> pictureDifference(const Recording& expected, const Recording& got,
                                            Compared& compared) {
    compared.frames = static_cast<Uint32>(expected.seen.checks.size());
    if (std::optional<Difference> found = checkDifference(expected.seen, got.seen)) {
        return found;
    }
    if (got.seen.checks.size() < expected.seen.checks.size()) {
        return Difference{Channel::PICTURES, static_cast<Uint32>(got.seen.checks.size() + 1),
                          "expected a picture, got none"};
    }
    return digestDifference(expected.seen, got.seen);
}

std::string endWords(const Seen& seen) {
    return std::to_string(seen.frames) + " frames, clock " + std::to_string(seen.clockMs) +
           " ms, status " + std::to_string(seen.status);
}

std::optional<Difference> endDifference(const Recording& expected, const Recording& got) {
    const Seen& wanted = expected.seen;
    const Seen& came = got.seen;
    if (!wanted.ended || (wanted.frames == came.frames && wanted.clockMs == came.clockMs &&
                          wanted.status == came.status)) {
        return std::nullopt;
    }
    return Difference{Channel::END, std::min(wanted.frames, came.frames),
                      "expected " + endWords(wanted) + ", got " + endWords(came)};
}

bool isWithin(const Expectation& wanted, Uint32 frame) {
    return frame >= wanted.firstFrame && frame <= wanted.lastFrame;
}

size_t countText(const Expectation& wanted, const Seen& seen) {
    std::string text;
    for (const front::PrintedText& part : seen.texts) {
        if (isWithin(wanted, part.frame)) {
            text += part.bytes;
        }
    }
    size_t count = 0;
    for (size_t at = 0; (at = text.find(wanted.text, at)) != std::string::npos; ++count) {
        at += wanted.text.size();
    }
    return count;
}

size_t countCalls(const Expectation& wanted, const std::vector<front::LibraryCall>& calls) {
    return static_cast<size_t>(
        std::count_if(calls.begin(), calls.end(), [&](const front::LibraryCall& call) {
            return isWithin(wanted, call.frame) &&
                   call.call.compare(0, wanted.text.size(), wanted.text) == 0;
        }));
}

bool isAt(const std::optional<front::Corner>& wanted, const front::Corner& corner) {
    return !wanted || (wanted->x == corner.x && wanted->y == corner.y);
}

size_t countDrawings(const Expectation& wanted, const Seen& seen) {
    return static_cast<size_t>(std::count_if(
        seen.drawings.begin(), seen.drawings.end(), [&](const front::Drawing& drawing) {
            return isWithin(wanted, drawing.frame) && drawing.file == wanted.text &&
                   isAt(wanted.part, drawing.part) && isAt(wanted.place, drawing.place);
        }));
}

bool isSameBox(const SDL_Rect& a, const SDL_Rect& b) {
    return a.x == b.x && a.y == b.y && a.w == b.w && a.h == b.h;
}

// None when the game has no such frame.
std::optional<size_t> countPixels(const Expectation& wanted, const Seen& seen) {
    for (const front::PixelCount& pixels : seen.pixels) {
        if (pixels.frame == wanted.firstFrame && pixels.colour == wanted.colour &&
            isSameBox(pixels.box, wanted.box)) {
            return pixels.count;
        }
    }
    return std::nullopt;
}

std::string countWords(const Expectation& wanted) {
    if (wanted.most == ~0U) {
        return std::to_string(wanted.least) + " or more";
    }
    return wanted.least == wanted.most
               ? std::to_string(wanted.least)
               : std::to_string(wanted.least) + " to " + std::to_string(wanted.most);
}

std::string framesWords(const Expectation& wanted) {
    if (wanted.lastFrame == ~0U) {
        return "";
    }
    return " in frames " + std::to_string(wanted.firstFrame) + " to " +
           std::to_string(wanted.lastFrame);
}

std::string cornerWords(const char* word, const std::optional<front::Corner>& corner) {
    return corner ? word + std::to_string(corner->x) + ',' + std::to_string(corner->y) : "";
}

std::string subject(const Expectation& wanted) {
    switch (wanted.kind) {
    case Expectation::TEXT:
        return " times the text " + front::quoted(wanted.text) + framesWords(wanted);
    case Expectation::CALL:
        return " calls " + front::quoted(wanted.text) + framesWords(wanted);
    case Expectation::DRAWN:
        return " drawings of " + front::quoted(wanted.text) + cornerWords(" from ", wanted.part) +
               cornerWords(" at ", wanted.place) + framesWords(wanted);
    case Expectation::PIXELS:
        return " pixels " + hex(wanted.colour, 6) + " in frame " +
               std::to_string(wanted.firstFrame);
    case Expectation::STATUS:
        return " as the exit status";
    case Expectation::FRAMES:
        break;
    }
    return " frames";
}

std::optional<size_t> figureOf(const Expectation& wanted, const Seen& seen) {
    switch (wanted.kind) {
    case Expectation::TEXT:
        return countText(wanted, seen);
    case Expectation::CALL:
        return countCalls(wanted, seen.calls) + countCalls(wanted, seen.otherCalls);
    case Expectation::DRAWN:
        return countDrawings(wanted, seen);
    case Expectation::PIXELS:
        return countPixels(wanted, seen);
    case Expectation::STATUS:
        return seen.status;
    case Expectation::FRAMES:
        break;
    }
    return seen.frames;
}

}  // namespace

const char* nameOf(Channel channel) {
    switch (channel) {
    case Channel::TEXT:
        return "text";
    case Channel::CALLS:
        return "sound";
    case Channel::PICTURES:
        return "picture";
    case Channel::END:
        break;
    }
    return "end";
}

std::optional<Difference> firstDifference(const Recording& expected, const Recording& got,
                                          Channels channels, Compared& compared) {
    std::vector<std::optional<Difference>> found;
    compared = {};
    if (channels.text) {
        found.push_back(textDifference(expected, got, compared));
    }
    if (channels.calls) {
        found.push_back(callDifference(expected, got, compared));
    }
    if (channels.pictures) {
        found.push_back(pictureDifference(expected, got, compared));
    }
    found.push_back(endDifference(expected, got));
    std::optional<Difference> first;
    for (const std::optional<Difference>& difference : found) {
        if (difference && (!first || difference->frame < first->frame)) {
            first = difference;
        }
    }
    return first;
}

std::vector<Unmet> unmetExpectations(const front::Scenario& scenario, const Seen& seen) {
    std::vector<Unmet> unmet;
    for (const Expectation& wanted : scenario.expectations) {
        const std::optional<size_t> figure = figureOf(wanted, seen);
        if (!figure) {
            unmet.push_back({wanted.line, "the game has no frame " +
                                              std::to_string(wanted.firstFrame) + ": it has " +
                                              std::to_string(seen.frames)});
        } else if (*figure < wanted.least || *figure > wanted.most) {
            unmet.push_back({wanted.line, "expected " + countWords(wanted) + subject(wanted) +
                                              ", got " + std::to_string(*figure)});
        }
    }
    return unmet;
}

}  // namespace replay
