"""Facts that a case declares about a widget beside the criteria that all have. Each tells whether it holds."""

import collections
import math

from viewers import Mupdf, RESOLUTION, VIEWERS, changed, plain

INK = 160  # darker pixels are ink on white paper


def direction(look):
    """The direction of writing on the page as shown, as (x, y) with y downwards."""
    turns = collections.Counter(char.along for char in look.chars)
    return turns.most_common(1)[0][0] if turns else (1, 0)


def extent(box, along):
    """Where a box begins and ends along a direction."""
    ends = box[0] * along[0] + box[1] * along[1], box[2] * along[0] + box[3] * along[1]
    return min(ends), max(ends)


def baselines(look):
    """The characters by line, from the first line down; marks that are raised or lowered belong to their line."""
    along, lines = direction(look), []
    down = lambda char: char.y * along[0] - char.x * along[1]
    for char in sorted(look.chars, key=down):
        if not lines or down(char) - down(lines[-1][0]) > 0.6 * char.size:
            lines.append([])
        lines[-1].append(char)
    return [[char for char in look.chars if char in line] for line in lines]


def turned(look, degrees):
    """The text runs this way, counterclockwise, on the page as shown."""
    return bool(look.chars) and direction(look) == {0: (1, 0), 90: (0, -1), 180: (-1, 0), 270: (0, 1)}[degrees]


def align(look, wanted):
    """The first line is at the left, in the centre, at the right: 0, 1 or 2."""
    if not look.chars:
        return False
    along = direction(look)
    start, end = extent(look.rect, along)
    ends = [extent(char[:4], along) for char in baselines(look)[0]]
    before, after = min(first for first, _ in ends) - start, end - max(last for _, last in ends)
    return (-1 < before < 14 and before < after, abs(before - after) < 4, -1 < after < 14 and after < before)[wanted]


def cells(look, wanted):
    """(cells, the cell of the first character): each character is in the middle of its cell."""
    count, first = wanted
    along = direction(look)
    start, end = extent(look.rect, along)
    middles = [(sum(extent(char[:4], along)) / 2 - start) * count / (end - start) for char in look.chars]
    return bool(middles) and all(abs(middle - (first + i + 0.5)) < 0.25 for i, middle in enumerate(middles))


def lines(look, wanted):
    """The text stands on this many lines, or on at least as many as the negative number says."""
    count = len(baselines(look))
    return count >= -wanted if wanted < 0 else count == wanted


def size(look, wanted):
    """The font size is between the two."""
    return bool(look.chars) and all(wanted[0] - 0.1 <= char.size <= wanted[1] + 0.1 for char in look.chars)


def font(look, name):
    """The text is drawn with a font of this name."""
    return bool(look.chars) and all(name in char.font for char in look.chars)


def absent(look, text):
    """The text is not there any more."""
    return all(plain(text) not in look.text(viewer) for viewer in VIEWERS)


def untouched(look, _):
    """The picture is the one before the fill."""
    return not any(changed(look.rows(viewer, look.page.before), look.rows(viewer)) for viewer in VIEWERS)


def gone(look, key):
    """Neither the widget nor its field has the entry."""
    return look.after.inherited("/" + key) is None


def edges(look, wanted):
    """The number of edges with a line on them, solid or dashed."""
    return all(sum(map(has_ink, edge_strips(look.rows(viewer)))) >= wanted for viewer in VIEWERS)


def edge_strips(rows, depth=3):
    """Strips along the edges, as lists of columns across them."""
    columns = list(zip(*rows))
    return (
        list(zip(*rows[:depth])), list(zip(*rows[-depth:])), list(zip(*columns[:depth])), list(zip(*columns[-depth:]))
    )


def has_ink(strip):
    return sum(min(column) < INK for column in strip) > 0.3 * len(strip)


def paper(look, wanted):
    """The background has this grey."""
    for viewer in VIEWERS:
        pixels = sorted(b"".join(look.rows(viewer, inset=4)))
        if not pixels or abs(pixels[len(pixels) // 2] - wanted) > 12:
            return False
    return True


def darkest(look, wanted):
    """The darkest pixel is between these greys: text of a light colour is light."""
    return all(wanted[0] <= min(map(min, look.rows(viewer, inset=4)), default=255) <= wanted[1] for viewer in VIEWERS)


def marked(look, texts):
    """The rows of these texts, and no other, have another background than the lowest white."""
    for viewer in VIEWERS:
        rows = look.rows(viewer, inset=4)
        for line in baselines(look):
            top, bottom = min(char.y0 for char in line), max(char.y1 for char in line)
            pixel = int(((top + bottom) / 2 - look.rect[1]) * RESOLUTION / 72) - 4
            is_marked = 0 <= pixel < len(rows) and sorted(rows[pixel])[len(rows[pixel]) // 2] < 250
            if is_marked != (plain("".join(char.text for char in line)) in map(plain, texts)):
                return False
    return bool(look.chars)


def on(look, index):
    """Of the field's widgets this one alone is on."""
    is_on = look.after.entries.get("/AS", "/Off") != "/Off"
    return is_on == (look.before is look.fill.widgets[index])


def drawn(look, texts):
    """Both viewers show these texts."""
    return all(plain(text) in look.text(viewer) for text in texts for viewer in VIEWERS)


def stream(look, _):
    """The widget has an appearance, though its field was not filled."""
    return look.after.normal_appearance() == "stream"


def ink(look, _):
    """The widget shows more than white in both viewers."""
    return all(min(map(min, look.rows(viewer)), default=255) < INK for viewer in VIEWERS)


def glyphs(look, _):
    """Where a character is, both viewers show something."""
    boxes = [char[:4] for char in look.chars if min(char.x1 - char.x0, char.y1 - char.y0) > 2]
    pictures = (look.rows(viewer, rect=box) for viewer in VIEWERS for box in boxes)
    return bool(boxes) and all(max(map(max, rows)) - min(map(min, rows)) > 60 for rows in pictures if rows)


FACTS = {fact.__name__: fact for fact in (
    turned, align, cells, lines, size, font, absent, untouched, gone, edges, paper, darkest, marked, on, drawn, stream, ink,
    glyphs,
)}
