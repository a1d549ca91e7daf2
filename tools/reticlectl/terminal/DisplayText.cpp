#include "tools/reticlectl/terminal/DisplayText.h"

#include <utf8proc.h>

#include <algorithm>
#include <array>
#include <iomanip>
#include <ios>
#include <sstream>

#include "client/Utf8.h"

namespace reticlectl {

namespace {

struct Range {
    char32_t first;
    char32_t last;

    [[nodiscard]] bool contains(char32_t value) const { return first <= value && value <= last; }
};

// C0 and C1 controls, line and paragraph separators, marks that change the writing direction.
constexpr auto STEERING = std::to_array<Range>({{0x00, 0x1F},
                                                {0x7F, 0x9F},
                                                {0x061C, 0x061C},
                                                {0x200E, 0x200F},
                                                {0x2028, 0x202E},
                                                {0x2066, 0x2069}});

bool canSteer(char32_t value) {
    return std::any_of(STEERING.begin(), STEERING.end(),
                       [value](const Range& range) { return range.contains(value); });
}

std::size_t columnsOf(char32_t value) {
    return static_cast<std::size_t>(utf8proc_charwidth(static_cast<utf8proc_int32_t>(value)));
}

std::string hexEscape(const char* prefix, char32_t value, int digits) {
    std::ostringstream text;
    text << prefix << std::hex << std::uppercase << std::setw(digits) << std::setfill('0')
         << static_cast<unsigned long>(value);
    return text.str();
}

std::string escaped(char32_t value) {
    constexpr char32_t LAST_OF_TWO_DIGITS = 0xFF;
    switch (value) {
        case U'\n':
            return "\\n";
        case U'\r':
            return "\\r";
        case U'\t':
            return "\\t";
        default:
            return value <= LAST_OF_TWO_DIGITS ? hexEscape("\\x", value, 2)
                                               : hexEscape("\\u", value, 4);
    }
}

std::string escapedAsJson(char32_t value) {
    return hexEscape("\\u", value, 4);
}

/// `text` with what could steer replaced by `escape`, but for the characters of `kept`; bytes that
/// are not UTF-8 are replaced by `escapeByte`.
template <class Escape, class EscapeByte>
std::string withoutSteering(std::string_view text, std::u32string_view kept, Escape escape,
                            EscapeByte escapeByte) {
    std::string shown;
    while (!text.empty()) {
        const auto codePoint = reticle::firstCodePoint(text);
        const std::size_t bytes = codePoint ? codePoint->bytes : 1;
        if (!codePoint) {
            shown += escapeByte(static_cast<unsigned char>(text.front()));
        } else if (canSteer(codePoint->value) &&
                   kept.find(codePoint->value) == std::u32string_view::npos) {
            shown += escape(codePoint->value);
        } else {
            shown += text.substr(0, bytes);
        }
        text.remove_prefix(bytes);
    }
    return shown;
}

/// How many bytes of `text` fit `columns`: up to the last blank, if any, where it does not fit whole.
std::size_t lineBytes(std::string_view text, std::size_t columns) {
    std::size_t width = 0;
    std::size_t bytes = 0;
    while (const auto codePoint = reticle::firstCodePoint(text.substr(bytes))) {
        width += columnsOf(codePoint->value);
        if (width > columns && bytes > 0) {
            const std::size_t blank = text.substr(0, bytes + 1).rfind(' ');
            return blank == std::string_view::npos || blank == 0 ? bytes : blank;
        }
        bytes += codePoint->bytes;
    }
    return bytes;
}

}  // namespace

std::string printable(std::string_view text) {
    return withoutSteering(text, U"", &escaped, &escaped);
}

std::string printableLines(std::string_view text) {
    return withoutSteering(text, U"\n\t", &escaped, &escaped);
}

std::string printableJson(std::string_view json) {
    return withoutSteering(json, U"\n\r\t", &escapedAsJson,
                           [](char32_t) { return escapedAsJson(U'\uFFFD'); });
}

std::string wrapped(std::string_view text, std::size_t columns) {
    std::string lines;
    do {
        const std::size_t bytes = lineBytes(text, columns);
        lines.append(text.substr(0, bytes)) += '\n';
        text.remove_prefix(bytes);
        text.remove_prefix(text.starts_with(' ') ? 1 : 0);
    } while (!text.empty());
    return lines;
}

std::size_t displayWidth(std::string_view text) {
    std::size_t width = 0;
    while (const auto codePoint = reticle::firstCodePoint(text)) {
        width += columnsOf(codePoint->value);
        text.remove_prefix(codePoint->bytes);
    }
    return width;
}

std::string shortened(std::string_view text, std::size_t columns) {
    constexpr std::string_view ELLIPSIS = "\xE2\x80\xA6";
    if (displayWidth(text) <= columns) {
        return std::string(text);
    }
    if (columns == 0) {
        return "";
    }
    std::size_t width = 1;
    std::size_t bytes = 0;
    while (const auto codePoint = reticle::firstCodePoint(text.substr(bytes))) {
        width += columnsOf(codePoint->value);
        if (width > columns) {
            break;
        }
        bytes += codePoint->bytes;
    }
    return std::string(text.substr(0, bytes)).append(ELLIPSIS);
}

std::string counted(std::size_t count, const std::string& thing) {
    return std::to_string(count) + ' ' + thing + (count == 1 ? "" : "s");
}

}  // namespace reticlectl
