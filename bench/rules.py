"""Promotion rules as a shop has them: the XML that a till loads, and the rows in the shop's database."""

import shop
from shop import element, money

# So many goods a rule names.
GOODS_OF_A_RULE = 30

# The groups that say when and where; the same for all.
FILTERS = (
    element("OrgFilter", {}, element("Row", {"OrgCode": "*"}))
    + element("ProTime", {}, element("Row", {
        "StartDate": "2024-01-01", "EndDate": "2099-12-31", "StartTime": "", "EndTime": "", "Frequency": "DAY",
        "WeekDays": "", "MonthDays": ""})))


class Rule:
    """A rule: its number, the type of its XML, its rows by table, and groups of its own."""

    def __init__(self, number, kind, rows=None, groups="", primary="PT"):
        self.number, self.kind, self.groups, self.primary = number, kind, groups, primary
        self.rows = {table: [{"BillNo": number, **row} for row in its_rows] for table, its_rows in (rows or {}).items()}

    def xml(self):
        return element("Rules", {}, element("Rule", {
            "BillNo": self.number, "Name": f"Promotion {self.number}", "OrgCode": shop.SHOP_CODE, "ProType": self.kind,
            "ProMode": self.kind[:2], "ProStatus": "1", "Primary": self.primary, "JzDate": "2026-11-01",
            "MaxYhType": "0", "MaxYhValue": "0", "Remark": ""}, FILTERS + self.groups))

    def load(self):
        """The call that loads it. Coupons are given by rules that are loaded as those that take them."""
        return ("InitPromotion", "MZYQ" if self.kind == "MZZQ" else self.kind, self.xml())


def numbered(rows):
    return [{"SerialNo": serial, **row} for serial, row in enumerate(rows, 1)]


def direct(number, kind, rows):
    return Rule(number, kind, {"tProPrjDirectProAct": numbered(rows)})


def direct_row(code, discount, kind="PLU", in_range="IN", sale_count=1):
    return {"PluCode": code, "PluType": kind, "InRange": in_range, "SaleCount": sale_count, "TradeMaxCount": 0,
            "DscType": "RAT", "DscPrice": 0, "DscRate": 0, **discount}


def cents(amount):
    return float(money(amount))


def percentage(chance):
    return {"DscType": "RAT", "DscRate": 5 + 5 * chance.below(5)}


