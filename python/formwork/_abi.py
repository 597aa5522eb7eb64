"""The C interface as ctypes sees it: what capi/formwork.h declares, under the same names. Nothing is loaded here."""

from __future__ import annotations

from ctypes import (CFUNCTYPE, POINTER, Structure, c_char_p, c_double, c_int, c_int64, c_long, c_size_t, c_uint, c_uint32,
                    c_uint64, c_void_p)
from enum import IntEnum
from typing import Any, Dict, Tuple


class Code(IntEnum):
    """What became of a call of the library. The numbers are fixed."""

    OK = 0
    NOT_FOUND = 1
    IO = 2
    NOT_PDF = 3
    NO_CATALOG = 4
    ENCRYPTED = 5
    DAMAGED = 6
    LIMIT = 7
    NO_FIELD = 8
    WRONG_KIND = 9
    READ_ONLY = 10
    NOT_PERMITTED = 11
    BAD_EDIT = 12
    BAD_DATA = 13
    BAD_REQUEST = 14
    NO_MEMORY = 15
    STALE = 16
    BAD_ARGUMENT = 17
    CANCELLED = 18
    END = 19
    INTERNAL = 20


class Flags(IntEnum):
    PLAIN = 0
    FORCE = 1
    CHECK_ONLY = 2
    GUESS = 4
    ALL_FIELDS = 8
    SHOWN = 16
    IGNORE_UNKNOWN = 32
    UPDATE_ONLY = 64


class Fact(IntEnum):
    HAS_FORM = 0
    HAS_XFA = 1
    HAS_ONLY_XFA = 2
    IS_SIGNED = 3
    IS_ENCRYPTED = 4
    PERMITS_FILLING = 5
    PERMITS_EDITING = 6
    WAS_REPAIRED = 7


class Option(IntEnum):
    SCRIPTS = 0
    SCRIPT_MILLISECONDS = 1
    DRAW = 2
    WRITE_XFA = 3


class Text(IntEnum):
    NAME = 0
    VALUE = 1
    DEFAULT = 2
    LABEL = 3
    MAPPING_NAME = 4
    SHOWN_TEXT = 5
    FORMAT = 6


class FieldKind(IntEnum):
    GROUP = 0
    RADIO = 1
    PUSH = 2
    CHECK = 3
    TEXT_FIELD = 4
    COMBO = 5
    LIST = 6
    SIGNATURE = 7


class Number(IntEnum):
    KIND = 0
    FIELD_FLAGS = 1
    MAX_LENGTH = 2
    OBJECT = 3
    PAGE = 4
    SIGNED = 5


class List(IntEnum):
    VALUES = 0
    OPTION_VALUES = 1
    OPTION_TEXTS = 2
    STATES = 3
    STATE_VALUES = 4


class Format(IntEnum):
    JSON = 0
    CSV = 1
    FDF = 2
    XFDF = 3
    URL = 4
    XML = 5
    XFA = 6
    JSON_LINES = 7


class SameNames(IntEnum):
    REFUSE = 0
    RENAME = 1
    JOIN = 2


class OpenOptions(Structure):
    _fields_ = [("struct_size", c_size_t), ("password", c_char_p), ("borrow", c_int), ("no_repair", c_int)]


Progress = CFUNCTYPE(c_int, c_double, c_void_p)

_document = c_void_p
_field = c_uint64
_code = c_int
_flags = c_uint
_text_out = POINTER(c_char_p)
_buffer_out = (POINTER(c_void_p), POINTER(c_size_t))

# Each function with what it returns and takes.
PROTOTYPES: Dict[str, Tuple[Any, Tuple[Any, ...]]] = {
    "fw_version": (c_char_p, ()),
    "fw_error": (c_char_p, ()),
    "fw_free": (None, (c_void_p,)),
    "fw_open_file": (_code, (c_char_p, POINTER(OpenOptions), POINTER(_document))),
    "fw_open_bytes": (_code, (c_void_p, c_size_t, POINTER(OpenOptions), POINTER(_document))),
    "fw_close": (None, (_document,)),
    "fw_has": (_code, (_document, c_int, POINTER(c_int))),
    "fw_set_option": (_code, (_document, c_int, c_long)),
    "fw_set_progress": (_code, (_document, Progress, c_void_p)),
    "fw_note": (_code, (_document, c_size_t, _text_out)),
    "fw_field_count": (_code, (_document, POINTER(c_size_t))),
    "fw_field_at": (_code, (_document, c_size_t, POINTER(_field))),
    "fw_find_field": (_code, (_document, c_char_p, _flags, POINTER(_field))),
    "fw_field_of_object": (_code, (_document, c_uint32, POINTER(_field))),
    "fw_field_text": (_code, (_document, _field, c_int, _text_out)),
    "fw_field_number": (_code, (_document, _field, c_int, POINTER(c_int64))),
    "fw_item_count": (_code, (_document, _field, c_int, POINTER(c_size_t))),
    "fw_item": (_code, (_document, _field, c_int, c_size_t, _text_out)),
    "fw_list_json": (_code, (_document, _flags, *_buffer_out)),
    "fw_summary_json": (_code, (_document, *_buffer_out)),
    "fw_set_value": (_code, (_document, _field, c_char_p, _flags)),
    "fw_set_values": (_code, (_document, _field, POINTER(c_char_p), c_size_t, _flags)),
    "fw_fill": (_code, (_document, c_int, c_void_p, c_size_t, _flags, *_buffer_out)),
    "fw_export": (_code, (_document, c_int, POINTER(_field), c_size_t, _flags, *_buffer_out)),
    "fw_reset": (_code, (_document, POINTER(_field), c_size_t, _flags)),
    "fw_calculate": (_code, (_document,)),
    "fw_revert": (_code, (_document,)),
    "fw_add_field": (_code, (_document, c_char_p, _flags, POINTER(_field))),
    "fw_change_field": (_code, (_document, _field, c_char_p, _flags)),
    "fw_remove_field": (_code, (_document, _field, _flags)),
    "fw_rename_field": (_code, (_document, _field, c_char_p, c_char_p, _flags)),
    "fw_flatten": (_code, (_document, _flags)),
    "fw_append": (_code, (_document, _document, c_int, _flags)),
    "fw_save_file": (_code, (_document, c_char_p)),
    "fw_save_bytes": (_code, (_document, _flags, *_buffer_out)),
}
