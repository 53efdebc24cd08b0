#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Installs the Debian packages the project needs to build and run; with --test,
# also what its tests need. Idempotent and non-interactive.
set -euo pipefail
export DEBIAN_FRONTEND=noninteractive
SUDO=""
if [ "$(id -u)" -ne 0 ]; then SUDO="sudo"; fi
# What building, packaging and running need.
PACKAGES=(
  build-essential cmake ninja-build pkg-config git python3 file
  qt6-base-dev qt6-base-dev-tools qt6-image-formats-plugins libqt6svg6 qt6-qpa-plugins
  qt6-tools-dev qt6-l10n-tools qt6-translations-l10n
  libgl-dev libxkbcommon-dev
  libssl-dev libutf8proc-dev libsqlite3-dev
  adwaita-icon-theme hicolor-icon-theme xdg-utils
)
# What the tests add (scripts/test.sh asks for them with --test).
TEST_PACKAGES=(
  libgtest-dev libgmock-dev
  clang-format trash-cli
  xvfb xauth
  locales
  desktop-file-utils appstream lintian bash-completion man-db
  xfsprogs btrfs-progs
)
if [ "${1:-}" = --test ]; then PACKAGES+=("${TEST_PACKAGES[@]}"); fi
missing=()
for p in "${PACKAGES[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
if [ "${#missing[@]}" -gt 0 ]; then
  $SUDO apt-get update -q
  $SUDO apt-get install -y -q --no-install-recommends "${missing[@]}"
fi
# The tests check that number texts ignore the locale with a German one.
if [ "${1:-}" = --test ] && ! locale -a 2>/dev/null | grep -qi '^de_DE\.utf-\?8$'; then
  $SUDO localedef -i de_DE -c -f UTF-8 de_DE.UTF-8
fi
