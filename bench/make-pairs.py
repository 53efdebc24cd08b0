#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Makes N groups of two small identical files, a thousand groups a folder.

usage: bench/make-pairs.py FOLDER N
"""
import os
import sys

root, n = sys.argv[1], int(sys.argv[2])
for i in range(n):
    d = os.path.join(root, f"{i // 1000:03d}")
    os.makedirs(d, exist_ok=True)
    for side in ("a", "b"):
        with open(os.path.join(d, f"{i}-{side}"), "w") as f:
            f.write(f"group {i}\n")
