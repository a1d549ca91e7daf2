#pragma once

#include <memory>
#include <mutex>

namespace reticled {

/// Gives `Component` the static accessor of a long-lived component: one instance per process, made
/// on first request and kept until the process ends.
///
/// A constructor that asks for the instances it needs fixes the order in which they are made, so
/// the components must not need each other in a circle.
template <class Component>
class SingleInstance {
public:
    SingleInstance(const SingleInstance&) = delete;
    SingleInstance& operator=(const SingleInstance&) = delete;

    /// Returns a new owner of the one instance, making it if this is the first request. Any thread.
    /// \throws std::system_error from std::call_once, and whatever the component's constructor
    ///         throws; the next request then tries again.
    [[nodiscard]] static std::shared_ptr<Component> getInstance() {
        std::call_once(_once, [] { _instance = std::make_shared<Component>(); });
        return _instance;
    }

protected:
    SingleInstance() = default;
    ~SingleInstance() = default;

private:
    inline static std::shared_ptr<Component> _instance;
    inline static std::once_flag _once;
};

}  // namespace reticled
