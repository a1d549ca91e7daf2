#include <gtest/gtest.h>
#include <json/value.h>

#include <memory>
#include <stdexcept>
#include <string>

#include "commands/JsonAddOrUpdateHandler.h"
#include "commands/JsonDeleteRetHandler.h"
#include "commands/JsonGetRetsHandler.h"
#include "commands/JsonSetActiveRetHandler.h"
#include "processing/JsonHandlerDirector.h"
#include "tests/unit/service/ExpectThrow.h"

namespace reticled {
namespace {

class JsonHandlerDirectorTest : public testing::Test {
protected:
    [[nodiscard]] std::shared_ptr<JsonHandler> handlerOf(const std::string& action) {
        return director.getHandler(R"({"action":")" + action + "\"}");
    }

    JsonHandlerDirector director;
};

TEST_F(JsonHandlerDirectorTest, EachActionHasItsHandler) {
    EXPECT_NE(std::dynamic_pointer_cast<JsonGetRetsHandler>(handlerOf("RETICLES_GET_ALL")),
              nullptr);
    EXPECT_NE(std::dynamic_pointer_cast<JsonSetActiveRetHandler>(handlerOf("RETICLE_SET_ACTIVE")),
              nullptr);
    EXPECT_NE(
        std::dynamic_pointer_cast<JsonAddOrUpdateHandler>(handlerOf("RETICLES_ADD_OR_UPDATE")),
        nullptr);
    EXPECT_NE(std::dynamic_pointer_cast<JsonDeleteRetHandler>(handlerOf("RETICLES_DELETE")),
              nullptr);
}

TEST_F(JsonHandlerDirectorTest, SameActionHasTheSameHandlerEveryTime) {
    EXPECT_EQ(handlerOf("RETICLES_DELETE"), handlerOf("RETICLES_DELETE"));
}

TEST_F(JsonHandlerDirectorTest, OtherActionsHaveNone) {
    for (const char* action : {"RETICLES_DELETE ", " RETICLES_DELETE", "reticles_delete", "",
                               "RETICLES_DELET", "UNKNOWN_ACTION"}) {
        EXPECT_EQ(handlerOf(action), nullptr) << action;
        EXPECT_EQ(handlerOf(action), nullptr) << "asked again: " << action;
    }
}

TEST_F(JsonHandlerDirectorTest, RequestWithoutAStringActionThrows) {
    expectThrow<std::runtime_error>([&] { static_cast<void>(director.getHandler("")); },
                                    "getStrVal: json msg is empty");
    for (const char* request : {"{}", R"({"action":5})", "[]", "5"}) {
        EXPECT_THROW(static_cast<void>(director.getHandler(request)), Json::LogicError) << request;
    }
}

TEST_F(JsonHandlerDirectorTest, DirectorItselfRepliesNothing) {
    for (const char* request : {"", "{}", R"({"action":"RETICLES_GET_ALL"})"}) {
        EXPECT_EQ(director.handleJsReq(request), "");
    }
}

}  // namespace
}  // namespace reticled
