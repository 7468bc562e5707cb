#!/bin/sh
# Opens corvalis-settings as a screen reader meets it: under Xvfb, on a private
# session bus with its own accessibility bus, Qt's AT-SPI bridge on. Then
# screen_reader_check.py walks the accessible tree and works the on/off switch.
#   tests/scripts/screen_reader_check.sh BUILD_DIR
# Needs xvfb-run, dbus-run-session, at-spi2-core and python3-pyatspi.
set -eu
build=$(cd "${1:?usage: $0 BUILD_DIR}" && pwd)
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# The controller: a bundle whose program is the test controller, recording into the work folder.
bundle=$work/controllers/Corvalis.app
mkdir -p "$bundle/Contents/MacOS"
cat > "$bundle/Contents/Info.plist" <<PLIST
<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0"><dict>
<key>CFBundleIdentifier</key><string>com.kestrova.Corvalis.Controller</string>
<key>CFBundleExecutable</key><string>CorvalisController</string>
</dict></plist>
PLIST
printf '#!/bin/sh\nexec "%s" --record "%s"\n' "$build/tests/corvalis-test-controller" "$work/record.plist" \
    > "$bundle/Contents/MacOS/CorvalisController"
chmod +x "$bundle/Contents/MacOS/CorvalisController"

export CORVALIS_PREFERENCES_DIR="$work/prefs" XDG_CONFIG_HOME="$work/config" CORVALIS_CONTROLLER="$bundle"
export CORVALIS_PANE_PLUGIN="$build/lib/corvalis/libcorvalis-pane.so" QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1
unset AT_SPI_BUS_ADDRESS
export SETTINGS="$build/bin/corvalis-settings" CHECK="$here/screen_reader_check.py" RECORD="$work/record.plist"
exec dbus-run-session -- xvfb-run -a -s "-screen 0 1280x800x24" sh -c '
    /usr/libexec/at-spi-bus-launcher --launch-immediately & launcher=$!
    sleep 1
    "$SETTINGS" & settings=$!
    status=0
    /usr/bin/python3 "$CHECK" || status=$?
    kill $settings 2>/dev/null; wait $settings 2>/dev/null
    kill $launcher 2>/dev/null
    exit $status'
