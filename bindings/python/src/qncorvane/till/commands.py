"""What may be typed at the till: a line is read, done and answered; and completed while it is typed."""

from __future__ import annotations

import dataclasses
import datetime
import pathlib
import re
from collections.abc import Callable, Iterator, Sequence
from decimal import Decimal

from .._sale import Coupon
from .goods import Goods, GoodsList
from .model import Till
from .rules import RuleTexts
from .view import View, amount, clean, count, cut, wrap
from .words import Refusal, Words

_MOST_LETTERS = 500
_MOST_CHOICES = 50
_TIMES = re.compile(r"(?P<count>[0-9][0-9.,]*)\s*[xX*×]\s*(?P<rest>\S.*)")
_AT = re.compile(r"(?P<goods>.*?)\s+at\s+(?P<price>\S+)(?:\s+cat\s+(?P<cat>\S+))?(?:\s+brand\s+(?P<brd>\S+))?")
_QUANTITY = re.compile(r"[0-9]{1,6}(\.[0-9]{1,3})?")
_MONEY = re.compile(r"[0-9]{1,9}(\.[0-9]{1,2})?")
_WHOLE = re.compile(r"[0-9]{1,4}")
_DATE = re.compile(r"[0-9]{4}-[0-9]{2}-[0-9]{2}")
_TIME = re.compile(r"[0-9]{2}:[0-9]{2}(:[0-9]{2})?")

# The commands, in the order in which help tells them.
COMMANDS = ("scan", "qty", "void", "return", "member", "shop", "date", "time", "subtotal", "gift", "pay", "coupon", "why", "undo",
            "new", "save", "help", "quit")


class Quit(Exception):
    """The person at the till is done."""


@dataclasses.dataclass(frozen=True, slots=True, kw_only=True)
class Answer:
    """What a command says.

    Attributes:
        text: one line.
        page: more than a line, to be read; makes lines of a width.
    """

    text: str = ""
    page: Callable[[int], list[str]] | None = None


@dataclasses.dataclass(frozen=True, slots=True, kw_only=True)
class Choice:
    """A way to go on with what is typed.

    Attributes:
        text: what stands there then.
        back: how many letters before the cursor it takes the place of.
        shown: what the list shows.
        about: what stands beside it.
    """

    text: str
    back: int
    shown: str
    about: str = ""


