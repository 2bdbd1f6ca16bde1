"""Occasions for reasons that don't come up by themselves: tills changed towards them, and tills made by hand."""

import copy
import random
from xml.etree import ElementTree

from changes import COUNTED, DAY, DIRECT, GOODS, LISTS, REDUCTIONS, SCHEME, SET, SLOTS, direct_row
from hosts import make_host_till

ORGANISATION = {"OrgCode": "*"}
LINE = {"SerialNo": "1", "PluCode": "A1", "PluType": "PLU", "Price": "10", "PluCount": "2", "Total": "20",
        "PackCnt": "1", "CAT": "DRINK", "BRD": "SUNNY", "SaleDate": "2026-11-21", "SaleTime": "10:30:00"}


# --- Tills that were generated, changed -------------------------------------------------------------------------------

def of_each_rule(change):
    """An occasion that changes the XML of every second rule or so; `change` gets the rule's element and chance."""
    def make(till, seed):
        chance = random.Random(seed)
        made = copy.deepcopy(till)
        for call in made["calls"]:
            if call[0] == "InitPromotion" and chance.random() < 0.7:
                root = ElementTree.fromstring(call[2])
                change(root.find("Rule"), chance)
                call[2] = ElementTree.tostring(root, encoding="unicode")
        return made
    return make


def of_each_row(change, *tables):
    """An occasion that changes most rows of some tables; one for which `change` says False goes."""
    def make(till, seed):
        chance = random.Random(seed)
        made = copy.deepcopy(till)
        for table in tables:
            rows = made["rows"].get(table, [])
            rows[:] = [row for row in rows if chance.random() < 0.2 or change(row, chance) is not False]
        return made
    return make


def of_each_call(change):
    """An occasion that changes the sale XML of calculations; `change` gets the call and its element."""
    def make(till, seed):
        chance = random.Random(seed)
        made = copy.deepcopy(till)
        for call in made["calls"]:
            if call[0] == "CalcPromotion":
                root = ElementTree.fromstring(call[3])
                change(call, root, chance)
                call[3] = ElementTree.tostring(root, encoding="unicode")
        return made
    return make


def of_kinds(*kinds):
    """An occasion that is a till with rules of these types alone."""
    return lambda _, seed: {**make_host_till(seed, kinds), "store": "free"}


def both(first, second):
    return lambda till, seed: second(first(till, seed), seed)


def drop_group(name):
    def change(rule, _):
        for group in rule.findall(name):
            rule.remove(group)
    return of_each_rule(change)


def set_group(name, *rows):
    def change(rule, chance):
        for group in rule.findall(name):
            rule.remove(group)
        ElementTree.SubElement(ElementTree.SubElement(rule, name), "Row", chance.choice(rows))
    return of_each_rule(change)


def set_header(**attributes):
    return of_each_rule(lambda rule, _: [rule.set(name, value) for name, value in attributes.items()])


def set_columns(*tables, **columns):
    """Those of the columns that a table has."""
    return of_each_row(lambda row, _: row.update({name: columns[name] for name in columns if name in row}), *tables)


def drop_rows(*tables):
    return of_each_row(lambda *_: False, *tables)


def set_in_groups(path, **attributes):
    def change(rule, _):
        for row in rule.findall(path):
            row.attrib.update(attributes)
    return of_each_rule(change)


def incomplete(rule, chance):
    for row in rule.findall("ProTime/Row"):
        kind = chance.randint(0, 3)
        if kind == 3:
            row.set("StartTime", "08:00:00")
            row.set("EndTime", "")
        else:
            row.attrib.pop(("StartDate", "EndDate", "Frequency")[kind])


def without_table(till, seed):
    """A table goes away before the last calculation of a kind that reads it."""
    chance = random.Random(seed)
    tables = [table for table in till["rows"] if till["rows"][table]]
    if not tables:
        return None
    made = copy.deepcopy(till)
    places = [place for place, call in enumerate(made["calls"]) if call[0] == "CalcPromotion"]
    made["calls"].insert(chance.choice(places), ["Sql", f"alter table {chance.choice(tables)} rename to gone"])
    return made


def without_subtotals(till, _):
    made = copy.deepcopy(till)
    made["calls"] = [call for call in made["calls"] if call[0] != "CalcPromotion" or call[2] == "Single"]
    return made


