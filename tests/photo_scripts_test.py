#!/usr/bin/env python3
"""Tests of photo_equal.py, real_photos.py and xmp_reader.py: what judges the library is itself judged here."""

import os
import struct
import subprocess
import sys
import tempfile
import unittest
import zlib

FOLDER = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, FOLDER)
sys.dont_write_bytecode = True
import photo_equal  # pylint: disable=wrong-import-position
import photo_formats  # pylint: disable=wrong-import-position
XMP = b"http://ns.adobe.com/xap/1.0/\0"


def segment(marker, payload):
    return struct.pack(">BBH", 0xFF, marker, len(payload) + 2) + payload


def index(order, pictures):
    """A multi-picture index over (length, offset) pairs."""
    entries = b"".join(struct.pack(order + "LLLHH", 0, size, at, 0, 0) for size, at in pictures)
    header = {">": b"MM", "<": b"II"}[order] + struct.pack(order + "HL", 42, 8)
    directory = struct.pack(order + "HHHLLL", 1, 0xB002, 7, len(entries), 26, 0)
    return segment(0xE2, b"MPF\0" + header + directory + entries)


SCAN = segment(0xDB, b"t" * 65) + segment(0xDA, b"s" * 6) + b"data\xff\xd9"


def photo(packet, order=">"):
    """A photo with a second picture that an index in front of the packet points to."""
    head = b"\xff\xd8" + segment(0xE1, b"Exif\0\0")
    rest = (segment(0xE1, XMP + packet) if packet is not None else b"") + SCAN
    base = len(head) + 4 + 4
    size = len(head) + len(index(order, [(0, 0), (0, 0)])) + len(rest)
    return head + index(order, [(size, 0), (6, size + 3 - base)]) + rest + b"gapsecond"


def run(script, *arguments):
    result = subprocess.run(
        [sys.executable, os.path.join(FOLDER, script), *arguments],
        stdout=subprocess.PIPE,
        stderr=subprocess.PIPE,
        check=False,
    )
    return result.returncode, result.stdout.decode(), result.stderr.decode()


def png(packet):
    def chunk(kind, content):
        return (struct.pack(">L", len(content)) + kind + content
                + struct.pack(">L", zlib.crc32(kind + content)))  # fmt: skip

    text = b"" if packet is None else chunk(b"iTXt", b"XML:com.adobe.xmp" + b"\0" * 5 + packet)
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", b"h" * 13) + text + chunk(b"iTXt", b"Title\0...")
            + chunk(b"IDAT", b"data") + chunk(b"IEND", b""))  # fmt: skip


def riff(chunks):
    return b"RIFF" + struct.pack("<L", 4 + len(chunks)) + b"WEBP" + chunks


def webp(packet):
    """2 by 2 pixels, with transparency."""
    image = b"VP8L" + struct.pack("<L", 6) + b"\x2f\x01\x40\x00\x10\x00"
    flags = 0x10 | (0 if packet is None else 4)
    header = b"VP8X" + struct.pack("<LL", 10, flags) + b"\1\0\0\1\0\0"
    if packet is None:
        return riff(header + image)
    end = b"\0" * (len(packet) % 2)
    return riff(header + image + b"XMP " + struct.pack("<L", len(packet)) + packet + end)


def small_tiff(packet):
    """Its directory stands at its end; with a packet, one with one entry more behind that."""
    data = photo_formats.tiff("<", False, False, 2, 1, b"pixels")
    if packet is None:
        return data
    (first,) = struct.unpack_from("<L", data, 4)
    (count,) = struct.unpack_from("<H", data, first)
    end = first + 2 + 12 * count
    at = len(data) + 2 + 12 * (count + 1) + 4
    entry = struct.pack("<HHLL", 700, 1, len(packet), at)
    directory = struct.pack("<H", count + 1) + data[first + 2 : end] + entry + data[end : end + 4]
    return data[:4] + struct.pack("<L", len(data)) + data[8:] + directory + packet


def judge(file, one, other):
    """What the script would say, run in this process."""
    try:
        photos = [photo_equal.Photo(file("one", one)), photo_equal.Photo(file("other", other))]
    except (photo_equal.Unreadable, struct.error, IndexError, ValueError):
        return "different"
    return "different" if photo_equal.difference(*photos) else "equal"


class WithFiles(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)

    def file(self, name, data):
        path = os.path.join(self.folder.name, name)
        with open(path, "wb") as out:
            out.write(data)
        return path


