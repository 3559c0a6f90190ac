#!/usr/bin/env bash
# Makes the clips that are measured with, once: make_clips.sh FOLDER FFMPEG [NAME]
set -euo pipefail
. "$(dirname "$0")/../tests/support/clip_maker.sh"

make 360p.mp4 -f lavfi -i "$(video 640x360 10)" -f lavfi -i "$(tone 10)" -pix_fmt yuv420p -shortest
# A keyframe a second.
make 1080p.mp4 -f lavfi -i "$(video 1920x1080 20)" -f lavfi -i "$(tone 20)" -pix_fmt yuv420p -preset veryfast -g 25 -shortest
make 4k.mp4 -f lavfi -i "$(video 3840x2160 10)" -f lavfi -i "$(tone 10)" -pix_fmt yuv420p -preset veryfast -shortest
# The same film four times over.
make 1080p_long.mp4 -stream_loop 3 -i 1080p.mp4 -c copy
