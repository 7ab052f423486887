#include <gtest/gtest.h>

#include <cstddef>
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
using support::GuardedArray;
using support::GuardedBytes;
using support::Random;

// One stream read twice, by the library and by the model; everything is compared after every block. The stream ends at
// an unmapped page.
class TwoReaders {
public:
    TwoReaders(const Tables& tables, const std::vector<uint8_t>& bytes) : tables_(tables), bytes_(bytes.size())
    {
        std::copy(bytes.begin(), bytes.end(), bytes_.data());
        in_.bytes = bytes_.data();
        in_.length = static_cast<int>(bytes.size());
        vekiDecodeHuffmanStateInit_JPEG_8u(&state_);
    }
    VekStatus decode(size_t misalignment = 0)
    {
        Block want;
        const VekStatus expected =
            model::decodeBlock(in_, want, expectedDc_, tables_.modelDecodeDc, tables_.modelDecodeAc, expectedState_);
        GuardedBytes memory(sizeof(Block), Guard::Behind, misalignment);
        auto* const block = reinterpret_cast<int16_t*>(memory.data());
        std::memset(memory.data(), 0xA5, sizeof(Block));
        const VekStatus got =
            vekiDecodeHuffman8x8_JPEG_1u16s_C1(bytes_.data(), in_.length, &position_, block, &dc_, &marker_,
                                               &tables_.decodeDc, &tables_.decodeAc, &state_);
        EXPECT_EQ(expected, got);
        EXPECT_EQ(0, std::memcmp(want.data(), memory.data(), sizeof(Block)));
        EXPECT_EQ(expectedDc_, dc_);
        EXPECT_EQ(in_.position, position_);
        EXPECT_EQ(in_.marker, marker_);
        EXPECT_EQ(expectedState_.numBits, state_.numBits);
        EXPECT_EQ(expectedState_.endOfBlockPos, state_.endOfBlockPos);
        const uint64_t mask = state_.numBits <= 0 ? 0 : (uint64_t{1} << state_.numBits) - 1;
        EXPECT_EQ(expectedState_.buffer & mask, state_.bitBuffer & mask);
        block_ = want;
        return got;
    }
    // Bits in hand; those above the `count` newest mean nothing.
    void hold(uint64_t bits, int count)
    {
        expectedState_.buffer = state_.bitBuffer = bits;
        expectedState_.numBits = state_.numBits = count;
    }
    void setMarker(int marker) { in_.marker = marker_ = marker; }
    void restart()
    {
        vekiDecodeHuffmanStateInit_JPEG_8u(&state_);
        expectedState_ = {};
        expectedDc_ = dc_ = 0;
        in_.marker = marker_ = 0;
    }
    const Block& block() const { return block_; }
    int position() const { return position_; }
    int marker() const { return marker_; }
    const VekDecodeHuffmanState& state() const { return state_; }

private:
    const Tables& tables_;
    GuardedBytes bytes_;
    model::Input in_{};
    model::DecoderState expectedState_;
    int16_t expectedDc_ = 0;
    int position_ = 0;
    int marker_ = 0;
    int16_t dc_ = 0;
    VekDecodeHuffmanState state_{};
    Block block_{};
};

TEST(HuffmanDecoder, ReportsItsStatesSizeAndInitialisesIt)
{
    int size = 0;
    EXPECT_EQ(vekStsOk, vekiDecodeHuffmanStateGetBufSize_JPEG_8u(&size));
    EXPECT_EQ(24, size);
    EXPECT_EQ(vekStsNullPointer, vekiDecodeHuffmanStateGetBufSize_JPEG_8u(nullptr));
    EXPECT_EQ(vekStsNullPointer, vekiDecodeHuffmanStateInit_JPEG_8u(nullptr));
    EXPECT_EQ(vekStsNullPointer, vekiDecodeHuffmanStateInitAlloc_JPEG_8u(nullptr));
    EXPECT_EQ(vekStsNullPointer, vekiDecodeHuffmanStateFree_JPEG_8u(nullptr));
    VekDecodeHuffmanState state{~uint64_t{0}, 1, 2, 3};
    EXPECT_EQ(vekStsOk, vekiDecodeHuffmanStateInit_JPEG_8u(&state));
    EXPECT_EQ(0U, state.bitBuffer);
    EXPECT_EQ(0, state.numBits);
    EXPECT_EQ(0, state.eobRun);
    EXPECT_EQ(0, state.endOfBlockPos);
    VekDecodeHuffmanState* allocated = nullptr;
    EXPECT_EQ(vekStsOk, vekiDecodeHuffmanStateInitAlloc_JPEG_8u(&allocated));
    EXPECT_EQ(0, allocated->numBits);
    EXPECT_EQ(vekStsOk, vekiDecodeHuffmanStateFree_JPEG_8u(allocated));
}

