#include <gtest/gtest.h>

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "processing/ActionNames.h"
#include "processing/JsonRetriever.h"
#include "processing/Vocabulary.h"

namespace reticled {
namespace {

TEST(VocabularyTest, EveryKeyHasItsNumberAndText) {
    const std::vector<std::pair<JsonKey, std::string>> keys{{MSG_ID, "msg_id"},
                                                            {PARAM, "param"},
                                                            {PARAM_GET, "param_get"},
                                                            {RESULT, "result"},
                                                            {RET_VAL, "ret_val"},
                                                            {ACTION, "action"},
                                                            {RETICLES, "reticles"},
                                                            {INDEX, "index"},
                                                            {INDICES, "indices"},
                                                            {NAME, "name"},
                                                            {DATA, "data"},
                                                            {IS_ACTIVE, "isActive"},
                                                            {IS_DELETABLE, "isDeletable"},
                                                            {USER_COLOR, "userColor"}};
    for (std::size_t number = 0; number < keys.size(); ++number) {
        EXPECT_EQ(keys[number].first, static_cast<JsonKey>(number));
        EXPECT_EQ(JsonRetriever::keyName(keys[number].first), keys[number].second);
    }
}

TEST(VocabularyTest, UnknownKeyHasNoText) {
    EXPECT_EQ(JsonRetriever::keyName(static_cast<JsonKey>(14)), "");
    EXPECT_EQ(JsonRetriever::keyName(static_cast<JsonKey>(-1)), "");
}

TEST(VocabularyTest, EveryResultHasItsNumberAndText) {
    const std::map<int, std::string> results{{0, "OK"},
                                             {5, "RETICLE_INDEX_NOT_FOUND"},
                                             {6, "RETICLES_COUNT_OUT_OF_BOUNDS"},
                                             {7, "RETICLE_CANT_BE_DELETED"},
                                             {8, "UNKNOWN_ACTION"}};
    for (const auto& [number, text] : results) {
        EXPECT_EQ(JsonRetriever::resultName(static_cast<ResultCode>(number)), text);
    }
    EXPECT_EQ((std::vector<int>{OK, RETICLE_INDEX_NOT_FOUND, RETICLES_COUNT_OUT_OF_BOUNDS,
                                RETICLE_CANT_BE_DELETED, UNKNOWN_ACTION}),
              (std::vector<int>{0, 5, 6, 7, 8}));
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
