"""Plays generated tills and checks that every calculation is explained whole.

complete.py LIBRARY SCHEMA FORM [--count N] [--seed S] [--jobs N] [--till FILE]

Exit code 0: they are. 1: one isn't; the till stands on the output, made small. 2: the run itself failed.
"""

import argparse
import json
import pathlib
import sys
import time

from runs import Runs, tell_failure
from face import EXPLAIN, JSON, NUMBER_OVERFLOW, OK, TOTAL_OVERFLOW
from facts import Broken, PASSES, sent_amounts
from form import checker

# One explanation in so many goes through the library for schemas, too, which takes its time.
SAMPLE = 197


class Sales:
    """What a till's sales hold between its calls, as far as the results tell it."""

    def __init__(self):
        self.rows, self.offers = {}, {}

    def forget(self, call):
        for held in (self.rows, self.offers):
            for key in list(held) if call[0] == "ClearSaleSetForNet" else [call[1]]:
                held.pop(key, None)


def of_rule(rows, number):
    return [row for row in rows if row["ProBillNo"] == number]


def check_form(told, form):
    wrong = form(told)
    if wrong:
        raise Broken("the explanation is not in its form", wrong)


def check_outcomes(told, rules):
    """Each rule has exactly one outcome for each pass of the mode, and a reason of the set where it gave nothing."""
    passes = [(one["pass"], one["kind"], one["class"]) for one in told["passes"]]
    expected = [(place, *own) for place, own in enumerate(PASSES[told["mode"]], 1)]
    if passes != expected:
        raise Broken("the passes are not those of the mode", f"{passes}, not {expected}")
    if [rule["billNo"] for rule in told["rules"]] != list(rules):
        raise Broken("the rules are not those that are loaded", f"{[rule['billNo'] for rule in told['rules']]}, {rules}")
    for rule in told["rules"]:
        if [outcome["pass"] for outcome in rule["outcomes"]] != [one[0] for one in expected]:
            raise Broken("a rule has not one outcome for each pass", rule["billNo"])
        for outcome in rule["outcomes"]:
            check_reason(rule, outcome)


def check_reason(rule, outcome):
    """The deciding reason is one of those that the rule met on its way."""
    reasons = {decision["reason"] for decision in outcome["looked"]}
    because = outcome["because"]
    if because:
        reasons.add(because["reason"])
    if "Unexplained" in reasons:
        raise Broken("an outcome is unexplained", f"{rule['billNo']} ({rule['type']}) in pass {outcome['pass']}")
    if because and because["reason"] not in {decision["reason"] for decision in outcome["looked"]}:
        raise Broken("a reason is none of those that were met", f"{rule['billNo']}: {because['reason']}")


def check_lines(told):
    """The way of each line adds up."""
    for line in told["lines"]:
        left = line["beforeCents"]
        for step in line["steps"]:
            left -= step["cents"]
            if step["leftCents"] != left:
                raise Broken("a step leaves something else than it should", f"line {line['serialNo']}: {step}")
            if not 0 <= step["pass"] <= len(told["passes"]) or (step["pass"] == 0) != (step["kind"] == "earlier"):
                raise Broken("a step is of no pass", f"line {line['serialNo']}: {step}")
        if line["leftCents"] != left:
            raise Broken("a line leaves something else than its steps", f"line {line['serialNo']}")
        for name in ("before", "left"):
            if round(line[name] * 100) != line[name + "Cents"]:
                raise Broken("units and cents differ", f"line {line['serialNo']} {name}")


def check_steps(told):
    """What an outcome took off the lines is what its steps there say."""
    steps = {}
    for line in told["lines"]:
        for step in line["steps"]:
            if step["pass"]:
                place = (step["by"], step["pass"], line["serialNo"])
                steps[place] = steps.get(place, 0) + step["cents"]
    told_of = {}
    for rule in told["rules"]:
        for outcome in rule["outcomes"]:
            cents = [line["cents"] for line in outcome["lines"]]
            if sum(cents) != outcome["cents"]:
                raise Broken("an outcome's lines don't sum up", f"{rule['billNo']} pass {outcome['pass']}")
            for line in outcome["lines"]:
                place = (rule["billNo"], outcome["pass"], line["serialNo"])
                told_of[place] = told_of.get(place, 0) + line["cents"]
    for place in steps.keys() | told_of.keys():
        if steps.get(place, 0) != told_of.get(place, 0):
            raise Broken("outcome and steps differ", f"{place}: {told_of.get(place)} and {steps.get(place)}")


