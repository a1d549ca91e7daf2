#pragma once

#include <random>
#include <string>
#include <vector>

/// Texts to compare parsers with: JSON, nearly JSON, with comments in every place.
namespace randomJson {

/// Texts that have mattered, or could.
extern const std::vector<std::string> CORPUS;

/// Makes the same sequence of texts in every run.
class Generator {
public:
    /// The next text. Members have names that the service reads; about a third is broken somewhere.
    [[nodiscard]] std::string text();

    /// An object with the members that the service looks for, each of any kind.
    [[nodiscard]] std::string request();

private:
    [[nodiscard]] unsigned below(unsigned bound);
    [[nodiscard]] std::string value(int depth);
    [[nodiscard]] std::string list(int depth);
    [[nodiscard]] std::string object(int depth);
    [[nodiscard]] std::string member(const std::string& key, const std::string& value);
    [[nodiscard]] std::string between();
    [[nodiscard]] std::string oneOf(const std::vector<std::string>& choices);
    void breakSomewhere(std::string& text);

    std::minstd_rand _random;
};

}  // namespace randomJson
