"""A copy of the project with all mutants compiled in."""

import hashlib
import json
import pathlib
import re
import shlex
import subprocess

import points
import schemata

HERE = pathlib.Path(__file__).resolve().parent
FLAGS = f"-O1 -w -Wno-narrowing -fdiagnostics-column-unit=byte -include {HERE / 'Mutation.h'}"
ERROR = re.compile(r"^(\S+?):(\d+):(\d+): (?:fatal )?error:", re.MULTILINE)
# Lists that can be walked in one direction only.
ONE_WAY = re.compile(r": ChildElements\(")
# More rounds than any file needs: each takes out at least one point.
ROUNDS = 20


class BuildError(Exception):
    """The copy can't be built."""


class Tree:
    """The copy below a folder: `source`, with its mutants written into the wanted files, and its build, `build`."""

    def __init__(self, root, home, wanted, targets):
        """@param wanted names of the files to change, from the root. @param targets what the build makes."""
        self.root, self.home = pathlib.Path(root).resolve(), pathlib.Path(home).resolve()
        self.wanted, self.targets = wanted, targets
        self.source, self.build = self.home / "source", self.home / "build"
        self.texts = {name: (self.root / name).read_bytes().decode("latin-1") for name in wanted}
        self.mutants = []
        self.dropped = set()

    def make(self, jobs, say):
        """Finds the mutants, compiles them in, and takes out those that don't compile."""
        self.home.mkdir(parents=True, exist_ok=True)
        self.copy()
        self.find(say)
        self.configure()
        kept = self.home / "dropped.json"
        known = json.loads(kept.read_text()) if kept.exists() else {}
        self.dropped = set(known.get("dropped", [])) if known.get("key") == self.key() else set()
        self.dropped |= {mutant.number for mutant in self.mutants if self.is_hopeless(mutant)}
        for _ in range(ROUNDS):
            written = self.write()
            output = self.ninja(jobs)
            kept.write_text(json.dumps({"key": self.key(), "dropped": sorted(self.dropped)}))
            if output is None:
                self.mutants = [mutant for mutant in self.mutants if mutant.number not in self.dropped]
                return
            found = self.faults(output, written)
            if not found - self.dropped:
                raise BuildError(output[-4000:])
            say(f"{len(found - self.dropped)} changes don't compile and are left out")
            self.dropped |= found
        raise BuildError("the mutants' copy does not become compilable")

    def is_hopeless(self, mutant):
        """Whether a change has no place at run time: an argument of a template, or a walk that has no other way."""
        text, point = self.texts[mutant.file], mutant.point
        is_argument = text[point.end:point.end + 1] == ">" and re.search(r"[<,] ?$", text[:point.start]) is not None
        return is_argument or ONE_WAY.match(mutant.change.before) is not None

    def key(self):
        """What the numbers of the mutants depend on."""
        text = hashlib.sha256()
        for name in self.listed():
            if name.endswith((".h", ".cpp")) and not name.startswith("tests/"):
                text.update(name.encode() + (self.root / name).read_bytes())
        for name in ("points.py", "schemata.py", "Mutation.h"):
            text.update((HERE / name).read_bytes())
        return text.hexdigest() + repr(self.wanted)

    def listed(self):
        """The project's files: what the history holds or will hold."""
        if not (self.root / ".git").exists():
            return sorted(path.relative_to(self.root).as_posix() for path in self.root.rglob("*")
                          if path.is_file() and not path.resolve().is_relative_to(self.home))
        names = subprocess.run(["git", "ls-files", "-co", "--exclude-standard", "-z"], cwd=self.root, check=True,
                               capture_output=True).stdout.decode().split("\0")
        return sorted({name for name in names if name and (self.root / name).is_file()})

    def copy(self):
        """Brings the copy to the state of the project, but for the files that hold mutants."""
        listed = set(self.listed())
        for path in list(self.source.rglob("*")):
            if path.is_file() and path.relative_to(self.source).as_posix() not in listed:
                path.unlink()
        for name in listed:
            if name not in self.texts or not (self.source / name).exists():
                put(self.source / name, (self.root / name).read_bytes())
            mode = (self.root / name).stat().st_mode
            (self.source / name).chmod(mode)

    def find(self, say):
        kept = self.home / "points.json"
        known = json.loads(kept.read_text()) if kept.exists() else {}
        if known.get("key") != self.key():
            say("looking for points to change")
            known = {"key": self.key(), "points": [plain(point) for point in self.look()]}
            kept.write_text(json.dumps(known))
        self.mutants = schemata.number([point_of(each) for each in known["points"]], self.texts)

    def look(self):
        texts = {str(self.root / name): text for name, text in self.texts.items()}
        finder = points.Finder(texts, self.root)
        packages = subprocess.run(["pkg-config", "--cflags", "Qt5Core", "Qt5Sql", "tinyxml"], check=True,
                                  capture_output=True, text=True).stdout
        arguments = ["-std=c++17", "-fPIC", f"-I{self.root}", f"-I{self.root}/include", *shlex.split(packages)]
        for name in self.wanted:
            if name.endswith(".cpp"):
                finder.look(str(self.root / name), arguments)
        for point in finder.all():
            point.file = pathlib.Path(point.file).relative_to(self.root).as_posix()
            yield point

    def configure(self):
        if not (self.build / "build.ninja").exists():
            run(["cmake", "-S", self.source, "-B", self.build, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=None",
                 f"-DCMAKE_CXX_FLAGS={FLAGS}"])

    def write(self):
        """Writes the files with the mutants that are left. @return their texts by their names."""
        written = {}
        by_file = {}
        for mutant in self.mutants:
            if mutant.number not in self.dropped:
                by_file.setdefault(mutant.file, []).append(mutant)
        for name, text in self.texts.items():
            written[name] = schemata.rewrite(text, by_file.get(name, []))
            put(self.source / name, written[name].encode("latin-1"))
        return written

    def ninja(self, jobs):
        """@return what a build that failed has said, or None."""
        done = subprocess.run(["ninja", "-C", self.build, "-j", str(jobs), "-k", "0", *self.targets],
                              capture_output=True, text=True, errors="replace", check=False)
        return None if done.returncode == 0 else done.stdout + done.stderr

    def faults(self, output, written):
        """The numbers of the points that the compiler's messages stand in."""
        found = set()
        for file, line, column in ERROR.findall(output):
            path = (self.build / file).resolve()
            name = path.relative_to(self.source).as_posix() if path.is_relative_to(self.source) else ""
            if name in written:
                found |= schemata.blamed(written[name], int(line), int(column))
        return found

    def library_key(self):
        """What the tests' ways through the library depend on."""
        return hashlib.sha256((self.key() + repr(sorted(self.dropped))).encode()).hexdigest()


def plain(point):
    return {**vars(point), "changes": [vars(change) for change in point.changes]}


def point_of(kept):
    return points.Point(**{**kept, "changes": [points.Change(**change) for change in kept["changes"]]})


def put(path, content):
    """Writes a file unless it holds that already, so that only what changed is built again."""
    if path.exists() and path.read_bytes() == content:
        return
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_bytes(content)


def run(command):
    done = subprocess.run(command, capture_output=True, text=True, errors="replace", check=False)
    if done.returncode != 0:
        raise BuildError((done.stdout + done.stderr)[-4000:])
