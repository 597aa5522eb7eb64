"""A PDF file with a form, open."""

from __future__ import annotations

import json
import os
import sys
import warnings
from ctypes import byref, c_char_p, c_uint64
from pathlib import Path
from typing import (IO, Any, Callable, Dict, Iterable, Iterator, List, Mapping, NamedTuple, NoReturn, Optional, Sequence,
                    Tuple, Union)

from . import _abi
from ._abi import Code, Fact, FieldKind, Flags, Format
from ._library import Document, encode, lib
from ._values import Place, Settable, Value, is_list, json_of, settings_json, text_of
from .errors import FieldNotFound, FormworkError, FormworkWarning, NotPermitted, Refusal, ValueRefused, error_of
from .field import Field, Kind

Source = Union[str, "os.PathLike[str]", bytes, bytearray, memoryview, IO[bytes]]
Target = Union[str, "os.PathLike[str]", IO[bytes]]
FieldOrName = Union[Field, str]
Bytes = bytes  # inside Form that name is a method
VALUELESS = (FieldKind.GROUP, FieldKind.PUSH, FieldKind.SIGNATURE)
REFUSALS = (Code.WRONG_KIND, Code.READ_ONLY, Code.LIMIT)  # of a value; the limit is that of its length
SCRIPTS = {"none": 0, "known": 1, "all": 2}


class Outcome(NamedTuple):
    """
    What became of a value: "set", "coerced" (understood as something else than it said), "kept" (the field has it
    already), "calculated" (changed by scripts of the form) or "refused", which ``why`` explains.
    """

    name: str
    result: str
    why: Optional[str]
    value: object


