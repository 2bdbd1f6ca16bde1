"""The four table definitions of samples/schema: the same tables, columns, keys and checks, and what the engine's statements
name. What the checks refuse and let in is tried on SQLite, and on MariaDB where a server stands by.

schema_test.py
"""

import itertools
import os
import pathlib
import re
import sqlite3
import subprocess
import unittest

SCHEMA = pathlib.Path(__file__).resolve().parents[2] / "samples" / "schema"
KINDS = ["sqlite", "mysql", "sqlserver", "oracle"]

# What the engine's statements name, and where by: the key that each table is stored by.
TABLES = {
    "tProPrjDirectProAct": (
        "BillNo SerialNo PluCode PluType InRange DscType DscPrice DscRate SaleCount TradeMaxCount",
        "BillNo SerialNo"),
    "tProPrjCombProAct": (
        "BillNo SerialNo SaleCount PriceType PriceTotal ProActCode ProActname IsRequired",
        "BillNo SerialNo"),
    "tProPrjCombPluSet": (
        "BillNo SerialNo ProActCode PluCode PluType SaleCount DscType DscPrice DscRate",
        "BillNo SerialNo"),
    "tProCombConditionAct": ("BillNo SerialNo PluCode PluType SaleCount PriceTotal", "BillNo SerialNo"),
    "tProPrjCombCtrl": ("BillNo SerialNo PriceTotal CountTotal", "BillNo SerialNo"),
    "tpromzlist": ("BillNo ListCode ConAreaType RstAreaType MaxDiscount DscIntoPlu", "BillNo ListCode"),
    "tProMzConPluSet": (
        "BillNo ListCode SerialNo DataId PluCode PluType InRange", "BillNo ListCode SerialNo DataId"),
    "tProMzDiscountAct": (
        "BillNo ListCode DscType BaseMoney BaseDscMoney AddMoney AddDscMoney SaleMaxIn", "BillNo ListCode BaseMoney"),
    "tProMzScheme": (
        "BillNo SerialNo PluCode BaseConType BaseConNum BaseDscType BaseDscNum AddConNum AddDscNum SaleMaxIn DscPrice",
        "BillNo SerialNo"),
    "tProMzPluAct": (
        "BillNo SerialNo DataId PluCode PluType BaseConType BaseConNum BaseDscType BaseDscNum AddConNum AddDscNum "
        "SaleMaxIn", "BillNo SerialNo DataId PluCode"),
}


# The words that a checked column takes, where the empty text is no word but "nothing is said". Every other checked column
# holds numbers, 0 or more.
GOODS, RANGES, UNITS = ("PLU", "CAT", "BRD"), ("IN", "NOT"), ("SUM", "NUM")
WORDS = {
    "tProPrjDirectProAct": {"PluType": GOODS, "InRange": RANGES, "DscType": ("PRC", "RAT", "2")},
    "tProPrjCombProAct": {"PriceType": ("DP", "TC", "2"), "IsRequired": ("0", "1")},
    "tProPrjCombPluSet": {"DscType": ("PRC", "RAT", "2")},
    "tpromzlist": {"ConAreaType": ("ALL", "DES"), "DscIntoPlu": ("0", "1")},
    "tProMzConPluSet": {"PluType": GOODS, "InRange": RANGES},
    "tProMzScheme": {"BaseConType": UNITS, "BaseDscType": UNITS},
    "tProMzPluAct": {"PluType": GOODS, "BaseConType": UNITS, "BaseDscType": UNITS},
}
# A row that any of the checks lets in, which the tests below change in one column.
SOUND = {"DscType": "PRC"}


def definitions_of(kind):
    text = (SCHEMA / f"{kind}.sql").read_text("utf-8")
    return {name: [line.strip() for line in body.strip().splitlines()]
            for name, body in re.findall(r"CREATE TABLE (\w+) \((.*?)\n\)", text, re.DOTALL)}


def tables_of(kind):
    """Columns and key of each table that a definition makes."""
    found = {}
    for name, lines in definitions_of(kind).items():
        columns = [line.split()[0] for line in lines[:-1] if not line.startswith("CHECK")]
        key = re.search(r"PRIMARY KEY (?:CLUSTERED )?\((.*)\)", lines[-1])
        found[name] = (" ".join(columns), key[1].replace(",", ""))
    return found


def checks_of(kind):
    """For each table and checked column its words, or None for numbers."""
    found = {}
    for name, lines in definitions_of(kind).items():
        found[name] = {}
        for line in lines:
            if check := re.search(r"^(\w+) .* CHECK \(\1 (?:(?:BETWEEN|>=) 0|IN \((.*?)\))", line):
                words = check[2] and tuple(word.strip(" '") for word in check[2].split(","))
                found[name][check[1]] = words and tuple(word for word in words if word)
    return found


def insert(table, row):
    """An INSERT of the row; its keys are filled in."""
    row = {**{key: "1" for key in TABLES[table][1].split()}, **{key: value for key, value in SOUND.items()
                                                               if key in TABLES[table][0].split()}, **row}
    if "PluCode" in TABLES[table][0].split():
        row.setdefault("PluCode", "A")
    values = ["NULL" if value is None else "'" + value + "'" for value in row.values()]
    return f"INSERT INTO {table} ({','.join(row)}) VALUES ({','.join(values)})"


