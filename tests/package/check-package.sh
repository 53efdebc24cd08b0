#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Builds the Debian package from BUILD_DIR and checks what it holds.
# Usage: check-package.sh BUILD_DIR SOURCE_DIR
set -uo pipefail
build=$1
source=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failures=0
fail() {
  echo "FAIL: $*"
  failures=$((failures + 1))
}

cpack --config "$build/CPackConfig.cmake" -G DEB -B "$work/out" >"$work/cpack.log" 2>&1 ||
  { cat "$work/cpack.log"; echo "FAIL: cpack"; exit 1; }
deb=$(ls "$work"/out/twinsweep_*.deb)
echo "built $(basename "$deb")"

# The file list, exactly: nothing missing, nothing extra (no tests, no
# static libraries).
id=io.github.twinsweep.Twinsweep
{
  printf '%s\n' usr/bin/twinsweep usr/bin/twinsweep-cli \
    "usr/share/applications/$id.desktop" "usr/share/metainfo/$id.metainfo.xml" \
    "usr/share/icons/hicolor/scalable/apps/$id.svg" \
    usr/share/man/man1/twinsweep.1.gz usr/share/man/man1/twinsweep-cli.1.gz \
    usr/share/bash-completion/completions/twinsweep-cli \
    usr/share/doc/twinsweep/copyright usr/share/doc/twinsweep/changelog.gz \
    usr/share/twinsweep/translations/twinsweep_de.qm
  for page in removing-duplicates custom-selection; do
    printf 'usr/share/twinsweep/help/%s\n' "$page.html" "$page.de.html"
  done
  shopt -s nullglob
  for doc in "$source"/docs/*.md "$source"/docs/*.png; do echo "usr/share/doc/twinsweep/$(basename "$doc")"; done
} | sort >"$work/expected"
dpkg-deb --fsys-tarfile "$deb" | tar -t | grep -v '/$' | sed 's|^\./||' | sort >"$work/actual"
diff -u "$work/expected" "$work/actual" >"$work/list.diff" || { cat "$work/list.diff"; fail "file list"; }

# Library dependencies come from dpkg-shlibdeps; the run-time plugins are named.
depends=$(dpkg-deb -f "$deb" Depends)
for dep in libc6 libqt6widgets6 libssl3 qt6-qpa-plugins libqt6svg6; do
  [[ ", $depends," == *", $dep "* || ", $depends," == *", $dep,"* ]] || fail "Depends lacks $dep: $depends"
done

# Who made it, where it lives, what it needs to open pages and folders.
field() { dpkg-deb -f "$deb" "$1"; }
[ "$(field Maintainer)" = "Twinsweep developers <twinsweep@users.noreply.github.com>" ] ||
  fail "Maintainer: $(field Maintainer)"
[ "$(field Homepage)" = "https://github.com/twinsweep/twinsweep" ] || fail "Homepage: $(field Homepage)"
[[ ", $(field Recommends)," == *", xdg-utils,"* ]] || fail "Recommends lacks xdg-utils: $(field Recommends)"
[[ ", $(field Recommends)," == *", qt6-translations-l10n,"* ]] ||
  fail "Recommends lacks qt6-translations-l10n: $(field Recommends)"

root=$work/root
dpkg-deb -x "$deb" "$root"
grep -q '^License: GPL-3+$' "$root/usr/share/doc/twinsweep/copyright" || fail "copyright names no GPL-3+"
if grep -rIlE '\.example([^a-z]|$)' "$root" "$source/data" >"$work/example.log"; then
  cat "$work/example.log"
  fail "a reserved example domain"
fi
desktop=$root/usr/share/applications/$id.desktop
desktop-file-validate "$desktop" || fail "desktop-file-validate"
appstreamcli validate --no-net "$root/usr/share/metainfo/$id.metainfo.xml" >"$work/as.log" 2>&1 ||
  { cat "$work/as.log"; fail "appstreamcli validate"; }
icon=$(sed -n 's/^Icon=//p' "$desktop")
[ -f "$root/usr/share/icons/hicolor/scalable/apps/$icon.svg" ] || fail "no icon named $icon"
grep -q "<launchable type=\"desktop-id\">$id.desktop</launchable>" \
  "$root/usr/share/metainfo/$id.metainfo.xml" || fail "metainfo does not launch $id.desktop"
# Licence, homepage and every screenshot, by its raw address in the repository.
python3 - "$root/usr/share/metainfo/$id.metainfo.xml" >"$work/meta" <<'PY'
import sys, xml.etree.ElementTree as E
c = E.parse(sys.argv[1]).getroot()
print(c.findtext("project_license"))
print(c.find("url[@type='homepage']").text)
for image in c.iter("image"):
    print(image.text)
PY
shots=$(cd "$source/docs" && ls -- *.png | grep -v -e protected -e -2x -e -dark -e -de | sed 's|^|https://raw.githubusercontent.com/twinsweep/twinsweep/main/docs/|' | sort)
expected_meta=$(printf 'GPL-3.0-or-later\nhttps://github.com/twinsweep/twinsweep\n%s' "$shots")
[ "$(head -n 2 "$work/meta"; tail -n +3 "$work/meta" | sort)" = "$expected_meta" ] ||
  { cat "$work/meta"; fail "metainfo licence, homepage or screenshots"; }
python3 -c 'import sys, xml.etree.ElementTree as E; E.parse(sys.argv[1])' \
  "$root/usr/share/icons/hicolor/scalable/apps/$id.svg" || fail "icon is not well-formed SVG"

# The manual page and the completion know exactly the options --help lists
# (each from where it lists its options, not from examples or prose).
cli=$root/usr/bin/twinsweep-cli
options() { grep -oE -- '--[a-z][a-z-]*' | sort -u; }
"$cli" --help | grep -E '^  --' | options >"$work/help-options"
[ -s "$work/help-options" ] || fail "twinsweep-cli --help lists no options"
zcat "$root/usr/share/man/man1/twinsweep-cli.1.gz" | awk '/^\.TP/ { getline; print }' |
  sed 's/\\-/-/g' | options >"$work/man-options"
sed -n "/compgen -W '--/,/' -- /p" "$root/usr/share/bash-completion/completions/twinsweep-cli" |
  options >"$work/completion-options"
for other in man completion; do
  diff -u "$work/help-options" "$work/$other-options" >"$work/$other.diff" ||
    { cat "$work/$other.diff"; fail "options in --help and the $other differ"; }
done
# The window program answers --help and --version without a display.
app=$root/usr/bin/twinsweep
out=$(env -u DISPLAY -u WAYLAND_DISPLAY QT_QPA_PLATFORM=xcb "$app" --version 2>&1)
[ $? -eq 0 ] && [ "$out" = "twinsweep 0.1.0" ] || fail "twinsweep --version gave: $out"
out=$(env -u DISPLAY -u WAYLAND_DISPLAY QT_QPA_PLATFORM=xcb "$app" -style x --help 2>/dev/null)
[ $? -eq 0 ] && [ "$(head -n 1 <<<"$out")" = "Usage: twinsweep [Qt options]" ] ||
  fail "twinsweep --help gave: $out"
version=$("$cli" --version)
zcat "$root/usr/share/man/man1/twinsweep-cli.1.gz" | grep -q "\"Twinsweep ${version##* }\"" ||
  fail "manual page is not for version ${version##* }"
for page in "$root"/usr/share/man/man1/*.gz; do
  warnings=$(LC_ALL=C.UTF-8 MANROFFSEQ='' MANWIDTH=80 man --warnings -E UTF-8 -l -Tutf8 -Z "$page" 2>&1 >/dev/null)
  [ -z "$warnings" ] || fail "man warnings in $(basename "$page"): $warnings"
done

if [ -f /usr/share/bash-completion/bash_completion ]; then
  got=$(bash -c '
    source /usr/share/bash-completion/bash_completion
    source "$1"
    complete_line() {
      COMP_WORDS=(twinsweep-cli "$@"); COMP_CWORD=$#
      COMP_LINE="${COMP_WORDS[*]}"; COMP_POINT=${#COMP_LINE}; COMPREPLY=()
      _twinsweep_cli twinsweep-cli "${COMP_WORDS[-1]}" "${COMP_WORDS[-2]}"
      echo "${COMPREPLY[*]}"
    }
    complete_line --ke; complete_line --keep ""; complete_line --format=j' _ \
    "$root/usr/share/bash-completion/completions/twinsweep-cli")
  [ "$got" = $'--keep --keep-one\noldest newest all none\njson' ] || fail "completion gave: $got"
else
  echo "bash-completion not installed: completion behaviour not checked"
fi

if command -v lintian >/dev/null; then
  # Root is warned against but harmless for a package that is only read.
  # Information tags shown too: none of them may be about hardening.
  report=$(lintian --fail-on error,warning --display-info "$deb" 2>&1)
  rc=$?
  grep -v 'running with root privileges' <<<"$report"
  [ $rc -eq 0 ] || fail "lintian"
  ! grep -q 'hardening' <<<"$report" || fail "lintian finds the programs unhardened"
else
  echo "lintian not installed: skipped"
fi

[ "$failures" -eq 0 ] && echo "package checks passed"
[ "$failures" -eq 0 ]
