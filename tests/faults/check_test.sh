#!/usr/bin/env bash
# The check of the table finds each kind of fault: check_test.sh TABLE FOLDER.
set -eu
here=$(cd "$(dirname "$0")" && pwd)
table=$1
programs=$2
tree=$(mktemp -d)
trap 'rm -rf "$tree"' EXIT
# Few lines, so that few programs are asked.
{ for case in $(seq 1 40); do printf '%s\tdone\tmust\t-\tnot run: no reason\n' "$case"; done; grep '	json_big_input	' "$table"; } >"$tree/good"

expect() { # expect STATUS WHAT, for the table "$tree/now"
    local status=0
    "$here/check.sh" "$tree/now" "$programs" >"$tree/report" 2>&1 || status=$?
    [ "$status" -eq "$1" ] || { echo "$2: exit $status, expected $1"; cat "$tree/report"; exit 1; }
    echo "$2: as expected"
}
cp "$tree/good" "$tree/now"
expect 0 "a table without faults"
grep -v '^17	' "$tree/good" >"$tree/now"
expect 1 "a case that is missing"
sed 's/	hostileTextGives/	renamed/' "$tree/good" >"$tree/now"
expect 1 "a function that does not exist"
sed 's/:equal keys/:renamed/' "$tree/good" >"$tree/now"
expect 1 "a row that does not exist"
sed 's/	json_big_input	/	json_renamed	/' "$tree/good" >"$tree/now"
expect 1 "a test that does not exist"
sed '3s/not run: no reason/later/' "$tree/good" >"$tree/now"
expect 1 "no reason why it is not run"
sed '3s/	done//' "$tree/good" >"$tree/now"
expect 1 "a field that is missing"
{ cat "$tree/good"; tail -n 1 "$tree/good"; } >"$tree/now"
expect 1 "a test that is named twice"
