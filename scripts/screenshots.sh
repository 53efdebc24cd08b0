#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Takes the screenshots in docs/ from the real application on a virtual
# display: the main window with a folder added, the progress window during a
# search, and the window that follows it. Needs root or sudo for packages and,
# when run as root, a demo folder under /mnt (the search only looks under
# /home, /opt, /media, /mnt and /run/media).
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/screenshot-setup.sh
# Enough data that the search is still running when the picture is taken:
# large copies first, then many same-size files that must all be read.
python3 - "$demo" <<'PY'
import os, random, sys
root = sys.argv[1]
rng = random.Random(5)
pool = rng.randbytes(48 * 1024 * 1024)
def write(rel, size, seed):
    path = os.path.join(root, rel)
    os.makedirs(os.path.dirname(path), exist_ok=True)
    start = (seed * 7919) % (len(pool) - size)
    with open(path, "wb") as f:
        f.write(pool[start:start + size])
for i in range(12):
    write(f"Videos/clip_{i}.mp4", 40 * 1024 * 1024, i)
    write(f"Videos/Backup/clip_{i} copy.mp4", 40 * 1024 * 1024, i)
for i in range(1600):
    size = 300 * 1024 + i % 400
    write(f"Music/Album {i % 40}/track_{i}.mp3", size, 1000 + i)
    if i % 2 == 0:
        write(f"Photos/Backup/{i % 10}/track_{i}.mp3", size, 1000 + i)
PY
sync
# A first search meets a cold cache: it runs long enough to show the time left.
if [ "$(id -u)" -eq 0 ]; then echo 3 >/proc/sys/vm/drop_caches; fi

start_app 1100x800

add_folder "$demo"
import -window "$main" docs/main-window$suffix.png

# Start the search and catch the progress window while it works.
xdotool windowfocus --sync "$main"
xdotool key ctrl+f # Find Duplicate Files
progress=$(xdotool search --sync --onlyvisible --name '^Searching for Duplicate Files$' | head -n 1)
# Frames while it runs; the last whole one shows it furthest along.
frames=$(mktemp -d)
n=0
while xdotool search --onlyvisible --name '^Searching for Duplicate Files$' >/dev/null 2>&1; do
  n=$((n + 1))
  import -window "$progress" "$frames/$n.png" 2>/dev/null || break
  sleep 0.4
done
[ "$n" -gt 2 ] && n=$((n - 1)) # the very last one may be of a closing window
cp "$frames/$n.png" docs/progress-window$suffix.png
rm -rf "$frames"

results=$(xdotool search --sync --onlyvisible --name '^Duplicate Files$' | head -n 1)
sleep 0.5
import -window "$results" docs/results-window$suffix.png
echo "screenshots written to docs/"
