// The files that JsonRtosBuilderAddOrUpdate carries new reticles to the RTOS in.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "tests/support/FlashFiles.h"
#include "tests/unit/service/OutputCapture.h"
#include "tests/unit/service/peers/JsonRtosBuilderAddOrUpdateTestPeer.h"

namespace reticled {
namespace {

using Names = std::vector<std::string>;

class NewReticleDataTest : public testing::Test {
protected:
    std::string save(const std::string& data) {
        return JsonRtosBuilderAddOrUpdateTestPeer::saveReticleData(*builder, data);
    }

    [[nodiscard]] const Names& recorded() const {
        return JsonRtosBuilderAddOrUpdateTestPeer::dataFiles(*builder);
    }

    FlashFiles flash;
    std::shared_ptr<JsonRtosBuilderAddOrUpdate> builder =
        std::make_shared<JsonRtosBuilderAddOrUpdate>();
};

TEST_F(NewReticleDataTest, FilesAreNumberedAndNamedAsTheRtosSeesThem) {
    EXPECT_EQ(save("a"), "a:/new_reticle_data0");
    EXPECT_EQ(save("b"), "a:/new_reticle_data1");
    EXPECT_EQ(save("c"), "a:/new_reticle_data2");
    EXPECT_EQ(flash.names(),
              (Names{"new_reticle_data0", "new_reticle_data1", "new_reticle_data2"}));
    EXPECT_EQ(recorded(), (Names{"/tmp/FL0/new_reticle_data0", "/tmp/FL0/new_reticle_data1",
                                 "/tmp/FL0/new_reticle_data2"}));
    EXPECT_EQ(flash.read("new_reticle_data1"), "b");
}

TEST_F(NewReticleDataTest, ContentIsTheDataByteForByte) {
    const std::string data = std::string("line 1\r\nline 2\n\n\xC3\xA9\xFF\x01") + '\0' + "end";
    EXPECT_EQ(save(data), "a:/new_reticle_data0");
    EXPECT_EQ(flash.read("new_reticle_data0"), data);
}

TEST_F(NewReticleDataTest, EmptyDataMakesAnEmptyFile) {
    EXPECT_EQ(save(""), "a:/new_reticle_data0");
    EXPECT_TRUE(flash.exists("new_reticle_data0"));
    EXPECT_EQ(flash.read("new_reticle_data0"), "");
}

TEST_F(NewReticleDataTest, FileOfTheSameNameIsOverwritten) {
    flash.write("new_reticle_data0", "something longer from an earlier time");
    EXPECT_EQ(save("new"), "a:/new_reticle_data0");
    EXPECT_EQ(flash.read("new_reticle_data0"), "new");
}

TEST_F(NewReticleDataTest, RemovalTakesAllFilesAndNumberingStartsAgain) {
    save("a");
    save("b");
    flash.write("other", "stays");
    builder->removeDataFiles();
    EXPECT_EQ(flash.names(), Names{"other"});
    EXPECT_EQ(recorded(), Names{});
    EXPECT_EQ(save("c"), "a:/new_reticle_data0");
}

TEST_F(NewReticleDataTest, ResetKeepsTheFilesOfACommandThatFailed) {
    save("left over");
    builder->reset();
    EXPECT_EQ(save("next"), "a:/new_reticle_data1");
    EXPECT_EQ(flash.read("new_reticle_data0"), "left over");
    builder->removeDataFiles();
    EXPECT_EQ(flash.names(), Names{});
}

TEST_F(NewReticleDataTest, FileThatIsAlreadyGoneDisturbsNoRemoval) {
    const OutputCapture output;
    save("a");
    save("b");
    flash.remove();
    builder->removeDataFiles();
    EXPECT_EQ(recorded(), Names{});
    EXPECT_EQ(output.err(), "");
}

TEST_F(NewReticleDataTest, FileThatCannotBeWrittenIsRecordedAllTheSame) {
    const OutputCapture output;
    flash.remove();
    EXPECT_EQ(save("a"), "a:/new_reticle_data0");
    EXPECT_EQ(save("b"), "a:/new_reticle_data1");
    EXPECT_EQ(recorded().size(), 2U);
    EXPECT_EQ(output.err(), "");
    EXPECT_EQ(output.out(), "");
}

TEST_F(NewReticleDataTest, DestructionRemovesWhatIsStillThere) {
    save("a");
    builder.reset();
    EXPECT_EQ(flash.names(), Names{});
}

}  // namespace
}  // namespace reticled
