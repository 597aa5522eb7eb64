"""Builds pages with form fields on them: page text, widgets, and appearance streams that viewers show as they are."""

from pdf_writer import Name, Ref, Stream, literal

PAGE_WIDTH, PAGE_HEIGHT = 595, 842
LEFT, FIELD_LEFT = 56, 190

READ_ONLY, REQUIRED, MULTILINE, PASSWORD = 1 << 0, 1 << 1, 1 << 12, 1 << 13
NO_TOGGLE_OFF, RADIO, PUSH = 1 << 14, 1 << 15, 1 << 16
COMBO, EDIT, MULTI_SELECT, COMB = 1 << 17, 1 << 18, 1 << 21, 1 << 24
PRINT, HIDDEN = 4, 2

# Helvetica, characters 32 to 126, in thousandths of the font size.
WIDTHS = (
    [278, 278, 355, 556, 556, 889, 667, 191, 333, 333, 389, 584, 278, 333, 278, 278]
    + [556] * 10
    + [278, 278, 584, 584, 584, 556, 1015, 667, 667, 722, 722, 667, 611, 778, 722, 278, 500, 667, 556, 833, 722]
    + [778, 667, 778, 722, 667, 611, 722, 667, 944, 667, 667, 611, 278, 278, 278, 469, 556, 333]
    + [556, 556, 500, 556, 556, 278, 556, 556, 222, 222, 500, 222, 833, 556, 556, 556, 556, 333, 500, 278]
    + [556, 500, 722, 500, 500, 500, 334, 260, 334, 584]
)

BORDER, FILL = [0.55, 0.6, 0.68], [0.95, 0.97, 1]


def text_width(text, size):
    return sum(WIDTHS[ord(c) - 32] if 32 <= ord(c) <= 126 else 556 for c in text) * size / 1000


def show(x, y, size, text, font="Helv"):
    return b"BT /%s %g Tf %g %g Td %s Tj ET\n" % (font.encode(), size, x, y, literal(text.encode("cp1252")))


def box(width, height, fill=None, border=None):
    colour = b"%g %g %g "
    return (
        colour % tuple(fill or FILL) + b"rg 0 0 %g %g re f\n" % (width, height)
        + colour % tuple(border or BORDER) + b"RG 0.75 w 0.5 0.5 %g %g re S\n" % (width - 1, height - 1)
    )


def circle(width):
    r, k = width / 2 - 0.75, (width / 2 - 0.75) * 0.5523
    c = width / 2
    curve = b"%g %g %g %g %g %g c\n"
    return (
        b"%g %g %g rg %g %g %g RG 0.75 w\n" % (*FILL, *BORDER) + b"%g %g m\n" % (c + r, c)
        + curve % (c + r, c + k, c + k, c + r, c, c + r) + curve % (c - k, c + r, c - r, c + k, c - r, c)
        + curve % (c - r, c - k, c - k, c - r, c, c - r) + curve % (c + k, c - r, c + r, c - k, c + r, c) + b"b\n"
    )


def marked(content, width, height):
    return b"/Tx BMC\nq 1 1 %g %g re W n 0 g\n" % (width - 2, height - 2) + content + b"Q\nEMC\n"


