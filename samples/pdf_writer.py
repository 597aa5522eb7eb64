"""Writes PDF syntax and file structures, byte for byte the same on every machine.

Values: Name, Ref, bytes (a literal string), str (a text string), int, float, bool, None, list, dict with plain
keys, Stream. Streams are never compressed: FlateDecode data is made of stored blocks, so no compressor's version
shows in the bytes.
"""

from zlib import adler32


class Name(str):
    """A PDF name, without its slash."""


class Ref(int):
    """A reference to generation 0 of an object."""


class Stream:
    """A stream object; `filters` are applied while writing, the last one first, as a reader expects them."""

    def __init__(self, entries, data, filters=()):
        self.entries = entries
        self.data = data
        self.filters = filters

    def encoded(self):
        data = self.data
        for name in reversed(self.filters):
            data = ENCODERS[name](data)
        return data


def stored_flate(data):
    out = bytearray(b"\x78\x01")
    chunks = [data[i : i + 0xFFFF] for i in range(0, len(data), 0xFFFF)] or [b""]
    for i, chunk in enumerate(chunks):
        size = len(chunk)
        out.append(1 if i + 1 == len(chunks) else 0)
        out += size.to_bytes(2, "little") + (size ^ 0xFFFF).to_bytes(2, "little") + chunk
    return bytes(out + adler32(data).to_bytes(4, "big"))


def ascii_hex(data):
    digits = data.hex().upper().encode()
    lines = [digits[i : i + 78] for i in range(0, len(digits), 78)]
    return b"\n".join(lines) + b">"


ENCODERS = {"FlateDecode": stored_flate, "ASCIIHexDecode": ascii_hex}


def png_up(data, columns):
    """PNG rows with filter type 2, as /Predictor 12 reads them."""
    out = bytearray()
    above = bytes(columns)
    for i in range(0, len(data), columns):
        row = data[i : i + columns]
        out.append(2)
        out += bytes((c - a) & 0xFF for c, a in zip(row, above))
        above = row
    return bytes(out)


def literal(data):
    out = bytearray(b"(")
    for c in data:
        if c in b"()\\":
            out += b"\\" + bytes([c])
        elif 32 <= c <= 126:
            out.append(c)
        else:
            out += b"\\%03o" % c
    return bytes(out + b")")


def text_string(text):
    if text.isascii():
        return literal(text.encode())
    return b"<FEFF" + text.encode("utf-16-be").hex().upper().encode() + b">"


def name_token(name):
    regular = b"!$&'*+,-.:;=?@^_`|~"
    raw = name.encode("utf-8")
    return b"/" + b"".join(bytes([c]) if c < 128 and chr(c).isalnum() or c in regular else b"#%02X" % c for c in raw)


def number(value):
    return ("%.3f" % value).rstrip("0").rstrip(".").encode()


def dump(value):
    """The bytes of a value; a stream is written with its data."""
    if isinstance(value, Stream):
        return dump_stream(value)
    if isinstance(value, dict):
        return b"<< " + b"".join(name_token(k) + b" " + dump(v) + b" " for k, v in value.items()) + b">>"
    if isinstance(value, list):
        return b"[" + b" ".join(dump(v) for v in value) + b"]"
    if value is None or isinstance(value, bool):
        return {None: b"null", True: b"true", False: b"false"}[value]
    if isinstance(value, Ref):
        return b"%d 0 R" % value
    if isinstance(value, (int, float)):
        return number(value)
    if isinstance(value, Name):
        return name_token(value)
    return literal(value) if isinstance(value, bytes) else text_string(value)


def dump_stream(stream):
    data = stream.encoded()
    entries = dict(stream.entries)
    if stream.filters:
        names = [Name(f) for f in stream.filters]
        entries["Filter"] = names[0] if len(names) == 1 else names
    entries["Length"] = len(data)
    return dump(entries) + b"\nstream\n" + data + b"\nendstream"


