#pragma once

#include <optional>
#include <string>
#include <vector>

/// What belongs to one session of tests/replay/sessions: NAME.client, the frames to send, and
/// NAME.replies, what the client gets for each.
class Expectations {
public:
    /// \param name the session's file name without its ending
    explicit Expectations(const std::string& name);

    /// The names of all sessions, in order.
    [[nodiscard]] static std::vector<std::string> sessionNames();

    [[nodiscard]] std::string sessionPath() const { return _stem + ".session"; }

    /// The bodies of the client's frames, in order.
    /// \throws std::runtime_error when the file is missing or no such list.
    [[nodiscard]] std::vector<std::string> clientTexts() const;

    /// The bodies of the replies, none for a request without one.
    /// \throws std::runtime_error as `clientTexts`.
    [[nodiscard]] std::vector<std::optional<std::string>> replies() const;

    /// Writes NAME.client from the session, unless it is there: people may have changed it.
    void makeClientTexts() const;
    void writeReplies(const std::vector<std::optional<std::string>>& replies) const;

private:
    [[nodiscard]] std::string _clientPath() const { return _stem + ".client"; }
    [[nodiscard]] std::string _repliesPath() const { return _stem + ".replies"; }

    std::string _stem;  ///< path without an ending
};
