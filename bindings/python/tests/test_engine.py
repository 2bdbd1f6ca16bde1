"""An engine on the sample store: its receipts to the cent, its rules, its sales."""

import dataclasses
import pathlib
import sqlite3
import sys
import warnings
import xml.etree.ElementTree as xml
from decimal import Decimal

import pytest

from qncorvane import (Apportion, BadXml, Coupon, Discount, Engine, Line, Member, Mode, NumberOverflow, Payment, QncError, RuleTotal,
                       Sale, check, version)

from conftest import SAMPLES, SOURCES, sample

RULES = sorted(path.stem[:7] for path in (SAMPLES / "store" / "rules").glob("*.xml"))
DAY, TIME = "2024-06-15", "10:30:00"


def basket() -> Sale:
    """The sample sale "basket", written as a till would."""
    goods = [("100101", "2.50", "3", "7.50", "JUICE", "SUNNY"), ("100102", "2.20", "1", "2.20", "JUICE", "SUNNY"),
             ("400101", "1.90", "1.375", "2.61", "FRUIT", ""), ("400199", "9.90", "1", "9.90", "FRUIT", ""),
             ("600101", "4.90", "3", "14.70", "CARE", "LAVA"), ("300101", "3.20", "1", "3.20", "BAKERY", "MILLER")]
    return Sale(bill_no="S-0001", org_code="01", is_calc="0", lines=[
        Line(serial_no=number, plu_code=code, price=Decimal(price), plu_count=Decimal(count), total=Decimal(total),
             plu_type="PLU", cat=category, brd=brand, sale_date=DAY, sale_time=TIME)
        for number, (code, price, count, total, category, brand) in enumerate(goods, 1)])


def test_a_basket_of_records(engine: Engine) -> None:
    result = engine.calculate("till-1/1", Mode.ALL, basket())
    assert (result.bill_no, result.org_code) == ("S-0001", "01")
    assert result.totals.before == Decimal("40.11")
    assert result.totals.to_pay == Decimal("36.06")
    assert result.totals.rules == tuple(
        RuleTotal(bill_no=bill, type="PTXS", amount=Decimal(amount))
        for bill, amount in (("PTXS-03", "2.00"), ("PTXS-02", "0.52"), ("PTXS-01", "1.53")))
    assert [(line.serial_no, line.total) for line in result.lines] == [
        (6, Decimal("3.20")), (5, Decimal("12.70")), (4, Decimal("9.90")), (3, Decimal("2.09")), (2, Decimal("2.20")),
        (1, Decimal("5.97"))]
    assert result.line(1).final_price == Decimal("1.99")
    assert (result.line(5).dis_num, result.line(5).brd, result.line(5).cat) == (Decimal(2), "LAVA", "CARE")
    assert result.discounts[-1] == Discount(
        serial_no=3, plu_code="100101", dis_num=Decimal(3), dis_money=Decimal("1.53"), pro_bill_no="PTXS-01",
        pro_type="PTXS", is_vip=False, vip_type="", row_id=1)
    assert (result.offers, result.coupons) == ((), ())


def test_a_basket_of_xml_is_the_same(engine: Engine) -> None:
    assert engine.calculate("a", Mode.ALL, sample("basket.xml")) == engine.calculate("b", "All", basket())


def test_the_result_as_xml(engine: Engine) -> None:
    root = xml.fromstring(engine.calculate_xml("a", Mode.ALL, basket()))
    assert [line.get("Total") for line in root.findall("Plu/Data")] == ["3.20", "12.70", "9.90", "2.09", "2.20", "5.97"]


def test_a_member_gets_a_members_price(engine: Engine) -> None:
    coffee = Line(serial_no=1, plu_code="110101", price=Decimal("6.90"), plu_count=Decimal(2), total=Decimal("13.80"),
                  cat="COFFEE", brd="MONTE", sale_date=DAY, sale_time=TIME)
    sale = Sale(bill_no="S-0002", org_code="01", is_calc="0", lines=[coffee])
    assert engine.calculate("a", Mode.ALL, sale).totals.to_pay == Decimal("13.80")
    result = engine.calculate("b", Mode.ALL, dataclasses.replace(sale, members=[Member(vip_type="01")]))
    assert result.totals.to_pay == Decimal("12.42")
    assert [(row.pro_bill_no, row.is_vip, row.vip_type) for row in result.discounts] == [("PTXS-04", True, "01")]


