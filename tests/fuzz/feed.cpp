// SPDX-License-Identifier: MIT
// Feeds inputs to a fuzz target, without libFuzzer: kravoltix-feed-NAME FILE ...
// A .txt file has an input a line, in hexadecimal digits; any other file is one input. Each
// is told by its place before it is fed, so that the last one is the one that ended the process.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, size_t count);

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr int HEX = 16;

void feed(const Bytes& bytes, const std::string& name) {
    std::fprintf(stderr, "%s\n", name.c_str());
    LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
}

bool unhex(const std::string& line, Bytes& bytes) {
    if (line.size() % 2 != 0 || line.find_first_not_of("0123456789abcdef") != std::string::npos) {
        return false;
    }
    for (size_t i = 0; i < line.size(); i += 2) {
        bytes.push_back(static_cast<std::uint8_t>(std::stoi(line.substr(i, 2), nullptr, HEX)));
    }
    return true;
}

int feedLines(std::ifstream& in, const std::string& file) {
    int number = 0;
    for (std::string line; std::getline(in, line);) {
        ++number;
        const std::string name = file + ':' + std::to_string(number);
        Bytes bytes;
        if (!unhex(line, bytes)) {
            std::fprintf(stderr, "%s: no hexadecimal digits\n", name.c_str());
            std::exit(1);
        }
        feed(bytes, name);
    }
    return number;
}

bool isList(const std::string& file) {
    const std::string end = ".txt";
    return file.size() >= end.size() &&
           file.compare(file.size() - end.size(), end.size(), end) == 0;
}

int feedFile(const std::string& file) {
    std::ifstream in(file, std::ios::binary);
    if (!in) {
        std::perror(file.c_str());
        std::exit(1);
    }
    if (isList(file)) {
        return feedLines(in, file);
    }
    const std::string content{std::istreambuf_iterator<char>(in), {}};
    feed(Bytes(content.begin(), content.end()), file);
    return 1;
}

}  // namespace

int main(int argc, char* argv[]) {
    int inputs = 0;
    for (int i = 1; i < argc; ++i) {
        inputs += feedFile(argv[i]);
    }
    std::fprintf(stderr, "%i inputs\n", inputs);
    return inputs == 0 ? 1 : 0;
}
