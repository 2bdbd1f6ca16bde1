"""Rules of all types: what is loaded as XML, and the rows that go with it in the store."""

import shop
from xmltext import Element, group, written

TYPES = ("PTXS", "PTPL", "PTOS", "ZHZY", "ZHGD", "ZHTJ", "ZHZX", "MZMJ", "MZDP", "MZZM", "MZZP", "MZHG", "MZZQ",
         "MZZF", "MZYQ")
DAY = {"StartDate": "2020-01-01", "EndDate": "2099-12-31", "StartTime": "", "EndTime": "", "Frequency": "DAY",
       "WeekDays": "", "MonthDays": ""}


class Rule:
    """A rule: the type that it is loaded as, its XML, its rows."""

    def __init__(self, number, kind, load, xml, rows):
        self.number, self.kind, self.load, self.xml, self.rows = number, kind, load, xml, rows

    def call(self):
        return ["InitPromotion", self.load, self.xml]


def make_rule(chance, its_shop, number, kind, date=None):
    """A rule of a type, with all that may be odd about one; `date` is its `JzDate`, or it gets one of a few."""
    rows = DETAILS[kind](chance, its_shop) if kind in DETAILS else {}
    for table_rows in rows.values():
        for row in table_rows:
            row["BillNo"] = number
            spoil(chance, row)
    groups = filters(chance) + (OWN_GROUPS[kind](chance, its_shop) if kind in OWN_GROUPS else [])
    xml = written(chance, Element("Rules", (), [Element("Rule", header(chance, its_shop, number, kind, date), groups)]))
    return Rule(number, kind, load_type(chance, kind), xml, rows)


def load_type(chance, kind):
    """The type word of the load: coupons are given by rules that are loaded as those that take them."""
    if chance.odd(3):
        return chance.choice(TYPES + ("ptxs", "XXXX", "", "MZZQ", None))
    return "MZYQ" if kind == "MZZQ" else kind


def header(chance, its_shop, number, kind, date=None):
    """The header's attributes."""
    limit = chance.weighed(none=60, money=20, count=20)
    value = {"none": 0, "money": chance.money(its_shop.price(chance) * 2), "count": chance.choice([1, 2, 3, 5, 1.5])}
    attributes = {
        "BillNo": number, "OrgCode": shop.ORGANISATION, "ProType": kind, "ProMode": kind[:2], "ProStatus": "1",
        "Primary": chance.weighed(DZ=25, PT=40, DJ=35), "JzDate": date or f"2026-0{chance.randint(1, 4)}-01",
        "MaxYhType": {"none": chance.choice(["0", ""]), "money": "1", "count": "2"}[limit],
        "MaxYhValue": value[limit],
        "Remark": chance.weighed(none=93, DVCZK=4, NVCZK=3).replace("none", ""),
    }
    # In mode "Coupon" nothing but the load's type counts, so there a foreign type in the header goes far.
    if chance.odd(10 if kind == "MZYQ" else 3):
        family = [other for other in TYPES if other[:2] == kind[:2]]
        attributes["ProType"] = chance.choice(family if chance.happens(60) else TYPES)
    if chance.odd(4):
        odd_header(chance, attributes)
    return attributes


def odd_header(chance, attributes):
    """Something in a header that should not be there, or is not."""
    name = chance.choice(list(attributes))
    kind = chance.weighed(missing=4, type=2, value=3)
    if kind == "missing":
        del attributes[name]
    elif kind == "type":
        attributes["ProType"] = chance.choice(["ptxs", "", "PTXS ", "MZ", None])
    elif name == "MaxYhValue":
        attributes[name] = chance.nonsense_number()
    else:
        attributes[name] = chance.nonsense_text()


def filters(chance):
    """The groups that say when, where and for whom."""
    groups = [group("OrgFilter", organisations(chance)), group("ProTime", times(chance))]
    if chance.happens(15):
        groups.append(group("Vip", [{"VipType": chance.choice(shop.MEMBERS + ("*",))}
                                    for _ in range(chance.randint(1, 2))]))
    if chance.happens(8):
        groups.append(group("PayMode", [payment_row(chance) for _ in range(chance.randint(1, 2))]))
    if chance.happens(10):
        chance.shuffle(groups)
    return groups


