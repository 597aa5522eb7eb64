"""What the two viewers show: the text of a page with its places, and pictures of pages in grey."""

import collections
import html
import re
import subprocess
import unicodedata

RESOLUTION = 100  # pixels an inch
WINDOW = 10  # pixels: 7 points, a line of small text
DIFFERS = 20  # levels of grey between two pictures of the same viewer
FAINT = 0.35  # of the ink that the other viewer shows
PIXELS_CHANGED = 6  # fewer than the smallest letter has

# A word or a character: its box on the page as shown, in points; of MuPDF's characters also where the baseline starts and runs.
Item = collections.namedtuple("Item", "x0 y0 x1 y1 text x y along size font", defaults=(0, 0, (1, 0), 0, ""))


def run(*command):
    """The text a command prints; whatever it warns of is seen in its output or not at all."""
    done = subprocess.run([str(part) for part in command], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, timeout=300)
    return done.stdout.decode("utf-8", "replace")


class Poppler:
    name = "poppler"
    WORD = re.compile(r'<word xMin="([-\d.]+)" yMin="([-\d.]+)" xMax="([-\d.]+)" yMax="([-\d.]+)">(.*?)</word>', re.S)

    @classmethod
    def texts(cls, path, pages):
        first, last = min(pages) + 1, max(pages) + 1
        out = run("pdftotext", "-q", "-cropbox", "-bbox", "-f", first, "-l", last, path, "-")
        found = [
            [Item(*map(float, word[:4]), html.unescape(word[4])) for word in cls.WORD.findall(part)]
            for part in out.split("<page ")[1:]
        ]
        return {first - 1 + i: items for i, items in enumerate(found)}

    @staticmethod
    def draw(path, pages, folder):
        first, last = min(pages) + 1, max(pages) + 1
        ask = ("-gray", "-r", RESOLUTION, "-cropbox", "-f", first, "-l", last, "-sep", "", "-forcenum")
        run("pdftoppm", "-q", *ask, path, folder / "poppler")
        return {int(file.stem[len("poppler") :]) - 1: file for file in folder.glob("poppler*.pgm")}

    @staticmethod
    def text_in(path, page, rect):
        """The text of a rectangle alone: finds what a word that runs on beside the rectangle hides."""
        x0, y0, x1, y1 = (round(value) for value in rect)
        crop = ("-x", x0, "-y", y0, "-W", max(1, x1 - x0), "-H", max(1, y1 - y0))
        return run("pdftotext", "-q", "-cropbox", "-f", page + 1, "-l", page + 1, *crop, path, "-")


class Mupdf:
    name = "MuPDF"
    LINE = re.compile(r'<line [^>]*dir="([-\d.]+) ([-\d.]+)"')
    FONT = re.compile(r'<font name="([^"]*)" size="([-\d.]+)"')
    CHAR = re.compile(r'<char quad="([^"]*)" x="([-\d.]+)" y="([-\d.]+)"[^>]* c="([^"]*)"')

    @classmethod
    def texts(cls, path, pages):
        out = run("mutool", "draw", "-q", "-F", "stext", "-o", "-", path, listed(pages))
        return dict(zip(sorted(pages), (list(cls.characters(part)) for part in out.split("<page ")[1:])))

    @classmethod
    def characters(cls, part):
        along = font = size = None
        for row in part.splitlines():
            if found := cls.LINE.match(row):
                along = round(float(found[1])), round(float(found[2]))
            elif found := cls.FONT.match(row):
                font, size = found[1], float(found[2])
            elif found := cls.CHAR.match(row):
                corners = [float(value) for value in found[1].split()]
                box = min(corners[0::2]), min(corners[1::2]), max(corners[0::2]), max(corners[1::2])
                yield Item(*box, html.unescape(found[4]), float(found[2]), float(found[3]), along, size, font)

    @staticmethod
    def draw(path, pages, folder):
        ask = ("-r", RESOLUTION, "-c", "gray", "-F", "pnm", "-o", folder / "mupdf%d.pgm")
        run("mutool", "draw", "-q", *ask, path, listed(pages))
        return {page: folder / f"mupdf{page + 1}.pgm" for page in pages}


VIEWERS = (Poppler, Mupdf)


def listed(pages):
    return ",".join(str(page + 1) for page in sorted(pages))


def inside(items, rect, spare=1.0):
    """The items whose middle is in the rectangle."""
    x0, y0, x1, y1 = rect
    return [
        item for item in items
        if x0 - spare <= (item.x0 + item.x1) / 2 <= x1 + spare and y0 - spare <= (item.y0 + item.y1) / 2 <= y1 + spare
    ]


def plain(text):
    """Text without white space and invisible marks, with ligatures and presentation forms taken apart."""
    marks = ("Cf", "Zs", "Zl", "Zp", "Cc")
    text = unicodedata.normalize("NFKC", text)
    return "".join(c for c in text if unicodedata.category(c) not in marks and not 0xFE00 <= ord(c) <= 0xFE0F)


class Picture:
    """A page in grey, one byte a pixel."""

    def __init__(self, path):
        data = path.read_bytes() if path and path.exists() else b"P5 0 0 255\n"
        head = re.match(rb"P5\s+(\d+)\s+(\d+)\s+255\s", data)
        self.width, self.height = int(head[1]), int(head[2])
        self.data = memoryview(data)[head.end() :]

    def rows(self, rect, inset=0):
        """The rows of a rectangle given in points."""
        scale = RESOLUTION / 72
        x0, y0 = (max(0, round(value * scale) + inset) for value in rect[:2])
        x1 = min(self.width, round(rect[2] * scale) - inset)
        y1 = min(self.height, round(rect[3] * scale) - inset)
        if x1 <= x0:
            return []
        return [bytes(self.data[y * self.width + x0 : y * self.width + x1]) for y in range(y0, y1)]


def changed(before, after):
    """Whether enough pixels differ for a letter to have come or gone."""
    if len(before) != len(after):
        return True
    count = 0
    for row, other in zip(before, after):
        if row != other:
            count += sum(abs(a - b) > DIFFERS for a, b in zip(row, other))
    return count >= PIXELS_CHANGED


def window_means(rows):
    """The means of overlapping windows, which neither anti-aliasing nor a shift of half a point changes much."""
    step = WINDOW // 2
    for top in range(0, max(1, len(rows) - step), step):
        band = rows[top : top + WINDOW]
        sums = [sum(column) for column in zip(*band)]
        for left in range(0, max(1, len(sums) - step), step):
            part = sums[left : left + WINDOW]
            yield sum(part) / (len(part) * len(band))


def difference(before, after):
    """How far the pictures of two viewers are apart, 0 to 255, where a fill changed one of them.

    `before` and `after` have the rows of each viewer. Counted is the largest difference of ink in a window that one viewer
    leaves nearly empty. Ink is what differs from the most common grey of the first picture. A font or a line that one viewer
    draws bolder leaves the other more than FAINT of the ink and is no difference; something that one alone draws is.
    """
    if not all(after):
        return 255 if any(after) else 0
    height, width = min(map(len, after)), min(len(rows[0]) for rows in after)
    paper = collections.Counter(b"".join(after[0])).most_common(1)[0][0]
    ink = bytes(abs(level - paper) for level in range(256))
    means = [window_means([row[:width].translate(ink) for row in rows[:height]]) for rows in (*before, *after)]
    touched = [(a, b) for was_a, was_b, a, b in zip(*means) if abs(a - was_a) > 2 or abs(b - was_b) > 2]
    return max((abs(a - b) for a, b in touched if min(a, b) < FAINT * max(a, b)), default=0)
