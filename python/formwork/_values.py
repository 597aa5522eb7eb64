"""Values of Python as the library takes them, and back."""

from __future__ import annotations

import datetime
import decimal
import json
import re
from typing import Any, Dict, List, Mapping, NamedTuple, Optional, Sequence, Tuple, Union

# A value of a field: None where it has none, and several of a list box.
Value = Union[None, str, List[str]]
# What a field can be set to. None clears it.
Settable = Union[None, str, bool, int, float, decimal.Decimal, datetime.date, Sequence[str]]


class Rect(NamedTuple):
    """A rectangle on a page in points, 1/72 inch, from its lower left corner."""

    x0: float
    y0: float
    x1: float
    y1: float

    @property
    def width(self) -> float:
        return self.x1 - self.x0

    @property
    def height(self) -> float:
        return self.y1 - self.y0


# A page, counted from 1, and a rectangle on it: a Rect, or x, y, width and height.
Place = Tuple[Optional[int], Optional[Sequence[float]]]


def text_of(value: object) -> str:
    """One value as text. Numbers have no exponent; dates are as ISO 8601 writes them."""
    if isinstance(value, str):
        return value
    value = value.item() if hasattr(value, "item") else value  # a number of numpy
    if isinstance(value, bool):
        return "true" if value else "false"
    if isinstance(value, int):
        return str(value)
    if isinstance(value, (float, decimal.Decimal)):
        number = decimal.Decimal(str(value))
        if number.is_finite():
            return format(number, "f")
    if isinstance(value, datetime.date):
        return str(value)
    raise TypeError(f"a field can't be set to {value!r}: only to texts, numbers, bools, dates and lists of texts")


def is_list(value: object) -> bool:
    return isinstance(value, (list, tuple, set, frozenset))


def json_of(values: Mapping[str, Any]) -> bytes:
    """Form data for the library. Names with None are left out: they leave their fields alone."""
    plain: Dict[str, object] = {}
    for name, value in values.items():
        if not isinstance(name, str):
            raise TypeError(f"names of fields are texts, not {name!r}")
        if isinstance(value, (str, bool)):
            plain[name] = value
        elif value is not None:
            plain[name] = [text_of(one) for one in value] if is_list(value) else text_of(value)
    return json.dumps(plain, ensure_ascii=False).encode()


def settings_json(settings: Mapping[str, Any]) -> bytes:
    """What a field is to be, as JSON: ``max_length`` becomes ``maxLength``."""
    names = {re.sub("_([a-z])", lambda part: part[1].upper(), name): value for name, value in settings.items()}
    if "places" in names:
        names["places"] = [{"page": page, "rect": _corner_and_size(rect)} for page, rect in names["places"]]
    if "options" in names:
        names["options"] = [one if isinstance(one, str) else {"value": one[0], "text": one[1]} for one in names["options"]]
    return json.dumps(names, ensure_ascii=False).encode()


def _corner_and_size(rect: Sequence[float]) -> List[float]:
    return [rect.x0, rect.y0, rect.width, rect.height] if isinstance(rect, Rect) else list(rect)
