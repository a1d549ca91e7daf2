#include "tests/unit/service/RandomJson.h"

#include "tests/support/Text.h"

namespace randomJson {
namespace {

constexpr int DEEPEST = 4;

const std::vector<std::string> KEYS{"action", "index",   "indices", "reticles", "name",
                                    "data",   "ret_val", "param",   "other",    ""};
const std::vector<std::string> SCALARS{"0",
                                       "1",
                                       "-7",
                                       "2147483647",
                                       "2147483648",
                                       "-2147483649",
                                       "1.5",
                                       "1e3",
                                       "1e400",
                                       "true",
                                       "false",
                                       "null",
                                       "\"\"",
                                       "\"N\"",
                                       "\"3\"",
                                       "\"\\u00e9\"",
                                       "\"a\\u0000b\"",
                                       "\"/* no comment */\"",
                                       "\"\\n\"",
                                       "\"RETICLES_DELETE\"",
                                       "18446744073709551616"};
const std::vector<std::string> FILLERS{"",
                                       "",
                                       "",
                                       " ",
                                       "\n",
                                       "\t",
                                       "/**/",
                                       "/* a */",
                                       "// line\n",
                                       "/* \n */",
                                       "/*\r\n*/ //\r\n",
                                       "/* * / ** */"};
const std::vector<std::string> BREAKAGES{"/", "/*", "//", "*/", "\"", "{", "}",
                                         "[", "]",  ":",  ",",  "x",  "'", "\\"};

}  // namespace

const std::vector<std::string> CORPUS{
    "",
    " ",
    "{}",
    "[]",
    "null",
    "5",
    "\"text\"",
    "nonsense",
    "{\"a\":1} rest",
    "{\"a\":1}} rest",
    "[1,2",
    "[1,,2]",
    "[1,]",
    "{\"a\":1,}",
    "{a:1}",
    "{'a':1}",
    "{\"a\" 1}",
    "{1:2}",
    "\"open",
    "//",
    "/*",
    "/* open",
    "/",
    "[/]",
    "[1/]",
    "[1 /x]",
    "// c\n[1]",
    "[1] // c",
    "[1] /* c */ /* d */",
    "[1 /* same line */ /* again */, 2 // end\n]",
    "[1 /* over\n lines */ ]",
    "[/* none */]",
    "{/* none */}",
    "{/* k */\"a\"/* c */:/* v */1/* w */,/* n */\"b\":2/* e */}",
    "[1,/* a */]",
    "{\"a\":/* c */}",
    "{\"a\":1/* c */ \"b\":2}",
    "[\"\\u12\"]",
    "[\"\\ud800\"]",
    "[\"\\ud83d\\ude00\"]",
    "[\"\\q\"]",
    "[\"\x01\xFF\"]",
    std::string("[1]\0[2]", 7),
    std::string("[\0]", 3),
    std::string("\0", 1),
    "\xEF\xBB\xBF{}",
    "[1e999]",
    "[-]",
    "[+1]",
    "[0x10]",
    "[01]",
    "[1.]",
    "[.5]",
    "[NaN]",
    "[tru]",
    "[true false]",
    "{\"a\":1,\"a\":2}",
    repeated("[", 999) + repeated("]", 999),
    repeated("[", 1001),
    repeated("/**/[", 1001),
    repeated("{\"a\":", 1001),
};

std::string Generator::text() {
    std::string text = between() + value(0) + between();
    if (below(3) == 0) {
        breakSomewhere(text);
    }
    return text;
}

std::string Generator::request() {
    std::string text = "{";
    text += member("action", value(DEEPEST)) + ',';
    text += member("index", value(DEEPEST)) + ',';
    text += member("indices", list(DEEPEST - 2)) + ',';
    const std::string records = object(DEEPEST - 1) + ',' + object(DEEPEST - 1);
    text += member("reticles", '[' + records + ']');
    return text + "}";
}

unsigned Generator::below(unsigned bound) {
    return static_cast<unsigned>(_random() % bound);
}

std::string Generator::value(int depth) {
    const unsigned kind = depth == 0 ? below(2) : below(4);
    if (depth == DEEPEST || kind > 1) {
        return oneOf(SCALARS);
    }
    return kind == 0 ? list(depth) : object(depth);
}

std::string Generator::list(int depth) {
    std::string text = "[";
    text += between();
    for (unsigned i = 0, count = below(4); i < count; ++i) {
        text += i == 0 ? "" : ",";
        text += between() + value(depth + 1) + between();
    }
    return text + "]";
}

std::string Generator::object(int depth) {
    std::string text = "{";
    text += between();
    for (unsigned i = 0, count = below(5); i < count; ++i) {
        text += i == 0 ? "" : ",";
        text += member(oneOf(KEYS), value(depth + 1));
    }
    return text + "}";
}

std::string Generator::member(const std::string& key, const std::string& value) {
    return between() + '"' + key + '"' + between() + ':' + between() + value + between();
}

std::string Generator::between() {
    return oneOf(FILLERS) + oneOf(FILLERS);
}

std::string Generator::oneOf(const std::vector<std::string>& choices) {
    return choices[below(static_cast<unsigned>(choices.size()))];
}

void Generator::breakSomewhere(std::string& text) {
    const std::size_t position = below(static_cast<unsigned>(text.size()));
    if (below(2) == 0) {
        text.erase(position, 1 + below(3));
    } else {
        text.insert(position, oneOf(BREAKAGES));
    }
}

}  // namespace randomJson
