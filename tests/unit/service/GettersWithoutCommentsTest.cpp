// The getters do not collect comments, which would cost quadratic time. Here they are compared with
// the same getters told literally, comments collected.
#include <gtest/gtest.h>
#include <json/reader.h>
#include <json/value.h>

#include <exception>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "processing/JsonRetriever.h"
#include "tests/unit/service/OutputCapture.h"
#include "tests/unit/service/RandomJson.h"

namespace reticled {
namespace {

/// A getter's result, or what it throws, as text.
using Getter = std::function<std::string(const std::string& text)>;

std::string resultOf(const Getter& getter, const std::string& text) {
    try {
        return getter(text);
    } catch (const std::exception& error) {
        return std::string("throws ") + error.what();
    }
}

std::string describe(const ReticleRecord& record) {
    return std::to_string(record.index) + '|' + record.name + '|' + record.data + '\n';
}

template <class List, class Describe>
std::string describeAll(const List& list, const Describe& describeOne) {
    std::string all;
    for (const auto& element : list) {
        all += describeOne(element) + ' ';
    }
    return all;
}

std::string describeInt(int number) {
    return std::to_string(number);
}

bool parse(const std::string& text, Json::Value& root) {
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
    return Json::Reader().parse(text, root, true);
#pragma GCC diagnostic pop
}

Json::Value strictMember(const std::string& text, const char* getter, const char* key) {
    if (text.empty()) {
        throw std::runtime_error(std::string(getter) + ": json msg is empty");
    }
    Json::Value root;
    parse(text, root);
    return root[key];
}

/// The list whose elements a lenient getter reads: the root, or its member `key`.
Json::Value lenientList(const std::string& text, const char* key) {
    Json::Value root;
    try {
        if (!parse(text, root)) {
            return {};
        }
        return key == nullptr ? root : root[key];
    } catch (const std::exception&) {
        return {};
    }
}

/// Reads what can be read of each element.
void readEach(Json::Value list, const std::function<void(Json::Value&)>& read) {
    for (Json::Value& element : list) {
        try {
            read(element);
        } catch (const std::exception&) {  // NOLINT(bugprone-empty-catch): the element is left out
        }
    }
}

std::string modelOfGetVal(const std::string& text) {
    int value = -1;
    readEach(lenientList(text, nullptr),
             [&](Json::Value& element) { value = element["ret_val"].asInt(); });
    return describeInt(value);
}

std::string modelOfGetIntVector(const std::string& text) {
    std::vector<int> values;
    readEach(lenientList(text, "indices"),
             [&](Json::Value& element) { values.push_back(element.asInt()); });
    return describeAll(values, describeInt);
}

std::string modelOfGetReticleRecords(const std::string& text) {
    std::vector<ReticleRecord> records;
    readEach(lenientList(text, "reticles"), [&](Json::Value& element) {
        const std::string name = element["name"].asCString();
        const std::string data = element["data"].asCString();
        const int index = element["index"].isNull() ? -1 : element["index"].asInt();
        records.push_back({index, name, data});
    });
    return describeAll(records, describe);
}

std::string modelOfIsJson(const std::string& text) {
    try {
        Json::Value root;
        return parse(text, root) ? "yes" : "no";
    } catch (const std::exception&) {
        return "no";
    }
}

struct Comparison {
    const char* name;
    Getter model;
    Getter service;
};

const std::vector<Comparison> COMPARISONS{
    {"isJson", modelOfIsJson,
     [](const std::string& text) { return JsonRetriever::isJson(text) ? "yes" : "no"; }},
    {"getIntVal",
     [](const std::string& text) {
         return describeInt(strictMember(text, "getIntVal", "index").asInt());
     },
     [](const std::string& text) { return describeInt(JsonRetriever::getIntVal(text, INDEX)); }},
    {"getStrVal",
     [](const std::string& text) -> std::string {
         return strictMember(text, "getStrVal", "action").asCString();
     },
     [](const std::string& text) { return JsonRetriever::getStrVal(text, ACTION); }},
    {"getVal", modelOfGetVal,
     [](const std::string& text) {
         return describeInt(JsonRetriever::getVal<int>(text, RET_VAL));
     }},
    {"getIntVector", modelOfGetIntVector,
     [](const std::string& text) {
         return describeAll(JsonRetriever::getIntVector(text, INDICES), describeInt);
     }},
    {"getReticleRecords", modelOfGetReticleRecords,
     [](const std::string& text) {
         return describeAll(JsonRetriever::getReticleRecords(text, RETICLES), describe);
     }},
};

void expectSameResults(const std::string& text) {
    for (const Comparison& comparison : COMPARISONS) {
        ASSERT_EQ(resultOf(comparison.service, text), resultOf(comparison.model, text))
            << comparison.name << " of " << text;
    }
}

class GettersWithoutCommentsTest : public testing::Test {
protected:
    OutputCapture output;
};

TEST_F(GettersWithoutCommentsTest, GiveTheSameResultsForTextsThatMattered) {
    for (const std::string& text : randomJson::CORPUS) {
        expectSameResults(text);
    }
}

TEST_F(GettersWithoutCommentsTest, GiveTheSameResultsForRandomTexts) {
    constexpr int TEXTS = 5000;
    randomJson::Generator generator;
    for (int i = 0; i < TEXTS && !HasFailure(); ++i) {
        expectSameResults(generator.text());
    }
}

TEST_F(GettersWithoutCommentsTest, GiveTheSameResultsForRandomRequests) {
    constexpr int TEXTS = 5000;
    randomJson::Generator generator;
    for (int i = 0; i < TEXTS && !HasFailure(); ++i) {
        expectSameResults(generator.request());
    }
}

}  // namespace
}  // namespace reticled