def organisations(chance):
    if chance.happens(93):
        return [{"OrgCode": chance.choice(["*", shop.ORGANISATION])}]
    return [{"OrgCode": code} for code in chance.some(["S02", "", "s01", "S01", "*"], 0, 2)]


def times(chance):
    if chance.happens(85):
        return [DAY]
    return [odd_time(chance) for _ in range(chance.randint(0, 3))]


def odd_time(chance):
    """A row that holds at some times and not at others."""
    row = dict(DAY)
    if chance.happens(40):
        row.update(Frequency="WEEK", WeekDays=chance.choice(["6", "0,6", "1,2,3", "", "16", "6,"]))
    if chance.happens(40):
        row.update(StartTime=chance.choice(["08:00:00", "10:30:00", "10:30:01", "1"]),
                   EndTime=chance.choice(["12:00:00", "10:30:00", "09:00:00", ""]))
    if chance.happens(30):
        row.update(StartDate=chance.choice(["2026-11-21", "2026-11-22", "", "x"]))
    if chance.happens(30):
        row.update(EndDate=chance.choice(["2026-11-21", "2026-11-20", ""]))
    return row


def payment_row(chance):
    return {"PayMode": chance.choice(shop.PAYMENTS + ("*",)), "PayCardNo": "",
            "PayMoney": chance.choice([0, 10, 50, 0.004, 0.01])}


def spoil(chance, row):
    """With a row in twenty-five, one value that makes no sense."""
    if not chance.odd(4):
        return
    column = chance.choice([name for name in row if name != "BillNo"])
    number = isinstance(row[column], (int, float))
    row[column] = chance.nonsense_number() if number else chance.nonsense_text()


def rows_of(chance, least, most, make):
    """A few rows with numbers of their own."""
    rows = [make(serial) for serial in range(1, chance.randint(least, most) + 1)]
    if chance.odd(2):
        rows[-1]["SerialNo"] = chance.choice([0, -1, 2147483647, 99999999999, 1])
    return rows


def discount(chance, its_shop):
    """The three columns that say what goods get."""
    kind = chance.weighed(PRC=45, RAT=35, two=20, odd=1)
    price = its_shop.price(chance)
    return {
        "DscType": {"two": "2", "odd": ""}.get(kind, kind),
        "DscPrice": round(price * chance.choice([0, 0.3, 0.5, 0.8, 0.95, 1, 1.2]), 2) if kind == "PRC"
        else round(price * chance.choice([0.05, 0.1, 0.333, 1]), 2),
        "DscRate": chance.choice([10, 20, 33.33, 50, 5.5, 100, 120, 0]),
    }


def in_range(chance):
    return "NOT" if chance.happens(10) else "IN"


def direct(chance, its_shop):
    """PTXS, PTPL, PTOS."""
    def make(serial):
        code, kind = its_shop.named(chance, 30)
        return {"SerialNo": serial, "PluCode": code, "PluType": kind, "InRange": in_range(chance),
                **discount(chance, its_shop), "SaleCount": chance.choice([1, 1, 2, 2, 3, 0]),
                "TradeMaxCount": chance.choice([0, 0, 0, 1, 2, 3, 1.5])}

    return {"tProPrjDirectProAct": rows_of(chance, 1, 4, make)}


def free_combination(chance, its_shop):
    """ZHZY: tiers, and goods that may be mixed."""
    def tier(serial):
        count = chance.choice([1, 1, 2, 2, 2, 3, 3, 4, 2.5, 0.5])
        kind = chance.weighed(DP=5, TC=3, two=3).replace("two", "2")
        total = its_shop.price(chance) * count
        return {"SerialNo": serial, "SaleCount": count, "PriceType": kind,
                "PriceTotal": chance.choice([10, 20, 33, 100]) if kind == "TC"
                else round(total * (chance.choice([0.05, 0.2]) if kind == "2" else chance.choice([0.4, 0.8, 1.1])), 2)}

    def goods(serial):
        code, kind = its_shop.named(chance, 40)
        return {"SerialNo": serial, "PluCode": code, "PluType": kind}

    return {"tProPrjCombProAct": rows_of(chance, 1, 3, tier), "tProPrjCombPluSet": rows_of(chance, 1, 4, goods)}


