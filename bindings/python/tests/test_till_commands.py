"""What is typed at the till: each command, its refusals, and what completes it."""

import pathlib
import re
from decimal import Decimal

import pytest

from qncorvane import Engine, NumberOverflow, Sale
from qncorvane.till.commands import COMMANDS, Quit
from qncorvane.till.goods import read_goods
from qncorvane.till.rules import read_rules
from qncorvane.till.view import cells
from qncorvane.till.words import Refusal, Words

from conftest import SOURCES
from desk import Desk


TILL = SOURCES / "bindings" / "python" / "src" / "qncorvane" / "till"


@pytest.fixture
def desk(engine: Engine, store: pathlib.Path) -> Desk:
    """A till on the sample store."""
    return Desk(engine, store)


def lines(desk: Desk) -> list[str]:
    return [f"{line.count} x {line.goods.code} at {line.price}" for line in desk.state.lines]


def refusal(desk: Desk, typed: str) -> str:
    """Why a command is refused; nothing is changed by it."""
    before = desk.state
    with pytest.raises(Refusal) as caught:
        desk.type(typed)
    assert desk.state == before
    return desk.words.refusal(caught.value)


# Scanning


@pytest.mark.parametrize("typed, scanned", [
    ("scan 100101", "1 x 100101 at 2.50"),
    ("100101", "1 x 100101 at 2.50"),
    ("  SCAN   100101  ", "1 x 100101 at 2.50"),
    ("3 x 100101", "3 x 100101 at 2.50"),
    ("3x100101", "3 x 100101 at 2.50"),
    ("scan 3 * 100101", "3 x 100101 at 2.50"),
    ("1.375 x bananas", "1.375 x 400101 at 1.90"),
    ("Orange juice 1 l", "1 x 100101 at 2.50"),
    ("orange JUICE 1 L", "1 x 100101 at 2.50"),
    ("oran", "1 x 100101 at 2.50"),
    ("parmesan 200 g", "1 x 700103 at 4.20"),
    ("herbal", "1 x 600302 at 2.90"),
    ("sha", "1 x 600101 at 4.90"),
    ("mi", "1 x 200101 at 1.35"),
    ("2 x orange juice 1 l at 2.00", "2 x 100101 at 2.00"),
    ("4711 at 1.25", "1 x 4711 at 1.25"),
    ("return 100101", "-1 x 100101 at 2.50"),
    ("return 2 x croissant", "-2 x 300201 at 1.10"),
])
def test_scanning(desk: Desk, typed: str, scanned: str) -> None:
    desk.type(typed)
    assert lines(desk) == [scanned]


def test_goods_that_the_list_does_not_have_get_their_classes(desk: Desk) -> None:
    desk.type("date 2024-06-15", "4711 at 10.00 cat FRUIT brand SUNNY")
    assert (desk.state.lines[0].goods.cat, desk.state.lines[0].goods.brd, desk.to_pay()) == ("FRUIT", "SUNNY", "8.00")


def test_what_scanning_says(desk: Desk) -> None:
    assert desk.type("3 x 100101").text == "3 x Orange juice 1 l: 7.50"
    assert desk.type("100101").text == "1 x Orange juice 1 l: 2.50, 1.99 each at the scanner"


@pytest.mark.parametrize("typed, why", [
    ("xylophone", "no goods have the code or name 'xylophone'; scan xylophone at 2.50 tries them all the same"),
    ("juice", "'juice' may be: 100101 Orange juice 1 l, 100102 Apple juice 1 l"),
    ("toothpaste", "'toothpaste' may be: 600301 Toothpaste, mint, 600302 Toothpaste, herbal, 600303 Toothpaste, for children"),
    ("1", "'1' may be: 100101 Orange juice 1 l, 100102 Apple juice 1 l, 110101 Coffee, ground 500 g, ..."),
    ("0 x 100101", "a quantity above 0 is wanted"),
    ("1,5 x 100101", "'1,5' is no quantity; write it as 3 or 1.375"),
    ("9999999 x 100101", "'9999999' is no quantity; write it as 3 or 1.375"),
    ("100101 at 2,50", "'2,50' is no amount of money; write it as 2.50"),
    ("100101 at free", "'free' is no amount of money; write it as 2.50"),
    ("scan", "write: scan [N x] GOODS [at PRICE [cat CAT] [brand BRAND]]"),
    ("return", "write: scan [N x] GOODS [at PRICE [cat CAT] [brand BRAND]]"),
])
def test_what_is_not_scanned(desk: Desk, typed: str, why: str) -> None:
    assert refusal(desk, typed) == why


