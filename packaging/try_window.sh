#!/usr/bin/env bash
# Starts the window without a screen, sees that it can draw its icons, asks it to end, and sees that it did so well:
# try_window.sh PROGRAM
set -eu
program=$1
work=$(mktemp -d)
pid=
trap 'if [ -n "$pid" ]; then kill -KILL "$pid" 2>/dev/null || :; fi; rm -rf "$work"' EXIT
fail() {
    echo "$program: $*"
    cat "$work/said"
    exit 1
}

mkdir "$work/tmp"
mkdir -m 700 "$work/runtime"
export XDG_RUNTIME_DIR=$work/runtime TMPDIR=$work/tmp QT_QPA_PLATFORM=offscreen QT_FORCE_STDERR_LOGGING=1
"$program" >"$work/said" 2>&1 </dev/null &
pid=$!

# It handles SIGTERM (bit 14 of the signals it catches) as soon as its window has been made.
handles_sigterm() {
    local caught
    caught=$(sed -n 's/^SigCgt:[[:space:]]*//p' "/proc/$pid/status" 2>/dev/null)
    [ -n "$caught" ] && [ $((16#$caught >> 14 & 1)) -eq 1 ]
}
# Qt says nothing when the plugin for its icons is missing: they are empty then.
draws_icons() { grep -q '/imageformats/libqsvg\.so' "/proc/$pid/maps"; }
# within_60_s COMPLAINT CONDITION
within_60_s() {
    local ends=$((SECONDS + 60))
    until "$2"; do
        kill -0 "$pid" 2>/dev/null || fail "ended by itself"
        [ "$SECONDS" -lt "$ends" ] || fail "$1 within 60 s"
        sleep 0.1
    done
}
within_60_s "did not start" handles_sigterm
within_60_s "did not draw its icons" draws_icons
kill -TERM "$pid"
status=0
wait "$pid" || status=$?
pid=
[ "$status" -eq 0 ] || fail "ended with $status"
# What Qt's plugin for no screen says of itself is none of the program's business.
sed -i '/^This plugin does not support /d' "$work/said"
[ ! -s "$work/said" ] || fail "said something:"
left=$(ls -A "$work/tmp")
[ -z "$left" ] || fail "left in its temporary folder: $left"
echo "the window starts and ends"
