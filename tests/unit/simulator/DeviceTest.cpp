#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "simulator/base/JsonText.h"
#include "simulator/device/Device.h"
#include "simulator/device/FactoryReticles.h"
#include "simulator/device/Storage.h"
#include "tests/unit/simulator/TemporaryRoot.h"

namespace fs = std::filesystem;

namespace sim {
namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::Not;

constexpr Limits LIMITS{10, 200'000};
constexpr int CHEVRON = 7;     // the one that can be deleted
constexpr int FIRST_FREE = 8;  // after the factory set

class DeviceTest : public testing::Test {
protected:
    /// The device's "ret_val" to a request.
    int ask(const std::string& request) { return _device.answer(parseJson(request)).retVal; }

    int add(const std::string& name, const std::string& data) {
        _root.write("new_reticle_data0", data);
        return ask(R"([{"msg_id":78,"param2_name":")" + name +
                   R"(","param3_data":"a:/new_reticle_data0"}])");
    }

    int update(int index, const std::string& name, const std::string& data) {
        _root.write("new_reticle_data0", data);
        return ask(R"([{"msg_id":79,"param1_index":)" + std::to_string(index) +
                   R"(,"param2_name":")" + name + R"(","param3_data":"a:/new_reticle_data0"}])");
    }

    int activate(int index) {
        return ask(R"([{"msg_id":77,"param":)" + std::to_string(index) + "}]");
    }

    int remove(int index) {
        return ask(R"([{"msg_id":80,"param":)" + std::to_string(index) + "}]");
    }

    Reticle reticle(int index) {
        ReticleList list = _device.reticles();
        const auto found = findReticle(list, index);
        return found == list.end() ? Reticle{-1, "", "", "", false, false} : *found;
    }

    /// What the service would read.
    std::string data(int index) { return _root.read("reticle/" + reticle(index).fileName); }

    /// What a device that starts now on the same storage has.
    ReticleList afterRestart() {
        Storage storage(_root.path());
        return Device(storage, LIMITS).reticles();
    }

    test::TemporaryRoot _root;
    Storage _storage{_root.path()};
    Device _device{_storage, LIMITS};
};

TEST_F(DeviceTest, StartsWithTheFactorySet) {
    EXPECT_EQ(_device.reticles(), factoryReticles());
    EXPECT_EQ(_root.read("reticle_list.json"), listText(factoryReticles()));
    for (const auto& [name, text] : factoryReticleTexts()) {
        EXPECT_EQ(_root.read("reticle/" + name), text);
    }
}

TEST_F(DeviceTest, NamesTheListFile) {
    const Answer answer = _device.answer(parseJson(R"([{"msg_id":76,"param_get":""}])"));
    EXPECT_EQ(answer.retVal, 0);
    EXPECT_EQ(answer.listFile, "reticle_list.json");
    EXPECT_EQ(answerText(answer), R"([{"param":"reticle_list.json","ret_val":0}])");
}

TEST_F(DeviceTest, ActivatesOneReticleAndNoOther) {
    EXPECT_EQ(activate(3), 0);
    for (const Reticle& reticle : _device.reticles()) {
        EXPECT_EQ(reticle.isActive, reticle.index == 3);
    }
    EXPECT_EQ(afterRestart(), _device.reticles());
}

TEST_F(DeviceTest, ActivatesNoReticleThatIsNotThere) {
    for (const int index : {-1, 8, 1000}) {
        EXPECT_EQ(activate(index), 5) << index;
    }
    EXPECT_TRUE(reticle(0).isActive);
}

TEST_F(DeviceTest, AddsAReticleOfTheUsersOwn) {
    EXPECT_EQ(add("Mine", "<svg stroke=\\\"user_color\\\"/>"), 0);
    EXPECT_EQ(reticle(FIRST_FREE), (Reticle{8, "Mine", "user-0", "red", true, false}));
    EXPECT_EQ(data(FIRST_FREE), "<svg stroke=\\\"user_color\\\"/>");
    EXPECT_EQ(afterRestart(), _device.reticles());
}

TEST_F(DeviceTest, KeepsTheDataOfAnAdditionAfterTheServiceRemovedItsFile) {
    ASSERT_EQ(add("Mine", "mine"), 0);
    fs::remove(_root.path() / "new_reticle_data0");
    EXPECT_EQ(data(FIRST_FREE), "mine");
}

TEST_F(DeviceTest, AddsReticlesWithNamesOfAllKinds) {
    EXPECT_EQ(add("", ""), 0);
    EXPECT_EQ(add(R"(\u0000\"ü\u00fc\n)", "x"), 0);
    EXPECT_EQ(reticle(9).name, std::string("\0\"üü\n", 7));
    EXPECT_EQ(afterRestart(), _device.reticles());
}

