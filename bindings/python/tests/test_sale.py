"""Sales as records and as XML: what goes in comes out, and what can't be told is refused with its place."""

import dataclasses
import pathlib
import pickle
import re
import string
from decimal import Decimal
from typing import Any

import pytest
from hypothesis import given
from hypothesis import strategies as st

from qncorvane import Coupon, Gift, Line, Member, Offer, OfferedArticle, Payment, Sale

from conftest import SAMPLES

# Every character that XML holds.
texts = st.text(st.one_of(st.sampled_from("\t\n\r&<>\"'"), st.characters(min_codepoint=32, blacklist_categories=["Cs"],
                                                                       blacklist_characters="\ufffe\uffff")))
numbers = st.decimals(-(10**13 - 1), 10**13 - 1, allow_nan=False, allow_infinity=False, places=4)
wholes = st.integers(-(2**31), 2**31 - 1)
taken = {"SerialNo", "PluCode", "PluType", "PluID", "Price", "PluCount", "Total", "PackCnt", "CAT", "BRD", "SaleDate", "SaleTime",
         "VipPrice", "YhBefore", "PluDtId", "PageNo", "LnNo", "ClsId", "FinalPrice"}
names = st.text(string.ascii_letters + "_类", min_size=1).filter(lambda name: name not in taken)


def records(kind: type[Any], **others: st.SearchStrategy[Any]) -> st.SearchStrategy[Any]:
    """Records of a kind: each field by its annotation, optional ones None at times."""
    by_type = {"str": texts, "int": wholes, "Decimal": numbers}
    fields = {}
    for field in dataclasses.fields(kind):
        base, _, optional = str(field.type).partition(" | ")
        if base in by_type:
            fields[field.name] = st.none() | by_type[base] if optional else by_type[base]
    return st.builds(kind, **fields, **others)


def lists(rows: st.SearchStrategy[Any]) -> st.SearchStrategy[Any]:
    return st.lists(rows, max_size=3)


sales = records(
    Sale,
    lines=lists(records(Line, classes=st.dictionaries(names, texts, max_size=3).map(lambda pairs: list(pairs.items())))),
    members=lists(records(Member)),
    payments=lists(records(Payment)),
    coupons=lists(records(Coupon)),
    gifts=lists(records(Gift)),
    offers=lists(records(Offer, articles=lists(records(OfferedArticle)))))


@given(sales)
def test_a_sale_comes_back_from_its_xml(sale: Sale) -> None:
    assert Sale.from_xml(sale.to_xml()) == sale


@given(sales)
def test_a_sale_has_one_row_a_line_of_text_and_no_bare_breaks(sale: Sale) -> None:
    rows = [line for line in sale.to_xml().split("\n") if line.startswith("    <Row")]
    assert len(rows) == sum(map(len, (sale.lines, sale.members, sale.payments, sale.coupons, sale.gifts)))


@given(sales)
def test_a_sale_is_a_value(sale: Sale) -> None:
    again = pickle.loads(pickle.dumps(sale))
    assert again == sale and hash(again) == hash(sale)


@given(st.text())
def test_a_text_that_is_no_xml_is_refused(xml: str) -> None:
    with pytest.raises(ValueError):
        Sale.from_xml(xml)


@given(sales, st.data())
def test_a_damaged_sale_is_read_or_refused_and_nothing_else(sale: Sale, data: st.DataObject) -> None:
    xml = sale.to_xml()
    place = data.draw(st.integers(0, len(xml)))
    damaged = xml[:place] + data.draw(st.text(max_size=3)) + xml[place + data.draw(st.integers(0, 3)):]
    try:
        assert isinstance(Sale.from_xml(damaged), Sale)
    except ValueError as error:
        assert str(error)


@given(st.data())
def test_a_sale_that_is_cut_off_is_refused(data: st.DataObject) -> None:
    xml = data.draw(sales).to_xml().rstrip()
    with pytest.raises(ValueError, match="^line [0-9]+, column [0-9]+: "):
        Sale.from_xml(xml[:data.draw(st.integers(0, len(xml) - 1))])


@pytest.mark.parametrize("path", sorted(SAMPLES.glob("sales/**/*.xml")), ids=str)
def test_the_samples_come_back(path: pathlib.Path) -> None:
    sale = Sale.from_xml(path.read_text("utf-8"))
    assert sale.bill_no is not None
    assert Sale.from_xml(sale.to_xml()) == sale


