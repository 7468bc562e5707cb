#!/usr/bin/env bash
# Drives corvalis-prefs against real files and checks the results with other
# readers of property lists (plistutil, Python's plistlib).
set -uo pipefail
tool="$1"
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
# restore may touch login items: keep them out of the user's own folders.
export HOME="$work/home" XDG_CONFIG_HOME="$work/config"
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
assert len(on_disk) == 97, len(on_disk)
types = {bool: 0, int: 0, float: 0, str: 0, list: 0, dict: 0}
for value in on_disk.values():
    types[type(value)] += 1
assert types == {bool: 59, int: 12, float: 7, str: 5, list: 13, dict: 1}, types
# The hot keys in their older form (1000 + key), the excluded group under its display name.
assert on_disk["HotKeys"][0] == {"Character": 111, "Modifiers": 4608, "VirtualKeyCode": 1018, "Position": 0}
assert on_disk["Groups"][0]["Name"] == "Excluded Applications"
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
printf 'still not a property list' > "$work/corrupt/com.kestrova.Corvalis.plist"
"$tool" --domain-dir "$work/corrupt" normalize --dry-run > /dev/null 2> "$work/dry.err"
check "a dry run says what it would keep aside, not what it kept" grep -q 'without --dry-run it would be kept aside' "$work/dry.err"
check "and changes nothing" test "$(ls "$work/corrupt" | wc -l)" = 2

# Files that cannot be opened are no damage: exit 1, nothing moved or written, and no hang on a FIFO.
for kind in fifo folder; do
  mkdir -p "$work/$kind"
  if [ $kind = fifo ]; then mkfifo "$work/$kind/com.kestrova.Corvalis.plist"; else mkdir "$work/$kind/com.kestrova.Corvalis.plist"; fi
  check "a $kind as the domain exits 1" test "$(status_of timeout 20 "$tool" --domain-dir "$work/$kind" set ShowIcons no)" = 1
  check "and is left alone" test "$(ls -A "$work/$kind")" = com.kestrova.Corvalis.plist
done
check "a FIFO as the backup file is refused with exit 3" test "$(status_of timeout 20 "$tool" --domain-dir "$work/fresh" restore "$work/fifo/com.kestrova.Corvalis.plist")" = 3

CORVALIS_SYSTEM_VERSION=10.11 "$tool" --domain-dir "$work/old" show > /dev/null
check "before 10.12 StatusItemPosition is kept" grep -q StatusItemPosition <(plistutil -i "$work/old/com.kestrova.Corvalis.plist" -f xml)
check "from 10.12 it is removed" test "$(grep -c StatusItemPosition "$work/shown.xml")" = 0

# normalize: what loading changes, key by key (the loaders' rules are their unit tests'); a dry run changes nothing.
mkdir -p "$work/legacy"
python3 - "$work/legacy/com.kestrova.Corvalis.plist" <<'PY'
import plistlib, sys
plistlib.dump({"ShowLogOut": False, "ShowSleepRestartShutDown": False, "ShowIcons": True,
               "HotKeys": [], "CheckForUpdatesFrequency": 14,
               "SpecialMenuItems": [{"Item": "Library"}, {"Item": "Separator"}, {"Item": "Home"}],
               "CustomApplications": [{"Path": "/opt/A.app", "Options": {"ForceRosetta": True}}]},
              open(sys.argv[1], "wb"))
PY
before="$(md5sum < "$work/legacy/com.kestrova.Corvalis.plist")"
"$tool" --domain-dir "$work/legacy" normalize --dry-run > "$work/dry.txt"
check "a dry run leaves the domain alone" test "$(md5sum < "$work/legacy/com.kestrova.Corvalis.plist")" = "$before"
check "and leaves no scratch folder behind" test -z "$(ls -d "${TMPDIR:-/tmp}"/corvalis-normalize-* 2>/dev/null)"
check "normalize names what it adds, removes and replaces" test "$(grep -cE \
  '^(added    QuitMenuItems = array of 6|removed  ShowLogOut|replaced HotKeys: array of 0 -> array of 4)' "$work/dry.txt")" = 3
