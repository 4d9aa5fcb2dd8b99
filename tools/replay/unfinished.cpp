// SPDX-License-Identifier: MIT
#include "replay/unfinished.h"

#include "replay/game.h"

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <unistd.h>

namespace replay {
namespace {

namespace fs = std::filesystem;

constexpr char SUFFIX[] = ".part";

std::string placeOf(const std::string& out) {
    std::string place = fs::absolute(out).lexically_normal().string();
    while (place.size() > 1 && place.back() == '/') {
        place.pop_back();
    }
    return place;
}

bool isPicture(const fs::path& file) {
    return file.extension() == ".png" && file.filename().string().rfind("frame-", 0) == 0;
}

}  // namespace

Unfinished::Unfinished(const std::string& wanted, bool wantsFolder, bool force)
    : path(placeOf(wanted) + SUFFIX), out(placeOf(wanted)), isFolder(wantsFolder) {
    const bool isEmptyFolder = isFolder && fs::is_directory(out) && fs::is_empty(out);
    if (fs::exists(out) && !isEmptyFolder && !force) {
        throw Trouble(wanted + ": is there already; name another, or say --force to write over it");
    }
    begin();
}

void Unfinished::begin() {
    std::error_code error;
    fs::remove_all(path, error);
    if (isFolder) {
        fs::create_directory(path, error);
        refuseOn(error);
        return;
    }
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0666);
    refuseOn({file < 0 ? errno : 0, std::generic_category()});
    close(file);
}

Unfinished::~Unfinished() {
    std::error_code ignored;
    fs::remove_all(path, ignored);
}

void Unfinished::finish() {
    if (isFolder && fs::exists(out)) {
        movePictures();
        return;
    }
    std::error_code error;
    fs::rename(path, out, error);
    refuseOn(error);
}

void Unfinished::movePictures() const {
    std::error_code error;
    for (const fs::directory_entry& entry : fs::directory_iterator(out)) {
        if (isPicture(entry.path())) {
            fs::remove(entry, error);
            refuseOn(error);
        }
    }
    for (const fs::directory_entry& entry : fs::directory_iterator(path)) {
        fs::rename(entry, out / entry.path().filename(), error);
        refuseOn(error);
    }
}

void Unfinished::refuseOn(const std::error_code& error) const {
    if (error) {
        throw Trouble(out + ": cannot be written: " + error.message());
    }
}

}  // namespace replay
