"""The package, installed by pip without a network: complete, with the project's version, and it calculates."""

import os
import pathlib
import re
import shutil
import subprocess
import sys

import pytest

from conftest import SAMPLES, SOURCES, make_store

PACKAGE = SOURCES / "bindings" / "python"
# Without a network, what the page says beside them.
COMMANDS = [[sys.executable, "-m", "venv", "--system-site-packages", "till"],
            ["till/bin/pip", "install", "--no-build-isolation", "./bindings/python"]]
PROGRAM = """
from decimal import Decimal
import pathlib, sys
import qncorvane

with qncorvane.Engine(sys.argv[1]) as engine:
    engine.load_rules()
    xml = pathlib.Path(sys.argv[2]).read_text("utf-8")
    assert engine.calculate("a", qncorvane.Mode.ALL, xml).totals.to_pay == Decimal("36.06")
print(qncorvane.__file__)
"""


@pytest.fixture(scope="module")
def installed(tmp_path_factory: pytest.TempPathFactory) -> pathlib.Path:
    """An environment, made by the page's commands from a copy of the sources: building leaves folders behind."""
    for module in ("pip", "ensurepip", "setuptools", "wheel"):
        if subprocess.run([sys.executable, "-c", f"import {module}"], capture_output=True, check=False).returncode != 0:
            pytest.skip(f"{module} is not installed")
    copy = tmp_path_factory.mktemp("sources")
    shutil.copytree(PACKAGE, copy / "bindings" / "python",
                    ignore=shutil.ignore_patterns("build", "*.egg-info", "__pycache__", ".*"))
    shutil.copy(SOURCES / "CMakeLists.txt", copy)
    environment = {name: value for name, value in os.environ.items() if name not in ("PYTHONPATH", "LD_PRELOAD")}
    for line in COMMANDS:
        said = subprocess.run(line, cwd=copy, env=environment, capture_output=True, text=True, check=False, timeout=300)
        assert said.returncode == 0, said.stderr
    return copy / "till"


def test_these_are_the_commands_of_the_page() -> None:
    page = (SOURCES / "docs" / "python.md").read_text("utf-8")
    lines = [" ".join(line).replace(sys.executable, "python3").replace(" --no-build-isolation", "") for line in COMMANDS]
    assert "```sh\n" + "\n".join(lines) + "\n```\n" in page


def site(installed: pathlib.Path) -> pathlib.Path:
    (folder,) = installed.glob("lib/python3*/site-packages")
    return folder


def files(folder: pathlib.Path) -> set[str]:
    """The files below a folder, but for what the interpreter makes of them."""
    return {str(path.relative_to(folder)) for path in folder.rglob("*") if path.is_file() and path.parent.name != "__pycache__"}


def test_all_files_are_there(installed: pathlib.Path) -> None:
    assert {"py.typed", "till/words.json"} <= files(PACKAGE / "src" / "qncorvane")
    assert files(site(installed) / "qncorvane") == files(PACKAGE / "src" / "qncorvane")


def test_the_version_is_the_projects(installed: pathlib.Path) -> None:
    version = re.search(r"^project\(QNCORVANE VERSION ([0-9.]+)", (SOURCES / "CMakeLists.txt").read_text("utf-8"), re.MULTILINE)
    assert version is not None
    assert (site(installed) / f"qncorvane-{version[1]}.dist-info").is_dir()


def test_only_the_till_s_screen_asks_for_another_package(installed: pathlib.Path) -> None:
    (metadata,) = site(installed).glob("qncorvane-*.dist-info/METADATA")
    wanted = re.findall(r"^Requires-Dist: ([\w-]+).*; (.*)$", metadata.read_text("utf-8"), re.MULTILINE)
    assert [(name.replace("-", "_"), when.replace("'", '"')) for name, when in wanted] == [("prompt_toolkit", 'extra == "till"')]


def test_it_calculates(installed: pathlib.Path, tmp_path: pathlib.Path) -> None:
    make_store(SAMPLES, tmp_path)
    environment = {name: value for name, value in os.environ.items() if name != "PYTHONPATH"}
    said = subprocess.run([str(installed / "bin" / "python"), "-c", PROGRAM, str(tmp_path),
                           str(SAMPLES / "sales" / "basket.xml")],
                          env=environment, capture_output=True, text=True, check=False, timeout=60)
    assert said.returncode == 0, said.stderr
    assert said.stdout.strip() == str(site(installed) / "qncorvane" / "__init__.py")
