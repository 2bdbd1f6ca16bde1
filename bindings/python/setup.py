"""Tells setuptools the version; all else stands in pyproject.toml."""

import pathlib
import re

from setuptools import setup

HERE = pathlib.Path(__file__).resolve().parent


def version() -> str:
    """The project's version, from the one place where it stands; from its own metadata in a source distribution."""
    for file, line in ((HERE.parent.parent / "CMakeLists.txt", r"^project\(QNCORVANE VERSION ([0-9.]+)"),
                       (HERE / "PKG-INFO", r"^Version: (\S+)")):
        if file.is_file() and (found := re.search(line, file.read_text("utf-8"), re.MULTILINE)):
            return found[1]
    raise SystemExit("no version: build from the project's own tree, or from a source distribution")


setup(version=version())
