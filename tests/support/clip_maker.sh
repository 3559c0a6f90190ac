# shellcheck shell=bash
# Sourced by the scripts that make clips from the converter's own generators, with their arguments: FOLDER FFMPEG [NAME].
# Each clip is made once; with a NAME, only that one.
script=$(realpath "$0")
folder=$1
ffmpeg=$2
only=${3:-}
mkdir -p "$folder"
cd "$folder" || exit

# make NAME ARGUMENTS…: written under another name first, so that an interrupted run leaves no half clip behind. Clips
# that are older than their script are made again.
make() {
    local name=$1
    shift
    [ -z "$only" ] || [ "$only" = "$name" ] || return 0
    [ "$name" -nt "$script" ] && return 0
    echo "making $name"
    rm -f "part.$name"
    "$ffmpeg" -nostdin -hide_banner -loglevel error -y "$@" "part.$name"
    mv "part.$name" "$name"
}

# make_turned NAME DEGREES: the plain clip with a display matrix that turns it so far against the clock. Converters up to
# FFmpeg 5 make the matrix from a tag, later ones from an option.
make_turned() {
    if "$ffmpeg" -hide_banner -h long | grep -e '^ *-display_rotation' >/dev/null; then
        make "$1" -display_rotation "$2" -i plain.mp4 -c copy
    else
        make "$1" -i plain.mp4 -c copy -metadata:s:v rotate="$(((360 + $2) % 360))"
    fi
}

video() { echo "testsrc2=size=$1:rate=25:duration=$2"; }
tone() { echo "sine=frequency=440:sample_rate=44100:duration=$1"; }
