"""What each reason names, changed: for a decision of an explanation, the same till with exactly that otherwise."""

import copy
import math
from xml.etree import ElementTree

DAY = {"StartDate": "2020-01-01", "EndDate": "2099-12-31", "StartTime": "", "EndTime": "", "Frequency": "DAY",
       "WeekDays": "", "MonthDays": ""}
DIRECT, SLOTS, SET, CONDITIONS, TOTAL = ("tProPrjDirectProAct", "tProPrjCombProAct", "tProPrjCombPluSet",
                                         "tProCombConditionAct", "tProPrjCombCtrl")
LISTS, COUNTED, REDUCTIONS, SCHEME, GOODS = ("tpromzlist", "tProMzConPluSet", "tProMzDiscountAct", "tProMzScheme",
                                             "tProMzPluAct")
COUPONS = ("MZZQ", "MZYQ")
MODE_OF = {"Ordinary": "All", "Combination": "Zh", "FullAmount": "MzPromotion", "Pay": "Pay", "Coupon": "Coupon"}
MANY = 1_000_000.0


class Unchangeable(Exception):
    """What the decision names can't be changed in this till."""


class Case:
    """A decision that refused a rule in one pass of the last call of a till."""

    def __init__(self, till, answer, rule, outcome):
        self.till, self.told = till, answer.explanation
        self.key, self.mode = answer.call[1], answer.call[2]
        self.number, self.kind, self.primary = rule["billNo"], rule["type"], rule["primary"]
        self.place, self.outcomes = outcome["pass"], rule["outcomes"]
        self.because = outcome["because"]
        self.reason = self.because["reason"]

    def __str__(self):
        return f"{self.reason} of {self.number} ({self.kind}) in pass {self.place} of {self.mode}: {self.because}"


class Work:
    """A copy of a case's till under change."""

    def __init__(self, case):
        self.case, self.because = case, case.because
        self.till = copy.deepcopy(case.till)
        self.texts = {}
        self.number = case.number
        # Where and how the reason has to be gone: on this line alone, or in the outcome as a whole.
        self.line, self.deciding, self.measured = None, False, False
        self.passes = [case.place]

    # The rule

    def loads(self, number=None):
        number = self.number if number is None else number
        return [call for call in self.till["calls"] if call[0] == "InitPromotion" and
                f'BillNo="{number}"' in call[2]]

    def text(self, call):
        """The XML of a call, to be changed."""
        if id(call) not in self.texts:
            self.texts[id(call)] = (call, ElementTree.fromstring(call[-1]))
        return self.texts[id(call)][1]

    def done(self):
        """@return the changed till."""
        for call, root in self.texts.values():
            call[-1] = ElementTree.tostring(root, encoding="unicode")
        return self.till

    @property
    def rule(self):
        """The rule's element; of two in one text the last, whose header counts."""
        loads = self.loads()
        if not loads:
            raise Unchangeable("the rule is not loaded")
        return self.text(loads[-1]).findall("Rule")[-1]

    def group(self, name):
        found = self.rule.find(name)
        return ElementTree.SubElement(self.rule, name) if found is None else found

    def group_rows(self, name):
        return self.rule.findall(f"{name}/Row")

    def drop_rules(self, numbers):
        for number in numbers:
            for call in self.loads(number):
                self.till["calls"].remove(call)

    # Its rows in the store

    def rows(self, table, **wanted):
        return [row for row in self.till["rows"].get(table, []) if row["BillNo"] == self.number and
                all(row.get(name) == value for name, value in wanted.items())]

    def row(self, table, **wanted):
        found = self.rows(table, **wanted)
        if not found:
            raise Unchangeable(f"no such row in {table}")
        return found[0]

    def add_row(self, table, **columns):
        self.till["rows"].setdefault(table, []).append({"BillNo": self.number, **columns})

    def drop_rows(self, table, drops):
        rows = self.till["rows"].get(table, [])
        rows[:] = [row for row in rows if row["BillNo"] != self.number or not drops(row)]

    # The sale

    def calls(self):
        """The sale's calculations."""
        return [call for call in self.till["calls"] if call[0] == "CalcPromotion" and call[1] == self.case.key]

    @property
    def last(self):
        return self.text(self.till["calls"][-1])

    def sale_rows(self, group):
        return [row for call in self.calls() for row in self.text(call).findall(f"{group}/Row")]

    def lines(self, number):
        """The texts of one line, each time it was sent."""
        found = [row for row in self.sale_rows("Plu") if int(row.get("SerialNo")) == number]
        if not found:
            raise Unchangeable("the line was not sent")
        return found

    def first_line(self):
        return self.lines(self.case.told["lines"][0]["serialNo"])

    def told_line(self, number):
        return next(line for line in self.case.told["lines"] if line["serialNo"] == number)

    def add_to_sale(self, group, **attributes):
        found = self.last.find(group)
        if found is None:
            found = ElementTree.SubElement(self.last, group)
        return ElementTree.SubElement(found, "Row", {name: str(value) for name, value in attributes.items()})

    def add_line(self, goods, count, price=10.0):
        """A new line of some goods."""
        first = self.sale_rows("Plu")[0]
        known = [row for row in self.sale_rows("Plu") if row.get("PluCode") == goods]
        if known and float(known[0].get("Price")) > 0:
            price = float(known[0].get("Price"))
        return self.add_to_sale("Plu", SerialNo=900, PluCode=goods, PluType="PLU", Price=price, PluCount=count,
                                Total=round(price * count, 2), PackCnt=1, CAT="", BRD="",
                                SaleDate=first.get("SaleDate"), SaleTime=first.get("SaleTime"))

    def add_subtotal(self, goods):
        """A subtotal of another sale in front of the last call, with its line, but of these goods."""
        root = copy.deepcopy(self.last)
        root.find("Plu/Row").set("PluCode", goods)
        text = ElementTree.tostring(root, encoding="unicode")
        self.till["calls"].insert(-1, ["CalcPromotion", "another sale", "All", text])

    def add_pieces(self, number, pieces):
        for row in self.lines(number):
            count = float(row.get("PluCount")) + pieces
            row.set("PluCount", str(count))
            row.set("Total", str(round(float(row.get("Price")) * count, 2)))


