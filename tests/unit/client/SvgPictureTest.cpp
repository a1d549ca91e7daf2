#include <gtest/gtest.h>

#include "tools/reticlectl/gallery/SvgPicture.h"

namespace reticlectl {

namespace {

constexpr auto WHOLE = R"(<svg xmlns="http://www.w3.org/2000/svg"><path d="M0 0"/></svg>)";

TEST(SvgPicture, LeavesAWholeSvgAsItIs) {
    EXPECT_EQ(svgPicture(WHOLE), WHOLE);
}

TEST(SvgPicture, LooksBehindWhatMayStandBeforeTheRoot) {
    const std::string data =
        "\xEF\xBB\xBF<?xml version=\"1.0\"?>\n<!-- <a> -->"
        "<!DOCTYPE svg [<!ENTITY a \"b\">]>\r\n\t" +
        std::string(WHOLE);
    EXPECT_EQ(svgPicture(data), data);
    EXPECT_TRUE(svgPicture("<!DOCTYPE svg><svg xmlns='a'/>"));
}

TEST(SvgPicture, GivesARootWithoutANamespaceThatOfSvg) {
    EXPECT_EQ(svgPicture("<!-- a --><svg/>"),
              R"(<!-- a --><svg xmlns="http://www.w3.org/2000/svg"/>)");
    EXPECT_EQ(
        svgPicture(R"(<svg xmlns:a="b" c="xmlns"><g xmlns="d"/></svg>)"),
        R"(<svg xmlns="http://www.w3.org/2000/svg" xmlns:a="b" c="xmlns"><g xmlns="d"/></svg>)");
    EXPECT_EQ(svgPicture(R"(<svg a=">" xmlns = 'b'/>)"), R"(<svg a=">" xmlns = 'b'/>)");
}

TEST(SvgPicture, AnythingElseIsNoPicture) {
    for (const auto* const data :
         {"", " ", "<", "<svg", "<svgfoo/>", "<SVG/>", "svg", "<g><svg/></g>", "text <svg/>",
          "<?xml", "<!-- <svg/>", "<!DOCTYPE svg", "<!DOCTYPE svg [ <svg/>",
          "<html><svg/></html>"}) {
        EXPECT_FALSE(svgPicture(data)) << data;
    }
}

TEST(SvgPicture, ATagWithoutEndIsLeftToTheBrowser) {
    EXPECT_TRUE(svgPicture("<svg a='>"));
}

}  // namespace

}  // namespace reticlectl
