"""What a measurement depends on, in words."""

import datetime
import os
import pathlib
import platform
import re
import subprocess

LIBRARIES = {"Qt": "libqt5core5a", "SQLite": "libsqlite3-0", "TinyXML": "libtinyxml2.6.2v5", "C library": "libc6"}


def processor():
    names = re.findall(r"^model name\s*: (.*)$", pathlib.Path("/proc/cpuinfo").read_text("utf-8"), re.MULTILINE)
    return f"{names[0] if names else platform.machine()}, {os.cpu_count()} cores"


def compiler():
    return subprocess.run(["c++", "--version"], check=True, capture_output=True, text=True).stdout.splitlines()[0]


def version_of(package):
    return subprocess.run(["dpkg-query", "-W", "-f=${Version}", package], check=False, capture_output=True,
                          text=True).stdout or "unknown"


def versions():
    """The versions of the compiler and of the libraries that take part."""
    return {"compiler": compiler(), **{name: version_of(package) for name, package in LIBRARIES.items()}}


def description(command, revision):
    """A name and a text for each thing that is told of a run."""
    found = versions()
    return {
        "processor": processor(),
        "kernel": f"{platform.system()} {platform.release()}",
        "compiler": f"{found.pop('compiler')}, Release",
        "libraries": ", ".join(f"{name} {version}" for name, version in found.items()),
        "before": f"revision {revision[:12]}",
        "command": f"`{command}`",
        "day": datetime.date.today().isoformat(),
    }
