#include "frame/tier.h"

#include <gtest/gtest.h>

#include "vekcore.h"

TEST(TierIndex, IsOneOnlyIfBothBitsAreSet)
{
    EXPECT_EQ(1, q3::ownTierIndex(0x30));
    EXPECT_EQ(1, q3::ownTierIndex(~uint64_t{0}));
    EXPECT_EQ(0, q3::ownTierIndex(0x10));
    EXPECT_EQ(0, q3::ownTierIndex(0x20));
    EXPECT_EQ(0, q3::ownTierIndex(~uint64_t{0x10}));
    EXPECT_EQ(0, q3::ownTierIndex(~uint64_t{0x20}));
    EXPECT_EQ(0, q3::ownTierIndex(0));
}

TEST(TierIndex, IsSetWhenTheLibraryIsLoaded)
{
    EXPECT_EQ(q3::ownTierIndex(vekGetEnabledCpuFeatures()), vekJumpIndex);
    EXPECT_EQ(1, vekJumpIndex);  // no test could run without AVX2
}
