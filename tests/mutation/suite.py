"""The tests of a build: which of them reach which mutant, and whether they fail while it lives."""

import collections
import concurrent.futures
import hashlib
import json
import os
import pathlib
import re
import resource
import shutil
import signal
import subprocess
import tempfile
import time
from dataclasses import dataclass

# A mutant may run away: with memory, with the disk, and with time.
MEMORY = 4 << 30
FILE = 256 << 20
# A test that takes more seconds than this has its turn behind all others.
SLOW = 1.5
# A larger test suite is not asked as a whole whether it reaches anything.
FAMILY = 150
FAILED = re.compile(r"^\[  FAILED  \] (\S+?)(?:,| \(|$)", re.MULTILINE)
STARTED = re.compile(r"^\[ RUN      \] (\S+)", re.MULTILINE)


@dataclass(frozen=True)
class Test:
    """One test: a case of a program of tests, or a command."""
    program: str   # groups the cases that one process can run
    name: str      # as it is told
    only: str      # how the program calls it among all, "" for a command
    command: tuple  # runs it in a process of its own
    key: str       # what its way through the library depends on


@dataclass
class Ended:
    """How a process ended."""
    failed: bool
    late: bool
    output: str
    seconds: float


class Suite:
    """The tests of a build, with what is known of them without any mutant."""

    def __init__(self, home, groups, tests, count):
        """
        @param groups of each program the command that runs many of its cases, the filter to follow.
        @param tests in the order in which they are asked.
        @param count how many mutants there are.
        """
        self.home, self.groups, self.tests, self.count = pathlib.Path(home), groups, tests, count
        self.reached = {}   # mutants by test
        self.seconds = {}   # by test
        self.alone = set()  # tests that don't pass behind others of their program

    # --- Without a mutant --------------------------------------------------------------------------------------------

    def learn(self, jobs, say):
        """Runs each test by itself, to see that it passes and which mutants it reaches; known ones are not run again."""
        kept = self.home / "reached.json"
        known = json.loads(kept.read_text()) if kept.exists() else {}
        wanted = [test for test in self.tests if test.key not in known]
        with concurrent.futures.ThreadPoolExecutor(jobs) as pool:
            if wanted:
                say(f"running {len(wanted)} tests, to see what each reaches")
                for found in pool.map(self.far_away, self.families(wanted)):
                    known.update(found)
            near = [test for test in wanted if test.key not in known]
            for test, found in zip(near, pool.map(self.ways_of, near)):
                known[test.key] = found
        known = {test.key: known[test.key] for test in self.tests}
        for program, command in self.groups.items():
            self.learn_group(program, command, known, say)
        kept.write_text(json.dumps(known))
        failing = [test for test in self.tests if not known[test.key]["passes"]]
        for test in failing:
            say(f"left out, for it fails without any mutant: {test.name}")
        self.tests = [test for test in self.tests if known[test.key]["passes"]]
        self.reached = {test: set(known[test.key]["reached"]) for test in self.tests}
        self.seconds = {test: known[test.key]["seconds"] for test in self.tests}
        self.alone = {test for test in self.tests if known[test.key].get("alone")}
        return failing

    @staticmethod
    def families(tests):
        """The tests of one program and one test suite, where there are several."""
        by_suite = collections.defaultdict(list)
        for test in tests:
            if test.only:
                by_suite[test.program, test.only.split("/")[0].split(".")[0]].append(test)
        return [family for family in by_suite.values() if 1 < len(family) <= FAMILY]

    def far_away(self, family):
        """What is known of tests that reach no mutant even together; nothing of others."""
        ways = self.ways(self.filtered(self.groups[family[0].program], family))
        if not ways["passes"] or ways["reached"]:
            return {}
        return {test.key: {**ways, "seconds": ways["seconds"] / len(family)} for test in family}

    def ways_of(self, test):
        return self.ways(test.command)

    def ways(self, command):
        with tempfile.NamedTemporaryFile(dir=self.home) as file:
            file.write(bytes(self.count + 1))
            file.flush()
            ended = self.run(command, {"MUTANT_REACHED": file.name}, 600)
            file.seek(0)
            bytes_read = file.read()
        return {"passes": not ended.failed, "seconds": ended.seconds,
                "reached": [number for number, byte in enumerate(bytes_read) if byte]}

    @staticmethod
    def filtered(command, tests):
        return [*command, "--gtest_filter=" + ":".join(test.only for test in tests)]

    def learn_group(self, program, command, known, say):
        """Which tests of a program need a process of their own: those that fail when all run in one, and slow ones, whose
        turn comes last."""
        members = [test for test in self.tests if test.program == program and known[test.key]["passes"]]
        for test in members:
            if known[test.key]["seconds"] > SLOW or not known[test.key]["reached"]:
                known[test.key]["alone"] = True
        members = [test for test in members if known[test.key].get("alone") is not True]
        if all("alone" in known[test.key] for test in members):
            return
        say(f"running {len(members)} tests of {program} in one process")
        ended = self.run(self.filtered(command, members), {}, 900)
        failed = set(FAILED.findall(ended.output))
        for test in members:
            known[test.key]["alone"] = test.only in failed

    # --- With a mutant -----------------------------------------------------------------------------------------------

    def killer(self, number):
        """
        @return the test that fails while the mutant lives, and how; "", and whether any test reaches it, when none does.
        """
        reaching = [test for test in self.tests if number in self.reached[test]]
        for program, command in self.groups.items():
            members = [test for test in reaching if test.program == program and test not in self.alone]
            found = self.killer_among(number, command, members)
            if found:
                return found
        for test in sorted(reaching, key=lambda test: self.seconds[test]):
            if test in self.alone or test.program not in self.groups:
                how = self.confirmed(number, test)
                if how:
                    return test.name, how
        return "", "survives" if reaching else "not reached"

    def killer_among(self, number, command, members):
        """Runs tests of one program in one process up to the first that fails; then that one by itself, to be sure."""
        left = list(members)
        while left:
            patience = 20 + 2.5 * sum(self.seconds[test] for test in left)
            ended = self.run([*self.filtered(command, left), "--gtest_fail_fast"], {"MUTANT": str(number)}, patience)
            if not ended.failed:
                return None
            names = FAILED.findall(ended.output) or STARTED.findall(ended.output)[-1:]
            suspects = [test for test in left if test.only in names[:1]]
            if not suspects:
                suspects = left
            for test in suspects:
                how = self.confirmed(number, test)
                if how:
                    return test.name, how
            # It failed behind others and passes by itself: what stands behind it has its turn.
            left = left[left.index(suspects[-1]) + 1:]
        return None

    def confirmed(self, number, test):
        """How a test fails by itself with the mutant and passes without it; "" when it doesn't."""
        patience = 10 + 4 * self.seconds[test]
        ended = self.run(test.command, {"MUTANT": str(number)}, patience)
        if not ended.failed or self.run(test.command, {}, 6 * patience).failed:
            return ""
        return "hangs" if ended.late else "fails"

    def run(self, command, more, patience):
        """Runs a command in an empty folder for its temporary files, which goes with all that it has started."""
        folder = tempfile.mkdtemp(dir=self.home)
        environment = {**os.environ, **more, "TMPDIR": folder}
        begin = time.monotonic()
        late = False
        with tempfile.TemporaryFile() as output:
            process = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=output, stderr=subprocess.STDOUT,
                                       cwd=folder, env=environment, preexec_fn=confine, start_new_session=True)
            try:
                process.wait(patience)
            except subprocess.TimeoutExpired:
                late = True
            finally:
                end(process)
            output.seek(0)
            told = output.read(64 << 20).decode(errors="replace")
        shutil.rmtree(folder, ignore_errors=True)
        return Ended(late or process.returncode != 0, late, told, time.monotonic() - begin)