class Form(Mapping[str, Value]):
    """
    An open file and its form: a mapping of full names to values. ``open`` makes it. Threads may share one and take
    turns.
    """

    def __init__(self, document: Document, title: str, options: Dict[str, Any]) -> None:
        self._document = document
        self._title = title
        self._options = options
        self._shape = 0  # counts changes of the form itself
        self._state = 0  # counts changes of values, too
        self._listed: Tuple[int, List[Dict[str, Any]]] = (-1, [])
        self._records: Tuple[int, Dict[int, Dict[str, Any]]] = (-1, {})
        self._notes_told = 0
        self._tells_notes = True

    # What every object of Python has

    def __enter__(self) -> Form:
        return self

    def __exit__(self, *_: object) -> None:
        self.close()

    def close(self) -> None:
        """Ends the form; what was not saved is lost. Does nothing the second time."""
        self._document.close()

    @property
    def closed(self) -> bool:
        return self._document.closed

    def __repr__(self) -> str:
        return f"<Form {self._title} closed>" if self.closed else f"<Form {self._title} {len(self)} values>"

    __eq__ = object.__eq__
    __hash__ = object.__hash__

    def __bool__(self) -> bool:
        return True  # also without a field

    def __reduce__(self) -> NoReturn:
        raise TypeError("a form can't be copied or pickled: open its bytes() once more")

    # The fields

    @property
    def fields(self) -> Tuple[Field, ...]:
        """All fields with a name of their own, groups and buttons, too, in the order of the form."""
        return tuple(Field(self, handle, record) for handle, record in self._listed_fields())

    def _list(self, state: int) -> List[Dict[str, Any]]:
        """The list, unless it is older than `state`: then made anew."""
        if self._listed[0] < state:
            self._listed = (self._state, self._document.json(lib.fw_list_json, Flags.PLAIN))
        return self._listed[1]

    def _fresh_list(self) -> List[Dict[str, Any]]:
        return self._list(self._state)

    def _listed_fields(self) -> Iterator[Tuple[int, Dict[str, Any]]]:
        for at, record in enumerate(self._list(self._shape)):
            is_data = record["kind"] == Kind.DATA.value
            yield 0 if is_data else self._document.field_at(at), record

    def _record_of(self, handle: int) -> Dict[str, Any]:
        if self._records[0] != self._shape:
            self._records = (self._shape, dict(self._listed_fields()))
        if handle not in self._records[1]:
            self._document.number(handle, _abi.Number.OBJECT)  # raises, as it has ended
        return self._records[1][handle]

    def field(self, name: str, *, guess: bool = False) -> Field:
        """
        The first field with this full name. With ``guess`` a part of a name that no other field has, or its number in
        the list, will do. Raises FieldNotFound.
        """
        try:
            handle = self._document.find(name, Flags.GUESS if guess else Flags.PLAIN)
        except FieldNotFound:
            for record in self._xfa_records():
                if record["name"] == name:
                    return Field(self, 0, record)
            raise
        return Field(self, handle)

    def _xfa_records(self) -> List[Dict[str, Any]]:
        return self._fresh_list() if self._document.has(Fact.HAS_ONLY_XFA) else []

    # The mapping

    def _values(self) -> Dict[str, Value]:
        values: Dict[str, Value] = {}
        for at, record in enumerate(self._fresh_list()):
            if record["name"] not in values and Kind(record["kind"]).takes_value:
                value = _plain(record["value"])
                if value is None and record["kind"] == Kind.TEXT.value:  # lists leave out long texts that streams have
                    value = _plain(self._document.items(self._document.field_at(at), _abi.List.VALUES))
                values[record["name"]] = value
        return values

    def __iter__(self) -> Iterator[str]:
        return iter(self._values())

    def __len__(self) -> int:
        return len(self._values())

    def __contains__(self, name: object) -> bool:
        try:
            return isinstance(name, str) and self._value_field(name) is not None
        except FieldNotFound:
            return False

    def __getitem__(self, name: str) -> Value:
        """The value of the field with this full name, see Field.value."""
        return self._value_field(name).value

    def __setitem__(self, name: str, value: Settable) -> None:
        """
        Sets a field to a text, number or date; a check box to True, False or a state; a choice to a value or a shown
        text; a list box to a list of them; None clears. What the form computes is computed. Raises FieldNotFound and
        ValueRefused.
        """
        self._set(self._value_field(name), name, value)

    def _value_field(self, name: str) -> Field:
        field = self.field(name)
        if field._handle and self._document.number(field._handle, _abi.Number.KIND) in VALUELESS:
            raise FieldNotFound(f'the field "{name}" takes no value', Code.NO_FIELD)
        return field

    def to_dict(self) -> Dict[str, Value]:
        """The values by full names; what ``fill`` takes back."""
        return dict(self._values())

    def _value_of(self, field: Field) -> Value:
        if not field._handle:
            return self._values().get(field.name)
        return _plain(self._document.items(field._handle, _abi.List.VALUES))

    def _set(self, field: Field, name: str, value: Settable, force: bool = False) -> None:
        if not field._handle:
            self.fill({name: "" if value is None else value}, force=force)
            return
        try:
            self._change(*self._setter(field._handle, value), int(force))
        except FormworkError as error:
            if error.code not in REFUSALS:
                raise
            raise ValueRefused(error.message, error.code, [Refusal(name, error.message, value)]) from None

    @staticmethod
    def _setter(handle: int, value: Settable) -> Tuple[Any, ...]:
        if value is not None and not is_list(value):
            return lib.fw_set_value, handle, encode(text_of(value))
        texts = [encode(text_of(one)) for one in value] if isinstance(value, Iterable) else []
        return lib.fw_set_values, handle, (c_char_p * len(texts))(*texts), len(texts)

    # Filling

    def fill(self, values: Mapping[str, Any], *, strict: bool = True, force: bool = False) -> List[Outcome]:
        """
        Sets all values or, where one of them is refused, none: then ValueRefused tells every refusal. None leaves a
        field alone. With ``strict=False`` names that no field has are passed over. ``force`` fills what is read-only
        or locked, too.
        """
        return self._fill(Format.JSON, json_of(values), strict, force)

    def check(self, values: Mapping[str, Any], *, strict: bool = True, force: bool = False) -> List[Outcome]:
        """What ``fill`` would do. Changes and raises nothing for values that are refused."""
        return self._fill(Format.JSON, json_of(values), strict, force, Flags.CHECK_ONLY)

    def import_data(self, source: Source, format: Optional[str] = None, *, strict: bool = True,
                    force: bool = False) -> List[Outcome]:
        """
        Fills the form with the JSON, CSV, FDF or XFDF data of a file, or with its bytes. The format is that of the
        file's suffix, or one of "json", "csv", "fdf" and "xfdf".
        """
        if format is None:
            if not isinstance(source, (str, os.PathLike)):
                raise ValueError("the format of the data must be named: json, csv, fdf or xfdf")
            format = Path(source).suffix[1:].lower()
        data = Path(source).read_bytes() if isinstance(source, (str, os.PathLike)) else read(source)
        return self._fill(_format(format), data, strict, force)

    def _fill(self, format: Format, data: Bytes, strict: bool, force: bool, more: int = 0) -> List[Outcome]:
        flags = more | (Flags.FORCE if force else 0) | (0 if strict else Flags.IGNORE_UNKNOWN)
        try:
            report, code, message = self._document.buffer_and_code(lib.fw_fill, format, data, len(data), flags)
        finally:
            self._changed()
        outcomes = _outcomes(report)
        if code and not (more & Flags.CHECK_ONLY and outcomes):
            refusals = [Refusal(one.name, one.why or "", one.value) for one in outcomes if one.result == "refused"]
            error = error_of(code, message)
            if refusals and not isinstance(error, NotPermitted):
                error = ValueRefused(message, error.code, refusals)
            raise error
        self._tell_notes()
        return outcomes

    def reset(self, fields: Optional[Iterable[FieldOrName]] = None, *, force: bool = False) -> None:
        """Brings all fields, or some with all under them, to their defaults."""
        if fields is None:
            self._change(lib.fw_reset, None, 0, int(force))
        elif handles := self._handles(fields):
            self._change(lib.fw_reset, handles, len(handles), int(force))

    def _handles(self, fields: Iterable[FieldOrName]) -> Any:
        handles = [one._handle if isinstance(one, Field) else self._document.find(one) for one in fields]
        return (c_uint64 * len(handles))(*handles)

    def calculate(self) -> None:
        """Runs all calculations of the form once more."""
        self._change(lib.fw_calculate)

    def revert(self) -> None:
        """Drops every change since the file was opened."""
        self._reshape(lib.fw_revert)
        self._notes_told = len(self.notes)

    def export_data(self, format: str, fields: Optional[Iterable[FieldOrName]] = None, *, shown: bool = False) -> Bytes:
        """
        The values as "json", "csv", "fdf", "xfdf", "url", "xml" or "xfa" data; of some fields with all under them.
        With ``shown`` as the formats of the form show them.
        """
        handles = self._handles(fields) if fields is not None else None
        if handles is not None and not handles:
            raise ValueError("no fields to export")
        return self._document.buffer(lib.fw_export, _format(format), handles, len(handles) if handles else 0,
                                     Flags.SHOWN if shown else Flags.PLAIN)

    # The form itself

    def add(self, kind: Union[Kind, str], name: str, *, page: int = 1, rect: Optional[Sequence[float]] = None,
            places: Sequence[Place] = (), force: bool = False, **settings: Any) -> Field:
        """
        Adds a field. ``rect`` is a Rect, or x, y, width and height; ``places`` has several with their pages, such as
        ``[(1, (50, 660, 16, 16)), (1, (90, 660, 16, 16))]``, or the widgets of another field. Settings are label,
        required, max_length, options (texts, or pairs of a value and what is shown), states, ...: docs/c.md names all.
        """
        if rect is not None:
            places = [(page, rect), *places]
        settings = {"kind": kind.value if isinstance(kind, Kind) else kind, "name": name, "places": places, **settings}
        handle = c_uint64()
        self._reshape(lib.fw_add_field, settings_json(settings), int(force), byref(handle))
        return Field(self, handle.value)

    def remove(self, name: str, *, force: bool = False) -> None:
        """Removes the field with this full name and all under it."""
        self.field(name).remove(force=force)

    def flatten(self, *, force: bool = False) -> None:
        """Makes what the fields show a part of the pages, and takes the form off."""
        self._reshape(lib.fw_flatten, int(force))

    def append(self, other: Union[Form, Source], *, same_names: str = "refuse", force: bool = False) -> None:
        """
        Appends the pages and fields of another form. Fields that both have are a reason to "refuse", get another name
        ("rename") or become one ("join"). After a failure this form is as it was opened.
        """
        if same_names.upper() not in _abi.SameNames.__members__:
            raise ValueError(f'same_names is "refuse", "rename" or "join", not {same_names!r}')
        form = other if isinstance(other, Form) else open_form(other)
        try:
            self._document.append(form._document, _abi.SameNames[same_names.upper()], int(force))
        finally:
            self._changed(shape=True)
            if form is not other:
                form.close()
        self._tell_notes()

    # Saving

    def save(self, target: Target, *, update_only: bool = False) -> None:
        """
        Writes the file: the bytes of the input and one update behind them. A path is replaced as a whole or stays as
        it was; it may be the one that was opened. A file object gets the bytes. ``update_only`` writes the update
        without the input.
        """
        if isinstance(target, (str, os.PathLike)) and not update_only:
            self._document.call(lib.fw_save_file, os.fsencode(target))
            self._tell_notes()
            return
        data = self.bytes(update_only=update_only)
        if isinstance(target, (str, os.PathLike)):
            Path(target).write_bytes(data)
        else:
            target.write(data)

    def bytes(self, *, update_only: bool = False) -> Bytes:
        """What ``save`` would write."""
        data = self._document.buffer(lib.fw_save_bytes, Flags.UPDATE_ONLY if update_only else Flags.PLAIN)
        self._tell_notes()
        return data

    # What there is to know

    @property
    def summary(self) -> Dict[str, Any]:
        """Pages, fields by kind, signatures, encryption, scripts, ... at a glance."""
        summary: Dict[str, Any] = self._document.json(lib.fw_summary_json)
        return summary

    @property
    def notes(self) -> List[str]:
        """What people should know although the calls succeeded. Each is a FormworkWarning, too, when it comes up."""
        notes: List[str] = []
        while (note := self._document.text(lib.fw_note, len(notes))) is not None:
            notes.append(note)
        return notes

    @property
    def has_form(self) -> bool:
        return self._document.has(Fact.HAS_FORM)

    @property
    def has_xfa(self) -> bool:
        return self._document.has(Fact.HAS_XFA)

    @property
    def is_signed(self) -> bool:
        return self._document.has(Fact.IS_SIGNED)

    @property
    def is_encrypted(self) -> bool:
        return self._document.has(Fact.IS_ENCRYPTED)

    @property
    def was_repaired(self) -> bool:
        """The file was damaged, and a repaired copy took its place."""
        return self._document.has(Fact.WAS_REPAIRED)

    @property
    def permits_filling(self) -> bool:
        return self._document.has(Fact.PERMITS_FILLING)

    @property
    def permits_editing(self) -> bool:
        return self._document.has(Fact.PERMITS_EDITING)

    def on_progress(self, report: Optional[Callable[[float], object]]) -> None:
        """
        Calls ``report`` now and then, with what is done from 0 to 1, while a call takes long. An exception in it ends
        that call, which raises it. None ends this.
        """
        self._document.watch(report)

    # How changes are told

    def _changed(self, *, shape: bool = False) -> None:
        self._state += 1
        if shape:
            self._shape = self._state

    def _change(self, function: Any, *arguments: Any) -> None:
        try:
            self._document.call(function, *arguments)
        finally:
            self._changed()
        self._tell_notes()

    def _reshape(self, function: Any, *arguments: Any) -> None:
        try:
            self._document.call(function, *arguments)
        finally:
            self._changed(shape=True)
        self._tell_notes()

    def _tell_notes(self) -> None:
        """Warns of the notes that are new, at the line outside this package."""
        if not self._tells_notes:
            return
        while (note := self._document.text(lib.fw_note, self._notes_told)) is not None:
            self._notes_told += 1
            warnings.warn(note, FormworkWarning, stacklevel=_depth_of_caller())