def test_goods_without_a_price_ask_for_one(desk: Desk, engine: Engine, store: pathlib.Path) -> None:
    (store / "goods.xml").write_text('<Goods><Row PluCode="7" Name="Loose tea"/></Goods>', "utf-8")
    desk = Desk(engine, store)
    assert refusal(desk, "loose tea") == "Loose tea has no price in the list; write: scan 7 at 2.50"
    desk.type("loose tea at 2.50")
    assert lines(desk) == ["1 x 7 at 2.50"]


def test_goods_that_are_called_as_commands_are(engine: Engine, store: pathlib.Path) -> None:
    (store / "goods.xml").write_text('<Goods><Row PluCode="new" Name="New potatoes" Price="1.50"/>'
                                     '<Row PluCode="2" Name="Cookies at home" Price="2.00"/>'
                                     '<Row PluCode="3x5" Name="Cards" Price="3.00"/></Goods>', "utf-8")
    desk = Desk(engine, store)
    desk.type("new", "New potatoes", "cookies at home", "3x5", "scan new")
    assert lines(desk) == ["1 x new at 1.50", "1 x new at 1.50", "1 x 2 at 2.00", "1 x 3x5 at 3.00", "1 x new at 1.50"]


# The other commands


def test_a_line_s_quantity_and_its_end(desk: Desk) -> None:
    assert desk.type("100101", "qty 1 3").text.startswith("3 x Orange juice 1 l: 7.50")
    assert desk.type("void 1").text == "Line 1 is void"
    assert desk.state.lines[0].voided


def test_what_goes_with_the_sale(desk: Desk) -> None:
    assert desk.type("member 01").text == "Member 01"
    assert desk.type("shop 02").text == "Shop 02"
    assert desk.type("date 2024-02-29").text == "The sale is of 2024-02-29 12:00:00"
    assert desk.type("time 09:05").text == "The sale is of 2024-02-29 09:05:00"
    assert desk.type("time 23:59:59").text == "The sale is of 2024-02-29 23:59:59"
    assert (desk.state.members, desk.state.shop) == (("01",), "02")


WALK = ["2 x 950101", "2 x 950201", "2 x 100101", "4 x 300201", "2 x 200103", "200102", "300101"]


def test_a_whole_customer(desk: Desk) -> None:
    """The amounts are those of samples/receipts/till.txt."""
    desk.type(*WALK)
    assert desk.type("subtotal").text == "To pay 69.68; gifts to choose from: 2"
    with pytest.raises(NumberOverflow):
        desk.type("gift MZZP-01 900101 2")
    assert desk.type("gift mzzp-01 shopping bag").text == "Gift: 1 x Shopping bag"
    assert desk.type("pay CARD 69.68 6212345678901234").text == "Paid 69.68, CARD"
    assert desk.type("coupon 2 x C5 5.00 MZZQ-01").text == "Presented: 2 x C5 of 5.00"
    assert desk.to_pay() == "55.68"
    assert (desk.state.coupons[0].bill_no, len(desk.state.coupons)) == ("MZZQ-01", 2)
    assert desk.type("undo 2").text == "Taken back: 2"
    assert desk.to_pay() == "69.68"
    assert desk.type("new").text == "Sale T-0002"


def test_a_choice_by_code_and_count(desk: Desk) -> None:
    desk.type(*WALK, "subtotal", "gift MZHG-01 900201 1")
    assert dict(desk.state.picks) == {("MZHG-01", "900201"): Decimal(1)}
    desk.type("gift MZHG-01 mug 0")
    assert dict(desk.state.picks) == {}


def test_saving(desk: Desk, tmp_path: pathlib.Path) -> None:
    file = tmp_path / "my sale.xml"
    assert desk.type("100101", f"save {file}").text == f"The sale is in {file}"
    assert Sale.from_xml(file.read_text("utf-8")).lines[0].total == Decimal("2.50")
    assert refusal(desk, f"save {file}") == f"{file} is there already; nothing is overwritten"
    with pytest.raises(OSError):
        desk.type(f"save {tmp_path / 'none' / 'sale.xml'}")


