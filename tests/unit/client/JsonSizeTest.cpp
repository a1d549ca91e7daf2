#include <gtest/gtest.h>

#include "client/JsonSize.h"

namespace reticle {

namespace {

TEST(CountJsonValues, ListsAndObjectsAreValuesAndSoIsWhatTheyHold) {
    EXPECT_EQ(countJsonValues("7"), 1U);
    EXPECT_EQ(countJsonValues("[1,2]"), 3U);
    EXPECT_EQ(countJsonValues(R"({"a":1,"b":[2,{"c":3}]})"), 6U);
}

TEST(CountJsonValues, WhatStandsInStringsDoesNotCount) {
    EXPECT_EQ(countJsonValues(R"(["a,[{\",[{","\\",/1])"), 4U);
    EXPECT_EQ(countJsonValues(R"(["a,,,)"), 2U);
    EXPECT_EQ(countJsonValues(R"(["a\)"), 2U);
}

TEST(CountJsonValues, CommentsHideNothing) {
    EXPECT_EQ(countJsonValues("[/* \" */1,2// \"\n,3//\"\r,4,5/*,"), 6U);
}

}  // namespace

}  // namespace reticle
