#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "reticle-client/Errors.h"
#include "reticle-client/Reply.h"
#include "reticle-client/Reticle.h"

namespace reticle {

class Connection;
class Deadline;

/// A connection to the reticle service of a device, one call per command.
///
/// Every call sends a request, waits for its reply and returns it, or throws one of
/// - CannotConnect, NoReply, MalformedReply, Cancelled: the connection is dropped, since a late
///   reply could be taken for that of the next request; the next call connects anew;
/// - Refused: the device said no. The connection goes on;
/// - InvalidRequest: the arguments cannot be sent. Nothing was sent, the connection goes on.
///
/// One thread at a time; several clients may be used side by side. The service carries out the
/// requests of all its clients one after the other and drops those beyond a short queue, so that a
/// busy service shows as NoReply.
class ReticleClient {
public:
    /// Hears how much of a request has been sent, its frame included.
    using UploadListener = std::function<void(std::size_t sentBytes, std::size_t totalBytes)>;

    /// Hears, after each second in which nothing came or went, how much of the time-out has passed.
    using WaitListener = std::function<void(std::chrono::milliseconds passed)>;

    static constexpr std::uint16_t DEFAULT_PORT = 3451;
    static constexpr std::chrono::seconds DEFAULT_TIMEOUT{10};

    /// Connects.
    /// \param host an address or a host name.
    /// \param timeout more than 0; bounds each request with its reply, connecting included. Only the
    ///        look-up of a host name is not bounded by it.
    /// \param cancelDescriptor a call that has to wait throws Cancelled once this descriptor is
    ///        readable; negative for none. Must stay open as long as the client.
    /// \param waitListener called from within each call that waits, this one included.
    /// \throws CannotConnect, Cancelled.
    explicit ReticleClient(std::string host, std::uint16_t port = DEFAULT_PORT,
                           std::chrono::milliseconds timeout = DEFAULT_TIMEOUT,
                           int cancelDescriptor = -1, WaitListener waitListener = {});
    ReticleClient(ReticleClient&& other) noexcept;
    ReticleClient& operator=(ReticleClient&& other) noexcept;
    ReticleClient(const ReticleClient&) = delete;
    ReticleClient& operator=(const ReticleClient&) = delete;
    ~ReticleClient();

    /// Has `listener` called, from within each call, after each piece of a request that was sent.
    void setUploadListener(UploadListener listener);

    /// The reticles of the device.
    Reply list();

    /// Makes the reticle active. Returns the list after it, as do all that follow.
    Reply activate(int index);

    /// Stores new reticles, in order, up to the first that fails: ClientError::doneCount() tells how
    /// far it came. Each is a request of its own, so that this is known; all are checked before the
    /// first is sent.
    Reply add(const std::vector<NewReticle>& reticles);

    /// Replaces the name and the data of a reticle.
    /// \param index 0 or more.
    Reply update(int index, std::string name, std::string data);

    /// Deletes reticles, in order, up to the first that fails, as `add` stores them.
    Reply remove(const std::vector<int>& indices);

private:
    Reply _change(const std::vector<std::string>& requests);
    Reply _changeOne(const std::string& request, std::size_t doneCount, bool isOneOfSeveral);
    Reply _exchange(const std::string& request);
    Reply _sendAndReceive(const std::string& request, const Deadline& deadline);
    [[nodiscard]] Deadline _newDeadline() const;
    void _connect(const Deadline& deadline);
    std::shared_ptr<const Reply> _listIfPossible();

    std::string _host;
    std::uint16_t _port;
    std::chrono::milliseconds _timeout;
    int _cancelDescriptor;
    WaitListener _waitListener;
    UploadListener _uploadListener;
    // Empty after a failed exchange.
    std::unique_ptr<Connection> _connection;
};

}  // namespace reticle
