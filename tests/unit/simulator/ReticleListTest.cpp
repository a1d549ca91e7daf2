#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "simulator/device/ReticleList.h"

namespace sim {
namespace {

constexpr const char* TWO_RETICLES = R"([
    {
        "reticles" : 
        [
            {
                "data" : "factory-duplex.svg",
                "index" : 0,
                "isActive" : true,
                "isDeletable" : false,
                "name" : "Duplex",
                "userColor" : "black"
            },
            {
                "data" : "user-0",
                "index" : 3,
                "isActive" : false,
                "isDeletable" : true,
                "name" : "Größe \"1\"",
                "userColor" : "#00c853"
            }
        ]
    }
]
)";

ReticleList twoReticles() {
    return {{0, "Duplex", "factory-duplex.svg", "black", false, true},
            {3, "Größe \"1\"", "user-0", "#00c853", true, false}};
}

/// A list file with one entry.
std::string listWith(const std::string& entry) {
    return R"([{"reticles":[)" + entry + "]}]";
}

constexpr const char* VALID_ENTRY =
    R"({"data":"f","index":1,"isActive":false,"isDeletable":false,"name":"n","userColor":"c"})";

TEST(ReticleList, IsWrittenAsAnArrayOfOneObject) {
    EXPECT_EQ(listText(twoReticles()), TWO_RETICLES);
}

TEST(ReticleList, IsWrittenWithAnArrayAlsoWhenEmpty) {
    EXPECT_EQ(listText({}), "[\n    {\n        \"reticles\" : []\n    }\n]\n");
}

TEST(ReticleList, IsReadBackAsWritten) {
    EXPECT_EQ(parseListText(TWO_RETICLES), twoReticles());
}

TEST(ReticleList, KeepsNamesWithZeroBytes) {
    ReticleList list = twoReticles();
    list[1].name = std::string("a\0b", 3);
    EXPECT_EQ(parseListText(listText(list)), list);
}

TEST(ReticleList, IsPutInOrderWhenRead) {
    ReticleList swapped = {twoReticles()[1], twoReticles()[0]};
    EXPECT_EQ(parseListText(listText(swapped)), twoReticles());
}

TEST(ReticleList, IsRefusedInAnotherLayout) {
    ASSERT_EQ(parseListText(listWith(VALID_ENTRY)).size(), 1U);
    for (const char* text : {"", "null", "[]", "{}", "[1]", R"({"reticles":[]})", "[{}]",
                             R"([{"reticles":{}}])", R"([{"reticles":[]},{}])"}) {
        EXPECT_THROW((void)parseListText(text), std::runtime_error) << text;
    }
}

TEST(ReticleList, IsRefusedWithAnEntryThatCannotBe) {
    const std::string valid = VALID_ENTRY;
    const auto with = [&valid](const std::string& part, const std::string& replacement) {
        std::string entry = valid;
        entry.replace(entry.find(part), part.size(), replacement);
        return listWith(entry);
    };
    std::string twice = valid;
    twice += ',' + valid;
    for (const std::string& text :
         {listWith("7"), with(R"("index":1)", R"("index":-1)"),
          with(R"("index":1)", R"("index":"1")"), with(R"("index":1,)", ""),
          with(R"("name":"n")", R"("name":1)"), with(R"("data":"f",)", ""),
          with(R"(,"userColor":"c")", ""), with(R"("isActive":false)", R"("isActive":0)"),
          with(R"("isDeletable":false,)", ""), with(R"("data":"f")", R"("data":"../f")"),
          with(R"("data":"f")", R"("data":"")"), with(R"("data":"f")", R"("data":"..")"),
          with(R"("data":"f")", R"("data":"f\u0000")"), listWith(twice)}) {
        EXPECT_THROW((void)parseListText(text), std::runtime_error) << text;
    }
}

TEST(ReticleList, NamesTheLowestFreeIndex) {
    EXPECT_EQ(lowestFreeIndex({}), 0);
    EXPECT_EQ(lowestFreeIndex({{0, "", "", "", false, false}, {1, "", "", "", false, false}}), 2);
    EXPECT_EQ(lowestFreeIndex({{0, "", "", "", false, false}, {2, "", "", "", false, false}}), 1);
    EXPECT_EQ(lowestFreeIndex({{4, "", "", "", false, false}}), 0);
}

TEST(ReticleList, FindsAReticleByItsIndex) {
    ReticleList list = twoReticles();
    EXPECT_EQ(findReticle(list, 3)->fileName, "user-0");
    EXPECT_EQ(findReticle(list, 1), list.end());
}

}  // namespace
}  // namespace sim
