#include "tools/reticlectl/gallery/GalleryPage.h"

#include <kainjow/mustache.hpp>
#include <optional>

#include "reticle-client/UserColor.h"
#include "tools/reticlectl/gallery/Base64.h"
#include "tools/reticlectl/gallery/GalleryParts.h"
#include "tools/reticlectl/gallery/Grounds.h"
#include "tools/reticlectl/gallery/NestedUses.h"
#include "tools/reticlectl/gallery/SvgPicture.h"
#include "tools/reticlectl/gallery/svgDescription.h"
#include "tools/reticlectl/terminal/DisplayText.h"

namespace reticlectl {

namespace {

// Of the values that the template names, `false` leaves out what stands on them; texts are escaped
// there, but in {{{ }}}.
using kainjow::mustache::data;
using kainjow::mustache::list;
using kainjow::mustache::mustache;
using reticle::Reticle;

constexpr const char* SVG_TYPE = "image/svg+xml";

/// A square of the colour. It is a picture: any text may stand in the place of a colour, and in a
/// picture it reaches nothing.
constexpr const char* DOT_TEMPLATE =
    R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 1 1"><rect width="1" height="1" fill="{{colour}}"/></svg>)";

data groundChoices(std::string_view chosen) {
    list all;
    for (const Ground& ground : grounds()) {
        data one;
        one.set("ground", ground.name);
        one.set("label", ground.label);
        one.set("isChosen", ground.name == chosen);
        all.push_back(std::move(one));
    }
    return all;
}

/// What stands on the ground: a picture or a text.
void setDrawing(data& card, const Reticle& reticle, const std::optional<std::string>& picture) {
    const bool isDrawn = picture && !nestsUses(*picture);
    card.set("picture", isDrawn ? data(dataUrl(SVG_TYPE, *picture)) : data(false));
    if (isDrawn) {
        card.set("text", false);
    } else if (picture) {
        card.set("text", "not drawn: it repeats parts that repeat others");
    } else {
        card.set("text", reticle.data.empty() ? "no data" : printableLines(reticle.data));
    }
}

/// As much of it as a card has room for.
void setDescription(data& card, const std::optional<std::string>& picture) {
    constexpr std::size_t LONGEST_COLUMNS = 300;
    const std::string text = picture ? svgDescription(*picture) : "";
    card.set("description",
             text.empty() ? data(false) : data(shortened(printableLines(text), LONGEST_COLUMNS)));
}

void setColour(data& card, const std::optional<std::string>& value) {
    card.set("colour", value ? data(printable(*value)) : data(false));
    if (value) {
        mustache dot(DOT_TEMPLATE);
        const auto close = groundCloseTo(*value);
        card.set("closeTo", close ? data(close->name) : data(false));
        card.set("dot", dataUrl(SVG_TYPE, dot.render({"colour", printable(*value)})));
    }
}

/// The data as it came, in a type that browsers save, never show.
void setDownload(data& card, const Reticle& reticle, bool isSvg) {
    std::string file = "reticle";
    if (reticle.index) {
        file.append("-").append(std::to_string(*reticle.index));
    }
    card.set("file", file + (isSvg ? ".svg" : ".txt"));
    card.set("data", dataUrl("application/octet-stream", reticle.data));
}

data cardOf(const Reticle& reticle) {
    const auto picture = svgPicture(reticle.data);
    data card;
    card.set("isActive", reticle.isActive);
    card.set("isDeletable", reticle.isDeletable);
    card.set("name", reticle.name.empty() ? data(false) : data(printable(reticle.name)));
    card.set("index", reticle.index ? "Index " + std::to_string(*reticle.index) : "No index");
    card.set("size", counted(reticle.data.size(), "byte"));
    setDrawing(card, reticle, picture);
    setDescription(card, picture);
    setColour(card, picture ? reticle::userColor(reticle.data) : std::nullopt);
    setDownload(card, reticle, picture.has_value());
    return card;
}

}  // namespace

std::string renderGallery(const std::vector<Reticle>& reticles, const std::string& device,
                          std::string_view ground) {
    list cards;
    for (const Reticle& reticle : reticles) {
        cards.push_back(cardOf(reticle));
    }
    data values;
    values.set("style", GALLERY_STYLE);
    values.set("styleHash", GALLERY_STYLE_HASH);
    values.set("device", printable(device));
    values.set("count", counted(reticles.size(), "reticle"));
    values.set("grounds", groundChoices(ground));
    values.set("reticles", cards);
    mustache page(GALLERY_TEMPLATE);
    return page.render(values);
}

}  // namespace reticlectl