def confine():
    resource.setrlimit(resource.RLIMIT_AS, (MEMORY, MEMORY))
    resource.setrlimit(resource.RLIMIT_FSIZE, (FILE, FILE))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))


def end(process):
    """Ends a process of ours and all that it has started."""
    try:
        os.killpg(process.pid, signal.SIGKILL)
    except ProcessLookupError:
        pass
    process.wait()


def names_of(program, arguments=()):
    """The names of a gtest program's tests, in their order."""
    listed = subprocess.run([program, *arguments, "--gtest_list_tests"], capture_output=True, text=True, check=True)
    suite, names = "", []
    for line in listed.stdout.splitlines():
        name = line.split("#")[0].rstrip()
        if line.startswith("  "):
            names.append(suite + name.strip())
        elif name.endswith("."):
            suite = name
    return [name for name in names if not re.search(r"(^|[./])DISABLED_", name)]


def digest(*parts):
    text = hashlib.sha256()
    for part in parts:
        text.update(part if isinstance(part, bytes) else str(part).encode())
        text.update(b"\0")
    return text.hexdigest()


def sources_of(*folders):
    """What the programs of tests below some folders are made of."""
    return b"".join(path.read_bytes() for folder in folders for path in sorted(pathlib.Path(folder).rglob("*"))
                    if path.suffix in (".h", ".cpp"))


def gtest_tests(program, label, library, content):
    """The tests of a program that takes no arguments."""
    return [Test(label, f"{label}: {name}", name, (str(program), f"--gtest_filter={name}"),
                 digest(library, label, name, content)) for name in names_of(program)]


def scenario_tests(program, files, library, content):
    """The scenarios of files. In a process with all of them they have other numbers than in one of their file."""
    everywhere = iter(names_of(program, files))
    tests = []
    for file in files:
        text = pathlib.Path(file).read_bytes()
        for name in names_of(program, [file]):
            short = f"{pathlib.Path(file).parent.name}/{pathlib.Path(file).name}"
            headline = name.rsplit("/", 1)[1]
            tests.append(Test("scenarios", f"scenarios/{short}: {headline}", next(everywhere),
                              (str(program), str(file), f"--gtest_filter={name}"),
                              digest(library, content, short, text, name)))
    return tests


def command_tests(build, pattern, library):
    """The tests of ctest whose names match: any command, with its own environment."""
    listed = subprocess.run(["ctest", "--test-dir", build, "--show-only=json-v1", "-R", pattern], capture_output=True,
                            text=True, check=True)
    tests = []
    for each in json.loads(listed.stdout)["tests"]:
        own = next((value["value"] for value in each.get("properties", []) if value["name"] == "ENVIRONMENT"), [])
        command = ("env", *own, *each["command"])
        tests.append(Test("ctest", each["name"], "", command, digest(library, each["name"], *command)))
    return tests
