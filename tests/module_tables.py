#!/usr/bin/env python3
"""Holds what our Windows modules export, import and carry against what they may, as objdump prints it.

usage: module_tables.py --objdump PROGRAM --version X.Y.Z --themes FOLDER FOLDER
       module_tables.py --self-test --objdump PROGRAM --compiler PROGRAM --windres PROGRAM

The first form checks the modules in FOLDER and prints their tables. The second one builds modules
with too much, too little and the wrong content, and sees that each is found.
"""

import argparse
import pathlib
import re
import struct
import subprocess
import sys
import tempfile

EXPORTS = [
    "DoMetadataDialog",
    "GetGlobalKIVMetadataVector",
    "GetGlobalKIVMetadataVectorSize",
    "MetadataAPIInitialize",
    "MetadataAPITerminate",
]
TOOLKIT_EXPORTS = ["KivToolkitOpen"]
THEMES = [f"KIVCOLORTHEMESV{version}" for version in (2, 3, 4, 5)]

LIBRARY = "kivmetadataapi"
# Of our modules, which ones a module may import.
ARROWS = {
    "kivcore": set(),
    "kivui": {"kivcore"},
    "kivxmp": {"kivcore"},
    "kivmetadata": {"kivcore", "kivxmp"},
    "kivmetadataui": {"kivcore", "kivui", "kivxmp", "kivmetadata"},
    "kivtoolkit": {"kivcore", "kivui", "kivmetadataui"},
    LIBRARY: {"kivcore", "kivui", "kivxmp", "kivmetadata", "kivmetadataui"},
}
# What a module exports; the other ones export what their headers mark.
WANTED_EXPORTS = {LIBRARY: EXPORTS, "kivtoolkit": TOOLKIT_EXPORTS}
# Modules of others that one of ours may import, as patterns.
FOREIGN = {"kivxmp": [r"(lib)?exiv2.*"], "kivtoolkit": [r"wxmsw\w+"]}
RUNTIME = {"libstdc++-6", "libgcc_s_seh-1", "libwinpthread-1"}
WINDOWS = {
    "advapi32", "bcrypt", "comctl32", "comdlg32", "dwmapi", "gdi32", "gdiplus", "imm32",
    "kernel32", "msvcrt", "ole32", "oleaut32", "psapi", "shell32", "shlwapi", "user32", "uuid",
    "version", "ws2_32",
}

VERSION_TYPE = "16"
FIXED_INFO = struct.pack("<I", 0xFEEF04BD)


class Module:
    """The tables of one file."""

    def __init__(self, objdump, path):
        self.path = path
        self.name = path.stem
        text = subprocess.run(
            [objdump, "-p", path], check=True, capture_output=True, text=True
        ).stdout
        self.exports = sorted(self._exports(text))
        self.imports = sorted({name.lower() for name in re.findall(r"DLL Name: (\S+)", text)})
        self.resources = dict(self._resources(text))
        self.version = self._version()

    @staticmethod
    def _exports(text):
        # What has an ordinal and no name would not be seen by name.
        addresses = re.findall(r"^\t\[ *(\d+)\] \+base\[", text, re.MULTILINE)
        _, _, names = text.partition("[Ordinal/Name Pointer] Table\n")
        names = re.findall(
            r"^\t\[ *(\d+)\](?: \+base\[ *\d+\] +[0-9a-f]+)? (\S+)$",
            names.partition("\n\n")[0],
            re.MULTILINE,
        )
        named = {number for number, _ in names}
        return [name for _, name in names] + [f"#{n}" for n in addresses if n not in named]

    @staticmethod
    def _resources(text):
        """("type/name", bytes) of each."""
        entry = re.compile(
            r"^[0-9a-f]+ ( +)Entry: (?:name: \[val: \w+ len \d+\]: (.*)|ID: 0x(\w+)), Value:"
        )
        leaf = re.compile(r"^[0-9a-f]+ +Leaf: Addr: \w+, Size: 0x(\w+)")
        path = {}
        _, _, section = text.partition("The .rsrc Resource Directory section:")
        for line in section.splitlines():
            if found := entry.match(line):
                path[len(found[1])] = found[2] if found[2] else str(int(found[3], 16))
            elif found := leaf.match(line):
                kind, name, _ = [path[depth] for depth in sorted(path)][:3]
                yield f"{kind}/{name}", int(found[1], 16)

    def _version(self):
        """The file's and the product's four numbers in the version record."""
        content = self.path.read_bytes()
        at = content.find(FIXED_INFO)
        if at < 0:
            return None
        _, _, *halves = struct.unpack_from("<6I", content, at)
        numbers = [(half >> shift) & 0xFFFF for half in halves for shift in (16, 0)]
        return tuple(numbers[:4]), tuple(numbers[4:])

    def print(self):
        print(f"{self.path.name}")
        shown = self.exports if len(self.exports) <= 10 else [f"{len(self.exports)} names"]
        print("  exports   " + "\n            ".join(shown))
        print("  imports   " + "\n            ".join(self.imports))
        lines = [f"{name}, {size} bytes" for name, size in self.resources.items()]
        print("  resources " + "\n            ".join(lines))


