"""What the engine answers to a sale."""

from __future__ import annotations

import dataclasses
import json
from collections.abc import Sequence
from decimal import Decimal
from typing import Any, ClassVar

from ._records import Column, Kind, Record, cents, from_json, named
from ._sale import Offer, OfferedArticle


@dataclasses.dataclass(frozen=True, slots=True, kw_only=True)
class ResultLine(Record):
    """A line of the sale after the calculation. What the mode's answer doesn't tell is None.

    Attributes:
        serial_no: the line's number.
        plu_code: the goods' code.
        price: unit price.
        final_price: unit price after discount, with four decimals.
        plu_count: quantity.
        dis_num: the quantity that the last rule took.
        total: amount after discount. Not every promotion lowers it: what the customer pays is in `Result.totals`.
        pack_cnt: pieces in a package.
        brd: brand.
        cat: category.
        sale_date: as sent.
        sale_time: as sent.
        plu_dt_id: as sent.
        page_no: as sent.
        ln_no: as sent.
        yh_before: as sent, without its cents.
        cls_id: as sent.
        plu_id: as sent.
        vip_price: as sent, without its cents.
    """

    serial_no: int
    plu_code: str
    price: Decimal
    final_price: Decimal
    plu_count: Decimal
    dis_num: Decimal | None = None
    total: Decimal
    pack_cnt: Decimal | None = None
    brd: str | None = None
    cat: str | None = None
    sale_date: str | None = None
    sale_time: str | None = None
    plu_dt_id: int | None = None
    page_no: int | None = None
    ln_no: int | None = None
    yh_before: Decimal | None = None
    cls_id: str | None = None
    plu_id: str | None = None
    vip_price: Decimal | None = None

    _columns: ClassVar[tuple[Column, ...]] = (
        *named(Kind.WHOLE, serial_no="SerialNo"),
        *named(Kind.TEXT, plu_code="PluCode"),
        *named(Kind.MONEY, price="Price", total="Total"),
        *named(Kind.NUMBER, final_price="FinalPrice", plu_count="PluCount", dis_num="DisNum", pack_cnt="PackCnt"),
        *named(Kind.TEXT, brd="BRD", cat="CAT", sale_date="SaleDate", sale_time="SaleTime"),
        *named(Kind.WHOLE, plu_dt_id="PluDtId", page_no="PageNo", ln_no="LnNo"),
        *named(Kind.NUMBER, yh_before="YhBefore", vip_price="VipPrice"),
        *named(Kind.TEXT, cls_id="ClsId", plu_id="PluID"),
    )


@dataclasses.dataclass(frozen=True, slots=True, kw_only=True)
class Discount(Record):
    """A discount of a rule on a line, or one that concerns the whole sale.

    Attributes:
        serial_no: a counter from 1 over all lines; 0 for the whole sale. Mode "Single": the line's number.
        plu_code: the line's goods; "*" for the whole sale.
        dis_num: the quantity discounted.
        dis_money: the discount, in currency units.
        pro_bill_no: the rule.
        pro_type: the rule's type.
        is_vip: whether it was given for a member card.
        vip_type: the type of that card.
        row_id: the line's `serial_no`; None for the whole sale.
    """

    serial_no: int
    plu_code: str
    dis_num: Decimal
    dis_money: Decimal
    pro_bill_no: str
    pro_type: str
    is_vip: bool = False
    vip_type: str | None = None
    row_id: int | None = None

    _columns: ClassVar[tuple[Column, ...]] = (
        *named(Kind.WHOLE, serial_no="SerialNo"),
        *named(Kind.TEXT, plu_code="PluCode"),
        *named(Kind.NUMBER, dis_num="DisNum"),
        *named(Kind.MONEY, dis_money="DisMoney"),
        *named(Kind.TEXT, pro_bill_no="ProBillNo", pro_type="ProType", vip_type="VipType"),
        *named(Kind.WHOLE, row_id="RowID"),
    )


@dataclasses.dataclass(frozen=True, slots=True, kw_only=True)
class Apportion(Record):
    """A line's share of a discount that was worked out over several lines. Not a discount of its own.

    Attributes:
        serial_no: a counter from 1 over all lines.
        plu_code: the line's goods.
        app_num: the quantity.
        app_money: the share, in currency units.
        pro_bill_no: the rule.
        pro_type: the rule's type.
        is_vip: whether it was given for a member card.
        vip_type: the type of that card.
        row_id: the line's `serial_no`.
    """

    serial_no: int
    plu_code: str
    app_num: Decimal
    app_money: Decimal
    pro_bill_no: str
    pro_type: str
    is_vip: bool = False
    vip_type: str | None = None
    row_id: int | None = None

    _columns: ClassVar[tuple[Column, ...]] = (
        *named(Kind.WHOLE, serial_no="SerialNo"),
        *named(Kind.TEXT, plu_code="PluCode"),
        *named(Kind.NUMBER, app_num="AppNum"),
        *named(Kind.MONEY, app_money="AppMoney"),
        *named(Kind.TEXT, pro_bill_no="ProBillNo", pro_type="ProType", vip_type="VipType"),
        *named(Kind.WHOLE, row_id="RowID"),
    )


