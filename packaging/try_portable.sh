#!/usr/bin/env bash
# Unpacks the archive into the home folder and tries what is in it: try_portable.sh ARCHIVE CLIP WINDOW_CHECK, the clip being of
# 640 x 360 pixels.
set -euo pipefail
archive=$1 clip=$2 window_check=$3
fail() {
    echo "$archive: $*"
    exit 1
}
cd
tar -xf "$archive"
tree=$PWD/$(tar -tf "$archive" | sed -n '1s|/.*||p')
mkdir films
cp "$clip" films/clip.mp4
size_of() { "$tree/lib/tessaly/sniffer" -v error -select_streams v -show_entries stream=width,height -of csv=p=0 "$1"; }

echo "libraries"
find "$tree" -type f \( -name '*.so*' -o -perm -100 \) | while read -r file; do
    missing=$(ldd "$file" 2>/dev/null | grep 'not found' || :)
    [ -z "$missing" ] || fail "${file#"$tree/"} misses $missing"
done

echo "command line"
"$tree/bin/tessaly-cli" resize films/clip.mp4 -o films/small.mp4 --scale 50 || fail "tessaly-cli resize ends with $?"
[ "$(size_of films/small.mp4)" = 320,180 ] || fail "the new video has another size"

echo "window without a screen"
bash "$window_check" "$tree/bin/tessaly"

echo "window on an X server"
mkdir -m 700 runtime
# shellcheck disable=SC2094
{
    mkfifo number
    Xvfb -displayfd 3 -screen 0 1280x900x24 -nolisten tcp 3>number 2>/dev/null &
    display=$!
    trap 'kill "$display" 2>/dev/null || :' EXIT
    read -r number <number
}
export DISPLAY=:$number XDG_RUNTIME_DIR=$PWD/runtime

# until_true COMPLAINT COMMAND…
until_true() {
    local complaint=$1 ends=$((SECONDS + 120))
    shift
    until "$@" >/dev/null 2>&1; do
        kill -0 "$window" 2>/dev/null || { cat said; fail "the window has gone"; }
        [ "$SECONDS" -lt "$ends" ] || fail "$complaint"
        sleep 0.5
    done
}
has_keyboard() { [ "$(xdotool getwindowfocus getwindowname)" = "$1" ]; }
start_window() { # start_window [VARIABLE=VALUE…]
    env "$@" "$tree/bin/tessaly" 2>said &
    window=$!
    until_true "no window with the keyboard" has_keyboard "Tessaly"
}
end_window() {
    kill -TERM "$window"
    wait "$window" || fail "the window ends with $?"
}

# The loader tells what it looks for, of the libraries that are opened later as well. The tools would tell it, too.
start_window QT_DEBUG_PLUGINS=1 LD_DEBUG=libs LD_DEBUG_OUTPUT="$PWD/loader"
xdotool key ctrl+o
until_true "no panel" has_keyboard "Open Video — Tessaly"
end_window
! grep -i 'cannot load library\|could not load' said || fail "a plugin could not be loaded"
names() { sed -n "s/.*$1\\([^ ]*\\).*/\\1/p" "loader.$window" | sort -u; }
missing=$(comm -23 <(names 'find library=') <(names 'calling init: .*\/'))
[ -z "$missing" ] || fail "the window looked for these and found none: $missing"

echo "beside other libraries of the same names"
mkdir decoys
for library in "$tree"/lib/*.so*; do cp "$tree/lib/libXau.so.6" "decoys/${library##*/}"; done
LD_LIBRARY_PATH=$PWD/decoys "$tree/bin/tessaly-cli" info films/clip.mp4 >/dev/null || fail "tessaly-cli info ends with $?"
start_window LD_LIBRARY_PATH="$PWD/decoys"
end_window
[ ! -s said ] || { cat said; fail "the window said something"; }

echo "a video in the window"
start_window
xdotool key ctrl+o
until_true "no panel" has_keyboard "Open Video — Tessaly"
xdotool type --delay 30 -- "$PWD/films/clip.mp4"
xdotool key Return
until_true "the clip is not opened" has_keyboard "clip.mp4 — Tessaly"
half_is_saved() { # until the stills are made neither key does anything
    xdotool key alt+7 ctrl+s
    sleep 1
    has_keyboard "Save Resized Video — Tessaly"
}
until_true "no panel to save in" half_is_saved
xdotool type --delay 30 -- "$PWD/films/window.mp4"
xdotool key Return
until_true "the window wrote nothing" test -s films/window.mp4
written() { [ "$(size_of films/window.mp4)" = 320,180 ]; }
until_true "what the window wrote is no video of half the size" written
end_window
[ ! -s said ] || { cat said; fail "the window said something"; }
