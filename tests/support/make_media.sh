#!/usr/bin/env bash
# Makes the clips that tests use, from the converter's own generators, once: make_media.sh FOLDER FFMPEG [NAME]
# With a NAME, only that clip.
set -euo pipefail
. "$(dirname "$0")/clip_maker.sh"

# A plain clip with sound: 640 x 360, two seconds.
make plain.mp4 -f lavfi -i "$(video 640x360 2)" -f lavfi -i "$(tone 2)" -pix_fmt yuv420p -shortest
# A full-size clip without sound.
make hd.mp4 -f lavfi -i "$(video 1920x1080 1)" -pix_fmt yuv420p -preset ultrafast
# A size with an odd side, which needs a source of full colour resolution.
make odd.mkv -f lavfi -i "testsrc=size=853x480:rate=25:duration=1" -c:v ffv1
# Long enough for a cancel in the middle.
make long.mp4 -f lavfi -i "$(video 1280x720 30)" -pix_fmt yuv420p -preset ultrafast
# What a phone held upright writes: coded 640 x 360, shown 360 x 640 (display matrix, -90).
make_turned portrait.mp4 -90
# The quarter turn the other way and the half turn.
make_turned portrait_other.mp4 90
make_turned upside_down.mp4 180
# Six channels of sound.
make surround.mkv -f lavfi -i "$(video 320x180 1)" -f lavfi -i "$(tone 1)" -pix_fmt yuv420p -ac 6 -c:a ac3 -shortest
# Sound only, and sound with a cover picture.
make sound.m4a -f lavfi -i "$(tone 1)"
make cover.png -f lavfi -i "$(video 64x64 1)" -frames:v 1
make cover.m4a -i sound.m4a -i cover.png -map 0 -map 1 -c copy -disposition:v attached_pic
# A cover picture in a film.
make cover_film.mp4 -i plain.mp4 -i cover.png -map 0 -map 1 -c copy -disposition:v:1 attached_pic
# One frame; no duration in the container.
make one_frame.mp4 -f lavfi -i "$(video 320x180 1)" -pix_fmt yuv420p -frames:v 1
make no_duration.webm -f lavfi -i "$(video 320x180 1)" -c:v libvpx -live 1 -f webm
# Film, sound and subtitles, with tags that people see.
[ -e subtitles.srt ] || printf '1\n00:00:00,000 --> 00:00:01,000\nHello\n' >subtitles.srt
make subtitled.mp4 -i plain.mp4 -i subtitles.srt -map 0 -map 1 -c copy -c:s mov_text -metadata:s:s language=eng \
    -metadata title="A Film" -metadata date=2008