def fixed_combination(chance, its_shop):
    """ZHGD: articles that have to be there together."""
    codes = its_shop.articles(chance, 1, 3) or ["A1"]
    total = sum(goods.price for goods in its_shop.goods if goods.code in codes)
    form = {"SerialNo": 1, "PriceType": chance.weighed(DP=5, TC=5, odd=1),
            "PriceTotal": round(total * chance.choice([0.5, 0.77, 0.9, 1, 1.5]), 2), "SaleCount": 1}

    def article(serial):
        return {"SerialNo": serial, "PluCode": codes[(serial - 1) % len(codes)], "PluType": "PLU",
                "SaleCount": chance.choice([1, 1, 1, 1, 1, 1, 2, 2, 3, 0, 0.5]),
                "DscPrice": round(its_shop.price(chance) * chance.choice([0.5, 0.8, 0.99, 1.2]), 2)}

    return {"tProPrjCombProAct": [form], "tProPrjCombPluSet": [article(serial + 1) for serial in range(len(codes))]}


def conditional_combination(chance, its_shop):
    """ZHTJ: goods that get cheaper when others are bought."""
    def condition(serial):
        code, kind = its_shop.named(chance, 50)
        return {"SerialNo": serial, "PluCode": code, "PluType": kind, "SaleCount": chance.choice([0, 1, 1, 2, 3]),
                "PriceTotal": chance.choice([0, 0, 0, round(its_shop.price(chance) * 2, 2)])}

    def demand(serial):
        return {"SerialNo": serial, "PriceTotal": chance.choice([0, 0, round(its_shop.price(chance) * 3, 2)]),
                "CountTotal": chance.choice([0, 1, 2, 5])}

    def goods(serial):
        code, kind = its_shop.named(chance, 50)
        return {"SerialNo": serial, "PluCode": code, "PluType": kind, "SaleCount": chance.choice([0, 1]),
                **discount(chance, its_shop)}

    rows = {"tProPrjCombPluSet": rows_of(chance, 1, 3, goods)}
    if chance.happens(85):
        rows["tProCombConditionAct"] = rows_of(chance, 1, 2, condition)
    if chance.happens(40):
        rows["tProPrjCombCtrl"] = rows_of(chance, 1, 2, demand)
    return rows


def menu(chance, its_shop):
    """ZHZX: slots, and what each offers."""
    slots = [f"SLOT{number}" for number in range(1, chance.randint(1, 3) + 1)]
    acts = [{"SerialNo": number, "ProActCode": slot, "ProActname": "饮料" if number == 1 else slot,
             "IsRequired": int(chance.happens(65))} for number, slot in enumerate(slots, 1)]

    def offer(serial):
        code, kind = its_shop.named(chance, 5)
        return {"SerialNo": serial, "ProActCode": chance.choice(slots), "PluCode": code, "PluType": kind,
                "SaleCount": chance.choice([1, 1, 1, 1, 1, 1, 2, 2, 3, 0, 0.5]),
                "DscPrice": round(its_shop.price(chance) * chance.choice([0.5, 0.8, 0.95, 1.2]), 2)}

    return {"tProPrjCombProAct": acts, "tProPrjCombPluSet": rows_of(chance, 2, 6, offer)}


def unit_of(chance, pieces):
    """What a threshold or a gift is counted in: pieces with so many percent, otherwise money, seldom nothing known."""
    if chance.odd(1.5):
        return chance.choice(["", "num", "PRC"])
    return "NUM" if chance.happens(pieces) else "SUM"


def steps(chance, its_shop, unit):
    """Threshold, what it gives, and further steps, in money or in pieces."""
    if unit == "NUM":
        return {"BaseConNum": chance.choice([1, 1, 2, 3, 0]), "AddConNum": chance.choice([0, 0, 1, 2]),
                "SaleMaxIn": chance.choice([0, 0, 0, 2, 5])}
    base = round(its_shop.price(chance) * chance.choice([0.5, 1, 1, 2, 3]), chance.choice([0, 2]))
    return {"BaseConNum": chance.choice([base, base, base, 10, 0]),
            # A step of next to nothing is taken more often than any engine should go along with.
            "AddConNum": 1e-7 if chance.odd(1) else chance.choice([0, 0, round(base / 2, 2), 10]),
            "SaleMaxIn": chance.choice([0, 0, 0, round(base * 2.5, 2)])}