def test_apportions(engine: Engine) -> None:
    result = engine.calculate("a", Mode.ALL, sample("care.xml"))
    assert result.apportions == (
        Apportion(serial_no=1, plu_code="600101", app_num=Decimal(2), app_money=Decimal("2.00"), pro_bill_no="PTXS-03",
                  pro_type="PTXS", vip_type="", row_id=2),
        Apportion(serial_no=2, plu_code="600201", app_num=Decimal(3), app_money=Decimal("2.10"), pro_bill_no="ZHTJ-01",
                  pro_type="ZHTJ", vip_type="", row_id=1))


def test_one_customer_through_the_whole_till(engine: Engine) -> None:
    key = "till-1/S-0100"
    single = engine.calculate(key, Mode.SINGLE, sample("till/1-scan-washing-powder.xml"))
    assert [(line.serial_no, line.total) for line in single.lines] == [(1, Decimal("37.80"))]
    engine.calculate(key, Mode.SINGLE, sample("till/2-scan-olive-oil.xml"))
    engine.calculate(key, Mode.SINGLE, sample("till/3-scan-orange-juice.xml"))
    assert engine.calculate(key, Mode.ALL, sample("till/4-subtotal.xml")).totals.to_pay == Decimal("80.98")

    result = engine.calculate(key, Mode.MZ_PROMOTION)
    assert result.totals.to_pay == Decimal("69.68")
    offers = {offer.pro_bill_no: offer for offer in result.offers}
    assert {bill: (offer.total, [article.plu_code for article in offer.articles]) for bill, offer in offers.items()} == {
        "MZZP-01": (Decimal("69.68"), ["900101"]), "MZHG-01": (Decimal("69.68"), ["900201"])}
    (bag,) = offers["MZZP-01"].articles
    assert (bag.base_con_tp, bag.base_con_num, bag.sale_max_in, bag.dsc_price, bag.can_part) == (
        "SUM", Decimal(60), Decimal(1), Decimal(0), 1)

    with pytest.raises(NumberOverflow):
        engine.calculate(key, Mode.GIFT, Sale(offers=[offers["MZZP-01"].pick("900101", 2), offers["MZHG-01"]]))
    chosen = engine.calculate(key, Mode.GIFT, Sale(offers=[offers["MZZP-01"].pick("900101", 1), offers["MZHG-01"]]))
    assert {offer.pro_bill_no: (offer.used_total, offer.left_total) for offer in chosen.offers} == {
        "MZZP-01": (Decimal("60.00"), Decimal("9.68")), "MZHG-01": (Decimal("60.00"), Decimal("9.68"))}

    card = Payment(pay_mode="CARD", pay_card_no="6212345678901234", pay_money=Decimal("69.68"))
    assert engine.calculate(key, Mode.PAY, Sale(payments=[card])).totals.to_pay == Decimal("65.68")

    coupon = Coupon(bill_no="MZZQ-01", coupon_type_code="C5", coupon_value=Decimal(5), bgn_date="2024-05-01",
                    end_date="2024-12-31")
    result = engine.calculate(key, Mode.COUPON, Sale(coupons=[coupon, coupon]))
    assert result.totals.before == Decimal("82.00")
    assert result.totals.to_pay == Decimal("55.68")
    assert {rule.bill_no: rule.amount for rule in result.totals.rules} == {
        "MZDP-01": Decimal("1.10"), "MZMJ-01": Decimal("7.00"), "MZYQ-01": Decimal("10.00"), "MZZF-01": Decimal("4.00"),
        "MZZM-01": Decimal("3.20"), "PTXS-01": Decimal("1.02")}
    assert {row.pro_bill_no: row.dis_money for row in result.discounts if row.row_id is None} == {
        "MZZQ-01": Decimal("10.00"), "MZZF-01": Decimal("4.00"), "MZYQ-01": Decimal("10.00")}


