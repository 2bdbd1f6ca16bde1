"""Sentences: made from the library's texts alone, in both languages, with nothing left open."""

import json
from typing import Any

import pytest
from hypothesis import given
from hypothesis import strategies as st

from qncorvane import Explanation, NearMiss, Reason, Sentences, texts

from explanations import BY_HAND, SCHEMA, decision, outcome, values

GOODS = {"100101": "Orange juice", "200201": "Yoghurt"}
RULES = {"PTXS-01": "Juice of the week"}


def explained(because: dict[str, Any]) -> Explanation:
    """An explanation whose one rule was refused for this."""
    return Explanation.from_json(json.dumps({**BY_HAND, "rules": [
        {"billNo": "R1", "type": "PTXS", "primary": "PT", "outcomes": [outcome(1, because)]}]}))


def said(because: dict[str, Any], lang: str = "en") -> str:
    explanation = explained(because)
    return Sentences(lang, goods=GOODS, rules=RULES).outcome(explanation.rules[0].outcomes[0], explanation, rule="R1")


def test_a_quantity_that_is_short() -> None:
    short = decision("BelowMinimum", lines=[2], unit="quantity", have=5, need=6)
    assert said(short) == "needs 6 of Yoghurt, has 5"
    assert said(short, "zh") == "需要Yoghurt 6 件，现有 5 件"


def test_money_has_two_decimals_and_a_text_of_its_own() -> None:
    assert said(decision("BelowThreshold", unit="money", have=37.8, need=50)) == "starts at 50.00, what counts comes to 37.80"
    assert said(decision("BelowThreshold", unit="quantity", have=0.5, need=3)) == "starts at 3 pieces, has 0.5"


def test_goods_that_others_took() -> None:
    taken = decision("NothingOpen", lines=[1], unit="quantity", have=0, takenBy=[{"billNo": "R7", "primary": "DZ"}])
    assert said(taken) == "Orange juice was taken by R7 (DZ)"
    assert said({**taken, "lines": [1, 2]}) == "Orange juice and Yoghurt were taken by R7 (DZ)"
    assert said({**taken, "takenBy": []}) == "nothing is left open of Orange juice"


def test_what_others_took_stands_behind_a_reason_that_has_no_text_for_it() -> None:
    short = decision("BelowMinimum", lines=[2], unit="quantity", have=5, need=6, takenBy=[
        {"billNo": "R7", "primary": "DZ"}, {"billNo": "R8", "primary": ""}])
    assert said(short) == "needs 6 of Yoghurt, has 5; Yoghurt was taken by R7 (DZ), R8"


def test_days_and_spans() -> None:
    assert said(decision("WeekdayOutside", unit="weekday", have=3, need="0, 6")) == (
        "only on Sunday, Saturday; the sale was on a Wednesday")
    assert said(decision("DateOutside", unit="date", have="2023-12-31", need="2024-01-01..2099-12-31")) == (
        "valid 2024-01-01 to 2099-12-31; the sale is of 2023-12-31")


def test_what_is_not_known() -> None:
    assert said(decision("MemberOther", unit="member", have="", need="01")) == (
        "only for members of type 01; the sale's member is of type (none)")


def test_many_goods_are_the_goods() -> None:
    explanation = explained(decision("Excluded"))
    assert Sentences("en", goods=GOODS).decision(explanation.rules[0].outcomes[0].looked[0]) == "leaves the goods out"


def test_what_was_given() -> None:
    explanation = Explanation.from_json(json.dumps({**BY_HAND, "rules": [
        {"billNo": "R1", "type": "MZZP", "primary": "PT", "outcomes": [
            outcome(1, None, 153), outcome(1, None, offers=1), outcome(1, None, coupons=2), outcome(1, None),
            outcome(1, None, 5, coupons=1)]}]}))
    sentences = Sentences("en")
    assert [sentences.outcome(each) for each in explanation.rules[0].outcomes] == [
        "applied  -1.53", "gifts to choose from", "coupons given: 2", "applied", "applied  -0.05, coupons given: 1"]


def test_what_to_do() -> None:
    explanation = explained(decision("BelowMinimum", lines=[2], unit="quantity", have=5, need=6))
    because = explanation.rules[0].outcomes[0].looked[0]
    assert Sentences("en", goods=GOODS).advice(because, explanation) == "1 more, and it applies"
    nothing = explained(decision("Unexplained")).rules[0].outcomes[0].looked[0]
    assert Sentences("en").advice(nothing) == ""


