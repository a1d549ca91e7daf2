// What JsonWriter writes is what the library would, to the byte.
#include <gtest/gtest.h>
#include <json/writer.h>

#include <cstdint>
#include <limits>
#include <random>
#include <string>

#include "processing/JsonText.h"
#include "processing/JsonWriter.h"
#include "tests/support/Text.h"
#include "tests/unit/service/RandomJson.h"

namespace reticled {
namespace {

std::string libraryText(const Json::Value& value) {
    return Json::writeString(Json::StreamWriterBuilder(), value);
}

void expectLikeLibrary(const Json::Value& value) {
    EXPECT_EQ(JsonWriter::write(value), libraryText(value));
}

Json::Value stringValue(const std::string& text) {
    return {text.data(), text.data() + text.size()};
}

Json::Value parsed(const std::string& text) {
    Json::Value value;
    EXPECT_TRUE(parseJson(text, Comments::COLLECT, value)) << text;
    return value;
}

TEST(JsonWriterTest, WritesEachKindOfScalar) {
    expectLikeLibrary(Json::nullValue);
    expectLikeLibrary(true);
    expectLikeLibrary(false);
    for (const std::int64_t number : {std::int64_t{0}, std::int64_t{-1}, std::int64_t{2147483648},
                                      std::numeric_limits<std::int64_t>::min()}) {
        expectLikeLibrary(Json::Value::Int64{number});
    }
    expectLikeLibrary(std::numeric_limits<Json::Value::UInt64>::max());
    for (const double number : {0.0, -0.0, 1.5, 0.1, 1.0 / 3, 1e300, 5e-324, 12345678901234567.0}) {
        expectLikeLibrary(number);
    }
}

TEST(JsonWriterTest, WritesEachByteAtEachPlaceOfAWord) {
    constexpr int BYTES = 256;
    for (int byte = 0; byte < BYTES; ++byte) {
        for (std::size_t place = 0; place < 18; ++place) {
            std::string text(17, 'x');
            text.insert(place, 1, static_cast<char>(byte));
            ASSERT_EQ(JsonWriter::write(stringValue(text)), libraryText(stringValue(text)))
                << "byte " << byte << " at " << place;
        }
    }
}

TEST(JsonWriterTest, WritesStringsOfEveryLengthAroundAPiece) {
    for (std::size_t length = 4060; length < 4110; ++length) {
        expectLikeLibrary(stringValue(std::string(length, 'x')));
        expectLikeLibrary(stringValue(std::string(length, '"')));
        expectLikeLibrary(stringValue(std::string(length, '\x01')));
        expectLikeLibrary(stringValue(std::string(length, 'x') + "\xC3\xA9 and on"));
    }
}

TEST(JsonWriterTest, WritesTextBeyondAsciiAndWhatIsNoUtf8) {
    for (const char* text : {"\xC3\xA9", "\xE2\x82\xAC", "\xF0\x9F\x8E\xAF", "\xC3", "\xE2\x82",
                             "\xF0\x9F\x8E", "\xC0\x80", "\xED\xA0\x80", "\xFF\"", "a\x80\"b"}) {
        expectLikeLibrary(stringValue(text));
        Json::Value named;
        named[text] = 1;
        expectLikeLibrary(named);
    }
}

TEST(JsonWriterTest, WritesEmptyAndNestedContainers) {
    for (const char* text :
         {"[]", "{}", "[[]]", "[{}]", R"({"a":[]})", R"({"a":{}})",
          R"([[1],[2,[3]],{"b":[{"c":{}}]}])", R"({"b":{"a":[1,null]},"":""})"}) {
        expectLikeLibrary(parsed(text));
    }
    Json::Value gaps;
    gaps[3] = 1;
    expectLikeLibrary(gaps);
    constexpr int DEEP = 900;
    expectLikeLibrary(parsed(repeated("[", DEEP) + repeated("]", DEEP)));
}

TEST(JsonWriterTest, WritesCommentsToo) {
    for (const char* text : {"// a\n1", "1 // a\n", "[1 /* a */, 2]", "[\n// a\n{\"b\":1 /* c */}]",
                             "{\"index\":\n/* a */ 3 // b\n}", "[1] /* end */"}) {
        expectLikeLibrary(parsed(text));
    }
}

TEST(JsonWriterTest, WritesRandomValues) {
    constexpr int TEXTS = 5000;
    randomJson::Generator generator;
    for (int i = 0; i < TEXTS; ++i) {
        Json::Value value;
        const std::string text = generator.text();
        try {
            parseJson(text, Comments::COLLECT, value);
        } catch (const Json::Exception&) {
            continue;
        }
        ASSERT_EQ(JsonWriter::write(value), libraryText(value)) << text;
    }
}

TEST(JsonWriterTest, WritesRandomBytes) {
    constexpr int TEXTS = 2000;
    std::minstd_rand random;
    for (int i = 0; i < TEXTS; ++i) {
        std::string text(random() % 100, '\0');
        const unsigned bound = i % 2 == 0 ? 128 : 256;
        for (char& byte : text) {
            byte = static_cast<char>(random() / 16 % bound);
        }
        ASSERT_EQ(JsonWriter::write(stringValue(text)), libraryText(stringValue(text)));
    }
}

}  // namespace
}  // namespace reticled
