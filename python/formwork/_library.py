"""Finds and loads the shared library, and calls it for one document."""

from __future__ import annotations

import ctypes
import json
import os
import sys
import threading
import weakref
from ctypes import byref, c_char_p, c_int, c_int64, c_size_t, c_uint64, c_void_p
from pathlib import Path
from typing import Any, Callable, List, Optional, Tuple, Union

from . import _abi
from .errors import ClosedForm, FileMissing, FormworkError, error_of

NAME = "libformwork.so.0"
VARIABLE = "FORMWORK_LIBRARY"

# PyPy hands copies of bytes to C, which end with the call.
_BYTES_STAY = sys.implementation.name == "cpython"


def _load() -> ctypes.CDLL:
    inside = Path(__file__).with_name(NAME)
    place = str(inside) if inside.exists() else os.environ.get(VARIABLE) or NAME
    try:
        library = ctypes.CDLL(place)
        for name, (result, arguments) in _abi.PROTOTYPES.items():
            function = getattr(library, name)
            function.restype = result
            function.argtypes = arguments
    except (OSError, AttributeError) as error:
        raise ImportError(f"{place} can't be used as the library of formwork: {error}. Install a wheel, which "
                          f"has it inside, or let {VARIABLE} name it.") from error
    return library


lib = _load()


def version() -> str:
    """The version of the library that runs."""
    return _decode(lib.fw_version()) or ""


def encode(text: str) -> bytes:
    """A text as the library takes it. Raises ValueError where it holds a zero, which would end it."""
    data = text.encode()
    if b"\0" in data:
        raise ValueError(f"a text with a zero character: {text!r}")
    return data


def _decode(data: Optional[bytes]) -> Optional[str]:
    return None if data is None else data.decode("utf-8", "replace")


def _last_error() -> str:
    return _decode(lib.fw_error()) or "unknown failure"


class _Watch:
    """A progress callback for C. An exception in it ends the call, which raises it then."""

    def __init__(self, report: Callable[[float], object]) -> None:
        self._report = report
        self.error: Optional[BaseException] = None
        self.function = _abi.Progress(self._called)

    def _called(self, done: float, user: object) -> int:
        try:
            self._report(done)
            return 0
        except BaseException as error:  # KeyboardInterrupt, too
            self.error = error
            return 1


class Document:
    """A document of the library. Threads take turns; each call raises what went wrong."""

    def __init__(self, pointer: c_void_p, keep: object) -> None:
        self._pointer: Optional[c_void_p] = pointer
        self._lock = threading.RLock()
        self._busy = False
        self._watch: Optional[_Watch] = None
        self._end = weakref.finalize(self, _close, pointer, keep)

    @classmethod
    def open(cls, source: Union[str, bytes], password: Optional[str], repair: bool) -> Document:
        """Opens the file at a path, or the bytes of one."""
        pointer = c_void_p()
        options = _abi.OpenOptions(ctypes.sizeof(_abi.OpenOptions), None if password is None else encode(password), 0,
                                   int(not repair))
        if isinstance(source, str):
            code = lib.fw_open_file(os.fsencode(source), byref(options), byref(pointer))
        else:
            options.borrow = int(_BYTES_STAY)
            code = lib.fw_open_bytes(source, len(source), byref(options), byref(pointer))
        if code:
            raise error_of(code, _last_error(), FileMissing if code == _abi.Code.NOT_FOUND else None)
        return cls(pointer, source)

    def close(self) -> None:
        with self._lock:
            self._refuse_reentry()
            self._pointer = None
            self._end()

    @property
    def closed(self) -> bool:
        return self._pointer is None

    def watch(self, report: Optional[Callable[[float], object]]) -> None:
        watch = _Watch(report) if report else None
        self.call(lib.fw_set_progress, watch.function if watch else ctypes.cast(0, _abi.Progress), None)
        self._watch = watch

    def _refuse_reentry(self) -> None:
        if self._busy:
            raise FormworkError("a progress callback can't use the form that it is told about", _abi.Code.BAD_ARGUMENT)

    def _code(self, function: Any, *arguments: Any) -> int:
        self._refuse_reentry()
        if self._pointer is None:
            raise ClosedForm("the form was closed", _abi.Code.BAD_ARGUMENT)
        self._busy = True
        try:
            code: int = function(self._pointer, *arguments)
        finally:
            self._busy = False
        if self._watch and self._watch.error:
            error, self._watch.error = self._watch.error, None
            raise error
        return code

    def call(self, function: Any, *arguments: Any) -> None:
        with self._lock:
            if code := self._code(function, *arguments):
                raise error_of(code, _last_error())

    def handed_out(self, kind: Any, function: Any, *arguments: Any) -> Any:
        """Calls with a pointer for what is handed out as the last argument."""
        with self._lock:
            out = kind()
            self.call(function, *arguments, byref(out))
            return out.value

    def text(self, function: Any, *arguments: Any) -> Optional[str]:
        with self._lock:  # borrowed until the next change
            return _decode(self.handed_out(c_char_p, function, *arguments))

    def number(self, field: int, which: _abi.Number) -> int:
        return int(self.handed_out(c_int64, lib.fw_field_number, field, which))

    def has(self, fact: _abi.Fact) -> bool:
        return bool(self.handed_out(c_int, lib.fw_has, fact))

    def find(self, name: str, flags: int = 0) -> int:
        return int(self.handed_out(c_uint64, lib.fw_find_field, encode(name), flags))

    def field_at(self, index: int) -> int:
        return int(self.handed_out(c_uint64, lib.fw_field_at, index))

    def items(self, field: int, which: _abi.List) -> List[str]:
        with self._lock:
            count: int = self.handed_out(c_size_t, lib.fw_item_count, field, which)
            return [self.text(lib.fw_item, field, which, at) or "" for at in range(count)]

    def buffer_and_code(self, function: Any, *arguments: Any) -> Tuple[bytes, int, str]:
        """Calls with pointers for a buffer and its size as the last arguments; failures may give one, too."""
        with self._lock:
            buffer, size = c_void_p(), c_size_t()
            try:
                code = self._code(function, *arguments, byref(buffer), byref(size))
                message = _last_error() if code else ""
                return ctypes.string_at(buffer, size.value) if buffer else b"", code, message
            finally:
                lib.fw_free(buffer)

    def buffer(self, function: Any, *arguments: Any) -> bytes:
        data, code, message = self.buffer_and_code(function, *arguments)
        if code:
            raise error_of(code, message)
        return data

    def json(self, function: Any, *arguments: Any) -> Any:
        return json.loads(self.buffer(function, *arguments))

    def append(self, other: Document, names: _abi.SameNames, flags: int) -> None:
        with self._lock, other._lock:
            if other._pointer is None:
                raise ClosedForm("the form to append was closed", _abi.Code.BAD_ARGUMENT)
            code = self._code(lib.fw_append, other._pointer, names, flags)
            if code:
                error = error_of(code, _last_error())
                self.call(lib.fw_revert)
                raise error


def _close(pointer: c_void_p, _keep: object) -> None:
    """`_keep` is what the document borrows from: it ends only now."""
    lib.fw_close(pointer)
