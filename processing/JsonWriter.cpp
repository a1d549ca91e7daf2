#include "processing/JsonWriter.h"

#include <json/writer.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <bit>
#include <climits>
#include <cstdint>
#include <cstring>
#include <numeric>
#include <sstream>
#include <utility>

#include "base/FreeMemory.h"

namespace reticled {
namespace {

using Word = std::uint64_t;
constexpr Word EACH_BYTE = 0x0101010101010101;
constexpr Word HIGH_BITS = 0x8080808080808080;

/// Strings are put together in pieces of this size, which stay in the processor's cache.
constexpr std::size_t PIECE_SIZE = 4096;
/// What a word of plain bytes and an escape take.
constexpr std::size_t LONGEST_STEP = 16;

/// How many bytes of a text's next word stand for themselves within quotes. Subtracting borrows into a
/// byte's high bit where the byte is less than what is taken from it; what is marked behind the first
/// such byte means nothing.
std::size_t plainLength(Word word) {
    static_assert(std::endian::native == std::endian::little, "a text's first byte is the lowest");
    const Word belowBlank = word - EACH_BYTE * ' ';
    const Word quote = (word ^ (EACH_BYTE * '"')) - EACH_BYTE;
    const Word backslash = (word ^ (EACH_BYTE * '\\')) - EACH_BYTE;
    const Word special = (belowBlank | quote | backslash | word) & HIGH_BITS;
    return static_cast<std::size_t>(std::countr_zero(special)) / CHAR_BIT;
}

bool isAscii(char character) {
    return static_cast<unsigned char>(character) < 0x80;
}

std::string_view stringOf(const Json::Value& value) {
    const char* begin = nullptr;
    const char* end = nullptr;
    value.getString(&begin, &end);
    return {begin, end};
}

std::string_view nameOf(const Json::Value::const_iterator& member) {
    const char* end = nullptr;
    const char* begin = member.memberName(&end);
    return {begin, end};
}

bool isContainer(const Json::Value& value) {
    return value.isObject() || value.isArray();
}

bool hasOwnComment(const Json::Value& value) {
    return value.hasComment(Json::commentBefore) ||
           value.hasComment(Json::commentAfterOnSameLine) || value.hasComment(Json::commentAfter);
}

bool hasComment(const Json::Value& value) {
    return hasOwnComment(value) || std::any_of(value.begin(), value.end(), hasComment);
}

/// The room for `value` and what stands around it, if no more than a quarter of its text is escapes
/// and it is not deeply nested. Room that is not used costs nothing, room that is missing a copy.
std::size_t usualSize(const Json::Value& value) {
    constexpr std::size_t NAME_AND_LINE = 32;
    const std::size_t length = value.isString() ? stringOf(value).size() : 0;
    return std::accumulate(
        value.begin(), value.end(), NAME_AND_LINE + length + length / 4,
        [](std::size_t sum, const Json::Value& child) { return sum + usualSize(child); });
}

/// Has the kernel back a long text's room with huge pages, where it can: page faults are a tenth of a long list's
/// time. Only where the allocator maps the text by itself: huge pages of its heap would outlast the text.
void askForHugePages(std::string& text) {
    if (text.capacity() >= RETURNED_BLOCK_BYTES) {
        // In front of the text, on the same page, is what the allocator knows of it.
        const auto offset = std::bit_cast<std::uintptr_t>(text.data()) %
                            static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
        madvise(text.data() - offset, text.capacity(), MADV_HUGEPAGE);
    }
}

/// Puts an ASCII character, or what stands for it, at `place`. \return behind it.
char* putEscaped(char* place, char character) {
    constexpr std::string_view SHORT = "btn.fr";  // for 0x08 to 0x0D; 0x0B has none
    constexpr std::string_view DIGITS = "0123456789abcdef";
    if (character >= ' ' && character != '"' && character != '\\') {
        *place++ = character;
        return place;
    }
    *place++ = '\\';
    if (character >= ' ') {
        *place++ = character;
    } else if (character >= '\b' && character <= '\r' && character != '\v') {
        *place++ = SHORT[static_cast<std::size_t>(character - '\b')];
    } else {
        for (const char each : {'u', '0', '0', DIGITS[static_cast<unsigned>(character) >> 4U],
                                DIGITS[static_cast<unsigned>(character) & 0xFU]}) {
            *place++ = each;
        }
    }
    return place;
}

}  // namespace

std::string JsonWriter::write(const Json::Value& value) {
    JsonWriter writer;
    if (hasComment(value)) {
        return writer._writtenByLibrary(value);
    }
    writer._text.reserve(usualSize(value));
    askForHugePages(writer._text);
    writer._writeValue(value);
    return std::move(writer._text);
}

void JsonWriter::_writeValue(const Json::Value& value) {
    switch (value.type()) {
        case Json::nullValue:
            _text += "null";
            break;
        case Json::intValue:
            _text += std::to_string(value.asLargestInt());
            break;
        case Json::stringValue:
            _writeString(stringOf(value));
            break;
        case Json::booleanValue:
            _text += value.asBool() ? "true" : "false";
            break;
        case Json::arrayValue:
            _writeArray(value);
            break;
        case Json::objectValue:
            _writeObject(value);
            break;
        case Json::uintValue:
        case Json::realValue:
            _text += _writtenByLibrary(value);
            break;
    }
}

std::string JsonWriter::_writtenByLibrary(const Json::Value& value) {
    // Making one costs more than writing a short text. Not one for each thread: libc ends the process
    // where it has no memory to note that one is to be destroyed with its thread.
    if (!_library) {
        _library.reset(Json::StreamWriterBuilder().newStreamWriter());
    }
    std::ostringstream text;
    // Short of memory, a stream that swallows the exception would leave a cut text.
    text.exceptions(std::ios::badbit);
    _library->write(value, &text);
    return std::move(text).str();
}

void JsonWriter::_writeArray(const Json::Value& array) {
    if (array.empty()) {
        _text += "[]";
        return;
    }
    _text += '[';
    ++_depth;
    for (Json::ArrayIndex i = 0; i < array.size(); ++i) {
        _text += i > 0 ? "," : "";
        _startLine();
        _writeValue(array[i]);
    }
    --_depth;
    _startLine();
    _text += ']';
}

void JsonWriter::_writeObject(const Json::Value& object) {
    if (object.empty()) {
        _text += "{}";
        return;
    }
    _text += '{';
    ++_depth;
    for (auto member = object.begin(), end = object.end(); member != end; ++member) {
        _text += member != object.begin() ? "," : "";
        _startLine();
        _writeString(nameOf(member));
        _text += " : ";
        if (isContainer(*member) && !member->empty()) {
            _startLine();
        }
        _writeValue(*member);
    }
    --_depth;
    _startLine();
    _text += '}';
}

void JsonWriter::_writeString(std::string_view text) {
    const std::size_t start = _text.size();
    _text += '"';
    for (std::size_t taken = 0; taken < text.size();) {
        const std::size_t count = _writePiece(text.substr(taken));
        if (count == 0) {
            _text.resize(start);
            _text += _writtenByLibrary(Json::Value(text.data(), text.data() + text.size()));
            return;
        }
        taken += count;
    }
    _text += '"';
}

std::size_t JsonWriter::_writePiece(std::string_view text) {
    std::array<char, PIECE_SIZE> piece;  // NOLINT(*-member-init): written before it is read
    char* end = piece.data();
    const char* const limit = end + PIECE_SIZE - LONGEST_STEP;
    const char* next = text.data();
    const char* const textEnd = next + text.size();
    while (next != textEnd && end < limit) {
        std::size_t plain = 0;
        if (Word word = 0; static_cast<std::size_t>(textEnd - next) >= sizeof word) {
            std::memcpy(&word, next, sizeof word);
            std::memcpy(end, &word, sizeof word);
            plain = plainLength(word);
            end += plain;
            next += plain;
        }
        if (plain < sizeof(Word)) {
            if (!isAscii(*next)) {
                return 0;
            }
            end = putEscaped(end, *next++);
        }
    }
    _text.append(piece.data(), end);
    return static_cast<std::size_t>(next - text.data());
}

void JsonWriter::_startLine() {
    _text += '\n';
    _text.append(_depth, '\t');
}

}  // namespace reticled
