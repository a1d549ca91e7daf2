#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/examples/ExampleTest.h"
#include "tests/system/Programs.h"
#include "tests/system/Reticlectl.h"

namespace {

constexpr auto FACTORY = R"(* 0 Duplex
  1 Mil-Dot
  2 MOA Grid
  3 BDC 7.62 mm
  4 Circle-Dot
  5 German No. 4
  6 Mil Tree
  7 Chevron
)";
constexpr auto RING = "<svg>\r\n<!-- 1\xC2\xB0 -->\n<circle r=\"1\"/></svg>\n";

class PythonExampleTest : public ExampleTest {
protected:
    PythonExampleTest() { flash.write("home/ring.svg", RING); }

    ~PythonExampleTest() override {
        unsetenv("RETICLED_HOST");
        unsetenv("RETICLED_PORT");
    }

    static Run runExample(const std::vector<std::string>& arguments) {
        std::vector<std::string> command{
            "python3", programs::SOURCE_DIRECTORY + "/examples/python/reticles.py"};
        command.insert(command.end(), arguments.begin(), arguments.end());
        return run(command);
    }

    static std::string outputOf(const std::vector<std::string>& arguments) {
        const Run call = runExample(arguments);
        EXPECT_EQ(call.status, 0);
        EXPECT_EQ(call.error, "");
        return call.output;
    }

    const std::string ringFile = "/tmp/FL0/home/ring.svg";
};

TEST_F(PythonExampleTest, List) {
    EXPECT_EQ(outputOf({"list"}), FACTORY);
    EXPECT_EQ(outputOf({"--host", "127.0.0.1", "list"}), FACTORY);
}

TEST_F(PythonExampleTest, TheEnvironmentNamesTheDeviceWhereTheCommandLineDoesNot) {
    ASSERT_EQ(setenv("RETICLED_HOST", "192.0.2.1", 1), 0);  // nobody can be there
    ASSERT_EQ(setenv("RETICLED_PORT", "3450", 1), 0);
    EXPECT_EQ(
        runExample({"list"}).error,
        "reticles.py: cannot connect to 192.0.2.1:3450: [Errno 101] Network is unreachable\n");
    EXPECT_EQ(outputOf({"--host", "127.0.0.1", "--port", "3451", "list"}), FACTORY);
    ASSERT_EQ(setenv("RETICLED_HOST", "", 1), 0);
    ASSERT_EQ(setenv("RETICLED_PORT", "http", 1), 0);
    EXPECT_EQ(runExample({"list"}).error,
              "reticles.py: RETICLED_PORT: 'http' is not a number from 1 to 65535\n");
    EXPECT_EQ(outputOf({"--port", "3451", "list"}), FACTORY);
}

TEST_F(PythonExampleTest, EveryCommandChangesTheDevice) {
    EXPECT_EQ(outputOf({"add", "Ring 1\xC2\xB0", ringFile}),
              std::string(FACTORY) + "  8 Ring 1\xC2\xB0\n");
    EXPECT_EQ(Reticlectl::run({"show", "8"}).output, RING);
    EXPECT_EQ(outputOf({"update", "7", "My ring", ringFile}), R"(* 0 Duplex
  1 Mil-Dot
  2 MOA Grid
  3 BDC 7.62 mm
  4 Circle-Dot
  5 German No. 4
  6 Mil Tree
  7 My ring
  8 Ring 1°
)");
    EXPECT_EQ(Reticlectl::run({"show", "7"}).output, RING);
    EXPECT_EQ(outputOf({"activate", "3"}), R"(  0 Duplex
  1 Mil-Dot
  2 MOA Grid
* 3 BDC 7.62 mm
  4 Circle-Dot
  5 German No. 4
  6 Mil Tree
  7 My ring
  8 Ring 1°
)");
    EXPECT_EQ(outputOf({"delete", "8", "7"}), R"(  0 Duplex
  1 Mil-Dot
  2 MOA Grid
* 3 BDC 7.62 mm
  4 Circle-Dot
  5 German No. 4
  6 Mil Tree
)");
}

TEST_F(PythonExampleTest, ARefusalNamesItsReason) {
    const Run refused = runExample({"delete", "0"});
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.output, "");
    EXPECT_EQ(refused.error, "reticles.py: the device said no: RETICLE_CANT_BE_DELETED\n");
}

TEST_F(PythonExampleTest, WrongArgumentsGetTheUsage) {
    const std::vector<std::vector<std::string>> wrong{
        {}, {"show"}, {"list", "7"}, {"activate", "Duplex"}, {"add", "Ring"}, {"delete"}};
    for (const std::vector<std::string>& arguments : wrong) {
        SCOPED_TRACE(testing::PrintToString(arguments));
        const Run call = runExample(arguments);
        EXPECT_EQ(call.status, 2);
        EXPECT_EQ(call.output, "");
        EXPECT_TRUE(call.error.starts_with("usage: reticles.py ")) << call.error;
    }
}

TEST_F(PythonExampleTest, ServiceThatIsNotThere) {
    Sandbox::renewNetwork();
    const Run call = runExample({"list"});
    EXPECT_EQ(call.status, 1);
    EXPECT_NE(call.error.find("Connection refused"), std::string::npos) << call.error;
}

}  // namespace
