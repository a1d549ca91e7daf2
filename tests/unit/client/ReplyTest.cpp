#include <gtest/gtest.h>

#include "reticle-client/Errors.h"
#include "reticle-client/Reply.h"

namespace reticle {

namespace {

std::string listing(const std::string& reticle) {
    return R"({"result":"OK","reticles":[)" + reticle + "]}";
}

TEST(Reply, ReadsTheListAsTheServiceWritesIt) {
    const std::string json =
        "{\n\t\"result\" : \"OK\",\n\t\"reticles\" : \n\t[\n\t\t{\n\t\t\t\"data\" : "
        "\"<svg stroke=\\\"red\\\"/>\\n\",\n\t\t\t\"index\" : 3,\n\t\t\t\"isActive\" : "
        "true,\n\t\t\t\"isDeletable\" : false,\n\t\t\t\"name\" : \"Kr\\u00e4uz "
        "\\ud83c\\udfaf\"\n\t\t}\n\t]\n}";
    const Reply reply = Reply::parse(json);
    EXPECT_EQ(reply.result, "OK");
    EXPECT_FALSE(reply.isRefused());
    EXPECT_EQ(reply.json, json);
    ASSERT_EQ(reply.reticles.size(), 1U);
    EXPECT_EQ(reply.reticles[0].index, 3);
    EXPECT_EQ(reply.reticles[0].name, "Kr\xC3\xA4uz \xF0\x9F\x8E\xAF");
    EXPECT_EQ(reply.reticles[0].data, "<svg stroke=\"red\"/>\n");
    EXPECT_TRUE(reply.reticles[0].isActive);
    EXPECT_FALSE(reply.reticles[0].isDeletable);
}

TEST(Reply, KeepsTheDevicesOrder) {
    const Reply reply = Reply::parse(
        listing(R"({"index":9,"name":"a","data":"","isDeletable":true,"isActive":false},)"
                R"({"index":1,"name":"b","data":"","isDeletable":true,"isActive":false})"));
    ASSERT_EQ(reply.reticles.size(), 2U);
    EXPECT_EQ(reply.reticles[0].name, "a");
    EXPECT_EQ(reply.reticles[1].name, "b");
}

TEST(Reply, NullReticlesAreAnEmptyList) {
    EXPECT_TRUE(Reply::parse(R"({"result":"OK","reticles":null})").reticles.empty());
}

TEST(Reply, ResultIsAbsentWhenNothingWasEvaluated) {
    const Reply reply = Reply::parse(R"({"reticles":null})");
    EXPECT_FALSE(reply.result.has_value());
    EXPECT_FALSE(reply.isRefused());
}

TEST(Reply, AnyOtherResultIsARefusal) {
    EXPECT_TRUE(Reply::parse(R"({"result":"RETICLE_INDEX_NOT_FOUND"})").isRefused());
    EXPECT_TRUE(Reply::parse(R"({"result":""})").isRefused());
    EXPECT_TRUE(Reply::parse(R"({"result":"SOMETHING_NEW"})").isRefused());
}

TEST(Reply, AnIndexThatIsNoNumberIsAbsent) {
    for (const char* index : {"null", "\"7\"", "[7]", "{}", "1.5", "4294967296", "true"}) {
        const Reply reply = Reply::parse(listing(
            std::string(R"({"name":"a","data":"b","isDeletable":true,"isActive":false,"index":)") +
            index + "}"));
        ASSERT_EQ(reply.reticles.size(), 1U) << index;
        EXPECT_FALSE(reply.reticles[0].index.has_value()) << index;
    }
}

TEST(Reply, ReadsOverCommentsThatCameWithAnIndex) {
    const Reply reply = Reply::parse(listing(
        "{\"index\" : 7 // seven\n, /* of */ \"name\":\"a\",\"data\":\"b\",\"isDeletable\":true,"
        "\"isActive\":false}"));
    EXPECT_EQ(reply.reticles.at(0).index, 7);
}

TEST(Reply, IgnoresMembersThatItDoesNotKnow) {
    EXPECT_TRUE(Reply::parse(R"({"result":"OK","reticles":[],"later":1})").reticles.empty());
}

TEST(Reply, WhatIsNotJsonIsMalformed) {
    for (const char* text : {"", "OK", "{", "{}x", R"({"result":"OK","reticles":null}})",
                             R"({"result":'OK'})", "\x80"}) {
        EXPECT_THROW((void)Reply::parse(text), MalformedReply) << text;
    }
    EXPECT_THROW((void)Reply::parse(std::string(100000, '[')), MalformedReply);
}

TEST(Reply, AWrongShapeIsMalformed) {
    for (const char* text :
         {"null", "[]", "7", "\"OK\"", "{}", R"({"result":"OK"})",
          R"({"result":5,"reticles":null})", R"({"result":null,"reticles":null})",
          R"({"result":"OK","reticles":{}})", R"({"result":"OK","reticles":"none"})",
          R"({"result":"OK","reticles":[null]})", R"({"result":"OK","reticles":[[]]})",
          R"({"result":"OK","reticles":[{}]})"}) {
        EXPECT_THROW((void)Reply::parse(text), MalformedReply) << text;
    }
}

TEST(Reply, AReticleMustHaveItsFourOtherMembers) {
    for (const char* record :
         {R"({"index":1,"data":"","isDeletable":true,"isActive":false})",
          R"({"index":1,"name":"","isDeletable":true,"isActive":false})",
          R"({"index":1,"name":"","data":"","isActive":false})",
          R"({"index":1,"name":"","data":"","isDeletable":true})",
          R"({"index":1,"name":5,"data":"","isDeletable":true,"isActive":false})",
          R"({"index":1,"name":"","data":null,"isDeletable":true,"isActive":false})",
          R"({"index":1,"name":"","data":"","isDeletable":1,"isActive":false})",
          R"({"index":1,"name":"","data":"","isDeletable":true,"isActive":"no"})"}) {
        EXPECT_THROW((void)Reply::parse(listing(record)), MalformedReply) << record;
    }
}

TEST(Reply, ATextMayHoldANul) {
    const Reply reply = Reply::parse(
        listing(R"({"index":1,"name":"a","data":"x\u0000y","isDeletable":true,"isActive":false})"));
    EXPECT_EQ(reply.reticles.at(0).data, std::string("x\0y", 3));
}

/// A reply with `count` values in it, the reply itself and its two members among them.
std::string withValues(std::size_t count) {
    std::string numbers;
    for (std::size_t number = 3; number < count; ++number) {
        numbers += number > 3 ? ",1" : "1";
    }
    return R"({"reticles":null,"x":[)" + numbers + "]}";
}

TEST(Reply, MoreValuesThanAnyListHoldsAreNotParsed) {
    constexpr std::size_t MOST = 1'000'000;
    EXPECT_NO_THROW((void)Reply::parse(withValues(MOST - 10)));
    try {
        (void)Reply::parse(withValues(MOST + 10));
        FAIL();
    } catch (const MalformedReply& error) {
        EXPECT_NE(std::string(error.what()).find("more values than any list"), std::string::npos);
    }
}

TEST(ResultMeaning, EveryNameHasOneOfItsOwn) {
    EXPECT_EQ(resultMeaning("OK"), "done");
    EXPECT_EQ(resultMeaning("RETICLE_INDEX_NOT_FOUND"),
              "the device has no reticle of this index: list the reticles to see which there are");
    EXPECT_EQ(resultMeaning("RETICLES_COUNT_OUT_OF_BOUNDS"),
              "the device holds as many reticles as it can, or has no room for the data: delete "
              "one first");
    EXPECT_EQ(
        resultMeaning("RETICLE_CANT_BE_DELETED"),
        "factory reticles and the active one stay: check in the list that it is deletable and "
        "not active");
    EXPECT_EQ(resultMeaning("UNKNOWN_ACTION"),
              "the device cannot carry this out: when a reticle is stored, check first that the "
              "service may write to /tmp/FL0/ and that there is room, as the device cannot read "
              "data that is not there; then that both sides of the device are of the same version; "
              "the log of its RTOS side tells more");
    EXPECT_EQ(resultMeaning(""),
              "a code that the service has no name for, or an answer without any: check first the "
              "log of the device's RTOS side, then that both sides of the device are of the same "
              "version");
    EXPECT_EQ(resultMeaning("SOMETHING_NEW"),
              "unknown to this client: check that it is as new as the service");
}

}  // namespace

}  // namespace reticle
