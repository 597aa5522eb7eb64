"""Hand-made cases: small PDF files, what is filled into them, and the facts expected beside the criteria all widgets have."""

import dataclasses
import itertools

from fillers import fields_of, fill_of
from form_builder import COMB, COMBO, EDIT, HIDDEN, MULTI_SELECT, MULTILINE, NO_TOGGLE_OFF, PASSWORD, RADIO, Form
from pdf_writer import Name, Stream, Writer
from subset_font import Subset

LINE, HIGH, TALL = [40, 100, 240, 124], [40, 60, 240, 140], [140, 20, 170, 180]
ON_SALE = [["de", "German"], ["en", "English"], ["fr", "French"], ["pl", "Polish"]]
MONTHS = ["January", "February", "March", "April", "May", "June", "July", "August"]
UNISON = 1 << 25
STYLES = ("S", "D", "B", "I", "U")


@dataclasses.dataclass
class Case:
    """One file. `fills`: values by field; `facts`: facts by field, also of fields that get no value."""

    name: str
    fields: list
    fills: dict
    facts: dict
    form: dict
    page: dict

    def file(self, folder):
        path = folder / "case.pdf"
        path.write_bytes(self.pdf())
        return path

    def plan(self, command, path, pdf, _):
        fields = [field for field in fields_of(command, path) if field["name"] in (*self.fills, *self.facts)]
        fills = [fill_of(field, pdf, self.fills.get(field["name"])) for field in fields]
        for fill in fills:
            fill.shown = self.facts.get(fill.name, {}).get("shown", fill.shown)
        return fills

    def facts_of(self, fill):
        """The facts beside the texts shown; letters of fonts and scripts have to be visible, too."""
        facts = {name: wanted for name, wanted in self.facts.get(fill.name, {}).items() if name != "shown"}
        return dict(facts, glyphs=True) if self.name.startswith(("fonts:", "scripts:")) else facts

    def pdf(self):
        form = Form("Case")
        pages = [form.page("") for _ in range(1 + max(widget.get("page", 0) for widget in each_widget(self.fields)))]
        stored = Store(form)
        for entries in self.fields:
            place(form, stored, pages, entries, None)
        form.acro_form = stored(self.form)
        objects = form.finish()
        for key in [key for key, value in objects[form.form_ref].items() if value is None]:
            del objects[form.form_ref][key]
        for page in pages:
            objects[page.ref].update({"MediaBox": [0, 0, 280, 200]}, **self.page)
        writer = Writer("1.7")
        writer.put_all(objects)
        writer.end_table(form.trailer())
        return bytes(writer.out)


class Store:
    """Makes objects of the streams and fonts in a value; the same one becomes the same object."""

    def __init__(self, form):
        self.form, self.known = form, {}

    def __call__(self, value):
        if isinstance(value, list):
            return [self(entry) for entry in value]
        if isinstance(value, Stream):
            return self.object(value, lambda: Stream(self(value.entries), value.data))
        if not isinstance(value, dict):
            return value
        if "Subtype" in value and value.get("Type") == "Font":
            return self.object(value, lambda: {key: self(entry) for key, entry in value.items()})
        return {key: self(entry) for key, entry in value.items()}

    def object(self, value, make):
        if id(value) not in self.known:
            self.known[id(value)] = self.form.add(make())
        return self.known[id(value)]


def each_widget(fields):
    for entries in fields:
        yield entries
        yield from each_widget(entries.get("Kids", []))


def place(form, stored, pages, entries, parent):
    """Adds a field with the fields and widgets below it."""
    entries = dict(entries)
    kids, page = entries.pop("Kids", []), pages[entries.pop("page", 0)]
    ref = form.field(stored(entries), parent)
    if "Rect" in entries:
        widget = {"Type": Name("Annot"), "Subtype": Name("Widget"), "P": page.ref, "F": 4}
        form.objects[ref] = dict(widget, **form.objects[ref])
        page.annots.append(ref)
    for kid in kids:
        place(form, stored, pages, kid, ref)


