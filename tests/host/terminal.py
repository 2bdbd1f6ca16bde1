"""Programs on a terminal of their own."""

import fcntl
import os
import pty
import re
import select
import struct
import termios
import time


COLOUR = re.compile(r"\x1b\[[0-9;?]*[A-Za-z]")


def read_until_end(terminal):
    """What comes from the terminal until nobody holds its other side."""
    output = b""
    while True:
        try:
            part = os.read(terminal, 65536)
        except OSError:
            return output
        if not part:
            return output
        output += part


def run_on_terminal(command, folder, **environment):
    """Exit code and output of a command whose input, output and errors are one terminal of 80 columns."""
    child, terminal = pty.fork()
    if child == 0:
        try:
            os.chdir(folder)
            os.environ.pop("NO_COLOR", None)
            os.environ.update({"TERM": "xterm", **environment})
            os.execv(command[0], [os.fspath(part) for part in command])
        finally:
            os._exit(127)
    output = read_until_end(terminal)
    os.close(terminal)
    _, status = os.waitpid(child, 0)
    return os.waitstatus_to_exitcode(status), output.decode()


class Shell:
    """A shell at which somebody types."""

    def __init__(self, command, folder, **environment):
        self._child, self._terminal = pty.fork()
        if self._child == 0:
            try:
                os.chdir(folder)
                os.environ.update({"TERM": "xterm", "HISTFILE": "/dev/null", **environment})
                os.execvp(command[0], command)
            finally:
                os._exit(127)
        # Wide enough for every line that is typed.
        fcntl.ioctl(self._terminal, termios.TIOCSWINSZ, struct.pack("HHHH", 24, 200, 0, 0))

    def type(self, text, awaited, seconds=20):
        """Types a text and reads until `awaited` has come, or the time is over; gives what came, without colours."""
        os.write(self._terminal, text.encode())
        output = ""
        end = time.monotonic() + seconds
        while awaited not in output and time.monotonic() < end:
            if select.select([self._terminal], [], [], 0.2)[0]:
                try:
                    output = COLOUR.sub("", output + os.read(self._terminal, 65536).decode(errors="replace"))
                except OSError:
                    break
        return output

    def close(self):
        """Ends the shell."""
        os.close(self._terminal)
        os.waitpid(self._child, 0)
