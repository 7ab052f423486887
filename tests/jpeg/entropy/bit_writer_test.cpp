#include "jpeg/entropy/bit_writer.h"

#include <gtest/gtest.h>

#include <cstring>

#include "support/guarded_buffer.h"

namespace {

using support::GuardedBytes;

struct Writer {
    GuardedBytes dst;
    int length;
    int position = 0;
    VekEncodeHuffmanState state{};

    explicit Writer(int room) : dst(static_cast<size_t>(room)), length(room) {}
    VekStatus write(uint32_t value, int numBits)
    {
        return q3::ownjc_write_bits_jpeg(value, numBits, dst.data(), length, &position, &state);
    }
    void expect(int wantPosition, int wantNumBits, uint32_t wantBits)
    {
        EXPECT_EQ(wantPosition, position);
        EXPECT_EQ(wantNumBits, state.numBits);
        EXPECT_EQ(wantBits, state.bitBuffer >> (24 - wantNumBits) & ((1U << wantNumBits) - 1));
    }
};

TEST(BitWriter, NoBitsAreASymbolWithoutACode)
{
    Writer writer(4);
    EXPECT_EQ(vekStsJpegHuffmanTable, writer.write(0, 0));
    EXPECT_EQ(vekStsJpegHuffmanTable, writer.write(5, 0));
    writer.expect(0, 0, 0);
}

TEST(BitWriter, TheOldestPendingBitIsBit23)
{
    Writer writer(4);
    EXPECT_EQ(vekStsOk, writer.write(0b101, 3));
    EXPECT_EQ(0xA00000U, writer.state.bitBuffer);
    EXPECT_EQ(vekStsOk, writer.write(0b11, 2));
    EXPECT_EQ(0xB80000U, writer.state.bitBuffer);
    writer.expect(0, 5, 0b10111);
}

TEST(BitWriter, TakesTheLowBitsOfItsValueAndWritesWholeBytesAtOnce)
{
    Writer writer(4);
    EXPECT_EQ(vekStsOk, writer.write(0xFFFFFFF5, 4));
    writer.expect(0, 4, 5);
    EXPECT_EQ(vekStsOk, writer.write(0xABCDE, 16));
    writer.expect(2, 4, 0xE);
    EXPECT_EQ(0x5B, writer.dst.data()[0]);
    EXPECT_EQ(0xCD, writer.dst.data()[1]);
}

TEST(BitWriter, A255IsFollowedByAZero)
{
    Writer writer(4);
    EXPECT_EQ(vekStsOk, writer.write(0xFFFF, 16));
    writer.expect(4, 0, 0);
    EXPECT_EQ(0, std::memcmp("\xFF\x00\xFF\x00", writer.dst.data(), 4));
}

TEST(BitWriter, WhereTheRoomEndsTheStateKeepsTheBitsFromBefore)
{
    Writer full(1);
    EXPECT_EQ(vekStsOk, full.write(3, 2));
    EXPECT_EQ(vekStsJpegOutOfBuffer, full.write(0x1234, 16));  // 11000100 10001101 00
    full.expect(1, 2, 3);
    EXPECT_EQ(0xC4, full.dst.data()[0]);
    EXPECT_EQ(vekStsJpegOutOfBuffer, full.write(0x3F, 6));
    full.expect(1, 2, 3);

    Writer unstuffed(1);
    EXPECT_EQ(vekStsJpegOutOfBuffer, unstuffed.write(0xFF, 8));
    unstuffed.expect(1, 0, 0);
    EXPECT_EQ(0xFF, unstuffed.dst.data()[0]);
}

TEST(BitWriter, APaddingOf255IsStuffed)
{
    Writer writer(2);
    EXPECT_EQ(vekStsOk, writer.write(7, 3));
    EXPECT_EQ(vekStsOk, q3::ownjc_flush_jpeg(writer.dst.data(), 2, &writer.position, &writer.state));
    writer.expect(2, 0, 0);
    EXPECT_EQ(0xFF, writer.dst.data()[0]);
    EXPECT_EQ(0, writer.dst.data()[1]);
    EXPECT_EQ(0U, writer.state.bitBuffer);
}

TEST(BitWriter, AResetClearsEveryField)
{
    VekEncodeHuffmanState state;
    std::memset(&state, 0xA5, sizeof state);
    q3::ownjc_EncodeHuffmanStateInit(&state);
    EXPECT_EQ(0U, state.bitBuffer);
    EXPECT_EQ(0, state.numBits);
    EXPECT_EQ(0, state.eobRun);
    EXPECT_EQ(0, state.numCorrectionBits);
    for (const uint8_t bit : state.correctionBits) EXPECT_EQ(0, bit);
}

}  // namespace
