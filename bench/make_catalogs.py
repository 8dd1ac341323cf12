#!/usr/bin/env python3
"""Makes the catalogs that DictionaryBench compares, from the translations installed on this machine.

usage: make_catalogs.py BIN_DIR OUT_DIR

For each size OUT_DIR/SIZE/ holds the same texts as a text dictionary, a binary image, a gettext .mo
file and an ICU resource bundle. Needs msgfmt and genrb.
"""

import pathlib
import re
import struct
import subprocess
import sys

SIZES = (1000, 10000, 100000, 1000000)
LOCALES = pathlib.Path("/usr/share/locale")
LANGUAGES = ("de", "fr", "ja", "es", "ru")  # first; then what else there is
KEY_WORDS = 6


def messages_of(path):
    """Pairs of msgid and msgstr; of plurals the first forms."""
    data = path.read_bytes()
    order = {b"\xde\x12\x04\x95": "<", b"\x95\x04\x12\xde": ">"}.get(data[:4])
    if order is None:
        return
    count, texts, translations = struct.unpack_from(order + "3I", data, 8)
    for i in range(count):
        pair = []
        for table in (texts, translations):
            length, offset = struct.unpack_from(order + "2I", data, table + 8 * i)
            pair.append(data[offset:offset + length].split(b"\0")[0])
        try:
            text, translation = pair[0].decode("utf-8"), pair[1].decode("utf-8")
        except UnicodeDecodeError:
            continue
        text = text.split("\x04")[-1]
        if text and translation.strip("\n"):
            yield text, translation


def catalog(size):
    """Values by key: "/language/domain/WordsOfTheText", numbered where that is not unique."""
    entries = {}
    languages = sorted((path for path in LOCALES.iterdir() if path.is_dir()),
                       key=lambda path: (path.name not in LANGUAGES, path.name))
    round_number = 0
    while len(entries) < size:
        before = len(entries)
        for language in languages:
            for path in sorted(language.glob("LC_MESSAGES/*.mo")):
                for text, translation in messages_of(path):
                    words = re.findall(r"[A-Za-z0-9]+", text)[:KEY_WORDS]
                    # A bundle's keys are made of few characters.
                    folders = (re.sub(r"\W", "_", name) for name in (language.name, path.stem))
                    stem = "/".join(("", *folders, "".join(map(str.capitalize, words))))
                    if round_number:
                        stem += f"/{round_number}"
                    key, number = stem, 1
                    while key in entries:
                        number += 1
                        key = f"{stem}{number}"
                    entries[key] = translation.strip("\n")  # msgfmt wants both alike
                    if len(entries) == size:
                        return entries
        if len(entries) == before:
            sys.exit("make_catalogs.py: no translations are installed")
        round_number += 1
    return entries


def dictionary_line(key, value):
    for plain, escaped in (("\\", "\\\\"), ("^", "^^"), ('"', '\\"'), ("\n", "\\n"), ("\r", "\\r"),
                           ("\t", "\\t"), ("#{", "#{23}{")):
        value = value.replace(plain, escaped)
    if value.endswith("\\"):
        value += " "  # a backslash there would hide the closing quote
    return f'"$$${key}={value}"\n'


def c_string(text):
    for plain, escaped in (("\\", "\\\\"), ('"', '\\"'), ("\n", "\\n"), ("\r", "\\r"),
                           ("\t", "\\t")):
        text = text.replace(plain, escaped)
    return f'"{text}"'


def write(entries, folder, tool):
    folder.mkdir(parents=True, exist_ok=True)
    names = folder / "texts.dict"
    with names.open("w", encoding="utf-8") as out:
        out.writelines(dictionary_line(key, value) for key, value in entries.items())
    subprocess.run([tool, "compile", names, "-o", folder / "texts.img"], check=True)

    po = folder / "texts.po"
    with po.open("w", encoding="utf-8") as out:
        out.write('msgid ""\nmsgstr "Content-Type: text/plain; charset=UTF-8\\n"\n\n')
        for key, value in entries.items():
            out.write(f"msgid {c_string(key)}\nmsgstr {c_string(value)}\n\n")
    target = folder / "C.UTF-8" / "LC_MESSAGES"
    target.mkdir(parents=True, exist_ok=True)
    subprocess.run(["msgfmt", "-o", target / "texts.mo", po], check=True)

    bundle = folder / "root.txt"
    with bundle.open("w", encoding="utf-8") as out:
        out.write("root:table(nofallback) {\n")
        # Backwards: genrb walks a list from its beginning to the place of each key.
        out.writelines(f'"{key}" {{ {c_string(entries[key])} }}\n'
                       for key in sorted(entries, reverse=True))
        out.write("}\n")
    subprocess.run(["genrb", "-q", "-e", "UTF-8", "-s", folder, "-d", folder, "root.txt"], check=True)
    for path in (po, bundle):
        path.unlink()


def main():
    tool = pathlib.Path(sys.argv[1]) / "pemtext"
    out = pathlib.Path(sys.argv[2])
    for size in SIZES:
        if (out / str(size) / "root.res").exists():
            continue
        print(f"== catalog of {size} texts", flush=True)
        write(catalog(size), out / str(size), tool)


if __name__ == "__main__":
    main()
