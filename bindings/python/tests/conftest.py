"""What the tests share: a store as the samples make it, and an engine that is open on it."""

import pathlib
import sys
from collections.abc import Iterator

import pytest
from hypothesis import HealthCheck, settings

from qncorvane import Engine

SOURCES = pathlib.Path(__file__).resolve().parents[3]
SAMPLES = SOURCES / "samples"
sys.path.insert(0, str(SOURCES / "tests" / "host"))

from store import make_store as make_store  # noqa: E402

# The machine may be slow, and a failure should be the same one at the next run.
settings.register_profile("qncorvane", max_examples=40, deadline=None, derandomize=True, database=None,
                          suppress_health_check=[HealthCheck.too_slow, HealthCheck.function_scoped_fixture])
settings.load_profile("qncorvane")


@pytest.fixture
def store(tmp_path: pathlib.Path) -> pathlib.Path:
    """A fresh copy of the sample store, with its database."""
    folder = tmp_path / "shop"
    make_store(SAMPLES, folder)
    return folder


@pytest.fixture
def engine(store: pathlib.Path) -> Iterator[Engine]:
    """An engine on the sample store, with its rules."""
    with Engine(store) as opened:
        opened.load_rules()
        yield opened


def sample(name: str) -> str:
    """The XML of a sample sale."""
    return (SAMPLES / "sales" / name).read_text("utf-8")
