#!/usr/bin/env python3
"""Tests kivhost as its users meet it: real windows, a real photo, the file afterwards.

usage: kivhost_test.py BIN_DIR      under a display (tests/with_display.sh)

A kivhost for Windows is run under Wine, all runs behind one scripts/wine.sh --together.
"""

import hashlib
import json
import os
import pathlib
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest

import main_job
import photo_formats
from programs import Program

HERE = pathlib.Path(__file__).resolve().parent
KIVHOST = None  # set from the command line
READ_ONLY = 1


def sample(choice):
    run = subprocess.run(
        [HERE / "sample_photo.sh", choice], capture_output=True, text=True, check=True
    )
    return pathlib.Path(run.stdout.strip())


def pixels(path):
    """What a decoder of others sees; of a DNG file, which it cannot decode, all image bytes."""
    if path.suffix == ".dng":
        return path.read_bytes()[8 : photo_formats.WIDTH * 3 * 100]
    run = subprocess.run(["convert", path, "rgb:-"], capture_output=True, check=True)
    return hashlib.sha256(run.stdout).hexdigest()


class KivhostTest(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.folder)
        self.environment = dict(
            os.environ, **KIVHOST.variables(KIV_PREF_DIR=self.folder / "preferences")
        )
        self.photo = self.folder / "photo.jpg"
        shutil.copy(sample("with-packet"), self.photo)
        self.photo.chmod(0o644)
        self.original = self.photo.read_bytes()

    def run_host(self, *arguments, stdin=None, **environment):
        run = subprocess.run(
            KIVHOST.command(*arguments),
            input=stdin,
            stdin=subprocess.DEVNULL if stdin is None else None,
            capture_output=True,
            timeout=120,
            env=dict(self.environment, **KIVHOST.variables(**environment)),
            check=False,
        )
        # Not as text, which would let ends of lines through that are none of ours.
        run.stdout = run.stdout.decode("utf-8")
        run.stderr = run.stderr.decode("utf-8")
        return run

    def expect(self, run, status):
        self.assertEqual(run.returncode, status, run.stdout + run.stderr)

    def dump(self, path=None):
        run = self.run_host("--dump", path or self.photo)
        self.expect(run, 0)
        return {node["path"]: node for node in map(json.loads, run.stdout.splitlines())}

    def independent(self, path=None):
        """The packet as the tests' own reader sees it."""
        run = subprocess.run(
            [sys.executable, HERE / "xmp_reader.py", path or self.photo],
            capture_output=True,
            text=True,
            encoding="utf-8",
            check=False,
        )
        self.assertEqual(run.returncode, 0, run.stderr)
        return dict(line.split("\t", 1) for line in run.stdout.splitlines())

    def assert_only_the_packet_differs(self):
        before = self.folder / "before.jpg"
        before.write_bytes(self.original)
        run = subprocess.run(
            [sys.executable, HERE / "photo_equal.py", before, self.photo],
            capture_output=True,
            text=True,
            check=False,
        )
        self.assertEqual(run.returncode, 0, run.stdout + run.stderr)

    def assert_untouched(self):
        self.assertEqual(self.photo.read_bytes(), self.original)
        self.assertEqual(
            [p.name for p in self.folder.iterdir() if p.name.startswith((".", "photo"))],
            ["photo.jpg"],
        )


