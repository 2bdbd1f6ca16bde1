"""The properties. Each is a function whose docstring states it; it plays variants of a till and raises `Broken` where
the property does not hold. Where the engine's contract takes an exception, that is a rule which is checked, too.

A function counts in `tally` what it met. What a property has under `needs` has to occur in a run of some size, so that
none holds for want of an occasion.
"""

import collections
import random

import rules
from chance import Chance
from oracles import fixed_discounts, reduction_sums
from results import (CENT, SALE_FORM, SINGLE_FORM, SUBTOTALS, UNTOUCHED, Decimal, ElementTree, Result, faults_of_form,
                     is_load, key_of, mode_of, money, results, rules_of, sent_lines)
from shop import Shop

PROPERTIES = []
LINE_FAMILIES = ("PT", "ZH")


class Broken(Exception):
    """A property that does not hold. `what` is the same for all tills that break it in the same way."""

    def __init__(self, what, detail=""):
        super().__init__(f"{what}: {detail}" if detail else what)
        self.what = what


def prop(needs=(), careless=False, focus=()):
    """Registers a property. Every second till is one of a careless host with `careless`, and one with rules of these
    types alone with `focus`."""
    def register(function):
        function.needs, function.careless, function.focus = needs, careless, focus
        PROPERTIES.append(function)
        return function
    return register


def same(what, first, second, tally, parts=slice(0, 3)):
    """Compares answers call by call: return code, `msg` and result."""
    if len(first) != len(second):
        raise Broken(what, f"{len(first)} and {len(second)} answers")
    for place, (one, other) in enumerate(zip(first, second), 1):
        tally["answers compared"] += 1
        if isinstance(one, str) or isinstance(other, str):
            if one != other:
                raise Broken(what, f"call {place}: {one!r} and {other!r}")
        elif one[parts] != other[parts]:
            raise Broken(what, f"call {place}:\n{first_difference(one, other)}")


def first_difference(one, other):
    """The first lines that differ in two answers."""
    for part, alternative in zip(one, other):
        if part != alternative:
            lines = [str(text).splitlines() for text in (part, alternative)]
            for mine, its in zip(*lines):
                if mine != its:
                    return f"    {mine.strip()}\n    {its.strip()}"
            return f"    {part!r}\n    {alternative!r}"
    return "    nothing"


def with_calls(till, calls, **changes):
    return {**till, "calls": calls, **changes}


# --- What every result is --------------------------------------------------------------------------------------------


@prop(needs=("Sale form", "Single form"), careless=True)
def numbers_are_finite_and_in_form(till, engines, tally):
    """Every number in a result is finite and written in the form that docs/xml.md tells: two decimals, four, or a whole
    number; and every element has just the attributes that stand there."""
    for place, call, text in results(till, engines.play(till)):
        form, name = (SINGLE_FORM, "Single form") if mode_of(call) == "Single" else (SALE_FORM, "Sale form")
        tally[name] += 1
        for fault in faults_of_form(Result(text).root, form):
            raise Broken("a result is not in form", f"call {place + 1}: {fault}")


@prop(needs=("results", "results for texts that are no UTF-8"), careless=True)
def a_result_is_xml_and_utf8(till, engines, tally):
    """A result parses as XML and is UTF-8.

    Exception: bytes that are no UTF-8 come out only where some went in. The result parses then, too, once they are
    replaced.
    """
    foreign = any(is_foreign(text) for call in till["calls"] for text in call if isinstance(text, str))
    for place, _, text in results(till, engines.play(till)):
        tally["results"] += 1
        tally["results for texts that are no UTF-8"] += foreign
        if is_foreign(text) and not foreign:
            raise Broken("a result is not UTF-8", f"call {place + 1}")
        try:
            ElementTree.fromstring(text.encode("utf-8", "replace"))
        except ElementTree.ParseError as error:
            raise Broken("a result is no XML", f"call {place + 1}: {error}") from error


def is_foreign(text):
    """Whether a text stands for bytes that are no UTF-8."""
    return any("\ud800" <= letter <= "\udfff" for letter in text)


