# SPDX-License-Identifier: MIT
# shellcheck shell=sh
# Sourced by ./play and ./test: finds out what is missing on this machine and installs it, or says
# what to install. Needs nothing but a POSIX shell.

say() { printf '%s\n' "$*"; }

fail() {
    printf '%s\n' "$*" >&2
    exit 1
}

debian_packages=
fedora_packages=
arch_packages=
suse_packages=

# want DEBIAN FEDORA ARCH OPENSUSE: one thing that is missing, by its package in each distribution.
want() {
    debian_packages="$debian_packages $1"
    fedora_packages="$fedora_packages $2"
    arch_packages="$arch_packages $3"
    suse_packages="$suse_packages $4"
}

# need_command COMMAND DEBIAN FEDORA ARCH OPENSUSE
need_command() {
    command -v "$1" >/dev/null 2>&1 || want "$2" "$3" "$4" "$5"
}

# need_library PKG-CONFIG-NAME DEBIAN FEDORA ARCH OPENSUSE
need_library() {
    pkg-config --exists "$1" 2>/dev/null || want "$2" "$3" "$4" "$5"
}

# need_python MODULE DEBIAN FEDORA ARCH OPENSUSE
need_python() {
    /usr/bin/python3 -c "import $1" >/dev/null 2>&1 || want "$2" "$3" "$4" "$5"
}

need_build_tools() {
    need_command g++ g++ gcc-c++ gcc gcc-c++
    need_command cmake cmake cmake cmake cmake
    need_command ninja ninja-build ninja-build ninja ninja
    need_command pkg-config pkg-config pkgconf-pkg-config pkgconf pkgconf-pkg-config
    need_library sdl libsdl1.2-dev sdl12-compat-devel sdl12-compat sdl12_compat-devel
    need_library SDL_image libsdl-image1.2-dev SDL_image-devel sdl_image libSDL_image-devel
    need_library SDL_mixer libsdl-mixer1.2-dev SDL_mixer-devel sdl_mixer libSDL_mixer-devel
}

# What the programs of tools/ are built from, and the encoder that they call.
need_replay_tools() {
    need_library zlib zlib1g-dev zlib-devel zlib zlib-devel
    need_library libpng libpng-dev libpng-devel libpng libpng16-devel
    need_library libxxhash libxxhash-dev xxhash-devel xxhash xxhash-devel
    need_library CLI11 libcli11-dev cli11-devel cli11 cli11-devel
    need_command ffmpeg ffmpeg ffmpeg-free ffmpeg ffmpeg
}

need_test_tools() {
    need_replay_tools
    need_library gtest libgtest-dev gtest-devel gtest gtest
    need_command strace strace strace strace strace
    need_command bwrap bubblewrap bubblewrap bubblewrap bubblewrap
    need_python numpy python3-numpy python3-numpy python-numpy python3-numpy
    need_python PIL python3-pil python3-pillow python-pillow python3-Pillow
    need_python matplotlib python3-matplotlib python3-matplotlib python-matplotlib python3-matplotlib
}

# Displays, keys and a sound server that nobody sees and hears, for ./test --all.
need_display_tools() {
    need_command Xvfb xvfb xorg-x11-server-Xvfb xorg-server-xvfb xorg-x11-server-Xvfb
    need_command xdotool xdotool xdotool xdotool xdotool
    need_command setxkbmap x11-xkb-utils setxkbmap xorg-setxkbmap setxkbmap
    need_command openbox openbox openbox openbox openbox
    need_command weston weston weston weston weston
    need_command Xwayland xwayland xorg-x11-server-Xwayland xorg-xwayland xwayland
    need_command pulseaudio pulseaudio pulseaudio pulseaudio pulseaudio
}

# Installs what the need_* calls before it found missing.
install_missing() {
    if [ -z "$debian_packages" ]; then
        return 0
    fi
    if ! command -v apt-get >/dev/null 2>&1; then
        fail "Some packages are missing, and this is not a Debian system. Install them and start again:
  Fedora:    sudo dnf install$fedora_packages
  Arch:      sudo pacman -S$arch_packages
  openSUSE:  sudo zypper install$suse_packages"
    fi
    if [ "$(id -u)" -eq 0 ]; then
        as_root=
    elif command -v sudo >/dev/null 2>&1; then
        as_root=sudo
    else
        fail "Some packages are missing, and neither root rights nor sudo are at hand. As root, run:
  apt-get install$debian_packages"
    fi
    say "Installing what is missing:$debian_packages"
    # shellcheck disable=SC2086 # lists of words
    if ! {
        $as_root apt-get update -q &&
            $as_root env DEBIAN_FRONTEND=noninteractive \
                apt-get install -y -q --no-install-recommends $debian_packages
    }; then
        fail "apt-get could not install the packages; its own message stands above."
    fi
}

# build PRESET [CMAKE OPTIONS]: configures on the first call, and builds what has changed.
build() {
    preset=$1
    mkdir -p build
    shift
    if [ ! -f "build/$preset/build.ninja" ] || [ $# -gt 0 ]; then
        cmake --preset "$preset" "$@" >"build/$preset.log" 2>&1 || {
            cat "build/$preset.log" >&2
            fail "CMake could not prepare the build; its message stands above."
        }
        rm -f "build/$preset.log"
    fi
    cmake --build --preset "$preset" || fail "The build failed; the compiler's message stands above."
}
