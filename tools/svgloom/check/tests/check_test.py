#!/usr/bin/env python3
"""Tests `svgloom check` as a shell meets it. usage: check_test.py BIN_DIR"""

import json
import pathlib
import random
import sys
import unittest

HERE = pathlib.Path(__file__).resolve().parent
TOP = HERE.parent.parent.parent.parent
sys.path.insert(0, str(TOP / "tests"))
from programs import Program  # noqa: E402
from tool_tests import BAD, DONE, WRONG_USAGE, ToolTest  # noqa: E402

CLEAN = "<svg viewBox='0 0 9 9'><path d='M1 2L3 4' fill='none' stroke='#123'/></svg>"
WARNS = "<svg viewBox='0 0 9 9'>\n <g display='none'/></svg>"
FAILS = "<svg viewBox='0 0 9 9'>\n <text/><g display='none'/></svg>"
DISPLAY = "display does not count: the element is drawn; remove it from the artwork"
TEXT = '"text" is never drawn: convert the text to paths'


class Check(ToolTest):
    def check(self, status, *arguments, **options):
        """Files are named as in the test's folder, so that lines read alike on all systems."""
        return self.expect(status, "check", *arguments, folder=self.folder, **options).lines

    def write(self, name, content):
        super().write(name, content)
        return name

    def test_clean(self):
        path = self.write("a.svg", CLEAN)
        self.assertEqual(self.check(DONE, path), ["0 errors, 0 warnings"])
        self.assertEqual(self.check(DONE, "--strict", path), ["0 errors, 0 warnings"])
        self.assertEqual(self.check(DONE, "--format", "json", path), ['{"errors":0,"warnings":0}'])

    def test_warnings(self):
        path = self.write("a.svg", WARNS)
        lines = [f"{path}:2:14: warning: {DISPLAY} [display]", "0 errors, 1 warning"]
        self.assertEqual(self.check(DONE, path), lines)
        self.assertEqual(self.check(BAD, "--strict", path), lines)

    def test_errors(self):
        path = self.write("a.svg", FAILS)
        lines = self.check(BAD, path)
        self.assertEqual(lines, [f"{path}:2:2: error: {TEXT} [element-unsupported]",
                                 f"{path}:2:21: warning: {DISPLAY} [display]",
                                 "1 error, 1 warning"])

    def test_json(self):
        path = self.write("a.svg", FAILS)
        lines = [json.loads(line) for line in self.check(BAD, "--format=json", path)]
        self.assertEqual(lines, [
            {"file": path, "line": 2, "column": 2, "severity": "error", "message": TEXT,
             "id": "element-unsupported"},
            {"file": path, "line": 2, "column": 21, "severity": "warning",
             "message": DISPLAY, "id": "display"},
            {"errors": 1, "warnings": 1}])

    def test_ignored_ids(self):
        path = self.write("a.svg", FAILS)
        self.assertEqual(self.check(DONE, "--ignore", "element-unsupported", path)[-1],
                         "0 errors, 1 warning")
        self.assertEqual(self.check(DONE, "--strict", "--ignore", "element-unsupported",
                                    "--ignore=display", path), ["0 errors, 0 warnings"])
        result = self.expect(WRONG_USAGE, "check", "--ignore", "nonsense", path)
        self.assertIn("nonsense", result.error)
        self.assertEqual(result.out, b"")

    def test_several_files(self):
        first = self.write("1.svg", WARNS)
        last = self.write("3.svg", CLEAN)
        missing = "2.svg"
        lines = self.check(BAD, first, missing, last, first)
        self.assertEqual(lines[0], lines[2])
        self.assertRegex(lines[1], r"^2\.svg:1:1: error: cannot be .* \[file\]$")
        self.assertEqual(lines[3:], ["1 error, 2 warnings"])

    def test_standard_input(self):
        lines = self.check(BAD, "-", stdin=FAILS.encode())
        self.assertRegex(lines[0], r"^[^:]+:2:2: error: ")
        self.assertEqual(lines[-1], "1 error, 1 warning")

    def test_line_ends_and_marks(self):
        for text in (FAILS.replace("\n", "\r\n").encode(), b"\xef\xbb\xbf" + FAILS.encode()):
            path = self.write("a.svg", text)
            self.assertTrue(self.check(BAD, path)[0].startswith(f"{path}:2:2: "))

    def test_wrong_command_lines(self):
        path = self.write("a.svg", CLEAN)
        for arguments in ((), ("--format", "xml", path), ("--strict=1", path), ("--loud", path)):
            self.assertIn("usage: svgloom check",
                          self.expect(WRONG_USAGE, "check", *arguments).error)

    def test_help_tells_the_severities(self):
        text = self.expect(DONE, "check", "--help").out.decode()
        for word in ("error ", "warning ", "--strict", "--format", "--ignore"):
            self.assertIn(word, text)

    def test_any_bytes(self):
        """Icons and seeds of the fuzzers, with bytes changed, taken out and doubled."""
        sources = sorted((TOP / "resources" / "artwork").glob("*.svg"))
        sources += [path for path in sorted((TOP / "fuzz" / "seeds").glob("Svg*/*"))
                    if path.is_file()]
        self.assertGreater(len(sources), 20)
        chance = random.Random(5)
        paths = []
        for number, source in enumerate(sources):
            content = bytearray(source.read_bytes())
            paths.append(self.write(f"{number}.svg", bytes(content)))
            for copy in range(4):
                for _ in range(8):
                    at = chance.randrange(len(content) + 1)
                    piece = chance.choice((b"", b"\0", b"<", b"&#", b"\xff", b"'", b"1e39",
                                           bytes(content[at:at + 9]) * 2))
                    content[at:at + chance.randrange(4)] = piece
                paths.append(self.write(f"{number}.{copy}.svg", bytes(content)))
        lines = self.check(BAD, *paths)
        self.assertRegex(lines[-1], r"^\d+ errors, \d+ warnings$")


if __name__ == "__main__":
    ToolTest.tool = Program(pathlib.Path(sys.argv.pop(1)).resolve(), "svgloom")
    unittest.main()
