"""The table of texts for explanations: whole, in both languages alike, in the library as it lies in the sources, and the same
as what the pages say.

texts_test.py HOST_LIBRARY SOURCES
"""

import ctypes
import json
import pathlib
import re
import runpy
import subprocess
import sys
import unittest

LIBRARY = pathlib.Path(sys.argv.pop(1)).resolve()
SOURCES = pathlib.Path(sys.argv.pop(1)).resolve()
FILE = SOURCES / "texts" / "explanations.json"
SCRIPT = SOURCES / "scripts" / "make_texts.py"
TABLE = json.loads(FILE.read_text("utf-8"))
SCHEMA = json.loads((SOURCES / "docs" / "explanation.schema.json").read_text("utf-8"))["definitions"]
REASONS = SCHEMA["reason"]["enum"]
UNITS = [unit for unit in SCHEMA["unit"]["enum"] if unit]
FIELDS_OF_A_DECISION = {"rule", "goods", "lines", "have", "need", "missing", "slot", "row", "tier", "unit", "rules"}
FIELDS = {
    "reasons": FIELDS_OF_A_DECISION,
    "advice": FIELDS_OF_A_DECISION - {"rules"},
    "phrases": {"goods", "rules", "rule", "class", "first", "second", "from", "to", "money", "rule_money", "count", "text",
                "row", "tier", "slot", "lines", "label", "mode", "pass", "kind", "add", "brings", "price"},
    "headings": {"sale", "shop", "time", "member", "modes", "line", "type", "kind", "class"},
    "steps": {"name"},
}
TYPES = ["PTXS", "PTPL", "PTOS", "ZHZY", "ZHZX", "ZHTJ", "ZHGD", "MZMJ", "MZDP", "MZZM", "MZZP", "MZHG", "MZZQ", "MZZF",
         "MZYQ"]


def entries():
    """Section, key and entry of every text."""
    for section, texts in TABLE.items():
        if section != "version":
            yield from ((section, key, entry) for key, entry in texts.items())


def fields_of(text):
    return sorted(re.findall(r"\{([^}]*)\}", text))


def base(key):
    return key.split(".")[0]