def without_scans(till, _):
    """Steps of a sale that has no lines yet."""
    made = copy.deepcopy(till)
    made["calls"] = [call for call in made["calls"] if call[0] != "CalcPromotion" or call[2] in ("MzPromotion", "Pay")]
    return made


def twice(*modes):
    def make(till, _):
        made = copy.deepcopy(till)
        calls = []
        for call in made["calls"]:
            calls.append(call)
            if call[0] == "CalcPromotion" and call[2] in modes:
                calls.append(copy.deepcopy(call))
        made["calls"] = calls
        return made
    return make


def as_packages(call, root, _):
    for row in root.findall("Plu/Row"):
        row.set("PackCnt", "6")


def as_empty(call, root, _):
    for row in root.findall("Plu/Row"):
        row.set("PluCount", "0")
        row.set("Total", "0")


def of_other_day(call, root, _):
    for row in root.findall("Plu/Row"):
        row.set("SaleDate", "2019-05-05")


def without_coupons(call, root, _):
    for group in root.findall("Coupon"):
        root.remove(group)


def small_payments(call, root, _):
    for row in root.findall("PayMode/Row"):
        row.set("PayMoney", "5")


def much_chosen(till, _):
    made = copy.deepcopy(till)
    for call in made["calls"]:
        if call[0] == "Gift":
            call[2] = {"0": 50, "1": 50}
    return made


def for_payments(*rows):
    return set_group("PayMode", *rows)


WEEKDAYS = [{**DAY, "Frequency": "WEEK", "WeekDays": days} for days in ("1,2", "0", "7", "3,4,5")]
HOURS = [{**DAY, "StartTime": begin, "EndTime": end} for begin, end in (("11:00:00", "12:00:00"),
                                                                        ("08:00:00", "10:29:59"))]
DATES = [{**DAY, "StartDate": begin, "EndDate": end} for begin, end in (("2026-11-22", "2026-12-31"),
                                                                        ("2020-01-01", "2026-11-20"))]
PRICED = ("PTXS", "PTPL", "PTOS", "ZHTJ")
FULL = ("MZMJ", "MZDP", "MZZM", "MZZP", "MZHG")

