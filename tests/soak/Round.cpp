#include "tests/soak/Round.h"

#include <array>
#include <ostream>
#include <utility>

#include "tests/soak/Visitor.h"
#include "tests/support/Patience.h"
#include "tests/system/Programs.h"

namespace {

constexpr int ORDINARY_CLIENTS = 5;
constexpr int VISITORS = 4;
constexpr std::size_t MEGABYTE = std::size_t{1} << 20U;
constexpr std::size_t GIVEN_BACK_WITHIN_BYTES = 32 * MEGABYTE;
/// The service's own: main, server, worker, response. It listens before all of them run.
constexpr std::size_t OWN_THREADS = 4;
/// Every exchange before this one is good, so that the round has begun.
constexpr std::size_t FIRST_FAULT = 20;

using Pick = std::uniform_int_distribution<std::size_t>;

std::string faultAt(const std::string& kind, std::size_t exchange) {
    return kind + "@" + std::to_string(exchange);
}

template <std::size_t COUNT>
std::string anyOf(const std::array<const char*, COUNT>& kinds, std::mt19937& random) {
    return kinds.at(Pick(0, COUNT - 1)(random));
}

// Spread over more exchanges than a round has.
std::vector<std::string> harmlessFaults(std::mt19937& random) {
    constexpr std::array KINDS{"refuse:5",   "refuse:9",     "no-param", "bad-list",
                               "empty-list", "missing-file", "garbage",  "delay:200"};
    constexpr std::size_t FAULTS = 1000;
    constexpr std::size_t MOST_APART = 200;
    std::vector<std::string> faults;
    std::size_t exchange = FIRST_FAULT;
    while (faults.size() < FAULTS) {
        faults.push_back(faultAt(anyOf(KINDS, random), exchange));
        exchange += Pick(1, MOST_APART)(random);
    }
    return faults;
}

std::vector<std::string> faultsOf(Round::Kind kind, std::mt19937& random) {
    constexpr std::array LOSSES{"silent", "close", "reset"};
    constexpr std::array DISORDERS{"long", "split:300"};
    constexpr std::size_t LAST_FAULT = 500;
    const std::size_t exchange = Pick(FIRST_FAULT, LAST_FAULT)(random);
    switch (kind) {
        case Round::Kind::LINK_HOLDS:
            return harmlessFaults(random);
        case Round::Kind::LINK_IS_LOST:
            return {faultAt(anyOf(LOSSES, random), exchange)};
        case Round::Kind::LINK_IS_OUT_OF_STEP:
            break;
    }
    return {faultAt(anyOf(DISORDERS, random), exchange)};
}

std::vector<std::string> deviceOptions(Round::Kind kind, std::mt19937& random) {
    std::vector<std::string> options;
    for (const std::string& fault : faultsOf(kind, random)) {
        options.insert(options.end(), {"--fault", fault});
    }
    return options;
}

}  // namespace

Round::Round(Kind kind, std::mt19937::result_type seed)
    : _kind(kind), _random(seed), _device(deviceOptions(kind, _random)), _service(_ledger) {}

void Round::play(std::chrono::seconds duration, Balance& balance, std::ostream& out) {
    {
        // One exchange first: the link is up and everything made on first use is there.
        OrdinaryClient first(_ledger, 0, _random(), false);
        _comeToRest(first, OWN_THREADS + 1, balance);
        first.conversation().finish();
    }
    if (!eventually([&] { return _service.info().threadCount() == OWN_THREADS; })) {
        balance.complain("a thread stays when its client has left");
    }
    const Resources before = _resources();
    {
        std::list<OrdinaryClient> ordinary;
        for (int i = 0; i < ORDINARY_CLIENTS; ++i) {
            // Reticle 0 is the one that a fault of the device leaves out.
            ordinary.emplace_back(_ledger, i + 1, _random(), _kind != Kind::LINK_IS_OUT_OF_STEP);
        }
        _playClients(duration, ordinary, balance);
        _comeToRest(ordinary.front(), OWN_THREADS + ordinary.size(), balance);
        for (OrdinaryClient& client : ordinary) {
            while (client.conversation().read(std::chrono::milliseconds::zero())) {
            }
        }
    }
    _compareResources(before, balance, out);
    if (!_service.isAlive()) {
        balance.complain("the service has ended");
    }
    balance.add(_ledger.contents());
}

void Round::_playClients(std::chrono::seconds duration, std::list<OrdinaryClient>& ordinary,
                         Balance& balance) {
    std::list<Visitor> visitors;
    for (int i = 0; i < VISITORS; ++i) {
        visitors.emplace_back(_ledger, _stall, _random(), _kind == Kind::LINK_HOLDS);
    }
    std::list<std::jthread> threads;
    for (OrdinaryClient& client : ordinary) {
        threads.push_back(_start([&] { client.play(_isStopped); }, balance));
    }
    for (Visitor& visitor : visitors) {
        threads.push_back(_start([&] { visitor.play(_isStopped); }, balance));
    }
    static_cast<void>(eventually([this] { return !_service.isAlive(); }, duration));
    _isStopped = true;
}

std::jthread Round::_start(std::function<void()> play, Balance& balance) {
    return std::jthread([this, play = std::move(play), &balance] {
        try {
            play();
        } catch (const std::exception& failure) {
            const std::lock_guard lock(_balanceMutex);
            balance.complain(std::string("a client: ") + failure.what());
        }
    });
}

// All readers but those of clients that stay have ended, so all that was sent is queued or dropped.
// Queues are in order: when a request after all that is settled, so is everything.
void Round::_comeToRest(OrdinaryClient& last, std::size_t threads, Balance& balance) {
    const bool haveReadersEnded =
        eventually([&] { return _service.info().threadCount() == threads; });
    const bool isSettled = eventually([&] {
        static_cast<void>(last.conversation().ask(R"("action":"RETICLES_GET_ALL")"));
        return _ledger.isSettled(last.conversation().lastRequest());
    });
    if (!haveReadersEnded || !isSettled) {
        balance.complain("the service does not come to rest");
    }
}

void Round::_compareResources(const Resources& before, Balance& balance, std::ostream& out) {
    const bool isBack = eventually([&] {
        const Resources now = _resources();
        // A lost link has given its descriptor back.
        return now.threads == before.threads && now.descriptors <= before.descriptors &&
               (programs::HAVE_OVERHEAD ||
                now.residentBytes <= before.residentBytes + GIVEN_BACK_WITHIN_BYTES);
    });
    const Resources after = _resources();
    out << "at rest before and after: " << before.descriptors << " and " << after.descriptors
        << " descriptors, " << before.threads << " and " << after.threads << " threads, "
        << before.residentBytes / MEGABYTE << " and " << after.residentBytes / MEGABYTE
        << " MiB resident" << std::endl;
    if (!isBack) {
        balance.complain("descriptors, threads or memory are not what they were");
    }
}

Round::Resources Round::_resources() const {
    const ProcessInfo info = _service.info();
    return {info.descriptors().size(), info.threadCount(), info.residentBytes()};
}
