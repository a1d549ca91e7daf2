#include "processing/JsonText.h"

#include <json/reader.h>
#include <json/writer.h>

#include <memory>
#include <sstream>
#include <utility>

namespace reticled {

bool parseJson(std::string_view text, Comments comments, Json::Value& root) {
    // One for each thread, since making one costs more than parsing a short text.
    // The library prefers its newer reader, but that one refuses texts that this one takes.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
    thread_local Json::Reader reader;
#pragma GCC diagnostic pop
    return reader.parse(text.data(), text.data() + text.size(), root,
                        comments == Comments::COLLECT);
}

std::string writeJson(const Json::Value& value) {
    // One for each thread, since making one costs more than writing a short text.
    thread_local const std::unique_ptr<Json::StreamWriter> writer(
        Json::StreamWriterBuilder().newStreamWriter());
    // What Json::writeString does, but without the copy out of the stream.
    std::ostringstream text;
    writer->write(value, &text);
    return std::move(text).str();
}

}  // namespace reticled