def runs(numbers):
    """Splits sorted numbers into (first, count) of consecutive ones."""
    out = []
    for n in sorted(numbers):
        if out and out[-1][0] + out[-1][1] == n:
            out[-1][1] += 1
        else:
            out.append([int(n), 1])
    return out


class Writer:
    """A file that grows by objects and is closed, section by section, with a table or a cross-reference stream."""

    FREE, PLAIN, PACKED = 0, 1, 2

    def __init__(self, version):
        self.out = bytearray(b"%%PDF-%s\n%%\xe2\xe3\xcf\xd3\n" % version.encode())
        self.entries = {0: (self.FREE, 0, 65535)}
        self.prev = None
        self.size = 1

    def put(self, num, value, gen=0):
        self.entries[num] = (self.PLAIN, len(self.out), gen)
        self.out += b"%d %d obj\n" % (num, gen) + dump(value) + b"\nendobj\n"

    def put_all(self, objects):
        for num in sorted(objects):
            self.put(num, objects[num])

    def free(self, num, next_free, gen):
        self.entries[num] = (self.FREE, next_free, gen)

    def pack(self, stream_num, objects, filters=(), extends=None):
        """Writes `objects` as one object stream, which is object `stream_num`."""
        head, body = b"", b""
        for index, num in enumerate(sorted(objects)):
            head += b"%d %d " % (num, len(body))
            body += dump(objects[num]) + b"\n"
            self.entries[num] = (self.PACKED, stream_num, index)
        entries = {"Type": Name("ObjStm"), "N": len(objects), "First": len(head)}
        if extends:
            entries["Extends"] = Ref(extends)
        self.put(stream_num, Stream(entries, head + body, filters))

    def end_table(self, trailer, hidden_by=None):
        """Closes the section with a table. Packed objects are left out; the stream `hidden_by` says where they are."""
        if hidden_by:
            packed = {n: e for n, e in self.entries.items() if e[0] == self.PACKED}
            trailer = dict(trailer, XRefStm=self._put_xref_stream(hidden_by, packed, {}))
        start = len(self.out)
        self.out += b"xref\n"
        for first, count in runs(n for n, e in self.entries.items() if e[0] != self.PACKED):
            self.out += b"%d %d\n" % (first, count)
            for num in range(first, first + count):
                kind, where, gen = self.entries[num]
                self.out += b"%010d %05d %s \n" % (where, gen, b"n" if kind == self.PLAIN else b"f")
        self.out += b"trailer\n" + dump(self._with_links(trailer))
        self._close(start)

    def end_stream(self, num, trailer):
        self._close(self._put_xref_stream(num, self.entries, self._with_links(trailer, num)))

    def _with_links(self, trailer, own_num=0):
        self.size = max(self.size, own_num + 1, max(self.entries) + 1)
        links = {"Size": self.size}
        if self.prev is not None:
            links["Prev"] = self.prev
        return dict(links, **trailer)

    def _put_xref_stream(self, num, entries, trailer):
        """Widths 1, 3 and 2, PNG predictor. Returns the stream's position."""
        start = len(self.out)
        self.entries[num] = (self.PLAIN, start, 0)
        entries = dict(entries)
        entries[num] = self.entries[num]
        rows = b""
        for n in sorted(entries):
            kind, where, last = entries[n]
            rows += bytes([kind]) + where.to_bytes(3, "big") + last.to_bytes(2, "big")
        head = {"Type": Name("XRef"), "Size": max(self.size, max(self.entries) + 1), "W": [1, 3, 2]}
        head["Index"] = [n for run in runs(entries) for n in run]
        head["DecodeParms"] = {"Predictor": 12, "Columns": 6}
        head.update(trailer)
        stream = Stream(head, png_up(rows, 6), ("FlateDecode",))
        self.out += b"%d 0 obj\n" % num + dump(stream) + b"\nendobj\n"
        return start

    def _close(self, start):
        self.out += b"\nstartxref\n%d\n%%%%EOF\n" % start
        self.prev = start
        self.entries = {}
