#include <gtest/gtest.h>

#include <string>

#include "tests/support/Text.h"
#include "tools/reticlectl/gallery/NestedUses.h"

namespace reticlectl {
namespace {

TEST(NestedUses, WhatRepeatsOnlyShapesIsDrawn) {
    EXPECT_FALSE(nestsUses("<svg><circle r='1'/></svg>"));
    EXPECT_FALSE(
        nestsUses("<svg id='root'><g id='a'><path d=''/></g><use id='b' href='#a'/></svg>"));
    EXPECT_FALSE(nestsUses("<svg><!-- <g id='a'><use href='#b'/></g> --><use href='#a'/></svg>"));
    EXPECT_FALSE(nestsUses("no drawing"));
}

TEST(NestedUses, WhatRepeatsARepetitionIsNot) {
    EXPECT_TRUE(nestsUses("<svg><g id='a'><use href='#b'/></g><use href='#a'/></svg>"));
    EXPECT_TRUE(nestsUses("<svg><use id='a' href='#b'/><use href='#a'/></svg>"));
    EXPECT_TRUE(
        nestsUses("<svg><use xlink:href='#a'/><g id='a'><g><use href='#b'/></g></g></svg>"));
    EXPECT_TRUE(
        nestsUses("<s:svg><s:g id='a'><s:use href='#b'/></s:g><s:use href='#&#97;'/></s:svg>"));
}

TEST(NestedUses, EntitiesAreNotDrawn) {
    EXPECT_TRUE(nestsUses("<!DOCTYPE svg [<!ENTITY a '<use href=\"#b\"/>'>]><svg>&a;</svg>"));
}

TEST(NestedUses, DeepAndWideDrawingsAreLookedAtOnce) {
    std::string svg = "<svg>";
    constexpr int MANY = 100'000;
    for (int i = 0; i < MANY; ++i) {
        svg += "<g id='a'><use href='#b'/>";
    }
    for (int i = 0; i < MANY; ++i) {
        svg += "</g>";
    }
    EXPECT_FALSE(nestsUses(svg + "</svg>"));
}

}  // namespace
}  // namespace reticlectl
