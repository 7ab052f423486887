#include <gtest/gtest.h>

#include <cstring>

#include "reference/tiff/pack_bits.h"
#include "support/generators.h"
#include "support/guarded_buffer.h"
#include "vekj.h"

namespace {

using support::GuardedBytes;
using support::Random;
using Bytes = std::vector<uint8_t>;

constexpr uint8_t untouched = 0xA5;

// Packs into `room` bytes behind `begin` others, and compares with the model.
void expectPacked(const Bytes& row, int room, int begin = 0)
{
    GuardedBytes src(row.size());
    std::copy(row.begin(), row.end(), src.data());
    GuardedBytes dst(static_cast<size_t>(begin + room));
    std::memset(dst.data(), untouched, static_cast<size_t>(begin + room));
    Bytes expected(static_cast<size_t>(begin), untouched);
    VekStatus status = vekStsOk;
    for (const Bytes& packet : model::packetsOf(row)) {
        if (static_cast<int>(expected.size() + packet.size()) > begin + room) {
            status = vekStsTiffRowFormat;
            break;
        }
        expected.insert(expected.end(), packet.begin(), packet.end());
    }
    int position = begin;
    ASSERT_EQ(status,
              vekiPackBitsRow_TIFF_8u_C1(src.data(), static_cast<int>(row.size()), dst.data(), &position, room));
    ASSERT_EQ(static_cast<int>(expected.size()), position);
    ASSERT_EQ(expected, Bytes(dst.data(), dst.data() + position));
    const int whole = status == vekStsOk ? position : begin + room;
    for (int i = whole; i < begin + room; ++i) ASSERT_EQ(untouched, dst.data()[i]);
}

Bytes randomRow(Random& random, int length)
{
    Bytes row;
    const int runs = random.in(0, 100);
    while (static_cast<int>(row.size()) < length) {
        const int n = random.chance(runs) ? random.chance(20) ? random.in(1, 300) : random.in(1, 6) : 1;
        row.insert(row.end(), static_cast<size_t>(n), random.any<uint8_t>());
    }
    row.resize(static_cast<size_t>(length));
    return row;
}

TEST(PackBits, EveryShortRowOfThreeLetters)
{
    for (int length = 1; length <= 9; ++length) {
        int rows = 1;
        for (int i = 0; i < length; ++i) rows *= 3;
        for (int n = 0; n < rows; ++n) {
            Bytes row;
            for (int i = 0, v = n; i < length; ++i, v /= 3) row.push_back(static_cast<uint8_t>(v % 3));
            expectPacked(row, 2 * length);
        }
    }
}

TEST(PackBits, RunsAndLiteralsOfEveryLength)
{
    for (int n = 1; n <= 400; ++n) {
        expectPacked(Bytes(static_cast<size_t>(n), 9), 2 * n);
        Bytes literal;
        for (int i = 0; i < n; ++i) literal.push_back(static_cast<uint8_t>(i * 7));
        expectPacked(literal, 2 * n);
        literal.insert(literal.end(), 3, 1);
        expectPacked(literal, 2 * n + 8);
        literal.push_back(2);
        expectPacked(literal, 2 * n + 8);
    }
}

TEST(PackBits, RandomRowsInEveryRoom)
{
    Random random(1);
    for (int i = 0; i < 60; ++i) {
        const Bytes row = randomRow(random, random.in(1, 400));
        for (int room = 1; room < 2 * static_cast<int>(row.size()); room += random.in(1, 5))
            expectPacked(row, room, random.in(0, 3));
    }
}

TEST(PackBits, LongRowsInAmpleAndScarceRoom)
{
    Random random(11);
    for (int i = 0; i < 200; ++i) {
        const Bytes row = randomRow(random, random.in(1000, 9000));
        const int size = static_cast<int>(row.size());
        for (const int room : {2 * size, size + size / 128, random.in(1, size), random.in(1, size)})
            expectPacked(row, room, random.in(0, 3));
    }
}

TEST(PackBits, PairAtTheBeginningIsARunAndInsideALiteralIsNot)
{
    const auto packets = [](const Bytes& row) {
        Bytes dst(64);
        int position = 0;
        EXPECT_EQ(vekStsOk,
                  vekiPackBitsRow_TIFF_8u_C1(row.data(), static_cast<int>(row.size()), dst.data(), &position, 64));
        dst.resize(static_cast<size_t>(position));
        return dst;
    };
    EXPECT_EQ((Bytes{0, 'A'}), packets({'A'}));
    EXPECT_EQ((Bytes{0xFF, 'A', 0, 'B'}), packets({'A', 'A', 'B'}));
    EXPECT_EQ((Bytes{3, 'A', 'B', 'B', 'C'}), packets({'A', 'B', 'B', 'C'}));
    EXPECT_EQ((Bytes{0, 'A', 0xFE, 'B', 0, 'C'}), packets({'A', 'B', 'B', 'B', 'C'}));
    EXPECT_EQ((Bytes{0x81, 'A', 0, 'A'}), packets(Bytes(129, 'A')));
}

TEST(PackBits, PackingChecksItsArgumentsInOrder)
{
    uint8_t src[4] = {}, dst[8];
    int position = 0;
    EXPECT_EQ(vekStsNullPointer, vekiPackBitsRow_TIFF_8u_C1(nullptr, 0, dst, &position, 0));
    EXPECT_EQ(vekStsNullPointer, vekiPackBitsRow_TIFF_8u_C1(src, 0, nullptr, &position, 0));
    EXPECT_EQ(vekStsNullPointer, vekiPackBitsRow_TIFF_8u_C1(src, 0, dst, nullptr, 0));
    EXPECT_EQ(vekStsBadSize, vekiPackBitsRow_TIFF_8u_C1(src, 0, dst, &position, 8));
    EXPECT_EQ(vekStsBadSize, vekiPackBitsRow_TIFF_8u_C1(src, 4, dst, &position, 0));
    EXPECT_EQ(0, position);
}

// Unpacks `length` bytes; the source ends at an unmapped page unless a byte behind it is to be read.
void expectUnpacked(const Bytes& packed, int begin, int length)
{
    constexpr uint8_t behind = 0x5C;
    const model::Unpacked expected = model::unpack(packed, begin, length, behind);
    const bool readsBehind = expected.position > static_cast<int>(packed.size());
    GuardedBytes src(packed.size() + (readsBehind ? 1 : 0));
    std::copy(packed.begin(), packed.end(), src.data());
    if (readsBehind)
        src.data()[packed.size()] = behind;
    GuardedBytes dst(static_cast<size_t>(length));
    std::memset(dst.data(), untouched, static_cast<size_t>(length));
    int position = begin;
    ASSERT_EQ(expected.status,
              vekiUnpackBitsRow_TIFF_8u_C1(src.data(), &position, static_cast<int>(packed.size()), dst.data(), length));
    ASSERT_EQ(expected.position, position);
    Bytes bytes = expected.bytes;
    bytes.resize(static_cast<size_t>(length), untouched);
    ASSERT_EQ(bytes, Bytes(dst.data(), dst.data() + length));
}

TEST(PackBits, UnpacksWhatItPackedAndStopsAtEveryCut)
{
    Random random(2);
    for (int i = 0; i < 40; ++i) {
        const Bytes row = randomRow(random, random.in(1, 300));
        Bytes packed;
        for (const Bytes& packet : model::packetsOf(row)) packed.insert(packed.end(), packet.begin(), packet.end());
        for (size_t cut = 1; cut <= packed.size(); ++cut)
            expectUnpacked({packed.begin(), packed.begin() + static_cast<ptrdiff_t>(cut)}, 0,
                           static_cast<int>(row.size()));
        for (int length = 1; length <= static_cast<int>(row.size()) + 2; ++length) expectUnpacked(packed, 0, length);
    }
}

TEST(PackBits, UnpacksNoise)
{
    Random random(3);
    for (int i = 0; i < 20000; ++i) {
        Bytes packed(static_cast<size_t>(random.in(1, 40)));
        for (uint8_t& byte : packed)
            byte = static_cast<uint8_t>(random.chance(60) ? random.in(-6, 6) : random.in(-128, 127));
        expectUnpacked(packed, random.in(0, static_cast<int>(packed.size())), random.in(1, 300));
    }
}

// A row as a packer of another mind may write it: packets of every length, without need, some of them empty.
Bytes wilfulPackets(Random& random, int length)
{
    Bytes packed;
    const int longOnes = random.in(0, 100);
    for (int stored = 0; stored < length;) {
        const int n = std::min(random.chance(longOnes) ? random.in(1, 128) : random.in(1, 8), length - stored);
        if (random.chance(3))
            packed.insert(packed.end(), static_cast<size_t>(random.in(1, 3)), 0x80);
        const bool isRun = n > 1 && random.chance(50);
        packed.push_back(static_cast<uint8_t>(isRun ? 1 - n : n - 1));
        for (int i = 0; i < (isRun ? 1 : n); ++i) packed.push_back(random.any<uint8_t>());
        stored += n;
    }
    return packed;
}

TEST(PackBits, UnpacksLongRowsWholeAndCut)
{
    Random random(12);
    for (int i = 0; i < 300; ++i) {
        const int length = random.in(300, 9000);
        const Bytes packed = wilfulPackets(random, length);
        expectUnpacked(packed, 0, length);
        expectUnpacked(packed, 0, random.in(1, length + 200));
        const auto cut = static_cast<ptrdiff_t>(random.in(1, static_cast<int>(packed.size())));
        expectUnpacked({packed.begin(), packed.begin() + cut}, random.in(0, static_cast<int>(cut)), length);
    }
}

TEST(PackBits, EveryControlByte)
{
    Random random(4);
    for (int control = -128; control < 128; ++control)
        for (int length = 1; length <= 130; ++length) {
            Bytes packed(132);
            random.fill(packed);
            packed[0] = static_cast<uint8_t>(control);
            packed[1] = 0;
            expectUnpacked(packed, 0, length);
        }
}

TEST(PackBits, RunAtTheEndReadsTheByteBehindIt)
{
    const uint8_t src[2] = {0xFE, 'x'};  // three of the byte behind
    uint8_t dst[3];
    int position = 0;
    EXPECT_EQ(vekStsOk, vekiUnpackBitsRow_TIFF_8u_C1(src, &position, 1, dst, 3));
    EXPECT_EQ(2, position);
    EXPECT_EQ('x', dst[0]);
    EXPECT_EQ('x', dst[2]);
}

TEST(PackBits, UnpackingChecksItsArgumentsInOrder)
{
    uint8_t src[4] = {}, dst[8];
    int position = 0;
    EXPECT_EQ(vekStsNullPointer, vekiUnpackBitsRow_TIFF_8u_C1(nullptr, &position, 0, dst, 0));
    EXPECT_EQ(vekStsNullPointer, vekiUnpackBitsRow_TIFF_8u_C1(src, nullptr, 0, dst, 0));
    EXPECT_EQ(vekStsNullPointer, vekiUnpackBitsRow_TIFF_8u_C1(src, &position, 0, nullptr, 0));
    EXPECT_EQ(vekStsBadSize, vekiUnpackBitsRow_TIFF_8u_C1(src, &position, 0, dst, 8));
    EXPECT_EQ(vekStsBadSize, vekiUnpackBitsRow_TIFF_8u_C1(src, &position, 4, dst, 0));
    EXPECT_EQ(0, position);
}

}  // namespace
