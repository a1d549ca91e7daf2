#include "processing/JsonText.h"

#include <json/reader.h>
#include <json/writer.h>

namespace reticled {

bool parseJson(std::string_view text, Comments comments, Json::Value& root) {
    // The library prefers its newer reader, but that one refuses texts that clients send today.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
    Json::Reader reader;
#pragma GCC diagnostic pop
    return reader.parse(text.data(), text.data() + text.size(), root,
                        comments == Comments::COLLECT);
}

std::string writeJson(const Json::Value& value) {
    return Json::writeString(Json::StreamWriterBuilder(), value);
}

}  // namespace reticled
