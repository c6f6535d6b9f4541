#!/usr/bin/env bash
# test-lab.sh [--list] [NAME...]: makes the Debian package and the disk of an emulated machine, and
# tries cards and drives of the kernel's own file systems there (tests/lab/lab.py).
#   ZEPHRIMARK_SEED      the moments of the power cuts; 1 otherwise
#   ZEPHRIMARK_MIRROR    Debian's packages come from here
#   ZEPHRIMARK_KVM       not empty: with the processor's help, where that works
set -euo pipefail
. "$(dirname "$(readlink -f "$0")")/common.sh"

lab=$root/tests/lab
if [ "${1-}" = --list ]; then exec python3 -B "$lab/lab.py" --list; fi
install_missing "${build_packages[@]}" "${package_packages[@]}" "${lab_packages[@]}"
# A name that is none is told before anything is built.
python3 -B "$lab/lab.py" --list "$@" >/dev/null
as_root=()
if [ "$(id -u)" -ne 0 ]; then
  command -v sudo >/dev/null ||
    { echo "The machine's disk is made as root, and there is no sudo." >&2 && exit 1; }
  as_root=(sudo)
fi
package=$("$root/scripts/package.sh")

# A disk is good for as long as nothing changes that it is made of.
disk=$root/build/lab/$(
  { cat "$lab"/{root,kernel,in-session}.sh && dpkg-deb -f "$package" Depends; } |
    sha256sum | cut -c1-16)
if [ ! -e "$disk/key" ]; then
  echo "Making the machine's disk, which takes a few minutes the first time …" >&2
  rm -rf "$root/build/lab"
  mkdir -p "$disk"
  quietly "${as_root[@]}" env ${ZEPHRIMARK_MIRROR:+"ZEPHRIMARK_MIRROR=$ZEPHRIMARK_MIRROR"} \
    "$lab/root.sh" "$disk" "$package"
fi
exec python3 -B "$lab/lab.py" --root "$disk" --package "$package" "$@"
