#include <gtest/gtest.h>

#include <sstream>

#include "tools/reticlectl/terminal/UploadProgress.h"

namespace reticlectl {

namespace {

constexpr std::size_t KB = 1024;

TEST(UploadProgress, WritesOverItsLine) {
    std::ostringstream err;
    UploadProgress progress(err);
    progress.show(100 * KB, 1000 * KB);
    progress.show(1000 * KB, 1000 * KB);
    EXPECT_EQ(err.str(), "\rsending: 100 of 1000 KB (10 %)\rsending: 1000 of 1000 KB (100 %)\n");
}

TEST(UploadProgress, EndsTheLineOfAnUploadThatFailed) {
    std::ostringstream err;
    {
        UploadProgress progress(err);
        progress.show(100 * KB, 1000 * KB);
    }
    EXPECT_EQ(err.str(), "\rsending: 100 of 1000 KB (10 %)\n");
}

TEST(UploadProgress, IsSilentUpTo256Kb) {
    std::ostringstream err;
    UploadProgress progress(err);
    progress.show(256 * KB, 256 * KB);
    EXPECT_EQ(err.str(), "");
    progress.show(256 * KB, 256 * KB + 1);
    EXPECT_NE(err.str(), "");
}

}  // namespace

}  // namespace reticlectl
