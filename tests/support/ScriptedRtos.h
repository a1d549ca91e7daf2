#pragma once

#include <string>
#include <string_view>

#include "tests/support/Connection.h"
#include "tests/support/FileDescriptor.h"

/// The RTOS side of the link, played by the test step by step: receive a request, look at files
/// while the service waits, answer (whole, in pieces, garbage, never), close or reset.
///
/// It listens from construction on; the service's connection is taken when the first step needs
/// it. Nothing runs in the background, so the steps of a test are the order of the exchanges.
class ScriptedRtos {
public:
    /// \throws std::system_error when 127.0.0.1:3425 cannot be had.
    ScriptedRtos();

    /// The next request, as the bytes that came. All requests are JSON arrays that close on a line
    /// of their own, which is how the end is known. When that does not come within PATIENCE, what
    /// came so far.
    [[nodiscard]] std::string receiveRequest();

    /// Exactly `count` bytes, fewer when no more come.
    [[nodiscard]] std::string receive(std::size_t count);

    /// Sends `bytes` in one segment, if they fit one.
    void answer(std::string_view bytes);

    /// One whole exchange: the request that comes, answered with `answer`.
    [[nodiscard]] std::string exchange(std::string_view answer);

    /// The connection, taken when the service has opened it.
    /// \throws std::runtime_error when the service does not connect.
    [[nodiscard]] Connection& link();

    /// Whether a further connection waits to be taken.
    [[nodiscard]] bool isCalled() const;

    /// Whether the service has sent nothing more: no request, no end of the connection.
    [[nodiscard]] bool isQuiet() const;

private:
    FileDescriptor _listener;
    Connection _link;
};
