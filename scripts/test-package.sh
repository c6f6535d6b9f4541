#!/usr/bin/env bash
# test-package.sh [PACKAGE]: makes the Debian package, unless one is given, and looks at it with
# Debian's own tools; then installs it into a bare Debian 12, uses it as an ordinary user, removes
# it, and looks for what is left.
#   ZEPHRIMARK_PACKAGE_LOGS    where the logs and a picture of the window go, build/package/logs
#                              otherwise
#   ZEPHRIMARK_MIRROR          Debian's packages come from here
set -euo pipefail
. "$(dirname "$(readlink -f "$0")")/common.sh"
. "$root/scripts/bare.sh"

install_missing "${package_test_packages[@]}"
package=${1:-$("$root/scripts/package.sh")}
logs=${ZEPHRIMARK_PACKAGE_LOGS:-$root/build/package/logs}
mkdir -p "$logs"
work=$(mktemp -d "${TMPDIR:-/tmp}/zephrimark-package.XXXXXX")
trap '"${as_root[@]}" rm -rf --one-file-system "$work"' EXIT

echo "Looking at $package"
dpkg-deb --info "$package" >"$logs/package.txt"
dpkg-deb --contents "$package" >>"$logs/package.txt"
# What is overridden says why in packaging/debian.
lintian --allow-root --fail-on error,warning --info "$package" >"$logs/lintian.txt" 2>&1 ||
  { cat "$logs/lintian.txt" && exit 1; }
dpkg-deb -x "$package" "$work/content"
desktop-file-validate "$work/content/usr/share/applications/com.zephrimark.offload.desktop"
appstreamcli validate --no-net --explain \
  "$work/content/usr/share/metainfo/com.zephrimark.offload.metainfo.xml" >"$logs/appstream.txt" ||
  { cat "$logs/appstream.txt" && exit 1; }

echo "Installing, using and removing it in a bare Debian 12"
unpack_bare 12 "$work/root"
"${as_root[@]}" cp "$package" "$root/scripts/test-package-inside.sh" "$work/root/root/"
run_in_bare "$work/root" /root/test-package-inside.sh >"$logs/inside.txt" 2>&1 &&
  status=0 || status=$?
"${as_root[@]}" cat "$work/root/root/window.png" >"$logs/window.png" || status=1
if [ "$status" -ne 0 ]; then
  cat "$logs/inside.txt"
  exit "$status"
fi
echo "Installed, used and removed without a trace; logs are in $logs"
