#include "tools/reticlectl/trace/ReplyReader.h"

#include "client/FrameFormat.h"

namespace reticlectl {

ReplyReader::Event ReplyReader::read(std::string_view& bytes) {
    if (_isLost || !_readHeader(bytes)) {
        const bool isNews = !_isLost && !reticle::isFrameBegin(_header);
        _isLost = _isLost || isNews;
        bytes = {};
        return isNews ? Event::NO_FRAME : Event::NONE;
    }
    const std::string_view part = bytes.substr(0, _size - _read);
    bytes.remove_prefix(part.size());
    _read += static_cast<std::uint32_t>(part.size());
    if (_size <= KEPT_BYTES) {
        _text += part;
    }
    if (_read < _size) {
        return Event::NONE;
    }
    _header.clear();
    return Event::REPLY;
}

/// \return whether the header is whole.
bool ReplyReader::_readHeader(std::string_view& bytes) {
    if (_header.size() == reticle::FRAME_HEADER_BYTES) {
        return true;
    }
    const std::string_view part = bytes.substr(0, reticle::FRAME_HEADER_BYTES - _header.size());
    bytes.remove_prefix(part.size());
    _header += part;
    if (_header.size() < reticle::FRAME_HEADER_BYTES || !reticle::isFrameBegin(_header)) {
        return false;
    }
    _size = reticle::announcedBodyBytes(_header);
    _read = 0;
    _text = {};
    return true;
}

}  // namespace reticlectl
