"""Results, read from the engine's JSON: money from its cents, numbers never through a binary float."""

import json
from decimal import Decimal

import pytest

from qncorvane import Apportion, Discount, HeldCoupon, Offer, OfferedArticle, Result, ResultLine, RuleTotal, Totals

TEXT = """{
  "sale": {
    "BillNo": "S-1", "OrgCode": "01",
    "Plu": [{"SerialNo": 1, "PluCode": "A", "Price": 2.5, "PriceCents": 250, "FinalPrice": 1.9933, "PluCount": 3,
             "DisNum": 3, "Total": 90071992547409.93, "TotalCents": 9007199254740993, "PackCnt": 1}],
    "ProResult": [{"SerialNo": 1, "PluCode": "A", "DisNum": 3, "DisMoney": 1.52, "DisMoneyCents": 152,
                   "ProBillNo": "R1", "ProType": "PTXS", "IsVip": "1", "VipType": "01", "RowID": 1},
                  {"SerialNo": 0, "PluCode": "*", "DisNum": 0, "DisMoney": 4, "DisMoneyCents": 400,
                   "ProBillNo": "R2", "ProType": "MZZF", "IsVip": "0", "VipType": ""}],
    "Apportion": [{"SerialNo": 1, "PluCode": "A", "AppNum": 0.1, "AppMoney": 0.07, "AppMoneyCents": 7,
                   "ProBillNo": "R3", "ProType": "ZHTJ", "IsVip": "0", "VipType": "", "RowID": 1}],
    "ProGifts": [{"ProBillNo": "R4", "Total": 68.6, "TotalCents": 6860, "LeftTotal": -0.2, "LeftTotalCents": -20,
                  "UsedTotal": 68.8, "UsedTotalCents": 6880,
                  "Goods": [{"SerialNo": 1, "PluCode": "MUG", "PluType": "PLU", "BaseConTp": "SUM", "BaseConNum": 30.0,
                             "DscPrice": 2.0, "DscPriceCents": 200, "HgPluCount": 1.5, "CanPart": 0}]}],
    "ProCoupons": [{"SendSaleNo": "S-1", "BillNo": "C", "CouponTypeCode": "C5", "BgnDate": "2024-12-31",
                    "EndDate": "2024-05-01", "Value": "5.10", "Remark": ""},
                   {"SendSaleNo": "S-1", "BillNo": "D", "Value": "five"}]
  },
  "totals": {"before": 7.5, "beforeCents": 750,
             "rules": [{"billNo": "R1", "type": "PTXS", "cents": 152}], "toPay": 5.98, "toPayCents": 598}
}"""


def test_money_and_quantities_are_exact() -> None:
    result = Result.from_json(TEXT)
    assert result.lines[0].total == Decimal("90071992547409.93"), "more digits than a binary float holds"
    assert result.lines[0].final_price == Decimal("1.9933")
    assert result.apportions[0].app_num == Decimal("0.1")
    assert str(result.discounts[1].dis_money) == "4.00", "money has two decimals"
    assert result.totals == Totals(before=Decimal("7.50"), to_pay=Decimal("5.98"),
                                   rules=(RuleTotal(bill_no="R1", type="PTXS", amount=Decimal("1.52")),))


def test_what_is_not_told_is_none() -> None:
    result = Result.from_json(TEXT)
    assert result.lines[0].cat is None
    assert result.discounts[1].row_id is None


def test_members() -> None:
    assert [(discount.is_vip, discount.vip_type) for discount in Result.from_json(TEXT).discounts] == [(True, "01"), (False, "")]


def test_the_kinds_of_rows() -> None:
    result = Result.from_json(TEXT)
    assert [type(row) for row in (result.lines[0], result.discounts[0], result.apportions[0])] == [
        ResultLine, Discount, Apportion]


def test_offers_come_with_their_articles() -> None:
    assert Result.from_json(TEXT).offers == (Offer(
        pro_bill_no="R4", total=Decimal("68.60"), left_total=Decimal("-0.20"), used_total=Decimal("68.80"),
        articles=[OfferedArticle(serial_no=1, plu_code="MUG", plu_type="PLU", base_con_tp="SUM", base_con_num=Decimal(30),
                                 dsc_price=Decimal("2.00"), hg_plu_count=Decimal("1.5"), can_part=0)]),)


def test_a_coupon_is_worth_what_its_text_says_and_nothing_when_that_is_no_number() -> None:
    assert Result.from_json(TEXT).coupons == (
        HeldCoupon(send_sale_no="S-1", bill_no="C", coupon_type_code="C5", bgn_date="2024-12-31", end_date="2024-05-01",
                   value=Decimal("5.10"), remark=""),
        HeldCoupon(send_sale_no="S-1", bill_no="D", value=Decimal(0)))


def test_a_line_by_its_number() -> None:
    result = Result.from_json(TEXT)
    assert result.line(1).plu_code == "A"
    with pytest.raises(KeyError):
        result.line(2)


@pytest.mark.parametrize("text", ["", "{", "[1, 2", '{"sale": NaN}', '{"sale": Infinity}', "[" * 2000])
def test_what_is_no_json_is_refused(text: str) -> None:
    with pytest.raises((ValueError, RecursionError)):
        Result.from_json(text)


def test_what_is_no_result_is_refused() -> None:
    with pytest.raises(KeyError):
        Result.from_json(json.dumps({"totals": {}}))
