"""What the till shows: widths in cells, the receipt, the reasons, and the pages of why."""

import dataclasses
import json
import pathlib
from typing import Any

import pytest

from qncorvane import Engine, Explanation, Reason
from qncorvane.till.model import SaleState
from qncorvane.till.view import cells, clean, cut, near_misses, row, verdicts, wrap

from desk import Desk
from explanations import BY_HAND, decision, outcome


@pytest.fixture
def desk(engine: Engine, store: pathlib.Path) -> Desk:
    """A till on the sample store."""
    return Desk(engine, store)


def explained(state: SaleState, *told: dict[str, Any]) -> SaleState:
    """The same sale with other explanations."""
    return dataclasses.replace(state, explanations=tuple(Explanation.from_json(json.dumps(each)) for each in told))


Told = tuple[str, dict[str, Any] | None, dict[str, int]]


def told(*outcomes: Told) -> tuple[Told, ...]:
    """Rules, each with why it gave nothing and what else came of it."""
    return outcomes


BEHIND = {**BY_HAND, "mode": "MzPromotion", "passes": [{"pass": 1, "kind": "FullAmount", "class": ""}], "rules": [
    {"billNo": number, "type": number[:4], "primary": "PT", "outcomes": [outcome(1, because, **more)]}
    for number, because, more in told(
        ("PTXS-01", decision("OtherPass"), {}), ("PTPL-01", decision("OtherPass"), {}), ("ZHZY-01", decision("OtherPass"), {}),
        ("MZZP-01", decision("BelowThreshold", unit="money", have=9.97, need=60), {}), ("MZHG-01", None, {"offers": 1}),
        ("MZZQ-01", None, {"coupons": 2}))], "nearMisses": [
    {"billNo": "MZZP-01", "type": "MZZP", "reason": "BelowThreshold", "slot": "", "tier": 1, "unit": "money", "have": 9.97,
     "need": 60, "missing": 50.03, "add": [{"what": "goods", "pluCode": "950101", "serialNo": 0, "count": 3, "price": 18.90}],
     "brings": {"cents": 500, "money": 5.00, "ruleCents": 0, "offers": 1, "coupons": 0, "couponCents": 0}},
    {"billNo": "MZZQ-01", "type": "MZZQ", "reason": "BelowThreshold", "slot": "", "tier": 1, "unit": "money", "have": 9.97,
     "need": 10, "missing": 0.03, "add": [{"what": "goods", "pluCode": "900101", "serialNo": 0, "count": 1, "price": 0.30}],
     "brings": {"cents": 0, "money": 0, "ruleCents": 0, "offers": 0, "coupons": 0, "couponCents": 0}}]}

REASONS = """\
WITHIN REACH
  PTPL-01 From six yoghurts on, 0.65 ea…
    1 more Yoghurt, strawberry at 0.80:
    0.90 off
  MZZP-01 A gift from 60.00 on
    3 more Washing powder 5 kg at 18.90:
    5.00 off, gifts to choose from

GIVEN
  PTXS-01 Juice of the week        -1.53
  MZHG-01 From 30.00 on, a mug fo… gifts
  MZZQ-01 A coupon for each 25.… coupons

NOT GIVEN
  PTPL-01 From six yoghurts on, 0.65 ea…
    needs 6 of Yoghurt, strawberry, has
    5
  MZZP-01 A gift from 60.00 on
    starts at 60.00, what counts comes
    to 9.97

NOT FOR THESE GOODS
  ZHZY-01 Toothpaste: three for two"""


def test_reasons_tell_what_is_near_first_and_what_is_far_last(desk: Desk) -> None:
    state = explained(desk.state, BY_HAND, BEHIND)
    assert "\n".join(desk.view.reasons(state, 40)) == REASONS
    assert [verdict.bill_no for verdict in verdicts(state)] == ["PTXS-01", "MZHG-01", "MZZQ-01", "PTPL-01", "MZZP-01", "ZHZY-01"]
    assert [each.bill_no for each in near_misses(state)] == ["MZZQ-01", "PTPL-01", "MZZP-01"]


def test_rules_of_another_step_are_told_as_such(desk: Desk) -> None:
    told = {**BEHIND, "mode": "Pay", "rules": [{"billNo": "MZZF-01", "type": "MZZF", "primary": "DJ", "outcomes": [
        outcome(1, decision("OtherPass", unit="pass", have="FullAmount", need="Pay")), outcome(1, decision("OtherClass"))]}]}
    assert desk.view.reasons(explained(desk.state, {**told, "nearMisses": []}), 40) == [
        "IN ANOTHER STEP", "  MZZF-01 Bank card: 2.00 for each 30.00"]
    because = verdicts(explained(desk.state, told))[0].because
    assert because is not None and because.reason is Reason.OTHER_PASS


def test_reasons_in_chinese(engine: Engine, store: pathlib.Path) -> None:
    desk = Desk(engine, store, "zh")
    told = desk.view.reasons(explained(desk.state, BY_HAND), 36)
    assert told[:3] == ["还差一点", "  PTPL-01 From six yoghurts on, 0.6…", "    再加Yoghurt, strawberry 1"]
    assert all(cells(line) <= 36 for line in told)


def test_a_sale_without_goods_has_no_reasons(desk: Desk) -> None:
    assert desk.view.reasons(desk.state, 40) == []
    assert desk.view.receipt(desk.state, 40) == ["No goods yet. Type a code or a name;", "help tells the commands."]


RECEIPT = """\
  1 Orange juice 1 l   3 x 2.50      7.50
      Juice of the week             -1.53
  2 Bananas, per … 1.375 x 1.90      2.61
      Fruit 20 % off at weekends    -0.52
  3 Rye bread 1 kg                   void
-----------------------------------------
Before                              10.11
  Fruit 20 % off at weekends        -0.52
  Juice of the week                 -1.53
At the subtotal                      8.06"""


