"""Explanations and reports as data classes: whole, exact, and closed to what another version says."""

import dataclasses
import enum
import json
import pickle
import re
from decimal import Decimal
from typing import Any

import pytest
from hypothesis import given, settings

from qncorvane import (Addition, Decision, Engine, Explanation, Gain, LineMoney, LintFinding, LintReport, Mode, NearMiss,
                       NumberOverflow, PassKind, Reason, RuleName, Sale, StepKind, Unit, What, lint)

from conftest import SAMPLES, SOURCES, sample
from explanations import BY_HAND, SCHEMA, values

SALES = sorted(path.name for path in (SAMPLES / "sales").glob("*.xml"))
RENAMED = {"pass_number": "pass", "number": "pass", "stacking_class": "class", "applied": "outcome"}
MONEY = {"LineMoney": ["money"], "Outcome": ["money"], "Step": ["money", "left"], "LineWaterfall": ["before", "left"],
         "Gain": ["money"]}


def row(record: object) -> Any:
    """A record as the JSON that it was read from."""
    if isinstance(record, tuple):
        return [row(each) for each in record]
    if not dataclasses.is_dataclass(record):
        return record.value if isinstance(record, (Mode, Reason, Unit, PassKind, StepKind, What)) else record
    fields = {RENAMED.get(field.name, field.name): row(getattr(record, field.name)) for field in dataclasses.fields(record)}
    fields |= {name: getattr(record, name) for name in MONEY.get(type(record).__name__, [])}
    if "outcome" in fields:
        fields["outcome"] = "applied" if fields["outcome"] else "refused"
    return {re.sub("_(.)", lambda found: found[1].upper(), name): value for name, value in fields.items()}


def alike(told: Any, read: Any) -> bool:
    """Whether what was read is what was told, but for amounts of money that stand there with their cents."""
    if isinstance(told, dict):
        twice = {"money", "before", "left"} if {"cents", "beforeCents"} & set(told) else set()
        return set(told) == set(read) and all(alike(told[name], read[name]) for name in told if name not in twice)
    if isinstance(told, list):
        return len(told) == len(read) and all(alike(one, other) for one, other in zip(told, read, strict=True))
    if isinstance(told, float):
        return isinstance(read, Decimal) and str(told) == str(float(read))
    return bool(told == read)


@settings(max_examples=10)
@given(values(SCHEMA))
def test_everything_that_the_schema_allows_is_read_whole(told: Any) -> None:
    explanation = Explanation.from_json(json.dumps({"explanation": told}))
    assert alike(told, {"version": 1, **row(explanation)})
    assert pickle.loads(pickle.dumps(explanation)) == explanation


@pytest.mark.parametrize("words, part", [(Reason, "reason"), (Unit, "unit")])
def test_the_words_are_those_of_the_schema(words: type[enum.Enum], part: str) -> None:
    assert [word.value for word in words] == SCHEMA["definitions"][part]["enum"]


def test_other_words_are_those_of_the_schema() -> None:
    parts = SCHEMA["definitions"]
    assert [kind.value for kind in PassKind] == parts["pass"]["properties"]["kind"]["enum"]
    assert [kind.value for kind in StepKind] == parts["step"]["properties"]["kind"]["enum"]
    assert [what.value for what in What] == parts["nearMiss"]["properties"]["add"]["items"]["properties"]["what"]["enum"]
    assert [mode.value for mode in Mode] == SCHEMA["properties"]["mode"]["enum"]


def test_the_page_s_own_example() -> None:
    page = (SOURCES / "docs" / "explanations.md").read_text("utf-8")
    example = re.findall(r"```json\n(.*?)```", page, re.DOTALL)[0]
    explanation = Explanation.from_json("{" + example + "}")
    decision = explanation.rule("R02").outcomes[0].because
    assert decision == Decision(
        reason=Reason.BELOW_MINIMUM, lines=(4,), goods="", slot="", row=7, tier=0, unit=Unit.QUANTITY, have=Decimal(2),
        need=Decimal(3), taken_by=(RuleName(bill_no="R01", primary="DZ"),))
    assert explanation.line(4).steps[0].left == Decimal("1.80")
    assert explanation.near_misses[0].brings == Gain(cents=90, rule_cents=90, offers=0, coupons=0, coupon_cents=0)


