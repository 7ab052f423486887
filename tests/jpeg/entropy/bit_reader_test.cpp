#include "jpeg/entropy/bit_reader.h"

#include <gtest/gtest.h>

#include "huffman_fixtures.h"
#include "support/guarded_buffer.h"

namespace {

using support::GuardedBytes;

// The reader over a source that ends at an unmapped page.
struct Reader {
    GuardedBytes source;
    int length;
    int position = 0;
    int marker = 0;
    VekDecodeHuffmanState state{};

    Reader(std::initializer_list<int> bytes, uint64_t bits, int numBits)
        : source(bytes.size()), length(static_cast<int>(bytes.size()))
    {
        size_t i = 0;
        for (const int b : bytes) source.data()[i++] = static_cast<uint8_t>(b);
        state.bitBuffer = bits;
        state.numBits = numBits;
    }
    VekStatus fill(int numBits)
    {
        return q3::ownjc_FillBitBuffer(source.data(), length, &position, &marker, numBits, &state);
    }
    VekStatus symbol(const VekDecodeHuffmanSpec& table, int& symbol)
    {
        return q3::ownjc_DecodeHuffSymbol(source.data(), length, &position, &marker, &symbol, &table, &state);
    }
    void expect(int wantPosition, int wantMarker, int wantNumBits, uint64_t wantBits)
    {
        EXPECT_EQ(wantPosition, position);
        EXPECT_EQ(wantMarker, marker);
        EXPECT_EQ(wantNumBits, state.numBits);
        EXPECT_EQ(wantBits, state.bitBuffer);
    }
};

TEST(BitReader, TopsUpToAtLeast25Bits)
{
    Reader empty({1, 2, 3, 4, 5, 6}, 0, 0);
    EXPECT_EQ(vekStsOk, empty.fill(0));
    empty.expect(4, 0, 32, 0x01020304);
    Reader one({1, 2, 3, 4, 5, 6}, 1, 1);
    EXPECT_EQ(vekStsOk, one.fill(0));
    one.expect(3, 0, 25, 0x1010203);
    Reader full({1, 2, 3}, 0x1555555, 25);
    EXPECT_EQ(vekStsOk, full.fill(32));  // the request is not tested when nothing stops the reader
    full.expect(0, 0, 25, 0x1555555);
    Reader nearly({1, 2, 3}, 0xABCDEF, 24);
    EXPECT_EQ(vekStsOk, nearly.fill(0));
    nearly.expect(1, 0, 32, 0xABCDEF01);
}

TEST(BitReader, TheHighHalfOfTheBufferIsNotUsed)
{
    Reader reader({7, 8}, 0xFFFFFFFF00000011, 8);
    EXPECT_EQ(vekStsOk, reader.fill(24));
    reader.expect(2, 0, 24, 0x110708);
}

TEST(BitReader, TheEndIsAFailureOnlyForBitsThatAreNotThere)
{
    Reader enough({0xAB}, 5, 3);
    EXPECT_EQ(vekStsOk, enough.fill(11));
    enough.expect(1, 0, 11, 0x5AB);
    Reader tooFew({0xAB}, 5, 3);
    EXPECT_EQ(vekStsJpegOutOfBuffer, tooFew.fill(12));
    tooFew.expect(1, 0, 11, 0x5AB);
}

TEST(BitReader, A255AtTheEndIsAFailureWhateverIsAskedFor)
{
    Reader reader({0xAB, 0xFF}, 5, 3);
    EXPECT_EQ(vekStsJpegOutOfBuffer, reader.fill(0));
    reader.expect(2, 0, 11, 0x5AB);
    Reader filled({0xFF, 0xFF, 0xFF}, 5, 3);
    EXPECT_EQ(vekStsJpegOutOfBuffer, filled.fill(0));
    filled.expect(3, 0, 3, 5);
}

TEST(BitReader, StuffingAndFillBytesAreSkipped)
{
    Reader stuffed({0xFF, 0x00, 0x12}, 0, 0);
    EXPECT_EQ(vekStsOk, stuffed.fill(16));
    stuffed.expect(3, 0, 16, 0xFF12);
    Reader filled({0xFF, 0xFF, 0xFF, 0x00, 0x12}, 0, 0);
    EXPECT_EQ(vekStsOk, filled.fill(16));
    filled.expect(5, 0, 16, 0xFF12);
}

TEST(BitReader, AMarkerStopsItBehindBothBytesWithoutATestOfTheRequest)
{
    Reader reader({0xAB, 0xFF, 0xFF, 0xD9, 0x77}, 0, 0);
    EXPECT_EQ(vekStsOk, reader.fill(25));
    reader.expect(4, 0xD9, 8, 0xAB);
    EXPECT_EQ(vekStsOk, reader.fill(8));
    EXPECT_EQ(vekStsJpegMarkerShort, reader.fill(9));
    reader.expect(4, 0xD9, 8, 0xAB);
    reader.marker = 0;
    EXPECT_EQ(vekStsOk, reader.fill(16));
    reader.expect(5, 0, 16, 0xAB77);
}

TEST(BitReader, FiveBitsBehindAMarkerAreFiveAndNotSix)
{
    Reader reader({1, 2, 3, 4}, 0x15, 5);
    reader.marker = 0xD0;
    EXPECT_EQ(vekStsOk, reader.fill(5));
    EXPECT_EQ(vekStsJpegMarkerShort, reader.fill(6));
    reader.expect(0, 0xD0, 5, 0x15);
}

TEST(BitReader, ACodeIsSearchedFromOneBitOnWhereFewerThanEightAreInHand)
{
    const huffman::Tables tables(huffman::lists({0, 1, 1}, {7, 9}), huffman::luminanceAc());  // 00 and 010
    Reader reader({}, 0b010, 3);
    int symbol = -1;
    EXPECT_EQ(vekStsOk, reader.symbol(tables.decodeDc, symbol));
    EXPECT_EQ(9, symbol);
    EXPECT_EQ(0, reader.state.numBits);
    EXPECT_EQ(vekStsJpegOutOfBuffer, reader.symbol(tables.decodeDc, symbol));
    Reader cut({}, 0b01, 2);
    EXPECT_EQ(vekStsJpegOutOfBuffer, cut.symbol(tables.decodeDc, symbol));
    Reader marked({}, 0b01, 2);
    marked.marker = 0xD9;
    EXPECT_EQ(vekStsJpegMarkerShort, marked.symbol(tables.decodeDc, symbol));
}

// Eight bits in hand begin a longer code, and the refill for the ninth meets the marker.
TEST(BitReader, AMarkerWithinALongCodeIsNotTakenForZeros)
{
    const huffman::Tables tables(huffman::lists({0, 0, 0, 0, 0, 0, 0, 0, 1}, {7}), huffman::luminanceAc());
    Reader reader({0xFF, 0xD9}, 0, 8);
    int symbol = -1;
    EXPECT_EQ(vekStsJpegMarkerShort, reader.symbol(tables.decodeDc, symbol));
    EXPECT_EQ(0xD9, reader.marker);
    Reader whole({0x00, 0xFF, 0xD9}, 0, 8);
    EXPECT_EQ(vekStsOk, whole.symbol(tables.decodeDc, symbol));
    EXPECT_EQ(7, symbol);
}

TEST(BitReader, WithoutACodeOf16BitsTheSymbolIsZero)
{
    const huffman::Tables tables(huffman::lists({1}, {7}), huffman::luminanceAc());
    Reader reader({0xFE, 0xFE, 0xFE, 0xFE}, 0, 0);
    int symbol = -1;
    EXPECT_EQ(vekStsJpegMarkerShort, reader.symbol(tables.decodeDc, symbol));
    EXPECT_EQ(0, symbol);
    EXPECT_EQ(0, reader.marker);
}

// 0xFFFF in maxCode is no code at all, even where a complete code ends there.
TEST(BitReader, SixteenBitCodesOfACompleteCodeAreNotFound)
{
    const huffman::Tables tables(huffman::lists({1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 2},
                                                {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17}),
                                 huffman::luminanceAc());
    int symbol = -1;
    Reader longest({}, 0xFFFE0, 20);
    EXPECT_EQ(vekStsJpegMarkerShort, longest.symbol(tables.decodeDc, symbol));
    Reader shorter({}, 0xFFFC, 16);
    EXPECT_EQ(vekStsOk, shorter.symbol(tables.decodeDc, symbol));
    EXPECT_EQ(15, symbol);
}

}  // namespace