def reached(number):
    """What a number reaches for certain: a whole one itself; of a sum of fractions the last digits are noise."""
    return number if number == int(number) else math.floor(number * 10_000 - 0.5) / 10_000


def first_of(listed):
    return listed.split(", ")[0]


# --- The pass ---------------------------------------------------------------------------------------------------------

def other_pass(work, _):
    mode = MODE_OF[work.because["need"]]
    last = work.till["calls"][-1]
    last[2] = mode
    work.passes = None


def other_class(work, _):
    work.rule.set("Primary", work.because["need"])


def unknown_type(work, _):
    work.rule.set("ProType", "PTXS")


def wrong_class(work, _):
    """Loaded as what it says it is: the first header decides about that."""
    work.text(work.loads()[-1]).findall("Rule")[0].set("ProType", work.because["need"])


def other_kind(work, _):
    for call in work.calls():
        work.text(call).set("IsCalc", work.because["need"])


def not_prepared(work, _):
    """A subtotal of another sale reads the rule's rows: one with goods that a row names."""
    rows = [row for row in work.rows(DIRECT) if row["PluType"] == "PLU"]
    if not rows:
        raise Unchangeable("no row names goods")
    work.add_subtotal(rows[0]["PluCode"])
    for name in ("ProTime", "OrgFilter", "Vip", "PayMode"):
        for found in work.rule.findall(name):
            work.rule.remove(found)
    work.rule.append(ElementTree.fromstring("<OrgFilter><Row OrgCode='*'/></OrgFilter>"))
    work.group("ProTime").append(ElementTree.Element("Row", DAY))
    work.rule.set("Remark", "")


def no_offers(work, _):
    offers = work.last.find("ProGifts")
    if offers is None:
        offers = ElementTree.SubElement(work.last, "ProGifts")
    offer = ElementTree.SubElement(offers, "ProGift", ProBillNo=work.number, Total="10", LeftTotal="10", UsedTotal="0")
    ElementTree.SubElement(offer, "Data", SerialNo="1", PluCode="G", BaseConTp="SUM", BaseConNum="1", BaseDscTp="NUM",
                           BaseDscNum="1", DscPrice="0", HgPluCount="0")


def choice_offer(work):
    for offer in work.last.findall("ProGifts/ProGift"):
        if offer.get("ProBillNo") == work.number:
            return offer
    raise Unchangeable("no offer")


def choice_too_dear(work, off):
    offer = choice_offer(work)
    if len([one for one in work.last.findall("ProGifts/ProGift") if one.get("ProBillNo") == work.number]) > 1:
        raise Unchangeable("several offers")
    have = work.because["have"]
    more = have - work.because["need"] + 0.0001  # what is chosen costs a quotient's multiple
    # Two things may be too dear: what was chosen before, and the article itself.
    work.measured = True
    offer.set("Total", repr(float(offer.get("Total")) + more - off))


