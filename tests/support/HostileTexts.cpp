#include "tests/support/HostileTexts.h"

#include <string_view>

#include "tests/support/Text.h"

namespace {

constexpr std::string_view REQUEST = R"({"action":"RETICLES_GET_ALL","x":)";

/// As many `pieces` as fit between `start` and `end`.
std::string fill(std::string_view start, std::string_view piece, std::string_view end,
                 std::size_t bytes) {
    const std::size_t room = bytes - start.size() - end.size();
    return std::string(start) + repeated(piece, room / piece.size()) + std::string(end);
}

std::string request(std::string_view valueStart, std::string_view piece, std::string_view valueEnd,
                    std::size_t bytes) {
    return fill(std::string(REQUEST) + std::string(valueStart), piece, std::string(valueEnd) + '}',
                bytes);
}

std::string manyMembers(std::size_t bytes) {
    std::string text(REQUEST);
    text += "0";
    for (int i = 0; text.size() + 32 < bytes; ++i) {
        text += ",\"" + std::to_string(i) + "\":0";
    }
    return text + '}';
}

}  // namespace

std::vector<HostileText> hostileTexts(std::size_t bytes) {
    return {
        {"nesting", request("", "[", "", bytes), false},
        {"nesting of objects", request("", R"({"":)", "", bytes), false},
        {"nesting with comments", request("", "/**/[", "", bytes), false},
        {"siblings nested to the limit",
         request("[", repeated("[", 900) + repeated("]", 900) + ',', "0]", bytes), true},
        {"one long comment", request("1/*", "x", "*/", bytes), true},
        {"comments after a value", request("1", "/**/", "", bytes), true},
        {"comments in a list", request("[1", " /* x */", "]", bytes), true},
        {"comments before a value", request("[", "/* x */", "1]", bytes), true},
        {"comments after each value", request("[", "1 /* after it */,", "1]", bytes), true},
        {"comments after the end", request("1}", "/**/", "", bytes), true},
        {"line comments", request("1", "//\n", "", bytes), true},
        {"comment without an end", request("1/*", "*", "", bytes), false},
        {"huge number", request("", "9", "", bytes), false},
        {"long fraction", request("0.", "3", "", bytes), true},
        {"many numbers", request("[", "1e9,", "0]", bytes), true},
        {"many tiny values", request("[", "0,", "0]", bytes), true},
        {"many empty lists", request("[", "[],", "0]", bytes), true},
        {"many members", manyMembers(bytes), true},
        {"one member again and again", request("{", R"("a":0,)", R"("a":0})", bytes), true},
        {"long string", request("\"", "x", "\"", bytes), true},
        {"escapes", request("\"", "\\n", "\"", bytes), true},
        {"code points", request("\"", "\\ud83d\\ude00", "\"", bytes), true},
        {"string without an end", request("\"", "\\\"", "", bytes), false},
        {"errors", request("[", "x,", "0]", bytes), false},
        {"blanks", request("", " ", "0", bytes), true},
        {"zero bytes", request("0}", std::string_view("\0", 1), "", bytes), true},
    };
}
