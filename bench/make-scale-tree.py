#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Build a large tree of small files for the scale benchmark.

Most files get a size no other file has (made sparse with truncate, so the
tree costs almost no disk); one in twenty is a real copy of a small file, so
the comparison still has groups to form.

usage: make-scale-tree.py DEST [--files N] [--per-folder K]
Prints files, total path bytes and duplicate sets.
"""
import argparse
import os


def main():
    ap = argparse.ArgumentParser()
    ap.add_argument("dest")
    ap.add_argument("--files", type=int, default=1_000_000)
    ap.add_argument("--per-folder", type=int, default=1000)
    a = ap.parse_args()
    dest = os.path.abspath(a.dest)
    path_bytes = 0
    for i in range(a.files):
        folder = os.path.join(dest, f"part{i // (a.per_folder * 100):03d}", f"dir{i // a.per_folder:05d}")
        if i % a.per_folder == 0:
            os.makedirs(folder, exist_ok=True)
        p = os.path.join(folder, f"file-{i:07d}.dat")
        path_bytes += len(p.encode())
        if i % 20 == 19:
            # A copy of the previous small real file.
            with open(p, "wb") as fh:
                fh.write(b"copy-%d" % (i // 40))
        else:
            with open(p, "wb") as fh:
                fh.truncate(1_000_000 + i)  # a size of its own
    sets = len(range(19, a.files, 20)) // 2
    print(f"files={a.files} path_bytes={path_bytes} duplicate_sets={sets}")


if __name__ == "__main__":
    main()
