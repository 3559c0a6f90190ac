#!/usr/bin/env bash
# The arrow check finds each kind of fault, and passes a tree that has none.
set -eu
here=$(cd "$(dirname "$0")" && pwd)
tree=$(mktemp -d)
trap 'rm -rf "$tree"' EXIT
mkdir -p "$tree/json" "$tree/ui" "$tree/app" "$tree/platform"

expect() { # expect STATUS WHAT
    local status=0
    "$here/check_arrows.sh" "$tree" >"$tree/report" 2>&1 || status=$?
    [ "$status" -eq "$1" ] || { echo "$2: exit $status, expected $1"; cat "$tree/report"; exit 1; }
    echo "$2: as expected"
}

echo '#include "ui/slider.h"' >"$tree/app/a.cpp"
expect 0 "an arrow that exists"
echo '#include "app/app_delegate.h"' >"$tree/ui/b.cpp"
expect 1 "ui -> app"
echo '  #  include "platform/paths.h"' >"$tree/ui/b.cpp"
expect 0 "ui -> platform, written with blanks"
echo '#include "platform/paths.h"' >"$tree/json/c.h"
expect 1 "json -> platform"
echo '#include <nlohmann/json.hpp>' >"$tree/json/c.h"
expect 1 "the parser library seen elsewhere"
mv "$tree/json/c.h" "$tree/json/reader.cpp"
expect 0 "the parser library seen by its one file"
echo '#include <QString>' >"$tree/json/d.h"
expect 1 "Qt in json"
rm "$tree/json/d.h"
echo '#include <QWidget>' >"$tree/platform/e.h"
expect 1 "a widget in platform"