def test_quitting(desk: Desk) -> None:
    for typed in ("quit", "QUIT", " quit "):
        with pytest.raises(Quit):
            desk.type(typed)


def test_nothing_is_nothing(desk: Desk) -> None:
    before = desk.state
    assert (desk.type("", "   ", "\t").text, desk.state) == ("", before)


@pytest.mark.parametrize("typed, why", [
    ("qty", "write: qty LINE N"), ("qty 1", "write: qty LINE N"), ("qty 1 2 3", "write: qty LINE N"),
    ("qty one 2", "'one' is no whole number"), ("qty 1 two", "'two' is no quantity; write it as 3 or 1.375"),
    ("qty 1 0", "a quantity above 0 is wanted"), ("qty 9 1", "the sale has no line 9"),
    ("void", "write: void LINE"), ("void 1.5", "'1.5' is no whole number"), ("void 0", "the sale has no line 0"),
    ("void -1", "'-1' is no whole number"), ("void 99999999999999999999", "'99999999999999999999' is no whole number"),
    ("member", "write: member TYPE"), ("member a b", "write: member TYPE"), ("shop", "write: shop CODE"),
    ("date", "write: date YYYY-MM-DD"), ("date 2024-02-30", "'2024-02-30' is no date; write it as 2024-06-15"),
    ("date 20240615", "'20240615' is no date; write it as 2024-06-15"),
    ("date 0000-01-01", "'0000-01-01' is no date; write it as 2024-06-15"),
    ("time 24:00", "'24:00' is no time; write it as 10:30 or 10:30:00"),
    ("time 9:00", "'9:00' is no time; write it as 10:30 or 10:30:00"),
    ("subtotal now", "write: subtotal"), ("gift", "write: gift RULE GOODS [N]"), ("gift MZHG-01", "write: gift RULE GOODS [N]"),
    ("gift MZHG-01 mug", "the subtotal comes first"), ("pay", "write: pay WAY [AMOUNT [CARD]]"),
    ("pay CARD 1 2 3", "write: pay WAY [AMOUNT [CARD]]"), ("pay CARD ten", "'ten' is no amount of money; write it as 2.50"),
    ("pay CARD", "the subtotal comes first"), ("coupon", "write: coupon [N x] TYPE VALUE [NUMBER]"),
    ("coupon C5", "write: coupon [N x] TYPE VALUE [NUMBER]"),
    ("coupon C5 5.001", "'5.001' is no amount of money; write it as 2.50"),
    ("coupon 0 x C5 5", "at most 100"), ("coupon 101 x C5 5", "at most 100"), ("coupon C5 5", "the subtotal comes first"),
    ("undo 9", "there are 1 steps to take back"), ("undo 0", "there are 1 steps to take back"),
    ("undo x", "'x' is no whole number"), ("new one", "write: new"), ("save", "write: save FILE"),
    ("help me", "'me' is no command"), ("why R99", "'R99' is no rule that had a say, and no line"),
    ("why 2", "'2' is no rule that had a say, and no line"), ("quit now", "write: quit"),
    ("x" * 501, "a line of at most 500 letters is read"), ("100101\x1b[2J", "U+001B can't stand in a command"),
    ("100101\x00", "U+0000 can't stand in a command"), ("a\nb", "U+000A can't stand in a command"),
])
def test_what_is_refused(desk: Desk, typed: str, why: str) -> None:
    desk.type("100101")
    assert refusal(desk, typed) == why


def test_every_refusal_has_a_text_in_both_languages() -> None:
    keys = {key for name in ("model", "commands")
            for key in re.findall(r'Refusal\("(\w+)"', (TILL / f"{name}.py").read_text("utf-8"))}
    assert len(keys) > 20
    for lang in ("en", "zh"):
        words = Words(lang)
        fields = dict.fromkeys("code goods line rule text usage left steps most letter file command".split(), "?")
        for key in keys:
            assert words(key, **fields)


def test_no_text_of_the_till_is_left_unused() -> None:
    program = "".join(file.read_text("utf-8") for file in TILL.glob("*.py"))
    for key in re.findall(r'^  "(\w+)":', (TILL / "words.json").read_text("utf-8"), re.MULTILINE):
        assert f'"{key}"' in program or key.partition("_")[0] in ("usage", "help"), key


