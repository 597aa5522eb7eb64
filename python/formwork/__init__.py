"""
Formwork: read, fill, reset, edit and save the forms of PDF files.

    import formwork

    with formwork.open("form.pdf") as form:
        form["address.city"] = "Ulm"
        form.save("filled.pdf")
"""

from ._abi import Code
from ._library import version as library_version
from ._values import Rect, Settable, Value
from .batch import Filled, fill_many
from .errors import (BadData, BadFile, BadRequest, Cancelled, ClosedForm, EditRefused, FieldNotFound, FileFailed, FileMissing,
                     FormworkError, FormworkWarning, LimitExceeded, NotFound, NotPermitted, OutOfMemory, PasswordError, Refusal,
                     StaleField, ValueRefused)
from .field import Choice, Field, Kind, Widget
from .form import Form, Outcome
from .form import open_form as open

__version__ = library_version()

__all__ = [
    "BadData", "BadFile", "BadRequest", "Cancelled", "Choice", "ClosedForm", "Code", "EditRefused", "Field", "FieldNotFound",
    "FileFailed", "FileMissing", "Filled", "Form", "FormworkError", "FormworkWarning", "Kind", "LimitExceeded", "NotFound",
    "NotPermitted", "OutOfMemory", "Outcome", "PasswordError", "Rect", "Refusal", "Settable", "StaleField", "Value",
    "ValueRefused", "Widget", "fill_many", "library_version", "open"
]
