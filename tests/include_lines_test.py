"""Reads all #include lines and holds them against the layers: what a folder may use, where the headers
of other projects and of the system may stand, and what public headers may show.

usage: include_lines_test.py
"""

import collections
import pathlib
import re
import sys
import tempfile
import unittest

TOP = pathlib.Path(__file__).resolve().parent.parent
SKIPPED = {"build", ".git"}

# Folder: what it may use besides itself. A library's name stands for its public headers, a path for
# all that is in it. Only direct entries count, so an arrow that is meant is written down.
LAYERS = {
    "include": (),
    "dictionary": (),
    "localizer": ("dictionary", "kivcore"),
    "svgloom/src": ("kivcore", "svgloom/renderer/PathSegments.h", "svgloom/renderer/Records.h",
                    "svgloom/renderer/SVGRenderer.h", "svgloom/renderer/SharedVector.h"),
    "svgloom/renderer": ("kivcore",),  # and kivui's drawing layer, see HEADERS
    "svgbridge": ("svgloom", "kivcore", "kivui"),
    "api": ("include", "localizer", "svgbridge/SVGBridge.h", "kivcore", "kivui", "kivxmp",
            "kivmetadata", "kivmetadataui"),
    "framework/kivcore": (),
    "framework/kivui": ("kivcore",),
    "framework/kivxmp": ("kivcore",),
    "framework/kivmetadata": ("kivcore", "kivxmp"),
    "framework/kivmetadataui": ("kivcore", "kivui", "kivxmp", "kivmetadata"),
    # The private module behind kivmetadataui, which alone opens it. Its tests are hosts.
    "framework/kivtoolkit/tests": (
        "kivcore", "kivui", "kivxmp", "kivmetadata", "kivmetadataui",
        "framework/kivmetadataui/src", "framework/kivtoolkit/src", "tests/ProcessCounts.h"),
    "framework/kivtoolkit": ("kivcore", "kivui", "kivmetadataui", "framework/kivmetadataui/src"),
    "host": ("include", "tools/common"),
    "tools/common": ("kivcore", "host/Console.h"),
    "tools/pemtext": ("dictionary", "localizer", "kivcore", "tools/common"),
    "tools/svgloom": ("svgloom", "kivcore", "kivui", "tools/common"),
    # Judges of the whole.
    "bench": ("include", "dictionary", "svgloom", "kivcore", "kivui", "kivxmp", "kivmetadata",
              "kivmetadataui", "framework/kivui/src/scrivel", "framework/kivxmp/tests",
              "framework/kivxmp/src/ByteNumbers.h", "framework/kivcore/src/ReplacementChecks.h"),
    "fuzz": ("dictionary", "svgloom", "framework/kivcore/src", "framework/kivui/src",
             "framework/kivxmp/src", "framework/kivmetadata/src", "kivcore", "kivui", "kivxmp",
             "kivmetadata", "tools/svgloom/check"),
    "tests": ("include", "kivcore", "kivui", "kivxmp", "kivmetadata", "kivmetadataui",
              "svgbridge", "svgloom", "tools/common", "tools/svgloom"),
}

# Single headers beyond the layer: a host drives the dialog and asks why something failed; the SVG
# renderer draws on the 2-D layer and knows nothing else of the user interface.
HEADERS = {
    "host": ("kivxmp/kivxmp.h", "kivxmp/kivxmp_file.h", "kivcore/LastFailure.h",
             "kivmetadataui/DialogDriver.h"),
    "svgloom/renderer": ("kivui/Scrivel.h", "kivui/ScrivelTargets.h"),
}

