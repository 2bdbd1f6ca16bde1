#!/usr/bin/env python3
"""Makes inputs out of the sample store: make_seeds.py FOLDER. They go to FOLDER/TARGET."""
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
SAMPLES = ROOT / "samples"
# As in Formats.h.
TYPES = "PTXS PTPL PTOS ZHZY ZHGD ZHTJ ZHZX MZMJ MZDP MZZM MZZP MZHG MZZF MZYQ".split()
KINDS = 5
TABLES = 10
RULES = 18

SETTINGS = (
    "[DataBase]\nDbType=SQLITE\nServiceName=\nDBName=./store.db\nUserName=\nPassword=\nPort=0\n",
    "; a till\n[DataBase]\nDbType=sqlite\nServiceName=\"a,b\"\nDBName=s\\x41.db\nUserName=a, b\nPassword=\"p;=%41\\\\\"\n"
    "Port=3306\nConnectTimeout=5\nReadTimeout= 0\n[Log]\nFlush=call\n",
    "\ufeff[database]\r\nDbType=ACCESSX\r\nPort=@Variant(\\0\\0\\0\\x2)\nReadTimeout=@Invalid()\nConnectTimeout=99999999999\n"
    "[Log]\nFlush=Entry\n[General]\nx=@ByteArray(abc)\ny=@Point(1 2)\n",
)
VALUES = (
    b"A'B\0x' or '1'='1\0back\\slash",
    b"'; drop table tCanary; --\0%1%2\0\\'",
    b"\xef\xbb\xbfmark\0\xef\xbf\xbe\0\xe4\xb8\xad",
    b"\xe0'\0\xf0\x9f\x98\x80\0\xff\xfe",
    b"\0",
    b"?\0:a\0/*\0--\0;\0\"\0`",
    b"007\0 7 \x007",
)
# A day: load begins, two rules, it ends, sales in two modes, sales and rules are cleared. Then calls out of order.
CALLS = (
    bytes([0, 2, 0, 2, 5, 2, 8, 1, 7, 0, 1, 1, 7, 0, 4, 2, 5, 0, 6]),
    bytes([7, 10, 11, 0, 4, 0, 6, 0, 1, 5, 5]),
)


def sales():
    for path in sorted((SAMPLES / "sales").glob("*.xml")):
        for modes in (b"AMPC", b"UZ", b"S"):
            yield modes + b"\n" + path.read_bytes()
    till = [path.read_bytes() for path in sorted((SAMPLES / "sales/till").glob("*.xml"))]
    yield b"SSSAMGGP\n" + b"\0".join(till[:4] + till[3:6] + till[7:8])
    yield b"AMGGGPC\n" + b"\0".join([till[0], till[1], *till[4:]])


def rules():
    for path in sorted((SAMPLES / "store/rules").glob("*.xml")):
        xml = path.read_bytes()
        kind = re.search(rb'ProType="(\w+)"', xml).group(1).decode()
        # A rule that gives coupons is loaded as one that takes them.
        yield bytes([TYPES.index("MZYQ" if kind == "MZZQ" else kind)]) + xml


def rows():
    for table in range(TABLES):
        yield bytes([0, table, table, 0])
    yield b"".join(bytes([0, table, rule, 0]) for table in range(TABLES) for rule in range(0, RULES, 3))


def main():
    made = {
        "sale_xml": sales(),
        "rule_xml": rules(),
        "calls": CALLS,
        "table_rows": rows(),
        "config_ini": (text.encode() for text in SETTINGS),
        "sql_text": (bytes([kind]) + value for kind in range(KINDS) for value in VALUES),
    }
    for target, inputs in made.items():
        for number, data in enumerate(inputs):
            (pathlib.Path(sys.argv[1]) / target / f"sample-{number}").write_bytes(data)


if __name__ == "__main__":
    main()
