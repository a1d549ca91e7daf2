#include <gtest/gtest.h>

#include "tools/reticlectl/gallery/HtmlText.h"

namespace reticlectl {

namespace {

TEST(HtmlText, NeitherBeginsATagNorEndsAnAttribute) {
    EXPECT_EQ(htmlText(R"("'><b a=1>&amp;)"), "&quot;&#39;&gt;&lt;b a=1&gt;&amp;amp;");
}

TEST(HtmlText, LeavesEverythingElse) {
    EXPECT_EQ(htmlText("Kr\xC3\xA4uz 1/2\n"), "Kr\xC3\xA4uz 1/2\n");
}

TEST(HtmlText, ADataUrlHoldsTheBytes) {
    EXPECT_EQ(dataUrl("text/plain", "foobar"), "data:text/plain;base64,Zm9vYmFy");
}

}  // namespace

}  // namespace reticlectl
