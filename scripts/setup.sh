# shellcheck shell=bash
# Shared by run, test and .ci/run, which source it from the top folder.

fail() {
    echo "error: $*" >&2
    exit 1
}

# Runs a command and shows its output only if it fails.
quietly() {
    local log status=0
    log=$(mktemp)
    "$@" >"$log" 2>&1 </dev/null || status=$?
    if [[ $status -ne 0 ]]; then
        cat "$log" >&2
    fi
    rm -f "$log"
    return "$status"
}

# Runs a command as root. If that is impossible, reports the purpose and stops.
as_root() {
    local purpose=$1
    shift
    if [[ $EUID -eq 0 ]]; then
        quietly "$@"
    elif command -v sudo >/dev/null; then
        quietly sudo "$@"
    else
        fail "cannot $purpose: you are not root, and sudo was not found"
    fi
}

# Installs the missing ones of the named Debian packages.
install_packages() {
    if ! command -v dpkg-query >/dev/null; then
        echo "Not a Debian system; the build needs the contents of these Debian packages: $*" >&2
        return
    fi
    local known package missing=()
    known=$(dpkg-query --show --showformat='${Package} ${db:Status-Status}\n' "$@" 2>/dev/null || true)
    for package in "$@"; do
        if ! grep -qFx "$package installed" <<<"$known"; then
            missing+=("$package")
        fi
    done
    if [[ ${#missing[@]} -eq 0 ]]; then
        return
    fi
    echo "Installing ${missing[*]}"
    local purpose="install the packages ${missing[*]}"
    local apt_get=(env DEBIAN_FRONTEND=noninteractive apt-get --yes -o DPkg::Lock::Timeout=120)
    # An unreachable package source does not matter if the others have the packages.
    as_root "$purpose" "${apt_get[@]}" update || echo "warning: the package lists are not up to date" >&2
    as_root "$purpose" "${apt_get[@]}" install --no-install-recommends "${missing[@]}" ||
        fail "could not $purpose"
}

# Creates the named UTF-8 locale, for example de_DE, unless it exists.
install_locale() {
    local name=$1
    if grep -qix "$name\.utf-\?8" <<<"$(locale -a 2>/dev/null)"; then
        return
    fi
    echo "Creating the locale $name.UTF-8"
    as_root "create the locale $name.UTF-8, which the tests need" \
        localedef -i "$name" -f UTF-8 "$name.UTF-8" || fail "could not create the locale $name.UTF-8"
}

# Configures and builds a preset. Further arguments are passed to the configuration.
build() {
    local preset=$1 cache=build/$1/CMakeCache.txt fresh=()
    shift
    # The tree may have been moved or copied together with its build folder.
    if [[ -f $cache ]] && ! grep -qFx "CMAKE_HOME_DIRECTORY:INTERNAL=$PWD" "$cache"; then
        fresh=(--fresh)
    fi
    quietly cmake --preset "$preset" "${fresh[@]}" "$@" || fail "could not configure the preset $preset"
    cmake --build --preset "$preset" --parallel "$(nproc)" || fail "could not build the preset $preset"
}

passed=0
failed=0
launcher=()

# Runs ctest through $launcher. The first argument names the report to write; the rest
# are passed to ctest. Adds to $passed and $failed; a test that did not run has failed.
run_tests() {
    local report=$1 status=0 all=0 good=0
    shift
    rm -f "$report"
    "${launcher[@]}" ctest "$@" --output-on-failure --progress --no-tests=error --parallel "$(nproc)" \
        --output-junit "$report" || status=$?
    if [[ -f $report ]]; then
        all=$(grep -c '<testcase ' "$report" || true)
        good=$(grep -c '<testcase .* status="run"' "$report" || true)
    fi
    passed=$((passed + good))
    failed=$((failed + all - good))
    if [[ $status -ne 0 || $all -eq 0 || $good -ne $all ]]; then
        return 1
    fi
}
