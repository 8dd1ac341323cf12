"""Holds the dictionaries against the sources: every text of the code and of the built-in definitions
is in every dictionary, every entry is used, the English one says what the code says, translations keep
the places for values, values show as they are written, and keys are sorted.

usage: dictionary_texts_test.py
"""

import pathlib
import re
import sys
import tempfile
import unittest
import xml.etree.ElementTree

TOP = pathlib.Path(__file__).resolve().parent.parent
LANGUAGES = ("en_US", "de_DE", "ja_JP")
CODE_FOLDERS = ("api", "framework", "host", "localizer")

# What C++ source consists of, as far as texts are concerned.
TOKEN = re.compile(
    r"""(?P<comment>//[^\n]*|/\*.*?\*/)
      |(?P<raw>(?:u8|u|U|L)?R"(?P<mark>[^()\\\s]{0,16})\((?P<rawtext>.*?)\)(?P=mark)")
      |(?P<literal>(?:u8|u|U|L)?"(?P<text>(?:[^"\\\n]|\\.)*)")
      |(?P<char>'(?:[^'\\\n]|\\.)+')
      |(?P<space>\s+)
      |(?P<word>\w+)
      |(?P<other>.)""",
    re.VERBOSE | re.DOTALL,
)
ESCAPES = {"n": "\n", "t": "\t", '"': '"', "'": "'", "\\": "\\"}


def literals(source):
    """The string literals of C++ source, adjacent ones joined."""
    joined = None
    for token in TOKEN.finditer(source):
        if token.lastgroup == "literal":
            text = re.sub(r"\\(.)", lambda m: ESCAPES.get(m[1], m[0]), token.group("text"))
        elif token.lastgroup == "raw":
            text = token.group("rawtext")
        elif token.lastgroup in ("space", "comment"):
            continue
        else:
            if joined is not None:
                yield joined
            joined = None
            continue
        joined = text if joined is None else joined + text
    if joined is not None:
        yield joined


def is_key(text):
    return re.match(r"\(?\$\$\$/.", text, re.DOTALL) is not None


def used_texts(top, problems):
    """Default by key."""
    used = {}

    def add(path, text):
        key, equals, default = text.partition("=")
        if not equals or not default:
            problems.append(f"{path}: {text} has no default")
        if used.setdefault(key, default) != default:
            problems.append(f"{path}: {key} has another default elsewhere")

    for folder in CODE_FOLDERS:
        for path in sorted((top / folder).rglob("*")):
            name = path.relative_to(top)
            if path.suffix in (".cpp", ".h", ".c") and "tests" not in name.parts:
                for text in filter(is_key, literals(path.read_text(encoding="utf-8"))):
                    add(name, text)
    for path in sorted((top / "resources" / "definitions").rglob("*.xml")):
        name = path.relative_to(top)
        for element in xml.etree.ElementTree.parse(path).iter():
            for attribute, text in element.attrib.items():
                if is_key(text):
                    add(name, text)
                elif attribute in ("label", "heading", "description", "placeholder", "unit"):
                    problems.append(f"{name}: {attribute} '{text}' is no key")
    return used


def entries(path, problems):
    """Value by key."""
    data = path.read_bytes()
    if b"\r" in data or not data.endswith(b"\n") or data.startswith(b"\xef\xbb\xbf"):
        problems.append(f"{path.name}: is not plain UTF-8 with LF line ends")
    found = {}
    previous = b""
    for line in data.decode("utf-8").rstrip("\n").split("\n"):
        match = re.fullmatch(r'"(\$\$\$/[ -<>-~]+)=(.*)"', line)
        if not match:
            problems.append(f"{path.name}: {line} is no entry")
            continue
        key, value = match.groups()
        if key in found:
            problems.append(f"{path.name}: {key} stands there twice")
        elif key.encode() < previous:
            problems.append(f"{path.name}: {key} is not in order")
        previous = max(previous, key.encode())
        # What the engine would read as an escape, a code or a marker; "^0" is none.
        if not value or re.search(r'["\\]|\^(?![0-9])|#\{', value):
            problems.append(f"{path.name}: {key} does not show as it is written")
        found[key] = value
    return found


def places(text):
    return sorted(re.findall(r"\^[0-9]", text))


def find_problems(top):
    problems = []
    used = used_texts(top, problems)
    for language in LANGUAGES:
        path = top / "resources" / "dict" / f"kiv_{language}.dict"
        found = entries(path, problems)
        problems += [f"{path.name}: {key} is missing" for key in sorted(used.keys() - found.keys())]
        problems += [f"{path.name}: {key} is not used" for key in sorted(found.keys() - used.keys())]
        for key in sorted(used.keys() & found.keys()):
            if language == "en_US" and found[key] != used[key]:
                problems.append(f"{path.name}: {key} differs from the code: {used[key]}")
            if places(found[key]) != places(used[key]):
                problems.append(f"{path.name}: {key} has other places for values")
    return problems


class DictionaryTexts(unittest.TestCase):
    maxDiff = None

    def test_the_repository(self):
        self.assertEqual([], find_problems(TOP))

    def test_it_has_looked(self):
        kinds = {key.split("/")[2] for key in used_texts(TOP, [])}
        self.assertLessEqual({"Dialog", "Schema", "View"}, kinds)


