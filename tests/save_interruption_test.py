"""Stops a save at every call of the system, and lets every call fail in turn. Whatever happens, the
old or the new file stands under its name, byte for byte, and the next save finds its way.

usage: save_interruption_test.py PHOTO_EDITOR [--all]
"""

import collections
import concurrent.futures
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

SIDECAR = """<x:xmpmeta xmlns:x="adobe:ns:meta/">
 <rdf:RDF xmlns:rdf="http://www.w3.org/1999/02/22-rdf-syntax-ns#">
  <rdf:Description rdf:about="" xmlns:dc="http://purl.org/dc/elements/1.1/" dc:format="image/x"/>
 </rdf:RDF>
</x:xmpmeta>
"""
EDIT = "dc:title[@x-default]=edited"
# A process that is killed by a signal.
KILLED = -9


def make_photo(path):
    if path.suffix == ".xmp":
        path.write_text(SIDECAR)
        return
    # ".tiff" is BigTIFF here; a DNG file is a TIFF that tells of which version it is.
    kind = {".tiff": "TIFF64", ".dng": "TIFF"}.get(path.suffix, path.suffix[1:])
    subprocess.run(["convert", "-size", "60x40", "gradient:navy-orange", f"{kind}:{path}"], check=True)
    if path.suffix == ".dng":
        subprocess.run(
            ["exiftool", "-q", "-overwrite_original", "-DNGVersion=1 4 0 0", path], check=True
        )


def content(path):
    return path.read_bytes() if path.exists() else b""


