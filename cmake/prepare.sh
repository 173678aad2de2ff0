# Sourced by the scripts at the top: installs what is missing on Debian 12 and builds a preset. Expects the repository's
# top as the working directory.

as_root() {
  if [ "$(id -u)" -eq 0 ]; then
    "$@"
  else
    sudo "$@"
  fi
}

# install_packages PACKAGE...: those that are missing.
install_packages() {
  missing=
  for package in "$@"; do
    dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || missing="$missing $package"
  done
  [ -n "$missing" ] || return 0
  echo "installing:$missing" >&2
  as_root apt-get update -qq
  as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends $missing >/dev/null
}

# build PRESET: configures and builds below build/PRESET.
build() {
  echo "building the preset '$1' below build/$1" >&2
  cmake --preset "$1" >/dev/null
  cmake --build --preset "$1" -- --quiet
}

# sources PATTERN...: the files with such names, built ones left out.
sources() {
  for pattern in "$@"; do
    find . -path ./build -prune -o -name "$pattern" -print
  done
}

install_packages $(cat cmake/debian-packages.txt)
