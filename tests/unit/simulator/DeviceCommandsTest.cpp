#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include <asio/io_context.hpp>

#include "simulator/base/JsonText.h"
#include "simulator/control/DeviceCommands.h"
#include "simulator/control/replayCommand.h"
#include "simulator/device/FactoryReticles.h"
#include "simulator/events/EventText.h"
#include "tests/unit/simulator/TemporaryRoot.h"

namespace sim {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr const char* LIST = R"([{"msg_id":76,"param_get":""}])";
constexpr Limits LIMITS{10, 200'000};

class DeviceCommandsTest : public testing::Test {
protected:
    DeviceCommandsTest() {
        _storage.observe([this](const FileChange& change) { _events.publish(change); });
        _events.subscribe([this](const Event& event) {
            const std::string text = eventText(event);
            _told.push_back(text.substr(text.find(' ', text.find('#')) + 1));
        });
        _server.start([this](const std::string& request) { return _faulty.exchange(request); });
    }

    /// What a command gives, as one line of JSON.
    std::string run(const Words& words) {
        _told.clear();
        return compactJson(_commands.run(words));
    }

    /// Why a command is refused; nothing must change or be told.
    std::string refusalOf(const Words& words) {
        _told.clear();
        const ReticleList before = _device.reticles();
        try {
            return "done: " + compactJson(_commands.run(words));
        } catch (const std::runtime_error& error) {
            EXPECT_EQ(_device.reticles(), before);
            EXPECT_EQ(_storage.load(), before);
            EXPECT_THAT(_faulty.faults(), IsEmpty());
            EXPECT_THAT(_told, IsEmpty());
            return error.what();
        }
    }

    [[nodiscard]] Reticle stored(int index) const {
        ReticleList list = _storage.load().value();
        return *findReticle(list, index);
    }

    test::TemporaryRoot _root;
    Storage _storage{_root.path()};
    Device _device{_storage, LIMITS};
    FaultyDevice _faulty{_device, _storage, {}};
    EventStream _events;
    ObservedState _state{_device, _faulty, _events};
    std::ostringstream _log;
    asio::io_context _io;
    Server _server{_io, 0, _log};
    DeviceCommands _commands{{_storage, _device, _faulty, _server, _events, _state}};
    std::vector<std::string> _told;  ///< the events of the last command
};

TEST_F(DeviceCommandsTest, StatusTellsAll) {
    (void)_faulty.exchange(LIST);
    (void)run({"fault", "delay:5", "every"});
    const Json::Value status = _commands.run({"status"});
    EXPECT_EQ(status["root"], _root.path().string() + "/");
    EXPECT_EQ(status["exchanges"].asInt(), 1);
    EXPECT_EQ(status["bytes"].asUInt64(), _storage.bytesOf(factoryReticles()));
    EXPECT_EQ(status["faults"].size(), 1U);
    EXPECT_EQ(status["isUp"], true);
    EXPECT_EQ(status["reticles"].size(), 8U);
    EXPECT_EQ(compactJson(status["reticles"][1]),
              R"({"active":false,"color":"red","deletable":false,)"
              R"("file":"reticle/factory-mil-dot.svg","index":1,"name":"Mil-Dot"})");
}

TEST_F(DeviceCommandsTest, ArmsFaultsForTheNextForEachOrForOneExchange) {
    (void)_faulty.exchange(LIST);
    EXPECT_EQ(run({"fault", "silent"}), R"({"faults":["silent@2"]})");
    EXPECT_THAT(_told, ElementsAre("faults armed: silent@2"));
    EXPECT_EQ(run({"fault", "refuse:6", "next"}), R"({"faults":["refuse:6@2","silent@2"]})");
    EXPECT_EQ(run({"fault", "long", "every"}), R"({"faults":["refuse:6@2","long","silent@2"]})");
    EXPECT_EQ(run({"faults", "off"}), R"({"faults":[]})");
    EXPECT_EQ(run({"fault", "close", "7"}), R"({"faults":["close@7"]})");
}

TEST_F(DeviceCommandsTest, RefusesFaultsThatMakeNoSense) {
    (void)_faulty.exchange(LIST);
    EXPECT_EQ(refusalOf({"fault", "loud"}), "no fault is called 'loud'");
    EXPECT_EQ(refusalOf({"fault", "delay"}), "delay needs its argument: delay:MS");
    EXPECT_EQ(refusalOf({"fault", "silent@3"}),
              "the exchange is a word of its own: fault KIND[:ARG] N");
    EXPECT_EQ(refusalOf({"fault", "silent", "soon"}),
              "'soon' is neither next nor every nor an exchange to come");
    EXPECT_EQ(refusalOf({"fault", "silent", "1"}),
              "'1' is neither next nor every nor an exchange to come");
    EXPECT_EQ(refusalOf({"faults", "on"}), "faults can only go off");
}

TEST_F(DeviceCommandsTest, ChangesOneReticle) {
    EXPECT_THAT(run({"activate", "3"}), HasSubstr(R"("active":true,)"));
    EXPECT_THAT(_told, ElementsAre(HasSubstr("written reticle_list.json"),
                                   "changed by the user: 8 reticles, active 3"));
    EXPECT_TRUE(stored(3).isActive);
    EXPECT_THAT(run({"color", "0", "#123456"}), HasSubstr(R"("color":"#123456",)"));
    EXPECT_EQ(stored(0).userColor, "#123456");
    EXPECT_THAT(run({"rename", "0", "Crosshair"}), HasSubstr(R"("name":"Crosshair")"));
    EXPECT_EQ(stored(0).name, "Crosshair");
    EXPECT_THAT(run({"deletable", "0", "yes"}), HasSubstr(R"("deletable":true,)"));
    EXPECT_TRUE(stored(0).isDeletable);
    EXPECT_EQ(run({"delete", "0"}), "{}");
    EXPECT_EQ(_storage.load()->size(), 7U);
    EXPECT_THAT(run({"deletable", "7", "no"}), HasSubstr(R"("deletable":false,)"));
    EXPECT_FALSE(stored(7).isDeletable);
}

TEST_F(DeviceCommandsTest, RefusesAReticleWithoutData) {
    EXPECT_THROW(run({"add", "Mine", ""}), std::runtime_error);
    EXPECT_TRUE(_told.empty());
}

TEST_F(DeviceCommandsTest, AddsAReticleWithItsData) {
    EXPECT_THAT(run({"add", "Mine", std::string("<svg/>\0", 7)}), HasSubstr(R"("index":8,)"));
    EXPECT_THAT(_told,
                ElementsAre("written reticle/user-0, 7 bytes", HasSubstr("written reticle_list"),
                            "changed by the user: 9 reticles, active 0"));
    EXPECT_EQ(stored(8), (Reticle{8, "Mine", "user-0", "red", true, false}));
    EXPECT_EQ(_root.read("reticle/user-0"), std::string("<svg/>\0", 7));
}

TEST_F(DeviceCommandsTest, RefusesWhatTheDeviceCannotDo) {
    EXPECT_EQ(refusalOf({"activate", "8"}), "no reticle has index 8");
    EXPECT_EQ(refusalOf({"color", "8", "red"}), "no reticle has index 8");
    EXPECT_EQ(refusalOf({"delete", "0"}), "reticle 0 is the active one");
    EXPECT_EQ(refusalOf({"delete", "1"}), "reticle 1 is not deletable");
    EXPECT_THAT(refusalOf({"rename", "1", std::string(200'000, 'x')}),
                HasSubstr("bytes are more than 200000"));
    for (const char* text : {"-1", "1x", "", " 1", "4294967296"}) {
        EXPECT_EQ(refusalOf({"activate", text}), "'" + std::string(text) + "' is not an index");
    }
    EXPECT_EQ(refusalOf({"deletable", "1", "maybe"}), "'maybe' is neither yes nor no");
}

TEST_F(DeviceCommandsTest, RefusesAReticleThatHasNoRoom) {
    (void)run({"add", "A", "a"});
    (void)run({"add", "B", "b"});
    EXPECT_EQ(refusalOf({"add", "C", "c"}), "the device holds 10 reticles");
    (void)run({"delete", "9"});
    try {
        (void)run({"add", "C", std::string(200'000, 'x')});
        ADD_FAILURE() << "added";
    } catch (const std::runtime_error& error) {
        EXPECT_THAT(error.what(), HasSubstr("bytes are more than 200000"));
    }
    EXPECT_EQ(_root.reticleFiles().size(), 9U);
}

TEST_F(DeviceCommandsTest, RefusesWhatTheFileSystemFails) {
    std::filesystem::create_directory(_root.path() / "reticle_list.json.aside");
    for (const Words& words : {Words{"activate", "3"}, {"color", "0", "red"}, {"delete", "7"}}) {
        EXPECT_THAT(refusalOf(words), HasSubstr("cannot write ")) << words.front();
    }
}

TEST_F(DeviceCommandsTest, ResetsToTheFactorySet) {
    (void)run({"add", "Mine", "mine"});
    (void)run({"activate", "8"});
    EXPECT_EQ(run({"reset"}), "{}");
    EXPECT_EQ(_storage.load(), factoryReticles());
    EXPECT_EQ(_device.reticles(), factoryReticles());
    EXPECT_EQ(_root.reticleFiles().size(), 8U);
    EXPECT_THAT(_told, testing::Contains("changed by the user: 8 reticles, active 0"));
}

TEST_F(DeviceCommandsTest, RestartsAtOnceOrAfterATime) {
    EXPECT_EQ(run({"restart"}), R"({"isUp":true})");
    EXPECT_THAT(_told, ElementsAre("down: no connection is taken", "up: connections are taken"));
    EXPECT_EQ(run({"restart", "--down", "0.05"}), R"({"isUp":false})");
    EXPECT_THAT(_told, ElementsAre("down: no connection is taken"));
    while (_told.size() < 2) {
        ASSERT_GT(_io.run_one(), 0U);
    }
    EXPECT_EQ(_told.back(), "up: connections are taken");
    EXPECT_THAT(run({"status"}), HasSubstr("\"isUp\":true"));
}

TEST_F(DeviceCommandsTest, RefusesOtherDownTimes) {
    const std::string error = "after restart comes nothing, or --down and 0 to 3600 seconds";
    for (const char* time : {"3601", "-1", "nan", "inf", "", "1s"}) {
        EXPECT_EQ(refusalOf({"restart", "--down", time}), error) << time;
    }
    EXPECT_EQ(refusalOf({"restart", "--down"}), error);
    EXPECT_EQ(refusalOf({"restart", "--up", "1"}), error);
}

TEST_F(DeviceCommandsTest, RefusesWordsThatAreNoCommand) {
    EXPECT_EQ(refusalOf({}), "no command is called ''");
    EXPECT_EQ(refusalOf({"explode"}), "no command is called 'explode'");
    EXPECT_EQ(refusalOf({"activate"}), "the command is: activate N");
    EXPECT_EQ(refusalOf({"status", "now"}), "the command is: status");
    EXPECT_EQ(refusalOf({"events"}), "events is no command that has a result");
}

TEST(ResetBeyondLimits, ChangesNothing) {
    const test::TemporaryRoot root;
    Storage storage(root.path());
    storage.save({{0, "Dot", "dot", "red", true, true}});
    Device few(storage, {7, 200'000});
    EXPECT_THROW(few.reset(), std::runtime_error);
    Device small(storage, {10, 1'000});
    EXPECT_THROW(small.reset(), std::runtime_error);
    EXPECT_EQ(storage.load(), few.reticles());
    EXPECT_THAT(root.reticleFiles(), IsEmpty());
}

TEST(ReplayCommand, GivesTheStatusAndNothingElse) {
    const test::TemporaryRoot root;
    const ReplayDevice device({{Exchange{}, Exchange{}}, {}}, root.path());
    EXPECT_EQ(compactJson(replayCommand({"status"}, device, "/r")),
              R"({"exchanges":0,"isUp":true,"root":"/r/","session":2})");
    try {
        (void)replayCommand({"activate", "1"}, device, "/r");
        FAIL() << "activated";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "activate makes no sense here: the device only plays a session");
    }
}

}  // namespace
}  // namespace sim
