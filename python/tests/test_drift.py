"""
That the package and the library belong together: prototypes, numbers and records against capi/formwork.h, and a form
filled. Runs as a program, too, with nothing but Python.
"""

import ctypes
import inspect
import re
from ctypes import POINTER
from pathlib import Path

import formwork
from formwork import _abi

ROOT = Path(__file__).resolve().parents[2]
HEADER = re.sub(r"/\*.*?\*/", "", (ROOT / "capi" / "formwork.h").read_text(encoding="utf-8"), flags=re.S)
TYPES = {
    "void": None, "int": ctypes.c_int, "unsigned": ctypes.c_uint, "long": ctypes.c_long, "double": ctypes.c_double,
    "size_t": ctypes.c_size_t, "int32_t": ctypes.c_int32, "uint32_t": ctypes.c_uint32, "int64_t": ctypes.c_int64,
    "fw_field": ctypes.c_uint64, "fw_progress": _abi.Progress,
    "const char*": ctypes.c_char_p, "void*": ctypes.c_void_p, "const void*": ctypes.c_void_p,
    "fw_document*": ctypes.c_void_p, "fw_document**": POINTER(ctypes.c_void_p), "char**": POINTER(ctypes.c_void_p),
    "const char**": POINTER(ctypes.c_char_p), "const char* const*": POINTER(ctypes.c_char_p),
    "const fw_field*": POINTER(ctypes.c_uint64), "const fw_open_options*": POINTER(_abi.OpenOptions),
}
ENUMERATIONS = {
    "fw_code": _abi.Code, "fw_flags": _abi.Flags, "fw_fact": _abi.Fact, "fw_option": _abi.Option, "fw_text": _abi.Text,
    "fw_kind": _abi.FieldKind, "fw_number": _abi.Number, "fw_list": _abi.List, "fw_format": _abi.Format,
    "fw_same_names": _abi.SameNames,
}


def c_type(words):
    """What ctypes has for a type of the header."""
    words = re.sub(r"\s+", " ", words).strip()
    if words in ENUMERATIONS:
        return ctypes.c_int
    return TYPES[words] if words in TYPES or not words.endswith("*") else POINTER(TYPES[words[:-1]])


def test_prototypes():
    declared = {name: (c_type(result), [c_type(re.sub(r"\w+$", "", one)) for one in arguments.split(",") if one != "void"])
                for result, name, arguments in re.findall(r"FW_API\s+([\w\s*]+?)\b(fw_\w+)\(([^)]*)\);", HEADER)
                if name in _abi.PROTOTYPES}
    assert declared == {name: (result, list(arguments)) for name, (result, arguments) in _abi.PROTOTYPES.items()}


def test_numbers():
    for name, numbers in ENUMERATIONS.items():
        body = re.search(rf"enum {name}(?: FW_AS_INT)? {{(.*?)}}", HEADER, re.S)[1]
        declared = {member: int(number) for member, number in re.findall(r"FW_(\w+)\s*=\s*(\d+)", body)}
        assert declared == {member.name: member.value for member in numbers}, name
    assert set(re.findall(r"enum (\w+)(?: FW_AS_INT)? {", HEADER)) == set(ENUMERATIONS)


def test_records():
    body = re.search(r"struct fw_open_options {(.*?)}", HEADER, re.S)[1]
    assert [(name, c_type(kind)) for kind, name in re.findall(r"([\w\s*]+?)(\w+);", body)] == _abi.OpenOptions._fields_
    result, done, user = re.search(r"typedef (\w+) \(\*fw_progress\)\((\w+) \w+, ([\w*]+) \w+\)", HEADER).groups()
    assert (_abi.Progress._restype_, _abi.Progress._argtypes_) == (c_type(result), (c_type(done), c_type(user)))


def test_a_form_is_filled():
    with formwork.open(ROOT / "samples" / "kinds.pdf") as form:
        form.fill({"address.city": "Ulm", "agree": True, "toppings": ["ol", "mu"]})
        saved = form.bytes()
    with formwork.open(saved) as form:
        assert [form[name] for name in ("address.city", "agree", "toppings")] == ["Ulm", "Yes", ["ol", "mu"]]


def test_codes_have_exceptions():
    for code in formwork.Code:
        if code not in (formwork.Code.OK, formwork.Code.END, formwork.Code.INTERNAL):
            assert type(formwork.errors.error_of(code, "")) is not formwork.FormworkError, code


if __name__ == "__main__":
    for name, test in list(globals().items()):
        if name.startswith("test_") and inspect.isfunction(test):
            test()