class Edits(KivhostTest):
    def test_typed_values_arrive_in_the_file_and_nothing_else_changes(self):
        before = self.independent()
        run = self.run_host(
            "--set", "dc:title[@x-default]=Größe, 大きさ & <size>",
            "--set", 'dc:subject=["sea", "Möwe", "空"]',
            "--set", "photoshop:City=Göteborg",
            "--set", "xmp:Rating=4",
            "--auto", "ok", self.photo,
        )  # fmt: skip
        self.expect(run, 0)
        self.assertTrue(run.stdout.startswith("confirmed\n"), run.stdout)
        changes = [line.split("\t") for line in run.stdout.splitlines()[1:]]
        self.assertEqual(
            {path: json.loads(new) for path, _, new in changes},
            {
                "dc:title[@x-default]": "Größe, 大きさ & <size>",
                "dc:subject": ["sea", "Möwe", "空"],
                "photoshop:City": "Göteborg",
                "xmp:Rating": "4",
            },
        )
        expected = dict(before)  # the sample has none of these
        expected.update({
            "dc:title[@x-default]": "Größe, 大きさ & <size>",
            "dc:title[@x-default]/?xml:lang": "x-default",
            "dc:subject[1]": "sea",
            "dc:subject[2]": "Möwe",
            "dc:subject[3]": "空",
            "photoshop:City": "Göteborg",
            "xmp:Rating": "4",
        })
        after = self.independent()
        self.assertEqual(after, expected)
        self.assert_only_the_packet_differs()

    def test_exiv2_and_exiftool_see_the_edit(self):
        self.expect(
            self.run_host("--set", "dc:title[@x-default]=Lighthouse", "--auto", "ok", self.photo), 0
        )
        for command in (["exiv2", "-px", self.photo], ["exiftool", "-XMP-dc:Title", self.photo]):
            run = subprocess.run(command, capture_output=True, text=True, check=False)
            self.assertIn("Lighthouse", run.stdout, run.stderr)

    def test_a_photo_without_a_packet_gets_one(self):
        shutil.copy(sample("without-packet"), self.photo)
        self.original = self.photo.read_bytes()
        self.expect(self.run_host("--set", "dc:title[@x-default]=New", "--auto", "ok", self.photo), 0)
        self.assertEqual(self.independent()["dc:title[@x-default]"], "New")
        self.assert_only_the_packet_differs()

    def test_a_photo_whose_folder_and_name_are_in_other_scripts(self):
        folder = self.folder / "Fotos été 写真 Ελλάδα"
        folder.mkdir()
        self.photo = self.photo.rename(folder / "Größe 大きさ.jpg")
        picture = folder / "снимок.png"
        run = self.run_host(
            "--set", "photoshop:City=Göteborg",
            "--screenshot", picture, "--auto", "ok", self.photo,
        )  # fmt: skip
        self.expect(run, 0)
        self.assertEqual(self.independent()["photoshop:City"], "Göteborg")
        self.assert_only_the_packet_differs()
        self.expect(self.run_host("--extract", folder / "パケット.xmp", self.photo), 0)
        self.assertEqual(
            sorted(p.name for p in folder.iterdir()),
            ["Größe 大きさ.jpg", "снимок.png", "パケット.xmp"],
        )

    def test_one_edit_after_the_other(self):
        for title in ("One", "Two", "Three"):
            self.expect(
                self.run_host("--set", f"dc:title[@x-default]={title}", "--auto", "ok", self.photo), 0
            )
            self.assertEqual(self.independent()["dc:title[@x-default]"], title)
        self.assert_only_the_packet_differs()

    def test_confirming_without_a_change_writes_nothing(self):
        run = self.run_host("--auto", "ok", self.photo)
        self.expect(run, 0)
        self.assertEqual(run.stdout, "confirmed\n")
        self.assert_untouched()

    def test_a_sidecar_is_edited_by_itself(self):
        sidecar = self.folder / "note.xmp"
        self.expect(self.run_host("--extract", sidecar, self.photo), 0)
        self.expect(self.run_host("--set", "photoshop:City=Oslo", "--auto", "ok", sidecar), 0)
        self.assertEqual(self.dump(sidecar)["photoshop:City"]["value"], "Oslo")
        self.assert_untouched()

    def test_cancelling_leaves_the_file_alone(self):
        run = self.run_host("--set", "dc:title[@x-default]=No", "--auto", "cancel", self.photo)
        self.expect(run, 2)
        self.assertEqual(run.stdout, "cancelled\n")
        self.assert_untouched()


