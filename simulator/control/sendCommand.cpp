#include "simulator/control/sendCommand.h"

#include <array>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include <asio/buffer.hpp>
#include <asio/io_context.hpp>
#include <asio/local/stream_protocol.hpp>
#include <asio/read_until.hpp>
#include <asio/write.hpp>

#include "simulator/base/Files.h"
#include "simulator/base/JsonText.h"

namespace sim {

namespace {

using Socket = asio::local::stream_protocol::socket;

Socket connectTo(asio::io_context& io, const std::filesystem::path& path) {
    try {
        Socket socket(io);
        socket.connect(path.string());
        return socket;
    } catch (const std::system_error& error) {
        throw std::runtime_error("no simulator takes commands at " + path.string() + ": " +
                                 error.code().message());
    }
}

std::string dataOf(const std::string& file) {
    std::optional<std::string> data = readFile(file);
    if (!data) {
        throw std::runtime_error("cannot read " + file);
    }
    return *std::move(data);
}

void printResult(Socket& socket, std::ostream& output) {
    std::string line;
    asio::error_code error;
    asio::read_until(socket, asio::dynamic_buffer(line), '\n', error);
    if (error) {
        throw std::runtime_error("the simulator ended before it answered");
    }
    const Json::Value result = parseJson(line);
    if (result.isMember("error")) {
        throw std::runtime_error(result["error"].asString());
    }
    if (!result.empty()) {
        output << readableJson(result) << std::flush;
    }
}

void printEvents(Socket& socket, std::ostream& output) {
    constexpr std::size_t READ_BYTES = std::size_t{16} << 10U;
    std::array<char, READ_BYTES> received{};
    asio::error_code end;
    while (output && !end) {
        const std::size_t size = socket.read_some(asio::buffer(received), end);
        output << std::string_view(received.data(), size) << std::flush;
    }
}

}  // namespace

void sendCommand(const std::filesystem::path& path, Words words, std::ostream& output) {
    const bool isFollowing = formOf(words).name == EVENTS_COMMAND;
    if (words.front() == "add") {
        words.back() = dataOf(words.back());
    }
    asio::io_context io;
    Socket socket = connectTo(io, path);
    // A simulator that has not read all of it says why.
    asio::error_code ignored;
    asio::write(socket, asio::buffer(compactJson(wordsJson(words)) + '\n'), ignored);
    if (isFollowing) {
        printEvents(socket, output);
    } else {
        printResult(socket, output);
    }
    if (!output) {
        throw std::runtime_error("cannot write the output");
    }
}

}  // namespace sim
