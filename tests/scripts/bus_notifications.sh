#!/usr/bin/env bash
# Runs under dbus-run-session: `corvalis-prefs set` must show on dbus-monitor as
# the Notification signal, and `corvalis-prefs monitor` must print it.
set -uo pipefail
tool="$1"
work="$(mktemp -d)"
trap 'kill $(jobs -p) 2>/dev/null; rm -rf "$work"' EXIT
wait_for() { # wait_for FILE PATTERN: up to 10 s
  for _ in $(seq 100); do grep -q "$2" "$1" 2>/dev/null && return 0; sleep 0.1; done
  echo "timed out waiting for '$2' in $1"; cat "$1"; return 1
}

dbus-monitor --session "type='signal',interface='com.kestrova.Corvalis.Notifications'" > "$work/bus.log" 2>&1 &
"$tool" monitor > "$work/monitor.log" 2>&1 &
wait_for "$work/monitor.log" "Watching" || exit 1
wait_for "$work/bus.log" "NameAcquired\|member=Notification\|signal" || sleep 0.5

"$tool" --domain-dir "$work/prefs" set ShowIcons false || exit 1
wait_for "$work/bus.log" 'string "CorvalisPaneChangedPrefs"' || exit 1
wait_for "$work/monitor.log" "<key>ShowIcons</key>" || exit 1

failures=0
expect() { grep -q "$2" "$1" || { echo "missing in $(basename "$1"): $2"; failures=$((failures + 1)); }; }
expect "$work/bus.log" "path=/com/kestrova/Corvalis; interface=com.kestrova.Corvalis.Notifications; member=Notification"
expect "$work/bus.log" 'string "com.kestrova.Corvalis"'
expect "$work/bus.log" "<key>ShowIcons</key>"
expect "$work/bus.log" "<false/>"
expect "$work/monitor.log" "name: CorvalisPaneChangedPrefs"
expect "$work/monitor.log" "object: com.kestrova.Corvalis"
cat "$work/bus.log"
echo "$failures failed"
[ "$failures" -eq 0 ]
