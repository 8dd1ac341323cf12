"""Every folder that is a unit of its own has a README of one screen, and links in documents lead to
something.

usage: readmes_test.py
"""

import pathlib
import re
import sys
import tempfile
import unittest

TOP = pathlib.Path(__file__).resolve().parent.parent
SKIPPED = {"build", ".git"}
MAX_LINES = 60
# For visitors: may be longer.
LONGER = {"README.md": 200}

LINK = re.compile(r"\[[^\]]*\]\(([^)#\s]+)(?:#[^)]*)?\)")
EXAMPLE = re.compile(r"^```xml\n(.*?)^```$", re.MULTILINE | re.DOTALL)
# Documents whose examples are parts of files, word for word, and the folder of those.
EXAMPLES = {"docs/definitions.md": "tests/definitions"}


def names(top, pattern):
    for path in sorted(top.rglob(pattern)):
        name = path.relative_to(top)
        if not SKIPPED & set(name.parts):
            yield name


def find_problems(top):
    problems = []
    # A folder's own tests are told about in its README.
    units = {name.parent for name in names(top, "CMakeLists.txt")}
    units = {name for name in units if name.name != "tests" or len(name.parts) == 1}
    for folder in sorted(units):
        readme = folder / "README.md"
        if not (top / readme).is_file():
            problems.append(f"{readme}: is missing")
            continue
        lines = (top / readme).read_text(encoding="utf-8").splitlines()
        if len(lines) > LONGER.get(readme.as_posix(), MAX_LINES):
            problems.append(f"{readme}: {len(lines)} lines are more than a screen")
        if not re.match(r"# \S", lines[0] if lines else ""):
            problems.append(f"{readme}: does not begin with its title")
    for name in names(top, "*.md"):
        text = (top / name).read_text(encoding="utf-8")
        for link in LINK.findall(text):
            if "://" not in link and not (top / name.parent / link).exists():
                problems.append(f"{name}: the link {link} leads nowhere")
    for name, folder in EXAMPLES.items():
        if (top / name).is_file():
            files = [path.read_text(encoding="utf-8") for path in (top / folder).rglob("*.xml")]
            for example in EXAMPLE.findall((top / name).read_text(encoding="utf-8")):
                if not any(example in text for text in files):
                    problems.append(f"{name}: no file has this: {example.splitlines()[0]}")
    return problems


class Readmes(unittest.TestCase):
    maxDiff = None

    def test_the_repository(self):
        self.assertEqual([], find_problems(TOP))


GOOD = {
    "CMakeLists.txt": "",
    "README.md": "# top\n" + "line\n" * 150,
    "api/CMakeLists.txt": "",
    "api/README.md": "# api\n[up](../README.md#part) [web](https://example.org/x)\n",
    "api/tests/CMakeLists.txt": "",
    "tests/CMakeLists.txt": "",
    "tests/README.md": "# tests\n",
    "build/x/CMakeLists.txt": "",
    "docs/definitions.md": "```xml\n<a>\n<b/>\n```\n",
    "tests/definitions/x.xml": "<?xml?>\n<a>\n<b/>\n</a>\n",
}

# File, its content, what is found.
MISTAKES = [
    ("api/README.md", None, "api/README.md: is missing"),
    ("tests/README.md", None, "tests/README.md: is missing"),
    ("api/README.md", "# api\n" + "line\n" * 60, "api/README.md: 61 lines are more than a screen"),
    ("README.md", "# top\n" + "line\n" * 200, "README.md: 201 lines are more than a screen"),
    ("api/README.md", "", "api/README.md: does not begin with its title"),
    ("api/README.md", "The folder\n", "api/README.md: does not begin with its title"),
    ("api/README.md", "# api\n[x](gone.md)", "api/README.md: the link gone.md leads nowhere"),
    ("docs/definitions.md", "[x](../api/gone.h)",
     "docs/definitions.md: the link ../api/gone.h leads nowhere"),
    ("docs/definitions.md", "```xml\n<c/>\n```\n", "docs/definitions.md: no file has this: <c/>"),
]


class EveryMistakeIsFound(unittest.TestCase):
    def judge(self, files):
        with tempfile.TemporaryDirectory() as folder:
            for name, text in files.items():
                if text is not None:
                    path = pathlib.Path(folder, name)
                    path.parent.mkdir(parents=True, exist_ok=True)
                    path.write_text(text)
            return find_problems(pathlib.Path(folder))

    def test_nothing_is_wrong(self):
        self.assertEqual([], self.judge(GOOD))

    def test_mistakes(self):
        for name, text, want in MISTAKES:
            with self.subTest(want):
                self.assertEqual([want], self.judge({**GOOD, name: text}))


if __name__ == "__main__":
    sys.exit(unittest.main())
