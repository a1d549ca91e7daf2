#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "commands/JsonRtosBuilderAddOrUpdate.h"
#include "tests/support/FlashFiles.h"
#include "tests/unit/service/OutputCapture.h"

namespace reticled {
namespace {

using Requests = std::vector<std::string>;

constexpr auto ADD_FIRST = R"([
	{
		"msg_id" : 78,
		"param2_name" : "New",
		"param3_data" : "a:/new_reticle_data0"
	}
])";
constexpr auto UPDATE_SECOND = R"([
	{
		"msg_id" : 79,
		"param1_index" : 3,
		"param2_name" : "Old",
		"param3_data" : "a:/new_reticle_data1"
	}
])";
constexpr auto UPDATE_FIRST = R"([
	{
		"msg_id" : 79,
		"param1_index" : 0,
		"param2_name" : "Zero",
		"param3_data" : "a:/new_reticle_data0"
	}
])";

class JsonRtosBuilderAddOrUpdateTest : public testing::Test {
protected:
    Requests requestsFor(const std::string& clientRequest) {
        builder.reset();
        builder.build(clientRequest);
        builder.finish();
        return builder.getRequests();
    }

    OutputCapture output;
    FlashFiles flash;
    JsonRtosBuilderAddOrUpdate builder;
};

TEST_F(JsonRtosBuilderAddOrUpdateTest, RecordWithoutIndexIsAddedAndOneWithIndexUpdated) {
    const std::string request =
        R"({"reticles":[{"name":"New","data":"D"},{"name":"Old","data":"E","index":3}]})";
    EXPECT_EQ(requestsFor(request), (Requests{ADD_FIRST, UPDATE_SECOND}));
    EXPECT_EQ(flash.read("new_reticle_data0"), "D");
    EXPECT_EQ(flash.read("new_reticle_data1"), "E");
    EXPECT_EQ(output.out(), "buildmsg: " + request + "\nbuildindices is empty \n");
    EXPECT_EQ(output.err(), "");
}

TEST_F(JsonRtosBuilderAddOrUpdateTest, IndexZeroIsAnUpdate) {
    EXPECT_EQ(requestsFor(R"({"reticles":[{"name":"Zero","data":"D","index":0}]})"),
              Requests{UPDATE_FIRST});
}

TEST_F(JsonRtosBuilderAddOrUpdateTest, NegativeIndexIsAnAdd) {
    EXPECT_EQ(requestsFor(R"({"reticles":[{"name":"New","data":"D","index":-5}]})"),
              Requests{ADD_FIRST});
}

TEST_F(JsonRtosBuilderAddOrUpdateTest, NullIndexIsAnAdd) {
    EXPECT_EQ(requestsFor(R"({"reticles":[{"name":"New","data":"D","index":null}]})"),
              Requests{ADD_FIRST});
}

TEST_F(JsonRtosBuilderAddOrUpdateTest, EmptyOrMissingReticlesBuildNothing) {
    EXPECT_EQ(requestsFor(R"({"reticles":[]})"), Requests{});
    EXPECT_EQ(requestsFor(R"({"action":"RETICLES_ADD_OR_UPDATE"})"), Requests{});
    EXPECT_EQ(output.out(),
              "buildmsg: {\"reticles\":[]}\n"
              "buildindices is empty \n"
              "buildmsg: {\"action\":\"RETICLES_ADD_OR_UPDATE\"}\n"
              "buildindices is empty \n");
    EXPECT_EQ(flash.names(), std::vector<std::string>{});
}

TEST_F(JsonRtosBuilderAddOrUpdateTest, RecordThatCannotBeReadIsLeftOutAndTakesNoFile) {
    EXPECT_EQ(requestsFor(R"({"reticles":[{"name":5,"data":"D"},{"name":"New","data":"E"}]})"),
              Requests{ADD_FIRST});
    EXPECT_EQ(flash.read("new_reticle_data0"), "E");
    EXPECT_EQ(flash.names(), std::vector<std::string>{"new_reticle_data0"});
    EXPECT_EQ(output.err(), "Wrong json key\n");
}

TEST_F(JsonRtosBuilderAddOrUpdateTest, ResetForgetsWhatWasBuilt) {
    builder.reset();
    builder.build(R"({"reticles":[{"name":"New","data":"D"}]})");
    builder.reset();
    EXPECT_EQ(builder.getRequests(), Requests{});
}

TEST_F(JsonRtosBuilderAddOrUpdateTest, WithoutStorageTheRequestsNameTheFilesAllTheSame) {
    flash.remove();
    EXPECT_EQ(requestsFor(R"({"reticles":[{"name":"New","data":"D"}]})"), Requests{ADD_FIRST});
    builder.removeDataFiles();
    EXPECT_EQ(output.err(), "");
    EXPECT_FALSE(flash.exists(""));
}

}  // namespace
}  // namespace reticled
