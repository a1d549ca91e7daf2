// bench-pieces: the service's pieces one by one, so that a slower service points at its place.
// The list conversion needs /tmp/FL0/ filled; scripts/bench does that. Log lines go to /dev/null,
// as the daemon's do, and are part of what a piece costs.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <json/value.h>
#include <unistd.h>

#include <cstdint>
#include <fstream>
#include <string>
#include <thread>

#include "commands/JsonNetBuilder.h"
#include "net/JsonQueue.h"
#include "net/Packet.h"
#include "processing/JsonRetriever.h"
#include "processing/JsonText.h"

namespace reticled {

/// The way to the private operations of the reply builder.
struct JsonNetBuilderTestPeer {
    static std::string applyUserColor(const std::string& text, const std::string& colour) {
        return JsonNetBuilder::_applyUserColor(text, colour);
    }
};

namespace {

constexpr std::int64_t KB = 1000;
constexpr std::int64_t MB = 1000 * KB;
constexpr int CAPACITY = 15;
const std::string LIST_ANSWER = R"([{"param":"list","ret_val":0}])";
const std::string LINE =
    "<line x1=\"-3.50\" y1=\"-0.5\" x2=\"-3.50\" y2=\"0.5\" stroke=\"user_color\"/>\n";

using PacketQueue = JsonQueue<Packet>;

std::string drawing(std::int64_t size) {
    std::string text;
    while (text.size() < static_cast<std::size_t>(size)) {
        text += LINE;
    }
    return text;
}

std::string addRequest(std::int64_t size) {
    Json::Value request;
    request["action"] = "RETICLES_ADD_OR_UPDATE";
    request["reticles"][0]["name"] = "New reticle";
    request["reticles"][0]["data"] = drawing(size);
    return writeJson(request);
}

void queueOneThread(benchmark::State& state) {
    PacketQueue queue(CAPACITY);
    const auto packet = std::make_shared<Packet>(1, "{}");
    while (state.KeepRunning()) {
        queue.push(packet);
        benchmark::DoNotOptimize(queue.waitAndPop());
    }
}
BENCHMARK(queueOneThread);

/// There and back between two threads: two hand-offs.
void queueTwoThreads(benchmark::State& state) {
    PacketQueue there(CAPACITY);
    PacketQueue back(CAPACITY);
    std::thread other([&] {
        while (const auto packet = there.waitAndPop()) {
            back.push(packet);
        }
    });
    const auto packet = std::make_shared<Packet>(1, "{}");
    while (state.KeepRunning()) {
        there.push(packet);
        benchmark::DoNotOptimize(back.waitAndPop());
    }
    there.push(nullptr);
    other.join();
}
BENCHMARK(queueTwoThreads)->UseRealTime();

void getPacketLength(benchmark::State& state) {
    const auto frame = JsonRetriever::buildNetPacket("{}");
    while (state.KeepRunning()) {
        benchmark::DoNotOptimize(JsonRetriever::getPacketLength(frame.data()));
    }
}
BENCHMARK(getPacketLength);

void buildNetPacket(benchmark::State& state) {
    const std::string body(static_cast<std::size_t>(state.range(0)), 'x');
    while (state.KeepRunning()) {
        benchmark::DoNotOptimize(JsonRetriever::buildNetPacket(body));
    }
}
BENCHMARK(buildNetPacket)->Arg(KB)->Arg(5 * MB);

void isJson(benchmark::State& state) {
    const std::string request = addRequest(state.range(0));
    while (state.KeepRunning()) {
        benchmark::DoNotOptimize(JsonRetriever::isJson(request));
    }
}
BENCHMARK(isJson)->Arg(KB)->Arg(MB);

void getStrVal(benchmark::State& state) {
    const std::string request = R"({"action": "RETICLE_SET_ACTIVE", "index": 0})";
    while (state.KeepRunning()) {
        benchmark::DoNotOptimize(JsonRetriever::getStrVal(request, ACTION));
    }
}
BENCHMARK(getStrVal);

void getIntVal(benchmark::State& state) {
    const std::string request = R"({"action": "RETICLE_SET_ACTIVE", "index": 0})";
    while (state.KeepRunning()) {
        benchmark::DoNotOptimize(JsonRetriever::getIntVal(request, INDEX));
    }
}
BENCHMARK(getIntVal);

void getVal(benchmark::State& state) {
    while (state.KeepRunning()) {
        benchmark::DoNotOptimize(JsonRetriever::getVal<int>(LIST_ANSWER, RET_VAL));
    }
}
BENCHMARK(getVal);

void getIntVector(benchmark::State& state) {
    const std::string request =
        R"({"action": "RETICLES_DELETE", "indices": [0, 1, 2, 3, 4, 5, 6, 7, 8, 9]})";
    while (state.KeepRunning()) {
        benchmark::DoNotOptimize(JsonRetriever::getIntVector(request, INDICES));
    }
}
BENCHMARK(getIntVector);

void getReticleRecords(benchmark::State& state) {
    const std::string request = addRequest(state.range(0));
    while (state.KeepRunning()) {
        benchmark::DoNotOptimize(JsonRetriever::getReticleRecords(request, RETICLES));
    }
}
BENCHMARK(getReticleRecords)->Arg(KB)->Arg(MB);

void applyUserColor(benchmark::State& state) {
    const std::string text = drawing(state.range(0));
    while (state.KeepRunning()) {
        benchmark::DoNotOptimize(JsonNetBuilderTestPeer::applyUserColor(text, "#00ff00"));
    }
}
BENCHMARK(applyUserColor)->Arg(KB)->Arg(100 * KB);

/// A colour whose '$' has to be looked at as an expansion.
void applyUserColorWithDollar(benchmark::State& state) {
    const std::string text = drawing(state.range(0));
    while (state.KeepRunning()) {
        benchmark::DoNotOptimize(JsonNetBuilderTestPeer::applyUserColor(text, "$$00ff00"));
    }
}
BENCHMARK(applyUserColorWithDollar)->Arg(KB);

void fillReticles(benchmark::State& state) {
    while (state.KeepRunning()) {
        JsonNetBuilder builder;
        builder.fillReticles(LIST_ANSWER);
        benchmark::DoNotOptimize(builder);
    }
}
BENCHMARK(fillReticles);

void getResponse(benchmark::State& state) {
    while (state.KeepRunning()) {
        state.PauseTiming();
        JsonNetBuilder builder;
        builder.fillReticles(LIST_ANSWER);
        state.ResumeTiming();
        benchmark::DoNotOptimize(builder.getResponse());
    }
}
BENCHMARK(getResponse);

void writeJsonSmall(benchmark::State& state) {
    Json::Value message;
    message["msg_id"] = 77;
    message["param"] = 0;
    Json::Value request;
    request.append(message);
    while (state.KeepRunning()) {
        benchmark::DoNotOptimize(writeJson(request));
    }
}
BENCHMARK(writeJsonSmall);

}  // namespace
}  // namespace reticled

int main(int count, char** arguments) {
    benchmark::Initialize(&count, arguments);
    std::ofstream terminal("/dev/stdout");
    benchmark::ConsoleReporter reporter(benchmark::ConsoleReporter::OO_None);
    reporter.SetOutputStream(&terminal);
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-vararg): open is what it is
    const int null = open("/dev/null", O_WRONLY);
    dup2(null, STDOUT_FILENO);
    dup2(null, STDERR_FILENO);
    benchmark::RunSpecifiedBenchmarks(&reporter);
}
