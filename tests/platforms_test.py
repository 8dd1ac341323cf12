#!/usr/bin/env python3
"""The builds for Linux and for Windows give the same results, byte for byte, apart from paths.

usage: platforms_test.py LINUX_BIN_DIR WINDOWS_BIN_DIR
       under a display, behind scripts/wine.sh --together
"""

import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

from programs import Program

HERE = pathlib.Path(__file__).resolve().parent
BINS = []  # set from the command line: Linux, Windows
EDITS = [
    "dc:title[@x-default]=Größe, 大きさ & <size>\U0001f600",
    "dc:title[@de]=Zweite Sprache",
    'dc:subject=["sea", "Möwe", "空"]',
    "dc:description[@x-default]=one line\nand another\tone",
    "photoshop:City=Göteborg",
    "xmp:Rating=4",
]


def sample(choice):
    run = subprocess.run(
        [HERE / "sample_photo.sh", choice], capture_output=True, text=True, check=True
    )
    return pathlib.Path(run.stdout.strip())


class Platforms(unittest.TestCase):
    """Each test runs the same on both, in a folder each."""

    maxDiff = 2000

    def setUp(self):
        self.folders = [pathlib.Path(tempfile.mkdtemp()) for _ in BINS]
        for folder in self.folders:
            self.addCleanup(shutil.rmtree, folder)

    def run_program(self, platform, name, *arguments, **environment):
        """Paths are given relative to the platform's folder: as pathlib.Path."""
        folder = self.folders[platform]
        program = Program(BINS[platform], name)
        words = [folder / a if isinstance(a, pathlib.Path) else a for a in arguments]
        values = {"KIV_PREF_DIR": folder / "preferences", **environment}
        run = subprocess.run(
            program.command(*words),
            capture_output=True,
            timeout=120,
            env=dict(os.environ, **program.variables(**values)),
            check=False,
        )
        # Messages name files.
        told = run.stderr.replace(program.word(folder).encode() + b"\\", b"")
        told = told.replace(str(folder).encode() + b"/", b"")
        return run.returncode, run.stdout, told

    def same(self, name, *arguments, **environment):
        """Runs it on both; what both answer."""
        first, second = (
            self.run_program(platform, name, *arguments, **environment) for platform in (0, 1)
        )
        self.assertEqual(first, second)
        return first

    def put(self, source, name):
        for folder in self.folders:
            shutil.copy(source, folder / name)
            (folder / name).chmod(0o644)
        return pathlib.Path(name)

    def assert_same_file(self, name):
        first, second = ((folder / name).read_bytes() for folder in self.folders)
        self.assertEqual(len(first), len(second))
        self.assertTrue(first == second, f"{name} differs")
        return first

    def test_dumped_and_extracted_metadata(self):
        for source in (
            sample("with-packet"), sample("without-packet"), HERE / "full_packet.xmp"
        ):  # fmt: skip
            with self.subTest(source):
                file = self.put(source, "metadata" + source.suffix)
                status, text, _ = self.same("kivhost", "--dump", file)
                self.assertEqual(status, 0)
                self.assertNotIn(b"\r\n", text)
                self.same("kivhost", "--extract", "-", file)
                status, _, _ = self.same("kivhost", "--extract", pathlib.Path("out.xmp"), file)
                if status == 0:
                    self.assert_same_file("out.xmp")

    def test_lists_of_definitions(self):
        for language in ("en_US", "de_DE", "ja_JP", "fr_FR", "xx"):
            with self.subTest(language):
                status, text, _ = self.same(
                    "kivhost", "--list-definitions", "--language", language,
                    KIV_DEFINITIONS_DIR=HERE / "definitions",
                )  # fmt: skip
                self.assertEqual(status, 0)
                self.assertTrue(text)

    def test_what_the_programs_tell_about_themselves(self):
        for arguments in (["--help"], ["--version"], ["--nonsense"], ["--scale", "x", "photo"], []):
            with self.subTest(arguments):
                self.same("kivhost", *arguments)

    def test_failures_of_bad_files(self):
        cut = self.put(sample("with-packet"), "cut.jpg")
        for folder in self.folders:
            (folder / "cut.jpg").write_bytes((folder / "cut.jpg").read_bytes()[:3000])
            (folder / "empty.jpg").write_bytes(b"")
            (folder / "text.jpg").write_bytes(b"this is no photo")
            (folder / "broken.xmp").write_bytes(b"<x:xmpmeta xmlns:x='adobe:ns:meta/'><a>")
        for name in (cut, *map(pathlib.Path, ("empty.jpg", "text.jpg", "broken.xmp"))):
            with self.subTest(name):
                status, _, _ = self.same("kivhost", "--dump", name)
                self.assertEqual(status, 1)

    def test_packets_edited_through_the_interface_in_c(self):
        for source in (sample("with-packet"), sample("without-packet"), HERE / "full_packet.xmp"):
            with self.subTest(source):
                file = self.put(source, "edited" + source.suffix)
                edits = ["dc:title[@x-default]=Möwe 空", "xmp:Rating=5", "photoshop:City=Oslo"]
                status, text, _ = self.same("kivxmp_photo_editor", file, *edits)
                self.assertEqual((status, text), (0, b"saved\n"))
                self.assertNotEqual(self.assert_same_file(file), source.read_bytes())
                self.same("kivxmp_photo_editor", file, *edits)

    def test_packets_edited_in_the_dialog(self):
        for source in (sample("with-packet"), sample("without-packet"), HERE / "full_packet.xmp"):
            with self.subTest(source):
                file = self.put(source, "edited" + source.suffix)
                sets = [word for edit in EDITS for word in ("--set", edit)]
                status, text, told = self.same("kivhost", *sets, "--auto", "ok", file)
                self.assertEqual(status, 0, told)
                self.assertTrue(text.startswith(b"confirmed\n"))
                self.assertNotEqual(self.assert_same_file(file), source.read_bytes())
                self.assertEqual(self.same("kivhost", "--auto", "ok", file)[1], b"confirmed\n")
                self.same("kivhost", "--dump", file)

    def test_drawn_artwork(self):
        samples = sorted((HERE / "artwork").rglob("*.svg"))
        icons = sorted((HERE.parent / "resources" / "artwork").rglob("*.svg"))
        self.assertGreater(len(samples), 100)
        files = [self.put(path, path.parent.name + "-" + path.name)
                 for path in icons + samples[::9]]  # fmt: skip
        for file in files[::4]:
            with self.subTest(file):
                self.same("svgloom", "calls", file, "--width", "33.3", "--height", "70")
                self.same("svgloom", "tree", file)
        out = pathlib.Path("out")
        self.same("svgloom", "render", *files, "--out-dir", out, "-w", "48", "-z", "1.1",
                  "--contact-sheet", pathlib.Path("sheet.png"), "--brightness", "0,50,100",
                  "--scales", "1,1.5")  # fmt: skip
        self.assert_same_file("sheet.png")
        names = sorted(path.name for path in (self.folders[0] / out).iterdir())
        self.assertGreater(len(names), len(files) // 2)
        for name in names:
            self.assert_same_file(out / name)
        self.assertEqual(self.same("svgloom", "render", files[0], "-o", "-")[0], 0)

    def test_values_of_artwork(self):
        for command in (["names"], ["color", "rgb(1,2,3)"], ["path", "M0 0A5 3 30 1 0 9 .7z"],
                        ["transform", "rotate(33.3) skewX(7) translate(1e-3)"], ["--help"],
                        ["render", "--help"], ["--version"], ["path"], ["nonsense"],
                        ["color", "über"], ["tree", pathlib.Path("missing.svg")],
                        ["render", pathlib.Path("missing.svg"), "-o", "-"]):  # fmt: skip
            with self.subTest(command):
                self.same("svgloom", *command)


if __name__ == "__main__":
    BINS = [pathlib.Path(sys.argv.pop(1)).resolve(), pathlib.Path(sys.argv.pop(1)).resolve()]
    unittest.main()