def choice_too_many(work, off):
    for offer in work.last.findall("ProGifts/ProGift"):
        for row in offer.findall("Data"):
            if offer.get("ProBillNo") == work.number and row.get("PluCode") == work.because["goods"] and \
                    float(row.get("HgPluCount")) > work.because["need"] > 0:
                row.set("HgPluCount", str(work.because["need"] + off))


# --- The filters ------------------------------------------------------------------------------------------------------

def no_lines(work, _):
    work.add_to_sale("Plu", SerialNo=1, PluCode="A1", PluType="PLU", Price=5, PluCount=1, Total=5, PackCnt=1,
                     SaleDate="2026-11-21", SaleTime="10:30:00")


def no_times(work, _):
    ElementTree.SubElement(work.group("ProTime"), "Row", DAY)


def time_incomplete(work, _):
    lacking = work.because["need"].split(", ")
    for row in work.group_rows("ProTime"):
        for name in lacking:
            if name == "EndTime" or row.get(name) is None:
                row.set(name, {"EndTime": "23:59:59"}.get(name, DAY.get(name)))


def set_time(work, attribute, row_from, row_to):
    """The sale's first line is moved to the beginning of what is needed; where there is no such time, the rule is."""
    begin, end = work.because["need"].split("..", 1)
    if begin <= end and begin:
        for row in work.first_line():
            row.set(attribute, begin)
        return
    for row in work.group_rows("ProTime"):
        if (row.get(row_from), row.get(row_to)) == (begin, end):
            row.set(row_from, work.because["have"])
            row.set(row_to, work.because["have"])


def date_outside(work, _):
    set_time(work, "SaleDate", "StartDate", "EndDate")


def hour_outside(work, _):
    set_time(work, "SaleTime", "StartTime", "EndTime")


def weekday_outside(work, _):
    for row in work.group_rows("ProTime"):
        if row.get("WeekDays") == work.because["need"]:
            row.set("WeekDays", str(work.because["have"]))


def no_organisations(work, _):
    ElementTree.SubElement(work.group("OrgFilter"), "Row", OrgCode="*")


def organisation_outside(work, _):
    need = first_of(work.because["need"])
    if need:
        for call in work.calls():
            work.text(call).set("OrgCode", need)
    else:
        work.group_rows("OrgFilter")[0].set("OrgCode", work.because["have"])


def member(work, _):
    work.add_to_sale("Vip", VipType=first_of(work.because["need"]))


def payment_missing(work, _):
    work.add_to_sale("PayMode", PayMode=first_of(work.because["need"]), PayCardNo="", PayMoney=1000)


def payment_too_small(work, off):
    for row in work.sale_rows("PayMode"):
        row.set("PayMoney", str(work.because["need"] - off))


def drop_earlier(work):
    """Takes out the sale's earlier steps of the same mode: what the rule has done there."""
    earlier = [call for call in work.calls()[:-1] if call[2] in (work.case.mode, "MzPromotion", "Pay", "Coupon")]
    if not earlier:
        raise Unchangeable("nothing earlier")
    for call in earlier:
        text = work.text(call)
        # What they brought with them stays.
        for group in text:
            if group.tag != "Coupon":
                work.last.append(group)
        work.till["calls"].remove(call)


def already_on_sale(work, _):
    drop_earlier(work)


def drop_takers(work, _):
    """The rules that took it are not there; one that took it itself, in a pass before, takes it then for the first time."""
    takers = [taker["billNo"] for taker in work.because["takenBy"]]
    if not takers:
        raise Unchangeable("nobody took it")
    others = [number for number in takers if number != work.number]
    if others:
        work.drop_rules(others)
    elif work.case.primary == "DZ" and work.case.place > 1:
        work.rule.set("Primary", "PT")
    else:
        drop_earlier(work)
    work.line = work.because["lines"][0] if work.because["reason"] == "NothingOpen" else None
    # A rule that takes the line now comes to it again by its next row, and finds that it took it itself.
    work.deciding = True


# --- Rows -------------------------------------------------------------------------------------------------------------

def direct_row(goods, **other):
    return {"SerialNo": 90, "PluCode": goods, "PluType": "PLU", "InRange": "IN", "DscType": "PRC", "DscPrice": 0.01,
            "DscRate": 0, "SaleCount": 1, "TradeMaxCount": 0, **other}


def set_row(goods, **other):
    return {"SerialNo": 90, "ProActCode": "", "PluCode": goods, "PluType": "PLU", "SaleCount": 1, "DscType": "PRC",
            "DscPrice": 0.01, "DscRate": 0, **other}