OCCASIONS = {
    "OtherKindOfSale": [set_header(Remark="DVCZK"), set_header(Remark="NVCZK")],
    "NotPrepared": [both(of_kinds("PTXS"), without_subtotals)],
    "ChoiceTooDear": [both(of_kinds("MZHG"), much_chosen)],
    "ChoiceTooMany": [both(of_kinds("MZHG", "MZZP"), much_chosen)],
    "NoLines": [without_scans],
    "NoTimes": [drop_group("ProTime")],
    "TimeIncomplete": [of_each_rule(incomplete)],
    "DateOutside": [set_group("ProTime", *DATES)],
    "WeekdayOutside": [set_group("ProTime", *WEEKDAYS)],
    "HourOutside": [set_group("ProTime", *HOURS)],
    "NoOrganisations": [drop_group("OrgFilter")],
    "OrganisationOutside": [set_group("OrgFilter", {"OrgCode": "S02"}, {"OrgCode": "S03"})],
    "MemberMissing": [set_group("Vip", {"VipType": "01"})],
    "MemberOther": [set_group("Vip", {"VipType": "99"})],
    "PaymentMissing": [for_payments({"PayMode": "GOLD", "PayMoney": "1"})],
    "PaymentTooSmall": [for_payments({"PayMode": "CARD", "PayMoney": "5000"}, {"PayMode": "CASH", "PayMoney": "900"})],
    "AlreadyOnSale": [both(of_kinds("MZZQ", "MZYQ"), twice("MzPromotion", "Coupon"))],
    "SaleTaken": [both(of_kinds("MZZQ", "MZMJ", "MZZM"), set_header(Primary="DZ"))],
    "NoRows": [drop_rows(SET), drop_rows(LISTS), drop_rows(SLOTS), drop_group("PluAction"), drop_group("ProList")],
    "NoTiers": [drop_rows(SLOTS), drop_rows(REDUCTIONS), drop_rows(SCHEME)],
    "Unreadable": [without_table],
    "NotNamed": [of_kinds(*PRICED), of_kinds("MZDP", "MZMJ")],
    "Excluded": [both(of_kinds("PTXS", "PTPL", "MZMJ"), set_columns(DIRECT, COUNTED, InRange="NOT"))],
    "Package": [of_each_call(as_packages)],
    "EmptyLine": [of_each_call(as_empty)],
    "AlreadyOnLine": [both(of_kinds("MZMJ", "MZDP"), twice("MzPromotion"))],
    "NothingOpen": [both(of_kinds("PTXS", "PTPL", "ZHZY", "ZHTJ"), set_header(Primary="DZ"))],
    "LimitUsedUp": [set_header(MaxYhType="2", MaxYhValue="0"), set_header(MaxYhType="2", MaxYhValue="1")],
    "RowLimitUsedUp": [both(of_kinds("PTXS", "PTPL"), set_columns(DIRECT, TradeMaxCount=1, PluCode="A1", PluType="PLU"))],
    "UnusableRow": [set_columns(DIRECT, SLOTS, SET, SaleCount=0.5)],
    "GoodsMissing": [set_columns(SCHEME, PluCode="F9")],
    "BelowMinimum": [both(of_kinds("PTPL"), set_columns(DIRECT, SaleCount=40))],
    "BelowSetSize": [both(of_kinds("PTOS", "ZHZY"), set_columns(DIRECT, SLOTS, SaleCount=40))],
    "ArticleShort": [both(of_kinds("ZHGD"), set_columns(SET, SaleCount=40))],
    "SlotShort": [both(of_kinds("ZHZX"), set_columns(SET, SaleCount=40))],
    "ConditionShort": [of_kinds("ZHTJ"), both(of_kinds("MZZF"), set_in_groups("PluCondition/Row", MinNum="50"))],
    "TotalShort": [of_kinds("ZHTJ")],
    "SeveralPayments": [both(of_kinds("MZZF"), set_in_groups("ProCtr/Row", WholeBillPay="1"))],
    "CardOutside": [both(of_kinds("MZZF"), set_group("CardNoFilter", {"BgnCardNo": "8000", "EndCardNo": "8001"}))],
    "NoCoupons": [both(of_kinds("MZYQ"), of_each_call(without_coupons))],
    "BelowThreshold": [of_kinds(*FULL), of_kinds("MZZF", "MZZQ")],
    "NothingAboveThreshold": [both(of_kinds("MZDP"), set_columns(GOODS, BaseConType="NUM", BaseConNum=1))],
    "NoDenomination": [both(of_kinds("MZZQ"), set_in_groups("ProList/CouponDenomination/Row", Denomination="500"))],
    "UnusableDenomination": [both(of_kinds("MZZQ"), set_in_groups("ProList/CouponDenomination/Row", Denomination="-1"))],
    "StepWithoutGain": [both(of_kinds("MZZF"), set_in_groups("PluAction/Row", DisPrice="0", DisRate="0"))],
    "UnknownArea": [set_columns(LISTS, ConAreaType="ALLES"), set_in_groups("ProList", ConAreaType="AREA")],
    "UnknownUnit": [set_columns(SCHEME, GOODS, BaseConType="SUMM"), set_columns(SCHEME, GOODS, BaseDscType="PCS")],
    "UnknownPriceKind": [set_columns(DIRECT, SET, DscType="PCR"), set_columns(SLOTS, PriceType="PD")],
    "NoGain": [set_columns(DIRECT, SET, SLOTS, DscType="PRC", DscPrice=9000, PriceTotal=90000)],
    "ReductionAbovePrice": [both(of_kinds("PTXS", "PTPL", "ZHTJ"), set_columns(DIRECT, SET, DscType="2", DscPrice=9000))],
    "GivesNothing": [both(of_kinds("PTXS", "PTPL", "ZHTJ"), set_columns(DIRECT, SET, DscType="2", DscPrice=0)),
                     both(of_kinds("MZMJ"), set_columns(REDUCTIONS, BaseDscMoney=0, AddDscMoney=0))],
    "LimitedByMoney": [set_header(MaxYhType="1", MaxYhValue="0")],
}


# --- Tills made by hand -----------------------------------------------------------------------------------------------

