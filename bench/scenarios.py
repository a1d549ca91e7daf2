"""What is measured: requests, the reticles that the replies list, the exchanges between."""
import json
from dataclasses import dataclass
from pathlib import Path

import json_layout

KB = 1000
COLOUR = "#00ff00"
LIST_EXCHANGE = {"msg_id": 76, "param_get": ""}


def reticle_text(size):
    """A drawing of exactly `size` bytes whose strokes are the placeholder."""
    head = '<svg xmlns="http://www.w3.org/2000/svg" viewBox="-10 -10 20 20">\n'
    foot = "</svg>\n"
    lines = []
    left = size - len(head) - len(foot)
    while True:
        x = len(lines) % 200 / 10 - 10
        line = f'<line x1="{x:.2f}" y1="-0.5" x2="{x:.2f}" y2="0.5" stroke="user_color"/>\n'
        if len(line) + 8 > left:
            break
        lines.append(line)
        left -= len(line)
    return head + "".join(lines) + "<!--" + "." * (left - 8) + "-->\n" + foot


@dataclass(frozen=True, eq=False)
class Scenario:
    """One command, repeated: its request, its exchanges with the RTOS, the list in its reply."""

    name: str
    request: dict
    commands: tuple  # exchanged with the RTOS before the list
    count: int  # reticles in the list
    size: int  # bytes of each

    def write(self, directory: Path):
        """Writes what the programs are given: request, reply, exchanges, and the storage."""
        storage = directory / "storage"
        (storage / "reticle").mkdir(parents=True, exist_ok=True)
        text = reticle_text(self.size)
        for number in range(self.count):
            (storage / "reticle" / f"{number}.svg").write_text(text)
        entries = [self._entry(number) for number in range(self.count)]
        (storage / "list").write_text(json.dumps([{"reticles": entries}]))
        (directory / "request").write_text(json.dumps(self.request))
        (directory / "reply").write_text(self._reply(text, entries))
        for number, message in enumerate((*self.commands, LIST_EXCHANGE)):
            (directory / f"exchange{number:02}").write_text(json_layout.write([message]))

    @staticmethod
    def _entry(number):
        return {"index": number, "name": f"Reticle {number}", "data": f"{number}.svg",
                "userColor": COLOUR, "isDeletable": 1, "isActive": int(number == 0)}

    @staticmethod
    def _reply(text, entries):
        data = text.replace("user_color", COLOUR)
        records = [{"index": entry["index"], "name": entry["name"], "data": data,
                    "isDeletable": True, "isActive": entry["isActive"] == 1} for entry in entries]
        return json_layout.write({"result": "OK", "reticles": records})


def listing(count, size):
    return Scenario(f"list {count} x {size // KB} KB", {"action": "RETICLES_GET_ALL"}, (), count, size)


def adding(label, size):
    record = {"name": "New reticle", "data": reticle_text(size)}
    message = {"msg_id": 78, "param2_name": record["name"], "param3_data": "a:/new_reticle_data0"}
    return Scenario(f"add {label}", {"action": "RETICLES_ADD_OR_UPDATE", "reticles": [record]},
                    (message,), 1, KB)


ACTIVATE = Scenario("activate", {"action": "RETICLE_SET_ACTIVE", "index": 0},
                    ({"msg_id": 77, "param": 0},), 1, KB)
DELETE = Scenario("delete of 10", {"action": "RETICLES_DELETE", "indices": list(range(10))},
                  tuple({"msg_id": 80, "param": index} for index in range(10)), 1, KB)
ADD_LARGE = adding("1 MB", 1000 * KB)
LARGEST_LIST = listing(50, 100 * KB)

SCENARIOS = (
    ACTIVATE,
    listing(1, KB),
    listing(10, 10 * KB),
    listing(100, 10 * KB),
    LARGEST_LIST,
    listing(1000, KB),
    adding("1 KB", KB),
    ADD_LARGE,
    DELETE,
)
CONNECTIONS = (1, 4, 8)

GROWTH_BY_NUMBER = tuple(listing(count, 10 * KB) for count in (25, 50, 100, 200, 400))
GROWTH_BY_SIZE = tuple(listing(10, size * KB) for size in (10, 30, 100, 300, 1000))
