"""The engine on database servers, beside the engine on SQLite, whose results it must match byte for byte.

servers_test.py LIBRARY WORK

WORK is an empty folder for everything that the tests make.
"""

import contextlib
import pathlib
import re
import socket
import sqlite3
import subprocess
import sys
import time
import unittest

from mariadb_server import MariaDbServer
from statement_gate import StatementGate
from store import Till, sample_rows, sample_rules, sample_walks, schema, sqlite_database

LIBRARY, WORK = (pathlib.Path(sys.argv.pop(1)).resolve() for _ in range(2))
ROOT = pathlib.Path(__file__).resolve().parents[2]
WALKS = sample_walks()
LOST_ROWS = "获取普通类促销详情失败"


class BesideSqlite(unittest.TestCase):
    """A till on SQLite, to compare with."""

    def setUp(self):
        self.folder = WORK / self.id().rsplit(".", 1)[-1]
        self.folder.mkdir()
        sqlite_database(self.folder / "store.db")
        self.sqlite = self.till("sqlite", f"DbType=SQLITE\nDBName={self.folder}/store.db\n")
        self.open_store(self.sqlite)

    def till(self, name, settings, environment=None):
        till = Till(LIBRARY, self.folder / name, settings, environment)
        self.addCleanup(till.close)
        return till

    def open_store(self, till):
        code, loads = till.open_store()
        self.assertEqual((code, set(loads)), (0, {0}))
        till.take_log()

    def assert_same_walks(self, till):
        """All sample walks: codes, messages, results and logs."""
        for name, steps in WALKS.items():
            with self.subTest(walk=name):
                self.assertEqual(till.walk(name, steps), self.sqlite.walk(name, steps))
                self.assertEqual(till.take_log(), self.sqlite.take_log())


class OnSqlite(BesideSqlite):
    """What the comparisons below rest on."""

    def test_the_samples_show_every_rule_at_work(self):
        """So that sameness below is not the sameness of nothing."""
        results = "".join(answer[2] for name, steps in WALKS.items() for answer in self.sqlite.walk(name, steps))
        for rule in ["PTXS-01", "PTXS-02", "PTXS-03", "PTXS-04", "PTPL-01", "PTOS-01", "ZHZY-01", "ZHZX-01", "ZHTJ-01",
                     "ZHGD-01", "MZDP-01", "MZZM-01", "MZMJ-01", "MZZP-01", "MZHG-01", "MZZF-01", "促销-茶"]:
            self.assertIn(f'ProBillNo="{rule}"', results)