def test_money_comes_from_cents_and_has_two_decimals() -> None:
    explanation = Explanation.from_json(json.dumps(BY_HAND))
    juice, yoghurt = explanation.rules[:2]
    assert (juice.applied, juice.cents, str(juice.money)) == (True, 153, "1.53")
    assert (yoghurt.applied, yoghurt.cents, str(yoghurt.money)) == (False, 0, "0.00")
    assert juice.outcomes[0].lines == (LineMoney(serial_no=1, cents=153),)
    assert [str(amount) for amount in (explanation.line(1).before, explanation.line(1).left)] == ["7.50", "5.97"]
    assert explanation.near_misses == (NearMiss(
        bill_no="PTPL-01", type="PTPL", reason=Reason.BELOW_MINIMUM, slot="", tier=0, unit=Unit.QUANTITY, have=Decimal(5),
        need=Decimal(6), missing=Decimal(1),
        add=(Addition(what=What.GOODS, plu_code="200201", serial_no=2, count=Decimal(1), price=Decimal("0.8")),),
        brings=Gain(cents=90, rule_cents=90, offers=0, coupons=0, coupon_cents=0)),)
    assert [str(amount) for amount in (Gain(cents=-5, rule_cents=90, offers=0, coupons=1, coupon_cents=500).money,
                                       Gain(cents=0, rule_cents=0, offers=0, coupons=1, coupon_cents=500).coupon_money)] == [
        "-0.05", "5.00"]


def test_what_is_not_there_is_a_key_error() -> None:
    explanation = Explanation.from_json(json.dumps(BY_HAND))
    with pytest.raises(KeyError, match="R99"):
        explanation.rule("R99")
    with pytest.raises(KeyError, match="99"):
        explanation.line(99)


def test_another_version_is_refused() -> None:
    with pytest.raises(ValueError, match="version 2, where this package reads version 1"):
        Explanation.from_json(json.dumps({**BY_HAND, "version": 2}))


def test_a_reason_of_another_version_is_refused() -> None:
    with pytest.raises(ValueError, match="'FullMoon' is not a valid Reason"):
        Explanation.from_json(json.dumps(BY_HAND).replace("BelowMinimum", "FullMoon"))


@pytest.mark.parametrize("text", ["", "{", '{"version": NaN}'])
def test_what_is_no_json_is_refused(text: str) -> None:
    with pytest.raises(ValueError):
        Explanation.from_json(text)


@pytest.mark.parametrize("name", SALES)
def test_the_samples_explained(engine: Engine, name: str) -> None:
    """Each rule has one outcome for each pass, and the lines' ways lead from what was sent to what is to pay."""
    assert_sound(engine, [(Mode.ALL, sample(name)), (Mode.MZ_PROMOTION, Sale())])


def test_a_whole_customer_explained(engine: Engine) -> None:
    """As above, through every step of a till."""
    steps: list[tuple[Mode, str | Sale]] = [(Mode.MZ_PROMOTION, Sale())]
    for file in sorted((SAMPLES / "sales" / "till").glob("*.xml")):
        number = int(file.name[0])
        mode = {4: Mode.ALL, 6: Mode.GIFT, 7: Mode.GIFT, 8: Mode.PAY, 9: Mode.COUPON}.get(number, Mode.SINGLE)
        if number != 5:  # the choice that is refused
            steps.insert(number - 1 if number < 5 else len(steps), (mode, file.read_text("utf-8")))
    assert [mode.value for mode, _ in steps] == [
        "Single", "Single", "Single", "All", "MzPromotion", "Gift", "Gift", "Pay", "Coupon"]
    assert_sound(engine, steps)


def untaken(decision: Decision) -> Decision:
    """The decision without who took what is missing, which may stand with the deciding one alone."""
    return dataclasses.replace(decision, taken_by=())


