#!/usr/bin/env python3
"""Tests svgloom as a shell meets it, without the drawing. usage: svgloom_test.py BIN_DIR"""

import json
import pathlib
import sys
import unittest

HERE = pathlib.Path(__file__).resolve().parent
TOP = HERE.parent.parent.parent
sys.path.insert(0, str(TOP / "tests"))
from programs import Program  # noqa: E402
from sample_artwork import ICON, MALFORMED, THROWS  # noqa: E402
from tool_tests import BAD, DONE, WRONG_USAGE, ToolTest  # noqa: E402


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
