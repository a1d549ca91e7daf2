#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/FrameClient.h"
#include "tests/system/Exchanges.h"
#include "tests/system/PlayedDeviceTest.h"
#include "tests/system/Reticlectl.h"

namespace {

constexpr auto FACTORY_TABLE = R"(INDEX  ACTIVE  NAME          DELETABLE  COLOUR
    0  *       Duplex        no         black
    1          Mil-Dot       no         red
    2          MOA Grid      no         #00c853
    3          BDC 7.62 mm   no         #ffb000
    4          Circle-Dot    no         red
    5          German No. 4  no         black
    6          Mil Tree      no         #00c853
    7          Chevron       yes        red
)";

constexpr auto RING = R"(<svg><circle r="1" stroke="user_color"/></svg>)";
constexpr auto RED_RING = R"(<svg><circle r="1" stroke="red"/></svg>)";
constexpr auto CROSS = "<svg>\n<!-- Kreuz 1\xC2\xB0 -->\n<path d=\"M0 0h1\"/>\n</svg>\n";

/// What users of all three programs do and see.
class StoriesTest : public PlayedDeviceTest {
protected:
    StoriesTest() {
        flash.write("home/ring.svg", RING);
        flash.write("home/cross.svg", CROSS);
    }

    // A command that is done: its table. The cross has colours of its own, which is warned of.
    static std::string tableOf(const std::vector<std::string>& arguments,
                               const std::string& input = {}) {
        const Reticlectl call = Reticlectl::run(arguments, input);
        EXPECT_EQ(call.status, Reticlectl::DONE);
        EXPECT_TRUE(call.error.empty() || call.error.starts_with("reticlectl: warning: "))
            << call.error;
        return call.table();
    }

    static void expectRefused(const std::vector<std::string>& arguments,
                              const std::string& result) {
        const Reticlectl call = Reticlectl::run(arguments);
        EXPECT_EQ(call.status, Reticlectl::REFUSED);
        EXPECT_EQ(call.output, "");
        EXPECT_NE(call.error.find(result), std::string::npos) << call.error;
    }

    const std::string ringFile = "/tmp/FL0/home/ring.svg";
    const std::string crossFile = "/tmp/FL0/home/cross.svg";
};

TEST_F(StoriesTest, DeviceIsListed) {
    EXPECT_EQ(tableOf({"list"}), FACTORY_TABLE);
}

TEST_F(StoriesTest, ListAsJsonIsTheReplyItself) {
    FrameClient client;
    client.sendFrame(exchanges::GET_ALL);
    EXPECT_EQ(Reticlectl::run({"--json", "list"}).output, client.readReply() + "\n");
}

TEST_F(StoriesTest, ReticleIsActivated) {
    const std::string expected = R"(INDEX  ACTIVE  NAME          DELETABLE  COLOUR
    0          Duplex        no         black
    1          Mil-Dot       no         red
    2          MOA Grid      no         #00c853
    3  *       BDC 7.62 mm   no         #ffb000
    4          Circle-Dot    no         red
    5          German No. 4  no         black
    6          Mil Tree      no         #00c853
    7          Chevron       yes        red
)";
    EXPECT_EQ(tableOf({"activate", "3"}), expected);
    EXPECT_EQ(tableOf({"list"}), expected);
    expectRefused({"activate", "99"}, "RETICLE_INDEX_NOT_FOUND");
    EXPECT_EQ(tableOf({"list"}), expected);
}

TEST_F(StoriesTest, ReticlesAreAdded) {
    EXPECT_EQ(tableOf({"add", "Ring", ringFile, "Kreuz 1\xC2\xB0", "-"}, CROSS),
              std::string(FACTORY_TABLE) + R"(    8          Ring          yes        red
    9          Kreuz 1°      yes        -
)");
    EXPECT_EQ(Reticlectl::run({"show", "8"}).output, RED_RING);
    EXPECT_EQ(Reticlectl::run({"show", "9"}).output, CROSS);
    EXPECT_EQ(flash.names(), std::vector<std::string>{"reticle_list.json"});
}