GOOD = {
    "api/Code.cpp": """// "$$$/Comment=not a text"
        /* "$$$/Comment/Two=nor this" */
        char quote = '"';
        auto a = Text("$$$/A=One ^0 "   // goes on
                      "and ^1");
        auto b = "$$$/" + path;  auto c = Text(u8"$$$/B/C=Two");
        auto d = R"($$$/D=Raw)";
        """,
    "api/tests/CodeTest.cpp": 'auto t = Text("$$$/Test=only");',
    "resources/definitions/schema/s.xml": '<schema namespace="n" label="$$$/S=A &amp; B"/>',
    "resources/dict/kiv_en_US.dict":
        '"$$$/A=One ^0 and ^1"\n"$$$/B/C=Two"\n"$$$/D=Raw"\n"$$$/S=A & B"\n',
    "resources/dict/kiv_de_DE.dict":
        '"$$$/A=^1 und Eins ^0"\n"$$$/B/C=Zwei"\n"$$$/D=Roh"\n"$$$/S=A und B"\n',
    "resources/dict/kiv_ja_JP.dict":
        '"$$$/A=^0と^1"\n"$$$/B/C=二"\n"$$$/D=生"\n"$$$/S=AとB"\n',
}

# File, what stands there, what takes its place, what is found.
MISTAKES = [
    ("api/Code.cpp", "$$$/A=One ^0 ", "$$$/New=One ^0 ",
     ["en_US: $$$/New is missing", "en_US: $$$/A is not used",
      "de_DE: $$$/New is missing", "de_DE: $$$/A is not used",
      "ja_JP: $$$/New is missing", "ja_JP: $$$/A is not used"]),
    ("api/Code.cpp", "and ^1", "or ^1",
     ["en_US: $$$/A differs from the code: One ^0 or ^1"]),
    ("api/Code.cpp", "$$$/D=Raw", "$$$/D", ["api/Code.cpp: $$$/D has no default",
                                           "en_US: $$$/D differs from the code: "]),
    ("api/Code.cpp", "$$$/D=Raw", "$$$/B/C=Raw",
     ["api/Code.cpp: $$$/B/C has another default elsewhere", "en_US: $$$/D is not used",
      "de_DE: $$$/D is not used", "ja_JP: $$$/D is not used"]),
    ("resources/definitions/schema/s.xml", "$$$/S=A &amp; B", "A &amp; B",
     ["resources/definitions/schema/s.xml: label 'A & B' is no key", "en_US: $$$/S is not used",
      "de_DE: $$$/S is not used", "ja_JP: $$$/S is not used"]),
    ("resources/dict/kiv_de_DE.dict", '"$$$/B/C=Zwei"\n', "", ["de_DE: $$$/B/C is missing"]),
    ("resources/dict/kiv_ja_JP.dict", '"$$$/S=', '"$$$/R=older"\n"$$$/S=',
     ["ja_JP: $$$/R is not used"]),
    ("resources/dict/kiv_ja_JP.dict", "^0と^1", "^0と^2",
     ["ja_JP: $$$/A has other places for values"]),
    ("resources/dict/kiv_ja_JP.dict", "^0と^1", "^0", ["ja_JP: $$$/A has other places for values"]),
    ("resources/dict/kiv_de_DE.dict", '"$$$/S=A und B"\n', '"$$$/S=A und B"\n"$$$/A=^0^1"\n',
     ["de_DE: $$$/A stands there twice"]),
    ("resources/dict/kiv_de_DE.dict", '"$$$/A=^1 und Eins ^0"\n"$$$/B/C=Zwei"\n',
     '"$$$/B/C=Zwei"\n"$$$/A=^1 und Eins ^0"\n', ["de_DE: $$$/A is not in order"]),
    ("resources/dict/kiv_de_DE.dict", "=Zwei", "=Zwei^Q",
     ["de_DE: $$$/B/C does not show as it is written"]),
    ("resources/dict/kiv_de_DE.dict", "=Zwei", "=Zwei\\n",
     ["de_DE: $$$/B/C does not show as it is written"]),
    ("resources/dict/kiv_de_DE.dict", "=Zwei", "=#{copy}",
     ["de_DE: $$$/B/C does not show as it is written"]),
    ("resources/dict/kiv_de_DE.dict", "=Zwei", "=", ["de_DE: $$$/B/C does not show as it is written"]),
    ("resources/dict/kiv_de_DE.dict", '"$$$/D=Roh"', "$$$/D=Roh",
     ["de_DE: $$$/D=Roh is no entry", "de_DE: $$$/D is missing"]),
    ("resources/dict/kiv_de_DE.dict", "\n", "\r\n",
     ["de_DE: is not plain UTF-8 with LF line ends", "de_DE: \"$$$/A=^1 und Eins ^0\"\r is no entry",
      "de_DE: \"$$$/B/C=Zwei\"\r is no entry", "de_DE: \"$$$/D=Roh\"\r is no entry",
      "de_DE: \"$$$/S=A und B\"\r is no entry", "de_DE: $$$/A is missing", "de_DE: $$$/B/C is missing",
      "de_DE: $$$/D is missing", "de_DE: $$$/S is missing"]),
]


class EveryMistakeIsFound(unittest.TestCase):
    maxDiff = None

    def judge(self, files):
        with tempfile.TemporaryDirectory() as folder:
            for name, text in files.items():
                path = pathlib.Path(folder, name)
                path.parent.mkdir(parents=True, exist_ok=True)
                path.write_bytes(text.encode())
            return [re.sub(r"^kiv_(\w+)\.dict", r"\1", line)
                    for line in find_problems(pathlib.Path(folder))]

    def test_nothing_is_wrong(self):
        self.assertEqual([], self.judge(GOOD))

    def test_mistakes(self):
        for name, old, new, want in MISTAKES:
            with self.subTest(name=name, old=old, new=new):
                self.assertIn(old, GOOD[name])
                self.assertEqual(want, self.judge({**GOOD, name: GOOD[name].replace(old, new)}))


if __name__ == "__main__":
    sys.exit(unittest.main())