LINE = Line(serial_no=1, plu_code="100101", price=Decimal("2.50"), plu_count=Decimal(3), total=Decimal("7.50"))


def test_the_xml_of_a_whole_sale() -> None:
    article = OfferedArticle(serial_no=1, plu_code="900201", dsc_price=Decimal("2.00"), hg_plu_count=Decimal(1), can_part=1)
    sale = Sale(
        bill_no="S-1", org_code="01", is_calc="0",
        lines=[dataclasses.replace(LINE, plu_type="PLU", cat="JUICE", brd="", sale_date="2024-06-15", sale_time="10:30:00",
                                   classes=[("SEASON", "SUMMER & <FALL>")])],
        members=[Member(vip_type="01")],
        payments=[Payment(pay_mode="CARD", pay_money=Decimal("5.97"), pay_card_no="6212345678901234")],
        coupons=[Coupon(bill_no="MZZQ-01", coupon_type_code="C5", coupon_value=Decimal(5), bgn_date="2024-05-01",
                        end_date="2024-12-31")],
        gifts=[Gift(serial_no="1", plu_code="900101", plu_count=Decimal(1))],
        offers=[Offer(pro_bill_no="MZHG-01", total=Decimal("69.68"), articles=[article])])
    assert sale.to_xml() == """<?xml version="1.0" encoding="UTF-8"?>
<Sale BillNo="S-1" OrgCode="01" IsCalc="0">
  <Plu>
    <Row SerialNo="1" PluCode="100101" PluType="PLU" Price="2.50" PluCount="3" Total="7.50" PackCnt="1" CAT="JUICE" BRD="" \
SaleDate="2024-06-15" SaleTime="10:30:00" SEASON="SUMMER &amp; &lt;FALL&gt;"/>
  </Plu>
  <Vip>
    <Row VipType="01"/>
  </Vip>
  <PayMode>
    <Row PayMode="CARD" PayCardNo="6212345678901234" PayMoney="5.97"/>
  </PayMode>
  <Coupon>
    <Row BillNo="MZZQ-01" CouponTypeCode="C5" CouponValue="5" BgnDate="2024-05-01" EndDate="2024-12-31"/>
  </Coupon>
  <Gift>
    <Row SerialNo="1" PluCode="900101" PluCount="1"/>
  </Gift>
  <ProGifts>
    <ProGift ProBillNo="MZHG-01" Total="69.68">
      <Data SerialNo="1" PluCode="900201" DscPrice="2.00" HgPluCount="1" CanPart="1"/>
    </ProGift>
  </ProGifts>
</Sale>
"""


def test_nothing_new_is_a_sale_too() -> None:
    assert Sale().to_xml() == '<?xml version="1.0" encoding="UTF-8"?>\n<Sale>\n</Sale>\n'


def test_numbers_are_written_without_exponents() -> None:
    line = dataclasses.replace(LINE, price=Decimal("1E+3"), plu_count=Decimal("1E-7"), total=Decimal("-0.00"))
    assert ' Price="1000" PluCount="0.0000001" Total="0" ' in Sale(lines=[line]).to_xml()


def test_a_line_without_pieces_in_a_package_stays_without() -> None:
    sale = Sale.from_xml('<Sale><Plu><R SerialNo="1" PluCode="A" Price="1" PluCount="1" Total="1"/></Plu></Sale>')
    assert sale.lines[0].pack_cnt is None
    assert LINE.pack_cnt == 1


def test_a_final_price_is_no_class() -> None:
    row = '<R SerialNo="1" PluCode="A" Price="1" PluCount="1" Total="1" FinalPrice="1" SEASON="X"/>'
    assert Sale.from_xml(f"<Sale><Plu>{row}</Plu></Sale>").lines[0].classes == (("SEASON", "X"),)


def test_later_offers_replace_earlier_ones() -> None:
    sale = Sale.from_xml('<Sale><ProGifts><G ProBillNo="A" Total="1"/></ProGifts>'
                         '<ProGifts><G ProBillNo="B" Total="2"/></ProGifts></Sale>')
    assert sale.offers == (Offer(pro_bill_no="B", total=Decimal(2)),)


