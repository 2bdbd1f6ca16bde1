"""XML texts, tidy ones and those that come from careless hands or over a bad line."""

from xml.sax.saxutils import escape


class Element:
    """An element: its name, its attributes as pairs in order, its children."""

    def __init__(self, name, attributes=(), children=()):
        self.name = name
        self.attributes = list(attributes.items()) if isinstance(attributes, dict) else list(attributes)
        self.children = list(children)


def group(name, rows):
    """A group with one row for each dict of attributes."""
    return Element(name, (), [Element("Row", row) for row in rows])


class Writer:
    """Writes elements tidily."""

    def write(self, element):
        inside = "".join(self.write(child) for child in element.children)
        tag = element.name + "".join(self.attribute(name, value) for name, value in element.attributes)
        return f"<{tag}>{inside}</{element.name}>" if inside else f"<{tag}/>"

    def attribute(self, name, value):
        return f' {name}="{quoted(value)}"'


def quoted(value):
    """A value between double quotes."""
    return escape(plain(value), {'"': "&quot;"})


def plain(value):
    """A value as text; a whole number of money without its point."""
    if isinstance(value, float):
        return format(value, ".10g") if abs(value) < 1e15 else repr(value)
    return "" if value is None else str(value)


class UnkemptWriter(Writer):
    """Writes what a parser has to take: doubled, unknown, missing and shuffled attributes, other quotes, references,
    comments, CDATA, unknown groups."""

    def __init__(self, chance, percent=8):
        self.chance, self.percent = chance, percent

    def often(self, factor=1.0):
        return self.chance.happens(self.percent * factor)

    def write(self, element):
        name = self.odd_name(element.name) if self.often(0.3) else element.name
        children = list(element.children)
        if self.often():
            children.insert(self.chance.randint(0, len(children)), self.unknown_group())
        if children and self.often(0.3):
            children.append(self.chance.choice(children))
        pieces = [piece for child in children for piece in (self.between(), self.write(child))]
        attributes = self.attributes(element.attributes)
        if not pieces and self.often(2):
            return f"<{name}{attributes} />"
        return f"<{name}{attributes}>{''.join(pieces)}{self.between()}</{name}>"

    def odd_name(self, name):
        return self.chance.choice([name.lower(), name.upper(), name + "s", "x:" + name, "_" + name])

    def unknown_group(self):
        return Element(self.chance.choice(["Extra", "Plu2", "plu", "Hints", "Rows"]), (),
                       [Element("Row", [("PluCode", "?"), ("SerialNo", "1")])])

    def between(self):
        """What stands between two elements."""
        if not self.often(2):
            return self.chance.choice(["", "", "\n", "  "])
        return self.chance.choice(["<!-- a > remark -->", "<![CDATA[<Row a='1'/>]]>", "text", "&amp;", "<!-- -- -->",
                                   "<?target data?>", "<!DOCTYPE x>", "\r\n\t", "牛奶"])

    def attributes(self, pairs):
        pairs = [pair for pair in pairs if not self.often(0.5)]
        if pairs and self.often():
            name, value = self.chance.choice(pairs)
            pairs.insert(self.chance.randint(0, len(pairs)), (name, self.chance.choice([value, "", "7", "X"])))
        if self.often():
            pairs.append((self.chance.choice(["Unknown", "CAT", "SEASON", "billno", "Name"]), "S1"))
        if self.often():
            self.chance.shuffle(pairs)
        return "".join(self.attribute(name, value) for name, value in pairs)

    def attribute(self, name, value):
        if self.often():
            return self.odd_attribute(name, plain(value))
        return super().attribute(name, value)

    def odd_attribute(self, name, value):
        kind = self.chance.randint(0, 6)
        safe = escape(value)
        if kind == 0 and "'" not in value:
            return f" {name}='{safe}'"
        if kind == 1:
            return f' {name} = "{quoted(value)}"'
        if kind == 2:
            return f' {name}="' + "".join(f"&#{ord(letter)};" for letter in value) + '"'
        if kind == 3:
            return f' {name}="' + "".join(f"&#x{ord(letter):x};" for letter in value) + '"'
        if kind == 4:
            return f' {name}="{quoted(value)}{self.chance.choice(["&bogus;", "&", "&#0;", "&#x;", "&lt;", "&#65"])}"'
        if kind == 5 and value.isalnum():
            return f" {name}={value}"
        return f'\n {name}="  {quoted(value)} "'


def damaged(chance, text):
    """The text as it arrives over a bad line: cut off anywhere, with a letter changed, with a piece doubled or gone; or
    grown beyond all measure."""
    place = chance.randint(0, len(text))
    kind = chance.weighed(cut=60, letter=30, doubled=10, byte=10, dropped=10, deep=3, wide=3)
    if kind == "cut":
        return text[:place]
    if kind == "letter":
        return text[:place] + chance.choice("<>&\"'/= !?-[];x0\n") + text[place + 1:]
    if kind == "doubled":
        return text[:place] + text[max(0, place - 40):]
    if kind == "byte":
        return text[:place] + chance.choice(["\udcff", "\udce4", "\udcc3", "\udcf4", "\udc80"]) + text[place:]
    if kind == "deep":
        return text[:place] + "<a>" * chance.choice([150, 199, 250]) + text[place:]
    if kind == "wide":
        many = "".join(f' a{number}="1"' for number in range(chance.choice([900, 1100])))
        return text.replace("<Row", "<Row" + many, 1)
    return text[:place] + text[place + chance.randint(1, 30):]


def written(chance, element, unkempt=12, broken=3):
    """An element as text: mostly tidy, sometimes unkempt or broken (percent)."""
    writer = UnkemptWriter(chance, chance.choice([3, 8, 20])) if chance.odd(unkempt) else Writer()
    text = chance.choice(["", "", '<?xml version="1.0" encoding="UTF-8"?>\n', '<?xml version="1.0"?>'])
    text += writer.write(element)
    if chance.odd(unkempt / 10):
        text = "\ufeff" + text
    return damaged(chance, text) if chance.odd(broken) else text
