# shellcheck shell=bash
# Sourced by the checks in this folder with their argument, after scripts/packages.sh: a clean Debian of the release that it
# names, to try things in. It takes root (or sudo), and comes from where this machine's own apt gets its packages.
release=${1:-bookworm}
case $release in bookworm | trixie | sid) ;; *) fail "$release is none of bookworm, trixie, sid" ;; esac
as_root=
if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || fail "a clean Debian takes root, and there is no sudo here"
    as_root=sudo
fi

work=$(mktemp -d)
root=$work/root
# The root's own mounts and processes end with each call of inside(), so that only files are to be removed.
# shellcheck disable=SC2086
trap '$as_root rm -rf --one-file-system "$work"' EXIT

# quietly COMPLAINT COMMAND…: shows what the command said only when it fails, and stops then.
quietly() {
    local complaint=$1
    shift
    "$@" >"$work/log" 2>&1 || {
        tail -n 30 "$work/log"
        fail "$complaint"
    }
}

# clone_into ROOT: the last commit, as the folder tessaly of ROOT's root.
clone_into() {
    git clone -q --no-hardlinks . "$work/tessaly"
    # shellcheck disable=SC2086
    {
        $as_root mv "$work/tessaly" "$1/root/tessaly"
        $as_root chown -R root:root "$1/root/tessaly"
    }
}

# inside USER COMMAND: in the clean Debian, in namespaces of its own.
inside() {
    # shellcheck disable=SC2016,SC2086
    $as_root unshare --mount --pid --fork --kill-child sh -c '
        mount --make-rprivate / && mount -t proc proc "$1/proc" && mount --rbind /dev "$1/dev" &&
            exec chroot "$1" su --login "$2" --shell /bin/bash --command "$3"' sh "$root" "$1" "$2"
}

# Makes it in $root, with an ordinary user "someone".
make_clean_debian() {
    say "Making a clean Debian ($release)"
    need debootstrap
    # Where this machine gets Debian's packages: one line of "deb …" a source, for its own release. Other releases lie in the
    # same places; unstable has neither updates nor fixes of its own.
    # shellcheck disable=SC2016
    local line='$(ORIGIN)|$(CODENAME)|deb $(REPO_URI) $(RELEASE) $(COMPONENT)' targets own sources mirror proxy
    targets=$(apt-get indextargets --format "$line" 'Created-By: Packages' | sed -n 's/^Debian|//p')
    own=$(sed -n '/^[a-z]*|deb /{s/|.*//p;q}' <<<"$targets")
    sources=$(sed -n "s/^${own}[^|]*|\(deb [^ ]*\) $own/\1 $release/p" <<<"$targets")
    [ "$release" != sid ] || sources=$(grep ' sid ' <<<"$sources" || :)
    mirror=$(sed -n "s/^deb \(.*\) ${release} main\$/\1/p" <<<"$sources" | head -n 1)
    [ -n "$mirror" ] || fail "apt knows no source of Debian here"
    # And how it reaches them.
    apt-config dump | grep -E '^Acquire::(https?|Retries|Check-Valid-Until)\b' >"$work/apt.conf" || :
    eval "$(apt-config shell proxy Acquire::http::Proxy)"
    [ -z "${proxy:-}" ] || export http_proxy=$proxy
    # shellcheck disable=SC2086
    {
        quietly "the clean Debian could not be made" \
            $as_root debootstrap --variant=minbase --include=ca-certificates "$release" "$root" "$mirror"
        $as_root tee "$root/etc/apt/sources.list" <<<"$sources" >/dev/null
        $as_root cp "$work/apt.conf" "$root/etc/apt/apt.conf.d/99host"
        $as_root cp -L /etc/resolv.conf /etc/hosts "$root/etc/"
        $as_root cp -L /etc/ssl/certs/ca-certificates.crt "$root/etc/ssl/certs/"
    }
    inside root 'apt-get update -qq && useradd --create-home --shell /bin/bash someone'
}
