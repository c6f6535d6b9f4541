#!/bin/bash
# look-cuts DEVICE COUNT SIZE START TYPE OPTIONS FOLDER CHECK: within the machine, looks at each of
# the COUNT images of a drive that lie on DEVICE, SIZE bytes apart, with a partition from START on:
# mounts it as it is after a power cut, looks at FOLDER, and has the file system's checker look at
# it. Prints a tar of all that.
device=$1 count=$2 size=$3 start=$4 type=$5 options=$6 folder=$7 check=$8
out=$(mktemp -d)

# udev and udisks2 look at whatever is new, and hold it for a moment.
let_go() {
  for _ in $(seq 100); do
    umount /mnt 2>/dev/null && return
    sleep 0.1
  done
  echo 'An image cannot be unmounted.' >&2
  exit 1
}

for ((number = 0; number < count; ++number)); do
  here=$out/$number
  mkdir "$here"
  loop=$(losetup -f --show -o $((number * size + start)) --sizelimit $((size - start)) "$device")
  # The images are one volume to btrfs, which would take an earlier one for this one's device.
  # udev tells btrfs of a device, too, at a moment of its own.
  [ "$type" != btrfs ] || { udevadm settle && btrfs device scan --forget; }
  if mount -t "$type" -o "$options" "$loop" /mnt 2>"$here/unmountable"; then
    rm "$here/unmountable"
    look "/mnt/$folder" "$here"
    let_go
  fi
  ${check//\{device\}/$loop} >"$here/check" 2>&1
  echo $? >"$here/check-status"
  losetup -d "$loop"
done
tar -C "$out" -cf - .
rm -rf "$out"
