#pragma once

#include <chrono>
#include <functional>

/// How long a test waits for what must come. Only a failing test waits this long; sanitized
/// programs on a busy machine are slow, so it is generous.
inline constexpr std::chrono::seconds PATIENCE{60};

/// Asks `holds` again and again until it is true.
///
/// \return false when it is still false after `bound`.
[[nodiscard]] bool eventually(const std::function<bool()>& holds,
                              std::chrono::milliseconds bound = PATIENCE);
