"""What is refused: each exception, with the engine's text and code."""

import os
import pathlib
import pickle
import shutil
import sqlite3
import subprocess
import sys
import time
from collections.abc import Callable

import pytest

import qncorvane
from qncorvane import (AlreadyOpen, BadArgument, BadStore, BadValue, BadXml, Closed, Code, Engine, LibraryMissing, Mode,
                       NumberOverflow, QncError, Sale, TimedOut, TotalOverflow, Unreadable, check)
from qncorvane._errors import error_of

from conftest import sample
from test_engine import basket


@pytest.mark.parametrize("code", Code)
def test_each_code_has_a_class_of_its_own(code: Code) -> None:
    error = error_of(code, "rules/R07.xml:12: what")
    assert type(error).__name__.upper() == code.name.replace("_", "")
    assert (error.code, error.text, str(error)) == (code, "rules/R07.xml:12: what", "rules/R07.xml:12: what")
    again = pickle.loads(pickle.dumps(error))
    assert (type(again), again.code, str(again)) == (type(error), code, str(error))


def test_a_code_of_a_later_library_is_an_error_too() -> None:
    error = error_of(99, "new")
    assert (type(error), error.code) == (QncError, 99)


def test_no_key(engine: Engine) -> None:
    with pytest.raises(BadArgument) as caught:
        engine.calculate("", Mode.ALL, basket())
    assert caught.value.code == Code.BAD_ARGUMENT and "key" in str(caught.value)


def test_an_unknown_mode(engine: Engine) -> None:
    with pytest.raises(BadArgument, match="'?all'?"):
        engine.calculate("a", "all", basket())


@pytest.mark.parametrize("xml, place", [
    ("", "1"), ("no XML", "1"), ("<Sale>", "1"), ("<Sale>\n  <Plu>\n", "3"), ("<Sale>\n<Plu><Row a='1' a='2'/></Plu></Sale>", "2"),
    ("<?xml version='1.0' encoding='GBK'?><Sale/>", "1"), ("<!DOCTYPE Sale><Sale/>", "1"), ("<a>" * 201 + "</a>" * 201, "1"),
])
def test_what_is_no_xml(engine: Engine, xml: str, place: str) -> None:
    with pytest.raises(BadXml, match=f":{place}:[0-9]+: ") as caught:
        engine.calculate("a", Mode.ALL, xml)
    assert caught.value.code == Code.BAD_XML


def test_a_date_that_is_none(engine: Engine) -> None:
    with pytest.raises(BadValue, match="15.06.2024") as caught:
        engine.calculate("a", Mode.ALL, basket().to_xml().replace("2024-06-15", "15.06.2024", 1))
    assert "YYYY-MM-DD" in str(caught.value)


def test_a_rule_with_a_date_that_is_none(engine: Engine, store: pathlib.Path) -> None:
    rule = (store / "rules" / "PTXS-01-juice.xml").read_text("utf-8").replace("2099-12-31", "31.12.2099")
    with pytest.raises(BadValue, match="^juice.xml:10: EndDate '31.12.2099' is not YYYY-MM-DD"):
        engine.load_rule(rule, name="juice.xml")


def test_a_rule_that_is_cut_off(engine: Engine) -> None:
    with pytest.raises(BadXml, match="^rule:1:[0-9]+: is not XML"):
        engine.load_rule("<Rules><Rule BillNo='A' ProType='PTXS'")


def test_a_folder_of_rules_that_is_not_there(engine: Engine) -> None:
    with pytest.raises(Unreadable, match="nowhere"):
        engine.load_rules("nowhere")


def test_too_many_of_a_gift(engine: Engine) -> None:
    engine.calculate("a", Mode.ALL, sample("till/4-subtotal.xml"))
    engine.calculate("a", Mode.MZ_PROMOTION)
    with pytest.raises(NumberOverflow) as caught:
        engine.calculate("a", Mode.GIFT, sample("till/5-gift-two-bags.xml"))
    assert caught.value.code == Code.NUMBER_OVERFLOW


def test_a_gift_that_costs_more_than_was_reached(engine: Engine) -> None:
    engine.calculate("a", Mode.ALL, sample("till/4-subtotal.xml"))
    engine.calculate("a", Mode.MZ_PROMOTION)
    choice = sample("till/6-gift-mug.xml").replace('Total="69.68" LeftTotal="69.68"', 'Total="29.00" LeftTotal="29.00"')
    with pytest.raises(TotalOverflow) as caught:
        engine.calculate("a", Mode.GIFT, choice)
    assert caught.value.code == Code.TOTAL_OVERFLOW


def test_a_second_engine(engine: Engine, store: pathlib.Path) -> None:
    with pytest.raises(AlreadyOpen):
        Engine(store)
    assert engine.state().state == "Free"


def test_after_the_end(store: pathlib.Path) -> None:
    with Engine(store) as engine:
        rule = (store / "rules" / "PTXS-01-juice.xml").read_text("utf-8")
    calls: list[Callable[[], object]] = [
        lambda: engine.calculate("a", Mode.ALL), engine.state, engine.load_rules, engine.clear_rules, engine.forget_all,
        lambda: engine.forget("a"), lambda: engine.load_rule(rule)]
    for call in calls:
        with pytest.raises(Closed):
            call()
    engine.close()


