#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "simulator/device/Device.h"
#include "simulator/device/FactoryReticles.h"
#include "simulator/device/FaultyDevice.h"
#include "simulator/device/Storage.h"
#include "tests/unit/simulator/TemporaryRoot.h"

namespace sim {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

constexpr const char* LIST = R"([{"msg_id":76,"param_get":""}])";
constexpr const char* LISTED = R"([{"param":"reticle_list.json","ret_val":0}])";
constexpr const char* FAULTY_LISTED = R"([{"param":"faulty_list.json","ret_val":0}])";
constexpr const char* ACTIVATE_3 = R"([{"msg_id":77,"param":3}])";
constexpr const char* DONE = R"([{"ret_val":0}])";
constexpr const char* NOT_UNDERSTOOD = R"([{"ret_val":8}])";

class FaultyDeviceTest : public testing::Test {
protected:
    FaultyDevice withFaults(const std::vector<std::string>& texts, bool isVerbose = false) {
        std::vector<Fault> faults;
        std::transform(texts.begin(), texts.end(), std::back_inserter(faults), parseFault);
        return {_device, _storage, faults, _log, isVerbose};
    }

    bool isActive(int index) {
        ReticleList list = _device.reticles();
        return findReticle(list, index)->isActive;
    }

    test::TemporaryRoot _root;
    Storage _storage{_root.path()};
    Device _device{_storage, {}};
    std::ostringstream _log;
};

void expectPlain(const Delivery& delivery, const std::string& bytes) {
    EXPECT_EQ(delivery.bytes, bytes);
    EXPECT_EQ(delivery.delay.count(), 0);
    EXPECT_EQ(delivery.gap, std::nullopt);
    EXPECT_EQ(delivery.end, Delivery::End::KEEP_OPEN);
}

TEST_F(FaultyDeviceTest, answersPlainlyWithoutFaults) {
    FaultyDevice device = withFaults({});
    expectPlain(device.exchange(LIST), LISTED);
    expectPlain(device.exchange(ACTIVATE_3), DONE);
    EXPECT_TRUE(isActive(3));
    EXPECT_THAT(_log.str(), IsEmpty());
}

TEST_F(FaultyDeviceTest, answersMalformedRequestsAndSaysSo) {
    FaultyDevice device = withFaults({});
    expectPlain(device.exchange("hello"), NOT_UNDERSTOOD);
    EXPECT_THAT(_log.str(), StartsWith("rtos-sim: exchange 1: request not JSON: \"hello\"\n"
                                       "rtos-sim: exchange 1: refused, * Line 1, Column 1"));
    EXPECT_THAT(_log.str(), HasSubstr("\nrtos-sim: exchange 1: answer [{\"ret_val\":8}]\n"));
    expectPlain(device.exchange(R"([{"msg_id":75}])"), NOT_UNDERSTOOD);
    EXPECT_THAT(_log.str(), HasSubstr("rtos-sim: exchange 2: refused, unknown \"msg_id\" 75\n"));
}

TEST_F(FaultyDeviceTest, answersWhatTheStorageFails) {
    std::filesystem::create_directory(_root.path() / "reticle_list.json.aside");
    FaultyDevice device = withFaults({});
    expectPlain(device.exchange(ACTIVATE_3), NOT_UNDERSTOOD);
    EXPECT_THAT(_log.str(), HasSubstr("refused, cannot write "));
    EXPECT_FALSE(isActive(3));
}

TEST_F(FaultyDeviceTest, tellsEveryExchangeWhenVerbose) {
    FaultyDevice device = withFaults({"delay:7", "split:9@2", "reset@3"}, true);
    (void)device.exchange("[\n\t{\n\t\t\"msg_id\" : 80,\n\t\t\"param\" : 0\n\t}\n]");
    (void)device.exchange(ACTIVATE_3);
    (void)device.exchange(LIST);
    EXPECT_EQ(_log.str(),
              "rtos-sim: exchange 1: request [{\"msg_id\":80,\"param\":0}]\n"
              "rtos-sim: exchange 1: refused, reticle 0 is the active one\n"
              "rtos-sim: exchange 1: answer [{\"ret_val\":7}], after 7 ms\n"
              "rtos-sim: exchange 2: request [{\"msg_id\":77,\"param\":3}]\n"
              "rtos-sim: exchange 2: answer [{\"ret_val\":0}], after 7 ms, "
              "in two segments 9 ms apart\n"
              "rtos-sim: exchange 3: request [{\"msg_id\":76,\"param_get\":\"\"}]\n"
              "rtos-sim: exchange 3: answer nothing, after 7 ms, then RST\n");
}

TEST_F(FaultyDeviceTest, countsExchangesOfAllKinds) {
    FaultyDevice device = withFaults({"silent@3"});
    expectPlain(device.exchange("?"), NOT_UNDERSTOOD);
    expectPlain(device.exchange(ACTIVATE_3), DONE);
    expectPlain(device.exchange(LIST), "");
    expectPlain(device.exchange(LIST), LISTED);
}

TEST_F(FaultyDeviceTest, hitsEveryExchangeWithoutANumber) {
    FaultyDevice device = withFaults({"silent"});
    expectPlain(device.exchange(LIST), "");
    expectPlain(device.exchange(LIST), "");
}

TEST_F(FaultyDeviceTest, refusesWithoutCarryingOut) {
    FaultyDevice device = withFaults({"refuse:42@1"});
    expectPlain(device.exchange(ACTIVATE_3), R"([{"ret_val":42}])");
    EXPECT_FALSE(isActive(3));
    expectPlain(device.exchange(ACTIVATE_3), DONE);
    EXPECT_THAT(_log.str(), IsEmpty());
}

TEST_F(FaultyDeviceTest, carriesOutWhatItsAnswerDoesNotSay) {
    for (const char* fault :
         {"silent", "close", "reset", "garbage", "long", "split:1", "delay:1", "no-param"}) {
        FaultyDevice device = withFaults({fault});
        (void)device.exchange(R"([{"msg_id":77,"param":0}])");
        ASSERT_FALSE(isActive(3));
        (void)device.exchange(ACTIVATE_3);
        EXPECT_TRUE(isActive(3)) << fault;
    }
}

TEST_F(FaultyDeviceTest, spoilsHowTheAnswerTravels) {
    EXPECT_EQ(withFaults({"delay:5000"}).exchange(LIST).delay.count(), 5000);
    EXPECT_EQ(withFaults({"split:20"}).exchange(LIST).gap, std::chrono::milliseconds(20));
    EXPECT_THAT(withFaults({"close"}).exchange(LIST).bytes, IsEmpty());
    EXPECT_EQ(withFaults({"close"}).exchange(LIST).end, Delivery::End::CLOSE);
    EXPECT_THAT(withFaults({"reset"}).exchange(LIST).bytes, IsEmpty());
    EXPECT_EQ(withFaults({"reset"}).exchange(LIST).end, Delivery::End::RESET);
    expectPlain(withFaults({"garbage"}).exchange(LIST), "}garbage{\xff\xfe");
}

TEST_F(FaultyDeviceTest, makesALongAnswerThatIsGoodJson) {
    const std::string head = R"([{"param":"reticle_list.json","ret_val":0})";
    expectPlain(withFaults({"long"}).exchange(LIST),
                head + std::string(1536 - head.size() - 1, ' ') + "]");
}

TEST_F(FaultyDeviceTest, leavesTheListFileOut) {
    expectPlain(withFaults({"no-param"}).exchange(LIST), DONE);
}

TEST_F(FaultyDeviceTest, showsAListThatIsNotJson) {
    expectPlain(withFaults({"bad-list"}).exchange(LIST), FAULTY_LISTED);
    EXPECT_EQ(_root.read("faulty_list.json"), "no list of reticles\n");
}

TEST_F(FaultyDeviceTest, showsAnEmptyList) {
    expectPlain(withFaults({"empty-list"}).exchange(LIST), FAULTY_LISTED);
    EXPECT_EQ(parseListText(_root.read("faulty_list.json")), ReticleList());
}

TEST_F(FaultyDeviceTest, showsAListWithAFileThatIsMissing) {
    expectPlain(withFaults({"missing-file"}).exchange(LIST), FAULTY_LISTED);
    ReticleList expected = factoryReticles();
    expected[0].fileName = "missing-file";
    EXPECT_EQ(parseListText(_root.read("faulty_list.json")), expected);
    EXPECT_FALSE(_root.has("reticle/missing-file"));
}

TEST_F(FaultyDeviceTest, spoilsListsOnlyForTheMoment) {
    FaultyDevice device = withFaults({"bad-list@1", "empty-list@2", "missing-file@3"});
    for (int exchange = 1; exchange <= 3; ++exchange) {
        expectPlain(device.exchange(LIST), FAULTY_LISTED);
    }
    expectPlain(device.exchange(LIST), LISTED);
    EXPECT_EQ(parseListText(_root.read("reticle_list.json")), factoryReticles());
}

TEST_F(FaultyDeviceTest, spoilsNoOtherAnswersWithListFaults) {
    for (const char* fault : {"no-param", "bad-list", "empty-list", "missing-file"}) {
        expectPlain(withFaults({fault}).exchange(ACTIVATE_3), DONE);
    }
}

TEST_F(FaultyDeviceTest, addsFaultsUpWhateverTheirOrder) {
    const Delivery delivery = withFaults({"close", "delay:5", "garbage", "long"}).exchange(LIST);
    EXPECT_THAT(delivery.bytes, IsEmpty());
    EXPECT_EQ(delivery.delay.count(), 5);
    EXPECT_EQ(delivery.end, Delivery::End::CLOSE);
    expectPlain(withFaults({"garbage", "long"}).exchange(LIST), "}garbage{\xff\xfe");
    EXPECT_EQ(withFaults({"split:3", "refuse:6"}).exchange(LIST).bytes, R"([{"ret_val":6}])");
}

}  // namespace
}  // namespace sim
