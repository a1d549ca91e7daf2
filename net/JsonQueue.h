#pragma once

#include <atomic>
#include <condition_variable>
#include <memory>
#include <utility>

#include "base/CheckedMutex.h"

namespace reticled {

/// Bounded first-in-first-out queue between threads. Producers and consumers have a lock each, so
/// that a push and a pop do not wait for each other.
///
/// Any number of producers and consumers; every operation may be called from any thread and throws
/// std::system_error when a lock fails.
template <class Element>
class JsonQueue {
public:
    /// \param capacity number of elements from which on pushes are dropped, 1 or more.
    explicit JsonQueue(const int& capacity)
        : _maxSize(capacity), _head(std::make_unique<Node>()), _tail(_head.get()) {}

    JsonQueue(const JsonQueue&) = delete;
    JsonQueue& operator=(const JsonQueue&) = delete;
    ~JsonQueue() = default;

    /// Appends `value`, or drops it without a word when the queue is full: that the caller cannot
    /// tell is intended, a client that floods the service loses requests instead of filling the service's memory.
    /// Producers that push at the same moment may pass the capacity by one element each.
    void push(std::shared_ptr<Element> value) {
        if (!_isNotFull()) {
            return;
        }
        auto dummy = std::make_unique<Node>();
        {
            const CheckedMutex::Lock tailLock(_tailMutex);
            _tail->data = std::move(value);
            _tail->next = std::move(dummy);
            _tail = _tail->next.get();
            ++_size;
        }
        // A consumer that found the queue empty still holds _headMutex until it waits. Passing
        // through the mutex puts the notification after that, so that it is never missed.
        { const CheckedMutex::Lock headLock(_headMutex); }
        _dataCond.notify_one();
    }

    /// Removes and returns the oldest element; blocks without time-out until there is one.
    [[nodiscard]] std::shared_ptr<Element> waitAndPop() {
        const std::unique_ptr<Node> oldest = _waitAndDetach();
        return std::move(oldest->data);
    }

    /// True when nothing is queued.
    [[nodiscard]] bool empty() {
        const CheckedMutex::Lock headLock(_headMutex);
        return _head.get() == _getTail();
    }

private:
    friend struct JsonQueueTestPeer;

    struct Node {
        std::shared_ptr<Element> data;
        std::unique_ptr<Node> next;
    };

    [[nodiscard]] std::unique_ptr<Node> _waitAndDetach() {
        CheckedMutex::Lock headLock(_headMutex);
        while (_head.get() == _getTail()) {
            headLock.wait(_dataCond);
        }
        std::unique_ptr<Node> oldest = std::move(_head);
        _head = std::move(oldest->next);
        --_size;
        return oldest;
    }

    [[nodiscard]] bool _isNotFull() {
        const CheckedMutex::Lock headLock(_headMutex);
        const CheckedMutex::Lock tailLock(_tailMutex);
        return _size < _maxSize;
    }

    [[nodiscard]] Node* _getTail() RETICLED_EXCLUDES(_tailMutex) {
        const CheckedMutex::Lock tailLock(_tailMutex);
        return _tail;
    }

    const int _maxSize;
    CheckedMutex _headMutex;                                      ///< consumers
    CheckedMutex _tailMutex RETICLED_ACQUIRED_AFTER(_headMutex);  ///< producers
    // The queue is empty exactly when _head is the dummy node that _tail points at.
    std::unique_ptr<Node> _head RETICLED_GUARDED_BY(_headMutex);  ///< owns the chain
    Node* _tail RETICLED_GUARDED_BY(_tailMutex);                  ///< the dummy node at the end
    std::atomic<int> _size{0};  ///< counted up under _tailMutex and down under _headMutex
    std::condition_variable _dataCond;
};

}  // namespace reticled
