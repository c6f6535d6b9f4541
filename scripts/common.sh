# shellcheck shell=bash disable=SC2034
# Shared by ./run and ./test: what they need from Debian, and how they build. Sourced by bash.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

# The window needs these where it runs; a package depends on the first and recommends the others.
window_packages=(
  qml6-module-qtqml qml6-module-qtqml-workerscript qml6-module-qtquick qml6-module-qtquick-controls
  qml6-module-qtquick-templates qml6-module-qtquick-layouts qml6-module-qtquick-window
  qml6-module-qtquick-dialogs qml6-module-qt-labs-folderlistmodel libqt6svg6
)
font_packages=(fonts-inter fonts-dejavu-core)
build_packages=(
  g++ cmake ninja-build pkg-config
  libssl-dev libexpat1-dev libicu-dev libfmt-dev libcli11-dev nlohmann-json3-dev libsystemd-dev
  qt6-base-dev qt6-declarative-dev qt6-declarative-dev-tools qt6-svg-dev
  qt6-tools-dev qt6-l10n-tools
  "${window_packages[@]}" "${font_packages[@]}"
)
package_packages=(debhelper dpkg-dev)
package_test_packages=(lintian desktop-file-utils appstream)
# QEMU, and what makes a Debian for it.
lab_packages=(qemu-system-x86 mmdebstrap e2fsprogs cpio kmod openssh-client python3)
test_packages=(
  libgtest-dev libgmock-dev
  # Benchmarks are built with the tests, so that they go on building.
  libbenchmark-dev libxxhash-dev
  # Real faults, real disks and the services of a desktop; a test whose package is missing says so
  # and is skipped.
  libfuse3-dev fuse3 e2fsprogs fdisk mount libxml2-utils
  xfsprogs btrfs-progs exfatprogs exfat-fuse ntfs-3g
  strace dbus polkitd pkexec udisks2 udev python3-dbus python3-gi openssl
  # The window without a screen, and with one that a screen reader looks at.
  qml6-module-qttest xvfb xauth at-spi2-core gir1.2-atspi-2.0
)
benchmark_packages=(libbenchmark-dev libxxhash-dev xxhash rsync rclone)

# install_missing PACKAGE...: installs those that are not there yet, and says which.
install_missing() {
  local package missing=() as_root=()
  for package in "$@"; do
    [ "$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null)" = installed ] ||
      missing+=("$package")
  done
  [ ${#missing[@]} -gt 0 ] || return 0
  echo "Installing with apt-get: ${missing[*]}" >&2
  if [ "$(id -u)" -ne 0 ]; then
    if ! command -v sudo >/dev/null; then
      echo "These packages are missing and there is no sudo. As root, run:" >&2
      echo "  apt-get install ${missing[*]}" >&2
      exit 1
    fi
    as_root=(sudo)
  fi
  quietly "${as_root[@]}" apt-get update
  quietly "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get install -y --no-install-recommends "${missing[@]}"
}

# quietly COMMAND...: its output is shown only when it fails.
quietly() {
  local log
  log=$(mktemp)
  if ! "$@" >"$log" 2>&1 </dev/null; then
    cat "$log" >&2
    rm -f "$log"
    echo "Failed: $*" >&2
    exit 1
  fi
  rm -f "$log"
}

# build PRESET: configures once, then builds what changed.
build() {
  cd "$root" || exit 1
  if [ ! -e "build/$1/build.ninja" ]; then
    echo "Building ($1), which takes a minute or two the first time …" >&2
    quietly cmake --preset "$1"
  fi
  quietly cmake --build --preset "$1"
}
