#include "simulator/events/ShownText.h"

#include <json/value.h>
#include <utf8.h>

#include <optional>
#include <stdexcept>

#include "simulator/base/EscapedText.h"
#include "simulator/base/JsonText.h"
#include "simulator/device/Message.h"

namespace sim {

namespace {

/// Of requests and answers; ordinary ones are far shorter.
constexpr std::size_t MAX_SHOWN_BYTES = 2000;
constexpr std::size_t MAX_CHARACTER_BYTES = 4;

/// The beginning of a long `text`; no character is cut.
std::string_view beginning(std::string_view text) {
    const std::string_view part = text.substr(0, MAX_SHOWN_BYTES);
    const char* const invalid = utf8::find_invalid(part.begin(), part.end());
    const auto valid = static_cast<std::size_t>(invalid - part.begin());
    return part.size() - valid < MAX_CHARACTER_BYTES ? part.substr(0, valid) : part;
}

/// \return none where it is not JSON
std::optional<Json::Value> parse(std::string_view text) {
    try {
        return parseJson(std::string(text));
    } catch (const std::runtime_error&) {
        return std::nullopt;
    }
}

void replaceAll(std::string& text, char character, std::string_view by) {
    for (std::size_t place = text.find(character); place != std::string::npos;
         place = text.find(character, place + by.size())) {
        text.replace(place, 1, by);
    }
}

}  // namespace

std::string shownText(std::string_view text) {
    const bool isLong = text.size() > MAX_SHOWN_BYTES;
    const std::string_view part = isLong ? beginning(text) : text;
    std::string shown = isPlainText(part) ? std::string(part) : escaped(part);
    return isLong ? shown + "... (" + std::to_string(text.size()) + " bytes)" : shown;
}

std::string shownOnOneLine(std::string_view text) {
    const std::optional<Json::Value> json = parse(text);
    std::string shown = shownText(json ? compactJson(*json) : text);
    replaceAll(shown, '\n', "\\n");
    replaceAll(shown, '\t', "\\t");
    return shown;
}

const char* messageOf(std::string_view request) {
    const std::optional<Json::Value> json = parse(request);
    const bool hasId = json && json->isArray() && json->size() == 1 && (*json)[0].isObject() &&
                       (*json)[0]["msg_id"].isInt();
    return hasId ? messageName((*json)[0]["msg_id"].asInt()) : nullptr;
}

}  // namespace sim