def check_rows(told, sale, totals):
    """Lines, rows and totals of the result say the same as the way of the lines."""
    shown = {row["SerialNo"] for row in sale["Plu"]}
    lines = {line["serialNo"]: line for line in told["lines"]}
    rows = {}
    for row in sale["ProResult"]:
        if "RowID" in row:
            place = (row["RowID"], row["ProBillNo"])
            rows[place] = rows.get(place, 0) + row["DisMoneyCents"]
    steps = {}
    for number in shown:
        for step in lines[number]["steps"]:
            place = (number, step["billNo"])
            steps[place] = steps.get(place, 0) + step["cents"]
    for place in rows.keys() | steps.keys():
        if rows.get(place, 0) != steps.get(place, 0):
            raise Broken("rows and steps differ", f"{place}: {rows.get(place)} and {steps.get(place)}")
    for name, total in (("beforeCents", "beforeCents"), ("leftCents", "toPayCents")):
        if sum(lines[number][name] for number in shown) != totals[total]:
            raise Broken("the lines don't sum up to the totals", f"{name} and {total}")


def check_sent(told, amounts):
    """What a line begins with is what was last sent of it."""
    for line in told["lines"]:
        sent = amounts.get(str(line["serialNo"]))
        if sent is not None and sent != line["beforeCents"]:
            raise Broken("a line does not begin with what was sent",
                         f"line {line['serialNo']}: {line['beforeCents']}, sent {sent}")


def check_given(told, sale, held, key):
    """Applied is exactly what gave money, offers or coupons, or took coupons or a payment."""
    mode = told["mode"]
    if mode == "Single":
        before = rows = offers = earlier_offers = []
    else:
        rows = [row for row in sale["ProResult"] if "RowID" not in row]
        offers = sale["ProGifts"]
        before = held.rows.get(key, [])
        # A choice sends the offers back, and all that there are count; a subtotal begins without.
        earlier_offers = held.offers.get(key, []) if mode in ("MzPromotion", "Pay", "Coupon") else []
        held.rows[key], held.offers[key] = rows, offers
    for number, place, outcomes in by_rule_and_pass(told):
        where = f"{number} pass {place}"
        # Rows of the sale come from the last to the first.
        new_rows = of_rule(rows, number)[:len(of_rule(rows, number)) - len(of_rule(before, number))]
        new_offers = len(of_rule(offers, number)) - len(of_rule(earlier_offers, number))
        # Each entry of a rule tells of all offers that a choice is about.
        told_offers = [outcome["offers"] for outcome in outcomes]
        coupons = any(outcome["coupons"] for outcome in outcomes)
        if new_offers != (max(told_offers) if mode == "Gift" else sum(told_offers)):
            raise Broken("offers differ from the result's", where)
        if mode == "MzPromotion":
            # The value of coupons that a rule gives stands in a row of the sale; one below a cent can't be seen there.
            if coupons and not new_rows or not coupons and any(row["DisMoneyCents"] for row in new_rows):
                raise Broken("coupons differ from the result's", where)
            new_rows = coupons
        given = bool(new_rows) or new_offers > 0 or any(line["cents"] for one in outcomes for line in one["lines"])
        if given != any(outcome["outcome"] == "applied" for outcome in outcomes):
            raise Broken("applied is not what gave something", f"{where}: {outcomes}, {new_rows} rows, "
                         f"{new_offers} offers")


def by_rule_and_pass(told):
    """A rule's outcomes in a pass: one, or several where the registry holds the rule more than once."""
    found = {}
    for rule in told["rules"]:
        for outcome in rule["outcomes"]:
            found.setdefault((rule["billNo"], outcome["pass"]), []).append(outcome)
    return [(*place, outcomes) for place, outcomes in found.items()]


def check_same(plain, told):
    """With and without the flag a call is answered, and logs, the same."""
    if (plain.code, plain.error) != (told.code, told.error):
        raise Broken("an explained call is answered otherwise", f"{plain.code}, {told.code}: {told.error}")
    if same_words(plain.log) != same_words(told.log):
        raise Broken("an explained call logs otherwise", "")
    if plain.text is None:
        if told.text and set(told.data) != {"explanation"}:
            raise Broken("a refused call has a result", told.text[:200])
    elif not told.text or not told.text.startswith(plain.text[:-1] + ',"explanation":'):
        raise Broken("an explained call has another result", "")


