#!/usr/bin/env python3
"""Edits real photographs and reads them back with independent readers: exiv2, ExifTool, and our own
reader in Python.

usage: photo_readback_test.py EDITOR

EDITOR is kivxmp_photo_editor. The photographs are those of sample_photo.sh.
"""

import json
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

import real_photos
import xmp_reader
from programs import Program

FOLDER = os.path.dirname(os.path.abspath(__file__))
EDITOR = None  # set from the command line
EDITS = {"dc:title[@x-default]": "Blinds, \u00e9t\u00e9 \u6d77", "xmp:Rating": "4"}


def output(*command, status=0):
    result = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=False)
    if result.returncode != status:
        raise AssertionError("%s: %d %s" % (" ".join(map(str, command)), result.returncode, result.stderr.decode()))
    return result.stdout.decode("utf-8", "surrogateescape")


def run_editor(photo, *edits):
    return output(*EDITOR.command(pathlib.Path(photo), *edits))


def script(name, *arguments):
    return output(sys.executable, os.path.join(FOLDER, name), *arguments)


def listed_by_exiv2(photo):
    """All that exiv2 sees but the packet as a whole."""
    # 1 is how it ends where one of the kinds is missing.
    result = subprocess.run(["exiv2", "-pa", photo], stdout=subprocess.PIPE, check=False)
    lines = result.stdout.decode("utf-8", "surrogateescape").splitlines()
    return {line for line in lines if not line.startswith("Exif.Image.XMLPacket")}


def listed_by_exiftool(photo):
    """All that ExifTool sees in the file but what changes with every file."""
    values = json.loads(output("exiftool", "-j", "-a", "-G1", "-struct", photo))[0]
    skipped = ("SourceFile", "System:", "ExifTool:")
    return {key: value for key, value in values.items() if not key.startswith(skipped)}


class RealPhotos(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)

    def sample(self, kind):
        photo = output(os.path.join(FOLDER, "sample_photo.sh"), kind).strip()
        before = shutil.copyfile(photo, os.path.join(self.folder.name, "before.jpg"))
        return before, shutil.copyfile(photo, os.path.join(self.folder.name, "after.jpg"))

    def edit(self, photo):
        edits = ["%s=%s" % edit for edit in EDITS.items()]
        self.assertEqual(run_editor(photo, *edits), "saved\n")
        self.assertEqual(run_editor(photo, *edits), "nothing to save\n")

    def check(self, before, after):
        self.assertIn("equal: ", script("photo_equal.py", before, after))

        # exiv2: the edit in the packet, all other lines as before.
        packet = output("exiv2", "-px", after)
        self.assertIn("Xmp.dc.title", packet)
        self.assertIn('lang="x-default" ' + EDITS["dc:title[@x-default]"], packet)
        added = listed_by_exiv2(after) - listed_by_exiv2(before)
        self.assertEqual(sorted(line.split()[0] for line in added), ["Xmp.dc.title", "Xmp.xmp.Rating"])
        self.assertEqual(listed_by_exiv2(before) - listed_by_exiv2(after), set())

        # ExifTool, which warns of whatever it finds strange.
        old, new = listed_by_exiftool(before), listed_by_exiftool(after)
        self.assertEqual(new.pop("XMP-dc:Title"), EDITS["dc:title[@x-default]"])
        self.assertEqual(new.pop("XMP-xmp:Rating"), 4)
        self.assertEqual(new, old)

    def test_with_a_packet_of_another_program(self):
        before, after = self.sample("with-packet")
        properties = script("xmp_reader.py", before).splitlines()
        self.assertGreaterEqual(len(properties), 3)
        self.edit(after)
        self.check(before, after)
        fresh = [line for line in script("xmp_reader.py", after).splitlines() if line not in properties]
        self.assertEqual(
            fresh,
            [
                "dc:title[@x-default]\t" + EDITS["dc:title[@x-default]"],
                "dc:title[@x-default]/?xml:lang\tx-default",
                "xmp:Rating\t4",
            ],
        )

    def test_without_a_packet(self):
        before, after = self.sample("without-packet")
        self.edit(after)
        self.check(before, after)
        # The packet stands right behind the Exif segment.
        with open(after, "rb") as file:
            data = file.read(70000)
        exif = data.index(b"Exif\0\0") - 4
        end = exif + 2 + int.from_bytes(data[exif + 2 : exif + 4], "big")
        self.assertEqual(data[end + 4 : end + 33], b"http://ns.adobe.com/xap/1.0/\0")

    def test_after_another_editor(self):
        before, after = self.sample("without-packet")
        for photo in (before, after):
            output("exiftool", "-q", "-overwrite_original", "-XMP-dc:Subject=sea", photo)
        self.edit(after)
        self.check(before, after)
        # And that editor goes on with our file.
        output("exiftool", "-q", "-overwrite_original", "-XMP-dc:Format=image/jpeg", after)
        self.assertEqual(run_editor(after), "nothing to save\n")
        self.assertIn("dc:format\timage/jpeg\n", script("xmp_reader.py", after))

    def test_many_rounds(self):
        before, after = self.sample("with-packet")
        self.edit(after)
        size = os.path.getsize(after)
        for number in range(10, 40):
            run_editor(after, "dc:source=%d" % number)
            if number == 10:
                size = os.path.getsize(after)
            self.assertEqual(os.path.getsize(after), size)
        self.assertIn("equal: ", script("photo_equal.py", before, after))
        self.assertEqual(sorted(os.listdir(self.folder.name)), ["after.jpg", "before.jpg"])