class PhotoEqual(WithFiles):
    def compare(self, one, other):
        status, text, _ = run("photo_equal.py", self.file("one", one), self.file("other", other))
        return status, text

    def test_packets_do_not_count(self):
        for order in "><":
            for packet in (None, b"", b"a longer packet"):
                status, text = self.compare(photo(b"old", order), photo(packet, order))
                self.assertEqual((status, text[:6]), (0, "equal:"), text)

    def test_every_other_byte_counts(self):
        good = photo(b"old")
        packet = good.index(b"old")
        first = photo_equal.Photo(self.file("good", good))
        for at in range(len(good)):
            if packet <= at < packet + 3:
                continue
            bad = bytearray(good)
            bad[at] ^= 1
            try:
                other = photo_equal.Photo(self.file("bad", bytes(bad)))
            except (photo_equal.Unreadable, struct.error):
                continue
            self.assertTrue(photo_equal.difference(first, other), at)

    def test_an_index_that_was_not_corrected(self):
        bad = photo(b"old").replace(segment(0xE1, XMP + b"old"), segment(0xE1, XMP + b"longer"))
        self.assertEqual(
            self.compare(photo(b"old"), bad),
            (1, "different: the multi-picture index points to other places\n"),
        )

    def test_cut_files(self):
        self.assertEqual(self.compare(photo(b"old")[:-9], photo(b"new")[:-9])[0], 0)
        self.assertEqual(self.compare(photo(b"old"), photo(b"new")[:-9])[0], 1)

    def test_other_formats(self):
        for name, build in (("PNG", png), ("WebP", webp), ("TIFF", small_tiff)):
            plain, short, longer = build(None), build(b"packet"), build(b"a longer packet")
            for one, other in ((plain, short), (short, longer), (plain, plain), (longer, longer)):
                status, text = self.compare(one, other)
                self.assertEqual((status, text[:6]), (0, "equal:"), name)
            # Every byte outside of the packet, in turn.
            packet = longer.index(b"a longer packet")
            places = photo_equal.Photo(self.file("longer", longer)).packet_places
            self.assertEqual(places, [(packet, packet + 15)])
            for at in range(len(longer)):
                if packet <= at < packet + 15:
                    continue
                bad = bytearray(longer)
                bad[at] ^= 1
                self.assertEqual(judge(self.file, plain, bytes(bad)), "different", (name, at))
            for bad in (longer[:-1], plain + b"behind", longer + b"behind"):
                self.assertEqual(judge(self.file, plain, bad), "different", name)

    def test_a_header_made_for_the_packet(self):
        image = b"VP8L" + struct.pack("<L", 6) + b"\x2f\x01\x40\x00\x10\x00"
        self.assertEqual(self.compare(riff(image), webp(b"packet"))[0], 0)
        other = image[:9] + b"\x02" + image[10:]  # an image of another size
        self.assertEqual(self.compare(riff(other), webp(b"packet"))[0], 1)

    def test_no_photos(self):
        for bad in (b"", b"no photo", b"\xff\xd8 no marker"):
            self.assertEqual(self.compare(bad, bad)[0], 1)
        self.assertEqual(run("photo_equal.py", "/nonexistent", "/nonexistent")[0], 1)
        self.assertEqual(run("photo_equal.py")[0], 1)


HEAD = (
    '<x:xmpmeta xmlns:x="adobe:ns:meta/">'
    '<rdf:RDF xmlns:rdf="http://www.w3.org/1999/02/22-rdf-syntax-ns#" '
    'xmlns:dc="http://purl.org/dc/elements/1.1/" xmlns:e="http://example.org/e/">'
)
TAIL = "</rdf:RDF></x:xmpmeta>"

