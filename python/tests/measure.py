"""
How many fills of a form in memory fill_many does in a second of processor time, and how long a list takes.

    measure.py FORM [ROWS]
"""

import sys
import time

import formwork
from formwork import Kind


def processor_seconds(work):
    """The least of three runs: other programs only ever add to it."""
    times = []
    for _ in range(3):
        began = time.process_time()
        work()
        times.append(time.process_time() - began)
    return min(times)


def main(path, rows=1000):
    with formwork.open(path) as form:
        texts = [field.name for field in form.fields
                 if field.kind is Kind.TEXT and field.widgets and not field.read_only and (field.max_length or 10) >= 10][:10]
        data = [{name: f"{row} {at}" for at, name in enumerate(texts)} for row in range(rows)]
        assert all(one.ok for one in formwork.fill_many(form, data[:2]))
        count = len(form.fields)
    print(f"{path}: {count} fields, {len(texts)} of them filled, Python {sys.version.split()[0]}")
    for words, draw, update_only in (("whole files", True, False), ("updates alone", True, True), ("not drawn", False, False)):
        def fill():
            with formwork.open(path, draw=draw) as form:
                for one in formwork.fill_many(form, data, update_only=update_only):
                    assert one.data

        seconds = processor_seconds(fill)
        print(f"  fill_many, {words}: {rows / seconds:,.0f} fills a second of processor time")

    def values():
        with formwork.open(path) as form:
            form.to_dict()

    print(f"  open, to_dict, close: {processor_seconds(values) * 1e3:.1f} ms")


if __name__ == "__main__":
    main(sys.argv[1], *map(int, sys.argv[2:]))
