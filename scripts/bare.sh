# shellcheck shell=bash disable=SC2154
# For tests in a bare Debian, which need root: makes it and runs scripts there. Sourced by bash
# after common.sh.
#   ZEPHRIMARK_MIRROR    Debian's packages come from here

as_root=()
[ "$(id -u)" -eq 0 ] || as_root=(sudo)

# unpack_bare 12|13 FOLDER: puts that Debian into FOLDER, which must not be there yet. It is made
# only once, which takes a minute.
unpack_bare() {
  local bare=$root/build/bare/debian-$1.tar suite
  case $1 in
    12) suite=bookworm ;;
    13) suite=trixie ;;
  esac
  if [ ! -e "$bare" ]; then
    echo "Making a bare Debian $1"
    install_missing mmdebstrap
    mkdir -p "$(dirname "$bare")"
    quietly "${as_root[@]}" mmdebstrap --variant=minbase --format=tar "$suite" "$bare.part" \
      ${ZEPHRIMARK_MIRROR:+"$ZEPHRIMARK_MIRROR"}
    mv "$bare.part" "$bare"
  fi
  "${as_root[@]}" mkdir "$2"
  "${as_root[@]}" tar -C "$2" -xf "$bare"
  "${as_root[@]}" cp -L /etc/resolv.conf "$2/etc/resolv.conf"
}

# run_in_bare FOLDER SCRIPT: runs a script of the Debian in FOLDER, with nothing of this system's
# environment. Whatever is started in there ends with it, and nothing stays mounted.
run_in_bare() {
  # shellcheck disable=SC2016
  "${as_root[@]}" unshare --mount --pid --fork --kill-child bash -c '
    root=$1
    mount --bind "$root" "$root"
    mount -t proc proc "$root/proc"
    mount -t sysfs -o ro sys "$root/sys"
    mount --rbind /dev "$root/dev"
    exec chroot "$root" /usr/bin/env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LANG=C.UTF-8 \
      TERM=dumb bash "$2"' bash "$1" "$2"
}
