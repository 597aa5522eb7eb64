"""What is filled into which field, and the programs that fill it."""

import dataclasses
import json
import re
import subprocess
import tempfile

from pdf_reader import text_of
from pdf_writer import Name, dump

MULTILINE, PASSWORD, COMB = 1 << 12, 1 << 13, 1 << 24
WIDEST = 0.68  # of the font size: no capital or digit of the usual fonts takes more, but W and M
PADDING = 4  # points on both sides together


@dataclasses.dataclass
class Fill:
    """A field, what it is to hold, and the texts that its widgets are then to show; none for a button."""

    name: str
    kind: str
    flags: int
    widgets: list
    value: object
    shown: list


class Refused(Exception):
    pass


def output_of(*command):
    done = subprocess.run([str(part) for part in command], stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=300)
    return done.returncode, done.stdout.decode("utf-8", "replace"), done.stderr.decode("utf-8", "replace")


def fields_of(command, path):
    status, out, errors = output_of(command, "list", "--json", path)
    if status:
        raise Refused(errors.strip())
    return json.loads(out)


def fill_of(field, pdf, value):
    """What the field is to show when it holds `value`: a text, a list of texts or a bool; None keeps what it holds."""
    widgets = [pdf.by_number[number] for number in field["widgets"] if number in pdf.by_number]
    if isinstance(value, bool):
        states = [state[1:] for widget in widgets for state in sorted(widget.on_states())]
        value = (states or ["Yes"])[0] if value else "Off"
    shown = [] if field["type"] == "button" or value is None else value if isinstance(value, list) else [value]
    texts = {option["value"]: option["text"] or option["value"] for option in field["options"]}
    shown = [texts.get(text, text) for text in shown]
    if field["flags"] & PASSWORD and field["type"] == "text" and shown:
        shown = ["*" * len(value)]
    return Fill(field["name"], field["kind"], field["flags"], widgets, value, shown)


# A value for every field


def font_size(widget):
    """The size that the default appearance asks for; 0 when the box decides."""
    found = re.search(r"([-\d.]+)\s+Tf", text_of(widget.inherited("/DA") or ""))
    return abs(float(found[1])) if found else 0


def room(widget, multiline):
    """How many characters a line holds, and how many lines there are."""
    width, height = widget.rect[2] - widget.rect[0], widget.rect[3] - widget.rect[1]
    if widget.turn() in (90, 270):
        width, height = height, width
    size = font_size(widget) or (12 if multiline else max(4, min(12, height * 0.7)))
    return int((width - PADDING) / (size * WIDEST)), int((height - PADDING) / (size * 1.2))


def new_text(field, widgets, number):
    """A text that stands nowhere else and fits the smallest widget: one line, or two, or two of which one is wrapped."""
    multiline = bool(field["flags"] & MULTILINE)
    rooms = [room(widget, multiline) for widget in widgets]
    columns, lines = min(columns for columns, _ in rooms), min(lines for _, lines in rooms)
    word = f"Z{number:03d}X Quick"[: max(1, columns)].strip()
    if field["flags"] & COMB and field["maxLength"]:
        word = f"Z{number:03d}XKUVYABCDEFGH"[: field["maxLength"]]
    text = "X" if word == field["value"] else word
    if multiline and columns > 11 and lines > 1:
        text += "\nJ%03d" % number
        if lines > 3:
            text += " brown foxes jump over dogs"[: columns * 3 // 2]
    return text[: field["maxLength"]].strip() if field["maxLength"] else text


def new_option(field, widgets):
    """Another option than the chosen one that is in sight and fits; None when there is none."""
    first, last = 0, len(field["options"])
    columns = min(room(widget, False)[0] for widget in widgets)
    if field["kind"] == "list":
        first = widgets[0].inherited("/TI") or 0
        height = min(widget.rect[3] - widget.rect[1] for widget in widgets)
        last = first + max(1, int((height - PADDING) / ((font_size(widgets[0]) or 12) * 1.2)))
    current = field["value"] if isinstance(field["value"], list) else [field["value"]]
    texts = [(option["text"] or option["value"], option["value"]) for option in field["options"][first:last]]
    others = [(len(text) > columns, value) for text, value in texts if text.strip() and value not in current]
    return min(others, key=lambda option: option[0])[1] if others else None


def new_state(field, widgets):
    """The first state that is not the present one; true leaves the choice of a name to the filler."""
    states = [state[1:] for widget in widgets for state in sorted(widget.on_states())]
    if not states:
        return None if field["kind"] == "radio" else field["value"] in (None, "Off")
    return next((state for state in states if state != field["value"]), "Off")


def new_value(field, widgets, number):
    if field["type"] == "text":
        return new_text(field, widgets, number)
    if field["type"] == "choice":
        return new_option(field, widgets)
    return new_state(field, widgets)


def plan(command, path, pdf, left_out):
    """The fills of a real file: a new value for every field that can take one. Counts the widgets left out, by reason."""
    fields, wishes = {}, {}
    for number, field in enumerate(fields_of(command, path)):
        if field["kind"] not in ("text", "combo", "list", "check", "radio") or field["name"] in fields:
            continue
        seen = [w for w in map(pdf.by_number.get, field["widgets"]) if w and not w.why_unseen()]
        left_out["on no page"] += sum(w not in pdf.by_number for w in field["widgets"])
        value = new_value(field, seen, number) if seen and not field["readOnly"] else None
        if value is None:
            left_out["read-only" if field["readOnly"] else "without another value"] += len(seen)
            continue
        fields[field["name"]], wishes[field["name"]] = field, value
    for result in dry_run(command, path, wishes):
        if result["result"] == "refused":
            left_out["refused"] += sum(number in pdf.by_number for number in fields[result["name"]]["widgets"])
            del wishes[result["name"]]
        elif isinstance(wishes[result["name"]], bool):
            wishes[result["name"]] = result["value"]
    return [fill_of(fields[name], pdf, value) for name, value in wishes.items()]


def dry_run(command, path, wishes):
    with tempfile.NamedTemporaryFile("w", suffix=".json") as data:
        json.dump(wishes, data)
        data.flush()
        lines = output_of(command, "fill", "--dry-run", "--report", "--data", data.name, path)[1].splitlines()
    return [json.loads(line) for line in lines if line.startswith("{")]


# Programs that fill


def with_formwork(command, path, fills, out):
    data = out.with_suffix(".json")
    data.write_text(json.dumps({fill.name: fill.value for fill in fills}))
    return output_of(command, "fill", "--data", data, path, "-o", out)


def with_pdftk(_, path, fills, out):
    """Values in FDF, the names of states as names."""

    def value(fill):
        if fill.kind in ("check", "radio"):
            return Name(fill.value)
        return fill.value

    data = out.with_suffix(".fdf")
    values = dump({"FDF": {"Fields": [{"T": fill.name, "V": value(fill)} for fill in fills]}})
    data.write_bytes(b"%FDF-1.2\n1 0 obj\n" + values + b"\nendobj\ntrailer\n<< /Root 1 0 R >>\n%%EOF\n")
    return output_of("pdftk", path, "fill_form", data, "output", out)


FILLERS = {"formwork": with_formwork, "pdftk": with_pdftk}


def fill(filler, command, path, fills, out):
    """Fills a copy of the file. `command`: formwork's path, whatever the filler."""
    status, _, errors = FILLERS[filler](command, path, [fill for fill in fills if fill.value is not None], out)
    if status or not out.exists():
        raise Refused(errors.strip() or f"{filler} wrote nothing")
