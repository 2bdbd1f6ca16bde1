"""The library libqncorvane-host, and tills that are played on it: each on an engine and a store of its own."""

import ctypes
import json
import os
import pathlib
import re
import shutil
import sqlite3
import sys
import tempfile
from xml.sax.saxutils import quoteattr

sys.path.append(str(pathlib.Path(__file__).parent.parent / "compare"))

# pylint: disable=wrong-import-position
import stores
from player import bytes_of, load_driver, text_of

LENIENT, JSON, EXPLAIN = 1, 2, 8
OK, TOTAL_OVERFLOW, NUMBER_OVERFLOW = 0, 8, 9
LOG = "QnCorvane.txt"
ENTRY = re.compile(rb"(?:^|\n\r)\d{4}-\d\d-\d\d \d\d:\d\d:\d\d  ")


def free(schema):
    """The tables without keys and without any check: words and amounts that no promotion knows get in."""
    text = stores.loose(schema)
    while (begin := text.find("CHECK (")) >= 0:
        depth, end = 1, begin + len("CHECK (")
        while depth:
            depth += {"(": 1, ")": -1}.get(text[end], 0)
            end += 1
        text = text[:begin] + text[end:]
    return re.sub(r",\s*(?=[,)])", "", re.sub(r"--[^\n]*", "", text))


class Face:
    """The calls of the library. Texts go in and come out as texts; bytes that are no UTF-8 are lone surrogates."""

    def __init__(self, path):
        library = ctypes.CDLL(path)
        place, text, number = ctypes.POINTER(ctypes.c_void_p), ctypes.c_char_p, ctypes.c_uint
        engine = ctypes.c_void_p
        forms = {"qnc_open": [text, place, place], "qnc_close": [engine, place],
                 "qnc_load_rule": [engine, text, text, number, number, place],
                 "qnc_clear_rules": [engine, text, number, place],
                 "qnc_calculate": [engine, text, text, text, number, number, place, place],
                 "qnc_forget_sale": [engine, text, number, place], "qnc_forget_sales": [engine, number, place],
                 "qnc_state": [engine, number, place, place]}
        for name, form in forms.items():
            getattr(library, name).argtypes = form
        library.qnc_free.argtypes = [ctypes.c_void_p]
        self.library, self.engine = library, ctypes.c_void_p()

    def take(self, pointer):
        """A text that the library gave, and gets back."""
        if not pointer.value:
            return None
        text = text_of(ctypes.string_at(pointer.value))
        self.library.qnc_free(pointer)
        return text

    def call(self, name, *arguments):
        """A call that answers nothing but whether it went well: its code and its error."""
        error = ctypes.c_void_p()
        code = getattr(self.library, name)(self.engine, *arguments, error)
        return code, self.take(error)

    def open(self, folder):
        error = ctypes.c_void_p()
        if self.library.qnc_open(folder.encode(), self.engine, error) != OK:
            raise OSError(self.take(error))

    def close(self):
        self.call("qnc_close")

    def load_rule(self, xml):
        return self.call("qnc_load_rule", bytes_of(xml), None, LENIENT, 0)

    def clear_rules(self, number):
        return self.call("qnc_clear_rules", bytes_of(number), 0)

    def calculate(self, key, mode, xml, flags):
        """The code, the error and the result."""
        result = ctypes.c_void_p()
        code, error = self.call("qnc_calculate", bytes_of(key), bytes_of(mode), bytes_of(xml), flags, 0, result)
        return code, error, self.take(result)

    def forget_sale(self, key):
        return self.call("qnc_forget_sale", bytes_of(key), 0)

    def forget_sales(self):
        return self.call("qnc_forget_sales", 0)

    def rules(self):
        """The numbers of the rules in the order of calculation."""
        state = ctypes.c_void_p()
        code, error = self.call("qnc_state", 0, state)
        if code != OK:
            raise OSError(error)
        return json.loads(self.take(state))["rules"]


class Answer:
    """What came of one call of a till."""

    def __init__(self, call, code, error, text=None, log=(), rules=()):
        self.call, self.code, self.error, self.text = call, code, error, text
        self.log, self.rules = log, rules
        self.data = json.loads(text) if text else {}

    @property
    def explanation(self):
        return self.data.get("explanation")


