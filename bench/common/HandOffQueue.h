#pragma once

#include <condition_variable>
#include <deque>
#include <mutex>
#include <utility>

namespace reticled::bench {

/// The plainest queue between two threads: what a hand-off costs at least. Unbounded, as the load
/// is bounded. Any thread.
template <class Element>
class HandOffQueue {
public:
    void push(Element element) {
        {
            const std::lock_guard lock(_mutex);
            _elements.push_back(std::move(element));
        }
        _filled.notify_one();
    }

    /// Blocks until there is an element.
    [[nodiscard]] Element pop() {
        std::unique_lock lock(_mutex);
        _filled.wait(lock, [this] { return !_elements.empty(); });
        Element element = std::move(_elements.front());
        _elements.pop_front();
        return element;
    }

private:
    std::mutex _mutex;
    std::condition_variable _filled;
    std::deque<Element> _elements;  ///< guarded by _mutex
};

}  // namespace reticled::bench
