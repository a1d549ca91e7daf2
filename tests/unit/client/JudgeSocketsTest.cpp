#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tools/reticlectl/doctor/judgeSockets.h"

namespace reticlectl {

namespace {

using testing::HasSubstr;

const TcpSocket SERVICE{"00000000", SERVICE_PORT, "00000000", 0, 0x0A, 0, 995, 17};
const TcpSocket RTOS{"0100007F", RTOS_PORT, "00000000", 0, 0x0A, 0, 0, 18};
const TcpSocket LINK{"0100007F", 40000, "0100007F", RTOS_PORT, 0x01, 0, 995, 19};

SocketHolders heldBy(const std::vector<SocketHolders::Process>& processes) {
    return {processes, true};
}

Finding portHeldBy(const SocketHolders::Process& process) {
    return judgeServicePort({SERVICE}, heldBy({process}), "reticled");
}

TEST(JudgeSockets, OneServiceIsWell) {
    for (const char* name : {"reticled", "reticled-foregr"}) {
        const Finding finding = portHeldBy({812, name, false});
        EXPECT_EQ(finding.verdict, Verdict::OK);
        EXPECT_EQ(finding.text, std::string(name) + " (process 812) listens, as user reticled");
        EXPECT_EQ(finding.advice, "");
    }
}

TEST(JudgeSockets, AProcessThatOnlyRootSeesIsSaidToBeSo) {
    const Finding finding = judgeServicePort({SERVICE}, {{}, false}, "reticled");
    EXPECT_EQ(finding.verdict, Verdict::OK);
    EXPECT_EQ(finding.text, "a socket of user reticled listens; only root sees whose");
    EXPECT_THAT(judgeServicePort({SERVICE}, {{}, true}, "reticled").text,
                HasSubstr("whose is not seen from here"));
}

TEST(JudgeSockets, APortThatNobodyHasIsBad) {
    const Finding finding = judgeServicePort({}, {}, "");
    EXPECT_EQ(finding.verdict, Verdict::BAD);
    EXPECT_THAT(finding.advice, HasSubstr("systemctl start reticled.service"));
}

TEST(JudgeSockets, APortThatSomebodyElseHasIsBad) {
    const Finding finding = portHeldBy({7, "nc", false});
    EXPECT_EQ(finding.verdict, Verdict::BAD);
    EXPECT_EQ(finding.text, "nc (process 7) has the port of the service");
}

TEST(JudgeSockets, TwoServicesAreBad) {
    const auto judge = [](const SocketHolders& holders) {
        return judgeServicePort({SERVICE, SERVICE}, holders, "reticled");
    };
    const Finding finding = judge(heldBy({{7, "reticled", false}, {8, "reticled", false}}));
    EXPECT_EQ(finding.verdict, Verdict::BAD);
    EXPECT_THAT(finding.text, HasSubstr("2 sockets listen, of reticled (process 7), reticled "));
    EXPECT_THAT(judge({{}, false}).text, HasSubstr("2 sockets listen, only root sees whose"));
}

TEST(JudgeSockets, AProgramThatHasBeenReplacedWantsARestart) {
    const Finding finding = portHeldBy({812, "reticled", true});
    EXPECT_EQ(finding.verdict, Verdict::LOOK);
    EXPECT_EQ(finding.advice, "restart the service");
}

TEST(JudgeSockets, AnRtosThatListensIsWell) {
    EXPECT_EQ(judgeRtosPort({SERVICE, RTOS}).verdict, Verdict::OK);
    EXPECT_THAT(judgeRtosPort({SERVICE, RTOS}).text, HasSubstr("nobody is connected"));
    EXPECT_THAT(judgeRtosPort({RTOS, LINK}).text, HasSubstr("and is connected"));
    TcpSocket elsewhere = LINK;
    elsewhere.remoteAddress = "0A00A8C0";
    EXPECT_THAT(judgeRtosPort({RTOS, elsewhere}).text, HasSubstr("nobody is connected"));
}

TEST(JudgeSockets, AnRtosThatDoesNotListenIsBad) {
    // A connection to itself, as a kernel may make it, is none to an RTOS.
    const TcpSocket itself{"0100007F", RTOS_PORT, "0100007F", RTOS_PORT, 0x01, 0, 995, 19};
    for (const auto& sockets : std::vector<std::vector<TcpSocket>>{{SERVICE}, {itself}}) {
        EXPECT_EQ(judgeRtosPort(sockets).verdict, Verdict::BAD);
        EXPECT_EQ(judgeRtosPort(sockets).text, "nobody listens on port 3425");
    }
}

TEST(JudgeSockets, AnRtosThatListensElsewhereIsBad) {
    TcpSocket elsewhere = RTOS;
    elsewhere.localAddress = "0A00A8C0";
    EXPECT_EQ(judgeRtosPort({elsewhere}).verdict, Verdict::BAD);
    EXPECT_THAT(judgeRtosPort({elsewhere}).text, HasSubstr("not at 127.0.0.1"));
    EXPECT_EQ(judgeRtosPort({elsewhere, RTOS}).verdict, Verdict::OK);
}

TEST(JudgeSockets, AnRtosThatDoesNotAcceptWantsALook) {
    TcpSocket busy = RTOS;
    busy.receiveQueue = 2;
    const Finding finding = judgeRtosPort({busy});
    EXPECT_EQ(finding.verdict, Verdict::LOOK);
    EXPECT_THAT(finding.text, HasSubstr("has not accepted 2 waiting"));
}

}  // namespace

}  // namespace reticlectl
