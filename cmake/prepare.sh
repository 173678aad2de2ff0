# Sourced by the scripts at the top: installs packages on Debian and builds presets. Expects the repository's top as the
# working directory.

as_root() {
  if [ "$(id -u)" -eq 0 ]; then
    "$@"
  else
    sudo "$@"
  fi
}

# packages_of STEP...: the names of their packages on this release of Debian; none on other systems.
packages_of() {
  release=$(. /etc/os-release && echo "${VERSION_CODENAME:-}") || release=
  awk -v release="$release" -v steps=" $* " '
    $2 == "step" { for (i = 3; i <= NF; ++i) if ($i == release) column = i - 1 }
    !/^#/ && column && index(steps, " " $1 " ") && $column != "-" { print $column }' cmake/packages.txt
}

# install_packages STEP...: those of their packages that are missing.
install_packages() {
  packages=$(packages_of "$@")
  if [ -z "$packages" ]; then
    echo "== nothing installed for $*: cmake/packages.txt has no packages for this system"
    return 0
  fi
  missing=
  for package in $packages; do
    dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || missing="$missing $package"
  done
  [ -n "$missing" ] || return 0
  echo "== install:$missing"
  as_root apt-get update -q
  as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -q --no-install-recommends \
    -o Dpkg::Use-Pty=0 $missing
}

# build PRESET [TARGET...]: configures and builds it, or only the targets.
build() {
  preset=$1
  shift
  echo "== build: preset $preset, ${*:-all}"
  cmake --preset "$preset"
  cmake --build --preset "$preset" ${1:+--target "$@"}
}

# sources PATTERN...: the files with such names, built ones left out.
sources() {
  for pattern in "$@"; do
    find . -path ./build -prune -o -name "$pattern" -print
  done
}
