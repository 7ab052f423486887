// The shared memory kernels: what they write and nothing else, at every alignment, on both sides of the sizes where
// their stores change.
#include "frame/memory_kernels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <vector>

#include "frame/recorded_core.h"
#include "reference/jpeg/huffman.h"
#include "support/generators.h"
#include "support/guarded_buffer.h"
#include "support/sanitizers.h"

namespace {

using support::Guard;
using support::GuardedBytes;
using support::Random;
using support::underSanitizer;

// What the core services say of the cache while a test runs.
class CacheSize {
public:
    explicit CacheSize(int32_t size)
    {
        recorded::cacheSize = size;
        recorded::cacheSizeCalls = 0;
    }
    ~CacheSize() { recorded::cacheSize = -1; }
    CacheSize(const CacheSize&) = delete;
    CacheSize& operator=(const CacheSize&) = delete;
};

constexpr size_t margin = 96;
constexpr uint8_t untouched = 0xA7;

// Calls fill(p) with an address `offset` bytes into a buffer and compares everything with `expected`, the bytes that
// fill() has to write.
void expectWrites(size_t offset, const std::vector<uint8_t>& expected, const std::function<void(uint8_t*)>& fill)
{
    std::vector<uint8_t> buffer(margin + offset + expected.size() + margin, untouched);
    std::vector<uint8_t> wanted = buffer;
    std::copy(expected.begin(), expected.end(), wanted.begin() + static_cast<std::ptrdiff_t>(margin + offset));
    fill(buffer.data() + margin + offset);
    ASSERT_TRUE(wanted == buffer) << "offset " << offset << ", " << expected.size() << " bytes";
}

std::vector<uint8_t> noise(size_t size, uint64_t seed)
{
    std::vector<uint8_t> bytes(size);
    uint64_t state = seed * 0x9E3779B97F4A7C15U + 1;
    for (uint8_t& b : bytes) {
        state = state * 6364136223846793005U + 1442695040888963407U;
        b = static_cast<uint8_t>(state >> 56);
    }
    return bytes;
}

const std::vector<int>& shortLengths()
{
    static const std::vector<int> lengths = [] {
        std::vector<int> all;
        for (int n = 1; n <= 200; ++n) all.push_back(n);
        for (const int n : {255, 256, 257, 1000, 4096, 32767, 32768, 32769, 40001}) all.push_back(n);
        return all;
    }();
    return lengths;
}

TEST(Copy, EveryLengthAndAlignment)
{
    for (const int len : shortLengths())
        for (size_t offset = 0; offset<33; offset += len> 300 ? 7 : 1) {
            const std::vector<uint8_t> source = noise(static_cast<size_t>(len), offset);
            expectWrites(offset, source,
                         [&](uint8_t* p) { EXPECT_EQ(vekStsOk, q3::veksCopy_8u(source.data(), p, len)); });
            expectWrites(offset, source, [&](uint8_t* p) {
                EXPECT_EQ(p, q3::ownsCopy_8u(source.data(), p, len)) << "the destination is the result";
            });
        }
}

TEST(Copy, ReadsAndWritesNothingOutside)
{
    for (const int len : {1, 31, 32, 33, 4095, 32767, 32768, 32769})
        for (const Guard guard : {Guard::Behind, Guard::Before}) {
            GuardedBytes source(static_cast<size_t>(len), guard);
            GuardedBytes destination(static_cast<size_t>(len), guard);
            std::memset(source.data(), 0x3C, static_cast<size_t>(len));
            EXPECT_EQ(vekStsOk, q3::veksCopy_8u(source.data(), destination.data(), len));
            EXPECT_EQ(0, std::memcmp(source.data(), destination.data(), static_cast<size_t>(len)));
        }
}

TEST(Copy, ChecksItsArgumentsInOrder)
{
    uint8_t a = 1;
    uint8_t b = 2;
    EXPECT_EQ(vekStsNullPointer, q3::veksCopy_8u(nullptr, &b, 0));
    EXPECT_EQ(vekStsNullPointer, q3::veksCopy_8u(&a, nullptr, 0));
    EXPECT_EQ(vekStsBadSize, q3::veksCopy_8u(&a, &b, 0));
    EXPECT_EQ(vekStsBadSize, q3::veksCopy_8u(&a, &b, -1));
    EXPECT_EQ(2, b);
}

TEST(Fill, EveryLengthAndAlignment)
{
    for (const int len : shortLengths())
        for (size_t offset = 0; offset<33; offset += len> 300 ? 7 : 1) {
            const auto size = static_cast<size_t>(len);
            expectWrites(offset, std::vector<uint8_t>(size, 0),
                         [&](uint8_t* p) { EXPECT_EQ(vekStsOk, q3::veksZero_8u(p, len)); });
            expectWrites(offset, std::vector<uint8_t>(size, 0xC5),
                         [&](uint8_t* p) { EXPECT_EQ(vekStsOk, q3::veksSet_8u(0xC5, p, len)); });
            expectWrites(offset, std::vector<uint8_t>(2 * size, 0), [&](uint8_t* p) {
                EXPECT_EQ(vekStsOk, q3::veksZero_16s(reinterpret_cast<int16_t*>(p), len));
            });
            expectWrites(offset, std::vector<uint8_t>(4 * size, 0),
                         [&](uint8_t* p) { EXPECT_EQ(vekStsOk, q3::veksZero_32f(reinterpret_cast<float*>(p), len)); });
            expectWrites(offset, std::vector<uint8_t>(size, 0),
                         [&](uint8_t* p) { EXPECT_EQ(p, q3::ownsZero_8u(p, len)) << "the destination is the result"; });
        }
}

// Beyond 2 MiB the cache size is asked for, and stores may bypass the cache; the bytes are the same.
TEST(Fill, BeyondTwoMebibytesWithAndWithoutTheCache)
{
    constexpr int threshold = 0x200000;
    for (const int32_t cacheSize : {-1, 0, 1, 4096, threshold, threshold + 1, 0x40000000}) {
        const CacheSize cache(cacheSize);
        for (const int len : {threshold - 1, threshold, threshold + 1, threshold + 67}) {
            const size_t offset = static_cast<size_t>(len) % 64;
            const auto size = static_cast<size_t>(len);
            const auto asked = [&](int bytes) { return bytes > threshold ? 1 : 0; };
            recorded::cacheSizeCalls = 0;
            expectWrites(offset, std::vector<uint8_t>(size, 0), [&](uint8_t* p) { q3::veksZero_8u(p, len); });
            EXPECT_EQ(asked(len), recorded::cacheSizeCalls);
            recorded::cacheSizeCalls = 0;
            expectWrites(offset, std::vector<uint8_t>(size, 0x5B), [&](uint8_t* p) { q3::veksSet_8u(0x5B, p, len); });
            EXPECT_EQ(asked(len), recorded::cacheSizeCalls);
            recorded::cacheSizeCalls = 0;
            expectWrites(offset, std::vector<uint8_t>(size / 2 * 2, 0),
                         [&](uint8_t* p) { q3::veksZero_16s(reinterpret_cast<int16_t*>(p), len / 2); });
            EXPECT_EQ(asked(len / 2 * 2), recorded::cacheSizeCalls);
            recorded::cacheSizeCalls = 0;
            expectWrites(offset, std::vector<uint8_t>(size / 4 * 4, 0),
                         [&](uint8_t* p) { q3::veksZero_32f(reinterpret_cast<float*>(p), len / 4); });
            EXPECT_EQ(asked(len / 4 * 4), recorded::cacheSizeCalls);
        }
    }
}

TEST(Fill, PastTheCacheAtEveryAlignment)
{
    const CacheSize cache(1);
    for (size_t offset = 0; offset < 64; offset += underSanitizer ? 13 : 1)
        for (const int len : {64, 65, 127, 128, 1000 + static_cast<int>(offset)}) {
            expectWrites(offset, std::vector<uint8_t>(static_cast<size_t>(len), 0x99),
                         [&](uint8_t* p) { q3::ownsSet_8u(0x99, p, len); });
            expectWrites(offset, std::vector<uint8_t>(static_cast<size_t>(len), 0),
                         [&](uint8_t* p) { q3::ownsZero_8u(p, len); });
        }
}

std::vector<uint8_t> repeated(int32_t value, size_t count)
{
    std::vector<uint8_t> bytes(4 * count);
    for (size_t i = 0; i < count; ++i) std::memcpy(bytes.data() + 4 * i, &value, 4);
    return bytes;
}

TEST(Fill, WordsOf32Bits)
{
    constexpr int32_t value = 0x12345678;
    for (const int32_t cacheSize : {-1, 1}) {
        const CacheSize cache(cacheSize);
        for (int len = 1; len <= 70; ++len)
            for (size_t offset = 0; offset < 9; ++offset)
                expectWrites(offset, repeated(value, static_cast<size_t>(len)),
                             [&](uint8_t* p) { q3::ownsSet_32s(value, reinterpret_cast<int32_t*>(p), len); });
        for (const int len : {0x200000 / 4, 0x200000 / 4 + 1, 0x200000 / 4 + 17})
            for (const size_t offset : {0, 1, 4, 12, 28, 32, 60})
                expectWrites(offset, repeated(value, static_cast<size_t>(len)),
                             [&](uint8_t* p) { q3::ownsSet_32s(value, reinterpret_cast<int32_t*>(p), len); });
    }
}

TEST(Fill, ChecksItsArgumentsInOrder)
{
    EXPECT_EQ(vekStsNullPointer, q3::veksZero_8u(nullptr, 0));
    EXPECT_EQ(vekStsNullPointer, q3::veksZero_16s(nullptr, 0));
    EXPECT_EQ(vekStsNullPointer, q3::veksZero_32f(nullptr, 0));
    EXPECT_EQ(vekStsNullPointer, q3::veksSet_8u(1, nullptr, 0));
    uint8_t byte = 9;
    int16_t word = 9;
    float number = 9;
    EXPECT_EQ(vekStsBadSize, q3::veksZero_8u(&byte, 0));
    EXPECT_EQ(vekStsBadSize, q3::veksZero_16s(&word, 0));
    EXPECT_EQ(vekStsBadSize, q3::veksZero_32f(&number, -1));
    EXPECT_EQ(vekStsBadSize, q3::veksSet_8u(1, &byte, -5));
    EXPECT_EQ(9, byte);
    EXPECT_EQ(9, word);
    EXPECT_EQ(9, number);
}

// A region in guarded memory, the gaps behind its rows included; the last row ends where its samples end.
struct Region {
    Region(size_t rowBytes, int stepBytes, int rows, uint64_t seed)
        : size(static_cast<size_t>(stepBytes) * static_cast<size_t>(rows - 1) + rowBytes), bytes(size)
    {
        const std::vector<uint8_t> content = noise(size, seed);
        std::copy(content.begin(), content.end(), bytes.data());
    }
    std::vector<uint8_t> snapshot() { return {bytes.data(), bytes.data() + size}; }

