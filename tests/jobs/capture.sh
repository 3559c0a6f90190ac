#!/usr/bin/env bash
# Writes down what the installed converter says when it fails, for the tests of the reasons, as captured/GENERATION-CASE.txt:
# capture.sh GENERATION MEDIA [CORPUS]. MEDIA holds the clips of make_media.sh; without the folder of real media files the
# cases that need them are left out. Run it as root in a clean Debian (packaging/clean_debian.sh) of that generation: it
# mounts small disks below /videos.
set -euo pipefail
if [ "${1:-}" != inside ]; then
    exec unshare --mount --propagation unchanged "$0" inside "$@"
fi
mount --make-rprivate / 2>/dev/null || : # inside a root that is no mount of its own it is so already
generation=$2
media=$(realpath "$3")
corpus=${4:+$(realpath "$4")}
captured=$(dirname "$(realpath "$0")")/captured
mkdir -p /videos
mount -t tmpfs -o mode=755 tmpfs /videos
cd /videos
mkdir saved closed small filled fixed folder.mp4
chmod 777 saved
mount -t tmpfs -o size=256k,mode=777 tmpfs small
mount -t tmpfs -o size=16k,mode=777 tmpfs filled
mount -t tmpfs -o ro,mode=777 tmpfs fixed
head -c 16k /dev/zero >filled/zeros
cp "$media/plain.mp4" "$media/long.mp4" .
install -m 600 plain.mp4 secret.mp4
: >empty.mp4
# The index stands at the head here, so that what lacks is picture and sound.
ffmpeg -nostdin -loglevel error -i plain.mp4 -c copy -movflags +faststart whole.mp4
head -c 100000 whole.mp4 >cut.mp4
head -c 100000 whole.mp4 >damaged.mp4
head -c 30000 /dev/zero >>damaged.mp4
tail -c +130001 whole.mp4 >>damaged.mp4

# take NAME FILE: a real media file under the name that it has in the captured text.
take() { [ -z "$corpus" ] || install -m 644 "$corpus/$2" "$1"; }
take covers.m4a testMP4_twoCovers.m4a
take corrupt.mkv fixture-corrupt.mkv
take encrypted.mp4 short-cenc.mp4
take fragment.mp4 video_512x288_h264-360k_enc_dashinit.mp4
take lacing.mkv fixed_lacing_bad_lace_size.mkv
take no_sound_codec.mp4 sample_missing_stsd.mp4
take old.wmv WindowsMediaVideo.wmv
take sound.mp4 multiple-aac-tracks.mp4
take tiny.ogv 2x2-green.ogv
# A picture codec that no generation knows.
take unknown.mp4 sample_vvc.mp4
[ ! -e unknown.mp4 ] || sed -i 's/vvc1/qqq1/g; s/vvcC/qqqC/g' unknown.mp4

# convert CASE INPUT WIDTH HEIGHT [OUTPUT]: as someone who may not do everything, with the arguments of a resize.
convert() {
    local input=/videos/$2
    if [ -z "$corpus" ] && [ ! -e "$input" ] && [ "$2" != gone.mp4 ]; then return 0; fi
    local status=0
    # shellcheck disable=SC2086
    setpriv --reuid=65534 --regid=65534 --clear-groups env HOME=/ LC_ALL=C.UTF-8 \
        ${limit:-} ffmpeg -i "$input" -sn -dn -map_chapters -1 -map_metadata -1 -pix_fmt yuv420p -avoid_negative_ts 1 \
        -vf "scale=$3:$4,setsar=1:1" -y "/videos/${5:-saved/out.mp4}" \
        </dev/null >/dev/null 2>"$captured/$generation-$1.txt" || status=$?
    echo "$1: exit $status, $(tail -n 1 "$captured/$generation-$1.txt" | tail -c 100)"
    rm -f saved/out.mp4
}
convert good long.mp4 320 180
convert odd_width plain.mp4 321 180
convert odd_height plain.mp4 320 181
convert one_by_one plain.mp4 1 1
convert negative_size plain.mp4 -3 100
convert too_large plain.mp4 20000 20000
convert far_too_large plain.mp4 1000000000 2
convert too_large_to_scale plain.mp4 99998 50000
convert disk_full long.mp4 640 360 small/out.mp4
convert disk_full_at_once plain.mp4 320 180 filled/out.mp4
convert read_only plain.mp4 320 180 fixed/out.mp4
convert no_permission plain.mp4 320 180 closed/out.mp4
convert folder_gone plain.mp4 320 180 gone/out.mp4
convert is_folder plain.mp4 320 180 folder.mp4
convert long_name plain.mp4 320 180 "saved/$(printf '%0252d' 0).mp4"
convert unreadable secret.mp4 320 180
convert input_gone gone.mp4 320 180
convert input_is_folder folder.mp4 320 180
convert empty_input empty.mp4 320 180
convert no_format plain.mp4 320 180 saved/out
convert cut cut.mp4 320 180
convert damaged damaged.mp4 320 180
(
    trap '' XFSZ
    ulimit -f 100
    convert file_limit long.mp4 640 360
)
limit="timeout 5" convert terminated long.mp4 1920 1080
(
    ulimit -v 900000
    convert no_memory long.mp4 8000 8000
)
convert corrupt corrupt.mkv 320 180
convert encrypted encrypted.mp4 320 180
convert fragment fragment.mp4 320 180
convert lacing lacing.mkv 320 180
convert no_decoder unknown.mp4 320 180
convert no_sound_decoder no_sound_codec.mp4 320 180
convert no_frames old.wmv 320 180
convert sound_only sound.mp4 320 180
convert tiny tiny.ogv 320 180
convert covers covers.m4a 320 180
