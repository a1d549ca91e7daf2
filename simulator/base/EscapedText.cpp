#include "simulator/base/EscapedText.h"

#include <utf8.h>

#include <algorithm>
#include <charconv>
#include <stdexcept>

namespace sim {

namespace {

constexpr std::string_view HEX_DIGITS = "0123456789abcdef";
constexpr std::size_t HEX_ESCAPE_SIZE = 4;
constexpr int HEX_BASE = 16;
constexpr unsigned char FIRST_VISIBLE = ' ';
constexpr unsigned char DELETE = 0x7F;
constexpr unsigned HALF_BYTE_BITS = 4;
constexpr unsigned LOW_HALF = 0x0F;

bool isControl(unsigned char byte) {
    return (byte < FIRST_VISIBLE && byte != '\n' && byte != '\t') || byte == DELETE;
}

/// Appends what the escape at the start of `text` stands for. \return the size of the escape
std::size_t appendUnescaped(std::string& result, std::string_view text) {
    if (text.starts_with("\\\\")) {
        result += '\\';
        return 2;
    }
    if (text.starts_with("\\r")) {
        result += '\r';
        return 2;
    }
    const std::string_view escape = text.substr(0, HEX_ESCAPE_SIZE);
    unsigned char byte = 0;
    const char* const end = escape.data() + escape.size();
    if (escape.size() < HEX_ESCAPE_SIZE || !escape.starts_with("\\x") ||
        std::from_chars(escape.data() + 2, end, byte, HEX_BASE).ptr != end) {
        throw std::runtime_error("'" + std::string(escape) + "' is no escape");
    }
    result += static_cast<char>(byte);
    return HEX_ESCAPE_SIZE;
}

}  // namespace

bool isPlainText(std::string_view text) {
    return utf8::is_valid(text.begin(), text.end()) &&
           std::none_of(text.begin(), text.end(), [](char character) {
               return isControl(static_cast<unsigned char>(character));
           });
}

std::string escaped(std::string_view text) {
    std::string result;
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        if (character == '\\') {
            result += "\\\\";
        } else if (character == '\r') {
            result += "\\r";
        } else if (isControl(byte) || byte > DELETE) {
            result += "\\x";
            result += HEX_DIGITS[byte >> HALF_BYTE_BITS];
            result += HEX_DIGITS[byte & LOW_HALF];
        } else {
            result += character;
        }
    }
    return result;
}

std::string unescaped(std::string_view text) {
    std::string result;
    while (!text.empty()) {
        std::size_t size = 1;
        if (text.front() == '\\') {
            size = appendUnescaped(result, text);
        } else {
            result += text.front();
        }
        text.remove_prefix(size);
    }
    return result;
}

}  // namespace sim