    size_t size;
    GuardedBytes bytes;
};

// Runs call(source, destination) and expects each sample of the destination to hold map(its source), the rest to stay.
template <typename From, typename To, typename Call, typename Map>
void expectMapped(VekSize roi, int srcGap, int dstGap, const Call& call, const Map& map)
{
    const size_t width = static_cast<size_t>(roi.width);
    const int srcStep = static_cast<int>(width * sizeof(From)) + srcGap;
    const int dstStep = static_cast<int>(width * sizeof(To)) + dstGap;
    Region source(width * sizeof(From), srcStep, roi.height, 1);
    Region destination(width * sizeof(To), dstStep, roi.height, 2);
    std::vector<uint8_t> wanted = destination.snapshot();
    for (int y = 0; y < roi.height; ++y)
        for (size_t x = 0; x < width; ++x) {
            From from;
            std::memcpy(&from, source.bytes.data() + y * srcStep + static_cast<std::ptrdiff_t>(x * sizeof from),
                        sizeof from);
            const To to = map(from);
            std::memcpy(wanted.data() + y * dstStep + static_cast<std::ptrdiff_t>(x * sizeof to), &to, sizeof to);
        }
    ASSERT_EQ(vekStsOk, call(reinterpret_cast<From*>(source.bytes.data()), srcStep,
                             reinterpret_cast<To*>(destination.bytes.data()), dstStep));
    ASSERT_TRUE(wanted == destination.snapshot())
        << roi.width << " x " << roi.height << ", gaps " << srcGap << " and " << dstGap;
}

template <typename Check>
void overRegions(const Check& check)
{
    for (int width = 1; width <= 70; ++width)
        for (const int height : {1, 2, 5})
            for (const auto& [srcGap, dstGap] : {std::pair(0, 0), {0, 8}, {8, 0}, {3, 5}, {64, 1}})
                check(VekSize{width, height}, srcGap, dstGap);
}

TEST(CopyRegion, Samples16)
{
    const auto check = [](VekSize roi, int srcGap, int dstGap) {
        expectMapped<int16_t, int16_t>(
            roi, srcGap, dstGap,
            [&](const int16_t* src, int srcStep, int16_t* dst, int dstStep) {
                return q3::vekiCopy_16s_C1R(src, srcStep, dst, dstStep, roi);
            },
            [](int16_t v) { return v; });
    };
    overRegions(check);
    for (const int width : {511, 512, 513, 2000}) check({width, 3}, 6, 2);
    for (const int32_t cacheSize : {-1, 0, 4096, 0x400001, 0x10000000}) {  // past the cache from 0x400001 bytes on
        const CacheSize cache(cacheSize);
        check({2048, 1024}, 0, 0);
        check({2049, 1024}, 1, 3);
    }
}

TEST(CopyRegion, Samples32)
{
    const auto check = [](VekSize roi, int srcGap, int dstGap) {
        expectMapped<uint32_t, uint32_t>(
            roi, srcGap, dstGap,
            [&](const uint32_t* src, int srcStep, uint32_t* dst, int dstStep) {
                return q3::vekiCopy_32f_C1R(reinterpret_cast<const float*>(src), srcStep, reinterpret_cast<float*>(dst),
                                            dstStep, roi);
            },
            [](uint32_t v) { return v; });
    };
    overRegions(check);
    check({3000, 3}, 4, 12);
}

TEST(CopyRegion, StepsAreNotTested)
{
    const int16_t source[] = {1, 2, 3, 4, 5, 6};
    int16_t destination[6] = {};
    EXPECT_EQ(vekStsOk, q3::vekiCopy_16s_C1R(source, 0, destination, 6, {3, 2}));  // one row twice
    EXPECT_EQ(std::vector<int16_t>({1, 2, 3, 1, 2, 3}), std::vector<int16_t>(destination, destination + 6));
    EXPECT_EQ(vekStsOk, q3::vekiCopy_16s_C1R(source, 6, destination, 0, {3, 2}));  // the last row stays
    EXPECT_EQ(std::vector<int16_t>({4, 5, 6, 1, 2, 3}), std::vector<int16_t>(destination, destination + 6));
    EXPECT_EQ(vekStsOk, q3::vekiCopy_16s_C1R(source + 3, -6, destination, 6, {3, 2}));  // upwards
    EXPECT_EQ(std::vector<int16_t>({4, 5, 6, 1, 2, 3}), std::vector<int16_t>(destination, destination + 6));
    const float from[] = {1, 2};
    float to[2] = {};
    EXPECT_EQ(vekStsOk, q3::vekiCopy_32f_C1R(from, 0, to, 4, {1, 2}));
    EXPECT_EQ(1, to[1]);
}

TEST(CopyRegion, ChecksItsArgumentsInOrder)
{
    int16_t word = 7;
    float number = 7;
    EXPECT_EQ(vekStsNullPointer, q3::vekiCopy_16s_C1R(nullptr, 2, &word, 2, {0, 0}));
    EXPECT_EQ(vekStsNullPointer, q3::vekiCopy_16s_C1R(&word, 2, nullptr, 2, {0, 0}));
    EXPECT_EQ(vekStsBadSize, q3::vekiCopy_16s_C1R(&word, 0, &word, 0, {0, 1}));
    EXPECT_EQ(vekStsBadSize, q3::vekiCopy_16s_C1R(&word, 2, &word, 2, {1, -1}));
    EXPECT_EQ(vekStsNullPointer, q3::vekiCopy_32f_C1R(nullptr, 4, &number, 4, {0, 0}));
    EXPECT_EQ(vekStsNullPointer, q3::vekiCopy_32f_C1R(&number, 4, nullptr, 4, {0, 0}));
    EXPECT_EQ(vekStsBadSize, q3::vekiCopy_32f_C1R(&number, 0, &number, 0, {1, 0}));
}

TEST(Widen, EveryWidthAndAlignment)
{
    const auto check = [](VekSize roi, int srcGap, int dstGap) {
        expectMapped<uint8_t, int16_t>(
            roi, srcGap, dstGap,
            [&](const uint8_t* src, int srcStep, int16_t* dst, int dstStep) {
                return q3::vekiConvert_8u16s_C1R(src, srcStep, dst, dstStep, roi);
            },
            [](uint8_t v) { return static_cast<int16_t>(v); });
        expectMapped<uint8_t, uint16_t>(
            roi, srcGap, dstGap,
            [&](const uint8_t* src, int srcStep, uint16_t* dst, int dstStep) {
                return q3::vekiConvert_8u16u_C1R(src, srcStep, dst, dstStep, roi);
            },
            [](uint8_t v) { return uint16_t{v}; });
    };
    overRegions(check);
    // From 3 * width * height = 0x80001 on, the cache size is asked for; rows without gaps are one long row.
    for (const int32_t cacheSize : {-1, 0, 4096, 0x80001, 0x10000000}) {
        const CacheSize cache(cacheSize);
        check({437, 400}, 0, 0);
        check({437, 400}, 5, 3);
        EXPECT_EQ(4, recorded::cacheSizeCalls);
        recorded::cacheSizeCalls = 0;
        check({174762, 1}, 0, 0);
        EXPECT_EQ(0, recorded::cacheSizeCalls);
        check({174763, 1}, 0, 0);
        EXPECT_EQ(2, recorded::cacheSizeCalls);
    }
}

TEST(Widen, ChecksItsArgumentsInOrder)
{
    const uint8_t byte = 200;
    int16_t word = 7;
    EXPECT_EQ(vekStsNullPointer, q3::vekiConvert_8u16s_C1R(nullptr, 0, &word, 0, {0, 0}));
    EXPECT_EQ(vekStsNullPointer, q3::vekiConvert_8u16s_C1R(&byte, 0, nullptr, 0, {0, 0}));
    EXPECT_EQ(vekStsBadSize, q3::vekiConvert_8u16s_C1R(&byte, 0, &word, 0, {0, 1}));
    EXPECT_EQ(vekStsBadSize, q3::vekiConvert_8u16s_C1R(&byte, 0, &word, 0, {1, 0}));
    EXPECT_EQ(vekStsBadStep, q3::vekiConvert_8u16s_C1R(&byte, 0, &word, 2, {1, 1}));
    EXPECT_EQ(vekStsBadStep, q3::vekiConvert_8u16s_C1R(&byte, 1, &word, 0, {1, 1}));
    EXPECT_EQ(7, word);
    uint16_t wide = 7;
    EXPECT_EQ(vekStsNullPointer, q3::vekiConvert_8u16u_C1R(nullptr, 1, &wide, 2, {1, 1}));
    EXPECT_EQ(vekStsBadStep, q3::vekiConvert_8u16u_C1R(&byte, 1, &wide, -2, {1, 1}));
    EXPECT_EQ(7, wide);
}

TEST(AndC, EveryWidthAndAlignment)
{
    for (const int32_t value : {0, -1, 0x7FFFFFFF, -0x7FFFFFFF - 1, 0x0F0F3355}) {
        overRegions([&](VekSize roi, int srcGap, int dstGap) {
            expectMapped<int32_t, int32_t>(
                roi, srcGap, dstGap,
                [&](const int32_t* src, int srcStep, int32_t* dst, int dstStep) {
                    return q3::vekiAndC_32s_C1R(src, srcStep, value, dst, dstStep, roi);
                },
                [&](int32_t v) { return v & value; });
        });
    }
}

TEST(AndC, InPlace)
{
    int32_t rows[] = {0x1234567, -1, 99, 0x7654321, 5, 98};
    EXPECT_EQ(vekStsOk, q3::vekiAndC_32s_C1IR(0xFF, rows, 12, {2, 2}));
    EXPECT_EQ(std::vector<int32_t>({0x67, 0xFF, 99, 0x21, 5, 98}), std::vector<int32_t>(rows, rows + 6));
}

TEST(AndC, ChecksItsArgumentsInOrder)
{
    int32_t word = 7;
    EXPECT_EQ(vekStsNullPointer, q3::vekiAndC_32s_C1R(nullptr, 0, 1, &word, 0, {0, 0}));
    EXPECT_EQ(vekStsNullPointer, q3::vekiAndC_32s_C1R(&word, 0, 1, nullptr, 0, {0, 0}));
    EXPECT_EQ(vekStsBadStep, q3::vekiAndC_32s_C1R(&word, 0, 1, &word, 4, {0, 0}));
    EXPECT_EQ(vekStsBadStep, q3::vekiAndC_32s_C1R(&word, 4, 1, &word, 0, {0, 0}));
    EXPECT_EQ(vekStsBadSize, q3::vekiAndC_32s_C1R(&word, 4, 1, &word, 4, {0, 1}));
    EXPECT_EQ(vekStsBadSize, q3::vekiAndC_32s_C1R(&word, 4, 1, &word, 4, {1, 0}));
    EXPECT_EQ(vekStsNullPointer, q3::vekiAndC_32s_C1IR(1, nullptr, 0, {0, 0}));
    EXPECT_EQ(vekStsBadStep, q3::vekiAndC_32s_C1IR(1, &word, 0, {0, 0}));
    EXPECT_EQ(vekStsBadSize, q3::vekiAndC_32s_C1IR(1, &word, 4, {0, 0}));
    EXPECT_EQ(7, word);
}

TEST(ZigzagInv, PutsEachEntryInItsNaturalPlace)
{
    for (const size_t offset : {0, 1, 2, 7}) {
        std::vector<uint8_t> source(128 + offset);
        std::vector<uint8_t> expected(128);
        for (size_t k = 0; k < 64; ++k) {
            const auto entry = static_cast<int16_t>(257 * k + 3);
            std::memcpy(source.data() + offset + 2 * k, &entry, 2);
            std::memcpy(expected.data() + 2 * static_cast<size_t>(model::zigzag[k]), &entry, 2);
        }
        expectWrites(offset, expected, [&](uint8_t* p) {
            EXPECT_EQ(vekStsOk, q3::vekiZigzagInv8x8_16s_C1(reinterpret_cast<const int16_t*>(source.data() + offset),
                                                            reinterpret_cast<int16_t*>(p)));
        });
    }
}

TEST(ZigzagInv, ChecksItsPointers)
{
    int16_t block[64] = {7};
    EXPECT_EQ(vekStsNullPointer, q3::vekiZigzagInv8x8_16s_C1(nullptr, block));
    EXPECT_EQ(vekStsNullPointer, q3::vekiZigzagInv8x8_16s_C1(block, nullptr));
    EXPECT_EQ(7, block[0]);
}

}  // namespace
