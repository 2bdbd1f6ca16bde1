"""A host in Python on the installed package: host.py STORE SALE. Prints the version, and what the sale comes to."""

import importlib.metadata
import pathlib
import sys

from qncorvane import Engine, Mode, version

STORE, SALE = sys.argv[1:]

with Engine(STORE) as engine:
    engine.load_rules()
    totals = engine.calculate("till-1/1", Mode.ALL, pathlib.Path(SALE).read_text("utf-8")).totals
if importlib.metadata.version("qncorvane") != version():
    sys.exit(f"the package is {importlib.metadata.version('qncorvane')}, the library {version()}")
print(f"{version()}: {totals.before}, to pay {totals.to_pay}")
