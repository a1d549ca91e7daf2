#include <gtest/gtest.h>

#include <string>

#include "tests/system/PlayedDeviceTest.h"
#include "tests/system/Process.h"
#include "tests/system/Programs.h"

namespace {

/// Programs on top of the Python module, between the real service and a simulated device.
class PythonClientTest : public PlayedDeviceTest {
protected:
    /// What `code` prints; the module's names are there, and `device`, which has connected.
    static std::string outputOf(const std::string& code) {
        const std::string prelude =
            "from reticle_client import *\n"
            "device = ReticleClient(timeout=2)\n"
            "device.list()\n"
            "def fails(call, *arguments):\n"
            "    try:\n"
            "        call(*arguments)\n"
            "    except (ClientError, ValueError) as error:\n"
            "        print(type(error).__name__, error)\n";
        Process program({"env", "PYTHONDONTWRITEBYTECODE=1",
                         "PYTHONPATH=" + programs::SOURCE_DIRECTORY + "/examples/python", "python3",
                         "-c", prelude + code});
        EXPECT_EQ(program.waitForEnd(), 0);
        EXPECT_EQ(program.standardError(), "");
        return program.standardOutput();
    }
};

TEST_F(PythonClientTest, EveryCallReturnsTheReticlesAfterIt) {
    EXPECT_EQ(outputOf(R"(
print(device.add("Ring 1°", '<svg stroke="user_color"/>')[8])
print(device.update(8, "Dot", "<svg/>")[8].name)
print([each.index for each in device.activate(3) if each.is_active])
print(len(device.delete([8, 7])), len(device.list()))
)"),
              "Reticle(index=8, name='Ring 1°', data='<svg stroke=\"red\"/>', is_deletable=True, "
              "is_active=False)\n"
              "Dot\n"
              "[3]\n"
              "7 7\n");
}

TEST_F(PythonClientTest, TheConnectionIsKeptAfterARefusal) {
    EXPECT_EQ(outputOf(R"(
before = device._socket
fails(device.delete, [0])
device.list()
print(device._socket is before)
with device:
    pass
print(before.fileno(), len(device.list()))
)"),
              "Refused the device said no: RETICLE_CANT_BE_DELETED\n"
              "True\n"
              "-1 8\n");
}

TEST_F(PythonClientTest, AReplyThatDoesNotComeEndsTheConnectionAndTheNextCallMakesANewOne) {
    startDevice({"--fault", "delay:2500@2"});
    startService();
    EXPECT_EQ(outputOf(R"(
device.timeout = 0.5
fails(device.list)
print(device._socket)
device.timeout = 10
print(len(device.list()))
)"),
              "NoReply no reply from 127.0.0.1:3451 within 0.5 s\n"
              "None\n"
              "8\n");
}

TEST_F(PythonClientTest, ATimeOutIsNoReplyWithThePythonThatHasAnErrorOfItsOwnForItToo) {
    EXPECT_EQ(outputOf(R"(
import socket
class SocketTimeout(OSError):
    pass
class Silence(socket.socket):
    def recv(self, count):
        raise SocketTimeout("timed out")
socket.timeout = SocketTimeout
device._socket = Silence(fileno=device._socket.detach())
fails(device.list)
)"),
              "NoReply no reply from 127.0.0.1:3451 within 2 s\n");
}

TEST_F(PythonClientTest, WhatCannotBeSentIsNotSent) {
    EXPECT_EQ(outputOf(R"(
before = device._socket
fails(device.add, "Big", "x" * 4194304)
fails(device.add, "Empty", "")
fails(device.add, "a\0b", "x")
print(device._socket is before, len(device.list()))
overhead = len('{"action": "RETICLES_ADD_OR_UPDATE", "reticles": [{"name": "Big", "data": ""}]}')
fails(device.add, "Big", "x" * (4194304 - overhead))
print(len(device.add("Big", "x" * (4194303 - overhead))))
)"),
              "ValueError the request has 4194383 bytes, and the service takes less than 4194304\n"
              "ValueError the data is empty: the device would keep the reticle, and no list would "
              "show it\n"
              "ValueError a NUL character in name or data, which no request can carry\n"
              "True 8\n"
              "ValueError the request has 4194304 bytes, and the service takes less than 4194304\n"
              "9\n");
}

TEST_F(PythonClientTest, AServiceThatIsNotThereIsCannotConnect) {
    EXPECT_EQ(outputOf(R"(fails(ReticleClient("127.0.0.1", 3450).list))"),
              "CannotConnect cannot connect to 127.0.0.1:3450: [Errno 111] Connection refused\n");
}

TEST_F(PythonClientTest, WhatIsNoReplyOfTheServiceIsMalformed) {
    EXPECT_EQ(outputOf(R"(
import socket, struct, threading
replies = [bytes(36), bytes(range(32)) + struct.pack(">I", 2) + b"[]",
           bytes(range(32)) + struct.pack(">I", 17) + b'{"result": "OK"} ', b""]
server = socket.create_server(("127.0.0.1", 3450))
def serve():
    for reply in replies:
        with server.accept()[0] as connection:
            connection.recv(65536)
            connection.sendall(reply)
threading.Thread(target=serve, daemon=True).start()
other = ReticleClient("127.0.0.1", 3450)
for _ in replies:
    fails(other.list)
)"),
              "MalformedReply 127.0.0.1:3450 is not the reticle service: no sync sequence\n"
              "MalformedReply the reply is not one of the reticle service: AttributeError(\"'list' "
              "object has no attribute 'get'\")\n"
              "MalformedReply the reply is not one of the reticle service: KeyError('reticles')\n"
              "NoReply no reply from 127.0.0.1:3450: it closed the connection\n");
}

TEST_F(PythonClientTest, WrongArgumentsAreNamed) {
    EXPECT_EQ(outputOf(R"(
fails(ReticleClient, "host", 65536)
for timeout in 0, float("nan"), float("inf"):
    fails(ReticleClient, "host", 1, timeout)
)"),
              "ValueError port: 65536 is not a number from 1 to 65535\n"
              "ValueError timeout: 0 is not more than 0 and at most 86400\n"
              "ValueError timeout: nan is not more than 0 and at most 86400\n"
              "ValueError timeout: inf is not more than 0 and at most 86400\n");
}

}  // namespace
