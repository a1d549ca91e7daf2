// The part of JsonNetBuilder that reads one reticle file and puts the user's colour in.
#include <cstring>
#include <iostream>
#include <string_view>

#include "base/Log.h"
#include "commands/JsonNetBuilder.h"
#include "reticles/FlashPaths.h"
#include "reticles/readStorageFile.h"

namespace reticled {
namespace {

constexpr std::string_view PLACEHOLDER = "\"user_color\"";
constexpr char ESCAPE = '$';

/// Not std::string_view's search, which stops at every quote of a drawing.
std::size_t findPlaceholder(std::string_view text) {
    if (text.empty()) {
        return std::string_view::npos;  // of a file that is missing there is not even an address
    }
    const void* const found =
        memmem(text.data(), text.size(), PLACEHOLDER.data(), PLACEHOLDER.size());
    return found != nullptr
               ? static_cast<std::size_t>(static_cast<const char*>(found) - text.data())
               : std::string_view::npos;
}

/// What stands around one placeholder.
struct Surroundings {
    std::string_view before;  ///< from the placeholder before it on
    std::string_view after;   ///< to the end of the text
};

bool isDigitAt(std::string_view text, std::size_t position) {
    return position < text.size() && text[position] >= '0' && text[position] <= '9';
}

/// Appends what a "$" and one or two digits stand for: 0 for the placeholder, others for nothing.
/// \return how many characters of `format` that is.
std::size_t appendGroup(std::string& result, std::string_view format) {
    const std::size_t length = isDigitAt(format, 2) ? 3 : 2;
    if (format.substr(1, length - 1).find_first_not_of('0') == std::string_view::npos) {
        result += PLACEHOLDER;
    }
    return length;
}

/// Appends what the escape at the start of `format` stands for.
/// \return how many characters of `format` that is.
std::size_t appendEscape(std::string& result, std::string_view format, const Surroundings& around) {
    if (isDigitAt(format, 1)) {
        return appendGroup(result, format);
    }
    switch (format.size() > 1 ? format[1] : '\0') {
        case ESCAPE:
            result += ESCAPE;
            return 2;
        case '&':
            result += PLACEHOLDER;
            return 2;
        case '`':
            result += around.before;
            return 2;
        case '\'':
            result += around.after;
            return 2;
        default:
            result += ESCAPE;
            return 1;
    }
}

void appendExpanded(std::string& result, std::string_view format, const Surroundings& around) {
    for (std::size_t escape = format.find(ESCAPE); escape != std::string_view::npos;
         escape = format.find(ESCAPE)) {
        result += format.substr(0, escape);
        format.remove_prefix(escape);
        format.remove_prefix(appendEscape(result, format, around));
    }
    result += format;
}

}  // namespace

std::string JsonNetBuilder::_getReticleData(const std::string& fileName,
                                            const std::string& userColor) {
    const std::string path = RETICLES_DIR + fileName;
    const FileContent file = readStorageFile(path);
    logLine(std::cout, "_getReticleData", ": reticle file path: ", path);
    return _applyUserColor(file.text(), userColor);
}

std::string JsonNetBuilder::_applyUserColor(std::string_view text, const std::string& userColor) {
    // Intended: "$&" and its like in a colour are expanded, as std::regex_replace would do.
    const std::string replacement = '"' + userColor + '"';
    const bool isPlain = replacement.find(ESCAPE) == std::string::npos;
    std::string result;
    // Enough for colours as short as the placeholder, such as "#rrggbb"; counting for the others would cost all.
    result.reserve(text.size());
    for (std::size_t found = findPlaceholder(text); found != std::string_view::npos;
         found = findPlaceholder(text)) {
        const std::string_view before = text.substr(0, found);
        text.remove_prefix(found + PLACEHOLDER.size());
        result += before;
        if (isPlain) {
            result += replacement;
        } else {
            appendExpanded(result, replacement, {before, text});
        }
    }
    return result += text;
}

}  // namespace reticled
