#include "tools/reticlectl/trace/RequestCheck.h"

#include <json/json.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <utility>

#include "client/ActionNames.h"
#include "client/Utf8.h"

namespace reticlectl {

namespace {

using reticle::ACTIVATE_ACTION;
using reticle::ADD_OR_UPDATE_ACTION;
using reticle::DELETE_ACTION;
using reticle::LIST_ACTION;

constexpr const char* SEND_JSON = "send one JSON text in UTF-8; there is no reply";
constexpr const char* SEND_INTEGER = "send an integer from -2147483648 to 2147483647";
constexpr const char* LEFT_OUT = ", and the service leaves it out";
constexpr const char* RETICLE_LEFT_OUT = ", and the service leaves the reticle out";

void add(RequestCheck& check, std::string what, std::string remedy) {
    if (check.mistakes.size() < RequestCheck::MISTAKES_LIMIT) {
        check.mistakes.push_back({std::move(what), std::move(remedy)});
    }
}

void drop(RequestCheck& check, std::string what, std::string remedy) {
    check.outcome = RequestCheck::Outcome::DROPPED;
    add(check, std::move(what), std::move(remedy));
}

/// A text of the client's in double quotes, its begin where it is long.
std::string inQuotes(std::string_view text) {
    constexpr std::size_t SHOWN_BYTES = 60;
    return '"' + std::string(text.substr(0, SHOWN_BYTES)) +
           (text.size() > SHOWN_BYTES ? "..." : "") + '"';
}

std::string describe(const Json::Value& value) {
    switch (value.type()) {
        case Json::nullValue:
            return "null";
        case Json::stringValue:
            return "a string";
        case Json::arrayValue:
            return "an array";
        case Json::objectValue:
            return "an object";
        default:
            return value.asString();
    }
}

std::string describeMember(const Json::Value& record, const char* key) {
    return std::string("\"") + key + "\" is " +
           (record.isMember(key) ? describe(record[key]) : "missing");
}

/// "line 2, column 7": both counted from 1, columns in characters.
std::string position(std::string_view text, std::size_t at) {
    const std::string_view before = text.substr(0, at);
    const auto line = std::count(before.begin(), before.end(), '\n') + 1;
    const std::string_view inLine = before.substr(before.rfind('\n') + 1);
    const auto column = std::count_if(inLine.begin(), inLine.end(), [](char byte) {
        constexpr unsigned MARK = 0xC0;
        constexpr unsigned CONTINUATION = 0x80;
        return (static_cast<unsigned char>(byte) & MARK) != CONTINUATION;
    });
    return "line " + std::to_string(line) + ", column " + std::to_string(column + 1);
}

// The service reads with the older of the library's two readers, which takes texts that the newer
// one refuses.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
std::string describeSyntax(std::string_view text, const Json::Reader& reader) {
    const auto errors = reader.getStructuredErrors();
    if (errors.empty()) {
        return "no JSON";
    }
    std::string message = errors.front().message;
    if (message.ends_with('.')) {
        message.pop_back();
    }
    return "no JSON: " + position(text, static_cast<std::size_t>(errors.front().offset_start)) +
           ": " + message;
}

bool parse(std::string_view text, Json::Value& root, RequestCheck& check) {
    Json::Reader reader;
    try {
        if (reader.parse(text.data(), text.data() + text.size(), root, false)) {
            return true;
        }
        drop(check, describeSyntax(text, reader), SEND_JSON);
    } catch (const Json::Exception&) {
        drop(check, "no JSON for the service: nested deeper than 1000 levels", SEND_JSON);
    }
    return false;
}
#pragma GCC diagnostic pop

/// What only shows in the bytes. \return whether it is no use to read on.
bool isOtherText(std::string_view body, RequestCheck& check) {
    if (body.starts_with("\xEF\xBB\xBF")) {
        drop(check, "no JSON: begins with a byte order mark", SEND_JSON);
        return true;
    }
    if (body.substr(0, 2).find('\0') != std::string_view::npos) {
        drop(check, "no JSON: a zero byte at its begin, as UTF-16 has it", SEND_JSON);
        return true;
    }
    return false;
}

/// \param otherwise what becomes of a value that is none and cannot be taken for one.
void checkInteger(const Json::Value& value, const std::string& name, const char* otherwise,
                  RequestCheck& check) {
    if (value.isInt()) {
        return;
    }
    if (value.isConvertibleTo(Json::intValue)) {
        add(check,
            name + " is " + describe(value) + ", which the service takes for " +
                std::to_string(value.asInt()),
            SEND_INTEGER);
    } else {
        add(check, name + " is " + describe(value) + otherwise, SEND_INTEGER);
    }
}

void checkActivate(const Json::Value& request, RequestCheck& check) {
    const Json::Value& index = request["index"];
    if (!index.isConvertibleTo(Json::intValue)) {
        drop(check, describeMember(request, "index") + ", and there is no reply", SEND_INTEGER);
    } else if (request.isMember("index")) {
        checkInteger(index, "\"index\"", "", check);
    }
}

/// Of an add or update. \param name for messages.
void checkReticle(const Json::Value& record, const std::string& name, RequestCheck& check) {
    if (!record.isObject()) {
        add(check, name + " is " + describe(record) + LEFT_OUT,
            R"(send objects with "name" and "data")");
        return;
    }
    for (const char* key : {"name", "data"}) {
        if (!record[key].isString()) {
            add(check, name + ": " + describeMember(record, key) + RETICLE_LEFT_OUT,
                "send a string");
        }
    }
    if (record["data"].isString() && record["data"].asString().empty()) {
        add(check, name + ": \"data\" is empty: the device keeps it, and no list shows it",
            "send the drawing");
    }
    if (!record["index"].isNull()) {
        checkInteger(record["index"], name + ": \"index\"", RETICLE_LEFT_OUT, check);
    }
}

void checkElementIndex(const Json::Value& value, const std::string& name, RequestCheck& check) {
    checkInteger(value, name, LEFT_OUT, check);
}

/// Looks at each element of an array that the request may have.
template <class CheckElement>
void checkArray(const Json::Value& request, const char* key, CheckElement checkElement,
                RequestCheck& check) {
    const Json::Value& list = request[key];
    if (!list.isArray()) {
        if (request.isMember(key)) {
            add(check, describeMember(request, key) + ", no array", "send an array");
        }
        return;
    }
    for (Json::ArrayIndex at = 0; at < list.size(); ++at) {
        checkElement(list[at], '"' + std::string(key) + "\"[" + std::to_string(at) + "]", check);
    }
}

/// An action as it looks to somebody who does not mind case, blanks, underscores and plurals.
std::string simplified(std::string_view action) {
    std::string simple;
    for (const char character : action) {
        const int upper = std::toupper(static_cast<unsigned char>(character));
        if (std::isalpha(upper) != 0 && upper != 'S') {
            simple += static_cast<char>(upper);
        }
    }
    return simple;
}

void checkUnknownAction(RequestCheck& check) {
    constexpr std::array ACTIONS{LIST_ACTION, ACTIVATE_ACTION, ADD_OR_UPDATE_ACTION, DELETE_ACTION};
    const auto* const meant = std::find_if(
        ACTIONS.begin(), ACTIONS.end(),
        [&check](std::string_view known) { return simplified(known) == simplified(check.action); });
    check.outcome = RequestCheck::Outcome::ENDS_SERVICE;
    add(check, "no action of the service and would end it: " + inQuotes(check.action),
        meant != ACTIONS.end() ? "send " + inQuotes(*meant) + ", byte for byte"
                               : "send one of the four actions, byte for byte");
}

void checkMembers(const Json::Value& request, RequestCheck& check) {
    if (check.action == ACTIVATE_ACTION) {
        checkActivate(request, check);
    } else if (check.action == ADD_OR_UPDATE_ACTION) {
        checkArray(request, "reticles", &checkReticle, check);
    } else if (check.action == DELETE_ACTION) {
        checkArray(request, "indices", &checkElementIndex, check);
    } else if (check.action != LIST_ACTION) {
        checkUnknownAction(check);
    }
}

void checkObject(const Json::Value& request, RequestCheck& check) {
    if (!request.isObject()) {
        drop(check, "the body is " + describe(request) + ", no object",
             "send an object with \"action\"; there is no reply");
        return;
    }
    if (!request["action"].isString()) {
        drop(check, describeMember(request, "action"),
             "send the action as a string; there is no reply");
        return;
    }
    check.action = request["action"].asCString();
    checkMembers(request, check);
}

}  // namespace

RequestCheck RequestCheck::of(std::string_view body) {
    RequestCheck check;
    if (isOtherText(body, check)) {
        return check;
    }
    // What follows a zero byte is not judged.
    const std::string_view text = body.substr(0, body.find('\0'));
    Json::Value root;
    if (parse(text, root, check)) {
        checkObject(root, check);
        if (const auto invalid = reticle::findInvalidUtf8(text)) {
            add(check, "byte " + std::to_string(*invalid) + " of the body is no UTF-8",
                "send texts in UTF-8");
        }
    }
    return check;
}

}  // namespace reticlectl
