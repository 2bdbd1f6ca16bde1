"""What a till sends and what comes out of it, read for the properties: rules and lines of the texts that go in, lines,
rows and forms of the results that come out."""

import decimal
import re
from xml.etree import ElementTree

Decimal = decimal.Decimal
CENT = Decimal("0.01")
SUBTOTALS = ("All", "Union", "Zh")
# What a buffer holds that a call has left alone; the player puts it there.
UNTOUCHED = "(untouched)"

F2, F4, I, FLAG = r"-?\d+\.\d{2}", r"-?\d+\.\d{4}", r"-?\d+", "[01]"
TEXT = None

LINE_HEAD = {"SerialNo": I, "PluCode": TEXT, "Price": F2, "FinalPrice": F4, "PluCount": F2, "DisNum": F2, "Total": F2}
LINE_TAIL = {"PackCnt": I, "BRD": TEXT, "CAT": TEXT, "SaleDate": TEXT, "SaleTime": TEXT, "PluDtId": I, "PageNo": I,
             "LnNo": I, "YhBefore": I, "ClsId": TEXT, "PluID": TEXT, "VipPrice": I}
ROW = {"SerialNo": I, "PluCode": TEXT, "ProBillNo": TEXT, "ProType": TEXT, "IsVip": FLAG, "VipType": TEXT}
OFFERED = {"SerialNo": I, "PluCode": TEXT, "PluType": TEXT, "BaseConTp": TEXT, "BaseConNum": F2, "BaseDscTp": TEXT,
           "BaseDscNum": F2, "AddConNum": F2, "AddDscNum": F2, "SaleMaxIn": F2, "DscPrice": F2, "HgPluCount": F2,
           "CanPart": I, "Price": F2}
COUPON = dict.fromkeys(("SendSaleNo", "BillNo", "CouponTypeCode", "BgnDate", "EndDate", "Value", "Remark"), TEXT)

# The attributes of each element of a result, by its path, and the form of each number.
SALE_FORM = {
    "Sale": {"BillNo": TEXT, "OrgCode": TEXT},
    "Sale/Plu": {}, "Sale/Plu/Data": {**LINE_HEAD, **LINE_TAIL},
    "Sale/ProResult": {}, "Sale/ProResult/Data": {**ROW, "DisNum": F2, "DisMoney": F2, "RowID": I},
    "Sale/Apportion": {}, "Sale/Apportion/Data": {**ROW, "AppNum": F2, "AppMoney": F2, "RowID": I},
    "Sale/ProGifts": {},
    "Sale/ProGifts/ProGift": {"ProBillNo": TEXT, "Total": F2, "LeftTotal": F2, "UsedTotal": F2},
    "Sale/ProGifts/ProGift/Data": OFFERED,
    "Sale/ProCoupons": {}, "Sale/ProCoupons/ProCouponS": COUPON,
}
SINGLE_FORM = {**{path: SALE_FORM[path] for path in SALE_FORM if "ProGifts" not in path and "ProCoupons" not in path},
               "Sale/Plu/Data": {**LINE_HEAD, "PackCnt": F2}}


def elements(root, path=""):
    """Each element below a root, itself included, with its path."""
    path = f"{path}/{root.tag}" if path else root.tag
    yield path, root
    for child in root:
        yield from elements(child, path)


def faults_of_form(root, form):
    """What of a result is not in its form: elements and attributes that don't belong there, that are missing, and
    numbers that are written otherwise or are none."""
    for path, element in elements(root):
        if path not in form:
            yield f"an element {path}"
            continue
        expected = dict(form[path])
        if element.get("PluCode") == "*" and "RowID" not in element.attrib:
            expected.pop("RowID", None)  # a row that concerns the whole sale
        for name in sorted(set(element.attrib) ^ set(expected)):
            yield f"{path} {'has' if name in element.attrib else 'lacks'} {name}"
        for name, value in element.attrib.items():
            if expected.get(name) and not re.fullmatch(expected[name], value):
                yield f'{path} {name}="{value}"'


class Result:
    """A result: its lines by number, its discount rows, its shares."""

    def __init__(self, text):
        # Bytes that are no UTF-8 don't matter to who asks for lines and rows.
        self.root = ElementTree.fromstring(text.encode("utf-8", "replace"))
        self.lines = {row.get("SerialNo"): row.attrib for row in self.root.iterfind("Plu/Data")}
        self.rows = [row.attrib for row in self.root.iterfind("ProResult/Data")]
        self.shares = [row.attrib for row in self.root.iterfind("Apportion/Data")]

    def rows_of_lines(self):
        return [row for row in self.rows if "RowID" in row]

    def rows_of_sale(self):
        return [row for row in self.rows if "RowID" not in row]


def money(rows, name="DisMoney"):
    """The sum of an amount over rows."""
    return sum((Decimal(row[name]) for row in rows), Decimal(0))


def results(till, answers):
    """The place, the call and the result of each calculation that gave one."""
    for place, (call, answer) in enumerate(zip(till["calls"], answers)):
        if call[0] in ("CalcPromotion", "Gift") and isinstance(answer, list) and answer[2] != UNTOUCHED:
            yield place, call, answer[2]


def mode_of(call):
    """The mode of a calculation; None for another call."""
    return {"CalcPromotion": lambda: call[2], "Gift": lambda: "Gift"}.get(call[0], lambda: None)()


def key_of(call):
    """The key of a call that has one."""
    return call[1] if call[0] in ("CalcPromotion", "Gift", "DeleteSaleSetByKey") else None


def is_load(call):
    return call[0] in ("BeginInitPro", "InitPromotion", "FinishInitPro")


def rules_of(till):
    """The headers of the rules by their numbers."""
    headers = {}
    for call in till["calls"]:
        if call[0] == "InitPromotion":
            header = ElementTree.fromstring(call[2]).find("Rule")
            if header is not None:
                headers[header.get("BillNo")] = dict(header.attrib)
    return headers


def sent_lines(call):
    """The lines that a calculation sends, by their numbers."""
    if call[0] != "CalcPromotion":
        return {}
    return {row.get("SerialNo", "0"): row.attrib for row in ElementTree.fromstring(call[3]).iterfind("Plu/Row")}
