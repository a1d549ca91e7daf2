#include <gtest/gtest.h>

#include "tools/reticlectl/commands/PingStatistics.h"

namespace reticlectl {

namespace {

constexpr Milliseconds ELAPSED{2003.9};

PingStatistics threeAndALoss() {
    PingStatistics statistics;
    statistics.addAnswer(Milliseconds(1));
    statistics.addAnswer(Milliseconds(2.5));
    statistics.addLoss();
    statistics.addAnswer(Milliseconds(4));
    return statistics;
}

TEST(PingStatistics, TellsCountsAndTimes) {
    EXPECT_EQ(threeAndALoss().text("host:1", ELAPSED),
              "--- host:1 ping statistics ---\n"
              "4 requests transmitted, 3 received, 25% loss, time 2003ms\n"
              "rtt min/avg/max/mdev = 1.000/2.500/4.000/1.225 ms\n");
}

TEST(PingStatistics, TellsLongTimesInFull) {
    const std::string text = threeAndALoss().text("host:1", Milliseconds(1'234'567.8));
    EXPECT_NE(text.find("25% loss, time 1234567ms\n"), std::string::npos) << text;
}

TEST(PingStatistics, TellsTheSameAsJson) {
    EXPECT_EQ(threeAndALoss().json("host:1", ELAPSED),
              R"({"avgMs":2.5,"elapsedMs":2003.9,"lossPercent":25.0,"maxMs":4.0,"mdevMs":1.225,)"
              R"("minMs":1.0,"peer":"host:1","received":3,"roundTripsMs":[1.0,2.5,null,4.0],)"
              R"("transmitted":4})");
}

TEST(PingStatistics, HasNoTimesWithoutAnswers) {
    PingStatistics statistics;
    statistics.addLoss();
    EXPECT_EQ(statistics.text("host:1", ELAPSED),
              "--- host:1 ping statistics ---\n"
              "1 requests transmitted, 0 received, 100% loss, time 2003ms\n");
    EXPECT_EQ(statistics.json("host:1", ELAPSED),
              R"({"elapsedMs":2003.9,"lossPercent":100.0,"peer":"host:1","received":0,)"
              R"("roundTripsMs":[null],"transmitted":1})");
}

TEST(PingStatistics, IsWholeBeforeTheFirstRequest) {
    EXPECT_EQ(PingStatistics().text("host:1", Milliseconds(0)),
              "--- host:1 ping statistics ---\n"
              "0 requests transmitted, 0 received, 0% loss, time 0ms\n");
}

}  // namespace

}  // namespace reticlectl