def assert_sound(engine: Engine, steps: list[tuple[Mode, str | Sale]]) -> None:
    """Each step of a sale is explained in full, and every number of it adds up."""
    numbers = set(engine.state().rules)
    for mode, sale in steps:
        explained = engine.explain("sale", mode, sale)
        explanation, totals = explained.explanation, explained.result.totals
        assert explanation.mode is mode
        assert {rule.bill_no for rule in explanation.rules} == numbers
        for rule in explanation.rules:
            assert [outcome.pass_number for outcome in rule.outcomes] == [each.number for each in explanation.passes]
            for outcome in rule.outcomes:
                assert outcome.applied == (outcome.because is None)
                assert outcome.because is None or untaken(outcome.because) in map(untaken, outcome.looked)
                assert outcome.because is None or outcome.because.reason is not Reason.UNEXPLAINED
                assert sum(line.cents for line in outcome.lines) == outcome.cents
        # "Single" answers with one line, and explains the sale.
        told = {line.serial_no for line in explained.result.lines}
        assert sum((line.before for line in explanation.lines if line.serial_no in told), Decimal(0)) == totals.before
        assert sum((line.left for line in explanation.lines if line.serial_no in told), Decimal(0)) == totals.to_pay
        for line in explanation.lines:
            assert line.before_cents - sum(step.cents for step in line.steps) == line.left_cents


def test_explaining_calculates_as_ever(engine: Engine) -> None:
    explained = engine.explain("a", Mode.ALL, sample("basket.xml"))
    assert explained.result == engine.calculate("b", Mode.ALL, sample("basket.xml"))
    assert (str(explained.explanation.rule("PTXS-01").money), str(explained.result.totals.to_pay)) == ("1.53", "36.06")


def test_a_refused_choice_is_explained(engine: Engine) -> None:
    engine.calculate("a", Mode.ALL, sample("till/4-subtotal.xml"))
    engine.calculate("a", Mode.MZ_PROMOTION)
    with pytest.raises(NumberOverflow) as caught:
        engine.explain("a", Mode.GIFT, sample("till/5-gift-two-bags.xml"))
    explanation = caught.value.explanation
    assert explanation is not None
    reasons = [outcome.because for outcome in explanation.rule("MZZP-01").outcomes]
    assert [(decision.reason, decision.have, decision.need) for decision in reasons if decision] == [
        (Reason.CHOICE_TOO_MANY, Decimal(2), Decimal(1))]


def test_calculate_has_no_explanation_of_a_refusal(engine: Engine) -> None:
    engine.calculate("a", Mode.ALL, sample("till/4-subtotal.xml"))
    engine.calculate("a", Mode.MZ_PROMOTION)
    with pytest.raises(NumberOverflow) as caught:
        engine.calculate("a", Mode.GIFT, sample("till/5-gift-two-bags.xml"))
    assert caught.value.explanation is None


def test_lint_reports() -> None:
    report = LintReport.from_json(json.dumps({"folder": "/shop", "errors": 1, "warnings": 0, "findings": [
        {"severity": "error", "code": "unknown-price-kind", "file": "rules/R01.xml", "line": 3, "table": "tProPrjDirectProAct",
         "key": "BillNo=R01 SerialNo=2", "billNo": "R01", "what": "DscType 'PCR' is no kind of price", "mend": "write PRC"}]}))
    assert report == LintReport(folder="/shop", errors=1, warnings=0, findings=(LintFinding(
        severity="error", code="unknown-price-kind", file="rules/R01.xml", line=3, table="tProPrjDirectProAct",
        key="BillNo=R01 SerialNo=2", bill_no="R01", what="DscType 'PCR' is no kind of price", mend="write PRC"),))


def test_lint_of_a_store(store: Any) -> None:
    report = lint(store)
    assert (report.errors, report.warnings, report.findings) == (0, 0, ())
    (store / "rules" / "draft.xml").write_text("<Rules><Rule", "utf-8")
    report = lint(store)
    assert report.errors == 1 and report.findings[0].file == "rules/draft.xml"