def scheme_row(goods, **other):
    return {"SerialNo": 90, "PluCode": goods, "BaseConType": "SUM", "BaseConNum": 1, "BaseDscType": "SUM",
            "BaseDscNum": 1, "AddConNum": 0, "AddDscNum": 0, "SaleMaxIn": 0, "DscPrice": 0, **other}


def goods_of(work):
    """An article of the sale."""
    rows = work.sale_rows("Plu")
    return rows[0].get("PluCode") if rows else "A1"


def add_tier(work, parent):
    group = parent.find("PluAddAction")
    if group is None:
        group = ElementTree.SubElement(parent, "PluAddAction")
    ElementTree.SubElement(group, "Row", SerialNo="1", BaseConTp="SUM", BaseConNum="1", BaseDscTp="SUM",
                           BaseDscNum="1", AddConNum="0", AddDscNum="0", SaleMaxIn="0")


def no_rows(work, _):
    kind, goods = work.case.kind, goods_of(work)
    if kind == "ZHGD":
        if not work.rows(SLOTS):
            work.add_row(SLOTS, SerialNo=1, PriceType="TC", PriceTotal=0.01, SaleCount=1)
        if not work.rows(SET):
            work.add_row(SET, **set_row(goods))
        for row in work.rows(SET):
            row["SaleCount"] = row["SaleCount"] or 1
    elif kind == "ZHTJ":
        work.add_row(SET, **set_row(goods))
    elif kind == "ZHZX":
        slot = work.because["slot"]
        if not work.rows(SLOTS):
            work.add_row(SLOTS, SerialNo=90, ProActCode=slot, ProActname="", IsRequired=1)
        work.add_row(SET, **set_row(goods, ProActCode=slot))
    elif kind == "MZMJ":
        work.add_row(LISTS, ListCode="L9", ConAreaType="ALL", RstAreaType="ALL", MaxDiscount=0, DscIntoPlu="0")
        work.add_row(REDUCTIONS, ListCode="L9", DscType="PRC", BaseMoney=1, BaseDscMoney=1, AddMoney=0, AddDscMoney=0,
                     SaleMaxIn=0)
    elif kind in COUPONS or work.rule.get("ProMode") == "MZ" and kind != "MZZF":
        add_tier(work, ElementTree.SubElement(work.rule, "ProList", ConAreaType="ALL"))
    elif kind == "MZZF":
        ElementTree.SubElement(work.group("PluAction"), "Row", SerialNo="1", DisPrice="1", DisRate="0.5")
    else:
        raise Unchangeable(kind)


def no_tiers(work, _):
    kind = work.case.kind
    if kind == "ZHZY":
        work.add_row(SLOTS, SerialNo=90, SaleCount=1, PriceType="DP", PriceTotal=0.01)
    elif kind == "MZMJ":
        for one in work.rows(LISTS):
            if not work.rows(REDUCTIONS, ListCode=one["ListCode"]):
                work.add_row(REDUCTIONS, ListCode=one["ListCode"], DscType="PRC", BaseMoney=1, BaseDscMoney=1,
                             AddMoney=0, AddDscMoney=0, SaleMaxIn=0)
    elif kind in ("MZZM", "MZZP", "MZHG"):
        work.add_row(SCHEME, **scheme_row(goods_of(work)))
    else:
        for one in work.rule.findall("ProList"):
            if not one.findall("PluAddAction/Row"):
                add_tier(work, one)


def unreadable(work, _):
    """The table that was away is there again."""
    work.till["calls"] = [call for call in work.till["calls"] if call[0] != "Sql"]


# --- The lines --------------------------------------------------------------------------------------------------------

def not_named(work, _):
    work.line = number = work.because["lines"][0]
    goods, kind = work.lines(number)[-1].get("PluCode"), work.case.kind
    if kind in ("PTXS", "PTPL", "PTOS"):
        work.add_row(DIRECT, **direct_row(goods))
        if work.case.mode == "Single":
            work.add_subtotal(goods)  # a single line works with the rows that a subtotal has read
    elif kind in ("ZHZY", "ZHTJ"):
        work.add_row(SET, **set_row(goods))
    elif kind == "MZDP":
        # Each tier names goods of its own, and says of all others that it doesn't.
        work.deciding = True
        work.add_row(GOODS, DataId="0", PluType="PLU", **{
            name: value for name, value in scheme_row(goods, BaseConNum=0).items() if name != "DscPrice"})
    elif kind in COUPONS:
        for one in work.rule.findall("ProList"):
            group = one.find("PluCondition")
            group = ElementTree.SubElement(one, "PluCondition") if group is None else group
            ElementTree.SubElement(group, "Row", SerialNo="90", PluCode=goods, PluType="PLU", Contain="IN")
    else:
        codes = [one["ListCode"] for one in work.rows(LISTS)] if kind == "MZMJ" else ["0"]
        for code in codes:
            work.add_row(COUNTED, ListCode=code, SerialNo=90, DataId="0", PluCode=goods, PluType="PLU", InRange="IN")


