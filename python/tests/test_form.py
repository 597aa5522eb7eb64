"""Forms: values as a mapping, fields, what fails and how, and changes of the form itself."""

import datetime
import decimal
import io
import json
import threading

import pypdf
import pytest
from conftest import SAMPLES, read_back

import formwork
from formwork import Code, Kind, Rect

VALUES = [
    # name, what it is set to, what it is then, what another reader sees
    ("address.city", "Zürich", "Zürich", "Zürich"),
    ("name", 7, "7", "7"),
    ("company.contact.person", 0.00001, "0.00001", "0.00001"),
    ("country", decimal.Decimal("12.50"), "12.50", "12.50"),
    ("address.street", datetime.date(2024, 2, 29), "2024-02-29", "2024-02-29"),
    ("hidden_note", "東京", "東京", "東京"),
    ("agree", True, "Yes", "/Yes"),
    ("subscribe", False, "Off", "/Off"),
    ("colour", "blue", "blue", "/blue"),
    ("language", "French", "fr", "fr"),
    ("month", "April", "April", "April"),
    ("toppings", ["ol", "mu"], ["ol", "mu"], ["ol", "mu"]),
]


def test_values_of_every_kind_are_seen_by_another_reader(form):
    for name, value, _, _ in VALUES:
        form[name] = value
    seen = read_back(form.bytes())
    assert [(name, form[name], seen[name]) for name, *_ in VALUES] == [(name, now, there) for name, _, now, there in VALUES]
    assert {name: form[name] for name in form} == form.to_dict()
    with formwork.open(form.bytes()) as again:
        assert again.to_dict() == form.to_dict()


def test_none_clears_a_field_but_leaves_it_alone_in_data(form):
    form.fill({"name": None, "agree": True})
    assert form["name"] == "Ada Lovelace"
    for name in ("name", "agree", "toppings", "title"):
        form[name] = None
    seen = read_back(form.bytes())
    assert not form["name"] and form["agree"] == "Off" and not form["toppings"] and not form["title"]
    assert [seen.get(name, "") for name in ("name", "agree", "title")] == ["", "/Off", ""]


def test_a_form_is_a_mapping(form):
    assert "address.city" in form and "address" not in form and "send" not in form and 3 not in form
    assert len(form) == len(list(form)) == len(form.items()) and form.get("nothing") is None
    assert form and form == form and form != formwork.open(SAMPLES / "no-form.pdf") and len({form}) == 1
    with formwork.open(SAMPLES / "no-form.pdf") as empty:
        assert dict(empty) == {} and empty and not empty.has_form and empty.fields == ()


def test_fields_tell_what_they_are(form):
    fields = {field.name: field for field in form.fields}
    assert form.field("toppings") == fields["toppings"] != fields["month"]
    assert fields["address"].kind is Kind.GROUP and not fields["address"].widgets
    assert fields["email"].required and not fields["email"].read_only and fields["reference"].read_only
    assert fields["postcode"].max_length == 8 and fields["name"].max_length is None
    assert fields["toppings"].multiple and fields["toppings"].options[1] == ("ol", "Olives")
    assert fields["title"].options[0] == ("Dr", "Dr")
    assert fields["colour"].states == ("red", "green", "blue") and fields["colour"].default == "red"
    assert fields["size"].export_values == ("small", "medium", "large") and fields["size"].checked
    assert fields["name"].widgets[0] == (1, Rect(190, 710, 440, 728)) and fields["meal"].page == 2
    assert repr(fields["agree"]) == "<Field 'agree' check value='Off'>" and repr(form).startswith("<Form ")
    for name in form:
        assert fields[name].value == form[name] == form.to_dict()[name]
    assert form.field("contact", guess=True).name == "company.contact"


def test_fields_stay_good_while_values_change(form):
    city, agree = form.field("address.city"), form.field("agree")
    city.value = "Ulm"
    agree.value = True
    assert (city.value, form["address.city"], agree.checked, city.max_length) == ("Ulm", "Ulm", True, None)
    city.reset()
    form.revert()
    assert city.value == "London" and not agree.checked


def failure(call, *arguments, **named):
    with pytest.raises(formwork.FormworkError) as caught:
        call(*arguments, **named)
    return caught.value