def case(group, name, fields, fills, facts=None, form=None, page=None):
    return Case(f"{group}: {name}", fields, fills, facts or {}, form or {}, page or {})


def field(type_name, **entries):
    """A field `f` with one widget; an entry of None is left out."""
    base = {"FT": Name(type_name), "T": "f", "Rect": LINE, "DA": "/Helv 12 Tf 0 g"}
    return {key: value for key, value in dict(base, **entries).items() if value is not None}


def text(group, name, value, facts=None, form=None, page=None, **entries):
    return case(group, name, [field("Tx", **entries)], {"f": value}, {"f": facts or {}}, form, page)


def look(words, rect, more=b"", **entries):
    """An appearance with a text of another time."""
    box = [0, 0, rect[2] - rect[0], rect[3] - rect[1]]
    font = {"Type": Name("Font"), "Subtype": Name("Type1"), "BaseFont": Name("Helvetica")}
    body = more + b"/Tx BMC BT /F 12 Tf 2 7 Td (" + words + b") Tj ET EMC"
    head = {"Type": Name("XObject"), "Subtype": Name("Form"), "BBox": box, "Resources": {"Font": {"F": font}}}
    return Stream(dict(head, **entries), body)


def state(mark, size=16):
    """An appearance of a button: a frame and a mark."""
    return Stream({"Type": Name("XObject"), "Subtype": Name("Form"), "BBox": [0, 0, size, size]},
                  b"1 w 0.5 0.5 %d %d re S " % (size - 1, size - 1) + mark)


ON, OFF = b"4 4 8 8 re f", b""


# Layout: kinds of text by quadding, size, rotation, border