def problems_of(module, version, themes):
    """What is wrong with it, a line each."""
    found = []

    def compare(what, have, want):
        found.extend(f"{module.name}: {what} {name} is missing" for name in sorted(want - have))
        found.extend(f"{module.name}: {what} {name} is too much" for name in sorted(have - want))

    if module.name in WANTED_EXPORTS:
        compare("export", set(module.exports), set(WANTED_EXPORTS[module.name]))
    allowed = ARROWS[module.name] | RUNTIME | WINDOWS
    foreign = FOREIGN.get(module.name, [])
    for name in module.imports:
        stem = re.sub(r"\.(dll|drv)$", "", name)
        if stem not in allowed and not any(re.fullmatch(pattern, stem) for pattern in foreign):
            found.append(f"{module.name}: import {name} is too much")
    wanted = {f"{VERSION_TYPE}/1"}
    if module.name == LIBRARY:
        wanted |= {f"XML/{theme}" for theme in THEMES}
    compare("resource", set(module.resources), wanted)
    for theme in THEMES if module.name == LIBRARY else []:
        size = module.resources.get(f"XML/{theme}")
        promised = (themes / f"{theme}.xml").stat().st_size
        if size is not None and size != promised:
            found.append(f"{module.name}: resource {theme} has {size} bytes, not {promised}")
    numbers = tuple([int(part) for part in version.split(".")] + [0, 0, 0, 0])[:4]
    if module.version != (numbers, numbers):
        found.append(f"{module.name}: the version is {module.version}, not {numbers} twice")
    return found


def check(objdump, version, themes, folder):
    problems = []
    for name in ARROWS:
        module = Module(objdump, folder / f"{name}.dll")
        module.print()
        problems += problems_of(module, version, themes)
    for problem in problems:
        print(problem, file=sys.stderr)
    return 1 if problems else 0


FIVE = "".join(f"__declspec(dllexport) void {name}(void) {{}}\n" for name in EXPORTS)
SCRIPT = "".join(f'{theme} XML "theme.xml"\n' for theme in THEMES)
RECORD = "1 VERSIONINFO\nFILEVERSION 1,2,3,0\nPRODUCTVERSION 1,2,3,0\nBEGIN\nEND\n"

# name: (C code, resource script, what is found)
SAMPLES = {
    "good": (FIVE, SCRIPT + RECORD, []),
    "export missing": (
        FIVE.replace("void MetadataAPITerminate", "void Other"),
        SCRIPT + RECORD,
        ["export MetadataAPITerminate is missing", "export Other is too much"],
    ),
    "export more": (
        FIVE + "__declspec(dllexport) int more = 1;",
        SCRIPT + RECORD,
        ["export more is too much"],
    ),
    "foreign import": (
        FIVE + "__declspec(dllimport) int Foreign(void);"
        "int Use(void) { return Foreign(); }",
        SCRIPT + RECORD,
        ["import foreign.dll is too much"],
    ),
    "theme missing": (
        FIVE,
        SCRIPT.replace('KIVCOLORTHEMESV4 XML "theme.xml"\n', "") + RECORD,
        ["resource XML/KIVCOLORTHEMESV4 is missing"],
    ),
    "theme of another type": (
        FIVE,
        SCRIPT.replace("KIVCOLORTHEMESV2 XML", "KIVCOLORTHEMESV2 DATA") + RECORD,
        ["resource XML/KIVCOLORTHEMESV2 is missing", "resource DATA/KIVCOLORTHEMESV2 is too much"],
    ),
    "other content": (
        FIVE,
        SCRIPT.replace('KIVCOLORTHEMESV3 XML "theme.xml"', 'KIVCOLORTHEMESV3 XML "other.xml"')
        + RECORD,
        ["resource KIVCOLORTHEMESV3 has 9 bytes, not 8"],
    ),
    "no version": (
        FIVE,
        SCRIPT,
        ["resource 16/1 is missing", "the version is None, not (1, 2, 3, 0) twice"],
    ),
    "another version": (
        FIVE,
        SCRIPT + RECORD.replace("PRODUCTVERSION 1,2,3,0", "PRODUCTVERSION 1,2,4,0"),
        ["the version is ((1, 2, 3, 0), (1, 2, 4, 0)), not (1, 2, 3, 0) twice"],
    ),
}


def self_test(objdump, compiler, windres):
    failures = 0
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)

        def run(*command):
            subprocess.run(command, cwd=folder, check=True)

        for theme in THEMES:
            (folder / f"{theme}.xml").write_text("<theme/>")
        (folder / "theme.xml").write_text("<theme/>")
        (folder / "other.xml").write_text("<other />")
        (folder / "foreign.c").write_text("int Foreign(void) { return 1; }")
        run(compiler, "-shared", "-o", "foreign.dll", "foreign.c")
        for sample, (code, script, wanted) in SAMPLES.items():
            (folder / "code.c").write_text(code)
            (folder / "script.rc").write_text(script)
            run(windres, "-O", "coff", "script.rc", "script.o")
            run(compiler, "-shared", "-o", f"{LIBRARY}.dll", "code.c", "script.o", "foreign.dll")
            module = Module(objdump, folder / f"{LIBRARY}.dll")
            found = problems_of(module, "1.2.3", folder)
            wanted = [f"{LIBRARY}: {line}" for line in wanted]
            if sorted(found) == sorted(wanted):
                print(f"{sample}: " + ("; ".join(found) or "nothing to find"))
            else:
                print(f"{sample}: found {found}, not {wanted}", file=sys.stderr)
                failures += 1
    return 1 if failures else 0


def main():
    parser = argparse.ArgumentParser(usage=__doc__)
    parser.add_argument("--self-test", action="store_true")
    parser.add_argument("--objdump", required=True)
    parser.add_argument("--compiler")
    parser.add_argument("--windres")
    parser.add_argument("--version")
    parser.add_argument("--themes", type=pathlib.Path)
    parser.add_argument("folder", nargs="?", type=pathlib.Path)
    arguments = parser.parse_args()
    if arguments.self_test:
        return self_test(arguments.objdump, arguments.compiler, arguments.windres)
    return check(arguments.objdump, arguments.version, arguments.themes, arguments.folder)


if __name__ == "__main__":
    sys.exit(main())
