#!/bin/bash
# look FOLDER OUT: within the machine, puts into OUT what FOLDER of a drive holds: OUT/files (size,
# date and path of each file, then a zero byte), OUT/sums (MD5 and path of each file that can be
# read), OUT/records (a tar of what the run wrote about itself). All three are empty where there is
# no such folder.
mkdir -p "$2"
touch "$2"/{files,sums,records}
cd "$1" 2>/dev/null || exit 0
find . -type f -printf '%s %T@ %P\0' >"$2/files" 2>"$2/errors"
find . -type f -printf '%P\0' | xargs -0r md5sum -z >"$2/sums" 2>>"$2/errors"
find . -type f \( -path './ascmhl/*' -o -name 'Offload Report*' \) -printf '%P\0' |
  tar --null -T - -cf "$2/records" 2>>"$2/errors"
exit 0