TEST_F(DeviceTest, GivesTheLowestFreeIndex) {
    EXPECT_EQ(add("A", "a"), 0);
    EXPECT_EQ(add("B", "b"), 0);
    EXPECT_EQ(remove(CHEVRON), 0);
    EXPECT_EQ(remove(FIRST_FREE), 0);
    EXPECT_EQ(add("C", "c"), 0);
    EXPECT_EQ(reticle(CHEVRON).name, "C");
    EXPECT_EQ(add("D", "d"), 0);
    EXPECT_EQ(reticle(FIRST_FREE).name, "D");
    EXPECT_EQ(reticle(9).name, "B");
    EXPECT_EQ(data(CHEVRON) + data(FIRST_FREE) + data(9), "cdb");
    EXPECT_EQ(afterRestart(), _device.reticles());
}

TEST_F(DeviceTest, AddsNoMoreThanItHolds) {
    ASSERT_EQ(add("A", "a"), 0);
    ASSERT_EQ(add("B", "b"), 0);
    const ReticleList full = _device.reticles();
    const std::vector<std::string> files = _root.reticleFiles();
    EXPECT_EQ(add("C", "c"), 6);
    EXPECT_EQ(_device.reticles(), full);
    EXPECT_EQ(_root.reticleFiles(), files);
    EXPECT_EQ(remove(CHEVRON), 0);
    EXPECT_EQ(add("C", "c"), 0);
}