REFUSED = [
    (Sale(bill_no="a\x00b"), "bill_no: U+0000 at 1 can't stand in XML"),
    (Sale(lines=[LINE, dataclasses.replace(LINE, plu_code="\x1b[31m")]), "lines[1].plu_code: U+001B at 0 can't stand in XML"),
    (Sale(members=[Member(vip_type="ok\ud800")]), "members[0].vip_type: U+D800 at 2 can't stand in XML"),
    (Sale(payments=[Payment(pay_mode="\ufffe", pay_money=Decimal(1))]), "payments[0].pay_mode: U+FFFE at 0 can't stand in XML"),
    (Sale(lines=[dataclasses.replace(LINE, classes=[("SEASON", "\x07")])]),
     "lines[0].classes[0]: U+0007 at 0 can't stand in XML"),
    (Sale(lines=[dataclasses.replace(LINE, classes=[('A="1" B', "x")])]),
     "lines[0].classes[0]: 'A=\"1\" B' can't be the name of a class"),
    (Sale(lines=[dataclasses.replace(LINE, classes=[("", "x")])]), "lines[0].classes[0]: '' can't be the name of a class"),
    (Sale(lines=[dataclasses.replace(LINE, classes=[("Total", "0")])]),
     "lines[0].classes[0]: Total is an attribute of the line, and no class"),
    (Sale(lines=[dataclasses.replace(LINE, classes=[("A", "0"), ("A", "1")])]),
     "lines[0].classes[1]: A stands there already"),
    (Sale(lines=[dataclasses.replace(LINE, serial_no=20240615001)]),
     "lines[0].serial_no: 20240615001 is outside -2147483648 to 2147483647"),
    (Sale(lines=[dataclasses.replace(LINE, serial_no=-(10**5000))]),
     "lines[0].serial_no: a number of 16610 bits is outside -2147483648 to 2147483647"),
    (Sale(lines=[dataclasses.replace(LINE, price=Decimal("NaN"))]), "lines[0].price: NaN is no number"),
    (Sale(lines=[dataclasses.replace(LINE, price=Decimal("sNaN"))]), "lines[0].price: sNaN is no number"),
    (Sale(lines=[dataclasses.replace(LINE, total=Decimal("-Infinity"))]), "lines[0].total: -Infinity is no number"),
    (Sale(lines=[dataclasses.replace(LINE, price=Decimal("1E+999999"))]),
     "lines[0].price: 1E+999999 has more than 13 digits before the point"),
    (Sale(lines=[dataclasses.replace(LINE, price=Decimal("1E-999999"))]),
     "lines[0].price: 1E-999999 has more than 30 decimals"),
    (Sale(offers=[Offer(pro_bill_no="A", total=Decimal(1), articles=[OfferedArticle(serial_no=1, plu_code="\x01")])]),
     "offers[0].articles[0].plu_code: U+0001 at 0 can't stand in XML"),
]


@pytest.mark.parametrize("sale, text", REFUSED, ids=[text for _, text in REFUSED])
def test_what_cannot_be_told_is_refused_with_its_place(sale: Sale, text: str) -> None:
    with pytest.raises(ValueError) as caught:
        sale.to_xml()
    assert str(caught.value) == text


