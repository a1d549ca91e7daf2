#pragma once

#include <memory>
#include <string>

/// One definition of a schema in docs/schema/.
class Schema {
public:
    /// \param side "request" or "reply".
    /// \param action the definition's name; empty for the whole schema, which fits every action.
    /// \throws std::runtime_error when there is no such schema or it is not one.
    explicit Schema(const std::string& side, const std::string& action = {});
    Schema(const Schema&) = delete;
    Schema& operator=(const Schema&) = delete;
    ~Schema();

    /// What is wrong with a JSON text, for people; empty when the schema accepts it.
    [[nodiscard]] std::string complaintAbout(const std::string& text) const;

    [[nodiscard]] bool accepts(const std::string& text) const {
        return complaintAbout(text).empty();
    }

private:
    struct Rules;

    std::unique_ptr<Rules> _rules;
};
