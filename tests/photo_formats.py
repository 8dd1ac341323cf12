#!/usr/bin/env python3
"""Makes one photo of each format out of a JPEG photo, small and with the same picture.

usage: photo_formats.py PHOTO.jpg FOLDER      prints the names of the files

The JPEG file is a copy. ImageMagick makes PNG and WebP; what TIFF files are made of is written here,
in either byte order, classic and big, and with the tags that make a DNG file of it.
"""

import pathlib
import shutil
import struct
import subprocess
import sys

WIDTH = 600
BYTE, ASCII, SHORT, LONG, RATIO, SIGNED_RATIO, LONG8 = 1, 2, 3, 4, 5, 10, 16
SIZES = {BYTE: 1, ASCII: 1, SHORT: 2, LONG: 4, RATIO: 8, SIGNED_RATIO: 8, LONG8: 8}

# Name, byte order, big, raw.
TIFFS = (
    ("photo.tif", "<", False, False),
    ("photo-mm.tif", ">", False, False),
    ("photo-big.tif", "<", True, False),
    ("photo-big-mm.tif", ">", True, False),
    ("photo.dng", "<", False, True),
)


def values(order, kind, numbers):
    """The bytes of an entry's value."""
    if kind in (BYTE, ASCII):
        return bytes(numbers)
    letter = {SHORT: "H", LONG: "L", RATIO: "L", SIGNED_RATIO: "l", LONG8: "Q"}[kind]
    return struct.pack(order + letter * len(numbers), *numbers)


def tiff(order, is_big, is_raw, width, height, pixels):
    """A TIFF file of one picture, 8 bits a channel, in one strip behind the header."""
    header = 16 if is_big else 8
    entries = [
        (254, LONG, [0]), (256, LONG, [width]), (257, LONG, [height]), (258, SHORT, [8, 8, 8]),
        (259, SHORT, [1]), (262, SHORT, [34892 if is_raw else 2]), (271, ASCII, b"Harbour\0"),
        (272, ASCII, b"Harbour One\0"), (273, LONG8 if is_big else LONG, [header]),
        (274, SHORT, [1]), (277, SHORT, [3]), (278, LONG, [height]),
        (279, LONG8 if is_big else LONG, [len(pixels)]), (282, RATIO, [72, 1]), (283, RATIO, [72, 1]),
        (284, SHORT, [1]), (296, SHORT, [2]),
    ]  # fmt: skip
    if is_raw:
        entries += [
            (50706, BYTE, [1, 4, 0, 0]), (50707, BYTE, [1, 1, 0, 0]),
            (50708, ASCII, b"Harbour One\0"),
            (50721, SIGNED_RATIO, [1, 1, 0, 1, 0, 1, 0, 1, 1, 1, 0, 1, 0, 1, 0, 1, 1, 1]),
            (50778, SHORT, [21]),
        ]  # fmt: skip
    count, offset, inline = ("Q", "Q", 8) if is_big else ("H", "L", 4)
    first = header + len(pixels) + len(pixels) % 2
    row = "HH" + offset
    row_bytes = struct.calcsize(order + row) + inline
    behind = first + struct.calcsize(order + count) + row_bytes * len(entries) + inline
    directory = struct.pack(order + count, len(entries))
    tail = b""
    for tag, kind, numbers in entries:
        data = values(order, kind, numbers)
        directory += struct.pack(order + row, tag, kind, len(data) // SIZES[kind])
        if len(data) <= inline:
            directory += data.ljust(inline, b"\0")
        else:
            directory += struct.pack(order + offset, behind + len(tail))
            tail += data + b"\0" * (len(data) % 2)
    directory += struct.pack(order + offset, 0)
    mark = b"II" if order == "<" else b"MM"
    head = struct.pack(order + "HHHQ", 43, 8, 0, first) if is_big else struct.pack(order + "HL", 42, first)
    return mark + head + pixels + b"\0" * (len(pixels) % 2) + directory + tail


def make(photo, folder):
    """The files, of which the first is the JPEG one."""
    folder = pathlib.Path(folder)
    made = [folder / name for name in ("photo.jpg", "photo.png", "photo.webp")]
    shutil.copyfile(photo, made[0])
    size = ["convert", str(photo), "-resize", str(WIDTH), "-depth", "8"]
    # Without the packet: each gets its first one by whoever uses it.
    for path in made[1:]:
        subprocess.run([*size, "-strip", "-define", "png:exclude-chunks=date,time", path], check=True)
    pixels = subprocess.run([*size, "rgb:-"], check=True, capture_output=True).stdout
    for name, order, is_big, is_raw in TIFFS:
        made.append(folder / name)
        made[-1].write_bytes(
            tiff(order, is_big, is_raw, WIDTH, len(pixels) // (3 * WIDTH), pixels)
        )
    return made


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    print(*make(*sys.argv[1:]), sep="\n")
