#include "simulator/base/EscapedText.h"

#include <algorithm>
#include <bit>
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

constexpr int MIN_SEQUENCE_BYTES = 2;
constexpr int MAX_SEQUENCE_BYTES = 4;

bool isControl(unsigned char byte) {
    return (byte < FIRST_VISIBLE && byte != '\n' && byte != '\t') || byte == DELETE;
}

bool isContinuation(char byte) {
    return std::countl_one(static_cast<unsigned char>(byte)) == 1;
}

/// How many bytes the character at the start of `text` takes in UTF-8; 0 where none begins.
std::size_t characterSize(std::string_view text) {
    const int ones = std::countl_one(static_cast<unsigned char>(text.front()));
    if (ones == 0) {
        return 1;
    }
    const auto size = static_cast<std::size_t>(ones);
    if (ones < MIN_SEQUENCE_BYTES || ones > MAX_SEQUENCE_BYTES || text.size() < size) {
        return 0;
    }
    const std::string_view rest = text.substr(1, size - 1);
    return std::all_of(rest.begin(), rest.end(), isContinuation) ? size : 0;
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
    while (!text.empty()) {
        const std::size_t size = characterSize(text);
        if (size == 0 || isControl(static_cast<unsigned char>(text.front()))) {
            return false;
        }
        text.remove_prefix(size);
    }
    return true;
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
