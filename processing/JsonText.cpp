#include "processing/JsonText.h"

#include <json/reader.h>

#include <new>

#include "processing/JsonWriter.h"

namespace reticled {

bool parseJson(std::string_view text, Comments comments, Json::Value& root) {
    // Not one for each thread: libc ends the process where it has no memory to note that one is to be
    // destroyed with its thread. The library prefers its newer reader, but that one refuses texts that this one takes.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
    Json::Reader reader;
#pragma GCC diagnostic pop
    try {
        return reader.parse(text.data(), text.data() + text.size(), root,
                            comments == Comments::COLLECT);
    } catch (const Json::RuntimeError& error) {
        // The library tells in words alone that there is no memory for a string.
        if (std::string_view(error.what()).find("Failed to allocate") != std::string_view::npos) {
            throw std::bad_alloc();
        }
        throw;
    }
}

std::string writeJson(const Json::Value& value) {
    return JsonWriter::write(value);
}

}  // namespace reticled
