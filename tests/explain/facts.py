"""What is known of an explanation beforehand: the passes of the modes, the reasons, and what a till has sent."""

import decimal
from xml.etree import ElementTree

CLASSES = (("Combination", "DZ"), ("Ordinary", "DZ"))
PASSES = {
    "Single": [("Single", "")],
    "All": [*CLASSES, ("Ordinary", ""), ("Combination", "")],
    "Union": [*CLASSES, ("Ordinary", "")],
    "Zh": [("Combination", "")],
    "MzPromotion": [("FullAmount", "")],
    "Gift": [("Gift", "")],
    "Pay": [("Pay", "")],
    "Coupon": [("Coupon", "")],
}


class Broken(Exception):
    """Something that has to hold and does not."""

    def __init__(self, what, detail):
        super().__init__(what, detail)
        self.what, self.detail = what, detail

    def __str__(self):
        return f"{self.what}: {self.detail}"


def reasons_of(schema):
    """The closed set, in its order."""
    return schema["definitions"]["reason"]["enum"]


def cents(text):
    """Whole cents of an amount as a till writes it."""
    return int(decimal.Decimal(text).scaleb(2).quantize(decimal.Decimal(1), decimal.ROUND_HALF_UP))


def sent_amounts(till):
    """For each call what was last sent of the lines of its sale, in cents by their numbers; nothing for a till that is
    not tidy, of which nobody knows beforehand what is read."""
    if not till.get("tidy"):
        return None
    sales, amounts = {}, []
    for call in till["calls"]:
        if call[0] == "DeleteSaleSetByKey":
            sales.pop(call[1], None)
        held = sales.setdefault(call[1], {}) if call[0] in ("CalcPromotion", "Gift") else {}
        if call[0] == "CalcPromotion":
            for row in ElementTree.fromstring(call[3]).iterfind("Plu/Row"):
                held[row.get("SerialNo")] = cents(row.get("Total"))
        amounts.append(dict(held))
    return amounts
