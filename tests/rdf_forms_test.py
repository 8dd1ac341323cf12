#!/usr/bin/env python3
"""Packets with every form of RDF/XML, as they were read and with each of their parts changed, judged
by readers that share no code with the library: xmp_reader.py, ExifTool and exiv2.

usage: rdf_forms_test.py TREE_TEST

TREE_TEST is kivxmp_tree_test. It puts the packets into a folder: N.xmp, and N-K.xmp with one part of
it changed; each with a file .txt of what the library takes it for.
"""

import collections
import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

import xmp_reader
from programs import Program

TREE_TEST = None  # set from the command line


def add_lines(lines, path, node):
    """Like AddPlainLines in RdfFormsTest.cpp."""
    text = ""
    if node.form in ("simple", "uri"):
        text = " " + node.value
        for plain, shown in (("\n", "\\n"), ("\r", "\\r"), ("\t", "\\t")):
            text = text.replace(plain, shown)
    lines.append(f"{path} {node.form}{text}")
    for name, part in node.qualifiers:
        add_lines(lines, f"{path}/?{name}", part)
    for number, part in enumerate(node.parts, 1):
        if node.form == "struct":
            name, part = part
            add_lines(lines, f"{path}/{name}", part)
        else:
            add_lines(lines, f"{path}[{number}]", part)


def decoded(data):
    """A packet in UTF-8, whatever it was in: ElementTree knows no UTF-32."""
    for begin, encoding in (
        (b"\xff\xfe\0\0", "utf-32"), (b"\0\0\xfe\xff", "utf-32"), (b"<\0\0\0", "utf-32-le"),
        (b"\0\0\0<", "utf-32-be"), (b"\xff\xfe", "utf-16"), (b"\xfe\xff", "utf-16"),
        (b"<\0", "utf-16-le"), (b"\0<", "utf-16-be"),
    ):  # fmt: skip
        if data.startswith(begin):
            return data.decode(encoding).replace("encoding='UTF-16'", "").encode()
    return data


def independent_lines(packet):
    lines = []
    for name, node in xmp_reader.read_properties(decoded(packet))[0]:
        add_lines(lines, name, node)
    return sorted(lines)


def changed_properties(before, after):
    """The local names of the properties of which the lines differ, in lower case and ASCII."""
    differing = collections.Counter(before)
    differing.subtract(after)
    names = {line.partition("}")[2] for line, count in differing.items() if count != 0}
    return {re.split(r"[ /\[]", name)[0].lower().encode("ascii", "ignore").decode() for name in names}


class RdfForms(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory(prefix="kiv-forms-")
        cls.addClassCleanup(folder.cleanup)
        cls.folder = pathlib.Path(folder.name)
        program = Program.at(TREE_TEST)
        subprocess.run(
            program.command("--gtest_filter=RdfForms.EachPartCanBeChanged"),
            env=dict(os.environ, **program.variables(KIV_RDF_FORMS_DIR=cls.folder)),
            check=True, capture_output=True,
        )  # fmt: skip
        cls.lines = {}
        for path in cls.folder.glob("*.txt"):
            cls.lines[path.stem] = path.read_text("utf-8").split("\n")[:-1]
        # What XMP does not allow is nothing that others could agree on.
        cls.allowed = {name for name, lines in cls.lines.items()
                       if not any(line.endswith(" raw") for line in lines)}  # fmt: skip
        cls.edited = sorted(name for name in cls.lines if "-" in name)

    def packet(self, name):
        return (self.folder / (name + ".xmp")).read_bytes()

    def test_another_reader_sees_the_same(self):
        self.assertGreater(len(self.lines), 350)
        self.assertGreater(len(self.allowed), 280)
        for name in sorted(self.allowed):
            with self.subTest(name, packet=self.packet(name)):
                self.assertEqual(independent_lines(self.packet(name)), self.lines[name])

    def judge(self, readings, least):
        """`readings` gives what a reader sees of each packet by property, or None."""
        judged = 0
        for name in self.edited:
            base = name.partition("-")[0]
            before, after = readings.get(base), readings.get(name)
            if before is None or not {base, name} <= self.allowed:
                continue
            with self.subTest(name, before=self.packet(base), after=self.packet(name)):
                self.assertIsNotNone(after)
                differing = {key for key in before.keys() | after.keys() if before.get(key) != after.get(key)}
                expected = changed_properties(self.lines[base], self.lines[name])
                # Fields may be named behind their property.
                foreign = {key for key in differing if not key.startswith(tuple(expected))}
                self.assertEqual(foreign, set())
                # Not every reader shows every qualifier.
                judged += bool(differing)
        print(f"\n{self.id().rpartition('.')[2]}: {judged} edits seen")
        self.assertGreater(judged, least)

    def test_exiftool_sees_one_property_changed(self):
        run = subprocess.run(
            ["exiftool", "-j", "-a", "-G1:4", "-struct", "-ext", "xmp", "-XMP:all", "-warning", self.folder],
            capture_output=True, check=False,
        )  # fmt: skip
        readings = {}
        for told in json.loads(run.stdout):
            values = collections.defaultdict(list)
            for key, value in told.items():
                # ExifTool makes longer names of those of one letter.
                key = key.rpartition(":")[2].lower().removeprefix("tag")
                if key not in ("sourcefile", "warning"):
                    values[key].append(value)
            readings[pathlib.Path(told["SourceFile"]).stem] = values
        self.judge(readings, 150)

    def test_exiv2_sees_one_property_changed(self):
        readings = {}
        for name in self.lines:
            run = subprocess.run(
                ["exiv2", "-PXkv", self.folder / (name + ".xmp")], capture_output=True, check=False
            )
            if b"Error" in run.stderr:
                continue  # it refuses some forms that the standard has
            values = collections.defaultdict(list)
            for line in run.stdout.decode("utf-8", "replace").splitlines():
                if line.startswith("Xmp."):
                    key = re.split(r"[ /\[]", line.split(".", 2)[2])[0].lower()
                    values[key.encode("ascii", "ignore").decode()].append(line)
            readings[name] = values
        self.judge(readings, 100)


if __name__ == "__main__":
    TREE_TEST = sys.argv.pop(1)
    unittest.main()
