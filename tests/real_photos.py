"""Edits real photos, and lets independent readers say what changed.

usage: real_photos.py PHOTO_EDITOR FOLDER...

Every photo and graphic below the folders is copied and given a title. It is saved, in the photo or in
a sidecar, or refused with a reason and left untouched. Of a saved photo ExifTool and Exiv2 must read
the same as before but for the title, and ImageMagick decode the same pixels. Exit status 1 if one
does not. Prints for each folder what became of its files, and a table of the refused ones by reason.
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

# Also the broken ones among test data, which as a rule have no other name than "poc".
EXTENSIONS = """avif btf cr2 cr3 crw dng gif heic heif hif jp2 jpe jpeg jpg jxl mrw nef orf pef
    pgf png psd raf rw2 sr2 srw tif tiff webp xmp""".split()
SIGNATURES = (b"\xff\xd8\xff", b"\x89PNG", b"II*\0", b"MM\0*", b"II+\0", b"MM\0+", b"RIFF", b"GIF8")


def is_photo(path):
    if path.is_symlink() or not path.is_file():
        return False
    with path.open("rb") as file:
        return path.suffix.lower()[1:] in EXTENSIONS or file.read(4).startswith(SIGNATURES)


def run(*command):
    return subprocess.run(command, capture_output=True, timeout=120, check=False)


def exiftool(*paths):
    """For each file everything but the title and what the file system knows; order and doubles
    count."""
    run_ = run("exiftool", "-j", "-a", "-G1:4", "-struct", "-api", "QuickTimeUTC", *paths)
    try:
        told = json.loads(run_.stdout)
    except ValueError:
        told = []
    read = {file["SourceFile"]: file for file in told}
    return [
        {key: value for key, value in read[str(path)].items() if not LEFT_OUT.match(key)}
        if str(path) in read else None
        for path in paths
    ]  # fmt: skip


def exiv2(path):
    left_out = ["Exif.Image.XMLPacket", "Xmp.dc.title", "Xmp.xmpNote.HasExtendedXMP"]
    if path.suffix == ".xmp":
        # Of a sidecar Exiv2 makes an IIM title out of ours, and says in which characters.
        left_out += ["Iptc.Application2.ObjectName", "Iptc.Envelope.CharacterSet"]
    lines = run("exiv2", "-pa", path).stdout.decode("utf-8", "replace").splitlines()
    return [line for line in lines if not line.startswith(tuple(left_out))]


def pixels(path):
    # Frames one by one; colour profiles and the like do not count.
    decoded = run("convert", path, "-strip", "rgba:-")
    return hashlib.sha256(decoded.stdout).hexdigest() if decoded.returncode == 0 else None


def first_packet(told, kept):
    """ExifTool's reading where several packets become one. It takes the last one's values for the
    main ones and calls the first one's a first copy; for us the first one counts."""
    copies = {key for key in told if re.match(r"XMP-[^:]+:Copy\d+:", key)} - kept.keys()
    read = {key: value for key, value in told.items() if key not in copies}
    for key in copies:
        if ":Copy1:" in key:
            read[key.replace(":Copy1:", ":")] = told[key]
    return read


def differences(before, after):
    """The readings that differ, as texts."""
    told = []
    old, new = exiftool(before, after)
    if old is not None and new is not None:
        old = first_packet(old, new)
    if old is not None and new is not None:
        told += [f"exiftool {key}: {old.get(key)!r} became {new.get(key)!r}"
                 for key in sorted(old.keys() | new.keys()) if old.get(key) != new.get(key)]  # fmt: skip
    elif old != new:
        told.append("exiftool does not read it any more")
    old, new = collections.Counter(exiv2(before)), collections.Counter(exiv2(after))
    told += [f"exiv2 no longer: {line}" for line in old - new]
    told += [f"exiv2 newly: {line}" for line in new - old]
    if pixels(before) != pixels(after):
        told.append("other pixels")
    # ExifTool does not take RDF without its usual frame for XMP.
    title = run("exiftool", "-a", "-s3", "-XMP-dc:Title", after).stdout.decode().strip()
    if title != TITLE and b"rdf:RDF" not in before.read_bytes()[:20]:
        told.append(f"exiftool reads the title {title!r}")
    return told


# What points past the packet: the index of further pictures, WebP's flags and the header that tells
# its size once more. In BigTIFF ExifTool shows the packet as a whole, too.
EXPECTED = re.compile(r"exiftool (File:FileType|File:MIMEType|RIFF:WebP_?Flags"
                      r"|RIFF:(Copy\d+:)?Image(Width|Height|Size)|IFD0:ApplicationNotes"
                      r"|MPImage\d+:(Copy\d+:)?MPImage(Start|Length))")  # fmt: skip


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
        found = [d for d in differences(photo, copy) if not EXPECTED.match(d)]
        return "saved", copy.suffix.lower(), found


def print_table(results):
    """What became of the files of one folder."""
    counts = collections.Counter((outcome, reason) for _, outcome, reason, _ in results
                                 if outcome != "refused")  # fmt: skip
    for (outcome, reason), count in sorted(counts.items()):
        print(f"{count:5} {outcome} {reason}")
    refused = collections.defaultdict(list)
    for photo, outcome, reason, _ in results:
        if outcome == "refused":
            # Places in the file and sizes are not the reason.
            reason = re.sub(r"( at (byte|line) \d+.*)|(: (?=no element found|not well-formed).*)", "", reason)
            refused[re.sub(r"\d+", "N", reason)].append(photo.name)
    if refused:
        print("\n| refused because | files | for example |\n|---|---|---|")
    for reason, names in sorted(refused.items(), key=lambda row: (-len(row[1]), row[0])):
        print(f"| {reason} | {len(names)} | `{names[0]}` |")
    print()


def main(editor, *folders):
    for folder in folders:
        if not os.path.isdir(folder):
            sys.exit(f"there is no folder {folder}")
    wrong = total = 0
    for folder in folders:
        photos = [path for path in sorted(pathlib.Path(folder).rglob("*")) if is_photo(path)]
        results = []
        with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
            judged = pool.map(lambda photo: judge(photo, editor), photos)
            for number, (photo, (outcome, reason, found)) in enumerate(zip(photos, judged), 1):
                results.append((photo, outcome, reason, found))
                if found or outcome == "FAILED":
                    wrong += 1
                    print(f"{photo}: {outcome} {reason}", *found, sep="\n    ")
                if number % 50 == 0:
                    print(f"{folder}: {number} of {len(photos)}", file=sys.stderr)
        outcomes = collections.Counter(outcome for _, outcome, _, _ in results)
        print(f"\n{folder}: {len(photos)} files,",
              ", ".join(f"{count} {outcome}" for outcome, count in sorted(outcomes.items())))  # fmt: skip
        print_table(results)
        total += len(photos)
    print(f"{total} files, {wrong} wrong")
    return 1 if wrong else 0


if __name__ == "__main__":
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    sys.exit(main(*sys.argv[1:]))
