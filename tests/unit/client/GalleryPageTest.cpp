#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tools/reticlectl/gallery/Base64.h"
#include "tools/reticlectl/gallery/GalleryPage.h"

namespace reticlectl {

namespace {

using reticle::Reticle;
using testing::HasSubstr;
using testing::Not;

constexpr auto DOT = R"(<svg xmlns="http://www.w3.org/2000/svg"><circle r="1" fill="lime"/></svg>)";

std::string galleryOf(const std::vector<Reticle>& reticles) {
    return renderGallery(reticles, "device:3451", "light");
}

std::string galleryOf(const Reticle& reticle) {
    return galleryOf(std::vector<Reticle>{reticle});
}

TEST(GalleryPage, ACardTellsAllOfItsReticle) {
    const std::string page = galleryOf({{12, "My dot", DOT, true, true}});
    EXPECT_THAT(page, HasSubstr("<h2 dir=\"auto\">My dot</h2>"));
    EXPECT_THAT(page, HasSubstr(">Index 12</span>"));
    EXPECT_THAT(page, HasSubstr(">Active</span>"));
    EXPECT_THAT(page, HasSubstr(">Deletable</span>"));
    EXPECT_THAT(page, HasSubstr("lime</span>"));
    EXPECT_THAT(page, HasSubstr("<span>73 bytes</span>"));
    EXPECT_THAT(page, HasSubstr("<img alt=\"Picture of My dot\" src=\"data:image/svg+xml;base64," +
                                base64(DOT) + "\">"));
    EXPECT_THAT(page, HasSubstr("<a download=\"reticle-12.svg\" "
                                "href=\"data:application/octet-stream;base64," +
                                base64(DOT) + "\">Download, colour fixed</a>"));
    EXPECT_THAT(page, HasSubstr("1 reticle on device:3451"));
}

TEST(GalleryPage, BadgesOfAReticleThatIsNeither) {
    const std::string page = galleryOf({{1, "Dot", DOT, false, false}});
    EXPECT_THAT(page, HasSubstr("<p class=\"foot\"><a "));
    EXPECT_THAT(page, HasSubstr("<article class=\"card\">"));
}

TEST(GalleryPage, CardsStandInTheDevicesOrder) {
    const std::string page =
        galleryOf({{7, "Second", DOT, false, false}, {2, "First", DOT, false, false}});
    EXPECT_LT(page.find("Second"), page.find("First"));
    EXPECT_THAT(page, HasSubstr("2 reticles on device:3451"));
}

TEST(GalleryPage, OtherDataIsEscapedText) {
    const std::string page =
        galleryOf({{3, "Text", "a\t<script>x</script>\n\x1B\xFF&amp;", false, false}});
    EXPECT_THAT(page,
                HasSubstr("<pre>a\t&lt;script&gt;x&lt;/script&gt;\n\\x1B\\xFF&amp;amp;</pre>"));
    EXPECT_THAT(page, HasSubstr("download=\"reticle-3.txt\""));
    EXPECT_THAT(page, Not(HasSubstr("<script")));
    EXPECT_THAT(page, Not(HasSubstr("class=\"colour\"")));
}

TEST(GalleryPage, DataAndNameMayBeEmptyAndTheIndexMissing) {
    const std::string page = galleryOf({{}, "", "", false, false});
    EXPECT_THAT(page, HasSubstr("<pre>no data</pre>"));
    EXPECT_THAT(page, HasSubstr("no name"));
    EXPECT_THAT(page, HasSubstr("No index"));
    EXPECT_THAT(page, HasSubstr("<span>0 bytes</span>"));
    EXPECT_THAT(page, HasSubstr("<a download=\"reticle.txt\" "
                                "href=\"data:application/octet-stream;base64,\">Download</a>"));
}

TEST(GalleryPage, ADrawingsDescriptionIsShownAsText) {
    const auto pageOf = [](const std::string& description) {
        return galleryOf(
            {{1, "Dot", "<svg><desc>" + description + "</desc><g/></svg>", false, false}});
    };
    EXPECT_THAT(pageOf(" 1 mil &lt;b&gt;\x1B&amp;<![CDATA[<i>]]> "),
                HasSubstr("<p class=\"description\" dir=\"auto\" title=\"1 mil "
                          "&lt;b&gt;\\x1B&amp;\">1 mil &lt;b&gt;\\x1B&amp;</p>"));
    EXPECT_THAT(pageOf("<![CDATA[<script>]]>"), HasSubstr(">&lt;script&gt;</p>"));
    EXPECT_THAT(pageOf(std::string(1000, 'x')), HasSubstr('>' + std::string(299, 'x') + "…</p>"));
    EXPECT_THAT(pageOf(" "), Not(HasSubstr("class=\"description\"")));
    EXPECT_THAT(galleryOf({{1, "Dot", "<svg><g><desc>of a part</desc></g></svg>", false, false}}),
                Not(HasSubstr("of a part</p>")));
    EXPECT_THAT(galleryOf({{1, "Dot", "<svg><desc>not well-formed</desc>", false, false}}),
                Not(HasSubstr("</p>not well-formed")));
}

TEST(GalleryPage, NamesAreEscapedEverywhere) {
    const std::string page = galleryOf({{1, "\"><img src=x onerror=y>\x1B", DOT, false, false}});
    EXPECT_THAT(page, HasSubstr("&quot;&gt;&lt;img src=x onerror=y&gt;\\x1B</h2>"));
    EXPECT_THAT(page, HasSubstr("alt=\"Picture of &quot;&gt;&lt;img"));
    EXPECT_THAT(page, Not(HasSubstr("<img src=x")));
}

TEST(GalleryPage, AColourIsEscapedAndItsDotIsAPicture) {
    const std::string page = galleryOf({{1, "Dot", R"(<svg stroke='"><script>'/>)", false, false}});
    EXPECT_THAT(page, HasSubstr("&quot;&gt;&lt;script&gt;</span>"));
    EXPECT_THAT(page,
                HasSubstr("src=\"data:image/svg+xml;base64," +
                          base64(R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 1 1">)"
                                 R"(<rect width="1" height="1" )"
                                 R"(fill="&quot;&gt;&lt;script&gt;"/></svg>)")));
    EXPECT_THAT(page, Not(HasSubstr("<script")));
}

TEST(GalleryPage, TheDevicesNameIsEscaped) {
    EXPECT_THAT(renderGallery({}, "<b>", "light"), Not(HasSubstr("<b>")));
}

TEST(GalleryPage, AllowsItsStyleAndPicturesAndNothingElse) {
    const std::string page = galleryOf({{1, "Dot", DOT, false, false}});
    EXPECT_THAT(page, HasSubstr("content=\"default-src 'none'; img-src data:; style-src 'sha256-"));
    EXPECT_THAT(page, HasSubstr("'; base-uri 'none'; form-action 'none'\">"));
    EXPECT_THAT(page, Not(HasSubstr("unsafe")));
    EXPECT_THAT(page, Not(HasSubstr("style=")));
    EXPECT_THAT(page, Not(HasSubstr("<script")));
    EXPECT_THAT(page, Not(HasSubstr("http:")));
    EXPECT_THAT(page, Not(HasSubstr("https:")));
}

TEST(GalleryPage, BeginsWithTheBackgroundThatIsAskedFor) {
    EXPECT_THAT(renderGallery({}, "", "light"), HasSubstr("id=\"light\" checked>"));
    EXPECT_THAT(renderGallery({}, "", "dark"), HasSubstr("id=\"dark\" checked>"));
    EXPECT_THAT(renderGallery({}, "", "grey"), HasSubstr("id=\"grey\" checked>"));
    EXPECT_THAT(renderGallery({}, "", "grey"), HasSubstr("id=\"light\">"));
}

std::string drawnIn(const std::string& colour) {
    return galleryOf({{1, "Dot", "<svg fill=\"" + colour + "\"/>", false, false}});
}

TEST(GalleryPage, ADrawingSaysToWhichGroundItsColourIsClose) {
    for (const char* colour : {"black", "#000", "navy", "#101418"}) {
        EXPECT_THAT(drawnIn(colour), HasSubstr("<div class=\"ground near-dark\">")) << colour;
    }
    for (const char* colour : {"white", "yellow", "#ffb000"}) {
        EXPECT_THAT(drawnIn(colour), HasSubstr("<div class=\"ground near-light\">")) << colour;
    }
    EXPECT_THAT(drawnIn("gray"), HasSubstr("<div class=\"ground near-grey\">"));
    for (const char* colour : {"url(#a)", "rebeccapurple"}) {
        EXPECT_THAT(drawnIn(colour), HasSubstr("<div class=\"ground\">")) << colour;
    }
}

TEST(GalleryPage, WhatLooksLikeATemplateIsText) {
    const std::string page = galleryOf({{1, "{{{style}}}", "{{#grounds}}", false, false}});
    EXPECT_THAT(page, HasSubstr(">{{{style}}}</h2>"));
    EXPECT_THAT(page, HasSubstr("<pre>{{#grounds}}</pre>"));
}

TEST(GalleryPage, AnEmptyListIsOneClearLine) {
    EXPECT_THAT(galleryOf(std::vector<Reticle>{}),
                HasSubstr("<p class=\"none\">No reticles: the device’s list is empty or could not "
                          "be read (the service does not tell which).</p>"));
}

}  // namespace

}  // namespace reticlectl
