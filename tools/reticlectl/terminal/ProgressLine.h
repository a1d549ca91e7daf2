#pragma once

#include <chrono>
#include <cstddef>
#include <ostream>
#include <string>

namespace reticlectl {

/// Tells a person what a call is at, in one line of a terminal that is written over: how far a long
/// upload is, and what is waited for. Uploads of 256 KB and less are over too soon to be told.
class ProgressLine final {
public:
    /// \param err must outlive this object.
    /// \param peer who is waited for, printable.
    /// \param timeoutSeconds for how long at most.
    ProgressLine(std::ostream& err, std::string peer, double timeoutSeconds)
        : _err(err), _peer(std::move(peer)), _timeoutSeconds(timeoutSeconds) {}
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;
    /// As `end`.
    ~ProgressLine();

    /// See ReticleClient::UploadListener.
    void showUpload(std::size_t sentBytes, std::size_t totalBytes);

    /// See ReticleClient::WaitListener.
    void showWait(std::chrono::milliseconds passed);

    /// Leaves the cursor at the begin of a line: that of an upload stays, a wait that is over is
    /// wiped.
    void end();

private:
    void _show(const std::string& text);

    std::ostream& _err;
    std::string _peer;
    double _timeoutSeconds;
    // What stands in the line, which the next text has to cover.
    std::size_t _shownBytes = 0;
    bool _isWait = false;
};

}  // namespace reticlectl
