"""A client of the reticle service of a sighting device; Python's standard library is all that it needs.

    from reticle_client import ReticleClient

    with ReticleClient("192.168.0.10") as device:
        for reticle in device.activate(3):
            print(reticle.index, reticle.name)
"""

from reticle_client.client import Reticle, ReticleClient
from reticle_client.errors import CannotConnect, ClientError, MalformedReply, NoReply, Refused

__all__ = [
    "CannotConnect",
    "ClientError",
    "MalformedReply",
    "NoReply",
    "Refused",
    "Reticle",
    "ReticleClient",
]
