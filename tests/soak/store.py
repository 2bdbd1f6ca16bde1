"""The store of the soak: what its rows are, the file that an engine reads, and what may happen to that file and to the
log."""

import contextlib
import os
import pathlib
import sqlite3

import stores

SETTINGS = "[DataBase]\nDbType=SQLITE\nDBName=./store.db\nConnectTimeout=1\nReadTimeout=1\n"
LOG = "QnCorvane.txt"
LOG_LIMIT = 1000000


class Store:
    """The rows of each rule, and the file in which they stand."""

    def __init__(self, folder, schema):
        self.folder = pathlib.Path(folder)
        self.path, self.log = self.folder / "store.db", self.folder / LOG
        self.template = stores.empty_store(schema)
        self.rows = {}
        (self.folder / "config.ini").write_text(SETTINGS, "ascii")
        self.replace()

    def tables(self):
        """All rows by their tables."""
        tables = {}
        for rows in self.rows.values():
            for table, table_rows in rows.items():
                tables.setdefault(table, []).extend(table_rows)
        return tables

    def content(self):
        """The bytes of a file with all rows."""
        return stores.with_rows(self.template, self.tables())

    def replace(self):
        """Puts a new file with all rows in the place of whatever stands there."""
        fresh = self.folder / "store.new"
        fresh.write_bytes(self.content())
        if self.path.is_dir():
            self.path.rmdir()
        fresh.replace(self.path)

    @contextlib.contextmanager
    def opened(self):
        """The file, opened for a change beside the engine. That no call leaves a lock is checked by the way."""
        database = sqlite3.connect(self.path, isolation_level=None, timeout=0.5)
        try:
            database.execute("pragma synchronous=off")
            yield database
        finally:
            database.close()

    def put(self, number, rows):
        """Gives a rule these rows in place of what it had."""
        had = self.rows.pop(number, {})
        self.rows[number] = rows
        with self.opened() as database:
            database.execute("begin immediate")
            for table in had:
                database.execute(f"delete from {table} where BillNo=?", [number])
            for table, table_rows in rows.items():
                for row in table_rows:
                    stores.write(database, table, row)
            database.execute("commit")

    # What may happen to the file. Each leaves it so that replace() heals it.

    @contextlib.contextmanager
    def away(self):
        self.path.rename(self.folder / "store.away")
        yield
        (self.folder / "store.away").replace(self.path)

    @contextlib.contextmanager
    def replaced_by_a_copy(self):
        self.replace()
        yield

    @contextlib.contextmanager
    def replaced_by_an_empty_store(self):
        (self.folder / "store.new").write_bytes(self.template)
        (self.folder / "store.new").replace(self.path)
        yield
        self.replace()

    @contextlib.contextmanager
    def replaced_by_a_folder(self):
        self.path.unlink()
        self.path.mkdir()
        yield
        self.replace()

    @contextlib.contextmanager
    def locked(self):
        with self.opened() as database:
            database.execute("begin exclusive")
            yield
            database.execute("rollback")

    @contextlib.contextmanager
    def truncated(self):
        os.truncate(self.path, len(self.template) // 3)
        yield
        self.replace()

    @contextlib.contextmanager
    def emptied(self):
        os.truncate(self.path, 0)
        yield
        self.replace()

    @contextlib.contextmanager
    def corrupt(self):
        with open(self.path, "r+b") as file:
            file.seek(24)  # the change counter: nobody trusts what was read before
            file.write(b"\xff" * 8)
            file.seek(2048)
            file.write(b"\xa5" * 6000)
        yield
        self.replace()

    @contextlib.contextmanager
    def without_a_table(self, table="tProPrjDirectProAct"):
        with self.opened() as database:
            database.execute(f"alter table {table} rename to gone")
        yield
        with self.opened() as database:
            database.execute(f"alter table gone rename to {table}")

    @contextlib.contextmanager
    def without_a_column(self):
        with self.opened() as database:
            database.execute("alter table tProMzScheme rename column BaseConNum to gone")
        yield
        with self.opened() as database:
            database.execute("alter table tProMzScheme rename column gone to BaseConNum")

    # And to the log.

    @contextlib.contextmanager
    def log_rotated(self):
        if self.log.exists():
            self.log.replace(self.folder / "old.txt")
        yield
        if not self.log.exists():
            raise AssertionError("no log after it was rotated")

    @contextlib.contextmanager
    def log_deleted(self):
        self.log.unlink(missing_ok=True)
        yield
        if not self.log.exists():
            raise AssertionError("no log after it was deleted")

    @contextlib.contextmanager
    def log_above_its_limit(self):
        with open(self.log, "ab") as file:
            file.truncate(LOG_LIMIT + 1)
        yield
        if self.log.stat().st_size > LOG_LIMIT:
            raise AssertionError("a log above its limit did not start over")

    @contextlib.contextmanager
    def log_a_folder(self):
        self.log.unlink(missing_ok=True)
        self.log.mkdir()
        yield
        self.log.rmdir()

    @contextlib.contextmanager
    def log_full(self):
        """The log lies on a device that has no room."""
        self.log.unlink(missing_ok=True)
        self.log.symlink_to("/dev/full")
        yield
        self.log.unlink()


FAULTS = ("away", "replaced_by_a_copy", "replaced_by_an_empty_store", "replaced_by_a_folder", "locked", "truncated",
          "emptied", "corrupt", "without_a_table", "without_a_column", "log_rotated", "log_deleted",
          "log_above_its_limit", "log_a_folder", "log_full")
