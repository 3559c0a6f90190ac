# shellcheck shell=bash disable=SC2034
# Sourced by ./run, ./test, and the scripts of bench/ and packaging/: says what it does, installs what is missing on
# Debian, and stops with a clear message where it cannot.

say() { printf '==> %s\n' "$*"; }
fail() {
    printf 'error: %s\n' "$*" >&2
    exit 1
}

# at_most NUMBER ARGUMENT…: refuses the ones beyond that number, which the script would not look at.
at_most() {
    local most=$1
    shift
    [ $# -le "$most" ] || fail "$0 does not know what to do with: ${*:most+1}"
}

# The Debian packages that a build needs, that the programs need beside them, that the tests need beside those, and that the
# fuzz preset needs. lint_packages is what scripts/lint needs beside the build's.
build_packages="g++ cmake ninja-build pkg-config qt6-base-dev libxcb1-dev libseccomp-dev nlohmann-json3-dev ffmpeg"
icon_plugin=qt6-svg-plugins # Debian 12 has it in the library's own package
if grep -qsx 'VERSION_CODENAME=bookworm' /etc/os-release; then icon_plugin=libqt6svg6; fi
run_packages="$icon_plugin qt6-qpa-plugins"
test_packages="xvfb xdotool dbus-daemon at-spi2-core locales fonts-dejavu-core desktop-file-utils appstream mandoc parallel rsync
    x11-utils openbox sway qt6-wayland qt6-xdgdesktopportal-platformtheme"
fuzz_packages="clang libclang-rt-dev"
lint_packages="clang clang-format clang-tidy shellcheck"

missing_packages() {
    local package
    for package in "$@"; do
        dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null | grep -qx installed || printf '%s ' "$package"
    done
}

# need PACKAGE…: installs those that are not there.
need() {
    command -v dpkg-query >/dev/null || {
        say "No dpkg here: please see to it that these are installed: $*"
        return 0
    }
    local missing as_root=""
    missing=$(missing_packages "$@")
    [ -n "$missing" ] || return 0
    if [ "$(id -u)" -ne 0 ]; then
        command -v sudo >/dev/null || fail "missing packages: $missing- install them as root (apt-get install $missing) or install sudo"
        as_root=sudo
    fi
    say "Installing: $missing"
    # shellcheck disable=SC2086
    {
        $as_root apt-get update -qq &&
            $as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends $missing >/dev/null
    } || fail "could not install: $missing"
}

# The time that is written into what is packed, in seconds: the commit's, so that the same commit gives the same bytes. Released
# sources are no clone; they have the day of their newest version.
source_date() {
    if [ -e .git ]; then
        git log -1 --format=%ct
    else
        date -ud "$(sed -nE '/^## /{s/^[^(]*\(([0-9-]+).*/\1/p;q}' CHANGELOG.md)" +%s
    fi
}

# use_tools PRESET system|own: whose prober and converter are among the resources of that build.
use_tools() {
    local log
    grep -qsx "TESSALY_TOOLS:STRING=$2" "build/$1/CMakeCache.txt" && return 0
    say "Configuring build/$1 with tools: $2"
    log=$(cmake --preset "$1" "-DTESSALY_TOOLS=$2" 2>&1) || { printf '%s\n' "$log"; fail "the configuration of $1 failed"; }
}

# build PRESET [TARGET…]: configures when needed, then builds.
build() {
    local preset=$1 log
    shift
    if [ ! -e "build/$preset/build.ninja" ]; then
        say "Configuring build/$preset"
        log=$(cmake --preset "$preset" 2>&1) || { printf '%s\n' "$log"; fail "the configuration of $preset failed"; }
    fi
    say "Building $preset"
    cmake --build --preset "$preset" ${1:+--target "$@"} || fail "the build of $preset failed"
}
