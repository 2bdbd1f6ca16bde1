"""Sales as a till sends them: lines, members, payments, coupons, and what goes wrong with each."""

import shop
from xmltext import Element, group, written

COUPON_VALUES = ("5", "10.00", "2.5", "0.1", "100", "-1", "x", "16777217")
HUGE = ("2147483647", "99999999999", "-1", "0", "-2147483648", "4294967297", "x", "1.9", "")


class Sale:
    """One open sale: what the till holds of it."""

    def __init__(self, chance, its_shop, key):
        self.chance, self.shop, self.key = chance, its_shop, key
        self.lines = []
        self.header = {"BillNo": f"B-{key}", "OrgCode": shop.ORGANISATION, "IsCalc": chance.weighed(**{"0": 90, "1": 4, "2": 3, "3": 3})}
        self.member = chance.choice(shop.MEMBERS) if chance.happens(35) else None

    def scan(self):
        """A new line, or more of one that is there."""
        serial = len(self.lines) + 1
        line = make_line(self.chance, self.chance.choice(self.shop.goods), serial)
        self.lines.append(line)
        return line

    def change(self):
        """The cashier changes a line: another count, voided, returned."""
        line = self.chance.choice(self.lines) if self.lines else self.scan()
        kind = self.chance.weighed(more=5, voided=3, returned=2, reduced=2, odd=1)
        price = self.chance.choice(self.shop.goods).price
        if kind == "more":
            line.update(counted(line, self.chance.randint(1, 9)))
        elif kind == "voided":
            line.update(PluCount=0, Total=0)
        elif kind == "returned":
            line.update(counted(line, -self.chance.randint(1, 3)))
        elif kind == "reduced":
            line.update(Total=round(price * 0.5, 2))
        else:
            line[self.chance.choice(list(line))] = self.chance.choice([self.chance.nonsense_number(), ""])
        return line

    def groups(self, lines, members=True):
        """The groups of an XML with these lines."""
        groups = [group("Plu", lines)] if lines or self.chance.happens(10) else []
        if self.member and members and self.chance.happens(60):
            groups.append(group("Vip", [{"VipType": self.member}]))
        if self.chance.happens(3):
            groups.append(group("Gift", [gift(self.chance)]))
        return groups

    def xml(self, lines, extra=(), unkempt=10, broken=2):
        """The sale with some of its lines as text."""
        header = dict(self.header)
        if self.chance.odd(1):
            header.pop(self.chance.choice(list(header)))
        return written(self.chance, Element("Sale", header, self.groups(lines) + list(extra)), unkempt, broken)

    def total(self):
        return sum(line["Total"] for line in self.lines if isinstance(line.get("Total"), (int, float)))

    def payments(self):
        """What the customer pays with."""
        rest = max(0.0, self.total())
        rows = []
        for _ in range(self.chance.randint(1, 3)):
            money = self.chance.choice([round(rest, 2), round(rest / 2, 2), 50, 100.5])
            rows.append({"PayMode": self.chance.choice(shop.PAYMENTS), "PayCardNo": self.chance.choice(shop.CARDS),
                         "PayMoney": money if not self.chance.odd(4) else self.chance.nonsense_number()})
        return group("PayMode", rows)

    def coupons(self):
        """The coupons that the customer shows."""
        return group("Coupon", [
            {"BillNo": f"K{number}", "CouponTypeCode": self.chance.choice(shop.COUPONS),
             "CouponValue": self.chance.choice(COUPON_VALUES[:5] if self.chance.tidy else COUPON_VALUES),
             "BgnDate": "2026-11-01", "EndDate": "2026-12-01"}
            for number in range(1, self.chance.randint(1, 3) + 1)])


def counted(line, count):
    """Count and amount of a line at its price."""
    price = line.get("Price")
    price = price if isinstance(price, (int, float)) else 1.0
    return {"PluCount": count, "Total": round(price * count, 2)}


def make_line(chance, goods, serial):
    """A line as it is scanned."""
    count = round(chance.uniform(0.05, 3), 3) if goods.weighed else chance.choice([1, 1, 1, 2, 2, 3, 4, 5, 6, 12])
    line = {"SerialNo": serial, "PluCode": goods.code, "PluType": "PLU", "Price": goods.price, "PluCount": count,
            "Total": round(goods.price * count, 2), "PackCnt": goods.pack, "CAT": goods.category, "BRD": goods.brand,
            "SEASON": goods.season, "SaleDate": shop.DATE, "SaleTime": shop.TIME}
    if chance.happens(10):
        line.update(VipPrice=round(goods.price * 0.9, 2), YhBefore=chance.choice([0, 1.5]), PluID="商品" + goods.code,
                    PluDtId=7.9, PageNo="1", LnNo=serial, ClsId="K", FinalPrice=9.99)
    if chance.odd(8):
        odd_line(chance, line)
    return line


def odd_line(chance, line):
    """Something about a line that a tidy till would not send."""
    kind = chance.weighed(serial=2, missing=3, returned=3, voided=3, discounted=3, value=3, pack=2, price=1)
    if kind == "serial":
        line["SerialNo"] = chance.choice(HUGE)
    elif kind == "missing":
        del line[chance.choice(list(line))]
    elif kind == "returned":
        line.update(counted(line, -1))
    elif kind == "voided":
        line.update(chance.choice([{"PluCount": 0}, {"Total": 0}, {"PluCount": 0, "Total": 0}]))
    elif kind == "discounted":
        line["Total"] = round(line["Total"] * chance.choice([0.5, 0.9, 1.1]), 2)
    elif kind == "pack":
        line["PackCnt"] = chance.choice([0.004, 1.004, 1.005, 0.5, -1, 12, ""])
    elif kind == "price":
        line["Price"] = chance.choice([0, 0.01, 1e7, -5])
    else:
        name = chance.choice(["Price", "PluCount", "Total", "PackCnt", "VipPrice", "YhBefore"])
        line[name] = chance.nonsense_number()


def gift(chance):
    """A gift that the till says it has handed out."""
    return {"SerialNo": "1", "ProBillNo": "MZZP-1", "SaleBillNo": "B-1", "PluCode": "GIFT1",
            "PluCount": chance.choice([1, 2]), "Price": 0, "DscPrice": 0, "Total": 0}
