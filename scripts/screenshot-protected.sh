#!/usr/bin/env bash
# Takes docs/main-window-protected.png: the main window with two folders, the
# first of them protected. Same set-up as the other screenshot scripts.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/screenshot-setup.sh
mkdir -p "$demo/Photo library" "$demo/Downloads"

display=:$((90 + RANDOM % 9))
Xvfb "$display" -screen 0 1100x800x24 -nolisten tcp &
xvfb=$!
trap 'kill "$app" "$xvfb" 2>/dev/null || true; rm -rf "$demo"' EXIT
export DISPLAY=$display
sleep 1
"$APP" &
app=$!
main=$(xdotool search --sync --onlyvisible --name '^Twinsweep$' | head -n 1)
sleep 1

# Each folder through the folder dialog (Ctrl+O): its name field has the focus.
for folder in "$demo/Photo library" "$demo/Downloads"; do
  xdotool mousemove --window "$main" 577 67 click 1
  xdotool search --sync --onlyvisible --name '^Select Folder' >/dev/null
  sleep 0.5
  xdotool type --delay 5 "$folder"
  xdotool key Return
  sleep 1
done
# The first row's Protected box, at the right end of the folder table.
xdotool mousemove --window "$main" "${PROTECT_X:-467}" "${PROTECT_Y:-91}" click 1
sleep 0.5
import -window "$main" docs/main-window-protected.png
echo "docs/main-window-protected.png written"
