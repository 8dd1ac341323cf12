#!/usr/bin/env python3
"""Compares the tests of the Linux build with those of the Windows build: every test runs on both,
apart from those that docs/windows-tests.md lists with reasons.

usage: compare_tests.py LINUX_BUILD WINDOWS_BUILD [LIST]
       behind scripts/wine.sh --together, so that Windows is not started for each program

Fails too when the list names a test that runs on both, or none at all.
"""

import fnmatch
import json
import pathlib
import re
import subprocess
import sys

TOP = pathlib.Path(__file__).resolve().parent.parent
ROW = re.compile(r"^\| `([^`]+)` \| (\S.*) \|$", re.MULTILINE)
# One ctest entry has the name of its platform where a test program has.
PLATFORM = re.compile(r"_(posix|win)(?=_|$)")


def ctest_entries(build):
    """Name and command of each ctest entry."""
    run = subprocess.run(
        ["ctest", "--test-dir", build, "--show-only=json-v1"],
        capture_output=True,
        text=True,
        check=True,
    )
    for test in json.loads(run.stdout)["tests"]:
        yield test["name"], test.get("command", [])


def google_test_program(build, command):
    """The program among the words of a command that is one of GoogleTest, if any."""
    for word in command:
        path = pathlib.Path(word)
        if build in path.parents and path.is_file() and b"gtest_list_tests" in path.read_bytes():
            return path
    return None


def listed_by(program):
    start = [TOP / "scripts" / "wine.sh"] if program.suffix == ".exe" else []
    run = subprocess.run(
        [*start, program, "--gtest_list_tests"], capture_output=True, text=True, check=False
    )
    if run.returncode != 0:
        sys.exit(
            f"compare_tests.py: {program.name} does not list its tests, status {run.returncode}:\n"
            f"{run.stdout}{run.stderr}"
        )
    suite = ""
    for line in run.stdout.splitlines():
        name = line.split("#")[0].rstrip()
        if line.startswith("  "):
            yield suite + name.strip()
        elif name.endswith("."):
            suite = name


def tests_of(build):
    """Names of all tests: "entry", and "entry: Suite.Test" for those of GoogleTest."""
    build = pathlib.Path(build).resolve()
    names = set()
    for name, command in ctest_entries(build):
        name = PLATFORM.sub("", name)
        names.add(name)
        program = google_test_program(build, command)
        if program:
            names.update(f"{name}: {test}" for test in listed_by(program))
    return names


def problems_of(linux, windows, listed):
    """`listed`: patterns of the tests that run on Linux only."""
    missing = linux - windows
    problems = []
    explained = set()
    for pattern in listed:
        found = set(fnmatch.filter(linux, pattern))
        explained |= found
        if not found:
            problems.append(f"listed, but there is no such test: {pattern}")
        problems += [f"listed, but runs on both: {name}" for name in sorted(found & windows)]
    problems += [f"does not run on Windows: {name}" for name in sorted(missing - explained)]
    return problems


def self_test():
    """Each mistake is found."""
    rows = [
        ({"a", "a: S.T"}, {"a", "a: S.T"}, [], []),
        ({"a", "a: S.T"}, {"a"}, [], ["does not run on Windows: a: S.T"]),
        ({"a", "a: S.T", "a: S.U"}, {"a"}, ["a: S.*"], []),
        ({"a"}, {"a"}, ["b"], ["listed, but there is no such test: b"]),
        ({"a"}, {"a"}, ["a"], ["listed, but runs on both: a"]),
    ]
    for linux, windows, listed, want in rows:
        got = problems_of(linux, windows, listed)
        if got != want:
            sys.exit(f"compare_tests.py: {got} instead of {want}")


def main():
    self_test()
    linux, windows = tests_of(sys.argv[1]), tests_of(sys.argv[2])
    text = pathlib.Path(sys.argv[3] if len(sys.argv) > 3 else TOP / "docs" / "windows-tests.md")
    listed = [row.group(1) for row in ROW.finditer(text.read_text(encoding="utf-8"))]
    problems = problems_of(linux, windows, listed)
    for problem in problems:
        print(problem)
    print(
        f"tests: {len(linux)} on Linux, {len(windows)} on Windows; "
        f"{len(linux - windows)} on Linux only, {len(windows - linux)} on Windows only"
    )
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
