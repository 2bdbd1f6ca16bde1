"""Makes a till that shows a difference as small as it goes while the difference stays."""

import copy
import re
import time

TAG = re.compile(r"""<(/?)([A-Za-z_][\w:.-]*)((?:[^<>"']|"[^"]*"|'[^']*')*?)(/?)>""")
OTHER = re.compile(r"<!--.*?-->|<!\[CDATA\[.*?\]\]>|<\?.*?\?>|<!\w[^>]*>|\s{2,}", re.DOTALL)
ATTRIBUTE = re.compile(r"""\s+[\w:.-]+\s*=\s*("[^"]*"|'[^']*'|[^\s"'<>/]+)""")


def fewest(items, holds):
    """The items of a list that `holds` can't do without: first large pieces are left out, then smaller ones, the last
    first. `holds` gets a list with fewer items and says whether that is enough."""
    size = max(1, (len(items) + 1) // 2)
    while items:
        end = len(items)
        while end > 0:
            begin = max(0, end - size)
            fewer = items[:begin] + items[end:]
            if holds(fewer):
                items = fewer
            end = begin
        if size == 1:
            break
        size = (size + 1) // 2
    return items


def elements(xml):
    """The places of all elements of an XML text, well-formed or not, those that hold others first."""
    found, open_tags = [], []
    for tag in TAG.finditer(xml):
        closes, name, _, alone = tag.groups()
        if alone:
            found.append(tag.span())
        elif not closes:
            open_tags.append((name, tag.start()))
        elif open_tags and open_tags[-1][0] == name:
            found.append((open_tags.pop()[1], tag.end()))
    return sorted(found, key=lambda span: span[0] - span[1])


def without_elements(xml, holds):
    """Leaves out elements, and with each what it holds."""
    tried = 0
    while True:
        spans = elements(xml)
        if tried >= len(spans):
            return xml
        begin, end = spans[tried]
        if holds(xml[:begin] + xml[end:]):
            xml = xml[:begin] + xml[end:]
        else:
            tried += 1


def without_matches(pattern, xml, holds):
    """Leaves out what a pattern finds, the last first."""
    for match in reversed(list(pattern.finditer(xml))):
        fewer = xml[:match.start()] + xml[match.end():]
        if holds(fewer):
            xml = fewer
    return xml


def smaller_xml(xml, holds):
    xml = without_elements(xml, holds)
    xml = without_matches(OTHER, xml, holds)
    return without_matches(ATTRIBUTE, xml, holds)


class Reducer:
    """Reduces one till. `differs` plays a till and says whether the difference is still there."""

    def __init__(self, till, differs, seconds=60.0):
        self.till = till
        self.differs = differs
        self.end = time.monotonic() + seconds

    def holds(self, change):
        """Whether the difference stays in a copy of the till that `change` has made smaller. The copy is then kept."""
        if time.monotonic() > self.end:
            return False
        smaller = copy.deepcopy(self.till)
        change(smaller)
        if smaller == self.till or not self.differs(smaller):
            return False
        self.till = smaller
        return True

    def reduce(self):
        """@return the smallest till that was found."""
        before = None
        while before != self.till and time.monotonic() < self.end:
            before = self.till
            self.drop_calls()
            self.drop_rows()
            self.drop_columns()
            self.shrink_texts()
        return self.till

    def drop_calls(self):
        fewest(self.till["calls"], lambda fewer: self.holds(lambda till: till.update(calls=fewer)))

    def drop_rows(self):
        places = [(table, place) for table, rows in self.till["rows"].items() for place in range(len(rows))]
        rows = self.till["rows"]

        def keep(kept):
            tables = {}
            for table, place in kept:
                tables.setdefault(table, []).append(rows[table][place])
            return self.holds(lambda till: till.update(rows=tables))

        fewest(places, keep)

    def drop_columns(self):
        places = [(table, place, column) for table, rows in self.till["rows"].items()
                  for place, row in enumerate(rows) for column in row]
        for table, place, column in places:
            self.holds(lambda till, t=table, p=place, c=column: till["rows"][t][p].pop(c))

    def shrink_texts(self):
        """Makes the XML of the calls smaller."""
        for place, call in enumerate(self.till["calls"]):
            last = len(call) - 1
            if call[0] in ("InitPromotion", "CalcPromotion") and call[last]:
                smaller_xml(call[last],
                            lambda xml, p=place, n=last: self.holds(lambda till: till["calls"][p].__setitem__(n, xml)))
