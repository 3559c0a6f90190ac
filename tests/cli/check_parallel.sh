#!/usr/bin/env bash
# Runs the commands of docs/many-videos.md as they stand there, interrupts them, and gives them again:
#   check_parallel.sh DOCUMENT PROGRAMS CLIPS
# The machines are this one: a script in the place of ssh runs what it is given, with a shell of its own in SHELL as a
# login has it. One clip is read slowly, so that it is being resized when the blow falls.
set -euo pipefail
document=$(realpath "$1")
programs=$(realpath "$2")
clips=$(realpath "$3")
work=$(mktemp -d)
films=$work/home/films
cd / # so that whoever works in the folder is one of those that are looked for
limit=60 # seconds that anything may take that is waited for; it comes at once

fail() {
    printf 'WRONG: %s\n' "$*"
    cat "$work"/said* "$films/resize.log" 2>/dev/null || :
    exit 1
}

# The processes that work in the folder: parallel, its jobs, and the jobs it left behind.
workers() { find /proc/[0-9]*/cwd -maxdepth 0 -lname "$films*" 2>/dev/null | cut -d/ -f3; }
end_workers() { workers | xargs -r kill "-$1" 2>/dev/null || :; }
trap 'end_workers KILL; rm -rf "$work"' EXIT

await() { # await WHAT COMMAND…
    local what=$1 end=$((SECONDS + limit))
    shift
    until "$@"; do
        [ "$SECONDS" -lt "$end" ] || fail "waited in vain for $what"
        sleep 0.05
    done
}

# The commands of the document: the script, and the line of parallel that holds a word.
script() { sed -n '/^#!\/bin\/sh$/,/^```$/p' "$document" | sed '$d'; }
command_with() { grep -E '^parallel ' "$document" | grep -F -- "$1"; }

set_up() {
    export HOME=$work/home PATH=$work/tools:$PATH PARALLEL_SSH=$work/tools/ssh-stand-in
    mkdir -p "$work/tools" "$HOME"
    cp "$programs/tessaly-cli" "$work/tools"
    ln -s "$(readlink "$programs/sniffer")" "$work/tools/sniffer"
    cat >"$work/tools/creator" <<END
#!/bin/sh
case \$* in */c\\ film.mp4*) [ ! -e "$work/slow" ] || set -- -readrate 0.2 "\$@" ;; esac
exec "$(readlink "$programs/creator")" "\$@"
END
    cat >"$work/tools/ssh-stand-in" <<END
#!/bin/sh
while :; do
    case \$1 in -l) shift 2 ;; -*) shift ;; *) break ;; esac
