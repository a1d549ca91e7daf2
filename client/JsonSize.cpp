#include "client/JsonSize.h"

#include <algorithm>

namespace reticle {

namespace {

/// Where the text goes on after the first `end` from `from` on.
std::size_t after(std::string_view text, std::string_view end, std::size_t from) {
    const std::size_t at = text.find(end, from);
    return at == std::string_view::npos ? text.size() : at + end.size();
}

std::size_t afterString(std::string_view text, std::size_t at) {
    while (true) {
        at = text.find_first_of("\"\\", at);
        if (at == std::string_view::npos) {
            return text.size();
        }
        if (text[at] == '"') {
            return at + 1;
        }
        // What follows a backslash ends no string.
        at = std::min(at + 2, text.size());
    }
}

std::size_t afterComment(std::string_view text, std::size_t at) {
    if (text.substr(at).starts_with("/*")) {
        return after(text, "*/", at + 2);
    }
    const std::size_t end = text.find_first_of("\r\n", at);
    return end == std::string_view::npos ? text.size() : end;
}

}  // namespace

std::size_t countJsonValues(std::string_view text) {
    std::size_t count = 1;
    std::size_t at = 0;
    while ((at = text.find_first_of("\"/,[{", at)) != std::string_view::npos) {
        if (text[at] == '"') {
            at = afterString(text, at + 1);
        } else if (text[at] == '/') {
            at = afterComment(text, at);
        } else {
            // A list or an object begins with a value, and each comma is followed by one.
            ++count;
            ++at;
        }
    }
    return count;
}

}  // namespace reticle
