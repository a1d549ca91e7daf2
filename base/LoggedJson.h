#pragma once

#include <cstddef>
#include <limits>
#include <ostream>
#include <string_view>

namespace reticled {

/// A JSON text as log lines show it: whole, or its first bytes and " ... (M bytes)", M being its whole
/// size.
class LoggedJson {
public:
    /// Texts of more than `bytes` are cut from now on. In main, before any thread exists.
    static void cutBeyond(std::size_t bytes) { _longest = bytes; }

    /// \param text must outlive the object.
    explicit LoggedJson(std::string_view text) : _text(text) {}

    friend std::ostream& operator<<(std::ostream& stream, const LoggedJson& json) {
        stream << json._text.substr(0, _longest);
        if (json._text.size() > _longest) {
            stream << " ... (" << json._text.size() << " bytes)";
        }
        return stream;
    }

private:
    inline static std::size_t _longest = std::numeric_limits<std::size_t>::max();

    std::string_view _text;
};

}  // namespace reticled
