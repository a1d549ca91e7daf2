// The part of JsonNetBuilder that reads one reticle file and puts the user's colour in.
#include <iostream>
#include <regex>
#include <string_view>

#include "commands/JsonNetBuilder.h"
#include "reticles/FlashPaths.h"
#include "reticles/StorageFile.h"
#include "service/Log.h"

namespace reticled {
namespace {

constexpr std::string_view PLACEHOLDER = "\"user_color\"";

std::string replacePlaceholders(const std::string& text, const std::string& replacement) {
    std::string result;
    result.reserve(text.size());
    std::size_t copied = 0;
    for (std::size_t found = text.find(PLACEHOLDER); found != std::string::npos;
         found = text.find(PLACEHOLDER, copied)) {
        result.append(text, copied, found - copied).append(replacement);
        copied = found + PLACEHOLDER.size();
    }
    return result.append(text, copied);
}

}  // namespace

std::string JsonNetBuilder::_getReticleData(const std::string& fileName,
                                            const std::string& userColor) {
    const std::string path = RETICLES_DIR + fileName;
    const StorageFile file(path);
    logLine(std::cout, "_getReticleData", ": reticle file path: ", path);
    return _applyUserColor(file.readAll(), userColor);
}

std::string JsonNetBuilder::_applyUserColor(const std::string& text, const std::string& userColor) {
    const std::string replacement = '"' + userColor + '"';
    if (userColor.find('$') == std::string::npos) {
        // The same bytes as below, without what the expression costs on every byte of the text.
        return replacePlaceholders(text, replacement);
    }
    // Intended: "$&" and its like in a colour are expanded.
    return std::regex_replace(text, std::regex(std::string(PLACEHOLDER)), replacement);
}

}  // namespace reticled
