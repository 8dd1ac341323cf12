#!/usr/bin/env python3
"""Tells whether two JPEG, PNG, WebP or TIFF files are the same photo but for their XMP packet.

usage: photo_equal.py ONE OTHER

Cuts the packets out of both files, and the fields that point past them (offsets in a multi-picture
index, and the first picture's length there; the size of a WebP file and its header chunk), and
compares all the rest byte for byte. The pictures of an index must be found at the same place of the
rest, and what else stood in a header chunk must be said by the other file, too. Nothing in a TIFF or
DNG file may move: the directory may stand elsewhere in OTHER, but holds the same entries, and behind
the end of ONE there is nothing but directory and packet. Exit status 0 if the files are equal, 1 if
not or if one of them is of no such format.

Written from the formats' documents alone and sharing no code with the library, so that it can
judge it.
"""

import struct
import sys
import zlib

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


class Parts:
    """What a format finds in a file."""

    def __init__(self):
        self.cuts = []  # (begin, end) of what does not count
        self.targets = []  # where pointers among them lead
        self.facts = ()  # what the cut bytes say besides
        self.packets = 0
        self.packet_places = []  # (begin, end) of the text of each that is not compressed
        self.stays = False  # nothing moves


def jpeg_parts(data, parts):
    for marker, begin, payload, end in segments(data):
        body = data[payload:end]
        if marker == 0xE1 and body.startswith((XMP, EXTENDED_XMP)):
            parts.cuts.append((begin, end))
            parts.packets += 1
            if body.startswith(XMP):
                parts.packet_places.append((payload + len(XMP), end))
        elif marker == 0xE2 and body.startswith(INDEX):
            for position, target in index_fields(data, payload + len(INDEX), end):
                parts.cuts.append((position, position + 4))
                parts.targets.append(target)


def png_parts(data, parts):
    at = 8
    while at + 8 <= len(data):
        length, kind = struct.unpack_from(">L4s", data, at)
        end = at + 12 + length
        if kind == b"iTXt" and data[at + 8 : end].startswith(b"XML:com.adobe.xmp\0"):
            if zlib.crc32(data[at + 4 : end - 4]) != int.from_bytes(data[end - 4 : end], "big"):
                raise Unreadable("the checksum of the chunk at byte %d is wrong" % at)
            parts.cuts.append((at, end))
            parts.packets += 1
            text = at + 8 + 18  # behind the keyword; two numbers, language, keyword once more
            if data[text] == 0:
                text = data.index(b"\0", data.index(b"\0", text + 2) + 1) + 1
                parts.packet_places.append((text, end - 4))
        if kind == b"IEND":
            return
        at = end
    raise Unreadable("there is no end")


def webp_header(kind, content):
    """(flags but that of the packet, the rest) of the header that an image has or would have."""
    if kind == b"VP8X":
        return content[0] & ~4, content[1:10]
    if kind == b"VP8 ":
        width, height = (size & 0x3FFF for size in struct.unpack_from("<HH", content, 6))
        alpha = 0
    else:
        bits = int.from_bytes(content[1:5], "little")
        width, height, alpha = (bits & 0x3FFF) + 1, (bits >> 14 & 0x3FFF) + 1, bits >> 28 & 1
    sizes = (width - 1).to_bytes(3, "little") + (height - 1).to_bytes(3, "little")
    return alpha << 4, b"\0\0\0" + sizes


def webp_parts(data, parts):
    (size,) = struct.unpack_from("<L", data, 4)
    if size + 8 > len(data) or size % 2 == 1:
        raise Unreadable("the file's size is not what it says")
    parts.cuts.append((4, 8))
    at = 12
    tells = False
    while at < size + 8:
        kind, length = struct.unpack_from("<4sL", data, at)
        end = at + 8 + length + length % 2
        if end > size + 8:
            raise Unreadable("the chunk at byte %d is longer than the file" % at)
        if kind == b"XMP ":
            if data[at + 8 + length : end].strip(b"\0"):
                raise Unreadable("behind the packet there is no zero")
            parts.packets += 1
            parts.packet_places.append((at + 8, at + 8 + length))
        if kind in (b"XMP ", b"VP8X"):
            parts.cuts.append((at, end))
        if not parts.facts and kind in (b"VP8X", b"VP8 ", b"VP8L"):
            parts.facts = webp_header(kind, data[at + 8 : end])
            tells = kind == b"VP8X" and data[at + 8] & 4 != 0
        at = end
    if tells != (parts.packets > 0):
        raise Unreadable("the header does not say whether there is a packet")


