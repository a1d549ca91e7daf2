// Input: a reticle file, then a user colour. Compared with the library's expression.
#include <regex>

#include "tests/fuzz/FuzzInput.h"
#include "tests/fuzz/FuzzTarget.h"
#include "tests/unit/service/peers/JsonNetBuilderTestPeer.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::regex placeholder("\"user_color\"");
    const auto parts = toParts(toText(data, size), 2);
    const std::string& text = parts[0];
    const std::string& color = parts[1];
    require(reticled::JsonNetBuilderTestPeer::applyUserColor(text, color) ==
                std::regex_replace(text, placeholder, '"' + color + '"'),
            "a colour is put in as by std::regex_replace");
    return 0;
}
