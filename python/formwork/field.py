"""Fields of a form."""

from __future__ import annotations

from enum import Enum
from typing import TYPE_CHECKING, Any, Dict, NamedTuple, Optional, Tuple

from ._abi import Number, Text
from ._library import encode, lib
from ._values import Rect, Settable, Value, settings_json

if TYPE_CHECKING:
    from .form import Form

READ_ONLY = 1 << 0
REQUIRED = 1 << 1
MULTIPLE = 1 << 21


class Kind(Enum):
    """What a field is."""

    GROUP = "container"  #: holds others, and no value
    RADIO = "radio"
    PUSH = "push"
    CHECK = "check"
    TEXT = "text"
    COMBO = "combo"
    LIST = "list"
    SIGNATURE = "signature"
    DATA = "data"  #: a value in the XFA data of a form without fields

    @property
    def takes_value(self) -> bool:
        return self not in (Kind.GROUP, Kind.PUSH, Kind.SIGNATURE)


class Widget(NamedTuple):
    """Where a field is shown: the page, counted from 1, and the place on it; None where it has none."""

    page: Optional[int]
    rect: Optional[Rect]


class Choice(NamedTuple):
    """An option of a choice field: the value that is kept, and the text that is shown."""

    value: str
    text: str


class Field:
    """
    A field of an open form. It stays good while values change, and until it is removed or the whole form changes;
    then its use raises StaleField. Two of these are equal when they are the same field.
    """

    __slots__ = ("_form", "_handle", "_about", "_shape")

    def __init__(self, form: Form, handle: int, record: Optional[Dict[str, Any]] = None) -> None:
        self._form = form
        self._handle = handle  # 0 of values in XFA data
        self._about = record
        self._shape = form._shape

    @property
    def _record(self) -> Dict[str, Any]:
        """The entry of the list, which may be older than values are."""
        if self._about is None or (self._handle and self._shape != self._form._shape):
            self._about, self._shape = self._form._record_of(self._handle), self._form._shape
        return self._about

    def __repr__(self) -> str:
        if self._form.closed:
            return "<Field of a closed form>"
        return f"<Field {self.name!r} {self.kind.name.lower()} value={self.value!r}>"

    def __eq__(self, other: object) -> bool:
        return isinstance(other, Field) and self._form is other._form and self._key == other._key

    def __hash__(self) -> int:
        return hash((id(self._form), self._key))

    @property
    def _key(self) -> object:
        return self._handle or self.name

    @property
    def name(self) -> str:
        """The full name, such as ``address.city``."""
        return self._text(Text.NAME) or str(self._record["name"])

    @property
    def kind(self) -> Kind:
        return Kind(self._record["kind"])

    @property
    def label(self) -> Optional[str]:
        """What people are told that it is."""
        return self._record.get("label")

    @property
    def mapping_name(self) -> Optional[str]:
        """What it is called in exported data."""
        return self._record.get("mappingName")

    @property
    def object_number(self) -> int:
        """The number of its object in the file."""
        return int(self._record.get("object", 0))

    @property
    def options(self) -> Tuple[Choice, ...]:
        """What a choice field offers."""
        return tuple(Choice(one["value"], one["text"] or one["value"]) for one in self._record.get("options", ()))

    @property
    def states(self) -> Tuple[str, ...]:
        """The on states of a check box or a radio group, one for each widget. "Off" is always one more."""
        return tuple(self._record.get("states", ()))

    @property
    def export_values(self) -> Tuple[str, ...]:
        """What the states export, in the same order."""
        return tuple(self._record.get("exportValues", ()))

    @property
    def widgets(self) -> Tuple[Widget, ...]:
        """Where it is shown."""
        return tuple(Widget(one["page"], Rect(*one["rect"]) if one["rect"] else None)
                     for one in self._record.get("widgetRects", ()))

    @property
    def page(self) -> Optional[int]:
        """The page of its first widget, counted from 1."""
        return self._record.get("page")

    @property
    def max_length(self) -> Optional[int]:
        """The most characters that a text field takes."""
        return self._record.get("maxLength")

    @property
    def flags(self) -> int:
        """Its flags, its own or inherited (ISO 32000-2, tables 227, 228, 230 and 232)."""
        return self._form._document.number(self._handle, Number.FIELD_FLAGS) if self._handle else 0

    @property
    def read_only(self) -> bool:
        return bool(self.flags & READ_ONLY)

    @property
    def required(self) -> bool:
        return bool(self.flags & REQUIRED)

    @property
    def multiple(self) -> bool:
        """A list box that takes several values."""
        return self.kind is Kind.LIST and bool(self.flags & MULTIPLE)

    @property
    def is_signed(self) -> bool:
        """A signature field with a signature."""
        return self.kind is Kind.SIGNATURE and self._form._document.number(self._handle, Number.SIGNED) != 0

    @property
    def value(self) -> Value:
        """
        None, a text or, of a list box that holds several, a list of texts; of a check box or a radio group the name
        of its state. It can be set as ``form[name]`` can.
        """
        return self._form._value_of(self)

    @value.setter
    def value(self, value: Settable) -> None:
        self.set(value)

    def set(self, value: Settable, *, force: bool = False) -> None:
        """The same as setting ``value``; with ``force`` also where it is read-only or a signature locks it."""
        self._form._set(self, self.name, value, force)

    @property
    def values(self) -> Tuple[str, ...]:
        """All its values."""
        value = self.value
        return () if value is None else tuple(value) if isinstance(value, list) else (value,)

    @property
    def checked(self) -> bool:
        """Whether a check box or a radio group has a state other than "Off"."""
        return self.kind in (Kind.CHECK, Kind.RADIO) and self.value not in (None, "", "Off")

    @property
    def default(self) -> Optional[str]:
        """What a reset gives it."""
        return self._text(Text.DEFAULT)

    @property
    def shown(self) -> Optional[str]:
        """What its widgets show of the value, where a script of the form formats it."""
        return self._text(Text.SHOWN_TEXT)

    @property
    def format(self) -> Optional[str]:
        """What its format takes, in words such as "number, 2 decimals"."""
        return self._text(Text.FORMAT)

    def _text(self, which: Text) -> Optional[str]:
        return self._form._document.text(lib.fw_field_text, self._handle, which) if self._handle else None

    def reset(self, *, force: bool = False) -> None:
        """Brings it, and all under it, to the defaults."""
        self._form.reset([self], force=force)

    def change(self, *, force: bool = False, **settings: Any) -> None:
        """
        Changes what the settings name, as Form.add has them: ``field.change(required=True, max_length=8)``. ``places``
        moves it.
        """
        self._form._reshape(lib.fw_change_field, self._handle, settings_json(settings), int(force))

    def rename(self, name: Optional[str] = None, *, group: Optional[str] = None, force: bool = False) -> None:
        """Gives it another partial name, and moves it under the group with this full name; "" is the top."""
        self._form._reshape(lib.fw_rename_field, self._handle, None if name is None else encode(name),
                            None if group is None else encode(group), int(force))

    def remove(self, *, force: bool = False) -> None:
        """Removes it with all under it."""
        self._form._reshape(lib.fw_remove_field, self._handle, int(force))