def refused_rows():
    """Rows with one value that makes no sense."""
    for table, columns in checks_of("sqlite").items():
        for column, words in columns.items():
            wrong = ["-1", "-0.01"] if not words else ["7"] if words[0].isdigit() else ["PLUS", words[0].lower(), "7"]
            for value in wrong:
                yield table, {column: value}
    yield "tProPrjDirectProAct", {"DscType": ""}


def accepted_rows():
    """Rows that a promotion can use, in every checked column."""
    for table, columns in checks_of("sqlite").items():
        for column, words in columns.items():
            for value in words or ["0", "0.75", "1", "100", "120", "9999999.99"]:
                yield table, {column: value}
            if column not in TABLES[table][1].split() and (table, column) != ("tProPrjDirectProAct", "DscType"):
                yield table, {column: None}
    # Classes of the host's own, goods that are left out, nothing said where nothing is read.
    yield "tProPrjCombPluSet", {"PluType": "SEASON", "DscType": ""}
    yield "tProCombConditionAct", {"PluType": "SEASON"}
    yield "tProPrjDirectProAct", {"InRange": "NOT", "DscType": ""}
    yield "tProPrjCombProAct", {"PriceType": ""}
    yield "tpromzlist", {"RstAreaType": "-"}
    yield "tProMzDiscountAct", {"DscType": "-"}


class Definitions(unittest.TestCase):
    def test_every_kind_has_the_same_tables(self):
        for kind in KINDS:
            with self.subTest(kind=kind):
                self.assertEqual(tables_of(kind), TABLES)

    def test_every_kind_has_the_same_checks(self):
        """Of every number, and of every column of words that is closed."""
        for kind in KINDS:
            with self.subTest(kind=kind):
                checks = checks_of(kind)
                self.assertEqual({name: {column: words for column, words in columns.items() if words}
                                  for name, columns in checks.items()}, {name: WORDS.get(name, {}) for name in TABLES})
                for name, lines in definitions_of(kind).items():
                    numbers = {line.split()[0] for line in lines if re.search(r"\b(REAL|DECIMAL|NUMBER\(18)", line)}
                    self.assertEqual({column for column, words in checks[name].items() if not words}, numbers)

    def test_the_manual_tells_every_column(self):
        manual = (SCHEMA.parents[1] / "docs" / "tables.md").read_text("utf-8")
        sections = dict(re.findall(r"^## (\w+)$(.*?)(?=^## |\Z)", manual, re.DOTALL | re.MULTILINE))
        for table, (columns, _) in TABLES.items():
            for column in set(columns.split()) - {"BillNo"}:
                self.assertIn(f"`{column}`", sections[table], f"{table}.{column}")


class ChecksOnSqlite(unittest.TestCase):
    def setUp(self):
        self.database = sqlite3.connect(":memory:")
        self.addCleanup(self.database.close)
        self.database.executescript((SCHEMA / "sqlite.sql").read_text("utf-8"))

    def put(self, table, row):
        self.database.execute(insert(table, row))
        self.database.rollback()

    def assert_refused(self, table, row):
        with self.subTest(table=table, row=row), self.assertRaisesRegex(sqlite3.IntegrityError, "CHECK"):
            self.put(table, row)

    def test_a_row_that_makes_no_sense_is_refused(self):
        for table, row in refused_rows():
            self.assert_refused(table, row)

    def test_a_text_is_no_number(self):
        """SQLite would keep it, and the engine read 0 from it."""
        for table, columns in checks_of("sqlite").items():
            numbers = [name for name, words in columns.items() if not words]
            for column, value in itertools.product(numbers, ["1,99", "ten", "9e999"]):
                self.assert_refused(table, {column: value})

    def test_a_row_that_makes_sense_gets_in(self):
        for table, row in accepted_rows():
            with self.subTest(table=table, row=row):
                self.put(table, row)


@unittest.skipUnless("MYSQL_UNIX_PORT" in os.environ, "no server stands by")
class ChecksOnMariaDb(unittest.TestCase):
    """With the server of with_mariadb.py."""

    def setUp(self):
        self.run_client("drop database if exists checks; create database checks", check=True)
        self.run_client((SCHEMA / "mysql.sql").read_text("utf-8"), "checks", check=True)

    def run_client(self, statements, *arguments, check=False):
        command = ["mariadb", "--no-defaults", "--user=root", "--socket=" + os.environ["MYSQL_UNIX_PORT"], "--force"]
        return subprocess.run([*command, *arguments], input=statements, check=check, capture_output=True, text=True)

    def put_all(self, rows):
        """Each row by itself; how many there were, and what was said of those that were refused."""
        inserts = [insert(table, row) for table, row in rows]
        run = self.run_client("".join(f"start transaction; {statement}; rollback;\n" for statement in inserts), "checks")
        return len(inserts), [line for line in run.stderr.splitlines() if line.startswith("ERROR")]

    def test_a_row_that_makes_no_sense_is_refused(self):
        number, errors = self.put_all(refused_rows())
        self.assertEqual(len(errors), number, errors)
        self.assertEqual([error for error in errors if "CONSTRAINT" not in error], [])

    def test_a_row_that_makes_sense_gets_in(self):
        self.assertEqual(self.put_all(accepted_rows())[1], [])


if __name__ == "__main__":
    unittest.main(verbosity=2)
