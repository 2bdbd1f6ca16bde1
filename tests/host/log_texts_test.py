"""Every text that the engine logs is told in docs/log.md.

log_texts_test.py SOURCES

The texts are found in the sources, wherever they stand: in the arguments of Log(), in what is added to an error report, as
the value of a constant that is used in either, in any literal with Chinese letters (all such texts end in the log or in an
answer), and in a file of nothing but log texts, which has LogText in its name.
"""

import pathlib
import re
import sys
import unittest

SOURCES = pathlib.Path(sys.argv.pop(1)).resolve()
ROOMS = ["base", "db", "engine", "log", "promo", "rule", "sale"]
STRING = r'"(?:[^"\\\n]|\\.)*"'
COMMENT = re.compile(rf"({STRING})|//[^\n]*|/\*.*?\*/", re.DOTALL)


def without_comments(code):
    return COMMENT.sub(lambda found: found[1] or " ", code)


def literals_of(code):
    """The string literals in the code, neighbours joined as the compiler joins them."""
    joined = re.sub(r'(?<!\\)"\s*"', "", re.sub(r'""', '"" ', code))
    texts = (found[1:-1] for found in re.findall(STRING, joined))
    return [re.sub(r"\\(.)", lambda letter: {"n": "\n", "t": "\t"}.get(letter[1], letter[1]), text) for text in texts]


def arguments_of(code, function):
    """What stands between the brackets of each call."""
    for call in re.finditer(rf"\b{function}\(", code):
        depth, place = 1, call.end()
        while depth and place < len(code):
            if string := re.compile(STRING).match(code, place):
                place = string.end()
                continue
            depth += {"(": 1, ")": -1}.get(code[place], 0)
            place += 1
        yield code[call.end():place - 1]


def constants_of(code):
    """Name and texts of each constant that is made from literals."""
    for name, value in re.findall(rf"\b(k[A-Z]\w*)(?:\[\])?\s*(?:=|\(|{{)\s*((?:{STRING}\s*)+)", code):
        yield name, literals_of(value)


def reports_of(code):
    """What is put into an `error`, which the caller logs."""
    return re.findall(rf"\berror\s*(?:\+?=|\.\w+\()((?:{STRING}|[^;\"])*);", code)


def logged_texts(files):
    """The texts of sources, given as a map from name to code."""
    files = {name: without_comments(code) for name, code in files.items()}
    constants = {}
    log_constants = {}
    for file, code in files.items():
        for name, texts in constants_of(code):
            (log_constants if "LogText" in file else constants).setdefault(name, []).extend(texts)
    found = {text for texts in log_constants.values() for text in texts}
    # What a log text is called, another file may call something of its own.
    constants.update(log_constants)
    for code in files.values():
        found.update(text for text in literals_of(code) if re.search("[\u3000-\u9fff\uff00-\uffef]", text))
        for argument in [*arguments_of(code, "Log"), *reports_of(code)]:
            found.update(literals_of(argument))
            for word in re.findall(r"\w+", re.sub(STRING, "", argument)):
                found.update(constants.get(word, []))
    return {text.strip("\n") for text in found if re.search(r"\w", text)}


def told_in(page):
    """The pieces of the page that quote a text: what stands in backquotes."""
    running_text = re.sub(r"^```.*?^```$", "", page, flags=re.DOTALL | re.MULTILINE)
    return [span.replace("\\|", "|") for span in re.findall(r"`([^`]+)`", running_text)]


def is_told(text, spans):
    """One or two plain letters could stand anywhere: they have to be quoted by themselves."""
    return text in spans if len(text) < 3 and text.isascii() else any(text in span for span in spans)


def untold(texts, page):
    spans = told_in(page)
    return sorted(text for text in texts if not is_told(text, spans))


class LogTexts(unittest.TestCase):
    def test_every_text_of_the_sources_is_told(self):
        files = {str(file): file.read_text("utf-8") for room in ROOMS for file in sorted((SOURCES / room).rglob("*"))
                 if file.suffix in (".cpp", ".h")}
        texts = logged_texts(files)
        # So that a change in the sources' ways doesn't make this test find nothing: what it finds today is far more.
        self.assertGreater(len(texts), 70)
        self.assertEqual(untold(texts, (SOURCES / "docs" / "log.md").read_text("utf-8")), [])

    def test_texts_are_found_however_they_are_written(self):
        found = logged_texts({
            "a.cpp": 'void f() { Log(Join("甲：", FormatI(n), ", of ", "b")); Log(ok ? "yes" : "no"); }  // Log("comment")',
            "b.cpp": 'void g() { Log(kText); Log(QStringLiteral("丙") + error); Log(Names::kOther); /* Log("gone") */ }',
            "names.h": 'constexpr const char* kText = "two " "parts";\nconstexpr char kOther[] = "other)";\n'
                       'constexpr const char* kUnused = "unused";',
            "db.cpp": 'const QLatin1String kReason(" why; not"); error += QStringLiteral("丁\\n") + kReason;\n'
                      'run("select 1");',
            "CalcLogText.h": 'inline constexpr Text kBegin{"plain begin"};'})
        self.assertEqual(found, {"甲：", ", of ", "b", "yes", "no", "丙", "two parts", "other)", "丁", " why; not",
                                 "plain begin"})

    def test_a_text_that_is_not_told_is_named(self):
        page = "| `促销类型：T` | `1`, `2` | a\\|b: `x\\|\\|y` |"
        self.assertEqual(untold({"促销类型：", "1", "x||y"}, page), [])
        self.assertEqual(untold({"促销", "3", "会员满足", "pro"}, page), ["3", "pro", "会员满足"])


if __name__ == "__main__":
    unittest.main()
