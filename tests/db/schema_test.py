"""The four table definitions of samples/schema: the same tables, columns and keys, and what the engine's statements name.

schema_test.py
"""

import pathlib
import re
import unittest

SCHEMA = pathlib.Path(__file__).resolve().parents[2] / "samples" / "schema"

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


def tables_of(text):
    """Columns and key of each table that a definition makes."""
    found = {}
    for name, body in re.findall(r"CREATE TABLE (\w+) \((.*?)\n\)", text, re.DOTALL):
        lines = [line.strip() for line in body.strip().splitlines()]
        key = re.search(r"PRIMARY KEY (?:CLUSTERED )?\((.*)\)", lines.pop())
        found[name] = (" ".join(line.split()[0] for line in lines), key[1].replace(",", ""))
    return found


class Definitions(unittest.TestCase):
    def test_every_kind_has_the_same_tables(self):
        for kind in ["sqlite", "mysql", "sqlserver", "oracle"]:
            with self.subTest(kind=kind):
                self.assertEqual(tables_of((SCHEMA / f"{kind}.sql").read_text("utf-8")), TABLES)

    def test_the_manual_tells_every_column(self):
        manual = (SCHEMA.parents[1] / "docs" / "tables.md").read_text("utf-8")
        sections = dict(re.findall(r"^## (\w+)$(.*?)(?=^## |\Z)", manual, re.DOTALL | re.MULTILINE))
        for table, (columns, _) in TABLES.items():
            for column in set(columns.split()) - {"BillNo"}:
                self.assertIn(f"`{column}`", sections[table], f"{table}.{column}")


if __name__ == "__main__":
    unittest.main(verbosity=2)
