#!/usr/bin/env bash
# Kills savers of the domain with SIGKILL at random moments, KILLS times (default
# 300; corvalis-save-loop checks the file after each kill), then checks with
# Python's plistlib that the file a final, unkilled save leaves is one whole state.
set -euo pipefail
loop="${SAVE_LOOP:?set SAVE_LOOP to the corvalis-save-loop program}"
kills="${KILLS:-300}"
dir="$(mktemp -d)"
trap 'rm -rf "$dir"' EXIT
"$loop" "$dir" "$kills"
python3 - "$dir/com.kestrova.Corvalis.plist" <<'PY'
import plistlib, sys
with open(sys.argv[1], "rb") as f:
    d = plistlib.load(f)
n = d["Counter"]
assert len(d["Payload"]) == 2000 and all(p.startswith(f"state {n} item ") for p in d["Payload"]), "mixed state"
PY