def layouts():
    kinds = {
        "line": ("Grace 1906", 0), "lines": ("Upper row\nLower", MULTILINE),
        "comb": ("AB12CD", COMB), "password": ("secret", PASSWORD),
    }
    for i, (kind, quad, size) in enumerate(itertools.product(kinds, (0, 1, 2), (0, 11))):
        value, flags = kinds[kind]
        turn, page_turn, width = 90 * (i // 2 % 4), 90 * (i * 3 // 4 % 4), i % 4
        style = STYLES[i % 5] if turn == 0 else STYLES[i % 4]
        rect = HIGH if kind == "lines" else TALL if turn in (90, 270) else LINE
        facts = {"turned": (turn - page_turn) % 360, "size": (11, 11) if size else (5, 24)}
        facts.update({"cells": (8, (0, 1, 2)[quad])} if kind == "comb" else {"align": quad})
        facts.update({"lines": 2} if kind == "lines" else {}, **{"edges": 1 if style == "U" else 4} if width else {})
        entries = {"Ff": flags, "Q": quad, "DA": f"/Helv {size} Tf 0 g", "MaxLen": 8 if kind == "comb" else None}
        mark = {"MK": {"R": turn, "BC": [0]}, "BS": {"W": width, "S": Name(style)}}
        name = f"{kind}, Q {quad}, size {size}, R {turn}, page {page_turn}, border {style} {width}"
        yield text("layout", name, value, facts, page={"Rotate": page_turn}, Rect=rect, **entries, **mark)


# What is inherited, wrong or missing, and values that are hard to fit


def texts():
    group = "texts"
    widget = {"Rect": LINE}
    yield case(group, "DA of the parent", [field("Tx", DA="/Helv 17 Tf 0 g", Rect=None, Kids=[widget])], {"f": "Grace"},
               {"f": {"size": (17, 17)}})
    yield text(group, "DA of the form", "Grace", {"size": (9, 9)}, {"DA": "/Helv 9 Tf 0 g"}, DA=None)
    yield text(group, "DA with a font that DR lacks", "Grace", {"size": (12, 12)}, DA="/Arial 12 Tf 0 g")
    yield text(group, "no DA", "Grace", form={"DA": None}, DA=None)
    yield text(group, "no DR", "Grace", {"size": (12, 12)}, form={"DR": None})
    yield text(group, "no DA and no DR", "Grace", form={"DA": None, "DR": None}, DA=None)
    yield text(group, "Q of the form", "Grace", {"align": 2}, {"Q": 2})
    yield case(group, "Q of the parent", [field("Tx", Q=1, Rect=None, Kids=[widget])], {"f": "Grace"}, {"f": {"align": 1}})
    comb = [field("Tx", Ff=COMB, MaxLen=10, Rect=None, Kids=[widget])]
    yield case(group, "comb with the length of the parent", comb, {"f": "WiMl"}, {"f": {"cells": (10, 0)}})
    yield text(group, "full comb", "W1iM0lZ", {"cells": (7, 0)}, Ff=COMB, MaxLen=7)
    yield text(group, "light colour", "GRACE", {"darkest": (110, 200)}, DA="/Helv 18 Tf 0.6 g")
    yield text(group, "colour in RGB", "GRACE", {"darkest": (50, 120)}, DA="1 0 0 rg /Helv 18 Tf")
    yield text(group, "background", "Grace", {"paper": 204, "edges": 4}, MK={"BG": [0.8], "BC": [0]})
    yield text(group, "Border instead of BS", "Grace", {"edges": 4}, MK={"BC": [0]}, Border=[0, 0, 2])
    long = "A rather long value that does not fit at a large size"
    yield text(group, "long line, size by the box", long, {"lines": 1, "size": (4, 10)}, DA="/Helv 0 Tf 0 g")
    yield text(group, "long line, fixed size", long, {"size": (12, 12), "shown": ["A rather long value"]})
    many = " ".join(["Many words that have to be wrapped"] * 6)
    yield text(group, "many lines, size by the box", many, {"lines": -4, "size": (4, 12)},
               DA="/Helv 0 Tf 0 g", Ff=MULTILINE, Rect=HIGH)
    yield text(group, "more lines than fit, fixed size", many, {"shown": ["Many words that have"], "size": (12, 12)},
               Ff=MULTILINE, Rect=HIGH)
    yield text(group, "a word longer than the line", "Donaudampfschiff" * 3, {"lines": -2}, Ff=MULTILINE, Rect=HIGH)
    for name, end in (("CR", "\r"), ("LF", "\n"), ("CRLF", "\r\n")):
        yield text(group, "lines ended by " + name, end.join(("one", "two", "three")), {"lines": 3}, Ff=MULTILINE, Rect=HIGH)
    yield text(group, "line break in a single line", "one\ntwo", {"lines": 1})
    yield text(group, "low box", "Grace", {"lines": 1, "size": (3, 7)}, DA="/Helv 0 Tf 0 g", Rect=[40, 100, 240, 107])
    yield text(group, "special characters", "a(b)\\c)% /x <y>", {"lines": 1})
    yield text(group, "emptied", "", {"absent": "Before"}, V="Before", AP={"N": look(b"Before", LINE)})


# Fonts of DR


def fonts():
    group = "fonts"

    def with_font(name, font, value, facts=None, **entries):
        return text(group, name, value, facts, {"DR": {"Font": {"F": font}}}, DA="/F 12 Tf 0 g", **entries)

    def standard(name, **more):
        return dict({"Type": Name("Font"), "Subtype": Name("Type1"), "BaseFont": Name(name)}, **more)

    letters = "ABCDEFGHIJKLMNOPQRSTUVWXYZ"
    turned = {"Type": Name("Encoding"), "Differences": [65] + [Name(c) for c in reversed(letters)]}
    polish = {"Type": Name("Encoding"), "Differences": [1, Name("Lslash"), Name("eogonek")]}
    plain = Subset("DejaVu Sans", "SenabcdQuikZ 0123456789")
    yield with_font("letters in another order", standard("Helvetica", Encoding=turned), "HELP")
    yield with_font("Polish by Differences", standard("Helvetica", Encoding=polish), "Łę")
    yield with_font("no encoding", standard("Helvetica"), "café 10 €")
    yield with_font("Times", standard("Times-Roman"), "Right", {"align": 2, "font": "Times"}, Q=2)
    yield with_font("Courier", standard("Courier-Bold"), "Right 12", {"align": 2, "font": "Courier"}, Q=2)
    yield with_font("MacRoman", standard("Helvetica", Encoding=Name("MacRomanEncoding")), "Zürich – é")
    yield with_font("Type0", plain.composite(), "Quick Zen", {"align": 2, "font": "Cut"}, Q=2)
    yield with_font("Type0 comb", plain.composite(), "a1b2c3", {"cells": (6, 0)}, Ff=COMB, MaxLen=6)
    yield with_font("Type0 that lacks characters", plain.composite(), "Wxyz")
    yield with_font("Type0 that lacks some", plain.composite(), "Sea XY")
    yield with_font("TrueType", plain.simple(), "Quick 123", {"align": 1, "font": "Cut"}, Q=1)
    yield with_font("TrueType that lacks characters", plain.simple(), "Wxyz")
    yield with_font("TrueType that lacks some", plain.simple(), "Sea XY")
    yield with_font("Symbol", standard("Symbol"), "Latin text")
    yield with_font("a dictionary of no use", {"Type": Name("Font")}, "Grace")


# Scripts that the field's font does not have


def scripts():
    values = {
        "Polish": "Zażółć gęślą",
        "Greek": "Καλημέρα",
        "Cyrillic": "Привет мир",
        "Arabic": "مرحبا بكم",
        "Hebrew": "שלום עולם",
        "Hindi": "नमस्ते हिन्दी",
        "Thai": "สวัสดี",
        "Chinese": "你好世界",
        "Japanese": "こんにちは 東京",
        "Korean": "안녕하세요",
        "emoji": "😀 🚀",
        "Arabic and Latin": "Ref 42 مرحبا end",
        "Vietnamese": "Tiếng Việt",
        "combining marks": "Z\u0300 q\u0301",
    }
    for name, value in values.items():
        yield text("scripts", name, value, {"lines": 1})
    yield text("scripts", "Arabic, many lines", " ".join([values["Arabic"]] * 8), {"lines": -2}, Ff=MULTILINE, Rect=HIGH)
    yield text("scripts", "Chinese, many lines", values["Chinese"] * 8, {"lines": -2}, Ff=MULTILINE, Rect=HIGH)
    yield text("scripts", "Greek, comb", "ΑΒΓΔ", {"cells": (8, 0)}, Ff=COMB, MaxLen=8)
    yield text("scripts", "Hebrew, turned", values["Hebrew"], MK={"R": 90}, Rect=TALL)
    yield text("scripts", "Hebrew, at the right", values["Hebrew"], {"align": 2}, Q=2)
    yield text("scripts", "Japanese, size by the box", values["Japanese"] * 4, {"lines": 1}, DA="/Helv 0 Tf 0 g")
    options = [["1", values["Arabic"]], ["2", values["Japanese"]]]
    yield case("scripts", "combo box, Arabic", [field("Ch", Ff=COMBO, Opt=options)], {"f": "1"})
    yield case("scripts", "list box, Japanese", [field("Ch", Opt=options, Rect=HIGH)], {"f": "2"},
               {"f": {"marked": [values["Japanese"]]}})


# Choices


def choices():
    def choice(name, value, facts=None, **entries):
        return case("choices", name, [field("Ch", **entries)], {"f": value}, {"f": facts or {}})

    yield choice("combo box", "April", Ff=COMBO, Opt=MONTHS)
    yield choice("combo box with shown texts", "fr", {"drawn": ["French"]}, Ff=COMBO, Opt=ON_SALE)
    yield choice("combo box in the centre", "en", {"align": 1}, Ff=COMBO, Opt=ON_SALE, Q=1)
    yield choice("free text", "Esperanto", Ff=COMBO | EDIT, Opt=ON_SALE)
    yield choice("free text like an option", "pl", {"drawn": ["Polish"]}, Ff=COMBO | EDIT, Opt=ON_SALE)
    yield choice("combo box, size by the box", "August", {"size": (6, 20)}, Ff=COMBO, Opt=MONTHS, DA="/Helv 0 Tf 0 g")
    parent = field("Ch", Ff=COMBO, Opt=ON_SALE, Rect=None, Kids=[{"Rect": LINE}])
    yield case("choices", "options of the parent", [parent], {"f": "de"}, {"f": {"drawn": ["German"]}})
    yield choice("list box", "March", {"marked": ["March"], "drawn": ["January", "April"]}, Opt=MONTHS[:5], Rect=HIGH)
    yield choice("list box with shown texts", "en", {"marked": ["English"], "drawn": ["German", "Polish"]},
                 Opt=ON_SALE, Rect=HIGH)
    yield choice("list box with TI", "June", {"marked": ["June"], "drawn": ["May", "July"], "absent": "January"}, Opt=MONTHS,
                 TI=4, Rect=HIGH)
    yield choice("several selected", ["February", "April"], {"marked": ["February", "April"], "drawn": ["March"]},
                 Ff=MULTI_SELECT, Opt=MONTHS[:5], Rect=HIGH)
    yield choice("list box, size by the box", "March", {"marked": ["March"]}, Opt=MONTHS[:5], Rect=HIGH, DA="/Helv 0 Tf 0 g")
    yield choice("list box, turned", "March", {"turned": 90}, Opt=MONTHS[:5], Rect=[100, 40, 180, 160], MK={"R": 90})


# Buttons


def buttons():
    box, other = [40, 100, 56, 116], [80, 100, 96, 116]
    two = {"Yes": state(ON), "Off": state(OFF)}

    def check(name, value, facts=None, **entries):
        return case("buttons", name, [field("Btn", Rect=box, **entries)], {"f": value}, {"f": facts or {}})

    yield check("check box", True, AP={"N": two}, AS=Name("Off"))
    yield check("check box, to be cleared", False, AP={"N": two}, AS=Name("Yes"), V=Name("Yes"))
    yield check("check box without an appearance", True, {"ink": 1}, MK={"BC": [0]}, DA="/ZaDb 0 Tf 0 g")
    yield check("check box without anything", True, {"ink": 1}, DA=None)
    yield check("check box with a cross", True, {"ink": 1, "edges": 4}, MK={"BC": [0], "CA": "8"}, DA="/ZaDb 0 Tf 0 g")
    yield check("check box, cleared, without an appearance", False, {"edges": 4}, MK={"BC": [0]}, V=Name("Yes"), AS=Name("Yes"))
    yield check("state of another name", True, AP={"N": {"Sí": state(ON), "Off": state(OFF)}}, AS=Name("Off"))
    yield check("no appearance when off", True, AP={"N": {"1": state(ON)}}, AS=Name("Off"))
    yield check("no AS", True, AP={"N": two})
    pair = [{"Rect": box, "AP": {"N": two}, "AS": Name("Off")}, {"Rect": box, "AP": {"N": two}, "AS": Name("Off"), "page": 1}]
    yield case("buttons", "check box on two pages", [field("Btn", Rect=None, Kids=pair)], {"f": True})

    def radio(name, flags, states, value, facts=None, **entries):
        kids = []
        for rect, own in zip(([40, 100, 56, 116], [80, 100, 96, 116], [120, 100, 136, 116]), states):
            kid = {"Rect": rect, "AS": Name("Off"), "MK": {"BC": [0], "CA": "l"}}
            kids.append(dict(kid, AP={"N": {own: state(ON), "Off": state(OFF)}}) if own else kid)
        entries = dict({"Ff": flags, "Rect": None, "Kids": kids, "DA": "/ZaDb 0 Tf 0 g"}, **entries)
        return case("buttons", name, [field("Btn", **entries)], {"f": value}, {"f": facts or {}})

    yield radio("radio buttons", RADIO | NO_TOGGLE_OFF, ("a", "b", "c"), "b", {"on": 1})
    yield radio("radio buttons with export values", RADIO, ("0", "1", "2"), "1", {"on": 1}, Opt=["red", "green", "blue"])
    yield radio("in unison", RADIO | UNISON, ("a", "b", "a"), "a")
    yield radio("check boxes of two states", 0, ("Lunch", "Dinner"), "Dinner", {"on": 1})
    yield radio("radio buttons without appearances", RADIO, (None, None, None), "green", {"on": 1, "ink": 1},
                Opt=["red", "green", "blue"])


# Files: where widgets are and what else is there


def files():
    group = "files"
    sizes = [{"Rect": [40, 100, 240, 124]}, {"Rect": [40, 30, 120, 42], "page": 1},
             {"Rect": [200, 20, 230, 180], "MK": {"R": 90}}]
    yield case(group, "widgets of several sizes", [field("Tx", DA="/Helv 0 Tf 0 g", Rect=None, Kids=sizes)], {"f": "Grace"})
    yield text(group, "corners the other way round", "Grace", {"align": 0}, Rect=[240, 124, 40, 100])
    yield text(group, "page with another origin", "Grace", {"align": 0}, page={"MediaBox": [-100, -50, 260, 150]})
    yield text(group, "page with a crop box", "Grace", {"align": 0}, page={"CropBox": [20, 50, 260, 160]})
    yield text(group, "turned page, turned field", "Grace", {"turned": 0}, page={"Rotate": 90}, MK={"R": 90}, Rect=TALL)
    old = look(b"Before", LINE)
    yield text(group, "old appearance", "Grace", {"absent": "Before"}, V="Before", AP={"N": old})
    yield text(group, "old appearance with a matrix", "Grace", {"absent": "Before", "turned": 0}, V="Before",
               AP={"N": look(b"Before", LINE, Matrix=[0, 1, -1, 0, 24, 0])})
    yield text(group, "old appearance without BMC", "Grace", {"absent": "Before"}, V="Before",
               AP={"N": Stream(old.entries, b"BT /F 12 Tf 2 7 Td (Before) Tj ET")})
    yield text(group, "rich text", "Grace", {"absent": "Before", "gone": "RV"}, Ff=1 << 25, V="Before", RV="<p>Before</p>",
               AP={"N": old})
    low = [40, 40, 240, 64]
    shared = [field("Tx", V="Before", AP={"N": old}), field("Tx", T="g", V="Before", Rect=low, AP={"N": old})]
    yield case(group, "one appearance for two fields", shared, {"f": "Grace"},
               {"f": {"absent": "Before"}, "g": {"untouched": 1}})
    flag = {"NeedAppearances": True}
    yield case(group, "NeedAppearances, another field has its appearance", shared, {"f": "Grace"}, {"g": {"untouched": 1}}, flag)
    bare = [field("Tx"), field("Tx", T="g", V="Before", Rect=low)]
    yield case(group, "NeedAppearances, another field has none", bare, {"f": "Grace"},
               {"g": {"stream": 1, "drawn": ["Before"]}}, flag)
    parts = [{"T": "p", "Kids": [field("Tx", T="q", Rect=None, Kids=[{"Rect": LINE}, {"Rect": low, "F": HIDDEN}])]}]
    yield case(group, "nested, one widget hidden", parts, {"p.q": "Grace"})
    yield text(group, "down and rollover appearances", "Grace", AP={"N": old, "D": old, "R": old}, V="Before")
    yield case(group, "name with an umlaut", [field("Tx", T="Straße")], {"Straße": "Grace"})
    kids = [{"Rect": LINE, "DA": "/Helv 8 Tf 0 g"}, {"Rect": low, "DA": "/Helv 16 Tf 0 g", "Q": 2}]
    yield case(group, "each widget with its own DA", [field("Tx", Rect=None, Kids=kids)], {"f": "Grace"})


def all_cases():
    return [*layouts(), *texts(), *fonts(), *scripts(), *choices(), *buttons(), *files()]