# --- What it depends on ----------------------------------------------------------------------------------------------


@prop(needs=("answers compared",), careless=True)
def a_fresh_engine_gives_the_same_bytes(till, engines, tally):
    """The same calls on a fresh engine give the same bytes: codes, texts, results and log, in another process, whose
    memory holds something else before it is used."""
    same("a fresh engine answers otherwise", engines.play(till), engines.play_elsewhere(till), tally, slice(0, 4))


@prop(needs=("subtotals sent twice", "subtotals without lines"))
def a_subtotal_twice_gives_the_same_bytes(till, engines, tally):
    """"All" twice with the same XML gives the same bytes, and so do "Union" and "Zh".

    Exception: a text without lines discounts what is left of the last time. It gives what the same sale gives whose
    lines are sent at the amounts that were left, up to a cent a discount; where every line's unit price follows its
    amount, that is.
    """
    calls, doubled, alone = [], [], None
    for call in till["calls"]:
        calls.append(call)
        if mode_of(call) in SUBTOTALS and call[0] == "CalcPromotion":
            calls.append(call)
            doubled.append(len(calls) - 2)
            alone = call
    answers = engines.play(with_calls(till, calls))
    for place in doubled:
        tally["subtotals sent twice"] += 1
        same(f"{calls[place][2]} twice gives something else", answers[place:place + 1], answers[place + 1:place + 2],
             tally)
    if alone is not None:
        without_lines(till, alone, engines, tally)


def without_lines(till, call, engines, tally):
    """The exception, on one subtotal of a till."""
    loads = [load for load in till["calls"] if is_load(load)]
    header = ["CalcPromotion", call[1], call[2], without_group(call[3], "Plu")]
    first, again = engines.play(with_calls(till, loads + [call, header]))[-2:]
    left = Result(first[2])
    if not all(follows(line) for line in left.lines.values()) or rounds_nothing(till, left):
        return
    resent = ["CalcPromotion", call[1], call[2], at_amounts(call[3], left.lines)]
    other = engines.play(with_calls(till, loads + [resent]))[-1]
    tally["subtotals without lines"] += 1
    if not nearly_same(Result(again[2]), Result(other[2])):
        raise Broken("a subtotal without lines does not go on from what is left", first_difference(again, other))


def nearly_same(one, other):
    """Whether two results give the same up to cents: an amount that was left, and the same sent, may differ in the last
    digits that a double has, and with them on which side of half a cent a discount falls."""
    if [(row["RowID"], row["ProBillNo"], row["DisNum"]) for row in one.rows_of_lines()] != \
            [(row["RowID"], row["ProBillNo"], row["DisNum"]) for row in other.rows_of_lines()]:
        return False
    return all(abs(Decimal(line["Total"]) - Decimal(other.lines[serial]["Total"])) <= CENT * len(one.rows)
               for serial, line in one.lines.items())


def follows(line):
    """Whether a line's unit price is its amount by its quantity."""
    count = Decimal(line["PluCount"])
    return count == 0 or abs(Decimal(line["FinalPrice"]) - Decimal(line["Total"]) / count) < Decimal("0.00006")


def without_group(xml, name):
    root = ElementTree.fromstring(xml)
    for group in root.findall(name):
        root.remove(group)
    return ElementTree.tostring(root, "unicode")


def at_amounts(xml, lines):
    root = ElementTree.fromstring(xml)
    for row in root.iterfind("Plu/Row"):
        row.set("Total", lines[row.get("SerialNo")]["Total"])
    return ElementTree.tostring(root, "unicode")


@prop(needs=("rules that can't apply",) + tuple(f"idle by {reason}" for reason in
                                                ("shop", "date", "hours", "member", "goods"))
      + ("coupons taken at any time",))