class Interruptions(unittest.TestCase):
    """One photo of each format; each point in a folder of its own."""

    def setUp(self):
        self.top = pathlib.Path(tempfile.mkdtemp(prefix="kiv-save-"))
        self.addCleanup(shutil.rmtree, self.top)

    def edit(self, photo, *injection):
        command = [EDITOR, str(photo), EDIT]
        if injection:
            command = ["strace", "-f", "-qq", "-o", "/dev/null", "-e", "trace=all", *injection, *command]
        return subprocess.run(command, capture_output=True, timeout=60, check=False).returncode

    def saved(self, photo):
        """The file that a save writes: the photo, or its sidecar, which is yet to be made."""
        return photo.with_name(photo.name + ".xmp") if photo.suffix == ".gif" else photo

    def points(self, old):
        """The calls from the first one that names the photo on, each with its number among those of
        its name, and the file that they leave."""
        photo = self.top / "whole" / old.name
        photo.parent.mkdir()
        shutil.copy(old, photo)
        log = self.top / "calls"
        subprocess.run(
            ["strace", "-f", "-qq", "-o", log, "-e", "trace=all", EDITOR, photo, EDIT],
            check=True, capture_output=True,
        )  # fmt: skip
        counts = collections.Counter()
        points = []
        for number, line in enumerate(log.read_text().splitlines()):
            call = re.match(r"\d+ +(\w+)\(", line)
            if call:
                counts[call[1]] += 1
                if points or (number > 0 and old.name in line):
                    points.append((call[1], counts[call[1]]))
        return points, content(self.saved(photo))

    def run_point(self, old, new, point, fault):
        call, number = point
        told = f"{old.name} {fault} {call} {number}"
        folder = self.top / f"{call}{number}"
        folder.mkdir()
        photo = folder / old.name
        saved = self.saved(photo)
        shutil.copy(old, photo)
        status = self.edit(photo, "-e", f"inject={call}:{fault}:when={number}")
        left = content(saved)
        self.assertIn(left, (content(self.saved(old)), new), told)
        self.assertTrue(saved == photo or content(photo) == content(old), told)
        if status == 0:
            self.assertEqual(left, new, told + ": said to be saved")
        # The next one who edits it clears away what was left, and finishes.
        self.assertEqual(self.edit(photo), 0, told)
        self.assertEqual(content(saved), new, told)
        self.assertEqual({p.name for p in folder.iterdir()}, {photo.name, saved.name}, told)
        shutil.rmtree(folder)
        return left == new, status

    def try_all(self, fault, step):
        told = []
        for name in NAMES:
            with self.subTest(name):
                old = self.top / name
                make_photo(old)
                points, new = self.points(old)
                self.assertNotEqual(new, content(self.saved(old)))
                # Without a fault the same edit gives the same file.
                tried = list(points)[::step]
                with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
                    results = list(pool.map(lambda n: self.run_point(old, new, n, fault), tried))
                shutil.rmtree(self.top / "whole")
                statuses = [status for _, status in results]
                if fault.startswith("signal"):
                    self.assertGreater(statuses.count(KILLED), len(tried) * 9 // 10)
                # Both outcomes were seen, or the points missed the save.
                self.assertEqual({is_new for is_new, _ in results}, {False, True})
                told.append(f"{name} {len(tried)}")
        print(f"\n{fault}: each left the old or the new file at so many points: {', '.join(told)}")

    def test_the_steps_stand_in_their_order(self):
        for name in ALL_NAMES:
            with self.subTest(name):
                photo = self.top / name
                make_photo(photo)
                saved = self.saved(photo)
                log = self.top / "steps"
                subprocess.run(["strace", "-f", "-y", "-qq", "-s", "0", "-o", log, EDITOR, photo, EDIT],
                               check=True, capture_output=True)  # fmt: skip
                calls = [line.partition(" ")[2].strip() for line in log.read_text().splitlines()]
                # What is yet to be made is asked for in vain.
                calls = [call for call in calls if str(self.top) in call
                         and (" = -1 " not in call or "ENOENT" in call)]  # fmt: skip
                fresh = rf"<?{re.escape(str(self.top))}/\.kivsave-[0-9a-f]{{16}}-0>?"
                quoted = rf'"{fresh}"'
                own = re.escape(str(saved))

                def places(pattern, calls=calls):
                    return [at for at, call in enumerate(calls) if re.match(pattern, call)]

                [made] = places(rf"openat\(.*{quoted}, .*O_CREAT\|O_EXCL")
                [locked] = places(rf"flock\(\d+{fresh}, LOCK_EX")
                written = places(rf"p?write(64)?\(\d+{fresh}")
                [flushed] = places(rf"fsync\(\d+{fresh}\)")
                read = places(rf"p?read(64)?\(\d+{fresh}")
                looked = places(rf'\w*stat\w*\(.*"{own}"')
                [renamed] = places(rf'rename\({quoted}, "{own}"\)')
                [folder] = places(rf"fsync\(\d+<{re.escape(str(self.top))}>\)")
                self.assertLess(made, locked)
                self.assertLess(locked, min(written))
                self.assertLess(max(written), flushed)
                self.assertLess(flushed, min(read))
                self.assertLess(max(read), renamed)
                self.assertLess(renamed, folder)
                # Whether it changed is asked behind the check of what was written.
                self.assertTrue([at for at in looked if max(read) < at < renamed])
                # Nobody writes into the file itself.
                self.assertEqual(places(rf'open\w*\(.*"{own}", .*(O_WRONLY|O_RDWR)'), [])
                for path in {photo, saved, log}:
                    path.unlink()

    def test_a_kill_at_every_call(self):
        self.try_all("signal=SIGKILL", 1 if ALL else 3)

    def test_a_failure_of_every_call(self):
        self.try_all("error=EIO", 1 if ALL else 5)

    def test_a_full_disk_at_every_call(self):
        self.try_all("error=ENOSPC", 1 if ALL else 9)


if __name__ == "__main__":
    EDITOR = str(pathlib.Path(sys.argv[1]).resolve())
    ALL = "--all" in sys.argv[2:]
    ALL_NAMES = ["p.jpg", "p.png", "p.webp", "p.tif", "p.tiff", "p.dng", "p.xmp", "p.gif"]
    NAMES = ALL_NAMES if ALL else ["p.jpg", "p.tif"]
    unittest.main(argv=sys.argv[:1])