def test_help_tells_every_command(desk: Desk) -> None:
    page = desk.type("help").page
    assert page is not None
    for width in (20, 35, 80):
        told = page(width)
        assert max(cells(line) for line in told) <= width
        assert [line.split()[0] for line in told if not line.startswith(" ")] == list(COMMANDS)
    one = desk.type("help gift").page
    assert one is not None and one(80)[0] == "gift RULE GOODS [N]"


# Completion


@pytest.mark.parametrize("typed, choices", [
    ("", []), ("sub", ["subtotal"]), ("SUB", ["subtotal"]), ("qu", ["quit"]), ("croi", ["300201"]), ("scan herb", ["600302"]),
    ("scan 2002", ["200201", "200202"]), ("3 x 2002", ["200201", "200202"]), ("3x croi", ["300201"]),
    ("scan 3 x croi", ["300201"]), ("return croi", ["300201"]), ("member ", ["01"]), ("pay ", ["CARD"]), ("coupon ", ["C5"]),
    ("help qt", ["qty"]),
    ("why MZZ", ["MZZF-01", "MZZM-01", "MZZP-01", "MZZQ-01"]), ("xyz", []), ("date ", []), ("gift ", []), ("void ", []),
])
def test_completion(desk: Desk, typed: str, choices: list[str]) -> None:
    if typed.startswith("why"):
        desk.type("100101")
        assert sorted(desk.choices(typed)) == choices
    else:
        assert desk.choices(typed) == choices


def test_completion_of_what_the_sale_has(desk: Desk) -> None:
    desk.type(*WALK, "void 2")
    assert desk.choices("qty ") == desk.choices("void ") == ["1", "3", "4", "5", "6", "7"]
    assert desk.choices("qty 1 ") == []
    desk.type("subtotal")
    assert desk.choices("gift ") == ["MZHG-01"]
    assert desk.choices("gift MZHG-01 ") == desk.choices("gift mzhg-01 m") == ["900201"]


def test_completion_takes_the_place_of_what_is_typed(desk: Desk) -> None:
    for typed, done in (("scan shower g", "scan 600201"), ("2 x shower g", "2 x 600201"), ("shower g", "600201"),
                        ("return 2 x shower g", "return 2 x 600201"), ("pay C", "pay CARD")):
        (choice,) = desk.commands.complete(typed)
        assert typed[:len(typed) - choice.back] + choice.text == done


# The store's files


def test_a_store_without_a_goods_list(engine: Engine, store: pathlib.Path) -> None:
    (store / "goods.xml").unlink()
    desk = Desk(engine, store)
    assert refusal(desk, "100101").startswith("no goods have the code or name '100101'")
    desk.type("date 2024-06-15", "3 x 100101 at 2.50")
    assert desk.to_pay() == "5.97"


@pytest.mark.parametrize("text, place", [
    ("<Goods><Row", "line 1"), ('<Goods>\n<Row PluCode="1" Price="2,50"/></Goods>', "line 2, column 1: Price '2,50' is no price"),
    ('<Goods><Row PluCode="1" Price="-1"/></Goods>', "Price '-1' is no price"), ("<!DOCTYPE a><Goods/>", "document type"),
])
def test_a_goods_list_that_is_none(store: pathlib.Path, text: str, place: str) -> None:
    (store / "goods.xml").write_text(text, "utf-8")
    with pytest.raises(ValueError, match=re.escape(place)) as caught:
        read_goods(store)
    assert str(caught.value).startswith(str(store / "goods.xml"))


def test_two_goods_of_one_name_want_the_code(engine: Engine, store: pathlib.Path) -> None:
    (store / "goods.xml").write_text('<Goods><Row PluCode="1" Name="Tea" Price="1"/><Row PluCode="2" Name="tea" Price="2"/>'
                                     "<Row Name='nothing'/></Goods>", "utf-8")
    assert refusal(Desk(engine, store), "tea") == "'tea' may be: 1 Tea, 2 tea"


def test_what_the_rules_name(store: pathlib.Path) -> None:
    (store / "rules" / "broken.xml").write_text("<Rules><Rule", "utf-8")
    rules = read_rules(store)
    assert (rules.members, rules.payments, rules.coupons, rules.shops) == (["01"], ["CARD"], ["C5"], [])
    assert rules.names["PTXS-01"] == "Juice of the week" and len(rules.names) == 18