class Derived(KivhostTest):
    """A photo without a packet beside a sidecar: the dialog shows what the sidecar has."""

    SIDECAR = (
        "<x:xmpmeta xmlns:x='adobe:ns:meta/'>"
        "<rdf:RDF xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#'>"
        "<rdf:Description rdf:about='' xmlns:xmp='http://ns.adobe.com/xap/1.0/'"
        " xmlns:dc='http://purl.org/dc/elements/1.1/' xmp:Rating='4'>"
        "<dc:title><rdf:Alt><rdf:li xml:lang='x-default'>Sea</rdf:li>"
        "<rdf:li xml:lang='de'>Meer</rdf:li></rdf:Alt></dc:title>"
        "</rdf:Description></rdf:RDF></x:xmpmeta>"
    )

    def setUp(self):
        super().setUp()
        shutil.copy(sample("without-packet"), self.photo)
        self.photo.chmod(0o644)
        self.sidecar = self.folder / "photo.jpg.xmp"
        self.sidecar.write_text(self.SIDECAR, encoding="utf-8")
        self.original = self.photo.read_bytes()

    def assert_nothing_was_written(self):
        self.assertEqual(self.photo.read_bytes(), self.original)
        self.assertEqual(self.sidecar.read_text(encoding="utf-8"), self.SIDECAR)

    def test_looking_writes_nothing(self):
        run = self.run_host("--view", "all-properties", "--auto", "ok", self.photo)
        self.expect(run, 0)
        self.assertEqual(run.stdout, "confirmed\n")
        self.assert_nothing_was_written()

    def test_what_was_derived_is_the_old_value_and_only_what_changed_is_written(self):
        run = self.run_host("--set", "dc:title[@de]=See", "--auto", "ok", self.photo)
        self.expect(run, 0)
        self.assertEqual(run.stdout, 'confirmed\ndc:title[@de]\t"Meer"\t"See"\n')
        self.assertEqual(
            {path: value for path, value in self.independent().items() if "?" not in path},
            {"dc:title[@x-default]": "Sea", "dc:title[@de]": "See"},
        )
        self.assertEqual(self.sidecar.read_text(encoding="utf-8"), self.SIDECAR)
        self.assert_only_the_packet_differs()

    def test_there_and_back_writes_nothing(self):
        run = self.run_host(
            "--set", "xmp:Rating=2", "--set", "xmp:Rating=4", "--auto", "ok", self.photo
        )
        self.expect(run, 0)
        self.assertEqual(run.stdout, "confirmed\n")
        self.assert_nothing_was_written()

    def test_it_cannot_be_removed(self):
        run = self.run_host("--set", "xmp:Rating=", "--auto", "ok", self.photo)
        self.expect(run, 1)
        self.assertIn("xmp:Rating: This value comes from elsewhere.", run.stderr)
        self.assert_nothing_was_written()


class Formats(KivhostTest):
    def edit(self, path):
        sets = [word for edit in main_job.EDITS.items() for word in ("--set", "=".join(edit))]
        run = self.run_host(*sets, "--auto", "ok", path)
        self.expect(run, 0)
        self.assertTrue(run.stdout.startswith("confirmed\n"), run.stdout)

    def test_a_file_of_each_kind(self):
        for kind, path in main_job.make(sample("with-packet"), self.folder).items():
            with self.subTest(kind):
                before = self.folder / ("before" + path.suffix)
                shutil.copy(path, before)
                self.edit(path)
                self.assertEqual(main_job.judge(before, path), ("", ""))
                self.assertEqual(self.dump(path)["photoshop:City"]["value"], "Göteborg")

    def test_a_photo_of_a_format_that_is_not_written_gets_a_sidecar(self):
        files = main_job.make(sample("with-packet"), self.folder)
        raw = files["TIFF"].rename(self.folder / "camera.nef")
        untouched = raw.read_bytes()
        self.edit(raw)
        self.assertEqual(raw.read_bytes(), untouched)
        beside = self.folder / "camera.nef.xmp"
        self.assertEqual(self.independent(beside)["photoshop:City"], "Göteborg")
        self.assertEqual(self.dump(raw)["photoshop:City"]["value"], "Göteborg")


