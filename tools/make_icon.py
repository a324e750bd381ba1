#!/usr/bin/env python3
"""Draws the program's icon, a small wall calendar, as res/quernal.ico.

The icon is data made once; this script keeps how it was made. Run it again
after changing the drawing: python3 tools/make_icon.py res/quernal.ico
"""
import struct
import sys


def pixel(x, y, size):
    """BGRA of the icon at (x, y), y counted from the top."""
    s = size / 32.0
    margin, top, band = round(3 * s), round(4 * s), round(11 * s)
    if x < margin or x >= size - margin or y < top or y >= size - round(2 * s):
        return (0, 0, 0, 0)  # transparent round the page
    edge = x in (margin, size - margin - 1) or y in (top, size - round(2 * s) - 1)
    if edge:
        return (60, 60, 60, 255)
    if y < band:
        return (40, 40, 200, 255)  # the red heading band
    # A grid of day cells below the band.
    cell = max(2, round(4 * s))
    gx, gy = (x - margin - 2) % cell, (y - band - 2) % cell
    if gx < cell - 1 and gy < cell - 1 and x < size - margin - 2 and y < size - round(2 * s) - 2:
        return (224, 224, 224, 255)
    return (255, 255, 255, 255)


def image(size):
    rows = []
    for y in reversed(range(size)):  # bottom-up
        rows.append(b"".join(bytes(pixel(x, y, size)) for x in range(size)))
    xor = b"".join(rows)
    mask_row = ((size + 31) // 32) * 4
    and_mask = b"\0" * (mask_row * size)  # alpha decides; the mask is all opaque
    header = struct.pack("<IiiHHIIiiII", 40, size, size * 2, 1, 32, 0, len(xor) + len(and_mask), 0, 0, 0, 0)
    return header + xor + and_mask


def main(path):
    sizes = [16, 32, 48]
    images = [image(s) for s in sizes]
    out = struct.pack("<HHH", 0, 1, len(sizes))
    offset = 6 + 16 * len(sizes)
    for size, data in zip(sizes, images):
        out += struct.pack("<BBBBHHII", size, size, 0, 0, 1, 32, len(data), offset)
        offset += len(data)
    with open(path, "wb") as f:
        f.write(out + b"".join(images))


if __name__ == "__main__":
    main(sys.argv[1] if len(sys.argv) > 1 else "res/quernal.ico")