def test_a_receipt(desk: Desk) -> None:
    desk.type("3 x 100101", "1.375 x bananas", "300101", "void 3")
    assert "\n".join(desk.view.receipt(desk.state, 41)) == RECEIPT


PAID = """\
------------------------------------------------------------
Before                                                 82.00
  Bank card: 2.00 for each 30.00                       -4.00
  5.00 off from 50.00 on                               -7.00
  Dairy from 10.00 on: a bread free                    -3.20
  Buy three croissants, get one                        -1.10
  Juice of the week                                    -1.02
To pay                                                 65.68
Coupons for the next visit (A coupon for each 25.00)   10.00
Offered: Mug (gift MZHG-01)                             2.00
Gift: 1 x Shopping bag                                  0.00
Paid, CARD                                             69.68
Change                                                  4.00"""


def test_the_end_of_a_receipt(desk: Desk) -> None:
    desk.type("2 x 950101", "2 x 950201", "2 x 100101", "4 x 300201", "2 x 200103", "200102", "300101", "subtotal",
              "gift MZZP-01 900101", "pay CARD 69.68 6212345678901234")
    told = desk.view.receipt(desk.state, 60)
    assert "\n".join(told[told.index("-" * 60):]) == PAID


def test_a_return_and_what_is_still_to_pay(desk: Desk) -> None:
    desk.type("950101", "return 2 x 100101", "subtotal", "pay CASH 10")
    told = desk.view.receipt(desk.state, 50)
    assert told[1] == "  2 Orange juice 1 l           -2 x 2.50     -5.00"
    assert told[-2:] == ["Paid, CASH                                   10.00",
                         "Still to pay                                  3.90"]


def test_a_gift_with_a_price_is_to_be_paid_with_the_goods(desk: Desk) -> None:
    desk.type("2 x 950101", "2 x 950201", "2 x 100101", "subtotal", "gift MZHG-01 mug")
    assert desk.view.receipt(desk.state, 50)[-2:] == [
        "Gift: 1 x Mug                                 2.00", "To pay with gifts                            57.38"]


def test_why_of_a_rule(desk: Desk) -> None:
    assert desk.view.why_rule(explained(desk.state, BY_HAND), "PTPL-01", 60) == [
        "PTPL-01 From six yoghurts on, 0.65 each",
        "  All: ordinary promotions: needs 6 of Yoghurt, strawberry,",
        "  has 5",
        "  All: combinations, DZ: is calculated in another step:",
        "  ordinary promotions",
        "  WITHIN REACH: 1 more Yoghurt, strawberry at 0.80: 0.90 off"]


def test_why_of_a_rule_that_gave_something(desk: Desk) -> None:
    told = desk.view.why_rule(explained(desk.state, BY_HAND), "PTXS-01", 60)
    assert told[:3] == ["PTXS-01 Juice of the week", "  All: ordinary promotions: applied  -1.53",
                        "    line 1                                             -1.53"]


def test_why_of_a_line(desk: Desk) -> None:
    desk.type("3 x 100101", "5 x 200201")
    state = explained(desk.state, BY_HAND)
    assert desk.view.why_line(state, 1, 40) == [
        "1 Orange juice 1 l                  7.50",
        "  Juice of the week                -1.53",
        "                                    5.97"]
    assert desk.view.why_line(state, 2, 40) == [
        "2 Yoghurt, strawberry               4.00",
        "  PTPL-01 From six yoghurts on, 0.65 ea…",
        "    needs 6 of Yoghurt, strawberry, has",
        "    5"]


def test_the_title_has_what_the_sale_goes_by(desk: Desk) -> None:
    desk.type("member 01", "member 07", "shop 02")
    assert desk.view.title(desk.state, 80) == "Sale T-0001   Shop 02   2024-06-15 12:00   Member 01, 07"
    assert desk.view.title(desk.state, 20) == "Sale T-0001   Shop …"


@pytest.mark.parametrize("text, width", [("abc", 3), ("橙汁", 4), ("e\u0301", 1), ("👍", 2), ("👨\u200d👩", 4), ("", 0)])
def test_cells(text: str, width: int) -> None:
    assert cells(text) == width


def test_texts_are_cut_between_letters() -> None:
    assert (cut("橙汁一升", 8), cut("橙汁一升", 7), cut("橙汁一升", 6), cut("abc", 2), cut("abc", 0)) == ("橙汁一升", "橙汁一…", "橙汁…", "a…", "")
    assert row("橙汁一升", "2.50", 12) == "橙汁一… 2.50"


def test_lines_are_broken_at_blanks_and_within_what_is_too_wide() -> None:
    assert wrap("one two three", 7) == ["one two", "three"]
    assert wrap("one two three", 9, "  ") == ["  one two", "  three"]
    assert wrap("再加一件即可享受", 6) == ["再加一", "件即可", "享受"]
    assert wrap("a 再加一件", 5) == ["a", "再加", "一件"]
    assert wrap("", 5) == []


def test_what_would_move_the_cursor_is_not_shown() -> None:
    assert clean("a\x1b[2J\tb\nc\x00\u202ed\u2028") == "a\ufffd[2J b c\ufffd\ufffdd\ufffd"


def test_names_with_escapes_in_them(engine: Engine, store: pathlib.Path) -> None:
    (store / "goods.xml").write_text('<Goods><Row PluCode="1" Name="Tea&#9;&#10;\u202e\x7f" Price="1"/></Goods>', "utf-8")
    desk = Desk(engine, store)
    desk.type("1")
    assert desk.view.receipt(desk.state, 40)[0].startswith("  1 Tea  \ufffd\ufffd")
