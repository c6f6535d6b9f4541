#!/usr/bin/env bash
# Run by test-package.sh as root of a bare Debian, with the package beside it.
set -euo pipefail
package=$(echo /root/zephrimark-offload_*.deb)
export DEBIAN_FRONTEND=noninteractive

step() { printf '\n== %s\n' "$*"; }
fail() {
  echo "FAILED: $*"
  exit 1
}
add() {
  apt-get install -y -q --no-install-recommends "$@" >/root/apt.log 2>&1 ||
    { cat /root/apt.log && exit 1; }
}
# All files but what package tools keep for themselves.
files() {
  find / -xdev \( -path /proc -o -path /sys -o -path /dev -o -path /tmp -o -path /root \
    -o -path /run -o -path /home -o -path /var/lib/apt -o -path /var/cache -o -path /var/log \) \
    -prune -o -print | sort
}

step "Install with what it depends on, and nothing that it only recommends"
apt-get update -q
add "$package"
dpkg -L zephrimark-offload
for name in $(dpkg-deb -f "$package" Recommends | tr ',' '\n' | awk '{print $1}'); do
  apt-cache show "$name" >/dev/null || fail "There is no package $name to recommend."
done

step "Offload a folder as an ordinary user"
useradd --create-home kim
runuser -u kim -- bash -euc '
  cd
  mkdir -p card/DCIM
  cp -r /usr/share/icons/hicolor /usr/lib/os-release card/DCIM/
  head -c 20000000 /dev/urandom >card/DCIM/A001.MOV
  zephrimark --version
  zephrimark offload --template first card T7 Backup
  for drive in T7 Backup; do diff -r card/DCIM $drive/first/DCIM; done
  zephrimark offload --template first card T7 Backup
  zephrimark cards
  zephrimark disks'

step "The polkit action"
add polkitd pkexec dbus
mkdir -p /run/dbus
dbus-daemon --system --fork
/usr/lib/polkit-1/polkitd --no-debug &
for _ in $(seq 50); do
  pkaction --verbose --action-id com.zephrimark.offload.open-device >/root/action 2>&1 && break
  sleep 0.2
done
cat /root/action
helper=$(sed -n 's/.*exec.path -> //p' /root/action)
[ -x "$helper" ] || fail "The action's helper \"$helper\" is not there."

step "The window"
# Not the virtual screen's own wrapper: it pulls in more than the screen.
add xvfb x11-utils imagemagick
Xvfb :7 -screen 0 1000x900x24 -nolisten tcp >/dev/null 2>&1 &
for _ in $(seq 50); do DISPLAY=:7 xwininfo -root >/dev/null 2>&1 && break || sleep 0.2; done
install -d -m 700 -o kim /run/kim
runuser -u kim -- env DISPLAY=:7 XDG_RUNTIME_DIR=/run/kim zephrimark-offload \
  -ZMSource /home/kim/card -ZMDestinations /home/kim/T7:/home/kim/Backup >/root/window.log 2>&1 &
window=$!
for _ in $(seq 100); do
  DISPLAY=:7 xwininfo -root -tree | grep -q '"Zephrimark Offload"' && break
  sleep 0.2
done
sleep 3
DISPLAY=:7 xwininfo -root -tree | tee /root/windows | grep Zephrimark ||
  fail "No window: $(cat /root/window.log)"
class=$(sed -n 's/^StartupWMClass=//p' /usr/share/applications/com.zephrimark.offload.desktop)
grep -q "\"$class\")" /root/windows || fail "The desktop entry expects the class $class."
DISPLAY=:7 import -window root /root/window.png
kill "$window" 2>/dev/null || true
wait "$window" || true
cat /root/window.log
! grep -E 'is not installed|Cannot|Failed|unavailable|not found' /root/window.log ||
  fail "A piece of the window is missing."
[ "$(identify -format %k /root/window.png)" -gt 500 ] || fail "The window is empty."

step "The manual"
add man-db
for page in zephrimark zephrimark-offload; do
  man --warnings "$page" 2>/root/man.warnings | cat >/root/man.txt
  cat /root/man.txt
  grep -q 'EXIT STATUS' /root/man.txt || fail "$page(1) does not render."
  [ ! -s /root/man.warnings ] || fail "$page(1): $(cat /root/man.warnings)"
done

step "Completions"
add bash-completion zsh fish
bash -ec '
  . /usr/share/bash-completion/bash_completion
  compopt() { :; }
  # completes EXPECTED WORD...: the last word is completed.
  completes() {
    COMP_WORDS=("${@:2}") COMP_CWORD=$(($# - 2)) COMPREPLY=()
    __load_completion "$2"
    $(complete -p "$2" | sed "s/.*-F \([^ ]*\) .*/\1/")
    echo "bash: ${*:2} -> ${COMPREPLY[*]}"
    [[ " ${COMPREPLY[*]} " == *" $1 "* ]]
  }
  completes offload zephrimark o
  completes --checksum zephrimark offload --ch
  completes sha256 zephrimark offload --checksum ""
  completes --all zephrimark disks -
  completes /usr zephrimark offload /us
  completes -ZMSource zephrimark-offload -ZMS
  completes /usr zephrimark-offload -ZMDestinations /tmp : /us'
cat >/root/zsh.sh <<'ZSH'
zmodload zsh/zpty
completes() {
  zpty shell zsh -f -i
  zpty -w shell 'autoload -U compinit; compinit -u; PS1=; LISTMAX=0; zstyle ":completion:*" menu no'
  zpty -w -n shell "$2"$'\t\t'
  local all= part; local -i n
  for n in {1..30}; do
    while zpty -r -t shell part; do all+=$part; done
    [[ $all == *"$1"* ]] && break
    sleep 0.2
  done
  zpty -d shell
  print -r -- "zsh: $2 -> ${${all##*$2}//[^[:print:]]/ }"
  [[ $all == *"$1"* ]] || exit 1
}
completes 'zephrimark offload' 'zephrimark off'
completes '--checksum' 'zephrimark offload --ch'
completes 'sha256' 'zephrimark offload --checksum '
completes '--all' 'zephrimark disks --a'
completes '-ZMAutoStart' 'zephrimark-offload -ZMA'
ZSH
zsh -f /root/zsh.sh
fish -c '
  function completes
    set -l found (complete -C $argv[2] | string replace -r "\t.*" "")
    echo "fish: $argv[2] -> $found"
    contains -- $argv[1] $found; or exit 1
  end
  completes offload "zephrimark o"
  completes --checksum "zephrimark offload --ch"
  completes sha256 "zephrimark offload --checksum "
  completes --all "zephrimark disks --a"
  completes /usr/ "zephrimark offload /us"
  completes -ZMSource "zephrimark-offload -ZMS"'

step "Remove"
# First all that only this test brought, so that what the package itself leaves can be told.
files | grep -i zephrimark
apt-get purge -y -q zephrimark-offload
! files | grep -i zephrimark || fail "Files are left."
! dpkg -s zephrimark-offload >/dev/null 2>&1 || fail "dpkg still knows it."
! grep -rli --exclude='*-old' zephrimark /etc /usr/share/applications /usr/share/mime \
  /usr/share/icons /var/lib/dpkg ||
  fail "It is still named somewhere."
files >/root/files.tools
add "$package"
apt-get purge -y -q zephrimark-offload
files | diff /root/files.tools - ||
  fail "Installing and removing it changed the files of the system."
echo "Nothing is left."