class Looks(KivhostTest):
    def test_screenshots_at_two_scales(self):
        sizes = []
        for scale in ("1", "2"):
            picture = self.folder / f"shot{scale}.png"
            self.expect(
                self.run_host(
                    "--scale", scale, "--screenshot", picture, "--auto", "cancel", self.photo
                ),
                2,
            )
            data = picture.read_bytes()
            self.assertEqual(data[:8], b"\x89PNG\r\n\x1a\n")
            sizes.append((int.from_bytes(data[16:20], "big"), int.from_bytes(data[20:24], "big")))
        self.assertGreaterEqual(sizes[0][0], 640)
        self.assertGreater(sizes[1][0], sizes[0][0])

    def test_every_language_brightness_and_flag_opens(self):
        for arguments in (
            ["--language", "de_DE", "--brightness", "0"],
            ["--language", "ja_JP", "--brightness", "100"],
            ["--language", "xx", "--scale", "nan"],
            ["--brightness", "4294967295", "--scale", "100"],
            ["--flags", "2"],
            ["--flags", "255", "--text", "Titel ✓"],
        ):
            with self.subTest(arguments):
                self.expect(self.run_host(*arguments, "--auto", "cancel", self.photo), 2)

    def test_a_read_only_dialog_cannot_be_confirmed(self):
        run = self.run_host("--flags", READ_ONLY, "--auto", "ok", self.photo)
        self.assertNotEqual(run.returncode, 0, run.stdout)
        self.assert_untouched()


class NoDisplayTest(KivhostTest):
    def setUp(self):
        super().setUp()
        if not KIVHOST.is_windows:  # there, programs always have a desktop
            self.environment.update(DISPLAY="", WAYLAND_DISPLAY="")


class WithoutAWindow(NoDisplayTest):
    def test_dump_and_extract_need_no_display(self):
        self.assertIn("dc:title", " ".join(self.dump()) + " dc:title")
        packet = self.folder / "out.xmp"
        self.expect(self.run_host("--extract", packet, self.photo), 0)
        self.assertIn(packet.read_bytes(), self.original)
        standard_output = self.run_host("--extract", "-", self.photo)
        self.expect(standard_output, 0)
        self.assertEqual(standard_output.stdout.encode(), packet.read_bytes())

    def test_dump_agrees_with_the_independent_reader(self):
        ours = {
            path: node["value"]
            for path, node in self.dump().items()
            if node["source"] == "packet" and node["form"] == "simple" and "/?" not in path
        }
        theirs = {
            path: value for path, value in self.independent().items() if path in ours
        }
        self.assertTrue(ours)
        self.assertEqual(ours, theirs)

    def test_dump_tells_the_source_of_each_property(self):
        packet = (
            "<x:xmpmeta xmlns:x='adobe:ns:meta/'>"
            "<rdf:RDF xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#'>"
            "<rdf:Description rdf:about='' xmlns:xmp='http://ns.adobe.com/xap/1.0/'"
            " xmlns:dc='http://purl.org/dc/elements/1.1/' xmlns:own='http://own.example/'{}>"
            "</rdf:Description></rdf:RDF></x:xmpmeta>"
        )
        photo = self.folder / "bare.gif"
        photo.write_bytes(b"GIF89a")
        sidecar = self.folder / "bare.gif.xmp"
        sidecar.write_text(packet.format(" xmp:Label='beside'"), encoding="utf-8")
        run = self.run_host("--dump", photo)
        self.expect(run, 0)
        self.assertEqual(
            run.stdout,
            '{"path":"xmp:Label","form":"simple","value":"beside","source":"packet"}\n',
        )
        self.assertIn("bare.gif: packets embedded in GIF files are not read yet", run.stderr)

        sidecar = self.folder / "photo.jpg.xmp"
        sidecar.write_text(packet.format(" own:note='n' own:other='o'"), encoding="utf-8")
        run = self.run_host("--dump", self.photo)
        self.expect(run, 0)
        lines = run.stdout.splitlines()
        first = next(i for i, line in enumerate(lines) if '"source":"packet"' not in line)
        self.assertGreater(first, 0)
        self.assertFalse([line for line in lines[first:] if '"source":"packet"' in line])
        self.assertEqual(
            lines[first],
            '{"path":"{http://own.example/}note","form":"simple","value":"n",'
            '"source":"sidecar","detail":"photo.jpg.xmp"}',
        )
        self.assertIn("what only the sidecar has is derived", run.stderr)
        self.expect(self.run_host("--extract", self.folder / "out.xmp", self.photo), 0)
        self.assertIn((self.folder / "out.xmp").read_bytes(), self.original)

        sidecar.write_bytes(b"broken")
        run = self.run_host("--dump", self.photo)
        self.expect(run, 0)
        self.assertEqual(run.stdout.splitlines()[:first], lines[:first])
        self.assertRegex(run.stderr, "the sidecar .*photo.jpg.xmp cannot be read: ")

    def test_help_and_version(self):
        self.expect(self.run_host("--help"), 0)
        self.assertRegex(self.run_host("--version").stdout, r"^kivhost \d+\.\d+\.\d+\n$")
        self.expect(self.run_host("--nonsense"), 1)

    def test_custom_definitions_are_listed(self):
        archive = HERE / "definitions"
        run = self.run_host("--list-definitions", KIV_DEFINITIONS_DIR=archive)
        self.expect(run, 0)
        records = [json.loads(line) for line in run.stdout.splitlines()]
        self.assertTrue(records)
        self.assertEqual(
            set(records[0]), {"view", "namespace", "name", "label", "editable"}
        )
        run = self.run_host("--list-definitions", KIV_DEFINITIONS_DIR=self.folder)
        self.expect(run, 0)
        self.assertEqual(run.stdout, "")


