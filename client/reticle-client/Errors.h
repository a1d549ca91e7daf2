#pragma once

#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>

#include "reticle-client/Reply.h"

namespace reticle {

/// Every error of this library. what() is one line that says what happened and what to check; it
/// may hold texts of the other side as they came, so make it printable before it goes to a
/// terminal.
class ClientError : public std::runtime_error {
public:
    explicit ClientError(const std::string& message, std::size_t doneCount = 0)
        : std::runtime_error(message), _doneCount(doneCount) {}

    /// Of a call for several reticles: how many of them, from the first, were carried out. The next
    /// one is the one that failed; those after it were not tried.
    [[nodiscard]] std::size_t doneCount() const { return _doneCount; }

private:
    std::size_t _doneCount;
};

/// There is no connection to the service: nothing was sent.
class CannotConnect final : public ClientError {
public:
    using ClientError::ClientError;
};

/// The connection stands, but no whole reply came in time, or the service closed it without one.
/// The device may have carried the request out all the same, or may still do so.
class NoReply final : public ClientError {
public:
    using ClientError::ClientError;
};

/// The caller stopped the call (see ReticleClient). What was under way may still be carried out.
class Cancelled final : public ClientError {
public:
    using ClientError::ClientError;
};

/// Something came that is not a reply of the service.
class MalformedReply final : public ClientError {
public:
    using ClientError::ClientError;
};

/// The device said no.
class Refused final : public ClientError {
public:
    /// \param list the reply to a list request after the refusal, null for none.
    explicit Refused(Reply reply, std::size_t doneCount = 0,
                     std::shared_ptr<const Reply> list = nullptr)
        : ClientError(
              "refused by the device: " + nameOf(reply) + ": " + resultMeaning(*reply.result),
              doneCount),
          _reply(std::make_shared<const Reply>(std::move(reply))),
          _list(std::move(list)) {}

    /// The name of the reason, empty when the service has none for the device's code.
    [[nodiscard]] const std::string& resultName() const { return *_reply->result; }

    [[nodiscard]] const Reply& reply() const { return *_reply; }

    /// The list as it is after the refusal of a call for several reticles; null for one reticle, or
    /// when the list could not be had.
    [[nodiscard]] const Reply* list() const { return _list.get(); }

private:
    static std::string nameOf(const Reply& reply) {
        return reply.result->empty() ? "\"\"" : *reply.result;
    }

    // Shared, so that copying the exception cannot throw.
    std::shared_ptr<const Reply> _reply;
    std::shared_ptr<const Reply> _list;
};

/// The request cannot be sent as it is: nothing was sent. The caller's mistake.
class InvalidRequest : public ClientError {
public:
    using ClientError::ClientError;
};

/// A name or data is not UTF-8 text, or holds a NUL byte, which no request can carry.
class InvalidText final : public InvalidRequest {
public:
    using InvalidRequest::InvalidRequest;
};

/// The request is longer than what the service takes.
class RequestTooLarge final : public InvalidRequest {
public:
    using InvalidRequest::InvalidRequest;
};

}  // namespace reticle
