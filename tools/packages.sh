# What the project needs of a bare Debian 12, and its installation. To be sourced.

PACKAGES="g++ clang cmake ninja-build ccache clang-format clang-tidy
  libgtest-dev libbenchmark-dev libsqlite3-dev libpq-dev postgresql libcli11-dev pkg-config libxlsxwriter-dev
  qt6-base-dev qt6-tools-dev libgl-dev qt6-translations-l10n fonts-dejavu-core fonts-liberation
  rapidjson-dev libsimdjson-dev libmsgpack-cxx-dev libprotobuf-dev protobuf-compiler
  poppler-utils xvfb jwm xdotool x11-xkb-utils dbus at-spi2-core python3-pyatspi"

missing_packages() {
  for package in $PACKAGES; do
    status=$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null || true)
    [ "$status" = installed ] || echo "$package"
  done
}

as_root() {
  if [ "$(id -u)" = 0 ]; then "$@"; else sudo "$@"; fi
}

install_packages() {
  missing=$(missing_packages)
  [ -z "$missing" ] && return
  echo "Installing: "$missing
  as_root apt-get -o DPkg::Lock::Timeout=300 update -q
  # The names are to be split into words.
  as_root env DEBIAN_FRONTEND=noninteractive \
    apt-get -o DPkg::Lock::Timeout=300 --no-install-recommends install -q -y $missing
}