def same_words(log):
    """The log where the driver says the same in other words: whether a statement on a table that is gone fails at its
    start or at its first row depends on whether one like it has failed before, in a trial as well."""
    return [entry.replace(b"Unable to fetch row", b"Unable to execute statement") for entry in log]


class Check:
    """All that has to hold of a till's answers."""

    def __init__(self, options):
        self.schema = json.loads(pathlib.Path(options.form).read_text("utf-8"))
        self.form = checker(self.schema)
        self.seen = 0
        self.has_odd_bytes = False

    def till(self, counter, till, tally):
        plain = counter.play(till, JSON)
        told = counter.play(till, EXPLAIN)
        held, amounts = Sales(), sent_amounts(till)
        self.has_odd_bytes = "\\udc" in json.dumps(till)
        for place, (one, other) in enumerate(zip(plain, told)):
            try:
                check_same(one, other)
                if one.call[0] in ("DeleteSaleSetByKey", "ClearSaleSetForNet"):
                    held.forget(one.call)
                self.answer(other, held, amounts[place] if amounts else {}, tally)
            except Broken as broken:
                raise Broken(broken.what, f"call {place + 1}: {broken.detail}") from None

    def answer(self, answer, held, amounts, tally):
        told = answer.explanation
        if told is None:
            if answer.call[0] == "CalcPromotion" and answer.code in (OK, TOTAL_OVERFLOW, NUMBER_OVERFLOW):
                raise Broken("a calculation has no explanation", "")
            return
        self.tell(told, tally)
        check_form(told, self.form)
        check_outcomes(told, answer.rules)
        check_lines(told)
        check_steps(told)
        check_sent(told, amounts)
        if "sale" in answer.data:
            lacking = {"Plu", "ProResult"} - answer.data["sale"].keys()
            if lacking and self.has_odd_bytes:
                # The result is read again for its JSON, and ends for that at a byte that is no UTF-8.
                tally["cut at bytes that are no UTF-8"] += 1
                return
            if lacking:
                raise Broken("the result lacks groups", f"{lacking}")
            check_rows(told, answer.data["sale"], answer.data["totals"])
            check_given(told, answer.data["sale"], held, answer.call[1])

    def tell(self, told, tally):
        """Counts what was met, and sends some through the library for schemas."""
        tally["calculations"] += 1
        tally["mode " + told["mode"]] += 1
        for rule in told["rules"]:
            for outcome in rule["outcomes"]:
                because = outcome["because"]
                tally["reason " + because["reason"] if because else "applied"] += 1
                if not because:
                    tally["type " + rule["type"]] += 1
        tally["near misses"] += len(told["nearMisses"])
        self.seen += 1
        if self.seen % SAMPLE == 1:
            import jsonschema  # pylint: disable=import-outside-toplevel
            try:
                jsonschema.Draft7Validator(self.schema).validate(told)
            except jsonschema.ValidationError as error:
                raise Broken("the explanation is not in its form", error.message) from None
            tally["by the library"] += 1


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("library", help="the library libqncorvane-host")
    parser.add_argument("schema", help="SQL script that makes the store's tables")
    parser.add_argument("form", help="JSON schema of the explanation")
    parser.add_argument("--count", type=int, default=2000, help="how many tills (2000)")
    parser.add_argument("--seed", type=int, default=1, help="another number, other tills (1)")
    parser.add_argument("--jobs", type=int, default=1, help="processes (1)")
    parser.add_argument("--till", help="check the till of this file instead of generated ones")
    options = parser.parse_args()
    begin = time.monotonic()
    failure, tally = Runs(options, Check).run()
    calls = tally.pop("calculations", 0)
    print(f"{tally.pop('tills', 0)} tills, {calls} calculations ({time.monotonic() - begin:.1f} s)")
    for name, number in sorted(tally.items()):
        print(f"  {name}: {number}")
    if failure:
        tell_failure(failure)
        return 1
    return 0


if __name__ == "__main__":
    sys.stdout.reconfigure(errors="backslashreplace")
    try:
        sys.exit(main())
    except (OSError, ValueError) as error:
        print(f"complete: {error}", file=sys.stderr)
        sys.exit(2)
