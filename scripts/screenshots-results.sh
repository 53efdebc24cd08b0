#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Takes the screenshots of the results, custom keep rules and file information
# windows in docs/ from the real application on a virtual display: a small
# demo folder of pictures, music and documents is searched, a keep option is
# chosen, then the other two windows are opened from the results window.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/screenshot-setup.sh
python3 - "$demo" <<'PY'
import os, random, struct, sys, zlib
root = sys.argv[1]
rng = random.Random(7)
def write(rel, data):
    path = os.path.join(root, rel)
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path, "wb") as f:
        f.write(data)
def png(width, height, seed):
    r = random.Random(seed)
    c1 = [r.randrange(256) for _ in range(3)]
    c2 = [r.randrange(256) for _ in range(3)]
    rows = b""
    for y in range(height):
        rows += b"\0"
        for x in range(width):
            t = (x + y) / (width + height)
            # A little grain keeps the file above the default minimum size.
            rows += bytes(min(255, int(a + (b - a) * t) + r.randrange(24)) for a, b in zip(c1, c2))
    def chunk(kind, body):
        return struct.pack(">I", len(body)) + kind + body + struct.pack(">I", zlib.crc32(kind + body))
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0))
            + chunk(b"IDAT", zlib.compress(rows)) + chunk(b"IEND", b""))
for i, name in enumerate(["Beach", "Mountains", "Birthday", "Garden"]):
    data = png(400, 300, i)
    write(f"Pictures/{name}.png", data)
    write(f"Pictures/Backup/{name}.png", data)
    if i % 2 == 0:
        write(f"Desktop/{name} copy.png", data)
for i in range(6):
    data = rng.randbytes(600_000 + i * 1000)
    write(f"Music/Album/track_{i}.mp3", data)
    write(f"Downloads/track_{i}.mp3", data)
for name in ["Report", "Invoice"]:
    data = rng.randbytes(300_000)
    write(f"Documents/{name}.pdf", data)
    write(f"Documents/Old/{name}.pdf", data)
PY

start_app 1280x900
add_folder "$demo"
xdotool windowfocus --sync "$main"
xdotool key ctrl+f # Find Duplicate Files
results=$(xdotool search --sync --onlyvisible --name '^Duplicate Files$' | head -n 1)
xdotool windowmove "$results" 0 0
sleep 1
# Keep the oldest copy of every group, and show a picture's copies. Commands
# go by their shortcuts, which stay put when the layout moves.
xdotool windowfocus --sync "$results"
xdotool key ctrl+shift+a # Apply to All Groups
xdotool key ctrl+2       # Keep Oldest
sleep 1
# Rows are 22 pixels apart; the dark style starts the tables lower.
row0=$([ "${SHOT_MODE:-}" = dark ] && echo 147 || echo 129)
click_at "$results" 100 $((row0 + 7 * 22)) # a picture
sleep 0.5
click_at "$results" 600 $((row0 + 22)) # its second copy
sleep 0.5
import -window "$results" docs/results-window$suffix.png

xdotool key ctrl+i # File Info
info=$(xdotool search --sync --onlyvisible --name '^File Information$' | head -n 1)
sleep 1.5
import -window "$info" docs/info-window$suffix.png
xdotool windowfocus --sync "$info"
xdotool key Escape
sleep 0.5

xdotool windowfocus --sync "$results"
xdotool key ctrl+shift+a # untick Apply to All Groups
xdotool key ctrl+5       # Custom...
custom=$(xdotool search --sync --onlyvisible --name '^Custom Selection$' | head -n 1)
sleep 1
import -window "$custom" docs/custom-keep-window$suffix.png
xdotool key Escape
echo "screenshots written to docs/"
