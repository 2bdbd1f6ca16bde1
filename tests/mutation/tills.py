"""Plays generated tills on one library: tills.py LIBRARY SCHEMA COUNT SEED ANSWERS

Writes the answers to a file that is not there yet. Where it is there, exit code 1 tells that an answer differs from it.
"""

import pathlib
import sys

HERE = pathlib.Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parent / "compare"))
from comparer import AHEAD, Player, line_of  # noqa: E402
from compare import RUN  # noqa: E402
from generator import make_till  # noqa: E402


def answers(player, count, seed):
    """What the player answers to each till, in order."""
    waiting = 0
    for number in range(count):
        player.send(line_of(make_till(seed * RUN + number)))
        waiting += 1
        if waiting == AHEAD:
            yield player.receive()
            waiting -= 1
    for _ in range(waiting):
        yield player.receive()


def main():
    library, schema, count, seed, path = sys.argv[1:]
    path = pathlib.Path(path)
    player = Player(library, schema, 5.0)
    given = answers(player, int(count), int(seed))
    if not path.exists():
        path.write_bytes(b"".join(given))
        player.close()
        return 0
    with open(path, "rb") as wanted:
        differs = any(line != wanted.readline() for line in given)
    player.process.kill()
    return 1 if differs else 0


if __name__ == "__main__":
    sys.exit(main())
