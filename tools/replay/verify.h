// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_REPLAY_VERIFY_H
#define KRAVOLTIX_REPLAY_VERIFY_H

#include "replay/game.h"

#include <string>
#include <vector>

namespace replay {

struct VerifyOptions {
    std::vector<std::string> files;
    Place place;
    std::string expectedProgram;  // plays the picture that was expected, for the report
    std::string pictureFolder;    // where pictures of a difference go; empty: beside the file
    bool partly = false;          // a recording that was cut off counts as far as it goes
    bool anyLibrary = false;      // pictures of another SDL are not compared, the rest is
    unsigned int jobs = 1;        // games at once
};

// Plays each file's game again, without window and sound, and compares. One line for each file on
// standard output, or what differs. The exit status: 0 all are the same, 1 some differ, 2 some could
// not be compared.
int verify(const VerifyOptions& options);

}  // namespace replay

#endif
