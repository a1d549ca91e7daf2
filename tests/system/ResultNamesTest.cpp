#include <gtest/gtest.h>

#include <string>

#include "tests/support/FrameClient.h"
#include "tests/system/DaemonTest.h"
#include "tests/system/Exchanges.h"

namespace {

/// An RTOS answer to a set-active request that counts as a refusal, and the result the client sees.
struct Refusal {
    std::string name;
    std::string answer;
    std::string result;
};

class ResultNamesTest : public DaemonTest, public testing::WithParamInterface<Refusal> {};

TEST_P(ResultNamesTest, RefusalHasTheResultAndNoReticles) {
    FrameClient client;
    client.sendFrame(R"({"action":"RETICLE_SET_ACTIVE","index":1})");
    EXPECT_NE(rtos.exchange(GetParam().answer), "");
    EXPECT_EQ(client.readReply(), "{\n\t\"result\" : \"" + GetParam().result + "\"\n}");
    EXPECT_TRUE(rtos.isQuiet());
}

INSTANTIATE_TEST_SUITE_P(
    Answers, ResultNamesTest,
    testing::Values(Refusal{"Code5", R"([{"ret_val":5}])", "RETICLE_INDEX_NOT_FOUND"},
                    Refusal{"Code6", R"([{"ret_val":6}])", "RETICLES_COUNT_OUT_OF_BOUNDS"},
                    Refusal{"Code7", R"([{"ret_val":7}])", "RETICLE_CANT_BE_DELETED"},
                    Refusal{"Code8", R"([{"ret_val":8}])", "UNKNOWN_ACTION"},
                    Refusal{"CodeWithoutName", R"([{"ret_val":3}])", ""},
                    Refusal{"NegativeCode", R"([{"ret_val":-1}])", ""},
                    Refusal{"LastElementDecides", R"([{"ret_val":0},{"ret_val":5}])",
                            "RETICLE_INDEX_NOT_FOUND"},
                    Refusal{"ElementsThatAreNoObjectsDoNotCount", R"([{"ret_val":5},17])",
                            "RETICLE_INDEX_NOT_FOUND"},
                    Refusal{"MemberOfAnObjectCountsAsElement", R"({"answer":{"ret_val":7}})",
                            "RETICLE_CANT_BE_DELETED"},
                    Refusal{"TopLevelObjectItselfDoesNotCount", R"({"ret_val":0})", ""},
                    Refusal{"TextAsCode", R"([{"ret_val":"0"}])", ""},
                    Refusal{"EmptyArray", "[]", ""}, Refusal{"EmptyObject", "{}", ""},
                    Refusal{"Number", "0", ""}),
    [](const auto& refusal) { return refusal.param.name; });

/// RTOS answers that count as done.
class DoneAnswersTest : public DaemonTest, public testing::WithParamInterface<Refusal> {};

TEST_P(DoneAnswersTest, TheListFollows) {
    FrameClient client;
    client.sendFrame(R"({"action":"RETICLE_SET_ACTIVE","index":1})");
    EXPECT_NE(rtos.exchange(GetParam().answer), "");
    EXPECT_EQ(rtos.exchange("[]"), exchanges::LIST_REQUEST);
    EXPECT_EQ(client.readReply(), "{\n\t\"result\" : \"OK\",\n\t\"reticles\" : null\n}");
}

INSTANTIATE_TEST_SUITE_P(Answers, DoneAnswersTest,
                         testing::Values(Refusal{"Code0", R"([{"ret_val":0}])", "OK"},
                                         Refusal{"LastElementDecides",
                                                 R"([{"ret_val":5},{"ret_val":0}])", "OK"},
                                         Refusal{"MissingCode", R"([{"msg_id":77}])", "OK"},
                                         Refusal{"NullCode", R"([{"ret_val":null}])", "OK"}),
                         [](const auto& refusal) { return refusal.param.name; });

}  // namespace