def test_in_a_forked_process(engine: Engine) -> None:
    child = os.fork()
    if child == 0:
        try:
            engine.state()
        except Closed:
            engine.close()
            os._exit(7)
        finally:
            os._exit(8)
    assert os.waitstatus_to_exitcode(os.waitpid(child, 0)[1]) == 7
    assert engine.state().state == "Free"


def empty_database(store: pathlib.Path) -> None:
    (store / "store.db").write_bytes(b"")


def no_database(store: pathlib.Path) -> None:
    (store / "store.db").unlink()


def other_kind(store: pathlib.Path) -> None:
    settings = store / "config.ini"
    settings.write_text(settings.read_text("utf-8").replace("DbType=SQLITE", "DbType=SQLLITE"), "utf-8")


def no_settings(store: pathlib.Path) -> None:
    (store / "config.ini").unlink()


def no_column(store: pathlib.Path) -> None:
    database = sqlite3.connect(store / "store.db")
    database.execute("alter table tpromzlist rename column ListCode to Code")
    database.close()


@pytest.mark.parametrize("spoil, text", [
    (empty_database, "store.db"), (no_database, "store.db"), (other_kind, "SQLLITE"), (no_settings, "config.ini"),
    (no_column, "ListCode"), (shutil.rmtree, "shop")])
def test_a_store_that_is_none(store: pathlib.Path, spoil: Callable[[pathlib.Path], object],
                              text: str) -> None:
    spoil(store)
    with pytest.raises(BadStore, match=text) as caught:
        Engine(store)
    assert caught.value.code == Code.BAD_STORE
    report = check(store)
    assert not report.ok and any(text in finding.where + finding.what for finding in report.findings)


def test_a_time_limit_ends_the_wait_and_harms_nothing(engine: Engine, store: pathlib.Path) -> None:
    writer = sqlite3.connect(store / "store.db", isolation_level=None)
    writer.execute("begin exclusive")
    begun = time.monotonic()
    with pytest.raises(TimedOut) as caught:
        engine.calculate("a", Mode.ALL, basket(), time_limit=0.2)
    assert 0.2 <= time.monotonic() - begun < 2.5, "the lock itself would be waited for three seconds"
    assert caught.value.code == Code.TIMED_OUT
    writer.execute("rollback")
    writer.close()
    assert str(engine.calculate("b", Mode.ALL, basket(), time_limit=30).totals.to_pay) == "36.06"


@pytest.mark.parametrize("limit", [0, -1, float("nan"), float("inf"), 1e10])
def test_a_time_limit_that_is_none(engine: Engine, limit: float) -> None:
    with pytest.raises(ValueError, match="^time_limit: "):
        engine.state(time_limit=limit)


@pytest.mark.parametrize("text, place", [("a\0b", "U\\+0000 at 1"), ("\ud800", "U\\+D800 at 0")])
def test_a_text_that_cannot_be_handed_over(engine: Engine, text: str, place: str) -> None:
    calls: list[tuple[str, Callable[[], object]]] = [
        ("key", lambda: engine.calculate(text, Mode.ALL)), ("mode", lambda: engine.calculate("a", text)),
        ("sale", lambda: engine.calculate("a", Mode.ALL, text)), ("xml", lambda: engine.load_rule(text)),
        ("name", lambda: engine.load_rule("", name=text)), ("bill_no", lambda: engine.clear_rules(text)),
        ("key", lambda: engine.forget(text))]
    for name, call in calls:
        with pytest.raises(ValueError, match=f"^{name}: {place} "):
            call()


def test_a_folder_with_a_zero_in_it(engine: Engine) -> None:
    calls: list[Callable[[str], object]] = [Engine, check, engine.load_rules]
    for call in calls:
        with pytest.raises(ValueError, match="^folder: U\\+0000 at 1 "):
            call("a\0b")


def test_bytes_are_no_text(engine: Engine) -> None:
    with pytest.raises(TypeError, match="^sale: a text is wanted, not bytes$"):
        engine.calculate("a", Mode.ALL, b"<Sale/>")  # type: ignore[arg-type]


def test_a_sale_that_cannot_be_told_never_reaches_the_engine(engine: Engine) -> None:
    with pytest.raises(ValueError, match="^bill_no: "):
        engine.calculate("a", Mode.ALL, Sale(bill_no="\0"))
    assert engine.state().sales == 0


@pytest.mark.parametrize("library", ["/nowhere/libqncorvane-host.so.1", "libc.so.6"])
def test_without_the_library(library: str) -> None:
    program = ("import qncorvane\n"
               "try:\n    qncorvane.version()\n"
               "except qncorvane.LibraryMissing as error:\n    print(error)\n")
    folder = pathlib.Path(qncorvane.__file__).parents[1]
    said = subprocess.run([sys.executable, "-c", program], capture_output=True, text=True, check=True, timeout=60,
                          env={**os.environ, "PYTHONPATH": str(folder), "QNCORVANE_HOST_LIBRARY": library}).stdout
    assert said.startswith(f"{library} can't be used: install Debian's package libqncorvane1, or set")
    assert issubclass(LibraryMissing, OSError)