class Page:
    """One A4 page, filled from the top by rows."""

    def __init__(self, form, title):
        self.form = form
        self.ref = form.reserve()
        self.annots = []
        self.y = PAGE_HEIGHT - 64
        self.content = b"0.13 0.2 0.33 rg\n" + show(LEFT, self.y, 16, title, "Bold")

    def heading(self, text):
        self.y -= 34
        self.content += b"0.13 0.2 0.33 rg\n" + show(LEFT, self.y, 11, text, "Bold")
        self.content += b"0.75 0.79 0.85 RG 0.75 w %g %g m %g %g l S\n" % (LEFT, self.y - 5, 540, self.y - 5)
        self.y -= 8

    def row(self, label, height=18, width=250):
        """Writes a label and returns the rectangle beside it."""
        self.y -= height + 8
        baseline = self.y + (height / 2 - 3.5 if height <= 24 else height - 14)
        self.content += b"0.2 g\n" + show(LEFT, baseline, 10, label)
        return [FIELD_LEFT, self.y, FIELD_LEFT + width, self.y + height]

    def beside(self, x, text, size=9):
        """Writes a small remark on the current row."""
        self.content += b"0.4 g\n" + show(x, self.y + 4, size, text)

    def finish(self):
        fonts = {"Helv": self.form.helv, "Bold": self.form.bold}
        page = {"Type": Name("Page"), "Parent": self.form.pages_ref, "MediaBox": [0, 0, PAGE_WIDTH, PAGE_HEIGHT]}
        page["Resources"] = {"Font": fonts}
        page["Contents"] = self.form.add(Stream({}, self.content))
        if self.annots:
            page["Annots"] = self.annots
        self.form.objects[self.ref] = page


