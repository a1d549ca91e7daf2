"""How crowds of clients fare, in haste and with patience: see docs/performance.md.

    python3 bench/crowd.py [CLIENTS...]     1 15 100 1000 if none are given; prints a table
"""
import asyncio
import os
import random
import statistics
import sys
import tempfile
import time
from pathlib import Path

from cell import ROOT, Cell

BUILD = ROOT / "build" / "release"
SECONDS = 8
LONGEST_PAUSE_S = 2
REPLY_TIMEOUT_S = 1
BODY = b'{"action":"RETICLES_GET_ALL"}'
FRAME = bytes(range(32)) + len(BODY).to_bytes(4, "big") + BODY


async def ask(reader, writer):
    writer.write(FRAME)
    header = await reader.readexactly(36)
    await reader.readexactly(int.from_bytes(header[32:], "big"))


async def hasty(waits):
    """A connection for each request, and the next one at once."""
    while True:
        start = time.monotonic()
        reader, writer = await asyncio.open_connection("127.0.0.1", 3451)
        await ask(reader, writer)
        waits.append(time.monotonic() - start)
        writer.close()


async def patient(waits):
    """One connection; a pause after each reply, and a random one before what got none is tried again."""
    while True:
        await asyncio.sleep(random.uniform(0, LONGEST_PAUSE_S))
        try:
            async with asyncio.timeout(REPLY_TIMEOUT_S):
                reader, writer = await asyncio.open_connection("127.0.0.1", 3451)
            while True:
                start = time.monotonic()
                async with asyncio.timeout(REPLY_TIMEOUT_S):
                    await ask(reader, writer)
                waits.append(time.monotonic() - start)
                await asyncio.sleep(random.uniform(0, LONGEST_PAUSE_S))
        except TimeoutError:
            pass


async def crowd(kind, count):
    waits = [[] for _ in range(count)]
    tasks = [asyncio.create_task(kind(w)) for w in waits]
    await asyncio.wait(tasks, timeout=SECONDS)
    for task in tasks:
        task.cancel()
    await asyncio.gather(*tasks, return_exceptions=True)
    replies = [wait for w in waits for wait in w]
    unserved = sum(not w for w in waits)
    print(f"| {count} | {kind.__name__} | {len(replies)} | {unserved} "
          f"| {statistics.median(replies) * 1000:.1f} | {max(replies) * 1000:.0f} |", flush=True)


def measure(counts):
    os.sched_setaffinity(0, range(os.cpu_count()))
    print(f"| Clients | | Replies in {SECONDS} s | Clients without one | Median wait, ms | Longest, ms |")
    print("|---|---|---|---|---|---|")
    for count in counts:
        for kind in (hasty, patient):
            asyncio.run(crowd(kind, count))


def main(arguments):
    if arguments[:1] == ["--inside"]:
        measure([int(count) for count in arguments[1:]])
        return
    with tempfile.TemporaryDirectory() as storage, Cell(storage) as cell:
        cell.start([BUILD / "rtos-sim"], stdout=-3, stderr=-3)
        cell.start([BUILD / "reticled"], stdout=-3, stderr=-3).wait()
        cell.start(["sh", "-c", 'ulimit -n 4096; exec "$@"', "sh", sys.executable, Path(__file__), "--inside",
                    *(arguments or ["1", "15", "100", "1000"])]).wait()


main(sys.argv[1:])
