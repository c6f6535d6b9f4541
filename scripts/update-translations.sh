#!/usr/bin/env bash
# Collects the texts of the sources into Translations/zephrimark_*.ts, where they are translated.
#   scripts/update-translations.sh          all languages
#   scripts/update-translations.sh FILE.ts  that file, also a new one: zephrimark_fr.ts
set -euo pipefail
. "$(dirname "$(readlink -f "$0")")/common.sh"

install_missing qt6-l10n-tools
cd "$root"
files=("$@")
[ $# -gt 0 ] || files=(Translations/zephrimark_*.ts)
/usr/lib/qt6/bin/lupdate -no-obsolete -locations none -I . \
  -tr-function-alias QT_TRANSLATE_NOOP+=translatable \
  TextKit DeviceKit OffloadKit CommandLine Updates ZephrimarkUI ZephrimarkOffload -ts "${files[@]}"
