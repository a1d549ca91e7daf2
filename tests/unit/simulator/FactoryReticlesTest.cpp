#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "simulator/device/FactoryReticles.h"

namespace sim {
namespace {

using testing::AnyOf;
using testing::Each;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

/// The values of one attribute of all elements.
std::vector<std::string> valuesOf(const std::string& attribute, const std::string& text) {
    const std::string head = attribute + "=\"";
    std::vector<std::string> values;
    for (std::size_t at = 0; (at = text.find(head, at)) != std::string::npos;) {
        at += head.size();
        values.push_back(text.substr(at, text.find('"', at) - at));
    }
    return values;
}

TEST(FactoryReticles, EachHasItsTextAndEachTextItsReticle) {
    EXPECT_EQ(factoryReticles().size(), factoryReticleTexts().size());
    for (const Reticle& reticle : factoryReticles()) {
        EXPECT_TRUE(factoryReticleTexts().contains(reticle.fileName)) << reticle.fileName;
    }
}

TEST(FactoryReticles, AreNumberedWithoutGaps) {
    int index = 0;
    for (const Reticle& reticle : factoryReticles()) {
        EXPECT_EQ(reticle.index, index++);
    }
}

TEST(FactoryReticles, HoldOneActiveAndOneDeletableReticle) {
    const ReticleList& list = factoryReticles();
    EXPECT_EQ(std::count_if(list.begin(), list.end(), [](const auto& r) { return r.isActive; }), 1);
    EXPECT_EQ(std::count_if(list.begin(), list.end(), [](const auto& r) { return r.isDeletable; }),
              1);
    EXPECT_TRUE(list.front().isActive);
    EXPECT_TRUE(list.back().isDeletable);
}

TEST(FactoryReticles, AreSelfContainedPicturesInTheUsersColour) {
    for (const auto& [name, view] : factoryReticleTexts()) {
        const std::string text(view);
        EXPECT_TRUE(text.starts_with("<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\""))
            << name;
        EXPECT_TRUE(text.ends_with("</svg>\n")) << name;
        EXPECT_THAT(text, HasSubstr("\"user_color\"")) << name;
        EXPECT_THAT(valuesOf("stroke", text), Each("user_color")) << name;
        EXPECT_THAT(valuesOf("fill", text), Each(AnyOf("user_color", "none"))) << name;
        EXPECT_THAT(valuesOf("href", text), Each(StartsWith("#"))) << name;
        EXPECT_THAT(text, Not(HasSubstr("<script"))) << name;
        EXPECT_GE(text.size(), 1024U) << name;
        EXPECT_LE(text.size(), 10U * 1024U) << name;
    }
}

TEST(FactoryReticles, SayTheirUnit) {
    for (const auto& [name, text] : factoryReticleTexts()) {
        EXPECT_TRUE(text.find("Unit: 1 milliradian") != std::string::npos ||
                    text.find("Unit: 1 minute of angle (MOA)") != std::string::npos)
            << name;
    }
}

}  // namespace
}  // namespace sim