def excluded(work, _):
    work.line = work.because["lines"][0]
    line = work.lines(work.line)[-1]
    names = {(kind, line.get(kind)) for kind in line.keys()} | {("PLU", line.get("PluCode"))}
    for table in (DIRECT, COUNTED):
        work.drop_rows(table, lambda row: row["InRange"] == "NOT" and (row["PluType"], row["PluCode"]) in names)
    for group in work.rule.iter("PluCondition"):
        for row in list(group):
            if row.get("Contain") == "NOT" and (row.get("PluType"), row.get("PluCode")) in names:
                group.remove(row)


def package(work, _):
    work.line = work.because["lines"][0]
    for row in work.lines(work.line):
        row.set("PackCnt", str(work.because["need"]))


def empty_line(work, _):
    work.line = work.because["lines"][0]
    for row in work.lines(work.line):
        price = float(row.get("Price"))
        row.set("PluCount", "3")
        row.set("Total", str(round(3 * price, 2)))


def senseless_quantity(work, _):
    """The lines in front hold what is discounted on them."""
    for row in work.sale_rows("Plu"):
        row.set("PluCount", "2")
    work.line = work.because["lines"][0]


def already_on_line(work, _):
    work.line = work.because["lines"][0]
    if work.case.primary == "DZ" and work.case.mode in ("All", "Union") and \
            any(one["outcome"] == "applied" for one in work.case.outcomes):
        work.rule.set("Primary", "PT")
    else:
        drop_earlier(work)


def limit_used_up(work, _):
    work.rule.set("MaxYhValue", str(MANY))


def row_limit(work, _):
    work.row(DIRECT, SerialNo=work.because["row"])["TradeMaxCount"] = MANY
    work.line = work.because["lines"][0]


# --- What has to be reached -------------------------------------------------------------------------------------------

def unusable_row(work, off):
    kind = work.case.kind
    if kind == "ZHZX":  # its rows have no number
        rows = work.rows(SET, ProActCode=work.because["slot"], PluCode=work.because["goods"],
                         SaleCount=work.because["have"])
    else:
        rows = work.rows({"PTOS": DIRECT, "ZHZY": SLOTS, "ZHGD": SET}[kind], SerialNo=work.because["row"])
    for row in rows:
        row["SaleCount"] = work.because["need"] - off


def goods_missing(work, off):
    if work.because["takenBy"]:
        drop_takers(work, off)
    elif work.because["lines"] and work.told_line(work.because["lines"][0])["count"] > 0:
        raise Unchangeable("the goods are there")
    else:
        work.add_line(work.because["goods"], 3)


def lower_row(work, table, column, off):
    """A row asks for what there is."""
    have = work.because["have"]
    if have + off < 1:
        raise Unchangeable("nothing is there")
    work.row(table, SerialNo=work.because["row"])[column] = reached(have) + off


def below_minimum(work, off):
    if work.because["have"] > 0:
        lower_row(work, DIRECT, "SaleCount", off)
    else:
        work.row(DIRECT, SerialNo=work.because["row"])["SaleCount"] = 1
        drop_takers(work, off)


def below_set(work, off):
    if work.because["have"] >= 1:
        is_free = work.case.kind == "ZHZY"
        # A free combination counts whole pieces of whole sets.
        lower_row(work, SLOTS if is_free else DIRECT, "SaleCount", math.ceil(off) if is_free else off)
        # A tier that is lowered may change places with another.
        work.deciding = True
    elif work.because["takenBy"]:
        work.row(DIRECT if work.case.kind == "PTOS" else SLOTS, SerialNo=work.because["row"])["SaleCount"] = 1
        drop_takers(work, off)
    elif work.because["lines"]:
        work.add_pieces(work.because["lines"][0], math.ceil(work.because["need"] - work.because["have"]))
    else:
        work.add_line(work.because["goods"], math.ceil(work.because["need"]))


def article_short(work, off):
    if work.because["have"] >= 1:
        lower_row(work, SET, "SaleCount", off)
    elif work.because["takenBy"]:
        work.row(SET, SerialNo=work.because["row"])["SaleCount"] = 1
        drop_takers(work, off)
    else:
        work.add_line(work.because["goods"], math.ceil(work.because["need"]))


