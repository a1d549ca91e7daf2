#include "reticle-client/UserColor.h"

#include <algorithm>

namespace reticle {

namespace {

constexpr std::string_view XML_SPACE = " \t\r\n";

bool isSpace(char character) {
    return XML_SPACE.find(character) != std::string_view::npos;
}

void skipSpace(std::string_view& text) {
    text.remove_prefix(std::min(text.find_first_not_of(XML_SPACE), text.size()));
}

/// The value in `= "VALUE"`, with which `text` begins, in either kind of quotes.
std::optional<std::string_view> assignedValue(std::string_view text) {
    skipSpace(text);
    if (!text.starts_with('=')) {
        return std::nullopt;
    }
    text.remove_prefix(1);
    skipSpace(text);
    if (!text.starts_with('"') && !text.starts_with('\'')) {
        return std::nullopt;
    }
    const std::size_t end = text.find(text.front(), 1);
    if (end == std::string_view::npos) {
        return std::nullopt;
    }
    return text.substr(1, end - 1);
}

std::optional<std::string> firstColor(std::string_view data, std::string_view attribute) {
    for (std::size_t at = data.find(attribute); at != std::string_view::npos;
         at = data.find(attribute, at + attribute.size())) {
        const bool isWholeName = at > 0 && isSpace(data[at - 1]);
        const auto value = assignedValue(data.substr(at + attribute.size()));
        if (isWholeName && value && !value->empty() && *value != "none") {
            return std::string(*value);
        }
    }
    return std::nullopt;
}

}  // namespace

std::optional<std::string> userColor(std::string_view data) {
    auto color = firstColor(data, "stroke");
    return color ? color : firstColor(data, "fill");
}

bool takesUserColor(std::string_view data) {
    return data.find("\"user_color\"") != std::string_view::npos;
}

}  // namespace reticle
