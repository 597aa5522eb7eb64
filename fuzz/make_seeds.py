#!/usr/bin/env python3
"""Writes the hostile and odd files of seeds/open_form and the small seeds of other targets: make_seeds.py [FOLDER].

Every tree_ file also holds the sound field "good" with the value "kept".
"""

import pathlib
import sys
from zlib import adler32

CATALOG = b"<</Type/Catalog/Pages 2 0 R/AcroForm 3 0 R>>"
GOOD = b"<</FT/Tx/T(good)/V(kept)>>"


# Flate with the fixed codes only, so that no compressor's version shows in the bytes.


class Bits:
    def __init__(self):
        self.out = bytearray()
        self.pending = 0
        self.count = 0

    def put(self, value, width):
        self.pending |= value << self.count
        self.count += width
        while self.count >= 8:
            self.out.append(self.pending & 255)
            self.pending >>= 8
            self.count -= 8

    def code(self, value, width):
        self.put(int(format(value, "0%db" % width)[::-1], 2), width)

    def symbol(self, n):
        if n < 144:
            self.code(0x30 + n, 8)
        elif n < 256:
            self.code(0x190 + n - 144, 9)
        elif n < 280:
            self.code(n - 256, 7)
        else:
            self.code(0xC0 + n - 280, 8)

    def finish(self):
        self.put(0, -self.count % 8)
        return bytes(self.out)


def slots(first, extras):
    """(lowest value, extra bits) by code."""
    out = []
    for extra in extras:
        out.append((first, extra))
        first += 1 << extra
    return out


LENGTHS = slots(3, [0] * 8 + [e for e in range(1, 6) for _ in range(4)])[:-1] + [(227, 5), (258, 0)]
DISTANCES = slots(1, [0] * 4 + [e for e in range(1, 14) for _ in range(2)])


def put_slot(bits, table, value, put_code):
    code = max(i for i, (low, _) in enumerate(table) if low <= value)
    put_code(code)
    bits.put(value - table[code][0], table[code][1])


def put_match(bits, length, distance):
    put_slot(bits, LENGTHS, length, lambda code: bits.symbol(257 + code))
    put_slot(bits, DISTANCES, distance, lambda code: bits.code(code, 5))


def match_at(data, i, j):
    length = 0
    while length < 258 and i + length < len(data) and data[i + length] == data[j + length]:
        length += 1
    return length


def flate(data):
    bits, seen, i = Bits(), {}, 0
    bits.put(3, 3)
    while i < len(data):
        j = seen.get(data[i : i + 3], -40000)
        length = match_at(data, i, j) if i - j <= 32768 else 0
        if length >= 3:
            put_match(bits, length, i - j)
        else:
            bits.symbol(data[i])
            length = 1
        for k in range(i, i + min(length, 32)):
            seen[data[k : k + 3]] = k
        i += length
    bits.symbol(256)
    return b"\x78\x01" + bits.finish() + adler32(data).to_bytes(4, "big")


def stored(data):
    size = len(data).to_bytes(2, "little")
    return b"\x78\x01\x01" + size + bytes(c ^ 255 for c in size) + data + adler32(data).to_bytes(4, "big")


