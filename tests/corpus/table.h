// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_TESTS_CORPUS_TABLE_H
#define KRAVOLTIX_TESTS_CORPUS_TABLE_H

#include "front/recording.h"

#include <string>
#include <string_view>
#include <vector>

// What came of the games of the corpus, a line for each.
namespace corpus {

struct Row {
    Uint32 seed;
    Uint64 scenario;  // hash of the game's text: another one is another game
    Uint32 frames;
    Uint32 status;
    // one digest for each channel
    Uint64 pictures;
    Uint64 calls;
    Uint64 text;
};

// What a game's row is compared by.
enum class Column { SCENARIO, FRAMES, STATUS, PICTURES, CALLS, TEXT };
constexpr Column COLUMNS[] = {Column::SCENARIO, Column::FRAMES, Column::STATUS,
                              Column::PICTURES, Column::CALLS,  Column::TEXT};

const char* nameOf(Column column);
bool isSame(Column column, const Row& a, const Row& b);

// Of a game that was played. Throws replay::Trouble when it proves nothing: without a frame, without
// a word, or with pictures that have no digest.
Row rowOf(Uint32 seed, std::string_view scenario, const front::Recording& played);

// Reads a table; throws replay::Trouble "NAME:LINE: what is wrong" when it is not whole.
std::vector<Row> readTable(const std::string& text, const std::string& name);

std::string tableText(const std::vector<Row>& rows);

// What differs, with the figures; empty when nothing does.
std::string difference(const Row& expected, const Row& got);

}  // namespace corpus

#endif
