#!/usr/bin/env bash
# package.sh [OPTION...]: builds the Debian package in build/package and tells its path. Options are
# for cmake, such as -DZEPHRIMARK_UPDATE_FEED=https://...
set -euo pipefail
. "$(dirname "$(readlink -f "$0")")/common.sh"

maintainer='Zephrimark <offload@zephrimark.example>'
install_missing "${build_packages[@]}" "${package_packages[@]}"

# listed WORD...: the words with commas between them.
listed() {
  local all
  all=$(printf ', %s' "$@")
  printf '%s' "${all:2}"
}

# changes_as_debian: CHANGELOG.md in the form that packages have.
changes_as_debian() {
  local line version='' date entry=''
  flush_entry() {
    [ -z "$entry" ] || fold -s -w 74 <<<"$entry" |
      sed -e '1s/^/  * /' -e '2,$s/^/    /' -e 's/ *$//'
    entry=''
  }
  end_version() {
    flush_entry
    [ -z "$version" ] || printf '\n -- %s  %s\n\n' "$maintainer" "$(LC_ALL=C date -u -R -d "$date")"
  }
  while IFS= read -r line; do
    if [[ $line =~ ^'## '([0-9.]+)' ('([0-9-]+)')'$ ]]; then
      end_version
      version=${BASH_REMATCH[1]} date=${BASH_REMATCH[2]}
      printf 'zephrimark-offload (%s) stable; urgency=medium\n\n' "$version"
    elif [[ $line == '- '* && $version ]]; then
      flush_entry
      entry=${line#- }
    elif [[ $line == '  '* && $entry ]]; then
      entry+=" ${line#  }"
    fi
  done <"$root/CHANGELOG.md"
  end_version
}

version=$(sed -n 's/^project(.* VERSION \([0-9.]*\).*/\1/p' "$root/CMakeLists.txt")
homepage=$(sed -n 's/^ *HOMEPAGE_URL \([^ )]*\).*/\1/p' "$root/CMakeLists.txt")
folder=$root/build/package
source=$folder/source

# Debian's tools write into the folder they build, and beside it; objects of an earlier build are
# kept.
rm -rf "$source" "$folder"/*.deb
mkdir -p "$source"
tar -C "$root" --exclude=./build --exclude=./.git -cf - . | tar -C "$source" --no-same-owner -xf -
cp -r "$source/packaging/debian" "$source/debian"
sed -e "s|@MAINTAINER@|$maintainer|" -e "s|@HOMEPAGE@|$homepage|" \
  -e "s|@BUILD_PACKAGES@|$(listed "${build_packages[@]}")|" \
  -e "s|@WINDOW_PACKAGES@|$(listed "${window_packages[@]}")|" \
  -e "s|@FONT_PACKAGES@|$(listed "${font_packages[@]}")|" \
  "$source/debian/control.in" >"$source/debian/control"
rm "$source/debian/control.in"
changes_as_debian >"$source/debian/changelog"

cd "$source"
export ZEPHRIMARK_CMAKE_OPTIONS="$*"
echo "Building the package, which takes a few minutes the first time …" >&2
quietly dpkg-buildpackage --build=binary --no-sign --no-pre-clean
rm -rf "$source"
echo "$folder/zephrimark-offload_${version}_$(dpkg --print-architecture).deb"
