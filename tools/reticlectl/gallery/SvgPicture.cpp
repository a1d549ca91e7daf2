#include "tools/reticlectl/gallery/SvgPicture.h"

#include <algorithm>
#include <cstddef>

namespace reticlectl {

namespace {

constexpr std::string_view XML_SPACE = " \t\r\n";
constexpr std::string_view BYTE_ORDER_MARK = "\xEF\xBB\xBF";
constexpr std::string_view ROOT = "<svg";
constexpr std::string_view NAMESPACE = R"( xmlns="http://www.w3.org/2000/svg")";

std::string_view withoutSpace(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(XML_SPACE), text.size()));
    return text;
}

/// What follows the first `end` in `text`; nothing when there is none.
std::string_view after(std::string_view text, std::string_view end) {
    const std::size_t at = text.find(end);
    return at == std::string_view::npos ? std::string_view() : text.substr(at + end.size());
}

std::string_view afterDoctype(std::string_view text) {
    const std::size_t at = text.find_first_of("[>");
    const bool hasDeclarations = at != std::string_view::npos && text[at] == '[';
    return after(hasDeclarations ? after(text, "]") : text, ">");
}

/// `text` from the tag of its root on: without XML declaration, comments and document type.
std::string_view fromRoot(std::string_view text) {
    if (text.starts_with(BYTE_ORDER_MARK)) {
        text.remove_prefix(BYTE_ORDER_MARK.size());
    }
    for (;;) {
        text = withoutSpace(text);
        if (text.starts_with("<?")) {
            text = after(text, "?>");
        } else if (text.starts_with("<!--")) {
            text = after(text, "-->");
        } else if (text.starts_with("<!DOCTYPE")) {
            text = afterDoctype(text);
        } else {
            return text;
        }
    }
}

bool isSvgRoot(std::string_view text) {
    if (!text.starts_with(ROOT) || text.size() == ROOT.size()) {
        return false;
    }
    const char next = text[ROOT.size()];
    return next == '>' || next == '/' || XML_SPACE.find(next) != std::string_view::npos;
}

/// The tag with which `text` begins; a '>' in a quoted value does not end it.
std::string_view firstTag(std::string_view text) {
    char quote = '\0';
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char character = text[at];
        if (quote != '\0') {
            quote = character == quote ? '\0' : quote;
        } else if (character == '"' || character == '\'') {
            quote = character;
        } else if (character == '>') {
            return text.substr(0, at);
        }
    }
    return text;
}

bool hasNamespace(std::string_view tag) {
    constexpr std::string_view NAME = "xmlns";
    for (std::size_t at = tag.find(NAME); at != std::string_view::npos;
         at = tag.find(NAME, at + NAME.size())) {
        const bool isWholeName = XML_SPACE.find(tag[at - 1]) != std::string_view::npos;
        if (isWholeName && withoutSpace(tag.substr(at + NAME.size())).starts_with('=')) {
            return true;
        }
    }
    return false;
}

}  // namespace

std::optional<std::string> svgPicture(std::string_view data) {
    const std::string_view root = fromRoot(data);
    if (!isSvgRoot(root)) {
        return std::nullopt;
    }
    std::string picture(data);
    if (!hasNamespace(firstTag(root))) {
        picture.insert(data.size() - root.size() + ROOT.size(), NAMESPACE);
    }
    return picture;
}

}  // namespace reticlectl
