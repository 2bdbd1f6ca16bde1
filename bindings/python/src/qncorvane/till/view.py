"""What the till shows, as lines of text of a given width: receipt, reasons, near misses, pages. Without a terminal.

Widths are in cells: a Chinese character takes two.
"""

from __future__ import annotations

import dataclasses
import unicodedata
from collections.abc import Iterator, Sequence
from decimal import Decimal

from .._explanation import Decision, Explanation, Gain, LineWaterfall, NearMiss, Reason, What
from .._result import Result
from .._sentences import Sentences
from .model import SaleState, Stage, TillLine
from .words import Words

# Reasons that say no more than that the rule has nothing to do with the step.
_ELSEWHERE = {Reason.OTHER_PASS, Reason.OTHER_CLASS, Reason.NO_OFFERS}
_GIVES_COUPONS = "MZZQ"
_TURNING = "\u202a\u202b\u202c\u202d\u202e\u2066\u2067\u2068\u2069"
_FAR = _ELSEWHERE | {Reason.NOT_NAMED, Reason.NO_LINES}


def clean(text: str) -> str:
    """The text on one line, without what would move a terminal's cursor or turn its writing round."""
    return "".join(" " if letter in "\t\n\r" else "\ufffd" if _is_unfit(letter) else letter for letter in text)


def _is_unfit(letter: str) -> bool:
    return unicodedata.category(letter) in ("Cc", "Cs", "Zl", "Zp") or letter in _TURNING


def cells(text: str) -> int:
    """How many cells a text takes."""
    return sum(_cells_of(letter) for letter in text)


def _cells_of(letter: str) -> int:
    if unicodedata.category(letter) in ("Mn", "Me", "Cf"):
        return 0
    return 2 if unicodedata.east_asian_width(letter) in "WF" else 1


def cut(text: str, width: int) -> str:
    """The text, cut to at most `width` cells."""
    if cells(text) <= width:
        return text
    taken = ""
    room = width - 1
    for letter in text:
        room -= _cells_of(letter)
        if room < 0:
            break
        taken += letter
    return taken + "…" if width > 0 else ""


def row(left: str, right: str, width: int) -> str:
    """A text and, at the right margin, another one, which stays whole."""
    left = cut(clean(left), max(width - cells(right) - 1, 0))
    return left + " " * max(width - cells(left) - cells(right), 0) + right


def wrap(text: str, width: int, indent: str = "") -> list[str]:
    """The text on as many lines as it takes: broken at blanks, and within what is wider than a line."""
    lines: list[str] = []
    line = indent
    for word in clean(text).split(" "):
        joined = f"{line} {word}" if line.strip() else indent + word
        if cells(joined) <= width:
            line = joined
            continue
        if line.strip():
            lines.append(line)
        *whole, line = _pieces(word, indent, max(width, cells(indent) + 2))
        lines += whole
    return [*lines, line] if line.strip() else lines


def _pieces(word: str, indent: str, width: int) -> Iterator[str]:
    piece = indent
    for letter in word:
        if cells(piece) + _cells_of(letter) > width:
            yield piece
            piece = indent
        piece += letter
    yield piece


def amount(money: Decimal) -> str:
    """An amount of money."""
    return f"{money + 0:.2f}"  # -0.00 is 0.00


def count(number: Decimal) -> str:
    """A quantity, without the zeros behind it."""
    shown = f"{number:f}"
    return shown.rstrip("0").rstrip(".") if "." in shown else shown


@dataclasses.dataclass(frozen=True, slots=True, kw_only=True)
class Verdict:
    """What came of a rule in all steps of the sale.

    Attributes:
        bill_no: the rule.
        money: what it took off.
        offers: the groups of gifts that it offers.
        coupons: the coupons that it gave.
        applied: whether it gave something.
        because: otherwise the decision that tells most.
        explanation: where that stands.
    """

    bill_no: str
    money: Decimal
    offers: int
    coupons: int
    applied: bool
    because: Decision | None
    explanation: Explanation | None


def verdicts(state: SaleState) -> list[Verdict]:
    """What came of each rule: those that gave something first, those that have nothing to do with the sale last."""
    numbers = dict.fromkeys(rule.bill_no for explanation in state.explanations for rule in explanation.rules)
    found = [_verdict(state.explanations, number) for number in numbers]
    return sorted(found, key=lambda verdict: 0 if verdict.applied else 2 if verdict.because is None or
                  verdict.because.reason in _FAR else 1)


def _verdict(explanations: Sequence[Explanation], bill_no: str) -> Verdict:
    cents = offers = coupons = 0
    applied = False
    because: tuple[Decision, Explanation] | None = None
    for explanation in explanations:
        for outcome in (outcome for rule in explanation.rules if rule.bill_no == bill_no for outcome in rule.outcomes):
            applied = applied or outcome.applied
            cents += outcome.cents
            offers = outcome.offers or offers
            coupons += outcome.coupons
            if outcome.because and (because is None or _weight(outcome.because) >= _weight(because[0])):
                because = outcome.because, explanation
    decision, where = because or (None, None)
    return Verdict(bill_no=bill_no, money=Decimal(cents).scaleb(-2), offers=offers, coupons=coupons, applied=applied,
                   because=None if applied else decision, explanation=where)


