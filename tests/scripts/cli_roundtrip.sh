#!/usr/bin/env bash
# Drives corvalis-prefs against real files and checks the results with other
# readers of property lists (plistutil, Python's plistlib).
set -uo pipefail
tool="$1"
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
failures=0
check() { # check DESCRIPTION COMMAND...
  local what="$1"; shift
  if "$@"; then echo "ok: $what"; else echo "FAILED: $what"; failures=$((failures + 1)); fi
}
status_of() { "$@" >/dev/null 2>&1; echo $?; }

domain="$work/fresh/com.kestrova.Corvalis.plist"
"$tool" --domain-dir "$work/fresh" show > "$work/shown.xml"
check "show writes a binary domain file" test "$(head -c 8 "$domain")" = "bplist00"
check "plistutil and plistlib read back what show printed" python3 - "$domain" "$work/shown.xml" <<'PY'
import plistlib, subprocess, sys
on_disk = plistlib.load(open(sys.argv[1], "rb"))
printed = plistlib.load(open(sys.argv[2], "rb"))
via_plistutil = plistlib.loads(subprocess.run(["plistutil", "-i", sys.argv[1], "-f", "xml"],
                                              capture_output=True, check=True).stdout)
assert on_disk == printed == via_plistutil
assert len(on_disk) == 109, len(on_disk)
types = {bool: 0, int: 0, float: 0, str: 0, list: 0}
for value in on_disk.values():
    types[type(value)] += 1
assert types == {bool: 75, int: 13, float: 7, str: 4, list: 10}, types
assert on_disk["HotKeys"][0] == {"Character": 111, "Modifiers": 4608, "VirtualKeyCode": 1018, "Position": 0}
assert [h["Character"] for h in on_disk["HotKeys"]] == [111, 113, 115, 101]
assert on_disk["PanelButtons"] == [{"Color": i, "Visible": True} for i in range(4)]
assert on_disk["Groups"] == [{"Name": "ExcludedApplications", "CanBeDeleted": False, "Hide": False,
                              "AutoOpen": False, "Applications": []}]
assert on_disk["CheckForUpdatesResult"] == -5 and on_disk["PanelCoordinate"] == 0.5
PY

check "get prints one value" grep -q '<true/>' <("$tool" --domain-dir "$work/fresh" get ShowIcons)
check "get of an unknown key exits 2" test "$(status_of "$tool" --domain-dir "$work/fresh" get NoSuchKey)" = 2

"$tool" --domain-dir "$work/fresh" set ShowIcons no 2>/dev/null
"$tool" --domain-dir "$work/fresh" set RecentApplicationsMaxNum 12 2>/dev/null
"$tool" --domain-dir "$work/fresh" set PanelCoordinate 0.25 2>/dev/null
"$tool" --domain-dir "$work/fresh" set AddApplicationPath /opt 2>/dev/null
check "set stores values with the type of their default" python3 - "$domain" <<'PY'
import plistlib, sys
d = plistlib.load(open(sys.argv[1], "rb"))
assert d["ShowIcons"] is False and d["RecentApplicationsMaxNum"] == 12
assert d["PanelCoordinate"] == 0.25 and d["AddApplicationPath"] == "/opt"
PY
before="$(md5sum < "$domain")"
check "a value that does not parse exits 2" test "$(status_of "$tool" --domain-dir "$work/fresh" set ShowIcons maybe)" = 2
check "the message names the expected type" grep -q boolean <("$tool" --domain-dir "$work/fresh" set ShowIcons maybe 2>&1)
check "an out-of-range number exits 2" test "$(status_of "$tool" --domain-dir "$work/fresh" set RecentApplicationsMaxNum 99999999999)" = 2
check "a list cannot be set" test "$(status_of "$tool" --domain-dir "$work/fresh" set Groups x)" = 2
check "refused values change nothing" test "$(md5sum < "$domain")" = "$before"

mkdir -p "$work/corrupt"
printf 'this is not a property list' > "$work/corrupt/com.kestrova.Corvalis.plist"
"$tool" --domain-dir "$work/corrupt" show > /dev/null 2> "$work/corrupt.err"
check "an unreadable domain is reported" grep -q 'was kept as' "$work/corrupt.err"
check "and kept aside unchanged" grep -qx 'this is not a property list' "$work"/corrupt/com.kestrova.Corvalis.plist.unreadable-*

mkdir -p "$work/xml"
python3 -c 'import plistlib,sys; plistlib.dump({"ShowHome": False, "Groups": []}, open(sys.argv[1], "wb"))' \
  "$work/xml/com.kestrova.Corvalis.plist"
"$tool" --domain-dir "$work/xml" show > /dev/null
check "an XML domain written by another program is read and kept" python3 - "$work/xml/com.kestrova.Corvalis.plist" <<'PY'
import plistlib, sys
raw = open(sys.argv[1], "rb").read()
assert raw.startswith(b"bplist00")
d = plistlib.loads(raw)
assert d["ShowHome"] is False and d["Groups"] == []
PY

CORVALIS_SYSTEM_VERSION=10.11 "$tool" --domain-dir "$work/old" show > /dev/null
check "before 10.12 StatusItemPosition is kept" grep -q StatusItemPosition <(plistutil -i "$work/old/com.kestrova.Corvalis.plist" -f xml)
check "from 10.12 it is removed" test "$(grep -c StatusItemPosition "$work/shown.xml")" = 0

for command in show get set monitor; do
  check "$command --help" test "$(status_of "$tool" "$command" --help)" = 0
done
check "an unknown command exits 2" test "$(status_of "$tool" frobnicate)" = 2
check "a missing argument exits 2" test "$(status_of "$tool" --domain-dir "$work/fresh" get)" = 2

echo "$failures failed"
[ "$failures" -eq 0 ]