def an_idle_rule_changes_nothing(till, engines, tally):
    """A rule that can't apply changes nothing but the log: one of another shop, one that has ended or holds at other
    hours, one for another member, one for goods that nobody has.

    Exception: coupons are taken at any time. With a rule for that the day makes no difference.
    """
    chance = Chance(till["seed"], tidy=True)
    kind = chance.choice(rules.TYPES)
    reason = chance.choice(["shop", "date", "hours", "member", "goods"])
    date = f"2026-08-{till['seed'] % 28 + 1:02}"
    rule = rules.make_rule(chance, Shop(Chance(till["seed"], tidy=True)), "IDLE", kind, date)
    idle = with_rule(till, rule, reason, chance)
    place = next(number for number, call in enumerate(idle["calls"]) if call not in till["calls"])
    tally["rules that can't apply"] += 1
    tally[f"idle by {reason}"] += 1
    if kind == "MZYQ" and reason in ("date", "hours"):
        tally["coupons taken at any time"] += 1
        same("the day makes a difference to coupons", engines.play(idle),
             engines.play(with_rule(till, rule, None, Chance(till["seed"]), place)), tally)
        return
    answers = engines.play(idle)
    if answers[place][:2] != [0, "sucess"]:
        raise Broken("an idle rule is refused", answers[place][1])
    same(f"a rule that can't apply ({reason}) changes something", engines.play(till),
         answers[:place] + answers[place + 1:], tally)


def with_rule(till, rule, reason, chance, place=None):
    """The till with one more rule, which can't apply for that reason; without one nothing keeps it."""
    root = ElementTree.fromstring(rule.xml)
    element = root.find("Rule")
    rows = {table: [dict(row) for row in table_rows] for table, table_rows in rule.rows.items()}
    if reason == "goods":
        for_goods_of_nobody(element, rows)
    replace(element, "OrgFilter", [{"OrgCode": "S99" if reason == "shop" else "*"}])
    day = {**rules.DAY, **{"date": {"EndDate": "2026-11-20"}, "hours": {"StartTime": "11:00:00", "EndTime": "12:00:00"}
                           }.get(reason, {})}
    replace(element, "ProTime", [day])
    replace(element, "Vip", [{"VipType": "NOBODY"}] if reason == "member" else [])
    loads = [number for number, call in enumerate(till["calls"]) if is_load(call)]
    place = place or chance.randint(1, max(1, len(loads) - 1))
    load = ["InitPromotion", rule.load, ElementTree.tostring(root, "unicode")]
    calls = till["calls"][:place] + [load] + till["calls"][place:]
    stored = {table: table_rows + rows.pop(table, []) for table, table_rows in till["rows"].items()}
    return with_calls(till, calls, rows={**stored, **rows})


def replace(element, name, rows):
    """Gives a group these rows; without rows, no group."""
    for group in element.findall(name):
        element.remove(group)
    if rows:
        group = ElementTree.SubElement(element, name)
        for row in rows:
            ElementTree.SubElement(group, "Row", row)


def for_goods_of_nobody(element, rows):
    """Makes a rule one for goods that no sale has."""
    number = element.get("BillNo")
    for table in ("tProPrjDirectProAct", "tProPrjCombPluSet", "tProMzPluAct"):
        for row in rows.get(table, []):
            row["PluCode"] = "NOBODY"
    for row in rows.get("tProMzConPluSet", []):
        row.update(PluCode="NOBODY", InRange="IN")
    for row in rows.get("tpromzlist", []):
        row["ConAreaType"] = "DES"
    if "tProMzScheme" in rows:
        rows["tProMzConPluSet"] = [{"BillNo": number, "SerialNo": 1, "ListCode": "0", "DataId": "0",
                                    "PluCode": "NOBODY", "PluType": "PLU", "InRange": "IN"}]
        for row in rows["tProMzScheme"]:
            row["BaseConNum"] = max(row["BaseConNum"], 1)
    for offers in element.findall("ProList"):
        offers.set("ConAreaType", "DES")
        for row in offers.iterfind("PluCondition/Row"):
            row.attrib.update(PluCode="NOBODY", PluType="PLU", Contain="IN")
    if element.get("ProType") == "MZZF":
        replace(element, "PluCondition", [{"SerialNo": "1", "PluCode": "NOBODY", "PluType": "PLU", "MinNum": "1"}])


