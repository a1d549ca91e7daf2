#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "simulator/log/ReplyFiles.h"

namespace sim {
namespace {

constexpr const char* REPLY = R"({
	"result" : "OK",
	"reticles" : 
	[
		{
			"data" : "<a fill=\"red\"/>\u00fc",
			"index" : 1.5,
			"isActive" : false,
			"isDeletable" : true,
			"name" : "A"
		},
		{
			"data" : "b",
			"index" : null,
			"isActive" : true,
			"isDeletable" : false,
			"name" : "B"
		}
	]
})";

constexpr const char* FIRST_PATH = "/tmp/FL0/reticle/a.svg";
constexpr const char* SECOND_PATH = "/tmp/FL0/reticle/b.svg";

std::vector<std::string> namesOf(const std::vector<SessionFile>& files) {
    std::vector<std::string> names;
    names.reserve(files.size());
    for (const SessionFile& file : files) {
        names.push_back(file.name);
    }
    return names;
}

using Names = std::vector<std::string>;

const Names OWN_NAMES = {"reticle/replayed-0", "reticle/replayed-1", "list.json"};

TEST(ReplyFiles, MakesTheFilesThatGiveTheReply) {
    const std::vector<SessionFile> files =
        replyFiles(REPLY, "list.json", {FIRST_PATH, SECOND_PATH});
    EXPECT_EQ(files, (std::vector<SessionFile>{{"reticle/a.svg", "<a fill=\"red\"/>\u00fc"},
                                               {"reticle/b.svg", "b"},
                                               {"list.json", R"([
    {
        "reticles" : 
        [
            {
                "data" : "a.svg",
                "index" : 1.5,
                "isActive" : false,
                "isDeletable" : true,
                "name" : "A",
                "userColor" : "user_color"
            },
            {
                "data" : "b.svg",
                "index" : null,
                "isActive" : true,
                "isDeletable" : false,
                "name" : "B",
                "userColor" : "user_color"
            }
        ]
    }
]
)"}}));
}

TEST(ReplyFiles, NamesFilesItselfWhereTheLogDoesNotTellWhichIsWhich) {
    EXPECT_EQ(namesOf(replyFiles(REPLY, "list.json", {})), OWN_NAMES);
    EXPECT_EQ(namesOf(replyFiles(REPLY, "list.json", {FIRST_PATH, FIRST_PATH})), OWN_NAMES);
    EXPECT_EQ(namesOf(replyFiles(REPLY, "list.json", {FIRST_PATH, SECOND_PATH, SECOND_PATH})),
              OWN_NAMES);
    EXPECT_EQ(namesOf(replyFiles(REPLY, "list.json", {FIRST_PATH, "/tmp/FL0/reticle/../b"})),
              OWN_NAMES);
}

TEST(ReplyFiles, MakesAnEmptyListForNoReticles) {
    EXPECT_EQ(namesOf(replyFiles(R"({"result":"OK","reticles":null})", "l", {})), Names{"l"});
}

TEST(ReplyFiles, MakesNothingWithoutAList) {
    EXPECT_TRUE(replyFiles(R"({"result":"OK"})", "l", {}).empty());
    EXPECT_TRUE(replyFiles("no reply", "l", {}).empty());
}

}  // namespace
}  // namespace sim
