"""The shop of a till: its goods, and the words in which rules and sales speak of them."""

ORGANISATION = "S01"
DATE, TIME = "2026-11-21", "10:30:00"  # a Saturday
CATEGORIES = ("DRINK", "FOOD", "CARE")
BRANDS = ("SUNNY", "ALPHA")
SEASONS = ("S1", "S2")
MEMBERS = ("01", "02", "GOLD")
PAYMENTS = ("CARD", "CASH", "WX")
CARDS = ("6200", "6210", "6299", "4000", "")
COUPONS = ("C5", "C10")
CODES = ("A1", "A2", "B1", "B2", "C1", "C2", "D1", "E1")
ODD_CODES = ("a1", "01", "1", "O'N", "", "A1 ", "牛奶", "DRINK", "*")


class Goods:
    """An article: what it costs, where it belongs, how it is sold."""

    def __init__(self, chance, code):
        self.code = code
        self.price = chance.money(chance.choice([3, 10, 30, 100, 500]))
        self.category = chance.choice(CATEGORIES)
        self.brand = chance.choice(BRANDS)
        self.season = chance.choice(SEASONS)
        self.weighed = chance.happens(12)
        self.pack = chance.choice([6, 2, 2.5]) if chance.happens(6) else chance.choice([0, 1, 1, 1])


class Shop:
    """A few goods, so few that rules and lines meet."""

    def __init__(self, chance):
        codes = list(CODES[:chance.randint(2, len(CODES))])
        if chance.odd(15):
            codes.append(chance.choice(ODD_CODES))
        self.goods = [Goods(chance, code) for code in codes]

    def articles(self, chance, least=1, most=3):
        """Codes of different articles."""
        return [goods.code for goods in chance.some(self.goods, least, most)]

    def price(self, chance):
        """The price of one of the goods."""
        return chance.choice(self.goods).price

    def named(self, chance, classes=35):
        """A code and what it names: mostly an article, with `classes` percent a class of goods."""
        if not chance.happens(classes):
            return chance.choice(self.goods).code, "PLU"
        goods = chance.choice(self.goods)
        kind = chance.weighed(CAT=6, BRD=4, SEASON=1)
        return {"CAT": goods.category, "BRD": goods.brand, "SEASON": goods.season}[kind], kind
