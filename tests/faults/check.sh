#!/usr/bin/env bash
# Checks the table of faults itself: check.sh TABLE FOLDER, with the folder of the test programs. Every case from 1 to 40
# is there, every line has five fields, every test function and row that it names exists, and a line without a test says
# why.
set -u
table=$1
programs=$2
export QT_QPA_PLATFORM=offscreen LC_ALL=C.UTF-8
known=$(mktemp)
trap 'rm -f "$known"' EXIT
faults=0
complain() {
    echo "$1"
    faults=$((faults + 1))
}

lines=$(grep -v '^#' "$table")
malformed=$(awk -F'\t' 'NF != 5 || $1 !~ /^[0-9]+$/ || $2 == "" || $3 == "" || $4 == "" || $5 == ""' <<<"$lines")
[ -z "$malformed" ] || complain "no five fields: $malformed"
for case in $(seq 1 40); do
    grep -q "^$case	" <<<"$lines" || complain "case $case is missing"
done
while read -r test; do
    [ "$test" != - ] || continue
    program=$programs/test_$test
    [ -x "$program" ] || { complain "there is no test $test"; continue; }
    # Each function, then "function:row" of each that has rows.
    { "$program" -functions | sed 's/()$//'; "$program" -datatags | sed -E 's/^[^ ]+ ([^ ]+) /\1:/'; } 2>/dev/null </dev/null |
        sed "s|^|$test	|" >>"$known"
done < <(cut -f4 <<<"$lines" | sort -u)
while IFS=$'\t' read -r case _ _ test function; do
    if [ "$test" = - ]; then
        [[ $function == "not run: "?* ]] || complain "case $case: a line without a test does not say why"
    else
        grep -qxF "$test	$function" "$known" || complain "case $case: $test has no $function"
    fi
done <<<"$lines"
repeated=$(cut -f4,5 <<<"$lines" | grep -v '^-' | sort | uniq -d)
[ -z "$repeated" ] || complain "named twice: $repeated"
[ "$faults" -eq 0 ] || exit 1
echo "$(wc -l <<<"$lines") lines, all 40 cases"