# Body of the packet, lines of the list.
FORMS = [
    ('<rdf:Description rdf:about="" dc:format="a"/>', ["dc:format\ta"]),
    ("<rdf:Description><dc:format>a &amp; b</dc:format></rdf:Description>", ["dc:format\ta & b"]),
    ("<rdf:Description><e:n>a\tb\\c\nd</e:n></rdf:Description>", ["e:n\ta\\tb\\\\c\\nd"]),
    ('<rdf:Description><e:u rdf:resource="http://x/"/></rdf:Description>', ["e:u\t<http://x/>"]),
    (
        "<rdf:Description><dc:subject><rdf:Bag><rdf:li>a</rdf:li><rdf:li/></rdf:Bag>"
        "</dc:subject></rdf:Description>",
        ["dc:subject[1]\ta", "dc:subject[2]\t"],
    ),
    ("<rdf:Description><dc:subject><rdf:Bag/></dc:subject></rdf:Description>", ["dc:subject\t[]"]),
    (
        '<rdf:Description><dc:title><rdf:Alt><rdf:li xml:lang="x-default">a</rdf:li>'
        '<rdf:li xml:lang="de">b</rdf:li></rdf:Alt></dc:title></rdf:Description>',
        [
            "dc:title[@x-default]\ta",
            "dc:title[@x-default]/?xml:lang\tx-default",
            "dc:title[@de]\tb",
            "dc:title[@de]/?xml:lang\tde",
        ],
    ),
    (
        '<rdf:Description><e:s rdf:parseType="Resource"><e:f>a</e:f></e:s></rdf:Description>',
        ["e:s/e:f\ta"],
    ),
    (
        '<rdf:Description><e:s><rdf:Description e:f="a"><e:g>b</e:g></rdf:Description></e:s>'
        "</rdf:Description>",
        ["e:s/e:f\ta", "e:s/e:g\tb"],
    ),
    ('<rdf:Description><e:s e:f="a" e:g="b"/></rdf:Description>', ["e:s/e:f\ta", "e:s/e:g\tb"]),
    (
        '<rdf:Description><e:q rdf:parseType="Resource"><rdf:value>v</rdf:value><e:r>w</e:r></e:q>'
        "</rdf:Description>",
        ["e:q\tv", "e:q/?e:r\tw"],
    ),
    (
        '<rdf:Description about="" xml:lang="de" rdf:type="http://t"><e:n rdf:datatype="d">5</e:n>'
        "</rdf:Description>",
        ["rdf:type\t<http://t>", "e:n\t5", "e:n/?rdf:datatype\t<d>"],
    ),
    (
        '<rdf:Description><dc:title><rdf:Alt><rdf:li xml:lang="de">a</rdf:li>'
        '<rdf:li xml:lang="DE">b</rdf:li></rdf:Alt></dc:title></rdf:Description>',
        [
            "dc:title[1]\ta",
            "dc:title[1]/?xml:lang\tde",
            "dc:title[2]\tb",
            "dc:title[2]/?xml:lang\tDE",
        ],
    ),
    (
        '<rdf:Description><e:s><e:K e:f="a"/></e:s></rdf:Description>',
        ["e:s/?rdf:type\t<http://example.org/e/K>", "e:s/e:f\ta"],
    ),
    ("<rdf:Description/>", []),
]


class RealPhotos(WithFiles):
    def test_a_folder_that_is_not_there(self):
        run = subprocess.run([sys.executable, os.path.join(FOLDER, "real_photos.py"), "editor", "missing"],
                             capture_output=True, text=True, check=False)
        self.assertEqual((run.returncode, run.stdout, run.stderr),
                         (1, "", "there is no folder missing\n"))


class XmpReader(WithFiles):
    def test_forms(self):
        for body, lines in FORMS:
            packet = self.file("p", (HEAD + body + TAIL).encode())
            status, text, errors = run("xmp_reader.py", packet)
            self.assertEqual((status, text.splitlines(), errors), (0, lines, ""))

    def test_encodings_and_wrappers(self):
        body = '<rdf:Description dc:format="\u00e9\u6d77"/>'
        packet = '<?xpacket begin="" id=""?>%s%s%s\n  <?xpacket end="w"?>' % (HEAD, body, TAIL)
        for encoding in ("utf-8", "utf-8-sig", "utf-16"):
            status, text, _ = run("xmp_reader.py", self.file("p", packet.encode(encoding)))
            self.assertEqual((status, text), (0, "dc:format\t\u00e9\u6d77\n"), encoding)

    def test_a_photo(self):
        data = photo((HEAD + '<rdf:Description dc:format="a"/>' + TAIL).encode())
        self.assertEqual(run("xmp_reader.py", self.file("p", data))[:2], (0, "dc:format\ta\n"))

    def test_what_cannot_be_read(self):
        for bad in (b"", b"text", b"<a/>", b"<a>", photo(None), HEAD.encode()):
            status, text, errors = run("xmp_reader.py", self.file("p", bad))
            self.assertEqual((status, text), (1, ""))
            self.assertNotEqual(errors, "")


if __name__ == "__main__":
    unittest.main()
