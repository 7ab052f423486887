#include <gtest/gtest.h>

#include <string>

#include "vekj.h"

TEST(Version, IsOneRecord) { EXPECT_EQ(vekjGetLibVersion(), vekjGetLibVersion()); }

TEST(Version, BuildNumberStandsInTheVersionText)
{
    const VekLibVersion& version = *vekjGetLibVersion();
    const std::string expected = std::to_string(version.versionMajor) + "." + std::to_string(version.versionMinor) +
                                 "." + std::to_string(version.buildMajor) + " (r" +
                                 std::to_string(version.buildNumber) + ")";
    EXPECT_EQ(expected, version.versionText);
}

TEST(Version, TellsTheTier)
{
    const VekLibVersion& version = *vekjGetLibVersion();
    EXPECT_EQ(std::string("q3\0\0", 4), std::string(version.tierTag, 4));
    EXPECT_STREQ("vekJP AVX2 (q3)", version.libraryName);
    EXPECT_STREQ("Sep 24 2012", version.buildDateText);
}
