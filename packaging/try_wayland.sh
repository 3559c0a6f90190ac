#!/usr/bin/env bash
# Opens the window on Wayland, in sway without a screen, asks it to end, and sees that it did so and said nothing:
# try_wayland.sh PROGRAM, as another user than root, for whom sway does not run
set -eu
program=$1
work=$(mktemp -d)
window='' compositor=''
clean_up() {
    local pid
    for pid in $window $compositor; do
        { kill -KILL "$pid" && wait "$pid"; } 2>/dev/null || :
    done
    rm -rf "$work"
}
trap clean_up EXIT
fail() {
    echo "$program on Wayland: $*"
    tail -n 20 "$work"/*.said
    exit 1
}
# within_60_s PROCESS COMPLAINT COMMAND…
within_60_s() {
    local process=$1 complaint=$2 ends=$((SECONDS + 60))
    shift 2
    until "$@" >/dev/null 2>&1; do
        kill -0 "$process" 2>/dev/null || fail "$complaint: it has gone"
        [ "$SECONDS" -lt "$ends" ] || fail "$complaint within 60 s"
        sleep 0.1
    done
}

mkdir -m 700 "$work/runtime"
touch "$work/config"
export XDG_RUNTIME_DIR=$work/runtime SWAYSOCK=$work/runtime/sway
WLR_BACKENDS=headless WLR_LIBINPUT_NO_DEVICES=1 WLR_RENDERER=pixman sway --config "$work/config" >"$work/sway.said" 2>&1 </dev/null &
compositor=$!
within_60_s "$compositor" "sway did not start" swaymsg -t get_version

display() { find "$XDG_RUNTIME_DIR" -name 'wayland-*' -type s -printf '%f\n'; }
env -u DISPLAY -u QT_QPA_PLATFORM WAYLAND_DISPLAY="$(display)" XDG_SESSION_TYPE=wayland QT_FORCE_STDERR_LOGGING=1 \
    "$program" >"$work/window.said" 2>&1 </dev/null &
window=$!
is_shown() { swaymsg -t get_tree | grep -q '"app_id": "tessaly"'; }
within_60_s "$window" "no window" is_shown
kill -TERM "$window"
status=0
wait "$window" || status=$?
window=''
[ "$status" -eq 0 ] || fail "ended with $status"
[ ! -s "$work/window.said" ] || fail "said something:"
echo "the window starts and ends on Wayland"
