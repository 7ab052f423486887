#include <gtest/gtest.h>

#include <string>

#include "huffman_fixtures.h"
#include "support/guarded_buffer.h"
#include "support/sanitizers.h"

namespace {

using huffman::annexK;
using huffman::Block;
using huffman::bytesOf;
using huffman::streamOf;
using huffman::Tables;
using support::Guard;
using support::GuardedBytes;
using support::Random;

std::vector<uint8_t> withMarker(std::vector<uint8_t> stream, uint8_t code = 0xD9)
{
    stream.insert(stream.end(), {0xFF, code});
    return stream;
}

// One stream, with a marker at its end, read by the library and by the model, which has no fast path; everything is
// compared after every block. The stream's last byte is the last before an unmapped page.
class TwoReaders {
public:
    TwoReaders(const Tables& tables, const std::vector<uint8_t>& bytes) : tables_(tables), bytes_(bytes.size())
    {
        std::copy(bytes.begin(), bytes.end(), bytes_.data());
        in_.bytes = bytes_.data();
    }
    // Bits in hand; those above the `count` newest mean nothing.
    void hold(uint32_t bits, int count)
    {
        in_.prefetched = prefetched_ = bits;
        in_.numPrefetched = numPrefetched_ = count;
    }
    void setMarker(int marker) { in_.marker = marker_ = marker; }
    void restart()
    {
        hold(0, 0);
        setMarker(0);
        expectedDc_ = dc_ = 0;
    }
    VekStatus decode(size_t misalignment = 0)
    {
        Block want;
        const VekStatus expected =
            model::decodeDirect(in_, want, expectedDc_, tables_.modelDecodeDc, tables_.modelDecodeAc);
        GuardedBytes memory(sizeof(Block), Guard::Behind, misalignment);
        std::memset(memory.data(), 0xA5, sizeof(Block));
        const VekStatus got = vekiDecodeHuffman8x8_Direct_JPEG_1u16s_C1(
            bytes_.data(), &position_, reinterpret_cast<int16_t*>(memory.data()), &dc_, &marker_, &prefetched_,
            &numPrefetched_, &tables_.decodeDc, &tables_.decodeAc);
        EXPECT_EQ(expected, got);
        EXPECT_EQ(0, std::memcmp(want.data(), memory.data(), sizeof(Block)));
        EXPECT_EQ(expectedDc_, dc_);
        EXPECT_EQ(in_.bitPosition, position_);
        EXPECT_EQ(in_.marker, marker_);
        EXPECT_EQ(in_.numPrefetched, numPrefetched_);
        EXPECT_EQ(in_.prefetched, prefetched_);
        block_ = want;
        return got;
    }
    const Block& block() const { return block_; }
    int position() const { return position_; }
    int marker() const { return marker_; }
    int dc() const { return dc_; }
    uint32_t prefetched() const { return prefetched_; }
    int numPrefetched() const { return numPrefetched_; }

private:
    const Tables& tables_;
    GuardedBytes bytes_;
    model::DirectInput in_{};
    int16_t expectedDc_ = 0;
    int position_ = 0;
    int marker_ = 0;
    int16_t dc_ = 0;
    uint32_t prefetched_ = 0;
    int numPrefetched_ = 0;
    Block block_{};
};

TEST(HuffmanDecoderDirect, ReadsWhatTheEncoderWroteAndEqualsItsModel)
{
    Random random(1);
    for (int round = 0; round < (support::underSanitizer ? 30 : 150); ++round) {
        const Tables tables =
            round % 3 == 0 ? annexK() : Tables(huffman::randomLists(random, 256), huffman::randomLists(random, 256));
        std::vector<Block> blocks;
        for (int i = 0; i < 80; ++i) blocks.push_back(huffman::randomBlock(random, random.in(0, 2)));
        TwoReaders readers(tables, withMarker(streamOf(blocks, tables)));
        for (const Block& block : blocks) {
            ASSERT_EQ(vekStsOk, readers.decode(random.in<size_t>(0, 3)));
            ASSERT_EQ(block, readers.block());
            ASSERT_FALSE(HasFailure()) << round;
        }
        for (int i = 0; i < 3; ++i) readers.decode();  // padding, then nothing
        ASSERT_FALSE(HasFailure()) << round;
        EXPECT_EQ(0xD9, readers.marker());
    }
}

TEST(HuffmanDecoderDirect, EqualsItsModelOnStreamsCutAtEveryByte)
{
    Random random(2);
    for (int round = 0; round < 4; ++round) {
        const Tables tables =
            round == 0 ? annexK() : Tables(huffman::randomLists(random, 256), huffman::randomLists(random, 256));
        std::vector<Block> blocks;
        for (int i = 0; i < 6; ++i) blocks.push_back(huffman::randomBlock(random, random.in(0, 2)));
        const std::vector<uint8_t> bytes = streamOf(blocks, tables);
        for (size_t length = 0; length <= bytes.size(); ++length) {
            std::vector<uint8_t> cut(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(length));
            TwoReaders readers(tables, withMarker(cut));  // behind a 0xFF that was cut from its zero: a fill byte
            for (size_t i = 0; i < blocks.size() + 2; ++i) readers.decode();
            ASSERT_FALSE(HasFailure()) << round << ": " << length;
            ASSERT_EQ(0xD9, readers.marker());
        }
    }
}

TEST(HuffmanDecoderDirect, EqualsItsModelWithAMarkerAtEveryPlace)
{
    Random random(3);
    const Tables tables = annexK();
    std::vector<Block> blocks;
    for (int i = 0; i < 6; ++i) blocks.push_back(huffman::randomBlock(random, 1));
    const std::vector<uint8_t> bytes = withMarker(streamOf(blocks, tables));
    for (size_t at = 0; at + 2 < bytes.size(); ++at)
        for (int fill = 0; fill < 2; ++fill) {
            std::vector<uint8_t> stream = bytes;
            const std::array<uint8_t, 3> marker = {0xFF, 0xFF, 0xD3};
            stream.insert(stream.begin() + static_cast<std::ptrdiff_t>(at), marker.begin() + 1 - fill, marker.end());
            TwoReaders readers(tables, stream);
            int markers = 0;
            for (int i = 0; i < 30 && markers < 2; ++i) {
                readers.decode();
                ASSERT_FALSE(HasFailure()) << at;
                if (readers.marker() != 0 && readers.numPrefetched() == 0) {
                    ++markers;
                    if (readers.marker() == 0xD9)
                        break;
                    readers.restart();
                }
            }
        }
}

TEST(HuffmanDecoderDirect, EqualsItsModelOnAnyStreamTableAndState)
{
    Random random(4);
    int statuses[4] = {};
    for (int round = 0; round < (support::underSanitizer ? 2000 : 12000); ++round) {
        const Tables tables = round % 4 == 0 ? annexK()
                                             : Tables(huffman::randomLists(random, random.in(1, 256)),
                                                      huffman::randomLists(random, random.in(1, 256)));
        std::vector<uint8_t> stream(random.in<size_t>(0, 200));
        const int percentFF = random.in(0, 1) * random.in(0, 15);
        for (size_t i = 0; i < stream.size(); ++i) {
            stream[i] = random.any<uint8_t>();
            if (random.chance(percentFF))
                stream[i] = 0xFF;
            if (i > 0 && stream[i - 1] == 0xFF && random.chance(85))
                stream[i] = 0;
        }
        TwoReaders readers(tables, withMarker(stream));
        readers.hold(random.any<uint32_t>(), random.in(0, 32));
        if (random.chance(10))
            readers.setMarker(random.in(1, 254));
        for (int i = 0; i < 12; ++i) {
            const VekStatus status = readers.decode(random.in<size_t>(0, 3));
            ASSERT_FALSE(HasFailure()) << round;
            statuses[status == vekStsOk                ? 0
                     : status == vekStsJpegOutOfBuffer ? 1
                     : status == vekStsJpegMarkerShort ? 2
                                                       : 3]++;
            ASSERT_LE(readers.position(), 8 * static_cast<int>(stream.size() + 2));
            if (readers.position() == 8 * static_cast<int>(stream.size() + 2))
                break;
            if (random.chance(10))
                readers.restart();
            // After a quiet block of zeros the position still stands before the marker.
            if (readers.marker() == 0xD9)
                readers.setMarker(0);
        }
    }
    for (const int count : statuses) EXPECT_LT(50, count);
}

// Codes longer than 8 bits, some of which end in bits that are not yet in hand.
TEST(HuffmanDecoderDirect, EqualsItsModelOnLongCodes)
{
    Random random(5);
    for (int round = 0; round < (support::underSanitizer ? 40 : 300); ++round) {
        // One code of each length from 1 to 8, the others of 9 to 16 bits.
        model::HuffmanLists lists;
        for (size_t i = 0; i < 15; ++i) lists.bits[i] = 1;
        lists.bits[15] = 1;
        for (size_t i = 0; i < 16; ++i)
            lists.vals[i] = static_cast<uint8_t>(i < 8 ? random.in(1, 15) : random.in(1, 7) | random.in(0, 2) << 4);
        lists.vals[random.in<size_t>(0, 15)] = 0;
        const Tables tables(lists, lists);
        std::string bits;
        while (bits.size() < 4000) {
            bits += std::string(random.in<size_t>(0, 15), '1');
            bits += '0';
            for (int i = random.in(0, 7); i > 0; --i) bits += random.chance(50) ? '1' : '0';
        }
        std::vector<uint8_t> stream;
        for (const uint8_t byte : bytesOf(bits)) {
            stream.push_back(byte);
            if (byte == 0xFF)
                stream.push_back(0);
        }
        TwoReaders readers(tables, withMarker(stream));
        for (int i = 0; i < 500 && readers.marker() == 0; ++i) readers.decode();
        ASSERT_FALSE(HasFailure()) << round;
    }
}

// The form without a state gives the same blocks.
TEST(HuffmanDecoderDirect, ReadsTheBlocksThatTheFormWithAStateReads)
{
    Random random(6);
    for (int round = 0; round < 400; ++round) {
        const Tables tables(huffman::randomLists(random, random.in(1, 256)),
                            huffman::randomLists(random, random.in(1, 256)));
        std::vector<uint8_t> stream(400);
        for (uint8_t& byte : stream) byte = random.in<uint8_t>(0, 254);
        stream = withMarker(stream);
        TwoReaders readers(tables, stream);
        VekDecodeHuffmanState state{};
        int position = 0;
        int marker = 0;
        int16_t dc = 0;
        Block block;
        for (;;) {
            const VekStatus status = vekiDecodeHuffman8x8_JPEG_1u16s_C1(stream.data(), static_cast<int>(stream.size()),
                                                                        &position, block.data(), &dc, &marker,
                                                                        &tables.decodeDc, &tables.decodeAc, &state);
            const VekStatus direct = readers.decode();
            if (marker != 0 || readers.marker() != 0)
                break;
            ASSERT_EQ(status, direct);
            if (status != vekStsOk)
                break;
            ASSERT_EQ(block, readers.block());
            ASSERT_EQ(8 * position - state.numBits, readers.position() - readers.numPrefetched());
        }
    }
}

TEST(HuffmanDecoderDirect, AMarkerAtOnceIsAQuietBlockOfZerosAndThePositionStays)
{
    const Tables tables = annexK();
    TwoReaders readers(tables, {0xFF, 0xD0});
    EXPECT_EQ(vekStsOk, readers.decode());
    EXPECT_EQ(Block{}, readers.block());
    EXPECT_EQ(0, readers.position());
    EXPECT_EQ(0xD0, readers.marker());
    EXPECT_EQ(0, readers.dc());
}

TEST(HuffmanDecoderDirect, ABlockThatAMarkerCutsBetweenSymbolsEndsQuietly)
{
    const Tables tables(huffman::lists({0, 0, 0, 0, 0, 0, 0, 1}, {8}), huffman::lists({1}, {0x01}));
    TwoReaders readers(tables, {0x00, 0x80, 0xFF, 0xD9});
    EXPECT_EQ(vekStsOk, readers.decode());
    EXPECT_EQ(128, readers.block()[0]);
    EXPECT_EQ(32, readers.position());
    EXPECT_EQ(0, readers.numPrefetched());
}

TEST(HuffmanDecoderDirect, AMagnitudeWithoutABitIsOutOfBuffer)
{
    const Tables tables(huffman::lists({0, 0, 0, 0, 0, 0, 0, 1}, {8}), huffman::lists({1}, {0x01}));
    TwoReaders readers(tables, {0x00, 0xFF, 0xD9});
    EXPECT_EQ(vekStsJpegOutOfBuffer, readers.decode());
    EXPECT_EQ(Block{}, readers.block());
    EXPECT_EQ(24, readers.position());
    EXPECT_EQ(0, readers.dc());
}

TEST(HuffmanDecoderDirect, AMagnitudeWithABitAtLeastTakesZerosForTheRestAndTheBlockEndsQuietly)
{
    const Tables tables(huffman::lists({1}, {10}), huffman::lists({1}, {0x01}));
    TwoReaders readers(tables, {0x7F, 0xFF, 0xD9});  // 0, then seven of the ten bits
    EXPECT_EQ(vekStsOk, readers.decode());
    EXPECT_EQ(0x3F8, readers.block()[0]);
    EXPECT_EQ(0x3F8, readers.dc());
    EXPECT_EQ(24, readers.position());
    EXPECT_EQ(0, readers.numPrefetched());
}

TEST(HuffmanDecoderDirect, ACodeMayReachIntoZerosBehindTheLastBit)
{
    const Tables tables(huffman::lists({0, 0, 1}, {0}), huffman::lists({0, 0, 0, 0, 1}, {0x00}));
    TwoReaders readers(tables, {0xFF, 0xD9});
    readers.setMarker(0xD9);
    readers.hold(0, 5);  // 000, and two of the five zeros that end the block
    EXPECT_EQ(vekStsOk, readers.decode());
    EXPECT_EQ(0, readers.numPrefetched());
    EXPECT_EQ(0, readers.position());
}

TEST(HuffmanDecoderDirect, ALongCodeThatTheMarkerCutsEndsTheBlockQuietly)
{
    const Tables tables(huffman::lists({1}, {0}), huffman::lists({0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1}, {0x00}));
    TwoReaders readers(tables, {0x00, 0x07, 0xFF, 0xD9});
    EXPECT_EQ(vekStsOk, readers.decode());
    EXPECT_EQ(3, readers.numPrefetched());
    EXPECT_EQ(7U, readers.prefetched());
    TwoReaders cut(tables, {0x00, 0xFF, 0xD9});
    EXPECT_EQ(vekStsOk, cut.decode());
    EXPECT_EQ(0, cut.numPrefetched());
    EXPECT_EQ(24, cut.position());
}

TEST(HuffmanDecoderDirect, NoCodeWithinSixteenBitsIsMarkerShort)
{
    const Tables tables(huffman::lists({1}, {0}), huffman::lists({1}, {0}));
    TwoReaders dc(tables, {0xFE, 0xFE, 0xFE, 0xFE, 0xFF, 0xD9});
    EXPECT_EQ(vekStsJpegMarkerShort, dc.decode());
    EXPECT_EQ(32, dc.position());
    TwoReaders ac(tables, {0x7E, 0xFE, 0xFE, 0xFE, 0xFF, 0xD9});
    EXPECT_EQ(vekStsJpegMarkerShort, ac.decode());
}

TEST(HuffmanDecoderDirect, SixteenZerosThatReachTheEndEndTheBlock)
{
    const Tables tables(huffman::lists({1}, {0}), huffman::lists({1}, {0xF0}));
    TwoReaders readers(tables, withMarker({0, 0, 0, 0}));
    EXPECT_EQ(vekStsOk, readers.decode());
    EXPECT_EQ(27, readers.numPrefetched());  // of 32, one for the difference and four for sixteen zeros each
}

TEST(HuffmanDecoderDirect, ARunThatOvershootsALittleLandsOnTheLastCoefficientAndOneBeyondTheGuardsIsAnOverrun)
{
    const Tables tables(huffman::lists({1}, {0}), huffman::lists({0, 2}, {0x01, 0xF1}));
    const auto streamOfSteps = [](int steps) {
        std::string bits = "0";
        for (int i = 0; i < steps; ++i) bits += "001";
        return withMarker(bytesOf(bits + "011000000000000000000000000000000"));
    };
    for (int steps = 45; steps < 63; ++steps) {  // position steps + 1 + 15
        TwoReaders readers(tables, streamOfSteps(steps));
        EXPECT_EQ(steps + 16 > 71 ? VekStatus{vekStsJpegCoefOverrun} : VekStatus{vekStsOk}, readers.decode()) << steps;
        if (steps + 16 >= 63 && steps + 16 <= 71) {
            EXPECT_EQ(1, readers.block()[63]) << steps;
        }
    }
}

TEST(HuffmanDecoderDirect, TheBitsInHandMayBeAllThatThereIs)
{
    const Tables tables(huffman::lists({1}, {4}), huffman::lists({0, 0, 0, 0, 1}, {0}));
    TwoReaders readers(tables, {0xFF, 0xD9});
    readers.hold(0xFFFFFBC1, 11);  // 0, 1111, 00000, and one bit more; what lies above is nothing
    readers.setMarker(0xD7);
    EXPECT_EQ(vekStsOk, readers.decode());
    EXPECT_EQ(15, readers.block()[0]);
    EXPECT_EQ(1, readers.numPrefetched());
    EXPECT_EQ(0, readers.position());
}

TEST(HuffmanDecoderDirect, MoreBitsInHandThanTheBufferHasCountAsZerosInFrontOfThem)
{
    const Tables tables(huffman::lists({2}, {0, 5}), huffman::lists({2}, {0, 0}));
    for (const int count : {33, 40, 64, 65, 1000}) {
        TwoReaders readers(tables, withMarker({0xAA, 0xAA, 0xAA, 0xAA, 0xAA, 0xAA, 0xAA, 0xAA}));
        readers.hold(~uint32_t{0}, count);
        readers.decode();
        EXPECT_EQ(0, readers.position());
    }
}

TEST(HuffmanDecoderDirect, APositionWithinAByteStandsForTheByte)
{
    const Tables tables = annexK();
    const uint8_t bytes[] = {0xA5, 0x2A, 0xFF, 0xD9};
    int position = 13;
    Block block;
    int16_t dc = 0;
    int marker = 0;
    uint32_t prefetched = 0;
    int numPrefetched = 0;
    EXPECT_EQ(vekStsOk,
              vekiDecodeHuffman8x8_Direct_JPEG_1u16s_C1(bytes, &position, block.data(), &dc, &marker, &prefetched,
                                                        &numPrefetched, &tables.decodeDc, &tables.decodeAc));
    EXPECT_EQ(32, position);
    EXPECT_EQ(2, numPrefetched);  // 00 for no difference, 1010 for the end of the block
    EXPECT_EQ(2U, prefetched);
}

TEST(HuffmanDecoderDirect, ChecksItsArgumentsInOrder)
{
    const Tables tables = annexK();
    const uint8_t bytes[4] = {0xFF, 0xD9};
    Block block;
    block.fill(7);
    int16_t dc = 5;
    int marker = 0;
    uint32_t prefetched = 0;
    int bad = -1;
    int zero = 0;
    const auto* const t = &tables.decodeDc;
    const auto call = [&](const uint8_t* src, int* pos, int16_t* dst, int16_t* last, int* mark, uint32_t* pre, int* num,
                          const VekDecodeHuffmanSpec* dcTable, const VekDecodeHuffmanSpec* acTable) {
        return vekiDecodeHuffman8x8_Direct_JPEG_1u16s_C1(src, pos, dst, last, mark, pre, num, dcTable, acTable);
    };
    int16_t* const dst = block.data();
    EXPECT_EQ(vekStsNullPointer, call(nullptr, &bad, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(vekStsNullPointer, call(bytes, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(vekStsBadArgument, call(bytes, &bad, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(vekStsNullPointer, call(bytes, &zero, nullptr, &dc, &marker, &prefetched, &bad, t, t));
    EXPECT_EQ(vekStsNullPointer, call(bytes, &zero, dst, nullptr, &marker, &prefetched, &bad, t, t));
    EXPECT_EQ(vekStsNullPointer, call(bytes, &zero, dst, &dc, nullptr, &prefetched, &bad, t, t));
    EXPECT_EQ(vekStsNullPointer, call(bytes, &zero, dst, &dc, &marker, nullptr, &bad, t, t));
    EXPECT_EQ(vekStsNullPointer, call(bytes, &zero, dst, &dc, &marker, &prefetched, nullptr, t, t));
    EXPECT_EQ(vekStsBadArgument, call(bytes, &zero, dst, &dc, &marker, &prefetched, &bad, nullptr, nullptr));
    EXPECT_EQ(vekStsNullPointer, call(bytes, &zero, dst, &dc, &marker, &prefetched, &zero, nullptr, t));
    EXPECT_EQ(vekStsNullPointer, call(bytes, &zero, dst, &dc, &marker, &prefetched, &zero, t, nullptr));
    EXPECT_EQ(7, block[0]);
}

}  // namespace