# Headers of other projects: where they may stand.
FOREIGN = {
    r"expat\.h": ("framework/kivcore/src", "framework/kivxmp/src", "bench"),
    r"(wx|gtk|gdk|gio|glib)/.+|glib\.h": ("framework/kivtoolkit",),
    r"cairo\.h": ("framework/kivtoolkit", "bench"),
    r"X11/.+": ("framework/kivtoolkit", "*tests"),
    r"boost/(function\.hpp|smart_ptr/intrusive_ptr\.hpp|shared_ptr\.hpp)": (
        "framework", "svgbridge", "api"),
    r"exiv2/.+": ("framework/kivxmp/src/ExifIimReader.cpp", "bench"),
    r"boost/uuid/detail/md5\.hpp|zlib\.h": ("framework/kivxmp",),
    r"boost/property_tree/detail/rapidxml\.hpp": ("svgloom/src",),
    # Of a processor; what includes it goes without where there is another.
    r"immintrin\.h": ("svgloom/src",),
    r"agg2/.+": ("framework/kivui/src/scrivel", "bench"),
    r"(gtest|gmock)/.+": ("*tests",),
    r"(benchmark|unicode|librsvg)/.+|libintl\.h": ("bench",),
    r"gettext-po\.h": ("tools/pemtext",),
    r"png\.h": ("tools/svgloom",),
}

STANDARD_C = set("""assert.h complex.h ctype.h errno.h fenv.h float.h inttypes.h iso646.h limits.h
    locale.h math.h setjmp.h signal.h stdalign.h stdarg.h stdatomic.h stdbool.h stddef.h stdint.h
    stdio.h stdlib.h stdnoreturn.h string.h tgmath.h time.h uchar.h wchar.h wctype.h""".split())
# Those of a system stand in files that are named after it, in tests and in benchmarks, which run on
# one system only.
SYSTEM = re.compile(r"(sys/\w+|unistd|fcntl|dirent|dlfcn|link|pwd|grp|poll|sched|malloc|iconv)\.h")
# Those of Windows in files that are named after it, in tests too: no other system has them.
WINDOWS = re.compile(r"(windows|commctrl|dwmapi|gdiplus|io|knownfolders|objbase|objidl|psapi|shellapi"
                     r"|sddl|shlobj|tlhelp32|winioctl|winternl|xmmintrin)\.h")

# What C programs include too.
C_HEADERS = (
    "include/kivmetadataapi.h",
    "framework/kivcore/include/kivcore/LastFailure.h",
    "framework/kivxmp/include/kivxmp/kivxmp.h",
    "framework/kivxmp/include/kivxmp/kivxmp_file.h",
)
ONLY_IN_CPP = re.compile(r"^#ifdef __cplusplus$.*?^#endif", re.MULTILINE | re.DOTALL)

INCLUDE = re.compile(r'^[ \t]*#[ \t]*include[ \t]*([<"])([^">]+)[">]', re.MULTILINE)

Line = collections.namedtuple("Line", "file folder header quoted")


def lines_of(top):
    for path in sorted(top.rglob("*")):
        name = path.relative_to(top)
        if path.suffix not in (".h", ".cpp", ".c") or SKIPPED & set(name.parts):
            continue
        folder = next((f for f in LAYERS if name.as_posix().startswith(f + "/")), None)
        text = path.read_text(encoding="utf-8")
        if name.as_posix() in C_HEADERS:
            text = ONLY_IN_CPP.sub("", text)
        for match in INCLUDE.finditer(text):
            yield Line(name, folder, match[2], match[1] == '"')


def is_in(path, places):
    path = path.as_posix()
    return any("/tests/" in "/" + path if place == "*tests" else (path + "/").startswith(place + "/")
               for place in places)


def public_library(header):
    """The framework library whose public header this is."""
    library = header.split("/")[0]
    return library if f"framework/{library}" in LAYERS and "/" in header else None


def is_public(name):
    return "include" in name.parts[:3]


def judge_quoted(top, line):
    """Headers of the repository by their path."""
    if not (top / line.header).is_file():
        return "names no path from the repository root"
    if line.header.startswith(line.folder + "/"):
        return None if not is_public(line.file) else "is no public header"
    allowed = LAYERS[line.folder]
    if is_in(pathlib.PurePosixPath(line.header), allowed):
        return None
    # Tests share what they test with.
    library = re.match(r"framework/(\w+)/tests/", line.header)
    if "tests" in line.file.parts and library and library[1] in allowed:
        return None
    return "is not a layer below"


