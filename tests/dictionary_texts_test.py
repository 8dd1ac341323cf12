"""Holds the dictionaries against the sources: every text of the code and of the built-in definitions
is in every dictionary, every entry is used, the English one says what the code says, and
translations keep the places for values.

usage: dictionary_texts_test.py
"""

import pathlib
import re
import sys
import unittest

TOP = pathlib.Path(__file__).resolve().parent.parent
LANGUAGES = ("en_US", "de_DE", "ja_JP")
PREFIX = "$$$/Kiv/"
LITERAL = r'"((?:[^"\\\n]|\\.)*)"'


def texts_of_code(text):
    """Keys with their defaults from C++ source; adjacent literals are one."""
    for match in re.finditer(rf"(?:{LITERAL}\s*)+", text):
        whole = "".join(re.findall(LITERAL, match.group(0)))
        if whole.startswith(PREFIX) and "=" in whole:
            yield whole.split("=", 1)


def texts_of_definitions(text):
    for match in re.finditer(r'"(\$\$\$/Kiv/[^"=]+)=([^"]*)"', text):
        value = match.group(2)
        for name, character in (("lt", "<"), ("gt", ">"), ("quot", '"'), ("amp", "&")):
            value = value.replace(f"&{name};", character)
        yield match.group(1), value


def used_texts():
    """Default by key; a key with two defaults is a mistake of its own."""
    used = {}
    sources = [
        (path, texts_of_code)
        for folder in ("api", "framework", "localizer", "host")
        for suffix in ("cpp", "h")
        for path in (TOP / folder).rglob(f"*.{suffix}")
        if "tests" not in path.relative_to(TOP).parts
    ]
    sources += [
        (path, texts_of_definitions) for path in (TOP / "resources" / "definitions").rglob("*.xml")
    ]
    for path, texts in sources:
        for key, default in texts(path.read_text(encoding="utf-8")):
            used.setdefault(key, {})[default] = path.relative_to(TOP)
    return used


def entries(language):
    path = TOP / "resources" / "dict" / f"kiv_{language}.dict"
    found = {}
    for line in path.read_text(encoding="utf-8").splitlines():
        match = re.fullmatch(r'"(\$\$\$/[^=]+)=(.*)"', line)
        assert match, f"{path.name}: {line}"
        assert match.group(1) not in found, f"{path.name}: {match.group(1)} stands there twice"
        found[match.group(1)] = match.group(2)
    return found


class DictionaryTexts(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.used = used_texts()
        cls.entries = {language: entries(language) for language in LANGUAGES}

    def test_the_sources_have_texts(self):
        kinds = {key.split("/")[2] for key in self.used}
        self.assertLessEqual({"Dialog", "Schema", "View"}, kinds)

    def test_each_key_has_one_default(self):
        self.assertEqual({}, {key: texts for key, texts in self.used.items() if len(texts) > 1})

    def test_every_text_is_in_every_dictionary(self):
        for language in LANGUAGES:
            with self.subTest(language):
                self.assertEqual([], sorted(set(self.used) - set(self.entries[language])))

    def test_every_entry_is_used(self):
        for language in LANGUAGES:
            with self.subTest(language):
                self.assertEqual([], sorted(set(self.entries[language]) - set(self.used)))

    def test_english_is_what_the_code_says(self):
        english = self.entries["en_US"]
        different = {
            key: (next(iter(texts)), english[key])
            for key, texts in self.used.items()
            if key in english and english[key] not in texts
        }
        self.assertEqual({}, different)

    def test_translations_keep_the_places_for_values(self):
        def places(text):
            return sorted(re.findall(r"\^\d", text))

        for language in LANGUAGES:
            for key, text in self.entries[language].items():
                if key in self.used:
                    with self.subTest(language=language, key=key):
                        self.assertEqual(places(next(iter(self.used[key]))), places(text))

    def test_no_translation_is_empty(self):
        for language in LANGUAGES:
            self.assertEqual([], [key for key, text in self.entries[language].items() if not text])


if __name__ == "__main__":
    sys.exit(unittest.main())
