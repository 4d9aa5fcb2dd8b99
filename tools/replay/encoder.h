// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_REPLAY_ENCODER_H
#define KRAVOLTIX_REPLAY_ENCODER_H

#include <string>
#include <vector>

// ffmpeg as a process of its own that is fed with raw pictures.
namespace replay {

// Throws Trouble when there is none on this machine.
void needEncoder();

class Encoder {
public:
    // Starts it. What it says goes to this file, to be told when it fails.
    Encoder(const std::vector<std::string>& arguments, const std::string& messages);
    // Ends it without waiting for its work, unless it has been finished.
    ~Encoder();
    Encoder(const Encoder&) = delete;
    Encoder& operator=(const Encoder&) = delete;

    // False when it has gone; finish() then throws with its reason.
    bool take(const std::vector<char>& picture);

    // There is nothing more; waits until it is done. Throws Trouble when it has failed.
    void finish();

private:
    std::string messageFile;
    int process = -1;
    int input = -1;
};

}  // namespace replay

#endif
