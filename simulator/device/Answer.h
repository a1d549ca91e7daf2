#pragma once

#include <optional>
#include <string>

namespace sim {

/// The device's own result numbers ("ret_val").
enum RetVal : int {
    OK = 0,
    RETICLE_INDEX_NOT_FOUND = 5,
    RETICLES_COUNT_OUT_OF_BOUNDS = 6,
    RETICLE_CANT_BE_DELETED = 7,
    /// Also the answer to a message that makes no sense: not JSON, parameters missing or of
    /// another type, new data that is not where the message says.
    UNKNOWN_ACTION = 8,
};

/// The longest answer that the service takes in.
constexpr std::size_t MAX_ANSWER_BYTES = 1024;

/// What the device says to one message.
struct Answer {
    int retVal = OK;
    std::optional<std::string> listFile;  ///< "param": the list file, relative to the root
    std::string reason;                   ///< of a refusal, for people; does not travel
};

/// `answer` as it travels: an array of one object on one line, at most MAX_ANSWER_BYTES long.
[[nodiscard]] std::string answerText(const Answer& answer);

}  // namespace sim
