#!/usr/bin/env python3
"""A small program on top of the package beside it.

    reticles.py [--host HOST] [--port PORT] list
    reticles.py [--host HOST] [--port PORT] activate INDEX
    reticles.py [--host HOST] [--port PORT] add NAME FILE
    reticles.py [--host HOST] [--port PORT] update INDEX NAME FILE
    reticles.py [--host HOST] [--port PORT] delete INDEX...

RETICLED_HOST and RETICLED_PORT name the device where the command line does not.
"""

import argparse
import pathlib
import sys

from reticle_client import ClientError, Reticle, ReticleClient


def read_arguments() -> argparse.Namespace:
    parser = argparse.ArgumentParser(description="Lists and changes the reticles of a device.")
    parser.add_argument("--host")
    parser.add_argument("--port", type=int)
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


def carry_out(arguments: argparse.Namespace) -> list[Reticle]:
    with ReticleClient(arguments.host, arguments.port) as device:
        if arguments.command == "list":
            return device.list()
        if arguments.command == "activate":
            return device.activate(arguments.index)
        if arguments.command == "delete":
            return device.delete(arguments.indices)
        data = arguments.file.read_bytes().decode()
        if arguments.command == "update":
            return device.update(arguments.index, arguments.name, data)
        return device.add(arguments.name, data)


def main() -> None:
    try:
        reticles = carry_out(read_arguments())
    except (ClientError, OSError, ValueError) as failure:
        sys.exit(f"reticles.py: {failure}")
    for reticle in reticles:
        print("*" if reticle.is_active else " ", reticle.index, reticle.name)


if __name__ == "__main__":
    main()