class Table(unittest.TestCase):
    def test_the_library_gives_the_file(self):
        library = ctypes.CDLL(str(LIBRARY))
        library.qnc_texts.restype = ctypes.c_char_p
        library.qnc_texts.argtypes = []
        self.assertEqual(library.qnc_texts(), FILE.read_bytes())

    def test_no_text_is_there_twice(self):
        def distinct(pairs):
            names = [name for name, _ in pairs]
            self.assertEqual(sorted(set(names)), sorted(names))
            return dict(pairs)

        json.loads(FILE.read_text("utf-8"), object_pairs_hook=distinct)

    def test_every_reason_has_a_sentence_and_nothing_else_has_one(self):
        self.assertEqual(TABLE["version"], 1)
        self.assertEqual([key for key in TABLE["reasons"] if "." not in key], REASONS)

    def test_variants_and_advice_are_of_reasons_and_units(self):
        ends = {*UNITS, "taken", "many"}
        for section in ("reasons", "advice"):
            for key in TABLE[section]:
                with self.subTest(key):
                    self.assertIn(base(key), REASONS)
                    self.assertLessEqual(set(key.split(".")[1:]), ends)

    def test_variants_stand_behind_their_reason(self):
        places = [REASONS.index(base(key)) for key in TABLE["reasons"]]
        self.assertEqual(places, sorted(places))

    def test_both_languages_are_there_and_nothing_unknown(self):
        for section, key, entry in entries():
            with self.subTest(f"{section} {key}"):
                self.assertTrue(entry["en"].strip() and entry["zh"].strip())
                allowed = {"en", "zh"}
                if section == "reasons" and "." not in key:
                    allowed |= {"meaning", "log"}
                    self.assertTrue(entry["meaning"])
                self.assertLessEqual(set(entry), allowed)

    def test_chinese_is_chinese_and_english_is_not(self):
        chinese = re.compile("[\u4e00-\u9fff]")
        for section, key, entry in entries():
            with self.subTest(f"{section} {key}"):
                self.assertIsNone(chinese.search(entry["en"]))
                letters = re.sub(r"\{[^}]*\}", "", entry["zh"])
                has_words = re.search(r"[a-z]{2}", re.sub(r"\{[^}]*\}", "", entry["en"]), re.IGNORECASE)
                if section == "reasons" or has_words and key != "and":
                    self.assertIsNotNone(chinese.search(letters))

    def test_both_languages_have_the_same_fields_and_all_are_known(self):
        for section, key, entry in entries():
            with self.subTest(f"{section} {key}"):
                self.assertEqual(fields_of(entry["en"]), fields_of(entry["zh"]))
                self.assertLessEqual(set(fields_of(entry["en"])), FIELDS.get(section, set()))
                for language in ("en", "zh"):
                    self.assertNotRegex(re.sub(r"\{[a-z_]+\}", "", entry[language]), "[{}]")

    def test_what_shops_call_things_is_complete(self):
        self.assertEqual(list(TABLE["types"]), TYPES)
        self.assertEqual(list(TABLE["passes"]), SCHEMA["pass"]["properties"]["kind"]["enum"])
        self.assertEqual(list(TABLE["weekdays"]), list("0123456"))
        self.assertEqual(list(TABLE["units"]), UNITS)
        self.assertEqual(list(TABLE["steps"]), SCHEMA["step"]["properties"]["kind"]["enum"])


    def test_what_the_program_says_stands_in_the_table_alone(self):
        code = "".join(file.read_text("utf-8") for file in sorted((SOURCES / "tools").glob("*Explain*.cpp")))
        code += (SOURCES / "tools" / "Sentences.cpp").read_text("utf-8")
        literals = re.findall(r'"((?:[^"\\\n]|\\.)*)"', code)
        # The refusals of a command line, which are English as all of them are.
        refusals = {"no rule has the number '", "'; the rules are ", "the sale has no line ", "; its lines are ",
                    "; 'qncorvane lint' tells what keeps a rule from being among them"}
        sentences = {text for text in literals if re.search("[a-zA-Z] [a-zA-Z]|[^\x00-\x7f]", text)}
        self.assertEqual(sentences - refusals, set())
        for section in ("phrases", "headings"):
            for key in TABLE[section]:
                with self.subTest(key):
                    self.assertTrue(any(text == base(key) or text.startswith(base(key) + ".") for text in literals))


class Pages(unittest.TestCase):
    def setUp(self):
        self.script = runpy.run_path(str(SCRIPT))

    def test_the_pages_say_what_the_table_says(self):
        run = subprocess.run([sys.executable, "-B", SCRIPT, "--check"], capture_output=True, text=True, check=False)
        self.assertEqual((run.returncode, run.stderr), (0, ""))

    def test_a_page_that_differs_is_written_anew(self):
        for page, told, right, wrong in (
            ("explanations.md", self.script["told_reasons"], TABLE["reasons"]["NoTimes"]["meaning"], "another meaning"),
            ("log.md", self.script["told_log"], TABLE["reasons"]["MemberOther"]["meaning"], "another meaning"),
        ):
            text = (SOURCES / "docs" / page).read_text("utf-8")
            changed = text.replace(f"| {right}", f"| {wrong}")
            self.assertNotEqual(changed, text, page)
            self.assertEqual(told(changed, TABLE), text)

    def test_log_entries_of_reasons_are_texts_of_the_log_and_stand_in_the_glossary(self):
        header = (SOURCES / "log" / "LogTexts.h").read_text("utf-8")
        texts = re.findall(r'constexpr Text \w+ = "([^"]*)";', header)
        self.assertGreater(len(texts), 70)
        named = {text: key for _, key, entry in entries() for text in entry.get("log", [])}
        self.assertGreaterEqual(len(named), 9)
        glossary = (SOURCES / "docs" / "log.md").read_text("utf-8")
        for text, key in named.items():
            with self.subTest(text):
                self.assertIn(text, texts)
                self.assertRegex(glossary, rf"(?m)^\| `{re.escape(text)}[^\n]*\({key}\)")


if __name__ == "__main__":
    unittest.main()
