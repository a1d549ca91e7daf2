#include "processing/JsonText.h"

#include <json/reader.h>
#include <json/writer.h>

#include <memory>
#include <sstream>
#include <utility>

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
    static const Json::StreamWriterBuilder builder;
    const std::unique_ptr<Json::StreamWriter> writer(builder.newStreamWriter());
    // What Json::writeString does, but without the copy out of the stream.
    std::ostringstream text;
    writer->write(value, &text);
    return std::move(text).str();
}

}  // namespace reticled
