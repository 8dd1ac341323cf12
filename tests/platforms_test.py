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

import photo_formats
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


class PlatformsTest(unittest.TestCase):
    """Each test runs the same on both, in a folder each."""

    maxDiff = 2000

    def setUp(self):
        self.folders = [pathlib.Path(tempfile.mkdtemp()) for _ in BINS]
        for folder in self.folders:
            self.addCleanup(shutil.rmtree, folder)

    def run_program(self, platform, name, *arguments, stdin=None, **environment):
        """Paths are given relative to the platform's folder: as pathlib.Path. Programs run in it."""
        folder = self.folders[platform]
        program = Program(BINS[platform], name)
        words = [folder / a if isinstance(a, pathlib.Path) else a for a in arguments]
        values = {"KIV_PREF_DIR": folder / "preferences", **environment}
        run = subprocess.run(
            program.command(*words),
            input=stdin,
            stdin=subprocess.DEVNULL if stdin is None else None,
            capture_output=True,
            cwd=folder,
            timeout=120,
            env=dict(os.environ, **program.variables(**values)),
            check=False,
        )
        # Messages name files.
        told = run.stderr.replace(program.word(folder).encode() + b"\\", b"")
        told = told.replace(str(folder).encode() + b"/", b"")
        # Wine's services begin with the first program and tell their troubles where it does. A
        # program that breaks down itself has another status.
        told = b"".join(t for t in told.splitlines(True) if not t.startswith(b"wine: "))
        return run.returncode, run.stdout, told

    def same(self, name, *arguments, **options):
        """Runs it on both; what both answer."""
        first, second = (
            self.run_program(platform, name, *arguments, **options) for platform in (0, 1)
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


class Metadata(PlatformsTest):
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


class Photos(PlatformsTest):
    """A file of each format goes through all ways of saving: a first packet, an edit in its place,
    one that outgrows it, a whole other packet. After each of them both platforms have the same."""

    def setUp(self):
        super().setUp()
        made = pathlib.Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, made)
        self.files = [self.put(path, path.name)
                      for path in photo_formats.make(sample("with-packet"), made)]  # fmt: skip
        self.assertEqual(len({path.suffix for path in self.files}), 5)
        self.packet = self.put(HERE / "full_packet.xmp", "packet.xmp")

    def assert_saved(self, *names):
        """The same everywhere, and something else than before."""
        for name in names:
            content = self.assert_same_file(name)
            self.assertNotEqual(content, self.saved.get(name))
            self.saved[name] = content

    def go_through(self, file, saved):
        """`saved` is what a save of `file` writes."""
        self.saved = {saved: (self.folders[0] / saved).read_bytes()
                      if (self.folders[0] / saved).exists() else None}  # fmt: skip
        sets = [word for edit in EDITS for word in ("--set", edit)]
        status, text, told = self.same("kivhost", *sets, "--auto", "ok", file)
        self.assertEqual((status, told), (0, b""))
        self.assertTrue(text.startswith(b"confirmed\n"))
        self.assert_saved(saved)
        for edit in ("xmp:Rating=2", "dc:source=" + "x" * 6000):
            self.assertEqual(
                self.same("kivxmp_photo_editor", file, edit)[:2], (0, b"saved\n")
            )
            self.assert_saved(saved)
        self.same("kivhost", "--dump", file)
        self.assertEqual(self.same("kivhost", "--insert", self.packet, file)[0], 0)
        self.assert_saved(saved)
        packet = (self.folders[0] / self.packet).read_bytes()
        self.assertIn(packet, self.saved[saved])

    def test_saved_in_the_photo(self):
        for file in self.files:
            with self.subTest(file):
                self.go_through(file, file)

    def test_saved_in_a_sidecar(self):
        raw = self.put(self.folders[0] / "photo.tif", "photo.nef")
        untouched = self.assert_same_file(raw)
        self.go_through(raw, pathlib.Path("photo.nef.xmp"))
        self.assertEqual(self.assert_same_file(raw), untouched)
        self.go_through(self.put(self.packet_with_shorthand(), "own.xmp"), pathlib.Path("own.xmp"))

    def packet_with_shorthand(self):
        path = self.folders[0] / "shorthand"
        path.write_text(
            "<x:xmpmeta xmlns:x='adobe:ns:meta/'>\r\n<rdf:RDF xmlns:rdf="
            "'http://www.w3.org/1999/02/22-rdf-syntax-ns#'>\r\n <rdf:Description rdf:about=''"
            " xmlns:xmp='http://ns.adobe.com/xap/1.0/' xmp:Rating='1' xmp:Label='\u7a7a'/>\r\n"
            "</rdf:RDF></x:xmpmeta>", "utf-16", newline="",
        )  # fmt: skip
        return path

    def test_many_at_once(self):
        self.put(self.packet_with_shorthand(), "bad.jpg")
        # Not as paths: each line of the dump names its file.
        files = [*map(str, self.files), "bad.jpg", "missing.png", *map(str, self.files)]
        status, text, told = self.same("kivhost", "--insert", self.packet, "--dump", *files)
        self.assertEqual(status, 1)
        self.assertIn(b"8 written, 8 unchanged, 2 refused\n", told)
        for file in self.files:
            self.assert_same_file(file)


