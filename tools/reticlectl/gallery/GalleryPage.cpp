#include "tools/reticlectl/gallery/GalleryPage.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

#include "reticle-client/UserColor.h"
#include "tools/reticlectl/gallery/GalleryStyle.h"
#include "tools/reticlectl/gallery/HtmlText.h"
#include "tools/reticlectl/gallery/NestedUses.h"
#include "tools/reticlectl/gallery/SvgPicture.h"
#include "tools/reticlectl/terminal/DisplayText.h"

namespace reticlectl {

namespace {

using reticle::Reticle;

constexpr const char* SVG_TYPE = "image/svg+xml";

constexpr const char* LOGO =
    R"(<svg viewBox="-12 -12 24 24" fill="none" stroke="currentColor" stroke-width="1.5" aria-hidden="true">)"
    R"(<circle r="8"/><path d="M-11 0H-4M4 0H11M0-11V-4M0 4V11"/>)"
    R"(<circle r="1.2" fill="currentColor" stroke="none"/></svg>)";

struct Choice {
    Background background;
    const char* id;
    const char* label;
};

constexpr std::array CHOICES{Choice{Background::LIGHT, "light", "Light"},
                             Choice{Background::DARK, "dark", "Dark"},
                             Choice{Background::GREY, "grey", "Photo grey"}};

std::string shown(std::string_view text) {
    return htmlText(printable(text));
}

/// As shown(), but with the line ends and tabs that the text has.
std::string shownLines(std::string_view text) {
    std::string lines;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find_first_of("\n\t"), text.size());
        lines += shown(text.substr(0, end));
        lines += text.substr(end, 1);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return lines;
}

std::string element(const char* open, const std::string& content, const char* close) {
    return open + content + close;
}

std::string head(const std::string& title) {
    return "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
           "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; img-src "
           "data:; "
           "style-src 'sha256-" +
           std::string(GALLERY_STYLE_HASH) +
           "'; base-uri 'none'; form-action 'none'\">\n"
           "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n<title>" +
           title + "</title>\n<style>" + GALLERY_STYLE + "</style>\n</head>\n";
}

std::string choices(Background chosen) {
    std::string inputs;
    for (const Choice& choice : CHOICES) {
        inputs += std::string(R"(<input class="choice" type="radio" name="background" id=")") +
                  choice.id + (choice.background == chosen ? "\" checked>\n" : "\">\n");
    }
    return inputs;
}

std::string backgroundSwitch() {
    std::string labels;
    for (const Choice& choice : CHOICES) {
        labels += std::string("<label for=\"") + choice.id + "\">" + choice.label + "</label>";
    }
    return element(R"(<div class="switch" role="group" aria-label="Background">)", labels,
                   "</div>\n");
}

std::string summary(const std::vector<Reticle>& reticles, const std::string& device) {
    const std::string count = std::to_string(reticles.size());
    return count + (reticles.size() == 1 ? " reticle on " : " reticles on ") + shown(device);
}

std::string header(const std::vector<Reticle>& reticles, const std::string& device) {
    return "<header>\n<div class=\"title\">" + std::string(LOGO) +
           "<div><h1>Reticles</h1><p class=\"summary\">" + summary(reticles, device) +
           "</p></div></div>\n" + backgroundSwitch() + "</header>\n";
}

std::string nameOf(const Reticle& reticle) {
    return reticle.name.empty() ? "<span class=\"unnamed\">no name</span>" : shown(reticle.name);
}

std::string image(const Reticle& reticle, const std::string& picture) {
    if (nestsUses(picture)) {
        return "<pre>not drawn: it repeats parts that repeat others</pre>";
    }
    return "<img alt=\"Picture of " + shown(reticle.name) + "\" src=\"" +
           dataUrl(SVG_TYPE, picture) + "\">";
}

std::string ground(const Reticle& reticle, const std::optional<std::string>& picture) {
    const std::string content =
        picture
            ? image(reticle, *picture)
            : "<pre>" + (reticle.data.empty() ? "no data" : shownLines(reticle.data)) + "</pre>";
    return element("<div class=\"ground\">", content, "</div>\n");
}

/// A dot of the colour. It is a picture, too: any text may stand in the place of a colour, and in a
/// picture it reaches nothing.
std::string colour(const std::string& value) {
    const std::string dot =
        R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 1 1"><rect width="1" height="1" fill=")" +
        shown(value) + "\"/></svg>";
    return R"(<span class="colour"><img alt="" src=")" + dataUrl(SVG_TYPE, dot) + "\">" +
           shown(value) + "</span>";
}

std::string fileName(const Reticle& reticle, bool isSvg) {
    return (reticle.index ? "reticle-" + std::to_string(*reticle.index) : "reticle") +
           (isSvg ? ".svg" : ".txt");
}

std::string facts(const Reticle& reticle, bool isSvg) {
    const auto value = isSvg ? reticle::userColor(reticle.data) : std::nullopt;
    const std::string size = std::to_string(reticle.data.size());
    return "<p class=\"facts\">" + (value ? colour(*value) : "") + "<span>" + size +
           (reticle.data.size() == 1 ? " byte" : " bytes") + "</span></p>\n";
}

/// The data as it came, in a type that browsers save, never show.
std::string rawDataLink(const Reticle& reticle, bool isSvg) {
    return "<a download=\"" + fileName(reticle, isSvg) + "\" href=\"" +
           dataUrl("application/octet-stream", reticle.data) + "\">Raw data</a>";
}

std::string foot(const Reticle& reticle, bool isSvg) {
    const std::string badges =
        std::string(reticle.isActive ? "<span class=\"badge active\">Active</span>" : "") +
        (reticle.isDeletable ? "<span class=\"badge\">Deletable</span>" : "");
    return element("<p class=\"foot\">", badges + rawDataLink(reticle, isSvg), "</p>\n");
}

std::string card(const Reticle& reticle) {
    const auto picture = svgPicture(reticle.data);
    const std::string index =
        reticle.index ? "Index " + std::to_string(*reticle.index) : "No index";
    return std::string(reticle.isActive ? "<article class=\"card active\">\n"
                                        : "<article class=\"card\">\n") +
           ground(reticle, picture) +
           "<div class=\"about\">\n<div class=\"head\"><h2 dir=\"auto\">" + nameOf(reticle) +
           "</h2><span class=\"index\">" + index + "</span></div>\n" +
           facts(reticle, picture.has_value()) + foot(reticle, picture.has_value()) +
           "</div>\n</article>\n";
}

std::string cards(const std::vector<Reticle>& reticles) {
    if (reticles.empty()) {
        return "<p class=\"none\">No reticles: the device’s list is empty or could not be read "
               "(the service does not tell which).</p>\n";
    }
    std::string articles;
    for (const Reticle& reticle : reticles) {
        articles += card(reticle);
    }
    return articles;
}

}  // namespace

std::string renderGallery(const std::vector<Reticle>& reticles, const std::string& device,
                          Background background) {
    return head("Reticles on " + shown(device)) + "<body>\n" + choices(background) +
           "<div class=\"page\">\n" + header(reticles, device) +
           element("<main>\n", cards(reticles), "</main>\n") + "</div>\n</body>\n</html>\n";
}

}  // namespace reticlectl
