"""A shop that never closes: one engine in one process plays many sales side by side, while rules change, the database
and the log fall ill and recover, and what has to hold of every answer and of memory is checked all the while.

soak.py HOST LIBRARY SCHEMA [--minutes N | --steps N] [--seed S]

Exit code 0: all held. 1: something did not; the step is told, and --seed with --steps leads there again. 2: the run
itself failed.
"""

import argparse
import collections
import pathlib
import shutil
import sys
import tempfile
import time

HERE = pathlib.Path(__file__).parent
sys.path += [str(HERE.parent / "compare"), str(HERE.parent / "properties")]

# pylint: disable=wrong-import-position
import rules
from chance import Chance
from checks import Broken, discounts_equal_what_left_the_lines, payments_and_coupons
from hosted import Hosted, Lost
from hosts import DATES, HostSale
from player import with_picks
from results import SALE_FORM, SINGLE_FORM, UNTOUCHED, Result, faults_of_form
from shop import Shop
from stats import Stats
from store import FAULTS, Store

# Steps between two looks at memory.
CHECKPOINT = 1000
# The look at memory that later ones are measured by.
WARM = 2
OPEN_SALES = 40
MOST_RULES = 30
# What may be added to memory: the texts of rules and columns, each kept once, until all have been met; and to what is
# resident, a twentieth, by which an allocator finds no room in what was freed.
MOST_HEAP, MOST_RESIDENT = 32768, 1.05
LAST_CALLS = 6


class Failure(Exception):
    """Something that has to hold and does not."""


def require(holds, what):
    if not holds:
        raise Failure(what)


class Played:
    """Stands for an engine whose answers are known."""

    def __init__(self, answers):
        self.answers = answers

    def play(self, _till):
        return self.answers


