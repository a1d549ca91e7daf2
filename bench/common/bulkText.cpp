#include "bench/common/bulkText.h"

#include <array>
#include <bit>
#include <climits>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace reticled::bench {
namespace {

using Word = std::uint64_t;
constexpr Word EACH = 0x0101010101010101;
constexpr Word HIGH_BITS = 0x8080808080808080;

bool needsEscape(char character) {
    return character < ' ' || character == '"' || character == '\\';
}

/// How many bytes of the word stand for themselves; of ASCII, lowest byte first.
std::size_t plainBytes(Word word) {
    const Word special =
        (word - EACH * ' ') | ((word ^ (EACH * '"')) - EACH) | ((word ^ (EACH * '\\')) - EACH);
    return static_cast<std::size_t>(std::countr_zero(special & HIGH_BITS)) / CHAR_BIT;
}

/// Copies text to `place`, which has room for it and a word, up to the first byte to escape.
std::size_t copyPlain(std::string_view text, char* place) {
    std::size_t copied = 0;
    for (Word word = 0; text.size() - copied >= sizeof word;) {
        std::memcpy(&word, text.data() + copied, sizeof word);
        std::memcpy(place + copied, &word, sizeof word);
        const std::size_t plain = plainBytes(word);
        copied += plain;
        if (plain < sizeof word) {
            return copied;
        }
    }
    for (; copied < text.size() && !needsEscape(text[copied]); ++copied) {
        place[copied] = text[copied];
    }
    return copied;
}

void appendString(std::string& text, std::string_view string) {
    constexpr std::size_t PIECE = 2048;
    std::array<char, 2 * PIECE + sizeof(Word)> piece;  // NOLINT(*-member-init)
    text += '"';
    while (!string.empty()) {
        std::string_view next = string.substr(0, PIECE);
        string.remove_prefix(next.size());
        char* end = piece.data();
        while (!next.empty()) {
            const std::size_t copied = copyPlain(next, end);
            end += copied;
            next.remove_prefix(copied);
            if (!next.empty()) {
                *end++ = '\\';
                *end++ = next.front() == '\n' ? 'n' : next.front();
                next.remove_prefix(1);
            }
        }
        text.append(piece.data(), end);
    }
    text += '"';
}

void appendLine(std::string& text, std::size_t depth) {
    text.append(1, '\n').append(depth, '\t');
}

void appendValue(std::string& text, const Json::Value& value, std::size_t depth);

void appendContainer(std::string& text, const Json::Value& container, std::size_t depth) {
    text += container.isArray() ? '[' : '{';
    bool isFirst = true;
    for (auto member = container.begin(); member != container.end(); ++member) {
        text += isFirst ? "" : ",";
        isFirst = false;
        appendLine(text, depth + 1);
        if (container.isObject()) {
            appendString(text, member.name());
            text += " : ";
            if (member->isArray() || member->isObject()) {
                appendLine(text, depth + 1);
            }
        }
        appendValue(text, *member, depth + 1);
    }
    appendLine(text, depth);
    text += container.isArray() ? ']' : '}';
}

void appendValue(std::string& text, const Json::Value& value, std::size_t depth) {
    if (const char* begin = nullptr, *end = nullptr; value.getString(&begin, &end)) {
        appendString(text, {begin, end});
    } else if (value.isArray() || value.isObject()) {
        appendContainer(text, value, depth);
    } else {
        text += value.asString();
    }
}

std::size_t sizeOf(const Json::Value& value) {
    constexpr std::size_t LINE = 32;
    const char* begin = nullptr;
    const char* end = nullptr;
    std::size_t size = LINE;
    if (value.getString(&begin, &end)) {
        const auto length = static_cast<std::size_t>(end - begin);
        size += length + length / 4;
    }
    for (const Json::Value& child : value) {
        size += sizeOf(child);
    }
    return size;
}

}  // namespace

std::string bulkText(const Json::Value& value) {
    std::string text;
    text.reserve(sizeOf(value));
    appendValue(text, value, 0);
    return text;
}

}  // namespace reticled::bench
