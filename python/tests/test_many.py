"""One form filled many times."""

import json

import pytest
from conftest import read_back

import formwork


def cities(results):
    return [read_back(one.data)["address.city"] for one in results]


def test_rows_of_every_sort(kinds, tmp_path):
    (tmp_path / "a.csv").write_text("address.city;toppings;agree\nUlm;ol|mu;TRUE\n;;\nBonn;;\n", encoding="utf-8-sig")
    (tmp_path / "b.csv").write_text("address.city,toppings,agree\nUlm,ol|mu,yes\nBonn,,\n", encoding="utf-16")
    (tmp_path / "c.jsonl").write_text('{"address.city":"Ulm","toppings":["ol","mu"],"agree":true}\n\n{"address.city":"Bonn"}\n')
    dicts = [{"address.city": "Ulm", "toppings": ("ol", "mu"), "agree": True}, {"address.city": "Bonn", "agree": None}]
    for rows in (tmp_path / "a.csv", str(tmp_path / "b.csv"), tmp_path / "c.jsonl", dicts, iter(dicts)):
        first, second = formwork.fill_many(kinds, rows)
        assert cities([first, second]) == ["Ulm", "Bonn"], rows
        seen = [read_back(one.data) for one in (first, second)]
        assert [(one["agree"], one["toppings"]) for one in seen] == [("/Yes", ["ol", "mu"]), ("/Off", ["ch", "on"])], rows


def test_a_frame_of_pandas(kinds):
    pandas = pytest.importorskip("pandas")
    frame = pandas.DataFrame({"address.city": ["Ulm", None], "name": [5, float("nan")], "agree": [True, False],
                              "country": pandas.to_datetime(["2024-02-29", "2024-03-01"]).date})
    seen = [read_back(one.data) for one in formwork.fill_many(kinds, frame)]
    assert [[row[name] for name in frame.columns] for row in seen] == [
        ["Ulm", "5", "/Yes", "2024-02-29"], ["London", "Ada Lovelace", "/Off", "2024-03-01"]]


def test_outputs_are_named_by_the_rows(kinds, tmp_path):
    rows = [{"id": "a", "name": "Ann"}, {"id": "b", "name": "Bob"}, {"id": "../c"}, {"id": ""}, {"id": "a"}]
    results = list(formwork.fill_many(kinds, rows, tmp_path / "{id}-{row:03}.pdf"))
    assert [one.path and one.path.name for one in results] == ["a-001.pdf", "b-002.pdf", None, None, "a-005.pdf"]
    assert read_back(results[1].path.read_bytes())["name"] == "Bob"
    twice = list(formwork.fill_many(kinds, [rows[0], rows[0]], lambda row, number: tmp_path / f"{row['name']}.pdf", strict=False))
    assert twice[0].ok and "rows 1 and 2" in str(twice[1].error)
    with pytest.raises(ValueError):
        formwork.fill_many(kinds, rows, "out.pdf")


def test_refused_rows_do_not_end_the_run(kinds, tmp_path):
    rows = [{"colour": "mauve", "name": "x"}, {"name": "y"}, {"nothing": 1}]
    done = []
    results = list(formwork.fill_many(kinds, rows, progress=lambda *at: done.append(at)))
    assert [one.ok for one in results] == [False, True, False] and done == [(1, 3), (2, 3), (3, 3)]
    assert [one.refusals[0].name for one in results if not one.ok] == ["colour", "nothing"]
    assert read_back(results[1].data)["colour"] == "/green"
    with pytest.raises(formwork.ValueRefused):
        list(formwork.fill_many(kinds, rows, raise_errors=True))
    (tmp_path / "a.csv").write_text("name\nx\ny,z\nw\n")
    assert [one.ok for one in formwork.fill_many(kinds, tmp_path / "a.csv")] == [True, False, True]
    (tmp_path / "b.jsonl").write_text("[1]\n")
    with pytest.raises(formwork.BadData, match="line 1"):
        list(formwork.fill_many(kinds, tmp_path / "b.jsonl"))


def test_an_open_form_is_what_rows_begin_with(form):
    form["country"] = "Japan"
    results = list(formwork.fill_many(form, [{"name": "Ann"}], update_only=True))
    seen = read_back(form.bytes() + results[0].data)
    assert (seen["country"], seen["name"], form["name"]) == ("Japan", "Ann", "Ada Lovelace")


def test_the_same_bytes_as_one_by_one(form, kinds):
    values = json.loads(form.export_data("json"))
    values["address.city"] = "Ulm"
    del values["reference"]
    form.fill(values)
    assert [one.data for one in formwork.fill_many(kinds, [values])] == [form.bytes()]
