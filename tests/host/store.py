"""A copy of the sample store with its database, as the sample scripts make it."""

import pathlib
import shutil
import sqlite3


def make_store(samples: pathlib.Path, folder: pathlib.Path) -> None:
    """Copies samples/store to `folder` and makes the database that its config.ini names."""
    shutil.copytree(samples / "store", folder, dirs_exist_ok=True)
    database = sqlite3.connect(folder / "store.db")
    database.executescript((samples / "schema" / "sqlite.sql").read_text("utf-8"))
    for script in sorted((samples / "data").glob("*.sql")):
        database.executescript(script.read_text("utf-8"))
    database.close()


def set_flush(folder: pathlib.Path, word: str) -> None:
    """Writes the log's setting "Flush" behind what "config.ini" holds."""
    with open(folder / "config.ini", "a", encoding="utf-8") as file:
        file.write(f"\n[Log]\nFlush={word}\n")
