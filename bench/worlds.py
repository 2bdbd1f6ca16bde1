#!/usr/bin/env python3
"""Makes the worlds of the workloads: for each a folder with settings, a store and the calls of a till.

worlds.py FOLDER [NAME...]    makes FOLDER/NAME for each workload named, for all that need no file without a name

A world holds "config.ini", "store.db" and three files of calls: "open" (once), "pass" (what is measured) and "tidy" (behind
each pass). bench/Calls.h tells their form.
"""

import pathlib
import shutil
import sqlite3
import sys

import rules
import shop
from shop import Chance, element

SCHEMA = pathlib.Path(__file__).resolve().parents[1] / "samples" / "schema"
SETTINGS = "[DataBase]\nDbType=SQLITE\nServiceName=\nDBName=./store.db\nUserName=\nPassword=\nPort=0\n"
KEY = "till-1"
SEED = 20261121
GOODS = 400

# Lines and rules of the workloads that are one subtotal: "All" and "MzPromotion", then the sale is forgotten.
SUBTOTALS = {
    "A": (10, 15), "B": (100, 50), "C": (1, 50),
    "D10": (10, 15), "D40": (40, 15), "D160": (160, 15), "D640": (640, 15),
    "R5": (10, 5), "R20": (10, 20), "R80": (10, 80), "R320": (10, 320),
}
LOADS = {"load1000": 1000, "load10000": 10000}
BASKETS = "baskets"
BASKET_RULES = 40


class World:
    """What a till has before it, and the calls that it makes. A call is a tuple of name and texts."""

    def __init__(self, its_rules, calls, opening=None, tidying=()):
        self.rules, self.calls, self.tidying = its_rules, calls, tidying
        self.opening = loading(its_rules) if opening is None else opening

    def write(self, folder):
        """Makes the folder anew."""
        shutil.rmtree(folder, ignore_errors=True)
        folder.mkdir(parents=True)
        (folder / "config.ini").write_text(SETTINGS, "ascii")
        write_store(folder / "store.db", self.rules)
        for name, calls in {"open": self.opening, "pass": self.calls, "tidy": self.tidying}.items():
            (folder / name).write_bytes(b"".join(map(call_bytes, calls)))


def call_bytes(call):
    name, *texts = call
    encoded = [text.encode() for text in texts]
    head = " ".join([name, *(str(len(text)) for text in encoded)])
    return b"".join([head.encode(), b"\n", *encoded, b"\n"])


def rows_by_table(its_rules):
    """All rows of some rules, those with the same columns together: table, columns, rows of values."""
    found = {}
    for rule in its_rules:
        for table, rows in rule.rows.items():
            for row in rows:
                found.setdefault((table, tuple(row)), []).append(tuple(row.values()))
    return [(table, columns, rows) for (table, columns), rows in found.items()]


def write_store(path, its_rules):
    database = sqlite3.connect(path)
    database.executescript((SCHEMA / "sqlite.sql").read_text("utf-8"))
    for table, columns, rows in rows_by_table(its_rules):
        database.executemany(
            f"INSERT INTO {table} ({','.join(columns)}) VALUES ({','.join('?' * len(columns))})", rows)
    database.commit()
    database.close()


def loading(its_rules):
    return [("BeginInitPro",), *(rule.load() for rule in its_rules), ("FinishInitPro",)]


def calculation(mode, sale, key=KEY):
    return ("CalcPromotion", key, mode, sale)


def subtotal(lines):
    """A sale's subtotal from nothing to the last full-amount promotion, and its end."""
    return [calculation("All", shop.sale_of_lines(lines)), calculation("MzPromotion", shop.sale_of("")),
            ("DeleteSaleSetByKey", KEY)]


def subtotal_world(lines, rule_count):
    chance = Chance(SEED)
    goods = shop.make_goods(chance, GOODS)
    return World(rules.mixed(chance, goods, rule_count), subtotal(shop.make_lines(chance, goods, lines)))


