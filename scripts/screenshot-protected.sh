#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Takes docs/main-window-protected.png (or its -2x or -dark form): the main
# window with two folders, the first of them protected. Same set-up as the other screenshot scripts.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/screenshot-setup.sh
mkdir -p "$demo/Photo library" "$demo/Downloads"

start_app 1100x800

add_folder "$demo/Photo library"
add_folder "$demo/Downloads"
# The first row's Protected box, at the right end of the folder table (in the
# dark style: PROTECT_X=570 PROTECT_Y=93).
click_at "$main" "${PROTECT_X:-587}" "${PROTECT_Y:-91}"
sleep 0.5
import -window "$main" docs/main-window-protected$suffix.png
echo "docs/main-window-protected$suffix.png written"
