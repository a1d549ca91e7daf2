#pragma once

#include <json/value.h>

#include <string>
#include <thread>

#include "tests/support/FlashFiles.h"
#include "tests/support/ScriptedRtos.h"

/// An RTOS that answers by itself, as fast as it can. Its list always has one reticle, whose index
/// is the number that the last change carried: in "index", or at the end of an addition's name. So
/// the reply to a change names the change it belongs to.
///
/// One thread of its own, from construction until the service closes the link; destroyed after the
/// service has ended.
class NumberedRtos {
public:
    /// \param flash the shared storage; must outlive this object.
    explicit NumberedRtos(const FlashFiles& flash);
    NumberedRtos(const NumberedRtos&) = delete;
    NumberedRtos& operator=(const NumberedRtos&) = delete;
    ~NumberedRtos() { _thread.join(); }

    /// The whole reply to a change that carried `number`.
    [[nodiscard]] static std::string replyTo(int number);

private:
    void _serve();
    void _handle(const Json::Value& message) const;
    [[nodiscard]] std::string _receiveRequest();

    const FlashFiles& _flash;
    ScriptedRtos _link;
    std::thread _thread;
};