@prop(needs=("loads in another order", "answers compared"))
def loading_order_does_not_matter(till, engines, tally):
    """Rules may be loaded in any order: only among those of one stacking class and one `JzDate` the order counts, in
    which they keep their places here."""
    loads = [call for call in till["calls"] if call[0] == "InitPromotion"]
    shuffled = shuffled_loads(loads, random.Random(till["seed"]))
    tally["loads in another order"] += shuffled != loads
    order = iter(shuffled)
    calls = [next(order) if call[0] == "InitPromotion" else call for call in till["calls"]]
    same("the order of loading matters", engines.play(till), engines.play(with_calls(till, calls)), tally)


def shuffled_loads(loads, chance):
    """The loads in another order, in which those that may not pass each other don't."""
    groups = {}
    for load in loads:
        header = ElementTree.fromstring(load[2]).find("Rule").attrib
        # Of one number the last load wins: they stay in order as well.
        groups.setdefault((header.get("Primary"), header.get("JzDate")), []).append(load)
    marks = [group for group, members in groups.items() for _ in members]
    chance.shuffle(marks)
    places = {group: iter(members) for group, members in groups.items()}
    return [next(places[group]) for group in marks]


# --- What keeps sales apart ------------------------------------------------------------------------------------------


@prop(needs=("answers compared", "calls under other keys", "Single that saw another sale"),
      focus=("PTXS", "PTXS", "MZZF"))
def a_sale_is_not_touched_by_other_keys(till, engines, tally):
    """A sale under one key is not touched by calls under another.

    Exception: "Single" uses the rows that each rule read at its last "All" or "Union", of whatever sale. So a sale may
    differ from a "Single" on up to the next subtotal, which sends its lines again. The rows, and with them every
    answer, are the same when all that came after the subtotals of the other sales is left out.
    """
    keys = sorted({key_of(call) for call in till["calls"] if key_of(call) is not None})
    if len(keys) < 2:
        return
    key = random.Random(till["seed"]).choice(keys)
    full = own(till["calls"], engines.play(till), key)
    tally["calls under other keys"] += sum(key_of(call) not in (None, key) for call in till["calls"])
    alone = [call for call in till["calls"] if is_load(call) or key_of(call) == key]
    by_itself = own(alone, engines.play(with_calls(till, alone)), key)
    if not equal_but_for_single("a sale is touched by other keys", full, by_itself, tally):
        return
    tally["Single that saw another sale"] += 1
    readers = SUBTOTALS + ("Single",)
    some = [call for call in till["calls"] if is_load(call) or key_of(call) == key or mode_of(call) in readers
            or call[0] == "DeleteSaleSetByKey"]
    with_subtotals = own(some, engines.play(with_calls(till, some)), key)
    same("Single sees more than other sales' subtotals", [answer for _, answer in full],
         [answer for _, answer in with_subtotals], tally)


def own(calls, answers, key):
    """The calls under a key with their answers."""
    return [(call, answer) for call, answer in zip(calls, answers) if key_of(call) == key]


def equal_but_for_single(what, first, second, tally):
    """Compares answers under one key, in which a "Single" may differ, and what follows it up to the next subtotal.

    @return whether one did.
    """
    differed, open_to_differ = False, False
    for (call, one), (_, other) in zip(first, second):
        tally["answers compared"] += 1
        if call[0] == "DeleteSaleSetByKey" or (mode_of(call) in SUBTOTALS and sent_lines(call)):
            open_to_differ = False
        if one[:3] == other[:3]:
            continue
        if mode_of(call) == "Single":
            open_to_differ = True
        if not open_to_differ:
            raise Broken(what, f"{call[0]} {mode_of(call) or ''}\n{first_difference(one, other)}")
        differed = True
    return differed


