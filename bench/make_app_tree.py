#!/usr/bin/env python3
"""make_app_tree.py OUT: a tree of 100 x 200 folders (20,100 in all) holding 5,000
application bundles (one in every fourth subfolder), a few files in every folder
and 100 symbolic links to applications in other folders. Made once; an existing
tree with the same marker file is kept."""
import os
import sys

TOP, SUB, EVERY = 100, 200, 4
out = sys.argv[1]
marker = os.path.join(out, ".tree-v1")
if os.path.exists(marker):
    sys.exit(0)
os.makedirs(out, exist_ok=True)
info = ('<?xml version="1.0" encoding="UTF-8"?>\n<plist version="1.0"><dict>'
        '<key>CFBundleIdentifier</key><string>org.example.app{n}</string>'
        '<key>CFBundleExecutable</key><string>App</string></dict></plist>\n')
apps = []
for top in range(TOP):
    top_dir = os.path.join(out, f"Group {top:03d}")
    os.makedirs(top_dir, exist_ok=True)
    with open(os.path.join(top_dir, "README.txt"), "w") as f:
        f.write("documents beside applications\n")
    for sub in range(SUB):
        sub_dir = os.path.join(top_dir, f"Folder {sub:03d}")
        os.makedirs(sub_dir, exist_ok=True)
        with open(os.path.join(sub_dir, "notes.txt"), "w") as f:
            f.write("x\n")
        if sub % EVERY == 0:
            n = len(apps)
            bundle = os.path.join(sub_dir, f"Application {n}.app")
            os.makedirs(os.path.join(bundle, "Contents", "MacOS"), exist_ok=True)
            with open(os.path.join(bundle, "Contents", "Info.plist"), "w") as f:
                f.write(info.format(n=n))
            with open(os.path.join(bundle, "Contents", "MacOS", "App"), "w") as f:
                f.write("#!/bin/sh\n")
            apps.append(bundle)
for i in range(100):
    target = apps[(i * 37) % len(apps)]
    os.symlink(target, os.path.join(out, f"Group {(i * 13) % TOP:03d}", f"Link {i}.app"))
open(marker, "w").close()
