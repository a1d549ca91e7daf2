#include "tests/schema/Schema.h"

#include <json/json.h>

#include <sstream>
#include <stdexcept>
#include <valijson/adapters/jsoncpp_adapter.hpp>
#include <valijson/schema.hpp>
#include <valijson/schema_parser.hpp>
#include <valijson/validation_results.hpp>
#include <valijson/validator.hpp>

#include "tests/support/Text.h"
#include "tests/system/Programs.h"

namespace {

bool parse(const std::string& text, Json::Value& value, std::string& problem) {
    Json::CharReaderBuilder builder;
    Json::CharReaderBuilder::strictMode(&builder.settings_);
    std::istringstream stream(text);
    return Json::parseFromStream(builder, stream, &value, &problem);
}

// The whole schema with another root: what one action's definition says.
Json::Value narrowedTo(const std::string& action, const Json::Value& whole) {
    if (action.empty()) {
        return whole;
    }
    if (!whole["definitions"].isMember(action)) {
        throw std::runtime_error("no definition of " + action);
    }
    Json::Value narrowed;
    narrowed["allOf"][0]["$ref"] = "#/definitions/" + action;
    narrowed["definitions"] = whole["definitions"];
    return narrowed;
}

}  // namespace

struct Schema::Rules {
    valijson::Schema schema;
};

Schema::Schema(const std::string& side, const std::string& action)
    : _rules(std::make_unique<Rules>()) {
    const std::string path = programs::SOURCE_DIRECTORY + "/docs/schema/" + side + ".schema.json";
    Json::Value whole;
    std::string problem;
    if (!parse(contentOfFile(path), whole, problem)) {
        throw std::runtime_error(path + ": " + problem);
    }
    const Json::Value definition = narrowedTo(action, whole);
    valijson::SchemaParser parser(valijson::SchemaParser::kDraft7);
    parser.populateSchema(valijson::adapters::JsonCppAdapter(definition), _rules->schema);
}

Schema::~Schema() = default;

std::string Schema::complaintAbout(const std::string& text) const {
    Json::Value value;
    std::string problem;
    if (!parse(text, value, problem)) {
        return "not JSON: " + problem;
    }
    // Strict types: a number in quotes is no number.
    valijson::Validator validator(valijson::Validator::kStrongTypes);
    valijson::ValidationResults results;
    if (validator.validate(_rules->schema, valijson::adapters::JsonCppAdapter(value), &results)) {
        return {};
    }
    std::string complaint = "refused:";
    for (const valijson::ValidationResults::Error& error : results) {
        complaint += "\n" + error.description;
    }
    return complaint;
}
