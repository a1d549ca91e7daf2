#include "processing/JsonText.h"

#include <json/reader.h>

#include "processing/JsonWriter.h"

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
    return JsonWriter::write(value);
}

}  // namespace reticled
