#!/usr/bin/env python3
"""Draws the placement glyphs of the editors (left, centre, right) as
res/alignment_glyphs.bmp: a 42 x 28 strip of 16 colours, three 14-pixel cells
of lines set as text would be, above their masks (black where a glyph is),
which start one row below the cells. Run it again after changing the
drawing: python3 tools/make_glyphs.py res/alignment_glyphs.bmp
"""
import struct
import sys

SIDE, CELLS = 14, 3
WIDTH, HEIGHT = SIDE * CELLS, SIDE * 2
LINES = [(2, 12), (5, 8), (8, 12), (11, 6)]  # (row, length) of the text lines
INK, PAPER, MASK_ON = 1, 15, 0                # palette indexes


def ink(cell, x, y):
    """True where glyph `cell` (0 left, 1 centre, 2 right) has ink."""
    for row, length in LINES:
        if y != row:
            continue
        start = [1, (SIDE - length) // 2, SIDE - 1 - length][cell]
        return start <= x < start + length
    return False


def index(x, y):
    cell, cx = divmod(x, SIDE)
    if y < SIDE:
        return INK if ink(cell, cx, y) else PAPER
    if y == SIDE:
        return PAPER
    return MASK_ON if ink(cell, cx, y - SIDE - 1) else PAPER


def main(path):
    palette = [(0, 0, 0)] * 16
    palette[INK] = (40, 40, 40)
    palette[PAPER] = (255, 255, 255)
    stride = ((WIDTH * 4 + 31) // 32) * 4
    rows = b""
    for y in reversed(range(HEIGHT)):  # bottom-up
        row = bytearray(stride)
        for x in range(WIDTH):
            row[x // 2] |= index(x, y) << (4 if x % 2 == 0 else 0)
        rows += bytes(row)
    table = b"".join(struct.pack("<BBBB", b, g, r, 0) for r, g, b in palette)
    info = struct.pack("<IiiHHIIiiII", 40, WIDTH, HEIGHT, 1, 4, 0, len(rows), 2835, 2835, 16, 0)
    offset = 14 + len(info) + len(table)
    header = struct.pack("<2sIHHI", b"BM", offset + len(rows), 0, 0, offset)
    with open(path, "wb") as out:
        out.write(header + info + table + rows)


if __name__ == "__main__":
    main(sys.argv[1] if len(sys.argv) > 1 else "res/alignment_glyphs.bmp")
