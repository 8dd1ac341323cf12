#!/usr/bin/env python3
"""Tests svgloom as a shell meets it. usage: svgloom_test.py BIN_DIR"""

import json
import os
import pathlib
import struct
import sys
import unittest
import zlib

HERE = pathlib.Path(__file__).resolve().parent
TOP = HERE.parent.parent.parent
sys.path.insert(0, str(TOP / "tests"))
from programs import Program  # noqa: E402
from tool_tests import BAD, DONE, WRONG_USAGE, ToolTest  # noqa: E402

ICON = '<svg viewBox="0 0 24 16"><path id="p" class="c" fill="var(--a, #f00)" d="M0 0H24V16H0z"/></svg>'
MALFORMED = "<svg><g>"
THROWS = '<svg><path d="M0 0H9V9z"/><path style="fill:red;;" d="M0 0H9"/></svg>'


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


class Calls(ToolTest):
    def calls(self, svg, *options, status=DONE, **more):
        result = self.expect(status, "calls", self.write("a.svg", svg), "--width", "24",
                             "--height", "16", *options, **more)
        return result

    def fill(self, *options, svg=ICON):
        return next(json.loads(line) for line in self.calls(svg, *options).lines if "fill" in line)

    def test_every_operation(self):
        svg = """<svg viewBox="1 2 48 32"><clipPath id="c"><rect width="2" height="3"/></clipPath>
            <clipPath id="t"><path transform="translate(5 6)" clip-rule="evenodd" d="M1 2"/></clipPath>
            <linearGradient id="l" x1="1" y1="2" x2="3" y2="4"><stop offset="0" stop-color="red"/>
              <stop offset=".25" stop-color="lime" stop-opacity=".5"/></linearGradient>
            <radialGradient id="r" cx="1" cy="2" r="3"><stop offset="0" stop-color="blue"/>
              <stop offset="1" stop-color="white"/></radialGradient>
            <g clip-path="url(#c)" transform="scale(2)"><path fill="url(#l)" d="M1 2L3 4"/></g>
            <path fill="url(#r)" fill-rule="evenodd" d="M1 2C3 4 5 6 7 8Z" clip-path="url(#t)"/>
            <path fill="none" d="M1 2" stroke="#fff" stroke-width="3" stroke-dasharray="1 .1"
              stroke-linejoin="bevel" stroke-linecap="round" stroke-miterlimit="9"/></svg>"""
        self.assertEqual(self.calls(svg).lines, [
            '{"op":"save"}',
            '{"op":"transform","m":[0.5,0,0,0.5,-0.5,-1]}',
            '{"op":"save"}',
            '{"op":"save"}',
            '{"op":"save"}',
            '{"op":"transform","m":[2,0,0,2,0,0]}',
            '{"op":"clip","path":[["M",0,0],["L",2,0],["L",2,3],["L",0,3],["Z"]],"rule":"nonzero",'
            '"transform":null}',
            '{"op":"save"}',
            '{"op":"fillLinear","path":[["M",1,2],["L",3,4]],"winding":true,"from":[1,2],"to":[3,4],'
            '"colors":[[1,0,0,1],[0,1,0,0.5]],"offsets":[0,0.25]}',
            '{"op":"restore"}',
            '{"op":"restore"}',
            '{"op":"save"}',
            '{"op":"clip","path":[["M",1,2]],"rule":"evenodd","transform":[1,0,0,1,5,6]}',
            '{"op":"fillRadial","path":[["M",1,2],["C",3,4,5,6,7,8],["Z"]],"winding":false,'
            '"center":[1,2],"edge":[4,2],"inner":[0,0,1,1],"outer":[1,1,1,1]}',
            '{"op":"restore"}',
            '{"op":"save"}',
            '{"op":"stroke","path":[["M",1,2]],"color":[1,1,1,1],"width":3,"miterLimit":9,'
            '"dash":[1,0.100000001],"join":"bevel","cap":"round"}',
            '{"op":"restore"}',
            '{"op":"restore"}',
            '{"op":"restore"}',
            '{"op":"restore"}',
        ])

    def test_variables(self):
        self.assertEqual(self.fill()["color"], [1, 0, 0, 1])
        self.assertEqual(self.fill("--var", "a=0,0.5,1,0.25")["color"], [0, 0.5, 1, 0.25])
        # The last one counts.
        self.assertEqual(self.fill("--var=a=0,0,0,0", "--var", "b=1,1,1,1", "--var", "a=1,1,1,1")
                         ["color"], [1, 1, 1, 1])
        for wrong in ("a", "a=", "=1,1,1,1", "a=1,1,1", "a=1,1,1,1,1", "a=1,1,1,1,", "a=1,1,1,x",
                      "a=1,1,1,1.1", "a=-0.1,1,1,1", "a=nan,1,1,1", "a=1,1,1, 1"):
            self.assertIn(wrong, self.calls(ICON, "--var", wrong, status=WRONG_USAGE).error)

    def test_style_sheet(self):
        sheet = self.write("a.css", ".c { fill: lime; }")
        for option in ("--css", "--stylesheet"):
            self.assertEqual(self.fill(option, sheet)["color"], [0, 1, 0, 1])
        self.assertIn("no.css", self.calls(ICON, "--css", self.folder / "no.css", status=BAD).error)
        self.assertEqual(self.calls(ICON, "--css", self.write("b.css", ".c{fill}.c{fill;}"),
                                    status=BAD).lines, ['{"error":"value not found"}'])

    def test_one_element(self):
        svg = '<svg><rect id="a" width="1" height="1"/><rect width="2" height="2"/></svg>'
        for option in ("--id", "-i", "--export-id"):
            logs = self.calls(svg, option, "a").lines
            self.assertEqual(sum("fill" in line for line in logs), 1)
        self.assertEqual(self.calls(svg, "--id", "b").lines, [])

    def test_sizes(self):
        file = self.write("a.svg", '<svg viewBox="0 0 10 10"/>')
        def scale(*options):
            return json.loads(self.expect(DONE, "calls", file, *options).lines[1])["m"]
        self.assertEqual(scale("-w", "10", "-h", "20"), [1, 0, 0, 1, 0, 0])
        self.assertEqual(scale("--width=1", "--height=20")[0], 0.100000001)
        # Passed on as they come.
        self.assertEqual(scale("-w", "0", "-h", "-20"), [-2, 0, 0, -2, 0, 0])
        file = self.write("a.svg", '<svg viewBox="0 0 0 0"/>')
        self.assertEqual(scale("-w", "0", "-h", "0"), ["nan"] * 6)
        self.assertEqual(scale("-w", "1", "-h", "1"), ["inf", "nan", "nan", "inf", "nan", "nan"])
        self.assertEqual(self.expect(WRONG_USAGE, "calls", file, "-w", "1x", "-h", "1").out, b"")
        self.expect(WRONG_USAGE, "calls", file, "-w", "1")
        self.expect(WRONG_USAGE, "calls", file, "-h", "1")

    def test_exceptions_are_the_last_line(self):
        result = self.calls(THROWS, status=BAD)
        self.assertEqual(result.lines, ['{"error":"value not found"}'])
        self.assertIn("a.svg: value not found", result.error)
        # One that leaves the draw.
        sheet = self.write("a.css", ".c{clip-path:none;}")
        result = self.calls(ICON, "--css", sheet, status=BAD)
        self.assertIn("a.svg", result.error)
        self.assertEqual(list(map(json.loads, result.lines))[0], {"op": "save"})
        self.assertEqual(list(json.loads(result.lines[-1])), ["error"])
        self.assertEqual(result.lines[-2], '{"op":"restore"}')

    def test_malformed_xml_draws_nothing(self):
        result = self.calls(MALFORMED)
        self.assertNotIn("fill", "".join(result.lines))
        self.assertIn("a.svg: malformed XML", result.error)
        self.assertIn("malformed XML", self.calls("<g>" * 513 + "</g>" * 513).error)
        self.assertEqual(self.calls("<g>" * 512 + "</g>" * 512).error, "")

    def test_standard_input(self):
        self.assertEqual(self.expect(DONE, "calls", "-", "-w", "24", "-h", "16",
                                     stdin=ICON.encode()).out, self.calls(ICON).out)
        result = self.expect(DONE, "calls", "-", "-w", "24", "-h", "16", stdin=b"<")
        self.assertIn("standard input: malformed XML", result.error)


