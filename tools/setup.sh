# SPDX-License-Identifier: MIT
# Sourced by ./run and ./test: installs what a fresh Debian 12 lacks, and builds.
# A tool counts as present when its command or file is there, wherever it came from; only what is missing is installed.

# What to look for (a command, or a file pattern) and the package that brings it.
program_needs=(
  "g++                                                  g++"
  "cmake                                                cmake"
  "ninja                                                ninja-build"
  "ccache                                               ccache"
  "flatc                                                flatbuffers-compiler"
  "/usr/include/flatbuffers/flatbuffers.h               libflatbuffers-dev"
  "/usr/include/CLI/CLI.hpp                             libcli11-dev"
  "/usr/include/zlib.h                                  zlib1g-dev"
  "/usr/lib/*/cmake/Qt5Widgets/Qt5WidgetsConfig.cmake   qtbase5-dev"
  "/usr/lib/*/qt5/plugins/platforms/libqoffscreen.so    libqt5gui5"
  "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf      fonts-dejavu-core"
)
test_needs=(
  "/usr/include/gtest/gtest.h                           libgtest-dev"
  "/usr/include/gmock/gmock.h                           libgmock-dev"
  "/usr/include/benchmark/benchmark.h                   libbenchmark-dev"
  "/usr/include/assimp/scene.h                          libassimp-dev"
  "clang++-14                                           clang-14"
  "/usr/lib/llvm-14/lib/clang/*/lib/linux/libclang_rt.fuzzer-*.a  libclang-rt-14-dev"
  "clang-format-14                                      clang-format-14"
)

# Present NEED: true when the command NEED is on the path or a file matches the pattern NEED.
Present() {
  case $1 in
    /*) compgen -G "$1" >/dev/null ;;
    *) command -v "$1" >/dev/null ;;
  esac
}

# InstallMissing "NEED PACKAGE"...: installs the packages whose need is not met. Needs root or sudo only then.
InstallMissing() {
  local row need package as_root=() missing=()
  for row in "$@"; do
    read -r need package <<<"$row"
    Present "$need" || missing+=("$package")
  done
  [ ${#missing[@]} -eq 0 ] && return 0
  if ! command -v apt-get >/dev/null; then
    echo "Missing: ${missing[*]}. There is no apt-get here: install these by your system's own means and start again." >&2
    return 1
  fi
  if [ "$(id -u)" -ne 0 ]; then
    if ! command -v sudo >/dev/null; then
      echo "Missing packages: ${missing[*]}. Installing needs root, and there is no sudo." >&2
      echo "As root: apt-get update && apt-get install --no-install-recommends ${missing[*]}" >&2
      return 1
    fi
    as_root=(sudo)
  fi
  echo "Installing by apt-get${as_root[0]:+ with sudo}: ${missing[*]}"
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get update -qq &&
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" \
      >"$log_folder/apt.log" 2>&1 || { tail -n 20 "$log_folder/apt.log"; echo "apt-get failed; see $log_folder/apt.log" >&2; return 1; }
}

# Configure PRESET [OPTIONS]: quiet unless it fails.
Configure() {
  cmake --preset "$@" >"$log_folder/configure-$1.log" 2>&1 || { cat "$log_folder/configure-$1.log"; return 1; }
}

# Build PRESET [TARGETS]: a progress line on a terminal, in a log only what fails.
Build() {
  local preset=$1 quiet=--quiet
  shift
  [ -t 1 ] && quiet=
  ninja -C "build/$preset" -j "$jobs" -k 0 $quiet "$@"  # -k 0: show every fault, not the first
}

jobs=${TAVRILON_JOBS:-2}  # two compilers fit into 4 GB; more cores: TAVRILON_JOBS=8 ./test
log_folder=build/logs
mkdir -p "$log_folder"
# Objects are shared by all build folders; who has set ccache up keeps that.
if [ -z "${CCACHE_DIR:-}" ] && [ ! -e "${HOME:-}/.ccache" ] && [ ! -e "${XDG_CACHE_HOME:-${HOME:-}/.cache}/ccache" ]; then
  export CCACHE_DIR=$PWD/.ccache
fi
