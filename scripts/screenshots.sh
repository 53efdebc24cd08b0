#!/usr/bin/env bash
# Takes the screenshots in docs/ from the real application on a virtual
# display: the main window with a folder added, the progress window during a
# search, and the window that follows it. Needs root or sudo for packages and,
# when run as root, a demo folder under /mnt (the search only looks under
# /home, /opt, /media, /mnt and /run/media).
set -euo pipefail
cd "$(dirname "$0")/.."
SUDO=""
if [ "$(id -u)" -ne 0 ]; then SUDO="sudo"; fi
need=()
for p in imagemagick xdotool xvfb; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || need+=("$p")
done
if [ "${#need[@]}" -gt 0 ]; then
  $SUDO apt-get update -q
  $SUDO DEBIAN_FRONTEND=noninteractive apt-get install -y -q --no-install-recommends "${need[@]}"
fi
BUILD_DIR=${BUILD_DIR:-build}
[ -f "$BUILD_DIR/CMakeCache.txt" ] || bash scripts/build.sh
cmake --build "$BUILD_DIR" --target twinsweep
APP=$PWD/$BUILD_DIR/src/ui/twinsweep

case "$HOME" in
  /home/*) demo="$HOME/twinsweep-demo" ;;
  *) demo=/mnt/twinsweep-demo ;;
esac
rm -rf "$demo"
mkdir -p "$demo/Photos/2023" "$demo/Photos/Backup" "$demo/Music" "$demo/Downloads"
# Enough data that the search is still running when the picture is taken.
for i in $(seq 1 12); do
  head -c $((40 * 1024 * 1024)) /dev/urandom > "$demo/Photos/2023/IMG_$i.jpg"
  cp "$demo/Photos/2023/IMG_$i.jpg" "$demo/Photos/Backup/IMG_$i copy.jpg"
done
for i in $(seq 1 400); do
  head -c $((300 * 1024 + i)) /dev/urandom > "$demo/Music/track_$i.mp3"
done
cp "$demo/Music/track_7.mp3" "$demo/Downloads/track_7 (1).mp3"
sync

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

# Add the demo folder through the folder dialog: its name field has the focus.
xdotool mousemove --window "$main" 577 67 click 1
picker=$(xdotool search --sync --onlyvisible --name '^Add Folders$' | head -n 1)
sleep 0.5
xdotool type --delay 5 "$demo"
xdotool key Return
sleep 1
import -window "$main" docs/main-window.png

# Start the search and catch the progress window while it works.
xdotool mousemove --window "$main" 568 699 click 1
progress=$(xdotool search --sync --onlyvisible --name '^Searching for Duplicate Files$' | head -n 1)
sleep 0.8
import -window "$progress" docs/progress-window.png

results=$(xdotool search --sync --onlyvisible --name '^Duplicate Files$' | head -n 1)
sleep 0.5
import -window "$results" docs/results-window.png
echo "screenshots written to docs/ (picker window $picker)"
