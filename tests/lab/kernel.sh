#!/usr/bin/env bash
# kernel.sh KERNEL ROOT FOLDER: puts the modules of KERNEL, an unpacked kernel package, into the
# machine's ROOT, and makes FOLDER/vmlinux and FOLDER/initrd, which boot it.
set -euo pipefail
kernel=$1 root=$2 folder=$3
version=$(ls "$kernel/lib/modules")

install_modules() {
  local modules=$kernel/lib/modules/$version/kernel name
  # Drivers of devices that no emulated machine has are most of all bytes.
  rm -rf "$modules"/{sound,net/wireless} \
    "$modules"/drivers/{gpu,media,net/wireless,net/ethernet,infiniband,iio} \
    "$modules"/drivers/{staging,hwmon,edac,isdn,video,leds}
  mkdir -p "$root/usr/lib/modules"
  cp -a "$kernel/lib/modules/$version" "$root/usr/lib/modules/"
  depmod -b "$root" "$version"
  for name in exfat vfat ext4 xfs btrfs usb-storage uas xhci-pci sd_mod loop; do
    modprobe -d "$root" -S "$version" --show-depends "$name" >/dev/null ||
      { echo "The kernel $version has no $name." >&2 && exit 1; }
  done
}

# Unpacked here once, the kernel need not unpack itself in the slow machine at every boot.
unpack_image() {
  python3 - "$kernel/boot/vmlinuz-$version" "$folder/vmlinux" <<'PYTHON'
import lzma, sys
packed = open(sys.argv[1], "rb").read()
plain = lzma.LZMADecompressor().decompress(packed[packed.index(b"\xfd7zXZ\x00"):])
assert plain[:4] == b"\x7fELF", "not a kernel's image"
open(sys.argv[2], "wb").write(plain)
PYTHON
}

# The modules that / needs, and a shell that loads them. A usual initrd unpacks and probes for much
# longer.
make_initrd() {
  local initrd=$folder/initrd.d name file
  mkdir -p "$initrd"/{bin,dev,proc,sys,root,modules}
  cp "$root/bin/busybox" "$initrd/bin/"
  for name in virtio_pci virtio_blk ext4 crc32c_generic; do
    modprobe -d "$root" -S "$version" --show-depends "$name" | sed -n 's/^insmod //p'
  done | awk '!seen[$1]++ {print $1}' >"$folder/drivers"
  while read -r file; do cp "$file" "$initrd/modules/"; done <"$folder/drivers"
  cat >"$initrd/init" <<INIT
#!/bin/busybox sh
b=/bin/busybox
\$b mount -t proc proc /proc; \$b mount -t sysfs sys /sys; \$b mount -t devtmpfs dev /dev
$(sed "s|.*/|/bin/busybox insmod /modules/|" "$folder/drivers")
while [ ! -b /dev/vda ]; do \$b sleep 0.1; done
\$b mount -t ext4 -o noatime /dev/vda /root || exec \$b sh
\$b umount /proc; \$b umount /sys; \$b mount -o move /dev /root/dev
exec \$b switch_root /root /sbin/init
INIT
  chmod +x "$initrd/init"
  (cd "$initrd" && find . | cpio -o -H newc --quiet) >"$folder/initrd"
}

install_modules
unpack_image
make_initrd
