"""The goods of a made-up shop, and sales of them."""

import csv
import random
from xml.sax.saxutils import quoteattr

SHOP_CODE = "01"
DATE = "2026-11-21"
CATEGORIES, BRANDS = 20, 30


class Chance:
    """The one source of chance: the same seed gives the same worlds on every machine."""

    def __init__(self, seed):
        self._random = random.Random(seed).random

    def below(self, end):
        """A whole number from 0 to below `end`."""
        return int(self._random() * end)

    def pick(self, things):
        return things[self.below(len(things))]

    def some(self, things, count):
        """`count` different things in an order of chance, or all where there are fewer."""
        left = list(things)
        return [left.pop(self.below(len(left))) for _ in range(min(count, len(left)))]


class Goods:
    """An article of the shop. `price` is in cents."""

    def __init__(self, code, category, brand, price):
        self.code, self.category, self.brand, self.price = code, category, brand, price


class Line:
    """Some pieces of an article on a sale."""

    def __init__(self, goods, count):
        self.goods, self.count = goods, count


def make_goods(chance, count):
    """Articles with numbers as a European shop scans them."""
    return [Goods(f"40{10000000000 + 7919 * number:011d}"[:13], f"C{chance.below(CATEGORIES):02d}",
                  f"B{chance.below(BRANDS):02d}", 79 + 10 * chance.below(190)) for number in range(count)]


def make_lines(chance, goods, count):
    """A sale's lines: different articles, as far as there are so many."""
    chosen = []
    while len(chosen) < count:
        chosen += chance.some(goods, count - len(chosen))
    return [Line(article, 1 + chance.below(4)) for article in chosen]


def element(name, attributes, children=""):
    """An XML element of a pair for each attribute and the text of its children."""
    head = "".join(f" {key}={quoteattr(str(value))}" for key, value in attributes.items())
    return f"<{name}{head}>{children}</{name}>" if children else f"<{name}{head}/>"


def money(cents):
    return f"{cents // 100}.{cents % 100:02d}"


def row_of(line, serial):
    return element("Row", {
        "SerialNo": serial, "PluCode": line.goods.code, "PluType": "PLU", "PluID": 100000 + serial,
        "Price": money(line.goods.price), "PluCount": line.count, "Total": money(line.goods.price * line.count),
        "PackCnt": 1, "CAT": line.goods.category, "BRD": line.goods.brand, "SaleDate": DATE, "SaleTime": "10:30:00"})


def sale_of(groups):
    """A sale XML of its groups' texts."""
    return element("Sale", {"BillNo": "S-1", "OrgCode": SHOP_CODE, "IsCalc": "0"}, groups)


def sale_of_lines(lines, first=1):
    """The sale XML of lines that are numbered from `first` on."""
    return sale_of(element("Plu", {}, "".join(row_of(line, first + place) for place, line in enumerate(lines))))


def read_baskets(path):
    """The invoices of a file of real sales, each a list of lines, and its goods; what was taken back is left out."""
    goods, baskets = {}, {}
    with open(path, encoding="utf-8", newline="") as file:
        for row in csv.DictReader(file):
            cents, pieces = round(float(row["UnitPrice"]) * 100), int(row["Quantity"])
            if pieces <= 0 or cents <= 0:
                continue
            code = row["StockCode"]
            article = goods.setdefault(code, Goods(code, f"C{sum(code.encode()) % CATEGORIES:02d}",
                                                   f"B{sum(code.encode()) % BRANDS:02d}", cents))
            baskets.setdefault(row["InvoiceNo"], []).append(Line(article, pieces))
    return list(baskets.values())
