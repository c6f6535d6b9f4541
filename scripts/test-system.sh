#!/usr/bin/env bash
# test-system.sh 12|13: gives the last commit to a bare Debian of that release and follows the
# README there from nothing: ./run and ./test, which get what they need by themselves.
#   ZEPHRIMARK_MIRROR    Debian's packages come from here
set -euo pipefail
. "$(dirname "$(readlink -f "$0")")/common.sh"
. "$root/scripts/bare.sh"

case ${1-} in
  12 | 13) ;;
  *)
    echo "./test system knows Debian 12 and 13: ./test system 13" >&2
    exit 2
    ;;
esac
install_missing git
log=$root/build/bare/debian-$1.txt
work=$(mktemp -d "${TMPDIR:-/tmp}/zephrimark-system.XXXXXX")
trap '"${as_root[@]}" rm -rf --one-file-system "$work"' EXIT

unpack_bare "$1" "$work/root"
"${as_root[@]}" mkdir "$work/root/root/offload"
git -C "$root" archive HEAD | "${as_root[@]}" tar -C "$work/root/root/offload" --no-same-owner -xf -

commit=$(git -C "$root" log -1 --format='%h (%s)')
echo "Following the README on Debian $1 at $commit; it takes a while"
run_in_bare "$work/root" /root/offload/scripts/test-system-inside.sh >"$log" 2>&1 && status=0 ||
  status=$?
if [ "$status" -ne 0 ]; then
  cat "$log"
  echo "Debian $1: FAILED; the log is in $log" >&2
  exit "$status"
fi
sed -n "s/^Passed: /Debian $1: /p" "$log"
