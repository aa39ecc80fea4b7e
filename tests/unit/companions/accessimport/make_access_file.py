#!/usr/bin/python3
"""Writes a database in Access's own format (Jet 4) from a JSON description.

No free program makes such files, so this one writes just what a reader needs: header, catalogue, table definitions,
usage maps, rows, long values on pages of their own, and the properties of columns (their captions).

    {"tables": [{"name": "tblPersons",
                 "columns": [{"name": "intPersonID", "type": "counter", "caption": "Name ID"},
                             {"name": "strPersonName", "type": "text", "size": 255}],
                 "rows": [[1, "Ann"], [2, null]]}]}

Types: counter long integer byte boolean currency single double date (ISO text) text memo ole.
"""
import datetime
import decimal
import json
import struct
import sys

PAGE = 4096
CODES = {"boolean": 1, "byte": 2, "integer": 3, "long": 4, "counter": 4, "currency": 5, "single": 6, "double": 7,
         "date": 8, "text": 10, "ole": 11, "memo": 12}
FIXED = {"byte": "<B", "integer": "<h", "long": "<i", "counter": "<i", "single": "<f", "double": "<d"}
SIZES = {"boolean": 1, "byte": 1, "integer": 2, "long": 4, "counter": 4, "currency": 8, "single": 4, "double": 8,
         "date": 8}


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


def utf16(text):
    return text.encode("utf-16-le")


