#!/usr/bin/env python3
"""Writes the sample forms: make_samples.py [FOLDER], by default the folder of this script."""

import pathlib
import sys

sys.dont_write_bytecode = True

from dummy_signature import signed_data
from form_builder import (
    COMB, COMBO, EDIT, FIELD_LEFT, HIDDEN, MULTI_SELECT, MULTILINE, NO_TOGGLE_OFF, PASSWORD, RADIO, READ_ONLY,
    REQUIRED, Form, box, show,
)
from pdf_writer import Name, Stream, Writer


def one_table(form, objects, version="1.7"):
    writer = Writer(version)
    writer.put_all(objects)
    writer.end_table(form.trailer())
    return bytes(writer.out)


# kinds.pdf


def text_kinds(form):
    page = form.page("Every kind of field: text")
    page.heading("Plain")
    form.text(page, "name", "name", "Ada Lovelace")
    notes = "First line of the notes.\rSecond line, a little longer than the first one.\rThird line."
    form.text(page, "notes", "notes (many lines)", notes, Ff=MULTILINE, height=52, shown=notes.split("\r"))
    form.text(page, "postcode", "postcode (comb of 8)", "SW1A2AA", Ff=COMB, MaxLen=8, width=160)
    form.text(page, "country", "country (has a default)", "Germany", DV="Austria")
    form.text(page, "reference", "reference (read only)", "FW-2026-0001", Ff=READ_ONLY)
    form.text(page, "email", "email (required)", Ff=REQUIRED)
    form.text(page, "password", "password", Ff=PASSWORD, MaxLen=12)
    page.heading("Beyond ASCII")
    form.text(page, "greeting", "greeting (UTF-16)", "Grüße – für 10 €")
    form.text(page, "Größe", "Größe (name in UTF-16)", "42")
    form.text(page, "Σύνολο", "total (Greek name)", "1815")
    city = "Zürich"
    form.text(page, "town", "town (8-bit text)", city.encode("latin-1"), shown=[city])
    note = form.field({"FT": Name("Tx"), "T": "hidden_note", "V": "東京 😀"})
    form.on_page(page, note, [540, 40, 550, 50], None, F=HIDDEN, DA="/Helv 10 Tf 0 g")
    groups_of_text(form, page)


def groups_of_text(form, page):
    page.heading("Groups: address has no type, company hands its type down")
    address = form.field({"T": "address"})
    form.text(page, "street", "address.street", "12 St James's Square", address)
    form.text(page, "city", "address.city", "London", address)
    form.text(page, "zip", "address.zip (at most 8)", "SW1Y 4JH", address, MaxLen=8, width=100)
    company = form.field({"FT": Name("Tx"), "T": "company", "MaxLen": 40})
    contact = form.field({"T": "contact"}, company)
    form.text(page, "person", "company.contact.person", "Charles Babbage", contact, inherit_type=True)
    form.text(page, "phone", "company.contact.phone", "", contact, inherit_type=True, MaxLen=16)


def button_kinds(form, page):
    page.heading("Check boxes")
    form.check_box(page, "subscribe", "subscribe", True, DV=Name("Off"))
    form.check_box(page, "agree", "agree (required)", False, Ff=REQUIRED)
    form.group(page, "meal", "meal (two states)", [("Lunch", "lunch"), ("Dinner", "dinner")], "Dinner")
    page.heading("Radio buttons")
    colours = [("red", "red"), ("green", "green"), ("blue", "blue")]
    form.group(page, "colour", "colour", colours, "green", RADIO | NO_TOGGLE_OFF, DV=Name("red"))
    sizes = [("0", "small"), ("1", "medium"), ("2", "large")]
    names = [remark for _, remark in sizes]
    form.group(page, "size", "size (export values)", sizes, "1", RADIO | NO_TOGGLE_OFF, Opt=names)
    page.heading("Push buttons")
    fields = ["name", "notes", "address"]
    reset = {"S": Name("ResetForm"), "Fields": fields, "Flags": 0}
    url = {"FS": Name("URL"), "F": b"https://example.org/form"}
    submit = {"S": Name("SubmitForm"), "F": url, "Fields": fields, "Flags": 4}
    x, y = page.row("send, clear", 22)[:2]
    form.push_button(page, "send", [x, y, x + 90, y + 22], "Send", submit)
    form.push_button(page, "clear", [x + 110, y, x + 200, y + 22], "Clear", reset)


