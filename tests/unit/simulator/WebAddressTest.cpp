#include <gtest/gtest.h>

#include <stdexcept>

#include "simulator/web/WebAddress.h"

namespace sim {
namespace {

TEST(WebAddress, IsLoopbackUnlessAnAddressIsGiven) {
    const WebAddress address = parseWebAddress("8080");
    EXPECT_EQ(address.host, "127.0.0.1");
    EXPECT_EQ(address.port, 8080);
}

TEST(WebAddress, TakesAnAddress) {
    const WebAddress address = parseWebAddress("192.168.1.7:0");
    EXPECT_EQ(address.host, "192.168.1.7");
    EXPECT_EQ(address.port, 0);
}

TEST(WebAddress, RefusesWhatIsNone) {
    for (const char* text : {"", "page", "65536", "-1", "80 ", ":80", "host:80", "1.2.3.4:",
                             "::1:80", "[::1]:80", "1.2.3:80", "127.0.0.1:80,0.0.0.0:81"}) {
        EXPECT_THROW(static_cast<void>(parseWebAddress(text)), std::invalid_argument) << text;
    }
}

}  // namespace
}  // namespace sim