def test_a_coupons_dates_come_exchanged(engine: Engine) -> None:
    coupon = Coupon(bill_no="C", coupon_type_code="XX", coupon_value=Decimal("5.00"), bgn_date="2024-05-01",
                    end_date="2024-12-31")
    engine.calculate("a", Mode.ALL, basket())
    (held,) = engine.calculate("a", Mode.PAY, Sale(coupons=[coupon])).coupons
    assert (held.bgn_date, held.end_date, held.value, held.send_sale_no) == (
        "2024-12-31", "2024-05-01", Decimal(5), "S-0001")


def test_the_engine_keeps_a_sale_until_it_is_forgotten(engine: Engine) -> None:
    first = dataclasses.replace(basket(), lines=basket().lines[:1])
    second = dataclasses.replace(basket(), lines=basket().lines[1:2])
    engine.calculate("a", Mode.ALL, first)
    assert len(engine.calculate("a", Mode.ALL, second).lines) == 2
    engine.forget("a")
    assert len(engine.calculate("a", Mode.ALL, second).lines) == 1
    engine.forget("unknown")


def test_all_sales_are_forgotten(engine: Engine) -> None:
    for key in "abc":
        engine.calculate(key, Mode.ALL, basket())
    assert engine.state().sales == 3
    engine.forget_all()
    assert engine.state().sales == 0


def test_the_state(engine: Engine, store: pathlib.Path) -> None:
    state = engine.state()
    assert state.version == version()
    assert pathlib.Path(state.folder) == store
    assert (state.state, state.sales, state.database.kind, state.database.open) == ("Free", 0, "SQLITE", True)
    assert sorted(state.rules) == RULES


def test_rules_are_removed_by_number_and_all_of_them(engine: Engine) -> None:
    engine.clear_rules("ptxs-01")
    assert sorted(engine.state().rules) == [rule for rule in RULES if rule != "PTXS-01"]
    engine.clear_rules()
    assert engine.state().rules == ()
    assert engine.calculate("a", Mode.ALL, basket()).totals.to_pay == Decimal("40.11")


def test_one_rule_is_loaded_and_replaced(engine: Engine) -> None:
    rule = (SAMPLES / "store" / "rules" / "PTXS-01-juice.xml").read_text("utf-8")
    engine.clear_rules()
    engine.load_rule(rule)
    engine.load_rule(rule, name="PTXS-01-juice.xml")
    assert engine.state().rules == ("PTXS-01",)
    assert engine.calculate("a", Mode.ALL, basket()).totals.to_pay == Decimal("38.58")


def test_a_folder_of_rules_is_reported_file_by_file(store: pathlib.Path) -> None:
    with Engine(store) as engine:
        report = engine.load_rules()
        assert (report.loaded, report.refused) == (18, 0)
        assert [file.bill_no for file in report.files] == RULES
        assert {(file.loaded, file.error) for file in report.files} == {(True, None)}
        assert report.files[0].file == "MZDP-01-croissant.xml" and report.files[0].type == "MZDP"
        assert pathlib.Path(report.folder) == store / "rules"


def test_rules_of_another_folder_are_added_or_replace(engine: Engine, tmp_path: pathlib.Path) -> None:
    other = tmp_path / "other"
    other.mkdir()
    rule = (SAMPLES / "store" / "rules" / "PTXS-01-juice.xml").read_text("utf-8")
    (other / "one.xml").write_text(rule.replace("PTXS-01", "NEW-01"), "utf-8")
    engine.load_rules(other)
    assert sorted(engine.state().rules) == sorted([*RULES, "NEW-01"])
    engine.load_rules(other, replace=True)
    assert engine.state().rules == ("NEW-01",)


def test_a_refused_file_keeps_no_other_out(engine: Engine, store: pathlib.Path) -> None:
    (store / "rules" / "PTXS-01-juice.xml").write_text("<Rules><Rule", "utf-8")
    engine.clear_rules()
    with pytest.raises(BadXml) as caught:
        engine.load_rules()
    report = caught.value.report
    assert report is not None
    assert (report.loaded, report.refused) == (17, 1)
    (refused,) = [file for file in report.files if not file.loaded]
    assert refused.file == "PTXS-01-juice.xml"
    assert refused.error is not None and refused.error in str(caught.value)
    assert sorted(engine.state().rules) == [rule for rule in RULES if rule != "PTXS-01"]


