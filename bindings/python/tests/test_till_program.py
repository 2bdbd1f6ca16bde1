"""The program: scripts with what they print, its arguments, its errors and exit codes."""

import os
import pathlib
import subprocess
import sys

import pytest

from conftest import SOURCES

SOURCE = SOURCES / "bindings" / "python" / "src"


def till(folder: pathlib.Path, *arguments: str, typed: str = "", **environment: str) -> subprocess.CompletedProcess[str]:
    """Runs the program in a folder."""
    return subprocess.run([sys.executable, "-m", "qncorvane.till", *arguments], cwd=folder, input=typed, capture_output=True,
                          text=True, timeout=60, check=False, env={**os.environ, "PYTHONPATH": str(SOURCE), **environment})


def script(store: pathlib.Path, *lines: str, lang: str = "en") -> subprocess.CompletedProcess[str]:
    """Runs a script of these lines."""
    (store.parent / "tries.till").write_text("\n".join(lines), "utf-8")
    return till(store.parent, "--store", store.name, "--lang", lang, "--script", "tries.till")


def blocks(printed: str) -> dict[str, str]:
    """What was printed for each command."""
    return {block.split("\n")[0]: block for block in printed.split("> ")[1:]}


def test_a_script_prints_the_receipt_and_the_reasons_after_each_command(store: pathlib.Path) -> None:
    ran = script(store, "# three juices on a Saturday", "", "date 2024-06-15", "time 10:30", "  3 x 100101  ")
    assert (ran.returncode, ran.stderr) == (0, "")
    told = blocks(ran.stdout)
    assert list(told) == ["date 2024-06-15", "time 10:30", "3 x 100101"]
    assert told["time 10:30"] == ("time 10:30\nThe sale is of 2024-06-15 10:30:00\n\nSale T-0001   Shop 01   2024-06-15 10:30\n"
                                  "No goods yet. Type a code or a name; help tells the commands.\n\n")
    receipt, _, reasons = told["3 x 100101"].partition("\n\n")[2].partition("\n\n")
    assert receipt == """\
Sale T-0001   Shop 01   2024-06-15 10:30
  1 Orange juice 1 l                                          3 x 2.50      7.50
      Juice of the week                                                    -1.53
--------------------------------------------------------------------------------
Before                                                                      7.50
  Juice of the week                                                        -1.53
At the subtotal                                                             5.97"""
    assert "GIVEN\n  PTXS-01 Juice of the week                                                -1.53\n" in reasons
    assert "NOT GIVEN\n" in reasons


def test_a_script_of_a_whole_customer(store: pathlib.Path) -> None:
    """The amounts are those of samples/receipts/till.txt."""
    ran = script(store, "date 2024-06-15", "2 x 950101", "2 x 950201", "2 x 100101", "4 x croissant", "2 x gouda", "butter",
                 "rye", "subtotal", "gift MZZP-01 shopping bag", "pay CARD 69.68 6212345678901234", "coupon 2 x C5 5.00 MZZQ-01",
                 "undo",
                 "new", "quit", "never read")
    assert (ran.returncode, ran.stderr) == (0, "")
    told = blocks(ran.stdout)
    for command, line in (("subtotal", f"To pay{'69.68':>74}"), ("pay CARD 69.68 6212345678901234", f"Change{'4.00':>74}"),
                          ("coupon 2 x C5 5.00 MZZQ-01", f"To pay{'55.68':>74}"), ("undo", f"To pay{'65.68':>74}")):
        assert line in told[command].split("\n"), command
    assert told["new"].startswith("new\nSale T-0002\n") and told["quit"].strip() == "quit"


def test_why_tells_what_is_near(store: pathlib.Path) -> None:
    ran = script(store, "date 2024-06-15", "5 x 200201", "why PTPL-01", "why 1")
    assert (ran.returncode, ran.stderr) == (0, "")
    told = blocks(ran.stdout)
    assert "needs 6 of Yoghurt, strawberry, has 5" in told["why PTPL-01"]
    assert "1 more Yoghurt, strawberry at 0.80: 0.90 off" in told["why PTPL-01"], "6 x 0.65 in place of 6 x 0.80"
    assert "needs 6 of Yoghurt, strawberry, has 5" in told["why 1"]


def test_in_chinese(store: pathlib.Path) -> None:
    ran = script(store, "date 2024-06-15", "5 x 200201", lang="zh")
    assert ran.returncode == 0
    assert "预计应付" in ran.stdout and "需要Yoghurt, strawberry 6 件，现有 5 件" in ran.stdout


