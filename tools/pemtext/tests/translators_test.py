#!/usr/bin/env python3
"""Tests what pemtext does for translators: counting, merging, PO files, stand-ins for translations.
usage: translators_test.py BIN_DIR"""

import json
import pathlib
import sys
import unittest

HERE = pathlib.Path(__file__).resolve().parent
TOP = HERE.parent.parent.parent
sys.path.insert(0, str(TOP / "tests"))
from programs import Program  # noqa: E402
from tool_tests import BAD, DONE, WRONG_USAGE, ToolTest  # noqa: E402

SHIPPED = sorted((TOP / "resources" / "dict").glob("*.dict"))


class Translators(ToolTest):
    def setUp(self):
        super().setUp()
        self.base = self.write("base.dict", '"$$$/A=Open ^1"\n"$$$/B=Caf\u00e9^C"\n"$$$/C=OK"\n')
        self.german = self.write("de.dict", '"$$$/C=OK"\n"$$$/A=\\"^1\\" \u00f6ffnen"\n"$$$/X=Alt"\n')
        self.out = self.folder / "out"

    def written(self):
        return self.out.read_text(encoding="utf-8").splitlines()

    def test_stats(self):
        self.assertEqual(
            self.expect(DONE, "stats", "base.dict", "de.dict", "base.dict",
                        folder=self.folder).lines,
            ["de.dict: 2 of 3 texts (66.6 %), 1 missing, 0 untranslated, 1 extra,"
             " 1 equal to the base",
             "base.dict: 3 of 3 texts (100.0 %), 0 missing, 0 untranslated, 0 extra,"
             " 3 equal to the base"])
        self.assertEqual(
            json.loads(self.expect(DONE, "stats", "--format=json", "base.dict", "de.dict",
                                   folder=self.folder).lines[0]),
            {"file": "de.dict", "base": 3, "texts": 2, "percent": 66.6, "missing": 1, "untranslated": 0,
             "extra": 1, "equal": 1})

    def test_merge(self):
        result = self.expect(DONE, "merge", self.base, self.german, "-o", self.out)
        self.assertIn("1 new, 1 obsolete texts dropped", result.error)
        self.assertEqual(self.written(), [
            '"$$$/A=\\"^1\\" \u00f6ffnen"', '"$$$/B=Caf\u00e9^C#{comment} untranslated"', '"$$$/C=OK"'])
        self.expect(DONE, "merge", self.base, self.german, "-o", self.out, "--keep-obsolete")
        self.assertEqual(self.written()[-1], '"$$$/X=Alt"')
        # A mark waits: for stats, for the next merge, whose reference has another text, for PO.
        self.assertIn("2 of 3 texts (66.6 %), 0 missing, 1 untranslated",
                      self.expect(DONE, "stats", self.base, self.out).out.decode())
        newer = self.write("newer.dict", '"$$$/B=Bar"\n"$$$/C=OK"\n')
        result = self.expect(DONE, "merge", newer, self.out, "-o", self.folder / "next")
        self.assertIn("0 new, 2 obsolete texts dropped, 1 still untranslated", result.error)
        self.assertEqual((self.folder / "next").read_text(),
                         '"$$$/B=Bar#{comment} untranslated"\n"$$$/C=OK"\n')
        if self.has_po(self.folder / "po"):
            self.expect(DONE, "to-po", newer, self.folder / "next", "-o", self.folder / "po")
            self.assertIn('msgid "Bar"\nmsgstr ""\n', (self.folder / "po").read_text())
        # The mark is not shown.
        self.assertIn('"value":"Caf\\u00e9\\u00a9"', self.expect(DONE, "dump", self.out).lines[1])

    def test_extract(self):
        code = self.write("a.cpp", r'''
            // "$$$/Comment=no"  /* "$$$/Comment=no" */
            f("$$$/B=Two " "parts\n", '"', 1'000, "$$$/NoDefault", "x $$$/Inside=no");
            g(u8"($$$/A=In parentheses)", R"x($$$/R=raw "quoted" \ text)x", "$$$/E=\u20AC\x41\101\"");
            h("$$$/B=Two parts\n");
        ''')
        xml = self.write("a.xml", '<v t="$$$/X=R&amp;D &quot;x&quot;" u=\'$$$/Y=one\'>$$$/Z=two</v>')
        self.expect(DONE, "extract", code, xml, "-o", self.out)
        self.assertEqual(self.written(), [
            '"$$$/A=In parentheses"', '"$$$/B=Two parts\\n"', '"$$$/E=\u20acAA\\""',
            '"$$$/R=raw \\"quoted\\" \\ text"', '"$$$/X=R&D \\"x\\""', '"$$$/Y=one"',
            '"$$$/Z=two"'])
        self.assertEqual(self.expect(DONE, "extract", code, xml).out, self.out.read_bytes())

        other = self.write("b.cpp", '\n"$$$/Y=other"')
        error = self.expect(BAD, "extract", xml, other, "-o", self.out, folder=self.folder).error
        self.assertRegex(error, r'b\.cpp:2: "/Y" has another default than at .*a\.xml:1')

    def test_extract_gives_the_shipped_reference(self):
        files = [path for folder in ("api", "framework", "host", "localizer")
                 for path in (TOP / folder).rglob("*.cpp") if "tests" not in path.parts]
        files += (TOP / "resources" / "definitions").rglob("*.xml")
        self.expect(DONE, "extract", "-o", self.out, *sorted(files))
        self.assertEqual(
            self.expect(DONE, "dump", self.out).out,
            self.expect(DONE, "dump", TOP / "resources" / "dict" / "kiv_en_US.dict").out)

    def test_pseudo(self):
        self.expect(DONE, "pseudo", self.base, "-o", self.out, "--accented")
        self.assertEqual(self.written(), [
            '"$$$/A=\u00d6\u00fe\u00e9\u00f1 ^^1"', '"$$$/B=\u00c7\u00e5\u0192\u00e9\u00a9"',
            '"$$$/C=\u00d6\u0136"'])
        self.expect(DONE, "pseudo", self.base, "-o", self.out, "--longer", "40%")
        self.assertEqual(self.written()[0], '"$$$/A=[Open ^^1 ~~~]"')
        self.expect(DONE, "pseudo", self.base, "-o", self.out, "--bidi")
        self.assertEqual(self.written()[0], '"$$$/A=\u202eOpen\u202c ^^1"')
        # A program gets the placeholder.
        self.assertIn('^1"', self.expect(DONE, "dump", self.out).lines[0])
        self.expect(DONE, "check", "--strict", "--reference", self.base, self.out)
        for wrong in ([], ["--longer", "x"], ["--longer", "-1%"], ["--longer", "5000%"]):
            self.expect(WRONG_USAGE, "pseudo", self.base, "-o", self.out, *wrong)

    def has_po(self, out=None):
        """Builds for Windows, and those without gettext's library, say that they lack it."""
        result = self.run_tool("to-po", self.base, "-o", out or self.out)
        if result.status == BAD:
            self.assertIn("made without libgettextpo", result.error)
        return result.status == DONE

    def test_po(self):
        if not self.has_po():
            return
        self.expect(DONE, "to-po", self.base, self.german, "-o", self.out, "--language", "de")
        text = self.out.read_text(encoding="utf-8")
        self.assertIn('"Language: de\\n"', text)
        self.assertIn('msgctxt "$$$/A"\nmsgid "Open ^1"\nmsgstr "\\"^1\\" \u00f6ffnen"\n', text)
        self.assertIn('msgctxt "$$$/B"\nmsgid "Caf\u00e9\u00a9"\nmsgstr ""\n', text)
        back = self.folder / "back"
        self.expect(DONE, "from-po", self.out, "-o", back)
        self.assertEqual(back.read_text(encoding="utf-8").splitlines(),
                         ['"$$$/A=\\"^^1\\" \u00f6ffnen"', '"$$$/C=OK"'])

    def test_po_round_trip_of_the_shipped_dictionaries(self):
        if not self.has_po():
            return
        back = self.folder / "back"
        for file in SHIPPED:
            self.expect(DONE, "to-po", SHIPPED[0], file, "-o", self.out)
            self.expect(DONE, "from-po", self.out, "-o", back)
            self.assertEqual(self.expect(DONE, "dump", back).out,
                             self.expect(DONE, "dump", file).out)

    def test_bad_po(self):
        if not self.has_po():
            return
        header = 'msgid ""\nmsgstr "Content-Type: text/plain; charset=%s\\n"\n\n'
        good = 'msgctxt "$$$/A"\nmsgid "a"\nmsgstr "b"\n\n'
        fuzzy = '#, fuzzy\nmsgctxt "$$$/B"\nmsgid "a"\nmsgstr "b"\n\n'
        obsolete = '#~ msgctxt "$$$/C"\n#~ msgid "a"\n#~ msgstr "b"\n'
        back = self.folder / "back"
        file = self.write("a.po", header % "UTF-8" + good + fuzzy + obsolete)
        self.expect(DONE, "from-po", file, "-o", back)
        self.assertEqual(back.read_text(encoding="utf-8"), '"$$$/A=b"\n')
        for content, message in (
                (header % "ISO-8859-1" + good, "is not in UTF-8"),
                (header % "UTF-8" + 'msgid "x"\nmsgstr "y"\n', "has no msgctxt"),
                (header % "UTF-8" + 'msgctxt "$$$/\u0100"\nmsgid "x"\nmsgstr "y"\n', "is no key"),
                ("root:x:0\n", "a.po:1: "), ('msgid "x\n', "a.po:2: ")):
            file = self.write("a.po", content)
            self.assertIn(message, self.expect(BAD, "from-po", file, "-o", back).error)
        odd = self.write("odd.dict", '"$$$/A=1"\n"$$$/B=#{D800}"\n')
        self.assertIn("odd.dict:2", self.expect(BAD, "to-po", odd, "-o", self.out).error)


if __name__ == "__main__":
    ToolTest.tool = Program(pathlib.Path(sys.argv.pop(1)).resolve(), "pemtext")
    unittest.main()
