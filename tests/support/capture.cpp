// SPDX-License-Identifier: MIT
#include "support/capture.h"

#include <cstdio>
#include <cstdlib>
#include <unistd.h>

namespace {

std::string captured(std::FILE* stream, const std::function<void()>& action) {
    std::FILE* store = std::tmpfile();
    if (store == nullptr) {
        std::perror("cannot make a temporary file");
        std::abort();
    }
    std::fflush(stream);
    const int descriptor = fileno(stream);
    const int kept = dup(descriptor);
    dup2(fileno(store), descriptor);
    action();
    std::fflush(stream);
    dup2(kept, descriptor);
    close(kept);

    std::string text;
    std::rewind(store);
    for (int c = std::fgetc(store); c != EOF; c = std::fgetc(store)) {
        text += static_cast<char>(c);
    }
    std::fclose(store);
    return text;
}

}  // namespace

std::string capturedOutput(const std::function<void()>& action) {
    return captured(stdout, action);
}

std::string capturedError(const std::function<void()>& action) {
    return captured(stderr, action);
}
