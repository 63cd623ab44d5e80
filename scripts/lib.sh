# What scripts/demo and scripts/test share: talking to the reader, and installing what a bare Debian 12 lacks.
# Sourced by bash with `set -euo pipefail`; it leaves the working directory at the project's root.

cd "$(dirname "${BASH_SOURCE[0]}")/.."

jobs=$(nproc)

# What the program and the simulator are built with.
build_packages=(g++ cmake ninja-build pkg-config libedit-dev nlohmann-json3-dev)

# What the tests, the checks of style and the figures need on top.
test_packages=(clang clang-tidy clang-format libclang-rt-14-dev libgtest-dev libgmock-dev libbenchmark-dev
               zlib1g-dev python3 python3-pexpect nvme-cli smartmontools
               man-db groff-base mandoc zsh dpkg-dev)

# say <text>...: one line that tells what comes next.
say()
{
    if [ -t 1 ]; then
        printf '\033[1m==> %s\033[0m\n' "$*"
    else
        printf '==> %s\n' "$*"
    fi
}

# as_root <command>...: runs it as root, with sudo where that is needed.
as_root()
{
    if [ "$(id -u)" -eq 0 ]; then
        "$@"
    elif command -v sudo >/dev/null; then
        sudo "$@"
    else
        printf 'This needs root, and there is no sudo. As root, run:\n    %s\n' "$*" >&2
        return 1
    fi
}

# install_missing <package>...: installs those that are not installed, and asks the network for nothing otherwise.
install_missing()
{
    local missing=() package
    for package in "$@"; do
        if [ "$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null)" != installed ]; then
            missing+=("$package")
        fi
    done
    [ ${#missing[@]} -gt 0 ] || return 0

    say "Installing from Debian: ${missing[*]}"
    local apt=(env DEBIAN_FRONTEND=noninteractive apt-get -q -o DPkg::Lock::Timeout=300)
    as_root "${apt[@]}" update
    as_root "${apt[@]}" install -y --no-install-recommends "${missing[@]}"
}
