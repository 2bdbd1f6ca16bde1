"""Seeded chance. Everything that a till is made of comes from one of these, so that a seed always gives the same till."""

import random


class Chance(random.Random):
    """A random number generator with the questions that the generator asks.

    With a tidy one nothing goes wrong: what comes of it is what a real host sends and a real shop keeps.
    """

    def __init__(self, seed, tidy=False):
        super().__init__(seed)
        self.tidy = tidy

    def happens(self, percent):
        return self.random() * 100 < percent

    def odd(self, percent):
        """Whether something goes wrong; never with tidy chance."""
        return self.happens(percent) and not self.tidy

    def weighed(self, **weights):
        """One of the names, each as often as its weight says; "odd" is what goes wrong."""
        if self.tidy and "odd" in weights:
            weights["odd"] = 0
        return self.choices(list(weights), list(weights.values()))[0]

    def some(self, items, least=0, most=None):
        """Some of the items in their order."""
        count = self.randint(least, max(least, min(len(items), most if most is not None else len(items))))
        return [items[place] for place in sorted(self.sample(range(len(items)), min(count, len(items))))]

    def money(self, most):
        """An amount above nothing: round ones, ones with cents, and ones that don't divide well."""
        amount = self.uniform(0, most)
        kind = self.random()
        if kind < 0.4:
            return float(max(1, round(amount)))
        if kind < 0.85:
            return max(0.01, round(amount, 1))
        return max(0.01, round(amount, 2))

    def nonsense_number(self):
        """What stands where a sensible number should be."""
        return self.choice([0, -1, 0.5, -0.001, 0.004, 0.005, 1e-9, 99.999, 1e9, -1e9, 1e15, 2147483648, 100, None, "",
                            "abc", "3", " 2", "1e3", "12abc", "nan", "inf", "-0"])

    def nonsense_text(self):
        """What stands where a known word should be."""
        return self.choice(["", None, " ", "x", "plu", "in", "*", "O'Neill", "牛奶", "a;b", "%", "A" * 300, "0", "-"])
