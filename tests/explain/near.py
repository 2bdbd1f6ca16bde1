"""Checks that near misses are what they say: what they tell to add is added, in a sale of its own, and brings what is told.

near.py LIBRARY SCHEMA FORM [--count N] [--seed S] [--jobs N] [--till FILE]

Exit code 0: they are. 1: one isn't; the till stands on the output, made small. 2: the run itself failed.
"""

import argparse
import copy
import sys
import time
from xml.etree import ElementTree
from xml.sax.saxutils import quoteattr

from face import EXPLAIN
from facts import Broken
from runs import Runs, host_till, tell_failure

SUBTOTALS = ("All", "Union", "Zh")
# From so many tills on, near misses of each of these kinds have to have occurred.
ENOUGH = 100
KINDS = ("goods", "payment", "coupon", "new line", "one piece less")


class SaleSoFar:
    """What has been sent of a sale, and through which modes its lines came to their results."""

    def __init__(self):
        self.header, self.lines = {}, {}
        self.members, self.payments, self.coupons, self.modes = [], [], [], []

    def take(self, call):
        root = ElementTree.fromstring(call[3])
        self.header.update(root.attrib)
        for row in root.iterfind("Plu/Row"):
            self.lines[int(row.get("SerialNo"))] = dict(row.attrib)
        self.members += [dict(row.attrib) for row in root.iterfind("Vip/Row")]
        self.payments += [dict(row.attrib) for row in root.iterfind("PayMode/Row")]
        if call[2] in SUBTOTALS:
            self.coupons, self.modes = [], []
        self.coupons += [dict(row.attrib) for row in root.iterfind("Coupon/Row")]
        self.modes.append(call[2])

    def calls(self, key):
        """The same sale under another key: through the same modes, with all that there is from the start; coupons, which
        a subtotal would forget, come with the last."""
        calls = []
        for place, mode in enumerate(self.modes):
            groups = ""
            if place == 0:
                groups = group("Plu", self.lines.values()) + group("Vip", self.members) + group("PayMode", self.payments)
            if place == len(self.modes) - 1:
                groups += group("Coupon", self.coupons)
            header = "".join(f" {name}={quoteattr(value)}" for name, value in self.header.items())
            calls.append(["CalcPromotion", key, mode, f"<Sale{header}>{groups}</Sale>"])
        return calls


def group(name, rows):
    rows = "".join("<Row" + "".join(f" {key}={quoteattr(str(value))}" for key, value in row.items()) + "/>"
                   for row in rows)
    return f"<{name}>{rows}</{name}>" if rows else ""


class Gain:
    """What the modes of a sale give in all, and a rule of it."""

    def __init__(self, answers, number):
        sale = answers[-1].data["sale"]
        rows = [row for row in sale["ProResult"] if "RowID" in row]
        self.cents = sum(row["DisMoneyCents"] for row in rows)
        self.rule_cents = sum(row["DisMoneyCents"] for row in rows if row["ProBillNo"] == number)
        self.offers = len(sale["ProGifts"])
        self.rule_offers = sum(offer["ProBillNo"] == number for offer in sale["ProGifts"])
        self.coupons = self.coupon_cents = self.rule_coupon_cents = 0
        told = 0
        for answer in answers:
            # The value of coupons that are given stands in new rows of the sale; they come from the last to the first.
            rows = [row for row in answer.data["sale"]["ProResult"] if "RowID" not in row]
            if answer.call[2] == "MzPromotion":
                for row in rows[:len(rows) - told]:
                    self.coupon_cents += row["DisMoneyCents"]
                    self.rule_coupon_cents += row["DisMoneyCents"] * (row["ProBillNo"] == number)
            told = len(rows)
            self.coupons += sum(outcome["coupons"] for rule in answer.explanation["rules"]
                                for outcome in rule["outcomes"])

    def above(self, other):
        return {"cents": self.cents - other.cents, "ruleCents": self.rule_cents - other.rule_cents,
                "offers": self.offers - other.offers, "coupons": self.coupons - other.coupons,
                "couponCents": self.coupon_cents - other.coupon_cents}

    def gives_more(self, other):
        return self.rule_cents > other.rule_cents or self.rule_offers > other.rule_offers or \
            self.rule_coupon_cents > other.rule_coupon_cents


def sum_of(text, more, digits=6):
    """A sum as a till writes it: without the noise of its digits."""
    return repr(round(float(text) + more, digits))


def add(sale, addition, less=0):
    """Adds to a sale what a near miss tells, `less` so many pieces."""
    count = addition["count"] - less
    if addition["what"] == "coupon":
        sale.coupons.append({"BillNo": "K", "CouponTypeCode": "C", "CouponValue": repr(count)})
    elif addition["what"] == "payment":
        sale.payments[0]["PayMoney"] = sum_of(sale.payments[0]["PayMoney"], count)
    elif addition["serialNo"]:
        line = sale.lines[addition["serialNo"]]
        line["PluCount"] = sum_of(line["PluCount"], count)
        line["Total"] = sum_of(line["Total"], count * addition["price"], 2)
    elif count > 0:
        first = next(iter(sale.lines.values()))
        number = max(sale.lines) + 1
        known = sale.goods.get(addition["pluCode"], {})
        sale.lines[number] = {
            "SerialNo": number, "PluCode": addition["pluCode"], "Price": addition["price"], "PluCount": repr(count),
            "Total": sum_of("0", count * addition["price"], 2), "PackCnt": 1, "CAT": known.get("CAT", ""),
            "BRD": known.get("BRD", ""), "SaleDate": first["SaleDate"], "SaleTime": first["SaleTime"]}


