#include <gtest/gtest.h>

#include <sstream>

#include "tools/reticlectl/terminal/ProgressLine.h"

namespace reticlectl {

namespace {

using std::chrono_literals::operator""ms;

constexpr std::size_t KB = 1024;

class ProgressLineTest : public testing::Test {
protected:
    std::ostringstream err;
    std::optional<ProgressLine> progress{std::in_place, err, "device:3451", 2.5};
};

TEST_F(ProgressLineTest, AnUploadWritesOverItsLine) {
    progress->showUpload(100 * KB, 1000 * KB);
    progress->showUpload(1000 * KB, 1000 * KB);
    EXPECT_EQ(err.str(), "\rsending: 100 of 1000 KB (10 %)\rsending: 1000 of 1000 KB (100 %)\n");
}

TEST_F(ProgressLineTest, TheLineOfAnUploadThatFailedIsEnded) {
    progress->showUpload(100 * KB, 1000 * KB);
    progress.reset();
    EXPECT_EQ(err.str(), "\rsending: 100 of 1000 KB (10 %)\n");
}

TEST_F(ProgressLineTest, UploadsUpTo256KbAreSilent) {
    progress->showUpload(256 * KB, 256 * KB);
    EXPECT_EQ(err.str(), "");
    progress->showUpload(256 * KB, 256 * KB + 1);
    EXPECT_NE(err.str(), "");
}

TEST_F(ProgressLineTest, AWaitIsToldAndWiped) {
    progress->showWait(1001ms);
    progress->showWait(2002ms);
    progress->end();
    EXPECT_EQ(err.str(),
              "\rwaiting for device:3451: 1 of 2.5 s"
              "\rwaiting for device:3451: 2 of 2.5 s"
              "\r                                   \r");
    progress.reset();
    EXPECT_EQ(err.str().back(), '\r');
}

TEST_F(ProgressLineTest, AWaitCoversAnUploadThatIsHeldUp) {
    progress->showUpload(10000 * KB, 100000 * KB);
    progress->showWait(1001ms);
    EXPECT_EQ(err.str(),
              "\rsending: 10000 of 100000 KB (10 %)"
              "\rwaiting for device:3451: 1 of 2.5 s");
}

}  // namespace

}  // namespace reticlectl
