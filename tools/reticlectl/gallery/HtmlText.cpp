#include "tools/reticlectl/gallery/HtmlText.h"

#include "tools/reticlectl/gallery/Base64.h"

namespace reticlectl {

std::string htmlText(std::string_view text) {
    std::string escaped;
    for (const char character : text) {
        switch (character) {
            case '&':
                escaped += "&amp;";
                break;
            case '<':
                escaped += "&lt;";
                break;
            case '>':
                escaped += "&gt;";
                break;
            case '"':
                escaped += "&quot;";
                break;
            case '\'':
                escaped += "&#39;";
                break;
            default:
                escaped += character;
        }
    }
    return escaped;
}

std::string dataUrl(std::string_view mediaType, std::string_view bytes) {
    return "data:" + std::string(mediaType) + ";base64," + base64(bytes);
}

}  // namespace reticlectl