done
echo "\$1" >>"$work/logins"
shift
[ "\$1" != -- ] || shift
cd && SHELL=/bin/sh exec sh -c "\$*"
END
    chmod +x "$work"/tools/*
    "$programs/creator" -v error -nostdin -i "$clips/long.mp4" -t 6 -c copy "$work/c film.mp4"
}

# A fresh folder: four clips, the third of them slow.
begin() {
    echo "$1"
    rm -rf "$films" "$work/logins"
    mkdir -p "$films/clips" "$films/small"
    script >"$films/resize-one"
    chmod +x "$films/resize-one"
    for name in a b d; do cp "$clips/plain.mp4" "$films/clips/$name.mp4"; done
    cp "$work/c film.mp4" "$films/clips"
    touch "$work/slow"
}

c_is_being_resized() { ls "$films"/small/c*.part-* >/dev/null 2>&1; }
one_is_logged() { [ "$(wc -l <"$films/resize.log")" -gt 1 ]; }
nobody_works() { [ -z "$(workers)" ]; }
packets() {
    "$work/tools/sniffer" -v error -select_streams v:0 -count_packets -show_entries stream=width,height,nb_read_packets \
        -of csv=p=0:s=x "$1"
}
outputs() { find "$films/small" -name '*.mp4' ! -name '*.part-*' -printf '%f %i %T@\n' | sort; }

give() { # give COMMAND, in the folder and in the place of this shell
    cd "$films"
    exec bash -c "exec $1" >"$work/said" 2>&1
}

# Every output is whole, none is there twice, and the log knows each input once, as done.
all_is_done() {
    local sizes logged
    sizes=$(for name in a b 'c film' d; do packets "$films/small/$name.mp4.mp4"; done | tr '\n' ' ')
    [ "$sizes" = "$whole" ] || fail "the outputs are $sizes, not $whole"
    [ "$(outputs | wc -l)" -eq 4 ] || fail "there are other outputs: $(outputs)"
    logged=$(awk -F'\t' 'NR > 1 && $7 == 0 && $8 == 0 { print $1 }' "$films/resize.log" | sort | tr '\n' ' ')
    [ "$logged" = "1 2 3 4 " ] || fail "done are $logged: $(cat "$films/resize.log")"
}

# interrupted WHAT BLOW REST: begins, strikes, gives the command again.
interrupted() {
    local command=$3 before
    begin "$1"
    give "$command" &
    parallel=$!
    await "the slow clip" c_is_being_resized
    await "the first in the log" one_is_logged
    "$2"
    wait "$parallel" && fail "it ended as if nothing had happened"
    await "the end of the workers" nobody_works
    [ ! -e "$films/small/c film.mp4.mp4" ] || fail "the slow clip was not interrupted"
    [ "$2" != terminate ] || ! c_is_being_resized || fail "something was left behind: $(ls "$films/small")"
    before=$(outputs)
    [ -n "$before" ] || fail "nothing was done before"
    rm "$work/slow"
    (give "$command") || fail "it did not succeed the second time"
    rm -f "$films"/small/*.part-*
    all_is_done
    [ -z "$(comm -23 <(echo "$before") <(outputs))" ] || fail "something was done twice: $before, then $(outputs)"
}

terminate() { kill "$parallel"; }
kill_all() { # as a machine that goes down
    kill -KILL "$parallel"
    end_workers KILL
}
programs_at_work() { # those whose command line begins so
    local process
    for process in $(workers); do
        case $(tr '\0' ' ' <"/proc/$process/cmdline") in "$1"*) echo "$process" ;; esac
    done 2>/dev/null
}
kill_parallel() { # and its jobs are ended, as the document says
    kill -KILL "$parallel"
    programs_at_work "tessaly-cli resize" | xargs -r kill
}
kill_worker() { programs_at_work "tessaly-cli resize clips/c film.mp4" | xargs -r kill -KILL; }

everything_is_left_alone_without_the_log() {
    echo "without the log"
    local before
    before=$(outputs)
    rm "$films/resize.log"
    (give "$1") || fail "it did not succeed"
    all_is_done
    [ "$before" = "$(outputs)" ] || fail "something was done twice: $before, then $(outputs)"
}

sends_and_fetches() {
    begin "without a shared folder"
    rm "$work/slow" "$films/clips/c film.mp4"
    (give "$(command_with --transferfile)") || fail "it did not succeed"
    for name in a b d; do
        [ "$(packets "$films/clips/$name.mp4.small.mp4")" = 320x180x50 ] || fail "$name is not whole: $(ls "$films/clips")"
    done
}

set_up
slow=$(packets "$work/c film.mp4")
whole="320x180x50 320x180x50 640x360x${slow##*x} 320x180x50 "
cores=$(command_with 'termseq TERM,5000,KILL ./resize-one {} small/{/}.mp4 ::: clips/*' | grep -v sshlogin)
machines=$(command_with '--workdir .' | grep -v transferfile)
interrupted "two workers, parallel is ended" terminate "${cores/parallel/parallel --jobs 2}"
everything_is_left_alone_without_the_log "$cores"
interrupted "two machines, a worker is killed" kill_worker "$machines"
[ "$(sort -u "$work/logins" | tr '\n' ' ')" = "anna berta " ] || fail "the machines were $(cat "$work/logins")"
interrupted "two machines, parallel is killed" kill_parallel "$machines"
interrupted "two machines, all of it is killed" kill_all "$machines"
sends_and_fetches