def slot_short(work, off):
    slot, goods = work.because["slot"], work.because["goods"]
    # Once the menus are full, the goods that are left over are short of another.
    work.deciding = True
    if work.because["takenBy"]:
        drop_takers(work, off)
        return
    rows = [row for row in work.rows(SET, ProActCode=slot) if row["SaleCount"] >= 1 and
            (not goods or row["PluCode"] == goods)]
    if not slot:
        work.add_pieces(work.because["lines"][0], 1)
    elif rows:
        # Lines that were returned count against it.
        work.add_line(rows[0]["PluCode"], math.ceil(rows[0]["SaleCount"] * max(1, 1 - work.because["have"])))
    else:
        work.add_row(SET, **set_row(goods_of(work), ProActCode=slot))
        work.add_line(goods_of(work), math.ceil(max(1, 1 - work.because["have"])))


def asked_for(work, off):
    """What a demand becomes: what there is. One of nothing asks for nothing."""
    if off and reached(work.because["have"]) + off <= 0:
        raise Unchangeable("nothing is there")
    return reached(work.because["have"]) + off


def condition_short(work, off):
    pieces = work.because["unit"] == "quantity"
    if work.case.kind == "ZHTJ":
        row = work.row(CONDITIONS, SerialNo=work.because["row"])
        row["SaleCount" if pieces else "PriceTotal"] = asked_for(work, off)
        return
    for row in work.group_rows("PluCondition"):
        if row.get("SerialNo") == str(work.because["row"]):
            row.set("MinNum" if pieces else "MinMoney", str(asked_for(work, off)))


def total_short(work, off):
    rows = sorted(work.rows(TOTAL), key=lambda row: row["SerialNo"])
    rows[0]["CountTotal" if work.because["unit"] == "quantity" else "PriceTotal"] = asked_for(work, off)


def several_payments(work, _):
    """One payment is left."""
    left = work.because["need"]
    for call in work.calls():
        for group in work.text(call).findall("PayMode"):
            for row in list(group):
                if left > 0:
                    left -= 1
                else:
                    group.remove(row)


def card_outside(work, _):
    begin, end = first_of(work.because["need"]).split("..")
    if begin > end:
        raise Unchangeable("no card is in that range")
    for row in work.sale_rows("PayMode"):
        row.set("PayCardNo", begin)


def no_coupons(work, _):
    for group in work.last.findall("Coupon"):
        work.last.remove(group)
    # The first rule that takes coupons takes them all.
    work.drop_rules([rule["billNo"] for rule in work.case.told["rules"] if rule["type"] in COUPONS and
                     rule["billNo"] != work.number])
    work.add_to_sale("Coupon", BillNo="K1", CouponTypeCode="C5", CouponValue="5")


class Column:
    """A tier's place in the store or in the rule's text: its columns under one set of names."""

    def __init__(self, row, names):
        self.row, self.names = row, names

    def get(self, name):
        return float(self.row.get(self.names[name], 0) or 0)

    def set(self, name, value):
        if isinstance(self.row, dict):
            self.row[self.names[name]] = value
        else:
            self.row.set(self.names[name], repr(float(value)))


def tier_lists(work):
    """The rule's tiers, list by list."""
    kind = work.case.kind
    same = {"base": "BaseConNum", "gives": "BaseDscNum", "step": "AddConNum", "more": "AddDscNum"}
    if kind == "MZMJ":
        names = {"base": "BaseMoney", "gives": "BaseDscMoney", "step": "AddMoney", "more": "AddDscMoney"}
        return [[Column(row, names) for row in work.rows(REDUCTIONS, ListCode=one["ListCode"])]
                for one in work.rows(LISTS)]
    if kind in ("MZZM", "MZZP", "MZHG"):
        return [[Column(row, same) for row in work.rows(SCHEME)]]
    if kind == "MZDP":
        return [[Column(row, same) for row in work.rows(GOODS)]]
    if kind == "MZZF":
        names = {"base": "DisPrice", "gives": "DisRate"}
        return [[Column(row, names) for row in work.group_rows("PluAction")]]
    return [[Column(row, same) for row in one.findall("PluAddAction/Row")] for one in work.rule.findall("ProList")]


def find_tier(work):
    """The tier of a decision by its threshold; none other of its list may come between."""
    have, need, serial = work.because["have"], work.because["need"], work.because["row"]
    lists = tier_lists(work)
    found = [(tiers, tier) for tiers in lists for tier in tiers if abs(tier.get("base") - need) < 1e-6 and
             (not serial or work.case.kind == "MZMJ" or str(tier.row.get("SerialNo")) == str(serial))]
    if len(found) != 1 or len(lists) != 1:
        raise Unchangeable("not one such tier")
    tiers, tier = found[0]
    if any(other is not tier and have <= other.get("base") <= need for other in tiers):
        raise Unchangeable("another tier comes between")
    return tier