class OnMySql(BesideSqlite):
    """A till on the MySQL kind, with a gate between it and the server."""

    @classmethod
    def setUpClass(cls):
        folder = WORK / "mariadb"
        folder.mkdir(exist_ok=True)
        cls.server = MariaDbServer(folder / cls.__name__)
        cls.addClassCleanup(cls.server.kill)
        cls.server.start()
        cls.server.run("create database shop character set utf8mb4")
        cls.server.run(schema("mysql") + sample_rows(), "shop")

    def setUp(self):
        super().setUp()
        self.server.kill()
        self.server.start()
        self.gate_path = self.folder / "gate.sock"
        self.gate = StatementGate(self.gate_path, self.server.socket)
        self.addCleanup(self.gate.close)
        self.mysql = self.mysql_till("mysql")

    def mysql_till(self, name, more_settings=""):
        return self.till(name, "DbType=MySQL\nDBName=shop\n" + more_settings, {"MYSQL_UNIX_PORT": str(self.gate_path)})

    def basket(self, till):
        return till.walk("basket", WALKS["basket"])

    def at_statement(self, piece, act):
        """Runs `act` once, at the first statement that holds `piece`, before the server sees it."""
        def on_statement(statement):
            if piece in statement:
                self.gate.on_statement = lambda _: None
                act()
        self.gate.on_statement = on_statement

    def test_every_walk_is_as_on_sqlite(self):
        self.open_store(self.mysql)
        self.assert_same_walks(self.mysql)

    def test_a_restart_between_two_sales_costs_nothing(self):
        self.open_store(self.mysql)
        first = self.basket(self.mysql)
        first_log = self.mysql.take_log()
        self.server.kill()
        self.server.start()
        self.assertEqual(self.basket(self.mysql), first)
        self.assertEqual(self.mysql.take_log(), first_log)
        self.assertEqual(self.basket(self.sqlite), first)
        self.assertEqual(self.sqlite.take_log(), first_log)

    def test_a_server_that_is_away_costs_the_discounts_and_no_more(self):
        self.open_store(self.mysql)
        self.server.kill()
        [[code, message, result]] = self.basket(self.mysql)
        self.assertEqual((code, message), (0, "sucess"))
        self.assertNotIn("ProBillNo=", result)
        self.assertIn(LOST_ROWS + "PTXS-01", self.mysql.take_log())
        self.server.start()
        self.assertEqual(self.basket(self.mysql), self.basket(self.sqlite))

    def test_a_server_that_goes_in_the_middle_of_a_sale(self):
        self.open_store(self.mysql)
        # The sample store's rules run from the last loaded to the first.
        self.at_statement("BillNo='PTXS-02'", self.server.kill)
        [[code, message, result]] = self.basket(self.mysql)
        self.assertEqual((code, message), (0, "sucess"))
        self.assertIn('ProBillNo="PTXS-03"', result)
        self.assertNotIn('ProBillNo="PTXS-02"', result)
        self.assertNotIn('ProBillNo="PTXS-01"', result)
        log = self.mysql.take_log()
        self.assertNotIn(LOST_ROWS + "PTXS-03", log)
        self.assertEqual(log.count(LOST_ROWS + "PTXS-02"), 6)  # once for each line of the sale
        self.assertEqual(log.count(LOST_ROWS + "PTXS-01"), 6)
        self.server.start()
        self.assertEqual(self.basket(self.mysql), self.basket(self.sqlite))

    def test_a_restart_in_the_middle_of_a_sale_costs_nothing(self):
        # A restart takes seconds on a busy machine; here it shall not count as silence.
        patient = self.mysql_till("patient", "ReadTimeout=300\n")
        self.open_store(patient)

        def restart():
            self.server.kill()
            self.server.start()

        restarted = []
        self.at_statement("BillNo='PTXS-01'", lambda: restarted.append(restart()))
        # The statement for all lines is lost, and they are asked for one by one.
        self.assertEqual(self.basket(patient), self.basket(self.sqlite))
        self.assertEqual(len(restarted), 1)
        self.assertEqual(patient.take_log(), self.sqlite.take_log())

    def test_a_sale_goes_on_where_the_server_left_it(self):
        self.open_store(self.mysql)
        steps = WALKS["till"]
        scanned = [self.mysql.call("calculate", "till", *step) for step in steps[:3]]
        self.server.kill()
        self.server.start()
        rest = [self.mysql.call("calculate", "till", *step) for step in steps[3:]]
        self.assertEqual(scanned + rest, self.sqlite.walk("till", steps))

    def test_a_store_that_opens_before_its_server(self):
        self.server.kill()
        self.assertEqual(self.mysql.call("begin"), [-1])
        self.assertEqual(self.mysql.call("state"), [0, "Init"])
        self.assertEqual(self.mysql.take_log(), ["数据库连接失败"])
        self.mysql.call("finish")
        self.server.start()
        self.open_store(self.mysql)
        self.assertEqual(self.basket(self.mysql), self.basket(self.sqlite))

    def test_a_server_that_falls_silent_in_the_middle_of_a_sale(self):
        self.open_store(self.mysql)
        self.at_statement("BillNo='PTXS-02'", self.gate.swallow)
        with self.within(2 * 3 + 1):
            [[code, message, _]] = self.basket(self.mysql)
        self.assertEqual((code, message), (0, "sucess"))
        with self.within(2 * 3 + 1):
            self.basket(self.mysql)
        self.gate.speak()
        self.assertEqual(self.basket(self.mysql), self.basket(self.sqlite))

    def test_a_server_that_fell_silent_between_two_sales(self):
        self.open_store(self.mysql)
        self.gate.swallow()
        time.sleep(0.2)
        with self.within(2 * 3 + 1):
            self.basket(self.mysql)
        self.gate.speak()
        self.assertEqual(self.basket(self.mysql), self.basket(self.sqlite))

    def test_a_server_that_never_speaks(self):
        with self.silent_socket() as port, self.within(2 * 3 + 1):
            till = self.till("silent", "DbType=MySQL\nServiceName=127.0.0.1\nDBName=shop\n", {"MYSQL_TCP_PORT": str(port)})
            self.assertEqual(till.call("begin"), [-1])
        with self.silent_socket() as port:
            till = self.till("silent2", "DbType=MySQL\nServiceName=127.0.0.1\nDBName=shop\nConnectTimeout=1\n",
                             {"MYSQL_TCP_PORT": str(port)})
            for kind, xml in sample_rules():
                till.call("load", kind, xml)
            with self.within(2 * 1 + 1):
                [[code, message, result]] = self.basket(till)
            self.assertEqual((code, message), (0, "sucess"))
            self.assertNotIn("ProBillNo=", result)

    def test_a_table_that_somebody_holds_locked(self):
        self.open_store(self.mysql)
        self.server.run("create table if not exists held (a int)", "shop")
        with self.server.session("shop") as session:
            session("lock tables tProPrjDirectProAct write, tProMzConPluSet write")
            with self.within(2 * 3 + 1):
                self.basket(self.mysql)
        self.assertEqual(self.basket(self.mysql), self.basket(self.sqlite))

    def test_a_login_with_the_least_rights_does_for_every_walk(self):
        """The rights that SECURITY.md tells, and no more."""
        page = (ROOT / "SECURITY.md").read_text("utf-8")
        rights = re.search(r"MySQL and MariaDB:\n\n```sql\n(.*?)```", page, re.DOTALL)[1]
        self.server.run(rights.replace("a long password", "secret"))
        self.addCleanup(self.server.run, "drop user till@'%'")
        till = self.till("least", "DbType=MySQL\nServiceName=127.0.0.1\nDBName=shop\nUserName=till\nPassword=secret\n",
                         {"MYSQL_TCP_PORT": str(self.server.port)})
        self.open_store(till)
        self.assert_same_walks(till)
        with self.assertRaises(subprocess.CalledProcessError):
            subprocess.run(["mariadb", "--no-defaults", "--user=till", "--password=secret", "--host=127.0.0.1",
                            f"--port={self.server.port}", "shop", "--execute=delete from tProMzScheme"],
                           check=True, stderr=subprocess.DEVNULL)

    def test_codes_that_look_like_statements(self):
        self.open_store(self.mysql)
        for value in ["'; delete from tProPrjDirectProAct; -- ", "' or '1'='1", "\\' or 1=1 -- ", "\\", "''"]:
            sale = re.sub('(PluCode|CAT|BRD)="[^"]*"', lambda found: f'{found[1]}="{value}"', WALKS["basket"][0][1])
            [[code, message, result]] = self.mysql.walk("hostile", [("All", sale)])
            self.assertEqual((code, message), (0, "sucess"))
            self.assertEqual([self.sqlite.walk("hostile", [("All", sale)])[0][2]], [result])
            self.assertEqual([entry for entry in self.mysql.take_log() if "失败" in entry], [])
        self.assertEqual(self.basket(self.mysql), self.basket(self.sqlite))

    @contextlib.contextmanager
    def within(self, seconds):
        start = time.monotonic()
        yield
        self.assertLess(time.monotonic() - start, seconds)

    @contextlib.contextmanager
    def silent_socket(self):
        """The port of a listener that takes connections and never says a word."""
        with socket.socket() as listener:
            listener.bind(("127.0.0.1", 0))
            listener.listen()
            yield listener.getsockname()[1]


