"""The engine on a database server behind a network, whose round trips take a while."""

import contextlib
import pathlib
import shutil
import statistics
import subprocess
import sys
import tempfile

import measure
import programs
import worlds

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "tests" / "db"))
from mariadb_server import MariaDbServer  # pylint: disable=wrong-import-position

DELAY_SECONDS = 0.0003


class DelayProxy:
    """The network. Use as a context."""

    def __init__(self, program, server_port):
        self._process = subprocess.Popen([program, str(server_port), str(round(DELAY_SECONDS * 1e6))],
                                         stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
        self.port = int(self._process.stdout.readline())

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self._process.communicate()

    def round_trips(self):
        """Round trips since the start."""
        print(file=self._process.stdin, flush=True)
        return int(self._process.stdout.readline())


@contextlib.contextmanager
def server():
    """A server that is there for the bench alone."""
    # A short path: a socket's name has room for little more than a hundred letters.
    folder = pathlib.Path(tempfile.mkdtemp(prefix="qncorvane-bench-"))
    try:
        started = MariaDbServer(folder)
        started.start()
        try:
            started.run("CREATE USER till@'127.0.0.1' IDENTIFIED BY 'till'; GRANT ALL ON *.* TO till@'127.0.0.1'")
            yield started
        finally:
            started.kill()
    finally:
        shutil.rmtree(folder, ignore_errors=True)


def literal(value):
    return str(value) if isinstance(value, (int, float)) else "'" + value.replace("'", "''") + "'"


def script_of(world):
    """The statements that make a world's store."""
    parts = [(worlds.SCHEMA / "mysql.sql").read_text("utf-8")]
    for table, columns, rows in worlds.rows_by_table(world.rules):
        values = ",\n".join("(" + ",".join(map(literal, row)) + ")" for row in rows)
        parts.append(f"INSERT INTO {table} ({','.join(columns)}) VALUES {values};\n")
    return "".join(parts)


def settings(database):
    return f"[DataBase]\nDbType=MYSQL\nServiceName=127.0.0.1\nDBName={database}\nUserName=till\nPassword=till\n"


def measure_engine(bench, engine, home, database, proxy, digest):
    """Round trips, and seconds of the clock for a pass, of one engine, which shall answer as the others do."""
    world = programs.copy_of(home / "world", home / f"network-{engine}",
                             bench.libraries.settings(engine, settings(database)))
    # Another port than the usual one is told to the client library alone. Qt warns of a statement that the engine makes
    # before it opens the connection, with no harm done.
    environment = {"MYSQL_TCP_PORT": str(proxy.port), "QT_LOGGING_RULES": "default.warning=false"}
    with bench.programs.engine(bench.libraries.of[engine], world, environment) as running:
        measure.same_digest(f"{home.name} behind a network", {"here": digest, engine: running.digest()})
        first = running.time(1)[1]
        trips = proxy.round_trips()
        rounds = bench.effort.rounds(first)
        walls = [running.time(1)[1] for _ in range(rounds)]
        return {"trips": round((proxy.round_trips() - trips) / rounds), "wall": statistics.median(walls)}


def measure_workload(bench, name, digest, its_server):
    """All that is told of a workload behind the network. It has been measured on SQLite, with results of that digest."""
    home, database = bench.folder / name, f"shop_{name}"
    its_server.run(f"CREATE DATABASE {database} CHARACTER SET utf8mb4")
    its_server.run(script_of(worlds.make(name)), database)
    with DelayProxy(bench.programs.folder / "delay_proxy", its_server.port) as proxy:
        return {"name": name, "title": worlds.title(name),
                **{engine: measure_engine(bench, engine, home, database, proxy, digest) for engine in measure.ENGINES}}


def measure_all(bench, digests, tell):
    """Measures workloads on a server of their own; `digests` has the names and the digests of their results. `tell` is
    called with each name ahead."""
    found = []
    with server() as started:
        for name, digest in digests.items():
            tell(f"{name} behind a network")
            found.append(measure_workload(bench, name, digest, started))
    return found