def flate_zeros(size):
    """The start of a Flate stream of about `size` zeros; its end is missing."""
    bits = Bits()
    bits.put(3, 3)
    bits.symbol(0)
    for _ in range(24):
        put_match(bits, 258, 1)
    period = bytes(bits.out[13:26])  # eight matches of 13 bits
    return b"\x78\x01" + bytes(bits.out[:13]) + period * (size // (8 * 258))


# Files


def stream(data, entries=b"", length=None):
    return b"<</Length %d%s>>stream\n%s\nendstream" % (len(data) if length is None else length, entries, data)


def packed_stream(objects, entries=b"", filters=None):
    """An object stream; `filters` gives (encoded, entries) for its bytes."""
    head, body = b"", b""
    for num, value in objects:
        head += b"%d %d " % (num, len(body))
        body += value + b" "
    data, more = filters(head + body) if filters else (head + body, b"")
    return stream(data, b"/Type/ObjStm/N %d/First %d" % (len(objects), len(head)) + entries + more)


def as_flate(data):
    return flate(data), b"/Filter/FlateDecode"


def as_flate_twice(data):
    return flate(flate(data)), b"/Filter[/FlateDecode/FlateDecode]"


class File:
    def __init__(self, objects):
        self.out = b"%PDF-1.7\n"
        self.offsets = {}
        for num, value in objects.items():
            self.put(num, value)

    def put(self, num, value):
        self.offsets[num] = len(self.out)
        self.out += b"%d 0 obj\n%s\nendobj\n" % (num, value)

    def table(self, trailer=b"/Root 1 0 R", start=None, more=0):
        """Adds table, trailer and startxref; `trailer` may hold %d for the table's own position. `more`: numbers
        that only another section knows."""
        own = len(self.out)
        size = max(self.offsets) + 1
        self.out += b"xref\n0 %d\n0000000000 65535 f \n" % size
        for n in range(1, size):
            at = self.offsets.get(n)
            self.out += b"0000000000 00000 f \n" if at is None else b"%010d 00000 n \n" % at
        self.out += b"trailer<</Size %d%s>>\n" % (size + more, trailer % own if b"%d" in trailer else trailer)
        return self.end(own if start is None else start)

    def end(self, start):
        self.out += b"startxref\n%s\n%%%%EOF\n" % (start if isinstance(start, bytes) else b"%d" % start)
        return self.out

    def xref_stream(self, num, packed=(), entries=None, extra=b""):
        """Adds a cross-reference stream, widths 1 2 1. `packed`: (number, stream, index)."""
        self.offsets[num] = len(self.out)
        size = max(max(self.offsets), *[n for n, _, _ in packed], 0) + 1
        rows = [b"\0\0\0\0"] * size
        for n, at in self.offsets.items():
            rows[n] = b"\1" + at.to_bytes(2, "big") + b"\0"
        for n, where, index in packed:
            rows[n] = b"\2" + where.to_bytes(2, "big") + bytes([index])
        if entries is None:
            entries = b"/Size %d/W[1 2 1]" % size
        data, more = b"".join(rows), b""
        if size > 100:
            up = bytes([0] * 4) + data[:-4]
            data = b"".join(b"\2" + bytes((c - a) & 255 for c, a in zip(data[i : i + 4], up[i : i + 4]))
                            for i in range(0, len(data), 4))
            data, more = as_flate(data)
            more += b"/DecodeParms<</Predictor 12/Columns 4>>"
        self.out += b"%d 0 obj\n%s\nendobj\n" % (num, stream(data, b"/Type/XRef/Root 1 0 R" + entries + extra + more))
        return self.end(self.offsets[num])


def form(fields, objects=None, **more):
    """The objects of a form; `more`: form (entries of the form dictionary), catalog."""
    out = {1: more.get("catalog", CATALOG), 2: b"<</Type/Pages/Kids[]/Count 0>>"}
    out[3] = b"<</Fields%s%s>>" % (fields, more.get("form", b""))
    out[4] = GOOD
    out.update(objects or {})
    return out


def plain(fields=b"[4 0 R]", objects=None, **more):
    return File(form(fields, objects, **more)).table()


# Field trees


def deep_tree(levels):
    """A chain of fields in one object stream."""
    numbers = range(10, 10 + levels)
    chain = [(n, b"<</T(a)/Kids[%d 0 R]>>" % (n + 1)) for n in numbers[:-1]] + [(numbers[-1], b"<</FT/Tx/T(z)>>")]
    file = File(form(b"[10 0 R 4 0 R]", {5: packed_stream(chain, filters=as_flate)}))
    return file.xref_stream(6, [(n, 5, i & 255) for i, n in enumerate(numbers)])


def trees():
    def tree(first, objects):
        return plain(b"[%s 4 0 R]" % first, objects)

    odd = b"/Ff -1/MaxLen 99999999999/V<</A 1>>/DV[[[]]]/I[9 -1 (x)]/Opt[(a)[(b)][(c)(d)(e)]7[]null 4 0 R]/Q 1e999"
    return {
        "tree_kids_cycle": tree(b"5 0 R", {5: b"<</T(a)/Kids[6 0 R]>>", 6: b"<</T(b)/Parent 5 0 R/Kids[5 0 R]>>"}),
        "tree_self_kid": tree(b"5 0 R", {5: b"<</T(a)/Parent 5 0 R/Kids[5 0 R]>>"}),
        "tree_same_kid_twice": tree(
            b"5 0 R 5 0 R", {5: b"<</T(a)/Kids[6 0 R 6 0 R]>>", 6: b"<</FT/Tx/T(b)/Parent 5 0 R>>"}
        ),
        "tree_wrong_parent": tree(
            b"5 0 R", {5: b"<</FT/Tx/T(a)/Kids[6 0 R 7 0 R]>>", 6: b"<</T(b)/Parent 4 0 R>>", 7: b"<</T(c)/Parent 9>>"}
        ),
        "tree_null_kids": tree(
            b"5 0 R null 98 0 R", {5: b"<</T(a)/Kids[null 99 0 R 7 (s) 6 0 R 0 0 R]>>", 6: b"<</FT/Tx/T(b)>>"}
        ),
        "tree_deep": deep_tree(200),
        "tree_direct_field": tree(
            b"<</FT/Tx/T(direct)/V(x)>> 5 0 R", {5: b"<</T(a)/Kids[<</FT/Ch/T(b)>>]>>"}
        ),
        "tree_no_type": tree(
            b"5 0 R 6 0 R 7 0 R", {5: b"<</T(a)/V(x)>>", 6: b"<</Kids[<</Subtype/Widget>>]>>", 7: b"<</FT/Zz/T()>>"}
        ),
        "tree_dotted_names": tree(
            b"5 0 R 6 0 R",
            {5: b"<</FT/Tx/T(a.b)>>", 6: b"<</T(a)/Kids[7 0 R]>>", 7: b"<</FT/Tx/T(b)/Kids[8 0 R]>>", 8: b"<</T(.)>>"},
        ),
        "tree_same_names": tree(b"5 0 R 6 0 R", {5: b"<</FT/Tx/T(a)/V(1)>>", 6: b"<</FT/Btn/T(a)/V/Off/AP 4 0 R>>"}),
        "tree_odd_entries": tree(
            b"5 0 R 6 0 R 7 0 R",
            {5: b"<</FT/Ch/T 7%s>>" % odd, 6: b"<</FT/Tx/T[(a)]%s>>" % odd, 7: b"<</FT(Btn)/T<FEFFD800>%s>>" % odd},
        ),
        "tree_kids_no_array": tree(b"5 0 R 6 0 R", {5: b"<</T(a)/Kids 6 0 R>>", 6: b"<</T(b)/Kids(x)/FT/Tx>>"}),
    }


# Cross-reference sections


def prev_loop():
    file = File(form(b"[4 0 R 9 0 R]"))
    first = len(file.out)
    file.table(b"/Root 1 0 R/Prev %d" % (first + 400))
    file.out = file.out.ljust(first + 400)
    return file.table(b"/Root 1 0 R/Prev %d" % first)


def hybrid(listed_free):
    """A table whose XRefStm leads to field 7. With `listed_free` the table has it as a free object."""
    file = File(form(b"[4 0 R 7 0 R]"))
    file.put(5, packed_stream([(7, b"<</FT/Tx/T(hidden)>>")]))
    file.xref_stream(6, [(7, 5, 0)])
    at = file.offsets[6]
    if listed_free:
        file.offsets[7] = None
    return file.table(b"/Root 1 0 R/XRefStm %d" % at, more=0 if listed_free else 1)


def xref_section(rows):
    """A file whose table is `rows`."""
    file = File(form(b"[4 0 R]"))
    at = len(file.out)
    file.out += b"xref\n" + rows + b"\ntrailer<</Root 1 0 R/Size 5>>\n"
    return file.end(at)


def wrong_object():
    file = File(form(b"[4 0 R 5 0 R 6 0 R]", {5: b"<</FT/Tx/T(five)>>", 6: b"<</FT/Tx/T(six)>>"}))
    file.offsets[5], file.offsets[6] = file.offsets[6], file.offsets[2] + 3
    return file.table()


def packed_in(streams, packed):
    """A file with object streams under 5 and up, and the cross-reference stream 9."""
    return File(form(b"[4 0 R 7 0 R 5 0 R]", streams)).xref_stream(9, packed)


def xrefs():
    hidden = (7, b"<</FT/Tx/T(seven)>>")
    return {
        "xref_prev_loop": prev_loop(),
        "xref_prev_self": File(form(b"[4 0 R 9 0 R]")).table(b"/Root 1 0 R/Prev %d"),
        "xref_hybrid_self": File(form(b"[4 0 R 9 0 R]")).table(b"/Root 1 0 R/XRefStm %d"),
        "xref_hybrid": hybrid(False),
        "xref_hybrid_listed_free": hybrid(True),
        "xref_start_past_end": File(form(b"[4 0 R]")).table(start=b"99999999999999999999"),
        "xref_start_in_object": File(form(b"[4 0 R]")).table(start=20),
        "xref_start_word": File(form(b"[4 0 R]")).table(start=b"-banana"),
        "xref_size_huge": File(form(b"[4 0 R]")).xref_stream(
            5, entries=b"/Size 2147483648/W[1 2 1]/Index[0 6 2147483640 7]"
        ),
        "xref_count_huge": xref_section(b"0 4294967295\n0000000000 65535 f \n0000000009 00000 n "),
        "xref_count_negative": xref_section(b"0 -1\n0000000009 00000 n \n-5 5\n0000000009 00000 n "),
        "xref_widths_8": File(form(b"[4 0 R]")).xref_stream(5, entries=b"/Size 6/W[8 8 8]"),
        "xref_widths_0": File(form(b"[4 0 R]")).xref_stream(5, entries=b"/Size 2000000000/W[0 0 0]"),
        "xref_widths_bad": File(form(b"[4 0 R]")).xref_stream(5, entries=b"/Size 6/W[-1 2147483647 (x)]"),
        "xref_wrong_object": wrong_object(),
        "objstm_in_itself": packed_in({}, [(7, 7, 0), (5, 6, 0), (6, 5, 0)]),
        "objstm_holds_itself": packed_in({5: packed_stream([(5, b"null"), hidden])}, [(7, 5, 1)]),
        "objstm_extends_loop": packed_in(
            {5: packed_stream([hidden], b"/Extends 6 0 R"), 6: packed_stream([(8, b"1")], b"/Extends 5 0 R")},
            [(7, 6, 5), (8, 5, 0)],
        ),
        "objstm_counts_huge": packed_in(
            {5: stream(b"7 0 <</FT/Tx/T(a)>>", b"/Type/ObjStm/N 2147483647/First 2147483647")}, [(7, 5, 0)]
        ),
    }


# Streams and filters; object 7 is the field in the stream


def coded(data, entries, length=None):
    body = stream(data, b"/Type/ObjStm/N 1/First 4" + entries, length)
    return packed_in({5: body}, [(7, 5, 0)])


def garbage(size):
    """Bytes of a linear generator."""
    state, out = 1, bytearray()
    for _ in range(size):
        state = (state * 1103515245 + 12345) & 0x7FFFFFFF
        out.append(state >> 16 & 255)
    return bytes(out)


def zero_bomb():
    return flate(flate(flate_zeros(300 << 20)))


def streams():
    data = b"7 0 <</FT/Tx/T(seven)>>"
    often = data
    for _ in range(50):
        often = stored(often)
    columns = b"/DecodeParms<</Predictor 12/Columns 2147483647/Colors 2147483647/BitsPerComponent 16>>"
    cut = File(form(b"[4 0 R 5 0 R]", {5: stream(data)}))
    cut.out = cut.out[: cut.out.rindex(b"\nendstream")]
    return {
        "stream_length_short": coded(data, b"", 5),
        "stream_length_long": coded(data, b"", 99999999),
        "stream_length_own": packed_in(
            {5: b"<</Length 5 0 R/Type/ObjStm/N 1/First 4>>stream\n%s\nendstream" % data}, [(7, 5, 0)]
        ),
        "stream_no_endstream": cut.table(),
        "flate_garbage": coded(garbage(200), b"/Filter/FlateDecode"),
        "flate_cut": coded(flate(data * 20)[:30], b"/Filter/FlateDecode"),
        "flate_bomb": coded(zero_bomb(), b"/Filter[/FlateDecode/FlateDecode/FlateDecode]"),
        "predictor_columns": coded(flate(data), b"/Filter/FlateDecode" + columns),
        "lzw_garbage": coded(garbage(400), b"/Filter/LZWDecode/DecodeParms<</EarlyChange 0>>"),
        "filters_50": coded(often, b"/Filter[" + b"/FlateDecode" * 50 + b"]"),
    }


# Objects and catalogs


def rootless():
    return File(form(b"[4 0 R]")).table(b"")


def objects():
    loop = {5: b"6 0 R", 6: b"5 0 R"}
    keys = {1: CATALOG, 2: b"<</Type/Pages/Kids[]/Count 0>>", 4: GOOD}
    keys[3] = b"<</Fields[9 0 R]/Fields[4 0 R 5 0 R]/Fields null/Fields[4 0 R 5 0 R]>>"
    keys[5] = b"<</FT/Tx/FT/Ch/T(a)/T(b)/T(c)/V 1/V(2)/>>"
    nested = packed_stream([(7, b"[<</A" * 100000)], filters=as_flate_twice)
    return {
        "object_ref_loop": plain(b"[4 0 R 5 0 R 7 0 R]", {**loop, 7: b"<</FT 5 0 R/T 5 0 R/V 6 0 R/Kids 5 0 R>>"}),
        "object_fields_loop": plain(b" 5 0 R", loop),
        "object_nested": plain(b"[4 0 R 5 0 R]", {5: b"<</FT/Tx/T(a)/V" + b"[" * 2400}),
        "object_nested_packed": packed_in({5: nested}, [(7, 5, 0)]),
        "object_duplicate_keys": File(keys).table(),
        "catalog_none": rootless(),
        "catalog_number": File(form(b"[4 0 R]")).table(b"/Root 17"),
        "catalog_missing": File(form(b"[4 0 R]")).table(b"/Root 99 0 R"),
        "catalog_form_array": plain(catalog=b"<</Type/Catalog/Pages 2 0 R/AcroForm[3 0 R 4 0 R]>>"),
        "catalog_form_itself": plain(catalog=b"<</Type/Catalog/Pages 1 0 R/AcroForm 1 0 R/Fields[1 0 R 4 0 R]>>"),
        "catalog_fields_string": plain(b"(4 0 R)", form=b"/DR[4 0 R]/DA 7/SigFlags(x)"),
    }


# XFA packets


LAUGHS = b"<?xml version='1.0'?><!DOCTYPE template [<!ENTITY a0 'ha'>%s<!ENTITY x SYSTEM 'file:///nowhere'>]>\n"


def laughs():
    levels = b"".join(b"<!ENTITY a%d '%s'>" % (i, b"&a%d;" % (i - 1) * 10) for i in range(1, 11))
    field = b"<field name='good'><event><submit target='&a10;&x;'/></event></field>"
    return LAUGHS % levels + b"<template><subform name='&a10;'>" + field + b"&a10;</subform></template>"


def xfa(packet, array=b"[(template)5 0 R(datasets)6 0 R]"):
    return plain(objects={5: packet, 6: stream(b"<a/>")}, form=b"/XFA" + array)


def packets():
    deep = as_flate_twice(b"<template>" + b"<subform>" * 100000)
    event = b"<template><subform name='%s'><field name='good'><event><submit target='t'/></event></field></subform>"
    return {
        "xfa_entity_bomb": xfa(stream(laughs())),
        "xfa_deep_template": xfa(stream(*deep)),
        "xfa_long_path": xfa(stream(event % (b"n" * 300) + b"</template>")),
        "xfa_cut_template": xfa(stream((event % b"s")[:60])),
        "xfa_odd_array": xfa(b"5 0 R", b"[(template)5 0 R 7 6 0 R(datasets)(datasets)null]"),
        "xfa_stream": xfa(stream(b"<xdp><template/></xdp>"), b" 5 0 R"),
    }


# Seeds of other targets


def every_kind():
    """A form with fields of all kinds in a group and beside it, on a page."""
    objects = {
        2: b"<</Type/Pages/Kids[20 0 R]/Count 1>>",
        5: b"<</T(g)/Kids[6 0 R 7 0 R]>>",
        6: b"<</Type/Annot/Subtype/Widget/FT/Tx/T(a)/V(x)/DV(d)/MaxLen 9/Rect[9 9 99 29]/Parent 5 0 R>>",
        7: b"<</Type/Annot/Subtype/Widget/FT/Ch/T(b)/Opt[(x)[(y)(z)]]/Ff 131072/Rect[9 39 99 59]/Parent 5 0 R>>",
        8: b"<</Type/Annot/Subtype/Widget/FT/Btn/T(c)/AP<</N<</Yes null>>>>/Rect[9 69 19 79]>>",
        9: b"<</FT/Btn/T(r)/Ff 32768/Kids[10 0 R 11 0 R]>>",
        10: b"<</Type/Annot/Subtype/Widget/AP<</N<</A null>>>>/Rect[9 89 19 99]/Parent 9 0 R>>",
        11: b"<</Type/Annot/Subtype/Widget/AP<</N<</B null>>>>/Rect[29 89 39 99]/Parent 9 0 R>>",
        12: b"<</Type/Annot/Subtype/Widget/FT/Ch/T(l)/Opt[(p)(q)]/Ff 2097152/I[0]/V(p)/Rect[9 109 99 149]>>",
        13: b"<</Type/Annot/Subtype/Widget/FT/Sig/T(s)/Rect[0 0 0 0]>>",
        20: b"<</Type/Page/Parent 2 0 R/MediaBox[0 0 200 200]/Annots[6 0 R 7 0 R 8 0 R 10 0 R 11 0 R 12 0 R 13 0 R]>>",
    }
    return plain(b"[4 0 R 5 0 R 8 0 R 9 0 R 12 0 R 13 0 R]", objects, form=b"/DA(/Helv 0 Tf 0 g)")


def changes():
    """Rows of changes behind a form, see edit_form_fuzz.cpp."""
    return {
        "add": [0, 4, 0, 1, 3, 4, 0, 0, 3, 3, 1, 2, 1, 5, 6, 0, 0, 5, 4, 1, 9, 3, 16, 1, 65],
        "remove": [1, 1, 1, 1, 1, 0, 1, 0],
        "rename": [2, 1, 0, 2, 2, 4, 2, 3, 8, 2, 46, 120],
        "move": [3, 1, 1, 4, 3, 2, 0, 3, 5, 1, 1],
        "change": [4, 2, 5, 0, 16, 0, 0, 2, 4, 3, 24, 1, 120, 1, 121, 6, 2, 7],
        "flatten": [6, 2, 3, 8, 1, 8, 255, 0, 4, 0, 1, 3, 4, 0],
    }


def filter_seeds():
    text = b"stream data, stream data"
    rows = b"\2" + bytes(range(8)) + b"\2" + bytes(8)
    return {
        "none": b"\0" + text,
        "flate": b"\x81\0" + flate(text),
        "flate_up": b"\x41\0\3\0\4\x08\1" + flate(rows),
        "lzw": b"\x41\1\0\0\4\1\1\x80\x0b\x60\x50\x22\x0c\x0c\x85\x01",
        "hex": b"\1\2" + text.hex().encode() + b">",
        "ascii85": b"\1\3" + b"F)Po,+Cno&F)Po,+Cno&~>",
        "run_length": b"\1\4\2abc\xfed\x80",
        "hex_flate": b"\2\2\0" + flate(text).hex().encode() + b">",
        "bomb": b"\2\0\0" + flate(flate_zeros(1 << 20)),
    }


def texts():
    data = b"<xfa:datasets xmlns:xfa='u'><xfa:data><form1><a>old</a></form1></xfa:data></xfa:datasets>"
    return {
        "json/all": b'{"t":"text","g.t":12,"c":"shown","l":["a","c"],"b":true,"none":null}',
        "json/escapes": b'\xef\xbb\xbf{"t":"\\u00e9\\ud83d\\ude00\\n\\u0000","l":[],"g.t":-0.5e1}',
        "csv/all": b"t,g.t,c,l,b\r\ntext,12,shown,a,Yes\r\n",
        "csv/quotes": b'\xef\xbb\xbf"t","g.t"\n"a ""b""\r\n,",\n\n',
        "csv/found_mark": b"\r\xfe\xfft",
        "xfa_data/packets": b"\0" + data,
        "xfa_data/bound": b"\1<x><template><subform name='form1'><field name='a'><bind match='global'/></field><subform name='r'><occur "
                          b"max='-1'/><bind match='dataRef' ref='$.r[*]'/></subform><field name='b'><bind match='dataRef' "
                          b"ref='$record.c.d[1]'/></field></subform></template>" + data + b"</x>",
        "xfa_data/one": b"\1<?xml version='1.0'?><xdp:xdp xmlns:xdp='u'><template/>" + data + b"</xdp:xdp>",
        "syntax/dict": b"<</V(old)/RV<</A[1 0 R -1.50 .0]>>/T<FEFF00E9>/Kids[null true]/FT/T#78>>",
        "syntax/gaps": b"<< /A 1% c\n2/V ( (x) \\) \\053 \\\n)/B/ /C[1 0 R 2 0R 3. 0 R]>>",
        "draw_widget/text": b"\1\0\x64\0\x14\0\0\1\0\0\0\2\0\0\0\3\1\1\1\x10/Helv 9 Tf 0.5 g\1\5abcde",
        "draw_widget/list": b"\1\5\x64\0\x40\0\1\1\0\1\0\0\0\0\x0e/F 0 Tf 1 0 g \0\0\0\0\3\2ab\2cd\2ef\1\1\0",
    }


def more():
    out = {"edit_form/" + name: every_kind() + bytes(row) for name, row in changes().items()}
    out.update({"filters/" + name: data for name, data in filter_seeds().items()})
    out["fill_form/every_kind"] = every_kind()
    for factor in (41, 73, 97):  # any calls
        out["c_interface/calls_%d" % factor] = every_kind() + bytes(factor * i * (i + 1) % 256 for i in range(300))
    out["edit_form/found_endless_string"] = plain(b"[4 0 R 5 0 R]", {5: b"<</FT/Tx/T(endless"})
    out.update(texts())
    return out


def main():
    folder = pathlib.Path(sys.argv[1]) if len(sys.argv) > 1 else pathlib.Path(__file__).parent / "seeds"
    files = more()
    for group in trees(), xrefs(), streams(), objects(), packets():
        files.update({"open_form/%s.pdf" % name: data for name, data in group.items()})
    for name, data in files.items():
        path = folder / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(data)


main()