TEST_F(DeviceTest, StoresNoMoreBytesThanItHolds) {
    const std::string most(LIMITS.bytes - _storage.bytesOf(factoryReticles()), 'x');
    const std::vector<std::string> files = _root.reticleFiles();
    EXPECT_EQ(add("A", most), 6) << "its entry in the list is left out of account";
    EXPECT_EQ(add(std::string(most.size(), 'n'), ""), 6);
    EXPECT_EQ(_device.reticles(), factoryReticles());
    EXPECT_EQ(_root.reticleFiles(), files);
    EXPECT_EQ(add("A", most.substr(1'000)), 0);
    EXPECT_EQ(add("B", std::string(1'000, 'x')), 6);
    EXPECT_EQ(update(0, "B", std::string(10'000, 'x')), 6);
    EXPECT_EQ(reticle(0).name, "Duplex");
    EXPECT_EQ(update(FIRST_FREE, "A", most.substr(1'000)), 0) << "what it replaces counts no more";
    EXPECT_EQ(remove(FIRST_FREE), 0);
    EXPECT_EQ(add("B", std::string(1'000, 'x')), 0);
}

TEST_F(DeviceTest, StartsWithNoMoreThanItHolds) {
    const auto complaint = [this](const Limits& limits) {
        try {
            Device(_storage, limits);
        } catch (const std::runtime_error& error) {
            return std::string(error.what());
        }
        return std::string();
    };
    EXPECT_EQ(complaint({8, LIMITS.bytes}), "");
    EXPECT_EQ(complaint({7, LIMITS.bytes}),
              "the device holds 8 reticles, more than --max-reticles 7");
    const std::size_t held = _storage.bytesOf(factoryReticles());
    EXPECT_EQ(complaint({8, held}), "");
    EXPECT_EQ(complaint({8, held - 1}), "the device holds " + std::to_string(held) +
                                            " bytes, more than --max-bytes " +
                                            std::to_string(held - 1));
}

TEST_F(DeviceTest, UpdatesNameAndDataAndNothingElse) {
    EXPECT_EQ(update(2, "Grid", "grid"), 0);
    EXPECT_EQ(reticle(2), (Reticle{2, "Grid", "user-0", "#00c853", false, false}));
    EXPECT_EQ(data(2), "grid");
    EXPECT_THAT(_root.reticleFiles(), Not(Contains("factory-moa-grid.svg")));
    EXPECT_EQ(afterRestart(), _device.reticles());
}

TEST_F(DeviceTest, UpdatesTheActiveReticle) {
    EXPECT_EQ(update(0, "Cross", "cross"), 0);
    EXPECT_TRUE(reticle(0).isActive);
    EXPECT_EQ(data(0), "cross");
}

TEST_F(DeviceTest, UpdatesAgainAndAgainWithoutLeavingFiles) {
    const std::size_t files = _root.reticleFiles().size();
    for (const char* text : {"1", "2", "3"}) {
        EXPECT_EQ(update(CHEVRON, "C", text), 0);
        EXPECT_EQ(data(CHEVRON), text);
        EXPECT_EQ(_root.reticleFiles().size(), files);
    }
}

TEST_F(DeviceTest, UpdatesNoReticleThatIsNotThere) {
    EXPECT_EQ(update(8, "X", "x"), 5);
    EXPECT_EQ(update(-1, "X", "x"), 5);
    EXPECT_EQ(_device.reticles(), factoryReticles());
}

TEST_F(DeviceTest, DeletesAReticleWithItsFile) {
    EXPECT_EQ(remove(CHEVRON), 0);
    EXPECT_EQ(reticle(CHEVRON).index, -1);
    EXPECT_THAT(_root.reticleFiles(), Not(Contains("factory-chevron.svg")));
    EXPECT_EQ(remove(CHEVRON), 5);
    EXPECT_EQ(afterRestart(), _device.reticles());
}

TEST_F(DeviceTest, DeletesNoFactoryReticle) {
    EXPECT_EQ(remove(1), 7);
    ASSERT_EQ(activate(1), 0);
    EXPECT_EQ(remove(0), 7);
    EXPECT_EQ(_device.reticles().size(), factoryReticles().size());
}

TEST_F(DeviceTest, DeletesTheActiveReticleOnlyWhenItIsActiveNoMore) {
    ASSERT_EQ(activate(CHEVRON), 0);
    EXPECT_EQ(remove(CHEVRON), 7);
    ASSERT_EQ(activate(0), 0);
    EXPECT_EQ(remove(CHEVRON), 0);
}

TEST_F(DeviceTest, RefusesDataThatIsNotThere) {
    for (const char* name : {"a:/missing", "a:/../etc/passwd", "/etc/passwd", "", "a:/reticle"}) {
        const std::string parameters =
            R"(,"param2_name":"X","param3_data":")" + std::string(name) + R"("}])";
        EXPECT_EQ(ask(R"([{"msg_id":78)" + parameters), 8) << name;
        EXPECT_EQ(ask(R"([{"msg_id":79,"param1_index":7)" + parameters), 8) << name;
    }
    EXPECT_EQ(_device.reticles(), factoryReticles());
}

TEST_F(DeviceTest, RefusesMessagesThatMakeNoSense) {
    for (const char* request :
         {"[]",
          "{}",
          "[76]",
          R"({"msg_id":76})",
          R"([{"msg_id":76},{"msg_id":76}])",
          "[{}]",
          R"([{"msg_id":"76"}])",
          R"([{"msg_id":75}])",
          R"([{"msg_id":81}])",
          R"([{"msg_id":1e99}])",
          R"([{"msg_id":77}])",
          R"([{"msg_id":77,"param":"1"}])",
          R"([{"msg_id":77,"param":1.5}])",
          R"([{"msg_id":77,"param":4294967296}])",
          R"([{"msg_id":80}])",
          R"([{"msg_id":80,"param":[7]}])",
          R"([{"msg_id":78}])",
          R"([{"msg_id":78,"param2_name":"X"}])",
          R"([{"msg_id":78,"param2_name":1,"param3_data":"a:/reticle_list.json"}])",
          R"([{"msg_id":78,"param2_name":"X","param3_data":null}])",
          R"([{"msg_id":79,"param2_name":"X","param3_data":"a:/reticle_list.json"}])",
          R"([{"msg_id":79,"param1_index":"0","param2_name":"X","param3_data":"a:/x"}])"}) {
        EXPECT_EQ(ask(request), 8) << request;
    }
    EXPECT_EQ(_device.reticles(), factoryReticles());
}

TEST_F(DeviceTest, SaysWhyItRefuses) {
    const auto reason = [this](const char* request) {
        return _device.answer(parseJson(request)).reason;
    };
    EXPECT_EQ(reason(R"([{"msg_id":99}])"), "unknown \"msg_id\" 99");
    EXPECT_EQ(reason(R"([{"msg_id":77,"param":99}])"), "no reticle has index 99");
    EXPECT_EQ(reason(R"([{"msg_id":80,"param":0}])"), "reticle 0 is the active one");
    EXPECT_EQ(reason(R"([{"msg_id":80,"param":1}])"), "reticle 1 is not deletable");
    EXPECT_EQ(reason(R"([{"msg_id":78,"param2_name":"X","param3_data":"a:/gone"}])"),
              "\"a:/gone\" names no file inside the root");
}

TEST_F(DeviceTest, ChangesNothingWhenTheStorageFails) {
    fs::create_directory(_root.path() / "reticle_list.json.aside");
    EXPECT_THROW(activate(3), std::runtime_error);
    EXPECT_THROW(remove(CHEVRON), std::runtime_error);
    EXPECT_THROW(add("X", "x"), std::runtime_error);
    EXPECT_THROW(update(CHEVRON, "X", "x"), std::runtime_error);
    EXPECT_EQ(_device.reticles(), factoryReticles());
    fs::remove(_root.path() / "reticle_list.json.aside");
    EXPECT_EQ(afterRestart(), factoryReticles());
}

TEST_F(DeviceTest, GoesBackToTheFactorySet) {
    ASSERT_EQ(update(0, "Cross", "cross"), 0);
    ASSERT_EQ(add("Mine", "mine"), 0);
    ASSERT_EQ(activate(FIRST_FREE), 0);
    ASSERT_EQ(remove(CHEVRON), 0);
    Device::restoreFactory(_storage);
    EXPECT_EQ(afterRestart(), factoryReticles());
    EXPECT_EQ(_root.reticleFiles().size(), factoryReticles().size());
    EXPECT_EQ(_root.read("reticle/factory-duplex.svg"),
              factoryReticleTexts().at("factory-duplex.svg"));
}

TEST_F(DeviceTest, CleansUpAtItsStart) {
    _root.write("reticle/user-5", "left by a kill between data and list");
    _root.write("reticle/user-6.aside", "left by a kill amid the data");
    EXPECT_EQ(afterRestart(), factoryReticles());
    EXPECT_THAT(_root.reticleFiles(), Not(Contains(HasSubstr("user-"))));
}

}  // namespace
}  // namespace sim
