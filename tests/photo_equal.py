#!/usr/bin/env python3
"""Tells whether two JPEG files are the same photo but for their XMP packet.

usage: photo_equal.py ONE OTHER

Cuts the XMP segments out of both files, and the fields that point past them (offsets in a
multi-picture index, and the first picture's length there), and compares all the rest byte for byte.
The pictures of an index must be found at the same place of the rest. Exit status 0 if the files are
equal, 1 if not or if one of them is no JPEG file.

Written from the formats' documents alone and sharing no code with the library, so that it can
judge it.
"""

import struct
import sys

XMP = b"http://ns.adobe.com/xap/1.0/\0"
EXTENDED_XMP = b"http://ns.adobe.com/xmp/extension/\0"
INDEX = b"MPF\0"
PICTURE_LIST = 0xB002


class Unreadable(Exception):
    pass


def segments(data):
    """(marker, begin, payload, end) of the segments before the scan; a cut one is left out."""
    if data[:2] != b"\xff\xd8":
        raise Unreadable("is no JPEG file")
    at = 2
    while at < len(data):
        if data[at] != 0xFF:
            raise Unreadable("no marker at byte %d" % at)
        while at < len(data) and data[at] == 0xFF:
            at += 1
        if at >= len(data):
            return
        marker, begin = data[at], at - 1
        at += 1
        if marker == 0xDA:
            return
        if marker == 0x01 or 0xD0 <= marker <= 0xD7:
            continue
        if marker in (0x00, 0xD8, 0xD9):
            raise Unreadable("marker %02X out of place at byte %d" % (marker, begin))
        if at + 2 > len(data):
            return
        (length,) = struct.unpack_from(">H", data, at)
        if length < 2:
            raise Unreadable("impossible length at byte %d" % at)
        end = at + length
        if end > len(data):
            return
        yield marker, begin, at + 2, end
        at = end


def index_fields(data, base, end):
    """Fields of a multi-picture index that may change: (position, where it points to)."""
    order = {b"MM": ">", b"II": "<"}.get(data[base : base + 2])
    if order is None:
        raise Unreadable("the multi-picture index has no byte order")
    version, directory = struct.unpack_from(order + "HL", data, base + 2)
    if version != 42:
        raise Unreadable("the multi-picture index is of version %d" % version)
    (count,) = struct.unpack_from(order + "H", data, base + directory)
    fields = []
    for number in range(count):
        entry = base + directory + 2 + 12 * number
        tag, kind, length, place = struct.unpack_from(order + "HHLL", data, entry)
        if tag != PICTURE_LIST:
            continue
        if kind != 7 or base + place + length > end:
            raise Unreadable("the multi-picture index has a bad list")
        for picture in range(base + place, base + place + length, 16):
            _, size, offset = struct.unpack_from(order + "LLL", data, picture)
            if offset == 0:
                fields.append((picture + 4, size))
            else:
                fields.append((picture + 8, base + offset))
    return fields


class Photo:
    def __init__(self, path):
        with open(path, "rb") as file:
            data = file.read()
        cuts = []
        targets = []
        self.packets = 0
        for marker, begin, payload, end in segments(data):
            body = data[payload:end]
            if marker == 0xE1 and body.startswith((XMP, EXTENDED_XMP)):
                cuts.append((begin, end))
                self.packets += 1
            elif marker == 0xE2 and body.startswith(INDEX):
                for position, target in index_fields(data, payload + len(INDEX), end):
                    cuts.append((position, position + 4))
                    targets.append(target)
        cuts.sort()
        rest = bytearray()
        self.kept = []  # (position in the rest, position in the file) of each run
        at = 0
        for begin, end in cuts + [(len(data), len(data))]:
            self.kept.append((len(rest), at))
            rest += data[at:begin]
            at = end
        self.rest = bytes(rest)
        # A picture's place in the rest. An end behind the file's stays as far behind it.
        self.targets = [
            target - sum(min(end, target) - begin for begin, end in cuts if begin < target)
            for target in targets
        ]

    def position(self, in_rest):
        begin, at = [run for run in self.kept if run[0] <= in_rest][-1]
        return at + in_rest - begin


def first_difference(one, other):
    low, high = 0, min(len(one), len(other))
    while low < high:
        middle = (low + high + 1) // 2
        if one[:middle] == other[:middle]:
            low = middle
        else:
            high = middle - 1
    return low


def main():
    if len(sys.argv) != 3:
        print(__doc__.strip(), file=sys.stderr)
        return 1
    photos = []
    for path in sys.argv[1:]:
        try:
            photos.append(Photo(path))
        except (Unreadable, struct.error) as error:
            print("%s: %s" % (path, error))
            return 1
        except OSError as error:
            print("%s: %s" % (path, error.strerror))
            return 1
    one, other = photos
    if one.rest != other.rest:
        at = first_difference(one.rest, other.rest)
        print(
            "different: beside the packet there are %d and %d bytes; the first difference is at "
            "byte %d and %d"
            % (len(one.rest), len(other.rest), one.position(at), other.position(at))
        )
        return 1
    if one.targets != other.targets:
        print("different: the multi-picture index points to other places")
        return 1
    print(
        "equal: %d bytes beside the packet (%d and %d XMP segments)"
        % (len(one.rest), one.packets, other.packets)
    )
    return 0


if __name__ == "__main__":
    sys.exit(main())
