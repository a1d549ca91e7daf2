#pragma once

#include <cstddef>
#include <istream>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sim {

/// In front of each line of a step's text.
inline constexpr std::string_view INDENTATION = "    ";

/// One line of a session file with the indented text below it.
struct Step {
    std::size_t line = 0;
    std::string instruction;          ///< without the size and the coding of the text
    std::optional<std::string> text;  ///< decoded; none where there is neither a text nor a size
};

/// Reads files that are made of steps, such as
///
///     # a comment
///     rtos answers 15 bytes
///         [{"ret_val":0}]
///
/// A text is indented by four blanks and has no newline at its end. Its size, which may be left
/// out, is checked. After `, escaped` it is decoded (see EscapedText.h). Empty lines between the
/// lines of a text belong to it, others are skipped.
class StepReader {
public:
    /// \param input outlives the reader
    explicit StepReader(std::istream& input) : _input(input) {}

    /// The next step; none at the end.
    /// \throws std::runtime_error "line N: " and what is wrong: a text that belongs to no step, or
    ///         has another size than its step says, or cannot be decoded.
    [[nodiscard]] std::optional<Step> next();

    /// All steps that are left. \throws as `next`.
    [[nodiscard]] std::vector<Step> rest();

private:
    /// Lets `_line` be the next line that is no comment. \return false at the end
    [[nodiscard]] bool _readLine();
    [[nodiscard]] std::optional<std::string> _readText();

    std::istream& _input;
    std::string _line;
    std::size_t _lineNumber = 0;
    bool _isLineUnread = false;  ///< whether `_line` is still to be taken
};

}  // namespace sim
