#!/usr/bin/env python3
"""Runs clang-tidy over the sources of a build and remembers what was clean.

usage: tidy.py BUILD_DIR

A source is looked at again when its preprocessed text, its command line or the checks changed.
"""

import concurrent.futures
import hashlib
import json
import os
import pathlib
import shlex
import subprocess
import sys

TOP = pathlib.Path(__file__).resolve().parent.parent
CACHE = pathlib.Path(os.environ.get("XDG_CACHE_HOME", pathlib.Path.home() / ".cache"))
CACHE = CACHE / "kivmetadataapi" / "tidy"
GCC_ONLY = {"-fno-gnu-unique", "-Wno-restrict"}


def is_ours(entry):
    path = pathlib.Path(entry["file"]).resolve()
    if TOP not in path.parents or "build" in path.relative_to(TOP).parts[:1]:
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
