// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_TESTS_REPLAY_TOOL_H
#define KRAVOLTIX_TESTS_REPLAY_TOOL_H

#include "replay/game.h"

#include <string>
#include <vector>

// The built tools, started from outside as their users start them.
struct ToolResult {
    int status = -1;  // exit status, -1 after a signal
    std::string output;
    std::string error;
};

// `program` and its words; each word reaches it as it is. `streams` is what the shell is told besides,
// to close some of them.
ToolResult runTool(const std::string& program, const std::vector<std::string>& words,
                   const std::string& streams = "");

// kravoltix-replay with this verb, on the built game and the pictures of the corpus.
ToolResult runReplay(const std::string& verb, const std::vector<std::string>& words,
                     const std::string& streams = "");

// What that tool plays.
replay::Place builtPlace();

// Plays a scenario or recording without a window and writes down what comes.
void recordScript(const std::string& script, const std::string& recordTo);

std::string bytesOf(const std::string& path);
void writeBytes(const std::string& path, const std::string& bytes);

// A recording as text, and back.
std::string unpacked(const std::string& path);

// The text with its first `old` replaced; fails the test when there is none.
std::string replaced(std::string text, const std::string& old, const std::string& with);

#endif
