#!/usr/bin/env python3
"""Runs clang-tidy over the sources of a build and remembers what was clean.

usage: tidy.py BUILD_DIR

Of a build for Windows, the sources that no other build has (_win). A source is looked at again when its preprocessed text, its command line or the checks changed.
"""

import concurrent.futures
import functools
import hashlib
import json
import os
import pathlib
import re
import shlex
import subprocess
import sys

TOP = pathlib.Path(__file__).resolve().parent.parent
CACHE = pathlib.Path(os.environ.get("XDG_CACHE_HOME", pathlib.Path.home() / ".cache"))
CACHE = CACHE / "kivmetadataapi" / "tidy"
GCC_ONLY = {
    "-fno-gnu-unique", "-Wno-restrict", "-Wno-maybe-uninitialized", "-fno-keep-inline-dllexport",
    "-Wa,-mbig-obj",
}


def is_for_windows(words):
    return "mingw32" in pathlib.Path(words[0]).name


@functools.cache
def mingw_headers(compiler):
    """Clang does not find them by itself. Its own take the place of those of GCC proper."""
    run = subprocess.run(
        [compiler, "-E", "-v", "-x", "c++", os.devnull], capture_output=True, text=True, check=True
    )
    listed = re.search(r"<\.\.\.> search starts here:\n(.*?)End of search", run.stderr, re.DOTALL)
    folders = [line.strip() for line in listed.group(1).splitlines()]
    proper = re.compile(r"/lib/gcc/[^/]+/[^/]+/include(-fixed)?$")
    return [folder for folder in folders if not proper.search(folder)]


def is_ours(entry):
    path = pathlib.Path(entry["file"]).resolve()
    if TOP not in path.parents or "build" in path.relative_to(TOP).parts[:1]:
        return False
    if is_for_windows(command_of(entry)) and not path.stem.endswith("_win"):
        return False
    # Tests are held by the compiler's warnings; GoogleTest's macros make clang-tidy slow on them.
    return "tests" not in path.relative_to(TOP).parts


def command_of(entry):
    words = entry.get("arguments") or shlex.split(entry["command"])
    if pathlib.Path(words[0]).name == "ccache":
        words = words[1:]
    return words


def for_clang(entry):
    """The entry without what only GCC understands."""
    words = [word for word in command_of(entry) if word not in GCC_ONLY]
    if is_for_windows(words):
        words[1:1] = ["--target=x86_64-w64-mingw32", "-nostdinc++", "-nostdlibinc"] + [
            word for folder in mingw_headers(words[0]) for word in ("-isystem", folder)
        ]
    return {"directory": entry["directory"], "file": entry["file"], "arguments": words}


def fingerprint(entry):
    words = command_of(entry)
    preprocess = [w for w in words if w != "-c"]
    if "-o" in preprocess:
        at = preprocess.index("-o")
        del preprocess[at : at + 2]
    text = subprocess.run(
        preprocess + ["-E", "-P"], cwd=entry["directory"], capture_output=True, check=False
    )
    # Assertions hold the source's path, which differs from clone to clone.
    digest = hashlib.sha256(text.stdout.replace(str(TOP).encode(), b""))
    digest.update((TOP / ".clang-tidy").read_bytes())
    digest.update(pathlib.Path(entry["file"]).read_bytes())  # comments may hold NOLINT
    return digest.hexdigest()


def check(build, entry):
    mark = CACHE / fingerprint(entry)
    if mark.exists():
        mark.touch()
        return entry["file"], True, ""
    run = subprocess.run(
        ["clang-tidy", "--quiet", "-p", str(build), entry["file"]],
        capture_output=True,
        text=True,
        check=False,
    )
    if run.returncode == 0:
        mark.touch()
    return entry["file"], run.returncode == 0, run.stdout


def main():
    build = pathlib.Path(sys.argv[1]).resolve()
    entries = {}
    for entry in json.loads((build / "compile_commands.json").read_text()):
        if is_ours(entry):
            entries.setdefault(entry["file"], entry)
    CACHE.mkdir(parents=True, exist_ok=True)
    build = build / "tidy"
    build.mkdir(exist_ok=True)
    (build / "compile_commands.json").write_text(json.dumps([for_clang(e) for e in entries.values()]))
    bad = 0
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        results = pool.map(lambda entry: check(build, entry), entries.values())
        for number, (name, clean, text) in enumerate(results, 1):
            if not clean:
                bad += 1
                print(text, flush=True)
            if number % 25 == 0 or number == len(entries):
                print(f"clang-tidy: {number} of {len(entries)} sources", flush=True)
            del name
    print(f"clang-tidy: {len(entries) - bad} passed, {bad} failed")
    return 1 if bad else 0


if __name__ == "__main__":
    sys.exit(main())