def below_threshold(work, off):
    tier = find_tier(work)
    tier.set("base", asked_for(work, off))


def nothing_above(work, _):
    """Lower thresholds leave something above them."""
    if work.because["takenBy"]:
        drop_takers(work, None)
        return
    if not work.because["lines"]:
        raise Unchangeable("nothing of the goods is there")
    for tiers in tier_lists(work):
        for tier in tiers:
            if str(tier.row["SerialNo"]) == str(work.because["row"]):
                tier.set("base", tier.get("base") * 0.25)
    work.deciding = True


# --- What is given ----------------------------------------------------------------------------------------------------

def denominations(work):
    return work.rule.findall("ProList/CouponDenomination/Row")


def no_denomination(work, off):
    for row in denominations(work):
        if abs(float(row.get("Denomination")) - work.because["need"]) < 1e-6:
            row.set("Denomination", str(reached(work.because["have"]) + off))


def unusable_denomination(work, _):
    for row in denominations(work):
        if float(row.get("Denomination")) <= 0:
            row.set("Denomination", "1")


def too_many_repeats(work, _):
    for row in denominations(work):
        row.set("Denomination", "1000000")
    for row in work.group_rows("PluAction"):
        row.set("DisPrice", "5")
        row.set("DisRate", "4")


def step_without_gain(work, _):
    for row in work.group_rows("PluAction"):
        if float(row.get("DisPrice")) <= 0:
            row.set("DisPrice", "1")
            row.set("DisRate", "0")


def never_gives(work, _):
    rule = work.rule
    work.number = "R1"
    rule.set("BillNo", "R1")


def unknown_area(work, _):
    need = first_of(work.because["need"])
    for row in work.rows(LISTS):
        if row["ConAreaType"] == work.because["have"]:
            row["ConAreaType"] = need
    for one in work.rule.findall("ProList"):
        if one.get("ConAreaType", "") == work.because["have"]:
            one.set("ConAreaType", need)


def unknown_unit(work, _):
    need = first_of(work.because["need"])
    for table in (SCHEME, GOODS):
        for row in work.rows(table, SerialNo=work.because["row"]):
            for name in ("BaseConType", "BaseDscType"):
                if row[name] == work.because["have"]:
                    row[name] = need


PRICES = {"PTXS": (DIRECT, "DscType"), "PTPL": (DIRECT, "DscType"), "PTOS": (DIRECT, "DscType"),
          "ZHTJ": (SET, "DscType"), "ZHZY": (SLOTS, "PriceType"), "ZHGD": (SLOTS, "PriceType")}


def priced_rows(work):
    table, column = PRICES[work.case.kind]
    serial = work.because["row"]
    return [row for row in work.rows(table) if not serial or work.case.kind == "ZHGD" or row["SerialNo"] == serial], column


def unknown_price_kind(work, _):
    rows, column = priced_rows(work)
    for row in rows:
        row[column] = first_of(work.because["need"])


def no_gain(work, _):
    """Half the price without the rule."""
    half = round(work.because["have"] / 2, 4)
    kind = work.case.kind
    if kind == "ZHZX":
        line = work.told_line(work.because["lines"][0])
        work.row(SET, ProActCode=work.because["slot"], PluCode=line["pluCode"])
        for row in work.rows(SET, ProActCode=work.because["slot"], PluCode=line["pluCode"]):
            row["DscPrice"] = half
        work.line = line["serialNo"]
    elif kind == "ZHGD":
        for row in work.rows(SLOTS):
            row["PriceTotal"] = 0.01
        for row in work.rows(SET):
            row["DscPrice"] = half if row["SerialNo"] == work.because["row"] else row["DscPrice"]
    else:
        rows, column = priced_rows(work)
        for row in rows:
            if kind == "ZHZY":
                size = row["SaleCount"]
                row["PriceTotal"] = 50 if row[column] == "TC" else round(half * size, 2)
            else:
                row["DscPrice"], row["DscRate"] = half, 50


def reduction_above(work, off):
    work.line = work.because["lines"][0]
    for row in priced_rows(work)[0]:
        row["DscPrice"] = reached(work.because["have"]) + off


