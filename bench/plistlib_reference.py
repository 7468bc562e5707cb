#!/usr/bin/env python3
"""Python's plistlib doing the same job: load FILE, dump it as binary to a file.
Prints the median time in milliseconds over repeated runs (at least 2 s)."""
import os
import plistlib
import statistics
import sys
import tempfile
import time

source = sys.argv[1]
out = os.path.join(tempfile.mkdtemp(), "domain.plist")
times = []
start = time.perf_counter()
while time.perf_counter() - start < 2.0 or len(times) < 5:
    t0 = time.perf_counter()
    with open(source, "rb") as f:
        value = plistlib.load(f)
    with open(out, "wb") as f:
        plistlib.dump(value, f, fmt=plistlib.FMT_BINARY)
    times.append(time.perf_counter() - t0)
os.remove(out)
print(f"{statistics.median(times) * 1000:.3f}")
