#!/usr/bin/env bash
# root.sh FOLDER PACKAGE: makes the disk of a machine in FOLDER, as root.img, vmlinux, initrd and
# key: a Debian 12 with the kernel's own exFAT and FAT, USB, udev, udisks2, polkit, somebody logged
# in at its screen, and all that PACKAGE depends on. PACKAGE itself is not in it, so that a new
# build needs no new disk. Run as root.
#   ZEPHRIMARK_MIRROR    Debian's packages come from here
set -euo pipefail
here=$(dirname "$(readlink -f "$0")")
folder=$(cd "$1" && pwd) package=$(readlink -f "$2")
work=$(mktemp -d "$folder/work.XXXXXX")
trap 'rm -rf "$work"' EXIT
chmod 755 "$work"  # the machine's / gets its rights from the folder it is made of
root=$work/root

packages=(
  systemd-sysv libpam-systemd dbus udev kmod util-linux fdisk mount tzdata iproute2
  udisks2 polkitd pkexec eject
  exfatprogs dosfstools e2fsprogs xfsprogs btrfs-progs
  dropbear-bin login passwd busybox-static
)

install_debian() {
  local needed lean
  # Of alternatives the first.
  mapfile -t needed < <(dpkg-deb -f "$package" Depends | tr ',' '\n' |
    sed -e 's/|.*//' -e 's/(.*//' -e 's/ //g')
  lean=(
    --dpkgopt='path-exclude=/usr/share/doc/*' --dpkgopt='path-exclude=/usr/share/man/*'
    --dpkgopt='path-exclude=/usr/share/locale/*'
  )
  # Unpacked instead of installed, the kernel makes no initrd of its own, which would take long to
  # boot. shellcheck disable=SC2016
  mmdebstrap --mode=root --variant=minbase --format=directory "${lean[@]}" \
    --aptopt='APT::Install-Recommends "false"' \
    --include="$(IFS=, && echo "${packages[*]}"),$(IFS=, && echo "${needed[*]}")" \
    --customize-hook='export APT_CONFIG="$MMDEBSTRAP_APT_CONFIG"
      kernel=$(apt-cache depends linux-image-amd64 |
        sed -n "s/.*Depends: \(linux-image-[0-9].*-amd64\)$/\1/p")
      cd "$1/.." && apt-get download -o APT::Sandbox::User=root $kernel' \
    bookworm "$root" ${ZEPHRIMARK_MIRROR:+"$ZEPHRIMARK_MIRROR"}
  dpkg-deb -x "$work"/linux-image-*.deb "$work/kernel"
  rm -rf "$root"/var/cache/apt/*.bin "$root"/var/lib/apt/lists/*
}

# Somebody at the screen, as udisks2 and polkit expect: who may mount a card that was plugged in.
add_user() {
  chroot "$root" useradd -m -u 1000 -s /bin/bash user
  mkdir -p "$root/etc/systemd/system/getty@tty1.service.d"
  cat >"$root/etc/systemd/system/getty@tty1.service.d/login.conf" <<'CONF'
[Service]
ExecStart=
ExecStart=-/sbin/agetty --autologin user --noclear %I linux
CONF
  install -m 755 "$here/in-session.sh" "$root/usr/local/bin/in-session"
}

# Commands come in by SSH, with a key that only this machine knows.
add_entrance() {
  ssh-keygen -q -t ed25519 -N '' -f "$work/key"
  install -D -m 600 "$work/key.pub" "$root/root/.ssh/authorized_keys"
  mkdir -p "$root/etc/dropbear"
  rm -f "$root"/etc/dropbear/dropbear_*_host_key
  chroot "$root" dropbearkey -t ed25519 -f /etc/dropbear/dropbear_ed25519_host_key >/dev/null
  cat >"$root/etc/systemd/system/entrance.service" <<'CONF'
[Unit]
After=systemd-logind.service
[Service]
ExecStartPre=/sbin/ip link set eth0 up
ExecStartPre=/sbin/ip address add 10.0.2.15/24 dev eth0
ExecStart=/usr/sbin/dropbear -F -E -s -r /etc/dropbear/dropbear_ed25519_host_key
[Install]
WantedBy=multi-user.target
CONF
  chroot "$root" systemctl enable --quiet entrance.service
}

settle_in() {
  echo lab >"$root/etc/hostname"
  echo '127.0.0.1 localhost lab' >"$root/etc/hosts"
  echo '/dev/vda / ext4 noatime 0 0' >"$root/etc/fstab"
  echo virtio_net >"$root/etc/modules-load.d/lab.conf"
  # Work of a computer that stays on, which would only take time from the cases.
  chroot "$root" systemctl mask --quiet \
    apt-daily.timer apt-daily-upgrade.timer dpkg-db-backup.timer \
    e2scrub_all.timer fstrim.timer man-db.timer systemd-pcrphase.service
}

install_debian
add_user
add_entrance
settle_in
"$here/kernel.sh" "$work/kernel" "$root" "$work"
mke2fs -q -t ext4 -d "$root" "$work/root.img" 4G
mv "$work"/{root.img,vmlinux,initrd,key} "$folder/"
chown --reference="$folder" "$folder"/{root.img,vmlinux,initrd,key}
