#!/usr/bin/env bash
# Installs the Debian packages the build, tests and benchmarks need, and only
# those that are missing, so it is cheap to run before every build.
#   scripts/install-deps.sh          build, test and benchmark packages
#   scripts/install-deps.sh fuzz     also the clang toolchain for libFuzzer
#   scripts/install-deps.sh format   also clang-format
set -euo pipefail

# coreutils' base64, util-linux's script (a terminal for the progress bar
# tests), Info-ZIP and bsdtar are peers of the tests.
packages=(cmake ninja-build g++ make python3 zlib1g-dev libgtest-dev libgmock-dev
          libbenchmark-dev libcli11-dev default-jdk-headless liblz4-dev lz4
          coreutils bsdutils zip unzip libarchive-tools)
case "${1:-}" in
    fuzz) packages+=(clang libclang-rt-dev) ;;
    format) packages+=(clang-format) ;;
esac

missing=()
for package in "${packages[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed"; then
        missing+=("$package")
    fi
done
[[ ${#missing[@]} -eq 0 ]] && exit 0

echo "Installing: ${missing[*]}"
run_as_root=()
[[ $(id -u) -ne 0 ]] && run_as_root=(sudo)
export DEBIAN_FRONTEND=noninteractive
"${run_as_root[@]}" apt-get update -qq
"${run_as_root[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"
