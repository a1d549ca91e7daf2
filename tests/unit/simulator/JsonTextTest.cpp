#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "simulator/base/JsonText.h"

namespace sim {
namespace {

TEST(JsonText, RefusesWhatIsNotOneWholeText) {
    for (const char* text :
         {"", "hello", "[", "[1,]", "[1] [2]", R"({"a"})", "1", "[1] // one", R"({"a":1,"a":2})"}) {
        EXPECT_THROW((void)parseJson(text), std::runtime_error) << text;
    }
}

TEST(JsonText, RefusesDeepNestingInsteadOfDyingOfIt) {
    EXPECT_THROW((void)parseJson(std::string(1'000'000, '[')), std::runtime_error);
}

TEST(JsonText, ComplainsOnOneLine) {
    try {
        (void)parseJson("[\n1\n2]");
        FAIL();
    } catch (const std::runtime_error& error) {
        EXPECT_THAT(error.what(), testing::Not(testing::HasSubstr("\n")));
        EXPECT_THAT(error.what(), testing::HasSubstr("Line 3"));
    }
}

TEST(JsonText, KeepsBytesThatAreNotAscii) {
    EXPECT_EQ(compactJson(Json::Value("Fadenkreuz \xc3\xbc")), "\"Fadenkreuz \xc3\xbc\"");
}

}  // namespace
}  // namespace sim
