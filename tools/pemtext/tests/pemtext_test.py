#!/usr/bin/env python3
"""Tests pemtext as a shell meets it. usage: pemtext_test.py BIN_DIR"""

import json
import os
import pathlib
import sys
import unittest

HERE = pathlib.Path(__file__).resolve().parent
TOP = HERE.parent.parent.parent
sys.path.insert(0, str(TOP / "tests"))
from programs import Program  # noqa: E402
from tool_tests import BAD, DONE, WRONG_USAGE, ToolTest  # noqa: E402

SHIPPED = sorted((TOP / "resources" / "dict").glob("*.dict"))
WRONG = HERE / "wrong"


class Dump(ToolTest):
    def test_text(self):
        file = self.write("a.dict", '"$$$/Menu/File=File\u2026"\n"$$$/A=\\"#{D83D}"\n\u00ff=x\n')
        self.assertEqual(self.expect(DONE, "dump", file).lines, [
            '{"key":"/A","value":"\\"\\ud83d"}',
            '{"key":"/Menu/File","value":"File\\u2026"}',
            '{"key":"\\u00ff","value":"x"}',
            '{"valid":true,"major":0,"minor":0,"header":null,"count":3}',
        ])

    def test_files_one_after_the_other(self):
        first = self.write("a.dict", '"$$$/A=1"\n"$$$/B=1"\n"$$/C=3"\n')
        second = self.write("b.dict", '"$$$/A=2"\n')
        self.assertEqual(self.expect(DONE, "dump", first, second).lines, [
            '{"key":"/A","value":"2"}',
            '{"key":"/B","value":"1"}',
            '{"valid":false,"major":0,"minor":0,"header":null,"count":2}',
        ])

    def test_memory_and_standard_input(self):
        file = self.write("a.dict", "\ufeff\n$$$/A=1\n")
        # A mark alone on its line is skipped by the stream's loader only.
        self.assertEqual(len(self.expect(DONE, "dump", file).lines), 2)
        self.assertEqual(len(self.expect(DONE, "dump", "--memory", file).lines), 3)
        self.assertEqual(self.expect(DONE, "dump", "-", stdin=file.read_bytes()).out,
                         self.expect(DONE, "dump", file).out)
        self.assertEqual(self.expect(DONE, "dump", "--memory", "-").lines,
                         ['{"valid":false,"major":0,"minor":0,"header":null,"count":0}'])

    def test_plain_image(self):
        def number(value):
            return value.to_bytes(4, "little")
        image = (b"Pemtext Binary Format\2\7\0\0" + number(2) + b"de" + number(0) + b"N" +
                 number(2) + number(2) + number(0) + number(4) + number(0) + number(1) +
                 b"\1\0\1\0" + b"x\0y\0")
        file = self.write("plain.dict", image)
        self.assertEqual(self.expect(DONE, "dump", file).lines, [
            '{"key":null,"value":"x"}',
            '{"key":null,"value":"y"}',
            '{"valid":true,"major":2,"minor":7,"header":"de","count":2}',
        ])
        self.assertIn("plain.dict", self.expect(BAD, "text", file, "-o",
                                                self.folder / "out").error)
        self.assertFalse((self.folder / "out").exists())
        self.expect(DONE, "compile", file, "-o", self.folder / "out")
        self.assertEqual((self.folder / "out").read_bytes(), image)


