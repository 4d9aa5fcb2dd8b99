// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_REPLAY_UNFINISHED_H
#define KRAVOLTIX_REPLAY_UNFINISHED_H

#include <string>
#include <system_error>

// A file, or a folder of pictures, that grows beside its place and takes it when it is whole. One
// that is not finished is removed, and what was there before stays.
namespace replay {

class Unfinished {
public:
    // Begins it, empty, at `path`. Throws Trouble when there is something in its place already and
    // `force` is false, or when nothing can be written there.
    Unfinished(const std::string& wanted, bool wantsFolder, bool force);
    ~Unfinished();
    Unfinished(const Unfinished&) = delete;
    Unfinished& operator=(const Unfinished&) = delete;

    // In a folder that is there already, pictures of an earlier film make way; other files stay.
    void finish();

    std::string path;

private:
    void begin();
    void movePictures() const;
    void refuseOn(const std::error_code& error) const;

    std::string out;
    bool isFolder;
};

}  // namespace replay

#endif