class Values(ToolTest):
    EXAMPLES = [
        (("path", "M1 2L3 4Z"), '[["M",1,2],["L",3,4],["Z"]]'),
        (("transform", "translate(5)"), '{"ok":true,"m":[1,0,0,1,5,0]}'),
        (("color", "#fff"), '{"result":0,"kind":"color","color":[1,1,1,1],"rest":""}'),
        (("color", "var(--a, red)"),
         '{"result":0,"kind":"variable","name":"a","fallback":[1,0,0,1],"rest":""}'),
        (("color", "lightblue"), '{"result":1,"rest":"lightblue"}'),
        (("color", "--current-color", "currentColor"),
         '{"result":0,"kind":"currentColor","rest":""}'),
        (("color", " "), '{"result":1,"rest":""}'),
        # Where reading stopped.
        (("path", ""), "[]"),
        (("path", "M1 2Q3 4 5 6x"), '[["M",1,2],["C",1,2,3,4,5,6]]'),
        (("path", "M.1 -0L1e39 0"), '[["M",0.100000001,-0]]'),
        (("transform", "translate(5,5) SCALE(2)"), '{"ok":false,"m":[1,0,0,1,5,5]}'),
        (("transform", ""), '{"ok":true,"m":[1,0,0,1,0,0]}'),
        (("color", ""), '{"result":1,"rest":""}'),
        (("color", "currentColor"), '{"result":1,"rest":"currentColor"}'),
        (("color", "greenyellow"),
         '{"result":0,"kind":"color","color":[0,0.501960814,0,1],"rest":"yellow"}'),
        (("color", "#12 "), '{"result":1,"rest":" "}'),
        (("color", 'red "\\/\t\x7f\u00e4\U0001f600'),
         '{"result":0,"kind":"color","color":[1,0,0,1],'
         '"rest":" \\"\\\\/\\t\\u007f\\u00e4\\ud83d\\ude00"}'),
    ]

    def test_examples(self):
        for arguments, line in self.EXAMPLES:
            with self.subTest(arguments):
                self.assertEqual(self.expect(DONE, *arguments).lines, [line])

    def test_lines(self):
        for command in (("path",), ("transform",), ("color",), ("color", "--current-color")):
            rows = [(words[-1], line) for words, line in self.EXAMPLES if words[:-1] == command]
            self.assertTrue(rows)
            file = self.write("lines", "\n \n".join(json.dumps(text) for text, _ in rows) + "\n")
            with self.subTest(command):
                result = self.expect(DONE, *command, "--lines", file)
                self.assertEqual(result.lines, [line for _, line in rows])
                self.assertEqual(self.expect(DONE, *command, "--lines", "-",
                                             stdin=file.read_bytes()).out, result.out)

    def test_css(self):
        css = "#b,.a{fill:red;stroke:Bl\u00fce;}a>b,p{x:y;}.a{stroke:none;}\r\n.A{b:c;a:d;}"
        line = ('{"p":{"x":"y"},".A":{"a":"d","b":"c"},".a":{"fill":"red","stroke":"none"},'
                '"#b":{"fill":"red","stroke":"Bl\\u00fce"},"a>b":{"x":"y"}}')
        file = self.write("a.css", css)
        self.assertEqual(self.expect(DONE, "css", file).lines, [line])
        self.assertEqual(self.expect(DONE, "css", "-", stdin=css.encode()).lines, [line])
        lines = self.write("lines", "\n".join(map(json.dumps, [css, ".a{b;}", ".{c:d;}", ""])))
        result = self.expect(BAD, "css", "--lines", lines)
        self.assertEqual(result.lines, [line, '{"error":"value not found"}',
                                        '{"error":"empty CSS selector"}', "{}"])
        self.assertIn("lines:2: value not found", result.error)
        self.assertIn("lines:3: empty CSS selector", result.error)
        result = self.expect(BAD, "css", self.write("b.css", ".a{b;}"))
        self.assertEqual(result.lines, ['{"error":"value not found"}'])
        self.assertIn("b.css: value not found", result.error)

    def test_names(self):
        lines = self.expect(DONE, "names").lines
        self.assertEqual(len(lines), 148)
        self.assertEqual(lines[0], '{"name":"aliceblue","color":[0.941176474,0.972549021,1,1]}')
        self.assertEqual(lines[-1], '{"name":"yellowgreen","color":'
                                    '[0.603921592,0.80392158,0.196078435,1]}')
        self.assertEqual(sum('"darkslateblue"' in line for line in lines), 2)

    def test_bad_lines(self):
        for content in ('"a', "a", '"\\x"', b'"\xff"'):
            self.assertIn("lines:2: ", self.expect(
                BAD, "path", "--lines", self.write("lines", b'"M1 1"\n' + (
                    content if isinstance(content, bytes) else content.encode()))).error)

    def test_usage(self):
        file = self.write("lines", "")
        for command in ("path", "transform", "color", "css"):
            self.expect(WRONG_USAGE, command)
            self.expect(WRONG_USAGE, command, "a", "b")
            self.expect(WRONG_USAGE, command, "a", "--lines", file)
            self.assertEqual(self.expect(DONE, command, "--lines", file).out, b"")
            self.assertIn("no.lines", self.expect(BAD, command, "--lines",
                                                  self.folder / "no.lines").error)
        self.expect(WRONG_USAGE, "path", "--current-color", "M1 1")
        self.assertIn("no.css", self.expect(BAD, "css", self.folder / "no.css").error)