@pytest.mark.parametrize("brings, tells", [
    ({"cents": 90, "ruleCents": 90}, "1 more Yoghurt at 0.80: 0.90 off"),
    ({"cents": -10, "ruleCents": 90},
     "1 more Yoghurt at 0.80: 0.90 off by this promotion, 0.10 less off the whole sale, because others lose more"),
    ({"cents": 0, "ruleCents": 0}, "1 more Yoghurt at 0.80: nothing more off"),
    ({"cents": 0, "ruleCents": 0, "offers": 1}, "1 more Yoghurt at 0.80: gifts to choose from"),
    ({"cents": 5, "ruleCents": 5, "coupons": 1, "couponCents": 500}, "1 more Yoghurt at 0.80: 0.05 off, coupons for 5.00 more"),
    (None, "1 more Yoghurt at 0.80: what it brings is not known, as the price is not"),
])
def test_what_would_bring_more(brings: dict[str, int] | None, tells: str) -> None:
    whole = None if brings is None else {"offers": 0, "coupons": 0, "couponCents": 0, "money": 0, **brings}
    miss = {**BY_HAND["nearMisses"][0], "brings": whole}
    (near_miss,) = Explanation.from_json(json.dumps({**BY_HAND, "nearMisses": [miss]})).near_misses
    assert Sentences("en", goods=GOODS).near_miss(near_miss) == tells


@pytest.mark.parametrize("addition, tells", [
    ({"what": "goods", "count": 0.25, "price": None}, "0.25 more Yoghurt"),
    ({"what": "payment", "count": 12.5, "price": None}, "12.50 more paid"),
    ({"what": "coupon", "count": 5, "price": None}, "coupons for 5.00 presented"),
])
def test_what_is_to_be_added(addition: dict[str, Any], tells: str) -> None:
    miss = {**BY_HAND["nearMisses"][0], "add": [{"pluCode": "200201", "serialNo": 0, **addition}]}
    (near_miss,) = Explanation.from_json(json.dumps({**BY_HAND, "nearMisses": [miss]})).near_misses
    assert Sentences("en", goods=GOODS).near_miss(near_miss) == f"{tells}: 0.90 off"


def test_a_line_s_steps_and_the_passes() -> None:
    explanation = Explanation.from_json(json.dumps(BY_HAND))
    sentences = Sentences("en", rules=RULES)
    assert sentences.step(explanation.lines[0].steps[0]) == "Juice of the week"
    assert [sentences.passing(each) for each in explanation.passes] == ["ordinary promotions", "combinations"]


def test_another_language() -> None:
    with pytest.raises(ValueError, match="'de' is neither en nor zh"):
        Sentences("de")


@pytest.mark.parametrize("lang", ["en", "zh"])
@given(told=values(SCHEMA["definitions"]["decision"]), number=st.integers(0, 3))
def test_no_decision_leaves_a_field_open(lang: str, told: Any, number: int) -> None:
    told = {**told, "slot": "S", "goods": "G", "have": None, "need": "N", "takenBy": [{"billNo": "R", "primary": "PT"}][:number]}
    sentence = said(told, lang)
    assert sentence and "{" not in sentence


@pytest.mark.parametrize("lang", ["en", "zh"])
@pytest.mark.parametrize("reason", Reason)
def test_every_reason_has_a_sentence(reason: Reason, lang: str) -> None:
    assert said(decision(reason.value), lang) != reason.value


@given(values(SCHEMA["definitions"]["nearMiss"]))
def test_no_near_miss_leaves_a_field_open(told: Any) -> None:
    told = {**told, "add": [{**each, "pluCode": "P"} for each in told["add"]]}
    (near_miss,) = Explanation.from_json(json.dumps({**BY_HAND, "nearMisses": [told]})).near_misses
    assert isinstance(near_miss, NearMiss)
    for lang in ("en", "zh"):
        assert "{" not in Sentences(lang).near_miss(near_miss)


def test_the_texts_are_the_library_s() -> None:
    assert texts()["version"] == 1
    assert set(texts()["reasons"]["BelowMinimum"]) >= {"en", "zh"}
