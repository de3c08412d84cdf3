# What every script of this folder starts from; sourced, never run. Needs bash.

# Prints one line of progress, so that long steps can be told apart in a log.
say() { printf '== %s\n' "$*"; }

# Prints why the script cannot go on and ends it with status 1.
fail() {
    printf 'FAILED: %s\n' "$*" >&2
    exit 1
}

# Runs a command as root: as it is for root, through sudo for everybody else.
as_root() {
    if [ "$(id -u)" -eq 0 ]; then
        "$@"
    elif command -v sudo >/dev/null; then
        sudo "$@"
    else
        fail "'$*' needs root, and there is no sudo: run this script as root, or install what it asks for first"
    fi
}

# quietly WORDS COMMAND...: runs a command whose output matters only when it fails; then shows it and ends the script.
quietly() {
    local what=$1 log
    shift
    log=$(mktemp)
    if ! "$@" >"$log" 2>&1 </dev/null; then
        cat "$log" >&2
        rm -f "$log"
        fail "$what: see the lines above"
    fi
    rm -f "$log"
}

# need_packages PKG...: installs those of the Debian packages that are missing. Asks for no rights and no network when
# all are there.
need_packages() {
    local package missing=()
    for package in "$@"; do
        [ "$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null)" = installed ] || missing+=("$package")
    done
    [ ${#missing[@]} -gt 0 ] || return 0
    say "Installing ${missing[*]}"
    # Another program may hold dpkg's lock for a moment: wait for it.
    local apt=(as_root env DEBIAN_FRONTEND=noninteractive apt-get -q -o DPkg::Lock::Timeout=300)
    quietly "the lists of packages could not be updated" "${apt[@]}" update
    quietly "packages could not be installed (${missing[*]})" "${apt[@]}" install -y --no-install-recommends \
        "${missing[@]}"
}

# What a native build of the whole project needs on a bare Debian 12.
native_packages=(g++ cmake ninja-build pkg-config libcurl4-openssl-dev libxml2-dev libssl-dev libcpp-httplib-dev
    nlohmann-json3-dev libcli11-dev libgtest-dev libgmock-dev libvalijson-dev)

# What checking it needs besides; llvm names the functions in what a sanitizer reports; pages and completion are tried by
# what shows and runs them.
check_packages=(clang clang-format clang-tidy libclang-rt-14-dev llvm ccache shellcheck doxygen groff-base zsh fish)

# Keeps compiled objects between runs, wherever the tree lies. Wants the package ccache.
use_compiler_cache() {
    export CMAKE_C_COMPILER_LAUNCHER=ccache CMAKE_CXX_COMPILER_LAUNCHER=ccache CCACHE_BASEDIR=$root CCACHE_NOHASHDIR=1
}

# check_published LIBRARY EXPORTED: of the names that a library exports, the published classes and the exception have to be
# there, and nothing else.
check_published() {
    local surplus wanted
    surplus=$(grep -vE '^(vtable for |typeinfo for |typeinfo name for )?Korvel::(KAccessLayer|KArray|KVolume|KException)(::|$)' \
        <<<"$2" || true)
    [ -z "$surplus" ] || fail "$1 exports more than it should: $surplus"
    for wanted in 'KAccessLayer::KAccessLayer()' KArray::CloneVolume KVolume::CreateSnapshotSet KException::ErrorText; do
        grep -qF "Korvel::$wanted" <<<"$2" || fail "$1 does not export $wanted"
    done
}