def set_price(article):
    return {"DscType": "PRC", "DscPrice": cents(article.price * 4 // 5)}


def percentage_of_goods(chance, number, goods):
    """So many percent off a list of goods."""
    discount = percentage(chance)
    return direct(number, "PTXS", [direct_row(article.code, discount) for article in goods])


def percentage_of_category(chance, number, goods):
    """So many percent off a category, but for a few articles."""
    discount = percentage(chance)
    left_out = [direct_row(article.code, discount, in_range="NOT") for article in goods[:3]]
    return direct(number, "PTXS", [direct_row(goods[-1].category, discount, kind="CAT"), *left_out])


def set_prices(_, number, goods):
    """A list of goods, each at a price."""
    return direct(number, "PTXS", [direct_row(article.code, set_price(article)) for article in goods])


def amount_off(chance, number, goods):
    """From an amount of certain goods on so much off the sale, in two tiers."""
    base = 20 + 10 * chance.below(5)
    tiers = [{"ListCode": "1", "DscType": "PRC", "BaseMoney": base * step, "BaseDscMoney": 2 * step, "AddMoney": 0,
              "AddDscMoney": 0, "SaleMaxIn": 0} for step in (1, 3)]
    return Rule(number, "MZMJ", {
        "tpromzlist": [{"ListCode": "1", "ConAreaType": "DES", "RstAreaType": "DES", "MaxDiscount": 15,
                        "DscIntoPlu": "1"}],
        "tProMzConPluSet": numbered({"ListCode": "1", "DataId": "1", **conditional(article)} for article in goods),
        "tProMzDiscountAct": tiers}, primary="DJ")


def conditional(article):
    return {"PluCode": article.code, "PluType": "PLU", "InRange": "IN"}


def buy_some_get_one(chance, number, goods):
    """For some pieces of an article one more is free."""
    tier = {"DataId": "1", "PluType": "PLU", "BaseConType": "NUM", "BaseConNum": 2 + chance.below(2),
            "BaseDscType": "NUM", "BaseDscNum": 1, "AddConNum": 0, "AddDscNum": 0, "SaleMaxIn": 0}
    return Rule(number, "MZDP", {"tProMzPluAct": numbered({"PluCode": article.code, **tier} for article in goods)})


FIVE_KINDS = (percentage_of_goods, percentage_of_category, set_prices, amount_off, buy_some_get_one)


def mixed(chance, goods, count):
    """Rules of the five commonest kinds in equal parts, each over goods of its own."""
    return [FIVE_KINDS[place % len(FIVE_KINDS)](chance, f"P{place + 1:05d}", chance.some(goods, GOODS_OF_A_RULE))
            for place in range(count)]


def from_count_on(number, goods):
    """PTPL: from three pieces of an article on, each for less."""
    return direct(number, "PTPL", [direct_row(article.code, set_price(article), sale_count=3) for article in goods])


def every_second(number, goods):
    """PTOS: every second piece of an article for less."""
    return direct(number, "PTOS", [direct_row(article.code, set_price(article), sale_count=2) for article in goods])


def any_three(number, goods):
    """ZHZY: any three of the goods 20 percent off."""
    return Rule(number, "ZHZY", {
        "tProPrjCombProAct": numbered([{"SaleCount": 3, "PriceType": "TC", "PriceTotal": 20}]),
        "tProPrjCombPluSet": numbered({"PluCode": article.code, "PluType": "PLU"} for article in goods)})


def menu(number, goods):
    """ZHZX: a main thing and a side thing, each of a list, and a third if the customer likes."""
    slots = ("MAIN", "SIDE", "SWEET")
    return Rule(number, "ZHZX", {
        "tProPrjCombProAct": numbered({"ProActCode": slot, "ProActname": slot, "IsRequired": int(slot != "SWEET")}
                                      for slot in slots),
        "tProPrjCombPluSet": numbered(
            {"ProActCode": slots[place % len(slots)], "PluCode": article.code, "PluType": "PLU", "SaleCount": 1,
             "DscPrice": cents(article.price * 9 // 10)} for place, article in enumerate(goods))})


def cheaper_with_others(number, goods):
    """ZHTJ: who buys of a category for 5.00 gets some goods cheaper."""
    return Rule(number, "ZHTJ", {
        "tProCombConditionAct": numbered([{"PluCode": goods[0].category, "PluType": "CAT", "SaleCount": 0,
                                           "PriceTotal": 5}]),
        "tProPrjCombPluSet": numbered({"PluCode": article.code, "PluType": "PLU", "SaleCount": 0, "DscType": "RAT",
                                       "DscRate": 20} for article in goods)})


def bundle(number, goods):
    """ZHGD: two articles together for a price."""
    pair = goods[:2]
    return Rule(number, "ZHGD", {
        "tProPrjCombProAct": numbered([{"PriceType": "TC",
                                        "PriceTotal": cents(sum(article.price for article in pair) * 4 // 5)}]),
        "tProPrjCombPluSet": numbered({"PluCode": article.code, "PluType": "PLU", "SaleCount": 1} for article in pair)})


def scheme(code, base, price=0):
    return {"PluCode": code, "BaseConType": "SUM", "BaseConNum": base, "BaseDscType": "NUM", "BaseDscNum": 1,
            "AddConNum": 0, "AddDscNum": 0, "SaleMaxIn": 1, "DscPrice": price}


def free_article(number, goods):
    """MZZM: goods for 10.00, and another article is free."""
    return Rule(number, "MZZM", {
        "tProMzConPluSet": numbered({"ListCode": "1", "DataId": "1", **conditional(article)} for article in goods[1:]),
        "tProMzScheme": numbered([scheme(goods[0].code, 10)])})


def gift(number, code, base, price=0):
    """MZZP, or MZHG with a price: from an amount on an article is offered."""
    return Rule(number, "MZHG" if price else "MZZP", {"tProMzScheme": numbered([scheme(code, base, price)])},
                primary="DJ")


COUPON_TIER = element("PluAddAction", {}, element("Row", {
    "SerialNo": 1, "BaseConTp": "SUM", "BaseConNum": 25, "BaseDscTp": "SUM", "BaseDscNum": 5, "AddConNum": 25,
    "AddDscNum": 5, "SaleMaxIn": 0}))
COUPON = {"CouponTypeCode": "C5", "CouponTypeName": "Next visit"}


def coupon_list(limit, groups):
    return element("ProList", {"ConAreaType": "ALL", "RstAreaType": "ALL", "MaxDiscount": limit,
                               "CouponTypeCode": "C5", "DscIntoPlu": "0"}, COUPON_TIER + groups)


def coupons_given(number):
    """MZZQ: a coupon for each 25.00 of the sale."""
    coupon = element("CouponType", {**COUPON, "BgnDate": "2024-01-01", "EndDate": "2099-12-31", "LimitType": "0",
                                    "IsDenom": "1"})
    pieces = element("CouponDenomination", {}, "".join(
        element("Row", {"Denomination": value, "CouponDenomiCode": value, "CouponUnit": ""}) for value in (10, 5)))
    return Rule(number, "MZZQ", groups=coupon_list(20, coupon + pieces), primary="DJ")


def coupons_taken(number):
    """MZYQ: coupons worth 5.00 for each 25.00 of the sale."""
    return Rule(number, "MZYQ", groups=coupon_list(10, element("CouponType", COUPON)), primary="DJ")


def payment_reduction(number):
    """MZZF: money back for each 30.00 that is paid by a bank's card."""
    return Rule(number, "MZZF", primary="DJ", groups=(
        element("ProCtr", {}, element("Row", {"SerialNo": 1, "WholeBillPay": 1, "PayType": "CARD", "PriceTotal": 6}))
        + element("CardNoFilter", {}, element("Row", {"SerialNo": 1, "BgnCardNo": "6200000000000000",
                                                      "EndCardNo": "6299999999999999"}))
        + element("PluAction", {}, element("Row", {"SerialNo": 1, "DisPrice": 30, "DisRate": 28}))))


def of_every_kind(chance, goods):
    """One rule of each of the fifteen types. `goods` has three articles or more for each type that names goods."""
    shares = iter([goods[place::9] for place in range(9)])
    return [
        percentage_of_goods(chance, "PTXS-1", next(shares)), from_count_on("PTPL-1", next(shares)),
        every_second("PTOS-1", next(shares)), any_three("ZHZY-1", next(shares)), menu("ZHZX-1", next(shares)),
        cheaper_with_others("ZHTJ-1", next(shares)), bundle("ZHGD-1", next(shares)),
        amount_off(chance, "MZMJ-1", goods), buy_some_get_one(chance, "MZDP-1", next(shares)),
        free_article("MZZM-1", next(shares)), gift("MZZP-1", "900101", 60), gift("MZHG-1", "900201", 30, 2),
        coupons_given("MZZQ-1"), payment_reduction("MZZF-1"), coupons_taken("MZYQ-1"),
    ]
