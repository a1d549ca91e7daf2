#pragma once

#include <gtest/gtest.h>

#include <future>
#include <memory>
#include <string>
#include <string_view>

#include "commands/JsonHandler.h"
#include "tests/support/FlashFiles.h"
#include "tests/support/LinkTexts.h"
#include "tests/support/ScriptedRtos.h"
#include "tests/unit/service/OutputCapture.h"
#include "tests/unit/service/peers/JsonHandlerTestPeer.h"

namespace reticled {

/// A handler between an RTOS that the test plays and the shared storage, which holds one reticle.
///
/// Each test has an RTOS link of its own: the process's one would stay lost after a test that loses
/// it.
template <class Handler>
class HandlerTest : public testing::Test {
protected:
    HandlerTest() {
        JsonHandlerTestPeer::link(*handler) = std::make_shared<LocalCommunicator>();
        flash.write("list.json", exchanges::ONE_DOT_LIST);
        flash.write("reticle/dot.svg", exchanges::DOT);
    }

    /// Starts the command; the test plays the RTOS meanwhile.
    [[nodiscard]] std::future<std::string> handle(const std::string& request) {
        return std::async(std::launch::async,
                          [this, request] { return handler->handleJsReq(request); });
    }

    /// What the handler logs of a whole command: the texts between the link's own lines.
    [[nodiscard]] static std::string linkLine(std::string_view answer) {
        return "send_and_get: recv json: " + std::string(answer) + '\n';
    }
    [[nodiscard]] static std::string requestLine(std::string_view request) {
        return "handleJsReq, rtos request: " + std::string(request) + '\n';
    }
    [[nodiscard]] static std::string responseLine(std::string_view reply) {
        return "handleJsReq, response: " + std::string(reply) + '\n';
    }

    OutputCapture output;
    FlashFiles flash;
    ScriptedRtos rtos;
    std::shared_ptr<Handler> handler = std::make_shared<Handler>();
};

/// The line that the reading of the one reticle leaves.
inline constexpr auto DOT_LINE = "_getReticleData: reticle file path: /tmp/FL0/reticle/dot.svg\n";

}  // namespace reticled