class EveryFormat(unittest.TestCase):
    """Photos that other programs made, with a packet of another program and without one."""

    NAMES = ("p.jpg", "p.png", "p.webp", "p.tif", "p.tiff", "p.dng", "p.xmp")

    def make(self, photo, with_packet):
        # ".tiff" is BigTIFF here; a DNG file is a TIFF that tells of which version it is.
        kind = {".tiff": "TIFF64", ".dng": "TIFF"}.get(photo.suffix, photo.suffix[1:])
        packet = ["-XMP-dc:Subject=sea", "-XMP-dc:Subject=sky", "-XMP-xmp:Rating=3",
                  "-XMP-dc:Description=north", "-XMP-dc:Description-de=Nord"]  # fmt: skip
        image = ["convert", "-size", "90x60", "gradient:navy-orange"]
        if kind == "xmp":
            output("exiftool", "-q", *packet, photo)
        elif kind == "TIFF64":
            # ExifTool does not write such files.
            if with_packet:
                output("exiftool", "-q", *packet, photo.with_suffix(".xmp"))
                image += ["-profile", photo.with_suffix(".xmp")]
            output(*image, "%s:%s" % (kind, photo))
            photo.with_suffix(".xmp").unlink(missing_ok=True)
        else:
            output(*image, "%s:%s" % (kind, photo))
            version = ["-DNGVersion=1 4 0 0"] if photo.suffix == ".dng" else []
            output("exiftool", "-q", "-overwrite_original", "-Exif:Artist=Anna", *version,
                   *(packet if with_packet else []), photo)  # fmt: skip

    def packet(self, photo):
        """The lines of the packet as ExifTool finds it; none where there is none."""
        data = photo.read_bytes() if photo.suffix == ".xmp" else subprocess.run(
            ["exiftool", "-b", "-XMP", photo], stdout=subprocess.PIPE, check=True).stdout  # fmt: skip
        return xmp_reader.read_packet(data) if data else []

    def test_others_read_what_was_saved(self):
        for name in self.NAMES:
            for with_packet in (False, True):
                with self.subTest(name, with_packet=with_packet), tempfile.TemporaryDirectory() as folder:
                    before = pathlib.Path(folder) / ("before" + pathlib.Path(name).suffix)
                    after = pathlib.Path(folder) / name
                    self.make(before, with_packet)
                    shutil.copyfile(before, after)
                    self.assertEqual(run_editor(after, real_photos.EDIT), "saved\n")
                    found = real_photos.differences(before, after)
                    self.assertEqual([d for d in found if not real_photos.EXPECTED.match(d)], [])
                    title = ["dc:title[@x-default]\t" + real_photos.TITLE,
                             "dc:title[@x-default]/?xml:lang\tx-default"]  # fmt: skip
                    old = self.packet(before)
                    self.assertEqual(bool(old), with_packet or name == "p.xmp")
                    self.assertEqual(sorted(self.packet(after)), sorted(old + title))
                    self.assertEqual(sorted(os.listdir(folder)), sorted([before.name, name]))


if __name__ == "__main__":
    EDITOR = Program.at(sys.argv.pop(1))
    unittest.main()