class LookUp(ToolTest):
    def setUp(self):
        super().setUp()
        self.file = self.write("a.dict", '"$$$/A=a^D"\n"$$$/Empty="\n')
        self.other = self.write("b.dict", '"$$$/B=b"\n')
        keys = ["$$$/A=x", "$$$/B=y\xe4", "$$$/Empty=z", "$$/A", "$$$/C=\xc3\xa4#{copy}"]
        self.keys = self.write("keys", "\n".join(map(json.dumps, keys)) + "\n\n \n")

    def values(self, *arguments):
        return [json.loads(line)["value"] for line in self.expect(DONE, *arguments).lines]

    def test_full(self):
        self.assertEqual(self.expect(DONE, "lookup", self.file, "--keys", self.keys).lines[0],
                         '{"key":"$$$/A=x","value":"a\\u00b0"}')
        self.assertEqual(self.values("lookup", self.file, "--keys", self.keys),
                         ["a\xb0", "y\uffe4", "", "", "\uffc3\uffa4\xa9"])
        self.assertEqual(self.values("lookup", "--utf8", self.file, "--keys", self.keys),
                         ["a\xb0", "y\ufffd", "", "", "\xe4\xa9"])

    def test_raw_and_fallback(self):
        self.assertEqual(self.values("lookup", "--raw", self.file, "--keys", self.keys),
                         ["a\xb0", None, "", None, None])
        self.assertEqual(self.values("lookup", "--raw", self.file, "--keys", self.keys,
                                     "--fallback", self.other),
                         ["a\xb0", "b", "", None, None])

    def test_images_answer_alike(self):
        for order in ("little", "big"):
            image = self.folder / order
            self.expect(DONE, "compile", self.file, "-o", image, "--byte-order", order)
            for options in ([], ["--raw"], ["--utf8"], ["--fallback", self.other]):
                self.assertEqual(
                    self.expect(DONE, "lookup", image, "--keys", self.keys, *options).out,
                    self.expect(DONE, "lookup", self.file, "--keys", self.keys, *options).out)

    def test_localize(self):
        self.assertEqual(self.values("localize", self.file, "--keys", self.keys),
                         ["a\xb0", "y\ufffd", "", "$$/A", "\xe4\xa9"])
        self.assertEqual(self.values("localize", "--keys", self.keys)[0], "x")

    def test_standard_input(self):
        content = self.file.read_bytes()
        for command in ("lookup", "localize"):
            self.assertEqual(
                self.expect(DONE, command, "-", "--keys", self.keys, stdin=content).out,
                self.expect(DONE, command, self.file, "--keys", self.keys).out)

    def test_bad_keys(self):
        for text, message in (('"a"\nb\n', ":2: the line is no JSON string"),
                              ('\n"\\x"', ":2: the line holds an escape"),
                              ('"\u0100"', ":1: a key is bytes")):
            keys = self.write("bad", text)
            error = self.expect(BAD, "lookup", self.file, "--keys", keys).error
            self.assertIn("bad" + message, error)

    def test_value(self):
        lines = b'"say ^Qhi^Q\\n#{copy}"\n\n"a\\\\n"\n"\\ud83d#{macos}x"\n'
        self.assertEqual(self.expect(DONE, "value", stdin=lines).lines,
                         ['"say \\"hi\\"\\n\\u00a9"', '"a\\n"', '"\\ud83d"'])
        self.assertEqual(self.expect(DONE, "value", "--markers-only", stdin=lines).lines,
                         ['"say ^Qhi^Q\\n\\u00a9"', '"a\\\\n"', '"\\ud83d"'])