def test_failures_are_exceptions_by_kind(form, tmp_path):
    (tmp_path / "text.pdf").write_text("no PDF file")
    rows = [
        (formwork.FileMissing, FileNotFoundError, Code.NOT_FOUND, lambda: formwork.open(tmp_path / "none.pdf")),
        (formwork.BadFile, ValueError, Code.NOT_PDF, lambda: formwork.open(tmp_path / "text.pdf")),
        (formwork.FieldNotFound, KeyError, Code.NO_FIELD, lambda: form["adress.city"]),
        (formwork.FieldNotFound, KeyError, Code.NO_FIELD, lambda: form["address"]),
        (formwork.ValueRefused, ValueError, Code.WRONG_KIND, lambda: form.field("colour").set("mauve")),
        (formwork.ValueRefused, ValueError, Code.READ_ONLY, lambda: form.field("reference").set("x")),
        (formwork.ValueRefused, ValueError, Code.LIMIT, lambda: form.field("postcode").set("123456789")),
        (formwork.EditRefused, ValueError, Code.BAD_EDIT, lambda: form.add("text", "name", rect=(1, 1, 9, 9))),
        (formwork.BadRequest, ValueError, Code.BAD_REQUEST, lambda: form.add("text", "new", rect=(1, 1, 9, 9), tint="red")),
        (formwork.BadData, ValueError, Code.BAD_DATA, lambda: form.import_data(b"{", "json")),
        (formwork.FileFailed, OSError, Code.IO, lambda: form.save(tmp_path / "no" / "folder.pdf")),
    ]
    for kind, base, code, call in rows:
        error = failure(call)
        assert (type(error), isinstance(error, base), error.code) == (kind, True, code), str(error)
    assert 'did you mean "address.city"' in str(failure(form.field, "adress.city"))
    form.field("reference").set("x", force=True)
    assert form["reference"] == "x"


def test_protected_files_open_with_their_password_and_stay_protected(kinds, tmp_path):
    writer = pypdf.PdfWriter()
    writer.clone_document_from_reader(pypdf.PdfReader(kinds))
    writer.encrypt("user", "owner")
    with (tmp_path / "protected.pdf").open("wb") as file:
        writer.write(file)
    for password in (None, "wrong"):
        assert isinstance(failure(formwork.open, tmp_path / "protected.pdf", password=password), formwork.PasswordError)
    with formwork.open(tmp_path / "protected.pdf", password="owner") as form:
        form["address.city"] = "Ulm"
        assert form.is_encrypted and read_back(form.bytes(), "user")["address.city"] == "Ulm"
        row, = formwork.fill_many(form, [{"name": "Ann"}])
    assert [read_back(row.data, "user")[name] for name in ("name", "address.city")] == ["Ann", "Ulm"]


def test_a_refused_fill_changes_nothing_and_tells_every_refusal(form):
    before = form.to_dict()
    values = {"name": "x", "colour": "mauve", "reference": "y", "nothing": 1}
    error = failure(form.fill, values)
    assert isinstance(error, formwork.ValueRefused) and {one.name for one in error.refusals} == set(values) - {"name"}
    assert all(one.why for one in error.refusals) and form.to_dict() == before
    assert {one.name for one in form.check(values) if one.result == "refused"} == set(values) - {"name"}
    assert failure(form.__setitem__, "colour", "mauve").refusals[0].name == "colour"
    outcomes = form.fill({"name": "x", "nothing": 1, "agree": True}, strict=False)
    assert {one.name: one.result for one in outcomes}["name"] == "set" and form["name"] == "x"
    for wrong in (object(), float("nan"), "a\0b"):
        with pytest.raises((TypeError, ValueError)):
            form["name"] = wrong


def test_data_go_out_and_come_back(form, kinds, tmp_path):
    form.fill({"address.city": "Ulm", "agree": True, "toppings": ["ol", "mu"]})
    for format in ("json", "csv", "fdf", "xfdf"):
        path = tmp_path / f"data.{format}"
        path.write_bytes(form.export_data(format))
        with formwork.open(kinds) as other:
            other.import_data(path, force=True)
            assert other.to_dict() == form.to_dict(), format
    assert json.loads(form.export_data("json", ["address"]))["address.city"] == "Ulm"
    assert b"Ulm" in form.export_data("url", [form.field("address.city")])
    with pytest.raises(ValueError):
        form.export_data("docx")


def test_inputs_and_outputs_of_every_sort(kinds, tmp_path):
    data = kinds.read_bytes()
    for source in (str(kinds), kinds, data, bytearray(data), memoryview(data), io.BytesIO(data)):
        with formwork.open(source) as form:
            assert form["address.city"] == "London"
    with formwork.open(kinds) as form, (tmp_path / "c.pdf").open("wb") as file:
        assert form.bytes(update_only=True) == b""
        form["address.city"] = "Ulm"
        form.save(tmp_path / "a.pdf")
        form.save(str(tmp_path / "b.pdf"))
        form.save(file)
        saved = form.bytes()
        assert data + form.bytes(update_only=True) == saved
    assert {(tmp_path / name).read_bytes() for name in ("a.pdf", "b.pdf", "c.pdf")} == {saved}
    with formwork.open(tmp_path / "a.pdf") as form:  # in its own place
        form["address.city"] = "Bonn"
        form.save(tmp_path / "a.pdf")
    assert read_back((tmp_path / "a.pdf").read_bytes())["address.city"] == "Bonn"