class Inserts(NoDisplayTest):
    def setUp(self):
        super().setUp()
        self.packet = self.folder / "in.xmp"
        shutil.copy(HERE / "full_packet.xmp", self.packet)

    def insert(self, *files, status=0, told, stdin=None):
        run = self.run_host("--insert", "-" if stdin else self.packet, *files, stdin=stdin)
        self.expect(run, status)
        self.assertEqual(run.stdout, "")
        self.assertEqual(run.stderr.splitlines()[-1], "kivhost: " + told)
        return run.stderr

    def assert_holds_packet(self, path):
        run = self.run_host("--extract", "-", path)
        self.expect(run, 0)
        self.assertEqual(run.stdout.encode(), self.packet.read_bytes())

    def test_every_format_takes_the_packet_byte_for_byte(self):
        files = photo_formats.make(sample("with-packet"), self.folder)
        before = [pixels(path) for path in files]
        sidecar = self.folder / "note.xmp"
        sidecar.write_bytes(b"<x:xmpmeta xmlns:x='adobe:ns:meta/'/>")
        raw = self.folder / "photo.nef"  # a TIFF file of a camera's maker, as its name tells
        shutil.copy(self.folder / "photo.tif", raw)
        untouched = raw.read_bytes()
        files += [sidecar, raw]
        told = self.insert(*files, told=f"{len(files)} written, 0 unchanged, 0 refused")
        self.assertEqual(len(told.splitlines()), 1)
        for path, old in zip(files, before):
            with self.subTest(path.name):
                self.assert_holds_packet(path)
                self.assertIn(self.packet.read_bytes(), path.read_bytes())
                self.assertEqual(pixels(path), old)
                title = subprocess.run(
                    ["exiftool", "-s3", "-XMP-dc:Title", path], capture_output=True, check=False
                )
                self.assertEqual(title.stdout, b"Evening at the harbour\n", title.stderr)
        self.assertEqual(sidecar.read_bytes(), self.packet.read_bytes())
        self.assertEqual(raw.read_bytes(), untouched)
        beside = self.folder / "photo.nef.xmp"
        self.assertEqual(beside.read_bytes(), self.packet.read_bytes())

        # What is there already is not written again.
        states = [path.stat() for path in files]
        self.insert(*files, told=f"0 written, {len(files)} unchanged, 0 refused")
        for path, state in zip(files, states):
            now = path.stat()
            self.assertEqual((now.st_ino, now.st_mtime_ns), (state.st_ino, state.st_mtime_ns))

    def test_where_the_packet_is_kept(self):
        full, short = self.folder / "photo.jpg.xmp", self.folder / "photo.xmp"
        for arguments, path in (
            ([], self.photo), (["--place", "photo"], self.photo), (["--place", "sidecar"], full),
            (["--place", "sidecar", "--sidecar-name", "full"], full),
            (["--place", "sidecar", "--sidecar-name", "short"], short),
        ):  # fmt: skip
            with self.subTest(arguments):
                self.photo.write_bytes(self.original)
                for sidecar in (full, short):
                    sidecar.unlink(missing_ok=True)
                self.insert(*arguments, self.photo, told="1 written, 0 unchanged, 0 refused")
                self.assertIn(self.packet.read_bytes(), path.read_bytes())
                self.assertEqual([p for p in (full, short) if p.exists() and p != path], [])
                self.assertEqual(self.photo.read_bytes() == self.original, path != self.photo)
                run = self.run_host(*arguments, "--extract", "-", self.photo)
                self.assertEqual(run.stdout.encode(), self.packet.read_bytes())
        raw = self.folder / "photo.nef"
        raw.write_bytes(photo_formats.tiff("<", False, False, 2, 1, b"pixels"))
        told = self.insert(
            "--place", "photo", raw, status=1, told="0 written, 0 unchanged, 1 refused"
        )
        self.assertRegex(told, "photo.nef: .*is a raw file")

    def test_one_bad_photo_does_not_stop_the_others(self):
        bad, locked, last = (self.folder / name for name in ("bad.jpg", "locked.jpg", "last.jpg"))
        bad.write_bytes(b"no photo")
        for path in (locked, last):
            shutil.copy(self.photo, path)
            path.chmod(0o644)
        locked.chmod(0o444)
        missing = self.folder / "missing.jpg"
        told = self.insert(
            bad, self.photo, locked, missing, last, self.photo,
            status=1, told="2 written, 1 unchanged, 3 refused",
        )  # fmt: skip
        reasons = told.splitlines()[:-1]
        self.assertEqual(len(reasons), 3, told)
        for path, reason, line in zip(
            (bad, locked, missing), ("no JPEG file", "read-only", "no such file"), reasons
        ):
            self.assertRegex(line, f"^kivhost: .*{path.name}: .*{reason}")
        self.assertEqual(bad.read_bytes(), b"no photo")
        self.assertEqual(locked.read_bytes(), self.original)
        self.assert_holds_packet(last)

    def test_a_broken_packet_is_refused_before_any_photo_is_touched(self):
        whole = self.packet.read_bytes()
        for content in (b"", b"no packet", whole[:300], whole.replace(b"</rdf:RDF>", b""),
                        b"<html/>", self.original):  # fmt: skip
            with self.subTest(content[:30]):
                self.packet.write_bytes(content)
                run = self.run_host("--insert", self.packet, self.photo)
                self.expect(run, 1)
                self.assertRegex(run.stderr, r"^kivhost: .*in\.xmp: .+\n$")
                self.assert_untouched()
        self.packet.unlink()
        run = self.run_host("--insert", self.packet, self.photo)
        self.expect(run, 1)
        self.assertIn("in.xmp", run.stderr)
        self.assert_untouched()

    def test_from_standard_input(self):
        packet = self.packet.read_bytes()
        self.insert(self.photo, told="1 written, 0 unchanged, 0 refused", stdin=packet)
        self.assert_holds_packet(self.photo)
        run = self.run_host("--insert", "-", self.photo, stdin=b"<broken")
        self.expect(run, 1)
        self.assertRegex(run.stderr, "^kivhost: standard input: ")
        self.assert_holds_packet(self.photo)

    def test_a_packet_that_no_photo_takes(self):
        text = self.packet.read_text("utf-8")
        self.packet.write_bytes(text.encode("utf-16"))
        told = self.insert(self.photo, status=1, told="0 written, 0 unchanged, 1 refused")
        self.assertRegex(told, "photo.jpg: .*UTF-8")
        self.assert_untouched()
        sidecar = self.folder / "wide.xmp"
        sidecar.write_text(text, "utf-8")
        self.insert(sidecar, told="1 written, 0 unchanged, 0 refused")
        self.assertEqual(sidecar.read_bytes(), self.packet.read_bytes())

    def test_a_full_disk(self):
        run = self.run_host(
            "--insert", self.packet, self.photo, KIV_FILE_FAULT="write:ENOSPC:1"
        )
        self.expect(run, 1)
        self.assertRegex(run.stderr, "photo.jpg.*space")
        self.assert_untouched()

    def test_dumped_afterwards(self):
        other = self.folder / "other.jpg"
        shutil.copy(sample("without-packet"), other)
        other.chmod(0o644)
        missing = self.folder / "missing.jpg"
        run = self.run_host("--insert", self.packet, "--dump", self.photo, missing, other)
        self.expect(run, 1)
        self.assertEqual(
            run.stderr.splitlines()[-1], "kivhost: 2 written, 0 unchanged, 1 refused"
        )
        lines = [json.loads(line) for line in run.stdout.splitlines()]
        lines = [line for line in lines if line["source"] == "packet"]
        expected = list(self.dump(self.packet).values())
        self.assertEqual([line.pop("file") for line in lines],
                         [KIVHOST.word(self.photo)] * len(expected)
                         + [KIVHOST.word(other)] * len(expected))  # fmt: skip
        self.assertEqual(lines, expected * 2)


