"""The service as many would write it: Python, asyncio, nothing but the standard library.

Same ports, same files, same exchanges with the RTOS and the same replies to the byte; no log lines.
Knows only commands that the RTOS accepts.
"""
import asyncio
import contextlib
import json
import os
import socket
import struct

import json_layout

STORAGE = "/tmp/FL0/"
SYNC = bytes(range(32))
RECEIVE_BUFFER_BYTES = 4194304


class Rtos:
    """The one connection to the RTOS, opened by the first exchange."""

    def __init__(self):
        self._streams = None

    async def exchange(self, message):
        if self._streams is None:
            self._streams = await asyncio.open_connection("127.0.0.1", 3425)
        reader, writer = self._streams
        writer.write(json_layout.write([message]).encode())
        answer = json.loads(await reader.read(1024))[-1]
        if answer["ret_val"] != 0:
            raise RuntimeError("refused by the RTOS")
        return answer


class Service:
    def __init__(self):
        self._rtos = Rtos()
        self._one_at_a_time = asyncio.Lock()

    async def serve(self, reader, writer):
        with contextlib.suppress(asyncio.IncompleteReadError, ConnectionResetError):
            while True:
                header = await reader.readexactly(36)
                body = await reader.readexactly(struct.unpack(">I", header[32:])[0])
                async with self._one_at_a_time:
                    reply = (await self._handle(json.loads(body))).encode()
                writer.write(SYNC + struct.pack(">I", len(reply)) + reply)
                await writer.drain()
        writer.close()

    async def _handle(self, request):
        match request["action"]:
            case "RETICLE_SET_ACTIVE":
                await self._rtos.exchange({"msg_id": 77, "param": request["index"]})
            case "RETICLES_ADD_OR_UPDATE":
                await self._add(request["reticles"])
            case "RETICLES_DELETE":
                for index in request["indices"]:
                    await self._rtos.exchange({"msg_id": 80, "param": index})
        answer = await self._rtos.exchange({"msg_id": 76, "param_get": ""})
        return json_layout.write({"result": "OK", "reticles": read_reticles(answer["param"])})

    async def _add(self, records):
        names = [f"new_reticle_data{number}" for number in range(len(records))]
        for name, record in zip(names, records):
            with open(STORAGE + name, "w", encoding="utf-8") as file:
                file.write(record["data"])
        for name, record in zip(names, records):
            await self._rtos.exchange(
                {"msg_id": 78, "param2_name": record["name"], "param3_data": "a:/" + name})
        for name in names:
            os.remove(STORAGE + name)


def read_text(path):
    with open(path, encoding="utf-8", newline="") as file:
        return file.read()


def read_reticles(list_name):
    entries = json.loads(read_text(STORAGE + list_name))[-1]["reticles"]
    return [
        {
            "index": entry["index"],
            "name": entry["name"],
            "data": read_text(STORAGE + "reticle/" + entry["data"]).replace(
                '"user_color"', f'"{entry["userColor"]}"'),
            "isDeletable": bool(entry["isDeletable"]),
            "isActive": bool(entry["isActive"]),
        }
        for entry in entries
    ]


async def main():
    listener = socket.create_server(("", 3451), backlog=256)
    listener.setsockopt(socket.SOL_SOCKET, socket.SO_RCVBUF, RECEIVE_BUFFER_BYTES)
    server = await asyncio.start_server(Service().serve, sock=listener)
    await server.serve_forever()


asyncio.run(main())
