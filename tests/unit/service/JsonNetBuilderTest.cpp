#include <gtest/gtest.h>

#include <string>

#include "commands/JsonNetBuilder.h"
#include "tests/unit/service/OutputCapture.h"

namespace reticled {
namespace {

std::string resultOnly(const std::string& name) {
    return "{\n\t\"result\" : \"" + name + "\"\n}";
}

class JsonNetBuilderTest : public testing::Test {
protected:
    /// The reply to a command whose only answer is `answer`.
    std::string replyTo(const std::string& answer) {
        builder.reset();
        isAccepted = builder.setResult(answer);
        builder.finish();
        return builder.getResponse();
    }

    OutputCapture output;
    JsonNetBuilder builder;
    bool isAccepted = false;
};

TEST_F(JsonNetBuilderTest, ResultIsTheNameOfTheCode) {
    EXPECT_EQ(replyTo(R"([{"ret_val":0}])"), resultOnly("OK"));
    EXPECT_TRUE(isAccepted);
    EXPECT_EQ(replyTo(R"([{"ret_val":5}])"), resultOnly("RETICLE_INDEX_NOT_FOUND"));
    EXPECT_FALSE(isAccepted);
    EXPECT_EQ(replyTo(R"([{"ret_val":6}])"), resultOnly("RETICLES_COUNT_OUT_OF_BOUNDS"));
    EXPECT_FALSE(isAccepted);
    EXPECT_EQ(replyTo(R"([{"ret_val":7}])"), resultOnly("RETICLE_CANT_BE_DELETED"));
    EXPECT_FALSE(isAccepted);
    EXPECT_EQ(replyTo(R"([{"ret_val":8}])"), resultOnly("UNKNOWN_ACTION"));
    EXPECT_FALSE(isAccepted);
    EXPECT_EQ(output.err(),
              "json value: 0\njson value: 5\njson value: 6\njson value: 7\njson value: 8\n");
}

TEST_F(JsonNetBuilderTest, CodeWithoutANameIsARefusalWithAnEmptyResult) {
    for (const char* answer :
         {R"([{"ret_val":3}])", R"([{"ret_val":-1}])", R"([{"ret_val":99}])"}) {
        EXPECT_EQ(replyTo(answer), resultOnly("")) << answer;
        EXPECT_FALSE(isAccepted) << answer;
    }
}

TEST_F(JsonNetBuilderTest, LastObjectOfTheAnswerDecides) {
    EXPECT_EQ(replyTo(R"([{"ret_val":0},{"ret_val":5}])"), resultOnly("RETICLE_INDEX_NOT_FOUND"));
    EXPECT_FALSE(isAccepted);
    EXPECT_EQ(replyTo(R"([{"ret_val":5},{"ret_val":0}])"), resultOnly("OK"));
    EXPECT_TRUE(isAccepted);
}

TEST_F(JsonNetBuilderTest, EntryWithoutACodeThatCanBeReadHasNoSay) {
    EXPECT_EQ(replyTo(R"([{"ret_val":5},17,{"ret_val":"0"}])"),
              resultOnly("RETICLE_INDEX_NOT_FOUND"));
    EXPECT_FALSE(isAccepted);
}

TEST_F(JsonNetBuilderTest, MemberOfAnObjectIsAnEntry) {
    EXPECT_EQ(replyTo(R"({"answer":{"ret_val":7}})"), resultOnly("RETICLE_CANT_BE_DELETED"));
    EXPECT_FALSE(isAccepted);
}

TEST_F(JsonNetBuilderTest, MissingOrNullCodeIsSuccess) {
    for (const char* answer : {R"([{"param":"x"}])", R"([{"ret_val":null}])"}) {
        EXPECT_EQ(replyTo(answer), resultOnly("OK")) << answer;
        EXPECT_TRUE(isAccepted) << answer;
    }
}

TEST_F(JsonNetBuilderTest, ReplyIsGivenUpWithItsText) {
    EXPECT_EQ(replyTo(R"([{"ret_val":0}])"), resultOnly("OK"));
    EXPECT_EQ(builder.getResponse(), "null");
}

TEST_F(JsonNetBuilderTest, AnswerWithoutAnObjectIsARefusalWithAnEmptyResult) {
    for (const char* answer : {"[]", "{}", "5", "[1]", R"({"ret_val":0})", "null"}) {
        EXPECT_EQ(replyTo(answer), resultOnly("")) << answer;
        EXPECT_FALSE(isAccepted) << answer;
    }
}

}  // namespace
}  // namespace reticled
