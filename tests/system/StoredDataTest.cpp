#include <gtest/gtest.h>

#include <filesystem>
#include <ostream>
#include <string>
#include <string_view>

#include "tests/support/FrameClient.h"
#include "tests/support/Text.h"
#include "tests/system/DaemonTest.h"
#include "tests/system/Exchanges.h"

namespace {

/// A piece of data that one client stores many times over.
struct Piece {
    std::string_view sent;
    std::string_view stored;
    std::string_view listed;
};

void PrintTo(const Piece& piece, std::ostream* out) {
    *out << piece.listed;
}

/// What one client has stored comes back in everybody's list.
class StoredDataTest : public DaemonTest, public testing::WithParamInterface<Piece> {
protected:
    static constexpr std::size_t PIECES = 20000;

    StoredDataTest() { flash.write("list.json", exchanges::ONE_DOT_LIST); }

    void store(const std::string& sent, const std::string& stored) {
        FrameClient client;
        client.sendFrame(
            R"({"action":"RETICLES_ADD_OR_UPDATE","reticles":[{"name":"Dot","data":")" + sent +
            "\"}]}");
        EXPECT_EQ(rtos.receiveRequest(), R"([
	{
		"msg_id" : 78,
		"param2_name" : "Dot",
		"param3_data" : "a:/new_reticle_data0"
	}
])");
        EXPECT_TRUE(flash.read("new_reticle_data0") == stored);
        flash.write("reticle/dot.svg", stored);
        rtos.answer(exchanges::FULL);
        EXPECT_EQ(client.readReply(), exchanges::FULL_REPLY);
    }
};

TEST_P(StoredDataTest, EverybodysListHasAllOfIt) {
    const Piece& piece = GetParam();
    store(repeated(piece.sent, PIECES), repeated(piece.stored, PIECES));
    constexpr std::string_view dotAsListed = R"(<circle fill=\"red\"/>)";
    std::string expected(exchanges::ONE_DOT_REPLY);
    expected.replace(expected.find(dotAsListed), dotAsListed.size(),
                     repeated(piece.listed, PIECES));
    for (int client = 0; client < 2; ++client) {
        FrameClient anybody;
        anybody.sendFrame(exchanges::GET_ALL);
        EXPECT_EQ(rtos.exchange(exchanges::LIST_ANSWER), exchanges::LIST_REQUEST);
        EXPECT_TRUE(anybody.readReply() == expected);
        exchanges::expectServed(anybody, rtos);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Pieces, StoredDataTest,
    testing::Values(Piece{"\x01", "\x01", "\\u0001"}, Piece{"\xc3\xa9", "\xc3\xa9", "\\u00e9"},
                    Piece{"\xff", "\xff", "\\ufffd"}, Piece{"\\\"", "\"", "\\\""},
                    Piece{"\\\"user_color\\\"", "\"user_color\"", "\\\"red\\\""}));

}  // namespace