def judge_library(top, line, library):
    """Public headers of the framework."""
    if not (top / "framework" / library / "include" / line.header).is_file():
        return "is no public header of the framework"
    if line.folder == f"framework/{library}" or library in LAYERS[line.folder]:
        return None
    if line.header in HEADERS.get(line.folder, ()):
        return None
    return "is not a layer below"


def judge(top, line):
    """What is wrong with an include line; None if nothing is."""
    if line.folder is None:
        return "stands in a folder without a layer"
    if line.file.as_posix() in C_HEADERS or line.file.suffix == ".c":
        for_c = line.header in STANDARD_C or line.header.endswith("/Export.h") or any(
            each.endswith("/" + line.header) for each in C_HEADERS)
        # The C programs of tests and hosts come in parts, too.
        part = line.quoted and line.file.parent == pathlib.PurePosixPath(line.header).parent
        is_system = SYSTEM.fullmatch(line.header) or WINDOWS.fullmatch(line.header)
        if not (for_c or line.file.suffix == ".c" and (part or is_system)):
            return "is not for C"
    if line.quoted:
        return judge_quoted(top, line)
    library = public_library(line.header)
    if library:
        return judge_library(top, line, library)
    if line.header == "kivmetadataapi.h":
        return None if "include" in LAYERS[line.folder] else "is not a layer below"
    if re.fullmatch(r"[a-z_]+", line.header) or line.header in STANDARD_C:
        return None
    for pattern, places in FOREIGN.items():
        if re.fullmatch(pattern, line.header):
            return None if is_in(line.file, places) else "does not belong into this folder"
    if SYSTEM.fullmatch(line.header):
        named = re.search(r"_(posix|win)$", line.file.stem)
        judges = {"tests", "bench"} & set(line.file.parts)
        return None if named or judges else "belongs into a _posix or _win file"
    if WINDOWS.fullmatch(line.header):
        return None if re.search(r"_win$", line.file.stem) else "belongs into a _win file"
    return "is a header that no table here knows"


def own_header(top, name):
    """The header that a source file belongs to, as it would be included."""
    stem = re.sub(r"_(posix|win)$", "", name.stem)
    for at in (name.stem, stem):
        if (top / name.parent / f"{at}.h").is_file():
            return (name.parent / f"{at}.h").as_posix()
        if name.parts[0] == "framework":
            public = f"{name.parts[1]}/{at}.h"
            if (top / "framework" / name.parts[1] / "include" / public).is_file():
                return public
    return None


def find_problems(top):
    problems = []
    first = {}
    for line in lines_of(top):
        first.setdefault(line.file, line.header)
        wrong = judge(top, line)
        if wrong:
            problems.append(f"{line.file}: {line.header} {wrong}")
    for name, header in first.items():
        own = own_header(top, name) if name.suffix == ".cpp" and "tests" not in name.parts else None
        if own and header != own:
            problems.append(f"{name}: {own} does not come first")
    return problems


class IncludeLines(unittest.TestCase):
    maxDiff = None

    def test_the_repository(self):
        self.assertEqual([], find_problems(TOP))

    def test_it_has_looked(self):
        seen = {line.folder for line in lines_of(TOP)}
        self.assertEqual(set(LAYERS), seen)


