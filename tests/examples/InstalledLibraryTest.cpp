#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tests/examples/InstalledLibrary.h"
#include "tests/support/FlashFiles.h"

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

TEST_F(InstalledLibraryTest, HoldsNothingOfTheOtherComponents) {
    const std::vector<std::string> files = library.files();
    EXPECT_TRUE(std::none_of(files.begin(), files.end(), [](const std::string& file) {
        return file.starts_with("bin/") || file.starts_with("sbin/") || file.starts_with("share/");
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