def test_the_form_itself_changes(form):
    place = form.field("name").widgets[0].rect
    code = form.add("text", "code", page=2, rect=Rect(*place), max_length=8, required=True, label="Code")
    assert (code.label, code.max_length, code.required, code.widgets[0]) == ("Code", 8, True, (2, place))
    cup = form.add(Kind.RADIO, "cup", places=[(1, (50, 9, 16, 16)), (2, (50, 40, 16, 16))], states=["S", "M"])
    assert cup.states == ("S", "M") and cup.widgets[1] == (2, Rect(50, 40, 66, 56))
    assert form.add("check", "too", places=form.field("agree").widgets).page == 2
    town = form.add("combo", "place", rect=(50, 90, 99, 16), options=["Ulm", ("b", "Bonn")])
    assert town.options == (("Ulm", "Ulm"), ("b", "Bonn"))
    code.change(max_length=3, required=False, places=[(1, place)])
    assert code.widgets == ((1, place),)
    assert code.max_length == 3 and not code.required
    code.rename("area", group="address")
    code.rename("plz")
    code.value = "890"
    form.remove("notes")
    seen = read_back(form.bytes())
    assert code.name == "address.plz" and seen["address.plz"] == "890" and "notes" not in seen
    form.revert()
    assert isinstance(failure(lambda: code.value), formwork.StaleField) and "notes" in form


def test_appended_and_flattened(form, kinds):
    city = form.field("address.city")
    pages = len(pypdf.PdfReader(kinds).pages)
    error = failure(form.append, kinds)
    assert isinstance(error, formwork.FormworkError) and len(form) > 0
    form.append(kinds, same_names="rename")
    assert isinstance(failure(lambda: city.value), formwork.StaleField)
    assert len(pypdf.PdfReader(io.BytesIO(form.bytes())).pages) == 2 * pages
    form.flatten()
    reader = pypdf.PdfReader(io.BytesIO(form.bytes()))
    assert len(form) == 0 and not reader.get_fields() and "London" in reader.pages[0].extract_text()


def save_often(form, path):
    for number in range(100):
        path.unlink(missing_ok=True)
        form["name"] = str(number)
        form.save(path)


def test_progress_and_what_ends_a_call(form, tmp_path):
    told = []
    form.on_progress(told.append)
    form.fill({field.name: "x" for field in form.fields if field.kind is Kind.TEXT}, force=True)
    form.bytes()
    assert told and all(0 <= done <= 1 for done in told)

    def interrupt(done):
        raise KeyboardInterrupt

    form.on_progress(interrupt)
    with pytest.raises(KeyboardInterrupt):
        save_often(form, tmp_path / "out.pdf")
    assert not (tmp_path / "out.pdf").exists()
    form.on_progress(lambda done: form.bytes())
    assert "callback" in str(failure(save_often, form, tmp_path / "out.pdf"))
    form.on_progress(None)
    assert form.bytes()


def test_notes_are_warnings_once(form):
    form["name"] = "\U000e0fff"  # a character of no font
    with pytest.warns(formwork.FormworkWarning) as caught:
        form.bytes()
    assert [str(one.message) for one in caught] == form.notes and caught[0].filename == __file__
    form.bytes()


def test_what_is_closed_stays_closed(form):
    city = form.field("address.city")
    form.close()
    form.close()
    assert "closed" in repr(form) and "closed" in repr(city)
    for call in (lambda: city.value, form.bytes, lambda: form["name"], lambda: form.fields):
        assert isinstance(failure(call), formwork.ClosedForm)
    with pytest.raises(TypeError):
        __import__("copy").copy(form)


def test_threads_take_turns(form):
    texts = [field for field in form.fields if field.kind is Kind.TEXT and not field.read_only and not field.max_length]

    def fill(field):
        for number in range(50):
            field.value = str(number)
            form.to_dict()

    threads = [threading.Thread(target=fill, args=(field,)) for field in texts[:4]]
    for one in threads:
        one.start()
    for one in threads:
        one.join()
    assert {field.value for field in texts[:4]} == {"49"}


def test_what_a_file_is_is_told(form):
    assert form.summary and form.has_form and form.permits_filling and not (form.is_signed or form.is_encrypted or form.has_xfa)
    with formwork.open(SAMPLES / "signed.pdf") as signed:
        assert signed.is_signed and any(field.is_signed for field in signed.fields)
