#!/usr/bin/env python3
"""The differences that docs/artwork.md tells are there: each pair of pictures is drawn, differs, and
has its files; what the page calls known the engine draws, what it calls unreadable it does not.

usage: artwork_docs_test.py BIN_DIR
"""

import json
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

from programs import Program

TOP = pathlib.Path(__file__).resolve().parent.parent
sys.path.insert(0, str(TOP / "scripts"))
import artwork_pictures  # pylint: disable=wrong-import-position

TEXT = artwork_pictures.PAGE.read_text(encoding="utf-8")
IMAGES = artwork_pictures.PAGE.parent / "images" / "artwork"
BIN = []  # set from the command line


def calls(content):
    """The operations that a document of 24 units makes, in order; an error's text."""
    artwork = artwork_pictures.whole(content)
    run = subprocess.run(
        Program(BIN[0], "svgloom").command("calls", "-", "--width", 24, "--height", 24),
        input=artwork.encode(),
        capture_output=True,
        check=False,
    )
    lines = [json.loads(line) for line in run.stdout.splitlines()]
    return [line.get("op", line.get("error")) for line in lines]


class Differences(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()  # pylint: disable=consider-using-with
        cls.addClassCleanup(folder.cleanup)
        cls.folder = pathlib.Path(folder.name)
        cls.names = artwork_pictures.write_artwork(TEXT, cls.folder)

    def test_each_pair_differs(self):
        artwork_pictures.draw(BIN[0], self.folder, self.folder)
        files = []
        for name in self.names:
            pair = [f"{name}.png", f"{name}-standard.png"]
            here, standard = [(self.folder / file).read_bytes() for file in pair]
            self.assertNotEqual(here, standard, name)
            files += pair
        self.assertGreater(len(files), 80)
        # All of the page's pictures are read, and none is left over.
        self.assertEqual(files, re.findall(r"\(images/artwork/([^)]+)\)", TEXT))
        self.assertEqual(sorted(files), sorted(file.name for file in IMAGES.iterdir()))

    def test_the_linter_finds_each(self):
        run = subprocess.run(
            Program(BIN[0], "svgloom").command(
                "check", "--format", "json", *sorted(self.folder.glob("*.svg"))
            ),
            capture_output=True,
            check=False,
        )
        lines = map(json.loads, run.stdout.splitlines())
        found = {re.split(r"[/\\]", line["file"])[-1] for line in lines if "id" in line}
        # Only who draws it knows the shape of the output.
        want = {f"{name}.svg" for name in self.names if name != "align"}
        self.assertEqual(found, want)


class Lists(unittest.TestCase):
    def table(self, title):
        """The first cells of the table under that head."""
        rows = TEXT.split(f"\n| {title} |", 1)[1].split("\n\n", 1)[0].splitlines()[2:]
        return [name for row in rows for name in re.findall(r"`([^`]+)`", row.split("|")[1])]

    def test_elements(self):
        # As small as each may be, and what is seen of it.
        shapes = {
            "path": 'd="M0 0H9"',
            "rect": 'width="9" height="9"',
            "circle": 'r="9"',
            "ellipse": 'rx="9" ry="9"',
            "line": 'x2="9"',
            "polyline": 'points="0 0 9 9"',
            "polygon": 'points="0 0 9 9"',
        }
        others = {
            "svg": "<svg><path/></svg>",
            "g": "<g><path/></g>",
            "defs": '<defs><path id="a"/></defs><use href="#a"/>',
            "use": '<defs><path id="a"/></defs><use href="#a"/>',
            "symbol": '<symbol id="a"><path/></symbol><use href="#a"/>',
            "linearGradient": '<linearGradient id="a"><stop/><stop/></linearGradient>'
            '<path fill="url(#a)"/>',
            "radialGradient": '<radialGradient id="a"><stop/><stop/></radialGradient>'
            '<path fill="url(#a)"/>',
            "stop": '<linearGradient id="a"><stop/><stop/></linearGradient><path fill="url(#a)"/>',
            "clipPath": '<clipPath id="a"><path/></clipPath><path clip-path="url(#a)"/>',
            "style": '<style>.a{fill:red;}</style><path class="a"/>',
            "image": '<image width="9" height="9" href="data:image/png;base64,QUJD"/>',
        }
        seen = {
            "linearGradient": "fillLinear",
            "stop": "fillLinear",
            "radialGradient": "fillRadial",
            "clipPath": "clip",
        }
        self.assertEqual(sorted(self.table("element")), sorted({**shapes, **others}))
        for name, attributes in shapes.items():
            self.assertIn("fill", calls(f"<{name} {attributes}/>"), name)
        for name, content in others.items():
            if name == "image":
                self.assertNotIn("fill", calls(content))
            else:
                self.assertIn(seen.get(name, "fill"), calls(content), name)

    def test_elements_that_are_not_drawn(self):
        for name in ("text", "a", "switch", "svg", "mask", "filter", "pattern", "marker"):
            self.assertNotIn("fill", calls(f"<g/><{name}><path/></{name}>"), name)

    def test_what_stops_the_engine(self):
        for content, error in (
            ('<path clip-path="none"/>', "invalid string position"),
            ('<linearGradient href=""/>', "invalid string position"),
            ('<path style="fill;"/>', "value not found"),
            ('<path style="fill:red;;"/>', "value not found"),
            ("<style>.{}</style>", "empty CSS selector"),
        ):
            self.assertEqual(calls("<path/>" + content), [error])
            self.assertIn(f'"{error}"', TEXT)

    def test_variables_of_the_theme(self):
        header = (TOP / "framework/kivui/include/kivui/IconCache.h").read_text(encoding="utf-8")
        known = re.search(r"/// All of them: (.*?)\.\n", header, re.DOTALL).group(1)
        section = TEXT.split("## Colours of the theme", 1)[1].split("\n- A variable", 1)[0]
        told = set(re.findall(r"`([a-z-]+)`", section.split("\n- ", 1)[1]))
        self.assertEqual(told, set(re.findall(r'"([a-z-]+)"', known)))


if __name__ == "__main__":
    BIN.append(sys.argv.pop(1))
    unittest.main()
