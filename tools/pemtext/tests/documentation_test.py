#!/usr/bin/env python3
"""Holds docs/dictionaries.md against what pemtext does. usage: documentation_test.py BIN_DIR"""

import json
import pathlib
import re
import sys
import unittest

HERE = pathlib.Path(__file__).resolve().parent
TOP = HERE.parent.parent.parent
sys.path.insert(0, str(TOP / "tests"))
from programs import Program  # noqa: E402
from tool_tests import BAD, DONE, ToolTest  # noqa: E402

WRONG = HERE / "wrong"


def hex_bytes(text):
    return bytes.fromhex(text) if re.fullmatch(r"[0-9A-F]{2}( [0-9A-F]{2})*", text) else None


class Documentation(ToolTest):
    """What docs/dictionaries.md says is what the tool does."""

    PAGE = TOP / "docs" / "dictionaries.md"

    def section(self, title):
        """The text below a heading, up to the next one."""
        text = self.PAGE.read_text(encoding="utf-8")
        found = re.search(rf"^#+ {re.escape(title)}\n(.*?)(?=^#+ |\Z)", text, re.M | re.S)
        self.assertIsNotNone(found, title)
        return found[1]

    def rows(self, title):
        """The cells of all tables of a section, heads left out."""
        found = []
        lines = self.section(title).splitlines()
        for number, line in enumerate(lines):
            following = lines[number + 1] if number + 1 < len(lines) else ""
            if line.startswith("|") and not line.startswith("|--") and not following.startswith("|--"):
                found.append([cell.strip() for cell in line.strip("|").split("|")])
        self.assertTrue(found, title)
        return found

    def shown(self, values):
        """What values show."""
        lines = "".join(json.dumps(value) + "\n" for value in values).encode()
        return [json.loads(line) for line in self.expect(DONE, "value", stdin=lines).lines]

    def table_bytes(self, title):
        """The bytes of a table whose first columns are an offset, if it has three, and bytes."""
        content = b""
        for cells in self.rows(title):
            if len(cells) == 3:
                self.assertEqual(int(cells[0]), len(content), cells)
            data = hex_bytes(cells[-2])
            self.assertIsNotNone(data, cells)
            content += data
        return content

    def test_the_image_byte_by_byte(self):
        lines = re.findall(r"`([^`]+)`", self.section("One image byte by byte").split("|")[0])
        self.assertEqual(len(lines), 3)
        text = self.write("a.dict", "".join(line + "\n" for line in lines))
        image = self.folder / "a.img"
        self.expect(DONE, "compile", text, "-o", image)
        self.assertEqual(image.read_bytes(), self.table_bytes("One image byte by byte"))

    def test_the_line_byte_by_byte(self):
        line = self.table_bytes("One line byte by byte")
        self.assertIn(f"`{line.decode().rstrip()}`", self.section("One line byte by byte"))
        self.assertEqual(self.expect(DONE, "dump", self.write("a.dict", line)).lines[0],
                         '{"key":"/A","value":"5\\u00b0"}')

    def test_character_names(self):
        names = []
        for cells in self.rows("Character names"):
            pairs = [cells[i:i + 2] for i in (0, 3, 6, 9)]
            names += [(name.strip("`"), described) for name, described in pairs]
        self.assertEqual(len(names), 128)
        for (name, described), shown in zip(
                names, self.shown([f"#{{{name}}}" for name, _ in names])):
            code = re.fullmatch(r"(?:(.) )?U\+([0-9A-F]{4})", described)
            self.assertIsNotNone(code, described)
            self.assertEqual(shown, chr(int(code[2], 16)), name)
            self.assertIn(code[1], (None, shown), name)

    def test_escapes(self):
        words = {"tab": "\t", "line feed": "\n", "carriage return": "\r", "backspace": "\b"}
        pairs = []
        for cells in self.rows("Escapes"):
            for written, meant in zip(cells[::3], cells[1::3]):
                if written:
                    meant = re.sub(r" \(U\+([0-9A-F]{4})\)$", "", meant)
                    pairs.append((written.strip("`"), words.get(meant, meant)))
        self.assertEqual(len(pairs), 6 + 17)
        self.assertEqual(self.shown([written for written, _ in pairs]),
                         [meant for _, meant in pairs])

    def test_markers(self):
        want = {"#{U+20AC}": "\u20ac", "#{u20AC}": "\u20ac", "#{20AC}": "\u20ac",
                "#{endl}": "\r\n", "#{tab}": "\t", "#{cr}": "\r", "#{lf}": "\n",
                "#{copyyear}": "2026", "#{comment}": "", "#{mswindows}": "", "#{macos}": "",
                "#{ios}": "", "#{android}": ""}
        documented = re.findall(r"`(#\{[^`]+\})`", "".join(
            cells[0] for cells in self.rows("Markers")))
        self.assertEqual(sorted(documented), sorted(want))
        self.assertEqual(self.shown(documented), [want[marker] for marker in documented])

    def test_platforms(self):
        examples = [(cells[0].strip("`"), cells[1].replace("*(empty)*", ""))
                    for cells in self.rows("Platforms")]
        self.assertGreaterEqual(len(examples), 5)
        self.assertEqual(self.shown([written for written, _ in examples]),
                         [shown for _, shown in examples])
        leak = re.search(r"`([^`]+)` shows \"([^\"]+)\"", self.section("Platforms"))
        self.assertEqual(self.shown([leak[1]]), [leak[2]])

    def test_findings(self):
        documented = {name for cells in self.rows("Working on a dictionary")
                      for name in re.findall(r"`([a-z0-9-]+)`", cells[0])}
        found = set()
        files = sorted(path.name for path in WRONG.glob("*.dict"))
        for arguments in (files, ["--reference", "base.txt", "translated.dict"]):
            lines = self.expect(BAD, "check", "--format", "json", *arguments, folder=WRONG).lines
            found |= {json.loads(line).get("id") for line in lines}
        self.assertEqual(documented, found - {None})


if __name__ == "__main__":
    ToolTest.tool = Program(pathlib.Path(sys.argv.pop(1)).resolve(), "pemtext")
    unittest.main()