class Soak:
    """The shop, the engine that serves it, and what is known of both."""

    def __init__(self, options, folder):
        self.options, self.folder = options, folder
        self.chance = Chance(options.seed, tidy=True)
        self.shop = None
        self.store = Store(folder, pathlib.Path(options.schema).read_text("utf-8"))
        self.engine = self.hosted()
        self.rules, self.dates = {}, self.chance.sample(DATES, len(DATES))
        self.sales, self.results = {}, {}
        self.numbers = 0
        self.ill = False
        self.counts, self.faults, self.given = collections.Counter(), collections.Counter(), collections.Counter()
        self.looks = []
        self.last_calls = collections.deque(maxlen=LAST_CALLS)

    def hosted(self):
        return Hosted(self.options.host, self.options.library, self.folder)

    # What is asked of every answer

    def calculate(self, sale, mode, xml):
        """A calculation, whose answer has to be one that the contract knows."""
        self.last_calls.append((sale.key, mode, xml))
        self.counts[f"calls in mode {mode}"] += 1
        answer = self.engine.calculate(sale.key, mode, xml)
        self.check(mode, answer)
        if answer.code == 0 and mode != "Single":
            self.results[sale.key] = answer.out
        return answer

    def check(self, mode, answer):
        if mode == "Gift" and answer.code in (-2, -3):
            require(answer.msg == {-2: "total overflow", -3: "number overflow"}[answer.code], f"{mode}: {answer}")
            require(answer.out == "", f"{mode} refused a choice and wrote a result")
            self.counts["choices refused"] += 1
            return
        require((answer.code, answer.msg) == (0, "sucess"), f"{mode}: code {answer.code}, \"{answer.msg}\"")
        try:
            result = Result(answer.out.encode("utf-8").decode("utf-8"))
        except (UnicodeError, SyntaxError) as error:
            raise Failure(f"{mode}: a result is not UTF-8 or no XML: {error}") from error
        faults = list(faults_of_form(result.root, SINGLE_FORM if mode == "Single" else SALE_FORM))
        require(not faults, f"{mode}: {', '.join(faults[:3])}")
        self.given.update(Stats.kinds(answer.out))

    def expect(self, answer, what, msg="sucess"):
        """A call other than a calculation, which has to go well."""
        require(answer.code == 0 and answer.msg in ("", msg), f"{what}: {answer}")

    # Sales

    def sale(self):
        """One of the open sales, or a new one."""
        if len(self.sales) < OPEN_SALES and (not self.sales or self.chance.happens(20)):
            self.numbers += 1
            sale = HostSale(self.chance, self.shop, f"till {self.numbers % 90}/{self.numbers}")
            sale.steps = 0
            self.sales[sale.key] = sale
        sale = self.sales[self.chance.choice(list(self.sales))]
        sale.steps += 1
        if not sale.lines:
            sale.scan()
        return sale

    def step_scan(self):
        sale = self.sale()
        self.calculate(sale, "Single", sale.xml([sale.scan() if len(sale.lines) < 12 else sale.change()]))

    def step_subtotal(self):
        sale = self.sale()
        if self.chance.happens(30):
            sale.change()
        mode, xml = self.chance.weighed(All=8, Union=2, Zh=1), sale.xml(sale.lines)
        first = self.calculate(sale, mode, xml)
        if self.chance.happens(25) and not self.ill:
            self.counts["subtotals sent twice"] += 1
            require(self.calculate(sale, mode, xml) == first, f"{mode} twice gives something else")

    def step_full(self):
        sale = self.sale()
        self.calculate(sale, "MzPromotion", sale.xml([]))

    def step_gifts(self):
        sale = self.sale()
        picks = {str(self.chance.randint(0, 4)): self.chance.choice([0, 1, 1, 2, 3])
                 for _ in range(self.chance.randint(0, 3))}
        self.calculate(sale, "Gift", with_picks(self.results.get(sale.key, ""), picks))

    def step_pay(self):
        sale = self.sale()
        self.calculate(sale, "Pay", sale.xml([], [sale.payments()]))

    def step_coupon(self):
        sale = self.sale()
        self.calculate(sale, "Coupon", sale.xml([], [sale.coupons()]))

    def step_end(self):
        """The sale that has been open for longest ends; so does any that has had its share of calls."""
        for key in [key for key, sale in self.sales.items() if sale.steps > 25] or list(self.sales)[:1]:
            self.forget(key)
            self.expect(self.engine.delete(key), "DeleteSaleSetByKey")
            self.counts["sales"] += 1

    def forget(self, key):
        self.sales.pop(key)
        self.results.pop(key, None)

    def step_all_end(self):
        self.expect(self.engine.clear_sales(), "ClearSaleSetForNet")
        self.counts["sales"] += len(self.sales)
        self.sales.clear()
        self.results.clear()

    # Rules

    def make_rule(self, number=None, kind=None):
        """A rule with its rows, with a date that no other has: so their order is known."""
        kind = kind or self.chance.choice(rules.TYPES)
        number = number or f"{kind}-{self.chance.randint(1, 6)}"
        had = self.rules.pop(number, None)
        if had:
            self.dates.append(had.date)
        rule = rules.make_rule(self.chance, self.shop, number, kind, self.dates.pop(0))
        rule.date = next(word.split('"')[1] for word in rule.xml.split() if word.startswith("JzDate="))
        self.rules[number] = rule
        self.store.put(number, rule.rows)
        return rule

    def step_rule(self):
        """A rule comes, changes or goes while sales are open."""
        self.counts["rules changed"] += 1
        if len(self.rules) < MOST_RULES and self.chance.happens(65) or not self.rules:
            rule = self.make_rule()
            self.expect(self.engine.load(rule.load, rule.xml), "InitPromotion")
            return
        number = self.chance.choice(list(self.rules))
        self.dates.append(self.rules.pop(number).date)
        self.expect(self.engine.clear_rule(self.chance.choice([number, number.lower()])), "ClearPromotion")

    def step_reload(self):
        """All rules anew, as in the morning; in between the engine is not to be had."""
        self.counts["reloads"] += 1
        if self.chance.happens(50):
            self.expect(self.engine.clear_rule("*"), "ClearPromotion")
        self.expect(self.engine.begin(), "BeginInitPro")
        require(self.engine.state() == "Init", "the state is not Init")
        answer = self.engine.calculate("nobody", "All", "<Sale/>")
        require(answer == (-1, "pro inititalzing", ""), f"a calculation while rules are loaded: {answer}")
        require(self.engine.clear_rule("*").code == -1, "rules can be cleared while they are loaded")
        self.load_all(self.engine)
        require(self.engine.state() == "Free", "the state is not Free")

    def load_all(self, engine):
        for rule in self.rules.values():
            self.expect(engine.load(rule.load, rule.xml), "InitPromotion")
        self.expect(engine.finish(), "FinishInitPro")

    def step_rows(self):
        """The rows of a rule change; it need not be loaded anew."""
        if not self.rules:
            return
        self.counts["rows changed"] += 1
        rule = self.rules[self.chance.choice(list(self.rules))]
        fresh = rules.make_rule(self.chance, self.shop, rule.number, rule.kind, rule.date)
        self.store.put(rule.number, {} if self.chance.happens(10) else fresh.rows)

    # What goes wrong

    def step_fault(self):
        """Something falls ill, the shop goes on, and once it is healed all is as on a fresh engine."""
        name = self.chance.choice(FAULTS)
        self.faults[name] += 1
        self.ill = True
        with getattr(self.store, name)():
            # Behind a lock each call waits until its patience ends.
            for _ in range(1 if name == "locked" else self.chance.randint(1, 6)):
                getattr(self, "step_" + self.chance.choice(["subtotal", "full", "scan", "pay", "gifts"]))()
            if self.chance.happens(20) and name != "locked":
                self.engine.begin()  # with or without a database
                self.expect(self.engine.finish(), "FinishInitPro")
        self.ill = False
        self.compare_with_fresh(f"after {name}")

    def step_fresh(self):
        self.compare_with_fresh("in between")

    def compare_with_fresh(self, when):
        """A whole sale under a new key here and on an engine that has just been loaded: the same bytes."""
        self.counts["comparisons with a fresh engine"] += 1
        self.numbers += 1
        sale = HostSale(self.chance, self.shop, f"probe {self.numbers}")
        for _ in range(self.chance.randint(1, 6)):
            sale.scan()
        calls = [("All", sale.xml(sale.lines)), ("Single", sale.xml([sale.scan()])), ("All", sale.xml(sale.lines)),
                 ("MzPromotion", sale.xml([])), ("Pay", sale.xml([], [sale.payments()])),
                 ("Coupon", sale.xml([], [sale.coupons()]))]
        fresh, answers = self.hosted(), []
        try:
            self.expect(fresh.begin(), "BeginInitPro of a fresh engine")
            self.load_all(fresh)
            for mode, xml in calls:
                here, there = self.calculate(sale, mode, xml), fresh.calculate(sale.key, mode, xml)
                require(here == there, f"{when}, {mode} differs from a fresh engine:\n{difference(here, there)}")
                answers.append(here)
        finally:
            code = fresh.close()
        require(code == 0, f"a fresh engine ended with code {code}")
        self.results.pop(sale.key, None)
        self.expect(self.engine.delete(sale.key), "DeleteSaleSetByKey")
        self.check_money(sale, calls, answers)

    def check_money(self, sale, calls, answers):
        """Where the money of a sale went that has been played already."""
        loads = [rule.call() for rule in self.rules.values()]
        till = {"seed": 0, "rows": self.store.tables(),
                "calls": loads + [["CalcPromotion", sale.key, mode, xml] for mode, xml in calls]}
        played = [[0, "sucess", UNTOUCHED, []] for _ in loads] + [[*answer, []] for answer in answers]
        try:
            discounts_equal_what_left_the_lines(till, Played(played), self.counts)
            payments_and_coupons(till, played, self.counts)
        except Broken as broken:
            raise Failure(str(broken)) from broken

    # The run

    def step(self):
        kind = self.chance.weighed(scan=26, subtotal=26, full=14, gifts=8, pay=8, coupon=8, end=12, rule=3, rows=3,
                                   fresh=0.6, fault=1.2, reload=0.6, all_end=0.3)
        getattr(self, "step_" + kind)()

    def look_at_memory(self):
        """What the engine holds without sales and rules, on a connection that has just been opened: how many there are,
        and how many statements a connection has prepared, must not matter."""
        self.step_all_end()
        self.expect(self.engine.clear_rule("*"), "ClearPromotion")
        self.store.replace()
        self.expect(self.engine.begin(), "BeginInitPro")
        self.expect(self.engine.finish(), "FinishInitPro")
        memory = self.engine.memory()
        self.looks.append(memory)
        if len(self.looks) > WARM:
            self.check_growth(self.looks[WARM - 1], memory)
        return memory

    @staticmethod
    def check_growth(early, late):
        require(late.heap <= early.heap + MOST_HEAP,
                f"the heap grew from {early.heap} to {late.heap} bytes")
        require(late.resident <= early.resident * MOST_RESIDENT,
                f"the process grew from {early.resident} to {late.resident} KiB")
        require(late.descriptors <= early.descriptors,
                f"open descriptors grew from {early.descriptors} to {late.descriptors}")

    def open_shop(self):
        """Another shop with rules of its own: none is for one kind of goods, or with rules that can't apply, for long."""
        self.shop = Shop(self.chance)
        for rule in self.rules.values():
            self.dates.append(rule.date)
        self.rules.clear()
        self.store.rows.clear()
        self.store.replace()
        self.expect(self.engine.begin(), "BeginInitPro")
        for kind in rules.TYPES:
            self.make_rule(f"{kind}-1", kind)
        self.load_all(self.engine)

    def run(self):
        """@return the exit code."""
        begin, step = time.monotonic(), 0
        try:
            self.open_shop()
            while not self.is_done(step, time.monotonic() - begin):
                step += 1
                self.step()
                if step % CHECKPOINT == 0:
                    self.tell(step, time.monotonic() - begin, self.look_at_memory())
                    self.open_shop()
            code = self.engine.close()
            require(code == 0, f"the host ended with code {code}")
        except (Failure, Lost, AssertionError, OSError) as failure:
            self.tell_failure(step, failure)
            return 1
        except Exception as error:  # the shop itself: the store is locked, say
            self.tell_failure(step, f"{type(error).__name__}: {error}")
            raise
        self.tell_end(step, time.monotonic() - begin)
        return 0

    def is_done(self, step, seconds):
        """With --steps, whether so many are done; otherwise whether time is up at a checkpoint that tells of memory."""
        if self.options.steps:
            return step >= self.options.steps
        return step % CHECKPOINT == 0 and seconds >= self.options.minutes * 60

    def tell(self, step, seconds, memory):
        print(f"{seconds:6.0f} s {step:8} steps {self.engine.calls:9} calls {self.counts['sales']:7} sales "
              f"{sum(self.faults.values()):5} faults, heap {memory.heap // 1024} KiB, resident {memory.resident} KiB, "
              f"{memory.descriptors} descriptors", flush=True)

    def tell_failure(self, step, failure):
        print(f"soak: step {step}: {failure}\nthe last calculations:")
        for key, mode, xml in self.last_calls:
            print(f"  {key} {mode}\n    {xml}")
        print(f"again: --seed {self.options.seed} --steps {step}", flush=True)

    def tell_end(self, step, seconds):
        print(f"{step} steps with seed {self.options.seed} in {seconds:.0f} s: {self.engine.calls} calls, "
              f"{self.counts['sales']} sales, {sum(self.faults.values())} faults")
        for title, counts in (("of these:", self.counts), ("results in which a type gave something:", self.given),
                              ("faults:", self.faults)):
            print(title)
            for name, count in sorted(counts.items()):
                print(f"  {count:8} {name}")
        if len(self.looks) > WARM:
            first, early, late = self.looks[0], self.looks[WARM - 1], self.looks[-1]
            for when, memory in (("after the first", first), ("warm", early), ("at the end", late)):
                print(f"memory {when}: heap {memory.heap} bytes, resident {memory.resident} KiB, "
                      f"{memory.descriptors} descriptors")
        else:
            print(f"memory is judged after {(WARM + 1) * CHECKPOINT} steps")