TEST(HuffmanDecoder, ReadsWhatTheEncoderWroteAndEqualsItsModel)
{
    Random random(1);
    for (int round = 0; round < 60; ++round) {
        const Tables tables =
            round % 3 == 0 ? annexK() : Tables(huffman::randomLists(random, 256), huffman::randomLists(random, 256));
        std::vector<Block> blocks;
        for (int i = 0; i < 80; ++i) blocks.push_back(huffman::randomBlock(random, random.in(0, 2)));
        TwoReaders readers(tables, streamOf(blocks, tables));
        for (const Block& block : blocks) {
            ASSERT_EQ(vekStsOk, readers.decode(random.in<size_t>(0, 3)));
            ASSERT_EQ(block, readers.block());
            ASSERT_FALSE(HasFailure());
        }
    }
}

TEST(HuffmanDecoder, EqualsItsModelOnStreamsOfEveryLength)
{
    Random random(2);
    const Tables tables = annexK();
    std::vector<Block> blocks;
    for (int i = 0; i < 6; ++i) blocks.push_back(huffman::randomBlock(random, 1 + i % 2));
    const std::vector<uint8_t> bytes = streamOf(blocks, tables);
    for (size_t length = 1; length <= bytes.size(); ++length) {
        TwoReaders readers(tables, {bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(length)});
        for (size_t i = 0; i < blocks.size() + 2; ++i) readers.decode();
        ASSERT_FALSE(HasFailure()) << length;
    }
}

TEST(HuffmanDecoder, EqualsItsModelWithAMarkerAtEveryPlace)
{
    Random random(4);
    const Tables tables(huffman::randomLists(random, 256), huffman::randomLists(random, 256));
    std::vector<Block> blocks;
    for (int i = 0; i < 6; ++i) blocks.push_back(huffman::randomBlock(random, 1));
    const std::vector<uint8_t> bytes = streamOf(blocks, tables);
    for (size_t at = 0; at < bytes.size(); ++at)
        for (int fill = 0; fill < 2; ++fill) {
            std::vector<uint8_t> stream = bytes;
            const std::array<uint8_t, 3> marker = {0xFF, 0xFF, 0xD3};
            stream.insert(stream.begin() + static_cast<std::ptrdiff_t>(at), marker.begin() + 1 - fill, marker.end());
            TwoReaders readers(tables, stream);
            for (size_t i = 0; i < blocks.size() + 2; ++i) {
                if (readers.decode() == vekStsJpegMarkerShort && readers.marker() != 0)
                    readers.restart();
                ASSERT_FALSE(HasFailure()) << at;
            }
        }
}

TEST(HuffmanDecoder, EqualsItsModelWithAStuffedByteAtEveryDistance)
{
    Random random(4);
    const Tables usual = annexK();
    // A complete code without an end of block: long blocks.
    const Tables dense(huffman::luminanceDc(), huffman::lists({0, 0, 0, 16}, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 15, 0x16,
                                                                              0x28, 0x45, 0x07, 0x08}));
    int blocks = 0;
    for (size_t distance = 0; distance < 100; ++distance)
        for (int round = 0; round < (support::underSanitizer ? 20 : 200); ++round) {
            std::vector<uint8_t> bytes(random.in<size_t>(distance, 160));
            for (uint8_t& b : bytes) b = random.any<uint8_t>() & 0xFE;  // no 0xFF
            const uint8_t second = random.chance(20) ? 0xD9 : 0;
            if (random.chance(75))
                bytes.insert(bytes.begin() + static_cast<std::ptrdiff_t>(distance), {0xFF, second});
            TwoReaders readers(round % 2 == 0 ? usual : dense, bytes);
            readers.hold(random.any<uint64_t>(), random.in(0, 32));
            while (readers.decode() == vekStsOk) ++blocks;
            ASSERT_FALSE(HasFailure()) << distance;
        }
    EXPECT_LT(1000, blocks);
}

