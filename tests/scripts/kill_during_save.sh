#!/usr/bin/env bash
# Kills a process that saves the domain in a loop with SIGKILL at random
# moments, KILLS times (default 300), and checks after each kill that the
# domain file parses and holds one whole state, never older than the last one seen.
set -euo pipefail
loop="${SAVE_LOOP:?set SAVE_LOOP to the corvalis-save-loop program}"
kills="${KILLS:-300}"
dir="$(mktemp -d)"
trap 'rm -rf "$dir"' EXIT
file="$dir/com.kestrova.Corvalis.plist"
last=0
for ((i = 1; i <= kills; i++)); do
  "$loop" "$dir" $((last + 1)) > /dev/null &
  pid=$!
  # A random moment between 1 and 60 ms, startup included.
  sleep "0.0$(printf '%02d' $((RANDOM % 60 + 1)))"
  kill -KILL "$pid" 2>/dev/null || true
  wait "$pid" 2>/dev/null || true
  [ -f "$file" ] || continue
  last=$(python3 - "$file" "$last" <<'PY'
import plistlib, sys
path, last = sys.argv[1], int(sys.argv[2])
with open(path, "rb") as f:
    d = plistlib.load(f)
n = d.get("Counter")
if n is None:
    print(last); sys.exit(0)  # the first load's save, before any counter
payload = d["Payload"]
assert len(payload) == 2000, f"payload of {len(payload)} items"
assert all(p.startswith(f"state {n} item ") for p in payload), f"payload does not match counter {n}"
assert n >= last, f"state {n} is older than {last}"
print(n)
PY
) || { echo "kill $i: the domain file is damaged or mixed"; exit 1; }
done
leftovers=$(find "$dir" -name '.*' -type f | wc -l)
echo "$kills kills: the domain always held one whole state (last counter $last; $leftovers temporary files left by killed saves)"
