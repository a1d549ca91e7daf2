#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "client/Request.h"
#include "tools/reticlectl/trace/RequestCheck.h"

namespace reticlectl {

namespace {

using Outcome = RequestCheck::Outcome;

/// The mistakes of a body, one a line.
std::string mistakesOf(std::string_view body) {
    std::string lines;
    for (const reticle::Mistake& mistake : RequestCheck::of(body).mistakes) {
        lines += mistake.what + '\n';
    }
    return lines;
}

Outcome outcomeOf(std::string_view body) {
    return RequestCheck::of(body).outcome;
}

/// A body that is dropped for one reason.
void expectDropped(std::string_view body, const std::string& what) {
    EXPECT_EQ(mistakesOf(body), what + '\n');
    EXPECT_EQ(outcomeOf(body), Outcome::DROPPED);
}

/// A body that has a reply, though not the meant one.
void expectDoubted(std::string_view body, const std::string& what) {
    EXPECT_EQ(mistakesOf(body), what + '\n');
    EXPECT_EQ(outcomeOf(body), Outcome::ANSWERED);
}

TEST(RequestCheck, TheLibrarysOwnRequestsHaveNoMistake) {
    for (const std::string& body :
         {reticle::listRequest(), reticle::activateRequest(3),
          reticle::addRequest({"Ring 1°", "<svg/>"}), reticle::updateRequest(0, {"", "x"}),
          reticle::removeRequest(7)}) {
        EXPECT_EQ(mistakesOf(body), "") << body;
        EXPECT_EQ(outcomeOf(body), Outcome::ANSWERED);
    }
}

TEST(RequestCheck, WhatTheServiceReadsOverIsNoMistake) {
    for (
        const char* body :
        {R"({"action":"RETICLE_SET_ACTIVE"})", R"({"action":"RETICLES_DELETE"})",
         R"({"action":"RETICLES_ADD_OR_UPDATE"})", R"({"action":"RETICLES_GET_ALL","index":"x"})",
         R"(/* */ {"action":"RETICLES_GET_ALL"} and more)",
         R"({"action":"RETICLES_GET_ALL\u0000x"})",
         R"({"action":"RETICLES_ADD_OR_UPDATE","reticles":[{"name":"","data":"x","index":null}]})"}) {
        EXPECT_EQ(mistakesOf(body), "") << body;
        EXPECT_EQ(outcomeOf(body), Outcome::ANSWERED) << body;
    }
    EXPECT_EQ(mistakesOf(reticle::listRequest() + '\0' + '{'), "");
}

TEST(RequestCheck, NoJsonIsToldWithLineAndColumn) {
    expectDropped(R"({"action":)",
                  "no JSON: line 1, column 11: Syntax error: value, object or array expected");
    expectDropped("{\n  \"\xC3\xA4\": 1,\n}",
                  "no JSON: line 3, column 1: Missing '}' or object member name");
    // The column counts characters.
    expectDropped("{\"\xC3\xA4\":x}",
                  "no JSON: line 1, column 6: Syntax error: value, object or array expected");
    expectDropped("", "no JSON: line 1, column 1: Syntax error: value, object or array expected");
}

TEST(RequestCheck, TooDeepNestingIsTold) {
    expectDropped(std::string(2000, '['),
                  "no JSON for the service: nested deeper than 1000 levels");
}

TEST(RequestCheck, OtherEncodingsAreTold) {
    expectDropped("\xEF\xBB\xBF{}", "no JSON: begins with a byte order mark");
    expectDropped({"{\0\"\0", 4}, "no JSON: a zero byte at its begin, as UTF-16 has it");
    expectDoubted("{\"action\":\"RETICLES_GET_ALL\",\"x\":\"\xE4\"}",
                  "byte 34 of the body is no UTF-8");
}

TEST(RequestCheck, ABodyThatIsNoObjectIsTold) {
    expectDropped("[1]", "the body is an array, no object");
    expectDropped("null", "the body is null, no object");
    expectDropped("\"RETICLES_GET_ALL\"", "the body is a string, no object");
}

TEST(RequestCheck, AMissingActionIsTold) {
    expectDropped("{}", "\"action\" is missing");
    expectDropped(R"({"Action":"RETICLES_GET_ALL"})", "\"action\" is missing");
    expectDropped(R"({"action":5})", "\"action\" is 5");
    expectDropped(R"({"action":null})", "\"action\" is null");
}

TEST(RequestCheck, AnUnknownActionEndsTheServiceAndItsMeaningIsGuessed) {
    for (const auto& [sent, meant] : {std::pair("reticles_get_all", "RETICLES_GET_ALL"),
                                      {"RETICLES_GET_ALL ", "RETICLES_GET_ALL"},
                                      {"RETICLES-DELETE\\n", "RETICLES_DELETE"},
                                      {"ReticleDelete", "RETICLES_DELETE"},
                                      {"RETICLES_SET_ACTIVE", "RETICLE_SET_ACTIVE"},
                                      {"reticles add or update", "RETICLES_ADD_OR_UPDATE"}}) {
        const RequestCheck check = RequestCheck::of(std::string(R"({"action":")") + sent + "\"}");
        EXPECT_EQ(check.outcome, Outcome::ENDS_SERVICE) << sent;
        ASSERT_EQ(check.mistakes.size(), 1U);
        EXPECT_EQ(check.mistakes[0].remedy, std::string("send \"") + meant + "\", byte for byte");
    }
}

TEST(RequestCheck, AnUnknownActionWithoutMeaningIsQuotedAndCut) {
    const RequestCheck check = RequestCheck::of(R"({"action":")" + std::string(1000, 'x') + "\"}");
    EXPECT_EQ(check.outcome, Outcome::ENDS_SERVICE);
    EXPECT_EQ(check.action.size(), 1000U);
    ASSERT_EQ(check.mistakes.size(), 1U);
    EXPECT_EQ(check.mistakes[0].what,
              "no action of the service and would end it: \"" + std::string(60, 'x') + "...\"");
    EXPECT_EQ(check.mistakes[0].remedy, "send one of the four actions, byte for byte");
    EXPECT_EQ(outcomeOf(R"({"action":""})"), Outcome::ENDS_SERVICE);
}

TEST(RequestCheck, AnIndexOfTheWrongKindIsTold) {
    const auto activate = [](const std::string& index) {
        return R"({"action":"RETICLE_SET_ACTIVE","index":)" + index + "}";
    };
    expectDropped(activate("\"3\""), "\"index\" is a string, and there is no reply");
    expectDropped(activate("[3]"), "\"index\" is an array, and there is no reply");
    expectDropped(activate("2147483648"), "\"index\" is 2147483648, and there is no reply");
    expectDoubted(activate("1.5"), "\"index\" is 1.5, which the service takes for 1");
    expectDoubted(activate("true"), "\"index\" is true, which the service takes for 1");
    expectDoubted(activate("null"), "\"index\" is null, which the service takes for 0");
    EXPECT_EQ(mistakesOf(activate("-2147483648")), "");
    EXPECT_EQ(mistakesOf(activate("3.0")), "");
}

TEST(RequestCheck, IndicesOfTheWrongKindAreTold) {
    const auto remove = [](const std::string& indices) {
        return R"({"action":"RETICLES_DELETE","indices":)" + indices + "}";
    };
    expectDoubted(remove("3"), "\"indices\" is 3, no array");
    expectDoubted(remove("null"), "\"indices\" is null, no array");
    expectDoubted(remove("{\"index\":3}"), "\"indices\" is an object, no array");
    expectDoubted(remove("[1,\"2\"]"), "\"indices\"[1] is a string, and the service leaves it out");
    expectDoubted(remove("[null]"), "\"indices\"[0] is null, which the service takes for 0");
}

TEST(RequestCheck, ReticlesOfTheWrongKindAreTold) {
    const auto store = [](const std::string& reticles) {
        return R"({"action":"RETICLES_ADD_OR_UPDATE","reticles":)" + reticles + "}";
    };
    expectDoubted(store(R"({"name":"x","data":"x"})"), "\"reticles\" is an object, no array");
    expectDoubted(store("[7]"), "\"reticles\"[0] is 7, and the service leaves it out");
    expectDoubted(store(R"([{"name":1,"data":"x"}])"),
                  "\"reticles\"[0]: \"name\" is 1, and the service leaves the reticle out");
    expectDoubted(store(R"([{"name":"x"}])"),
                  "\"reticles\"[0]: \"data\" is missing, and the service leaves the reticle out");
    expectDoubted(store(R"([{"name":"x","data":"x","index":"1"}])"),
                  "\"reticles\"[0]: \"index\" is a string, and the service leaves the reticle out");
    expectDoubted(store(R"([{"name":"x","data":"x","index":true}])"),
                  "\"reticles\"[0]: \"index\" is true, which the service takes for 1");
    expectDoubted(store(R"([{"name":"x","data":""}])"),
                  "\"reticles\"[0]: \"data\" is empty: the device keeps it, and no list shows it");
}

TEST(RequestCheck, OfManyMistakesTheFirstAreTold) {
    std::string body = R"({"action":"RETICLES_DELETE","indices":[""])";
    for (int i = 0; i < 1000; ++i) {
        body.insert(body.size() - 1, ",\"\"");
    }
    EXPECT_EQ(RequestCheck::of(body + "}").mistakes.size(), RequestCheck::MISTAKES_LIMIT);
}

}  // namespace

}  // namespace reticlectl
