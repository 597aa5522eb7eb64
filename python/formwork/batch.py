"""One form, filled many times."""

from __future__ import annotations

import os
from pathlib import Path
from string import Formatter
from typing import Any, Callable, Dict, Iterator, List, NamedTuple, Optional, Set, Tuple, Union

from ._abi import Code
from ._rows import BEYOND, Row, Rows, rows_of, split_lists
from .errors import BadData, BadRequest, FormworkError, Refusal, ValueRefused
from .form import Form, Source, open_form

Output = Union[None, str, "os.PathLike[str]", Callable[[Row, int], Union[str, "os.PathLike[str]"]]]


class Filled(NamedTuple):
    """What became of a row."""

    row: int  #: its number, from 1
    path: Optional[Path]  #: the file that was written
    data: Optional[bytes]  #: the filled form, where there are no outputs
    error: Optional[FormworkError]  #: why it was refused
    notes: Tuple[str, ...]  #: what people should know although it was filled

    @property
    def ok(self) -> bool:
        return self.error is None

    @property
    def refusals(self) -> Tuple[Refusal, ...]:
        return self.error.refusals if isinstance(self.error, ValueRefused) else ()


def fill_many(form: Union[Form, Source], rows: Rows, output: Output = None, *, password: Optional[str] = None,
              strict: bool = True, force: bool = False, update_only: bool = False, raise_errors: bool = False,
              progress: Optional[Callable[[int, Optional[int]], object]] = None) -> Iterator[Filled]:
    """
    Fills the form once for each row and yields what became of it, as it is asked for.

    ``form`` is what ``open`` takes, or an open form, which stays as it is: all rows begin with what it holds, and the
    options that it was opened with count. ``rows`` are mappings of names to values, a pandas frame, or the path of a
    CSV or JSON lines file. None, missing values and empty cells leave a field alone.

    ``output`` is a pattern, such as ``"out/{id}.pdf"`` with the value of the column ``id``, or ``"out/{row:06}.pdf"``
    with the number of the row, or a function of the row and its number. Without it the results have the bytes. A
    column that the pattern names need not be a field; another one that is none refuses its row, unless
    ``strict=False``.

    A row that is refused, or whose file can't be written, does not end the run: its result has the ``error``, which
    ``raise_errors=True`` raises. ``progress`` is called after each row with how many are done, and of how many where
    that is known.
    """
    if isinstance(form, Form):
        worker = open_form(form.bytes(), **form._options)
    else:
        worker = open_form(form, password=password)
    run = _Run(worker, output, strict, force, update_only)
    return _results(run, rows, raise_errors, progress)


def _results(run: _Run, rows: Rows, raise_errors: bool,
             progress: Optional[Callable[[int, Optional[int]], object]]) -> Iterator[Filled]:
    with run.form:
        several, total = rows_of(rows)
        for number, row in enumerate(several, 1):
            filled = run.fill(row, number)
            if filled.error and raise_errors:
                raise filled.error
            if progress:
                progress(number, total)
            yield filled


class _Run:
    """A form that is filled with one row after another."""

    def __init__(self, form: Form, output: Output, strict: bool, force: bool, update_only: bool) -> None:
        self.form = form
        self._output = output if output is None or callable(output) else os.fspath(output)
        self._strict = strict
        self._force = force
        self._update_only = update_only
        self._paths: Dict[Path, int] = {}
        self._not_fields: Set[str] = {BEYOND}
        form._tells_notes = False
        if isinstance(self._output, str):
            names = {name for _, name, _, _ in Formatter().parse(self._output) if name is not None}
            if not names:
                raise ValueError(f"{self._output}: the output needs a name for each row, such as {{row}}")
            self._not_fields |= {name for name in names if name not in form}
        self._several = {field.name: tuple(one.value for one in field.options)
                         for field in form.fields if field.multiple}

    def fill(self, row: Row, number: int) -> Filled:
        path: Optional[Path] = None
        self.form.revert()
        before = len(self.form.notes)
        try:
            if BEYOND in row:
                raise BadData(f"row {number} has more cells than there are names", Code.BAD_DATA)
            path = self._path(row, number)
            values = {name: value for name, value in row.items() if name not in self._not_fields}
            self.form.fill(split_lists(values, self._several), strict=self._strict, force=self._force)
            data = self._save(path)
        except FormworkError as error:
            return Filled(number, None, None, error, ())
        return Filled(number, path, data, None, tuple(self.form.notes[before:]))

    def _save(self, path: Optional[Path]) -> Optional[bytes]:
        if path is None:
            return self.form.bytes(update_only=self._update_only)
        self.form.save(path, update_only=self._update_only)
        return None

    def _path(self, row: Row, number: int) -> Optional[Path]:
        if self._output is None:
            return None
        path = Path(_name(self._output, row, number) if isinstance(self._output, str) else self._output(row, number))
        first = self._paths.setdefault(path, number)
        if first != number:
            raise BadRequest(f"rows {first} and {number} give one name: {path}", Code.BAD_REQUEST)
        return path


def _name(pattern: str, row: Row, number: int) -> str:
    """The pattern with values of the row; none of them leads to another folder."""
    parts: List[str] = []
    for text, name, spec, _ in Formatter().parse(pattern):
        parts.append(text)
        if name == "row":
            parts.append(format(number, spec or ""))
        elif name is not None:
            parts.append(_part(name, row.get(name), spec or "", number))
    return "".join(parts)


def _part(name: str, value: Any, spec: str, number: int) -> str:
    text = "" if value is None else format(value, spec)
    if not text or text in (".", "..") or any(one in "/\\" or ord(one) < 32 or ord(one) == 127 for one in text):
        raise BadRequest(f"row {number}: {text!r} in {name} can't be a part of a file's name", Code.BAD_REQUEST)
    return text
