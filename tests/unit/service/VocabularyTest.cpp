#include <gtest/gtest.h>

#include <map>
#include <string>

#include "processing/ActionNames.h"
#include "processing/JsonRetriever.h"
#include "processing/Vocabulary.h"

namespace reticled {
namespace {

const std::map<int, std::string> KEYS{
    {0, "msg_id"}, {1, "param"},     {2, "param_get"},    {3, "result"},    {4, "ret_val"},
    {5, "action"}, {6, "reticles"},  {7, "index"},        {8, "indices"},   {9, "name"},
    {10, "data"},  {11, "isActive"}, {12, "isDeletable"}, {13, "userColor"}};

TEST(VocabularyTest, EveryKeyHasItsText) {
    for (const auto& [number, text] : KEYS) {
        EXPECT_EQ(JsonRetriever::keyName(static_cast<JsonKey>(number)), text) << number;
    }
}

TEST(VocabularyTest, KeysKeepTheirNumbers) {
    EXPECT_EQ(MSG_ID, 0);
    EXPECT_EQ(PARAM, 1);
    EXPECT_EQ(PARAM_GET, 2);
    EXPECT_EQ(RESULT, 3);
    EXPECT_EQ(RET_VAL, 4);
    EXPECT_EQ(ACTION, 5);
    EXPECT_EQ(RETICLES, 6);
    EXPECT_EQ(INDEX, 7);
    EXPECT_EQ(INDICES, 8);
    EXPECT_EQ(NAME, 9);
    EXPECT_EQ(DATA, 10);
    EXPECT_EQ(IS_ACTIVE, 11);
    EXPECT_EQ(IS_DELETABLE, 12);
    EXPECT_EQ(USER_COLOR, 13);
}

TEST(VocabularyTest, UnknownKeyHasNoText) {
    EXPECT_EQ(JsonRetriever::keyName(static_cast<JsonKey>(14)), "");
    EXPECT_EQ(JsonRetriever::keyName(static_cast<JsonKey>(-1)), "");
}

TEST(VocabularyTest, DataKeyThatIsListedTwiceHasItsText) {
    EXPECT_EQ(JsonRetriever::keyName(DATA), "data");
}

TEST(VocabularyTest, EveryResultHasItsText) {
    EXPECT_EQ(JsonRetriever::resultName(static_cast<ResultCode>(0)), "OK");
    EXPECT_EQ(JsonRetriever::resultName(static_cast<ResultCode>(5)), "RETICLE_INDEX_NOT_FOUND");
    EXPECT_EQ(JsonRetriever::resultName(static_cast<ResultCode>(6)),
              "RETICLES_COUNT_OUT_OF_BOUNDS");
    EXPECT_EQ(JsonRetriever::resultName(static_cast<ResultCode>(7)), "RETICLE_CANT_BE_DELETED");
    EXPECT_EQ(JsonRetriever::resultName(static_cast<ResultCode>(8)), "UNKNOWN_ACTION");
}

TEST(VocabularyTest, ResultsKeepTheirNumbers) {
    EXPECT_EQ(OK, 0);
    EXPECT_EQ(RETICLE_INDEX_NOT_FOUND, 5);
    EXPECT_EQ(RETICLES_COUNT_OUT_OF_BOUNDS, 6);
    EXPECT_EQ(RETICLE_CANT_BE_DELETED, 7);
    EXPECT_EQ(UNKNOWN_ACTION, 8);
}

TEST(VocabularyTest, ResultNumbersInTheGapsHaveNoText) {
    for (const int number : {1, 2, 3, 4, 9, -1}) {
        const auto code = static_cast<ResultCode>(number);
        EXPECT_EQ(JsonRetriever::resultName(code), "") << number;
        EXPECT_EQ(JsonRetriever::resultName(code), "") << "asked again: " << number;
    }
}

TEST(VocabularyTest, ActionsKeepTheirNumbersAndTexts) {
    EXPECT_EQ(RETICLES_GET_ALL, 0);
    EXPECT_EQ(RETICLE_SET_ACTIVE, 1);
    EXPECT_EQ(RETICLES_ADD_OR_UPDATE, 2);
    EXPECT_EQ(RETICLES_DELETE, 3);
    EXPECT_EQ(actionNames, (std::map<int, std::string>{{0, "RETICLES_GET_ALL"},
                                                       {1, "RETICLE_SET_ACTIVE"},
                                                       {2, "RETICLES_ADD_OR_UPDATE"},
                                                       {3, "RETICLES_DELETE"}}));
}

}  // namespace
}  // namespace reticled
