#!/usr/bin/python3
"""Reads and drives the app through its accessibility interface (AT-SPI on the session bus), as a
screen reader does, where no input events can be sent. An accessible is found by a path of names,
each looked for depth first below what the previous one found: "Top notes" "Add Note" is the
first column's Add Note button, File Quit the Quit item of the File menu.

  accessible.py --pid PID windows                     the app's window names; exits 1 while the
                                                      app is not on the bus
  accessible.py --pid PID notes NAME...               the notes the column found lists
  accessible.py --pid PID press NAME...               does the first action of what is found
  accessible.py --pid PID set-text --text TEXT NAME...  replaces the editable text found

Exits 1, saying what was missing, when the path finds nothing. Needs Debian's python3-gi and
gir1.2-atspi-2.0, hence /usr/bin/python3 whichever python3 comes first on the PATH.
"""

import argparse
import sys

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402 (the version must be chosen first)


def app_of(pid):
    desktop = Atspi.get_desktop(0)
    for index in range(desktop.get_child_count()):
        app = desktop.get_child_at_index(index)
        try:
            if app is not None and app.get_process_id() == pid:
                return app
        except GLib.Error:
            continue  # an application that left the bus while being listed
    raise SystemExit("accessible.py: no application with process %d on the bus" % pid)


def children(accessible):
    for index in range(accessible.get_child_count()):
        child = accessible.get_child_at_index(index)
        if child is not None:
            yield child


def find(accessible, test):
    """The first descendant, depth first, that passes the test."""
    for child in children(accessible):
        if test(child):
            return child
        found = find(child, test)
        if found is not None:
            return found
    return None


def follow(app, names):
    accessible = app
    for step, name in enumerate(names):
        accessible = find(accessible, lambda each, name=name: each.get_name() == name)
        if accessible is None:
            raise SystemExit("accessible.py: nothing named %r under %s" %
                             (name, " > ".join(names[:step]) or "the app"))
    return accessible


def notes(column):
    # A column's notes are the children of the first list below it.
    listed = find(column, lambda each: each.get_role() == Atspi.Role.LIST)
    if listed is None:
        raise SystemExit("accessible.py: %r lists no notes" % column.get_name())
    return [child.get_name() for child in children(listed)]


def press(accessible):
    if "Action" not in accessible.get_interfaces() or Atspi.Action.get_n_actions(accessible) == 0:
        raise SystemExit("accessible.py: %r has no action" % accessible.get_name())
    if not Atspi.Action.do_action(accessible, 0):
        raise SystemExit("accessible.py: %r refused its action" % accessible.get_name())


def set_text(accessible, text):
    if "EditableText" not in accessible.get_interfaces():
        raise SystemExit("accessible.py: %r is not editable text" % accessible.get_name())
    if not Atspi.EditableText.set_text_contents(accessible, text):
        raise SystemExit("accessible.py: %r refused the text" % accessible.get_name())


def main():
    parser = argparse.ArgumentParser(description="Drive the app through AT-SPI.")
    parser.add_argument("--pid", type=int, required=True)
    commands = parser.add_subparsers(dest="command", required=True)
    commands.add_parser("windows")
    for name in ("notes", "press"):
        commands.add_parser(name).add_argument("path", nargs="+")
    text = commands.add_parser("set-text")
    text.add_argument("--text", required=True)
    text.add_argument("path", nargs="+")
    args = parser.parse_args()

    app = app_of(args.pid)
    if args.command == "windows":
        names = [window.get_name() for window in children(app)]
        if not names:
            raise SystemExit(1)
        print("\n".join(names))
    elif args.command == "notes":
        print("\n".join(notes(follow(app, args.path))))
    elif args.command == "press":
        press(follow(app, args.path))
    else:
        set_text(follow(app, args.path), args.text)


if __name__ == "__main__":
    try:
        main()
    except GLib.Error as error:
        sys.exit("accessible.py: %s" % error.message)
