"""A MariaDB server of the tests' own: its files in a folder, reachable from this machine alone."""

import concurrent.futures
import contextlib
import ctypes
import os
import pathlib
import signal
import socket
import subprocess
import time

PR_SET_PDEATHSIG = 1
PRCTL = ctypes.CDLL(None).prctl

# The kernel takes the thread that starts a process for its parent: one that lives as long as the tests do.
STARTER = concurrent.futures.ThreadPoolExecutor(max_workers=1)


def die_with_parent():
    """Whatever ends the tests ends the server."""
    PRCTL(PR_SET_PDEATHSIG, signal.SIGKILL)


def free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


class MariaDbServer:
    """Starts with `start`; `kill` ends it as a power cut would."""

    def __init__(self, folder: pathlib.Path):
        self._data = folder / "data"
        self._log = folder / "server.log"
        self.socket = folder / "server.sock"
        self.port = free_port()
        self._process = None
        self._user = ["--user=root"] if os.geteuid() == 0 else []
        subprocess.run(
            ["mariadb-install-db", "--no-defaults", *self._user, f"--datadir={self._data}", "--skip-test-db",
             "--auth-root-authentication-method=normal", "--skip-name-resolve"],
            check=True, stdout=subprocess.DEVNULL)

    def start(self):
        """Returns when the server answers."""
        with open(self._log, "ab") as log:
            self._process = STARTER.submit(
                subprocess.Popen,
                ["mariadbd", "--no-defaults", *self._user, f"--datadir={self._data}", f"--socket={self.socket}",
                 "--bind-address=127.0.0.1", f"--port={self.port}", "--skip-name-resolve",
                 "--innodb-buffer-pool-size=16M", f"--pid-file={self._data}/server.pid"],
                stdout=log, stderr=log, preexec_fn=die_with_parent).result()
        deadline = time.monotonic() + 60
        while not self._answers():
            if self._process.poll() is not None or time.monotonic() > deadline:
                raise RuntimeError("the server did not start:\n" + self._log.read_text(errors="replace")[-2000:])
            time.sleep(0.05)

    def kill(self):
        """Returns when the server is gone."""
        if self._process is not None:
            self._process.kill()
            self._process.wait()
            self._process = None

    def run(self, statements, database=""):
        """Runs SQL statements, as one script."""
        subprocess.run([*self._client(), "--default-character-set=utf8mb4", database], input=statements.encode(),
                       check=True)

    @contextlib.contextmanager
    def session(self, database):
        """A connection that stays: gives a function that runs one statement on it and returns when it is done."""
        client = subprocess.Popen([*self._client(), "--unbuffered", "--skip-column-names", database], stdin=subprocess.PIPE,
                                  stdout=subprocess.PIPE, text=True)

        def run(statement):
            print(f"{statement};\nselect 'done';", file=client.stdin, flush=True)
            while client.stdout.readline().strip() != "done":
                if client.poll() is not None:
                    raise RuntimeError("the session ended")

        try:
            yield run
        finally:
            client.communicate()

    def _client(self):
        return ["mariadb", "--no-defaults", "--user=root", f"--socket={self.socket}"]

    def _answers(self):
        return subprocess.run([*self._client(), "--execute=select 1"], check=False, stdout=subprocess.DEVNULL,
                              stderr=subprocess.DEVNULL).returncode == 0