class ManyFilesTest(NoDisplayTest):
    COUNT = 120

    def setUp(self):
        super().setUp()
        self.packet = self.folder / "in.xmp"
        shutil.copy(HERE / "full_packet.xmp", self.packet)
        self.old = b"<x:xmpmeta xmlns:x='adobe:ns:meta/'/>"
        self.files = [self.folder / f"file{number:03}.xmp" for number in range(self.COUNT)]
        for path in self.files:
            path.write_bytes(self.old)

    def start(self, *arguments, **options):
        return subprocess.Popen(
            KIVHOST.command(*arguments), stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
            bufsize=0, env=self.environment, **options,
        )  # fmt: skip

    def wait_until_it_stops_writing(self, process):
        """Until nobody reads its output, it waits with a pipe full of it."""
        first = process.stdout.read(1)
        before = -1
        while (now := sum(p.read_bytes() != self.old for p in self.files)) != before:
            before = now
            time.sleep(0.3)
        return first


class ManyFiles(ManyFilesTest):
    def test_all_are_dumped_and_the_bad_ones_told(self):
        self.files[5].write_bytes(b"")
        self.files[7].write_bytes(b"<broken")
        run = self.run_host("--dump", *self.files)
        self.expect(run, 1)
        self.assertEqual(len(run.stderr.splitlines()), 2, run.stderr)  # an empty file holds nothing
        self.assertRegex(run.stderr.splitlines()[0], r"file007\.xmp: ")
        self.assertEqual(run.stderr.splitlines()[1], f"kivhost: 1 of {self.COUNT} files cannot be read")

    def test_one_file_is_dumped_as_ever(self):
        run = self.run_host("--dump", self.packet)
        self.expect(run, 0)
        self.assertTrue(run.stdout.startswith('{"path":'))
        self.assertEqual(run.stderr, "")


