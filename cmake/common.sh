# shellcheck shell=bash
# What run, test and .ci/run share. They source it; it changes to the root of the project, so that they work from
# anywhere. MARLET_CALLER is where the caller was.

set -euo pipefail

# shellcheck disable=SC2034
MARLET_CALLER=$PWD
MARLET_COMMAND=$0
cd "$(dirname "${BASH_SOURCE[0]}")/.."

step() { printf -- '-- %s\n' "$*"; }

# The one line that says what failed.
fail() {
    printf '%s: %s\n' "$MARLET_COMMAND" "$*" >&2
    exit 1
}

# Installs what is missing of cmake/packages.txt. Asks the package servers for nothing if nothing is missing.
install_packages() {
    local packages installed missing
    mapfile -t packages <cmake/packages.txt
    installed=$({ dpkg-query -W -f '${db:Status-Status} ${Package}\n' "${packages[@]}" 2>/dev/null || true; } |
        sed -n 's/^installed //p')
    mapfile -t missing < <(comm -23 <(printf '%s\n' "${packages[@]}" | sort -u) <(sort -u <<<"$installed"))
    ((${#missing[@]})) || return 0

    step "Installing ${missing[*]}"
    [[ $EUID == 0 ]] || fail "only root can install the missing packages: ${missing[*]}"
    local log=/tmp/marlet-packages.$$.log
    if ! { apt-get update -qq &&
        DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}"; } >"$log" 2>&1; then
        tail -n 20 "$log" >&2
        fail "could not install the packages ${missing[*]}"
    fi
    rm -f "$log"
}

# build PRESET [TARGET...]: configures the preset and builds the targets, by default all.
build() {
    local preset=$1 command=(cmake --build --preset "$1")
    shift
    (($#)) && command+=(--target "$@")

    step "Building $preset"
    if [[ ! build/$preset/build.ninja -nt CMakePresets.json ]]; then
        mkdir -p build
        if ! cmake --preset "$preset" >"build/$preset-configure.log" 2>&1; then
            tail -n 30 "build/$preset-configure.log" >&2
            fail "could not configure the preset $preset"
        fi
    fi
    # On a terminal ninja rewrites one line; elsewhere it would print one for each file.
    if [[ -t 1 ]]; then
        "${command[@]}"
    else
        "${command[@]}" -- --quiet | { grep -vE '^-- |^ninja: no work to do' || true; }
    fi || fail "could not build the preset $preset"
}

# run_tests PRESET [CTEST-OPTION...]: runs the built tests and prints what did not pass and the closing lines.
run_tests() {
    local preset=$1
    shift
    step "Testing $preset"
    ctest --preset "$preset" --parallel "$(nproc)" --no-tests=error --no-label-summary "$@" |
        { grep --line-buffered -vE '^ +Start +[0-9]+:|^ *[0-9]+/[0-9]+ Test .* Passed |^Test project|^ *$' || true; } ||
        fail "tests of the preset $preset failed; the log is build/$preset/Testing/Temporary/LastTest.log"
}
