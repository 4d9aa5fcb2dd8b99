// SPDX-License-Identifier: MIT
#include "replay/filmformats.h"

#include <algorithm>
#include <cmath>
#include <sstream>

namespace replay {
namespace {

using Words = std::vector<std::string>;

constexpr char PICTURES_IN[] =
    "-hide_banner -loglevel repeat+error -nostdin -y -f rawvideo -pix_fmt bgr0";
constexpr char SAME_EVERYWHERE[] =
    "-map_metadata -1 -fflags +bitexact -flags:v +bitexact -sws_flags accurate_rnd+bitexact";

// The threads are a fixed number since the encoder's choices depend on it.
constexpr char H264[] = "-c:v libx264 -preset medium -tune animation -crf 18 -threads:v 4 "
                        "-x264-params lookahead-threads=1";
// Players that are not told which rule turns these colours into red, green and blue guess one.
constexpr char COLOURS[] = "-colorspace bt709 -color_primaries bt709 -color_trc bt709 -vf";
constexpr char TO_YUV[] =
    "scale=out_color_matrix=bt709:out_range=tv:flags=accurate_rnd+full_chroma_int+bitexact,"
    "format=yuv420p";
// The encoder's usual search takes ten decibels more of the explosions' noise away.
constexpr char AAC[] = "-c:a aac -aac_coder fast -b:a 128k -flags:a +bitexact";

// The words of a line, and behind them a last one that may have blanks.
void append(Words& words, const std::string& line, const std::string& last = "") {
    std::istringstream in(line);
    for (std::string word; in >> word;) {
        words.push_back(word);
    }
    if (!last.empty()) {
        words.push_back(last);
    }
}

Words rawPictures(unsigned int rate) {
    Words words;
    append(words, PICTURES_IN);
    append(words, "-video_size " + std::to_string(FILM_WIDTH_PX) + "x" +
                      std::to_string(FILM_HEIGHT_PX) + " -framerate " + std::to_string(rate));
    append(words, "-i pipe:0");
    return words;
}

std::string gifSize(double scale) {
    const auto scaled = [&](int pixels) {
        return std::to_string(std::max(1, static_cast<int>(std::lround(pixels * scale))));
    };
    return "scale=" + scaled(FILM_WIDTH_PX) + ":" + scaled(FILM_HEIGHT_PX) +
           ":flags=area+accurate_rnd+full_chroma_int+bitexact";
}

}  // namespace

Words mp4Arguments(const std::string& soundFile, const std::string& out) {
    Words words = rawPictures(FILM_FPS);
    append(words, "-i", "file:" + soundFile);
    append(words, "-map 0:v -map 1:a");
    append(words, SAME_EVERYWHERE);
    append(words, COLOURS, TO_YUV);
    append(words, H264);
    append(words, AAC);
    append(words, "-movflags +faststart -f mp4", "file:" + out);
    return words;
}

// Colours of what moves count most: the rest of the picture is black.
Words paletteArguments(unsigned int rate, double scale, const std::string& palette) {
    Words words = rawPictures(rate);
    append(words, "-vf", gifSize(scale) + ",palettegen=stats_mode=diff");
    append(words, SAME_EVERYWHERE);
    append(words, "-update 1 -frames:v 1 -c:v png -f image2", "file:" + palette);
    return words;
}

// Without dithering: dots that change from picture to picture are noise, and make the file large.
Words gifArguments(unsigned int rate, double scale, const std::string& palette,
                   const std::string& out) {
    Words words = rawPictures(rate);
    append(words, "-i", "file:" + palette);
    append(words, "-lavfi",
           "[0:v]" + gifSize(scale) +
               "[sized];[sized][1:v]paletteuse=dither=none:diff_mode=rectangle");
    append(words, SAME_EVERYWHERE);
    append(words, "-f gif", "file:" + out);
    return words;
}

Words pngArguments(unsigned int rate, const std::string& folder) {
    std::string pattern;
    for (const char letter : folder) {
        pattern += letter == '%' ? std::string("%%") : std::string(1, letter);
    }
    Words words = rawPictures(rate);
    append(words, SAME_EVERYWHERE);
    append(words, "-c:v png -pix_fmt rgb24 -threads:v 2 -f image2 -start_number 1",
           "file:" + pattern + "/frame-%06d.png");
    return words;
}

}  // namespace replay
