#include "simulator/log/ReplyFiles.h"

#include <json/value.h>

#include <optional>
#include <set>
#include <string_view>
#include <utility>

#include "simulator/base/EscapedText.h"
#include "simulator/base/Files.h"
#include "simulator/base/JsonText.h"
#include "simulator/base/NamedFiles.h"

namespace sim {

namespace {

constexpr std::string_view SERVICE_RETICLES = "/tmp/FL0/reticle/";
constexpr const char* OWN_NAME_START = "replayed-";
/// Between double quotes, it is the placeholder itself.
constexpr const char* PLACEHOLDER_COLOR = "user_color";

/// The names below reticle/ in `paths`; none unless each names a file there that no other names.
std::optional<std::vector<std::string>> namesOf(const std::vector<std::string>& paths) {
    std::vector<std::string> names;
    for (const std::string& path : paths) {
        if (!path.starts_with(SERVICE_RETICLES) ||
            !staysInside(path.substr(SERVICE_RETICLES.size())) || !isPlainText(path)) {
            return std::nullopt;
        }
        names.push_back(path.substr(SERVICE_RETICLES.size()));
    }
    const bool areUnique = std::set(names.begin(), names.end()).size() == names.size();
    return areUnique ? std::optional(std::move(names)) : std::nullopt;
}

std::vector<std::string> ownNames(std::size_t count) {
    std::vector<std::string> names;
    for (std::size_t number = 0; number < count; ++number) {
        names.push_back(OWN_NAME_START + std::to_string(number));
    }
    return names;
}

/// The entry of the list file for `reticle` of the reply.
Json::Value entryFor(const Json::Value& reticle, const std::string& fileName) {
    Json::Value entry = reticle;
    entry["data"] = fileName;
    entry["userColor"] = PLACEHOLDER_COLOR;
    return entry;
}

}  // namespace

std::vector<SessionFile> replyFiles(const std::string& reply, const std::string& listFile,
                                    const std::vector<std::string>& paths) {
    const std::optional<Json::Value> root = parseLeniently(reply);
    if (!root || !root->isObject() || !root->isMember("reticles")) {
        return {};
    }
    const Json::Value& reticles = (*root)["reticles"];
    const auto logged = paths.size() == reticles.size() ? namesOf(paths) : std::nullopt;
    const std::vector<std::string> names = logged ? *logged : ownNames(reticles.size());
    std::vector<SessionFile> files;
    Json::Value list(Json::arrayValue);
    list[0]["reticles"] = Json::Value(Json::arrayValue);
    for (Json::ArrayIndex number = 0; number < reticles.size(); ++number) {
        const Json::Value& reticle = reticles[number];
        files.push_back({RETICLES_DIRECTORY + names[number], reticle["data"].asString()});
        list[0]["reticles"].append(entryFor(reticle, names[number]));
    }
    files.push_back({listFile, readableJson(list)});
    return files;
}

}  // namespace sim
