#include "tools/reticlectl/trace/RequestCutter.h"

#include <algorithm>
#include <utility>

#include "client/FrameFormat.h"
#include "tools/reticlectl/trace/HeaderCheck.h"

namespace reticlectl {

std::string_view RequestCutter::Piece::body() const {
    return std::string_view(bytes).substr(reticle::FRAME_HEADER_BYTES);
}

std::optional<RequestCutter::Piece> RequestCutter::next() {
    using Kind = Piece::Kind;
    using reticle::FRAME_HEADER_BYTES;
    if (_held.empty()) {
        return std::nullopt;
    }
    if (_refusedLeft > 0) {
        return _cutRefused(Kind::REFUSED_REST);
    }
    if (findHeaderMistake(_held)) {
        _refusedLeft = FRAME_HEADER_BYTES;
        return _cutRefused(Kind::REFUSED_HEADER);
    }
    if (_held.size() < FRAME_HEADER_BYTES) {
        return _hasEnded ? std::optional(_cut(Kind::CUT_HEADER, _held.size())) : std::nullopt;
    }
    const std::size_t size = FRAME_HEADER_BYTES + reticle::announcedBodyBytes(_held);
    if (_held.size() >= size) {
        return _cut(Kind::FRAME, size);
    }
    return _hasEnded ? std::optional(_cut(Kind::CUT_FRAME, _held.size())) : std::nullopt;
}

RequestCutter::Piece RequestCutter::_cutRefused(Piece::Kind kind) {
    const std::size_t size = std::min(_refusedLeft, _held.size());
    _refusedLeft -= size;
    return _cut(kind, size);
}

RequestCutter::Piece RequestCutter::_cut(Piece::Kind kind, std::size_t size) {
    std::string rest = _held.substr(size);
    _held.resize(size);
    return {kind, std::exchange(_held, std::move(rest))};
}

}  // namespace reticlectl
