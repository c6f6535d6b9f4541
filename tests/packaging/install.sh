#!/usr/bin/env bash
# install.sh BUILD SOURCE: installs a build into a folder of its own, and uses what is there.
set -euo pipefail
build=$1
source=$2
folder=$(mktemp -d "${TMPDIR:-/tmp}/zephrimark-install.XXXXXX")
trap 'rm -rf "$folder"' EXIT
prefix=$folder/prefix
failed=0

# fault SENTENCE: told; the test goes on.
fault() {
  echo "$*" >&2
  failed=1
}

cmake --install "$build" --prefix "$prefix" >"$folder/log" || { cat "$folder/log" && exit 1; }

id=com.zephrimark.offload
{
  printf '%s\n' bin/zephrimark bin/zephrimark-offload libexec/zephrimark-open-device \
    share/applications/$id.desktop share/metainfo/$id.metainfo.xml \
    share/polkit-1/actions/$id.policy share/doc/zephrimark-offload/copyright \
    share/man/man1/zephrimark{,-offload}.1 \
    share/bash-completion/completions/zephrimark{,-offload} \
    share/fish/vendor_completions.d/zephrimark{,-offload}.fish \
    share/zsh/site-functions/_zephrimark \
    share/icons/hicolor/scalable/apps/$id.svg share/icons/hicolor/symbolic/apps/$id-symbolic.svg
  for edge in 16 22 24 32 48 64 128 256 512; do
    echo share/icons/hicolor/${edge}x$edge/apps/$id.png
  done
} | sort >"$folder/expected"
(cd "$prefix" && find . -type f -printf '%P\n') | sort >"$folder/installed"
diff "$folder/expected" "$folder/installed" >&2 || fault "Other files than these are installed."

PATH=$prefix/bin:$PATH
version=$(sed -n 's/^project(.* VERSION \([0-9.]*\).*/\1/p' "$source/CMakeLists.txt")
[ "$(zephrimark --version)" = "zephrimark $version" ] || fault "zephrimark tells another version."
[ "$(zephrimark-offload --version)" = "zephrimark-offload $version" ] ||
  fault "zephrimark-offload tells another version."
grep -q "version=\"$version\" date=" "$prefix/share/metainfo/$id.metainfo.xml" ||
  fault "The metainfo tells another version."

mkdir -p "$folder/card/DCIM"
head -c 3000000 /dev/urandom >"$folder/card/DCIM/A001.MOV"
zephrimark offload --quiet --template copy "$folder/card" "$folder/one" "$folder/two" ||
  fault "An offload with the installed program ended with $?."
for drive in one two; do
  cmp "$folder/card/DCIM/A001.MOV" "$folder/$drive/copy/DCIM/A001.MOV" || failed=1
done

grep -qF ">$prefix/libexec/zephrimark-open-device<" "$prefix/share/polkit-1/actions/$id.policy" ||
  fault "The polkit action names another helper than the one installed."

# What is told of the options, where people look for them.
man1=$prefix/share/man/man1
for command in '' offload cards disks; do
  for option in $(zephrimark $command --help | grep -oE '^ +(-h,)?--[a-z-]+' |
    grep -oE -- '--[a-z-]+'); do
    grep -qE "(Fl|It Fl h , Fl) -${option#--}( |\$)" "$man1/zephrimark.1" ||
      fault "zephrimark(1) lacks $option."
    for shell in bash-completion/completions/zephrimark zsh/site-functions/_zephrimark; do
      grep -qe "$option" "$prefix/share/$shell" || fault "$shell lacks $option."
    done
    grep -qE -- "-l ${option#--}( |\$)" "$prefix/share/fish/vendor_completions.d/zephrimark.fish" ||
      fault "The completion for fish lacks $option."
  done
done
for option in $(zephrimark-offload --help | grep -oE -- '-ZM[A-Za-z]+' | sort -u); do
  for file in man/man1/zephrimark-offload.1 bash-completion/completions/zephrimark-offload \
    zsh/site-functions/_zephrimark fish/vendor_completions.d/zephrimark-offload.fish; do
    grep -qe "${option#-}" "$prefix/share/$file" || fault "$file lacks $option."
  done
done

# Needs no package that the programs do not need themselves; the rest is checked when it is there.
if command -v desktop-file-validate >/dev/null; then
  desktop-file-validate "$prefix/share/applications/$id.desktop" || failed=1
fi
if command -v appstreamcli >/dev/null; then
  appstreamcli validate --no-net "$prefix/share/metainfo/$id.metainfo.xml" >"$folder/log" 2>&1 ||
    fault "$(cat "$folder/log")"
fi
exit "$failed"