# A tree in small: file, include lines that are right.
GOOD = {
    "include/kivmetadataapi.h": ["<stdint.h>"],
    "api/Exports.h": ["<kivcore/Trace.h>"],
    "api/Exports.cpp": ['"api/Exports.h"', '"include/kivmetadataapi.h"', '"localizer/Localizer.h"',
                        "<kivxmp/XMPMeta.h>", "<string>"],
    "api/tests/ExportsTest.cpp": ["<gtest/gtest.h>", '"api/Exports.h"', "<unistd.h>"],
    "localizer/Localizer.h": ['"dictionary/Dictionary.h"', "<kivcore/Trace.h>"],
    "dictionary/Dictionary.h": ["<vector>"],
    "dictionary/InputFile.h": ["<string>"],
    "dictionary/InputFile_posix.cpp": ['"dictionary/InputFile.h"', "<sys/stat.h>"],
    "dictionary/InputFile_win.cpp": ['"dictionary/InputFile.h"', "<windows.h>", "<io.h>"],
    "dictionary/Converter.h": ["<string>"],
    "dictionary/Converter_win.h": ["<string>"],
    "dictionary/Converter_win.cpp": ['"dictionary/Converter_win.h"', '"dictionary/Converter.h"'],
    "framework/kivcore/include/kivcore/Trace.h": ["<boost/function.hpp>", "<cstdint>"],
    "framework/kivcore/include/kivcore/LastFailure.h": ["<stddef.h>"],
    "framework/kivcore/src/Parser.h": ["<expat.h>"],
    "framework/kivcore/src/Trace.cpp": ["<kivcore/Trace.h>", '"framework/kivcore/src/Parser.h"'],
    "framework/kivcore/tests/TestFolder.h": ["<string>"],
    "framework/kivxmp/include/kivxmp/XMPMeta.h": ["<kivcore/Trace.h>"],
    "framework/kivxmp/src/XMPMeta.cpp": ["<kivxmp/XMPMeta.h>", "<expat.h>"],
    "framework/kivxmp/tests/XMPMetaTest.cpp": ["<kivxmp/XMPMeta.h>",
                                               '"framework/kivcore/tests/TestFolder.h"'],
    "framework/kivui/src/Theme.cpp": ["<kivcore/Trace.h>"],
    "framework/kivmetadataui/src/Model.h": ["<kivxmp/XMPMeta.h>"],
    "framework/kivtoolkit/src/Window.cpp": ["<wx/window.h>",
                                            '"framework/kivmetadataui/src/Model.h"'],
    "host/Host.cpp": ["<kivmetadataapi.h>", "<kivcore/LastFailure.h>"],
    "host/small_host.c": ["<kivmetadataapi.h>", "<stdio.h>"],
    "host/small_host_win.c": ["<kivmetadataapi.h>", "<windows.h>", '"host/small_host_parts.h"'],
    "host/small_host_parts.h": ["<stddef.h>"],
    "bench/Bench.cpp": ["<benchmark/benchmark.h>", '"dictionary/Dictionary.h"'],
    "fuzz/Fuzzer.cpp": ['"framework/kivcore/src/Parser.h"'],
}

LOWER = "is not a layer below"

