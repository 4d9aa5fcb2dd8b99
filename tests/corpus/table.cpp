// SPDX-License-Identifier: MIT
#include "corpus/table.h"

#include "replay/game.h"

#define XXH_INLINE_ALL
#include <xxhash.h>

#include <cinttypes>
#include <cstdio>
#include <sstream>

namespace corpus {
namespace {

constexpr char HEAD[] =
    "# SPDX-License-Identifier: MIT\n"
    "# What must come of the games of the corpus; kravoltix-corpus writes this file (README.md).\n"
    "# seed, scenario, frames, exit status, digests of pictures, mixer calls and text\n";
constexpr char COUNT_WORD[] = "seeds";

// The game's last line names a web address, which whoever builds the game chooses.
constexpr char ADDRESS_LINE[] = "\nQuestions? ... ";

Uint64 hashOf(std::string_view bytes) {
    return XXH3_64bits(bytes.data(), bytes.size());
}

std::string callsOf(const front::Seen& seen) {
    std::string all;
    for (const front::LibraryCall& call : seen.calls) {
        all += std::to_string(call.frame) + ' ' + std::to_string(call.clockMs) + ' ' + call.call +
               '\n';
    }
    return all;
}

std::string withoutAddress(std::string text) {
    const size_t line = text.rfind(ADDRESS_LINE);
    if (line == std::string::npos) {
        return text;
    }
    const size_t address = line + sizeof ADDRESS_LINE - 1;
    return text.erase(address, text.find('\n', address) - address);
}

// With the frame of each piece, so that a word that comes a frame later is another text.
std::string textOf(const front::Seen& seen) {
    std::string all;
    for (const front::PrintedText& text : seen.texts) {
        all += std::to_string(text.frame) + ' ' + withoutAddress(text.bytes) + '\0';
    }
    return all;
}

std::string hex(Uint64 value) {
    char text[17];
    std::snprintf(text, sizeof text, "%016" PRIx64, value);
    return text;
}

std::string lineOf(const Row& row) {
    return std::to_string(row.seed) + ' ' + hex(row.scenario) + ' ' + std::to_string(row.frames) +
           ' ' + std::to_string(row.status) + ' ' + hex(row.pictures) + ' ' + hex(row.calls) + ' ' +
           hex(row.text) + '\n';
}

bool isRow(const std::string& line, Row& row) {
    return std::sscanf(line.c_str(),
                       "%" SCNu32 " %16" SCNx64 " %" SCNu32 " %" SCNu32 " %16" SCNx64 " %16" SCNx64
                       " %16" SCNx64,
                       &row.seed, &row.scenario, &row.frames, &row.status, &row.pictures,
                       &row.calls, &row.text) == 7 &&
           line + '\n' == lineOf(row);  // nothing else, and in no other way
}

[[noreturn]] void failAt(const std::string& name, size_t line, const std::string& what) {
    throw replay::Trouble(name + ':' + std::to_string(line) + ": " + what);
}

Uint64 valueOf(Column column, const Row& row) {
    switch (column) {
    case Column::SCENARIO:
        return row.scenario;
    case Column::FRAMES:
        return row.frames;
    case Column::STATUS:
        return row.status;
    case Column::PICTURES:
        return row.pictures;
    case Column::CALLS:
        return row.calls;
    case Column::TEXT:
        break;
    }
    return row.text;
}

}  // namespace

const char* nameOf(Column column) {
    switch (column) {
    case Column::SCENARIO:
        return "scenario";
    case Column::FRAMES:
        return "frames";
    case Column::STATUS:
        return "exit status";
    case Column::PICTURES:
        return "pictures";
    case Column::CALLS:
        return "mixer calls";
    case Column::TEXT:
        break;
    }
    return "text";
}

bool isSame(Column column, const Row& a, const Row& b) {
    return valueOf(column, a) == valueOf(column, b);
}

Row rowOf(Uint32 seed, std::string_view scenario, const front::Recording& played) {
    const front::Seen& seen = played.seen;
    const std::string name = "seed " + std::to_string(seed);
    if (seen.frames == 0) {
        throw replay::Trouble(name + ": the game showed no frame");
    }
    if (seen.text().empty()) {
        throw replay::Trouble(name + ": the game printed nothing");
    }
    if (seen.digests.empty() || seen.digests.back().frame != seen.frames) {
        throw replay::Trouble(name + ": the pictures were not written down to the last");
    }
    return {seed,
            hashOf(scenario),
            seen.frames,
            seen.status,
            seen.digests.back().digest,
            hashOf(callsOf(seen)),
            hashOf(textOf(seen))};
}

std::vector<Row> readTable(const std::string& text, const std::string& name) {
    std::vector<Row> rows;
    size_t wanted = 0;
    size_t number = 0;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        ++number;
        if (line.empty() || line[0] == '#') {
            continue;
        }
        if (wanted == 0) {
            std::istringstream words(line);
            std::string word;
            if (!(words >> word >> wanted) || word != COUNT_WORD || wanted == 0) {
                failAt(name, number, "here stands \"seeds\" and how many");
            }
            continue;
        }
        Row row = {};
        if (!isRow(line, row)) {
            failAt(name, number, "no line of a seed");
        }
        if (!rows.empty() && row.seed <= rows.back().seed) {
            failAt(name, number, "the seeds do not rise");
        }
        rows.push_back(row);
    }
    if (rows.empty()) {
        failAt(name, number, "there is no seed in the table");
    }
    if (rows.size() != wanted) {
        failAt(name, number,
               "the table has " + std::to_string(rows.size()) + " seeds, not " +
                   std::to_string(wanted));
    }
    return rows;
}

std::string tableText(const std::vector<Row>& rows) {
    std::string text = HEAD;
    text += std::string(COUNT_WORD) + ' ' + std::to_string(rows.size()) + '\n';
    for (const Row& row : rows) {
        text += lineOf(row);
    }
    return text;
}

std::string difference(const Row& expected, const Row& got) {
    std::string words;
    for (const Column column : COLUMNS) {
        if (isSame(column, expected, got)) {
            continue;
        }
        words += (words.empty() ? "" : ", ") + std::string(nameOf(column));
        if (column == Column::FRAMES || column == Column::STATUS) {
            words += " (expected " + std::to_string(valueOf(column, expected)) + ", got " +
                     std::to_string(valueOf(column, got)) + ')';
        }
    }
    return words;
}

}  // namespace corpus
