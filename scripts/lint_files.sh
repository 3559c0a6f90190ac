# shellcheck shell=bash disable=SC2119,SC2120
# Sourced by scripts/lint and by the commit hook: which files are checked, and by which formatter.

# tracked PATTERN…: what git knows and what is there.
tracked() {
    git ls-files -- "$@" | while read -r file; do
        [ ! -f "$file" ] || printf '%s\n' "$file"
    done
}

# only_shell: of the names on standard input those of shell scripts, which their first line tells.
only_shell() {
    while read -r file; do
        if [ -f "$file" ] && head -n 1 "$file" | grep -qaE '^#!.*\b(ba|da)?sh\b|^# shellcheck shell='; then
            printf '%s\n' "$file"
        fi
    done
}

shell_scripts() { tracked | only_shell; }

# The name of clang-format of version 14.
formatter_14() {
    local name
    for name in clang-format-14 clang-format; do
        if command -v "$name" >/dev/null && "$name" --version | grep -q 'version 14\.'; then
            printf '%s\n' "$name"
            return 0
        fi
    done
    return 1
}