TEXT = (
    '"$$$/Menu/File=Datei\u2026"\n"$$$/Count=^1 von ^2 #{copy} \U0001f600"\n"$$$/Tab=a\\tb^Qc^Q"\n'
    '"$$$/Where=#{macos}Mac#{mswindows}Win#{comment} note"\n$$$/Plain=x=y\n\u00ff=old\r\n'
    '"$$$/Menu/File=Datei"\n"$$$/Half=#{D83D}"\n"$$$/Same=OK"\n"$$$=empty key"\n'
)
TRANSLATION = '"$$$/Menu/File=\u30d5\u30a1\u30a4\u30eb"\n"$$$/Same=OK"\n"$$$/Gone=weg"\n'
KEYS = r'''"$$$/Menu/File=File"
"$$$/Count"
"$$$/Nothing=\u00c3\u00a4#{copy} ^C"
"$$$/Nothing=broken \u00ff"
"$$/A=x"

"\u00ff=y"
'''
VALUES = rb'''"say ^Qhi^Q\n#{copy}\ud83d"
"A#{macos}B # C#{mswindows}D"
'''
SOURCE = 'f("$$$/A=One " "and two\\n"); // "$$$/B=no"\nh(u8"$$$/C=\u00e4", R"($$$/D=raw "q")");\n'
XML = '<v t="$$$/X=R&amp;D" u=\'$$$/Y=\u65e5\u672c\'/>\n'

# What each command of pemtext is asked, with OUT as the file that it writes.
PEMTEXT = [
    "dump a.dict", "dump --memory a.dict", "dump little.dict", "dump --memory big.dict",
    "dump a.dict de.dict", "dump -", "dump kiv_ja_JP.dict", "dump W\u00f6rter\u65e5.dict",
    "lookup a.dict --keys keys", "lookup a.dict --keys keys --utf8", "lookup a.dict --keys keys --raw",
    "lookup de.dict --fallback a.dict --keys keys", "lookup big.dict --keys=keys --utf8",
    "localize a.dict --keys keys", "localize --keys keys",
    "value", "value --markers-only",
    "compile a.dict -o OUT", "compile a.dict -o OUT --byte-order big --store-flag 1 --header de",
    "compile kiv_de_DE.dict -o OUT --header=\u00e4", "compile little.dict -o OUT", "compile - -o OUT",
    "compile a.dict -o -", "export a.dict -o OUT", "export kiv_ja_JP.dict -o -",
    "text a.dict -o OUT", "text big.dict -o -", "text kiv_ja_JP.dict -o OUT",
    "check a.dict", "check --strict --format json a.dict little.dict",
    "check --reference a.dict de.dict", "check --reference base.txt translated.dict",
    "check lines.dict broken_utf8.dict nul_utf8.dict nul_utf16.dict half_unit_utf16.dict short.dict"
    " broken_image.dict",
    "check --reference kiv_en_US.dict kiv_de_DE.dict kiv_ja_JP.dict",
    "stats a.dict de.dict a.dict", "stats --format json kiv_en_US.dict kiv_de_DE.dict kiv_ja_JP.dict",
    "extract a.cpp a.xml", "extract a.xml a.cpp -o OUT",
    "merge a.dict de.dict -o OUT", "merge a.dict de.dict -o OUT --keep-obsolete",
    "pseudo a.dict -o OUT --accented", "pseudo kiv_en_US.dict -o OUT --bidi --longer 40%",
    "pseudo kiv_ja_JP.dict -o -  --accented --bidi --longer 40%",
    # What is wrong.
    "", "--help", "--version", "nothing", "dump", "dump -h", "dump nothing.dict", "dump .",
    "compile a.dict -o", "compile a.dict -o no/such/folder", "compile a.dict -o .",
    "compile a.dict -o OUT --byte-order middle", "compile lines.dict -o OUT", "text nul_utf16.dict -o OUT",
    "lookup a.dict", "lookup a.dict --keys a.dict", "pseudo a.dict -o OUT", "stats a.dict",
    "stats a.dict nothing.dict", "merge a.dict nothing.dict -o OUT", "extract nothing.cpp",
    *(f"{command} --help" for command in (
        "dump", "lookup", "localize", "value", "compile", "export", "text", "check", "stats",
        "extract", "merge", "pseudo", "to-po", "from-po")),
]  # fmt: skip