def gives_nothing(work, _):
    """It gives something to be seen."""
    work.line = work.because["lines"][0] if work.because["lines"] else None
    if work.case.kind in PRICES:
        for row in priced_rows(work)[0]:
            if work.case.kind == "ZHZY":
                row["PriceTotal"] = 50 if row["PriceType"] == "TC" else max(1, row["PriceTotal"] * 100)
            elif work.case.kind == "ZHGD":
                row["PriceTotal"] = 0.01
            else:
                row["DscType"], row["DscRate"] = "RAT", 50
        return
    if work.case.kind in ("MZZM", "MZDP") and any(line["count"] <= 0 for line in work.case.told["lines"]):
        raise Unchangeable("goods that are counted on an empty line have no price")
    if not work.because["lines"] and not work.because["tier"] and work.case.kind != "MZZF":
        raise Unchangeable("what it would be spread over comes to nothing")
    for tiers in tier_lists(work):
        for tier in tiers:
            if work.case.kind == "MZZF":
                tier.set("gives", 0)
            else:
                tier.set("gives", max(tier.get("gives"), 20))


def limited_by_money(work, off):
    have = work.because["have"]
    if work.case.kind == "MZZF":
        if off:
            raise Unchangeable("it counts whole steps")
        # Further steps may reach the new limit as well, with something given then.
        work.deciding = True
        for row in work.group_rows("ProCtr"):
            row.set("PriceTotal", str(have + 1))
    else:
        work.rule.set("MaxYhValue", str(have - off))


CHANGES = {
    "OtherPass": other_pass, "OtherClass": other_class, "UnknownType": unknown_type, "WrongClass": wrong_class,
    "OtherKindOfSale": other_kind, "NotPrepared": not_prepared, "NoOffers": no_offers,
    "ChoiceTooDear": choice_too_dear, "ChoiceTooMany": choice_too_many,
    "NoLines": no_lines, "NoTimes": no_times, "TimeIncomplete": time_incomplete, "DateOutside": date_outside,
    "WeekdayOutside": weekday_outside, "HourOutside": hour_outside, "NoOrganisations": no_organisations,
    "OrganisationOutside": organisation_outside, "MemberMissing": member, "MemberOther": member,
    "PaymentMissing": payment_missing, "PaymentTooSmall": payment_too_small, "AlreadyOnSale": already_on_sale,
    "SaleTaken": drop_takers,
    "NoRows": no_rows, "NoTiers": no_tiers, "Unreadable": unreadable,
    "NotNamed": not_named, "Excluded": excluded, "Package": package, "EmptyLine": empty_line,
    "SenselessQuantity": senseless_quantity, "AlreadyOnLine": already_on_line, "NothingOpen": drop_takers,
    "LimitUsedUp": limit_used_up, "RowLimitUsedUp": row_limit,
    "UnusableRow": unusable_row, "GoodsMissing": goods_missing, "BelowMinimum": below_minimum,
    "BelowSetSize": below_set, "ArticleShort": article_short, "SlotShort": slot_short,
    "ConditionShort": condition_short, "TotalShort": total_short, "SeveralPayments": several_payments,
    "CardOutside": card_outside, "NoCoupons": no_coupons, "BelowThreshold": below_threshold,
    "NothingAboveThreshold": nothing_above,
    "NoDenomination": no_denomination, "UnusableDenomination": unusable_denomination,
    "TooManyRepeats": too_many_repeats, "StepWithoutGain": step_without_gain, "NeverGives": never_gives,
    "UnknownArea": unknown_area, "UnknownUnit": unknown_unit, "UnknownPriceKind": unknown_price_kind,
    "NoGain": no_gain, "ReductionAbovePrice": reduction_above, "GivesNothing": gives_nothing,
    "LimitedByMoney": limited_by_money,
}

# So much away from the edge the reason is still there; with 0 it is gone.
EDGES = {"ChoiceTooDear": 0.01, "ChoiceTooMany": 1, "PaymentTooSmall": 0.01, "UnusableRow": 0.01, "BelowMinimum": 0.01,
         "BelowSetSize": 0.01, "ArticleShort": 0.01, "ConditionShort": 0.01, "TotalShort": 0.01, "BelowThreshold": 0.01,
         "NoDenomination": 0.01, "ReductionAbovePrice": 0.02, "LimitedByMoney": 0.02}

# What is decided before anything is looked at: behind it the rule comes further.
BEFORE_ROWS = ("NoLines", "NoTimes", "TimeIncomplete", "DateOutside", "WeekdayOutside",
               "HourOutside", "NoOrganisations", "OrganisationOutside", "MemberMissing", "MemberOther")


def changed(case, off=0.0):
    """The work on a case with what its reason names otherwise, `off` so much from the edge."""
    work = Work(case)
    CHANGES[case.reason](work, off)
    work.till = work.done()
    return work