check "and leaves unchanged keys out" test "$(grep -c ShowIcons "$work/dry.txt")" = 0
CORVALIS_SYSTEM_VERSION=10.6.8 "$tool" --domain-dir "$work/legacy" normalize > /dev/null
check "normalize saves, with the rules of the system named" python3 - "$work/legacy/com.kestrova.Corvalis.plist" <<'PY'
import plistlib, sys
d = plistlib.load(open(sys.argv[1], "rb"))
assert d["SpecialMenuItems"] == [{"Item": "Home"}], d["SpecialMenuItems"]   # no Library before 10.7
assert d["CustomApplications"][0]["Options"] == {"ForceRosetta": True}
PY
check "a second normalize has nothing to change" grep -q 'Nothing to change' <(CORVALIS_SYSTEM_VERSION=10.6.8 "$tool" --domain-dir "$work/legacy" normalize)

# backup and restore.
"$tool" --domain-dir "$work/fresh" backup "$work/saved" > /dev/null
check "backup adds the extension and writes XML" grep -q '^<?xml' "$work/saved.cvbu"
check "the backup holds the settings and version 1" python3 - "$work/saved.cvbu" "$domain" <<'PY'
import plistlib, sys
b = plistlib.load(open(sys.argv[1], "rb"))
assert sorted(b) == ["Settings", "Version"] and b["Version"] == 1
assert b["Settings"] == plistlib.load(open(sys.argv[2], "rb"))
PY
"$tool" --domain-dir "$work/fresh" set ShowIcons yes 2>/dev/null
python3 - "$work" <<'PY'
import plistlib, sys
w = sys.argv[1]
plistlib.dump({"Settings": {"ShowDisks": True}, "Version": 1}, open(w + "/legacy.cvbu", "wb"))
plistlib.dump({"Settings": {"ShowIcons": True}, "Version": 2}, open(w + "/v2.cvbu", "wb"))
PY
before="$(md5sum < "$domain")"
check "a backup of legacy keys only is refused with exit 3" test "$(status_of "$tool" --domain-dir "$work/fresh" restore "$work/legacy.cvbu")" = 3
check "so is another format version" test "$(status_of "$tool" --domain-dir "$work/fresh" restore "$work/v2.cvbu")" = 3
check "refused backups change nothing" test "$(md5sum < "$domain")" = "$before"
check "restore replaces the settings" grep -q 'replaced' <("$tool" --domain-dir "$work/fresh" restore "$work/saved.cvbu")
check "with those of the backup" grep -q '<false/>' <("$tool" --domain-dir "$work/fresh" get ShowIcons)

# check: invalid stored paths, grouped as the pane's summary counts them.
mkdir -p "$work/paths/app/Here.app" "$work/paths/.Trash/Gone.app"
python3 - "$work/paths" <<'PY'
import plistlib, sys
w = sys.argv[1]
plistlib.dump({"Groups": [{"Name": "Work", "CanBeDeleted": True, "Applications": [
                   {"Path": w + "/app/Here.app"}, {"Path": w + "/app/Missing.app"}]},
                  {"Name": "x", "CanBeDeleted": False, "Applications": [{"Path": w + "/.Trash/Gone.app"}]}],
               "SwitchMenuExcludedApplications": [{"Path": "/nowhere/B.app"}]},
              open(w + "/com.kestrova.Corvalis.plist", "wb"))
PY
"$tool" --domain-dir "$work/paths" check > "$work/check.txt"
check "check exits 1 when paths are invalid" test "$(status_of "$tool" --domain-dir "$work/paths" check)" = 1
check "check groups them as the summary does" python3 - "$work/check.txt" <<'PY'
import sys
text = open(sys.argv[1]).read()
assert "Groups: 1 invalid path\n" in text and "Missing.app  (Work)" in text, text
assert "Quit menu (excluded applications): 1 invalid path\n" in text and "Gone.app" in text, text
assert "Switch menu (excluded applications): 1 invalid path\n" in text, text
assert "Here.app" not in text, text
PY
check "check exits 0 when all paths lead somewhere" test "$(status_of "$tool" --domain-dir "$work/fresh" check)" = 0

for command in show get set monitor normalize backup restore check; do
  check "$command --help" test "$(status_of "$tool" "$command" --help)" = 0
done
check "an unknown command exits 2" test "$(status_of "$tool" frobnicate)" = 2
check "a missing argument exits 2" test "$(status_of "$tool" --domain-dir "$work/fresh" get)" = 2

echo "$failures failed"
[ "$failures" -eq 0 ]