class ManyFilesOnATerminal(ManyFilesTest):
    def test_an_interruption_ends_between_two_files(self):
        for number in (signal.SIGINT, signal.SIGTERM):
            with self.subTest(number):
                for path in self.files:
                    path.write_bytes(self.old)
                process = self.start(
                    "--insert", self.packet, "--dump", *self.files, stderr=subprocess.PIPE
                )
                self.wait_until_it_stops_writing(process)
                process.send_signal(number)
                _, told = process.communicate(timeout=60)
                self.assertEqual(process.returncode, -number, told)
                contents = [path.read_bytes() for path in self.files]
                written = contents.count(self.packet.read_bytes())
                self.assertGreater(written, 0)
                self.assertEqual(contents[written:], [self.old] * (self.COUNT - written))
                self.assertEqual(
                    told.decode(),
                    f"kivhost: {written} written, 0 unchanged, 0 refused; interrupted, "
                    f"{self.COUNT - written} not reached\n",
                )
                self.assertEqual([p.name for p in self.folder.iterdir() if p.name[0] == "."], [])

    def test_progress_is_told_on_a_terminal_and_wiped(self):
        terminal, end = os.openpty()
        self.addCleanup(os.close, terminal)
        shutil.copy(self.packet, self.files[0])
        process = self.start("--insert", self.packet, "--dump", *self.files, stderr=end)
        os.close(end)
        first = self.wait_until_it_stops_writing(process)
        time.sleep(0.6)  # a run that is over soon tells nothing
        text, _ = process.communicate(timeout=60)
        self.assertEqual(process.returncode, 0)
        told = b""
        try:
            while block := os.read(terminal, 4096):
                told += block
        except OSError:
            pass  # its other end is closed
        self.assertRegex(told, rb"^kivhost: \d+ of 120 files \(\d+%\)\r +\r")
        summary = b"kivhost: 119 written, 1 unchanged, 0 refused\r\n"
        self.assertTrue(told.endswith(b"\r" + summary), told)
        for line in (first + text).splitlines():
            json.loads(line)