def _depth_of_caller() -> int:
    depth, here = 1, os.path.dirname(__file__)
    frame = sys._getframe(1)
    while frame.f_back and os.path.dirname(frame.f_code.co_filename) == here:
        depth, frame = depth + 1, frame.f_back
    return depth


def _plain(value: Value) -> Value:
    """A list only where there are several values."""
    if not isinstance(value, list):
        return value
    return value if len(value) > 1 else value[0] if value else None


def _outcomes(report: bytes) -> List[Outcome]:
    entries = json.loads(report or b"[]")
    return [Outcome(one["name"], one["result"], one.get("why"), one.get("value")) for one in entries]


def _format(name: str) -> Format:
    if name.upper() not in Format.__members__:
        raise ValueError(f"{name!r} is no format of form data")
    return Format[name.upper()]


def read(source: Union[bytes, bytearray, memoryview, IO[bytes]]) -> bytes:
    """All bytes of an input that is no path."""
    data = source if isinstance(source, (bytes, bytearray, memoryview)) else source.read()
    if isinstance(data, str):
        raise TypeError("the file must be opened in binary mode")
    return bytes(data)


def open_form(source: Source, *, password: Optional[str] = None, repair: bool = True, scripts: str = "known",
              draw: bool = True, write_xfa: bool = False) -> Form:
    """
    Opens a PDF file by its path, its bytes or a file object. Raises FileMissing, BadFile and PasswordError.

    ``password`` is the user's or the owner's. ``repair=False`` refuses damaged files, which a process of its own
    repairs else. ``scripts`` tells which scripts of the form run: "none", "known" (well-known calls, the default) or
    "all". ``draw=False`` leaves it to viewers to draw what changed. ``write_xfa`` keeps the XFA data in step with the
    fields.
    """
    if scripts not in SCRIPTS:
        raise ValueError(f'scripts is "none", "known" or "all", not {scripts!r}')
    place: Union[str, bytes] = os.fspath(source) if isinstance(source, (str, os.PathLike)) else read(source)
    document = Document.open(place, password, repair)
    options = {"password": password, "repair": repair, "scripts": scripts, "draw": draw, "write_xfa": write_xfa}
    form = Form(document, repr(place) if isinstance(place, str) else f"of {len(place)} bytes", options)
    document.call(lib.fw_set_option, _abi.Option.SCRIPTS, SCRIPTS[scripts])
    document.call(lib.fw_set_option, _abi.Option.DRAW, int(draw))
    document.call(lib.fw_set_option, _abi.Option.WRITE_XFA, int(write_xfa))
    form._tell_notes()
    return form
