// Coefficients that must be equal to the last bit.
#ifndef VEK_TESTS_VEKPIX_COEFFICIENT_CHECKS_H
#define VEK_TESTS_VEKPIX_COEFFICIENT_CHECKS_H

#include <gtest/gtest.h>

#include "jpeg_peer.h"

namespace support {

inline void expectEqual(const peer::Coefficients& expected, const peer::Coefficients& actual)
{
    ASSERT_EQ(expected.components.size(), actual.components.size());
    for (size_t c = 0; c < expected.components.size(); ++c) {
        ASSERT_EQ(expected.components[c].blocksWide, actual.components[c].blocksWide);
        ASSERT_EQ(expected.components[c].blocksHigh, actual.components[c].blocksHigh);
        ASSERT_TRUE(expected.components[c].blocks == actual.components[c].blocks) << "component " << c;
    }
}

}  // namespace support

#endif
