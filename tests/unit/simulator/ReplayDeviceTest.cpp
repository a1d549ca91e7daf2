#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "simulator/session/ReplayDevice.h"
#include "tests/unit/simulator/TemporaryRoot.h"

namespace sim {
namespace {

Exchange exchangeOf(const std::string& request, const std::string& answer) {
    Exchange exchange;
    exchange.request = request;
    exchange.answer.bytes = answer;
    return exchange;
}

class ReplayDeviceTest : public testing::Test {
protected:
    ReplayDeviceTest() {
        _session.exchanges = {exchangeOf("one", "1"), exchangeOf("two\nlines", "2")};
    }

    test::TemporaryRoot _root;
    Session _session;
};

TEST_F(ReplayDeviceTest, AnswersInTheSessionsOrder) {
    _session.exchanges[1].answer.end = Delivery::End::RESET;
    ReplayDevice device(_session, _root.path());
    EXPECT_EQ(device.exchange("one").bytes, "1");
    EXPECT_FALSE(device.isComplete());
    const Delivery last = device.exchange("two\nlines");
    EXPECT_EQ(last.bytes, "2");
    EXPECT_EQ(last.end, Delivery::End::RESET);
    EXPECT_TRUE(device.isComplete());
    EXPECT_EQ(device.difference(), "");
}

TEST_F(ReplayDeviceTest, WritesFilesWithTheAnswerAndNotBefore) {
    _session.exchanges[1].files = {{"lists/a.json", "[]"}, {"reticle/dot", std::string("\0", 1)}};
    ReplayDevice device(_session, _root.path());
    (void)device.exchange("one");
    EXPECT_FALSE(_root.has("lists/a.json"));
    (void)device.exchange("two\nlines");
    EXPECT_EQ(_root.read("lists/a.json"), "[]");
    EXPECT_EQ(_root.read("reticle/dot"), std::string("\0", 1));
}

TEST_F(ReplayDeviceTest, NamesTheFirstDifferenceAndEndsTheConnection) {
    ReplayDevice device(_session, _root.path());
    (void)device.exchange("one");
    const Delivery refusal = device.exchange("two\nlanes\x01");
    EXPECT_EQ(refusal.bytes, "");
    EXPECT_EQ(refusal.end, Delivery::End::CLOSE);
    const std::string difference = device.difference();
    EXPECT_EQ(difference,
              "exchange 2 (line 0 of the session): the request differs, first in its line 2\n"
              "expected: lines\ngot:      lanes\\x01   (escaped)");
    EXPECT_EQ(device.exchange("two\nlines").bytes, "");
    EXPECT_EQ(device.difference(), difference);
    EXPECT_FALSE(device.isComplete());
}

TEST_F(ReplayDeviceTest, NamesWhereARequestBreaksOff) {
    ReplayDevice device(_session, _root.path());
    (void)device.exchange("one");
    (void)device.exchange("two\n");
    EXPECT_EQ(device.difference(),
              "exchange 2 (line 0 of the session): the request differs, first in its line 2\n"
              "expected: lines\ngot:      ");
}

TEST_F(ReplayDeviceTest, WantsTheNewDataOfTheService) {
    _session.exchanges[0].newData = {{"new_reticle_data0", "mine"}};
    ReplayDevice missing(_session, _root.path());
    EXPECT_EQ(missing.exchange("one").bytes, "");
    EXPECT_EQ(missing.difference(),
              "exchange 1 (line 0 of the session): the file new_reticle_data0 is missing");
    _root.write("new_reticle_data0", "yours");
    ReplayDevice other(_session, _root.path());
    EXPECT_EQ(other.exchange("one").bytes, "");
    EXPECT_EQ(other.difference(),
              "exchange 1 (line 0 of the session): the file new_reticle_data0 differs, first in "
              "its line 1\nexpected: mine\ngot:      yours");
    _root.write("new_reticle_data0", "mine");
    ReplayDevice same(_session, _root.path());
    EXPECT_EQ(same.exchange("one").bytes, "1");
}

TEST_F(ReplayDeviceTest, TakesNothingBeyondTheSession) {
    ReplayDevice device(_session, _root.path());
    EXPECT_EQ(device.expectation(),
              "exchange 1 (line 0 of the session): the request does not come\none");
    (void)device.exchange("one");
    (void)device.exchange("two\nlines");
    (void)device.exchange("three");
    EXPECT_EQ(device.difference(), "after all 2 exchanges: a request that is not expected\nthree");
}

TEST_F(ReplayDeviceTest, SaysThatAFileCannotBeWritten) {
    _session.exchanges[0].files = {{"list.json", "[]"}};
    ReplayDevice device(_session, _root.path());
    std::filesystem::create_directory(_root.path() / "list.json.aside");
    EXPECT_EQ(device.exchange("one").bytes, "");
    EXPECT_EQ(device.difference(), "exchange 1 (line 0 of the session): cannot write " +
                                       (_root.path() / "list.json.aside").string());
}

}  // namespace
}  // namespace sim