def offer(rule, code, base, price, picked):
    """A gift rule's offer as the till gives it back, with what the customer picked of it."""
    data = element("Data", {
        "SerialNo": 1, "PluCode": code, "PluType": "PLU", "BaseConTp": "SUM", "BaseConNum": f"{base}.00",
        "BaseDscTp": "NUM", "BaseDscNum": "1.00", "AddConNum": "0.00", "AddDscNum": "0.00", "SaleMaxIn": "1.00",
        "DscPrice": f"{price}.00", "HgPluCount": f"{picked}.00", "CanPart": 1, "Price": "0.00"})
    return element("ProGift", {"ProBillNo": rule, "Total": "200.00", "LeftTotal": "200.00", "UsedTotal": "0.00"}, data)


def whole_till(lines):
    """One customer: the lines are scanned, then subtotal, full amount, gift, payment, coupons."""
    gifts = offer("MZZP-1", "900101", 60, 0, 1) + offer("MZHG-1", "900201", 30, 2, 0)
    payment = element("Row", {"PayMode": "CARD", "PayCardNo": "6212345678901234", "PayMoney": "200.00"})
    coupon = element("Row", {"BillNo": "MZZQ-1", "CouponTypeCode": "C5", "CouponValue": "5.00",
                             "BgnDate": "2024-05-01", "EndDate": "2099-12-31"})
    steps = [("All", shop.sale_of_lines(lines)), ("MzPromotion", shop.sale_of("")),
             ("Gift", shop.sale_of(element("ProGifts", {}, gifts))),
             ("Pay", shop.sale_of(element("PayMode", {}, payment))),
             ("Coupon", shop.sale_of(element("Coupon", {}, coupon * 2)))]
    scans = [("Single", shop.sale_of_lines([line], serial)) for serial, line in enumerate(lines, 1)]
    return [*(calculation(mode, sale) for mode, sale in scans + steps), ("DeleteSaleSetByKey", KEY)]


def till_world():
    """The rules name what is sold here, so that each of them has something to do."""
    chance = Chance(SEED)
    goods = shop.make_goods(chance, GOODS)
    sold = shop.make_lines(chance, goods, 20)
    named = [line.goods for line in sold]
    named += chance.some([article for article in goods if article not in named], 9 * rules.GOODS_OF_A_RULE - len(sold))
    for line in sold:
        line.count = 3 + chance.below(3)
    return World(rules.of_every_kind(chance, named), whole_till(sold))


def load_world(count):
    """Rules are loaded from the first to the last; behind it they are dropped."""
    chance = Chance(SEED)
    its_rules = rules.mixed(chance, shop.make_goods(chance, GOODS), count)
    return World([], loading(its_rules), opening=[], tidying=[("ClearPromotion", "*")])


def baskets_world(path, every):
    """Every so manieth real basket of a file, against rules over the file's goods, those sold often named more often."""
    chance = Chance(SEED)
    baskets = shop.read_baskets(path)
    sold = [line.goods for basket in baskets for line in basket]
    names = list({article.code: article for article in chance.some(sold, 2000)}.values())
    calls = [call for basket in baskets[::every] for call in subtotal(basket)]
    return World(rules.mixed(chance, names, BASKET_RULES), calls)


def make(name, baskets=None, every=1):
    """The world of a workload. `baskets` is the file that the workload of that name needs."""
    if name in SUBTOTALS:
        return subtotal_world(*SUBTOTALS[name])
    if name in LOADS:
        return load_world(LOADS[name])
    if name == BASKETS:
        return baskets_world(baskets, every)
    if name == "till":
        return till_world()
    raise ValueError(f"no workload {name}")


def title(name):
    """What a workload is, in a few words."""
    if name in SUBTOTALS:
        lines, rule_count = SUBTOTALS[name]
        return f"{lines} line{'s' if lines > 1 else ''} x {rule_count} rules"
    if name in LOADS:
        return f"loading {LOADS[name]:,} rules"
    return {"till": "a whole till, all fifteen types", BASKETS: f"real baskets x {BASKET_RULES} rules"}[name]


def main():
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    folder = pathlib.Path(sys.argv[1])
    for name in sys.argv[2:] or [*SUBTOTALS, "till", *LOADS]:
        make(name).write(folder / name)


if __name__ == "__main__":
    main()
