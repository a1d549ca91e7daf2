#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <string>

#include "simulator/base/Files.h"
#include "tests/unit/simulator/TemporaryRoot.h"

namespace sim {
namespace {

TEST(Files, ReadsWhatItHasReplaced) {
    const test::TemporaryRoot root;
    const std::string text("\0\r\n\xff", 4);
    replaceFile(root.path() / "file", "before");
    replaceFile(root.path() / "file", text);
    EXPECT_EQ(readFile(root.path() / "file"), text);
    EXPECT_FALSE(root.has("file.aside"));
    replaceFile(root.path() / "file", "");
    EXPECT_EQ(readFile(root.path() / "file"), "");
}

TEST(Files, ReadsOnlyRegularFiles) {
    const test::TemporaryRoot root;
    EXPECT_EQ(readFile(root.path() / "missing"), std::nullopt);
    EXPECT_EQ(readFile(root.path()), std::nullopt);
}

TEST(Files, NamesStayInside) {
    for (const std::string name : {"a", "a/b", "..a", "a..", "./a"}) {
        EXPECT_TRUE(staysInside(name)) << name;
    }
    for (const std::string& name :
         {std::string(), std::string("/a"), std::string(".."), std::string("a/../../b"),
          std::string("a\0b", 3), std::string("a\nb")}) {
        EXPECT_FALSE(staysInside(name)) << name;
    }
}

}  // namespace
}  // namespace sim
