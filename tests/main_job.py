#!/usr/bin/env python3
"""Does the main job on each kind of file and prints what came of it as a table: a script types into
the dialog and presses OK, and readers of our own that share no code with the library look at the file.

usage: main_job.py BIN_DIR PHOTO.jpg FOLDER      under a display; FOLDER gets the files

Exit status 1 if a row is not as it should be. A kivhost for Windows is run under Wine, behind
scripts/wine.sh --together.
"""

import pathlib
import shutil
import subprocess
import sys

import photo_equal
import photo_formats
import xmp_reader
from programs import Program

HERE = pathlib.Path(__file__).resolve().parent
EDITS = {
    "dc:title[@x-default]": "Evening at the harbour, 港",
    "photoshop:City": "Göteborg",
    "xmp:Rating": "4",
}
KINDS = (
    ("JPEG", "photo.jpg"), ("PNG", "photo.png"), ("WebP", "photo.webp"), ("TIFF", "photo.tif"),
    ("DNG", "photo.dng"), ("sidecar", "note.xmp"),
)  # fmt: skip


def properties(path):
    """Of the packet in a photo or sidecar, by path."""
    data = path.read_bytes()
    if path.suffix != ".xmp":
        packets = photo_equal.Photo(path).packet_places
        if not packets:
            return {}
        data = data[slice(*packets[0])]
    return dict(line.split("\t", 1) for line in xmp_reader.read_packet(data))


def judge(before, after):
    """What is wrong with the metadata that was read back, and with the rest of the file; empty texts
    if nothing is."""
    old, new = properties(before), properties(after)
    expected = {**old, **EDITS}
    added = {"dc:title[@x-default]/?xml:lang": "x-default"}
    wrong = [path for path in sorted({*expected, *new, *added})
             if new.get(path) != {**expected, **added}.get(path)]  # fmt: skip
    rest = ""
    if after.suffix != ".xmp":
        photos = [photo_equal.Photo(path) for path in (before, after)]
        rest = photo_equal.difference(*photos) or ""
        if not rest and photos[1].packets != 1:
            rest = f"{photos[1].packets} packets"
    return "differs: " + ", ".join(wrong) if wrong else "", rest


def make(photo, folder):
    """A file of each kind, by its kind."""
    photo_formats.make(photo, folder)
    shutil.copyfile(HERE / "full_packet.xmp", folder / "note.xmp")
    return {kind: folder / name for kind, name in KINDS}


def main(binaries, photo, folder):
    host = Program(binaries, "kivhost")
    folder = pathlib.Path(folder)
    shutil.rmtree(folder, ignore_errors=True)
    (folder / "before").mkdir(parents=True)
    sets = [word for edit in EDITS.items() for word in ("--set", "=".join(edit))]
    failed = 0
    print(f"{'kind':8} {'file':10} {'dialog':10} {'read back':12} the rest of the file")
    for kind, path in make(photo, folder).items():
        before = folder / "before" / path.name
        shutil.copyfile(path, before)
        run = subprocess.run(
            host.command(*sets, "--auto", "ok", path), capture_output=True, check=False
        )
        said = run.stdout.decode().partition("\n")[0] or run.stderr.decode().strip()
        try:
            read_back, rest = judge(before, path)
        except (xmp_reader.Unreadable, photo_equal.Unreadable) as error:
            read_back, rest = str(error), "?"
        is_fine = run.returncode == 0 and not read_back and not rest
        failed += not is_fine
        kept = "what nobody edited is the same" if path.suffix == ".xmp" else "the same"
        print(f"{kind:8} {path.name:10} {said:10} {read_back or 'the edit':12} {rest or kept}")
    return 1 if failed else 0


if __name__ == "__main__":
    if len(sys.argv) != 4:
        sys.exit(__doc__)
    sys.exit(main(*sys.argv[1:]))
