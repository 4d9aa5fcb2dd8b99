// SPDX-License-Identifier: MIT
#include "front/recording.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <map>
#include <sstream>
#include <sys/stat.h>
#include <zlib.h>

namespace front {
namespace {

// Far above any game's: a file that unpacks to more is damaged, or wants to fill the memory.
constexpr size_t MOST_BYTES = size_t{256} << 20;

constexpr int GZIP_WINDOW = 15 + 16;  // the largest window, with gzip's header and checksum
constexpr int MEMORY_LEVEL = 9;
constexpr char GZIP_MAGIC[] = "\x1f\x8b";
constexpr size_t GZIP_MAGIC_BYTES = 2;
constexpr size_t CHUNK_BYTES = size_t{64} << 10;

constexpr size_t DIGEST_DIGITS = 16;

bool isPacked(std::string_view bytes) {
    return bytes.substr(0, GZIP_MAGIC_BYTES) == GZIP_MAGIC;
}

enum class Unpacked { WHOLE, CUT_OFF, DAMAGED, TOO_LARGE };

// Adds a gzip member's text to `text` and moves `at` behind it. A member counts as a whole: of one
// that is cut off or damaged nothing is added.
Unpacked unpackMember(std::string_view bytes, size_t& at, std::string& text) {
    z_stream stream = {};
    if (inflateInit2(&stream, GZIP_WINDOW) != Z_OK) {
        return Unpacked::TOO_LARGE;
    }
    std::string member;
    std::string chunk(CHUNK_BYTES, '\0');
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data() + at));
    stream.avail_in = static_cast<uInt>(bytes.size() - at);
    int result = Z_OK;
    while (result == Z_OK && text.size() + member.size() <= MOST_BYTES) {
        stream.next_out = reinterpret_cast<Bytef*>(chunk.data());
        stream.avail_out = static_cast<uInt>(chunk.size());
        result = inflate(&stream, Z_NO_FLUSH);
        member.append(chunk, 0, chunk.size() - stream.avail_out);
    }
    const size_t end = bytes.size() - stream.avail_in;
    inflateEnd(&stream);
    if (result == Z_STREAM_END) {
        at = end;
        text += member;
        return Unpacked::WHOLE;
    }
    if (result == Z_OK) {
        return Unpacked::TOO_LARGE;
    }
    return result == Z_BUF_ERROR ? Unpacked::CUT_OFF : Unpacked::DAMAGED;
}

// What is wrong, or nothing. A file that just stops is told in `cutOff`.
std::string unpack(std::string_view bytes, std::string& text, std::string& cutOff) {
    for (size_t at = 0; at < bytes.size();) {
        const std::string place =
            "byte " + std::to_string(at) + " of " + std::to_string(bytes.size());
        if (!isPacked(bytes.substr(at)) && bytes.size() - at >= GZIP_MAGIC_BYTES) {
            return "damaged behind " + place;
        }
        switch (unpackMember(bytes, at, text)) {
        case Unpacked::WHOLE:
            break;
        case Unpacked::CUT_OFF:
            cutOff = "cut off behind " + place;
            return "";
        case Unpacked::DAMAGED:
            return "damaged behind " + place;
        case Unpacked::TOO_LARGE:
            return "too large behind " + place;
        }
    }
    return "";
}

bool readHex(const std::string& word, size_t digits, Uint64& value) {
    if (word.size() != digits || word.find_first_not_of("0123456789abcdef") != std::string::npos) {
        return false;
    }
    value = std::strtoull(word.c_str(), nullptr, 16);
    return true;
}

// Reads the statements of a recording that tell what was seen; those of a scenario go to its reader.
class RecordingReader {
public:
    explicit RecordingReader(Recording& target)
        : recording(target), seen(target.seen), scenarioReader(target.given) {}

    std::string readLine(std::string_view line, int number) {
        Words words(line);
        const std::string word = words.next();
        if (word.empty()) {
            return "";
        }
        std::string wrong = readStatement(word, words, number);
        if (wrong.empty() && !words.peek().empty()) {
            wrong = "\"" + words.peek() + "\" is one word too many";
        }
        isFirst = false;
        return wrong;
    }

private:
    std::string readStatement(const std::string& word, Words& words, int line) {
        if (seen.ended) {
            return "the game has ended on the line before";
        }
        if (word == RECORDING_WORD) {
            return readFormat(words);
        }
        if (ScenarioReader::knows(word)) {
            return scenarioReader.readStatement(word, words, line);
        }
        if (!recording.isRecording) {
            return ScenarioReader::unknown(word);
        }
        static const std::map<std::string, std::string (RecordingReader::*)(Words&)> STATEMENTS = {
            {"library", &RecordingReader::readLibrary},
            {"file", &RecordingReader::readFile},
            {"text", &RecordingReader::readText},
            {"call", &RecordingReader::readCall},
            {"hud", &RecordingReader::readHud},
            {"pictures", &RecordingReader::readPictures},
            {"digest", &RecordingReader::readDigest},
            {"pixels", &RecordingReader::readPixels},
            {"other", &RecordingReader::readOtherCall},
            {"drawn", &RecordingReader::readDrawn},
            {"end", &RecordingReader::readEnd}};
        const auto found = STATEMENTS.find(word);
        return found == STATEMENTS.end() ? "\"" + word + "\" is no statement of a recording"
                                         : (this->*found->second)(words);
    }

