"""Texts that nobody would send, through the engine: answered or refused, and the engine is as good as before."""

from collections.abc import Callable, Iterator
from decimal import Decimal

import pytest
from hypothesis import given, settings
from hypothesis import strategies as st

from qncorvane import BadXml, Engine, Line, Mode, QncError, Sale, check

from conftest import SAMPLES, make_store, sample
from test_engine import basket
from test_sale import texts


@pytest.fixture(scope="module")
def shop(tmp_path_factory: pytest.TempPathFactory) -> Iterator[Engine]:
    """One engine for all the texts of this file."""
    folder = tmp_path_factory.mktemp("shop")
    make_store(SAMPLES, folder)
    with Engine(folder) as engine:
        engine.load_rules()
        yield engine


@given(code=texts.filter(bool), bill=texts, key=texts.filter(bool))
def test_a_text_of_a_sale_comes_back_from_the_engine(shop: Engine, code: str, bill: str, key: str) -> None:
    line = Line(serial_no=1, plu_code=code, price=Decimal(1), plu_count=Decimal(1), total=Decimal(1), cls_id=bill)
    result = shop.calculate(key, Mode.ALL, Sale(bill_no=bill, org_code="01", lines=[line]))
    shop.forget(key)
    assert (result.bill_no, result.lines[0].plu_code, result.lines[0].cls_id) == (bill, code, bill)


@settings(max_examples=300)
@given(st.decimals(-(10**13) + 1, 10**13 - 1, places=2))
def test_an_amount_comes_back_to_the_cent(shop: Engine, amount: Decimal) -> None:
    line = Line(serial_no=1, plu_code="A", price=amount, plu_count=Decimal(1), total=amount)
    result = shop.calculate("amount", Mode.ALL, Sale(bill_no="A", org_code="01", lines=[line]))
    shop.forget("amount")
    assert (result.lines[0].price, result.lines[0].total) == (amount, amount)
    assert (result.totals.before, result.totals.to_pay) == (amount, amount)


@settings(max_examples=300)
@given(text=st.text(), lenient=st.booleans())
def test_any_text_is_answered_or_refused(shop: Engine, text: str, lenient: bool) -> None:
    calls: list[Callable[[], object]] = [
        lambda: shop.calculate("a", Mode.ALL, text, lenient=lenient), lambda: shop.load_rule(text, lenient=lenient),
        lambda: shop.calculate("a", text, basket()), lambda: shop.calculate(text, Mode.SINGLE, basket()),
        lambda: shop.forget(text), lambda: shop.load_rules(f"nowhere/{text}"), lambda: check(f"/nowhere/{text}")]
    for call in calls:
        try:
            call()
        except (QncError, ValueError) as error:
            assert str(error)


@settings(max_examples=300)
@given(place=st.integers(0, 1300), damage=st.text(max_size=3), cut=st.integers(0, 3), lenient=st.booleans())
def test_a_damaged_sale_is_answered_or_refused(shop: Engine, place: int, damage: str, cut: int, lenient: bool) -> None:
    xml = sample("basket.xml")
    damaged = xml[:place] + damage + xml[place + cut:]
    try:
        assert shop.calculate("damaged", Mode.ALL, damaged, lenient=lenient).totals.before <= Decimal(10**15)
    except (QncError, ValueError) as error:
        assert str(error)
    finally:
        shop.forget("damaged")


def test_the_engine_is_as_good_as_before(shop: Engine) -> None:
    shop.load_rules(replace=True)
    assert str(shop.calculate("after", Mode.ALL, basket()).totals.to_pay) == "36.06"


def test_a_sale_of_five_thousand_lines(shop: Engine) -> None:
    lines = [Line(serial_no=number, plu_code="100101", price=Decimal("2.50"), plu_count=Decimal(1), total=Decimal("2.50"),
                  sale_date="2024-06-15", sale_time="10:30:00") for number in range(1, 5001)]
    result = shop.calculate("long", Mode.ALL, Sale(bill_no="L", org_code="01", lines=lines))
    shop.forget("long")
    assert (result.totals.before, result.totals.to_pay) == (Decimal("12500.00"), Decimal("9950.00"))


def test_texts_of_a_megabyte(shop: Engine) -> None:
    long = "x" * 2**20
    line = Line(serial_no=1, plu_code=long, price=Decimal(1), plu_count=Decimal(1), total=Decimal(1))
    assert shop.calculate(long, Mode.ALL, Sale(lines=[line])).lines[0].plu_code == long
    shop.forget(long)
    with pytest.raises(QncError):
        shop.calculate("a", long, basket())
    with pytest.raises(BadXml):
        shop.calculate("a", Mode.ALL, "<" * 2**20)
    report = check(long)
    assert not report.ok and report.findings[0].what
