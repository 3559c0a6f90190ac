#!/usr/bin/env bash
# Makes the locale de_DE.UTF-8, with a comma as decimal separator, in FOLDER: make_locale.sh FOLDER. To be used with
# LOCPATH=FOLDER. A finished one is left alone.
set -eu
folder=$1
target=$folder/de_DE.UTF-8
[ ! -e "$target/LC_NUMERIC" ] || exit 0
mkdir -p "$folder"
making=$(mktemp -d "$folder/making.XXXXXX")
trap 'rm -rf "$making"' EXIT
localedef --no-archive -i de_DE -f UTF-8 "$making/de_DE.UTF-8"
[ -e "$target" ] || mv "$making/de_DE.UTF-8" "$target"
