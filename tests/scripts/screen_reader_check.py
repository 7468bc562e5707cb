#!/usr/bin/python3
"""Walks corvalis-settings over AT-SPI as a screen reader does: every window's
focusable controls must have a name; the on/off switch, toggled through its
accessible action, must start and then quit the controller. Prints what it saw.
Run by screen_reader_check.sh, which sets up the buses and the window."""

import os
import plistlib
import signal
import subprocess
import sys
import time

import pyatspi

CONTROLLER_NAME = "com.kestrova.Corvalis.Controller"
SWITCH_NAME = "Corvalis on or off"


def wait_for(what, timeout=20.0):
    deadline = time.time() + timeout
    while time.time() < deadline:
        found = what()
        if found:
            return found
        time.sleep(0.25)
    return None


def application():
    for app in pyatspi.Registry.getDesktop(0):
        if app is not None and app.name == "corvalis-settings":
            return app
    return None


def walk(node, depth=0):
    yield node, depth
    for child in node:
        if child is not None:
            yield from walk(child, depth + 1)


def controller_running():
    reply = subprocess.run(["dbus-send", "--session", "--print-reply", "--dest=org.freedesktop.DBus",
                            "/org/freedesktop/DBus", "org.freedesktop.DBus.NameHasOwner",
                            "string:" + CONTROLLER_NAME], capture_output=True, text=True)
    return "boolean true" in reply.stdout


def do_action(node, name):
    action = node.queryAction()
    for i in range(action.nActions):
        if action.getName(i) == name:
            return action.doAction(i)
    raise AssertionError("%s has no action %r (it has %s)" % (
        node.name, name, [action.getName(i) for i in range(action.nActions)]))


def describe(node, depth):
    states = node.getState()
    extra = []
    if states.contains(pyatspi.STATE_CHECKABLE):
        extra.append("checked" if states.contains(pyatspi.STATE_CHECKED) else "unchecked")
    if states.contains(pyatspi.STATE_EDITABLE):
        extra.append("editable")
    try:
        actions = node.queryAction()
        extra += ["action " + actions.getName(i) for i in range(actions.nActions)]
    except NotImplementedError:
        pass
    if node.description:
        extra.append("description %r" % node.description)
    return "  %s%s %r %s" % ("  " * min(depth, 6), node.getRoleName(), node.name, ", ".join(extra))


def check_windows(app, problems, seen):
    """Prints each focusable control once (a table's first row and a count of its cells)."""
    for window in app:
        print("window %r (%s)" % (window.name, window.getRoleName()))
        cells = 0
        for node, depth in walk(window):
            states = node.getState()
            if not states.contains(pyatspi.STATE_FOCUSABLE) or not states.contains(pyatspi.STATE_SHOWING):
                continue
            role = node.getRoleName()
            if not node.name.strip():
                problems.append("%s without a name in window %r" % (role, window.name))
            if role == "table cell":
                cells += 1
                if cells > 3:
                    continue
            key = (window.name, role, node.name)
            if key not in seen:
                seen.add(key)
                print(describe(node, depth))
        if cells:
            print("    ... %d table cells showing, each named" % cells if not problems else "    ... %d table cells" % cells)


def walk_every_tab(app, problems, seen):
    main_window = next(w for w in app if w.getRoleName() == "frame")
    tabs = [n for n, _ in walk(main_window) if n.getRoleName() == "page tab"]
    for tab in tabs:
        print("-- tab %r" % tab.name)
        do_action(tab, "Press")
        time.sleep(0.5)
        check_windows(app, problems, seen)
    do_action(tabs[0], "Press")


def main():
    app = wait_for(application)
    if not app:
        print("corvalis-settings did not appear on the accessibility bus")
        return 1
    problems = []
    seen = set()

    # First use: the welcome sheet is up. Walk it, then leave it with its Continue button.
    welcome = wait_for(lambda: next((w for w in app if w.name == "Welcome to Corvalis"), None), 5)
    if welcome:
        check_windows(app, problems, seen)
        button = next(n for n, _ in walk(welcome) if n.getRoleName() == "push button" and n.name == "Continue")
        do_action(button, "Press")
        wait_for(lambda: all(w.name != "Welcome to Corvalis" for w in app), 5)
    walk_every_tab(app, problems, seen)

    switch = next((n for w in app for n, _ in walk(w) if n.name == SWITCH_NAME), None)
    if switch is None:
        problems.append("no control named %r" % SWITCH_NAME)
    else:
        label = lambda: next((n.name for w in app for n, _ in walk(w) if n.name.startswith("Corvalis is ")), "")
        print("switch: role %s, label %r, controller running: %s" % (switch.getRoleName(), label(), controller_running()))
        do_action(switch, "Toggle")
        started = wait_for(controller_running, 15)
        print("after toggle: checked %s, label %r, controller running: %s" % (
            switch.getState().contains(pyatspi.STATE_CHECKED), label(), bool(started)))
        if not started:
            problems.append("toggling the switch on did not start the controller")
        do_action(switch, "Toggle")
        quit = wait_for(lambda: not controller_running(), 15)
        print("after toggle: checked %s, label %r, controller running: %s" % (
            switch.getState().contains(pyatspi.STATE_CHECKED), label(), not quit))
        if not quit:
            problems.append("toggling the switch off did not quit the controller")

    record = os.environ.get("RECORD")
    if record and os.path.exists(record):
        with open(record, "rb") as f:
            for event in plistlib.load(f):
                pid = event.get("Pid") if isinstance(event, dict) else None
                if isinstance(pid, int) and pid > 1:
                    try:
                        os.kill(pid, signal.SIGKILL)
                    except OSError:
                        pass

    for problem in problems:
        print("PROBLEM:", problem)
    print("OK" if not problems else "%d problem(s)" % len(problems))
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