def _weight(decision: Decision) -> int:
    """How much a decision tells: where a rule runs in another step, that is more than that it is none of a pass."""
    if decision.reason is Reason.OTHER_PASS:
        return 1
    return 0 if decision.reason in _ELSEWHERE else 2


def near_misses(state: SaleState) -> list[NearMiss]:
    """What would bring more: what costs the least to reach first, what nobody can tell the price of last."""
    found = {(each.bill_no, each.tier, each.slot, each.reason): each
             for explanation in state.explanations for each in explanation.near_misses}
    return sorted(found.values(), key=_cost)


def _cost(near_miss: NearMiss) -> Decimal:
    """What would have to be paid to reach it; coupons cost nothing."""
    cost = Decimal(0)
    for each in near_miss.add:
        if each.what is What.PAYMENT:
            cost += each.count
        elif each.what is What.GOODS:
            cost += Decimal("Infinity") if each.price is None else each.count * each.price
    return cost


def _is_something(gain: Gain) -> bool:
    return gain.cents != 0 or gain.offers > 0 or gain.coupons > 0 or gain.coupon_cents > 0


class View:
    """What is shown of a sale, in the language of the texts."""

    def __init__(self, words: Words, sentences: Sentences) -> None:
        self._words = words
        self._sentences = sentences

    def title(self, state: SaleState, width: int) -> str:
        """The sale's number, shop, date and members, in one line."""
        text = self._words("title", bill=state.bill_no, shop=state.shop, moment=state.moment.strftime("%Y-%m-%d %H:%M"))
        if state.members:
            text += self._words("title_members", members=", ".join(state.members))
        return cut(clean(text), width)

    def receipt(self, state: SaleState, width: int) -> list[str]:
        """The lines with what came off each, the sums, offers, payments."""
        if not state.lines:
            return wrap(self._words("no_goods_yet"), width)
        lines = [text for number, line in enumerate(state.lines, 1) for text in self._line(state, number, line, width)]
        lines.append("-" * width)
        if state.result:
            lines += self._totals(state, state.result, width)
        return lines

    def reasons(self, state: SaleState, width: int) -> list[str]:
        """What is within reach, what was given, and why the rest gave nothing."""
        close = [each for each in near_misses(state) if each.brings is None or _is_something(each.brings)]
        parts = [("within_reach", [text for each in close
                                   for text in self._rule_text(each.bill_no, self._sentences.near_miss(each), width)])]
        found = verdicts(state)
        given = [row(f"  {self._rule(verdict.bill_no)}", self._gave(verdict), width) for verdict in found if verdict.applied]
        parts.append(("given", given))
        refused = [(verdict, verdict.because) for verdict in found if verdict.because]
        parts.append(("not_given", [text for verdict, because in refused if because.reason not in _FAR for text in self._rule_text(
            verdict.bill_no, self._sentences.decision(because, verdict.explanation, rule=verdict.bill_no), width)]))
        # Of these the heading says all.
        for heading, reasons in (("not_for_these", _FAR - _ELSEWHERE), ("another_step", _ELSEWHERE)):
            parts.append((heading, [cut(f"  {self._rule(verdict.bill_no)}", width)
                                    for verdict, because in refused if because.reason in reasons]))
        shown = [["", cut(self._words(heading), width), *lines] for heading, lines in parts if lines]
        return [text for lines in shown for text in lines][1:]

    def why_rule(self, state: SaleState, bill_no: str, width: int) -> list[str]:
        """All that a rule decided, step by step."""
        lines = [cut(clean(self._rule(bill_no)), width)]
        for explanation in state.explanations:
            kinds = {each.number: each for each in explanation.passes}
            for outcome in (outcome for rule in explanation.rules if rule.bill_no == bill_no for outcome in rule.outcomes):
                kind = kinds.get(outcome.pass_number)
                said = self._sentences.outcome(outcome, explanation, rule=bill_no)
                step = f"{explanation.mode.value}: {self._sentences.passing(kind) if kind else outcome.pass_number}"
                step += f", {kind.stacking_class}" if kind and kind.stacking_class else ""
                lines += wrap(f"{step}: {said}", width, "  ")
                for line in outcome.lines:
                    lines.append(row("    " + self._words("on_line", line=line.serial_no), amount(-line.money), width))
                for decision in outcome.looked:
                    # Who took what is missing may stand with the deciding one alone.
                    takers = outcome.because.taken_by if outcome.because else ()
                    if dataclasses.replace(decision, taken_by=takers) != outcome.because:
                        text = self._sentences.decision(decision, explanation, rule=bill_no)
                        lines += wrap(f"{self._place(decision)}{text}", width, "    ")
        close = [each for each in near_misses(state) if each.bill_no == bill_no]
        for each in close:
            lines += wrap(f"{self._words('within_reach')}: {self._sentences.near_miss(each)}", width, "  ")
        return lines

    def why_line(self, state: SaleState, number: int, width: int) -> list[str]:
        """The way of a line's amount, as the last step tells it."""
        line = state.lines[number - 1]
        lines = [row(f"{number} {line.goods.name}", amount(line.amount), width)]
        for waterfall in self._waterfall(state, number):
            for step in waterfall.steps:
                lines.append(row(f"  {self._sentences.step(step)}", amount(-step.money), width))
                lines.append(row("", amount(step.left), width))
        for verdict in verdicts(state):
            for decision, explanation in _about(state, verdict.bill_no, number):
                said = self._sentences.decision(decision, explanation, rule=verdict.bill_no)
                lines += self._rule_text(verdict.bill_no, said, width)
        return lines

    def _waterfall(self, state: SaleState, number: int) -> list[LineWaterfall]:
        found = [line for explanation in state.explanations for line in explanation.lines if line.serial_no == number]
        return found[-1:]

    def _line(self, state: SaleState, number: int, line: TillLine, width: int) -> Iterator[str]:
        times = "" if line.count == 1 else f"{count(line.count)} x {amount(line.price)}"
        text = f"{number:3} {clean(line.goods.name)}"
        if line.voided:
            yield row(text, self._words("void"), width)
            return
        sent = amount(line.amount)
        if times and cells(text) + cells(times) + cells(sent) + 4 <= width:
            yield row(text, f"{times}  {sent:>8}", width)
        else:
            yield row(text, sent, width)
            if times:
                yield cut(f"      {times}", width)
        for bill_no, money in _discounts(state.result, number).items():
            yield row(f"      {self._name(bill_no)}", amount(-money), width)

    def _totals(self, state: SaleState, result: Result, width: int) -> Iterator[str]:
        if result.totals.rules:
            yield row(self._words("before"), amount(result.totals.before), width)
        for rule in result.totals.rules:
            yield row(f"  {self._name(rule.bill_no)}", amount(-rule.amount), width)
        scanning = state.stage is Stage.SCANNING
        yield row(self._words("at_subtotal" if scanning else "to_pay"), amount(result.totals.to_pay), width)
        for given in result.discounts:
            if given.plu_code == "*" and given.pro_type == _GIVES_COUPONS:
                yield row(self._words("coupons_given", rule=self._name(given.pro_bill_no)), amount(given.dis_money), width)
        yield from self._offers(state, width)
        for payment in state.payments:
            yield row(self._words("paid_by", way=payment.pay_mode), amount(payment.pay_money), width)
        if state.payments:
            left = state.to_pay - state.paid
            yield row(self._words("still_to_pay" if left > 0 else "change"), amount(abs(left)), width)

    def _offers(self, state: SaleState, width: int) -> Iterator[str]:
        for offer in state.offers:
            for article in offer.articles:
                taken = state.picks.get((offer.pro_bill_no, article.plu_code))
                price = article.dsc_price or Decimal(0)
                name = self._sentences.goods(article.plu_code)
                if taken:
                    yield row(self._words("gift_taken", count=count(taken), goods=name), amount(price * taken), width)
                else:
                    yield row(self._words("gift_offered", goods=name, rule=offer.pro_bill_no), amount(price), width)
        if state.gifts:
            yield row(self._words("with_gifts"), amount(state.to_pay), width)

    def _name(self, bill_no: str) -> str:
        return clean(self._sentences.rule(bill_no))

    def _rule(self, bill_no: str) -> str:
        name = self._name(bill_no)
        return bill_no if name == bill_no else f"{bill_no} {name}"

    def _rule_text(self, bill_no: str, text: str, width: int) -> list[str]:
        return [cut(clean(f"  {self._rule(bill_no)}"), width), *wrap(text, width, "    ")]

    def _gave(self, verdict: Verdict) -> str:
        if verdict.money or not (verdict.offers or verdict.coupons):
            return amount(-verdict.money)
        return self._words("gifts" if verdict.offers else "coupons")

    def _place(self, decision: Decision) -> str:
        if decision.lines:
            return self._words("on_lines", lines=", ".join(str(line) for line in decision.lines)) + ": "
        return self._words("in_row", row=decision.row) + ": " if decision.row else ""


def _about(state: SaleState, bill_no: str, number: int) -> Iterator[tuple[Decision, Explanation]]:
    """What a rule decided about a line."""
    for explanation in state.explanations:
        for rule in explanation.rules:
            for outcome in rule.outcomes if rule.bill_no == bill_no else ():
                yield from ((decision, explanation) for decision in outcome.looked
                            if number in decision.lines and decision.reason not in _FAR)


def _discounts(result: Result | None, number: int) -> dict[str, Decimal]:
    """What each rule has taken off a line, in the order of the discounts."""
    found: dict[str, Decimal] = {}
    for discount in reversed(result.discounts if result else ()):
        if discount.row_id == number and discount.plu_code != "*":
            found[discount.pro_bill_no] = found.get(discount.pro_bill_no, Decimal(0)) + discount.dis_money
    return found
