"""A sale, as a till tells it to the engine."""

from __future__ import annotations

import dataclasses
import enum
import re
from collections.abc import Sequence
from decimal import Decimal
from typing import ClassVar

from . import _xml
from ._records import Column, Kind, Record, attribute, attributes, checked_text, from_attributes, named

# A line's attributes that are none of its fields and no class of the goods either.
_NO_CLASSES = {"FinalPrice"}
_NAME = re.compile(r"[A-Za-z_\u4e00-\u9fa5][A-Za-z0-9_.\u4e00-\u9fa5-]*")


class Mode(str, enum.Enum):
    """What is calculated."""

    SINGLE = "Single"
    """A line was scanned; the sale holds exactly that line."""
    ALL = "All"
    """The subtotal: ordinary and combination promotions. Send the whole sale."""
    UNION = "Union"
    """The subtotal: ordinary promotions, and combinations of class "DZ"."""
    ZH = "Zh"
    """The subtotal: combination promotions."""
    MZ_PROMOTION = "MzPromotion"
    """Behind the subtotal, once: full-amount promotions, and gift offers."""
    GIFT = "Gift"
    """The cashier has chosen: the offers come back with what is taken of them."""
    PAY = "Pay"
    """The payments are known: reductions for a payment."""
    COUPON = "Coupon"
    """Coupons were presented."""


@dataclasses.dataclass(frozen=True, slots=True, kw_only=True)
class Line(Record):
    """A line of a sale. Money is in currency units, a quantity in pieces or the unit of the price.

    What is None is not told to the engine. Numbers are Decimal or int; a float is refused (TypeError), since it has no cents.

    Attributes:
        serial_no: the line's number, its identity within the sale.
        plu_code: the goods' code.
        price: unit price.
        plu_count: quantity.
        total: the line's amount.
        plu_type: kind of code; "PLU" if None.
        plu_id: the host's own identity of the goods, passed through.
        pack_cnt: pieces in a package; 1 is a single article.
        cat: category, by which rules choose goods.
        brd: brand, by which rules choose goods.
        sale_date: when it was scanned, YYYY-MM-DD. That of the sale's first line decides about a rule's time.
        sale_time: when it was scanned, HH:MM:SS.
        vip_price: a member's price, passed through; its cents get lost.
        yh_before: discount given before the engine, passed through; its cents get lost.
        plu_dt_id: passed through.
        page_no: passed through.
        ln_no: passed through.
        cls_id: passed through.
        classes: further classes of the goods, as pairs of name and code, e.g. ("SEASON", "SUMMER").
    """

    serial_no: int
    plu_code: str
    price: Decimal
    plu_count: Decimal
    total: Decimal
    plu_type: str | None = None
    plu_id: str | None = None
    pack_cnt: Decimal | None = Decimal(1)
    cat: str | None = None
    brd: str | None = None
    sale_date: str | None = None
    sale_time: str | None = None
    vip_price: Decimal | None = None
    yh_before: Decimal | None = None
    plu_dt_id: int | None = None
    page_no: int | None = None
    ln_no: int | None = None
    cls_id: str | None = None
    classes: Sequence[tuple[str, str]] = ()

    _columns: ClassVar[tuple[Column, ...]] = (
        *named(Kind.WHOLE, serial_no="SerialNo"),
        *named(Kind.TEXT, plu_code="PluCode", plu_type="PluType", plu_id="PluID"),
        *named(Kind.NUMBER, price="Price", plu_count="PluCount", total="Total", pack_cnt="PackCnt"),
        *named(Kind.TEXT, cat="CAT", brd="BRD", sale_date="SaleDate", sale_time="SaleTime"),
        *named(Kind.NUMBER, vip_price="VipPrice", yh_before="YhBefore"),
        *named(Kind.WHOLE, plu_dt_id="PluDtId", page_no="PageNo", ln_no="LnNo"),
        *named(Kind.TEXT, cls_id="ClsId"),
    )

    def __post_init__(self) -> None:
        Record.__post_init__(self)
        pairs = tuple(tuple(pair) for pair in self.classes)
        if not all(len(pair) == 2 and all(isinstance(text, str) for text in pair) for pair in pairs):
            raise TypeError("Line.classes: pairs of two texts are wanted")
        object.__setattr__(self, "classes", pairs)


