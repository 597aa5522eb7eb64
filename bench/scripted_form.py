"""A tax-like form that computes: amounts with formats, and totals over them."""

LINES = 60
TOTALS = 10
FORMAT = "AFNumber_Format(2, 0, 0, 0, '', true);"
KEYSTROKE = "AFNumber_Keystroke(2, 0, 0, 0, '', true);"


def line(index):
    return f"line{index}"


def total(index):
    """What the total of that index adds up: six lines, the last one all other totals."""
    if index == TOTALS - 1:
        return [f"total{i}" for i in range(TOTALS - 1)]
    return [line(i) for i in range(index * 6, index * 6 + 6)]


def known_sum(names):
    return "AFSimple_Calculate('SUM', new Array(" + ", ".join(f"'{name}'" for name in names) + "));"


def free_sum(names):
    return "event.value = " + " + ".join(f"Number(getField('{name}').value)" for name in names) + ";"


def scripted_form(sum_script):
    """The bytes of the form. `sum_script` makes the script of a total from the names that it adds up."""
    def script(event, text):
        return f"/{event}<</S/JavaScript/JS({text})>>"

    names = [line(i) for i in range(LINES)] + [f"total{i}" for i in range(TOTALS)]
    first = 6
    refs = " ".join(f"{first + i} 0 R" for i in range(len(names)))
    totals = " ".join(f"{first + LINES + i} 0 R" for i in range(TOTALS))
    objects = [
        "<</Type/Catalog/Pages 2 0 R/AcroForm 3 0 R>>",
        "<</Type/Pages/Count 1/Kids[4 0 R]>>",
        f"<</Fields[{refs}]/CO[{totals}]/DA(/Helv 10 Tf 0 g)/DR<</Font<</Helv 5 0 R>>>>>>",
        f"<</Type/Page/Parent 2 0 R/MediaBox[0 0 595 842]/Annots[{refs}]>>",
        "<</Type/Font/Subtype/Type1/BaseFont/Helvetica/Encoding/WinAnsiEncoding>>",
    ]
    for i, name in enumerate(names):
        actions = script("F", FORMAT) + (script("C", sum_script(total(i - LINES))) if i >= LINES else script("K", KEYSTROKE))
        left, bottom = 50 + 250 * (i % 2), 800 - 20 * (i // 2)
        objects.append(f"<</Type/Annot/Subtype/Widget/F 4/FT/Tx/T({name})/DA(/Helv 10 Tf 0 g)/Q 2/P 4 0 R"
                       f"/Rect[{left} {bottom} {left + 200} {bottom + 16}]/AA<<{actions}>>>>")
    out = "%PDF-1.7\n"
    table = f"xref\n0 {len(objects) + 1}\n0000000000 65535 f \n"
    for number, body in enumerate(objects, 1):
        table += f"{len(out):010d} 00000 n \n"
        out += f"{number} 0 obj\n{body}\nendobj\n"
    out += f"{table}trailer\n<</Size {len(objects) + 1}/Root 1 0 R>>\nstartxref\n{len(out)}\n%%EOF\n"
    return out.encode("ascii")
