#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "tests/examples/ExampleTest.h"
#include "tests/examples/InstalledLibrary.h"
#include "tests/support/Text.h"
#include "tests/system/Programs.h"

namespace {

const std::string PROJECT = programs::SOURCE_DIRECTORY + "/examples/cpp";
const std::string SOURCE = PROJECT + "/list-reticles.cpp";

constexpr auto CHEVRON_IS_ACTIVE = R"(  0 Duplex
  1 Mil-Dot
  2 MOA Grid
  3 BDC 7.62 mm
  4 Circle-Dot
  5 German No. 4
  6 Mil Tree
* 7 Chevron
)";

class CppExampleTest : public ExampleTest {
protected:
    // Both ways of building must give a program that works.
    static void expectWorks(const std::string& program) {
        const Run activated = run({program, "127.0.0.1", "7"});
        EXPECT_EQ(activated.status, 0) << activated.error;
        EXPECT_EQ(activated.output, CHEVRON_IS_ACTIVE);
        EXPECT_EQ(run({program, "127.0.0.1"}).output, CHEVRON_IS_ACTIVE);

        const Run refused = run({program, "127.0.0.1", "99"});
        EXPECT_EQ(refused.status, 1);
        EXPECT_EQ(refused.output, "");
        EXPECT_EQ(refused.error, "The device said no: RETICLE_INDEX_NOT_FOUND\n");
    }

    const InstalledLibrary library;
};

TEST_F(CppExampleTest, BuiltByCMake) {
    library.buildWithCMake(PROJECT, "/tmp/FL0/build");
    expectWorks("/tmp/FL0/build/list-reticles");
}

TEST_F(CppExampleTest, BuiltWithPkgConfig) {
    library.buildWithPkgConfig(SOURCE, "/tmp/FL0/list-reticles");
    expectWorks("/tmp/FL0/list-reticles");
}

TEST_F(CppExampleTest, WrongArgumentsGetTheUsage) {
    library.buildWithPkgConfig(SOURCE, "/tmp/FL0/list-reticles");
    for (const std::string index : {"Duplex", "7x", "99999999999", ""}) {
        const Run call = run({"/tmp/FL0/list-reticles", "127.0.0.1", index});
        EXPECT_EQ(call.status, 2) << index;
        EXPECT_TRUE(call.error.starts_with("usage: ")) << index;
    }
}

TEST_F(CppExampleTest, TheEnvironmentNamesTheDevice) {
    library.buildWithPkgConfig(SOURCE, "/tmp/FL0/list-reticles");
    const std::string program = "/tmp/FL0/list-reticles";
    EXPECT_EQ(run({"env", "RETICLED_HOST=", "RETICLED_PORT=", program}).status, 0);
    // Nobody can be there.
    const Run elsewhere = run({"env", "RETICLED_HOST=192.0.2.1", "RETICLED_PORT=3450", program});
    EXPECT_EQ(elsewhere.status, 1);
    EXPECT_NE(elsewhere.error.find("192.0.2.1:3450"), std::string::npos) << elsewhere.error;
    EXPECT_EQ(run({"env", "RETICLED_HOST=192.0.2.1", program, "127.0.0.1"}).status, 0);
    for (const std::string port : {"70000", "0", "-1", "http"}) {
        EXPECT_EQ(run({"env", "RETICLED_PORT=" + port, program}).status, 2) << port;
    }
}

TEST_F(CppExampleTest, TheDocumentsFirstProgramListsTheReticles) {
    const std::string document =
        contentOfFile(programs::SOURCE_DIRECTORY + "/docs/client-library.md");
    const std::string fence = "```cpp\n";
    const std::size_t begin = document.find(fence) + fence.size();
    const std::string program = document.substr(begin, document.find("```", begin) - begin);
    constexpr auto LONGEST = 20;
    EXPECT_LE(std::count(program.begin(), program.end(), '\n'), LONGEST);
    flash.write("home/first.cpp", program);
    library.buildWithPkgConfig("/tmp/FL0/home/first.cpp", "/tmp/FL0/home/first");
    const Run call = run({"/tmp/FL0/home/first"});
    EXPECT_EQ(call.status, 0) << call.error;
    EXPECT_TRUE(call.output.starts_with("* Duplex\n  Mil-Dot\n")) << call.output;
}

TEST_F(CppExampleTest, ServiceThatIsNotThere) {
    library.buildWithPkgConfig(SOURCE, "/tmp/FL0/list-reticles");
    // An unused network: nobody listens.
    Sandbox::renewNetwork();
    const Run call = run({"/tmp/FL0/list-reticles", "127.0.0.1"});
    EXPECT_EQ(call.status, 1);
    EXPECT_NE(call.error, "");
}

TEST_F(CppExampleTest, StaysShort) {
    constexpr auto LONGEST = 51;
    const std::string text = contentOfFile(SOURCE);
    EXPECT_FALSE(text.empty());
    EXPECT_LE(std::count(text.begin(), text.end(), '\n'), LONGEST);
}

}  // namespace
