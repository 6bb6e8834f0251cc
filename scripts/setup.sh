# shellcheck shell=bash
# What run, check and .ci/run have in common: the packages, and a preset's configuration and build.
# Sourced by bash; `root` is the folder of the sources. Needs CMake 3.22 or newer for the presets;
# Debian 12 has 3.25.

packages=(g++ cmake ninja-build qtbase5-dev qtbase5-private-dev libqt5charts5-dev fonts-dejavu-core)

say() { printf '\n== %s\n' "$*"; }

die() {
    printf 'error: %s\n' "$*" >&2
    exit 1
}

# The packages that are not installed, one a line.
missing_packages() {
    local package
    for package in "${packages[@]}"; do
        dpkg-query -W -f '${db:Status-Status}\n' "$package" 2>/dev/null | grep -qx installed ||
            echo "$package"
    done
}

apt_get() { "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -q -y "$@"; }

install_missing() {
    if ! command -v dpkg-query >/dev/null || ! command -v apt-get >/dev/null; then
        say "Not a Debian system: taking it that what these packages hold is there: ${packages[*]}"
        return
    fi
    local missing as_root=()
    mapfile -t missing < <(missing_packages)
    ((${#missing[@]})) || return 0

    if ((EUID != 0)); then
        as_root=(sudo -n)
        sudo -n true 2>/dev/null ||
            die "packages are missing and this user may not install them: apt-get install ${missing[*]}"
    fi
    say "Installing what is missing: ${missing[*]}"
    # A new machine has no package lists, and old lists name files that are gone.
    apt-cache show "${missing[@]}" >/dev/null 2>&1 || apt_get update
    apt_get install --no-install-recommends "${missing[@]}" ||
        { apt_get update && apt_get install --no-install-recommends "${missing[@]}"; } ||
        die "could not install ${missing[*]}"
}

# build_preset NAME [TARGET...]: afterwards everything, or just the targets, is under build/NAME.
build_preset() {
    local warnings=OFF
    [[ ${CI:-false} == false ]] || warnings=ON
    cd "${root:?}" || return
    say "Configuring build/$1"
    cmake --preset "$1" -DWARNINGS_AS_ERRORS="$warnings"
    say "Building build/$1"
    cmake --build --preset "$1" --parallel "$(nproc)" ${2:+--target "${@:2}"}
}
