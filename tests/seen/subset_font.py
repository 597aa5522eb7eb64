"""Cuts a TrueType font down to the glyphs of a few characters, for cases whose fonts lack what a value needs."""

import struct
import subprocess
import zlib

from pdf_writer import Name, Stream

KEPT = ("cvt ", "fpgm", "head", "hhea", "hmtx", "maxp", "prep", "cmap")


class Subset:
    """The glyphs of `text` and no other; glyph numbers stay."""

    def __init__(self, family, text):
        self.file = subprocess.run(["fc-match", "-f", "%{file}", family], stdout=subprocess.PIPE, check=True).stdout
        with open(self.file, "rb") as font:
            self.data = font.read()
        count = struct.unpack_from(">H", self.data, 4)[0]
        entries = [struct.unpack_from(">4sLLL", self.data, 12 + 16 * i) for i in range(count)]
        self.tables = {tag.decode(): self.data[at : at + size] for tag, _, at, size in entries}
        self.scale = 1000 / struct.unpack_from(">H", self.tables["head"], 18)[0]
        glyphs = self.glyphs_by_character()
        self.glyphs = {c: glyphs[ord(c)] for c in text}
        self.widths = {c: round(self.advance(glyph) * self.scale) for c, glyph in self.glyphs.items()}

    def glyphs_by_character(self):
        """The segments of the cmap table's format 4 subtable."""
        cmap = self.tables["cmap"]
        for i in range(struct.unpack_from(">H", cmap, 2)[0]):
            at = struct.unpack_from(">L", cmap, 4 + 8 * i + 4)[0]
            if struct.unpack_from(">H", cmap, at)[0] == 4:
                break
        segments = struct.unpack_from(">H", cmap, at + 6)[0] // 2
        ends, starts, deltas, ranges = (at + 14 + 2 * segments * k + 2 * (k > 0) for k in range(4))
        found = {}
        for i in range(segments):
            bases = (ends, starts, deltas, ranges)
            end, start, delta, skip = (struct.unpack_from(">H", cmap, base + 2 * i)[0] for base in bases)
            for code in range(start, min(end, 0xFFFE) + 1):
                glyph = code
                if skip:
                    glyph = struct.unpack_from(">H", cmap, ranges + 2 * i + skip + 2 * (code - start))[0]
                found[code] = (glyph + delta) & 0xFFFF
        return found

    def advance(self, glyph):
        last = struct.unpack_from(">H", self.tables["hhea"], 34)[0] - 1
        return struct.unpack_from(">H", self.tables["hmtx"], 4 * min(glyph, last))[0]

    def program(self):
        """The font file: glyphs that are not kept are empty."""
        count = struct.unpack_from(">H", self.tables["maxp"], 4)[0]
        long = struct.unpack_from(">h", self.tables["head"], 50)[0]
        old = struct.unpack_from(">%d%s" % (count + 1, "L" if long else "H"), self.tables["loca"])
        kept, glyf, loca = {0, *self.glyphs.values()}, b"", []
        for glyph in range(count):
            loca.append(len(glyf))
            if glyph in kept:
                start, end = (place * (1 if long else 2) for place in old[glyph : glyph + 2])
                glyf += self.tables["glyf"][start:end]
        loca.append(len(glyf))
        places = struct.pack(">%d%s" % (count + 1, "L" if long else "H"), *(p if long else p // 2 for p in loca))
        tables = dict({tag: self.tables[tag] for tag in KEPT if tag in self.tables}, glyf=glyf, loca=places)
        head, body = struct.pack(">LHHHH", 0x10000, len(tables), 0, 0, 0), b""
        for tag in sorted(tables):
            head += struct.pack(">4sLLL", tag.encode(), 0, 12 + 16 * len(tables) + len(body), len(tables[tag]))
            body += tables[tag] + bytes(-len(tables[tag]) % 4)
        return head + body

    def descriptor(self, flags):
        program = self.program()
        data = Stream({"Filter": Name("FlateDecode"), "Length1": len(program)}, zlib.compress(program))
        box = {"FontBBox": [-200, -236, 1400, 928], "ItalicAngle": 0, "Ascent": 928, "Descent": -236, "CapHeight": 729}
        name = {"Type": Name("FontDescriptor"), "FontName": Name("SEENAA+Cut"), "Flags": flags, "StemV": 80}
        return dict(name, **box, FontFile2=data)

    def simple(self):
        """A TrueType font with WinAnsiEncoding; for characters of Latin-1."""
        codes = range(min(map(ord, self.widths)), max(map(ord, self.widths)) + 1)
        font = {"Type": Name("Font"), "Subtype": Name("TrueType"), "BaseFont": Name("SEENAA+Cut")}
        widths = [self.widths.get(chr(code), 0) for code in codes]
        codes = {"FirstChar": codes[0], "LastChar": codes[-1], "Widths": widths}
        return dict(font, **codes, Encoding=Name("WinAnsiEncoding"), FontDescriptor=self.descriptor(32))

    def composite(self):
        """A Type0 font with Identity-H and a ToUnicode map."""
        system = {"Registry": b"Adobe", "Ordering": b"Identity", "Supplement": 0}
        below = {"Type": Name("Font"), "Subtype": Name("CIDFontType2"), "BaseFont": Name("SEENAA+Cut"), "CIDSystemInfo": system}
        widths = [part for c, glyph in sorted(self.glyphs.items()) for part in (glyph, [self.widths[c]])]
        below = dict(below, W=widths, DW=600, CIDToGIDMap=Name("Identity"), FontDescriptor=self.descriptor(4))
        pairs = "".join("<%04X> <%04X>\n" % (glyph, ord(c)) for c, glyph in sorted(self.glyphs.items()))
        unicode_map = "/CIDInit /ProcSet findresource begin\n12 dict begin\nbegincmap\n/CMapName /Seen def\n/CMapType 2 def\n"
        unicode_map += "1 begincodespacerange\n<0000> <FFFF>\nendcodespacerange\n"
        unicode_map += f"{len(self.glyphs)} beginbfchar\n{pairs}endbfchar\nendcmap\nend\nend\n"
        font = {"Type": Name("Font"), "Subtype": Name("Type0"), "BaseFont": Name("SEENAA+Cut"), "Encoding": Name("Identity-H")}
        return dict(font, DescendantFonts=[below], ToUnicode=Stream({}, unicode_map.encode()))
