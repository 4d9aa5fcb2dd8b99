// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_FRONT_STREAMS_H
#define KRAVOLTIX_FRONT_STREAMS_H

#include <fcntl.h>
#include <unistd.h>

namespace front {

// Opens /dev/null in the place of each standard stream that is closed. Its number would go to the next
// file that is opened: what is printed would get into a recording, and a new process could not be
// given that file for a stream of its own. To be called before anything else is opened.
inline void fillClosedStreams() {
    for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
        if (fcntl(stream, F_GETFD) < 0) {
            open("/dev/null", O_RDWR);  // takes the lowest number that is free: this one
        }
    }
}

}  // namespace front

#endif
