// Input: a text. What parses is written as the library would write it.
#include <json/value.h>
#include <json/writer.h>

#include <exception>
#include <string>

#include "processing/JsonText.h"
#include "tests/fuzz/FuzzInput.h"
#include "tests/fuzz/FuzzTarget.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text = toText(data, size);
    const Json::Value string(text.data(), text.data() + text.size());
    Json::Value value;
    try {
        reticled::parseJson(text, reticled::Comments::COLLECT, value);
    } catch (const Json::Exception&) {  // NOLINT(bugprone-empty-catch): read as far as it went
    }
    for (const Json::Value& each : {value, string}) {
        require(reticled::writeJson(each) == Json::writeString(Json::StreamWriterBuilder(), each),
                "a value is written as by the library");
    }
    return 0;
}
