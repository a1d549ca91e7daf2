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

/// A connection to the reticle service of a device, one call per command.
///
/// Every call sends one request, waits for its reply and returns it, or throws one of
/// - CannotConnect, NoReply, MalformedReply, Cancelled: the connection is dropped, since a late reply could be
///   taken for that of the next request; the next call connects anew;
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

    static constexpr std::uint16_t DEFAULT_PORT = 3451;

    /// Connects.
    /// \param host an address or a host name.
    /// \param timeout more than 0; bounds each whole call, connecting included. Only the look-up of
    /// a
    ///        host name is not bounded by it.
    /// \param cancelDescriptor a call that has to wait throws Cancelled once this descriptor is
    ///        readable; negative for none. Must stay open as long as the client.
    /// \throws CannotConnect.
    ReticleClient(std::string host, std::uint16_t port, std::chrono::milliseconds timeout,
                  int cancelDescriptor = -1);
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

    /// Stores new reticles, in order, up to the first that the device refuses. The names and data
    /// of all must fit one request: their JSON text must be shorter than 4 MiB.
    Reply add(const std::vector<NewReticle>& reticles);

    /// Replaces the name and the data of a reticle.
    /// \param index 0 or more.
    Reply update(int index, std::string name, std::string data);

    /// Deletes reticles, in order, up to the first that the device refuses.
    Reply remove(const std::vector<int>& indices);

private:
    Reply _exchange(const std::string& request);
    Reply _sendAndReceive(const std::string& request);

    std::string _host;
    std::uint16_t _port;
    std::chrono::milliseconds _timeout;
    int _cancelDescriptor;
    UploadListener _uploadListener;
    // Empty after a failed exchange.
    std::unique_ptr<Connection> _connection;
};

}  // namespace reticle