@prop(needs=("sales sent again",))
def deleting_and_sending_again_equals_a_fresh_sale(till, engines, tally):
    """A sale that is deleted and sent again equals, byte for byte, one under a key that was never used; and it equals
    its first time, but for what "Single" saw: the first time, no subtotal had read any rows yet."""
    keys = sorted({key_of(call) for call in till["calls"] if key_of(call) is not None})
    if not keys:
        return
    key = random.Random(till["seed"]).choice(keys)
    loads = [call for call in till["calls"] if is_load(call)]
    sale = [call for call in till["calls"] if key_of(call) == key and call[0] != "DeleteSaleSetByKey"]
    if not sale:
        return
    tally["sales sent again"] += 1
    renamed = [[call[0], "a key of its own", *call[2:]] for call in sale]
    again = engines.play(with_calls(till, loads + sale + [["DeleteSaleSetByKey", key]] + sale))
    fresh = engines.play(with_calls(till, loads + sale + renamed))
    same("a deleted sale is not gone", again[-len(sale):], fresh[-len(sale):], tally)
    first = again[len(loads):len(loads) + len(sale)]
    equal_but_for_single("a deleted sale is not gone", list(zip(sale, first)), list(zip(sale, again[-len(sale):])),
                         tally)


# --- Where the money goes --------------------------------------------------------------------------------------------


@prop(needs=("lines with discounts", "rows cut by a money limit", "rows of a payment",
             "rows of coupons over chosen goods", "rows of coupons over the whole sale",
             "PTOS rows that leave the line", "amounts in fractions of a cent"),
      focus=rules.TYPES[:7] + ("MZZF", "MZYQ"))
def discounts_equal_what_left_the_lines(till, engines, tally):
    """The discount rows of a line come to what left its amount, to the cent: the amount that was sent, less `Total`.

    Exceptions: rows of a payment (MZZF), of coupons taken over chosen goods, and of PTOS with `DscType` "2" tell money
    that does not leave `Total`. Of coupons taken over the whole sale, what rounding left stands in the row of the first
    line alone. A limit on a rule's money cuts its rows to the limit and leaves `Total`, and what the
    shares of a later rule left may stand in them, as in any first row whose money stays on the line; "Single" knows no
    such limit.
    PTOS, ZHGD with a price for each article, and the free goods of MZDP and MZZM round nothing: their cents are those
    of the printed numbers. So are those of combinations with a price for the whole (ZHZY, ZHGD), measured against weighed
    goods or unit prices with fractions of a cent.
    """
    books, headers = {}, rules_of(till)
    knows_limits = {}
    for place, call, text in results(till, engines.play(till)):
        book = books.setdefault(call[1], {})
        if mode_of(call) in SUBTOTALS:
            book.clear()
        lines = sent_lines(call)
        book.update({serial: Decimal(line.get("Total", "0")) for serial, line in lines.items()})
        if lines:
            knows_limits[call[1]] = mode_of(call) != "Single"
        if mode_of(call) != "Single" and not knows_limits.get(call[1]):
            continue  # what "Single" gave has not been replaced yet
        limits = {number: header for number, header in headers.items()
                  if header.get("MaxYhType") == "1" and mode_of(call) != "Single"}
        result = Result(text)
        for serial, line in result.lines.items():
            if serial in book:
                check_line(till, limits, result, line, book[serial], tally, place)
        check_limits(till, limits, result, book, tally, place)


def check_line(till, limits, result, line, sent, tally, place):
    """Whether the rows of a line that are no exception come to what left it."""
    rows = [row for row in result.rows_of_lines() if row["RowID"] == line["SerialNo"]]
    if not rows or any(is_limited(row, limits) for row in rows) or bears_tail_of_coupons(till, result, line, tally):
        return
    tally["lines with discounts"] += 1
    if bears_unknown_tail(till, rows, line, tally, place):
        return
    left = sent - Decimal(line["Total"])
    leaving, staying, either = Decimal(0), [], []
    for row in rows:
        leaves = leaves_line(till, row, line, tally)
        if leaves is None:
            either.append(Decimal(row["DisMoney"]))
        elif leaves:
            leaving += Decimal(row["DisMoney"])
        else:
            staying.append(row)
    possible = [leaving] + [leaving + amount for amount in either]
    tolerance = Decimal(0)
    if any(has_fractions(till, result, row) for row in rows):
        tally["amounts in fractions of a cent"] += 1
        tolerance = CENT / 2 * (len(rows) + 1)
    if any(row["ProType"] in COUPONS for row in result.rows_of_lines()):
        # Over chosen goods, what rounding left stands in whatever row comes first, and its line keeps its amount.
        tolerance += CENT / 2 * len(result.lines)
    if min(abs(left - amount) for amount in possible) > tolerance:
        raise Broken("discounts are not what left the line",
                     f"call {place + 1}, line {line['SerialNo']}: {left} left, rows "
                     + ", ".join(f"{row['ProBillNo']} {row['DisMoney']}" for row in rows))


