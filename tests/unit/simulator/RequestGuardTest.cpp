#include <gtest/gtest.h>

#include "simulator/web/RequestGuard.h"

namespace sim {
namespace {

HttpRequest get(const std::string& host, const std::string& path = "/events",
                const std::string& site = "same-origin") {
    return {"GET", path, {{"host", host}, {"sec-fetch-site", site}}, "", "127.0.0.1"};
}

TEST(RequestGuard, TakesLoopbackUnderAnyPort) {
    const RequestGuard guard("127.0.0.1", "secret");
    EXPECT_TRUE(guard.isForUs(get("127.0.0.1:8080")));
    EXPECT_TRUE(guard.isForUs(get("localhost:9000")));
    EXPECT_TRUE(guard.isForUs(get("localhost")));
}

TEST(RequestGuard, RefusesNamesAndOtherAddresses) {
    const RequestGuard guard("127.0.0.1", "secret");
    for (const char* host : {"", "evil.example", "evil.example:8080", "127.0.0.1.evil.example:80",
                             "192.168.1.7:8080", "localhost:80:evil.example", "0.0.0.0:8080"}) {
        EXPECT_FALSE(guard.isForUs(get(host))) << host;
        EXPECT_FALSE(guard.isForUs(get(host, "/"))) << host;
    }
    EXPECT_FALSE(guard.isForUs({"GET", "/", {}, "", "127.0.0.1"}));
}

TEST(RequestGuard, TakesTheAddressThatIsServedAsWell) {
    const RequestGuard guard("192.168.1.7", "secret");
    EXPECT_TRUE(guard.isForUs(get("192.168.1.7:8080")));
    EXPECT_TRUE(guard.isForUs(get("localhost:8080")));
    EXPECT_FALSE(guard.isForUs(get("192.168.1.8:8080")));
}

TEST(RequestGuard, TakesAnyAddressButNoNameWhereAllAreServed) {
    const RequestGuard guard("0.0.0.0", "secret");
    EXPECT_TRUE(guard.isForUs(get("192.168.1.8:8080")));
    EXPECT_FALSE(guard.isForUs(get("evil.example:8080")));
}

TEST(RequestGuard, ServesOtherPagesNothingButALinkToThePage) {
    const RequestGuard guard("127.0.0.1", "secret");
    for (const char* site : {"cross-site", "same-site"}) {
        EXPECT_FALSE(guard.isForUs(get("127.0.0.1:8080", "/events", site))) << site;
        EXPECT_FALSE(guard.isForUs(get("127.0.0.1:8080", "/picture/0", site))) << site;
        EXPECT_TRUE(guard.isForUs(get("127.0.0.1:8080", "/", site))) << site;
    }
    EXPECT_TRUE(guard.isForUs(get("127.0.0.1:8080", "/picture/0", "none")));
}

HttpRequest command(const std::string& host, const std::string& token,
                    const std::string& peer = "127.0.0.1") {
    return {"POST", "/command", {{"host", host}, {"x-rtos-sim-token", token}}, "", peer};
}

TEST(RequestGuard, KnowsThePageByItsToken) {
    const RequestGuard guard("127.0.0.1", "secret");
    EXPECT_TRUE(guard.isByThePage(command("127.0.0.1:8080", "secret")));
    EXPECT_FALSE(guard.isByThePage(command("127.0.0.1:8080", "guess")));
    EXPECT_FALSE(guard.isByThePage({"POST", "/command", {{"host", "localhost"}}, "", "127.0.0.1"}));
}

TEST(RequestGuard, TakesChangesAtThisMachineOnly) {
    const RequestGuard guard("192.168.1.7", "secret");
    EXPECT_TRUE(guard.isByThePage(command("localhost:8080", "secret")));
    EXPECT_FALSE(guard.isByThePage(command("192.168.1.7:8080", "secret")));
    // A connection to that address from where it is.
    EXPECT_TRUE(guard.isByThePage(command("localhost:8080", "secret", "192.168.1.7")));
}

TEST(RequestGuard, TakesNoChangeFromElsewhereWhateverHostItNames) {
    for (const char* address : {"0.0.0.0", "192.168.1.7"}) {
        const RequestGuard guard(address, "secret");
        for (const char* peer : {"192.168.1.8", "", "::1"}) {
            EXPECT_FALSE(guard.isByThePage(command("localhost:8080", "secret", peer))) << peer;
        }
    }
}

}  // namespace
}  // namespace sim