ROW = '<R SerialNo="1" PluCode="A" Price="1" PluCount="1" Total="1"'
UNREADABLE = [
    ("", "line 1, column 1: no element found"),
    ("<Sale>", "line 1, column 7: no element found"),
    ("<Sale>\n<Plu>", "line 2, column 6: no element found"),
    ("<Sale BillNo='1' BillNo='2'/>", "line 1, column 18: duplicate attribute"),
    ("<!DOCTYPE Sale [<!ENTITY a 'aaaa'>]>\n<Sale BillNo='&a;'/>", "line 1, column 16: a document type is not read"),
    ("<Sale BillNo='&a;'/>", "line 1, column 1: undefined entity"),
    ("<Sale>\x00</Sale>", "line 1, column 7: not well-formed (invalid token)"),
    ("<a>" * 201 + "</a>" * 201, "line 1, column 601: elements are nested more than 200 deep"),
    ("<Sale>\n <Plu>\n  <R PluCode='A'/></Plu></Sale>", "line 3, column 3: SerialNo is missing"),
    (f"<Sale><Plu>{ROW.replace('1', 'x', 1)}/></Plu></Sale>", "line 1, column 12: SerialNo 'x' is no whole number of 32 bits"),
    (f"<Sale><Plu>{ROW.replace('1', '4294967297', 1)}/></Plu></Sale>",
     "line 1, column 12: SerialNo '4294967297' is no whole number of 32 bits"),
    (f"<Sale><Plu>{ROW} VipPrice='10,50'/></Plu></Sale>", "line 1, column 12: VipPrice '10,50' is no number"),
    (f"<Sale><Plu>{ROW} VipPrice='nan'/></Plu></Sale>", "line 1, column 12: VipPrice 'nan' is no number"),
    (f"<Sale><Plu>{ROW} VipPrice='1_000'/></Plu></Sale>", "line 1, column 12: VipPrice '1_000' is no number"),
    (f"<Sale><Plu>{ROW} VipPrice='٣'/></Plu></Sale>", "line 1, column 12: VipPrice '٣' is no number"),
    (f"<Sale><Plu>{ROW} VipPrice=' 1'/></Plu></Sale>", "line 1, column 12: VipPrice ' 1' is no number"),
    (f"<Sale><Plu>{ROW} VipPrice=''/></Plu></Sale>", "line 1, column 12: VipPrice '' is no number"),
    (f"<Sale><Plu>{ROW} VipPrice='1e9999'/></Plu></Sale>",
     "line 1, column 12: VipPrice '1e9999' has more than 13 digits before the point"),
]


@pytest.mark.parametrize("xml, text", UNREADABLE, ids=[text for _, text in UNREADABLE])
def test_what_cannot_be_read_is_refused_with_line_and_column(xml: str, text: str) -> None:
    with pytest.raises(ValueError) as caught:
        Sale.from_xml(xml)
    assert str(caught.value) == text


def test_two_hundred_levels_are_read() -> None:
    assert Sale.from_xml("<a>" * 200 + "</a>" * 200) == Sale()


@pytest.mark.parametrize("change, text", [
    ({"price": 2.5}, "Line.price: a decimal.Decimal or an int is wanted, not float"),
    ({"price": "2.50"}, "Line.price: a decimal.Decimal or an int is wanted, not str"),
    ({"price": None}, "Line.price: a number is wanted, not None"),
    ({"plu_count": True}, "Line.plu_count: a decimal.Decimal or an int is wanted, not bool"),
    ({"serial_no": Decimal(1)}, "Line.serial_no: a whole number is wanted, not Decimal"),
    ({"plu_code": 100101}, "Line.plu_code: a text is wanted, not int"),
    ({"plu_code": None}, "Line.plu_code: a text is wanted, not None"),
    ({"classes": [("A", 1)]}, "Line.classes: pairs of two texts are wanted"),
])
def test_a_field_of_another_type_is_refused_at_once(change: dict[str, Any], text: str) -> None:
    with pytest.raises(TypeError, match=f"^{re.escape(text)}$"):
        dataclasses.replace(LINE, **change)


def test_a_row_of_another_kind_is_refused_at_once() -> None:
    with pytest.raises(TypeError, match="^Sale.lines: a sequence of Line is wanted$"):
        Sale(lines=[Member(vip_type="01")])  # type: ignore[list-item]


def test_whole_numbers_become_decimals() -> None:
    line = dataclasses.replace(LINE, plu_count=3)
    assert line == LINE and isinstance(line.plu_count, Decimal)


def test_records_cannot_be_changed() -> None:
    with pytest.raises(dataclasses.FrozenInstanceError):
        LINE.total = Decimal(0)  # type: ignore[misc]


def test_an_article_is_picked_from_an_offer() -> None:
    bag, mug = (OfferedArticle(serial_no=number, plu_code=code, hg_plu_count=Decimal(0))
                for number, code in ((1, "BAG"), (2, "MUG")))
    offer = Offer(pro_bill_no="A", total=Decimal(60), articles=[bag, mug])
    assert [article.hg_plu_count for article in offer.pick("MUG", 2).articles] == [0, 2]
    assert [article.hg_plu_count for article in offer.articles] == [0, 0]
    with pytest.raises(KeyError, match="A offers no article CUP"):
        offer.pick("CUP", 1)
