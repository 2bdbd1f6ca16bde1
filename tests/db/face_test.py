"""The safe face on a database server: what it finds before the shop opens, and what a server costs that keeps silent.

face_test.py HOST_LIBRARY WORK
"""

import os
import pathlib
import shutil
import sys
import threading
import time
import unittest
from decimal import Decimal

HOST_LIBRARY, WORK = (pathlib.Path(sys.argv.pop(1)).resolve() for _ in range(2))
ROOT = pathlib.Path(__file__).resolve().parents[2]
os.environ["QNCORVANE_HOST_LIBRARY"] = str(HOST_LIBRARY)
sys.path.insert(0, str(ROOT / "bindings" / "python" / "src"))

from mariadb_server import MariaDbServer  # noqa: E402
from qncorvane import BadStore, Engine, Mode, TimedOut, check  # noqa: E402
from statement_gate import StatementGate  # noqa: E402
from store import sample_rows, schema  # noqa: E402

BASKET = (ROOT / "samples" / "sales" / "basket.xml").read_text("utf-8")


class OnAServer(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.server = MariaDbServer(WORK / "mariadb")
        cls.addClassCleanup(cls.server.kill)
        cls.server.start()
        # The driver takes the socket's place from the environment, when it is first loaded.
        cls.gate = StatementGate(WORK / "gate.sock", cls.server.socket)
        cls.addClassCleanup(cls.gate.close)
        os.environ["MYSQL_UNIX_PORT"] = str(WORK / "gate.sock")

    def setUp(self):
        self.server.run("drop database if exists shop; create database shop character set utf8mb4")
        self.server.run(schema("mysql") + sample_rows(), "shop")
        self.store = WORK / self.id().rsplit(".", 1)[-1]
        shutil.copytree(ROOT / "samples" / "store", self.store)
        (self.store / "config.ini").write_text("[DataBase]\nDbType=MYSQL\nDBName=shop\nReadTimeout=1\n", "utf-8")

    def test_a_basket_comes_to_what_it_does_on_sqlite(self):
        self.assertEqual(list(check(self.store).findings), [])
        with Engine(self.store) as engine:
            engine.load_rules()
            # As in samples/receipts/basket.txt.
            self.assertEqual(engine.calculate("1", Mode.ALL, BASKET).totals.to_pay, Decimal("36.06"))
            self.assertEqual(engine.state().database.kind, "MYSQL")

    def test_a_column_that_is_missing_is_told(self):
        self.server.run("alter table tProMzScheme drop column DscPrice; drop table tpromzlist", "shop")
        found = {(one.where, one.what.split(":")[0]) for one in check(self.store).findings}
        self.assertEqual(found, {("tpromzlist", "the table can't be read"),
                                 ("tProMzScheme", "the column DscPrice can't be read")})
        with self.assertRaises(BadStore) as refused:
            Engine(self.store)
        self.assertIn("tpromzlist", str(refused.exception))

    def test_a_login_that_is_refused_is_told(self):
        with open(self.store / "config.ini", "a", encoding="utf-8") as settings:
            settings.write("UserName=nobody\nPassword=wrong\n")
        with self.assertRaisesRegex(BadStore, "config.ini: the database can't be opened: .*Access denied"):
            Engine(self.store)

    def test_a_server_that_keeps_silent_costs_a_call_its_limit(self):
        with Engine(self.store) as engine:
            engine.load_rules()
            self.gate.swallow()
            self.addCleanup(self.gate.speak)
            start = time.monotonic()
            with self.assertRaises(TimedOut):
                engine.calculate("1", Mode.ALL, BASKET, time_limit=0.2)
            self.assertLess(time.monotonic() - start, 0.9)
            threading.Timer(0.1, self.gate.speak).start()
            engine.forget("1")
            self.assertEqual(engine.calculate("1", Mode.ALL, BASKET).totals.to_pay, Decimal("36.06"))


if __name__ == "__main__":
    unittest.main()
