"""Rows of values: what fill_many takes them from."""

from __future__ import annotations

import codecs
import csv
import io
import json
import os
from itertools import chain, islice
from pathlib import Path
from typing import Any, Dict, Iterable, Iterator, List, Mapping, Optional, Tuple, Union

from ._abi import Code
from .errors import BadData

Row = Mapping[str, Any]
Rows = Union[str, "os.PathLike[str]", Iterable[Row], Any]  # the last is a pandas frame

BEYOND = "\0"  # where cells behind the last name go
MARKS = ((codecs.BOM_UTF8, "utf-8-sig"), (codecs.BOM_UTF16_LE, "utf-16"), (codecs.BOM_UTF16_BE, "utf-16"))


def rows_of(rows: Any) -> Tuple[Iterator[Row], Optional[int]]:
    """The rows, and how many there are where that is known."""
    if isinstance(rows, (str, os.PathLike)):
        path = Path(rows)
        if path.suffix.lower() in (".jsonl", ".ndjson"):
            return _json_lines(path), None
        return _csv_rows(path), None
    if hasattr(rows, "columns") and hasattr(rows, "itertuples"):
        return _frame_rows(rows), len(rows)
    return iter(rows), len(rows) if hasattr(rows, "__len__") else None


def _json_lines(path: Path) -> Iterator[Row]:
    with path.open(encoding="utf-8-sig") as lines:
        for number, line in enumerate(lines, 1):
            if line.strip():
                yield _json_row(line, f"{path}, line {number}")


def _json_row(line: str, place: str) -> Row:
    try:
        row = json.loads(line)
    except ValueError as error:
        raise BadData(f"{place}: {error}", Code.BAD_DATA) from error
    if not isinstance(row, dict):
        raise BadData(f"{place}: a row is an object of names to values", Code.BAD_DATA)
    return row


def _csv_rows(path: Path) -> Iterator[Row]:
    with path.open("rb") as file:
        start = file.read(3)
    encoding = next((name for mark, name in MARKS if start.startswith(mark)), "utf-8")
    with path.open(encoding=encoding, newline="") as file:
        head = list(islice(file, 20))
        if head and head[0].lower().startswith("sep="):
            divider, head = head[0][4], head[1:]
        else:
            divider = _divider(head)
        for row in csv.DictReader(chain(head, file), delimiter=divider, restkey=BEYOND):
            if any(row.values()):
                # Empty cells leave their fields alone.
                yield {name: cell for name, cell in row.items() if cell}


def _divider(head: List[str]) -> str:
    """The one that makes the first two rows equally long, else the row of names the longest."""

    def widths(divider: str) -> Tuple[bool, int]:
        rows = [len(row) for row in islice(csv.reader(io.StringIO("".join(head), newline=""), delimiter=divider), 2)]
        return len(rows) == 2 and rows[0] == rows[1] > 1, rows[0] if rows else 0

    return max(",;\t", key=widths)


def _frame_rows(frame: Any) -> Iterator[Row]:
    """Missing values leave their fields alone; whole numbers, which a column with such values has as 5.0, are 5."""
    names = [str(name) for name in frame.columns]
    known = frame.notna().itertuples(index=False, name=None)
    for cells, present in zip(frame.itertuples(index=False, name=None), known):
        yield {name: int(cell) if isinstance(cell, float) and cell.is_integer() else cell
               for name, cell, is_there in zip(names, cells, present) if is_there}


def split_lists(row: Row, several: Mapping[str, Tuple[str, ...]]) -> Row:
    """The row with cells such as "red|blue" as lists where a list box takes several and no option is the whole."""
    split: Dict[str, Any] = dict(row)
    for name in several.keys() & row.keys():
        cell = row[name]
        if isinstance(cell, str) and "|" in cell and cell not in several[name]:
            split[name] = cell.split("|")
    return split
