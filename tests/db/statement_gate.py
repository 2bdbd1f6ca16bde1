"""Stands between a MySQL client and its server, and can act at a certain statement: just before the server would see it."""

import contextlib
import socket
import threading

COMMAND_QUERY = 3


class StatementGate:
    """Listens on `path` and passes everything on to the server's socket. `on_statement` is called with each statement; a
    server that it ends is missed by the client only when it has returned."""

    def __init__(self, path, server_path):
        self._server_path = str(server_path)
        self.on_statement = lambda statement: None
        self._acting = threading.Lock()
        self._speaking = threading.Event()
        self._speaking.set()
        self._listener = socket.socket(socket.AF_UNIX)
        self._listener.bind(str(path))
        self._listener.listen()
        threading.Thread(target=self._accept, daemon=True).start()

    def swallow(self):
        """From now on nothing comes through in either direction, and nobody is told."""
        self._speaking.clear()

    def speak(self):
        self._speaking.set()

    def close(self):
        self.speak()
        self._end(self._listener)
        self._listener.close()

    def _accept(self):
        while True:
            try:
                client, _ = self._listener.accept()
            except OSError:
                return
            threading.Thread(target=self._serve, args=(client,), daemon=True).start()

    def _serve(self, client):
        """A client without a server sees its connection end."""
        with client, socket.socket(socket.AF_UNIX) as server:
            try:
                server.connect(self._server_path)
            except OSError:
                return
            answers = threading.Thread(target=self._answers, args=(server, client), daemon=True)
            answers.start()
            self._requests(client, server)
            answers.join()

    def _answers(self, server, client):
        with contextlib.suppress(OSError):
            while data := server.recv(65536):
                self._speaking.wait()
                client.sendall(data)
        with self._acting:
            self._end(client)

    def _requests(self, client, server):
        with contextlib.suppress(OSError):
            while packet := self._packet(client):
                if packet[3] == 0 and packet[4] == COMMAND_QUERY:
                    with self._acting:
                        self.on_statement(packet[5:].decode())
                self._speaking.wait()
                server.sendall(packet)
        self._end(server)

    @staticmethod
    def _packet(connection):
        """A whole packet, its head included: three bytes of length, one that counts up from 0 at each request."""
        with_head = StatementGate._exactly(connection, 4)
        if not with_head:
            return b""
        return with_head + StatementGate._exactly(connection, int.from_bytes(with_head[:3], "little"))

    @staticmethod
    def _exactly(connection, size):
        data = b""
        while len(data) < size:
            piece = connection.recv(size - len(data))
            if not piece:
                return b""
            data += piece
        return data

    @staticmethod
    def _end(connection):
        with contextlib.suppress(OSError):
            connection.shutdown(socket.SHUT_RDWR)