class Tree(ToolTest):
    def tree(self, svg, status=DONE):
        return json.loads(self.expect(status, "tree", self.write("a.svg", svg)).out)

    def test_elements(self):
        tree = self.tree('<svg viewBox="1 2 3 4"><defs><g id="d"><rect id="i"/></g></defs>'
                         '<symbol id="s"><path d="M1 1" class="b a"/></symbol>'
                         '<use href="#s" opacity=".5"/></svg>')
        self.assertEqual(tree["viewBox"], [1, 2, 3, 4])
        use = tree["root"]["children"][0]["children"][0]
        self.assertEqual((use["kind"], use["target"], use["opacity"]), ("reference", "s", 0.5))
        self.assertEqual([element["id"] for element in tree["byId"]], ["d", "s"])
        # The group of a symbol is in itself, which is not followed.
        (path,) = tree["byId"][1]["children"]
        self.assertEqual((path["path"], path["classes"]), ([["M", 1, 1]], ["a", "b"]))

    def test_bad_content(self):
        self.assertEqual(self.tree(THROWS, BAD), {"error": "value not found"})
        self.assertEqual(self.tree(MALFORMED)["viewBox"], [0, 0, 320, 200])

    def test_the_samples(self):
        """Whatever they hold, a line of JSON comes out."""
        samples = sorted((TOP / "tests" / "artwork").rglob("*.svg"))
        self.assertTrue(samples)
        for sample in samples[::40]:
            with self.subTest(sample):
                self.assertEqual(len(self.run_tool("tree", sample).lines), 1)


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


