"""The store of a till: an SQLite file with the tables that the engine reads."""

import os
import re
import sqlite3
import tempfile

SETTINGS = "[DataBase]\nDbType={}\nServiceName=\nDBName={}\nUserName=\nPassword=\nPort=0\n"
# A relative name with a path separator: the file lies in the till's directory.
STORE = "./store.db"


def loose(schema):
    """The tables without keys and duties: rows in the order of writing, doubled numbers, and nothing where a value
    should be."""
    schema = re.sub(r",\s*PRIMARY KEY \([^)]*\)", "", schema)
    return schema.replace(" NOT NULL", "").replace(" WITHOUT ROWID", "")


def empty_store(schema):
    """The bytes of a database file with these tables and no rows."""
    with tempfile.TemporaryDirectory() as folder:
        path = os.path.join(folder, "store.db")
        database = sqlite3.connect(path)
        database.executescript(schema)
        database.close()
        with open(path, "rb") as file:
            return file.read()


def templates(schema):
    """The kinds of store that a till may have, without rows."""
    keyed = empty_store(schema)
    return {"keyed": keyed, "loose": empty_store(loose(schema)), "closed": keyed, "unset": keyed}


def settings(kind, flush=""):
    """The text of "config.ini" for a kind of store: one that is there, one that can't be opened, or none at all.

    `flush` is the log's setting of that name; without it the file has none.
    """
    return database_settings(kind) + (f"[Log]\nFlush={flush}\n" if flush else "")


def database_settings(kind):
    """The part of it that tells of the database."""
    return {"closed": SETTINGS.format("SQLITE", "./nowhere/store.db"), "unset": ""}.get(
        kind, SETTINGS.format("sqlite" if kind == "loose" else "SQLITE", STORE))


def insert(table, row):
    """The statement that writes a row, and its values."""
    marks = ",".join("?" * len(row))
    return f"insert or replace into {table} ({','.join(row)}) values ({marks})", list(row.values())


def with_rows(template, rows):
    """The bytes of a store with rows."""
    store = sqlite3.connect(":memory:")
    store.deserialize(template)
    for table, table_rows in rows.items():
        for row in table_rows:
            write(store, table, row)
    store.commit()
    data = store.serialize()
    store.close()
    return data


def open_store(path):
    """Opens a store, each change of which is there at once."""
    store = sqlite3.connect(path, isolation_level=None, timeout=5)
    store.execute("pragma synchronous=off")
    store.execute("pragma journal_mode=memory")
    return store


def write(store, table, row):
    """Writes a row; one that the table's duties refuse is left out."""
    if not row:
        return
    try:
        store.execute(*insert(table, row))
    except sqlite3.IntegrityError:
        pass
