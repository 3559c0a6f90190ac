#!/usr/bin/env bash
# Installs a build into a temporary prefix and tries what is there: check_install.sh BUILD CLIP VERSION
set -euo pipefail
build=$1
clip=$2
version=$3
source=$(cd "$(dirname "$0")/../.." && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
prefix=$work/prefix
faults=0

# try WHAT COMMAND…: says what did not work, with the command's words.
try() {
    local what=$1
    shift
    if "$@" >"$work/said" 2>&1; then
        echo "$what: as it should be"
    else
        echo "$what: WRONG"
        cat "$work/said"
        faults=$((faults + 1))
    fi
}

umask 022
cmake --install "$build" --prefix "$prefix" >"$work/said" 2>&1 || {
    cat "$work/said"
    exit 1
}

layout() {
    diff - <(cd "$prefix" && find . ! -type d | sort) <<'END'
./bin/tessaly
./bin/tessaly-cli
./lib/tessaly/creator
./lib/tessaly/sniffer
./share/applications/tessaly.desktop
./share/bash-completion/completions/tessaly-cli
./share/doc/tessaly/changelog.gz
./share/doc/tessaly/copyright
./share/icons/hicolor/128x128/apps/tessaly.png
./share/icons/hicolor/16x16/apps/tessaly.png
./share/icons/hicolor/22x22/apps/tessaly.png
./share/icons/hicolor/24x24/apps/tessaly.png
./share/icons/hicolor/256x256/apps/tessaly.png
./share/icons/hicolor/32x32/apps/tessaly.png
./share/icons/hicolor/48x48/apps/tessaly.png
./share/icons/hicolor/512x512/apps/tessaly.png
./share/icons/hicolor/64x64/apps/tessaly.png
./share/icons/hicolor/scalable/apps/tessaly.svg
./share/man/man1/tessaly-cli.1.gz
./share/man/man1/tessaly.1.gz
./share/metainfo/example.tessaly.Tessaly.metainfo.xml
END
}
# The links lead to the media tools by their own names, from wherever the prefix is.
tools() {
    [ "$(basename "$(readlink "$prefix/lib/tessaly/sniffer")")" = ffprobe ] &&
        [ "$(basename "$(readlink "$prefix/lib/tessaly/creator")")" = ffmpeg ] &&
        "$prefix/lib/tessaly/sniffer" -version && "$prefix/lib/tessaly/creator" -version
}
says_version() { [ "$("$prefix/bin/$1" --version | tee /dev/stderr)" = "$1 $version" ]; }
# Only the installed resources can be found: nothing lies beside the program.
knows_the_clip() { "$prefix/bin/tessaly-cli" info --json "$clip" | tee /dev/stderr | grep -q '"videoWidth":640,'; }
needs_its_tools() {
    mv "$prefix/lib/tessaly" "$prefix/lib/gone"
    local status=0
    "$prefix/bin/tessaly-cli" info "$clip" || status=$?
    mv "$prefix/lib/gone" "$prefix/lib/tessaly"
    [ "$status" -eq 1 ]
}
# Files come in by panel and drop alone.
opens_no_files() { ! grep -nE '^MimeType|^Exec=.*%' "$prefix/share/applications/tessaly.desktop"; }
entry_names_what_is_there() {
    local entry=$prefix/share/applications/tessaly.desktop
    [ -x "$prefix/bin/$(sed -n 's/^Exec=//p' "$entry")" ] &&
        [ -e "$prefix/share/icons/hicolor/scalable/apps/$(sed -n 's/^Icon=//p' "$entry").svg" ]
}
metainfo_names_this_version() { grep -q "<release version=\"$version\"" "$prefix"/share/metainfo/*.xml; }
changelog_names_this_version() {
    zcat "$prefix/share/doc/tessaly/changelog.gz" | head -n 1 | grep -qF "tessaly ($version) "
}
# Each entry of CHANGELOG.md is an entry there.
changes_are_told() {
    local entries
    entries=$(grep -c '^- ' "$source/CHANGELOG.md")
    [ "$(zcat "$prefix/share/doc/tessaly/changelog.gz" | grep -c '^  \* ')" -eq "$entries" ] &&
        [ "$(sed -n '/<releases>/,$p' "$prefix"/share/metainfo/*.xml | grep -c '<li>.*</li>')" -eq "$entries" ]
}
manual() {
    zcat "$prefix/share/man/man1/$1.1.gz" >"$work/$1.1" && mandoc -T lint -W warning "$work/$1.1" &&
        grep -qF "Tessaly $version" "$work/$1.1"
}
# Each option that a program's own help names is in its manual page and in the completion.
options_are_told() {
    local option missing=0
    zcat "$prefix/share/man/man1/tessaly-cli.1.gz" | sed 's/\\-/-/g' >"$work/manual"
    for option in $("$prefix/bin/tessaly-cli" --help | grep -oE -- '--[a-z]+' | sort -u); do
        for text in "$work/manual" "$prefix/share/bash-completion/completions/tessaly-cli"; do
            grep -qF -- "$option" "$text" || { echo "$option is missing in $text"; missing=1; }
        done
    done
    [ "$missing" -eq 0 ]
}
# completes WORDS… = RESULT: what the completion makes of the last word.
completes() {
    local wanted=${*: -1}
    COMP_WORDS=(tessaly-cli "${@:1:$#-2}")
    COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
    _tessaly_cli
    [ "${COMPREPLY[*]}" = "$wanted" ] || { echo "\"${COMPREPLY[*]}\" instead of \"$wanted\""; return 1; }
}
completion() {
    # shellcheck disable=SC1091
    . "$prefix/share/bash-completion/completions/tessaly-cli"
    mkdir "$work/films" && touch "$work/films/a film.mp4"
    completes r = resize &&
        completes info --j = --json &&
        completes resize --wi = --width &&
        completes info --wi = '' &&
        completes resize --scale 5 = '' &&
        completes resize "$work/films/a" = "$work/films/a film.mp4" &&
        completes resize -o "$work/films/a" = "$work/films/a film.mp4"
}

try "the layout" layout
try "the links to the tools" tools
try "the window's version" says_version tessaly
try "the command line's version" says_version tessaly-cli
try "info on a clip" knows_the_clip
try "info without the tools" needs_its_tools
try "the window" "$source/packaging/try_window.sh" "$prefix/bin/tessaly"
try "the desktop entry" desktop-file-validate "$prefix/share/applications/tessaly.desktop"
try "the desktop entry opens no files" opens_no_files
try "what the desktop entry names" entry_names_what_is_there
try "the metainfo" appstreamcli validate --no-net "$prefix"/share/metainfo/*.xml
try "the metainfo's version" metainfo_names_this_version
try "the changelog's version" changelog_names_this_version
try "the changes" changes_are_told
try "the manual page of the window" manual tessaly
try "the manual page of the command line" manual tessaly-cli
try "the options" options_are_told
try "the completion" completion
[ "$faults" -eq 0 ]
