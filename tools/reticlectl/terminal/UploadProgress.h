#pragma once

#include <cstddef>
#include <ostream>

namespace reticlectl {

/// Tells a person how far a long upload is, in one line of a terminal that is written over. Uploads
/// of 256 KB and less are over too soon to be told.
class UploadProgress final {
public:
    /// \param err must outlive this object.
    explicit UploadProgress(std::ostream& err) : _err(err) {}
    UploadProgress(const UploadProgress&) = delete;
    UploadProgress& operator=(const UploadProgress&) = delete;
    /// Ends the line of an upload that failed, so that the message about it gets its own.
    ~UploadProgress();

    /// See ReticleClient::UploadListener.
    void show(std::size_t sentBytes, std::size_t totalBytes);

private:
    void _endLine();

    std::ostream& _err;
    bool _isLineOpen = false;
};

}  // namespace reticlectl