def difference(one, other):
    """Where two answers differ."""
    for mine, its in zip(one.out.splitlines(), other.out.splitlines()):
        if mine != its:
            return f"  {mine.strip()}\n  {its.strip()}"
    return f"  {one.code} {one.msg} {len(one.out)} bytes\n  {other.code} {other.msg} {len(other.out)} bytes"


def arguments():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("host", help="program that hosts the engine")
    parser.add_argument("library", help="library to run")
    parser.add_argument("schema", help="SQL script that makes the store's tables")
    parser.add_argument("--minutes", type=float, default=10, help="how long (10); the run ends at a look at memory")
    parser.add_argument("--steps", type=int, help="how many steps instead, to play a run again")
    parser.add_argument("--seed", type=int, default=1, help="another number, another shop (1)")
    options = parser.parse_args()
    for name in ("host", "library", "schema"):
        setattr(options, name, str(pathlib.Path(getattr(options, name)).resolve()))
    return options


def main():
    options = arguments()
    folder = tempfile.mkdtemp(prefix="qncorvane-soak-")
    try:
        return Soak(options, folder).run()
    finally:
        shutil.rmtree(folder, ignore_errors=True)


if __name__ == "__main__":
    try:
        sys.exit(main())
    except (OSError, ValueError, LookupError) as error:
        print(f"soak: {error}", file=sys.stderr)
        sys.exit(2)