class Artwork(PlatformsTest):
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


class Dictionaries(PlatformsTest):
    def setUp(self):
        super().setUp()
        contents = {
            "a.dict": TEXT.encode(), "little.dict": ("\ufeff" + TEXT).encode("utf-16-le"),
            "big.dict": ("\ufeff\r\n" + TEXT).encode("utf-16-be"), "de.dict": TRANSLATION.encode(),
            "W\u00f6rter\u65e5.dict": TEXT.encode(), "keys": KEYS.encode(), "a.cpp": SOURCE.encode(),
            "a.xml": XML.encode(),
        }  # fmt: skip
        for folder in ("tools/pemtext/tests/wrong", "resources/dict"):
            for path in (HERE.parent / folder).iterdir():
                contents[path.name] = path.read_bytes()
        for folder in self.folders:
            for name, content in contents.items():
                (folder / name).write_bytes(content)

    def test_pemtext(self):
        for line in PEMTEXT:
            with self.subTest(line):
                outs = [folder / "out" for folder in self.folders]
                for out in outs:
                    out.unlink(missing_ok=True)
                words = [pathlib.Path("out") if word == "OUT" else word for word in line.split()]
                stdin = VALUES if words[:1] == ["value"] else TEXT.encode()
                status, text, told = self.same("pemtext", *words, stdin=stdin)
                self.assertIn(status, (0, 1, 2))
                if status == 0 and "OUT" in line:
                    self.assertTrue(self.assert_same_file("out"))
                else:
                    self.assertFalse(any(out.exists() for out in outs))
                    self.assertTrue(text or told)

    def test_images(self):
        """Images of each platform, in either order, answer on the other one."""
        for order in ("little", "big"):
            for file in ("a.dict", "kiv_de_DE.dict", "kiv_en_US.dict", "kiv_ja_JP.dict"):
                with self.subTest(order=order, file=file):
                    words = ("compile", file, "-o", pathlib.Path("out.img"), "--byte-order", order)
                    self.assertEqual(self.same("pemtext", *words)[0], 0)
                    self.assert_same_file("out.img")
                    entries = self.same("pemtext", "dump", "out.img")[1].splitlines()[:-1]
                    self.assertEqual(entries, self.same("pemtext", "dump", file)[1].splitlines()[:-1])
                    self.same("pemtext", "lookup", "out.img", "--keys", "keys")

    def test_po_is_left_out_on_windows(self):
        for words in (("to-po", "kiv_en_US.dict", "-o", "out"), ("from-po", "a.dict", "-o", "out")):
            status, text, told = self.run_program(1, "pemtext", *words)
            self.assertEqual((status, text), (1, b""))
            self.assertIn(b"made without libgettextpo", told)


if __name__ == "__main__":
    BINS = [pathlib.Path(sys.argv.pop(1)).resolve(), pathlib.Path(sys.argv.pop(1)).resolve()]
    unittest.main()
