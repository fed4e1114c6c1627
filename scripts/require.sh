# Sourced by the scripts at the top of the tree: packages they need, steps they
# show. Works from any current directory; needs bash alone.

set -u

# say TEXT: a line of progress.
say() {
    printf '%s\n' "$*"
}

# die TEXT: ends the script with an error.
die() {
    printf 'error: %s\n' "$*" >&2
    exit 1
}

# missing_packages PACKAGE...: prints those that are not installed.
missing_packages() {
    local package
    for package in "$@"; do
        case $(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null) in
        installed) ;;
        *) printf '%s ' "$package" ;;
        esac
    done
}

# apt_progress LOG: keeps what apt-get says in the log and shows a line now and then.
apt_progress() {
    local line count=0
    while IFS= read -r line; do
        printf '%s\n' "$line" >>"$1"
        case $line in
        "Need to get "*) say "  downloading${line#Need to get}" ;;
        "Setting up "*)
            count=$((count + 1))
            [ $((count % 25)) -ne 0 ] || say "  set up $count packages"
            ;;
        esac
    done
}

# require_packages PACKAGE...: installs those Debian packages that are missing,
# as root or through sudo. With all of them present it does nothing at all.
require_packages() {
    if ! command -v dpkg-query >/dev/null || ! command -v apt-get >/dev/null; then
        say "No Debian packages here. Taking for granted that these, or their like, are installed:"
        say "  $*"
        return 0
    fi
    local missing
    missing=$(missing_packages "$@")
    [ -n "$missing" ] || return 0
    missing=${missing% }

    local as_root=()
    if [ "$(id -u)" -ne 0 ]; then
        command -v sudo >/dev/null ||
            die "missing packages: $missing
  Not root, and no sudo. As root, run:  apt-get install $missing"
        as_root=(sudo)
        sudo true ||
            die "missing packages: $missing
  sudo was refused. As root, run:  apt-get install $missing"
    fi
    say "Installing packages: $missing"

    local log install
    log=$(mktemp) || die "no temporary file"
    # $missing is a list of words.
    # shellcheck disable=SC2206
    install=("${as_root[@]}" env DEBIAN_FRONTEND=noninteractive
        apt-get install -y --no-install-recommends -o DPkg::Lock::Timeout=120 $missing)
    # A fresh machine has no package lists, an old one stale ones: both make the
    # first try fail and the one behind the update succeed.
    "${install[@]}" </dev/null 2>&1 | apt_progress "$log"
    if [ -n "$(missing_packages "$@")" ]; then
        say "  fetching the package lists first"
        "${as_root[@]}" apt-get update </dev/null >"$log" 2>&1
        "${install[@]}" </dev/null 2>&1 | apt_progress "$log"
    fi
    missing=$(missing_packages "$@")
    if [ -n "$missing" ]; then
        tail -n 15 "$log" >&2
        rm -f "$log"
        die "missing packages: ${missing% }
  apt-get could not install them; its last words are above."
    fi
    rm -f "$log"
}

# step LOGFILE TEXT COMMAND...: says what is done, does it with its output in the
# log, and says how long it took. On failure shows the end of the log, without
# what went well; returns the command's status.
step() {
    local log=$1 text=$2 begin=$SECONDS status=0
    shift 2
    printf '%-58s ' "$text"
    "$@" </dev/null >"$log" 2>&1 || status=$?
    if [ "$status" -eq 0 ]; then
        printf 'ok %5d s\n' $((SECONDS - begin))
    else
        printf 'FAILED\n'
        grep -vE '^ *Start +[0-9]+: | Passed +[0-9.]+ sec$|^\[[0-9]+/[0-9]+\] ' "$log" | tail -n 60 >&2
    fi
    return "$status"
}

# processors: how many this script may use.
processors() {
    nproc 2>/dev/null || echo 1
}
