#pragma once

#include <json/value.h>

#include <optional>
#include <string>
#include <vector>

/// A reply taken apart, as far as the soak's clients look at it.
class ListReply {
public:
    explicit ListReply(const std::string& reply);

    /// The "result"; empty when there is none.
    [[nodiscard]] std::string result() const { return _root["result"].asString(); }

    /// Whether the device refused, or spoilt the list: its faults, which take any reply's content.
    [[nodiscard]] bool isSpoilt() const;

    [[nodiscard]] bool hasName(const std::string& name) const { return indexOf(name).has_value(); }
    [[nodiscard]] std::optional<int> indexOf(const std::string& name) const;
    [[nodiscard]] std::string nameAt(int index) const;
    [[nodiscard]] bool isActive(int index) const;

private:
    Json::Value _root;
};