def choice_kinds(form, page):
    page.heading("Choices")
    languages = [["de", "German"], ["en", "English"], ["fr", "French"]]
    form.combo(page, "language", "language", languages, "de", "German", DV="en")
    form.combo(page, "title", "title (free text too)", ["Dr", "Ms", "Mr", "Prof"], "Countess", "Countess", COMBO | EDIT)
    form.list_box(page, "month", "month", ["January", "February", "March", "April"], [2])
    toppings = [["ch", "Cheese"], ["ol", "Olives"], ["on", "Onions"], ["mu", "Mushrooms"]]
    form.list_box(page, "toppings", "toppings (several)", toppings, [0, 2], Ff=MULTI_SELECT)
    page.heading("Signature")
    form.signature(page, "signature", "signature (unsigned)")
    form.acro_form["SigFlags"] = 1


def make_kinds():
    form = Form("Formwork sample: every kind of field")
    text_kinds(form)
    page = form.page("Every kind of field: buttons, choices, signature")
    button_kinds(form, page)
    choice_kinds(form, page)
    return one_table(form, form.finish())


# xfa.pdf

TEMPLATE = """<template xmlns="http://www.xfa.org/schema/xfa-template/3.3/">
<subform name="form1" layout="tb" locale="en_US">
<pageSet><pageArea name="Page1" id="Page1"><contentArea x="0pt" y="0pt" w="595pt" h="842pt"/>
<medium stock="a4" short="595pt" long="842pt"/></pageArea></pageSet>
<subform name="page1" layout="position" w="595pt" h="842pt">
%s<subform layout="position">
%s</subform>
</subform>
</subform>
</template>
"""

DATASETS = """<xfa:datasets xmlns:xfa="http://www.xfa.org/schema/xfa-data/1.0/">
<xfa:data><form1><page1><TextField1>Grace Hopper</TextField1><TextField2>Navy &amp; COBOL</TextField2>
<amount>1906</amount><amount>1992</amount><CheckBox1>1</CheckBox1>
<DropDownList1>us</DropDownList1></page1></form1></xfa:data>
</xfa:datasets>
"""

CONFIG = """<config xmlns="http://www.xfa.org/schema/xci/3.1/">
<present><pdf><version>1.7</version></pdf></present></config>
"""

SUBMIT = '<event activity="click"><submit format="xml" target="https://example.org/xfa" textEncoding="UTF-8"/></event>'
RESET = (
    '<event activity="click"><script contentType="application/x-javascript">xfa.host.resetData();</script></event>'
)
HELLO = '<event activity="click"><script contentType="application/x-javascript">xfa.host.beep();</script></event>'


def template_field(name, rect, ui="<textEdit/>", more=""):
    x, y, w, h = rect[0], 842 - rect[3], rect[2] - rect[0], rect[3] - rect[1]
    place = 'x="%gpt" y="%gpt" w="%gpt" h="%gpt"' % (x, y, w, h)
    return '<field name="%s" %s><ui>%s</ui>%s</field>\n' % (name, place, ui, more)


def xfa_fields(form, page):
    """Adds the form fields; returns the template's fields of the named and of the unnamed subform."""
    top = form.field({"T": "form1[0]"})
    first = form.field({"T": "page1[0]"}, top)
    inner = form.field({"T": "#subform[0]"}, first)
    named, unnamed = [], []

    def mirror(out, ref, name, ui="<textEdit/>", more=""):
        out.append(template_field(name, form.objects[ref]["Rect"], ui, more))

    page.heading("In the subform page1")
    for name, value in ("TextField1", "Grace Hopper"), ("TextField2", "Navy & COBOL"):
        mirror(named, form.text(page, name + "[0]", name, value, first), name)
    for i, value in enumerate(("1906", "1992")):
        mirror(named, form.text(page, "amount[%d]" % i, "amount, number %d" % (i + 1), value, first), "amount")
    page.heading("In a subform without a name")
    ref = form.check_box(page, "CheckBox1[0]", "CheckBox1", True, inner, "1")
    mirror(unnamed, ref, "CheckBox1", "<checkButton/>", "<items><text>1</text><text>0</text></items>")
    countries = [["us", "United States"], ["uk", "United Kingdom"]]
    ref = form.combo(page, "DropDownList1[0]", "DropDownList1", countries, "us", "United States", parent=inner)
    shown, saved = ("".join("<text>%s</text>" % c[i] for c in countries) for i in (1, 0))
    items = '<items>%s</items><items save="1">%s</items>' % (shown, saved)
    mirror(unnamed, ref, "DropDownList1", "<choiceList/>", items)
    x, y = page.row("Buttons", 22)[:2]
    buttons = ("Submit", SUBMIT), ("Reset", RESET), ("Beep", HELLO)
    for i, (name, event) in enumerate(buttons):
        rect = [x + 110 * i, y, x + 110 * i + 90, y + 22]
        ref = form.push_button(page, name + "[0]", rect, name, None, inner)
        mirror(unnamed, ref, name, "<button/>", event)
    return "".join(named), "".join(unnamed)


