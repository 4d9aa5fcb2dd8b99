// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_TESTS_SUPPORT_FOLDERWATCH_H
#define KRAVOLTIX_TESTS_SUPPORT_FOLDERWATCH_H

#include <functional>
#include <string>

// Waits for what another process does in a folder; the system tells of each change.
class FolderWatch {
public:
    explicit FolderWatch(const std::string& folder);
    ~FolderWatch();
    FolderWatch(const FolderWatch&) = delete;
    FolderWatch& operator=(const FolderWatch&) = delete;

    // False when nothing has changed there for two minutes, and it is still not so.
    bool waitUntil(const std::function<bool()>& isSo) const;

private:
    int changes = -1;
};

#endif
