"""The connection to a reticle service."""

from __future__ import annotations

import dataclasses
import json
import os
import socket
import struct
import time
from collections.abc import Iterable
from types import TracebackType
from typing import Any, TypeVar

from reticle_client.errors import CannotConnect, MalformedReply, NoReply, Refused

DEFAULT_HOST = "127.0.0.1"
DEFAULT_PORT = 3451
REQUEST_LIMIT_BYTES = 4194304
LONGEST_TIMEOUT_S = 86400
SYNC = bytes(range(32))

T = TypeVar("T")


@dataclasses.dataclass(frozen=True)
class Reticle:
    """One reticle as the device lists it."""

    index: int | None
    """What every other command takes; None where the device gave no number."""
    name: str
    data: str
    """With the user's colour put in: stored again, it would keep this colour."""
    is_deletable: bool
    is_active: bool


# Its own name, as a method of the class is called list.
Reticles = list[Reticle]


class ReticleClient:
    """A connection to the reticle service of a device, one call per command.

    Every call sends a request, waits for its reply and returns the reticles as they are then. It raises
    CannotConnect, NoReply or MalformedReply, after which the next call connects anew, since a late reply could
    be taken for that of the next request; Refused, after which the connection goes on; or ValueError for
    arguments that cannot be sent, where nothing was sent. One thread at a time.
    """

    def __init__(self, host: str | None = None, port: int | None = None, timeout: float = 10.0) -> None:
        """Names the device; the first call connects.

        What is not given comes from RETICLED_HOST and RETICLED_PORT, else it is 127.0.0.1 and 3451.
        The timeout, in seconds, bounds each request with its reply, connecting included; a host of several
        addresses may take as long for each, and the look-up of its name is not bounded. Raises ValueError for a
        port that is none, or a timeout that is not more than 0 and at most 86400.
        """
        self.host = host if host is not None else os.environ.get("RETICLED_HOST") or DEFAULT_HOST
        self.port = _checked_port(port, "port") if port is not None else _port_of_environment()
        if not 0 < timeout <= LONGEST_TIMEOUT_S:
            raise ValueError(f"timeout: {timeout} is not more than 0 and at most {LONGEST_TIMEOUT_S}")
        self.timeout = timeout
        self._socket: socket.socket | None = None

    def __enter__(self) -> ReticleClient:
        return self

    def __exit__(
        self, kind: type[BaseException] | None, error: BaseException | None, trace: TracebackType | None
    ) -> None:
        self.close()

    def close(self) -> None:
        """Ends the connection; the next call makes a new one."""
        if self._socket is not None:
            self._socket.close()
            self._socket = None

    def list(self) -> Reticles:
        """The reticles of the device."""
        return self._call({"action": "RETICLES_GET_ALL"})

    def activate(self, index: int) -> Reticles:
        """Makes the reticle the active one."""
        return self._call({"action": "RETICLE_SET_ACTIVE", "index": index})

    def add(self, name: str, data: str) -> Reticles:
        """Stores a new reticle; each "user_color" in the data, quotes included, shows as the user's colour."""
        return self._store({"name": name, "data": data})

    def update(self, index: int, name: str, data: str) -> Reticles:
        """Replaces the name and the data of a reticle."""
        return self._store({"index": index, "name": name, "data": data})

    def delete(self, indices: Iterable[int]) -> Reticles:
        """Deletes reticles, in order, up to the first that the device refuses."""
        return self._call({"action": "RETICLES_DELETE", "indices": [*indices]})

    def _store(self, reticle: dict[str, Any]) -> Reticles:
        if not reticle["data"]:
            raise ValueError("the data is empty: the device would keep the reticle, and no list would show it")
        if "\0" in reticle["name"] + reticle["data"]:
            raise ValueError("a NUL character in name or data, which no request can carry")
        return self._call({"action": "RETICLES_ADD_OR_UPDATE", "reticles": [reticle]})

    def _call(self, request: dict[str, Any]) -> Reticles:
        frame = _frame(request)
        deadline = time.monotonic() + self.timeout
        try:
            return _reticles(self._exchange(frame, deadline))
        except Refused:
            raise
        except BaseException:
            self.close()
            raise

    def _exchange(self, frame: bytes, deadline: float) -> bytes:
        connection = self._connected(deadline)
        try:
            connection.settimeout(_time_left(deadline))
            connection.sendall(frame)
            header = _receive(connection, len(SYNC) + 4, deadline)
            if not header.startswith(SYNC):
                raise MalformedReply(f"{self._peer()} is not the reticle service: no sync sequence")
            (length,) = struct.unpack(">I", header[len(SYNC) :])
            return _receive(connection, length, deadline)
        except (TimeoutError, socket.timeout):  # one and the same from Python 3.10 on
            raise NoReply(f"no reply from {self._peer()} within {self.timeout:g} s") from None
        except OSError as error:
            raise NoReply(f"no reply from {self._peer()}: {error}") from error

    def _connected(self, deadline: float) -> socket.socket:
        if self._socket is None:
            try:
                self._socket = socket.create_connection((self.host, self.port), _time_left(deadline))
            except OSError as error:
                raise CannotConnect(f"cannot connect to {self._peer()}: {error}") from error
        return self._socket

    def _peer(self) -> str:
        return f"{self.host}:{self.port}"


