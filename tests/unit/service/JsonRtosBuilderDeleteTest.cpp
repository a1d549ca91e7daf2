#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "commands/JsonRtosBuilderDelete.h"
#include "tests/unit/service/OutputCapture.h"

namespace reticled {
namespace {

using Requests = std::vector<std::string>;

constexpr auto DELETE_1 = "[\n\t{\n\t\t\"msg_id\" : 80,\n\t\t\"param\" : 1\n\t}\n]";
constexpr auto DELETE_2 = "[\n\t{\n\t\t\"msg_id\" : 80,\n\t\t\"param\" : 2\n\t}\n]";
constexpr auto DELETE_5 = "[\n\t{\n\t\t\"msg_id\" : 80,\n\t\t\"param\" : 5\n\t}\n]";

class JsonRtosBuilderDeleteTest : public testing::Test {
protected:
    Requests requestsFor(const std::string& clientRequest) {
        builder.reset();
        builder.build(clientRequest);
        builder.finish();
        return builder.getRequests();
    }

    OutputCapture output;
    JsonRtosBuilderDelete builder;
};

TEST_F(JsonRtosBuilderDeleteTest, EachIndexHasARequestOfItsOwn) {
    EXPECT_EQ(requestsFor(R"({"indices":[2,5]})"), (Requests{DELETE_2, DELETE_5}));
    EXPECT_EQ(output.out(), "buildmsg: {\"indices\":[2,5]}\n");
    EXPECT_EQ(output.err(), "");
}

TEST_F(JsonRtosBuilderDeleteTest, OrderAndRepetitionsStay) {
    EXPECT_EQ(requestsFor(R"({"indices":[5,1,1]})"), (Requests{DELETE_5, DELETE_1, DELETE_1}));
}

TEST_F(JsonRtosBuilderDeleteTest, EmptyOrMissingIndicesBuildNothing) {
    EXPECT_EQ(requestsFor(R"({"indices":[]})"), Requests{});
    EXPECT_EQ(requestsFor(R"({"action":"RETICLES_DELETE"})"), Requests{});
    EXPECT_EQ(output.out(),
              "buildmsg: {\"indices\":[]}\n"
              "buildindices is empty \n"
              "buildmsg: {\"action\":\"RETICLES_DELETE\"}\n"
              "buildindices is empty \n");
}

TEST_F(JsonRtosBuilderDeleteTest, IndicesThatAreNoIntegersAreLeftOut) {
    EXPECT_EQ(requestsFor(R"({"indices":["1",2]})"), Requests{DELETE_2});
    EXPECT_EQ(output.err(), "Wrong json key\n");
}

TEST_F(JsonRtosBuilderDeleteTest, ResetForgetsWhatWasBuilt) {
    builder.reset();
    builder.build(R"({"indices":[2,5]})");
    builder.reset();
    EXPECT_EQ(builder.getRequests(), Requests{});
}

}  // namespace
}  // namespace reticled
