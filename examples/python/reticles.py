#!/usr/bin/env python3
"""A whole client of the reticle service; Python's standard library is all that it needs.

    reticles.py [--host HOST] list
    reticles.py [--host HOST] activate INDEX
    reticles.py [--host HOST] add NAME FILE
    reticles.py [--host HOST] update INDEX NAME FILE
    reticles.py [--host HOST] delete INDEX...
"""

import argparse
import json
import pathlib
import socket
import struct
import sys

PORT = 3451
TIMEOUT_S = 10
SYNC = bytes(range(32))


def receive_exactly(connection, count):
    data = bytearray()
    while len(data) < count:
        piece = connection.recv(min(count - len(data), 65536))
        if not piece:
            raise ConnectionError("the service closed the connection without a reply")
        data += piece
    return bytes(data)


def call(connection, request):
    """Sends one request, a dictionary, and returns the reply to it, a dictionary."""
    body = json.dumps(request).encode()
    connection.sendall(SYNC + struct.pack(">I", len(body)) + body)
    header = receive_exactly(connection, len(SYNC) + 4)
    if not header.startswith(SYNC):
        raise ValueError("this is not the reticle service: no sync sequence")
    (length,) = struct.unpack(">I", header[len(SYNC):])
    return json.loads(receive_exactly(connection, length))


def read_arguments():
    parser = argparse.ArgumentParser(description="Lists and changes the reticles of a device.")
    parser.add_argument("--host", default="127.0.0.1")
    commands = parser.add_subparsers(dest="command", required=True)
    commands.add_parser("list")
    commands.add_parser("activate").add_argument("index", type=int)
    for name in ("add", "update"):
        command = commands.add_parser(name)
        if name == "update":
            command.add_argument("index", type=int)
        command.add_argument("name")
        command.add_argument("file", type=pathlib.Path)
    commands.add_parser("delete").add_argument("indices", type=int, nargs="+")
    return parser.parse_args()


def request_for(arguments):
    if arguments.command == "list":
        return {"action": "RETICLES_GET_ALL"}
    if arguments.command == "activate":
        return {"action": "RETICLE_SET_ACTIVE", "index": arguments.index}
    if arguments.command == "delete":
        return {"action": "RETICLES_DELETE", "indices": arguments.indices}
    reticle = {"name": arguments.name, "data": arguments.file.read_bytes().decode()}
    if arguments.command == "update":
        reticle["index"] = arguments.index
    return {"action": "RETICLES_ADD_OR_UPDATE", "reticles": [reticle]}


def main():
    arguments = read_arguments()
    try:
        request = request_for(arguments)
        with socket.create_connection((arguments.host, PORT), TIMEOUT_S) as connection:
            reply = call(connection, request)
    except (OSError, ValueError) as failure:
        sys.exit(f"reticles.py: {failure}")
    if "reticles" not in reply:
        sys.exit(f"reticles.py: the device said no: {reply['result']}")
    # No reticles come as null.
    for reticle in reply["reticles"] or []:
        mark = "*" if reticle["isActive"] else " "
        print(f"{mark} {reticle['index']} {reticle['name']}")


if __name__ == "__main__":
    main()