def make_xfa():
    form = Form("Formwork sample: XFA packets beside a form")
    page = form.page("A form with XFA packets")
    template = TEMPLATE % xfa_fields(form, page)
    packets = [
        ("preamble", '<xdp:xdp xmlns:xdp="http://ns.adobe.com/xdp/">\n', ()),
        ("config", CONFIG, ()),
        ("template", template, ("FlateDecode",)),
        ("datasets", DATASETS, ()),
        ("postamble", "</xdp:xdp>\n", ()),
    ]
    form.acro_form["XFA"] = []
    for name, text, filters in packets:
        form.acro_form["XFA"] += [name, form.add(Stream({}, text.encode(), filters))]
    return one_table(form, form.finish())


# object-streams.pdf


def make_object_streams():
    form = Form("Formwork sample: objects in object streams")
    page = form.page("Objects in object streams")
    page.heading("Order")
    order = form.field({"T": "order"})
    form.text(page, "number", "order.number", "2026/17", order)
    form.text(page, "date", "order.date", "2026-01-01", order)
    form.text(page, "remark", "order.remark", "Beschädigte Kiste – bitte prüfen", order)
    form.combo(page, "carrier", "order.carrier", [["p", "Post"], ["b", "Bike"]], "b", "Bike", parent=order)
    form.list_box(page, "extras", "extras", ["Gift wrap", "Insurance", "Tracking"], [1, 2], Ff=MULTI_SELECT)
    page.heading("Payment")
    ways = [("card", "card"), ("cash", "cash"), ("bill", "bill")]
    form.group(page, "payment", "payment", ways, "bill", RADIO | NO_TOGGLE_OFF)
    form.check_box(page, "paid", "paid", False)
    form.check_box(page, "terms", "terms", True)
    form.text(page, "iban", "iban", "", MaxLen=34)
    form.text(page, "code", "code", "7351", Ff=COMB, MaxLen=6, width=120)
    form.push_button(page, "print", page.row("print", 22, 90), "Print", {"S": Name("Named"), "N": Name("Print")})
    return packed(form, form.finish())


def packed(form, objects):
    """Streams plain, everything else in four object streams; numbers 200 and up, so that the index has two runs."""
    writer = Writer("1.5")
    writer.put_all({n: v for n, v in objects.items() if isinstance(v, Stream)})
    loose = sorted(n for n, v in objects.items() if not isinstance(v, Stream))
    step = (len(loose) + 3) // 4
    shapes = [(("FlateDecode",), None), ((), None), (("ASCIIHexDecode", "FlateDecode"), 200), (("FlateDecode",), 202)]
    for i, (filters, extends) in enumerate(shapes):
        part = loose[i * step : (i + 1) * step]
        writer.pack(200 + i, {n: objects[n] for n in part}, filters, extends)
    writer.end_stream(204, form.trailer())
    return bytes(writer.out)


# updates.pdf


def reworded(form, objects, ref, value):
    """The field `ref` with another value, and its appearance: a section of two objects."""
    field = dict(objects[ref], V=value)
    return {ref: field, field["AP"]["N"]: form.lines_appearance(field["Rect"], [value])}


def make_updates():
    form = Form("Formwork sample: three updates")
    page = form.page("A base file and three updates")
    page.heading("What the newest section says")
    status = form.text(page, "status", "status (changed twice)", "draft")
    form.text(page, "owner", "owner (never changed)", "Base section")
    rect_added = page.row("added (second update)")
    box_removed = page.row("removed (third update)")
    removed = form.field({"FT": Name("Tx"), "T": "removed", "V": "old"})
    form.on_page(page, removed, box_removed, form.lines_appearance(box_removed, ["old"]), DA="/Helv 10 Tf 0 g")
    objects = form.finish()
    writer = Writer("1.5")
    writer.put_all(objects)
    writer.end_table(form.trailer())

    writer.put_all(reworded(form, objects, status, "reviewed"))
    writer.end_table(form.trailer())

    add_field_in_hybrid_section(form, writer, page, rect_added)

    writer.put_all(reworded(form, objects, status, "approved"))
    page.annots.remove(removed)
    form.fields.remove(removed)
    writer.put(page.ref, objects[page.ref])
    writer.put(form.form_ref, objects[form.form_ref])
    look = objects[removed]["AP"]["N"]
    for num, after in (0, removed), (removed, look), (look, 0):
        writer.free(num, after, 1 if num else 65535)
    writer.end_table(form.trailer())
    return bytes(writer.out)


