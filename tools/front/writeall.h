// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_FRONT_WRITEALL_H
#define KRAVOLTIX_FRONT_WRITEALL_H

#include <cerrno>
#include <cstddef>
#include <unistd.h>

namespace front {

// Writes every byte, however few the system takes at once. False when it takes no more; errno tells
// why.
inline bool writeAll(int descriptor, const void* from, size_t bytes) {
    const char* at = static_cast<const char*>(from);
    while (bytes > 0) {
        const ssize_t written = write(descriptor, at, bytes);
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written <= 0) {
            return false;
        }
        at += written;
        bytes -= static_cast<size_t>(written);
    }
    return true;
}

}  // namespace front

#endif
