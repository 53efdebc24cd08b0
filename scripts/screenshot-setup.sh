# SPDX-License-Identifier: GPL-3.0-or-later
# Sourced by the screenshot scripts: installs the capture tools, builds the
# application (APP) and picks a fresh demo folder (demo) where the search looks
# (under the home folder, or /mnt when run as root).
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
# TWINSWEEP_APP names a program to use instead, e.g. the installed one.
if [ -n "${TWINSWEEP_APP:-}" ]; then
  APP=$TWINSWEEP_APP
else
  BUILD_DIR=${BUILD_DIR:-build}
  [ -f "$BUILD_DIR/CMakeCache.txt" ] || bash scripts/build.sh
  cmake --build "$BUILD_DIR" --target twinsweep
  APP=$PWD/$BUILD_DIR/src/ui/twinsweep
fi

case "$HOME" in
  /home/*) demo="$HOME/twinsweep-demo" ;;
  *) demo=/mnt/twinsweep-demo ;;
esac
rm -rf "$demo"

# Starts a virtual display of the given size (e.g. 1100x800) and the
# application on it; main is its main window. Both stop, and the demo folder
# goes, when the script ends.
start_app() {
  display=:$((90 + RANDOM % 9))
  Xvfb "$display" -screen 0 "$1x24" -nolisten tcp &
  xvfb=$!
  trap 'kill "$app" "$xvfb" 2>/dev/null || true; rm -rf "$demo"' EXIT
  export DISPLAY=$display
  sleep 1
  "$APP" &
  app=$!
  main=$(xdotool search --sync --onlyvisible --name '^Twinsweep$' | head -n 1)
  sleep 1
}

# Adds a folder through the folder dialog (Add Folder, Ctrl+O): its name
# field has the focus.
add_folder() {
  xdotool windowfocus --sync "$main"
  xdotool key ctrl+o
  xdotool search --sync --onlyvisible --name '^Select Folder\(s\)' >/dev/null
  sleep 0.5
  xdotool type --delay 5 "$1"
  xdotool key Return
  sleep 1
}