def _checked_port(port: int, source: str) -> int:
    if not 1 <= port <= 65535:
        raise ValueError(f"{source}: {port} is not a number from 1 to 65535")
    return port


def _port_of_environment() -> int:
    text = os.environ.get("RETICLED_PORT") or str(DEFAULT_PORT)
    if not (text.isascii() and text.isdigit()):
        raise ValueError(f"RETICLED_PORT: {text!r} is not a number from 1 to 65535")
    return _checked_port(int(text), "RETICLED_PORT")


def _frame(request: dict[str, Any]) -> bytes:
    body = json.dumps(request, ensure_ascii=False).encode()
    if len(body) >= REQUEST_LIMIT_BYTES:
        raise ValueError(f"the request has {len(body)} bytes, and the service takes less than {REQUEST_LIMIT_BYTES}")
    return SYNC + struct.pack(">I", len(body)) + body


def _time_left(deadline: float) -> float:
    left = deadline - time.monotonic()
    if left <= 0:
        raise TimeoutError
    return left


def _receive(connection: socket.socket, count: int, deadline: float) -> bytes:
    """Exactly so many bytes, taken as they come: a length by itself takes no memory."""
    data = bytearray()
    while len(data) < count:
        connection.settimeout(_time_left(deadline))
        piece = connection.recv(min(count - len(data), 65536))
        if not piece:
            raise ConnectionError("it closed the connection")
        data += piece
    return bytes(data)


def _reticles(body: bytes) -> Reticles:
    try:
        reply = json.loads(body)
        result = reply.get("result", "OK")
        if result != "OK":
            raise Refused(_typed(result, str))
        return [_reticle(record) for record in _records(reply)]
    except (ValueError, TypeError, KeyError, AttributeError, RecursionError) as error:
        raise MalformedReply(f"the reply is not one of the reticle service: {error!r}") from error


def _records(reply: dict[str, Any]) -> list[dict[str, Any]]:
    # No reticles come as null.
    return _typed(reply["reticles"], list) if reply["reticles"] is not None else []


def _reticle(record: dict[str, Any]) -> Reticle:
    index = record["index"]
    is_number = isinstance(index, int) and not isinstance(index, bool)
    return Reticle(
        index=index if is_number else None,
        name=_typed(record["name"], str),
        data=_typed(record["data"], str),
        is_deletable=_typed(record["isDeletable"], bool),
        is_active=_typed(record["isActive"], bool),
    )


def _typed(value: Any, kind: type[T]) -> T:
    if not isinstance(value, kind):
        raise TypeError(f"{value!r:.80} is of a wrong type")
    return value
