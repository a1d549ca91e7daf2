#include <gtest/gtest.h>

#include "commands/JsonRtosBuilderList.h"
#include "tests/support/LinkTexts.h"

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

}  // namespace
}  // namespace reticled
