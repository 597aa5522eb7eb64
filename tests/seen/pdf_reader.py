"""Reads the widgets of a PDF file through qpdf's JSON, so that no code under measure judges itself."""

import json
import subprocess

HIDDEN, NO_VIEW = 2, 32


class Unreadable(Exception):
    pass


class Widget:
    """A widget by its place: the page from 0 and the place in the page's annotations, which fillers keep."""

    def __init__(self, pdf, page, index, ref):
        self.pdf, self.page, self.index = pdf, page, index
        self.number = int(ref.split()[0]) if isinstance(ref, str) else None
        self.entries = pdf.resolve(ref)
        self.rect = normal(pdf.numbers(self.entries.get("/Rect")))

    def inherited(self, key):
        """The entry of the widget, its nearest ancestor or the form."""
        found = self.pdf.inherited(self.entries, key)
        return self.pdf.resolve(self.pdf.form.get(key)) if found is None else found

    def normal_appearance(self):
        """None, "stream", or the set of the states that have a stream."""
        normal = self.pdf.resolve(self.pdf.resolve(self.entries.get("/AP", {})).get("/N"))
        if isinstance(normal, Stream):
            return "stream"
        if not isinstance(normal, dict):
            return None
        return {state for state, ref in normal.items() if isinstance(self.pdf.resolve(ref), Stream)}

    def on_states(self):
        states = self.normal_appearance()
        return states - {"/Off"} if isinstance(states, set) else set()

    def turn(self):
        mark = self.pdf.resolve(self.entries.get("/MK", {}))
        return self.pdf.resolve(mark.get("/R", 0)) % 360 if isinstance(mark, dict) else 0

    def shown_turn(self):
        """How far the content is turned on the page as shown, in degrees counterclockwise."""
        return (self.turn() - self.pdf.pages[self.page].turn) % 360

    def why_unseen(self):
        """Why nobody can see this widget, whatever is filled; None when it can be seen."""
        if self.pdf.resolve(self.entries.get("/F", 0)) & (HIDDEN | NO_VIEW):
            return "hidden"
        left, bottom, right, top = self.rect
        if right - left < 1 or top - bottom < 1:
            return "without area"
        box = self.pdf.pages[self.page].box
        wide = min(right, box[2]) - max(left, box[0])
        high = min(top, box[3]) - max(bottom, box[1])
        outside = wide <= 0 or high <= 0 or wide * high < (right - left) * (top - bottom) / 2
        return "outside the page" if outside else None

    def shown_rect(self):
        """Left, top, right, bottom on the page as viewers show it, in points from its upper left corner."""
        box, turn = self.pdf.pages[self.page].box, self.pdf.pages[self.page].turn
        x0, y0, x1, y1 = self.rect
        if turn == 90:
            return y0 - box[1], x0 - box[0], y1 - box[1], x1 - box[0]
        if turn == 180:
            return box[2] - x1, y0 - box[1], box[2] - x0, y1 - box[1]
        if turn == 270:
            return box[3] - y1, box[2] - x1, box[3] - y0, box[2] - x0
        return x0 - box[0], box[3] - y1, x1 - box[0], box[3] - y0


class Stream(dict):
    """The dictionary of a stream."""


class Page:
    def __init__(self, pdf, ref):
        self.entries = pdf.resolve(ref)
        media = normal(pdf.numbers(pdf.inherited(self.entries, "/MediaBox"))) or [0, 0, 612, 792]
        crop = normal(pdf.numbers(pdf.inherited(self.entries, "/CropBox"))) or media
        self.box = [max(media[0], crop[0]), max(media[1], crop[1]), min(media[2], crop[2]), min(media[3], crop[3])]
        self.turn = (pdf.inherited(self.entries, "/Rotate") or 0) % 360


class Pdf:
    def __init__(self, path):
        command = ["qpdf", "--json=2", "--json-key=pages", "--json-key=qpdf", str(path)]
        found = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        if found.returncode not in (0, 3):
            raise Unreadable("qpdf can't read it")
        data = json.loads(found.stdout.decode("utf-8", "replace"))
        self.objects = data["qpdf"][1]
        root = self.resolve(self.objects["trailer"]["value"]["/Root"])
        form = self.resolve(root.get("/AcroForm"))
        self.form = form if isinstance(form, dict) else {}
        self.pages = [Page(self, page["object"]) for page in data["pages"]]
        self.widgets = [widget for number in range(len(self.pages)) for widget in self.page_widgets(number)]
        self.by_number = {widget.number: widget for widget in self.widgets}
        self.by_place = {(widget.page, widget.index): widget for widget in self.widgets}

    def page_widgets(self, number):
        annots = self.resolve(self.pages[number].entries.get("/Annots")) or []
        for index, ref in enumerate(annots if isinstance(annots, list) else []):
            entries = self.resolve(ref)
            if isinstance(entries, dict) and len(self.numbers(entries.get("/Rect")) or []) == 4:
                yield Widget(self, number, index, ref)

    def resolve(self, value):
        for _ in range(20):
            if not (isinstance(value, str) and value.endswith(" R")):
                return value
            found = self.objects.get("obj:" + value, {})
            value = Stream(found["stream"]["dict"]) if "stream" in found else found.get("value")
        return None

    def inherited(self, entries, key):
        """The entry of a dictionary or its nearest ancestor."""
        for _ in range(50):
            if not isinstance(entries, dict) or key in entries:
                break
            entries = self.resolve(entries.get("/Parent"))
        return self.resolve(entries.get(key)) if isinstance(entries, dict) else None

    def numbers(self, value):
        values = [self.resolve(entry) for entry in self.resolve(value) or []]
        return values if all(isinstance(entry, (int, float)) for entry in values) else None


def normal(rect):
    """The rectangle with its corners in order; None stays."""
    return rect and [min(rect[0], rect[2]), min(rect[1], rect[3]), max(rect[0], rect[2]), max(rect[1], rect[3])]


def text_of(value):
    """The text of a string of qpdf's JSON."""
    if not isinstance(value, str):
        return ""
    if value.startswith("b:"):
        return bytes.fromhex(value[2:]).decode("latin-1")
    return value[2:] if value.startswith("u:") else value
