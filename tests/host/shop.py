"""Small shops for tests: a few rules and rows, a sale, and what the host program gives for it."""

import collections
import pathlib
import sqlite3
import subprocess
import tempfile
import xml.etree.ElementTree as ElementTree

Rule = collections.namedtuple("Rule", "bill type primary date limit groups", defaults=["2024-06-01", None, ""])


def rule_xml(rule):
    limit = rule.limit or ("0", "0")
    return f"""<Rules><Rule BillNo="{rule.bill}" OrgCode="01" ProType="{rule.type}" ProMode="{rule.type[:2]}" ProStatus="1"
      Primary="{rule.primary}" JzDate="{rule.date}" MaxYhType="{limit[0]}" MaxYhValue="{limit[1]}" Remark="">
      <OrgFilter><Row OrgCode="*"/></OrgFilter><ProTime><Row StartDate="2024-01-01" EndDate="2099-12-31" StartTime=""
      EndTime="" Frequency="DAY" WeekDays="" MonthDays=""/></ProTime>{rule.groups}</Rule></Rules>"""


def line_xml(number, code, count, price="10.00"):
    return (f'<Row SerialNo="{number}" PluCode="{code}" Price="{price}" PluCount="{count}" '
            f'Total="{float(count) * float(price):.2f}" PackCnt="1" SaleDate="2024-06-15" SaleTime="10:30:00"/>')


def sale_xml(*lines, groups=""):
    rows = "".join(line_xml(number, *line) for number, line in enumerate(lines, 1))
    return f'<Sale BillNo="S-1" OrgCode="01" IsCalc="0"><Plu>{rows}</Plu>{groups}</Sale>'


class Shop:
    """The host program `program`, in a store of its own for each run, with the tables of the samples."""

    def __init__(self, program, samples):
        self._program = program
        self._schema = (samples / "schema" / "sqlite.sql").read_text("utf-8")

    def run(self, rules, rows, *steps, lenient=False):
        """The result XML of the last step: a mode, with the sale that goes with it. The rules are loaded in this order."""
        answer = self.answer(rules, rows, *steps, lenient=lenient)
        if answer.returncode != 0:
            raise AssertionError(answer.stderr.decode())
        return ElementTree.fromstring(answer.stdout)

    def answer(self, rules, rows, *steps, lenient=False):
        """What the program answered to the same."""
        with tempfile.TemporaryDirectory() as name:
            store = pathlib.Path(name)
            (store / "rules").mkdir()
            (store / "config.ini").write_text("[DataBase]\nDbType=SQLITE\nDBName=./store.db\n", "utf-8")
            database = sqlite3.connect(store / "store.db")
            database.executescript(self._schema + rows)
            database.close()
            for number, rule in enumerate(rules):
                (store / "rules" / f"{number}.xml").write_text(rule_xml(rule), "utf-8")
            words = []
            for number, (mode, *sale) in enumerate(steps):
                words.append(mode)
                if sale:
                    (store / f"{number}.xml").write_text(sale[0], "utf-8")
                    words[-1] += f"={store / str(number)}.xml"
            command = [self._program, "calc", "--store", store, "--mode", ",".join(words), "--xml"]
            if lenient:
                command.append("--lenient")
            return subprocess.run(command, capture_output=True, check=False)


def given(result):
    """Money that each rule gave on lines."""
    money = collections.Counter()
    for row in result.find("ProResult"):
        if row.get("PluCode") != "*":
            money[row.get("ProBillNo")] += float(row.get("DisMoney"))
    return money


def totals(result):
    return [line.get("Total") for line in reversed(result.find("Plu"))]
