#pragma once

#include <json/json.h>

#include <cstddef>
#include <exception>
#include <utility>

namespace reticlectl {

/// A change of several reticles that came to an end before the last of them.
class PartialChange final : public std::exception {
public:
    /// \param items an array of what was asked for, a name or an index each.
    /// \param doneCount how many of them are done; fewer than there are.
    /// \param cause the ClientError that ended it.
    PartialChange(Json::Value items, std::size_t doneCount, std::exception_ptr cause)
        : _items(std::move(items)),
          _doneCount(static_cast<Json::ArrayIndex>(doneCount)),
          // NOLINTNEXTLINE(bugprone-throw-keyword-missing): no exception, but a pointer to one
          _cause(std::move(cause)) {}

    [[nodiscard]] Json::Value done() const { return _part(0, _doneCount); }

    /// The one that the device refused, or whose reply did not come.
    [[nodiscard]] const Json::Value& failed() const { return _items[_doneCount]; }

    [[nodiscard]] Json::Value notTried() const { return _part(_doneCount + 1, _items.size()); }

    [[nodiscard]] const std::exception_ptr& cause() const { return _cause; }

private:
    [[nodiscard]] Json::Value _part(Json::ArrayIndex from, Json::ArrayIndex end) const {
        Json::Value part(Json::arrayValue);
        for (; from < end; ++from) {
            part.append(_items[from]);
        }
        return part;
    }

    Json::Value _items;
    Json::ArrayIndex _doneCount;
    std::exception_ptr _cause;
};

}  // namespace reticlectl
