#include "simulator/session/StepReader.h"

#include <charconv>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "simulator/base/EscapedText.h"

namespace sim {

namespace {

constexpr std::string_view ESCAPED = ", escaped";
constexpr std::string_view BYTES = " bytes";
constexpr std::string_view DIGITS = "0123456789";

/// Takes `suffix` off the end of `text`. \return whether it was there
bool takeSuffix(std::string& text, std::string_view suffix) {
    if (!text.ends_with(suffix)) {
        return false;
    }
    text.resize(text.size() - suffix.size());
    return true;
}

/// Takes a size, such as " 5 bytes" or ", 5 bytes", off the end of `instruction`.
std::optional<std::size_t> takeSize(std::string& instruction) {
    std::string start = instruction;
    if (!takeSuffix(start, BYTES)) {
        return std::nullopt;
    }
    const std::size_t digits = start.find_last_not_of(DIGITS) + 1;
    std::size_t size = 0;
    const char* const end = start.data() + start.size();
    const auto [stop, error] = std::from_chars(start.data() + digits, end, size);
    if (error != std::errc{} || stop != end || digits == 0 || start[digits - 1] != ' ') {
        return std::nullopt;
    }
    start.resize(digits - 1);
    takeSuffix(start, ",");
    instruction = std::move(start);
    return size;
}

void requireSize(const std::optional<std::string>& text, std::size_t size) {
    const std::size_t actual = text ? text->size() : 0;
    if (actual != size) {
        throw std::runtime_error("the text has " + std::to_string(actual) + " bytes, not " +
                                 std::to_string(size));
    }
}

}  // namespace

std::optional<Step> StepReader::next() {
    do {
        if (!_readLine()) {
            return std::nullopt;
        }
    } while (_line.empty());
    Step step{_lineNumber, _line, std::nullopt};
    try {
        if (_line.starts_with(INDENTATION)) {
            throw std::runtime_error("this text belongs to no step");
        }
        const bool isEscaped = takeSuffix(step.instruction, ESCAPED);
        const std::optional<std::size_t> size = takeSize(step.instruction);
        step.text = _readText();
        if (isEscaped && step.text) {
            step.text = unescaped(*step.text);
        }
        if (size) {
            requireSize(step.text, *size);
            step.text = step.text.value_or("");
        }
    } catch (const std::runtime_error& error) {
        throw std::runtime_error("line " + std::to_string(step.line) + ": " + error.what());
    }
    return step;
}

std::vector<Step> StepReader::rest() {
    std::vector<Step> steps;
    while (std::optional<Step> step = next()) {
        steps.push_back(*std::move(step));
    }
    return steps;
}

bool StepReader::_readLine() {
    if (std::exchange(_isLineUnread, false)) {
        return true;
    }
    do {
        if (!std::getline(_input, _line)) {
            return false;
        }
        ++_lineNumber;
    } while (_line.starts_with('#'));
    return true;
}

std::optional<std::string> StepReader::_readText() {
    std::optional<std::string> text;
    std::size_t emptyLines = 0;
    while (_readLine()) {
        if (_line.empty()) {
            ++emptyLines;
            continue;
        }
        if (!_line.starts_with(INDENTATION)) {
            _isLineUnread = true;
            break;
        }
        if (text) {
            *text += '\n';
        } else {
            text.emplace();
        }
        text->append(std::exchange(emptyLines, 0), '\n').append(_line, INDENTATION.size());
    }
    return text;
}

}  // namespace sim