def rule_text(number, kind, *groups, **header):
    attributes = {"BillNo": number, "OrgCode": "S01", "ProType": kind, "ProMode": kind[:2], "Primary": "PT",
                  "JzDate": "2026-01-01", "MaxYhType": "0", "MaxYhValue": "0", "Remark": "", **header}
    rule = ElementTree.Element("Rule", attributes)
    for name, row in (("OrgFilter", ORGANISATION), ("ProTime", DAY)):
        ElementTree.SubElement(ElementTree.SubElement(rule, name), "Row", row)
    rule.extend(ElementTree.fromstring(group) for group in groups)
    return ElementTree.tostring(rule, encoding="unicode")


def load(*rules):
    return ["InitPromotion", None, f"<Rules>{''.join(rules)}</Rules>"]


def calc(mode, *lines, groups="", key="till 1"):
    rows = "".join(ElementTree.tostring(ElementTree.Element("Row", {**LINE, **line}), encoding="unicode")
                   for line in lines)
    plu = f"<Plu>{rows}</Plu>" if rows else ""
    return ["CalcPromotion", key, mode, f'<Sale BillNo="B" OrgCode="S01" IsCalc="0">{plu}{groups}</Sale>']


def till_of(*calls, **rows):
    return {"seed": 0, "store": "free", "rows": rows, "calls": list(calls)}


def later_header(kind):
    """A second rule element in the text: its header takes the place of the first one's."""
    return f'<Rule ProType="{kind}"/>'


COUPON_TIER = ('<PluAddAction><Row SerialNo="1" BaseConTp="SUM" BaseConNum="10" BaseDscTp="SUM" BaseDscNum="{}" '
               'AddConNum="0" AddDscNum="0" SaleMaxIn="0"/></PluAddAction>')


def coupon_list(gives, denomination=None):
    cut = f'<CouponType IsDenom="1"/><CouponDenomination><Row Denomination="{denomination}"/></CouponDenomination>'
    return f'<ProList ConAreaType="ALL">{COUPON_TIER.format(gives)}{cut if denomination else ""}</ProList>'


def constructed():
    """Reasons, and tills in which they come up, that no generated till reaches."""
    row = {"BillNo": "R1", **direct_row("A1")}
    for mode in ("All", "Single", "Zh", "MzPromotion", "Pay"):
        yield "UnknownType", till_of(load(rule_text("R1", "PTXS"), later_header("XXXX")), calc(mode, {}),
                                     **{DIRECT: [row]})
    for mode, kind, other in (("All", "PTXS", "PTPL"), ("All", "ZHZY", "PTOS"), ("Zh", "PTXS", "ZHTJ"),
                              ("MzPromotion", "PTXS", "MZMJ"), ("Single", "PTPL", "PTXS")):
        yield "WrongClass", till_of(load(rule_text("R1", kind), later_header(other)), calc(mode, {}), **{DIRECT: [row]})
    for count in ("1.5", "1.2", "1.7", "1.3", "1.9"):
        # Coupons count weighed goods as whole pieces; the rule itself leaves a package alone.
        coupons = load(rule_text("R2", "MZYQ", coupon_list(5)), later_header("PTXS"))
        yield "SenselessQuantity", till_of(
            load(rule_text("R1", "PTXS")), coupons, calc("All", {"PluCount": count, "PackCnt": "6"}),
            calc("Coupon", groups='<Coupon><Row CouponValue="5"/></Coupon>'), calc("Single", {"SerialNo": "2"}),
            **{DIRECT: [{**row, "DscPrice": 9}]})
    for number in range(5):
        gives = 1_000_000 * (number + 1)
        yield "TooManyRepeats", till_of(load(rule_text("R1", "MZZQ", coupon_list(gives, "0.01"))),
                                        calc("MzPromotion", {}))
        yield "NeverGives", till_of(load(rule_text("*", "MZZQ", coupon_list(number + 5))), calc("MzPromotion", {}))
    for price in ("1e-30", "1e-25", "1e-20"):
        yield "TooManyRepeats", till_of(
            load(rule_text("R1", "MZZF", '<ProCtr><Row PayType="CARD" PriceTotal="100"/></ProCtr>',
                           f'<PluAction><Row SerialNo="1" DisPrice="{price}" DisRate="0"/></PluAction>')),
            calc("Pay", {}, groups='<PayMode><Row PayMode="CARD" PayMoney="20"/></PayMode>'))
