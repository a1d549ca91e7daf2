#include <gtest/gtest.h>

#include "tools/reticlectl/commands/BracketShield.h"

namespace reticlectl {

namespace {

TEST(BracketShield, ComesOffAsItWentOn) {
    for (const char* argument : {"", "list", "-", "[a]", "[", "\x1A[a]", "\x1A", "a[b]"}) {
        EXPECT_EQ(unshieldBrackets(shieldBrackets(argument)), argument);
    }
}

TEST(BracketShield, NoShieldedArgumentBeginsWithABracket) {
    EXPECT_FALSE(shieldBrackets("[a,b]").starts_with('['));
}

}  // namespace

}  // namespace reticlectl