def test_replacing_by_a_folder_with_a_refused_file_changes_nothing(engine: Engine, store: pathlib.Path) -> None:
    (store / "rules" / "PTXS-01-juice.xml").write_text("<Rules><Rule", "utf-8")
    with pytest.raises(BadXml) as caught:
        engine.load_rules(replace=True)
    assert caught.value.report is not None and caught.value.report.loaded == 0
    assert sorted(engine.state().rules) == RULES


def test_a_lenient_reading_goes_as_far_as_it_goes(engine: Engine) -> None:
    xml_text = basket().to_xml()
    cut = xml_text[:xml_text.index('<Row SerialNo="3"')]
    with pytest.raises(BadXml):
        engine.calculate("a", Mode.ALL, cut)
    assert len(engine.calculate("a", Mode.ALL, cut, lenient=True).lines) == 2


def test_a_relative_folder_and_the_current_directory(store: pathlib.Path, monkeypatch: pytest.MonkeyPatch) -> None:
    monkeypatch.chdir(store.parent)
    with Engine(store.name) as engine:
        monkeypatch.chdir("/")
        engine.load_rules()
        assert engine.calculate("a", Mode.ALL, basket()).totals.to_pay == Decimal("36.06")
        assert pathlib.Path.cwd() == pathlib.Path("/")


def test_an_engine_is_opened_again_after_it_was_closed(store: pathlib.Path) -> None:
    for _ in range(3):
        with Engine(store) as engine:
            assert engine.state().rules == ()
            engine.load_rules()
            assert len(engine.state().rules) == 18


def test_texts_of_all_alphabets_come_back(engine: Engine) -> None:
    name = "Käse & <Brot> \"奶酪\" 🧀"
    line = Line(serial_no=1, plu_code=name, price=Decimal(1), plu_count=Decimal(1), total=Decimal(1), cls_id=name)
    result = engine.calculate(name, Mode.ALL, Sale(bill_no=name, org_code="01", lines=[line]))
    assert (result.bill_no, result.lines[0].plu_code, result.lines[0].cls_id) == (name, name, name)


def test_a_sound_store(store: pathlib.Path) -> None:
    report = check(store)
    assert report.ok
    assert [finding for finding in report.findings if finding.severity == "error"] == []


def test_a_store_without_a_table(store: pathlib.Path) -> None:
    database = sqlite3.connect(store / "store.db")
    database.execute("drop table tProPrjDirectProAct")
    database.close()
    report = check(store)
    assert not report.ok
    errors = [finding for finding in report.findings if finding.severity == "error"]
    assert any("tProPrjDirectProAct" in finding.where + finding.what for finding in errors)
    assert all(finding.what and finding.mend for finding in errors)


def test_a_store_is_looked_at_beside_an_open_engine(engine: Engine, store: pathlib.Path) -> None:
    assert check(store).ok
    assert sorted(engine.state().rules) == RULES


def test_the_version_is_the_projects() -> None:
    assert f"project(QNCORVANE VERSION {version()} " in (SOURCES / "CMakeLists.txt").read_text("utf-8")


def test_an_engine_left_open_says_so_and_is_closed(store: pathlib.Path) -> None:
    with pytest.warns(ResourceWarning, match="an engine was left open"):
        engine = Engine(store)
        del engine
    Engine(store).close()


def test_a_warning_that_is_an_error_closes_the_engine_too(store: pathlib.Path, monkeypatch: pytest.MonkeyPatch) -> None:
    caught: list[object] = []
    monkeypatch.setattr(sys, "unraisablehook", lambda what: caught.append(what.exc_type))
    with warnings.catch_warnings():
        warnings.simplefilter("error", ResourceWarning)
        engine = Engine(store)
        del engine
    assert caught == [ResourceWarning]
    Engine(store).close()


def test_errors_are_all_of_one_family(engine: Engine) -> None:
    with pytest.raises(QncError):
        engine.calculate("", Mode.ALL, basket())
