#!/usr/bin/env bash
# The command line runs where no screen library is installed: check_links.sh PROGRAM. Looks at every library that the
# program loads, directly or through another one.
set -euo pipefail
libraries=$(ldd "$1")
grep -q 'libQt6Core\.so' <<<"$libraries" || { echo "$1 loads no Qt at all, so nothing was checked"; exit 1; }
if found=$(grep -E 'libQt6(Gui|Widgets|OpenGL|DBus)\.|libX11\.|libxcb\.|libwayland|libE?GL\.' <<<"$libraries"); then
    echo "$1 loads what only a screen needs:"
    echo "$found"
    exit 1
fi
echo "$1 loads no screen library"
