#!/usr/bin/env python3
"""Writes a large, realistic controller domain (about 2 MB as XML): 100 groups of
100 applications with alias data, 1,000 custom applications and an Open menu
with 200 folders. Usage: make_large_domain.py OUT.xml OUT.bplist"""
import plistlib
import random
import sys

rng = random.Random(7)


def alias(path):
    # Stands in for a file-identity record: a header, the path and some identity bytes.
    return b"CVAL\x01" + bytes(rng.randrange(256) for _ in range(8))


def app(i):
    name = f"App {i:05d}"
    path = f"/Applications/{name}.app"
    return {"Name": name, "Path": path, "AliasData": alias(path)}


domain = {
    "TurnOnCorvalis": True,
    "ShowIcons": True,
    "HotKeys": [{"Character": c, "Modifiers": 4608, "VirtualKeyCode": 1018 + i, "Position": 0}
                for i, c in enumerate(b"oqse")],
    "Groups": [{"Name": "ExcludedApplications", "CanBeDeleted": False, "Hide": False, "AutoOpen": False,
                "Applications": []}]
              + [{"Name": f"Group {g}", "CanBeDeleted": True, "Hide": False, "AutoOpen": g % 2 == 0,
                  "Applications": [app(g * 100 + a) for a in range(100)]} for g in range(100)],
    "CustomApplications": [dict(app(20000 + i), Options={"LaunchIn32BitMode": False, "Hide": i % 3 == 0})
                           for i in range(1000)],
    "OpenMenuItems": [{"Item": "Folder", "Name": f"Folder {f}", "Path": f"/Users/someone/Projects/{f}",
                       "AliasData": alias(f"/Users/someone/Projects/{f}"), "Depth": 2} for f in range(200)],
}
with open(sys.argv[1], "wb") as out:
    plistlib.dump(domain, out, fmt=plistlib.FMT_XML)
with open(sys.argv[2], "wb") as out:
    plistlib.dump(domain, out, fmt=plistlib.FMT_BINARY)
