#!/usr/bin/env bash
# The document of what is refused names exactly the attempts that are tried: check_security.sh DOCUMENT TEST
set -u
export QT_QPA_PLATFORM=offscreen LC_ALL=C.UTF-8
tried=$("$2" -datatags 2>/dev/null | sed -nE 's/^[^ ]+ refuses //p' | sort)
# shellcheck disable=SC2016
told=$(grep -oE '^\|[^|]*\| `[^`]+` \|' "$1" | sed -E 's/.*`(.*)`.*/\1/' | sort)
[ -n "$tried" ] || { echo "the test has no attempts"; exit 1; }
difference=$(diff <(echo "$told") <(echo "$tried")) || { echo "told (<) is not what is tried (>): $difference"; exit 1; }
echo "$(wc -l <<<"$tried") attempts"
