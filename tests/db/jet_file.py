"""Writes small Access files (Jet 4, ".mdb"): a table or more, each on one page of rows. No tool here makes one.

jet_file.py FILE makes one with a table "shop" and a row in it.
"""

import struct
import sys

PAGE = 4096
HEADER_KEY = bytes.fromhex("c7da396b")
CATALOG_PAGE = 2
MAPS_PAGE = 1

# Kinds of columns: the format's number for the type, and the bytes that a value takes; 0 where that varies.
SMALL, INTEGER, DOUBLE, TEXT, OLE = (3, 2), (4, 4), (7, 8), (10, 0), (11, 0)

CATALOG = ("MSysObjects", [("Id", INTEGER), ("Name", TEXT), ("Type", SMALL), ("Flags", INTEGER), ("LvProp", OLE)])
OBJECT_TABLE = 1


def rc4(key, data):
    state, j = list(range(256)), 0
    for i in range(256):
        j = (j + state[i] + key[i % len(key)]) % 256
        state[i], state[j] = state[j], state[i]
    out, i, j = bytearray(), 0, 0
    for byte in data:
        i = (i + 1) % 256
        j = (j + state[i]) % 256
        state[i], state[j] = state[j], state[i]
        out.append(byte ^ state[(state[i] + state[j]) % 256])
    return bytes(out)


def file_header():
    """No password, no encryption of pages: what says so is itself encrypted."""
    page = bytearray(PAGE)
    page[0:4] = b"\x00\x01\x00\x00"
    page[4:19] = b"Standard Jet DB"
    page[0x14] = 1
    page[0x18:0x18 + 128] = rc4(HEADER_KEY, bytes(128))
    return bytes(page)


def as_bytes(value, kind):
    if value is None:
        return b""
    if kind is TEXT:
        return value.encode("utf-16-le")
    return struct.pack({SMALL: "<h", INTEGER: "<i", DOUBLE: "<d"}[kind], value)


def row_of(columns, values):
    """Fixed values, varying ones, where those begin, and a bit for each value that is there."""
    fixed, varying, begins = b"", b"", []
    size_of_fixed = sum(kind[1] for _, kind in columns)
    for (_, kind), value in zip(columns, values):
        data = as_bytes(value, kind)
        if kind[1]:
            fixed += data.ljust(kind[1], b"\0")
        else:
            begins.append(2 + size_of_fixed + len(varying))
            varying += data
    begins.append(2 + size_of_fixed + len(varying))
    present = sum(1 << place for place, value in enumerate(values) if value is not None)
    return (struct.pack("<H", len(columns)) + fixed + varying
            + b"".join(struct.pack("<H", begin) for begin in reversed(begins))
            + struct.pack("<H", len(begins) - 1) + present.to_bytes((len(columns) + 7) // 8, "little"))


def data_page(owner, rows):
    """Rows stand at the page's end, the last one first."""
    page, places = bytearray(PAGE), []
    end = PAGE
    for row in rows:
        end -= len(row)
        page[end:end + len(row)] = row
        places.append(end)
    head = struct.pack("<BBHIIH", 1, 1, end - 14 - 2 * len(rows), owner, 0, len(rows))
    head += b"".join(struct.pack("<H", place) for place in places)
    if len(head) > end:
        raise ValueError("more rows than a page holds")
    page[:len(head)] = head
    return bytes(page)


def page_map(pages):
    """Which pages a table has: a bit for each page of the file."""
    return b"\x00" + struct.pack("<I", 0) + sum(1 << page for page in pages).to_bytes(64, "little")


def definition_page(columns, rows, map_row):
    varying = sum(1 for _, kind in columns if not kind[1])
    body = struct.pack("<IIIII", 0, rows, 0, 0, 0) + bytes(8) + struct.pack("<BHHHII", 0x4E, len(columns), varying,
                                                                           len(columns), 0, 0)
    body += struct.pack("<II", MAPS_PAGE << 8 | map_row, MAPS_PAGE << 8 | map_row + 1)
    fixed_offset = varying_number = 0
    for number, (_, (kind, size)) in enumerate(columns):
        body += struct.pack("<BIHHHIHIHH", kind, 0, number, 0 if size else varying_number, number, 0, 1 if size else 2,
                            0, fixed_offset if size else 0, size or 255)
        fixed_offset += size
        varying_number += 0 if size else 1
    for name, _ in columns:
        text = name.encode("utf-16-le")
        body += struct.pack("<H", len(text)) + text
    head = struct.pack("<BBHII", 2, 1, 0, 0, len(body) + 12)
    return (head + body).ljust(PAGE, b"\0")


def write(path, tables):
    """Makes the file. `tables`: name, columns (name and kind), rows of values; None is NULL."""
    first = CATALOG_PAGE + 2
    entries = [(first + 2 * number, name, OBJECT_TABLE, 0, None) for number, (name, _, _) in enumerate(tables)]
    maps, pages = [], []
    for number, (_, columns, rows) in enumerate([(*CATALOG, entries), *tables]):
        page = CATALOG_PAGE + 2 * number
        pages.append(definition_page(columns, len(rows), len(maps)))
        pages.append(data_page(page, [row_of(columns, row) for row in rows]))
        maps += [page_map([page + 1]), page_map([])]
    with open(path, "wb") as file:
        file.write(b"".join([file_header(), data_page(0, maps), *pages]))


if __name__ == "__main__":
    write(sys.argv[1], [("shop", [("Code", TEXT), ("Number", INTEGER), ("Price", DOUBLE)], [("01", 7, 9.9)])])