@dataclasses.dataclass(frozen=True, slots=True, kw_only=True)
class Member(Record):
    """A member card that was shown.

    Attributes:
        vip_type: the card's type, which rules for members name.
    """

    vip_type: str

    _columns: ClassVar[tuple[Column, ...]] = named(Kind.TEXT, vip_type="VipType")


@dataclasses.dataclass(frozen=True, slots=True, kw_only=True)
class Payment(Record):
    """A payment. Send each once: payments are added to those that the engine holds of the sale.

    Attributes:
        pay_mode: way of paying, which rules for payments name.
        pay_money: amount, in currency units.
        pay_card_no: number of the card.
    """

    pay_mode: str
    pay_money: Decimal
    pay_card_no: str | None = None

    _columns: ClassVar[tuple[Column, ...]] = (
        *named(Kind.TEXT, pay_mode="PayMode", pay_card_no="PayCardNo"),
        *named(Kind.NUMBER, pay_money="PayMoney"),
    )


@dataclasses.dataclass(frozen=True, slots=True, kw_only=True)
class Coupon(Record):
    """A coupon that was presented. The result brings its two dates exchanged.

    Attributes:
        bill_no: number of the coupon, or of the rule that gave it.
        coupon_type_code: kind of coupon, which rules for coupons name.
        coupon_value: its worth, in currency units.
        bgn_date: the first day on which it holds, YYYY-MM-DD.
        end_date: the last day.
    """

    bill_no: str
    coupon_type_code: str
    coupon_value: Decimal
    bgn_date: str | None = None
    end_date: str | None = None

    _columns: ClassVar[tuple[Column, ...]] = (
        *named(Kind.TEXT, bill_no="BillNo", coupon_type_code="CouponTypeCode"),
        *named(Kind.NUMBER, coupon_value="CouponValue"),
        *named(Kind.TEXT, bgn_date="BgnDate", end_date="EndDate"),
    )


@dataclasses.dataclass(frozen=True, slots=True, kw_only=True)
class Gift(Record):
    """A gift that the till has handed out.

    Attributes:
        serial_no: number of the row.
        plu_code: the goods' code.
        plu_count: quantity.
        pro_bill_no: the rule that offered it.
        sale_bill_no: the sale's number.
        price: unit price without the offer.
        dsc_price: unit price in the offer.
        total: amount.
    """

    serial_no: str
    plu_code: str
    plu_count: Decimal
    pro_bill_no: str | None = None
    sale_bill_no: str | None = None
    price: Decimal | None = None
    dsc_price: Decimal | None = None
    total: Decimal | None = None

    _columns: ClassVar[tuple[Column, ...]] = (
        *named(Kind.TEXT, serial_no="SerialNo", plu_code="PluCode"),
        *named(Kind.NUMBER, plu_count="PluCount"),
        *named(Kind.TEXT, pro_bill_no="ProBillNo", sale_bill_no="SaleBillNo"),
        *named(Kind.NUMBER, price="Price", dsc_price="DscPrice", total="Total"),
    )