class Commands:
    """The commands of a till."""

    def __init__(self, till: Till, goods: GoodsList, rules: RuleTexts, words: Words, view: View) -> None:
        self._till = till
        self._goods = goods
        self._rules = rules
        self._words = words
        self._view = view
        self._done: dict[str, Callable[[str], Answer]] = {
            "scan": self._scan, "qty": self._qty, "void": self._void, "return": self._return, "member": self._member,
            "shop": self._shop, "date": self._date, "time": self._time, "subtotal": self._subtotal, "gift": self._gift,
            "pay": self._pay, "coupon": self._coupon, "why": self._why, "undo": self._undo, "new": self._new, "save": self._save,
            "help": self._help, "quit": self._quit}
        self._completed: dict[str, Callable[[str], Iterator[tuple[str, str]]]] = {
            "scan": self._goods_choices, "return": self._goods_choices, "qty": self._line_choices, "void": self._line_choices,
            "member": lambda _: self._plain(self._rules.members), "shop": lambda _: self._plain(self._rules.shops),
            "pay": lambda _: self._plain(self._rules.payments), "coupon": lambda _: self._plain(self._rules.coupons),
            "gift": self._gift_choices, "why": self._why_choices, "help": lambda _: self._command_choices()}

    def run(self, typed: str) -> Answer:
        """Does what was typed. What begins with no command is scanned.

        Raises:
            Refusal, QncError, ValueError, OSError: it can't be done; nothing was changed.
            Quit: the till is to end.
        """
        line = typed.strip()
        if len(line) > _MOST_LETTERS:
            raise Refusal("too_long", most=_MOST_LETTERS)
        for letter in line:
            if letter != "\t" and clean(letter) != letter:
                raise Refusal("control_character", letter=f"U+{ord(letter):04X}")
        if not line:
            return Answer()
        word, rest = _split(line)
        command = self._done.get(word.lower())
        if command is None or self._goods.exact(line):
            return self._scan(line)
        return command(rest)

    def complete(self, typed: str) -> list[Choice]:
        """The ways to go on with what stands before the cursor."""
        typed = typed[-_MOST_LETTERS:]
        word, rest = _split(typed.lstrip())
        begun = typed.lstrip()
        if word.lower() in self._completed and (rest or typed[-1:].isspace()):
            return _choices(self._completed[word.lower()](rest), _last_part(word.lower(), rest))
        if not begun:
            return []
        if word.lower() in COMMANDS and begun != word:
            return []
        times = _TIMES.fullmatch(begun)
        begun = times["rest"] if times else begun
        commands = ((text, about) for text, about in self._command_choices() if not times and text.startswith(begun.lower()))
        return [*_choices(commands, begun), *_choices(self._goods_choices(begun), begun)][:_MOST_CHOICES]

    # What changes the sale

    def _scan(self, rest: str, sign: int = 1) -> Answer:
        number, goods, price = self._goods_of(rest)
        self._till.scan(goods, number * sign, price)
        return self._scanned(len(self._till.state.lines))

    def _return(self, rest: str) -> Answer:
        return self._scan(rest, -1)

    def _qty(self, rest: str) -> Answer:
        line, quantity = self._parts("qty", rest, 2)
        number = _whole(line)
        self._till.set_count(number, _quantity(quantity))
        return self._scanned(number)

    def _void(self, rest: str) -> Answer:
        (line,) = self._parts("void", rest, 1)
        self._till.void(_whole(line))
        return Answer(text=self._words("did_void", line=line))

    def _member(self, rest: str) -> Answer:
        (vip_type,) = self._parts("member", rest, 1)
        self._till.add_member(vip_type)
        return Answer(text=self._words("did_member", member=vip_type))

    def _shop(self, rest: str) -> Answer:
        (shop,) = self._parts("shop", rest, 1)
        self._till.set_shop(shop)
        return Answer(text=self._words("did_shop", shop=shop))

    def _date(self, rest: str) -> Answer:
        (day,) = self._parts("date", rest, 1)
        moment = self._till.state.moment
        try:
            if not _DATE.fullmatch(day):
                raise ValueError(day)
            self._till.set_moment(datetime.datetime.combine(datetime.date.fromisoformat(day), moment.time()))
        except ValueError:
            raise Refusal("no_date", text=day) from None
        return Answer(text=self._words("did_moment", moment=self._till.state.moment.strftime("%Y-%m-%d %H:%M:%S")))

    def _time(self, rest: str) -> Answer:
        (time,) = self._parts("time", rest, 1)
        moment = self._till.state.moment
        try:
            if not _TIME.fullmatch(time):
                raise ValueError(time)
            self._till.set_moment(datetime.datetime.combine(moment.date(), datetime.time.fromisoformat(time)))
        except ValueError:
            raise Refusal("no_time", text=time) from None
        return Answer(text=self._words("did_moment", moment=self._till.state.moment.strftime("%Y-%m-%d %H:%M:%S")))

    def _subtotal(self, rest: str) -> Answer:
        self._parts("subtotal", rest, 0)
        self._till.subtotal()
        state = self._till.state
        offers = sum(len(offer.articles) for offer in state.offers)
        text = self._words("did_subtotal", money=amount(state.to_pay))
        return Answer(text=text + self._words("did_offers", count=offers) if offers else text)

    def _gift(self, rest: str) -> Answer:
        rule, rest = _split(rest)
        found = re.fullmatch(r"(.+?)(?:\s+([0-9]\S*))?", rest)
        if not rule or not found:
            raise Refusal("usage", usage=self._usage("gift"))
        offering = [offer.pro_bill_no for offer in self._till.state.offers]
        bill_no = next((number for number in offering if number.lower() == rule.lower()), rule)
        goods = self._goods.exact(found[1])
        number = _quantity(found[2]) if found[2] else Decimal(1)
        code = goods.code if goods else found[1]
        self._till.pick(bill_no, code, number)
        return Answer(text=self._words("did_gift", count=count(number), goods=self._goods.name(code)))

    def _pay(self, rest: str) -> Answer:
        parts = rest.split()
        if not 1 <= len(parts) <= 3:
            raise Refusal("usage", usage=self._usage("pay"))
        self._till.pay(parts[0], _money(parts[1]) if len(parts) > 1 else None, parts[2] if len(parts) > 2 else None)
        payment = self._till.state.payments[-1]
        return Answer(text=self._words("did_pay", way=payment.pay_mode, money=amount(payment.pay_money)))

    def _coupon(self, rest: str) -> Answer:
        times = _TIMES.fullmatch(rest)
        parts = (times["rest"] if times else rest).split()
        if not 2 <= len(parts) <= 3:
            raise Refusal("usage", usage=self._usage("coupon"))
        number = _whole(times["count"]) if times else 1
        if not 1 <= number <= 100:
            raise Refusal("too_many", most=100)
        coupon = Coupon(coupon_type_code=parts[0], coupon_value=_money(parts[1]),
                        bill_no=parts[2] if len(parts) > 2 else "COUPON")
        self._till.present([coupon] * number)
        return Answer(text=self._words("did_coupon", count=number, kind=parts[0], money=amount(coupon.coupon_value)))

    def _undo(self, rest: str) -> Answer:
        steps = _whole(rest) if rest else 1
        self._till.undo(steps)
        return Answer(text=self._words("did_undo", steps=steps))

    def _new(self, rest: str) -> Answer:
        self._parts("new", rest, 0)
        self._till.new()
        return Answer(text=self._words("did_new", bill=self._till.state.bill_no))

    # What shows or keeps it

    def _why(self, rest: str) -> Answer:
        state = self._till.state
        if not rest:
            return Answer(page=lambda width: self._view.reasons(state, width))
        if _WHOLE.fullmatch(rest) and 1 <= int(rest) <= len(state.lines):
            return Answer(page=lambda width: self._view.why_line(state, int(rest), width))
        numbers = [rule.bill_no for explanation in state.explanations for rule in explanation.rules]
        found = next((number for number in numbers if number.lower() == rest.lower()), None)
        if found is None:
            raise Refusal("no_such_rule", rule=rest)
        return Answer(page=lambda width: self._view.why_rule(state, found or "", width))

    def _save(self, rest: str) -> Answer:
        if not rest:
            raise Refusal("usage", usage=self._usage("save"))
        xml = self._till.state.whole().to_xml()
        file = pathlib.Path(rest).expanduser()
        try:
            with open(file, "x", encoding="utf-8") as out:
                out.write(xml)
        except FileExistsError:
            raise Refusal("file_exists", file=rest) from None
        return Answer(text=self._words("did_save", file=rest))

    def _help(self, rest: str) -> Answer:
        if rest and rest.lower() not in COMMANDS:
            raise Refusal("no_such_command", command=rest)
        told = [rest.lower()] if rest else COMMANDS

        def page(width: int) -> list[str]:
            return [text for command in told
                    for text in (cut(self._usage(command), width), *wrap(self._words(f"help_{command}"), width, "    "))]

        return Answer(page=page)

    def _quit(self, rest: str) -> Answer:
        self._parts("quit", rest, 0)
        raise Quit

    # What texts mean

    def _goods_of(self, text: str) -> tuple[Decimal, Goods, Decimal | None]:
        """Quantity, article and price of what is to be scanned."""
        if not text:
            raise Refusal("usage", usage=self._usage("scan"))
        known = self._goods.exact(text)
        if known:
            return Decimal(1), known, None
        times = _TIMES.fullmatch(text)
        if times:
            number = _quantity(times["count"])
            _, goods, price = self._goods_of(times["rest"])
            return number, goods, price
        at = _AT.fullmatch(text)
        if at is None:
            return Decimal(1), self._found(text), None
        price = _money(at["price"])
        try:
            goods = self._found(at["goods"])
        except Refusal as refusal:
            if refusal.key != "no_such_goods":
                raise
            # The engine knows goods by their codes alone: what the list doesn't have can be tried all the same.
            goods = Goods(code=at["goods"], name=at["goods"])
        return Decimal(1), dataclasses.replace(goods, cat=at["cat"] or goods.cat, brd=at["brd"] or goods.brd), price

    def _found(self, text: str) -> Goods:
        """The article that a text means: its code or name, or the beginning of just one, or a part of just one's name."""
        exact = self._goods.exact(text)
        if exact:
            return exact
        found = self._goods.search(text)
        if not found:
            raise Refusal("no_such_goods", text=text)
        if len(found) > 1 and len(self._goods.begun(text)) != 1:
            first = ", ".join(f"{each.code} {each.name}" for each in found[:3])
            raise Refusal("several_goods", text=text, goods=first + (", ..." if len(found) > 3 else ""))
        return found[0]

    def _scanned(self, number: int) -> Answer:
        state = self._till.state
        line = state.lines[number - 1]
        text = self._words("did_scan", count=count(line.count), goods=line.goods.name, money=amount(line.amount))
        if state.single and state.single.final_price != line.price:
            text += self._words("did_single", price=amount(state.single.final_price))
        return Answer(text=text)

    def _parts(self, command: str, rest: str, wanted: int) -> list[str]:
        parts = rest.split()
        if len(parts) != wanted:
            raise Refusal("usage", usage=self._usage(command))
        return parts

    def _usage(self, command: str) -> str:
        return self._words(f"usage_{command}")

    # What can be chosen

    def _command_choices(self) -> Iterator[tuple[str, str]]:
        for command in COMMANDS:
            yield command, self._words(f"help_{command}").split(".")[0].split("。")[0]

    def _goods_choices(self, rest: str) -> Iterator[tuple[str, str]]:
        times = _TIMES.fullmatch(rest)
        for goods in self._goods.search((times["rest"] if times else rest).strip())[:_MOST_CHOICES]:
            price = f"  {amount(goods.price)}" if goods.price is not None else ""
            yield goods.code, goods.name + price

    def _line_choices(self, rest: str) -> Iterator[tuple[str, str]]:
        for number, line in enumerate(self._till.state.lines, 1):
            if not line.voided and " " not in rest:
                yield str(number), f"{count(line.count)} x {line.goods.name}"

    def _gift_choices(self, rest: str) -> Iterator[tuple[str, str]]:
        rule, space, _ = rest.partition(" ")
        for offer in self._till.state.offers:
            if not space:
                yield offer.pro_bill_no, self._rules.names.get(offer.pro_bill_no, "")
            elif offer.pro_bill_no.lower() == rule.lower():
                for article in offer.articles:
                    yield article.plu_code, f"{self._goods.name(article.plu_code)}  {amount(article.dsc_price or Decimal(0))}"

    def _why_choices(self, _: str) -> Iterator[tuple[str, str]]:
        state = self._till.state
        numbers = dict.fromkeys(rule.bill_no for explanation in state.explanations for rule in explanation.rules)
        yield from ((number, self._rules.names.get(number, "")) for number in numbers)
        yield from self._line_choices("")

    def _plain(self, words: Sequence[str]) -> Iterator[tuple[str, str]]:
        return ((word, "") for word in words)


