#include <gtest/gtest.h>

#include "commands/JsonRtosBuilderList.h"
#include "tests/support/LinkTexts.h"
#include "tests/unit/service/peers/JsonRtosBuilderTestPeer.h"

namespace reticled {
namespace {

TEST(JsonRtosBuilderListTest, RequestHasExactlyItsTwoMembers) {
    JsonRtosBuilderList builder;
    builder.reset();
    builder.buildMsgId();
    builder.buildParam();
    builder.finish();
    EXPECT_EQ(builder.getRequest(), exchanges::LIST_REQUEST);
}

TEST(JsonRtosBuilderListTest, RequestIsTheSameEveryTime) {
    JsonRtosBuilderList builder;
    for (int i = 0; i < 3; ++i) {
        builder.reset();
        builder.buildMsgId();
        builder.buildParam();
        builder.finish();
        EXPECT_EQ(builder.getRequest(), exchanges::LIST_REQUEST);
    }
}

TEST(JsonRtosBuilderListTest, BuilderIsBusyFromResetToFinish) {
    JsonRtosBuilderList builder;
    EXPECT_FALSE(JsonRtosBuilderTestPeer::isBusy(builder));
    builder.reset();
    EXPECT_TRUE(JsonRtosBuilderTestPeer::isBusy(builder));
    builder.finish();
    EXPECT_FALSE(JsonRtosBuilderTestPeer::isBusy(builder));
}

}  // namespace
}  // namespace reticled