@dataclasses.dataclass(frozen=True, slots=True, kw_only=True)
class OfferedArticle(Record):
    """An article of a gift offer. It goes back as it came, with `hg_plu_count` filled in.

    Attributes:
        serial_no: number of the row.
        plu_code: the goods' code.
        plu_type: kind of code.
        price: unit price without the offer.
        dsc_price: unit price in the offer; 0 is free.
        base_con_tp: what the threshold counts: "SUM" money, "NUM" pieces.
        base_con_num: the threshold.
        base_dsc_tp: what the offer counts.
        base_dsc_num: how many pieces one threshold stands for.
        add_con_num: each further step of the threshold.
        add_dsc_num: how many pieces such a step stands for.
        sale_max_in: the most that may be taken; 0 for no limit.
        hg_plu_count: how many are taken.
        can_part: 1 while the threshold is within what is left.
    """

    serial_no: int
    plu_code: str
    plu_type: str | None = None
    price: Decimal | None = None
    dsc_price: Decimal | None = None
    base_con_tp: str | None = None
    base_con_num: Decimal | None = None
    base_dsc_tp: str | None = None
    base_dsc_num: Decimal | None = None
    add_con_num: Decimal | None = None
    add_dsc_num: Decimal | None = None
    sale_max_in: Decimal | None = None
    hg_plu_count: Decimal | None = None
    can_part: int | None = None

    _columns: ClassVar[tuple[Column, ...]] = (
        *named(Kind.WHOLE, serial_no="SerialNo"),
        *named(Kind.TEXT, plu_code="PluCode", plu_type="PluType"),
        *named(Kind.MONEY, price="Price", dsc_price="DscPrice"),
        *named(Kind.TEXT, base_con_tp="BaseConTp"),
        *named(Kind.NUMBER, base_con_num="BaseConNum"),
        *named(Kind.TEXT, base_dsc_tp="BaseDscTp"),
        *named(Kind.NUMBER, base_dsc_num="BaseDscNum", add_con_num="AddConNum", add_dsc_num="AddDscNum",
                 sale_max_in="SaleMaxIn", hg_plu_count="HgPluCount"),
        *named(Kind.WHOLE, can_part="CanPart"),
    )


@dataclasses.dataclass(frozen=True, slots=True, kw_only=True)
class Offer(Record):
    """The gift offers of one rule: in a result what may be taken, in a sale of mode "Gift" what is taken.

    Attributes:
        pro_bill_no: the rule.
        total: what the sale has reached, in money or pieces.
        left_total: what is left of it. It may be negative; refuse such a choice.
        used_total: what choices have used of it.
        articles: the articles that are offered.
    """

    pro_bill_no: str
    total: Decimal
    left_total: Decimal | None = None
    used_total: Decimal | None = None
    articles: Sequence[OfferedArticle] = ()

    _columns: ClassVar[tuple[Column, ...]] = (
        *named(Kind.TEXT, pro_bill_no="ProBillNo"),
        *named(Kind.MONEY, total="Total", left_total="LeftTotal", used_total="UsedTotal"),
    )
    _groups: ClassVar[dict[str, type[OfferedArticle]]] = {"articles": OfferedArticle}

    def pick(self, plu_code: str, count: Decimal | int) -> Offer:
        """The same offer with `count` taken of an article.

        Raises:
            KeyError: the offer has no such article.
        """
        if all(article.plu_code != plu_code for article in self.articles):
            raise KeyError(f"{self.pro_bill_no} offers no article {plu_code}")
        return dataclasses.replace(self, articles=[
            dataclasses.replace(article, hg_plu_count=Decimal(count)) if article.plu_code == plu_code else article
            for article in self.articles])


