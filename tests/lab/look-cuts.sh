#!/bin/bash
# look-cuts DEVICE COUNT SIZE START TYPE OPTIONS FOLDER CHECK: within the machine, looks at each of the COUNT
# images of a drive that lie on DEVICE, SIZE bytes apart, with a partition from START on: mounts it as it is
# after a power cut, looks at FOLDER, and has the file system's checker look at it. Prints a tar of all that.
device=$1 count=$2 size=$3 start=$4 type=$5 options=$6 folder=$7 check=$8
out=$(mktemp -d)
for ((number = 0; number < count; ++number)); do
  here=$out/$number
  mkdir "$here"
  loop=$(losetup -f --show -o $((number * size + start)) --sizelimit $((size - start)) "$device")
  # The images are one volume to btrfs, which would take an earlier one for this one's device.
  [ "$type" != btrfs ] || btrfs device scan --forget
  if mount -t "$type" -o "$options" "$loop" /mnt 2>"$here/unmountable"; then
    rm "$here/unmountable"
    look "/mnt/$folder" "$here"
    umount /mnt
  fi
  ${check//\{device\}/$loop} >"$here/check" 2>&1
  echo $? >"$here/check-status"
  losetup -d "$loop"
done
tar -C "$out" -cf - .
rm -rf "$out"
