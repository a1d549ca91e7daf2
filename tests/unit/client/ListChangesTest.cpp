#include <gtest/gtest.h>

#include "tools/reticlectl/table/ListChanges.h"

namespace reticlectl {

namespace {

using reticle::Reticle;

const Reticle PLAIN{1, "Dot", "<svg/>", true, false};
const Reticle CHANGED_PLAIN{1, "Dot", "<svg/>", true, true};
const Reticle OTHER{2, "Ring", "<svg/>", true, false};
const Reticle UNNUMBERED{std::nullopt, "", "<svg/>", true, false};

std::string marks(const std::vector<Reticle>& before, const std::vector<Reticle>& after) {
    const ListChanges changes = ListChanges::between(before, after);
    return {changes.marks.begin(), changes.marks.end()};
}

TEST(ListChanges, NothingHasChanged) {
    EXPECT_EQ(marks({PLAIN, OTHER, UNNUMBERED}, {PLAIN, OTHER, UNNUMBERED}), "   ");
    EXPECT_EQ(ListChanges::between({PLAIN}, {PLAIN}).summary, "");
}

TEST(ListChanges, NewChangedAndGone) {
    EXPECT_EQ(marks({PLAIN}, {CHANGED_PLAIN, OTHER}), "~+");
    EXPECT_EQ(ListChanges::between({PLAIN}, {CHANGED_PLAIN, OTHER}).summary, "+ new, ~ changed");
    EXPECT_EQ(marks({PLAIN, OTHER}, {}), "");
    EXPECT_EQ(ListChanges::between({PLAIN, OTHER}, {}).summary, "gone: 1, 2");
    EXPECT_EQ(ListChanges::between({PLAIN}, {OTHER}).summary, "+ new, gone: 1");
}

}  // namespace

}  // namespace reticlectl
