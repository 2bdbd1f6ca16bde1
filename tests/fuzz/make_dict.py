#!/usr/bin/env python3
"""Writes formats.dict: the words of the sale's and the rules' XML and of the tables' rows, from the engine's sources.

    tests/fuzz/make_dict.py           writes the file anew
    tests/fuzz/make_dict.py --check   fails when it is not what the sources say
"""
import pathlib
import re
import sys

HERE = pathlib.Path(__file__).resolve().parent
ROOT = HERE.parent.parent
OUT = HERE / "formats.dict"
FOLDERS = ("base", "sale", "rule", "promo", "engine")

# A row of a table from name to field; a word that a text is compared with; a word that a constant or a field begins with.
PATTERNS = (
    re.compile(r'\{"([A-Za-z0-9_]+)",\s*\w*(?:Field|Into<\w+>|Column|FromColumn<\w+>)\w*::'),
    re.compile(r'Same(?:IgnoringCase)?\([^"()]*(?:\([^()]*\))?[^"()]*"([A-Za-z0-9_*]+)"'),
    re.compile(r'= "([A-Za-z0-9_*]+)"'),
    re.compile(r'\{"([A-Za-z0-9_]+)",\s*Run\w+,'),
)
# Forms that stand nowhere in the sources, being parts of XML and of numbers.
FORMS = (
    "<Sale ", "</Sale>", "<Row ", "<R ", "/>", "<Plu>", "</Plu>", "<?xml ", "encoding=", "<!--", "-->", "<![CDATA[", "]]>",
    "&#0;", "&#10;", "&#x4E2D;", "&#65534;", "&quot;", "&amp;", "\"", "'", "=\"", "\xef\xbb\xbf", "\xef\xbf\xbe",
    "-1", "0", "0.005", "1e308", "-1e308", "1e-320", "nan", "inf", "1e999", "0x10", "2147483648", "-2147483649",
    "4294967296", "99999999999999", "9007199254740993", "2026-11-21", "2099-12-31", "10:00:00", "23:59:59", "0,6",
    "62000000", "01", "100101", "950101", "300201", "JUICE", "HOUSE",
)  # fmt: skip


def words():
    found = set()
    for folder in FOLDERS:
        for path in sorted((ROOT / folder).rglob("*")):
            if path.suffix in (".cpp", ".h"):
                text = path.read_text(encoding="utf-8")
                for pattern in PATTERNS:
                    found.update(pattern.findall(text))
    for path in sorted((ROOT / "samples/store/rules").glob("*.xml")):
        found.update(re.findall(r'<Rule BillNo="([\w-]+)"', path.read_text(encoding="utf-8")))
    return sorted(found)


def quoted(word):
    escaped = ""
    for byte in word.encode("latin-1"):
        plain = 32 <= byte < 127 and chr(byte) not in '"\\'
        escaped += chr(byte) if plain else f"\\x{byte:02X}"
    return f'"{escaped}"\n'


def main():
    text = "# Made by make_dict.py.\n" + "".join(quoted(word) for word in words() + list(FORMS))
    if sys.argv[1:] == ["--check"]:
        return 0 if OUT.read_text(encoding="ascii") == text else "formats.dict is out of date: tests/fuzz/make_dict.py"
    OUT.write_text(text, encoding="ascii")
    return 0


if __name__ == "__main__":
    sys.exit(main())
