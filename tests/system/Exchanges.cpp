#include "tests/system/Exchanges.h"

#include <gtest/gtest.h>

void exchanges::expectServed(FrameClient& client, ScriptedRtos& rtos) {
    client.sendFrame(GET_ALL);
    EXPECT_EQ(rtos.exchange(FULL), LIST_REQUEST);
    EXPECT_EQ(client.readReply(), FULL_REPLY);
    EXPECT_TRUE(rtos.isQuiet());
}