class Check:
    """All near misses of a till."""

    def __init__(self, _):
        self.counter = None

    def till(self, counter, till, tally):
        self.counter = counter
        answers = counter.play(till, EXPLAIN)
        sent = [answer.call for answer in answers]
        sales = {}
        for place, answer in enumerate(answers):
            if answer.call[0] == "DeleteSaleSetByKey":
                sales.pop(answer.call[1], None)
            if answer.call[0] != "CalcPromotion":
                continue
            sale = sales.setdefault(answer.call[1], SaleSoFar())
            sale.take(answer.call)
            if answer.explanation is None or "sale" not in answer.data:
                continue
            for near in answer.explanation["nearMisses"]:
                begun = {**till, "calls": [call for call in sent[:place + 1] if call[0] == "InitPromotion"]}
                sale.goods = till["goods"]
                try:
                    self.near(begun, sale, answer, near, tally)
                except Broken as broken:
                    raise Broken(broken.what, f"call {place + 1}: {broken.detail}") from None

    def played(self, till, sale):
        """The answers to a sale in a shop that has seen no other."""
        calls = sale.calls("another")
        answers = self.counter.play({**till, "calls": till["calls"] + calls}, EXPLAIN)[-len(calls):]
        for answer in answers:
            if "sale" not in answer.data:
                raise Broken("the changed sale is not calculated", str(answer.error))
        return answers

    def near(self, till, sale, answer, near, tally):
        tally["near misses"] += 1
        if near["brings"] is None:
            tally["of unknown price"] += 1
            return
        check_missing(near)
        number = near["billNo"]
        again = self.played(till, sale)
        here = Gain(again, number)
        if again[-1].data != {**answer.data, "explanation": again[-1].explanation}:
            tally["not to be sent again"] += 1
            return
        changed = copy.deepcopy(sale)
        for addition in near["add"]:
            add(changed, addition)
            tally[addition["what"] if addition["what"] != "goods" or addition["serialNo"] else "new line"] += 1
        gain = Gain(self.played(till, changed), number)
        told = {name: value for name, value in near["brings"].items() if name != "money"}
        if gain.above(here) != told:
            raise Broken("a near miss brings something else", f"{near}: it brings {gain.above(here)}")
        if not gain.gives_more(here):
            raise Broken("a near miss brings nothing of the rule's", f"{near}")
        tally["checked"] += 1
        tally["reason " + near["reason"]] += 1
        last = near["add"][-1]
        is_one_step = len(near["add"]) == 1 and near["need"] is not None
        if is_one_step and last["what"] == "goods" and near["unit"] == "quantity":
            self.one_less(till, sale, near, here, tally)

    def one_less(self, till, sale, near, here, tally):
        """With a piece less of the last addition the rule gives no more than before."""
        changed = copy.deepcopy(sale)
        for addition in near["add"][:-1]:
            add(changed, addition)
        add(changed, near["add"][-1], 1)
        answers = self.played(till, changed)
        # It may give more by another of its tiers; the one that is told is not reached.
        if Gain(answers, near["billNo"]).gives_more(here) and not still_lacks(answers[-1].explanation, near):
            raise Broken("less would do for a near miss", f"{near}")
        tally["one piece less"] += 1


def still_lacks(told, near):
    """Whether a rule says of the same step that it is not reached."""
    return any(decision["reason"] == near["reason"] and (decision["tier"], decision["slot"]) == (near["tier"], near["slot"])
               for rule in told["rules"] if rule["billNo"] == near["billNo"]
               for outcome in rule["outcomes"] for decision in outcome["looked"])


def check_missing(near):
    """What is missing is what there is less than needed."""
    have, need = near["have"], near["need"]
    if have is not None and need is not None and abs(near["missing"] - max(0, need - have)) > 2e-6:
        raise Broken("what is missing is not what is needed above what there is", f"{near}")


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("library", help="the library libqncorvane-host")
    parser.add_argument("schema", help="SQL script that makes the store's tables")
    parser.add_argument("form", help="JSON schema of the explanation")
    parser.add_argument("--count", type=int, default=ENOUGH, help=f"how many tills ({ENOUGH})")
    parser.add_argument("--seed", type=int, default=1, help="another number, other tills (1)")
    parser.add_argument("--jobs", type=int, default=1, help="processes (1)")
    parser.add_argument("--till", help="check the till of this file instead of generated ones")
    options = parser.parse_args()
    begin = time.monotonic()
    failure, tally = Runs(options, Check, host_till).run()
    print(f"{tally.pop('tills', 0)} tills ({time.monotonic() - begin:.1f} s)")
    for name, number in sorted(tally.items()):
        print(f"  {name}: {number}")
    if failure:
        tell_failure(failure)
        return 1
    lacking = [kind for kind in KINDS if not tally[kind]] if options.count >= ENOUGH and not options.till else []
    if lacking:
        print(f"never met: {', '.join(lacking)}")
    return 1 if lacking else 0


if __name__ == "__main__":
    sys.stdout.reconfigure(errors="backslashreplace")
    try:
        sys.exit(main())
    except (OSError, ValueError) as error:
        print(f"near: {error}", file=sys.stderr)
        sys.exit(2)