class File:
    def __init__(self, password=""):
        self.pages = [self.header(password), b"\0" * PAGE]

    @staticmethod
    def header(password):
        page = bytearray(PAGE)
        page[0:4] = b"\0\1\0\0"
        page[4:20] = b"Standard Jet DB\0"
        page[0x14] = 1  # Jet 4
        hidden = bytearray(128)  # from 0x18 on
        struct.pack_into("<H", hidden, 0x3c - 0x18, 1252)
        hidden[0x42 - 0x18:0x42 - 0x18 + 40] = utf16(password)[:40].ljust(40, b"\0")
        struct.pack_into("<H", hidden, 0x6e - 0x18, 0x0409)
        page[0x18:0x98] = rc4(b"\xc7\xda\x39\x6b", bytes(hidden))
        return bytes(page)

    def reserve(self):
        self.pages.append(b"")
        return len(self.pages) - 1

    def rows_page(self, owner, records):
        """A page with rows; owner is the page of the table's definition or b"LVAL"."""
        page, end = bytearray(PAGE), PAGE
        page[0:2] = b"\1\1"
        page[4:8] = owner if isinstance(owner, bytes) else struct.pack("<i", owner)
        struct.pack_into("<H", page, 12, len(records))
        for n, record in enumerate(records):
            end -= len(record)
            page[end:end + len(record)] = record
            struct.pack_into("<H", page, 14 + 2 * n, end)
        assert end >= 14 + 2 * len(records), "rows do not fit"
        struct.pack_into("<H", page, 2, end - 14 - 2 * len(records))
        return bytes(page)

    def long_value(self, data):
        """The twelve bytes that lead to a text or object: on one page, or chained over several."""
        if not data:
            return struct.pack("<III", 0x80000000, 0, 0)
        if len(data) <= 3800:
            number = self.reserve()
            self.pages[number] = self.rows_page(b"LVAL", [data])
            return struct.pack("<III", len(data) | 0x40000000, number << 8, 0)
        following, pieces = 0, [data[n:n + 3800] for n in range(0, len(data), 3800)]
        for piece in reversed(pieces):
            number = self.reserve()
            self.pages[number] = self.rows_page(b"LVAL", [struct.pack("<I", following) + piece])
            following = number << 8
        return struct.pack("<III", len(data), following, 0)

    def fixed(self, kind, value):
        if value is None:
            return b"\0" * SIZES[kind]
        if kind == "currency":
            return struct.pack("<q", int((decimal.Decimal(str(value)) * 10000).to_integral_value()))
        if kind == "date":
            since = datetime.datetime.fromisoformat(value) - datetime.datetime(1899, 12, 30)
            return struct.pack("<d", since / datetime.timedelta(days=1))
        return struct.pack(FIXED[kind], value)

    def variable(self, kind, value):
        if value is None:
            return b""
        if kind == "text":
            return utf16(value)
        return self.long_value(utf16(value) if kind == "memo" else bytes.fromhex(value))

    def record(self, columns, values):
        count = len(columns)
        mask = bytearray((count + 7) // 8)
        fixed, variable, offsets = b"", b"", []
        for n, (column, value) in enumerate(zip(columns, values)):
            kind = column["type"]
            if value if kind == "boolean" else value is not None:
                mask[n // 8] |= 1 << n % 8
            if kind in SIZES:
                fixed += b"" if kind == "boolean" else self.fixed(kind, value)
        start = 2 + len(fixed)
        for column, value in zip(columns, values):
            if column["type"] not in SIZES:
                offsets.append(start + len(variable))
                variable += self.variable(column["type"], value)
        record = struct.pack("<H", count) + fixed + variable
        if offsets:
            record += struct.pack("<H", start + len(variable))
            record += b"".join(struct.pack("<H", offset) for offset in reversed(offsets))
            record += struct.pack("<H", len(offsets))
        return record + bytes(mask)

    def definition(self, columns, row_count, maps, system):
        variable = [c for c in columns if c["type"] not in SIZES]
        body = bytearray(63)
        body[0:2] = b"\2\1"
        struct.pack_into("<I", body, 16, row_count)
        body[40] = 0x53 if system else 0x4e
        struct.pack_into("<HHH", body, 41, len(columns), len(variable), len(columns))
        body[55:59] = bytes([0]) + struct.pack("<I", maps)[:3]
        body[59:63] = bytes([1]) + struct.pack("<I", maps)[:3]
        fixed_at = variable_at = 0
        for n, column in enumerate(columns):
            kind, entry = column["type"], bytearray(25)
            entry[0] = CODES[kind]
            struct.pack_into("<H", entry, 5, n)
            struct.pack_into("<H", entry, 7, variable_at)
            struct.pack_into("<H", entry, 9, n)
            entry[15] = (1 if kind in SIZES else 0) | 2 | (4 if kind == "counter" else 0)
            struct.pack_into("<H", entry, 21, fixed_at)
            size = SIZES.get(kind, 0) or (2 * column.get("size", 255) if kind == "text" else 0)
            struct.pack_into("<H", entry, 23, size)
            if kind not in SIZES:
                variable_at += 1
            elif kind != "boolean":
                fixed_at += SIZES[kind]
            body += entry
        for column in columns:
            name = utf16(column["name"])
            body += struct.pack("<H", len(name)) + name
        struct.pack_into("<I", body, 8, len(body))
        assert len(body) <= PAGE, "the definition does not fit"
        return bytes(body.ljust(PAGE, b"\0"))

    def table(self, columns, rows, page=None, system=False):
        page = self.reserve() if page is None else page
        maps = self.reserve()
        data_pages, waiting, size = [], [], 14
        for row in rows:
            record = self.record(columns, row)
            if size + len(record) + 2 > PAGE:
                data_pages.append(waiting)
                waiting, size = [], 14
            waiting.append(record)
            size += len(record) + 2
        data_pages.append(waiting)
        owned = bytearray(64)
        first = len(self.pages)
        for records in data_pages:
            number = self.reserve()
            self.pages[number] = self.rows_page(page, records)
            owned[(number - first) // 8] |= 1 << (number - first) % 8
        bitmap = b"\0" + struct.pack("<I", first) + bytes(owned)
        self.pages[maps] = self.rows_page(0, [bitmap, b"\0" + struct.pack("<I", first) + bytes(64)])
        self.pages[page] = self.definition(columns, len(rows), maps, system)
        return page


def properties(columns):
    """The captions, in the form in which the catalogue keeps properties."""
    captions = [(c["name"], c["caption"]) for c in columns if c.get("caption")]
    if not captions:
        return None
    name = utf16("Caption")
    names = struct.pack("<H", len(name)) + name
    blob = b"MR2\0" + struct.pack("<IH", 6 + len(names), 0x80) + names
    for column, caption in captions:
        title, text = utf16(column), utf16(caption)
        value = struct.pack("<HBBHH", 8 + len(text), 0, 10, 0, len(text)) + text
        head = struct.pack("<I", 6 + len(title)) + struct.pack("<H", len(title)) + title
        blob += struct.pack("<IH", 6 + len(head) + len(value), 1) + head + value
    return blob.hex()


def main():
    plan = json.load(sys.stdin)
    file = File(plan.get("password", ""))
    catalogue_page = file.reserve()
    catalogue = [[catalogue_page, 0, "MSysObjects", 1, -2147483648, None]]
    for table in plan["tables"]:
        page = file.table(table["columns"], table["rows"])
        catalogue.append([page, 0, table["name"], 1, 0, properties(table["columns"])])
    columns = [{"name": "Id", "type": "long"}, {"name": "ParentId", "type": "long"}, {"name": "Name", "type": "text"},
               {"name": "Type", "type": "integer"}, {"name": "Flags", "type": "long"},
               {"name": "LvProp", "type": "ole"}]
    file.table(columns, catalogue, catalogue_page, system=True)
    with open(sys.argv[1], "wb") as out:
        out.write(b"".join(file.pages))


if __name__ == "__main__":
    main()