def test_the_first_command_that_is_refused_ends_a_script(store: pathlib.Path) -> None:
    ran = script(store, "100101", "# a remark", "void 7", "100102")
    assert (ran.returncode, ran.stderr) == (1, "qncorvane: tries.till:3: the sale has no line 7\n")
    assert list(blocks(ran.stdout)) == ["100101", "void 7"]


def test_a_refusal_of_the_engine_ends_a_script(store: pathlib.Path) -> None:
    ran = script(store, "2 x 950101", "2 x 950201", "subtotal", "gift MZHG-01 mug 2")
    assert ran.returncode == 1
    assert ran.stderr.startswith("qncorvane: tries.till:4: ") and ran.stderr.count("\n") == 1


def test_a_script_from_the_standard_input(store: pathlib.Path) -> None:
    ran = till(store.parent, "--store", "shop", "--script", "-", typed="100101\nvoid 9\n")
    assert (ran.returncode, ran.stderr) == (1, "qncorvane: -:2: the sale has no line 9\n")


@pytest.mark.parametrize("arguments, text", [
    (["--store", "nowhere"], "nowhere: there is no such folder"),
    (["--store", "shop", "--script", "none.till"], "none.till"),
])
def test_what_is_not_there(store: pathlib.Path, arguments: list[str], text: str) -> None:
    ran = till(store.parent, *arguments)
    assert ran.returncode == 1 and ran.stderr.startswith("qncorvane: ") and text in ran.stderr
    assert "Traceback" not in ran.stderr


def test_a_store_with_a_broken_file(store: pathlib.Path) -> None:
    (store / "goods.xml").write_text("<Goods", "utf-8")
    assert till(store.parent, "--store", "shop", "--script", "-").stderr.startswith("qncorvane: shop/goods.xml: line 1")
    (store / "rules" / "draft.xml").write_text("<Rules", "utf-8")
    assert "rules/draft.xml:1" in till(store.parent, "--store", "shop", "--script", "-").stderr


def test_a_terminal_that_has_no_chinese(store: pathlib.Path) -> None:
    ran = till(store.parent, "--store", "shop", "--lang", "zh", "--script", "-", typed="100102\n", PYTHONIOENCODING="ascii")
    assert (ran.returncode, ran.stderr) == (0, "") and "?" in ran.stdout


def test_a_script_that_is_no_text(store: pathlib.Path) -> None:
    (store.parent / "tries.till").write_bytes(b"100101\n\xff\xfe\n")
    ran = till(store.parent, "--store", "shop", "--script", "tries.till")
    assert ran.returncode == 1 and ran.stderr.startswith("qncorvane: ") and "Traceback" not in ran.stderr


def test_arguments_that_make_no_sense(store: pathlib.Path) -> None:
    wrong: list[list[str]] = [[], ["--store"], ["--store", "shop", "--lang", "de"], ["--store", "shop", "more"]]
    for arguments in wrong:
        ran = till(store.parent, *arguments)
        assert ran.returncode == 2 and ran.stderr.startswith("usage: qncorvane till"), arguments


def test_the_library_that_is_missing(store: pathlib.Path) -> None:
    ran = till(store.parent, "--store", "shop", "--script", "-", QNCORVANE_HOST_LIBRARY="/nowhere/lib.so")
    assert ran.returncode == 1 and "/nowhere/lib.so can't be used" in ran.stderr and "Traceback" not in ran.stderr


def test_the_screen_library_that_is_missing(store: pathlib.Path) -> None:
    fake = store.parent / "fake" / "prompt_toolkit"
    fake.mkdir(parents=True)
    (fake / "__init__.py").write_text("raise ModuleNotFoundError(name='prompt_toolkit')", "utf-8")
    ran = till(store.parent, "--store", "shop", PYTHONPATH=f"{fake.parent}:{SOURCE}")
    assert (ran.returncode, ran.stdout) == (1, "")
    assert ran.stderr == ("qncorvane: the till's screen needs prompt_toolkit: install Debian's package python3-prompt-toolkit; "
                          "--script works without\n")
    ran = till(store.parent, "--store", "shop", "--script", "-", PYTHONPATH=f"{fake.parent}:{SOURCE}")
    assert (ran.returncode, ran.stderr) == (0, "")


def test_sales_have_keys_of_their_own(store: pathlib.Path) -> None:
    ran = till(store.parent, "--store", "shop", "--key", "till-7", "--script", "-", typed="100101\n")
    assert ran.returncode == 0
    assert "till-7/T-0001" in "".join(path.read_text("utf-8", "replace") for path in store.glob("QnCorvane*.txt"))