# File, a line too much, what is found.
MISTAKES = [
    # Against the arrows.
    ("dictionary/Dictionary.h", '"localizer/Localizer.h"', LOWER),
    ("dictionary/Dictionary.h", "<kivcore/Trace.h>", LOWER),
    ("localizer/Localizer.h", '"api/Exports.h"', LOWER),
    ("localizer/Localizer.h", "<kivxmp/XMPMeta.h>", LOWER),
    ("api/Exports.cpp", '"dictionary/Dictionary.h"', LOWER),
    ("framework/kivcore/src/Trace.cpp", "<kivxmp/XMPMeta.h>", LOWER),
    ("framework/kivui/src/Theme.cpp", "<kivxmp/XMPMeta.h>", LOWER),
    ("framework/kivmetadataui/src/Model.h", '"framework/kivtoolkit/src/Window.cpp"', LOWER),
    # The framework knows nothing of the library, and the library nothing of its inside.
    ("framework/kivcore/src/Trace.cpp", '"api/Exports.h"', LOWER),
    ("framework/kivcore/src/Trace.cpp", "<kivmetadataapi.h>", LOWER),
    ("framework/kivmetadataui/src/Model.h", '"dictionary/Dictionary.h"', LOWER),
    ("framework/kivtoolkit/src/Window.cpp", '"include/kivmetadataapi.h"', LOWER),
    ("api/Exports.cpp", '"framework/kivcore/src/Parser.h"', LOWER),
    ("framework/kivxmp/src/XMPMeta.cpp", '"framework/kivcore/src/Parser.h"', LOWER),
    ("framework/kivxmp/src/XMPMeta.cpp", '"framework/kivcore/tests/TestFolder.h"', LOWER),
    ("framework/kivcore/src/Trace.cpp", "<kivcore/Missing.h>",
     "is no public header of the framework"),
    # Hosts use what hosts have.
    ("host/Host.cpp", "<kivcore/Trace.h>", LOWER),
    ("host/Host.cpp", '"api/Exports.h"', LOWER),
    ("host/small_host.c", "<string>", "is not for C"),
    ("host/small_host.c", "<kivxmp/XMPMeta.h>", "is not for C"),
    # What is public shows nothing private.
    ("framework/kivcore/include/kivcore/Trace.h", '"framework/kivcore/src/Parser.h"',
     "is no public header"),
    ("framework/kivcore/include/kivcore/LastFailure.h", "<string>", "is not for C"),
    ("include/kivmetadataapi.h", "<cstdint>", "is not for C"),
    # Other projects.
    ("framework/kivui/src/Theme.cpp", "<expat.h>", "does not belong into this folder"),
    ("framework/kivcore/include/kivcore/Trace.h", "<expat.h>", "does not belong into this folder"),
    ("framework/kivmetadataui/src/Model.h", "<wx/window.h>", "does not belong into this folder"),
    ("framework/kivui/src/Theme.cpp", "<gtk/gtk.h>", "does not belong into this folder"),
    ("dictionary/Dictionary.h", "<boost/function.hpp>", "does not belong into this folder"),
    ("api/Exports.cpp", "<gtest/gtest.h>", "does not belong into this folder"),
    ("api/Exports.cpp", "<bzlib.h>", "is a header that no table here knows"),
    ("framework/kivcore/src/Trace.cpp", "<boost/regex.hpp>", "is a header that no table here knows"),
    # The system.
    ("framework/kivcore/src/Trace.cpp", "<unistd.h>", "belongs into a _posix or _win file"),
    ("dictionary/Dictionary.h", "<sys/stat.h>", "belongs into a _posix or _win file"),
    ("dictionary/Dictionary.h", "<windows.h>", "belongs into a _win file"),
    ("dictionary/InputFile_posix.cpp", "<windows.h>", "belongs into a _win file"),
    ("api/tests/ExportsTest.cpp", "<io.h>", "belongs into a _win file"),
    ("host/small_host.c", "<windows.h>", "belongs into a _win file"),
    ("host/small_host_win.c", '"dictionary/Dictionary.h"', "is not for C"),
    # Paths.
    ("framework/kivcore/src/Trace.cpp", '"src/Parser.h"', "names no path from the repository root"),
    ("framework/kivcore/src/Trace.cpp", '"Parser.h"', "names no path from the repository root"),
]


class EveryMistakeIsFound(unittest.TestCase):
    def judge(self, files):
        with tempfile.TemporaryDirectory() as folder:
            top = pathlib.Path(folder)
            for name, headers in files.items():
                (top / name).parent.mkdir(parents=True, exist_ok=True)
                (top / name).write_text("".join(f"#include {header}\n" for header in headers))
            return find_problems(top)

    def test_nothing_is_wrong(self):
        self.assertEqual([], self.judge(GOOD))

    def test_mistakes(self):
        for name, line, want in MISTAKES:
            with self.subTest(name=name, line=line):
                self.assertEqual([f"{name}: {line[1:-1]} {want}"],
                                 self.judge({**GOOD, name: GOOD[name] + [line]}))

    def test_the_own_header_comes_first(self):
        for name, own in (("api/Exports.cpp", "api/Exports.h"),
                          ("dictionary/InputFile_posix.cpp", "dictionary/InputFile.h"),
                          ("dictionary/Converter_win.cpp", "dictionary/Converter_win.h"),
                          ("framework/kivcore/src/Trace.cpp", "kivcore/Trace.h")):
            with self.subTest(name):
                self.assertEqual([f"{name}: {own} does not come first"],
                                 self.judge({**GOOD, name: GOOD[name][::-1]}))

    def test_a_folder_needs_a_layer(self):
        self.assertEqual(["extra/X.cpp: string stands in a folder without a layer"],
                         self.judge({**GOOD, "extra/X.cpp": ["<string>"]}))


if __name__ == "__main__":
    sys.exit(unittest.main())
