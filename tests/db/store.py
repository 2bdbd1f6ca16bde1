"""Copies of the sample store on each kind of database, and a till in each."""

import json
import os
import pathlib
import shutil
import sqlite3
import subprocess
import sys

HERE = pathlib.Path(__file__).resolve().parent
SAMPLES = HERE.parents[1] / "samples"

# Beside the sample store's own: goods whose category has a Chinese name, and a rule for them.
CHINESE_ROWS = """
INSERT INTO tProPrjDirectProAct (BillNo, SerialNo, PluCode, PluType, InRange, DscType, DscPrice, DscRate, SaleCount,
                                 TradeMaxCount)
VALUES ('促销-茶', 1, '茶叶', 'CAT', 'IN', 'RAT', 0, 25, 1, 0);
"""
CHINESE_SALE = """<Sale BillNo="S-9" OrgCode="01" IsCalc="0"><Plu>
<Row SerialNo="1" PluCode="绿茶" PluType="PLU" Price="8.00" PluCount="2" Total="16.00" PackCnt="1" CAT="茶叶" BRD="西湖"
     SaleDate="2024-06-15" SaleTime="10:30:00"/>
</Plu></Sale>"""


def sample_rows():
    return "".join(file.read_text("utf-8") for file in sorted((SAMPLES / "data").glob("*.sql"))) + CHINESE_ROWS


def schema(kind):
    return (SAMPLES / "schema" / f"{kind}.sql").read_text("utf-8")


def sqlite_database(path):
    """The sample store's tables and rows as a SQLite file."""
    database = sqlite3.connect(path)
    database.executescript(schema("sqlite"))
    database.executescript(sample_rows())
    database.close()


def sample_rules():
    """Type to load under and XML of each rule, in the order of their files."""
    rules = []
    for file in sorted((SAMPLES / "store" / "rules").glob("*.xml")):
        kind = file.name[:4]
        rules.append(("MZYQ" if kind == "MZZQ" else kind, file.read_text("utf-8")))
    juice = (SAMPLES / "store" / "rules" / "PTXS-01-juice.xml").read_text("utf-8")
    rules.append(("PTXS", juice.replace('BillNo="PTXS-01"', 'BillNo="促销-茶"')))
    return rules


def sample_walks():
    """Name of each walk of the samples, with its steps: mode and sale XML."""
    walks = {"chinese": [("All", CHINESE_SALE)]}
    for line in (SAMPLES / "walks.txt").read_text("utf-8").splitlines():
        if line.startswith("#") or "|" not in line:
            continue
        name, _, steps = (part.strip() for part in line.split("|"))
        walks[name] = [step_of(step) for step in steps.split(",")]
    return walks


def step_of(step):
    mode, _, sale = step.partition("=")
    return mode, (SAMPLES / "sales" / sale).read_text("utf-8") if sale else "<Sale/>"


class Till:
    """The engine in a process of its own, in a store's folder."""

    def __init__(self, library, folder: pathlib.Path, settings, environment=None):
        folder.mkdir()
        self._folder = folder
        (folder / "config.ini").write_text("[DataBase]\n" + settings, "utf-8")
        with open(folder / "stderr.txt", "wb") as errors:
            self._process = subprocess.Popen(
                [sys.executable, "-B", HERE / "till_host.py", str(library)], cwd=folder, stdin=subprocess.PIPE,
                stdout=subprocess.PIPE, stderr=errors, text=True, encoding="utf-8",
                env={**os.environ, "LC_ALL": "C.UTF-8", **(environment or {})})

    def call(self, *call):
        """What the call answered: its code and its texts."""
        print(json.dumps(call), file=self._process.stdin, flush=True)
        answer = self._process.stdout.readline()
        if not answer:
            raise RuntimeError("the till died:\n" + (self._folder / "stderr.txt").read_text(errors="replace")[-2000:])
        return json.loads(answer)

    def open_store(self):
        """Opens the database and loads all rules; the codes of both."""
        code = self.call("begin")[0]
        loads = [self.call("load", kind, xml)[0] for kind, xml in sample_rules()]
        self.call("finish")
        return code, loads

    def walk(self, name, steps):
        """What each step of a sale answered."""
        answers = [self.call("calculate", name, mode, sale) for mode, sale in steps]
        self.call("forget", name)
        return answers

    def take_log(self):
        """The log's entries since the last time, without their times."""
        file = self._folder / "QnCorvane.txt"
        if not file.exists():
            return []
        text = file.read_bytes().decode()
        file.unlink()
        return [entry[len("yyyy-MM-dd hh:mm:ss  "):] for entry in text.split("\n\r") if entry]

    def close(self):
        self._process.stdin.close()
        self._process.wait(timeout=30)
        self._process.stdout.close()
        shutil.rmtree(self._folder, ignore_errors=True)