@dataclasses.dataclass(frozen=True, slots=True, kw_only=True)
class HeldCoupon(Record):
    """A coupon that the sale holds.

    Attributes:
        send_sale_no: the sale's number.
        bill_no: number of the coupon, or of the rule that gave it.
        coupon_type_code: kind of coupon.
        bgn_date: what was sent as the last day: the two dates come exchanged.
        end_date: what was sent as the first day.
        value: its worth as it was sent, in currency units; a text that is no number counts as 0.
        remark: a note.
    """

    send_sale_no: str | None = None
    bill_no: str
    coupon_type_code: str | None = None
    bgn_date: str | None = None
    end_date: str | None = None
    value: Decimal
    remark: str | None = None

    _columns: ClassVar[tuple[Column, ...]] = (
        *named(Kind.TEXT, send_sale_no="SendSaleNo", bill_no="BillNo", coupon_type_code="CouponTypeCode",
               bgn_date="BgnDate", end_date="EndDate", remark="Remark"),
        *named(Kind.MONEY, value="Value"),
    )


@dataclasses.dataclass(frozen=True, slots=True, kw_only=True)
class RuleTotal:
    """What one rule has taken off.

    Attributes:
        bill_no: the rule.
        type: its type.
        amount: its discounts, in currency units.
    """

    bill_no: str
    type: str
    amount: Decimal


@dataclasses.dataclass(frozen=True, slots=True, kw_only=True)
class Totals:
    """The sale's sums, in currency units with two decimals.

    Attributes:
        before: the amounts that were sent.
        rules: what each rule has taken off, in the order of the discounts.
        to_pay: what the customer pays.
    """

    before: Decimal
    rules: Sequence[RuleTotal]
    to_pay: Decimal


@dataclasses.dataclass(frozen=True, slots=True, kw_only=True)
class Result:
    """What the engine answers to a calculation. Everything comes in the answer's order: from the last to the first.

    Attributes:
        bill_no: the sale's number.
        org_code: the shop.
        lines: the lines; in mode "Single" the one that was sent.
        discounts: the discounts.
        apportions: the lines' shares of discounts over several lines.
        offers: gift offers; `Offer.pick` takes of one, and a `Sale` brings them back in mode "Gift".
        coupons: the coupons that the sale holds.
        totals: the sums.
    """

    bill_no: str
    org_code: str
    lines: Sequence[ResultLine]
    discounts: Sequence[Discount]
    apportions: Sequence[Apportion]
    offers: Sequence[Offer]
    coupons: Sequence[HeldCoupon]
    totals: Totals

    def line(self, serial_no: int) -> ResultLine:
        """The line of this number; KeyError when there is none."""
        for line in self.lines:
            if line.serial_no == serial_no:
                return line
        raise KeyError(serial_no)

    @staticmethod
    def from_json(text: str) -> Result:
        """Reads the JSON that the engine makes of a result. Numbers never pass through a binary float.

        Raises:
            ValueError: no JSON.
            KeyError: JSON, but no result.
        """
        answer = json.loads(text, parse_float=Decimal, parse_constant=_no_constant)
        sale, totals = answer["sale"], answer["totals"]
        return Result(
            bill_no=sale["BillNo"],
            org_code=sale["OrgCode"],
            lines=tuple(from_json(ResultLine, row) for row in sale.get("Plu", ())),
            discounts=tuple(from_json(Discount, row, is_vip=_truth(row)) for row in sale.get("ProResult", ())),
            apportions=tuple(from_json(Apportion, row, is_vip=_truth(row)) for row in sale.get("Apportion", ())),
            offers=tuple(from_json(Offer, row, articles=_articles(row)) for row in sale.get("ProGifts", ())),
            coupons=tuple(from_json(HeldCoupon, row) for row in sale.get("ProCoupons", ())),
            totals=Totals(
                before=cents(totals, "before"),
                rules=tuple(RuleTotal(bill_no=rule["billNo"], type=rule["type"], amount=Decimal(rule["cents"]).scaleb(-2))
                            for rule in totals["rules"]),
                to_pay=cents(totals, "toPay")))


def _no_constant(word: str) -> Decimal:
    raise ValueError(f"{word} is no number of JSON")


def _truth(row: dict[str, Any]) -> bool:
    return row.get("IsVip") in (True, 1, "1")


def _articles(row: dict[str, Any]) -> tuple[OfferedArticle, ...]:
    return tuple(from_json(OfferedArticle, article) for article in row.get("Goods", ()))
