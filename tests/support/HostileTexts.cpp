#include "tests/support/HostileTexts.h"

#include <string_view>

#include "tests/support/Text.h"

namespace {

using enum HostileText::Request;

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

std::string change(std::string_view start, std::string_view piece, std::size_t bytes) {
    return fill(R"({"action":)" + std::string(start) + std::string(piece), "," + std::string(piece),
                "]}", bytes);
}

std::string deletion(std::string_view index, std::size_t bytes) {
    return change(R"("RETICLES_DELETE","indices":[)", index, bytes);
}

std::string addition(std::string_view record, std::size_t bytes) {
    return change(R"("RETICLES_ADD_OR_UPDATE","reticles":[)", record, bytes);
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
        {"nesting", request("", "[", "", bytes), NONE},
        {"nesting of objects", request("", R"({"":)", "", bytes), NONE},
        {"nesting with comments", request("", "/**/[", "", bytes), NONE},
        {"siblings nested to the limit",
         request("[", repeated("[", 900) + repeated("]", 900) + ',', "0]", bytes)},
        {"one long comment", request("1/*", "x", "*/", bytes)},
        {"comments after a value", request("1", "/**/", "", bytes)},
        {"comments in a list", request("[1", " /* x */", "]", bytes)},
        {"comments before a value", request("[", "/* x */", "1]", bytes)},
        {"comments after each value", request("[", "1 /* after it */,", "1]", bytes)},
        {"comments after the end", request("1}", "/**/", "", bytes)},
        {"line comments", request("1", "//\n", "", bytes)},
        {"comment without an end", request("1/*", "*", "", bytes), NONE},
        {"huge number", request("", "9", "", bytes), NONE},
        {"long fraction", request("0.", "3", "", bytes)},
        {"many numbers", request("[", "1e9,", "0]", bytes)},
        {"many tiny values", request("[", "0,", "0]", bytes)},
        {"many empty lists", request("[", "[],", "0]", bytes)},
        {"many members", manyMembers(bytes)},
        {"one member again and again", request("{", R"("a":0,)", R"("a":0})", bytes)},
        {"long string", request("\"", "x", "\"", bytes)},
        {"escapes", request("\"", "\\n", "\"", bytes)},
        {"code points", request("\"", "\\ud83d\\ude00", "\"", bytes)},
        {"string without an end", request("\"", "\\\"", "", bytes), NONE},
        {"errors", request("[", "x,", "0]", bytes), NONE},
        {"blanks", request("", " ", "0", bytes)},
        {"zero bytes", request("0}", std::string_view("\0", 1), "", bytes)},
    };
}

std::vector<HostileText> hostileChanges(std::size_t bytes) {
    return {
        {"many indices", deletion("1", bytes), DELETION},
        {"many wrong indices", deletion(R"("x")", bytes), LIST_AFTER_CHANGE},
        {"many records", addition(R"({"name":"R","data":""})", bytes), ADDITION},
        {"many wrong records", addition("{}", bytes), LIST_AFTER_CHANGE},
    };
}
