#include <gtest/gtest.h>

#include "tools/reticlectl/doctor/TcpTable.h"

namespace reticlectl {

namespace {

constexpr auto TABLE =
    R"(  sl  local_address rem_address   st tx_queue rx_queue tr tm->when retrnsmt   uid  timeout inode
   0: 00000000:0D7B 00000000:0000 0A 00000000:00000003 00:00000000 00000000   995        0 34062 1 000000006f29c1d5 100 0 0 10 0
   1: 0100007F:D2C4 0100007F:0D61 01 00000010:00000000 00:00000000 00000000     0        0 34063 1 00000000a5a0be4d 20 4 30 10 -1
)";

TEST(TcpTable, HasEverySocket) {
    const auto sockets = parseTcpTable(TABLE);
    ASSERT_EQ(sockets.size(), 2U);
    EXPECT_TRUE(sockets[0].isListener());
    EXPECT_FALSE(sockets[0].isEstablished());
    EXPECT_EQ(sockets[0].localPort, 3451);
    EXPECT_EQ(sockets[0].receiveQueue, 3U);
    EXPECT_EQ(sockets[0].uid, 995U);
    EXPECT_EQ(sockets[0].inode, 34062U);
    EXPECT_TRUE(sockets[1].isEstablished());
    EXPECT_EQ(sockets[1].localAddress, "0100007F");
    EXPECT_EQ(sockets[1].remotePort, 3425);
    EXPECT_EQ(sockets[1].receiveQueue, 0U);
}

TEST(TcpTable, LeavesOutWhatIsNoSocket) {
    EXPECT_TRUE(parseTcpTable("").empty());
    EXPECT_TRUE(parseTcpTable("\n0: 00000000 00000000:0000 0A 0:0 0:0 0 995 0 34062\n").empty());
    EXPECT_TRUE(parseTcpTable("0: 00000000:0D7B 00000000:0000 0A 0:0 0:0 0 995").empty());
}

bool takesLoopback(const std::string& address) {
    TcpSocket socket;
    socket.localAddress = address;
    return socket.takesLoopback();
}

TEST(TcpTable, KnowsWhoTakesWhatIsSentToLoopback) {
    for (const char* address : {"00000000", "0100007F", "00000000000000000000000000000000",
                                "0000000000000000FFFF00000100007F"}) {
        EXPECT_TRUE(takesLoopback(address)) << address;
    }
    for (const char* address : {"0A00A8C0", "00000000000000000000000001000000"}) {
        EXPECT_FALSE(takesLoopback(address)) << address;
    }
}

}  // namespace

}  // namespace reticlectl
