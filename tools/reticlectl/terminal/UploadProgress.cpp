#include "tools/reticlectl/terminal/UploadProgress.h"

namespace reticlectl {

namespace {

constexpr std::size_t KB = 1024;
constexpr std::size_t LARGEST_UNTOLD_BYTES = 256 * KB;
constexpr std::size_t PERCENT = 100;

}  // namespace

UploadProgress::~UploadProgress() {
    _endLine();
}

void UploadProgress::show(std::size_t sentBytes, std::size_t totalBytes) {
    if (totalBytes <= LARGEST_UNTOLD_BYTES) {
        return;
    }
    // Each line is at least as long as the one before, so that nothing of that is left.
    _err << "\rsending: " << sentBytes / KB << " of " << totalBytes / KB << " KB ("
         << sentBytes * PERCENT / totalBytes << " %)" << std::flush;
    _isLineOpen = true;
    if (sentBytes == totalBytes) {
        _endLine();
    }
}

void UploadProgress::_endLine() {
    if (_isLineOpen) {
        _err << std::endl;
        _isLineOpen = false;
    }
}

}  // namespace reticlectl