TEST(HuffmanDecoder, EqualsItsModelOnDamagedStreamsAndAnyTable)
{
    Random random(3);
    int statuses[4] = {};
    for (int round = 0; round < 4000; ++round) {
        model::HuffmanLists dc = huffman::randomLists(random, random.in(1, 256));
        model::HuffmanLists ac = huffman::randomLists(random, random.in(1, 256));
        if (round % 5 == 0)  // a complete code, or one that uses 16 bits
            ac = round % 2 == 0
                     ? huffman::lists({1, 1, 2}, {0x11, 0xF5, 0x00, 0x3A})
                     : huffman::lists({0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 200}, {0x41, 0x00, 0xF0, 0x71});
        if (round % 50 == 0)
            ac = {};
        const Tables tables(dc, ac);
        std::vector<uint8_t> bytes(random.in<size_t>(1, 120));
        const int ff = random.in(0, 12);
        for (uint8_t& b : bytes) b = random.chance(ff) ? 0xFF : random.chance(ff) ? 0 : random.any<uint8_t>();
        TwoReaders readers(tables, bytes);
        if (round % 2 == 0)
            readers.hold(random.any<uint64_t>(), random.in(0, 32));
        if (random.chance(5))
            readers.setMarker(random.in(1, 254));
        for (int i = 0; i < 12; ++i) {
            const VekStatus status = readers.decode(random.in<size_t>(0, 31));
            statuses[status == vekStsOk                ? 0
                     : status == vekStsJpegOutOfBuffer ? 1
                     : status == vekStsJpegMarkerShort ? 2
                                                       : 3]++;
            if (random.chance(10))
                readers.restart();
            ASSERT_FALSE(HasFailure()) << round;
        }
    }
    for (const int count : statuses) EXPECT_LT(50, count);
}

