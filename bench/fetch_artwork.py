#!/usr/bin/env python3
"""Fetches the artwork that the SVG benchmarks draw: four packages of icons, in fixed versions, by npm.

usage: fetch_artwork.py [FOLDER]

Unpacks into FOLDER (~/.cache/kivmetadataapi/artwork), one folder for each package, checks every
package against its SHA-512 and prints FOLDER. What is there already is not fetched again.
"""

import hashlib
import pathlib
import shutil
import subprocess
import sys
import tarfile
import tempfile

# Folder, package, version, size of the packed file, its SHA-512, and the number of pictures.
PACKAGES = [
    ("material", "@material-design-icons/svg", "0.14.15", 806209, "ea76e3c06c32267a61c1052c709018ab0d"
     "5393af96f0abec80e01ec958332055d5b077e05f95f2a654d4719dbdc1b713532b0c3320948b52d8a6614a03f7bad6",
     10610),
    ("bootstrap", "bootstrap-icons", "1.13.2", 883452, "7c05352f2ddd1fb870460f8207c119d159747c5f34ce0"
     "5c7794549c9f50e2b3a1446bf936f02126c25b9b4a52840b111696606d9e9930b26dc3db0fdea1743d4", 2078),
    ("flags", "flag-icons", "7.5.0", 1119924, "91df8c357be21488398628c7efaeadb7edf1efa7a57b5017968e33"
     "0dd0b122fa966612ade13f376ceb7150e38c953c7f11c15d50c1f9caf420625161d44aaa16", 542),
    ("twemoji", "@twemoji/svg", "15.0.0", 1547134, "6523de7f607a9c16989df81d4db032e23816f79a3ba62db13"
     "c6c06094f96313c68ec9e81d6530f4d6c12abfc13ba232af8dd24850f7409cbd8a75c05a10a68ff", 3720),
]
SHEETS = {"bootstrap-icons.svg"}  # all icons of a package in one file


def pictures_in(folder):
    return sum(1 for _ in folder.rglob("*.svg"))


def fetch(package, version, size, digest, target):
    """Packs, checks and unpacks beside `target`, which then appears whole."""
    target.parent.mkdir(parents=True, exist_ok=True)
    with tempfile.TemporaryDirectory(dir=target.parent) as scratch:
        work = pathlib.Path(scratch)
        done = subprocess.run(["npm", "pack", "--silent", f"{package}@{version}"], cwd=work,
                              stdout=subprocess.PIPE, text=True, check=True)
        data = (work / done.stdout.split()[-1]).read_bytes()
        if len(data) != size or hashlib.sha512(data).hexdigest() != digest:
            raise ValueError(f"{package}@{version}: not the file that the benchmarks were made with")
        unpacked = work / "unpacked"
        with tarfile.open(work / done.stdout.split()[-1]) as archive:
            for member in archive:
                path = pathlib.PurePosixPath(member.name)
                if not member.isfile() or path.suffix != ".svg" or ".." in path.parts:
                    continue
                if path.name in SHEETS:
                    continue
                place = unpacked.joinpath(*path.parts[1:])  # without "package"
                place.parent.mkdir(parents=True, exist_ok=True)
                place.write_bytes(archive.extractfile(member).read())
        shutil.rmtree(target, ignore_errors=True)
        unpacked.rename(target)


def main():
    cache = pathlib.Path.home() / ".cache/kivmetadataapi/artwork"
    folder = pathlib.Path(sys.argv[1]) if len(sys.argv) > 1 else cache
    for name, package, version, size, digest, pictures in PACKAGES:
        target = folder / name
        if pictures_in(target) == pictures:
            continue
        print(f"fetching {package}@{version}", file=sys.stderr)
        try:
            fetch(package, version, size, digest, target)
        except (OSError, ValueError, subprocess.CalledProcessError, tarfile.TarError) as error:
            print(f"fetch_artwork.py: {error}", file=sys.stderr)
            return 1
        if pictures_in(target) != pictures:
            print(f"fetch_artwork.py: {package}: pictures are missing", file=sys.stderr)
            return 1
    print(folder)
    return 0


if __name__ == "__main__":
    sys.exit(main())
