# Shared by ./demo, ./check and fuzz/run: installs what a build needs and builds a preset. Sourced, not run.

say() { printf '%s\n' "==> $*" >&2; }
fail() {
  printf '%s\n' "error: $*" >&2
  exit 2
}

# package:what it brings that can be looked for
packages=(
  g++:c++
  cmake:cmake
  ninja-build:ninja
  ccache:ccache
  python3:python3
  nlohmann-json3-dev:/usr/include/nlohmann/json.hpp
  libmbedtls-dev:/usr/include/mbedtls/aes.h
  libgtest-dev:/usr/include/gtest/gtest.h
  pkg-config:pkg-config
)
# What the fuzzers need besides.
fuzz_packages=(
  clang:clang++
  libclang-rt-14-dev:/usr/lib/clang/14/lib/linux
)

missing_packages() {
  local row brings
  for row in "${packages[@]}"; do
    brings=${row#*:}
    case "$brings" in
      /*) [ -e "$brings" ] || printf '%s\n' "${row%%:*}" ;;
      *) command -v "$brings" >/dev/null 2>&1 || printf '%s\n' "${row%%:*}" ;;
    esac
  done
}

need_packages() {
  local missing sudo=()
  mapfile -t missing < <(missing_packages)
  [ "${#missing[@]}" -gt 0 ] || return 0
  say "missing packages: ${missing[*]}"
  command -v apt-get >/dev/null 2>&1 ||
    fail "this machine has no apt-get; install the above (Debian's names) in its own way, then call again"
  if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null 2>&1 ||
      fail "installing them needs root and there is no sudo; as root: apt-get install ${missing[*]}"
    sudo=(sudo)
  fi
  say "installing them"
  "${sudo[@]}" apt-get update -qq || say "the package lists could not be renewed; going on with the old ones"
  "${sudo[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq "${missing[@]}" >&2 ||
    fail "apt-get could not install ${missing[*]}"
  mapfile -t missing < <(missing_packages)
  [ "${#missing[@]}" -eq 0 ] || fail "installed, and still not found: ${missing[*]}"
}

# build PRESET [TARGET...]
build() {
  local preset=$1
  shift
  if [ ! -f "build/$preset/build.ninja" ]; then
    say "configuring ($preset)"
    cmake --preset "$preset" >&2 || fail "cmake could not configure preset $preset; the lines above say why"
  fi
  say "building ($preset)"
  cmake --build "build/$preset" ${1:+--target "$@"} >&2 || fail "the build of preset $preset failed"
}
