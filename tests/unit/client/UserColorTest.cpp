#include <gtest/gtest.h>

#include "reticle-client/UserColor.h"

namespace reticle {

namespace {

using Color = std::optional<std::string>;

TEST(UserColor, IsTheFirstStroke) {
    EXPECT_EQ(userColor(R"(<svg><path stroke="#FF0000" d=""/><path stroke="blue"/></svg>)"),
              Color("#FF0000"));
}

TEST(UserColor, PassesOverNoneAndEmptyValues) {
    EXPECT_EQ(userColor(R"(<g stroke="none"/><g stroke=""/><g stroke="lime"/>)"), Color("lime"));
}

TEST(UserColor, PrefersAStrokeToAFillThatStandsBefore) {
    EXPECT_EQ(userColor(R"(<rect fill="white"/><path stroke="red"/>)"), Color("red"));
}

TEST(UserColor, TakesTheFillWhereNothingIsStroked) {
    EXPECT_EQ(userColor(R"(<g fill="none" stroke="none"><circle fill="red"/></g>)"), Color("red"));
}

TEST(UserColor, AcceptsWhatXmlAllows) {
    EXPECT_EQ(userColor("<path\n\tstroke\n = '#0f0'/>"), Color("#0f0"));
}

TEST(UserColor, DoesNotTakeOtherAttributesForIt) {
    EXPECT_EQ(userColor(R"(<path stroke-width="2" data-stroke="a" xfill="b" fill-rule="c"/>)"),
              Color());
}

TEST(UserColor, IsAbsentFromDataThatIsNotSvg) {
    EXPECT_EQ(userColor(""), Color());
    EXPECT_EQ(userColor(R"({"color":"red"})"), Color());
    EXPECT_EQ(userColor("stroke"), Color());
    EXPECT_EQ(userColor(" stroke="), Color());
    EXPECT_EQ(userColor(" stroke=\"never closed"), Color());
    EXPECT_EQ(userColor(" stroke=red"), Color());
}

TEST(TakesUserColor, OnlyThePlaceholderInDoubleQuotes) {
    EXPECT_TRUE(takesUserColor(R"(<svg stroke="user_color"/>)"));
    EXPECT_TRUE(takesUserColor(R"(not SVG: "user_color")"));
    EXPECT_FALSE(takesUserColor("<svg stroke='user_color'/>"));
    EXPECT_FALSE(takesUserColor(R"(<svg style="stroke:user_color"/>)"));
    EXPECT_FALSE(takesUserColor(R"(<svg stroke="red"/>)"));
}

}  // namespace

}  // namespace reticle