class Counter:
    """A shop's counter: plays tills on one library, in a folder of its own."""

    def __init__(self, library, schema):
        self.face = Face(library)
        load_driver()
        script = pathlib.Path(schema).read_text("utf-8")
        self.templates = {**stores.templates(script), "free": stores.empty_store(free(script))}
        self.home = tempfile.mkdtemp(prefix="qncorvane-explain-")
        self.store, self.log, self.offers = None, None, {}

    def leave(self):
        shutil.rmtree(self.home, ignore_errors=True)

    def play(self, till, flags, upto=None):
        """The answers to a till's calls, `upto` as many. A calculation is asked for with these flags and leniently."""
        self.make_folder(till)
        self.face.open(self.home)
        self.offers = {}
        self.log = os.open(os.path.join(self.home, LOG), os.O_RDWR | os.O_CREAT)
        try:
            return [self.answer(call, flags) for call in till["calls"][:upto]]
        finally:
            self.face.close()
            os.close(self.log)
            if self.store:
                self.store.close()
                self.store = None

    def make_folder(self, till):
        for name in os.listdir(self.home):
            os.unlink(os.path.join(self.home, name))
        kind = till.get("store", "keyed")
        kind = kind if kind in ("keyed", "loose", "free") else "keyed"
        home = pathlib.Path(self.home)
        (home / "config.ini").write_text(stores.settings(kind), "ascii")
        if "goods" in till:
            goods = "".join(element("Row", {"PluCode": code, **row}) for code, row in till["goods"].items())
            (home / "goods.xml").write_text(f"<Goods>{goods}</Goods>", "utf-8")
        (home / stores.STORE).write_bytes(stores.with_rows(self.templates[kind], till["rows"]))

    def answer(self, call, flags):
        kind = call[0]
        if kind in ("CalcPromotion", "Gift"):
            return self.calculation(call, flags)
        code, error = OK, None
        if kind == "InitPromotion":
            code, error = self.face.load_rule(call[2])
        elif kind == "ClearPromotion":
            code, error = self.face.clear_rules(call[1])
        elif kind == "DeleteSaleSetByKey":
            code, error = self.face.forget_sale(call[1])
        elif kind == "ClearSaleSetForNet":
            code, error = self.face.forget_sales()
        elif kind == "Sql":
            code, error = self.change_store(call[1])
        return Answer(call, code, error, None, self.take_log())

    def calculation(self, call, flags):
        call = call if call[0] == "CalcPromotion" else ["CalcPromotion", call[1], "Gift", self.choice(*call[1:])]
        _, key, mode, xml = call
        code, error, text = self.face.calculate(key, mode, xml, LENIENT | flags)
        rules = self.face.rules() if flags & EXPLAIN else ()
        answer = Answer(call, code, error, text, self.take_log(), rules)
        if "sale" in answer.data:
            self.offers[key] = answer.data["sale"].get("ProGifts", [])
        return answer

    def choice(self, key, picks):
        """The XML of a gift choice: the offers as they came, with the picks filled in by their numbers."""
        number = 0
        offers = []
        for offer in self.offers.get(key, []):
            goods = []
            for row in offer["Goods"]:
                row = {**row, "HgPluCount": picks.get(str(number), row["HgPluCount"])}
                goods.append(element("Data", row))
                number += 1
            offers.append(element("ProGift", offer, goods))
        return f"<Sale><ProGifts>{''.join(offers)}</ProGifts></Sale>" if offers else "<Sale/>"

    def change_store(self, statement):
        try:
            self.store = self.store or stores.open_store(os.path.join(self.home, stores.STORE))
            self.store.execute(statement)
            return OK, None
        except sqlite3.Error as error:
            return -1, str(error)

    def take_log(self):
        """The texts of the log's new entries, without their times."""
        size = os.fstat(self.log).st_size
        if size == 0:
            return []
        data = os.pread(self.log, size, 0)
        os.ftruncate(self.log, 0)
        return ENTRY.split(data)


def element(name, attributes, children=()):
    """An element with those of its attributes that are texts or numbers."""
    text = "".join(f" {key}={quoteattr(str(value))}" for key, value in attributes.items()
                   if not isinstance(value, list) and not key.endswith("Cents"))
    return f"<{name}{text}>{''.join(children)}</{name}>"