COUPONS = ("MZYQ", "MZZQ")


def bears_tail_of_coupons(till, result, line, tally):
    """Whether a line is the sale's first with a row of coupons taken over the whole sale."""
    numbers = {row["ProBillNo"] for row in result.rows_of_lines()
               if row["ProType"] in COUPONS and "ALL" in areas_of(till, row)}
    # A result tells the last line first, and so of the rows.
    first = {number: [row["RowID"] for row in result.rows_of_lines() if row["ProBillNo"] == number][-1]
             for number in numbers}
    tally["rows of coupons over the whole sale"] += line["SerialNo"] in first.values()
    return line["SerialNo"] in first.values()


def areas_of(till, row):
    """The areas of the lists of a rule for coupons."""
    return {group.get("ConAreaType") for group in rule_element(till, row["ProBillNo"]).iterfind("ProList")}


def bears_unknown_tail(till, rows, line, tally, place):
    """Whether what a later rule's shares left of its money may stand in a row whose money stays on the line: it lands on
    the line's first row, whichever rule's it is, and over weighed goods it is more than cents."""
    # A result tells the last row first.
    is_found = leaves_line(till, rows[-1], line, collections.Counter()) is not True and may_spread(till, place)
    tally["tails in rows that may stay on the line"] += is_found
    return is_found


def leaves_line(till, row, line, tally):
    """Whether a row's money left its line; None where the rule has some of either kind."""
    kind = row["ProType"]
    if kind == "MZZF":
        tally["rows of a payment"] += 1
        return False
    if kind in COUPONS:
        areas = areas_of(till, row)
        tally["rows of coupons over chosen goods"] += areas == {"DES"}
        return None if len(areas) > 1 else areas != {"DES"}
    if kind == "PTOS":
        kinds = {action["DscType"] == "2" for action in rows_in_store(till, "tProPrjDirectProAct", row["ProBillNo"])
                 if action["PluCode"] == line["PluCode"]}
        tally["PTOS rows that leave the line"] += kinds == {True}
        return None if len(kinds) > 1 else kinds != {True}
    return True


def has_fractions(till, result, row):
    """Whether a rule gives amounts that it doesn't round."""
    if row["ProType"] not in ("ZHGD", "ZHZY"):
        return row["ProType"] in ("PTOS", "MZDP", "MZZM")
    forms = rows_in_store(till, "tProPrjCombProAct", row["ProBillNo"])
    return any(form.get("PriceType") == "DP" for form in forms) or has_broken_units(result, row)


def has_broken_units(result, row):
    """Whether what a combination was measured against may have had fractions of a cent: weighed goods, unit prices of
    amounts that pieces don't divide, or of those that another rule had lowered before."""
    serials = {other["RowID"] for other in result.rows_of_lines() if other["ProBillNo"] == row["ProBillNo"]}
    return any(breaks_unit(result, result.lines[serial], row) for serial in serials)


def breaks_unit(result, line, row):
    rows = [other for other in result.rows_of_lines() if other["RowID"] == line["SerialNo"]]
    if any(other["ProBillNo"] != row["ProBillNo"] for other in rows):
        return True
    amount, pieces = Decimal(line["Total"]) + sum(Decimal(other["DisMoney"]) for other in rows), Decimal(line["PluCount"])
    return pieces == 0 or pieces % 1 != 0 or amount / pieces % CENT != 0


def rounds_nothing(till, result):
    return any(has_fractions(till, result, row) for row in result.rows_of_lines())


def rows_in_store(till, table, number):
    return [row for row in till["rows"].get(table, []) if row.get("BillNo") == number]


