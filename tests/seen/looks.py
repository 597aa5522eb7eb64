"""Judges one widget after the fill: the criteria that all have to hold, and the facts that hand-made cases add."""

import collections

from facts import FACTS, turned
from viewers import Mupdf, Poppler, RESOLUTION, VIEWERS, changed, difference, inside, plain

APART = 36  # levels of grey; see docs/appearance.md
EDGE = 2  # pixels: viewers round the lines at the edge differently

CRITERIA = ("text in poppler", "text in MuPDF", "text upright", "pictures agree", "picture changed", "appearance", "no flag")


def criteria_of(fill):
    """The criteria that a field of this kind can have."""
    if fill.value is None:
        return ()
    return CRITERIA if fill.shown else [name for name in CRITERIA if not name.startswith("text")]


class Page:
    """A page of a file in both viewers: texts, and pictures before and after."""

    def __init__(self, path, number, texts, before, after):
        self.path, self.number = path, number
        self.texts, self.before, self.after = texts, before, after


class Look:
    """A widget of a filled field as both viewers show it."""

    def __init__(self, page, fill, before, after):
        self.page, self.fill, self.before, self.after = page, fill, before, after
        self.rect = before.shown_rect()
        self.items = {viewer: inside(page.texts[viewer], self.rect) for viewer in VIEWERS}
        self.chars = [char for char in self.items[Mupdf] if char.text.strip()]

    def name(self):
        return f"{self.fill.name} (page {self.page.number + 1}, {self.fill.kind}, {self.fill.value!r})"

    def rows(self, viewer, pictures=None, rect=None, inset=0):
        return (pictures or self.page.after)[viewer].rows(rect or self.rect, inset)

    def text(self, viewer):
        return plain("".join(item.text for item in self.items[viewer]))

    def criteria(self):
        """The criteria that this widget has, and whether they hold."""
        held = {}
        if self.fill.shown:
            held["text in poppler"] = self.shows(self.text(Poppler)) or self.shows(
                plain(Poppler.text_in(self.page.path, self.page.number, self.rect))
            )
            held["text in MuPDF"] = self.shows(self.text(Mupdf))
            if any(map(plain, self.fill.shown)):
                held["text upright"] = turned(self, self.before.shown_turn())
        held["pictures agree"] = self.difference() <= APART
        if self.should_change():
            held["picture changed"] = all(
                changed(self.rows(viewer, self.page.before), self.rows(viewer)) for viewer in VIEWERS
            )
        held["appearance"] = self.has_appearance()
        held["no flag"] = self.after.pdf.resolve(self.after.pdf.form.get("/NeedAppearances")) is not True
        return held

    def judged(self, facts):
        """The criteria, unless the field got no value, and the facts that a case declares."""
        held = {} if self.fill.value is None else self.criteria()
        return dict(held, **{name: FACTS[name](self, wanted) for name, wanted in facts.items()})

    def difference(self):
        """How far the viewers' pictures are apart at best, when one may be a pixel off."""
        shifts = sorted(((x, y) for x in (-1, 0, 1) for y in (-1, 0, 1)), key=lambda shift: shift != (0, 0))
        best = 255.0
        for shift in shifts:
            if best > APART:
                best = min(best, self.difference_when(shift))
        return best

    def difference_when(self, shift):
        pixel = 72 / RESOLUTION
        moved = tuple(edge + pixel * shift[i % 2] for i, edge in enumerate(self.rect))
        rects = {Poppler: self.rect, Mupdf: moved}
        pictures = (self.page.before, self.page.after)
        return difference(*([self.rows(v, each, rects[v], EDGE) for v in VIEWERS] for each in pictures))

    def shows(self, found):
        return all(shows(text, found) for text in self.fill.shown)

    def state(self):
        """The state that a button's widget is to have: its own when it is the field's value, else Off.

        A widget without appearances has no state of its own before the fill: the filler names it.
        """
        own, wanted = self.before.on_states(), f"/{self.fill.value}"
        if not own:
            own, wanted = self.after.on_states(), self.after.inherited("/V")
        return wanted if wanted in own else "/Off"

    def should_change(self):
        if self.fill.shown:
            return True
        was = self.before.entries.get("/AS", "/Off")
        was_on = was in self.before.on_states()
        return was_on != (self.state() != "/Off") or (was_on and was != self.state())

    def has_appearance(self):
        normal = self.after.normal_appearance()
        if self.fill.shown:
            return normal == "stream"
        state = self.after.entries.get("/AS")
        return isinstance(normal, set) and state == self.state() and (state in normal or state == "/Off")


def is_loose(text):
    """Right-to-left and Indic text, of which viewers give back the letters, but not always in the order of reading."""
    return any(0x0590 <= ord(c) <= 0x08FF or 0x0900 <= ord(c) <= 0x0DFF for c in text)


def shows(text, found):
    """Whether what was found in a rectangle holds the text: its words, or the stars or dots of a password."""
    if text and set(text) == {"*"}:
        return any(found.count(mark) >= len(text) for mark in "*\u2022\u25cf\u2217\u00b7")
    if is_loose(text):
        return not collections.Counter(plain(text)) - collections.Counter(found)
    return all(plain(word) in found for word in text.split())
