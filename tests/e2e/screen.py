#!/usr/bin/env python3
"""Looks at the app's window on the X server named by DISPLAY, for the end-to-end runs.

The selected row of the column that has the keyboard focus is drawn in the palette's highlight
colour (so are a focused Add Note button and a drop mark, which the runs never show while they
look for the row), so the colour's bounding box tells which row of which column is selected.

  screen.py wait-highlight WINDOW [--x X0MIN X0MAX] [--y Y0MIN Y0MAX] [--timeout S]
      Waits until the highlighted row starts within the ranges on two captures in a row and
      prints it as "X0 Y0 X1 Y1" (window coordinates, inclusive). Exits 1 on timeout.
  screen.py settle WINDOW [--timeout S]
      Waits until two captures a moment apart differ in no more than a text cursor's pixels.
"""

import argparse
import re
import subprocess
import sys
import time

# Qt's own highlight colour under Xvfb with no desktop theme; the tolerance takes in the
# anti-aliased corners of the outline.
HIGHLIGHT = (48, 140, 198)
TOLERANCE = 24
# Fewer matching pixels than this is anti-aliasing or noise, not a highlighted row.
MIN_HIGHLIGHT_PIXELS = 100
# A blinking text cursor changes about 1 × 20 pixels; anything larger is the window changing.
SETTLED_PIXELS = 120


class Capture:
    def __init__(self, width, height, pixels):
        self.width, self.height, self.pixels = width, height, pixels  # RGB bytes, row by row


def capture(window):
    """The window's current pixels, read through ImageMagick as 8-bit binary PPM."""
    data = subprocess.run(["import", "-window", window, "-depth", "8", "ppm:-"],
                          check=True, capture_output=True, timeout=20).stdout
    header = re.match(rb"P6\s+(?:#[^\n]*\n\s*)*(\d+)\s+(\d+)\s+255\s", data)
    if not header:
        raise SystemExit("screen.py: unexpected capture format %r" % data[:20])
    width, height = int(header[1]), int(header[2])
    return Capture(width, height, data[header.end():header.end() + width * height * 3])


def highlight_box(shot):
    # A zero-width match at every byte offset, so that a match that straddles two pixels never
    # hides the pixel-aligned one next to it.
    pattern = re.compile(b"(?=" + b"".join(
        b"[" + re.escape(bytes([max(0, c - TOLERANCE)])) + b"-" +
        re.escape(bytes([min(255, c + TOLERANCE)])) + b"]" for c in HIGHLIGHT) + b")", re.DOTALL)
    points = [divmod(m.start() // 3, shot.width)
              for m in pattern.finditer(shot.pixels) if m.start() % 3 == 0]
    if len(points) < MIN_HIGHLIGHT_PIXELS:
        return None
    ys, xs = zip(*points)
    return (min(xs), min(ys), max(xs), max(ys))


def differing_pixels(a, b):
    if (a.width, a.height) != (b.width, b.height):
        return a.width * a.height
    count, stride = 0, a.width * 3
    for start in range(0, len(a.pixels), stride):
        ra, rb = a.pixels[start:start + stride], b.pixels[start:start + stride]
        if ra != rb:
            count += sum(ra[x:x + 3] != rb[x:x + 3] for x in range(0, stride, 3))
            if count > SETTLED_PIXELS:
                break
    return count


def within(value, bounds):
    return not bounds or bounds[0] <= value <= bounds[1]


def wait_highlight(args):
    deadline = time.monotonic() + args.timeout
    previous = None
    while True:
        last = highlight_box(capture(args.window))
        if last and last == previous and within(last[0], args.x) and within(last[1], args.y):
            print("%d %d %d %d" % last)
            return 0
        previous = last
        if time.monotonic() > deadline:
            print("screen.py: timed out after %gs waiting for the highlight; last seen: %s"
                  % (args.timeout, last), file=sys.stderr)
            return 1
        time.sleep(0.1)


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
    for name in ("wait-highlight", "settle"):
        command = commands.add_parser(name)
        command.add_argument("window")
        command.add_argument("--timeout", type=float, default=20)
    commands.choices["wait-highlight"].add_argument("--x", nargs=2, type=int)
    commands.choices["wait-highlight"].add_argument("--y", nargs=2, type=int)
    args = parser.parse_args()
    return wait_highlight(args) if args.command == "wait-highlight" else settle(args)


if __name__ == "__main__":
    sys.exit(main())
