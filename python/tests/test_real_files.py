"""Real files, when FORMWORK_CORPUS names their folder: what is listed, filled and seen by another reader."""

import warnings

import pytest
from conftest import CORPUS, read_back

import formwork
from formwork import Kind


BEYOND_REPAIR = "missing_xref_trailer_dict"
ENDLESS_FOR_PYPDF = "shared-unnamed-field"  # a field that is above itself


@pytest.mark.parametrize("path", CORPUS, ids=[path.stem for path in CORPUS])
def test_a_real_file(path):
    warnings.simplefilter("ignore", formwork.FormworkWarning)
    if path.stem == BEYOND_REPAIR:
        with pytest.raises(formwork.BadFile):
            formwork.open(path)
        return
    with formwork.open(path) as form:
        listed = form.to_dict()
        for name in form:
            assert form[name] == listed[name]
        wanted = {}
        for field in form.fields:
            if field.kind is Kind.TEXT and field.widgets and not field.read_only and (field.max_length or 9) >= 2:
                wanted.setdefault(field.name, "77")
        if not form.permits_filling:
            with pytest.raises(formwork.NotPermitted):
                form.fill(wanted)
            return
        taken = {one.name for one in form.check(wanted) if one.result in ("set", "kept", "coerced")}
        wanted = {name: value for name, value in wanted.items() if name in taken}
        form.fill(wanted)
        kept = {name: form[name] for name in wanted}
        data = form.bytes()
    with formwork.open(data) as again:
        assert {name: again[name] for name in wanted} == kept
    if path.stem == ENDLESS_FOR_PYPDF:
        return
    try:
        seen = read_back(data)
    except Exception as error:  # of a reader that mends less
        pytest.skip(f"pypdf: {error}")
    plain = {name: value for name, value in kept.items() if name in seen}
    assert {name: seen[name] for name in plain} == plain
    assert plain or not wanted
