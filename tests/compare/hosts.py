"""Makes tills of hosts that keep to the rules: tidy XML, numbers that mean something, and every sale in its proper
order. Voided and returned lines belong to it. One seed, one till."""

import rules
from chance import Chance
from generator import TillMaker
from sales import Sale, counted
from shop import Shop

# Rules of one stacking class with the same date run in the order in which they were loaded; most have one of their own.
DATES = [f"2026-{month:02}-{day:02}" for month in range(1, 7) for day in range(1, 29)]


def make_host_till(seed, kinds=None):
    """The till of a seed; with `kinds`, only rules of these types."""
    return HostTillMaker(seed, kinds).make()


class HostTillMaker(TillMaker):
    """Builds one till sale by sale. The sales are open side by side."""

    def __init__(self, seed, kinds=None):
        super().__init__(seed, Chance(seed, tidy=True))
        self.types = kinds or rules.TYPES
        self.dates = self.chance.sample(DATES, len(DATES))

    def make(self):
        self.load_rules()
        walks = [self.walk(number) for number in range(1, self.chance.choice([1, 1, 2, 2, 3]) + 1)]
        while walks:
            walk = self.chance.choice(walks)
            if not next(walk, False):
                walks.remove(walk)
        return {"seed": self.seed, "store": "keyed", "rows": self.rows, "calls": self.calls}

    def kinds(self):
        """The types of the rules: mostly several of a family, so that they meet."""
        some = self.chance.sample(self.types, min(len(self.types), self.chance.choice([2, 3, 4, 6, 15])))
        return [self.chance.choice(some) for _ in range(self.chance.choice([1, 2, 3, 4, 5, 6, 8]))]

    def date(self):
        return self.dates[-1] if self.chance.happens(15) else self.dates.pop()

    def walk(self, number):
        """One sale from its first line to its end; each step stops behind a call."""
        sale = HostSale(self.chance, self.shop, f"till {number}")
        for _ in range(self.chance.choice([1, 2, 3, 3, 4, 5, 8])):
            line = sale.scan()
            if self.chance.happens(35):
                yield self.calc(sale, "Single", [line])
        for _ in range(self.chance.choice([1, 1, 1, 2])):
            yield from self.subtotal(sale)
        if self.chance.happens(60):
            yield self.calc(sale, "Pay", [], [sale.payments()])
        if self.chance.happens(60):
            yield self.calc(sale, "Coupon", [], [sale.coupons()])
        if self.chance.happens(30):
            yield self.call("DeleteSaleSetByKey", sale.key)

    def subtotal(self, sale):
        """The whole sale, after some of it has changed, and what is offered behind it."""
        if self.chance.happens(25):
            sale.change()
        yield self.calc(sale, self.chance.weighed(All=8, Union=2, Zh=1), sale.lines)
        if self.chance.happens(85):
            yield self.calc(sale, "MzPromotion", [])
        if self.chance.happens(40):
            yield self.call("Gift", sale.key, {str(self.chance.randint(0, 3)): self.chance.choice([0, 1, 1, 2])})

    def call(self, *call):
        self.calls.append(list(call))
        return True

    def calc(self, sale, mode, lines, extra=(), **_):
        return self.call("CalcPromotion", sale.key, mode, sale.xml(lines, extra))


class HostSale(Sale):
    """A sale of which a line may be voided or returned from the first. The member's card is told with every line."""

    def groups(self, lines, members=True):
        return super().groups(lines, members and bool(lines))

    def scan(self):
        line = super().scan()
        kind = self.chance.weighed(sold=88, voided=4, returned=8)
        if kind == "voided":
            line.update(PluCount=0, Total=0)
        elif kind == "returned":
            line.update(counted(line, -line["PluCount"]))
        return line
