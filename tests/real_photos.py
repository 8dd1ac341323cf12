"""Edits real photos, and lets independent readers say what changed.

usage: real_photos.py PHOTO_EDITOR FOLDER...

Every file below the folders is copied and given a title. It is saved, in the photo or in a sidecar,
or refused with a reason and left untouched. Of a saved photo ExifTool and Exiv2 must read the same as
before but for the title, and ImageMagick decode the same pixels. Exit status 1 if one does not.
"""

import collections
import concurrent.futures
import hashlib
import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

TITLE = "a title of our own"
EDIT = f"dc:title[@x-default]={TITLE}"
# What is told of the file itself, and what names the parts of a packet. The title may be told as the
# second one, where the first is none of the packet's.
LEFT_OUT = re.compile(r"SourceFile$|System:|ExifTool:|File:(Line|Word)Count$|XMP-x:XMPToolkit$"
                      r"|XMP-xmpNote:HasExtendedXMP$|XMP-dc:(Copy\d+:)?Title")


def run(*command):
    return subprocess.run(command, capture_output=True, timeout=120, check=False)


def exiftool(path):
    """Everything but the title and what the file system knows; order and doubles count."""
    run_ = run("exiftool", "-j", "-a", "-G1:4", "-struct", "-api", "QuickTimeUTC", path)
    try:
        [told] = json.loads(run_.stdout)
    except (ValueError, json.JSONDecodeError):
        return None
    return {
        key: value for key, value in told.items()
        if not LEFT_OUT.match(key)
    }  # fmt: skip


def exiv2(path):
    lines = run("exiv2", "-pa", path).stdout.decode("utf-8", "replace").splitlines()
    # Of a sidecar Exiv2 makes an IIM title out of ours.
    return [line for line in lines if not line.startswith(
        ("Exif.Image.XMLPacket", "Xmp.dc.title", "Xmp.xmpNote.HasExtendedXMP",
         "Iptc.Application2.ObjectName" if path.suffix == ".xmp" else "Exif.Image.XMLPacket"))]  # fmt: skip


def pixels(path):
    # Frames one by one; colour profiles and the like do not count.
    decoded = run("convert", path, "-strip", "rgba:-")
    return hashlib.sha256(decoded.stdout).hexdigest() if decoded.returncode == 0 else None


def differences(before, after):
    """The readings that differ, as texts."""
    told = []
    old, new = exiftool(before), exiftool(after)
    if old is not None and new is not None:
        told += [f"exiftool {key}: {old.get(key)!r} became {new.get(key)!r}"
                 for key in sorted(old.keys() | new.keys()) if old.get(key) != new.get(key)]  # fmt: skip
    elif old != new:
        told.append("exiftool does not read it any more")
    gone = collections.Counter(exiv2(before)) - collections.Counter(exiv2(after))
    told += [f"exiv2 no longer: {line}" for line in gone]
    if pixels(before) != pixels(after):
        told.append("other pixels")
    # ExifTool does not take RDF without its usual frame for XMP.
    title = run("exiftool", "-a", "-s3", "-XMP-dc:Title", after).stdout.decode().strip()
    if title != TITLE and b"rdf:RDF" not in before.read_bytes()[:20]:
        told.append(f"exiftool reads the title {title!r}")
    return told


# A header that WebP files get tells their size once more.
EXPECTED = ("exiftool File:FileType", "exiftool File:MIMEType", "exiftool RIFF:WebPFlags",
            "exiftool RIFF:ImageWidth", "exiftool RIFF:ImageHeight", "exiftool RIFF:ImageSize")  # fmt: skip


def judge(photo, editor):
    """(outcome, reason, differences)"""
    with tempfile.TemporaryDirectory(prefix="kiv-photo-") as folder:
        copy = pathlib.Path(folder) / photo.name
        shutil.copyfile(photo, copy)
        edited = run(editor, copy, EDIT)
        same = copy.read_bytes() == photo.read_bytes()
        if edited.returncode not in (0, 1):
            return "FAILED", f"exit status {edited.returncode}", []
        if edited.returncode == 1:
            reason = edited.stderr.decode("utf-8", "replace").strip().rpartition(f"{copy}: ")[2]
            return "refused", reason, [] if same else ["refused and changed"]
        if [p.name for p in pathlib.Path(folder).iterdir()] != [copy.name]:
            return "sidecar", copy.suffix, [] if same else ["changed beside a sidecar"]
        found = [d for d in differences(photo, copy) if not d.startswith(EXPECTED)]
        return "saved", copy.suffix.lower(), found


def main(editor, *folders):
    photos = [path for folder in folders for path in sorted(pathlib.Path(folder).rglob("*"))
              if path.is_file() and not path.is_symlink()]  # fmt: skip
    outcomes = collections.Counter()
    wrong = 0
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        results = pool.map(lambda photo: judge(photo, editor), photos)
        for number, (photo, (outcome, reason, found)) in enumerate(zip(photos, results), 1):
            outcomes[outcome, reason] += 1
            if found or outcome == "FAILED":
                wrong += 1
                print(f"{photo}: {outcome} {reason}", *found, sep="\n    ")
            if number % 50 == 0:
                print(f"{number} of {len(photos)}", file=sys.stderr)
    for (outcome, reason), count in sorted(outcomes.items(), key=lambda row: (row[0][0], -row[1])):
        print(f"{count:5} {outcome} {reason}")
    print(f"{len(photos)} files, {wrong} wrong")
    return 1 if wrong else 0


if __name__ == "__main__":
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    sys.exit(main(*sys.argv[1:]))
