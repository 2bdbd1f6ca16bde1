"""A till: the engine in a process of its own, through its exported calls alone, in the store that is its current directory.

till_host.py LIBRARY

Takes one call a line as a JSON list (the call's name, then its texts) and answers with one line: the code and the texts
that came out.
"""

import ctypes
import json
import sys

ROOM = 1 << 22


class Engine:
    """The exported calls, with Python texts."""

    def __init__(self, library):
        self._library = ctypes.CDLL(library)

    def _call(self, name, *arguments):
        texts = [a if a is None or isinstance(a, ctypes.Array) else a.encode() for a in arguments]
        return getattr(self._library, name)(*texts)

    def begin(self):
        return [self._call("BeginInitPro")]

    def finish(self):
        return [self._call("FinishInitPro")]

    def state(self):
        word = ctypes.create_string_buffer(64)
        self._call("GetState", word)
        return [0, word.value.decode()]

    def load(self, kind, xml):
        message = ctypes.create_string_buffer(1024 + len(xml.encode()))
        return [self._call("InitPromotion", kind, xml, message), message.value.decode()]

    def calculate(self, key, mode, xml):
        out = ctypes.create_string_buffer(ROOM)
        message = ctypes.create_string_buffer(1024)
        code = self._call("CalcPromotion", key, mode, xml, out, message)
        return [code, message.value.decode(), out.value.decode()]

    def forget(self, key):
        return [self._call("DeleteSaleSetByKey", key)]


def main():
    engine = Engine(sys.argv[1])
    for line in sys.stdin:
        name, *texts = json.loads(line)
        print(json.dumps(getattr(engine, name)(*texts)), flush=True)


if __name__ == "__main__":
    main()
