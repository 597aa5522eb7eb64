"""What goes wrong: one exception for each kind of failure, all of them FormworkError."""

from __future__ import annotations

from typing import Dict, NamedTuple, Optional, Sequence, Tuple, Type

from ._abi import Code


class FormworkError(Exception):
    """The base of all failures. ``code`` is the number that the library gave."""

    def __init__(self, message: str, code: Code = Code.INTERNAL) -> None:
        super().__init__(message)
        self.message = message
        self.code = code

    def __str__(self) -> str:  # KeyError would show a representation
        return self.message


class FormworkWarning(UserWarning):
    """What people should know of a document although the calls succeeded, once for each sentence of ``Form.notes``."""


class NotFound(FormworkError, LookupError):
    """There is no such page."""


class FileMissing(NotFound, FileNotFoundError):
    """There is no such file."""


class FileFailed(FormworkError, OSError):
    """A file can't be read or written."""


class BadFile(FormworkError, ValueError):
    """The file is no PDF file, or is damaged and could not be repaired."""


class PasswordError(FormworkError):
    """The file is protected, and the password does not open it."""


class LimitExceeded(FormworkError):
    """Larger, or more work, than what is supported."""


class FieldNotFound(FormworkError, KeyError):
    """No field has that name. The message may propose another one."""


class Refusal(NamedTuple):
    """A value that a form does not take."""

    name: str
    why: str
    value: object


class ValueRefused(FormworkError, ValueError):
    """The form does not take a value, or some of several: ``refusals`` has them all. Nothing was changed."""

    def __init__(self, message: str, code: Code = Code.WRONG_KIND, refusals: Sequence[Refusal] = ()) -> None:
        super().__init__(message, code)
        self.refusals: Tuple[Refusal, ...] = tuple(refusals)


class NotPermitted(FormworkError):
    """The author of the encrypted file does not permit it."""


class EditRefused(FormworkError, ValueError):
    """The form can't be changed in this way."""


class BadData(FormworkError, ValueError):
    """Form data, or a row of a table, can't be read."""


class BadRequest(FormworkError, ValueError):
    """What was asked for makes no sense."""


class OutOfMemory(FormworkError, MemoryError):
    """Memory ran out. ``Form.revert`` makes the form sound again."""


class StaleField(FormworkError, ReferenceError):
    """The field was removed, or has ended with a change of the whole form."""


class ClosedForm(FormworkError, ValueError):
    """The form was closed."""


class Cancelled(FormworkError):
    """The call was cancelled."""


_KINDS: Dict[Code, Type[FormworkError]] = {
    Code.NOT_FOUND: NotFound,
    Code.IO: FileFailed,
    Code.NOT_PDF: BadFile,
    Code.NO_CATALOG: BadFile,
    Code.ENCRYPTED: PasswordError,
    Code.DAMAGED: BadFile,
    Code.LIMIT: LimitExceeded,
    Code.NO_FIELD: FieldNotFound,
    Code.WRONG_KIND: ValueRefused,
    Code.READ_ONLY: ValueRefused,
    Code.NOT_PERMITTED: NotPermitted,
    Code.BAD_EDIT: EditRefused,
    Code.BAD_DATA: BadData,
    Code.BAD_REQUEST: BadRequest,
    Code.NO_MEMORY: OutOfMemory,
    Code.STALE: StaleField,
    Code.BAD_ARGUMENT: BadRequest,
    Code.CANCELLED: Cancelled,
}


def error_of(number: int, message: str, kind: Optional[Type[FormworkError]] = None) -> FormworkError:
    """The exception for a code of the library. A newer library may have codes that this package does not know."""
    code = Code(number) if number in Code.__members__.values() else Code.INTERNAL
    chosen = kind if kind is not None else _KINDS.get(code, FormworkError)
    return chosen(message, code)
