#!/usr/bin/env bash
# demo.sh PROGRAM: makes a small card, offloads it to two folders and shows what came of it.
set -euo pipefail
program=$1
folder=$(mktemp -d "${TMPDIR:-/tmp}/zephrimark-demo.XXXXXX")
card=$folder/EOS_DIGITAL

# make_file PATH BYTES: content that does not compress, dated like a day's shooting.
make_file() {
  mkdir -p "$(dirname "$card/$1")"
  head -c "$2" /dev/urandom >"$card/$1"
  touch -d '2026-10-07 14:32:05.25' "$card/$1"
}

for i in 1 2 3 9 10 11; do
  make_file "DCIM/100CANON/$(printf 'IMG_%04d.CR3' "$i")" $((1500000 + i * 70001))
done
make_file DCIM/100CANON/MVI_0012.MP4 20000000
make_file DCIM/101CANON/IMG_0013.CR3 1800000
make_file "DCIM/101CANON/behind the scenes – take 2 🎬.jpg" 400000
make_file "PRIVATE/M4ROOT/CLIP/C0001.MP4" 5000000
make_file "MISC/notes \"final\" <1>.txt" 2000
make_file MISC/empty.idx 0
# What operating systems leave on a card stays behind.
make_file .DS_Store 6148
make_file DCIM/100CANON/._IMG_0001.CR3 4096
make_file .Trashes/501/IMG_0000.CR3 100000

mkdir -p "$folder/Drive A" "$folder/Drive B"
echo "A card of $(find "$card" -type f | wc -l) files is in $card"
echo
status=0
"$program" offload "$card" "$folder/Drive A" "$folder/Drive B" \
  --template '{date}/{camera}/{card}' || status=$?

# show_tree FOLDER: its content, indented.
show_tree() {
  (cd "$1" && find . -mindepth 1 | LC_ALL=C sort |
    sed -e 's|^\./||' -e 's|[^/]*/|    |g' -e 's|^|    |')
}
for drive in "Drive A" "Drive B"; do
  echo
  echo "$drive"
  show_tree "$folder/$drive"
done
echo
echo "Everything is in $folder; remove it when you are done."
exit "$status"
