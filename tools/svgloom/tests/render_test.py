#!/usr/bin/env python3
"""Tests `svgloom render`: pictures and contact sheets. usage: render_test.py BIN_DIR"""

import pathlib
import struct
import sys
import unittest
import zlib

HERE = pathlib.Path(__file__).resolve().parent
TOP = HERE.parent.parent.parent
sys.path.insert(0, str(TOP / "tests"))
from programs import Program  # noqa: E402
from sample_artwork import ICON, MALFORMED, THROWS  # noqa: E402
from tool_tests import BAD, DONE, WRONG_USAGE, ToolTest  # noqa: E402


class Picture:
    """A PNG file of 8 bits for each of red, green, blue and alpha."""

    def __init__(self, data):
        assert data[:8] == b"\x89PNG\r\n\x1a\n", data[:20]
        at, packed = 8, b""
        while at < len(data):
            length, kind = struct.unpack(">I4s", data[at:at + 8])
            content = data[at + 8:at + 8 + length]
            assert struct.unpack(">I", data[at + 8 + length:at + 12 + length])[0] == \
                zlib.crc32(kind + content)
            if kind == b"IHDR":
                self.width, self.height, *rest = struct.unpack(">IIBBBBB", content)
                assert rest == [8, 6, 0, 0, 0], rest
            if kind == b"IDAT":
                packed += content
            at += length + 12
        self.rows = list(self.unfiltered(zlib.decompress(packed)))

    def unfiltered(self, data):
        size = self.width * 4
        above = bytearray(size)
        for start in range(0, len(data), size + 1):
            kind, row = data[start], bytearray(data[start + 1:start + 1 + size])
            for i in range(size if kind else 0):
                left, up = row[i - 4] if i >= 4 else 0, above[i]
                if kind == 4:
                    corner = above[i - 4] if i >= 4 else 0
                    kept = min((abs(up - corner), 0, left), (abs(left - corner), 1, up),
                               (abs(left + up - 2 * corner), 2, corner))[2]
                else:
                    kept = (0, left, up, (left + up) // 2)[kind]
                row[i] = (row[i] + kept) & 0xFF
            above = row
            yield row

    @property
    def size(self):
        return self.width, self.height

    def at(self, x, y):
        return tuple(self.rows[y][4 * x:4 * x + 4])

    def colors(self):
        return {self.at(x, y) for y in range(self.height) for x in range(self.width)}


class Render(ToolTest):
    def setUp(self):
        super().setUp()
        self.icon = self.write("icon.svg", ICON)
        self.out = self.folder / "out.png"

    def render(self, *options, file=None):
        self.expect(DONE, "render", file or self.icon, "-o", self.out, *options)
        return Picture(self.out.read_bytes())

    def test_sizes(self):
        for options, size in (
            ((), (24, 16)),
            (("-w", "48"), (48, 32)),
            (("-h", "48"), (72, 48)),
            (("--width=10", "--height=30"), (10, 30)),
            (("-z", "2"), (48, 32)),
            (("--zoom", "1.5", "-w", "9"), (14, 9)),
            (("--scale", "0.01"), (1, 1)),
            # 100 * 1.1 is 110, not a little more.
            (("-w", "100", "-h", "100", "-z", "1.1"), (110, 110)),
            (("-w", "0.5"), (1, 1)),
            (("-w", "32767", "-h", "1"), (32767, 1)),
        ):
            with self.subTest(options):
                self.assertEqual(self.render(*options).size, size)

    def test_sizes_that_no_picture_has(self):
        for options in (("-w", "0"), ("-w", "-3"), ("-z", "0"), ("-w", "nan"), ("-w", "inf"),
                        ("-w", "1e39"), ("-w", "32767.5"), ("-h", "32768"), ("-z", "1e30"),
                        ("-w", "32767", "-z", "1.001")):
            with self.subTest(options):
                error = self.expect(BAD, "render", self.icon, "-o", self.out, *options).error
                self.assertIn("icon.svg: the picture would be ", error)
                self.assertFalse(self.out.exists())
        empty = self.write("empty.svg", '<svg viewBox="0 0 0 16"/>')
        for options in ((), ("-w", "4"), ("-h", "4")):
            self.expect(BAD, "render", empty, "-o", self.out, *options)
        self.assertEqual(self.render("-w", "3", "-h", "4", file=empty).size, (3, 4))
        self.expect(WRONG_USAGE, "render", self.icon, "-o", self.out, "-w", "4px")

    def test_colors_are_straight(self):
        svg = '<svg viewBox="0 0 2 1"><rect width="1" height="1" fill="#ff8000" opacity=".5"/></svg>'
        picture = self.render(file=self.write("a.svg", svg))
        red, green, blue, alpha = picture.at(0, 0)
        self.assertEqual((red, blue, alpha), (255, 0, 128))
        self.assertAlmostEqual(green, 128, delta=1)
        self.assertEqual(picture.at(1, 0), (0, 0, 0, 0))

    def test_variables_style_sheet_and_id(self):
        self.assertEqual(self.render().colors(), {(255, 0, 0, 255)})
        self.assertEqual(self.render("--var", "a=0,0,1,1").colors(), {(0, 0, 255, 255)})
        sheet = self.write("a.css", ".c{fill:lime;}")
        for option in ("--css", "--stylesheet"):
            self.assertEqual(self.render(option, sheet).colors(), {(0, 255, 0, 255)})
        for option in ("-i", "--id", "--export-id"):
            self.assertEqual(self.render(option, "p").colors(), {(255, 0, 0, 255)})
            self.assertEqual(self.render(option, "q").colors(), {(0, 0, 0, 0)})
        self.out.unlink()
        bad = self.write("b.css", ".a{b;}")
        self.assertIn("b.css: value not found", self.expect(
            BAD, "render", self.icon, "-o", self.out, "--css", bad).error)
        self.assertFalse(self.out.exists())

    def test_background(self):
        half = self.write("a.svg", '<svg viewBox="0 0 2 1"><rect width="1" height="1"/></svg>')
        for option in ("-b", "--background", "--background-color"):
            picture = self.render(option, "#0f0", file=half)
            self.assertEqual((picture.at(0, 0), picture.at(1, 0)), ((0, 0, 0, 255), (0, 255, 0, 255)))
        for name, color in (("rgb(1,2,3)", (1, 2, 3, 255)), ("White", (255, 255, 255, 255)),
                            ("none", (0, 0, 0, 0)), ("transparent", (0, 0, 0, 0))):
            self.assertEqual(self.render("-b", name, file=half).at(1, 0), color)
        for wrong in ("", "lightblue", "#12", "redx", "var(--a)", "currentColor"):
            self.expect(WRONG_USAGE, "render", half, "-o", self.out, "-b", wrong)

    def test_standard_streams(self):
        data = self.expect(DONE, "render", "-", "-o", "-", stdin=ICON.encode()).out
        self.render()
        self.assertEqual(data, self.out.read_bytes())

    def test_bad_input_writes_nothing(self):
        for svg, message in ((MALFORMED, "malformed XML"), (THROWS, "value not found")):
            file = self.write("bad.svg", svg)
            error = self.expect(BAD, "render", file, "-o", self.out).error
            self.assertIn("bad.svg: " + message, error)
            self.assertFalse(self.out.exists())
        self.assertIn("no.svg", self.expect(BAD, "render", self.folder / "no.svg", "-o",
                                            self.out).error)

    def test_output_that_cannot_be_written(self):
        missing = self.folder / "no" / "out.png"
        self.assertIn("out.png", self.expect(BAD, "render", self.icon, "-o", missing).error)
        self.assertIn("out.png", self.expect(BAD, "render", self.icon, "--contact-sheet",
                                             missing).error)
        self.out.mkdir()
        self.assertIn("out.png", self.expect(BAD, "render", self.icon, "-o", self.out).error)
        self.assertIn("icon.svg", self.expect(BAD, "render", self.icon, "--out-dir",
                                              self.icon).error)
        (self.folder / "icon.png").mkdir()
        self.assertIn("icon.png", self.expect(BAD, "render", self.icon, "--out-dir",
                                              self.folder).error)

    def test_full_disk(self):
        if self.tool.is_windows:
            return
        for target in (("-o", self.out), ("--out-dir", self.folder),
                       ("--contact-sheet", self.out)):
            result = self.run_tool("render", self.icon, *target, largest_file=20)
            self.assertEqual(result.status, BAD)
            self.assertIn(".png", result.error)
            self.assertEqual([path.name for path in self.folder.iterdir()], ["icon.svg"])
        with open("/dev/full", "wb") as full:
            for command in (("render", self.icon, "-o", "-"),
                            ("calls", self.icon, "-w", "9", "-h", "9")):
                result = self.run_tool(*command, stdout=full)
                self.assertEqual(result.status, BAD)
                self.assertIn("standard output", result.error)

    def test_many_files(self):
        names = ["a.b.svg", "\u00fcber.svg", "plain"]
        files = [self.write(name, ICON) for name in names]
        folder = self.folder / "new" / "pictures"
        self.expect(DONE, "render", *files, "--out-dir", folder, "-w", "12")
        self.assertEqual(sorted(path.name for path in folder.iterdir()),
                         sorted(["a.b.png", "\u00fcber.png", "plain.png"]))
        for path in folder.iterdir():
            self.assertEqual(Picture(path.read_bytes()).size, (12, 8))
        # A bad one among them does not keep the others back.
        bad = self.write("bad.svg", MALFORMED)
        other = self.folder / "other"
        error = self.expect(BAD, "render", bad, self.folder / "no.svg", *files, "--out-dir",
                            other).error
        self.assertEqual(len(error.splitlines()), 2)
        self.assertEqual(len(list(other.iterdir())), 3)

    def test_files_of_one_name(self):
        (self.folder / "sub").mkdir()
        other = self.write("sub/icon.svg", ICON)
        error = self.expect(BAD, "render", self.icon, other, "--out-dir", self.folder / "d").error
        self.assertIn("icon.svg", error)
        self.assertFalse((self.folder / "d").exists())

    def test_usage(self):
        for arguments in ((), ("-o", self.out), (self.icon,), (self.icon, self.icon, "-o", self.out),
                          (self.icon, "-o", self.out, "--out-dir", self.folder),
                          (self.icon, "-o", self.out, "--scales", "1"),
                          (self.icon, "-o", self.out, "--brightness", "1"),
                          (self.icon, "-o"), (self.icon, "-o", self.out, "--nonsense")):
            self.assertIn("usage: svgloom render", self.expect(WRONG_USAGE, "render",
                                                               *arguments).error)
        self.assertFalse(self.out.exists())
        # Nothing is made before the whole command line is known to be right.
        self.expect(WRONG_USAGE, "render", self.icon, "--out-dir", self.folder / "d", "-b", "x")
        self.assertFalse((self.folder / "d").exists())


class ContactSheet(ToolTest):
    # The ground of the theme, and what stands behind var(--icon), by brightness.
    GROUNDS = {"0": (0x13, 0x16, 0x19, 255), "50": (0xC4, 0xC7, 0xCB, 255),
               "100": (0xF4, 0xF7, 0xFB, 255)}
    ICONS = {"0": (0xAE, 0xB1, 0xB5, 255), "50": (0x2E, 0x31, 0x34, 255),
             "100": (0x52, 0x55, 0x59, 255)}

    def setUp(self):
        super().setUp()
        square = '<svg viewBox="0 0 10 10"><path fill="var(--icon)" d="M0 0H10V10H0z"/></svg>'
        self.files = [self.write(f"{name}.svg", square) for name in ("one", "two", "three")]
        self.out = self.folder / "sheet.png"

    def sheet(self, *options):
        self.expect(DONE, "render", *self.files, "--contact-sheet", self.out, *options)
        return Picture(self.out.read_bytes())

    def squares(self, picture, color, top, bottom):
        """The places and sides of the squares of a colour."""
        found = []
        for y in range(top, bottom):
            for x in range(picture.width):
                if picture.at(x, y) == color and picture.at(x - 1, y) != color and \
                        picture.at(x, y - 1) != color:
                    side = 0
                    while picture.at(x + side, y) == color:
                        side += 1
                    if side >= 10:
                        found.append((x, y - top, side))
        return found

    def test_bands_in_the_colors_of_the_theme(self):
        picture = self.sheet("--brightness", "0,50,100", "--scales", "1,1.5,3")
        height = picture.height // 3
        grids = []
        for band, percent in enumerate(("0", "50", "100")):
            top = band * height
            for corner in ((0, top), (picture.width - 1, top + height - 1)):
                self.assertEqual(picture.at(*corner), self.GROUNDS[percent])
            grids.append(self.squares(picture, self.ICONS[percent], top, top + height))
        self.assertEqual(grids[0], grids[1])
        self.assertEqual(grids[0], grids[2])
        self.assertEqual(sorted(side for _, _, side in grids[0]), [10] * 3 + [15] * 3 + [30] * 3)
        # Their middles are on one line, in even distances.
        middles = {y + side / 2 for _, y, side in grids[0]}
        self.assertLessEqual(max(middles) - min(middles), 0.5)
        large = sorted(x for x, _, side in grids[0] if side == 30)
        self.assertEqual(large[1] - large[0], large[2] - large[1])

    def test_colors_that_are_given_go_before_the_theme(self):
        picture = self.sheet("--var", "icon=1,0,0,1", "--scales", "2")
        squares = self.squares(picture, (255, 0, 0, 255), 0, picture.height)
        self.assertEqual([side for _, _, side in squares], [20] * 3)
        self.assertEqual(picture.at(0, 0), self.GROUNDS["100"])

    def test_labels(self):
        """Another name changes the sheet, and nothing but the label."""
        before = self.sheet()
        self.files[0] = self.files[0].rename(self.folder / "two_words-and-more.svg")
        after = self.sheet("--scales", "1")
        self.assertEqual(before.width, after.width)
        self.assertNotEqual(before.rows, after.rows)
        self.assertEqual(self.squares(before, self.ICONS["100"], 0, before.height),
                         self.squares(after, self.ICONS["100"], 0, before.height))

    def test_together_with_pictures(self):
        self.sheet("--out-dir", self.folder / "d", "-w", "4")
        self.assertEqual(Picture((self.folder / "d" / "two.png").read_bytes()).size, (4, 4))

    def test_bad_files_are_left_out(self):
        bad = self.write("bad.svg", MALFORMED)
        self.expect(BAD, "render", bad, "--contact-sheet", self.out)
        self.assertFalse(self.out.exists())
        whole = self.sheet().rows
        self.expect(BAD, "render", self.files[0], bad, *self.files[1:], "--contact-sheet", self.out)
        self.assertEqual(Picture(self.out.read_bytes()).rows, whole)

    def test_too_large(self):
        for options in (("-w", "20000", "--scales", "1,1"), ("-h", "11000", "--brightness", "0,0,0")):
            self.assertIn("contact sheet", self.expect(
                BAD, "render", *self.files, "--contact-sheet", self.out, *options).error)

    def test_usage(self):
        for options in (("--brightness", "101"), ("--brightness", "-1"), ("--brightness", "1,"),
                        ("--brightness", ""), ("--brightness", "x"), ("--scales", "0"),
                        ("--scales", "1,,2"), ("--scales", "nan"), ("--scales", "1 2")):
            self.expect(WRONG_USAGE, "render", *self.files, "--contact-sheet", self.out, *options)


if __name__ == "__main__":
    ToolTest.tool = Program(pathlib.Path(sys.argv.pop(1)).resolve(), "svgloom")
    unittest.main()
