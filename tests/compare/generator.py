"""Makes tills: a store with rules, and the calls of a day on it. One seed, one till."""

import rules
from chance import Chance
from rules import make_rule
from sales import Sale
from shop import Shop
from xmltext import damaged

MODES = ("Single", "All", "Union", "Zh", "MzPromotion", "Gift", "Pay", "Coupon")
TABLES = ("tProPrjDirectProAct", "tProPrjCombProAct", "tProPrjCombPluSet", "tProCombConditionAct", "tProPrjCombCtrl",
          "tpromzlist", "tProMzConPluSet", "tProMzDiscountAct", "tProMzScheme", "tProMzPluAct")


def make_till(seed):
    """The till of a seed."""
    return TillMaker(seed).make()


class TillMaker:
    """Builds one till call by call."""

    def __init__(self, seed, chance=None):
        self.seed = seed
        self.chance = chance or Chance(seed)
        self.shop = Shop(self.chance)
        self.rows, self.calls = {}, []
        self.rules, self.sales = [], []
        self.numbers = 0

    def make(self):
        self.load_rules()
        for number in range(1, self.chance.choice([1, 1, 1, 2, 3]) + 1):
            self.sales.append(Sale(self.chance, self.shop, self.key(number)))
        if self.chance.happens(60):
            self.usual_day()
        for _ in range(self.chance.randint(1, 7)):
            self.step()
        kind = self.chance.weighed(keyed=74, loose=24, closed=1, unset=1)
        return {"seed": self.seed, "store": kind, "rows": self.rows, "calls": self.calls}

    def key(self, number):
        return self.chance.choice(["till 2", "收银1", "K" * 100]) if self.chance.happens(3) else f"till {number}"

    # Rules

    def load_rules(self):
        if self.chance.happens(98) or self.chance.tidy:
            self.calls.append(["BeginInitPro"])
        for kind in self.kinds():
            self.add_rule(kind)
        if self.chance.happens(99) or self.chance.tidy:
            self.calls.append(["FinishInitPro"])

    def kinds(self):
        """The types of the rules. Few different ones, so that rules of one type and of one family meet often."""
        some = self.chance.sample(rules.TYPES, self.chance.randint(1, 4))
        return [self.chance.choice(some) for _ in range(self.chance.choice([0, 1, 1, 2, 2, 3, 3, 4, 5, 6]) or len(some))]

    def add_rule(self, kind, into_store=False):
        self.numbers += 1
        rule = make_rule(self.chance, self.shop, self.number_of(kind), kind, self.date())
        self.rules.append(rule)
        self.calls.append(rule.call())
        for table, rows in rule.rows.items():
            if into_store:
                self.calls += [["Sql", insert_text(table, row)] for row in rows]
            else:
                self.rows.setdefault(table, []).extend(rows)

    def date(self):
        """The `JzDate` of the next rule; None for one of those that rules make up themselves."""
        return None

    def number_of(self, kind):
        if self.chance.odd(3):
            return self.chance.choice([f"{kind.lower()}-{self.numbers}", f"{kind}'{self.numbers}", "", f"{kind}-1"])
        return f"{kind}-{self.numbers}"

    # A sale

    def usual_day(self):
        """One sale the way a good host makes it."""
        sale = self.sales[0]
        for _ in range(self.chance.choice([1, 2, 3, 3, 4, 5, 8])):
            line = sale.scan()
            if self.chance.happens(30):
                self.calc(sale, "Single", [line])
        self.calc(sale, self.chance.weighed(All=7, Union=2, Zh=1), sale.lines)
        if self.chance.happens(80):
            self.calc(sale, "MzPromotion", [])
            self.choose_gifts(sale)
        if self.chance.happens(50):
            self.calc(sale, "Pay", [], [sale.payments()])
        if self.chance.happens(50):
            self.calc(sale, "Coupon", [], [sale.coupons()])

    def calc(self, sale, mode, lines, extra=(), **mess):
        self.calls.append(["CalcPromotion", sale.key, mode, sale.xml(lines, extra, **mess)])

    def choose_gifts(self, sale):
        for _ in range(self.chance.choice([0, 1, 1, 2])):
            picks = {str(self.chance.randint(0, 4)): self.chance.choice([0, 1, 1, 2, 3, 1.5, -1, 99])
                     for _ in range(self.chance.randint(0, 3))}
            self.calls.append(["Gift", sale.key, picks])

    # What else happens

    def step(self):
        """One more event, at one of the open sales or at the shop."""
        sale = self.chance.choice(self.sales)
        kind = self.chance.weighed(scan=14, total=22, full=14, gifts=8, pay=8, coupon=8, changed=8, broken=5, end=2,
                                   rule=5, rows=5, table=3, state=4, clear=2, odd=3)
        getattr(self, "step_" + kind)(sale)

    def step_scan(self, sale):
        self.calc(sale, "Single", [sale.scan()])

    def step_total(self, sale):
        for _ in range(self.chance.choice([0, 1, 2, 4])):
            sale.scan()
        lines = sale.lines if self.chance.happens(80) else self.chance.some(sale.lines)
        extra = [sale.payments()] if self.chance.happens(8) else []
        self.calc(sale, self.chance.choice(["All", "All", "Union", "Zh"]), lines, extra)

    def step_full(self, sale):
        if not sale.lines:
            sale.scan()
        self.calc(sale, "MzPromotion", sale.lines if self.chance.happens(60) else [])
        self.choose_gifts(sale)

    def step_gifts(self, sale):
        self.choose_gifts(sale)

    def step_pay(self, sale):
        self.calc(sale, "Pay", sale.lines if self.chance.happens(40) else [], [sale.payments()])

    def step_coupon(self, sale):
        self.calc(sale, "Coupon", sale.lines if self.chance.happens(40) else [], [sale.coupons()])

    def step_changed(self, sale):
        line = sale.change()
        self.calc(sale, self.chance.choice(["Single", "All", "Union", "MzPromotion"]), [line])

    def step_broken(self, sale):
        """The same sale from careless hands."""
        if not sale.lines:
            sale.scan()
        self.calc(sale, self.chance.choice(MODES), sale.lines, [sale.payments(), sale.coupons()], unkempt=80, broken=50)

    def step_end(self, sale):
        self.calls.append(["DeleteSaleSetByKey", self.chance.choice([sale.key, sale.key, "nobody"])])
        self.sales[self.sales.index(sale)] = Sale(self.chance, self.shop, sale.key)

    def step_rule(self, sale):
        """A rule changes, comes or goes while sales are open."""
        if not self.rules or self.chance.happens(40):
            self.add_rule(self.chance.choice(rules.TYPES), into_store=True)
        elif self.chance.happens(50):
            rule = self.chance.choice(self.rules)
            kind = self.chance.choice(rules.TYPES) if self.chance.happens(20) else rule.kind
            self.calls.append(make_rule(self.chance, self.shop, rule.number, kind).call())
        else:
            number = self.chance.choice(self.rules).number
            self.calls.append(["ClearPromotion", self.chance.choice([number, number.lower(), "*", "nobody", ""])])
        self.step_total(sale)

    def step_rows(self, sale):
        """Rows of the store change."""
        filled = [(table, row) for table, rows in self.rows.items() for row in rows]
        if filled:
            table, row = self.chance.choice(filled)
            self.calls.append(["Sql", self.change_of(table, row)])
        self.step_total(sale)

    def change_of(self, table, row):
        numbers = [name for name, value in row.items() if isinstance(value, (int, float)) and name != "SerialNo"]
        where = f"where BillNo={literal(row['BillNo'])}"
        if not numbers or self.chance.happens(30):
            return f"delete from {table} {where}"
        value = self.chance.nonsense_number() if self.chance.happens(30) else self.chance.money(20)
        return f"update {table} set {self.chance.choice(numbers)}={literal(value)} {where}"

    def step_table(self, sale):
        """A table is gone for a while."""
        table = self.chance.choice(list(self.rows) or list(TABLES))
        self.calls.append(["Sql", f"alter table {table} rename to gone"])
        if not sale.lines:
            sale.scan()
        for mode in self.chance.sample(["All", "MzPromotion", "Single"], 2):
            self.calc(sale, mode, sale.lines if mode != "Single" else sale.lines[-1:])
        self.calls.append(["Sql", f"alter table gone rename to {table}"])
        self.calc(sale, "All", sale.lines)

    def step_state(self, sale):
        """Calls out of their order."""
        self.calls += [["GetState"], ["BeginInitPro"]]
        for _ in range(self.chance.randint(0, 2)):
            self.calls.append(self.chance.choice([["BeginInitPro"], ["ClearSaleSetForNet"], ["ClearPromotion", "*"],
                                                  ["DeleteSaleSetByKey", sale.key], ["GetState"]]))
        if self.chance.happens(50):
            self.calc(sale, "All", sale.lines)
        if self.chance.happens(90):
            self.calls.append(["FinishInitPro"])

    def step_clear(self, sale):
        self.calls.append(["ClearSaleSetForNet"])
        if self.chance.happens(50):
            self.calc(sale, "All", sale.lines)

    def step_odd(self, sale):
        """A call with an argument that a good host would not give."""
        xml = sale.xml(sale.lines)
        call = ["CalcPromotion", sale.key, self.chance.choice(MODES), xml]
        place = self.chance.randint(1, 3)
        call[place] = self.chance.choice({1: ["", None, "O'N"], 2: ["", "all", "ALL", "MZ", None, "All "],
                                          3: ["", None, "<", "<Sale/>", "<Sale><Plu/></Sale>", "x", damaged(self.chance, xml)]}[place])
        self.calls.append(call)
        if self.rules and self.chance.happens(30):
            rule = self.chance.choice(self.rules)
            self.calls.append(["InitPromotion", rule.load, damaged(self.chance, rule.xml)])


def literal(value):
    """A value as SQL writes it."""
    if value is None:
        return "NULL"
    if isinstance(value, str):
        return "'" + value.replace("'", "''") + "'"
    return repr(value)


def insert_text(table, row):
    """The statement that writes a row."""
    return f"insert or replace into {table} ({','.join(row)}) values ({','.join(map(literal, row.values()))})"
