#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "simulator/device/Storage.h"
#include "tests/unit/simulator/TemporaryRoot.h"

namespace fs = std::filesystem;

namespace sim {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class StorageTest : public testing::Test {
protected:
    test::TemporaryRoot _root;
    Storage _storage{_root.path()};
    ReticleList _list = {{0, "Mine", "user-0", "red", true, false}};
};

TEST_F(StorageTest, MakesTheDirectoriesThatAreMissing) {
    const Storage deep(_root.path() / "a" / "b");
    EXPECT_TRUE(fs::is_directory(_root.path() / "a" / "b" / "reticle"));
    EXPECT_EQ(deep.load(), std::nullopt);
}

TEST_F(StorageTest, ThrowsWhereTheRootIsAFile) {
    _root.write("file", "");
    EXPECT_THROW(Storage(_root.path() / "file"), std::runtime_error);
}

TEST_F(StorageTest, HasNoListAtFirst) {
    EXPECT_EQ(_storage.load(), std::nullopt);
}

TEST_F(StorageTest, LoadsWhatItSaved) {
    _storage.save(_list);
    EXPECT_EQ(_storage.load(), _list);
    EXPECT_EQ(Storage(_root.path()).load(), _list);
}

TEST_F(StorageTest, SaysWhichFileHoldsNoList) {
    _root.write("reticle_list.json", "[{");
    try {
        (void)_storage.load();
        FAIL();
    } catch (const std::runtime_error& error) {
        EXPECT_THAT(error.what(), HasSubstr("reticle_list.json holds no reticle list: "));
        EXPECT_THAT(error.what(), HasSubstr("--reset"));
    }
}

TEST_F(StorageTest, ReplacesTheListInsteadOfWritingIntoIt) {
    _storage.save(_list);
    const std::string before = _root.read("reticle_list.json");
    fs::create_hard_link(_root.path() / "reticle_list.json", _root.path() / "old");
    _storage.save({});
    EXPECT_EQ(_root.read("old"), before);
    EXPECT_NE(_root.read("reticle_list.json"), before);
}

TEST_F(StorageTest, KeepsTheOldListWhenTheNewOneCannotBeWritten) {
    _storage.save(_list);
    fs::create_directory(_root.path() / "reticle_list.json.aside");
    EXPECT_THROW(_storage.save({}), std::runtime_error);
    EXPECT_EQ(_storage.load(), _list);
}

TEST_F(StorageTest, ReadsTheStateBesideAHalfWrittenOne) {
    _storage.save(_list);
    _root.write("reticle_list.json.aside", R"([{"reticles":[{"ind)");
    EXPECT_EQ(_storage.load(), _list);
    _storage.save({});
    EXPECT_EQ(_storage.load(), ReticleList());
}

TEST_F(StorageTest, RemovesReticleFilesOfItsOwnThatTheListDoesNotName) {
    for (const char* name :
         {"user-0", "user-1", "user-2.aside", "factory-duplex.svg", "notes.txt"}) {
        _root.write(std::string("reticle/") + name, "x");
    }
    _storage.save(_list);
    EXPECT_THAT(_root.reticleFiles(), ElementsAre("notes.txt", "user-0"));
}

TEST_F(StorageTest, SaysHowMuchRoomAListTakes) {
    _list.push_back({1, "Gone", "user-1", "red", true, false});
    _root.write("reticle/user-0", std::string(1'234, 'x'));
    _root.write("reticle/user-2", "of no reticle");
    _storage.save(_list);
    EXPECT_EQ(_storage.bytesOf(_list), 1'234 + _root.read("reticle_list.json").size());
}

TEST_F(StorageTest, TakesNewDataByteForByte) {
    const std::string data("a\r\n\"user_color\"\n\xc3\xbc\0\xff", 20);
    _root.write("new_reticle_data0", data);
    EXPECT_EQ(_storage.takeNewData("a:/new_reticle_data0", {}), "user-0");
    EXPECT_EQ(_root.read("reticle/user-0"), data);
    EXPECT_EQ(_root.read("new_reticle_data0"), data);
}

TEST_F(StorageTest, TakesAnEmptyFileAsWell) {
    _root.write("new_reticle_data0", "");
    EXPECT_EQ(_storage.takeNewData("a:/new_reticle_data0", {}), "user-0");
    EXPECT_EQ(_root.read("reticle/user-0"), "");
}

TEST_F(StorageTest, NeverTakesANameInUse) {
    _root.write("new", "new");
    _root.write("reticle/user-0", "old");
    EXPECT_EQ(_storage.takeNewData("a:/new", _list), "user-1");
    EXPECT_EQ(_root.read("reticle/user-0"), "old");
}

TEST_F(StorageTest, TakesFilesOfSubdirectoriesAndThroughLinksInside) {
    fs::create_directory(_root.path() / "sub");
    _root.write("sub/file", "deep");
    fs::create_symlink("sub/file", _root.path() / "link");
    EXPECT_EQ(_storage.takeNewData("a:/sub/file", {}), "user-0");
    EXPECT_EQ(_storage.takeNewData("a:/sub/../link", {}), "user-0");
    EXPECT_EQ(_root.read("reticle/user-0"), "deep");
}

TEST_F(StorageTest, TakesNothingFromOutsideTheRoot) {
    const test::TemporaryRoot neighbour;
    neighbour.write("secret", "s");
    const std::string absolute = (neighbour.path() / "secret").string();
    const std::string relative = "../" + neighbour.path().filename().string() + "/secret";
    ASSERT_TRUE(_root.has(relative));
    fs::create_symlink(absolute, _root.path() / "link");
    fs::create_directory_symlink(neighbour.path(), _root.path() / "directory");
    for (const std::string& name :
         std::vector<std::string>{"a:/" + relative, "a:/reticle/../" + relative, "a:/" + absolute,
                                  "a:" + absolute, "a:/link", "a:/directory/secret"}) {
        EXPECT_EQ(_storage.takeNewData(name, {}), std::nullopt) << name;
    }
    EXPECT_TRUE(_root.reticleFiles().empty());
}

TEST_F(StorageTest, TakesNothingThatIsNoFile) {
    _root.write("file", "x");
    ASSERT_EQ(mkfifo((_root.path() / "pipe").c_str(), 0600), 0);
    fs::create_symlink("loop", _root.path() / "loop");
    for (const std::string& name : std::vector<std::string>{
             "", "a:", "a:/", "a:/.", "a:/missing", "a:/reticle", "a:/pipe", "a:/loop", "file",
             "/file", "A:/file", "b:/file", "a:\\file", std::string("a:/file\0", 8),
             std::string("a:/file\0x", 9), "a:/" + std::string(5000, 'x')}) {
        EXPECT_EQ(_storage.takeNewData(name, {}), std::nullopt) << name;
    }
}

TEST_F(StorageTest, ForgetsTheListThatAnEarlierRunFaked) {
    _storage.writeFaultyList("x");
    EXPECT_EQ(_root.read("faulty_list.json"), "x");
    const Storage next(_root.path());
    EXPECT_FALSE(_root.has("faulty_list.json"));
}

TEST_F(StorageTest, ShowsTheRootWithASlash) {
    EXPECT_EQ(_storage.rootText(), _root.path().string() + "/");
    EXPECT_EQ(Storage(_root.path() / "").rootText(), _root.path().string() + "/");
}

}  // namespace
}  // namespace sim
