#pragma once

#include <cstddef>
#include <string>
#include <vector>

/// A text that is made to cost a reader time or memory. One that is JSON is a request, so that the
/// service takes it all the way.
struct HostileText {
    /// What the service asks the RTOS for first.
    enum class Request {
        NONE,               ///< nothing: it is refused as not JSON
        LIST,               ///< the list that the client asks for
        LIST_AFTER_CHANGE,  ///< the list at the end of a change that has nothing to change
        DELETION,           ///< to delete reticle 1
        ADDITION            ///< to add the reticle "R", its data in the first data file
    };

    /// What it is made of, for messages.
    const char* kind;
    std::string text;
    Request firstRequest = Request::LIST;
};

/// One of each kind that is refused or asks for the list, each as long as fits into `bytes`, at least
/// a kilobyte.
[[nodiscard]] std::vector<HostileText> hostileTexts(std::size_t bytes);

/// The same of each kind that asks for changes, far dearer: each of their entries is work of its own.
[[nodiscard]] std::vector<HostileText> hostileChanges(std::size_t bytes);
