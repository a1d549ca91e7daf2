#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <optional>
#include <string>
#include <vector>

#include "simulator/device/Device.h"
#include "simulator/device/FactoryReticles.h"
#include "simulator/device/FaultyDevice.h"
#include "simulator/device/Storage.h"
#include "tests/unit/simulator/TemporaryRoot.h"

namespace sim {
namespace {

using testing::ElementsAre;
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
    FaultyDevice withFaults(const std::vector<std::string>& texts) {
        std::vector<Fault> faults;
        std::transform(texts.begin(), texts.end(), std::back_inserter(faults), parseFault);
        return {_device, _storage, faults};
    }

    bool isActive(int index) {
        ReticleList list = _device.reticles();
        return findReticle(list, index)->isActive;
    }

    test::TemporaryRoot _root;
    Storage _storage{_root.path()};
    Device _device{_storage, {}};
};

void expectPlain(const Delivery& delivery, const std::string& bytes) {
    EXPECT_EQ(delivery.bytes, bytes);
    EXPECT_EQ(delivery.delay.count(), 0);
    EXPECT_EQ(delivery.gap, std::nullopt);
    EXPECT_EQ(delivery.end, Delivery::End::KEEP_OPEN);
}

TEST_F(FaultyDeviceTest, AnswersPlainlyWithoutFaults) {
    FaultyDevice device = withFaults({});
    expectPlain(device.exchange(LIST), LISTED);
    expectPlain(device.exchange(ACTIVATE_3), DONE);
    EXPECT_TRUE(isActive(3));
}

TEST_F(FaultyDeviceTest, AnswersMalformedRequestsAndSaysWhy) {
    FaultyDevice device = withFaults({});
    const Delivery answer = device.exchange("hello");
    expectPlain(answer, NOT_UNDERSTOOD);
    EXPECT_EQ(answer.retVal, UNKNOWN_ACTION);
    EXPECT_THAT(answer.reason, StartsWith("* Line 1, Column 1"));
    EXPECT_EQ(device.exchange(R"([{"msg_id":75}])").reason, "unknown \"msg_id\" 75");
}

TEST_F(FaultyDeviceTest, AnswersWhatTheStorageFails) {
    std::filesystem::create_directory(_root.path() / "reticle_list.json.aside");
    FaultyDevice device = withFaults({});
    const Delivery answer = device.exchange(ACTIVATE_3);
    expectPlain(answer, NOT_UNDERSTOOD);
    EXPECT_THAT(answer.reason, StartsWith("cannot write "));
    EXPECT_FALSE(isActive(3));
}

TEST_F(FaultyDeviceTest, NamesTheFaultsThatSpoiledTheAnswer) {
    FaultyDevice device = withFaults({"reset@2", "bad-list", "delay:7", "silent@3"});
    EXPECT_THAT(device.exchange(ACTIVATE_3).faults, ElementsAre("delay:7"));
    EXPECT_THAT(device.exchange(LIST).faults, ElementsAre("bad-list", "delay:7", "reset"));
}

TEST_F(FaultyDeviceTest, KeepsOnlyFaultsThatAreStillToCome) {
    FaultyDevice device = withFaults({"silent@1", "delay:7", "close@2"});
    (void)device.exchange(LIST);
    EXPECT_THAT(faultTexts(device.faults()), ElementsAre("delay:7", "close@2"));
    device.arm({FaultKind::DELAY, 9, std::nullopt});
    device.arm({FaultKind::DELAY, 3, 5});
    EXPECT_THAT(faultTexts(device.faults()), ElementsAre("delay:9", "delay:3@5", "close@2"));
    device.disarm();
    expectPlain(device.exchange(LIST), LISTED);
}

TEST_F(FaultyDeviceTest, CountsExchangesOfAllKinds) {
    FaultyDevice device = withFaults({"silent@3"});
    expectPlain(device.exchange("?"), NOT_UNDERSTOOD);
    expectPlain(device.exchange(ACTIVATE_3), DONE);
    expectPlain(device.exchange(LIST), "");
    expectPlain(device.exchange(LIST), LISTED);
}

TEST_F(FaultyDeviceTest, HitsEveryExchangeWithoutANumber) {
    FaultyDevice device = withFaults({"silent"});
    expectPlain(device.exchange(LIST), "");
    expectPlain(device.exchange(LIST), "");
}

TEST_F(FaultyDeviceTest, RefusesWithoutCarryingOut) {
    FaultyDevice device = withFaults({"refuse:42@1"});
    expectPlain(device.exchange(ACTIVATE_3), R"([{"ret_val":42}])");
    EXPECT_FALSE(isActive(3));
    expectPlain(device.exchange(ACTIVATE_3), DONE);
}

TEST_F(FaultyDeviceTest, CarriesOutWhatItsAnswerDoesNotSay) {
    for (const char* fault :
         {"silent", "close", "reset", "garbage", "long", "split:1", "delay:1", "no-param"}) {
        FaultyDevice device = withFaults({fault});
        (void)device.exchange(R"([{"msg_id":77,"param":0}])");
        ASSERT_FALSE(isActive(3));
        (void)device.exchange(ACTIVATE_3);
        EXPECT_TRUE(isActive(3)) << fault;
    }
}

TEST_F(FaultyDeviceTest, SpoilsHowTheAnswerTravels) {
    EXPECT_EQ(withFaults({"delay:5000"}).exchange(LIST).delay.count(), 5000);
    EXPECT_EQ(withFaults({"split:20"}).exchange(LIST).gap, std::chrono::milliseconds(20));
    EXPECT_THAT(withFaults({"close"}).exchange(LIST).bytes, IsEmpty());
    EXPECT_EQ(withFaults({"close"}).exchange(LIST).end, Delivery::End::CLOSE);
    EXPECT_THAT(withFaults({"reset"}).exchange(LIST).bytes, IsEmpty());
    EXPECT_EQ(withFaults({"reset"}).exchange(LIST).end, Delivery::End::RESET);
    expectPlain(withFaults({"garbage"}).exchange(LIST), "}garbage{\xff\xfe");
}

TEST_F(FaultyDeviceTest, MakesALongAnswerThatIsGoodJson) {
    const std::string head = R"([{"param":"reticle_list.json","ret_val":0})";
    expectPlain(withFaults({"long"}).exchange(LIST),
                head + std::string(1536 - head.size() - 1, ' ') + "]");
}

TEST_F(FaultyDeviceTest, LeavesTheListFileOut) {
    expectPlain(withFaults({"no-param"}).exchange(LIST), DONE);
}

TEST_F(FaultyDeviceTest, ShowsAListThatIsNotJson) {
    expectPlain(withFaults({"bad-list"}).exchange(LIST), FAULTY_LISTED);
    EXPECT_EQ(_root.read("faulty_list.json"), "no list of reticles\n");
}

TEST_F(FaultyDeviceTest, ShowsAnEmptyList) {
    expectPlain(withFaults({"empty-list"}).exchange(LIST), FAULTY_LISTED);
    EXPECT_EQ(parseListText(_root.read("faulty_list.json")), ReticleList());
}

TEST_F(FaultyDeviceTest, ShowsAListWithAFileThatIsMissing) {
    expectPlain(withFaults({"missing-file"}).exchange(LIST), FAULTY_LISTED);
    ReticleList expected = factoryReticles();
    expected[0].fileName = "missing-file";
    EXPECT_EQ(parseListText(_root.read("faulty_list.json")), expected);
    EXPECT_FALSE(_root.has("reticle/missing-file"));
}

TEST_F(FaultyDeviceTest, SpoilsListsOnlyForTheMoment) {
    FaultyDevice device = withFaults({"bad-list@1", "empty-list@2", "missing-file@3"});
    for (int exchange = 1; exchange <= 3; ++exchange) {
        expectPlain(device.exchange(LIST), FAULTY_LISTED);
    }
    expectPlain(device.exchange(LIST), LISTED);
    EXPECT_EQ(parseListText(_root.read("reticle_list.json")), factoryReticles());
}

TEST_F(FaultyDeviceTest, SpoilsNoOtherAnswersWithListFaults) {
    for (const char* fault : {"no-param", "bad-list", "empty-list", "missing-file"}) {
        expectPlain(withFaults({fault}).exchange(ACTIVATE_3), DONE);
    }
}

TEST_F(FaultyDeviceTest, AddsFaultsUpWhateverTheirOrder) {
    const Delivery delivery = withFaults({"close", "delay:5", "garbage", "long"}).exchange(LIST);
    EXPECT_THAT(delivery.bytes, IsEmpty());
    EXPECT_EQ(delivery.delay.count(), 5);
    EXPECT_EQ(delivery.end, Delivery::End::CLOSE);
    expectPlain(withFaults({"garbage", "long"}).exchange(LIST), "}garbage{\xff\xfe");
    EXPECT_EQ(withFaults({"split:3", "refuse:6"}).exchange(LIST).bytes, R"([{"ret_val":6}])");
}

}  // namespace
}  // namespace sim
