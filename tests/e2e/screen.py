#!/usr/bin/env python3
"""Looks at the app's window on the X server named by DISPLAY, for the end-to-end run.

The selected row of the column that has the keyboard focus is drawn in the palette's highlight
colour (an outline and a bar at the row's left edge). So is an Add Note button with the keyboard
focus and the mark of a drop under way, neither of which the runs show while they look for the
row; so the colour's bounding box tells which row of which column is selected and focused, and
where that row is on the screen.

  screen.py highlight WINDOW
      Prints the highlighted row as "X0 Y0 X1 Y1" (window coordinates, inclusive), or "none".
  screen.py wait-highlight WINDOW [--gone] [--x X0MIN X0MAX] [--y Y0MIN Y0MAX] [--timeout S]
      Waits until the highlighted row starts within the ranges (or, with --gone, until no row is
      highlighted) on two captures in a row, and prints it as above. Exits 1 on timeout.
  screen.py settle WINDOW [--timeout S]
      Waits until two captures a moment apart differ in no more than a text cursor's pixels.

Only the Python standard library and ImageMagick's import are needed.
"""

import argparse
import re
import subprocess
import sys
import time

# The highlight colour of Qt's own palette, which the app gets under Xvfb with no desktop theme;
# a tolerance keeps the match independent of anti-aliasing at the outline's corners.
HIGHLIGHT = (48, 140, 198)
TOLERANCE = 24
# Fewer matching pixels than this is anti-aliasing or noise, not a highlighted row.
MIN_HIGHLIGHT_PIXELS = 100
# A blinking text cursor changes about 1 × 20 pixels; anything larger is the window changing.
SETTLED_PIXELS = 120
POLL_SECONDS = 0.1


class Capture:
    def __init__(self, width, height, pixels):
        self.width = width
        self.height = height
        self.pixels = pixels  # RGB bytes, row by row

    def row(self, y):
        stride = self.width * 3
        return self.pixels[y * stride:(y + 1) * stride]


def capture(window):
    """The window's current pixels, read through ImageMagick as 8-bit binary PPM."""
    data = subprocess.run(
        ["import", "-window", window, "-depth", "8", "ppm:-"],
        check=True, capture_output=True, timeout=20).stdout
    # Header: "P6", width, height, maximum value, each separated by white space, then one byte of
    # white space before the pixels.
    fields = []
    at = 0
    while len(fields) < 4:
        while data[at:at + 1].isspace():
            at += 1
        if data[at:at + 1] == b"#":
            at = data.index(b"\n", at)
            continue
        start = at
        while not data[at:at + 1].isspace():
            at += 1
        fields.append(data[start:at])
    if fields[0] != b"P6" or fields[3] != b"255":
        raise SystemExit("screen.py: unexpected capture format %r" % fields)
    width, height = int(fields[1]), int(fields[2])
    return Capture(width, height, data[at + 1:at + 1 + width * height * 3])


def highlight_box(shot):
    low = [max(0, c - TOLERANCE) for c in HIGHLIGHT]
    high = [min(255, c + TOLERANCE) for c in HIGHLIGHT]
    # A zero-width match at every byte offset, so that a match that straddles two pixels never
    # hides the pixel-aligned one next to it.
    pattern = re.compile(b"(?=" + b"".join(
        b"[" + re.escape(bytes([lo])) + b"-" + re.escape(bytes([hi])) + b"]"
        for lo, hi in zip(low, high)) + b")", re.DOTALL)
    count = 0
    x0 = y0 = 1 << 30
    x1 = y1 = -1
    for match in pattern.finditer(shot.pixels):
        offset = match.start()
        if offset % 3:
            continue
        y, x = divmod(offset // 3, shot.width)
        count += 1
        x0, x1 = min(x0, x), max(x1, x)
        y0, y1 = min(y0, y), max(y1, y)
    if count < MIN_HIGHLIGHT_PIXELS:
        return None
    return (x0, y0, x1, y1)


def describe(box):
    return "none" if box is None else "%d %d %d %d" % box


def differing_pixels(a, b):
    if (a.width, a.height) != (b.width, b.height):
        return a.width * a.height
    count = 0
    for y in range(a.height):
        ra, rb = a.row(y), b.row(y)
        if ra == rb:
            continue
        for x in range(0, len(ra), 3):
            if ra[x:x + 3] != rb[x:x + 3]:
                count += 1
        if count > SETTLED_PIXELS:
            break
    return count


def wanted(box, args):
    if args.gone:
        return box is None
    if box is None:
        return False
    if args.x and not args.x[0] <= box[0] <= args.x[1]:
        return False
    if args.y and not args.y[0] <= box[1] <= args.y[1]:
        return False
    return True


def wait_highlight(args):
    deadline = time.monotonic() + args.timeout
    last = previous = None
    seen = False
    while True:
        last = highlight_box(capture(args.window))
        if wanted(last, args) and seen and last == previous:
            print(describe(last))
            return 0
        seen = True
        previous = last
        if time.monotonic() > deadline:
            print("screen.py: timed out after %gs waiting for the highlight; last seen: %s"
                  % (args.timeout, describe(last)), file=sys.stderr)
            return 1
        time.sleep(POLL_SECONDS)


def settle(args):
    deadline = time.monotonic() + args.timeout
    previous = capture(args.window)
    while True:
        time.sleep(0.25)
        current = capture(args.window)
        changed = differing_pixels(previous, current)
        if changed <= SETTLED_PIXELS:
            return 0
        if time.monotonic() > deadline:
            print("screen.py: the window kept changing for %gs (%d pixels in the last step)"
                  % (args.timeout, changed), file=sys.stderr)
            return 1
        previous = current


def main():
    parser = argparse.ArgumentParser(description="Inspect the app's window.")
    commands = parser.add_subparsers(dest="command", required=True)
    once = commands.add_parser("highlight")
    once.add_argument("window")
    wait = commands.add_parser("wait-highlight")
    wait.add_argument("window")
    wait.add_argument("--gone", action="store_true")
    wait.add_argument("--x", nargs=2, type=int, metavar=("MIN", "MAX"))
    wait.add_argument("--y", nargs=2, type=int, metavar=("MIN", "MAX"))
    wait.add_argument("--timeout", type=float, default=20)
    still = commands.add_parser("settle")
    still.add_argument("window")
    still.add_argument("--timeout", type=float, default=20)
    args = parser.parse_args()
    if args.command == "highlight":
        print(describe(highlight_box(capture(args.window))))
        return 0
    if args.command == "wait-highlight":
        return wait_highlight(args)
    return settle(args)


if __name__ == "__main__":
    sys.exit(main())