class OverOdbc(BesideSqlite):
    """Kinds that go through the driver manager, to a driver that serves SQLite files."""

    def test_rows_that_break_off_are_a_failed_statement(self):
        till = self.till("odbc", f"DbType=SQLServer\nServiceName=store-server\nDBName={self.folder}/store.db\n")
        self.open_store(till)
        store = sqlite3.connect(self.folder / "store.db")
        columns = [row[1] for row in store.execute("pragma table_info(tProPrjDirectProAct)")]
        broken = ",".join("case when serial > 1 then abs(-9223372036854775807 - 1) else TradeMaxCount end as TradeMaxCount"
                          if name == "TradeMaxCount" else name for name in columns)
        store.executescript(
            "alter table tProPrjDirectProAct rename to whole;"
            f"create view tProPrjDirectProAct as select {broken} from (select *, row_number() over "
            "(partition by BillNo, PluCode order by SerialNo) as serial from whole);"
            "insert into whole (BillNo,SerialNo,PluCode,PluType,InRange,DscType) "
            "select BillNo, SerialNo + 5000, PluCode, PluType, InRange, DscType from whole;")
        store.close()
        [[code, message, result]] = till.walk("basket", WALKS["basket"])
        self.assertEqual((code, message), (0, "sucess"))
        self.assertNotIn('ProBillNo="PTXS-01"', result)
        self.assertIn(LOST_ROWS + "PTXS-01", till.take_log())

    def assert_same_over(self, settings):
        till = self.till("odbc", settings)
        self.open_store(till)
        self.assert_same_walks(till)

    def test_sql_server_every_walk_is_as_on_sqlite(self):
        self.assert_same_over(f"DbType=SQLServer\nServiceName=store-server\nDBName={self.folder}/store.db\n")

    def test_access_every_walk_is_as_on_sqlite(self):
        # The driver has no word "DBQ"; the one it knows rides along in the file's name.
        self.assert_same_over(f'DbType=Access\nDBName="./shop.mdb;Database={self.folder}/store.db"\n')


class WithoutADriver(BesideSqlite):
    """A kind whose driver this machine doesn't have."""

    def test_oracle_is_refused_and_the_till_goes_on(self):
        till = self.till("oracle", "DbType=ORACLE\nServiceName=h\nDBName=shop\n")
        code, loads = till.open_store()
        self.assertEqual((code, set(loads)), (-1, {0}))
        [[code, message, result]] = till.walk("basket", WALKS["basket"])
        self.assertEqual((code, message), (0, "sucess"))
        self.assertNotIn("ProBillNo=", result)


if __name__ == "__main__":
    unittest.main(verbosity=2)