class Write(ToolTest):
    def entries(self, file):
        return self.expect(DONE, "dump", file).lines[:-1]

    def test_shipped_dictionaries(self):
        out = self.folder / "out"
        self.assertGreaterEqual(len(SHIPPED), 3)
        for file in SHIPPED:
            for order in ("little", "big"):
                self.expect(DONE, "compile", file, "-o", out, "--byte-order", order)
                self.assertEqual(self.entries(out), self.entries(file))
            self.expect(DONE, "text", file, "-o", out)
            self.assertEqual(self.entries(out), self.entries(file))

    def test_many_texts(self):
        file = self.write("many.dict", "".join(
            f'"$$$/Menu{i % 97}/Item{i}=Text \u00e4 {i % 5000}"\n' for i in range(100000)))
        out = self.folder / "out"
        want = self.expect(DONE, "dump", file).out.splitlines()[:-1]
        self.assertEqual(len(want), 100000)
        for order in ("little", "big"):
            self.expect(DONE, "compile", file, "-o", out, "--byte-order", order)
            self.assertEqual(self.expect(DONE, "dump", out).out.splitlines()[:-1], want)

    def test_any_key_and_value_as_text(self):
        values = ["\\", '"', '\\"', "^", "#{copy}", "#", "x#", "\n\r\t\b\0\x1f", "^^\\\\", "{}",
                  "\u2028\ufeff", "\\\\", "=", "$$$", " "]
        keys = ['"', "=", "\\", "\n\r\0", "\x80\xff", "#{copy}", "$", " ", ""]
        # Written by hand where the tool would have to be trusted: all through numbers.
        lines = ["\ufeff"]
        for number, value in enumerate(values):
            text = "".join(f"#{{{ord(unit):04X}}}" for unit in value)
            lines.append(f"$$$/V{number}={text}")
        for key in keys:
            lines.append("$$$" + "".join(chr(0x100 + ord(byte)) for byte in key) + "=k")
        file = self.write("a.dict", "\n".join(lines) + "\n")
        out = self.folder / "out"
        self.expect(DONE, "text", file, "-o", out)
        read = {entry["key"]: entry["value"] for entry in map(json.loads, self.entries(out))}
        for number, value in enumerate(values):
            self.assertEqual(read[f"/V{number}"], value)
        for key in keys:
            self.assertEqual(read[key], "k", key)
        self.assertEqual(self.entries(out), self.entries(file))

    def test_text_is_sorted_by_key_bytes(self):
        file = self.write("a.dict", "b=1\n\u00e9=2\na=3\nab=4\nA=5\n")
        out = self.folder / "out"
        self.expect(DONE, "text", file, "-o", out)
        self.assertEqual(out.read_text(encoding="utf-8").splitlines(),
                         ['"$$$A=5"', '"$$$a=3"', '"$$$ab=4"', '"$$$b=1"', '"$$$\u00e9=2"'])

    def test_header_and_flag(self):
        file = self.write("a.dict", '"$$$/A=1"\n')
        first, second = self.folder / "first", self.folder / "second"
        self.expect(DONE, "compile", file, "-o", first)
        self.assertEqual(first.read_bytes()[21:34], b"\2\7\0\0\5\0\0\0en_US")
        self.expect(DONE, "compile", file, "-o", first, "--header", "fr", "--store-flag", "1")
        self.assertEqual(first.read_bytes()[21:31], b"\2\7\1\0\2\0\0\0fr")
        # What an image has stays.
        self.expect(DONE, "compile", first, "-o", second)
        self.assertEqual(second.read_bytes(), first.read_bytes())
        self.expect(DONE, "compile", first, "-o", second, "--header=", "--store-flag=0",
                    "--byte-order=big")
        self.assertEqual(second.read_bytes()[21:29], b"\2\7\0\1\0\0\0\0")

    def test_export(self):
        file = self.write("a.dict", '"$$$a=1"\n"$$$ab=\\n"\n')
        out = self.folder / "out"
        self.expect(DONE, "export", file, "-o", out)
        self.assertEqual(out.read_bytes(), '\ufeff"a=1"ab=\n'.encode("utf-16-le"))

    def test_standard_output(self):
        file = self.write("a.dict", '"$$$/A=1\\r\\n"\n')
        self.assertEqual(self.expect(DONE, "text", file, "-o", "-").out, b'"$$$/A=1\\r\\n"\n')

    def test_what_does_not_load_is_not_written(self):
        out = self.write("out", "old")
        bad = self.write("bad.dict", '\n"$$/A=1"\n')
        for command in ("compile", "export", "text"):
            self.assertIn("bad.dict:2: the line begins with '$'",
                          self.expect(BAD, command, bad, "-o", out).error)
            self.assertIn("standard input:2: ", self.expect(
                BAD, command, "-", "-o", out, stdin=bad.read_bytes()).error)
        self.assertIn("broken_image.dict: the binary image is broken",
                      self.expect(BAD, "compile", WRONG / "broken_image.dict", "-o", out).error)
        long = self.write("long.dict", '"$$$/A=' + 65536 * "x" + '"\n')
        error = self.expect(BAD, "compile", long, "-o", out).error
        self.assertIn('the value of "/A" is longer than 65535', error)
        self.assertEqual(out.read_text(), "old")
        self.assertEqual(sorted(path.name for path in self.folder.iterdir()),
                         ["bad.dict", "long.dict", "out"])

    def test_what_is_left_out_is_told(self):
        out = self.folder / "out"
        for content, message in ((b'"$$$/A=1"\n\n\xc0\n"$$$/B=2"\n', "a.dict:3: the line is not"),
                                 ('\ufeff"$$$/A=1"\n\0"$$$/B=2"\n'.encode("utf-16-le"),
                                  "a.dict:2: a NUL")):
            error = self.expect(DONE, "text", self.write("a.dict", content), "-o", out).error
            self.assertIn(message, error)
            self.assertEqual(out.read_text(), '"$$$/A=1"\n')

    def test_full_disk(self):
        file = self.write("a.dict", '"$$$/A=1"\n')
        out = self.write("out", "old")
        for fault in ("write:ENOSPC:1", "flush:ENOSPC:1"):
            os.environ["KIV_FILE_FAULT"] = fault
            try:
                for command in ("compile", "export", "text"):
                    error = self.expect(BAD, command, file, "-o", out).error
                    self.assertIn("out", error)
                    self.expect(BAD, command, file, "-o", self.folder / "new")
            finally:
                del os.environ["KIV_FILE_FAULT"]
        self.assertEqual(out.read_text(), "old")
        self.assertEqual(sorted(path.name for path in self.folder.iterdir()), ["a.dict", "out"])

    def test_files_that_may_not_grow(self):
        """As on a full disk, wherever it becomes full."""
        if self.tool.is_windows:
            return
        file = self.write("a.dict", "".join(f'"$$$/A{i}=Text {i}"\n' for i in range(3000)))
        for command in ("compile", "export", "text"):
            self.expect(DONE, command, file, "-o", self.folder / "whole")
            size = (self.folder / "whole").stat().st_size
            (self.folder / "whole").unlink()
            self.assertGreater(size, 60000)
            out = self.write("out", "old")
            for limit in (0, 1, 24, 4096, size // 2, size - 1):
                for target in (out, self.folder / "new"):
                    result = self.run_tool(command, file, "-o", target, largest_file=limit)
                    self.assertEqual(result.status, BAD, (command, limit))
                    self.assertIn(target.name, result.error)
                    self.assertEqual(out.read_text(), "old")
                    self.assertEqual(sorted(path.name for path in self.folder.iterdir()),
                                     ["a.dict", "out"])
            self.assertEqual(
                self.run_tool(command, file, "-o", out, largest_file=size).status, DONE)
            self.assertEqual(out.stat().st_size, size)

    def test_full_standard_output(self):
        if self.tool.is_windows:
            return
        file = self.write("a.dict", '"$$$/A=1"\n')
        with open("/dev/full", "wb") as full:
            result = self.run_tool("dump", file, stdout=full)
        self.assertEqual(result.status, BAD)
        self.assertIn("standard output", result.error)


class Check(ToolTest):
    def findings(self, *arguments, status):
        result = self.expect(status, "check", *arguments, folder=WRONG)
        return result.out.decode().splitlines()

    def test_shipped_dictionaries_are_clean(self):
        base = TOP / "resources" / "dict" / "kiv_en_US.dict"
        result = self.expect(DONE, "check", "--strict", "--reference", base, *SHIPPED)
        self.assertEqual(result.lines, ["0 errors, 0 warnings"])

    def test_lines(self):
        self.assertEqual(self.findings("lines.dict", status=BAD), [
            "lines.dict:2: error: the line is dropped: it begins with '$', but not with \"$$$\""
            " [rejected-line]",
            'lines.dict:3: warning: the line defines the key "# a comment", by accident? Keys are'
            ' written with "$$$" [accidental-key]',
            'lines.dict:4: warning: the key "/NoValue" has no \'=\' and so an empty value'
            " [no-value]",
            "lines.dict:5: warning: the closing quote is missing [open-quote]",
            "lines.dict:6: warning: the text behind the closing quote does not count; a quote in a"
            ' value is written \\" [ignored-text]',
            'lines.dict:8: warning: "#{Copy}" is no marker and is shown as it is'
            " [unknown-marker]",
            'lines.dict:8: warning: "#{U+1F600}" is no marker and is shown as it is'
            " [unknown-marker]",
            'lines.dict:9: warning: "\\%" is no escape and is shown as it is [unknown-escape]',
            'lines.dict:9: warning: "^x" is no escape and is shown as it is [unknown-escape]',
            'lines.dict:10: warning: the key "/Twice" is defined again; this line counts'
            " [duplicate-key]",
            "lines.dict:7: note: first defined here [duplicate-key]",
            'lines.dict:11: warning: the key "/Gr??e" holds characters that are not ASCII'
            " [key-bytes]",
            "lines.dict:12: warning: the line defines the empty key [accidental-key]",
            "1 error, 11 warnings",
        ])

    def test_where_reading_stops(self):
        self.assertEqual(
            self.findings("broken_utf8.dict", "nul_utf8.dict", "nul_utf16.dict",
                          "half_unit_utf16.dict", "short.dict", "broken_image.dict", status=BAD), [
                "broken_utf8.dict:2: error: the line is not well-formed UTF-8; reading stops here,"
                " and 2 lines are lost [broken-utf8]",
                "nul_utf8.dict:2: warning: the closing quote is missing [open-quote]",
                "nul_utf8.dict:2: error: a NUL cuts the rest of the line [nul]",
                "nul_utf16.dict:2: error: a NUL ends the file here; what follows is lost [nul]",
                "half_unit_utf16.dict:2: error: the line is dropped: it begins with '$', but not"
                ' with "$$$" [rejected-line]',
                "half_unit_utf16.dict:4: warning: the last byte is half a character of UTF-16 and"
                " counts for nothing [half-unit]",
                "short.dict:1: error: the file is too short for a dictionary [too-short]",
                "broken_image.dict:1: error: the binary image is broken or of a version that is not"
                " read [broken-image]",
                "6 errors, 2 warnings",
            ])

    def test_reference(self):
        self.assertEqual(
            self.findings("--reference", "base.txt", "translated.dict", status=BAD), [
                'translated.dict:1: error: placeholders of "/Count" differ: ^1 here, ^0 ^1 in'
                " base.txt [placeholders]",
                'translated.dict:2: warning: the key "/Old" is not in base.txt [obsolete-key]',
                'translated.dict:3: warning: "/Question" ends in other punctuation than in base.txt'
                " [end-punctuation]",
                'base.txt:2: warning: the key "/Gone" is missing in translated.dict [missing-key]',
                "1 error, 3 warnings",
            ])

    def test_strict_and_json(self):
        file = self.write("a.dict", "# x\n")
        self.expect(DONE, "check", file)
        self.expect(BAD, "check", "--strict", file)
        found = [json.loads(line)
                 for line in self.expect(DONE, "check", "--format", "json", file).lines]
        self.assertEqual([finding.get("id") for finding in found], ["accidental-key", None])
        self.assertEqual(found[0]["line"], 1)
        self.assertEqual(found[1], {"errors": 0, "warnings": 1})


class CommandLine(ToolTest):
    def test_help_and_version(self):
        overview = self.expect(DONE, "--help").lines
        commands = [line.split()[1] for line in overview if line.startswith("       pemtext ")]
        self.assertEqual(len(commands), 14)
        for command in commands:
            self.assertIn("pemtext " + command, self.expect(DONE, command, "--help").lines[0])
        self.assertRegex(self.expect(DONE, "-V").lines[0], r"^pemtext \d+\.\d+\.\d+$")
        self.assertEqual(self.expect(DONE, "--version").out, self.expect(DONE, "-V").out)

    def test_wrong_usage(self):
        for arguments in ([], ["nothing"], ["dump"], ["dump", "--bad", "x"], ["dump", "-h"],
                          ["lookup", "x"], ["lookup", "x", "y", "--keys", "z"], ["value", "x"],
                          ["compile", "x"], ["compile", "x", "-o"], ["dump", "--memory=1", "x"],
                          ["compile", "x", "-o", "y", "--byte-order", "middle"],
                          ["compile", "x", "-o", "y", "--store-flag", "2"],
                          ["check", "--format", "xml", "x"]):
            result = self.expect(WRONG_USAGE, *arguments)
            self.assertIn("usage: pemtext", result.error)
            self.assertEqual(result.out, b"")

    def test_files_that_are_not_there(self):
        for arguments in (["dump", "nothing"], ["compile", "nothing", "-o", "out"],
                          ["check", "nothing"], ["lookup", "nothing", "--keys", "nothing"],
                          ["localize", "nothing", "--keys", "nothing"]):
            error = self.expect(BAD, *arguments, folder=self.folder).error
            self.assertIn("nothing", error)

    def test_names_in_utf8(self):
        file = self.write("W\u00f6rter \u65e5\u672c.dict", '"$$$/A=1"\n')
        out = self.folder / "\u00e9.img"
        self.expect(DONE, "compile", file, "-o", out)
        self.assertTrue(out.exists())
        missing = self.expect(BAD, "dump", self.folder / "\u00fcber.dict").error
        self.assertIn("\u00fcber.dict", missing)

    def test_a_file_that_looks_like_an_option(self):
        self.write("-x", '"$$$/A=1"\n')
        self.assertEqual(len(self.expect(DONE, "dump", "--", "-x", folder=self.folder).lines), 2)


if __name__ == "__main__":
    ToolTest.tool = Program(pathlib.Path(sys.argv.pop(1)).resolve(), "pemtext")
    unittest.main()
