#!/usr/bin/env bash
# Runs the commands of docs/many-videos.md as they stand there, interrupts them, and gives them again:
#   check_parallel.sh DOCUMENT PROGRAMS CLIPS
# The machines are this one: a script in the place of ssh runs what it is given as a login has it, with a shell in SHELL
# and in a session of its own that learns of the end of the connection, not of the signals here. One clip is read slowly,
# so that it is being resized when the blow falls.
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
    cat "$work"/said* "$films"/*.log 2>/dev/null || :
    exit 1
}

# The processes that work at home: parallel, its jobs here and on the machines, and the jobs it left behind.
workers() { find /proc/[0-9]*/cwd -maxdepth 0 -lname "$work/home*" 2>/dev/null | cut -d/ -f3; }
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

# The commands of the document: the script, the line of parallel that holds a word, another line.
script() { sed -n '/^#!\/bin\/sh$/,/^```$/p' "$document" | sed '$d'; }
command_with() { grep -E '^parallel ' "$document" | grep -F -- "$1"; }
line_with() { grep -F -- "$1" "$document" | grep -v '`'; }
clean_up() { grep -oE '\brm -r small[^`]*' "$document"; }

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
#!/usr/bin/perl
use POSIX;
while (\$ARGV[0] =~ /^-/) { shift if shift eq "-l" }
open(my \$logins, ">>", "$work/logins");
print \$logins shift, "\\n";
close \$logins;
shift if \$ARGV[0] eq "--";
my \$connection = \$\$;
sub code { my \$signal = \$? & 127; exit(\$signal ? 128 + \$signal : \$? >> 8) }
if (my \$session = fork) { waitpid(\$session, 0); code() }
setsid;
chdir;
\$ENV{SHELL} = "/bin/sh";
my \$work = fork or exec "sh", "-c", "@ARGV";
until (waitpid(\$work, WNOHANG)) { exit 255 if getppid != \$connection; select(undef, undef, undef, 0.02) }
code()
END
    chmod +x "$work"/tools/*
    "$programs/creator" -v error -nostdin -i "$clips/long.mp4" -t 6 -c copy "$work/c film.mp4"
}

# begin WHAT COMMAND: a fresh folder with four clips, the third of them slow.
begin() {
    echo "$1"
    rm -rf "${work:?}/home" "$work/logins"
    mkdir -p "$films/clips" "$films/small"
    script >"$films/resize-one"
    chmod +x "$films/resize-one"
    for name in a b.parts d; do cp "$clips/plain.mp4" "$films/clips/$name.mp4"; done
    cp "$work/c film.mp4" "$films/clips"
    (cd "$films" && eval "$(line_with '>inputs')")
    log=$films/$(grep -oE '[a-z]+\.log' <<<"$2")
    touch "$work/slow"
}

c_is_being_resized() { # here or on a machine that shares the folder, or where it was sent to
    local part
    ! ls "$films"/small/.parts/c*.mp4 >/dev/null 2>&1 || return 0
    for part in "$work"/home/.parallel/tmp/*/part.mp4; do
        [ ! -e "$part" ] || [ ! -e "${part%/*}/clips/c film.mp4" ] || return 0
    done
    return 1
}
one_is_logged() { [ "$(wc -l <"$log")" -gt 1 ]; }
nobody_works() { [ -z "$(workers)" ]; }
packets() {
    "$work/tools/sniffer" -v error -select_streams v:0 -count_packets -show_entries stream=width,height,nb_read_packets \
        -of csv=p=0:s=x "$1"
}
outputs() { find "$films/small" -maxdepth 1 -name '*.mp4' -printf '%f %i %T@\n' | sort; }
logged() { awk -F'\t' 'NR > 1 && $7 == 0 && $8 == 0 { print $1 }' "$log" | sort; } # the numbers of those that are done
logged_outputs() { outputs | grep -F -f <(logged | sed 's/$/p/' | sed -nf - "$films/inputs" | sed 's|clips/\(.*\)|\1.mp4 |'); }

give() { # give COMMAND, in the folder and in the place of this shell
    cd "$films"
    exec bash -c "exec $1" >"$work/said" 2>&1
}

# Every output is whole, none is there twice, and the log knows each input once, as done.
all_is_done() {
    local sizes logged
    sizes=$(for name in a b.parts 'c film' d; do packets "$films/small/$name.mp4.mp4"; done | tr '\n' ' ')
    [ "$sizes" = "$whole" ] || fail "the outputs are $sizes, not $whole"
    [ "$(outputs | wc -l)" -eq 4 ] || fail "there are other outputs: $(outputs)"
    logged=$(logged | tr '\n' ' ')
    [ "$logged" = "1 2 3 4 " ] || fail "done are $logged"
    [ -z "$(cd "$films" && eval "$(line_with 'for clip in')" | grep -v new.mp4)" ] || fail "some count as missing"
}

# interrupted WHAT BLOW REST: begins, strikes, gives the command again.
interrupted() {
    local command=$3 before
    begin "$1" "$command"
    give "$command" &
    parallel=$!
    await "the slow clip" c_is_being_resized
    await "the first in the log" one_is_logged
    "$2"
    wait "$parallel" && fail "it ended as if nothing had happened"
    await "the end of the workers" nobody_works
    [ ! -e "$films/small/c film.mp4.mp4" ] || fail "the slow clip was not interrupted"
    [ "$2" != terminate ] || ! c_is_being_resized || fail "something was left behind: $(find "$work/home")"
    before=$(outputs)
    # What came back but was not logged any more is made again: nobody there sees that it is here.
    [[ $command != *--transferfile* ]] || before=$(logged_outputs)
    [ -n "$before" ] || fail "nothing was done before"
    rm "$work/slow"
    [[ $command != *":::: inputs"* ]] || cp "$clips/plain.mp4" "$films/clips/b new.mp4"
    (give "$command") || fail "it did not succeed the second time"
    [ ! -d "$films/small/.parts" ] || (cd "$films" && eval "$(clean_up)")
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
    rm "$log"
    (give "$1") || fail "it did not succeed"
    all_is_done
    [ "$before" = "$(outputs)" ] || fail "something was done twice: $before, then $(outputs)"
}

what_did_not_come_back_is_named() {
    echo "a new video that is missing"
    rm "$films/small/d.mp4.mp4"
    [ "$(cd "$films" && eval "$(line_with 'for clip in')")" = clips/d.mp4 ] || fail "it was not named"
}

set_up
slow=$(packets "$work/c film.mp4")
whole="320x180x50 320x180x50 640x360x${slow##*x} 320x180x50 "
cores=$(command_with './resize-one {} small/{/}.mp4 ::: clips/*' | grep -v sshlogin)
machines=$(command_with '--workdir . ')
sent=$(command_with --transferfile)
eval "$(line_with 'export ')"
interrupted "two workers, parallel is ended" terminate "${cores/parallel/parallel --jobs 2}"
everything_is_left_alone_without_the_log "$cores"
interrupted "two machines, a worker is killed" kill_worker "$machines"
[ "$(sort -u "$work/logins" | tr '\n' ' ')" = "anna berta " ] || fail "the machines were $(cat "$work/logins")"
interrupted "two machines, parallel is ended" terminate "$machines"
interrupted "two machines, parallel is killed" kill_parallel "$machines"
interrupted "two machines, all of it is killed" kill_all "${machines/::: clips\/\*/:::: inputs}"
interrupted "without a shared folder, parallel is ended" terminate "$sent"
interrupted "without a shared folder, a worker is killed" kill_worker "$sent"
interrupted "without a shared folder, all of it is killed" kill_all "$sent"
what_did_not_come_back_is_named
