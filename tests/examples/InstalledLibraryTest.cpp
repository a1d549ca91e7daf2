#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <sstream>
#include <string>
#include <vector>

#include "tests/examples/InstalledLibrary.h"
#include "tests/support/FlashFiles.h"
#include "tests/support/Text.h"
#include "tests/system/Programs.h"

namespace {

const std::string HEADERS = "include/reticle-client/";

class InstalledLibraryTest : public testing::Test {
protected:
    [[nodiscard]] std::vector<std::string> headers() const {
        std::vector<std::string> headers;
        for (const std::string& file : library.files()) {
            if (file.starts_with(HEADERS)) {
                headers.push_back(file.substr(HEADERS.size()));
            }
        }
        return headers;
    }

    InstalledLibrary library;
};

TEST_F(InstalledLibraryTest, HasThePublicHeadersAndNoOthers) {
    EXPECT_EQ(headers(), (std::vector<std::string>{"Errors.h", "Reply.h", "Reticle.h",
                                                   "ReticleClient.h", "UserColor.h"}));
}

TEST_F(InstalledLibraryTest, EachHeaderCompilesAlone) {
    for (const std::string& header : headers()) {
        EXPECT_NO_THROW(library.compile("#include <reticle-client/" + header + ">\n")) << header;
    }
}

/// Whether a comment goes on in the next line although there was room for its first word, as a
/// layouter leaves it that breaks what it then does not fill.
bool isBroken(const std::string& line, const std::string& next) {
    constexpr std::size_t SHORT = 60;
    const std::size_t text = next.find_first_not_of("/ ");
    const bool goesOn = next.find("/// ") != std::string::npos && text != std::string::npos &&
                        std::islower(static_cast<unsigned char>(next[text])) != 0;
    return line.find("/// ") != std::string::npos && line.size() < SHORT && goesOn;
}

TEST_F(InstalledLibraryTest, NoCommentOfAHeaderIsBroken) {
    for (const std::string& header : headers()) {
        std::istringstream lines(
            contentOfFile(programs::SOURCE_DIRECTORY + "/client/reticle-client/" + header));
        std::string line;
        for (std::string next; std::getline(lines, next); line = next) {
            EXPECT_FALSE(isBroken(line, next)) << header << ": " << line << '\n' << next;
        }
    }
}

TEST_F(InstalledLibraryTest, HoldsNothingOfTheOtherComponents) {
    const std::vector<std::string> files = library.files();
    EXPECT_TRUE(std::none_of(files.begin(), files.end(), [](const std::string& file) {
        return file.starts_with("bin/") || file.starts_with("sbin/") ||
               (file.starts_with("share/") &&
                !file.starts_with("share/doc/libreticle-client-dev/"));
    }));
}

TEST_F(InstalledLibraryTest, RefusesAProjectThatNeedsAnotherMinorVersion) {
    const FlashFiles files;
    files.write("project/CMakeLists.txt",
                "cmake_minimum_required(VERSION 3.25)\n"
                "project(needs-another LANGUAGES CXX)\n"
                "find_package(reticle-client 0.0 REQUIRED)\n");
    EXPECT_THROW(library.buildWithCMake("/tmp/FL0/project", "/tmp/FL0/build"), std::runtime_error);
}

}  // namespace
