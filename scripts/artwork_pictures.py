#!/usr/bin/env python3
"""Draws the pictures of docs/artwork.md from the artwork that stands in it.

usage: artwork_pictures.py BIN_DIR [OUT_DIR]

Each "```svg" block in front of a picture NAME is drawn as NAME.png, and the comment
"<!-- NAME-standard ... -->" behind it, which is what the standard shows, written so that our engine
draws that, as NAME-standard.png. BIN_DIR holds the tool svgloom; OUT_DIR is docs/images/artwork.
"""

import pathlib
import re
import subprocess
import sys
import tempfile

TOP = pathlib.Path(__file__).resolve().parent.parent
sys.path.insert(0, str(TOP / "tests"))
from programs import Program  # pylint: disable=wrong-import-position

PAGE = TOP / "docs" / "artwork.md"
SIDE = 96  # pixels

_SECTION = re.compile(
    r"```svg\n(?P<here>.*?)\n```\n\n"
    r"\| here \| by the standard \|\n\|---\|---\|\n"
    r"\| !\[\]\(images/artwork/(?P<name>[a-z-]+)\.png\) "
    r"\| !\[\]\(images/artwork/(?P=name)-standard\.png\) \|\n\n"
    r"<!-- (?P=name)-standard(?P<standard>.*?)\n-->\n",
    re.DOTALL,
)


def whole(body):
    """Artwork on the grid of 24 units, unless it has a root of its own."""
    if body.startswith("<svg"):
        return body
    return f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 24 24">\n{body}\n</svg>\n'


def pairs(text):
    """(name, artwork, the same for the standard's look) for each difference that a page tells."""
    for section in _SECTION.finditer(text):
        yield section["name"], whole(section["here"]), whole(section["standard"].strip())


def write_artwork(text, folder):
    """NAME.svg and NAME-standard.svg for each difference; returns the names."""
    names = []
    for name, here, standard in pairs(text):
        (folder / f"{name}.svg").write_text(here, encoding="utf-8")
        (folder / f"{name}-standard.svg").write_text(standard, encoding="utf-8")
        names.append(name)
    return names


def draw(bin_dir, folder, out):
    """Draws all artwork of a folder into another one."""
    command = Program(bin_dir, "svgloom").command(
        "render", *sorted(folder.glob("*.svg")), "--out-dir", out,
        "--width", SIDE, "--height", SIDE, "--background", "white"
    )
    subprocess.run(command, check=True)


def main(arguments):
    if len(arguments) not in (1, 2):
        sys.exit(__doc__)
    out = pathlib.Path(arguments[1]) if len(arguments) == 2 else PAGE.parent / "images" / "artwork"
    with tempfile.TemporaryDirectory() as folder:
        write_artwork(PAGE.read_text(encoding="utf-8"), pathlib.Path(folder))
        draw(arguments[0], pathlib.Path(folder), out)


if __name__ == "__main__":
    main(sys.argv[1:])