def _split(text: str) -> tuple[str, str]:
    """The first word of a text and what is behind it."""
    parts = text.split(maxsplit=1)
    return (parts[0] if parts else ""), (parts[1] if len(parts) > 1 else "")


def _last_part(command: str, rest: str) -> str:
    """What the choices of a command take the place of: the name of goods as far as it is typed, or the last word."""
    times = _TIMES.fullmatch(rest)
    if times:
        return times["rest"]
    return rest if command in ("scan", "return") else rest.rpartition(" ")[2]


def _choices(offered: Iterator[tuple[str, str]], begun: str) -> list[Choice]:
    lower = begun.strip().lower()
    found = [Choice(text=text, back=len(begun), shown=text, about=about) for text, about in offered
             if text.lower().startswith(lower) or lower in about.lower()]
    return found[:_MOST_CHOICES]


def _quantity(text: str) -> Decimal:
    if not _QUANTITY.fullmatch(text):
        raise Refusal("not_a_quantity", text=text)
    return Decimal(text)


def _money(text: str) -> Decimal:
    if not _MONEY.fullmatch(text):
        raise Refusal("not_money", text=text)
    return Decimal(text)


def _whole(text: str) -> int:
    if not _WHOLE.fullmatch(text):
        raise Refusal("not_whole", text=text)
    return int(text)
