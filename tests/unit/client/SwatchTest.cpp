#include <gtest/gtest.h>

#include "tools/reticlectl/table/Swatch.h"

namespace reticlectl {

namespace {

TEST(Swatch, IsAPatchOfTheColour) {
    EXPECT_EQ(swatch("#FFb000"), "\x1B[38;2;128;128;128;48;2;255;176;0m▏▕\x1B[0m");
    EXPECT_EQ(swatch("#0af"), "\x1B[38;2;128;128;128;48;2;0;170;255m▏▕\x1B[0m");
}

TEST(Swatch, KnowsTheBasicNames) {
    EXPECT_EQ(swatch("red"), swatch("#ff0000"));
    EXPECT_EQ(swatch("Black"), swatch("#000000"));
    EXPECT_EQ(swatch("silver"), swatch("#c0c0c0"));
}

TEST(Swatch, IsNothingForAnyOtherText) {
    for (const char* text : {"", "#", "#12", "#1234", "#12345", "#1234567", "#12345g", "#+12345",
                             "#-f", "123456", "rainbow", "url(#a)", "rgb(1,2,3)", "-"}) {
        EXPECT_FALSE(swatch(text)) << text;
    }
}

}  // namespace

}  // namespace reticlectl
