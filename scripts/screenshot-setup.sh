# SPDX-License-Identifier: GPL-3.0-or-later
# Sourced by the screenshot scripts: installs the capture tools, builds the
# application (APP) and picks a fresh demo folder (demo) where the search looks
# (under the home folder, or /mnt when run as root).
# SHOT_MODE picks how the windows look: unset for the usual pictures, "2x" for
# a screen at twice the scale (QT_SCALE_FACTOR=2), "dark" for GNOME's dark
# Adwaita style; suffix ("", "-2x", "-dark") goes into each picture's name and
# scale multiplies the positions clicked.
SUDO=""
if [ "$(id -u)" -ne 0 ]; then SUDO="sudo"; fi
need=()
suffix=""
scale=1
APP_ARGS=()
shot_packages=(imagemagick xdotool xvfb)
case "${SHOT_MODE:-}" in
  "") ;;
  2x) suffix=-2x scale=2 && export QT_SCALE_FACTOR=2 ;;
  dark) suffix=-dark APP_ARGS=(-style Adwaita-Dark) shot_packages+=(adwaita-qt6) ;;
  *) echo "SHOT_MODE is 2x, dark or unset" >&2 && exit 2 ;;
esac
for p in "${shot_packages[@]}"; do
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
  local width=${1%x*} height=${1#*x}
  Xvfb "$display" -screen 0 "$((width * scale))x$((height * scale))x24" -nolisten tcp &
  xvfb=$!
  trap 'kill "$app" "$xvfb" 2>/dev/null || true; rm -rf "$demo"' EXIT
  export DISPLAY=$display
  sleep 1
  "$APP" "${APP_ARGS[@]}" &
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

# Clicks at a position given for the usual scale, inside the window $1.
click_at() {
  xdotool mousemove --window "$1" "$(($2 * scale))" "$(($3 * scale))" click 1
}
