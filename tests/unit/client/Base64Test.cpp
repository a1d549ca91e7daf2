#include <gtest/gtest.h>

#include "tools/reticlectl/gallery/Base64.h"

namespace reticlectl {

namespace {

TEST(Base64, TheTestVectorsOfItsStandard) {
    EXPECT_EQ(base64(""), "");
    EXPECT_EQ(base64("f"), "Zg==");
    EXPECT_EQ(base64("fo"), "Zm8=");
    EXPECT_EQ(base64("foo"), "Zm9v");
    EXPECT_EQ(base64("foob"), "Zm9vYg==");
    EXPECT_EQ(base64("fooba"), "Zm9vYmE=");
    EXPECT_EQ(base64("foobar"), "Zm9vYmFy");
}

TEST(Base64, EveryKindOfByte) {
    EXPECT_EQ(base64(std::string_view("\x00\xFF\xFE", 3)), "AP/+");
    EXPECT_EQ(base64("\xFB\xEF\xBE"), "++++");
}

TEST(Base64, ADataUrlHoldsTheBytes) {
    EXPECT_EQ(dataUrl("text/plain", "foobar"), "data:text/plain;base64,Zm9vYmFy");
}

}  // namespace

}  // namespace reticlectl
