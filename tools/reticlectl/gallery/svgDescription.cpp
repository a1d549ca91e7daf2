#include "tools/reticlectl/gallery/svgDescription.h"

#include <pugixml.hpp>

namespace reticlectl {

std::string svgDescription(const std::string& svg) {
    pugi::xml_document document;
    if (!document.load_buffer(svg.data(), svg.size(),
                              pugi::parse_default | pugi::parse_trim_pcdata)) {
        return "";
    }
    return document.document_element().child("desc").text().get();
}

}  // namespace reticlectl
