"""Many threads over one engine."""

import pathlib
import sqlite3
import time
from concurrent.futures import ThreadPoolExecutor

from qncorvane import Engine, Mode, QncError, Result, TimedOut

from conftest import SAMPLES, sample

THREADS = 16
SALES = sorted(path.name for path in (SAMPLES / "sales").glob("*.xml"))


def through_the_till(engine: Engine, key: str, name: str) -> list[Result]:
    """A sale's subtotal and what comes behind it, and the end of the sale."""
    results = [engine.calculate(key, Mode.ALL, sample(name)), engine.calculate(key, Mode.MZ_PROMOTION)]
    engine.forget(key)
    return results


def test_sixteen_threads_get_what_one_gets(engine: Engine) -> None:
    alone = {name: through_the_till(engine, name, name) for name in SALES}
    jobs = [(f"{thread}/{name}", name) for thread in range(THREADS) for name in SALES]
    with ThreadPoolExecutor(THREADS) as pool:
        together = list(pool.map(lambda job: through_the_till(engine, *job), jobs))
    assert len(together) == THREADS * len(SALES)
    for (_, name), results in zip(jobs, together):
        assert results == alone[name]
    assert engine.state().sales == 0


def test_one_sale_from_many_threads_loses_no_line(engine: Engine) -> None:
    def scan(number: int) -> None:
        row = f'<R SerialNo="{number}" PluCode="A{number}" Price="1" PluCount="1" Total="1"/>'
        engine.calculate("a", Mode.ALL, f"<Sale><Plu>{row}</Plu></Sale>")

    with ThreadPoolExecutor(THREADS) as pool:
        list(pool.map(scan, range(1, 65)))
    assert sorted(line.serial_no for line in engine.calculate("a", Mode.ALL).lines) == list(range(1, 65))


def test_all_kinds_of_calls_at_once_and_the_close_between_them(store: pathlib.Path) -> None:
    engine = Engine(store)
    engine.load_rules()

    def use(number: int) -> str:
        try:
            if number % 5 == 0:
                engine.load_rules(replace=True)
            elif number % 5 == 1:
                engine.state()
            elif number % 5 == 2:
                engine.calculate(str(number), Mode.ALL, sample("basket.xml"), time_limit=0.05)
            elif number % 5 == 3:
                engine.forget_all()
            elif number == 94:
                engine.close()
            else:
                engine.clear_rules("PTXS-01")
            return "done"
        except QncError as error:
            return type(error).__name__

    with ThreadPoolExecutor(THREADS) as pool:
        ends = list(pool.map(use, range(200)))
    assert set(ends) <= {"done", "Closed", "TimedOut"}
    assert "done" in ends and ends[-1] == "Closed"
    with Engine(store) as again:
        assert again.state().rules == ()


def test_a_caller_that_waits_lets_other_threads_run(engine: Engine, store: pathlib.Path) -> None:
    writer = sqlite3.connect(store / "store.db", isolation_level=None)
    writer.execute("begin exclusive")
    with ThreadPoolExecutor(1) as pool:
        waiting = pool.submit(engine.calculate, "a", Mode.ALL, sample("basket.xml"))
        time.sleep(0.3)
        assert not waiting.done()
        writer.execute("rollback")
        assert str(waiting.result(60).totals.to_pay) == "36.06", "the lock was given up before the engine gave up"
    writer.close()


def test_limits_of_many_threads(engine: Engine) -> None:
    def hurry(number: int) -> bool:
        try:
            engine.calculate(str(number), Mode.ALL, sample("big-shop.xml"), time_limit=0.001)
            return True
        except TimedOut:
            return False

    with ThreadPoolExecutor(THREADS) as pool:
        assert not all(pool.map(hurry, range(200)))
    assert str(engine.calculate("after", Mode.ALL, sample("basket.xml")).totals.to_pay) == "36.06"