def rule_element(till, number):
    for call in till["calls"]:
        if call[0] == "InitPromotion":
            element = ElementTree.fromstring(call[2]).find("Rule")
            if element is not None and element.get("BillNo") == number:
                return element
    return ElementTree.Element("Rule")


def is_limited(row, limits):
    return row["ProBillNo"] in limits and row["ProType"] not in ("MZZF", *COUPONS)


def may_spread(till, place):
    """Whether a rule spreads money over lines in a call; in a subtotal ZHGD alone does. What its shares leave lands on
    the first row of a line, whichever rule's it is: over weighed goods, and lines that gave all away before, that is
    more than cents, and may be all of it."""
    modes = {SPREADS.get(header.get("ProType")) for header in rules_of(till).values()}
    return "All" in modes or (mode_of(till["calls"][place]) not in SUBTOTALS and "MzPromotion" in modes)


def check_limits(till, limits, result, book, tally, place):
    """Whether the rows of each rule with a limit on its money stay within it, and whether as much left the lines."""
    for number, header in limits.items():
        rows = [row for row in result.rows_of_lines() if row["ProBillNo"] == number and is_limited(row, limits)]
        if not rows:
            continue
        given, limit = money(rows), Decimal(header["MaxYhValue"])
        tally["rows cut by a money limit"] += abs(given - limit) <= CENT
        # What rounding left of later rules may stand in these rows.
        if given - limit > CENT + CENT / 2 * len(result.lines):
            if may_spread(till, place):
                tally["limits below what a later rule's rounding left"] += 1
                continue
            raise Broken("a rule gives more than its limit", f"call {place + 1}, {number}: {given} of {limit}")
        lines = {row["RowID"] for row in rows}
        if any(row["RowID"] in lines and row not in rows for row in result.rows_of_lines()) or not lines <= set(book):
            continue
        left = sum((book[serial] - Decimal(result.lines[serial]["Total"]) for serial in lines), Decimal(0))
        stays = any(leaves_line(till, row, result.lines[row["RowID"]], tally) is not True for row in rows)
        if left < given - CENT / 2 * (len(rows) + 1) and given > 0 and not stays:
            raise Broken("a limited rule tells more than left the lines",
                         f"call {place + 1}, {number}: {left}, {given}")


SPREADS = {"MZMJ": "MzPromotion", "MZDP": "MzPromotion", "MZZM": "MzPromotion", "ZHGD": "All"}


@prop(needs=("spreads of MZMJ", "spreads of MZDP", "spreads of MZZM", "spreads of ZHGD", "spreads of a payment",
             "spreads of coupons", "spreads with negative lines", "sums worked out", "sums cut by a limit",
             "free goods without a share"), focus=("MZMJ", "MZDP", "MZZM", "ZHGD", "MZZF", "MZYQ"))
def shares_sum_to_what_is_spread(till, engines, tally):
    """The shares of a spread sum to it: those of a payment's reduction and of coupons taken to the row for
    the whole sale; those of MZMJ, MZDP and ZHGD to what left the lines, and of MZMJ and ZHGD with a price for the whole
    to the sum that the store's rows give. That holds to the cent, and with negative lines as well.

    Exceptions: a limit on a rule's money cuts the rows of the discount, not the shares: they come to the limit then.
    The shares of MZZM lie on the lines that fill its threshold and don't have a row of it: none, when all have; and they
    come to more than the rows, when a free article's line had less than its share left. A limit on the combinations of
    ZHGD holds at each of the two visits that a rule of class "DZ" makes.
    """
    payments_and_coupons(till, engines.play(till), tally)
    sales = [call for call in till["calls"] if mode_of(call) == "All" and sent_lines(call)]
    loads = [call for call in till["calls"] if call[0] == "InitPromotion"]
    for load in loads if sales else []:
        rule_by_itself(till, load, sales[-1], engines, tally)


