#include <gtest/gtest.h>

#include "client/Request.h"
#include "reticle-client/Errors.h"

namespace reticle {

namespace {

/// The length of addRequest({"n", "x"}) without its x.
constexpr std::size_t ADD_BYTES = 71;

TEST(Request, ListHasTheActionAlone) {
    EXPECT_EQ(listRequest(), R"({"action":"RETICLES_GET_ALL"})");
}

TEST(Request, ActivateNamesTheIndex) {
    EXPECT_EQ(activateRequest(2), R"({"action":"RETICLE_SET_ACTIVE","index":2})");
}

TEST(Request, AddGivesNoIndex) {
    EXPECT_EQ(
        addRequest({"Duplex", "<svg/>"}),
        R"({"action":"RETICLES_ADD_OR_UPDATE","reticles":[{"data":"<svg/>","name":"Duplex"}]})");
    EXPECT_EQ(addRequest({"", "x"}),
              R"({"action":"RETICLES_ADD_OR_UPDATE","reticles":[{"data":"x","name":""}]})");
}

TEST(Request, EmptyDataWouldNotBeListedAndIsRefused) {
    for (const auto& request : {+[] {
                                    return addRequest({"Dot", ""});
                                },
                                +[] {
                                    return updateRequest(1, {"Dot", ""});
                                }}) {
        try {
            (void)request();
            FAIL();
        } catch (const InvalidRequest& error) {
            EXPECT_STREQ(error.what(),
                         R"(the data of reticle "Dot" is empty: the device would hold it, but no )"
                         "list would show it; check where the data comes from");
        }
    }
}

TEST(Request, UpdateGivesTheIndex) {
    EXPECT_EQ(
        updateRequest(0, {"Dot", "x"}),
        R"({"action":"RETICLES_ADD_OR_UPDATE","reticles":[{"data":"x","index":0,"name":"Dot"}]})");
}

TEST(Request, UpdateOfANegativeIndexWouldAddAndIsRefused) {
    EXPECT_THROW((void)updateRequest(-1, {"Dot", "x"}), InvalidRequest);
}

TEST(Request, RemoveNamesTheIndex) {
    EXPECT_EQ(removeRequest(3), R"({"action":"RETICLES_DELETE","indices":[3]})");
}

TEST(Request, CarriesTextsUnchangedButForWhatJsonEscapes) {
    EXPECT_EQ(addRequest({"Kr\xC3\xA4uz \xE5\x8D\x81", "a\n\t\"b\\/\x01\x7F\xF0\x9F\x8E\xAF"}),
              "{\"action\":\"RETICLES_ADD_OR_UPDATE\",\"reticles\":[{\"data\":"
              "\"a\\n\\t\\\"b\\\\/\\u0001\x7F\xF0\x9F\x8E\xAF\",\"name\":\"Kr\xC3\xA4uz "
              "\xE5\x8D\x81\"}]}");
}

TEST(Request, RefusesWhatIsNotUtf8) {
    EXPECT_THROW((void)addRequest({"caf\xE9", "x"}), InvalidText);
    EXPECT_THROW((void)addRequest({"b", "\xED\xA0\x80"}), InvalidText);
    EXPECT_THROW((void)updateRequest(1, {"a", "\xC0\x80"}), InvalidText);
}

TEST(Request, RefusesNul) {
    EXPECT_THROW((void)addRequest({std::string("a\0b", 3), "x"}), InvalidText);
    EXPECT_THROW((void)updateRequest(1, {"a", std::string("x\0", 2)}), InvalidText);
}

TEST(Request, SaysWhichTextIsWrongAndWhere) {
    try {
        (void)addRequest({"Dot", "<svg>\xE9"});
        FAIL();
    } catch (const InvalidText& error) {
        EXPECT_STREQ(
            error.what(),
            R"(the data of reticle "Dot" is not UTF-8 text (byte 5): convert it to UTF-8)");
    }
}

TEST(Request, TakesTheLongestBodyThatTheServiceReads) {
    const std::string longest(REQUEST_LIMIT_BYTES - ADD_BYTES - 1, 'x');
    EXPECT_EQ(addRequest({"n", longest}).size(), 4194303U);
    EXPECT_THROW((void)addRequest({"n", longest + 'x'}), RequestTooLarge);
}

TEST(Request, CountsTheBytesAfterEscaping) {
    const std::string quotes(REQUEST_LIMIT_BYTES / 2, '"');
    EXPECT_THROW((void)addRequest({"n", quotes}), RequestTooLarge);
    EXPECT_THROW((void)updateRequest(1, {"n", quotes}), RequestTooLarge);
}

TEST(Request, RefusesALongTextAsTooLargeEvenWhereItIsNotUtf8) {
    // A file that was cut at the limit may end within a character.
    const std::string cut = std::string(REQUEST_LIMIT_BYTES - 1, 'x') + '\xC3';
    EXPECT_THROW((void)addRequest({"n", cut}), RequestTooLarge);
    EXPECT_THROW((void)updateRequest(1, {"n", cut}), RequestTooLarge);
}

}  // namespace

}  // namespace reticle
