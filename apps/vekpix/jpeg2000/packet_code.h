// The codes of packet headers that readers and writers share (ISO/IEC 15444-1, B.10.6 and B.10.7).
#ifndef VEKPIX_JPEG2000_PACKET_CODE_H
#define VEKPIX_JPEG2000_PACKET_CODE_H

#include <bit>

#include "jpeg2000/header_bits.h"
#include "jpeg2000/parameters.h"

namespace vekpix::jpeg2000 {

constexpr int maxPassesInPacket = 164;
constexpr int firstLengthBits = 3;

inline int readPassCount(HeaderBitReader& bits)
{
    if (bits.bit() == 0)
        return 1;
    if (bits.bit() == 0)
        return 2;
    int more = bits.bits(2);
    if (more < 3)
        return 3 + more;
    more = bits.bits(5);
    return more < 31 ? 6 + more : 37 + bits.bits(7);
}

inline void writePassCount(HeaderBitWriter& bits, int count)
{
    if (count == 1)
        bits.bits(0b0, 1);
    else if (count == 2)
        bits.bits(0b10, 2);
    else if (count <= 5)
        bits.bits(0b1100 | (count - 3), 4);
    else if (count <= 36)
        bits.bits(0b1111 << 5 | (count - 6), 9);
    else
        bits.bits(0b1'1111'1111 << 7 | (count - 37), 16);
}

// How many passes the segment that begins with a pass can have.
inline int segmentPasses(int blockStyle, int firstPass)
{
    if ((blockStyle & styleTermAll) != 0)
        return 1;
    if ((blockStyle & styleBypass) == 0)
        return maxPassesInPacket * 65536;
    if (firstPass == 0)
        return 10;
    return (firstPass - 10) % 3 == 0 ? 2 : 1;
}

// The bits that a packet adds to a block's usual ones for the length of `passes` passes.
inline int extraLengthBits(int passes) { return std::bit_width(static_cast<unsigned>(passes)) - 1; }

}  // namespace vekpix::jpeg2000

#endif
