"""What the tests share: the samples, real files when FORMWORK_CORPUS names them, and pypdf as another reader."""

import io
import os
from pathlib import Path

import pypdf
import pytest

SAMPLES = Path(__file__).resolve().parents[2] / "samples"
CORPUS = sorted(Path(os.environ.get("FORMWORK_CORPUS") or os.devnull).glob("*.pdf"))


def read_back(data, password=None):
    """The values of a filled form as pypdf has them."""
    reader = pypdf.PdfReader(io.BytesIO(data), password=password)
    return {name: str(field["/V"]) if not isinstance(field.get("/V"), list) else [str(one) for one in field["/V"]]
            for name, field in (reader.get_fields() or {}).items() if "/V" in field}


@pytest.fixture
def kinds():
    return SAMPLES / "kinds.pdf"


@pytest.fixture
def form(kinds):
    import formwork

    with formwork.open(kinds) as opened:
        yield opened