TEST_F(StoriesTest, AdditionEndsWhereTheDeviceIsFull) {
    startDevice({"--max-reticles", "9"});
    const Reticlectl call =
        Reticlectl::run({"add", "Ring", ringFile, "Cross", crossFile, "Spare", ringFile});
    EXPECT_EQ(call.status, Reticlectl::REFUSED);
    EXPECT_EQ(
        call.error,
        "reticlectl: refused by the device: RETICLES_COUNT_OUT_OF_BOUNDS: the device holds as "
        "many reticles as it can, or has no room for the data: delete one first\n"
        "done (1): Ring\n"
        "refused: Cross\n"
        "not tried (1): Spare\n");
    const std::string expected =
        std::string(FACTORY_TABLE) + "    8          Ring          yes        red\n";
    EXPECT_EQ(call.table(), expected);
    EXPECT_EQ(tableOf({"list"}), expected);
    EXPECT_EQ(flash.names(), std::vector<std::string>{"reticle_list.json"});
}

TEST_F(StoriesTest, ReticleIsUpdated) {
    EXPECT_EQ(tableOf({"update", "7", "Ring", ringFile}),
              R"(INDEX  ACTIVE  NAME          DELETABLE  COLOUR
    0  *       Duplex        no         black
    1          Mil-Dot       no         red
    2          MOA Grid      no         #00c853
    3          BDC 7.62 mm   no         #ffb000
    4          Circle-Dot    no         red
    5          German No. 4  no         black
    6          Mil Tree      no         #00c853
    7          Ring          yes        red
)");
    EXPECT_EQ(Reticlectl::run({"show", "7"}).output, RED_RING);
    expectRefused({"update", "8", "Ring", ringFile}, "RETICLE_INDEX_NOT_FOUND");
}

TEST_F(StoriesTest, ReticleIsDeleted) {
    const std::string expected = R"(INDEX  ACTIVE  NAME          DELETABLE  COLOUR
    0  *       Duplex        no         black
    1          Mil-Dot       no         red
    2          MOA Grid      no         #00c853
    3          BDC 7.62 mm   no         #ffb000
    4          Circle-Dot    no         red
    5          German No. 4  no         black
    6          Mil Tree      no         #00c853
)";
    EXPECT_EQ(tableOf({"delete", "7"}), expected);
    expectRefused({"delete", "7"}, "RETICLE_INDEX_NOT_FOUND");
    expectRefused({"delete", "0"}, "RETICLE_CANT_BE_DELETED");
    EXPECT_EQ(tableOf({"list"}), expected);
}

TEST_F(StoriesTest, DeletionEndsAtOneThatIsGone) {
    const Reticlectl call = Reticlectl::run({"delete", "7", "7"});
    EXPECT_EQ(call.status, Reticlectl::REFUSED);
    EXPECT_TRUE(call.error.ends_with("\ndone (1): 7\nrefused: 7\n")) << call.error;
    EXPECT_EQ(call.table(), tableOf({"list"}));
}

TEST_F(StoriesTest, EmptyFileIsNotSent) {
    flash.write("home/empty.svg", "");
    const Reticlectl call = Reticlectl::run({"add", "E", "/tmp/FL0/home/empty.svg"});
    EXPECT_EQ(call.status, Reticlectl::USAGE);
    EXPECT_NE(call.error.find("is empty"), std::string::npos) << call.error;
    EXPECT_EQ(tableOf({"add", "Ring", ringFile}),
              std::string(FACTORY_TABLE) + "    8          Ring          yes        red\n");
}

TEST_F(StoriesTest, StorageThatTheServiceMayNotWriteIsNamed) {
    // The way that the service's data files take is barred.
    flash.write("new_reticle_data0/in-the-way", "");
    const Reticlectl call = Reticlectl::run({"add", "Ring", ringFile});
    EXPECT_EQ(call.status, Reticlectl::REFUSED);
    EXPECT_NE(call.error.find("check first that the service may write to /tmp/FL0/"),
              std::string::npos)
        << call.error;
}

