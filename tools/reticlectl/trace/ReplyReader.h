#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace reticlectl {

/// Follows what the service sends, which is passed on at once, and tells where a reply is complete.
///
/// Keeps the text of one reply, and none of a reply that is longer than KEPT_BYTES.
class ReplyReader {
public:
    static constexpr std::size_t KEPT_BYTES = std::size_t{16} << 20U;

    enum class Event {
        NONE,      ///< all bytes are read
        REPLY,     ///< `size` and `text` are those of a reply
        NO_FRAME,  ///< what comes is no frame of the service; nothing more is read
    };

    /// Reads up to the next event and takes what it has read off `bytes`.
    [[nodiscard]] Event read(std::string_view& bytes);

    /// Of the last reply's body.
    [[nodiscard]] std::uint32_t size() const { return _size; }

    /// The last reply's body; empty where it was not kept.
    [[nodiscard]] const std::string& text() const { return _text; }

    /// What has come of a header, and is none after NO_FRAME.
    [[nodiscard]] const std::string& header() const { return _header; }

private:
    [[nodiscard]] bool _readHeader(std::string_view& bytes);

    std::string _header;
    std::string _text;
    std::uint32_t _size = 0;
    std::uint32_t _read = 0;  ///< of the body
    bool _isLost = false;
};

}  // namespace reticlectl
