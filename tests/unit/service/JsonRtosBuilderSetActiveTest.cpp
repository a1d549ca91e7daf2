#include <gtest/gtest.h>

#include <string>

#include "commands/JsonRtosBuilderSetActive.h"

namespace reticled {
namespace {

std::string requestFor(const std::string& clientRequest) {
    JsonRtosBuilderSetActive builder;
    builder.reset();
    builder.build(clientRequest);
    builder.finish();
    return builder.getRequest();
}

TEST(JsonRtosBuilderSetActiveTest, RequestNamesTheIndex) {
    EXPECT_EQ(requestFor(R"({"action":"RETICLE_SET_ACTIVE","index":4})"),
              "[\n\t{\n\t\t\"msg_id\" : 77,\n\t\t\"param\" : 4\n\t}\n]");
}

TEST(JsonRtosBuilderSetActiveTest, MissingIndexIsZero) {
    EXPECT_EQ(requestFor(R"({"action":"RETICLE_SET_ACTIVE"})"),
              "[\n\t{\n\t\t\"msg_id\" : 77,\n\t\t\"param\" : 0\n\t}\n]");
}

TEST(JsonRtosBuilderSetActiveTest, NothingOfTheLastCommandIsLeft) {
    JsonRtosBuilderSetActive builder;
    for (const char* index : {"1", "2"}) {
        builder.reset();
        builder.build(std::string(R"({"index":)") + index + "}");
        builder.finish();
        EXPECT_EQ(
            builder.getRequest(),
            std::string("[\n\t{\n\t\t\"msg_id\" : 77,\n\t\t\"param\" : ") + index + "\n\t}\n]");
    }
}

}  // namespace
}  // namespace reticled