def payments_and_coupons(till, answers, tally):
    """Compares what each "Pay" and "Coupon" adds for the whole sale with what it adds to the lines."""
    before = {}
    for place, call, text in results(till, answers):
        mode, key = mode_of(call), call[1]
        if mode == "Single":
            continue
        result = Result(text)
        sums = money(result.rows_of_sale()), money(result.rows_of_lines())
        if mode in ("Pay", "Coupon") and key in before and sums != before[key]:
            whole, lines = (now - then for now, then in zip(sums, before[key]))
            tally["spreads of a payment" if mode == "Pay" else "spreads of coupons"] += 1
            unknown_area = mode == "Coupon" and whole != 0 and lines == 0
            # A share that lands on a row with fractions of a cent changes what that prints by a cent more or less.
            tolerance = CENT / 2 * len(result.rows_of_lines()) if rounds_nothing(till, result) else Decimal(0)
            if abs(whole - lines) > tolerance and not unknown_area:
                raise Broken("shares do not sum to what is spread",
                             f"call {place + 1}: {whole} for the sale, {lines} on lines")
        before[key] = sums


def rule_by_itself(till, load, sale, engines, tally):
    """Plays one spreading rule on one sale and compares its rows, its shares and what left the lines."""
    header = ElementTree.fromstring(load[2]).find("Rule").attrib
    number, kind = header["BillNo"], header["ProType"]
    if kind not in SPREADS:
        return
    rows = {table: rows_in_store(till, table, number) for table in till["rows"]}
    calls = [["BeginInitPro"], load, ["FinishInitPro"], ["CalcPromotion", "one", "All", sale[3]],
             ["CalcPromotion", "one", SPREADS[kind], without_group(sale[3], "Plu") if kind[:2] == "MZ" else sale[3]]]
    result = Result(engines.play(with_calls(till, calls, rows=rows))[-1][2])
    sent = {serial: Decimal(line.get("Total", "0")) for serial, line in sent_lines(sale).items()}
    left = sum(sent.values()) - sum(Decimal(line["Total"]) for line in result.lines.values())
    given, shared = money(result.rows_of_lines()), money(result.shares, "AppMoney")
    if left != 0:
        tally[f"spreads of {kind}"] += 1
        tally["spreads with negative lines"] += any(amount < 0 for amount in sent.values())
    tolerance = CENT / 2 * (len(result.rows) + len(result.lines)) if rounds_nothing(till, result) else Decimal(0)
    text = f"{number}: {left} left the lines, rows {given}, shares {shared}"
    check_rows(header, given, left, tolerance, text, tally)
    if kind == "MZZM":
        check_free_goods(result, sent, left, shared, tolerance, text, tally)
    elif abs(shared - left) > tolerance:
        raise Broken("shares do not sum to what is spread", text)
    sums = {"MZMJ": reduction_sums, "ZHGD": fixed_discounts}.get(kind, lambda *_: ())(header, rows, sent_lines(sale))
    # A rule that its filters keep back gives nothing.
    if sums and (left != 0 or result.rows):
        tally["sums worked out"] += 1
        if all(abs(Decimal(repr(expected)) - left) > CENT / 2 for expected in sums):
            raise Broken("a spread is not the sum that the rows give",
                         f"{text}, expected " + " or ".join(f"{expected:.4f}" for expected in sums))


def check_rows(header, given, left, tolerance, text, tally):
    """Whether the discount rows come to what left the lines, or to the rule's limit."""
    limit = Decimal(header["MaxYhValue"]) if header.get("MaxYhType") == "1" else None
    if limit is not None and given != left:
        tally["sums cut by a limit"] += 1
        if abs(given - limit) > CENT or left < limit:
            raise Broken("a limit cuts otherwise than to its money", text)
    elif abs(given - left) > tolerance:
        raise Broken("rows do not sum to what left the lines", text)


def check_free_goods(result, sent, left, shared, tolerance, text, tally):
    """The shares of free goods, which lie on other lines than their rows."""
    if abs(shared - left) <= tolerance:
        return
    lines = {row["RowID"] for row in result.rows_of_lines()}
    used_up = any(Decimal(result.lines[serial]["Total"]) <= 0 or sent[serial] < 0 for serial in lines)
    if shared == 0 and not result.shares:
        tally["free goods without a share"] += 1
    elif not (shared > left and used_up):
        raise Broken("shares of free goods are neither none nor their value", text)