TEST_F(StoriesTest, ReticleIsShownAndSaved) {
    const Reticlectl shown = Reticlectl::run({"show", "1"});
    EXPECT_EQ(shown.status, Reticlectl::DONE);
    EXPECT_TRUE(shown.output.starts_with("<svg ")) << shown.output;
    EXPECT_NE(shown.output.find(R"(stroke="red")"), std::string::npos);
    EXPECT_EQ(shown.output.find("\"user_color\""), std::string::npos);
    const Reticlectl saved = Reticlectl::run({"show", "1", "--output", "/tmp/FL0/home/saved.svg"});
    EXPECT_EQ(saved.status, Reticlectl::DONE);
    EXPECT_EQ(saved.output, "");
    EXPECT_EQ(flash.read("home/saved.svg"), shown.output);
}

TEST_F(StoriesTest, ServiceThatIsNotThereIsReported) {
    service.reset();
    const Reticlectl call = Reticlectl::run({"list"});
    EXPECT_EQ(call.status, Reticlectl::CANNOT_CONNECT);
    EXPECT_EQ(call.output, "");
    EXPECT_NE(call.error, "");
}

TEST_F(StoriesTest, DeviceThatComesLaterIsServed) {
    EXPECT_EQ(simulator->stop(), 0);
    const Reticlectl call = Reticlectl::run({"--timeout", "1", "list"});
    EXPECT_EQ(call.status, Reticlectl::NO_REPLY);
    EXPECT_NE(call.error, "");
    startDevice();
    EXPECT_EQ(tableOf({"list"}), FACTORY_TABLE);
}

TEST_F(StoriesTest, DeviceGoesBackToTheFactorySet) {
    EXPECT_NE(tableOf({"add", "Ring", ringFile}), FACTORY_TABLE);
    EXPECT_NE(tableOf({"activate", "8"}), FACTORY_TABLE);
    EXPECT_EQ(simulator->stop(), 0);
    startDevice({"--reset"});
    startService();
    EXPECT_EQ(tableOf({"list"}), FACTORY_TABLE);
}

TEST_F(StoriesTest, DeviceLivesThroughAllCommandsAndARestart) {
    EXPECT_EQ(tableOf({"add", "Ring", ringFile, "Cross", crossFile, "Spare", ringFile}),
              std::string(FACTORY_TABLE) + R"(    8          Ring          yes        red
    9          Cross         yes        -
   10          Spare         yes        red
)");
    EXPECT_NE(tableOf({"activate", "8"}).find("    8  *       Ring          yes        red\n"),
              std::string::npos);
    EXPECT_NE(tableOf({"update", "8", "My cross", crossFile})
                  .find("    8  *       My cross      yes        -\n"),
              std::string::npos);
    expectRefused({"delete", "8"}, "RETICLE_CANT_BE_DELETED");
    const std::string atTheEnd = R"(INDEX  ACTIVE  NAME          DELETABLE  COLOUR
    0          Duplex        no         black
    1          Mil-Dot       no         red
    2          MOA Grid      no         #00c853
    3          BDC 7.62 mm   no         #ffb000
    4          Circle-Dot    no         red
    5          German No. 4  no         black
    6          Mil Tree      no         #00c853
    7          Chevron       yes        red
    8  *       My cross      yes        -
)";
    EXPECT_EQ(tableOf({"delete", "10", "9"}), atTheEnd);

    // The link does not outlive the device: the service is restarted with it.
    EXPECT_EQ(simulator->stop(), 0);
    startDevice();
    EXPECT_EQ(Reticlectl::run({"--timeout", "1", "list"}).status, Reticlectl::NO_REPLY);
    EXPECT_EQ(Reticlectl::run({"--timeout", "1", "list"}).status, Reticlectl::NO_REPLY);
    startService();
    EXPECT_EQ(tableOf({"list"}), atTheEnd);
    EXPECT_EQ(Reticlectl::run({"show", "8"}).output, CROSS);
}

TEST_F(StoriesTest, DeviceThatIsKilledKeepsItsReticles) {
    std::string table = FACTORY_TABLE;
    for (int i = 0; i < 3; ++i) {
        table = tableOf({"add", "Ring", ringFile});
        simulator->kill();
        startDevice();
        startService();
        EXPECT_EQ(tableOf({"list"}), table);
    }
}

}  // namespace