    std::string readFormat(Words& words) {
        Uint32 format = 0;
        if (!isFirst || !words.nextNumber(format)) {
            return std::string(RECORDING_WORD) + " and its format stand on the first line only";
        }
        if (format == 0) {
            return "there is no format 0: the file is damaged";
        }
        if (format != RECORDING_FORMAT) {
            return "made by a newer version: this is format " + std::to_string(format) +
                   ", and this program reads format " + std::to_string(RECORDING_FORMAT);
        }
        recording.isRecording = true;
        return "";
    }

    std::string readLibrary(Words& words) {
        seen.libraries = words.rest();
        return "";
    }

    std::string readFile(Words& words) {
        LoadedFile file;
        if (!words.nextQuoted(file.file) || !readHex(words.next(), DIGEST_DIGITS, file.hash)) {
            return "a file is told by its name in quotes and its hash";
        }
        seen.files.push_back(file);
        return "";
    }

    std::string readText(Words& words) {
        PrintedText text;
        if (!words.nextNumber(text.frame) || !words.nextQuoted(text.bytes)) {
            return "a text is told by its frame and the text in quotes";
        }
        seen.texts.push_back(text);
        return "";
    }

    std::string readCall(Words& words) { return readCall(words, seen.calls); }

    std::string readOtherCall(Words& words) { return readCall(words, seen.otherCalls); }

    static std::string readCall(Words& words, std::vector<LibraryCall>& calls) {
        LibraryCall call;
        if (!words.nextNumber(call.frame) || !words.nextNumber(call.clockMs) ||
            (call.call = words.rest()).empty()) {
            return "a call is told by its frame, the clock and the call";
        }
        calls.push_back(call);
        return "";
    }

    std::string readHud(Words& words) {
        HudReading hud = {};
        if (!words.nextNumber(hud.frame) || !words.nextNumber(hud.energy) ||
            !words.nextNumber(hud.lasers) || !words.nextNumber(hud.rockets)) {
            return "the display is told by its frame, energy, lasers and rockets";
        }
        seen.hud.push_back(hud);
        return "";
    }

    std::string readPictures(Words& words) {
        Uint32 from = 0, bits = 0;
        if (!words.nextNumber(from) || !words.nextNumber(bits) ||
            (bits != 8 && bits != 16 && bits != 32)) {
            return "pictures are told by their first frame, 8, 16 or 32 bits, and their checks";
        }
        if (from != seen.checks.size() + 1) {
            return "pictures go on with frame " + std::to_string(seen.checks.size() + 1) +
                   ", not " + std::to_string(from);
        }
        const std::string checks = words.next();
        const size_t digits = bits / 4;
        if (checks.empty() || checks.size() % digits != 0) {
            return "the checks of the pictures are not whole";
        }
        for (size_t at = 0; at < checks.size(); at += digits) {
            Uint64 value = 0;
            if (!readHex(checks.substr(at, digits), digits, value)) {
                return "\"" + checks.substr(at, digits) + "\" is no check of a picture";
            }
            seen.checks.push_back({static_cast<Uint32>(value), bits});
        }
        return "";
    }

    std::string readDigest(Words& words) {
        PictureDigest digest = {};
        if (!words.nextNumber(digest.frame) ||
            !readHex(words.next(), DIGEST_DIGITS, digest.digest)) {
            return "a digest is told by its frame and " + std::to_string(DIGEST_DIGITS) +
                   " hexadecimal digits";
        }
        if (digest.frame != seen.checks.size()) {
            return "the digest is of frame " + std::to_string(digest.frame) + ", but " +
                   std::to_string(seen.checks.size()) + " pictures were told";
        }
        seen.digests.push_back(digest);
        return "";
    }

    std::string readPixels(Words& words) {
        PixelCount pixels = {};
        Uint64 colour = 0;
        Uint32 box[4];
        bool good = words.nextNumber(pixels.frame) && readHex(words.next(), 6, colour);
        for (Uint32& side : box) {
            good = good && words.nextNumber(side) && side <= 0x7fff;
        }
        if (!good || !words.nextNumber(pixels.count)) {
            return "pixels are told by their frame, colour, box and count";
        }
        pixels.colour = static_cast<Uint32>(colour);
        pixels.box = {static_cast<Sint16>(box[0]), static_cast<Sint16>(box[1]),
                      static_cast<Uint16>(box[2]), static_cast<Uint16>(box[3])};
        seen.pixels.push_back(pixels);
        return "";
    }