def gain(chance, its_shop, unit):
    """What a tier gives, in money or in pieces."""
    if unit == "NUM":
        return {"BaseDscNum": chance.choice([1, 1, 2, 0.5]), "AddDscNum": chance.choice([0, 1, 2])}
    return {"BaseDscNum": chance.money(its_shop.price(chance) * 0.5), "AddDscNum": chance.choice([0, 1, 2.5, 0.33])}


def counting_goods(chance, its_shop, lists):
    """Rows of goods that count towards a threshold."""
    def make(serial):
        code, kind = its_shop.named(chance, 50)
        return {"SerialNo": serial, "ListCode": chance.choice(lists), "DataId": chance.choice(["0", "0", "1"]),
                "PluCode": code, "PluType": kind, "InRange": in_range(chance)}

    return rows_of(chance, 1, 3, make)


def reduction(chance, its_shop):
    """MZMJ: offers with tiers."""
    lists = [f"L{number}" for number in range(1, chance.randint(1, 2) + 1)]
    offers = [{"ListCode": code, "ConAreaType": chance.weighed(ALL=5, DES=5, odd=0.3), "RstAreaType": "ALL",
               "MaxDiscount": chance.choice([0, 0, chance.money(20)]), "DscIntoPlu": chance.choice(["0", "1", ""])}
              for code in lists]
    tiers = []
    for code in lists:
        for _ in range(chance.randint(0 if chance.happens(5) else 1, 3)):
            step, given = steps(chance, its_shop, "SUM"), gain(chance, its_shop, "SUM")
            tiers.append({"ListCode": code, "DscType": "PRC", "BaseMoney": step["BaseConNum"],
                          "BaseDscMoney": given["BaseDscNum"], "AddMoney": step["AddConNum"],
                          "AddDscMoney": given["AddDscNum"], "SaleMaxIn": step["SaleMaxIn"]})
    return {"tpromzlist": offers, "tProMzDiscountAct": tiers, "tProMzConPluSet": counting_goods(chance, its_shop, lists)}


def scheme(chance, its_shop, priced, of_sale):
    """Tiers with one article each: gifts, purchases, goods free. `of_sale`: the article is one of the shop's goods."""
    def make(serial):
        unit, given = unit_of(chance, 40), unit_of(chance, 70)
        return {"SerialNo": serial, "PluCode": chance.choice(its_shop.goods).code if of_sale else f"GIFT{serial}",
                "BaseConType": unit, **steps(chance, its_shop, unit), "BaseDscType": given,
                **gain(chance, its_shop, given), "DscPrice": chance.money(10) if chance.happens(priced) else 0}

    rows = {"tProMzScheme": rows_of(chance, 1, 3, make)}
    if chance.happens(45):
        rows["tProMzConPluSet"] = counting_goods(chance, its_shop, ["0", "L1"])
    return rows


def single_giving(chance, its_shop):
    """MZDP: buy some, get some."""
    def make(serial):
        unit, given = unit_of(chance, 70), unit_of(chance, 70)
        code, kind = its_shop.named(chance, 40)
        return {"SerialNo": serial, "DataId": chance.choice(["0", "1"]), "PluCode": code, "PluType": kind,
                "BaseConType": unit, **steps(chance, its_shop, unit), "BaseDscType": given,
                **gain(chance, its_shop, given)}

    return {"tProMzPluAct": rows_of(chance, 1, 3, make)}


DETAILS = {
    "PTXS": direct, "PTPL": direct, "PTOS": direct,
    "ZHZY": free_combination, "ZHGD": fixed_combination, "ZHTJ": conditional_combination, "ZHZX": menu,
    "MZMJ": reduction, "MZDP": single_giving,
    "MZZM": lambda chance, its_shop: scheme(chance, its_shop, 10, True),
    "MZZP": lambda chance, its_shop: scheme(chance, its_shop, 10, chance.happens(30)),
    "MZHG": lambda chance, its_shop: scheme(chance, its_shop, 85, chance.happens(30)),
}


def coupon_lists(chance, its_shop):
    """MZZQ, MZYQ: offers of coupons, all in the XML."""
    return [coupon_list(chance, its_shop) for _ in range(1 if chance.happens(70) else 2)]


