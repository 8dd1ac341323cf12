#!/usr/bin/env python3
"""Tests kivhost as its users meet it: real windows, a real photo, the file afterwards.

usage: kivhost_test.py BIN_DIR      under a display (tests/with_display.sh)

A kivhost for Windows is run under Wine, all runs behind one scripts/wine.sh --together.
"""

import json
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

from programs import Program

HERE = pathlib.Path(__file__).resolve().parent
KIVHOST = None  # set from the command line
READ_ONLY = 1


def sample(choice):
    run = subprocess.run(
        [HERE / "sample_photo.sh", choice], capture_output=True, text=True, check=True
    )
    return pathlib.Path(run.stdout.strip())


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

    def run_host(self, *arguments, **environment):
        run = subprocess.run(
            KIVHOST.command(*arguments),
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
    def run_host(self, *arguments, **environment):
        if not KIVHOST.is_windows:  # there, programs always have a desktop
            environment.update(DISPLAY="", WAYLAND_DISPLAY="")
        return super().run_host(*arguments, **environment)


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
            if node["form"] == "simple" and "/?" not in path
        }
        theirs = {
            path: value for path, value in self.independent().items() if path in ours
        }
        self.assertTrue(ours)
        self.assertEqual(ours, theirs)

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
        del WithoutADisplay
    unittest.main()
