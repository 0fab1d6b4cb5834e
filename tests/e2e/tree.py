#!/usr/bin/env python3
"""Reads `quillery-cli export --format json` from standard input, for the end-to-end run.

  tree.py outline [--deleted]
      Prints the notes under the root (or under the deleted notes) one per line, indented by two
      spaces per level, with line feeds inside a note shown as "\\n".
  tree.py locate TEXT
      Prints "IDENTIFIER PARENT-IDENTIFIER INDEX" of the one note under the root whose text is
      TEXT; exits 1 when there is none or more than one.
"""

import argparse
import json
import sys


def outline(node, depth, lines):
    for child in node["children"]:
        lines.append("  " * depth + child["text"].replace("\n", "\\n"))
        outline(child, depth + 1, lines)
    return lines


def find(node, text, found):
    for index, child in enumerate(node["children"]):
        if child["text"] == text:
            found.append((child["identifier"], node["identifier"], index))
        find(child, text, found)
    return found


def main():
    parser = argparse.ArgumentParser(description="Inspect an exported notebook.")
    commands = parser.add_subparsers(dest="command", required=True)
    lines = commands.add_parser("outline")
    lines.add_argument("--deleted", action="store_true")
    locate = commands.add_parser("locate")
    locate.add_argument("text")
    args = parser.parse_args()

    try:
        tree = json.load(sys.stdin)
    except json.JSONDecodeError as error:
        print("tree.py: the export is not JSON: %s" % error, file=sys.stderr)
        return 1
    if args.command == "outline":
        for line in outline(tree["deleted" if args.deleted else "root"], 0, []):
            print(line)
        return 0
    found = find(tree["root"], args.text, [])
    if len(found) != 1:
        print("tree.py: %d notes read “%s”" % (len(found), args.text), file=sys.stderr)
        return 1
    print("%s %s %d" % found[0])
    return 0


if __name__ == "__main__":
    sys.exit(main())