class WithoutADisplay(NoDisplayTest):
    def test_no_display_is_a_clear_failure(self):
        run = self.run_host("--auto", "ok", self.photo)
        self.expect(run, 1)
        self.assertRegex(run.stderr, "display")
        self.assert_untouched()


class BadInput(KivhostTest):
    def refuse(self, *arguments, message, **environment):
        run = self.run_host(*arguments, "--auto", "ok", self.photo, **environment)
        self.expect(run, 1)
        self.assertEqual(run.stdout, "")
        self.assertRegex(run.stderr, message)

    def put(self, data):
        self.photo.write_bytes(data)
        self.original = data

    def test_files_that_are_no_photos(self):
        self.put(b"")
        self.refuse(message="photo.jpg")
        self.put(b"this is no photo")
        self.refuse("--set", "dc:title[@x-default]=x", message="photo.jpg")
        self.put(self.original[:2])
        self.refuse("--set", "dc:title[@x-default]=x", message="photo.jpg")
        self.assert_untouched()

    def test_a_photo_cut_before_and_within_its_packet(self):
        whole = self.original
        packet = whole.index(b"http://ns.adobe.com/xap/1.0/")
        for length in (packet - 10, packet + 200):
            self.put(whole[:length])
            self.refuse("--set", "dc:title[@x-default]=x", message="photo.jpg")
            self.assert_untouched()

    def test_a_missing_file(self):
        self.photo.unlink()
        self.refuse(message="photo.jpg")

    def test_a_read_only_file(self):
        self.photo.chmod(0o444)
        self.refuse("--set", "dc:title[@x-default]=x", message="photo.jpg.*read-only")
        self.assert_untouched()

    def test_a_full_disk(self):
        # Preferences are written too; the photo is one of the first few writes.
        refused = 0
        for write in range(1, 9):
            run = self.run_host(
                "--set", "dc:title[@x-default]=x", "--auto", "ok", self.photo,
                KIV_FILE_FAULT=f"write:ENOSPC:{write}",
            )  # fmt: skip
            if run.returncode == 0:
                self.photo.write_bytes(self.original)
                continue
            refused += 1
            self.expect(run, 1)
            self.assertRegex(run.stderr, "photo.jpg.*space")
            self.assert_untouched()
        self.assertGreater(refused, 0)

    def test_an_unknown_field_is_named(self):
        self.refuse("--set", "dc:nonsense=x", message="dc:nonsense")
        self.assert_untouched()

    def test_broken_preferences_are_no_obstacle(self):
        preferences = self.folder / "preferences"
        preferences.mkdir()
        (preferences / "MetadataDialogPrefs.xml").write_bytes(b"<not <xml")
        (preferences / "UIPrefs.xml").write_bytes(b"\xff\xfe\x00")
        run = self.run_host(
            "--set", "dc:title[@x-default]=x", "--auto", "ok", self.photo, KIV_TRACE="*"
        )
        self.expect(run, 0)

    def test_a_preferences_folder_that_cannot_be_made(self):
        (self.folder / "preferences").write_bytes(b"a file where the folder should be")
        self.expect(self.run_host("--auto", "ok", self.photo), 0)

    def test_broken_definitions_are_told_on_the_trace(self):
        broken = self.folder / "definitions" / "broken"
        (broken / "view").mkdir(parents=True)
        (broken / "manifest.xml").write_text('<definitions owner="org.example"/>')
        (broken / "view" / "v.xml").write_text("<view")
        run = self.run_host(
            "--auto", "ok", self.photo,
            KIV_DEFINITIONS_DIR=broken.parent, KIV_TRACE="kivmetadata",
        )  # fmt: skip
        self.expect(run, 0)
        self.assertRegex(run.stderr, r"v\.xml:1")


if __name__ == "__main__":
    KIVHOST = Program(sys.argv.pop(1), "kivhost")
    if KIVHOST.is_windows:
        del WithoutADisplay, ManyFilesOnATerminal
    unittest.main()