def add_field_in_hybrid_section(form, writer, page, rect):
    """The new field sits in an object stream that only the table's XRefStm leads to."""
    look = form.add(form.lines_appearance(rect, ["Second update"]))
    added = form.field({"FT": Name("Tx"), "T": "added", "V": "Second update"})
    form.on_page(page, added, rect, None, DA="/Helv 10 Tf 0 g", AP={"N": look})
    packed_num, index_num = form.reserve(), form.reserve()
    writer.put(look, form.objects[look])
    writer.put(page.ref, form.objects[page.ref])
    writer.put(form.form_ref, form.objects[form.form_ref])
    writer.pack(packed_num, {added: form.objects[added]}, ("FlateDecode",))
    writer.end_table(form.trailer(), hidden_by=index_num)


# signed.pdf

CONTENTS_BYTES = 1024
RANGE_WIDTH = 40


def make_signed():
    form = Form("Formwork sample: a signed form")
    page = form.page("A form with an approval signature")
    page.heading("Contract")
    form.text(page, "party", "party", "Formwork Test Company")
    form.text(page, "sum", "sum", "1,000")
    signature = {"Type": Name("Sig"), "Filter": Name("Adobe.PPKLite"), "SubFilter": Name("adbe.pkcs7.detached")}
    signature.update(Name="Test Signer", M="D:20260102030405Z", Reason="Sample", Location="Nowhere")
    # Numbers of the final width, and bytes that the hex form replaces once the offsets are known.
    signature.update(ByteRange=Name("R" * RANGE_WIDTH), Contents=Name("C" * (2 * CONTENTS_BYTES + 1)))
    lines = ["Signed by Test Signer", "2026-01-02 03:04:05 UTC"]
    form.signature(page, "approval", "approval", lines, form.add(signature))
    form.acro_form["SigFlags"] = 3
    return with_signature(one_table(form, form.finish()))


def with_signature(data):
    """Replaces the two placeholders, names of known length, by the byte range and the signature."""
    data = bytearray(data)
    start = data.index(b"/" + b"C" * CONTENTS_BYTES)
    end = start + 2 * CONTENTS_BYTES + 2
    numbers = b"[0 %d %d %d]" % (start, end, len(data) - end)
    at = data.index(b"/" + b"R" * RANGE_WIDTH)
    data[at : at + RANGE_WIDTH + 1] = numbers.ljust(RANGE_WIDTH + 1)
    cms = signed_data(bytes(data[:start] + data[end:]))
    data[start:end] = b"<" + cms.ljust(CONTENTS_BYTES, b"\0").hex().upper().encode() + b">"
    return bytes(data)


# no-form.pdf


def make_no_form():
    form = Form("Formwork sample: annotations, no form")
    page = form.page("Annotations, but no form")
    page.heading("A link and a square")
    link = {"Type": Name("Annot"), "Subtype": Name("Link"), "Rect": page.row("a link"), "Border": [0, 0, 1]}
    link["A"] = {"S": Name("URI"), "URI": b"https://example.org/"}
    page.beside(FIELD_LEFT + 6, "https://example.org/")
    rect = page.row("a square", 40)
    look = form.add(form.appearance(rect, box(rect[2] - rect[0], 40) + b"0 g\n" + show(8, 16, 10, "Not a field")))
    square = {"Type": Name("Annot"), "Subtype": Name("Square"), "Rect": rect, "F": 4, "AP": {"N": look}}
    page.annots += [form.add(link), form.add(square)]
    return one_table(form, form.finish(has_form=False))


SAMPLES = {
    "kinds.pdf": make_kinds,
    "xfa.pdf": make_xfa,
    "object-streams.pdf": make_object_streams,
    "updates.pdf": make_updates,
    "signed.pdf": make_signed,
    "no-form.pdf": make_no_form,
}


def main():
    folder = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else pathlib.Path(__file__).parent)
    for name, make in SAMPLES.items():
        (folder / name).write_bytes(make())


main()
