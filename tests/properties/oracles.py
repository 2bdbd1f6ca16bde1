"""Sums that a rule has to give, worked out from the store's rows and the lines of a sale that no other rule has
touched."""

import math


def number(row, name):
    return float(row.get(name) or 0)


def reduction_sums(header, rows, lines):
    """What a reduction (MZMJ) of one list may give; nothing for one that is not worked out here.

    An amount that is just so many steps may miss the last one by the digits that a double doesn't have.
    """
    lists = rows.get("tpromzlist", [])
    if len(lists) != 1 or header.get("MaxYhType") == "2":
        return ()
    amount = amount_of(lists[0], rows.get("tProMzConPluSet", []), lines.values())
    total = sum(number(line, "Total") for line in lines.values())
    if abs(total) < 1e-9 or abs(amount) < 1e-9:
        return ()
    tiers = [row for row in rows.get("tProMzDiscountAct", []) if row["ListCode"] == lists[0]["ListCode"]]
    if len({tier["BaseMoney"] for tier in tiers}) != len(tiers):
        return ()
    return {max(0.0, tiers_sum(tiers, amount + noise, number(lists[0], "MaxDiscount"))) for noise in (-1e-9, 0, 1e-9)}


def amount_of(offer, conditions, lines):
    """The money that counts: of a whole sale what its lines with an amount have, of chosen goods all that they have."""
    if offer["ConAreaType"] == "ALL":
        return sum(max(0.0, number(line, "Total")) for line in lines)
    own = [row for row in conditions if row["ListCode"] == offer["ListCode"]]
    return sum(max(0.0, number(line, "Total")) if number(line, "PluCount") == 0 else number(line, "Total")
               for line in lines if is_chosen(own, line))


def is_chosen(conditions, line):
    """Whether rows choose a line: named by none that leaves out, and by one that takes in."""
    named = [row["InRange"] for row in conditions if line.get("PluCode" if row["PluType"] == "PLU" else row["PluType"])
             == row["PluCode"] and row["PluType"] in ("PLU", "CAT", "BRD")]
    return "IN" in named and "NOT" not in named


def tiers_sum(tiers, amount, limit):
    """Walks the tiers from the highest threshold down; each takes its part of the amount."""
    rest, total = amount, 0.0
    for tier in sorted(tiers, key=lambda row: -row["BaseMoney"]):
        base = number(tier, "BaseMoney")
        if rest < base:
            continue
        most = number(tier, "SaleMaxIn")
        counted = min(rest, most) if most else rest
        repeats = number(tier, "AddMoney") == 0
        step, gift = (base, number(tier, "BaseDscMoney")) if repeats else (number(tier, "AddMoney"),
                                                                          number(tier, "AddDscMoney"))
        steps = int((counted - base) / step) if abs(step) > 1e-9 else 0
        total += number(tier, "BaseDscMoney") + max(0, steps) * gift
        reached = limit and total >= limit
        if reached:
            total = limit
        rest = (0 if reached else counted) - (base + steps * step)
        if repeats:
            rest = max(0.0, rest)
    return total


def fixed_discounts(header, rows, lines):
    """What a fixed combination (ZHGD) with a price for the whole may take off; nothing for one that is not worked out
    here."""
    form = (rows.get("tProPrjCombProAct") or [{}])[0]
    articles = [row for row in rows.get("tProPrjCombPluSet", []) if number(row, "SaleCount") >= 0.005]
    if form.get("PriceType") != "TC" or not articles or any(number(row, "SaleCount") < 1 for row in articles):
        return ()
    sets, value = math.inf, 0.0
    for article in articles:
        held = [line for line in lines.values() if line.get("PluCode") == article["PluCode"]
                and number(line, "PackCnt") in (0, 1) and number(line, "PluCount") > 0]
        pieces = sum(number(line, "PluCount") for line in held)
        if article["SaleCount"] > pieces:
            return (0.0,)
        sets = min(sets, math.floor(pieces) // math.floor(article["SaleCount"]))
        value += number(held[-1], "Total") / number(held[-1], "PluCount") * article["SaleCount"]
    gain = max(0.0, value - number(form, "PriceTotal"))
    if header.get("MaxYhType") != "2":
        return (sets * gain,)
    at_once = min(sets, int(number(header, "MaxYhValue")))
    return [count * gain for count in range(at_once, min(sets, at_once * (1 + (header.get("Primary") == "DZ"))) + 1)]
