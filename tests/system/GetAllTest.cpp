#include <gtest/gtest.h>

#include "tests/support/FrameClient.h"
#include "tests/system/DaemonTest.h"
#include "tests/system/Exchanges.h"

namespace {

using GetAllTest = DaemonTest;

TEST_F(GetAllTest, FurtherMembersOfTheRequestAreIgnored) {
    FrameClient client;
    client.sendFrame(R"({"index":[1],"action":"RETICLES_GET_ALL","param_get":"x","msg_id":80})");
    EXPECT_EQ(rtos.exchange(exchanges::FULL), exchanges::LIST_REQUEST);
    EXPECT_EQ(client.readReply(), exchanges::FULL_REPLY);
}

}  // namespace
