# Sourced by run and test: installs what is missing from packages.txt and builds a preset. Needs bash, nothing else.

fail() {
  echo "$1" >&2
  exit 1
}

# Packages of the given sections of packages.txt.
packages_of() {
  awk -v wanted=" $* " '/^#/ || /^$/ { next } /^\[/ { section = substr($0, 2, length($0) - 2); next } index(wanted, " " section " ") { print }' packages.txt
}

# install_packages SECTION…: installs what is not there yet, as root or through sudo.
install_packages() {
  local missing=() name
  for name in $(packages_of "$@"); do
    [ "$(dpkg-query -W -f '${db:Status-Status}' "$name" 2>/dev/null)" = installed ] || missing+=("$name")
  done
  [ ${#missing[@]} -eq 0 ] && return
  local as_root=()
  if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || fail "These packages are missing and this account may not install them (no root, no sudo): ${missing[*]}"
    as_root=(sudo)
  fi
  echo "Installing ${#missing[@]} packages (a minute or two): ${missing[*]}"
  "${as_root[@]}" apt-get update -qq
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null ||
    fail "Installing the packages failed: ${missing[*]}"
}

# build PRESET "HOW LONG" [TARGET…]: tells how far it is, as ninja counts.
build() {
  local preset=$1 howlong=$2
  shift 2
  # Several worktrees share what was compiled once, precompiled headers included.
  export CCACHE_BASEDIR=$PWD CCACHE_NOHASHDIR=1 CCACHE_SLOPPINESS=pch_defines,time_macros
  if [ ! -f "build/$preset/build.ninja" ]; then
    echo "Configuring build/$preset."
    cmake --preset "$preset" >"build-$preset.log" 2>&1 || { cat "build-$preset.log"; rm -f "build-$preset.log"; fail "Configuring failed."; }
  fi
  rm -f "build-$preset.log"
  echo "Building in build/$preset ($howlong; only what changed since the last time)."
  NINJA_STATUS="[%f/%t, %e s] " cmake --build --preset "$preset" ${1:+--target "$@"} || fail "Building failed."
}
