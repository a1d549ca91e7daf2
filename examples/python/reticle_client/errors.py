"""What a call can end with, besides ValueError for arguments that cannot be sent."""


class ClientError(Exception):
    """Every error of this package. Texts of the other side stand in it as they came."""


class CannotConnect(ClientError):
    """There is no connection to the service: nothing was sent."""


class NoReply(ClientError):
    """No whole reply came in time, or the service closed the connection without one.

    The device may have carried the request out all the same, or may still do so.
    """


class MalformedReply(ClientError):
    """Something came that is not a reply of the service."""


class Refused(ClientError):
    """The device said no."""

    def __init__(self, result: str) -> None:
        super().__init__(f"the device said no: {result}")
        self.result = result
        """The name of the reason, empty when the service has none for the device's code."""