    std::string readDrawn(Words& words) {
        Drawing drawing = {};
        if (!words.nextNumber(drawing.frame) || !words.nextQuoted(drawing.file) ||
            !words.nextNumber(drawing.part.x) || !words.nextNumber(drawing.part.y) ||
            !words.nextNumber(drawing.place.x) || !words.nextNumber(drawing.place.y)) {
            return "a drawing is told by its frame, file, part and place";
        }
        seen.drawings.push_back(drawing);
        return "";
    }

    std::string readEnd(Words& words) {
        if (!words.nextNumber(seen.frames) || !words.nextNumber(seen.clockMs) ||
            !words.nextNumber(seen.status)) {
            return "the end is told by the frames, the clock and the status";
        }
        if (seen.frames != seen.checks.size()) {
            return "the game has " + std::to_string(seen.frames) + " frames, but " +
                   std::to_string(seen.checks.size()) + " pictures were told";
        }
        seen.ended = true;
        return "";
    }

    Recording& recording;
    Seen& seen;
    ScenarioReader scenarioReader;
    bool isFirst = true;
};

std::string readLines(std::string_view text, const std::string& name, Recording& recording) {
    RecordingReader reader(recording);
    int number = 1;
    for (size_t start = 0; start < text.size(); ++number) {
        const size_t end = std::min(text.find('\n', start), text.size());
        const std::string wrong = reader.readLine(text.substr(start, end - start), number);
        if (!wrong.empty()) {
            return name + ':' + std::to_string(number) + ": " + wrong;
        }
        start = end + 1;
    }
    return "";
}

}  // namespace

std::string Seen::text() const {
    std::string all;
    for (const PrintedText& part : texts) {
        all += part.bytes;
    }
    return all;
}

bool readRecording(std::string_view bytes, const std::string& name, Recording& recording,
                   std::string& error) {
    if (bytes.empty()) {
        error = name + ": the file is empty";
        return false;
    }
    std::string text;
    if (isPacked(bytes)) {
        const std::string wrong = unpack(bytes, text, recording.cutOff);
        if (!wrong.empty()) {
            error = name + ": " + wrong;
            return false;
        }
        if (text.empty()) {
            error = name + ": " + recording.cutOff + ": nothing of it is whole";
            return false;
        }
        if (text.find('\0') != std::string::npos) {
            error = name + ": no recording is packed in it";
            return false;
        }
    } else {
        text = bytes;
        if (text.find('\0') != std::string::npos) {
            error = name + ": no text and no recording";
            return false;
        }
    }
    error = readLines(text, name, recording);
    if (!error.empty()) {
        return false;
    }
    if (recording.isRecording && !recording.seen.ended) {
        const std::string place =
            recording.cutOff.empty() ? "the game's end is missing" : recording.cutOff;
        recording.cutOff = name;
        recording.cutOff.append(": ").append(place).append("; ");
        recording.cutOff.append(std::to_string(recording.seen.checks.size()));
        recording.cutOff.append(" frames of the game are whole");
    } else if (!recording.cutOff.empty()) {
        error = name + ": " + recording.cutOff + ", and yet the game has ended before";
        return false;
    }
    return true;
}

bool readRecording(const std::string& path, Recording& recording, std::string& error) {
    struct stat status = {};
    if (stat(path.c_str(), &status) != 0) {
        error = path + ": cannot be read: " + std::strerror(errno);
        return false;
    }
    if (!S_ISREG(status.st_mode)) {
        error = path + ": is no file";
        return false;
    }
    if (static_cast<size_t>(status.st_size) > MOST_BYTES) {
        error = path + ": too large for a recording";
        return false;
    }
    if (status.st_size == 0) {
        error = path + ": the file is empty";
        return false;
    }
    std::ifstream in(path, std::ios::binary);
    std::ostringstream bytes;
    bytes << in.rdbuf();
    if (!in) {
        error = path + ": cannot be read: " + std::strerror(errno);
        return false;
    }
    return readRecording(bytes.str(), path, recording, error);
}

std::string packed(const std::string& text) {
    z_stream stream = {};
    if (deflateInit2(&stream, Z_BEST_COMPRESSION, Z_DEFLATED, GZIP_WINDOW, MEMORY_LEVEL,
                     Z_DEFAULT_STRATEGY) != Z_OK) {
        return "";
    }
    std::string bytes(deflateBound(&stream, static_cast<uLong>(text.size())), '\0');
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.data()));
    stream.avail_in = static_cast<uInt>(text.size());
    stream.next_out = reinterpret_cast<Bytef*>(bytes.data());
    stream.avail_out = static_cast<uInt>(bytes.size());
    deflate(&stream, Z_FINISH);
    bytes.resize(stream.total_out);
    deflateEnd(&stream);
    return bytes;
}

}  // namespace front
