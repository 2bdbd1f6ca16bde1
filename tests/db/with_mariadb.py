"""Runs a command beside a MariaDB server of its own, which the client library's environment leads to.

with_mariadb.py FOLDER COMMAND [ARGUMENT...]

FOLDER is made for the server's files. The server has an empty database "unittest".
"""

import os
import pathlib
import subprocess
import sys

from mariadb_server import MariaDbServer


def main():
    folder, command = pathlib.Path(sys.argv[1]), sys.argv[2:]
    folder.mkdir()
    server = MariaDbServer(folder)
    try:
        server.start()
        server.run("create database unittest")
        environment = {**os.environ, "MYSQL_UNIX_PORT": str(server.socket), "MYSQL_TCP_PORT": str(server.port)}
        return subprocess.run(command, env=environment, check=False).returncode
    finally:
        server.kill()


if __name__ == "__main__":
    code = main()
    # A negative code is a signal: say so, instead of a number that wraps around to nothing.
    sys.exit(code if code >= 0 else f"with_mariadb: the command was ended by signal {-code}")
