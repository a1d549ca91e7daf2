#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace sim {

/// Cuts the unframed bytes of a connection into request texts.
///
/// A text ends where its outermost bracket closes, however it was cut on the way; blanks between
/// texts are skipped. Bytes that begin no array or object cannot be told apart from what follows:
/// all that has arrived is then one text, which its reader will find malformed.
class RequestSplitter {
public:
    /// A request carries a name and a path. The name comes from a client's frame of less than
    /// 4 MiB; escaped, it grows threefold at most, but for control characters. A longer text is
    /// handed out at its end as this many bytes and one more of it: its reader sees that it is too
    /// long.
    static constexpr std::size_t MAX_REQUEST_BYTES = std::size_t{16} << 20U;

    void feed(std::string_view bytes);

    /// The next whole text, in order of arrival; none until more bytes come.
    [[nodiscard]] std::optional<std::string> next();

    /// Whether a text has begun and not ended. Right after `next` gave none.
    [[nodiscard]] bool isInsideText() const { return !_pending.empty(); }

private:
    [[nodiscard]] bool _endsTextWith(char character);
    [[nodiscard]] std::string _cut(std::size_t size);
    void _skipBlanks();

    std::string _pending;  ///< bytes not yet handed out, but for those beyond the longest request
    std::size_t _scanned = 0;
    std::size_t _depth = 0;
    bool _isInString = false;
    bool _isEscaped = false;
};

}  // namespace sim
