#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <regex>
#include <string>

#include "simulator/FactoryReticles.h"

namespace sim {
namespace {

using testing::HasSubstr;
using testing::Not;

TEST(FactoryReticles, eachHasItsTextAndEachTextItsReticle) {
    EXPECT_EQ(factoryReticles().size(), factoryReticleTexts().size());
    for (const Reticle& reticle : factoryReticles()) {
        EXPECT_TRUE(factoryReticleTexts().contains(reticle.fileName)) << reticle.fileName;
    }
}

TEST(FactoryReticles, areNumberedWithoutGaps) {
    int index = 0;
    for (const Reticle& reticle : factoryReticles()) {
        EXPECT_EQ(reticle.index, index++);
    }
}

TEST(FactoryReticles, holdOneActiveAndOneDeletableReticle) {
    const ReticleList& list = factoryReticles();
    EXPECT_EQ(std::count_if(list.begin(), list.end(), [](const auto& r) { return r.isActive; }), 1);
    EXPECT_EQ(std::count_if(list.begin(), list.end(), [](const auto& r) { return r.isDeletable; }),
              1);
    EXPECT_TRUE(list.front().isActive);
    EXPECT_TRUE(list.back().isDeletable);
}

TEST(FactoryReticles, areSelfContainedPicturesInTheUsersColour) {
    const std::regex otherPaint(R"re((stroke|fill)="(?!user_color"|none"))re");
    const std::regex foreignReference(R"re((href|src|url)\W*[=(]\W*"(?!#))re");
    for (const auto& [name, view] : factoryReticleTexts()) {
        const std::string text(view);
        EXPECT_TRUE(text.starts_with("<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\""))
            << name;
        EXPECT_TRUE(text.ends_with("</svg>\n")) << name;
        EXPECT_THAT(text, HasSubstr("\"user_color\"")) << name;
        EXPECT_FALSE(std::regex_search(text, otherPaint)) << name;
        EXPECT_FALSE(std::regex_search(text, foreignReference)) << name;
        EXPECT_THAT(text, Not(HasSubstr("<script"))) << name;
        EXPECT_GE(text.size(), 1024U) << name;
        EXPECT_LE(text.size(), 10U * 1024U) << name;
    }
}

TEST(FactoryReticles, sayTheirUnit) {
    for (const auto& [name, text] : factoryReticleTexts()) {
        EXPECT_TRUE(text.find("Unit: 1 milliradian") != std::string::npos ||
                    text.find("Unit: 1 minute of angle (MOA)") != std::string::npos)
            << name;
    }
}

}  // namespace
}  // namespace sim