class Program_(ToolTest):
    COMMANDS = {"calls", "render", "check", "path", "transform", "color", "css", "tree", "names"}

    def test_help(self):
        overview = self.expect(DONE, "--help").out.decode()
        named = {line.split()[1] for line in overview.splitlines() if line.startswith("       svgloom ")}
        self.assertEqual(named, self.COMMANDS)
        for command in named:
            with self.subTest(command):
                text = self.expect(DONE, command, "--help").out.decode()
                self.assertTrue(text.startswith(f"usage: svgloom {command}"))
                self.assertGreater(len(text.splitlines()), 1)
                for line in text.splitlines()[1:]:
                    self.assertLessEqual(len(line), 96)
                # Also behind a wrong option, and not behind "--".
                self.expect(DONE, command, "--nonsense", "--help")
        self.expect(BAD, "tree", "--", "--help")

    def test_version(self):
        version = self.expect(DONE, "--version").out
        self.assertEqual(self.expect(DONE, "-V").out, version)
        self.assertRegex(version.decode(), r"^svgloom \d+\.\d+\.\d+\n$")

    def test_wrong_command_lines(self):
        for arguments in ((), ("nonsense",), ("-h",), ("names", "x"), ("tree",), ("tree", "a", "b"),
                          ("tree", "--lines"), ("calls", "-w", "1", "-h", "1")):
            result = self.expect(WRONG_USAGE, *arguments)
            self.assertIn("usage: svgloom", result.error)
            self.assertEqual(result.out, b"")

    def test_missing_input(self):
        for arguments in (("calls", "-w", "1", "-h", "1"), ("tree",), ("css",)):
            result = self.expect(BAD, *arguments, self.folder / "n\u00f6.svg")
            self.assertIn("n\u00f6.svg", result.error)
            self.assertEqual(result.out, b"")


if __name__ == "__main__":
    ToolTest.tool = Program(pathlib.Path(sys.argv.pop(1)).resolve(), "svgloom")
    unittest.main()
