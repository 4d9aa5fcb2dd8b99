// SPDX-License-Identifier: MIT
#include "support/folderwatch.h"

#include <gtest/gtest.h>

#include <poll.h>
#include <sys/inotify.h>
#include <unistd.h>

namespace {

constexpr int PATIENCE_MS = 120000;

}  // namespace

FolderWatch::FolderWatch(const std::string& folder) : changes(inotify_init1(IN_CLOEXEC)) {
    EXPECT_GE(inotify_add_watch(changes, folder.c_str(), IN_CREATE | IN_MODIFY | IN_MOVED_TO), 0)
        << "cannot watch " << folder;
}

FolderWatch::~FolderWatch() {
    close(changes);
}

bool FolderWatch::waitUntil(const std::function<bool()>& isSo) const {
    while (!isSo()) {
        pollfd change = {changes, POLLIN, 0};
        char events[4096];
        if (poll(&change, 1, PATIENCE_MS) <= 0 || read(changes, events, sizeof events) <= 0) {
            return isSo();
        }
    }
    return true;
}
