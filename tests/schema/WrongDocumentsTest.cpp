#include <gtest/gtest.h>

#include <string>

#include "tests/schema/Schema.h"

namespace {

struct WrongDocument {
    const char* name;
    const char* side;
    const char* action;
    const char* text;
};

class WrongDocumentsTest : public testing::TestWithParam<WrongDocument> {};

TEST_P(WrongDocumentsTest, AreRefused) {
    EXPECT_FALSE(Schema(GetParam().side, GetParam().action).accepts(GetParam().text));
    EXPECT_FALSE(Schema(GetParam().side).accepts(GetParam().text));
}

std::string nameOf(const testing::TestParamInfo<WrongDocument>& document) {
    return document.param.name;
}

INSTANTIATE_TEST_SUITE_P(
    Requests, WrongDocumentsTest,
    testing::Values(
        WrongDocument{"NoObject", "request", "RETICLES_GET_ALL", R"(["RETICLES_GET_ALL"])"},
        WrongDocument{"NoAction", "request", "RETICLES_GET_ALL", "{}"},
        WrongDocument{"UnknownAction", "request", "RETICLES_GET_ALL", R"({"action":"RETICLES"})"},
        WrongDocument{"IndexInQuotes", "request", "RETICLE_SET_ACTIVE",
                      R"({"action":"RETICLE_SET_ACTIVE","index":"1"})"},
        WrongDocument{"IndexTooLarge", "request", "RETICLE_SET_ACTIVE",
                      R"({"action":"RETICLE_SET_ACTIVE","index":2147483648})"},
        WrongDocument{"IndexTooSmall", "request", "RETICLE_SET_ACTIVE",
                      R"({"action":"RETICLE_SET_ACTIVE","index":-2147483649})"},
        WrongDocument{"NoData", "request", "RETICLES_ADD_OR_UPDATE",
                      R"({"action":"RETICLES_ADD_OR_UPDATE","reticles":[{"name":"Dot"}]})"},
        WrongDocument{"NameIsNoString", "request", "RETICLES_ADD_OR_UPDATE",
                      R"({"action":"RETICLES_ADD_OR_UPDATE","reticles":[{"name":1,"data":""}]})"},
        WrongDocument{"NoArrayOfReticles", "request", "RETICLES_ADD_OR_UPDATE",
                      R"({"action":"RETICLES_ADD_OR_UPDATE","reticles":{"name":"","data":""}})"},
        WrongDocument{"NoArrayOfIndices", "request", "RETICLES_DELETE",
                      R"({"action":"RETICLES_DELETE","indices":1})"},
        WrongDocument{"IndexAmongIndicesInQuotes", "request", "RETICLES_DELETE",
                      R"({"action":"RETICLES_DELETE","indices":[1,"2"]})"}),
    nameOf);

INSTANTIATE_TEST_SUITE_P(
    Replies, WrongDocumentsTest,
    testing::Values(
        WrongDocument{"Nothing", "reply", "RETICLES_DELETE", "{}"},
        WrongDocument{"UnknownResult", "reply", "RETICLES_GET_ALL", R"({"result":"FULL"})"},
        WrongDocument{"DoneWithoutList", "reply", "RETICLES_GET_ALL", R"({"result":"OK"})"},
        WrongDocument{"RefusedWithList", "reply", "RETICLES_GET_ALL",
                      R"({"result":"UNKNOWN_ACTION","reticles":null})"},
        WrongDocument{"EmptyList", "reply", "RETICLES_GET_ALL", R"({"result":"OK","reticles":[]})"},
        WrongDocument{"OtherMembers", "reply", "RETICLES_GET_ALL",
                      R"({"result":"OK","reticles":null,"action":"RETICLES_GET_ALL"})"},
        WrongDocument{"NoIsActive", "reply", "RETICLES_GET_ALL",
                      R"({"result":"OK","reticles":[
                          {"index":1,"name":"","data":"x","isDeletable":true}]})"},
        WrongDocument{"NumberForBoolean", "reply", "RETICLES_GET_ALL",
                      R"({"result":"OK","reticles":[
                          {"index":1,"name":"","data":"x","isDeletable":1,"isActive":true}]})"},
        WrongDocument{"EmptyData", "reply", "RETICLES_GET_ALL",
                      R"({"result":"OK","reticles":[
                          {"index":1,"name":"","data":"","isDeletable":true,"isActive":true}]})"}),
    nameOf);

TEST(ReplySchemaTest, OnlyChangesCanHaveNothingToDo) {
    constexpr auto NO_RESULT = R"({"reticles":null})";
    EXPECT_TRUE(Schema("reply", "RETICLES_ADD_OR_UPDATE").accepts(NO_RESULT));
    EXPECT_TRUE(Schema("reply", "RETICLES_DELETE").accepts(NO_RESULT));
    EXPECT_FALSE(Schema("reply", "RETICLES_GET_ALL").accepts(NO_RESULT));
    EXPECT_FALSE(Schema("reply", "RETICLE_SET_ACTIVE").accepts(NO_RESULT));
}

}  // namespace
