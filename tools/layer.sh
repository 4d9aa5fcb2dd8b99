# SPDX-License-Identifier: MIT
# shellcheck shell=sh
# Sourced by what plays the game with the library that takes the place of SDL 1.2.

# find_layer FOLDER: sets layer to the folder of that library. Where it is not installed, its package
# is unpacked into FOLDER, and nothing is installed.
find_layer() {
    look_for_layer "$1" || { fetch_layer "$1" && look_for_layer "$1"; }
}

look_for_layer() {
    for place in ${KRAVOLTIX_SDL12_COMPAT-} /usr/lib/*/sdl12-compat "$1"/usr/lib/*/sdl12-compat; do
        if [ -e "$place/libSDL-1.2.so.0" ]; then
            # shellcheck disable=SC2034 # for whoever has sourced this
            layer=$(cd "$place" && pwd)
            return 0
        fi
    done
    return 1
}

fetch_layer() {
    command -v apt-get >/dev/null 2>&1 || return 1
    mkdir -p "$1"
    (cd "$1" && apt-get download -q libsdl1.2-compat && dpkg -x libsdl1.2-compat*.deb .) \
        >"$1.log" 2>&1
}
