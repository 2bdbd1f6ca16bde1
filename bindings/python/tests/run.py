"""Runs a tool of Python on the package, or says that it isn't there: exit code 77.

run.py pytest|mypy
"""

import importlib.util
import os
import pathlib
import sys

PACKAGE = pathlib.Path(__file__).resolve().parents[1]
# The modules that a tool needs, with Debian's packages; and its arguments.
TOOLS = {
    "pytest": ({"pytest": "python3-pytest", "hypothesis": "python3-hypothesis"},
               ["-q", "-p", "no:cacheprovider", str(PACKAGE / "tests")]),
    "mypy": ({"mypy": "mypy", "pytest": "python3-pytest", "hypothesis": "python3-hypothesis",
              "prompt_toolkit": "python3-prompt-toolkit"},
             ["--config-file", "pyproject.toml", "--cache-dir", os.devnull, "src", "tests"]),
}


def main() -> int:
    """Runs the tool in this process's place."""
    tool = sys.argv[1]
    modules, arguments = TOOLS[tool]
    for module, package in modules.items():
        if importlib.util.find_spec(module) is None:
            print(f"skipped: {sys.executable} has no {module}; Debian's package {package} brings it")
            return 77
    if tool == "mypy":
        os.chdir(PACKAGE)  # paths in its settings count from here
    os.environ["PYTHONPATH"] = str(PACKAGE / "src")
    os.environ["PYTHONDONTWRITEBYTECODE"] = "1"
    os.execv(sys.executable, [sys.executable, "-m", tool, *arguments])


if __name__ == "__main__":
    sys.exit(main())
