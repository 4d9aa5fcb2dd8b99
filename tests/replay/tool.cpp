// SPDX-License-Identifier: MIT
#include "replay/tool.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sys/wait.h>

namespace {

// For the shell: nothing in it means anything.
std::string asWord(const std::string& text) {
    std::string word = "'";
    for (const char c : text) {
        word += c == '\'' ? std::string("'\\''") : std::string(1, c);
    }
    return word + '\'';
}

}  // namespace

ToolResult runTool(const std::string& program, const std::vector<std::string>& words,
                   const std::string& streams) {
    const replay::TemporaryFolder folder;
    std::string command = asWord(program);
    for (const std::string& word : words) {
        command += ' ' + asWord(word);
    }
    command += " >" + folder.path + "/output 2>" + folder.path + "/error " + streams;
    const int state = std::system(command.c_str());
    return {WIFEXITED(state) ? WEXITSTATUS(state) : -1, bytesOf(folder.path + "/output"),
            bytesOf(folder.path + "/error")};
}

ToolResult runReplay(const std::string& verb, const std::vector<std::string>& words,
                     const std::string& streams) {
    const replay::Place place = builtPlace();
    std::vector<std::string> all = {verb};
    all.insert(all.end(), words.begin(), words.end());
    // A test may name another game.
    if (std::find(words.begin(), words.end(), "--game") == words.end()) {
        all.insert(all.end(), {"--game", place.program});
    }
    all.insert(all.end(), {"--layer", place.preload, "--data", place.data});
    return runTool(KRAVOLTIX_REPLAY, all, streams);
}

replay::Place builtPlace() {
    return {KRAVOLTIX_PROGRAM, KRAVOLTIX_PRELOAD, CORPUS_FIXTURES};
}

void recordScript(const std::string& script, const std::string& recordTo) {
    replay::GameRun run;
    run.script = script;
    run.arguments = replay::readFile(script, true).given.arguments;
    run.recordTo = recordTo;
    EXPECT_EQ(replay::runGame(builtPlace(), run).signal, 0);
}

std::string bytesOf(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    EXPECT_TRUE(in.good()) << path;
    return {std::istreambuf_iterator<char>(in), {}};
}

void writeBytes(const std::string& path, const std::string& bytes) {
    std::ofstream out(path, std::ios::binary);
    out << bytes;
    out.close();
    EXPECT_TRUE(out.good()) << path;
}

std::string unpacked(const std::string& path) {
    return runTool("gzip", {"-dc", path}).output;
}

std::string replaced(std::string text, const std::string& old, const std::string& with) {
    const size_t at = text.find(old);
    if (at == std::string::npos) {
        ADD_FAILURE() << "there is no \"" << old << "\" in the text";
        return text;
    }
    return text.replace(at, old.size(), with);
}
