#!/usr/bin/env python3
"""What a user of kivhost meets on Windows only: files that other programs hold open.

usage: kivhost_win_test.py BIN_DIR      under a display, behind scripts/wine.sh --together
"""

import subprocess
import sys
import unittest

import kivhost_test
from programs import Program

HOLDER = None  # set from the command line


class HeldOpen(kivhost_test.KivhostTest):
    def hold(self, file, sharing):
        holder = subprocess.Popen(
            HOLDER.command(file, sharing), stdin=subprocess.PIPE, stdout=subprocess.PIPE
        )
        self.addCleanup(holder.stdout.close)
        self.addCleanup(holder.wait)
        self.addCleanup(holder.stdin.close)
        self.assertEqual(holder.stdout.readline().strip(), b"held")
        return holder

    def let_go(self, holder):
        holder.stdin.close()
        self.assertEqual(holder.wait(), 0)

    def edit(self, file=None):
        return self.run_host(
            "--set", "dc:title[@x-default]=x", "--auto", "ok", file or self.photo
        )

    def edit_in_vain(self, holder):
        run = self.edit()
        self.expect(run, 1)
        self.assertRegex(run.stderr, "photo.jpg.*")
        self.assertEqual(run.stdout, "")
        self.let_go(holder)
        self.assert_untouched()
        self.expect(self.edit(), 0)

    def test_a_photo_that_may_not_be_read_meanwhile(self):
        self.edit_in_vain(self.hold(self.photo, "none"))

    def test_a_photo_that_may_only_be_read_meanwhile(self):
        holder = self.hold(self.photo, "read")
        self.dump()
        self.edit_in_vain(holder)
        self.assertEqual(self.independent()["dc:title[@x-default]"], "x")

    def test_a_packet_into_held_photos_and_a_free_one(self):
        packet = self.folder / "in.xmp"
        packet.write_bytes((kivhost_test.HERE / "full_packet.xmp").read_bytes())
        free = self.folder / "free.jpg"
        free.write_bytes(self.original)
        for sharing in ("none", "read"):
            with self.subTest(sharing):
                holder = self.hold(self.photo, sharing)
                run = self.run_host("--insert", packet, self.photo, free)
                self.expect(run, 1)
                reason, summary = run.stderr.splitlines()
                self.assertRegex(reason, "photo.jpg.*in use")
                self.assertRegex(summary, "^kivhost: [01] written, [01] unchanged, 1 refused$")
                self.let_go(holder)
                self.assert_untouched()
                self.assertIn(packet.read_bytes(), free.read_bytes())

    def test_preferences_that_nobody_may_touch_are_no_obstacle(self):
        self.expect(self.edit(), 0)
        preferences = self.folder / "preferences" / "MetadataDialogPrefs.xml"
        before = preferences.read_bytes()
        holder = self.hold(preferences, "none")
        self.expect(self.run_host("--view", "rights", "--auto", "ok", self.photo), 0)
        self.let_go(holder)
        self.assertEqual(preferences.read_bytes(), before)
        self.assertEqual(
            [p.name for p in preferences.parent.iterdir() if p.name.startswith(("Meta", "."))],
            [preferences.name],
        )


class Names(kivhost_test.KivhostTest):
    def test_names_in_either_way_of_writing_them(self):
        name = kivhost_test.KIVHOST.word(self.photo)
        self.assertTrue(name.startswith("Z:\\"), name)
        expected = self.run_host("--dump", self.photo).stdout
        self.assertIn('"path"', expected)
        for other in (name.replace("\\", "/"), "\\\\?\\" + name, "z" + name[1:]):
            with self.subTest(other):
                run = self.run_host("--dump", other)
                self.expect(run, 0)
                self.assertEqual(run.stdout, expected)

    def test_wildcards_stand_for_themselves(self):
        run = self.run_host("--dump", self.folder / "*.jpg")
        self.expect(run, 1)
        self.assertIn("*.jpg", run.stderr)


if __name__ == "__main__":
    kivhost_test.KIVHOST = Program(sys.argv[1], "kivhost")
    HOLDER = Program(sys.argv.pop(1), "file_holder")
    unittest.main()
