#!/usr/bin/env bash
# startup_runs.sh SETTINGS BARE DATA: start-ups of the settings window with the
# large domain DATA/domain.bplist and of a bare window, one line each:
# "KIND first-frame-ms N". KIND "first" opens a fresh copy of the domain, whose
# older-form hot keys are converted and written back once each; "settings" opens
# the domain as that first opening left it, as every later start-up does; "bare"
# is the bare window. Seven alternating runs of "settings" and "bare", three of "first".
set -euo pipefail
settings="$1" bare="$2" data="$3"
prefs="$data/startup-prefs"
open_settings() { # open_settings KIND DOMAIN-FILE
  rm -rf "$prefs" && mkdir -p "$prefs" && cp "$2" "$prefs/com.kestrova.Corvalis.plist"
  echo "$1 $(CORVALIS_START_NS=$(date +%s%N) CORVALIS_PREFERENCES_DIR="$prefs" \
    XDG_CONFIG_HOME="$data/startup-config" CORVALIS_CONTROLLER=/nonexistent "$settings" --first-frame 2>/dev/null)"
}
for _ in 1 2 3; do open_settings first "$data/domain.bplist"; done
cp "$prefs/com.kestrova.Corvalis.plist" "$data/domain-opened.bplist"
for _ in 1 2 3 4 5 6 7; do
  open_settings settings "$data/domain-opened.bplist"
  echo "bare $(CORVALIS_START_NS=$(date +%s%N) "$bare" 2>/dev/null)"
done