def tiff_parts(data, parts):
    order = {b"II": "<", b"MM": ">"}[data[:2]]
    (version,) = struct.unpack_from(order + "H", data, 2)
    is_big = version == 43
    pointer, count, value, at_pointer = ("Q", "Q", 8, 8) if is_big else ("L", "H", 4, 4)
    (first,) = struct.unpack_from(order + pointer, data, at_pointer)
    (entries,) = struct.unpack_from(order + count, data, first)
    at = first + struct.calcsize(order + count)
    found = []
    for _ in range(entries):
        tag, kind, length = struct.unpack_from(order + "HH" + pointer, data, at)
        content = data[at + 4 + value : at + 4 + 2 * value]
        if tag == 700:
            begin = struct.unpack(order + pointer, content)[0] if length > value else at + 4 + value
            if kind not in (1, 7) or begin + length > len(data):
                raise Unreadable("the packet's entry is wrong")
            parts.cuts.append((begin, begin + length))
            parts.packets += 1
            parts.packet_places.append((begin, begin + length))
        else:
            found.append((tag, kind, length, content))
        at += 4 + 2 * value
    found.append(data[at : at + value])  # where the next directory is
    parts.cuts += [(at_pointer, at_pointer + value), (first, at + value)]
    parts.facts = tuple(found)
    parts.stays = True


FORMATS = (
    (b"\xff\xd8", jpeg_parts),
    (b"\x89PNG\r\n\x1a\n", png_parts),
    (b"RIFF", webp_parts),
    (b"II*\0", tiff_parts),
    (b"MM\0*", tiff_parts),
    (b"II+\0", tiff_parts),
    (b"MM\0+", tiff_parts),
)


def merged(ranges):
    """In order, and those that touch as one."""
    result = []
    for begin, end in sorted(ranges):
        if result and begin <= result[-1][1]:
            result[-1] = (result[-1][0], max(end, result[-1][1]))
        else:
            result.append((begin, end))
    return result


class Photo:
    def __init__(self, path):
        with open(path, "rb") as file:
            data = file.read()
        parts = Parts()
        read = next((read for start, read in FORMATS if data.startswith(start)), None)
        if read is None:
            raise Unreadable("is of no format that can be compared")
        read(data, parts)
        self.data = data
        self.packets = parts.packets
        self.packet_places = parts.packet_places
        self.facts = parts.facts
        self.stays = parts.stays
        cuts = self.cuts = merged(parts.cuts)
        targets = parts.targets
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


def stays_where_it_was(one, other):
    """What is wrong with a file in which nothing may move, if anything."""
    end = len(one.data)
    if len(other.data) < end:
        return "the file became shorter"
    at = 0
    # What stood in these places of the first file, the old packet included, stays where it is.
    for begin, behind in [cut for cut in other.cuts if cut[0] < end] + [(end, end)]:
        if one.data[at:begin] != other.data[at:begin]:
            place = at + first_difference(one.data[at:begin], other.data[at:begin])
            return "the first difference is at byte %d" % place
        at = behind
    at = end
    for begin, behind in [cut for cut in other.cuts if cut[1] > end] + [(len(other.data),) * 2]:
        if other.data[at:begin].strip(b"\0") or begin - at >= 16:
            return "there are foreign bytes behind the end, at byte %d" % at
        at = max(at, behind)
    return None


def difference(one, other):
    """What is not the same, in words; nothing if all is."""
    if one.facts != other.facts:
        return "the header or directory says something else"
    if one.stays and other.stays:
        return stays_where_it_was(one, other)
    if one.rest != other.rest:
        at = first_difference(one.rest, other.rest)
        return (
            "beside the packet there are %d and %d bytes; the first difference is at byte %d and %d"
            % (len(one.rest), len(other.rest), one.position(at), other.position(at))
        )
    if one.targets != other.targets:
        return "the multi-picture index points to other places"
    return None


def main():
    if len(sys.argv) != 3:
        print(__doc__.strip(), file=sys.stderr)
        return 1
    photos = []
    for path in sys.argv[1:]:
        try:
            photos.append(Photo(path))
        except (Unreadable, struct.error, IndexError, ValueError) as error:
            print("%s: %s" % (path, error))
            return 1
        except OSError as error:
            print("%s: %s" % (path, error.strerror))
            return 1
    wrong = difference(*photos)
    if wrong:
        print("different: " + wrong)
        return 1
    one, other = photos
    kept = len(one.data) if one.stays else len(one.rest)
    print(
        "equal: %d bytes %s (%d and %d packets)"
        % (kept, "where they were" if one.stays else "beside the packet", one.packets, other.packets)
    )
    return 0


if __name__ == "__main__":
    sys.exit(main())