def coupon_list(chance, its_shop):
    attributes = {"ConAreaType": chance.weighed(ALL=6, DES=4, odd=0.3), "RstAreaType": "ALL",
                  "MaxDiscount": chance.choice([0, 0, 10, 20.5]), "CouponTypeCode": chance.choice(shop.COUPONS),
                  "DscIntoPlu": chance.choice(["0", "1"])}
    children = [group("PluCondition", coupon_goods(chance, its_shop)),
                group("PluAddAction", coupon_tiers(chance, its_shop))]
    if chance.happens(80):
        children.append(Element("CouponType", coupon_type(chance)))
    if chance.happens(60):
        children.append(group("CouponDenomination", [
            {"Denomination": value, "CouponDenomiCode": str(value), "CouponUnit": ""}
            for value in chance.some([50, 20, 10, 5, 1, 0.5, 0, -1], 1, 3)]))
    return Element("ProList", attributes, children)


def coupon_goods(chance, its_shop):
    rows = []
    for serial in range(1, chance.randint(1, 3) + 1):
        code, kind = its_shop.named(chance, 50)
        rows.append({"SerialNo": serial, "PluCode": code, "PluType": kind, "Contain": in_range(chance)})
    return rows


def coupon_tiers(chance, its_shop):
    rows = []
    for serial in range(1, chance.randint(1, 3) + 1):
        row = {"SerialNo": serial, "BaseConTp": "SUM", "BaseDscTp": "SUM", **steps(chance, its_shop, "SUM"),
               **gain(chance, its_shop, "SUM")}
        spoil(chance, row)
        rows.append(row)
    return rows


def coupon_type(chance):
    attributes = {"CouponTypeCode": chance.choice(shop.COUPONS), "CouponTypeName": "下次", "BgnDate": coupon_day(chance),
                  "EndDate": coupon_day(chance), "LimitType": chance.choice(["0", "1", "2", ""]),
                  "LimitDay": chance.choice([0, 1, 30, 365, -1, 10000]), "PayType": "", "BillNoRule": "R"}
    for presence in ("IsDenom", "IsCheck", "IsTrack"):
        if chance.happens(50):
            attributes[presence] = chance.choice(["0", "1", "false"])
    return attributes


def coupon_day(chance):
    return chance.choice(["2026-11-21", "2026-12-31", "2024-02-29", "", "2026-11-21 10:00:00", "x", "2026-1-1"])


def pay_groups(chance, its_shop):
    """MZZF: all that a reduction for a payment asks for and gives."""
    groups = [group("ProCtr", [{"SerialNo": 1, "WholeBillPay": chance.choice(["0", "0", "1"]),
                                "PayType": chance.choice(shop.PAYMENTS),
                                "PriceTotal": chance.choice([5, 20, 50.5, 1000, 0])}]),
              group("PluAction", pay_steps(chance, its_shop))]
    if chance.happens(5):
        groups[1].attributes = [("ActionType", chance.choice(["TC", "DP"])), ("PrjTotal", "25")]
    if chance.happens(40):
        groups.append(group("CardNoFilter", [{"SerialNo": 1, "BgnCardNo": chance.choice(["6200", "4000", ""]),
                                              "EndCardNo": chance.choice(["6299", "6210", "6200"])}]))
    if chance.happens(40):
        groups.append(group("PluCondition", pay_conditions(chance, its_shop)))
    return groups


def pay_steps(chance, its_shop):
    rows = []
    for serial in range(1, chance.randint(1, 3) + 1):
        price = chance.choice([10, 30, round(its_shop.price(chance), 2), 0 if chance.happens(10) else 20])
        row = {"SerialNo": serial, "DisPrice": price, "DisRate": round(price * chance.choice([0.9, 0.5, 0.95, 1]), 2)}
        spoil(chance, row)
        rows.append(row)
    return rows


def pay_conditions(chance, its_shop):
    rows = []
    for serial in range(1, chance.randint(1, 2) + 1):
        code, kind = its_shop.named(chance, 50)
        rows.append({"SerialNo": serial, "PluCode": code, "PluType": kind, "MinNum": chance.choice([0, 1, 2]),
                     "MinMoney": chance.choice([0, 0, 10])})
    return rows


OWN_GROUPS = {"MZZQ": coupon_lists, "MZYQ": coupon_lists, "MZZF": pay_groups}
