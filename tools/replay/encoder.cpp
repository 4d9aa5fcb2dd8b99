// SPDX-License-Identifier: MIT
#include "replay/encoder.h"

#include "replay/game.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <sstream>
#include <sys/wait.h>
#include <unistd.h>

namespace replay {
namespace {

constexpr char PROGRAM[] = "ffmpeg";
constexpr int STATUS_NOT_STARTED = 127;

[[noreturn]] void becomeEncoder(const std::vector<std::string>& arguments, int input,
                                const std::string& messageFile) {
    std::vector<char*> words = {const_cast<char*>(PROGRAM)};
    for (const std::string& argument : arguments) {
        words.push_back(const_cast<char*>(argument.c_str()));
    }
    words.push_back(nullptr);
    const int messages = open(messageFile.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    dup2(input, STDIN_FILENO);
    dup2(messages, STDOUT_FILENO);
    dup2(messages, STDERR_FILENO);
    execvp(PROGRAM, words.data());
    _exit(STATUS_NOT_STARTED);
}

int waitFor(int process) {
    int state = 0;
    while (waitpid(process, &state, 0) < 0 && errno == EINTR) {
    }
    return state;
}

// The last line: ffmpeg's reason stands behind its circumstances.
std::string lastLine(const std::string& file) {
    std::ifstream in(file);
    std::string last;
    for (std::string line; std::getline(in, line);) {
        last = line.empty() ? last : line;
    }
    return last;
}

}  // namespace

void needEncoder() {
    const char* path = std::getenv("PATH");
    std::istringstream folders(path == nullptr ? "" : path);
    for (std::string folder; std::getline(folders, folder, ':');) {
        if (access((folder + "/" + PROGRAM).c_str(), X_OK) == 0) {
            return;
        }
    }
    throw Trouble("ffmpeg is missing, and films are made with it; install the package ffmpeg");
}

Encoder::Encoder(const std::vector<std::string>& arguments, const std::string& messages)
    : messageFile(messages) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0 || (process = fork()) < 0) {
        throw Trouble(std::string("ffmpeg cannot be started: ") + std::strerror(errno));
    }
    if (process == 0) {
        becomeEncoder(arguments, ends[0], messageFile);
    }
    close(ends[0]);
    input = ends[1];
}

Encoder::~Encoder() {
    if (process > 0) {
        close(input);
        kill(process, SIGKILL);
        waitFor(process);
    }
}

bool Encoder::take(const std::vector<char>& picture) {
    for (size_t done = 0; done < picture.size();) {
        const ssize_t count = write(input, picture.data() + done, picture.size() - done);
        if (count < 0 && errno != EINTR) {
            return false;
        }
        done += static_cast<size_t>(std::max<ssize_t>(count, 0));
    }
    return true;
}

void Encoder::finish() {
    close(input);
    const int state = waitFor(process);
    process = -1;
    if (WIFSIGNALED(state)) {
        throw Trouble(std::string("ffmpeg was ended by a signal: ") + strsignal(WTERMSIG(state)));
    }
    const std::string message = lastLine(messageFile);
    if (WEXITSTATUS(state) != 0 || !message.empty()) {
        throw Trouble("ffmpeg has failed: " + (message.empty() ? "it does not say why" : message));
    }
}

}  // namespace replay
