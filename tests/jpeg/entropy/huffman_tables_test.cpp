#include <gtest/gtest.h>

#include "huffman_fixtures.h"
#include "support/guarded_buffer.h"

namespace {

using huffman::lists;
using model::HuffmanLists;
using support::GuardedArray;
using support::Random;

void expectDecodeTable(const HuffmanLists& l)
{
    GuardedArray<uint8_t> bits(16);
    GuardedArray<uint8_t> vals(256);
    std::copy(l.bits.begin(), l.bits.end(), bits.begin());
    std::copy(l.vals.begin(), l.vals.end(), vals.begin());
    GuardedArray<VekDecodeHuffmanSpec> object(1);
    std::memset(object.data(), 0xA5, sizeof(VekDecodeHuffmanSpec));
    model::DecodeTable expected;
    const VekStatus status = model::buildDecodeTable(l, expected);
    ASSERT_EQ(status, vekiDecodeHuffmanSpecInit_JPEG_8u(bits.data(), vals.data(), object.data()));
    if (status != vekStsOk)
        return;
    size_t symbols = 0;
    for (const uint8_t count : l.bits) symbols += count;
    EXPECT_EQ(0, std::memcmp(expected.symbols.data(), object[0].symbols, 2 * symbols));
    EXPECT_EQ(0, std::memcmp(expected.lookup.data(), object[0].lookup, sizeof object[0].lookup));
    EXPECT_EQ(0, std::memcmp(expected.minCode.data(), object[0].minCode, sizeof object[0].minCode));
    EXPECT_EQ(0, std::memcmp(expected.maxCode.data(), object[0].maxCode, sizeof object[0].maxCode));
    EXPECT_EQ(0, std::memcmp(expected.valPtr.data(), object[0].valPtr, sizeof object[0].valPtr));
}

void expectEncodeTable(const HuffmanLists& l)
{
    GuardedArray<VekEncodeHuffmanSpec> object(1);
    std::memset(object.data(), 0xA5, sizeof(VekEncodeHuffmanSpec));
    model::EncodeTable expected;
    const VekStatus status = model::buildEncodeTable(l, expected);
    ASSERT_EQ(status, vekiEncodeHuffmanSpecInit_JPEG_8u(l.bits.data(), l.vals.data(), object.data()));
    if (status != vekStsOk)
        return;
    EXPECT_EQ(0, std::memcmp(expected.data(), object[0].codes, sizeof object[0].codes));
}

TEST(HuffmanTables, ReportTheirSizes)
{
    int size = 0;
    EXPECT_EQ(vekStsOk, vekiDecodeHuffmanSpecGetBufSize_JPEG_8u(&size));
    EXPECT_EQ(1644, size);
    EXPECT_EQ(vekStsOk, vekiEncodeHuffmanSpecGetBufSize_JPEG_8u(&size));
    EXPECT_EQ(1024, size);
    EXPECT_EQ(vekStsNullPointer, vekiDecodeHuffmanSpecGetBufSize_JPEG_8u(nullptr));
    EXPECT_EQ(vekStsNullPointer, vekiEncodeHuffmanSpecGetBufSize_JPEG_8u(nullptr));
}

TEST(HuffmanTables, RefuseNullPointers)
{
    const HuffmanLists l = huffman::luminanceDc();
    VekDecodeHuffmanSpec decode;
    VekEncodeHuffmanSpec encode;
    VekDecodeHuffmanSpec* newDecode = nullptr;
    VekEncodeHuffmanSpec* newEncode = nullptr;
    const uint8_t* const bits = l.bits.data();
    const uint8_t* const vals = l.vals.data();
    EXPECT_EQ(vekStsNullPointer, vekiDecodeHuffmanSpecInit_JPEG_8u(nullptr, vals, &decode));
    EXPECT_EQ(vekStsNullPointer, vekiDecodeHuffmanSpecInit_JPEG_8u(bits, nullptr, &decode));
    EXPECT_EQ(vekStsNullPointer, vekiDecodeHuffmanSpecInit_JPEG_8u(bits, vals, nullptr));
    EXPECT_EQ(vekStsNullPointer, vekiEncodeHuffmanSpecInit_JPEG_8u(nullptr, vals, &encode));
    EXPECT_EQ(vekStsNullPointer, vekiEncodeHuffmanSpecInit_JPEG_8u(bits, nullptr, &encode));
    EXPECT_EQ(vekStsNullPointer, vekiEncodeHuffmanSpecInit_JPEG_8u(bits, vals, nullptr));
    EXPECT_EQ(vekStsNullPointer, vekiDecodeHuffmanSpecInitAlloc_JPEG_8u(nullptr, vals, &newDecode));
    EXPECT_EQ(vekStsNullPointer, vekiDecodeHuffmanSpecInitAlloc_JPEG_8u(bits, nullptr, &newDecode));
    EXPECT_EQ(vekStsNullPointer, vekiDecodeHuffmanSpecInitAlloc_JPEG_8u(bits, vals, nullptr));
    EXPECT_EQ(vekStsNullPointer, vekiEncodeHuffmanSpecInitAlloc_JPEG_8u(nullptr, vals, &newEncode));
    EXPECT_EQ(vekStsNullPointer, vekiEncodeHuffmanSpecInitAlloc_JPEG_8u(bits, nullptr, &newEncode));
    EXPECT_EQ(vekStsNullPointer, vekiEncodeHuffmanSpecInitAlloc_JPEG_8u(bits, vals, nullptr));
    EXPECT_EQ(vekStsNullPointer, vekiDecodeHuffmanSpecFree_JPEG_8u(nullptr));
    EXPECT_EQ(vekStsNullPointer, vekiEncodeHuffmanSpecFree_JPEG_8u(nullptr));
    EXPECT_EQ(nullptr, newDecode);
    EXPECT_EQ(nullptr, newEncode);
}

TEST(HuffmanTables, EqualTheirModelsOnStandardLists)
{
    for (const HuffmanLists& l : {huffman::luminanceDc(), huffman::luminanceAc()}) {
        expectDecodeTable(l);
        expectEncodeTable(l);
    }
}

TEST(HuffmanTables, EqualTheirModelsOnRandomLists)
{
    Random random(1);
    for (int round = 0; round < 2000; ++round) {
        HuffmanLists l;
        random.fill(l.vals);
        for (uint8_t& count : l.bits)
            count = static_cast<uint8_t>(random.chance(40) ? 0 : random.in(0, random.in(0, 40)));
        expectDecodeTable(l);
        expectEncodeTable(l);
        const HuffmanLists good = huffman::randomLists(random, random.in(1, 256));
        expectDecodeTable(good);
        expectEncodeTable(good);
    }
}

TEST(HuffmanTables, TakeExactly256CodesAndNoMore)
{
    HuffmanLists l = lists({0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 255}, {});
    expectDecodeTable(l);
    expectEncodeTable(l);
    VekDecodeHuffmanSpec decode;
    VekEncodeHuffmanSpec encode;
    EXPECT_EQ(vekStsOk, vekiDecodeHuffmanSpecInit_JPEG_8u(l.bits.data(), l.vals.data(), &decode));
    EXPECT_EQ(vekStsOk, vekiEncodeHuffmanSpecInit_JPEG_8u(l.bits.data(), l.vals.data(), &encode));
    l.bits[13] = 1;
    EXPECT_EQ(vekStsJpegHuffmanTable, vekiDecodeHuffmanSpecInit_JPEG_8u(l.bits.data(), l.vals.data(), &decode));
    EXPECT_EQ(vekStsJpegHuffmanTable, vekiEncodeHuffmanSpecInit_JPEG_8u(l.bits.data(), l.vals.data(), &encode));
}

TEST(HuffmanTables, ACompleteCodeIsForTheDecoderOnly)
{
    for (const HuffmanLists& l : {lists({2}, {7, 9}), lists({1, 2}, {1, 2, 3})}) {
        VekDecodeHuffmanSpec decode;
        VekEncodeHuffmanSpec encode;
        EXPECT_EQ(vekStsOk, vekiDecodeHuffmanSpecInit_JPEG_8u(l.bits.data(), l.vals.data(), &decode));
        EXPECT_EQ(vekStsJpegHuffmanTable, vekiEncodeHuffmanSpecInit_JPEG_8u(l.bits.data(), l.vals.data(), &encode));
        expectDecodeTable(l);
    }
}

TEST(HuffmanTables, APlaceOf256InTheLookupIsAcceptedAndOneOf257IsNot)
{
    VekDecodeHuffmanSpec decode;
    HuffmanLists l = lists({0, 0, 0, 0, 0, 0, 0, 255}, {});
    l.bits[7] = 255;
    l.bits[6] = 1;  // 0 to 0, 2 to 256
    EXPECT_EQ(vekStsOk, vekiDecodeHuffmanSpecInit_JPEG_8u(l.bits.data(), l.vals.data(), &decode));
    expectDecodeTable(l);
    l = lists({3}, {1, 2, 3});
    EXPECT_EQ(vekStsJpegHuffmanTable, vekiDecodeHuffmanSpecInit_JPEG_8u(l.bits.data(), l.vals.data(), &decode));
}

TEST(HuffmanTables, AnEmptyListBuilds)
{
    const HuffmanLists l;
    expectDecodeTable(l);
    expectEncodeTable(l);
    VekDecodeHuffmanSpec decode;
    ASSERT_EQ(vekStsOk, vekiDecodeHuffmanSpecInit_JPEG_8u(l.bits.data(), l.vals.data(), &decode));
    for (size_t i = 1; i <= 17; ++i) EXPECT_EQ(0xFFFF, decode.maxCode[i]);
    EXPECT_EQ(0, decode.maxCode[0]);
}

TEST(HuffmanTables, OfASymbolThatStandsTwiceTheLastCodeCounts)
{
    const HuffmanLists l = lists({0, 2}, {5, 5});
    VekEncodeHuffmanSpec encode;
    ASSERT_EQ(vekStsOk, vekiEncodeHuffmanSpecInit_JPEG_8u(l.bits.data(), l.vals.data(), &encode));
    EXPECT_EQ(0x20001U, encode.codes[5]);
    EXPECT_EQ(0U, encode.codes[6]);
}

TEST(HuffmanTables, AllocatedOnesAreBuiltAndDeliveredEvenIfTheListsAreBad)
{
    const HuffmanLists good = huffman::luminanceAc();
    const HuffmanLists bad = lists({255, 255}, {});
    for (const auto& [l, status] :
         {std::pair(good, VekStatus{vekStsOk}), std::pair(bad, VekStatus{vekStsJpegHuffmanTable})}) {
        VekDecodeHuffmanSpec* decode = nullptr;
        VekEncodeHuffmanSpec* encode = nullptr;
        EXPECT_EQ(status, vekiDecodeHuffmanSpecInitAlloc_JPEG_8u(l.bits.data(), l.vals.data(), &decode));
        EXPECT_EQ(status, vekiEncodeHuffmanSpecInitAlloc_JPEG_8u(l.bits.data(), l.vals.data(), &encode));
        ASSERT_NE(nullptr, decode);
        ASSERT_NE(nullptr, encode);
        EXPECT_EQ(vekStsOk, vekiDecodeHuffmanSpecFree_JPEG_8u(decode));
        EXPECT_EQ(vekStsOk, vekiEncodeHuffmanSpecFree_JPEG_8u(encode));
    }
}

void expectOptimal(const std::array<int, 256>& counts)
{
    HuffmanLists expected;
    int numVals = 0;
    const VekStatus status = model::optimalLists(counts, expected, numVals);
    GuardedArray<uint8_t> bits(16);
    std::array<uint8_t, 256> vals;
    vals.fill(0xA5);
    ASSERT_EQ(status, vekiEncodeHuffmanRawTableInit_JPEG_8u(counts.data(), bits.data(), vals.data()));
    if (status != vekStsOk) {
        EXPECT_EQ(0xA5, vals[0]);
        EXPECT_EQ(0, bits[0]);
        return;
    }
    EXPECT_TRUE(std::equal(expected.bits.begin(), expected.bits.end(), bits.begin()));
    for (size_t i = 0; i < 256; ++i) EXPECT_EQ(static_cast<int>(i) < numVals ? expected.vals[i] : 0xA5, vals[i]) << i;
}

TEST(OptimalTable, EqualsItsModel)
{
    Random random(2);
    for (int round = 0; round < 400; ++round) {
        std::array<int, 256> counts{};
        const int kind = random.in(0, 5);
        for (int& c : counts) {
            if (random.chance(kind * 18))
                continue;
            c = kind == 0   ? random.in(0, 3)
                : kind == 1 ? 1 << random.in(0, 26)
                            : random.in(1, kind == 2 ? 1000000000 : 2000);
        }
        expectOptimal(counts);
    }
}

TEST(OptimalTable, NoCountsGiveNoCodes)
{
    std::array<int, 256> counts{};
    expectOptimal(counts);
    std::array<uint8_t, 16> bits;
    bits.fill(9);
    std::array<uint8_t, 256> vals{};
    EXPECT_EQ(vekStsOk, vekiEncodeHuffmanRawTableInit_JPEG_8u(counts.data(), bits.data(), vals.data()));
    EXPECT_EQ((std::array<uint8_t, 16>{}), bits);
}

TEST(OptimalTable, OneSymbolGetsOneBit)
{
    std::array<int, 256> counts{};
    counts[77] = 5;
    std::array<uint8_t, 16> bits{};
    std::array<uint8_t, 256> vals{};
    EXPECT_EQ(vekStsOk, vekiEncodeHuffmanRawTableInit_JPEG_8u(counts.data(), bits.data(), vals.data()));
    EXPECT_EQ(1, bits[0]);
    EXPECT_EQ(77, vals[0]);
}

TEST(OptimalTable, FibonacciCountsAreLimitedTo16BitsAndRefusedBeyond32)
{
    for (int length : {16, 18, 25, 31, 32, 33, 36}) {
        std::array<int, 256> counts{};
        int a = 1;
        int b = 1;
        for (int i = 0; i < length; ++i) {
            counts[static_cast<size_t>(i)] = b;
            b += a;
            a = b - a;
        }
        expectOptimal(counts);
    }
}

TEST(OptimalTable, CountersOfEqualLengthsWrapAt256)
{
    std::array<int, 256> counts{};
    std::fill(counts.begin(), counts.begin() + 255, 1);
    expectOptimal(counts);
    std::array<uint8_t, 16> bits{};
    std::array<uint8_t, 256> vals{};
    EXPECT_EQ(vekStsOk, vekiEncodeHuffmanRawTableInit_JPEG_8u(counts.data(), bits.data(), vals.data()));
    EXPECT_EQ((std::array<uint8_t, 16>{}), bits);
}

TEST(OptimalTable, CountsAboveABillionGetNoCode)
{
    for (const int large : {999999999, 1000000000, 1000000001}) {
        std::array<int, 256> counts{};
        counts[1] = large;
        counts[3] = 7;
        expectOptimal(counts);
        std::array<uint8_t, 16> bits{};
        std::array<uint8_t, 256> vals{};
        EXPECT_EQ(vekStsOk, vekiEncodeHuffmanRawTableInit_JPEG_8u(counts.data(), bits.data(), vals.data()));
        EXPECT_EQ(1, bits[0]);
        EXPECT_EQ(large > 1000000000 ? 0 : 1, bits[1]);
        EXPECT_EQ(large > 1000000000 ? 3 : 1, vals[0]);
    }
}

TEST(OptimalTable, RefusesNullPointers)
{
    std::array<int, 256> counts{};
    std::array<uint8_t, 256> bytes{};
    EXPECT_EQ(vekStsNullPointer, vekiEncodeHuffmanRawTableInit_JPEG_8u(nullptr, bytes.data(), bytes.data()));
    EXPECT_EQ(vekStsNullPointer, vekiEncodeHuffmanRawTableInit_JPEG_8u(counts.data(), nullptr, bytes.data()));
    EXPECT_EQ(vekStsNullPointer, vekiEncodeHuffmanRawTableInit_JPEG_8u(counts.data(), bytes.data(), nullptr));
}

}  // namespace
