#include "tests/support/Text.h"

#include <charconv>
#include <fstream>
#include <sstream>
#include <stdexcept>

std::size_t countOf(std::string_view part, std::string_view text) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string_view::npos;
         at = text.find(part, at + part.size())) {
        ++count;
    }
    return count;
}

std::string repeated(std::string_view text, std::size_t times) {
    std::string whole;
    whole.reserve(text.size() * times);
    for (std::size_t i = 0; i < times; ++i) {
        whole += text;
    }
    return whole;
}

std::string fromHex(std::string_view digits) {
    constexpr int HEXADECIMAL = 16;
    constexpr std::size_t PAIR = 2;
    std::istringstream pairs{std::string(digits)};
    std::string bytes;
    for (std::string pair; pairs >> pair;) {
        unsigned char byte = 0;
        const char* end = pair.data() + pair.size();
        const auto [stop, error] = std::from_chars(pair.data(), end, byte, HEXADECIMAL);
        if (pair.size() != PAIR || error != std::errc{} || stop != end) {
            throw std::invalid_argument("not a pair of hexadecimal digits: " + pair);
        }
        bytes += static_cast<char>(byte);
    }
    return bytes;
}

std::string contentOfFile(const std::string& path) {
    std::ostringstream content;
    content << std::ifstream(path, std::ios::binary).rdbuf();
    return content.str();
}
