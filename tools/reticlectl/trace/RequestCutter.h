#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace reticlectl {

/// Cuts what a client sends as the service does, so that each frame can be judged before the
/// service has a byte of it. Nothing is lost or changed: the pieces in a row are what was fed.
///
/// Holds one frame at most, of less than 4 MiB and 36 bytes, and what was fed last.
class RequestCutter {
public:
    struct Piece {
        enum class Kind {
            FRAME,           ///< a header that the service takes, and its body
            CUT_FRAME,       ///< the same, but the client ended within the body
            REFUSED_HEADER,  ///< no header for the service, which takes 36 bytes for one: its begin
            REFUSED_REST,    ///< what has come later of these 36 bytes
            CUT_HEADER       ///< the client ended within the header
        };
        Kind kind;
        std::string bytes;

        /// Of a frame.
        [[nodiscard]] std::string_view body() const;
    };

    void feed(std::string_view bytes) { _held += bytes; }

    /// The client sends no more.
    void end() { _hasEnded = true; }

    /// The next piece; nothing until more bytes come.
    [[nodiscard]] std::optional<Piece> next();

    /// What has come of the next piece. Right after `next` gave none.
    [[nodiscard]] std::string_view held() const { return _held; }

private:
    [[nodiscard]] Piece _cutRefused(Piece::Kind kind);
    [[nodiscard]] Piece _cut(Piece::Kind kind, std::size_t size);

    std::string _held;
    std::size_t _refusedLeft = 0;  ///< of the 36 bytes of a refused header
    bool _hasEnded = false;
};

}  // namespace reticlectl
