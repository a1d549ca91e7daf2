#pragma once

#include <chrono>
#include <future>
#include <memory>
#include <stdexcept>
#include <type_traits>
#include <utility>

#include <asio/io_context.hpp>
#include <asio/post.hpp>

namespace sim {

/// Has `function` called on the thread that runs `io`, now or as soon as one does, and waits for it.
/// Any thread but that one.
/// \return what it returns
/// \throws what it throws; std::runtime_error when `io` has been stopped before.
template <typename Function>
std::invoke_result_t<Function> callOn(asio::io_context& io, Function function) {
    constexpr std::chrono::milliseconds GLANCE{50};
    const auto task =
        std::make_shared<std::packaged_task<std::invoke_result_t<Function>()>>(std::move(function));
    auto result = task->get_future();
    asio::post(io, [task] { (*task)(); });
    while (result.wait_for(GLANCE) != std::future_status::ready) {
        if (io.stopped()) {
            throw std::runtime_error("the simulator ends");
        }
    }
    return result.get();
}

}  // namespace sim