TEST(HuffmanDecoder, ChecksItsArgumentsInOrder)
{
    const Tables tables = annexK();
    const uint8_t bytes[4] = {};
    int position = 0;
    Block block;
    block.fill(7);
    int16_t dc = 5;
    int marker = 0;
    VekDecodeHuffmanState state{};
    const auto call = [&](const uint8_t* src, int length, int* pos, int16_t* dst, int16_t* last, int* mark,
                          const VekDecodeHuffmanSpec* dcTable, const VekDecodeHuffmanSpec* acTable,
                          VekDecodeHuffmanState* s) {
        return vekiDecodeHuffman8x8_JPEG_1u16s_C1(src, length, pos, dst, last, mark, dcTable, acTable, s);
    };
    const auto* const t = &tables.decodeDc;
    EXPECT_EQ(vekStsNullPointer, call(nullptr, -1, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(vekStsBadArgument, call(bytes, -1, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(vekStsNullPointer, call(bytes, 4, nullptr, block.data(), &dc, &marker, t, t, &state));
    EXPECT_EQ(vekStsNullPointer, call(bytes, 4, &position, nullptr, &dc, &marker, t, t, &state));
    EXPECT_EQ(vekStsNullPointer, call(bytes, 4, &position, block.data(), nullptr, &marker, t, t, &state));
    EXPECT_EQ(vekStsNullPointer, call(bytes, 4, &position, block.data(), &dc, nullptr, t, t, &state));
    EXPECT_EQ(vekStsNullPointer, call(bytes, 4, &position, block.data(), &dc, &marker, nullptr, t, &state));
    EXPECT_EQ(vekStsNullPointer, call(bytes, 4, &position, block.data(), &dc, &marker, t, nullptr, &state));
    EXPECT_EQ(vekStsNullPointer, call(bytes, 4, &position, block.data(), &dc, &marker, t, t, nullptr));
    EXPECT_EQ(7, block[0]);
    EXPECT_EQ(0, position);
}

TEST(HuffmanDecoder, AnEmptySourceIsOutOfBufferWithTheBlockCleared)
{
    const Tables tables = annexK();
    GuardedBytes nothing(0);
    int position = 0;
    Block block;
    block.fill(7);
    int16_t dc = 5;
    int marker = 0;
    VekDecodeHuffmanState state{0, 0, 0, 9};
    EXPECT_EQ(vekStsJpegOutOfBuffer,
              vekiDecodeHuffman8x8_JPEG_1u16s_C1(nothing.data(), 0, &position, block.data(), &dc, &marker,
                                                 &tables.decodeDc, &tables.decodeAc, &state));
    EXPECT_EQ(Block{}, block);
    EXPECT_EQ(0, state.endOfBlockPos);
}

TEST(HuffmanDecoder, AByteOf255AtTheVeryEndIsOutOfBuffer)
{
    const Tables tables = annexK();
    TwoReaders readers(tables, {0x2A, 0xFF});  // 00 1010: bits enough for the block
    EXPECT_EQ(vekStsJpegOutOfBuffer, readers.decode());
}

// The fast path decodes bits that the careful one, which decodes the block anew, fails to reach.
TEST(HuffmanDecoder, BytesOf255AtTheEndLeaveNoCoefficientOfTheFastPathBehind)
{
    for (int size = 1; size <= 9; ++size) {
        const Tables tables(huffman::lists({1}, {0}), huffman::lists({1}, {size}));
        for (size_t zeros = 0; zeros < 70; ++zeros) {
            std::vector<uint8_t> bytes(zeros, 0);
            bytes.resize(zeros + 24, 0xFF);
            TwoReaders readers(tables, bytes);
            for (int i = 0; i < 3; ++i) readers.decode();
            ASSERT_FALSE(HasFailure()) << size << ", " << zeros;
        }
    }
}

TEST(HuffmanDecoder, FillBytesBeforeAMarkerAreSkipped)
{
    const Tables tables = annexK();
    TwoReaders readers(tables, {0xFF, 0xFF, 0xD9});
    readers.decode();
    EXPECT_EQ(0xD9, readers.marker());
    EXPECT_EQ(3, readers.position());
}

TEST(HuffmanDecoder, AStuffedZeroIsRemoved)
{
    // A DC value of category 15 whose magnitude is all ones, then the end of the block.
    const Tables tables(huffman::lists({1}, {15}), huffman::lists({1}, {0}));
    TwoReaders readers(tables, {0x7F, 0xFF, 0x00, 0x00});
    EXPECT_EQ(vekStsOk, readers.decode());
    EXPECT_EQ(32767, readers.block()[0]);
}

TEST(HuffmanDecoder, BitsInHandCountEvenBehindAMarker)
{
    const Tables tables(huffman::lists({1}, {4}), huffman::lists({0, 0, 0, 0, 1}, {0}));
    for (const auto& [bits, status] :
         {std::pair(10, VekStatus{vekStsOk}), std::pair(9, VekStatus{vekStsJpegMarkerShort})}) {
        VekDecodeHuffmanState state{0, bits, 0, 0};
        int position = 0;
        int marker = 0xD0;
        int16_t dc = 0;
        Block block;
        const uint8_t bytes[1] = {0};
        EXPECT_EQ(status, vekiDecodeHuffman8x8_JPEG_1u16s_C1(bytes, 1, &position, block.data(), &dc, &marker,
                                                             &tables.decodeDc, &tables.decodeAc, &state));
        EXPECT_EQ(0, position);
    }
}

TEST(HuffmanDecoder, ANineBitCodeAtTheEndOfTheStreamIsFound)
{
    const Tables tables(huffman::lists({0, 0, 0, 0, 0, 0, 0, 0, 1}, {0}), huffman::lists({0, 0, 0, 0, 0, 0, 1}, {0}));
    TwoReaders readers(tables, {0x00, 0x00});
    EXPECT_EQ(vekStsOk, readers.decode());
    EXPECT_EQ(0, readers.state().numBits);
    EXPECT_EQ(1, readers.state().endOfBlockPos);
}

TEST(HuffmanDecoder, SixteenZerosThatReachTheEndEndTheBlock)
{
    const Tables tables(huffman::lists({1}, {0}), huffman::lists({1}, {0xF0}));
    TwoReaders readers(tables, {0x00, 0x00});
    EXPECT_EQ(vekStsOk, readers.decode());
    EXPECT_EQ(65, readers.state().endOfBlockPos);
}

// On every path: what is taken goes by the bytes ahead and, in the first block, by no bits being in hand.
TEST(HuffmanDecoder, SixteenZerosThatJustReachTheEndOrPassItEndTheBlock)
{
    const Tables tables(huffman::lists({1}, {0}), huffman::lists({0, 2}, {0x01, 0xF0}));
    for (int before = 47; before < 63; ++before) {
        std::string block = "0";
        for (int i = 0; i < before; ++i) block += "001";
        block += "01";
        for (const size_t behind : {size_t{0}, size_t{30}, size_t{100}}) {
            TwoReaders readers(tables, bytesOf(block + block + block + std::string(8 * behind + 1, '0')));
            for (int i = 0; i < 3; ++i) {
                ASSERT_EQ(vekStsOk, readers.decode());
                ASSERT_EQ(1 + before + 16, readers.state().endOfBlockPos);
            }
            ASSERT_FALSE(HasFailure()) << before << ", " << behind;
        }
    }
}

// The same comes of many bytes ahead as of few, where there is no other path.
TEST(HuffmanDecoder, ANumberOfBitsThatNoBlockLeavesTakesTheCarefulPath)
{
    const Tables tables(huffman::lists({2}, {0, 5}), huffman::lists({2}, {0, 0}));
    for (const int numBits : {-100, -9, -8, -1, 33, 40, 64, 65, 1000}) {
        VekDecodeHuffmanState states[2];
        Block blocks[2];
        int positions[2] = {};
        for (const size_t many : {0, 1}) {
            GuardedArray<uint8_t> bytes(many == 0 ? 23 : 100);
            for (uint8_t& b : bytes) b = 0xAA;
            states[many] = {~uint64_t{0}, numBits, 0, 0};
            int16_t dc = 0;
            int marker = 0;
            EXPECT_EQ(vekStsOk, vekiDecodeHuffman8x8_JPEG_1u16s_C1(bytes.data(), static_cast<int>(bytes.size()),
                                                                   &positions[many], blocks[many].data(), &dc, &marker,
                                                                   &tables.decodeDc, &tables.decodeAc, &states[many]));
        }
        EXPECT_EQ(blocks[0], blocks[1]) << numBits;
        EXPECT_EQ(positions[0], positions[1]) << numBits;
        EXPECT_EQ(states[0].numBits, states[1].numBits) << numBits;
        EXPECT_EQ(states[0].endOfBlockPos, states[1].endOfBlockPos) << numBits;
    }
}

TEST(HuffmanDecoder, ARunThatOvershootsALittleLandsOnTheLastCoefficient)
{
    // 49 single steps, then a run of 15 from position 50.
    const Tables tables(huffman::lists({1}, {0}), huffman::lists({0, 2}, {0x01, 0xF1}));
    std::string bits = "0";
    for (int i = 0; i < 49; ++i) bits += "001";
    bits += "011";
    TwoReaders readers(tables, bytesOf(bits));
    EXPECT_EQ(vekStsOk, readers.decode());
    EXPECT_EQ(1, readers.block()[63]);
    EXPECT_EQ(66, readers.state().endOfBlockPos);
}

TEST(HuffmanDecoder, ARunBeyondTheGuardsIsACoefficientOverrun)
{
    const Tables tables(huffman::lists({1}, {0}), huffman::lists({0, 2}, {0x01, 0xF1}));
    std::string bits = "0";
    for (int i = 0; i < 60; ++i) bits += "001";
    bits += "011";
    TwoReaders readers(tables, bytesOf(bits + std::string(240, '0')));
    EXPECT_EQ(vekStsJpegCoefOverrun, readers.decode());
}

}  // namespace
