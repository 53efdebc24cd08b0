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
