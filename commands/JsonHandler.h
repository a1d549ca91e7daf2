#pragma once

#include <memory>
#include <string>
#include <vector>

#include "commands/JsonNetBuilder.h"
#include "rtos/LocalCommunicator.h"

namespace reticled {

/// Base of everything that turns a client's request into a reply, with the steps that the commands
/// share. Worker thread only, one request at a time.
///
/// Handlers are made with std::make_shared and destroyed only through that pointer, which knows the
/// concrete class; hence no virtual destructor.
class JsonHandler {
public:
    JsonHandler(const JsonHandler&) = delete;
    JsonHandler& operator=(const JsonHandler&) = delete;

    /// Carries out one command.
    /// \param request the client's JSON text as received.
    /// \return the reply's JSON text. A command that the RTOS refuses has a reply too.
    /// \throws std::runtime_error when the RTOS link fails, Json::Exception on fields that cannot be
    ///         read; the client then gets no reply, and what the RTOS has already done stays done.
    virtual std::string handleJsReq(const std::string& request) = 0;

protected:
    JsonHandler();
    ~JsonHandler() = default;

    /// Has `builder` build the RTOS requests for a client's request.
    template <class Builder>
    static void _build(Builder& builder, const std::string& request) {
        builder.reset();
        builder.build(request);
        builder.finish();
    }

    /// Sends the requests one at a time and names each answer's result in the reply. Stops at the
    /// first refusal.
    /// \return whether the RTOS accepted all, also when there were none.
    [[nodiscard]] bool _exchangeAll(const std::vector<std::string>& requests);

    /// Asks the RTOS for its list and puts it into the reply. The list answer's own "ret_val" is
    /// not looked at: the reply keeps the result of the command.
    void _refreshList();

    /// Ends, logs and returns the reply.
    [[nodiscard]] std::string _finishReply();

    std::shared_ptr<LocalCommunicator> _localCommunicator;
    const std::string
        _listRequest;  ///< the RTOS message for the list: always the same, so it is built once
    std::shared_ptr<JsonNetBuilder> _netBuilder;
};

}  // namespace reticled