@dataclasses.dataclass(frozen=True, slots=True, kw_only=True)
class Sale(Record):
    """A sale, or what is new of one: the engine merges it into what it holds under the key of the call.

    Sequences may be given as lists; they are kept as tuples.

    Attributes:
        bill_no: the sale's number.
        org_code: the shop, by which rules are filtered.
        is_calc: which rules may run, by their `Remark`: "0" those without "DVCZK" and "NVCZK", "1" only "DVCZK", "2" only
            "NVCZK"; None or another text, every rule.
        lines: one with a `serial_no` that the engine holds replaces that line; others are added.
        members: member cards; added.
        payments: added.
        coupons: coupons presented; added.
        gifts: gifts handed out; added.
        offers: the gift offers of a result, with what is taken; they replace those that the engine holds.
    """

    bill_no: str | None = None
    org_code: str | None = None
    is_calc: str | None = None
    lines: Sequence[Line] = ()
    members: Sequence[Member] = ()
    payments: Sequence[Payment] = ()
    coupons: Sequence[Coupon] = ()
    gifts: Sequence[Gift] = ()
    offers: Sequence[Offer] = ()

    _columns: ClassVar[tuple[Column, ...]] = named(Kind.TEXT, bill_no="BillNo", org_code="OrgCode", is_calc="IsCalc")
    _groups: ClassVar[dict[str, type[Record]]] = {
        "lines": Line, "members": Member, "payments": Payment, "coupons": Coupon, "gifts": Gift, "offers": Offer}

    def to_xml(self) -> str:
        """The sale XML, a row a text line.

        Raises:
            ValueError: a value that can't be told: a character that XML can't hold, a number that is none, or with more than 13
                digits before its point, a whole number of more than 32 bits, a class whose name is no name or that of another
                attribute. The text begins with the place, such as "lines[0].plu_code".
        """
        xml = ['<?xml version="1.0" encoding="UTF-8"?>', f"<Sale{attributes(self, '')}>"]
        for field, group in _GROUPS.items():
            rows = [row for index, record in enumerate(getattr(self, field)) for row in _row(record, f"{field}[{index}]")]
            if rows:
                xml += [f"  <{group}>", *rows, f"  </{group}>"]
        return "\n".join([*xml, "</Sale>", ""])

    @staticmethod
    def from_xml(xml: str) -> Sale:
        """Reads a sale XML. What the engine would skip is skipped, an `offers` group replaces an earlier one.

        Raises:
            ValueError: no XML, a document type, elements nested more than 200 deep, a row without what its record needs, a
                text that is no number where one is wanted. The text begins with line and column.
        """
        root = _xml.parse(xml)
        read: dict[str, list[Record]] = {field: [] for field in _GROUPS}
        fields = {group: field for field, group in _GROUPS.items()}
        for group in root.children:
            field = fields.get(group.name)
            if field == "offers":
                read[field] = [_offer(row) for row in group.children]
            elif field == "lines":
                read[field] += [_line(row) for row in group.children]
            elif field is not None:
                read[field] += [from_attributes(Sale._groups[field], row.attributes, row.place) for row in group.children]
        return from_attributes(Sale, root.attributes, root.place, **read)


# In the order in which they are written.
_GROUPS = {"lines": "Plu", "members": "Vip", "payments": "PayMode", "coupons": "Coupon", "gifts": "Gift",
           "offers": "ProGifts"}
_LINE_NAMES = {column.name for column in Line._columns} | _NO_CLASSES


def _row(record: Record, place: str) -> list[str]:
    written = attributes(record, place)
    if isinstance(record, Line):
        return [f"    <Row{written}{_classes(record, place)}/>"]
    if isinstance(record, Offer):
        articles = [f"      <Data{attributes(article, f'{place}.articles[{index}]')}/>"
                    for index, article in enumerate(record.articles)]
        return [f"    <ProGift{written}>", *articles, "    </ProGift>"]
    return [f"    <Row{written}/>"]


def _classes(line: Line, place: str) -> str:
    written: dict[str, str] = {}
    for index, (name, code) in enumerate(line.classes):
        here = f"{place}.classes[{index}]"
        if not _NAME.fullmatch(name):
            raise ValueError(f"{here}: {name!r} can't be the name of a class")
        if name in written or name in _LINE_NAMES:
            raise ValueError(f"{here}: {name} stands there already" if name in written else
                             f"{here}: {name} is an attribute of the line, and no class")
        written[name] = attribute(name, checked_text(code, here))
    return "".join(written.values())


def _line(row: _xml.Element) -> Line:
    classes = tuple((name, code) for name, code in row.attributes.items() if name not in _LINE_NAMES)
    return from_attributes(Line, row.attributes, row.place, classes=classes)


def _offer(row: _xml.Element) -> Offer:
    articles = [from_attributes(OfferedArticle, article.attributes, article.place) for article in row.children]
    return from_attributes(Offer, row.attributes, row.place, articles=articles)
