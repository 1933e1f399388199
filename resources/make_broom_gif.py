#!/usr/bin/python3
"""Makes images/Broom.gif, the animated broom, from the drawing images/broom.svg.

The group "broom" swings about a point above its stick; the dust around it stays. White lies beneath, as the
page behind it is white. Twice the size at which it is shown, so that it is sharp on dense screens too.
Needs rsvg-convert, which draws the frames, and ImageMagick, which joins them.
"""
import math
import subprocess
import tempfile
from pathlib import Path

IMAGES = Path(__file__).parent / "images"
SHOWN = 96          # pixels, as the drawing
SIZE = 2 * SHOWN
FRAMES = 12
FRAME_TIME = 8      # hundredths of a second
SWING = 14          # degrees to either side
PIVOT = (48, 12)


def frame(drawing, angle):
    group = '<g id="broom" transform="'
    if drawing.count(group) != 1:
        raise SystemExit("broom.svg has no group \"broom\" with a place")
    turned = drawing.replace(group, f'{group}rotate({angle:.3f} {PIVOT[0]} {PIVOT[1]}) ')
    return turned.replace(f'width="{SHOWN}" height="{SHOWN}"', f'width="{SIZE}" height="{SIZE}"', 1)


def main():
    drawing = (IMAGES / "broom.svg").read_text(encoding="utf-8")
    with tempfile.TemporaryDirectory() as folder:
        pictures = []
        for number in range(FRAMES):
            # A sine begins upright and ends where it began.
            svg = Path(folder, f"{number:02}.svg")
            svg.write_text(frame(drawing, SWING * math.sin(2 * math.pi * number / FRAMES)), encoding="utf-8")
            pictures.append(Path(folder, f"{number:02}.png"))
            subprocess.run(["rsvg-convert", "--background-color", "white", "--output", pictures[-1], svg], check=True)
        subprocess.run(["convert", "-delay", str(FRAME_TIME), "-loop", "0", *pictures, "+dither", "-colors", "64", "-layers", "optimize-transparency",
                        IMAGES / "Broom.gif"], check=True)


if __name__ == "__main__":
    main()
