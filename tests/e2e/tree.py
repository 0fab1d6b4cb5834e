#!/usr/bin/env python3
"""Reads `quillery-cli export --format json` from standard input, for the end-to-end runs.

  tree.py outline [--deleted]   the notes under the root (or the deleted notes), one a line,
                                indented two spaces a level, line feeds in a note shown as "\\n"
  tree.py locate TEXT           "IDENTIFIER PARENT INDEX" of the one note under the root that
                                reads TEXT; exits 1 when there is none or more than one
"""

import argparse
import json
import sys


def walk(node, depth=0):
    for index, child in enumerate(node["children"]):
        yield depth, node["identifier"], index, child
        yield from walk(child, depth + 1)


def main():
    parser = argparse.ArgumentParser(description="Inspect an exported notebook.")
    commands = parser.add_subparsers(dest="command", required=True)
    commands.add_parser("outline").add_argument("--deleted", action="store_true")
    commands.add_parser("locate").add_argument("text")
    args = parser.parse_args()
    try:
        tree = json.load(sys.stdin)
    except json.JSONDecodeError as error:
        sys.exit("tree.py: the export is not JSON: %s" % error)
    if args.command == "outline":
        for depth, _, _, note in walk(tree["deleted" if args.deleted else "root"]):
            print("  " * depth + note["text"].replace("\n", "\\n"))
        return 0
    found = [(note["identifier"], parent, index)
             for _, parent, index, note in walk(tree["root"]) if note["text"] == args.text]
    if len(found) != 1:
        sys.exit("tree.py: %d notes read “%s”" % (len(found), args.text))
    print("%s %s %d" % found[0])
    return 0


if __name__ == "__main__":
    sys.exit(main())