class Form:
    """A document with a form: its objects by number."""

    def __init__(self, title):
        self.objects = {}
        self.fields = []
        self.pages = []
        self.acro_form = {}
        self.root, self.info, self.pages_ref = self.reserve(), self.reserve(), self.reserve()
        self.form_ref = self.reserve()
        self.objects[self.info] = {"Title": title, "CreationDate": "D:20260101120000Z"}
        font = {"Type": Name("Font"), "Subtype": Name("Type1")}
        latin = {"Encoding": Name("WinAnsiEncoding")}
        self.helv = self.add(dict(font, BaseFont=Name("Helvetica"), **latin))
        self.bold = self.add(dict(font, BaseFont=Name("Helvetica-Bold"), **latin))
        self.zadb = self.add(dict(font, BaseFont=Name("ZapfDingbats")))

    def reserve(self):
        ref = Ref(len(self.objects) + 1)
        self.objects[ref] = None
        return ref

    def add(self, value):
        ref = self.reserve()
        self.objects[ref] = value
        return ref

    def page(self, title):
        page = Page(self, title)
        self.pages.append(page)
        return page

    def finish(self, has_form=True):
        for page in self.pages:
            page.finish()
        kids = [p.ref for p in self.pages]
        self.objects[self.pages_ref] = {"Type": Name("Pages"), "Kids": kids, "Count": len(kids)}
        self.objects[self.root] = {"Type": Name("Catalog"), "Pages": self.pages_ref}
        if not has_form:
            del self.objects[self.form_ref]
            return self.objects
        self.objects[self.root]["AcroForm"] = self.form_ref
        form = {"Fields": self.fields, "DR": {"Font": {"Helv": self.helv, "ZaDb": self.zadb}}, "DA": "/Helv 10 Tf 0 g"}
        self.objects[self.form_ref] = dict(form, **self.acro_form)
        return self.objects

    def trailer(self):
        ident = b"formwork sample " + b"%04d" % len(self.objects)
        return {"Root": self.root, "Info": self.info, "ID": [ident, ident]}

    # Fields and widgets

    def field(self, entries, parent=None):
        """Adds a field or a widget below `parent`, a reference, or at the top."""
        ref = self.add(dict(entries))
        if parent is None:
            self.fields.append(ref)
        else:
            self.objects[ref]["Parent"] = parent
            self.objects[parent].setdefault("Kids", []).append(ref)
        return ref

    def on_page(self, page, ref, rect, appearance, **more):
        """Makes the field dictionary `ref` a widget of `page` too. `appearance`: a stream, or a dict by state."""
        if isinstance(appearance, dict):
            normal = {state: self.add(stream) for state, stream in appearance.items()}
        else:
            normal = self.add(appearance) if appearance else None
        widget = {"Type": Name("Annot"), "Subtype": Name("Widget"), "Rect": rect, "P": page.ref, "F": PRINT}
        widget["MK"] = {"BC": BORDER, "BG": FILL}
        widget.update(more)
        if normal:
            widget["AP"] = {"N": normal}
        self.objects[ref].update(widget)
        page.annots.append(ref)

    def appearance(self, rect, content):
        width, height = rect[2] - rect[0], rect[3] - rect[1]
        entries = {"Type": Name("XObject"), "Subtype": Name("Form"), "BBox": [0, 0, width, height]}
        entries["Resources"] = {"Font": {"Helv": self.helv, "ZaDb": self.zadb}}
        return Stream(entries, content)

    def lines_appearance(self, rect, lines, size=10, border=None):
        width, height = rect[2] - rect[0], rect[3] - rect[1]
        first = height / 2 - size * 0.35 if len(lines) == 1 and height < 30 else height - size - 4
        text = b"".join(show(4, first - i * size * 1.2, size, line) for i, line in enumerate(lines))
        return self.appearance(rect, box(width, height, border=border) + marked(text, width, height))

    def text(self, page, name, label, value="", parent=None, **more):
        """A text field on a row of its own. `more`: entries of the field; shown: lines; rect, height, width."""
        rect = page.row(label, more.pop("height", 18), more.pop("width", 250))
        shown = more.pop("shown", None)
        entries = {"T": name} if more.pop("inherit_type", False) else {"FT": Name("Tx"), "T": name}
        if value:
            entries["V"] = value
        flags = more.get("Ff", 0)
        border = [0.75, 0.2, 0.2] if flags & REQUIRED else None
        mark = {"BC": border or BORDER, "BG": FILL}
        ref = self.field(entries, parent)
        if flags & COMB:
            look = self.comb_appearance(rect, value, more["MaxLen"])
        else:
            look = self.lines_appearance(rect, [value] if shown is None else shown, border=border)
        self.on_page(page, ref, rect, look, DA="/Helv 10 Tf 0 g", **dict({"MK": mark}, **more))
        return ref

    def comb_appearance(self, rect, value, cells):
        width, height = rect[2] - rect[0], rect[3] - rect[1]
        cell = width / cells
        lines = b"".join(b"%g 1 m %g %g l S\n" % (cell * i, cell * i, height - 1) for i in range(1, cells))
        text = b"".join(
            show(cell * i + (cell - text_width(c, 10)) / 2, height / 2 - 3.5, 10, c) for i, c in enumerate(value)
        )
        return self.appearance(rect, box(width, height) + lines + marked(text, width, height))

    def button_states(self, rect, on_state, glyph, outline):
        width = rect[2] - rect[0]
        size = width - 4
        # The advance of the ZapfDingbats glyphs used here: 4 check, 8 cross, l disc.
        advance = {"4": 0.755, "8": 0.76, "l": 0.791}[glyph] * size
        on = outline + b"0 g\n" + show((width - advance) / 2, width / 2 - size * 0.35, size, glyph, "ZaDb")
        return {on_state: self.appearance(rect, on), "Off": self.appearance(rect, outline)}

    def check(self, page, ref, rect, state, is_on, glyph="4"):
        """Makes `ref` the widget of a check box."""
        looks = self.button_states(rect, state, glyph, box(rect[2] - rect[0], rect[3] - rect[1]))
        mark = {"BC": BORDER, "BG": FILL, "CA": glyph}
        self.on_page(page, ref, rect, looks, AS=Name(state if is_on else "Off"), DA="/ZaDb 0 Tf 0 g", MK=mark)

    def check_box(self, page, name, label, is_on, parent=None, state="Yes", **more):
        """A check box with the states `state` and Off on a row of its own."""
        rect = page.row(label, 14, 14)
        entries = {"FT": Name("Btn"), "T": name, "V": Name(state if is_on else "Off")}
        ref = self.field(dict(entries, **more), parent)
        self.check(page, ref, rect, state, is_on)
        return ref

    def group(self, page, name, label, states, selected, flags=0, **more):
        """A field with one widget per (state, remark) in one row: radio buttons, or check boxes without flags."""
        entries = {"FT": Name("Btn"), "Ff": flags, "T": name, "V": Name(selected)}
        parent = self.field(dict(entries, **more))
        rect = page.row(label, 14, 14)
        for i, (state, remark) in enumerate(states):
            spot = [rect[0] + 100 * i, rect[1], rect[0] + 100 * i + 14, rect[3]]
            page.beside(spot[2] + 6, remark)
            kid = self.field({}, parent)
            if flags & RADIO:
                looks = self.button_states(spot, state, "l", circle(14))
                mark = {"BC": BORDER, "BG": FILL, "CA": "l"}
                on = Name(state if state == selected else "Off")
                self.on_page(page, kid, spot, looks, AS=on, DA="/ZaDb 0 Tf 0 g", MK=mark)
            else:
                self.check(page, kid, spot, state, state == selected, "8")
        return parent

    def push_button(self, page, name, rect, caption, action, parent=None):
        width, height = rect[2] - rect[0], rect[3] - rect[1]
        grey = [0.87, 0.89, 0.92]
        x = (width - text_width(caption, 10)) / 2
        look = box(width, height, grey) + b"0 g\n" + show(x, height / 2 - 3.5, 10, caption)
        ref = self.field({"FT": Name("Btn"), "Ff": PUSH, "T": name}, parent)
        mark = {"BC": BORDER, "BG": grey, "CA": caption}
        more = {"A": action} if action else {}
        self.on_page(page, ref, rect, self.appearance(rect, look), DA="/Helv 10 Tf 0 g", MK=mark, **more)
        return ref

    def combo(self, page, name, label, options, value, shown, flags=COMBO, parent=None, **more):
        rect = page.row(label)
        width, height = rect[2] - rect[0], rect[3] - rect[1]
        entries = {"FT": Name("Ch"), "Ff": flags, "T": name, "Opt": options, "V": value}
        ref = self.field(dict(entries, **more), parent)
        arrow = b"0.3 g %g 11 m %g 11 l %g 6 l f\n" % (width - 15, width - 7, width - 11)
        text = show(4, height / 2 - 3.5, 10, shown)
        look = self.appearance(rect, box(width, height) + arrow + marked(text, width, height))
        self.on_page(page, ref, rect, look, DA="/Helv 10 Tf 0 g")
        return ref

    def list_box(self, page, name, label, options, selected, **more):
        """A list box; `options` are strings or [export, shown] pairs, `selected` indexes into them."""
        row = 13
        rect = page.row(label, row * more.pop("rows", len(options)) + 4)
        width, height = rect[2] - rect[0], rect[3] - rect[1]
        values = [o[0] if isinstance(o, list) else o for o in options]
        chosen = [values[i] for i in selected]
        entries = {"FT": Name("Ch"), "T": name, "Opt": options, "V": chosen if len(chosen) > 1 else chosen[0]}
        ref = self.field(dict(entries, I=selected, **more))
        body = b""
        for i, option in enumerate(options):
            y = height - 2 - row * (i + 1)
            if i in selected:
                body += b"0.6 0.757 0.855 rg 1 %g %g %d re f 0 g\n" % (y, width - 2, row)
            body += show(4, y + 3.5, 10, option[1] if isinstance(option, list) else option)
        look = self.appearance(rect, box(width, height) + marked(body, width, height))
        self.on_page(page, ref, rect, look, DA="/Helv 10 Tf 0 g")
        return ref

    def signature(self, page, name, label, lines=(), value=None):
        rect = page.row(label, 40)
        entries = {"FT": Name("Sig"), "T": name}
        if value:
            entries["V"] = value
        ref = self.field(entries)
        self.on_page(page, ref, rect, self.lines_appearance(rect, list(lines), 9))
        return ref
