#!/usr/bin/env bash
# Sets up a Debian 12 machine for Lotwise, builds it, and runs the program,
# the test suite or the benchmarks.
#
#   bash scripts/lotwise.sh run     install what is missing, build, start the desktop program
#                                   (without a display: the command-line demo instead)
#   bash scripts/lotwise.sh test    install what is missing, build, run every test
#                                   (plain build, then AddressSanitizer + UBSan build)
#   bash scripts/lotwise.sh bench   install what is missing, build, run the benchmarks
set -euo pipefail
cd "$(dirname "$0")/.."

PACKAGES=(
  build-essential cmake ninja-build pkg-config
  libsqlite3-dev libsqlitecpp-dev libfmt-dev libcli11-dev
  libgtest-dev libgmock-dev libbenchmark-dev libkainjow-mustache-dev
  libhpdf-dev libcsv-dev poppler-utils
  qt6-base-dev qt6-qpa-plugins libgl-dev xvfb xauth
  clang-format python3
)

as_root() {
  if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi
}

install_missing() {
  local missing=() package
  for package in "${PACKAGES[@]}"; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed" ||
      missing+=("$package")
  done
  if [ "${#missing[@]}" -gt 0 ]; then
    echo "Installing: ${missing[*]}"
    as_root apt-get update -qq
    as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends \
      "${missing[@]}"
  fi
}

build() {  # build folder, extra CMake options...
  local folder=$1
  shift
  cmake -S . -B "$folder" -G Ninja "$@" >/dev/null
  cmake --build "$folder"
}

jobs=$(nproc 2>/dev/null || echo 2)

# Every C++ file as the repository's .clang-format lays it out; a file that
# differs is named and the tests do not run.
check_format() {
  local files
  if git rev-parse --is-inside-work-tree >/dev/null 2>&1; then
    files=$(git ls-files '*.cpp' '*.h')
  else
    files=$(find src cli tests tools bench -name '*.cpp' -o -name '*.h')
  fi
  # shellcheck disable=SC2086
  clang-format --dry-run --Werror $files
}

case "${1:-}" in
  run)
    install_missing
    build build -DCMAKE_BUILD_TYPE=Release
    # A settings store of the build's own, so that folders designated by
    # another copy of the program on this machine stay as they are.
    export XDG_CONFIG_HOME="$PWD/build/config"
    if [ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]; then
      exec build/bin/lotwise
    fi
    # Without a display the program says so; the command-line demo then
    # shows what it computes: a sample taxpayer and every report.
    build/bin/lotwise || true
    rm -rf build/demo
    build/bin/lotwise-cli demo --out build/demo
    ;;
  test)
    install_missing
    check_format
    python3 scripts/check_layers.py
    build build -DCMAKE_BUILD_TYPE=Release
    ctest --test-dir build --output-on-failure -j "$jobs"
    build build-asan -DCMAKE_BUILD_TYPE=Debug -DLOTWISE_SANITIZE=ON -DLOTWISE_BENCHMARKS=OFF
    ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
      ctest --test-dir build-asan --output-on-failure -j "$jobs"
    ;;
  bench)
    install_missing
    build build -DCMAKE_BUILD_TYPE=Release
    for program in build/bench/*; do
      [ -x "$program" ] && "$program" "${@:2}"
    done
    ;;
  *)
    echo "usage: bash scripts/lotwise.sh run|test|bench" >&2
    exit 2
    ;;
esac
